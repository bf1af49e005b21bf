#include "zeltptowcourse.h"
#include "zeltptowcourse_p.h"

#include "zeltpindex_p.h"
#include "zeltponparttrajectory.h"
#include "zeltprecord_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

#include <QSet>

ZELGEO_REGISTER_CLASS(ZELTPTowCourse)

ZELTPTrajectory* ZELTPTowCoursePrivate::ChainMember(int index) const
{
    const int count = trajectories.GetCount();
    if (count < MinimumChainLength)
        return nullptr;
    return trajectories.At(index < 0 ? count + index : index);
}

ZELTPTowCourse::ZELTPTowCourse(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPTowCourse(new ZELTPTowCoursePrivate(this), container, reference)
{
}

ZELTPTowCourse::ZELTPTowCourse(ZELGeoContainer* container, const QString& name)
    : ZELTPTowCourse(new ZELTPTowCoursePrivate(this), container, name)
{
}

ZELTPTowCourse::ZELTPTowCourse(ZELTPTowCoursePrivate* d, ZELGeoContainer* container,
                               const ZELGeoGeometryRef& reference)
    : ZELTPCourse(d, container, reference)
{
}

ZELTPTowCourse::ZELTPTowCourse(ZELTPTowCoursePrivate* d, ZELGeoContainer* container, const QString& name)
    : ZELTPCourse(d, container, name)
{
}

ZELTPTowCourse::~ZELTPTowCourse() = default;

void ZELTPTowCourse::_constructor_checker()
{
    ZELTPTowCourse checker(nullptr, ZELGeoGeometryRef());
}

ZELCompTowMask ZELTPTowCourse::GetUsedTowMask() const
{
    Q_D(const ZELTPTowCourse);
    return d->usedTowMask;
}

void ZELTPTowCourse::SetUsedTowMask(const ZELCompTowMask& mask)
{
    Q_D(ZELTPTowCourse);
    AboutToChange();
    d->usedTowMask = mask;
}

ZELTPMachineConfiguration ZELTPTowCourse::GetMachineConfiguration() const
{
    Q_D(const ZELTPTowCourse);
    return d->machineConfiguration;
}

void ZELTPTowCourse::SetMachineConfiguration(const ZELTPMachineConfiguration& configuration)
{
    Q_D(ZELTPTowCourse);
    AboutToChange();
    d->machineConfiguration = configuration;
}

QList<double> ZELTPTowCourse::GetTowLengths() const
{
    Q_D(const ZELTPTowCourse);
    return d->towLengths;
}

void ZELTPTowCourse::SetTowLengths(const QList<double>& lengths)
{
    Q_D(ZELTPTowCourse);
    AboutToChange();
    d->towLengths = lengths;
}

double ZELTPTowCourse::GetTowLength(int tow) const
{
    Q_D(const ZELTPTowCourse);
    ZELTPIndex::Check(tow, d->towLengths.size());
    return d->towLengths.at(tow);
}

void ZELTPTowCourse::AddTrajectory(ZELTPTrajectory* trajectory)
{
    Q_D(ZELTPTowCourse);
    d->trajectories.Append(trajectory);
}

int ZELTPTowCourse::GetNumTrajectories() const
{
    Q_D(const ZELTPTowCourse);
    return d->trajectories.GetCount();
}

ZELTPTrajectory* ZELTPTowCourse::GetTrajectory(int index) const
{
    Q_D(const ZELTPTowCourse);
    return d->trajectories.At(index);
}

ZELTPTrajectory* ZELTPTowCourse::GetApproachTrajectory() const
{
    Q_D(const ZELTPTowCourse);
    return d->ChainMember(0);
}

ZELTPOnPartTrajectory* ZELTPTowCourse::GetRollInTrajectory() const
{
    Q_D(const ZELTPTowCourse);
    return dynamic_cast<ZELTPOnPartTrajectory*>(d->ChainMember(1));
}

ZELTPOnPartTrajectory* ZELTPTowCourse::GetRollOutTrajectory() const
{
    Q_D(const ZELTPTowCourse);
    return dynamic_cast<ZELTPOnPartTrajectory*>(d->ChainMember(-2));
}

ZELTPTrajectory* ZELTPTowCourse::GetRetractTrajectory() const
{
    Q_D(const ZELTPTowCourse);
    return d->ChainMember(-1);
}

ZELTPTrajectory* ZELTPTowCourse::GetNextTrajectory(const ZELTPTrajectory* trajectory) const
{
    Q_D(const ZELTPTowCourse);
    const int index = trajectory ? d->trajectories.IndexOf(trajectory) : -1;
    if (index < 0 || index + 1 >= d->trajectories.GetCount())
        return nullptr;
    return d->trajectories.At(index + 1);
}

ZELTPPoint* ZELTPTowCourse::GetRollInPoint() const
{
    Q_D(const ZELTPTowCourse);
    return d->rollInPoint.Get();
}

void ZELTPTowCourse::SetRollInPoint(ZELTPPoint* point)
{
    Q_D(ZELTPTowCourse);
    AboutToChange();
    d->rollInPoint.Set(point);
}

ZELTPPoint* ZELTPTowCourse::GetRollOutPoint() const
{
    Q_D(const ZELTPTowCourse);
    return d->rollOutPoint.Get();
}

void ZELTPTowCourse::SetRollOutPoint(ZELTPPoint* point)
{
    Q_D(ZELTPTowCourse);
    AboutToChange();
    d->rollOutPoint.Set(point);
}

int ZELTPTowCourse::GetNumPoints() const
{
    Q_D(const ZELTPTowCourse);
    QSet<const ZELTPPoint*> onPart;
    for (const ZELTPTrajectory* trajectory : d->trajectories.GetList()) {
        for (const ZELTPPoint* point : trajectory->GetPoints()) {
            if (point->GetIndex() >= 0)
                onPart.insert(point);
        }
    }
    return int(onPart.size());
}

void ZELTPTowCourse::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPTowCourse);
    ZELTPCourse::Save(stream);
    stream << d->usedTowMask << d->machineConfiguration;
    ZELTPRecord::WriteList(stream, d->towLengths);
    d->trajectories.Save(stream);
    d->rollInPoint.Save(stream);
    d->rollOutPoint.Save(stream);
}

void ZELTPTowCourse::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPTowCourse);
    ZELTPCourse::Load(stream);
    stream >> d->usedTowMask >> d->machineConfiguration;
    d->towLengths = ZELTPRecord::ReadList<double>(stream);
    d->trajectories.Load(stream);
    d->rollInPoint.Load(stream);
    d->rollOutPoint.Load(stream);
}
