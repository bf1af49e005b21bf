#include "zelgenflatpanel.h"

ZELGenFlatPanel::ZELGenFlatPanel()
    : ZELGenDevelopedPart(1500.0, 750.0)
{
}

QString ZELGenFlatPanel::GetName() const
{
    return QStringLiteral("flat-panel");
}

QString ZELGenFlatPanel::GetPropagation() const
{
    return QStringLiteral("angle");
}

ZELGenPoint ZELGenFlatPanel::GetSurfacePoint(const ZELMathVector2D& position, const ZELMathVector2D& direction) const
{
    return ZELGenPoint(ZELMathPoint(kCentreX + position.GetX(), kCentreY + position.GetY(), kTopZ),
                       ZELMathVector(direction.GetX(), direction.GetY(), 0.0), ZELMathVector(0.0, 0.0, 1.0));
}
