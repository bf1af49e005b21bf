#ifndef ZELGENCYLINDERSECTION_H
#define ZELGENCYLINDERSECTION_H

#include "zelgeneration_export.h"

#include "zelgendevelopedpart.h"

/*!
    A convex section of a cylinder of radius 1500 mm whose axis runs along
    machine X: 3000 mm long and 35 degrees either side of its crest, which
    lies at the top. The course plane is the section unrolled: x along the
    axis, y the arc length around it from the crest (towards +Y), so that a
    course at a fixed angle is a helix.
*/
class ZELGENERATION_EXPORT ZELGenCylinderSection : public ZELGenDevelopedPart
{
public:
    ZELGenCylinderSection();

    QString GetName() const override;
    QString GetPropagation() const override;
    ZELGenPoint GetSurfacePoint(const ZELMathVector2D& position, const ZELMathVector2D& direction) const override;
};

#endif // ZELGENCYLINDERSECTION_H
