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

ZELTPCourseLink* ZELTPCourse::GetRetractLink() const
{
    Q_D(const ZELTPCourse);
    return d->retractLink.Get();
}

void ZELTPCourse::SetRetractLink(ZELTPCourseLink* link)
{
    Q_D(ZELTPCourse);
    AboutToChange();
    d->retractLink.Set(link);
}

void ZELTPCourse::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPCourse);
    ZELTPObject::Save(stream);
    d->retractLink.Save(stream);
}

void ZELTPCourse::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPCourse);
    ZELTPObject::Load(stream);
    d->retractLink.Load(stream);
}
