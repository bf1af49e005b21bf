#include "zeltpprobingprocedure.h"
#include "zeltpprobingprocedure_p.h"

#include "zeltpindex_p.h"
#include "zeltprecord_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

ZELGEO_REGISTER_CLASS(ZELTPProbingProcedure)

ZELTPProbingProcedure::ZELTPProbingProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPProbingProcedure(new ZELTPProbingProcedurePrivate(this), container, reference)
{
}

ZELTPProbingProcedure::ZELTPProbingProcedure(ZELGeoContainer* container, const QString& name)
    : ZELTPProbingProcedure(new ZELTPProbingProcedurePrivate(this), container, name)
{
}

ZELTPProbingProcedure::ZELTPProbingProcedure(ZELTPProbingProcedurePrivate* d, ZELGeoContainer* container,
                                             const ZELGeoGeometryRef& reference)
    : ZELTPProcedure(d, container, reference)
{
}

ZELTPProbingProcedure::ZELTPProbingProcedure(ZELTPProbingProcedurePrivate* d, ZELGeoContainer* container,
                                             const QString& name)
    : ZELTPProcedure(d, container, name)
{
}

ZELTPProbingProcedure::~ZELTPProbingProcedure() = default;

void ZELTPProbingProcedure::_constructor_checker()
{
    ZELTPProbingProcedure checker(nullptr, ZELGeoGeometryRef());
}

void ZELTPProbingProcedure::AddTrajectory(ZELTPTrajectory* trajectory)
{
    Q_D(ZELTPProbingProcedure);
    d->trajectories.Append(trajectory);
}

int ZELTPProbingProcedure::GetNumTrajectories() const
{
    Q_D(const ZELTPProbingProcedure);
    return d->trajectories.GetCount();
}

ZELTPTrajectory* ZELTPProbingProcedure::GetTrajectory(int index) const
{
    Q_D(const ZELTPProbingProcedure);
    return d->trajectories.At(index);
}

void ZELTPProbingProcedure::AddProbingPoint(const ZELTPProbingPoint& point)
{
    Q_D(ZELTPProbingProcedure);
    AboutToChange();
    d->probingPoints.append(point);
}

int ZELTPProbingProcedure::GetNumProbingPoints() const
{
    Q_D(const ZELTPProbingProcedure);
    return int(d->probingPoints.size());
}

ZELTPProbingPoint ZELTPProbingProcedure::GetProbingPoint(int index) const
{
    Q_D(const ZELTPProbingProcedure);
    ZELTPIndex::Check(index, d->probingPoints.size());
    return d->probingPoints.at(index);
}

void ZELTPProbingProcedure::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPProbingProcedure);
    ZELTPProcedure::Save(stream);
    d->trajectories.Save(stream);
    ZELTPRecord::WriteList(stream, d->probingPoints);
}

void ZELTPProbingProcedure::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPProbingProcedure);
    ZELTPProcedure::Load(stream);
    d->trajectories.Load(stream);
    d->probingPoints = ZELTPRecord::ReadList<ZELTPProbingPoint>(stream);
}
