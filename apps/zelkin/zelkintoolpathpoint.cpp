#include "zelkintoolpathpoint.h"

ZELKinToolpathPoint::ZELKinToolpathPoint(const ZELMathPoint& origin, const ZELMathVector& travel,
                                         const ZELMathVector& normal)
    : m_origin(origin)
    , m_travel(travel)
    , m_normal(normal)
{
}

ZELKinToolpathPoint ZELKinToolpathPoint::GetLifted(double distance) const
{
    return ZELKinToolpathPoint(m_origin + distance * m_normal, m_travel, m_normal);
}

ZELKinToolpathPoint ZELKinToolpathPoint::GetAtHeight(double z) const
{
    return ZELKinToolpathPoint(ZELMathPoint(m_origin.GetX(), m_origin.GetY(), z), m_travel, m_normal);
}
