#ifndef ZELGENFLATPANEL_H
#define ZELGENFLATPANEL_H

#include "zelgeneration_export.h"

#include "zelgendevelopedpart.h"

/*!
    A flat panel, 3000 mm along machine X by 1500 mm along Y, lying
    horizontally with its normal up (+Z). The course plane is the panel
    itself.
*/
class ZELGENERATION_EXPORT ZELGenFlatPanel : public ZELGenDevelopedPart
{
public:
    ZELGenFlatPanel();

    QString GetName() const override;
    QString GetPropagation() const override;
    ZELGenPoint GetSurfacePoint(const ZELMathVector2D& position, const ZELMathVector2D& direction) const override;
};

#endif // ZELGENFLATPANEL_H
