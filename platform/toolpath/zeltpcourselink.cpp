#include "zeltpcourselink.h"
#include "zeltpcourselink_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

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

ZELTPCourseLink::PointsDetail ZELTPCourseLink::GetPointsDetail() const
{
    Q_D(const ZELTPCourseLink);
    return d->pointsDetail;
}

void ZELTPCourseLink::SetPointsDetail(PointsDetail detail)
{
    Q_D(ZELTPCourseLink);
    AboutToChange();
    d->pointsDetail = detail;
}

void ZELTPCourseLink::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPCourseLink);
    ZELTPObject::Save(stream);
    stream << qint32(d->pointsDetail);
}

void ZELTPCourseLink::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPCourseLink);
    ZELTPObject::Load(stream);
    qint32 detail = PointsDetailFull;
    stream >> detail;
    d->pointsDetail = PointsDetail(detail);
}
