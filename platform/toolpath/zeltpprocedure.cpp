#include "zeltpprocedure.h"
#include "zeltpprocedure_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

ZELGEO_REGISTER_CLASS(ZELTPProcedure)

ZELTPProcedure::ZELTPProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPProcedure(new ZELTPProcedurePrivate(this), container, reference)
{
}

ZELTPProcedure::ZELTPProcedure(ZELGeoContainer* container, const QString& name)
    : ZELTPProcedure(new ZELTPProcedurePrivate(this), container, name)
{
}

ZELTPProcedure::ZELTPProcedure(ZELTPProcedurePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPObject(d, container, reference)
{
}

ZELTPProcedure::ZELTPProcedure(ZELTPProcedurePrivate* d, ZELGeoContainer* container, const QString& name)
    : ZELTPObject(d, container, name)
{
}

ZELTPProcedure::~ZELTPProcedure() = default;

void ZELTPProcedure::_constructor_checker()
{
    ZELTPProcedure checker(nullptr, ZELGeoGeometryRef());
}

ZELMathPlane ZELTPProcedure::GetSafetyPlane() const
{
    Q_D(const ZELTPProcedure);
    return d->safetyPlane;
}

void ZELTPProcedure::SetSafetyPlane(const ZELMathPlane& plane)
{
    Q_D(ZELTPProcedure);
    AboutToChange();
    d->safetyPlane = plane;
}

void ZELTPProcedure::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPProcedure);
    ZELTPObject::Save(stream);
    stream << d->safetyPlane;
}

void ZELTPProcedure::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPProcedure);
    ZELTPObject::Load(stream);
    stream >> d->safetyPlane;
}
