#include "zeltptowtrajectory.h"
#include "zeltptowtrajectory_p.h"

#include "zeltprecord_p.h"

void ZELTPTowTrajectoryPrivate::SaveFields(QDataStream& stream) const
{
    ZELTPOnPartTrajectoryPrivate::SaveFields(stream);
    stream << towMask << forcedMask;
    ZELTPRecord::WriteList(stream, forcedRates);
}

void ZELTPTowTrajectoryPrivate::LoadFields(QDataStream& stream)
{
    ZELTPOnPartTrajectoryPrivate::LoadFields(stream);
    stream >> towMask >> forcedMask;
    forcedRates = ZELTPRecord::ReadList<double>(stream);
}

ZELTPTowTrajectory::ZELTPTowTrajectory(double feedrate, double forwardTilt, double sideTilt, double smoothingAngle,
                                       const ZELCompTowMask& towMask, const ZELCompTowMask& forcedMask,
                                       const QList<double>& forcedRates)
    : ZELTPTowTrajectory(new ZELTPTowTrajectoryPrivate(this))
{
    Q_D(ZELTPTowTrajectory);
    d->feedrate = feedrate;
    d->forwardTilt = forwardTilt;
    d->sideTilt = sideTilt;
    d->smoothingAngle = smoothingAngle;
    d->towMask = towMask;
    d->forcedMask = forcedMask;
    d->forcedRates = forcedRates;
}

ZELTPTowTrajectory::ZELTPTowTrajectory(ZELTPTowTrajectoryPrivate* d)
    : ZELTPOnPartTrajectory(d)
{
}

ZELTPTowTrajectory::~ZELTPTowTrajectory() = default;

ZELCompTowMask ZELTPTowTrajectory::GetTowMask() const
{
    Q_D(const ZELTPTowTrajectory);
    return d->towMask;
}

ZELCompTowMask ZELTPTowTrajectory::GetForcedMask() const
{
    Q_D(const ZELTPTowTrajectory);
    return d->forcedMask;
}

QList<double> ZELTPTowTrajectory::GetForcedRates() const
{
    Q_D(const ZELTPTowTrajectory);
    return d->forcedRates;
}
