#include "zelkinresource.h"
#include "zelkinresource_p.h"

#include <zelgeostream.h>

ZELKinResource::ZELKinResource(ZELKinResourcePrivate* d, ZELGeoContainer* container,
                               const ZELGeoGeometryRef& reference)
    : ZELKinObject(container, reference)
    , d_ptr(d)
{
}

ZELKinResource::ZELKinResource(ZELKinResourcePrivate* d, ZELGeoContainer* container, const QString& label)
    : ZELKinObject(container, ZELGeoGeometryRef())
    , d_ptr(d)
{
    d->label = label;
}

ZELKinResource::~ZELKinResource() = default;

QString ZELKinResource::GetLabel() const
{
    Q_D(const ZELKinResource);
    return d->label;
}

void ZELKinResource::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinResource);
    ZELKinObject::Save(stream);
    stream << d->label;
}

void ZELKinResource::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinResource);
    ZELKinObject::Load(stream);
    stream >> d->label;
}
