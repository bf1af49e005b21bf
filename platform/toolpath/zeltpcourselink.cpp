#include "zeltpcourselink.h"
#include "zeltpcourselink_p.h"

#include "zeltpindex_p.h"
#include "zeltptrajectory.h"

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

void ZELTPCourseLink::AddTrajectory(ZELTPTrajectory* trajectory)
{
    Q_D(ZELTPCourseLink);
    d->trajectories.Append(trajectory);
}

int ZELTPCourseLink::GetNumTrajectories() const
{
    Q_D(const ZELTPCourseLink);
    return d->trajectories.GetCount();
}

ZELTPTrajectory* ZELTPCourseLink::GetTrajectory(int index) const
{
    Q_D(const ZELTPCourseLink);
    return d->trajectories.At(index);
}

int ZELTPCourseLink::GetNumPoints() const
{
    Q_D(const ZELTPCourseLink);
    int count = 0;
    for (const ZELTPTrajectory* trajectory : d->trajectories.GetList())
        count += trajectory->GetNumPoints();
    return count;
}

ZELTPPoint* ZELTPCourseLink::GetPoint(int index) const
{
    Q_D(const ZELTPCourseLink);
    ZELTPIndex::Check(index, GetNumPoints());
    int trajectory = 0;
    while (index >= d->trajectories.At(trajectory)->GetNumPoints())
        index -= d->trajectories.At(trajectory++)->GetNumPoints();
    return d->trajectories.At(trajectory)->GetPoint(index);
}

QList<ZELTPPoint*> ZELTPCourseLink::GetPoints() const
{
    Q_D(const ZELTPCourseLink);
    QList<ZELTPPoint*> points;
    for (const ZELTPTrajectory* trajectory : d->trajectories.GetList())
        points.append(trajectory->GetPoints());
    return points;
}

ZELTPCourse* ZELTPCourseLink::GetToCourse() const
{
    Q_D(const ZELTPCourseLink);
    return d->toCourse.Get();
}

void ZELTPCourseLink::SetToCourse(ZELTPCourse* course)
{
    Q_D(ZELTPCourseLink);
    AboutToChange();
    d->toCourse.Set(course);
}

void ZELTPCourseLink::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPCourseLink);
    ZELTPObject::Save(stream);
    stream << qint32(d->pointsDetail);
    d->trajectories.Save(stream);
    d->toCourse.Save(stream);
}

void ZELTPCourseLink::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPCourseLink);
    ZELTPObject::Load(stream);
    qint32 detail = PointsDetailFull;
    stream >> detail;
    d->pointsDetail = PointsDetail(detail);
    d->trajectories.Load(stream);
    d->toCourse.Load(stream);
}
