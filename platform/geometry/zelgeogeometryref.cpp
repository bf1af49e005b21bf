#include "zelgeogeometryref.h"

#include "zelgeogeometry.h"

ZELGeoGeometryRef::ZELGeoGeometryRef(const ZELGeoGeometry* geometry)
    : m_identity(geometry ? geometry->GetReference().GetIdentity() : 0)
{
}

ZELGeoGeometryRef::ZELGeoGeometryRef(quint64 identity)
    : m_identity(identity)
{
}

QDataStream& operator<<(QDataStream& stream, const ZELGeoGeometryRef& reference)
{
    return stream << reference.GetIdentity();
}

QDataStream& operator>>(QDataStream& stream, ZELGeoGeometryRef& reference)
{
    quint64 identity = 0;
    stream >> identity;
    reference = ZELGeoGeometryRef(stream.status() == QDataStream::Ok ? identity : 0);
    return stream;
}
