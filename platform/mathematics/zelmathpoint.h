#ifndef ZELMATHPOINT_H
#define ZELMATHPOINT_H

#include "zelmathematics_export.h"
#include "zelmathvector.h"

#include <QtGlobal>

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
        : m_fromOrigin(x, y, z)
    {
    }

    double GetX() const { return m_fromOrigin.GetX(); }
    double GetY() const { return m_fromOrigin.GetY(); }
    double GetZ() const { return m_fromOrigin.GetZ(); }
    void SetX(double x) { m_fromOrigin.SetX(x); }
    void SetY(double y) { m_fromOrigin.SetY(y); }
    void SetZ(double z) { m_fromOrigin.SetZ(z); }

    ZELMathPoint& operator+=(const ZELMathVector& offset)
    {
        m_fromOrigin += offset;
        return *this;
    }

    ZELMathPoint& operator-=(const ZELMathVector& offset)
    {
        m_fromOrigin -= offset;
        return *this;
    }

    //! The vector from other to this point.
    ZELMathVector operator-(const ZELMathPoint& other) const
    {
        return m_fromOrigin - other.m_fromOrigin;
    }

    //! The distance in millimetres.
    double GetDistanceTo(const ZELMathPoint& other) const { return (*this - other).GetLength(); }

    //! True when every coordinate differs by at most tolerance millimetres (a NaN never equals).
    bool IsEqual(const ZELMathPoint& other, double tolerance) const
    {
        return m_fromOrigin.IsEqual(other.m_fromOrigin, tolerance);
    }

private:
    friend ZELMATHEMATICS_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELMathPoint& point);
    friend ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathPoint& point);

    // A point's coordinates are those of its displacement from the origin;
    // keeping them as that vector lets the point reuse the vector's arithmetic.
    ZELMathVector m_fromOrigin;
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
