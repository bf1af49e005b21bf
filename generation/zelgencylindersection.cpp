#include "zelgencylindersection.h"

#include <QtMath>

#include <cmath>

namespace {

constexpr double kRadius = 1500.0;
const double kHalfAngle = qDegreesToRadians(35.0);

} // namespace

ZELGenCylinderSection::ZELGenCylinderSection()
    : ZELGenDevelopedPart(1500.0, kRadius * kHalfAngle)
{
}

QString ZELGenCylinderSection::GetName() const
{
    return QStringLiteral("cylinder-section");
}

QString ZELGenCylinderSection::GetPropagation() const
{
    return QStringLiteral("angle");
}

ZELGenPoint ZELGenCylinderSection::GetSurfacePoint(const ZELMathVector2D& position,
                                                   const ZELMathVector2D& direction) const
{
    const double angle = position.GetY() / kRadius;
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    const double axisZ = kTopZ - kRadius;
    return ZELGenPoint(ZELMathPoint(kCentreX + position.GetX(), kCentreY + kRadius * sine, axisZ + kRadius * cosine),
                       ZELMathVector(direction.GetX(), direction.GetY() * cosine, -direction.GetY() * sine),
                       ZELMathVector(0.0, sine, cosine));
}
