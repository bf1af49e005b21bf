#include "zelgendevelopedpart.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

// The parameters along a line at which it crosses the slab -half..half of
// one coordinate, where the line starts at `position` and moves `step` per mm.
std::optional<ZELGenPart::Range> CrossSlab(double position, double step, double half)
{
    // A line parallel to the slab is inside it everywhere or nowhere.
    if (step == 0.0) {
        if (std::abs(position) > half)
            return std::nullopt;
        const double infinity = std::numeric_limits<double>::infinity();
        return ZELGenPart::Range{-infinity, infinity};
    }
    double from = (-half - position) / step;
    double to = (half - position) / step;
    if (from > to)
        std::swap(from, to);
    return ZELGenPart::Range{from, to};
}

} // namespace

ZELGenDevelopedPart::ZELGenDevelopedPart(double halfLength, double halfWidth)
    : m_halfLength(halfLength)
    , m_halfWidth(halfWidth)
{
}

double ZELGenDevelopedPart::GetLength(const ZELMathVector2D& from, const ZELMathVector2D& to) const
{
    return ZELMathVector2D(to.GetX() - from.GetX(), to.GetY() - from.GetY()).GetLength();
}

std::optional<ZELGenPart::Range> ZELGenDevelopedPart::GetCrossing(const ZELMathVector2D& position,
                                                                  const ZELMathVector2D& direction) const
{
    const std::optional<Range> alongX = CrossSlab(position.GetX(), direction.GetX(), m_halfLength);
    const std::optional<Range> alongY = CrossSlab(position.GetY(), direction.GetY(), m_halfWidth);
    if (!alongX || !alongY)
        return std::nullopt;
    const Range inside{std::max(alongX->from, alongY->from), std::min(alongX->to, alongY->to)};
    if (inside.from >= inside.to)
        return std::nullopt;
    return inside;
}

ZELGenPart::Range ZELGenDevelopedPart::GetExtent(const ZELMathVector2D& across) const
{
    const double reach = m_halfLength * std::abs(across.GetX()) + m_halfWidth * std::abs(across.GetY());
    return Range{-reach, reach};
}

QList<ZELMathVector2D> ZELGenDevelopedPart::GetProbeTargets() const
{
    const double x = m_halfLength + kProbeTargetMargin;
    const double y = m_halfWidth + kProbeTargetMargin;
    return {ZELMathVector2D(-x, -y), ZELMathVector2D(x, -y), ZELMathVector2D(0.0, y)};
}
