#ifndef ZELKINTOOLPATHFLATPANEL_H
#define ZELKINTOOLPATHFLATPANEL_H

#include "zelkintoolpathdevelopedpart.h"

/*!
    A flat panel, 3000 mm along machine X by 1500 mm along Y, lying
    horizontally with its normal up (+Z). The course plane is the panel
    itself.
*/
class ZELKinToolpathFlatPanel : public ZELKinToolpathDevelopedPart
{
public:
    ZELKinToolpathFlatPanel();

    QString GetName() const override;
    QString GetPropagation() const override;
    ZELKinToolpathPoint GetSurfacePoint(const ZELMathVector2D& position,
                                        const ZELMathVector2D& direction) const override;
};

#endif // ZELKINTOOLPATHFLATPANEL_H
