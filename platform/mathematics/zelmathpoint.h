#ifndef ZELMATHPOINT_H
#define ZELMATHPOINT_H

#include "zelmathematics_export.h"
#include "zelmathvector.h"

#include <QtGlobal>

#include <cmath>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    A position in space, with coordinates x, y, z in millimetres.

    Points and vectors are kept apart so that a frame moves a point with its
    origin but only turns a vector: a point plus a vector is a point, and the
    difference of two points is a vector. Nothing declared here throws.
*/
class ZELMathPoint
{
public:
    //! The origin.
    ZELMathPoint() = default;
    ZELMathPoint(double x, double y, double z)
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

    ZELMathPoint& operator+=(const ZELMathVector& offset)
    {
        m_x += offset.GetX();
        m_y += offset.GetY();
        m_z += offset.GetZ();
        return *this;
    }

    ZELMathPoint& operator-=(const ZELMathVector& offset)
    {
        m_x -= offset.GetX();
        m_y -= offset.GetY();
        m_z -= offset.GetZ();
        return *this;
    }

    //! The vector from other to this point.
    ZELMathVector operator-(const ZELMathPoint& other) const
    {
        return ZELMathVector(m_x - other.m_x, m_y - other.m_y, m_z - other.m_z);
    }

    //! The distance in millimetres.
    double GetDistanceTo(const ZELMathPoint& other) const { return (*this - other).GetLength(); }

    //! True when every coordinate differs by at most tolerance millimetres (a NaN never equals).
    bool IsEqual(const ZELMathPoint& other, double tolerance) const
    {
        return std::abs(m_x - other.m_x) <= tolerance && std::abs(m_y - other.m_y) <= tolerance
            && std::abs(m_z - other.m_z) <= tolerance;
    }

private:
    double m_x = 0.0;
    double m_y = 0.0;
    double m_z = 0.0;
};

inline ZELMathPoint operator+(ZELMathPoint point, const ZELMathVector& offset)
{
    return point += offset;
}

inline ZELMathPoint operator-(ZELMathPoint point, const ZELMathVector& offset)
{
    return point -= offset;
}

//! Writes x, y, z as doubles.
ZELMATHEMATICS_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELMathPoint& point);
//! Reads x, y, z as written; a truncated stream leaves QDataStream's zeros.
ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathPoint& point);

#endif // ZELMATHPOINT_H
