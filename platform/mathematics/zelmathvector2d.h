#ifndef ZELMATHVECTOR2D_H
#define ZELMATHVECTOR2D_H

#include "zelmathematics_export.h"

#include <QtGlobal>

#include <cmath>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    A vector in the 2-D coordinates of a plane, with components x and y.

    Lengths are in millimetres for displacements, angles in radians. Nothing
    declared here throws.
*/
class ZELMathVector2D
{
public:
    //! The zero vector.
    ZELMathVector2D() = default;
    ZELMathVector2D(double x, double y)
        : m_x(x)
        , m_y(y)
    {
    }

    double GetX() const { return m_x; }
    double GetY() const { return m_y; }
    void SetX(double x) { m_x = x; }
    void SetY(double y) { m_y = y; }

    double Dot(const ZELMathVector2D& other) const { return m_x * other.m_x + m_y * other.m_y; }

    //! The z component of the 3-D cross product: positive when other lies
    //! counter-clockwise of this vector.
    double Cross(const ZELMathVector2D& other) const { return m_x * other.m_y - m_y * other.m_x; }

    double GetLength() const { return std::sqrt(Dot(*this)); }

    //! The signed angle that turns this vector onto other, counter-clockwise
    //! positive, in (-pi, pi]. Opposite vectors give +pi whatever the sign of
    //! a zero component, and 0 comes back when either vector is zero.
    double GetAngleTo(const ZELMathVector2D& other) const
    {
        if (IsZero() || other.IsZero())
            return 0.0;
        const double angle = std::atan2(Cross(other), Dot(other));
        // atan2 answers -pi for a cross product of -0.0 with a negative dot product.
        return angle == -kPi ? kPi : angle;
    }

    //! True when both components differ by at most tolerance (a NaN never equals).
    bool IsEqual(const ZELMathVector2D& other, double tolerance) const
    {
        return std::abs(m_x - other.m_x) <= tolerance && std::abs(m_y - other.m_y) <= tolerance;
    }

private:
    static constexpr double kPi = 3.14159265358979323846;

    bool IsZero() const { return m_x == 0.0 && m_y == 0.0; }

    double m_x = 0.0;
    double m_y = 0.0;
};

//! Writes x, y as doubles.
ZELMATHEMATICS_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELMathVector2D& vector);
//! Reads x, y as written; a truncated stream leaves QDataStream's zeros.
ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathVector2D& vector);

#endif // ZELMATHVECTOR2D_H
