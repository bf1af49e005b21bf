#include "zeltpcourselink.h"
#include "zeltpcourselink_p.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELTPCourseLink)

ZELTPCourseLink::ZELTPCourseLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPCourseLink(new ZELTPCourseLinkPrivate(this), container, reference)
{
}

ZELTPCourseLink::ZELTPCourseLink(ZELGeoContainer* container, const QString& name)
    : ZELTPCourseLink(new ZELTPCourseLinkPrivate(this), container, name)
{
}

ZELTPCourseLink::ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container,
                                 const ZELGeoGeometryRef& reference)
    : ZELTPObject(d, container, reference)
{
}

ZELTPCourseLink::ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container, const QString& name)
    : ZELTPObject(d, container, name)
{
}

ZELTPCourseLink::~ZELTPCourseLink() = default;

void ZELTPCourseLink::_constructor_checker()
{
    ZELTPCourseLink checker(nullptr, ZELGeoGeometryRef());
}
