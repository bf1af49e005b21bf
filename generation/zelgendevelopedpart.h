#ifndef ZELGENDEVELOPEDPART_H
#define ZELGENDEVELOPEDPART_H

#include "zelgeneration_export.h"

#include "zelgenpart.h"

/*!
    A part whose surface unrolls flat without stretching (a plane, a
    cylinder), with its course plane as the unrolled surface: a course is a
    straight line there, lengths on the surface are lengths in the course
    plane, and the boundary is a rectangle centred on the course plane's
    origin. Its probing targets stand beyond three of its corners' sides.
*/
class ZELGENERATION_EXPORT ZELGenDevelopedPart : public ZELGenPart
{
public:
    double GetLength(const ZELMathVector2D& from, const ZELMathVector2D& to) const override;
    std::optional<Range> GetCrossing(const ZELMathVector2D& position, const ZELMathVector2D& direction) const override;
    Range GetExtent(const ZELMathVector2D& across) const override;
    QList<ZELMathVector2D> GetProbeTargets() const override;

protected:
    //! The boundary reaches `halfLength` mm either way along course-plane x
    //! and `halfWidth` mm along y.
    ZELGenDevelopedPart(double halfLength, double halfWidth);

private:
    double m_halfLength;
    double m_halfWidth;
};

#endif // ZELGENDEVELOPEDPART_H
