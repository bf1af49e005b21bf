#include "zeltppoint.h"
#include "zeltppoint_p.h"

#include "zeltptrajectory_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

ZELGEO_REGISTER_CLASS(ZELTPPoint)

void ZELTPPointPrivate::LeaveTrajectory(const ZELTPTrajectory* trajectory)
{
    // Trajectories are mostly destroyed in the reverse order they added the
    // point, so the entry is found at once from the back.
    const qsizetype at = trajectories.lastIndexOf(trajectory);
    if (at >= 0)
        trajectories.remove(at);
}

ZELTPPoint::ZELTPPoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPPoint(new ZELTPPointPrivate(this), container, reference)
{
}

ZELTPPoint::ZELTPPoint(ZELGeoContainer* container, const ZELMathAxis& toolFrame)
    : ZELTPPoint(new ZELTPPointPrivate(this), container, ZELGeoGeometryRef())
{
    Q_D(ZELTPPoint);
    d->toolFrame = toolFrame;
}

ZELTPPoint::ZELTPPoint(ZELTPPointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELGeoGeometry(container, reference)
    , d_ptr(d)
{
}

ZELTPPoint::~ZELTPPoint()
{
    Q_D(ZELTPPoint);
    for (ZELTPTrajectory* trajectory : std::as_const(d->trajectories))
        ZELTPTrajectoryPrivate::get(trajectory)->ForgetPoint(this);
}

void ZELTPPoint::_constructor_checker()
{
    ZELTPPoint checker(nullptr, ZELGeoGeometryRef());
}

ZELMathAxis ZELTPPoint::GetToolFrame() const
{
    Q_D(const ZELTPPoint);
    return d->toolFrame;
}

void ZELTPPoint::SetToolFrame(const ZELMathAxis& toolFrame)
{
    Q_D(ZELTPPoint);
    AboutToChange();
    d->toolFrame = toolFrame;
}

ZELMathPoint ZELTPPoint::GetTipCoordinates() const
{
    Q_D(const ZELTPPoint);
    return d->toolFrame.GetOrigin();
}

int ZELTPPoint::GetIndex() const
{
    Q_D(const ZELTPPoint);
    return d->index;
}

void ZELTPPoint::SetIndex(int index)
{
    Q_D(ZELTPPoint);
    AboutToChange();
    d->index = index;
}

const ZELTPTrajectory* ZELTPPoint::GetTrajectory() const
{
    Q_D(const ZELTPPoint);
    return d->trajectories.isEmpty() ? nullptr : d->trajectories.last();
}

void ZELTPPoint::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPPoint);
    ZELGeoGeometry::Save(stream);
    stream << d->toolFrame << d->index;
}

void ZELTPPoint::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPPoint);
    ZELGeoGeometry::Load(stream);
    stream >> d->toolFrame >> d->index;
}
