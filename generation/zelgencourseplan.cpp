#include "zelgencourseplan.h"

#include "zelgenpart.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace {

constexpr int kTowsPerGroup = 4;
// A stretch of tow this short leaves the head no room between its add and its cut.
constexpr double kShortestTow = 101.6;
// Adds and cuts closer than this (mm) happen at one place, as the format
// joins trajectory ends within it.
constexpr double kSamePlace = 0.001;

ZELMathVector2D Offset(const ZELMathVector2D& point, const ZELMathVector2D& direction, double distance)
{
    return ZELMathVector2D(point.GetX() + distance * direction.GetX(), point.GetY() + distance * direction.GetY());
}

// Across the course from the centre line to the middle of the tows
// firstTow .. firstTow + towCount - 1 of the head.
double CentreOffsetOf(int firstTow, int towCount)
{
    const double middleTow = firstTow + (towCount - 1) / 2.0;
    return (middleTow - (ZELGenCoursePlan::kNumHeadTows - 1) / 2.0) * ZELGenCoursePlan::kTowWidth;
}

} // namespace

ZELGenCoursePlan::ZELGenCoursePlan(const ZELGenPart& part, const ZELMathVector2D& direction, double across,
                                   int firstTow, int towCount)
    : m_part(part)
    , m_direction(direction)
    , m_left(-direction.GetY(), direction.GetX())
{
    m_base = Offset(ZELMathVector2D(), m_left, across);
    for (int tow = firstTow; tow < firstTow + towCount; tow += kTowsPerGroup)
        PlanGroup(tow, std::min(kTowsPerGroup, firstTow + towCount - tow));
    PlanStations();
}

bool ZELGenCoursePlan::IsEmpty() const
{
    return m_groups.isEmpty();
}

const QList<double>& ZELGenCoursePlan::GetStations() const
{
    return m_stations;
}

double ZELGenCoursePlan::GetStart() const
{
    return m_stations.first();
}

double ZELGenCoursePlan::GetEnd() const
{
    return m_stations.last();
}

QString ZELGenCoursePlan::GetStretchMask(int stretch) const
{
    const double from = m_stations.at(stretch);
    const double to = m_stations.at(stretch + 1);
    return GetMask(
        [from, to](const Group& group) { return group.from <= from + kSamePlace && group.to >= to - kSamePlace; });
}

QString ZELGenCoursePlan::GetTowMask() const
{
    return GetMask([](const Group&) { return true; });
}

QList<double> ZELGenCoursePlan::GetTowLengths() const
{
    QList<double> lengths(kNumHeadTows, 0.0);
    for (const Group& group : m_groups) {
        const ZELMathVector2D line = Offset(m_base, m_left, CentreOffsetOf(group.firstTow, group.towCount));
        const double length = m_part.GetLength(Offset(line, m_direction, group.from),
                                               Offset(line, m_direction, group.to));
        std::fill_n(lengths.begin() + group.firstTow, group.towCount, length);
    }
    return lengths;
}

double ZELGenCoursePlan::GetMaterialLength() const
{
    const QList<double> lengths = GetTowLengths();
    return std::accumulate(lengths.cbegin(), lengths.cend(), 0.0);
}

ZELGenPoint ZELGenCoursePlan::GetPoint(double along) const
{
    return m_part.GetSurfacePoint(Offset(m_base, m_direction, along), m_direction);
}

void ZELGenCoursePlan::PlanGroup(int firstTow, int towCount)
{
    const ZELMathVector2D line = Offset(m_base, m_left, CentreOffsetOf(firstTow, towCount));
    const std::optional<ZELGenPart::Range> inside = m_part.GetCrossing(line, m_direction);
    if (inside && inside->to - inside->from >= kShortestTow)
        m_groups.append(Group{firstTow, towCount, inside->from, inside->to});
}

void ZELGenCoursePlan::PlanStations()
{
    QList<double> places;
    for (const Group& group : m_groups)
        places << group.from << group.to;
    std::sort(places.begin(), places.end());
    for (const double place : places) {
        if (m_stations.isEmpty() || place - m_stations.last() > kSamePlace)
            m_stations.append(place);
    }
}

QString ZELGenCoursePlan::GetMask(const std::function<bool(const Group&)>& laid) const
{
    QString mask(kNumHeadTows, QLatin1Char('0'));
    for (const Group& group : m_groups) {
        if (laid(group))
            mask.replace(group.firstTow, group.towCount, QString(group.towCount, QLatin1Char('1')));
    }
    return mask;
}
