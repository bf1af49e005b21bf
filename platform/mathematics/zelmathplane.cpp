#include "zelmathplane.h"

#include "zelsysexception.h"

#include <QDataStream>

#include <cmath>

namespace {

// Below this ratio of in-plane length to length, a vector counts as lying
// along the normal: rounding alone leaves a few 1e-16 there, and a direction
// made from such a residue would be noise.
constexpr double kAlongNormalRatio = 1e-12;

bool IsAlongNormal(double inPlaneLength, double length)
{
    return inPlaneLength <= kAlongNormalRatio * length;
}

ZELMathVector UnitNormal(const ZELMathVector& normal)
{
    if (normal.GetLength() == 0.0)
        throw ZELSysException(QStringLiteral("plane normal has zero length"));
    return normal.GetNormalized();
}

// Only the ratios of the normal's components matter here, so it need not be unit.
ZELMathVector LeastAlignedWorldAxis(const ZELMathVector& normal)
{
    const double x = std::abs(normal.GetX());
    const double y = std::abs(normal.GetY());
    const double z = std::abs(normal.GetZ());
    if (x <= y && x <= z)
        return ZELMathVector(1.0, 0.0, 0.0);
    if (y <= z)
        return ZELMathVector(0.0, 1.0, 0.0);
    return ZELMathVector(0.0, 0.0, 1.0);
}

ZELMathVector PerpendicularUnit(const ZELMathVector& direction, const ZELMathVector& unitNormal)
{
    const ZELMathVector perpendicular = direction - direction.Dot(unitNormal) * unitNormal;
    if (IsAlongNormal(perpendicular.GetLength(), direction.GetLength()))
        throw ZELSysException(QStringLiteral("plane x direction is parallel to the normal"));
    return perpendicular.GetNormalized();
}

} // namespace

ZELMathPlane::ZELMathPlane(const ZELMathPoint& origin, const ZELMathVector& normal)
    : ZELMathPlane(origin, normal, LeastAlignedWorldAxis(normal))
{
}

ZELMathPlane::ZELMathPlane(const ZELMathPoint& origin, const ZELMathVector& normal,
                           const ZELMathVector& xDirection)
    : m_origin(origin)
    , m_normal(UnitNormal(normal))
    , m_xDirection(PerpendicularUnit(xDirection, m_normal))
    , m_yDirection(m_normal.Cross(m_xDirection))
{
}

ZELMathPlane::ZELMathPlane(const ZELMathPoint& origin, const ZELMathVector& normal,
                           const ZELMathVector& xDirection, const ZELMathVector& yDirection)
    : m_origin(origin)
    , m_normal(normal)
    , m_xDirection(xDirection)
    , m_yDirection(yDirection)
{
}

int ZELMathPlane::Project(const ZELMathVector& vector, ZELMathVector2D& result) const
{
    // The cross product with the unit normal has the length of the in-plane
    // part, without the cancellation of subtracting the normal part.
    if (IsAlongNormal(m_normal.Cross(vector).GetLength(), vector.GetLength())) {
        result = ZELMathVector2D();
        return kAlongNormal;
    }
    result = ZELMathVector2D(vector.Dot(m_xDirection), vector.Dot(m_yDirection));
    return kProjected;
}

QDataStream& operator<<(QDataStream& stream, const ZELMathPlane& plane)
{
    return stream << plane.GetOrigin() << plane.GetNormal() << plane.GetXDirection()
                  << plane.GetYDirection();
}

QDataStream& operator>>(QDataStream& stream, ZELMathPlane& plane)
{
    return stream >> plane.m_origin >> plane.m_normal >> plane.m_xDirection >> plane.m_yDirection;
}
