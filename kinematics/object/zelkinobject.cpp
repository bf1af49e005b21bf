#include "zelkinobject.h"

ZELKinObject::ZELKinObject(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELGeoGeometry(container, reference)
{
}

ZELKinObject::~ZELKinObject() = default;
