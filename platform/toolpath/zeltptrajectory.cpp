#include "zeltptrajectory.h"
#include "zeltptrajectory_p.h"

#include "zeltpindex_p.h"
#include "zeltppoint_p.h"

#include <zelgeogeometry.h>
#include <zelsysexception.h>

#include <QDataStream>

void ZELTPTrajectoryPrivate::SaveFields(QDataStream& stream) const
{
    stream << feedrate;
}

void ZELTPTrajectoryPrivate::LoadFields(QDataStream& stream)
{
    stream >> feedrate;
}

void ZELTPTrajectoryPrivate::AppendPoint(ZELTPPoint* point)
{
    Q_Q(ZELTPTrajectory);
    points.append(point);
    ZELTPPointPrivate::get(point)->JoinTrajectory(q);
}

void ZELTPTrajectoryPrivate::ForgetPoint(const ZELTPPoint* point)
{
    // Points are mostly destroyed in the reverse order of their creation,
    // which is their order here, so the entry is found at once from the back.
    const qsizetype at = points.lastIndexOf(point);
    if (at >= 0)
        points.removeAt(at);
}

ZELTPTrajectory::ZELTPTrajectory(double feedrate)
    : ZELTPTrajectory(new ZELTPTrajectoryPrivate(this))
{
    Q_D(ZELTPTrajectory);
    d->feedrate = feedrate;
}

ZELTPTrajectory::ZELTPTrajectory(ZELTPTrajectoryPrivate* d)
    : d_ptr(d)
{
}

ZELTPTrajectory::~ZELTPTrajectory()
{
    Q_D(ZELTPTrajectory);
    for (ZELTPPoint* point : std::as_const(d->points))
        ZELTPPointPrivate::get(point)->LeaveTrajectory(this);
}

double ZELTPTrajectory::GetFeedrate() const
{
    Q_D(const ZELTPTrajectory);
    return d->feedrate;
}

int ZELTPTrajectory::GetNumPoints() const
{
    Q_D(const ZELTPTrajectory);
    return int(d->points.size());
}

ZELTPPoint* ZELTPTrajectory::GetPoint(int index) const
{
    Q_D(const ZELTPTrajectory);
    ZELTPIndex::Check(index, d->points.size());
    return d->points.at(index);
}

const QList<ZELTPPoint*>& ZELTPTrajectory::GetPoints() const
{
    Q_D(const ZELTPTrajectory);
    return d->points;
}

int ZELTPTrajectory::IndexOfPoint(const ZELTPPoint* point) const
{
    Q_D(const ZELTPTrajectory);
    return int(d->points.indexOf(point));
}

void ZELTPTrajectory::AddPoint(ZELTPPoint* point)
{
    Q_D(ZELTPTrajectory);
    if (!point)
        throw ZELSysException(QStringLiteral("cannot add a null point to a trajectory"));
    if (d->owner)
        d->owner->AboutToChange();
    d->AppendPoint(point);
}

ZELGeoGeometry* ZELTPTrajectory::GetOwner() const
{
    Q_D(const ZELTPTrajectory);
    return d->owner;
}
