#include <zeltpmaterialdescription.h>

#include <zeltestsupport.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

TEST(ZELTPMaterialDescription, DefaultHasEmptyIdentifierAndName)
{
    const ZELTPMaterialDescription material;
    EXPECT_TRUE(material.GetId().isEmpty());
    EXPECT_TRUE(material.GetName().isEmpty());
}

TEST(ZELTPMaterialDescription, KeepsIdentifierAndName)
{
    const ZELTPMaterialDescription material(QStringLiteral("T35-E120"), QStringLiteral("Carbon/epoxy prepreg"));
    EXPECT_EQ(material.GetId(), QStringLiteral("T35-E120"));
    EXPECT_EQ(material.GetName(), QStringLiteral("Carbon/epoxy prepreg"));
}

TEST(ZELTPMaterialDescription, StreamFormIsIdentifierThenName)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPMaterialDescription(QStringLiteral("T35-E120"), QStringLiteral("Carbon/epoxy prepreg"));
    QDataStream in(bytes);
    QString id;
    QString name;
    in >> id >> name;
    EXPECT_EQ(id, QStringLiteral("T35-E120"));
    EXPECT_EQ(name, QStringLiteral("Carbon/epoxy prepreg"));
    EXPECT_TRUE(in.atEnd());
}

TEST(ZELTPMaterialDescription, SurvivesTheStream)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPMaterialDescription(QStringLiteral("T800/3900"), QStringLiteral("Kohlefaser — Band"));
    QDataStream in(bytes);
    ZELTPMaterialDescription material;
    in >> material;
    EXPECT_EQ(material.GetId(), QStringLiteral("T800/3900"));
    EXPECT_EQ(material.GetName(), QStringLiteral("Kohlefaser — Band"));
}

TEST(ZELTPMaterialDescription, ReadsEmptyPastTheEndOfTheData)
{
    QDataStream in(QByteArray{});
    ZELTPMaterialDescription material(QStringLiteral("old"), QStringLiteral("old"));
    in >> material;
    EXPECT_TRUE(material.GetId().isEmpty());
    EXPECT_TRUE(material.GetName().isEmpty());
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
}
