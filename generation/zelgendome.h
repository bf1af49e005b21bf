#ifndef ZELGENDOME_H
#define ZELGENDOME_H

#include "zelgeneration_export.h"

#include "zelgenpart.h"

/*!
    A spherical cap: a sphere of radius 2500 mm cut 30 degrees around its
    top, which lies at the top of the part. The course plane is the
    horizontal plane seen from above, so that a course is the cut of the
    sphere by a vertical plane and the courses of a ply lie in parallel
    planes. The boundary is the circle the cap's rim makes in it.
*/
class ZELGENERATION_EXPORT ZELGenDome : public ZELGenPart
{
public:
    QString GetName() const override;
    QString GetPropagation() const override;
    ZELGenPoint GetSurfacePoint(const ZELMathVector2D& position, const ZELMathVector2D& direction) const override;
    double GetLength(const ZELMathVector2D& from, const ZELMathVector2D& to) const override;
    std::optional<Range> GetCrossing(const ZELMathVector2D& position, const ZELMathVector2D& direction) const override;
    Range GetExtent(const ZELMathVector2D& across) const override;
    QList<ZELMathVector2D> GetProbeTargets() const override;
};

#endif // ZELGENDOME_H
