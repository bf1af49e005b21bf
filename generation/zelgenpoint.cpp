#include "zelgenpoint.h"

ZELGenPoint::ZELGenPoint(const ZELMathPoint& origin, const ZELMathVector& travel, const ZELMathVector& normal)
    : m_origin(origin)
    , m_travel(travel)
    , m_normal(normal)
{
}

ZELGenPoint ZELGenPoint::GetLifted(double distance) const
{
    return ZELGenPoint(m_origin + distance * m_normal, m_travel, m_normal);
}

ZELGenPoint ZELGenPoint::GetAtHeight(double z) const
{
    return ZELGenPoint(ZELMathPoint(m_origin.GetX(), m_origin.GetY(), z), m_travel, m_normal);
}
