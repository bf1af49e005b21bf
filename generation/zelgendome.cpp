#include "zelgendome.h"

#include <QtMath>

#include <cmath>

namespace {

constexpr double kRadius = 2500.0;
// The radius of the rim seen from above: the sphere's radius times the sine of 30 degrees.
constexpr double kRimRadius = kRadius * 0.5;

} // namespace

QString ZELGenDome::GetName() const
{
    return QStringLiteral("dome");
}

QString ZELGenDome::GetPropagation() const
{
    return QStringLiteral("parallel");
}

ZELGenPoint ZELGenDome::GetSurfacePoint(const ZELMathVector2D& position, const ZELMathVector2D& direction) const
{
    const double x = position.GetX();
    const double y = position.GetY();
    const double height = std::sqrt(kRadius * kRadius - x * x - y * y);
    const double centreZ = kTopZ - kRadius;
    // Moving along the course, the surface falls by the rate at which the
    // height shrinks; the tangent so found is perpendicular to the normal.
    const double fall = (x * direction.GetX() + y * direction.GetY()) / height;
    return ZELGenPoint(ZELMathPoint(kCentreX + x, kCentreY + y, centreZ + height),
                       ZELMathVector(direction.GetX(), direction.GetY(), -fall).GetNormalized(),
                       ZELMathVector(x / kRadius, y / kRadius, height / kRadius));
}

// A course is an arc of the circle the vertical plane through it cuts from
// the sphere; its radius follows from the plane's distance to the sphere's
// axis, and each end's place along the arc from its horizontal distance
// along the plane.
double ZELGenDome::GetLength(const ZELMathVector2D& from, const ZELMathVector2D& to) const
{
    const ZELMathVector2D delta(to.GetX() - from.GetX(), to.GetY() - from.GetY());
    const double distance = delta.GetLength();
    if (distance == 0.0)
        return 0.0;
    const ZELMathVector2D direction(delta.GetX() / distance, delta.GetY() / distance);
    const double offAxis = direction.Cross(from);
    const double arcRadius = std::sqrt(kRadius * kRadius - offAxis * offAxis);
    return arcRadius * (std::asin(direction.Dot(to) / arcRadius) - std::asin(direction.Dot(from) / arcRadius));
}

std::optional<ZELGenPart::Range> ZELGenDome::GetCrossing(const ZELMathVector2D& position,
                                                         const ZELMathVector2D& direction) const
{
    const double along = position.Dot(direction);
    const double discriminant = along * along - position.Dot(position) + kRimRadius * kRimRadius;
    if (discriminant <= 0.0)
        return std::nullopt;
    const double halfChord = std::sqrt(discriminant);
    return Range{-along - halfChord, -along + halfChord};
}

ZELGenPart::Range ZELGenDome::GetExtent(const ZELMathVector2D&) const
{
    return Range{-kRimRadius, kRimRadius};
}

QList<ZELMathVector2D> ZELGenDome::GetProbeTargets() const
{
    const double radius = kRimRadius + kProbeTargetMargin;
    QList<ZELMathVector2D> targets;
    for (const double degrees : {-90.0, 30.0, 150.0}) {
        const double angle = qDegreesToRadians(degrees);
        targets.append(ZELMathVector2D(radius * std::cos(angle), radius * std::sin(angle)));
    }
    return targets;
}
