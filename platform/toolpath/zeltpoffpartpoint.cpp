#include "zeltpoffpartpoint.h"
#include "zeltpoffpartpoint_p.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELTPOffPartPoint)

ZELTPOffPartPoint::ZELTPOffPartPoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPOffPartPoint(new ZELTPOffPartPointPrivate(this), container, reference)
{
}

ZELTPOffPartPoint::ZELTPOffPartPoint(ZELGeoContainer* container, const ZELMathAxis& toolFrame)
    : ZELTPOffPartPoint(new ZELTPOffPartPointPrivate(this), container, ZELGeoGeometryRef())
{
    Q_D(ZELTPOffPartPoint);
    d->toolFrame = toolFrame;
}

ZELTPOffPartPoint::ZELTPOffPartPoint(ZELTPOffPartPointPrivate* d, ZELGeoContainer* container,
                                     const ZELGeoGeometryRef& reference)
    : ZELTPPoint(d, container, reference)
{
}

ZELTPOffPartPoint::~ZELTPOffPartPoint() = default;

void ZELTPOffPartPoint::_constructor_checker()
{
    ZELTPOffPartPoint checker(nullptr, ZELGeoGeometryRef());
}
