#include "zeltpcourse.h"
#include "zeltpcourse_p.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELTPCourse)

ZELTPCourse::ZELTPCourse(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPCourse(new ZELTPCoursePrivate(this), container, reference)
{
}

ZELTPCourse::ZELTPCourse(ZELGeoContainer* container, const QString& name)
    : ZELTPCourse(new ZELTPCoursePrivate(this), container, name)
{
}

ZELTPCourse::ZELTPCourse(ZELTPCoursePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPObject(d, container, reference)
{
}

ZELTPCourse::ZELTPCourse(ZELTPCoursePrivate* d, ZELGeoContainer* container, const QString& name)
    : ZELTPObject(d, container, name)
{
}

ZELTPCourse::~ZELTPCourse() = default;

void ZELTPCourse::_constructor_checker()
{
    ZELTPCourse checker(nullptr, ZELGeoGeometryRef());
}
