#include "zelkintoolpathflatpanel.h"

ZELKinToolpathFlatPanel::ZELKinToolpathFlatPanel()
    : ZELKinToolpathDevelopedPart(1500.0, 750.0)
{
}

QString ZELKinToolpathFlatPanel::GetName() const
{
    return QStringLiteral("flat-panel");
}

QString ZELKinToolpathFlatPanel::GetPropagation() const
{
    return QStringLiteral("angle");
}

ZELKinToolpathPoint ZELKinToolpathFlatPanel::GetSurfacePoint(const ZELMathVector2D& position,
                                                             const ZELMathVector2D& direction) const
{
    return ZELKinToolpathPoint(ZELMathPoint(kCentreX + position.GetX(), kCentreY + position.GetY(), kTopZ),
                               ZELMathVector(direction.GetX(), direction.GetY(), 0.0),
                               ZELMathVector(0.0, 0.0, 1.0));
}
