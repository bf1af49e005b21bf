#include "zelkintoolpathcylindersection.h"

#include <cmath>

namespace {

constexpr double kRadius = 1500.0;
constexpr double kHalfAngle = 35.0 * 3.14159265358979323846 / 180.0;

} // namespace

ZELKinToolpathCylinderSection::ZELKinToolpathCylinderSection()
    : ZELKinToolpathDevelopedPart(1500.0, kRadius * kHalfAngle)
{
}

QString ZELKinToolpathCylinderSection::GetName() const
{
    return QStringLiteral("cylinder-section");
}

QString ZELKinToolpathCylinderSection::GetPropagation() const
{
    return QStringLiteral("angle");
}

ZELKinToolpathPoint ZELKinToolpathCylinderSection::GetSurfacePoint(const ZELMathVector2D& position,
                                                                   const ZELMathVector2D& direction) const
{
    const double angle = position.GetY() / kRadius;
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    const double axisZ = kTopZ - kRadius;
    return ZELKinToolpathPoint(
        ZELMathPoint(kCentreX + position.GetX(), kCentreY + kRadius * sine, axisZ + kRadius * cosine),
        ZELMathVector(direction.GetX(), direction.GetY() * cosine, -direction.GetY() * sine),
        ZELMathVector(0.0, sine, cosine));
}
