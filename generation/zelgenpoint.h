#ifndef ZELGENPOINT_H
#define ZELGENPOINT_H

#include "zelgeneration_export.h"

#include <zelmathpoint.h>
#include <zelmathvector.h>

/*!
    One point of a toolpath: where the compaction point is to be (mm) and the
    head's directions there, the unit direction of travel and the unit
    surface normal pointing out of the part towards the head, perpendicular
    to each other. Nothing here throws.
*/
class ZELGENERATION_EXPORT ZELGenPoint
{
public:
    ZELGenPoint(const ZELMathPoint& origin, const ZELMathVector& travel, const ZELMathVector& normal);

    ZELMathPoint GetOrigin() const { return m_origin; }
    ZELMathVector GetTravel() const { return m_travel; }
    ZELMathVector GetNormal() const { return m_normal; }

    //! The point moved `distance` mm along its normal, directions kept.
    ZELGenPoint GetLifted(double distance) const;
    //! The point moved straight up or down to the height `z` (mm), directions kept.
    ZELGenPoint GetAtHeight(double z) const;

private:
    ZELMathPoint m_origin;
    ZELMathVector m_travel;
    ZELMathVector m_normal;
};

#endif // ZELGENPOINT_H
