#include "zeltptrajectorylist_p.h"

#include "zeltpindex_p.h"
#include "zeltplink_p.h"
#include "zeltppoint.h"
#include "zeltptowtrajectory.h"
#include "zeltptrajectory_p.h"

#include <zelsysexception.h>

#include <limits>
#include <memory>

namespace {

// A trajectory of the kind a record's class tag names, with placeholder
// values for its fields to be read over.
std::unique_ptr<ZELTPTrajectory> CreateOfKind(qint32 kind)
{
    const double notGiven = std::numeric_limits<double>::quiet_NaN();
    switch (kind) {
    case ZELTPTrajectoryPrivate::PlainKind:
        return std::make_unique<ZELTPTrajectory>(0.0);
    case ZELTPTrajectoryPrivate::OnPartKind:
        return std::make_unique<ZELTPOnPartTrajectory>(0.0, notGiven, notGiven, notGiven);
    case ZELTPTrajectoryPrivate::TowKind:
        return std::make_unique<ZELTPTowTrajectory>(0.0, notGiven, notGiven, notGiven, ZELCompTowMask(),
                                                    ZELCompTowMask(), QList<double>());
    }
    throw ZELSysException(QStringLiteral("unknown trajectory kind %1").arg(kind));
}

void SaveTrajectory(const ZELTPTrajectory* trajectory, ZELGeoStream& stream)
{
    const ZELTPTrajectoryPrivate* d = ZELTPTrajectoryPrivate::get(trajectory);
    stream << qint32(d->GetKind());
    d->SaveFields(stream);
    stream << qint32(d->points.size());
    for (const ZELTPPoint* point : d->points)
        stream << ZELGeoGeometryRef(point);
}

std::unique_ptr<ZELTPTrajectory> LoadTrajectory(ZELGeoStream& stream)
{
    qint32 kind = 0;
    stream >> kind;
    std::unique_ptr<ZELTPTrajectory> trajectory = CreateOfKind(kind);
    ZELTPTrajectoryPrivate* d = ZELTPTrajectoryPrivate::get(trajectory.get());
    d->LoadFields(stream);
    qint32 count = 0;
    stream >> count;
    for (qint32 index = 0; index < count && !stream.atEnd(); ++index) {
        if (ZELTPPoint* point = ZELGeoLinks::Read<ZELTPPoint>(stream))
            d->AppendPoint(point);
    }
    return trajectory;
}

} // namespace

ZELTPTrajectoryList::ZELTPTrajectoryList(ZELGeoGeometry* owner)
    : m_owner(owner)
{
}

ZELTPTrajectoryList::~ZELTPTrajectoryList()
{
    Clear();
}

void ZELTPTrajectoryList::Append(ZELTPTrajectory* trajectory)
{
    if (!trajectory)
        throw ZELSysException(QStringLiteral("cannot add a null trajectory"));
    ZELTPTrajectoryPrivate* d = ZELTPTrajectoryPrivate::get(trajectory);
    if (d->owner)
        throw ZELSysException(QStringLiteral("trajectory already has an owner"));
    m_owner->AboutToChange();
    d->owner = m_owner;
    m_trajectories.append(trajectory);
}

ZELTPTrajectory* ZELTPTrajectoryList::At(int index) const
{
    ZELTPIndex::Check(index, GetCount());
    return m_trajectories.at(index);
}

int ZELTPTrajectoryList::IndexOf(const ZELTPTrajectory* trajectory) const
{
    return int(m_trajectories.indexOf(trajectory));
}

void ZELTPTrajectoryList::Save(ZELGeoStream& stream) const
{
    stream << qint32(m_trajectories.size());
    for (const ZELTPTrajectory* trajectory : m_trajectories)
        SaveTrajectory(trajectory, stream);
}

void ZELTPTrajectoryList::Load(ZELGeoStream& stream)
{
    Clear();
    qint32 count = 0;
    stream >> count;
    for (qint32 index = 0; index < count && !stream.atEnd(); ++index) {
        std::unique_ptr<ZELTPTrajectory> trajectory = LoadTrajectory(stream);
        ZELTPTrajectoryPrivate::get(trajectory.get())->owner = m_owner;
        m_trajectories.append(trajectory.release());
    }
}

void ZELTPTrajectoryList::Clear()
{
    qDeleteAll(m_trajectories);
    m_trajectories.clear();
}
