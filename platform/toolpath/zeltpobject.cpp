#include "zeltpobject.h"
#include "zeltpobject_p.h"

#include <zelgeostream.h>

ZELTPObject::ZELTPObject(ZELTPObjectPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELGeoGeometry(container, reference)
    , d_ptr(d)
{
}

ZELTPObject::ZELTPObject(ZELTPObjectPrivate* d, ZELGeoContainer* container, const QString& name)
    : ZELGeoGeometry(container, ZELGeoGeometryRef())
    , d_ptr(d)
{
    d->name = name;
}

ZELTPObject::~ZELTPObject() = default;

QString ZELTPObject::GetName() const
{
    Q_D(const ZELTPObject);
    return d->name;
}

void ZELTPObject::SetName(const QString& name)
{
    Q_D(ZELTPObject);
    AboutToChange();
    d->name = name;
}

void ZELTPObject::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPObject);
    ZELGeoGeometry::Save(stream);
    stream << d->name;
}

void ZELTPObject::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPObject);
    ZELGeoGeometry::Load(stream);
    stream >> d->name;
}
