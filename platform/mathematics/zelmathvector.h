#ifndef ZELMATHVECTOR_H
#define ZELMATHVECTOR_H

#include "zelmathematics_export.h"

#include <QtGlobal>

#include <cmath>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    A direction or displacement in space, with components x, y, z.

    A length is in millimetres when the vector is a displacement; a direction
    is unitless. Angles are in radians. Nothing declared here throws: a
    division by zero gives infinities or NaNs as IEEE arithmetic does.
*/
class ZELMathVector
{
public:
    //! The zero vector.
    ZELMathVector() = default;
    ZELMathVector(double x, double y, double z)
        : m_x(x)
        , m_y(y)
        , m_z(z)
    {
    }

    double GetX() const { return m_x; }
    double GetY() const { return m_y; }
    double GetZ() const { return m_z; }
    void SetX(double x) { m_x = x; }
    void SetY(double y) { m_y = y; }
    void SetZ(double z) { m_z = z; }

    ZELMathVector operator-() const { return ZELMathVector(-m_x, -m_y, -m_z); }

    ZELMathVector& operator+=(const ZELMathVector& other)
    {
        m_x += other.m_x;
        m_y += other.m_y;
        m_z += other.m_z;
        return *this;
    }

    ZELMathVector& operator-=(const ZELMathVector& other)
    {
        m_x -= other.m_x;
        m_y -= other.m_y;
        m_z -= other.m_z;
        return *this;
    }

    ZELMathVector& operator*=(double factor)
    {
        m_x *= factor;
        m_y *= factor;
        m_z *= factor;
        return *this;
    }

    ZELMathVector& operator/=(double divisor)
    {
        m_x /= divisor;
        m_y /= divisor;
        m_z /= divisor;
        return *this;
    }

    double Dot(const ZELMathVector& other) const
    {
        return m_x * other.m_x + m_y * other.m_y + m_z * other.m_z;
    }

    ZELMathVector Cross(const ZELMathVector& other) const
    {
        return ZELMathVector(m_y * other.m_z - m_z * other.m_y, m_z * other.m_x - m_x * other.m_z,
                             m_x * other.m_y - m_y * other.m_x);
    }

    double GetLength() const { return std::sqrt(Dot(*this)); }

    //! This vector scaled to unit length. A vector without length (the zero
    //! vector) comes back unchanged, so that callers never see NaNs from it.
    ZELMathVector GetNormalized() const
    {
        const double length = GetLength();
        if (length == 0.0)
            return *this;
        return ZELMathVector(m_x / length, m_y / length, m_z / length);
    }

    //! The unsigned angle between the two vectors in [0, pi]; 0 when either is
    //! the zero vector. atan2 of the cross and dot products keeps angles near
    //! 0 and pi accurate, where an arc cosine of the dot product loses half the digits.
    double GetAngleTo(const ZELMathVector& other) const
    {
        if (IsZero() || other.IsZero())
            return 0.0;
        return std::atan2(Cross(other).GetLength(), Dot(other));
    }

    //! True when every component differs by at most tolerance (a NaN never equals).
    bool IsEqual(const ZELMathVector& other, double tolerance) const
    {
        return std::abs(m_x - other.m_x) <= tolerance && std::abs(m_y - other.m_y) <= tolerance
            && std::abs(m_z - other.m_z) <= tolerance;
    }

private:
    bool IsZero() const { return m_x == 0.0 && m_y == 0.0 && m_z == 0.0; }

    double m_x = 0.0;
    double m_y = 0.0;
    double m_z = 0.0;
};

inline ZELMathVector operator+(ZELMathVector left, const ZELMathVector& right)
{
    return left += right;
}

inline ZELMathVector operator-(ZELMathVector left, const ZELMathVector& right)
{
    return left -= right;
}

inline ZELMathVector operator*(ZELMathVector vector, double factor)
{
    return vector *= factor;
}

inline ZELMathVector operator*(double factor, ZELMathVector vector)
{
    return vector *= factor;
}

inline ZELMathVector operator/(ZELMathVector vector, double divisor)
{
    return vector /= divisor;
}

//! Writes x, y, z as doubles.
ZELMATHEMATICS_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELMathVector& vector);
//! Reads x, y, z as written; a truncated stream leaves QDataStream's zeros.
ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathVector& vector);

#endif // ZELMATHVECTOR_H
