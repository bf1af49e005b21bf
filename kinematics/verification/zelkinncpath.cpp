#include "zelkinncpath_p.h"

#include <zelmathvector.h>

#include <algorithm>
#include <cmath>

namespace {

// Segments searched around the last one a point was found on before all
// are searched.
constexpr int kSegmentsBehind = 4;
constexpr int kSegmentsAhead = 64;

double DistanceToSegment(const ZELMathPoint& point, const ZELMathPoint& from, const ZELMathPoint& to)
{
    const ZELMathVector along = to - from;
    const double squared = along.Dot(along);
    const double t = squared > 0.0 ? std::clamp((point - from).Dot(along) / squared, 0.0, 1.0) : 0.0;
    return point.GetDistanceTo(from + along * t);
}

} // namespace

bool ZELKinNCPath::IsFinite(const ZELMathPoint& point)
{
    return std::isfinite(point.GetX()) && std::isfinite(point.GetY()) && std::isfinite(point.GetZ());
}

void ZELKinNCPath::Add(const ZELMathPoint& centre, unsigned line)
{
    if (!IsFinite(centre))
        return;
    m_vertices.append(centre);
    m_lines.append(line);
}

ZELKinNCPath::Nearest ZELKinNCPath::NearestTo(const ZELMathPoint& point, double gate)
{
    Nearest nearest = NearestIn(point, m_hint - kSegmentsBehind, m_hint + kSegmentsAhead);
    if (!(nearest.distance <= gate))
        nearest = NearestIn(point, 0, int(m_vertices.size()));
    m_hint = nearest.end;
    return nearest;
}

ZELKinNCPath::Nearest ZELKinNCPath::NearestIn(const ZELMathPoint& point, int from, int to) const
{
    Nearest nearest;
    if (m_vertices.size() == 1)
        return Nearest{point.GetDistanceTo(m_vertices.first()), 0};
    for (int end = std::max(from, 1); end < std::min(to, int(m_vertices.size())); ++end) {
        const double distance = DistanceToSegment(point, m_vertices.at(end - 1), m_vertices.at(end));
        if (distance < nearest.distance)
            nearest = Nearest{distance, end};
    }
    return nearest;
}
