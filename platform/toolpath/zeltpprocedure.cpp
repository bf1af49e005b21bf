#include "zeltpprocedure.h"
#include "zeltpprocedure_p.h"

#include <zelgeocontainer.h>

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
