#include <zeltpafphead.h>

#include <zeltestsupport.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

TEST(ZELTPAFPHead, DefaultIsUnnamedWithTowsOfWidthZero)
{
    const ZELTPAFPHead head;
    EXPECT_TRUE(head.GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, head.GetTowWidth(), ZELTest::kExact));
}

TEST(ZELTPAFPHead, KeepsNameAndTowWidth)
{
    const ZELTPAFPHead head(QStringLiteral("Head 16x6.35"), 6.35);
    EXPECT_EQ(head.GetName(), QStringLiteral("Head 16x6.35"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, head.GetTowWidth(), ZELTest::kExact));
}

TEST(ZELTPAFPHead, StreamFormIsNameThenTowWidth)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPAFPHead(QStringLiteral("Head 16x6.35"), 6.35);
    QDataStream in(bytes);
    QString name;
    double towWidth = 0.0;
    in >> name >> towWidth;
    EXPECT_EQ(name, QStringLiteral("Head 16x6.35"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, towWidth, ZELTest::kExact));
    EXPECT_TRUE(in.atEnd());
}

TEST(ZELTPAFPHead, SurvivesTheStreamBitForBit)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPAFPHead(QStringLiteral("Kopf 32"), 3.175 / 7.0);
    QDataStream in(bytes);
    ZELTPAFPHead head;
    in >> head;
    EXPECT_EQ(head.GetName(), QStringLiteral("Kopf 32"));
    EXPECT_TRUE(ZELTest::SameDouble(3.175 / 7.0, head.GetTowWidth(), ZELTest::kExact));
}

TEST(ZELTPAFPHead, ReadsEmptyAndZeroPastTheEndOfTheData)
{
    QDataStream in(QByteArray{});
    ZELTPAFPHead head(QStringLiteral("old"), 6.35);
    in >> head;
    EXPECT_TRUE(head.GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, head.GetTowWidth(), ZELTest::kExact));
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
}
