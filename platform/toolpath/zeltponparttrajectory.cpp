#include "zeltponparttrajectory.h"
#include "zeltponparttrajectory_p.h"

#include <QDataStream>

void ZELTPOnPartTrajectoryPrivate::SaveFields(QDataStream& stream) const
{
    ZELTPTrajectoryPrivate::SaveFields(stream);
    stream << forwardTilt << sideTilt << smoothingAngle;
}

void ZELTPOnPartTrajectoryPrivate::LoadFields(QDataStream& stream)
{
    ZELTPTrajectoryPrivate::LoadFields(stream);
    stream >> forwardTilt >> sideTilt >> smoothingAngle;
}

ZELTPOnPartTrajectory::ZELTPOnPartTrajectory(double feedrate, double forwardTilt, double sideTilt,
                                             double smoothingAngle)
    : ZELTPOnPartTrajectory(new ZELTPOnPartTrajectoryPrivate(this))
{
    Q_D(ZELTPOnPartTrajectory);
    d->feedrate = feedrate;
    d->forwardTilt = forwardTilt;
    d->sideTilt = sideTilt;
    d->smoothingAngle = smoothingAngle;
}

ZELTPOnPartTrajectory::ZELTPOnPartTrajectory(ZELTPOnPartTrajectoryPrivate* d)
    : ZELTPTrajectory(d)
{
}

ZELTPOnPartTrajectory::~ZELTPOnPartTrajectory() = default;

double ZELTPOnPartTrajectory::GetForwardTilt() const
{
    Q_D(const ZELTPOnPartTrajectory);
    return d->forwardTilt;
}

double ZELTPOnPartTrajectory::GetSideTilt() const
{
    Q_D(const ZELTPOnPartTrajectory);
    return d->sideTilt;
}

double ZELTPOnPartTrajectory::GetSmoothingAngle() const
{
    Q_D(const ZELTPOnPartTrajectory);
    return d->smoothingAngle;
}
