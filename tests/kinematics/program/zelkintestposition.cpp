#include "zelkintestposition.h"

#include <zelkinposition_p.h>

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinTestPosition)

ZELKinTestPosition::ZELKinTestPosition(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinPosition(new ZELKinPositionPrivate(this), container, reference)
{
}

ZELKinTestPosition::ZELKinTestPosition(ZELKinScript* script, int index)
    : ZELKinPosition(new ZELKinPositionPrivate(this), script, index)
{
}

ZELKinTestPosition::~ZELKinTestPosition() = default;

void ZELKinTestPosition::_constructor_checker()
{
    ZELKinTestPosition checker(nullptr, ZELGeoGeometryRef());
}
