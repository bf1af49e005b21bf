#include <zeltpprobingpoint.h>

#include <zeltestsupport.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

TEST(ZELTPProbingPoint, DefaultTargetHasDiameterZero)
{
    EXPECT_TRUE(ZELTest::SameDouble(0.0, ZELTPProbingPoint().GetDiameter(), ZELTest::kExact));
}

TEST(ZELTPProbingPoint, KeepsTheDiameter)
{
    EXPECT_TRUE(ZELTest::SameDouble(25.4, ZELTPProbingPoint(25.4).GetDiameter(), ZELTest::kExact));
}

TEST(ZELTPProbingPoint, StreamFormIsTheDiameter)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPProbingPoint(19.05);
    QDataStream in(bytes);
    double diameter = 0.0;
    in >> diameter;
    EXPECT_TRUE(ZELTest::SameDouble(19.05, diameter, ZELTest::kExact));
    EXPECT_TRUE(in.atEnd());
}

TEST(ZELTPProbingPoint, SurvivesTheStreamBitForBit)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPProbingPoint(12.7 / 3.0);
    QDataStream in(bytes);
    ZELTPProbingPoint point;
    in >> point;
    EXPECT_TRUE(ZELTest::SameDouble(12.7 / 3.0, point.GetDiameter(), ZELTest::kExact));
}

TEST(ZELTPProbingPoint, ReadsZeroPastTheEndOfTheData)
{
    QDataStream in(QByteArray{});
    ZELTPProbingPoint point(25.4);
    in >> point;
    EXPECT_TRUE(ZELTest::SameDouble(0.0, point.GetDiameter(), ZELTest::kExact));
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
}
