#ifndef ZELGEOGEOMETRYREF_H
#define ZELGEOGEOMETRYREF_H

#include "zelgeometry_export.h"

#include <QDataStream>
#include <QHashFunctions>
#include <QMetaType>

class ZELGeoGeometry;

/*!
    The identity of a geometry inside its container.

    A reference is a 64-bit number that the container hands out when a
    geometry is registered; 0 is never handed out and marks an empty
    (invalid) reference. References are plain values: they can be compared,
    hashed, streamed and kept after their geometry is gone (looking them up
    then finds nothing). A loaded container gives its geometries new
    identities; ZELGeoStream::GetMappedReference translates the saved ones.
*/
class ZELGEOMETRY_EXPORT ZELGeoGeometryRef
{
public:
    //! An empty reference: IsValid() is false.
    ZELGeoGeometryRef() = default;
    //! The reference of `geometry`; empty for a null geometry.
    explicit ZELGeoGeometryRef(const ZELGeoGeometry* geometry);
    //! A reference with the given identity (0 gives an empty reference).
    explicit ZELGeoGeometryRef(quint64 identity);

    bool IsValid() const { return m_identity != 0; }
    quint64 GetIdentity() const { return m_identity; }

    friend bool operator==(const ZELGeoGeometryRef& a, const ZELGeoGeometryRef& b)
    {
        return a.m_identity == b.m_identity;
    }
    friend bool operator!=(const ZELGeoGeometryRef& a, const ZELGeoGeometryRef& b)
    {
        return a.m_identity != b.m_identity;
    }

private:
    quint64 m_identity = 0;
};

inline size_t qHash(const ZELGeoGeometryRef& reference, size_t seed = 0) noexcept
{
    return qHash(reference.GetIdentity(), seed);
}

//! Writes the identity as a quint64.
ZELGEOMETRY_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELGeoGeometryRef& reference);
//! Reads a quint64 identity; a failed read (past the end) gives an empty reference.
ZELGEOMETRY_EXPORT QDataStream& operator>>(QDataStream& stream, ZELGeoGeometryRef& reference);

Q_DECLARE_METATYPE(ZELGeoGeometryRef)

#endif // ZELGEOGEOMETRYREF_H
