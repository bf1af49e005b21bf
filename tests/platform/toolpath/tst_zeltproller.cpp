#include <zeltproller.h>

#include <zeltestsupport.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

TEST(ZELTPRoller, DefaultIsUnnamedOfWidthZero)
{
    const ZELTPRoller roller;
    EXPECT_TRUE(roller.GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, roller.GetWidth(), ZELTest::kExact));
}

TEST(ZELTPRoller, KeepsNameAndWidth)
{
    const ZELTPRoller roller(QStringLiteral("R-25.4"), 25.4);
    EXPECT_EQ(roller.GetName(), QStringLiteral("R-25.4"));
    EXPECT_TRUE(ZELTest::SameDouble(25.4, roller.GetWidth(), ZELTest::kExact));
}

TEST(ZELTPRoller, StreamFormIsNameThenWidth)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPRoller(QStringLiteral("R-25.4"), 25.4);
    QDataStream in(bytes);
    QString name;
    double width = 0.0;
    in >> name >> width;
    EXPECT_EQ(name, QStringLiteral("R-25.4"));
    EXPECT_TRUE(ZELTest::SameDouble(25.4, width, ZELTest::kExact));
    EXPECT_TRUE(in.atEnd());
}

TEST(ZELTPRoller, SurvivesTheStreamBitForBit)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPRoller(QStringLiteral("Rolle ø 50"), 50.8 / 3.0);
    QDataStream in(bytes);
    ZELTPRoller roller;
    in >> roller;
    EXPECT_EQ(roller.GetName(), QStringLiteral("Rolle ø 50"));
    EXPECT_TRUE(ZELTest::SameDouble(50.8 / 3.0, roller.GetWidth(), ZELTest::kExact));
}

TEST(ZELTPRoller, ReadsEmptyAndZeroPastTheEndOfTheData)
{
    QDataStream in(QByteArray{});
    ZELTPRoller roller(QStringLiteral("old"), 12.7);
    in >> roller;
    EXPECT_TRUE(roller.GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, roller.GetWidth(), ZELTest::kExact));
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
}
