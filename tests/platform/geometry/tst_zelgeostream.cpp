#include "zelgeotestnode.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <QIODevice>

namespace {

QByteArray Bytes(std::initializer_list<qint32> values)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(ZELGeoStream::DataStreamVersion);
    for (const qint32 value : values)
        out << value;
    return bytes;
}

} // namespace

TEST(ZELGeoStream, WritingStreamAppendsToTheRecord)
{
    ZELGeoContainer container;
    QByteArray record = Bytes({1});
    {
        ZELGeoStream stream(&record, &container);
        stream << qint32(2);
        EXPECT_EQ(stream.GetContainer(), &container);
    }
    EXPECT_EQ(record, Bytes({1, 2}));
}

TEST(ZELGeoStream, ReadsHandMadeBytes)
{
    ZELGeoStream stream(Bytes({3, -4}), nullptr);
    qint32 a = 0, b = 0;
    stream >> a >> b;
    EXPECT_EQ(a, 3);
    EXPECT_EQ(b, -4);
    EXPECT_EQ(stream.status(), QDataStream::Ok);
    EXPECT_TRUE(stream.atEnd());
}

TEST(ZELGeoStream, ReadingPastTheRecordEndGivesZerosAndAStatusButNoException)
{
    ZELGeoStream stream(Bytes({8}), nullptr);
    qint32 value = 0, beyond = 5;
    double number = 1.5;
    ZELGeoGeometryRef reference(3);
    QString text = QStringLiteral("left over");
    EXPECT_NO_THROW(stream >> value >> beyond >> number >> reference >> text);
    EXPECT_EQ(value, 8);
    EXPECT_EQ(beyond, 0);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, number, ZELTest::kExact));
    EXPECT_FALSE(reference.IsValid());
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(stream.status(), QDataStream::ReadPastEnd);
}

TEST(ZELGeoStream, WritesDuringAReadAreDiscardedWithoutMovingTheReadPosition)
{
    ZELGeoStream stream(Bytes({10, 20}), nullptr);
    qint32 first = 0, second = 0;
    stream >> first;
    stream << qint32(99) << QStringLiteral("ignored");
    stream >> second;
    EXPECT_EQ(first, 10);
    EXPECT_EQ(second, 20);
    EXPECT_EQ(stream.status(), QDataStream::Ok);
}

TEST(ZELGeoStream, WithoutAMapReferencesAreTakenAsTheyStand)
{
    ZELGeoStream stream(QByteArray(), nullptr);
    EXPECT_EQ(stream.GetMappedReference(ZELGeoGeometryRef(12)), ZELGeoGeometryRef(12));
    EXPECT_FALSE(stream.GetMappedReference(ZELGeoGeometryRef()).IsValid());
}

TEST(ZELGeoStream, WithAMapSavedReferencesTranslateAndUnknownOnesAreEmpty)
{
    ZELGeoContainer container;
    const ZELGeoStream::ReferenceMap map{{ZELGeoGeometryRef(1), ZELGeoGeometryRef(101)}};
    ZELGeoStream stream(QByteArray(), &container, map);
    EXPECT_EQ(stream.GetMappedReference(ZELGeoGeometryRef(1)), ZELGeoGeometryRef(101));
    EXPECT_FALSE(stream.GetMappedReference(ZELGeoGeometryRef(2)).IsValid());
    EXPECT_EQ(stream.GetContainer(), &container);
}

TEST(ZELGeoStream, ACountLargerThanTheEntriesStopsAtTheRecordEnd)
{
    ZELGeoContainer container;
    auto* target = new ZELGeoTestNode(&container, 1);
    QByteArray record;
    {
        QDataStream out(&record, QIODevice::WriteOnly);
        out.setVersion(ZELGeoStream::DataStreamVersion);
        out << qint32(5) << qint32(1000000) << target->GetReference();
    }
    ZELGeoTestNode node(&container, 0);
    ZELGeoStream stream(record, &container);
    EXPECT_NO_THROW(node.Load(stream));
    EXPECT_EQ(node.value, 5);
    ASSERT_EQ(node.links.size(), 1);
    EXPECT_EQ(node.links.first(), target);
}
