#include "zelgeotestnode.h"

#include <zelgeocontainer.h>
#include <zelgeogeometryref.h>

#include <zeltestsupport.h>

#include <QIODevice>
#include <QSet>
#include <QVariant>

TEST(ZELGeoGeometryRef, DefaultReferenceIsInvalid)
{
    EXPECT_FALSE(ZELGeoGeometryRef().IsValid());
    EXPECT_EQ(ZELGeoGeometryRef().GetIdentity(), 0u);
}

TEST(ZELGeoGeometryRef, ReferenceBuiltFromNullIsInvalid)
{
    EXPECT_FALSE(ZELGeoGeometryRef(static_cast<const ZELGeoGeometry*>(nullptr)).IsValid());
}

TEST(ZELGeoGeometryRef, ReferenceBuiltFromAGeometryIsItsIdentity)
{
    ZELGeoContainer container;
    const auto* node = new ZELGeoTestNode(&container, 1);
    const ZELGeoGeometryRef reference(node);
    EXPECT_TRUE(reference.IsValid());
    EXPECT_EQ(reference, node->GetReference());
    EXPECT_EQ(container.GetGeometryByRef(reference), node);
}

TEST(ZELGeoGeometryRef, EqualIdentitiesAreEqualAndHashAlike)
{
    const ZELGeoGeometryRef a(42), b(42), c(43);
    EXPECT_EQ(a, b);
    EXPECT_NE(a, c);
    EXPECT_EQ(qHash(a), qHash(b));
    const QSet<ZELGeoGeometryRef> set{a, b, c};
    EXPECT_EQ(set.size(), 2);
}

TEST(ZELGeoGeometryRef, StreamRoundTripKeepsTheIdentity)
{
    QByteArray bytes;
    {
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out << ZELGeoGeometryRef(7) << ZELGeoGeometryRef();
    }
    QDataStream in(bytes);
    ZELGeoGeometryRef first, second(99);
    in >> first >> second;
    EXPECT_EQ(first, ZELGeoGeometryRef(7));
    EXPECT_FALSE(second.IsValid());
}

TEST(ZELGeoGeometryRef, ReadingPastTheEndGivesAnEmptyReference)
{
    const QByteArray bytes("\x00\x00\x00\x01", 4);
    QDataStream in(bytes);
    ZELGeoGeometryRef reference(5);
    in >> reference;
    EXPECT_FALSE(reference.IsValid());
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
}

TEST(ZELGeoGeometryRef, TravelsInAQVariant)
{
    const QVariant variant = QVariant::fromValue(ZELGeoGeometryRef(11));
    EXPECT_EQ(variant.value<ZELGeoGeometryRef>(), ZELGeoGeometryRef(11));
}
