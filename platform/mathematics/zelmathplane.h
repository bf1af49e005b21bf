#ifndef ZELMATHPLANE_H
#define ZELMATHPLANE_H

#include "zelmathematics_export.h"
#include "zelmathpoint.h"
#include "zelmathvector.h"
#include "zelmathvector2d.h"

#include <QtGlobal>

QT_FORWARD_DECLARE_CLASS(QDataStream)

class ZELMathAxis;

/*!
    An oriented plane: an origin, a unit normal, and an in-plane basis
    (x direction, y direction) that gives the plane its 2-D coordinates.

    The basis is right-handed with the normal: x cross y is the normal.
    Coordinates are in millimetres. Only the public constructors throw, as
    each says; nothing else declared here does.
*/
class ZELMATHEMATICS_EXPORT ZELMathPlane
{
public:
    //! Project() found an in-plane part and wrote its coordinates.
    static constexpr int kProjected = 0;
    //! Project() was given a vector along the normal (or the zero vector),
    //! which has no direction in the plane; it wrote (0, 0).
    static constexpr int kAlongNormal = 1;

    //! The world xy plane through the origin: normal (0,0,1), x (1,0,0), y (0,1,0).
    ZELMathPlane() = default;

    /*!
        The plane through origin with the given normal (any length; it is
        normalised). The x direction is the part perpendicular to the normal of
        the world axis least aligned with it (X before Y before Z on a tie), so
        the same normal always gives the same basis and (0,0,1) gives the world
        xy basis exactly. y is normal cross x.

        Throws ZELSysException "plane normal has zero length" for a zero normal.
    */
    ZELMathPlane(const ZELMathPoint& origin, const ZELMathVector& normal);

    /*!
        The plane through origin with the given normal, whose x direction is
        the part of xDirection perpendicular to the normal, normalised; y is
        normal cross x.

        Throws ZELSysException "plane normal has zero length" for a zero normal,
        and "plane x direction is parallel to the normal" when the perpendicular
        part of xDirection is at most 1e-12 of its length (a zero xDirection included).
    */
    ZELMathPlane(const ZELMathPoint& origin, const ZELMathVector& normal,
                 const ZELMathVector& xDirection);

    ZELMathPoint GetOrigin() const { return m_origin; }
    ZELMathVector GetNormal() const { return m_normal; }
    ZELMathVector GetXDirection() const { return m_xDirection; }
    ZELMathVector GetYDirection() const { return m_yDirection; }

    /*!
        The 2-D coordinates of a direction in this plane: (vector . x, vector . y).
        The origin is not subtracted, because a direction has no position.

        Returns kProjected (0) on success. Returns kAlongNormal (1), and sets
        result to (0, 0), when the vector's in-plane part is at most 1e-12 of
        its length, or the vector is zero: such a vector has no direction in
        the plane to speak of. Does not throw.
    */
    int Project(const ZELMathVector& vector, ZELMathVector2D& result) const;

private:
    friend class ZELMathAxis;
    friend ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathPlane& plane);

    //! Takes the directions as they are: a frame's plane must carry the
    //! frame's own directions, bit for bit.
    ZELMathPlane(const ZELMathPoint& origin, const ZELMathVector& normal,
                 const ZELMathVector& xDirection, const ZELMathVector& yDirection);

    ZELMathPoint m_origin;
    ZELMathVector m_normal = ZELMathVector(0.0, 0.0, 1.0);
    ZELMathVector m_xDirection = ZELMathVector(1.0, 0.0, 0.0);
    ZELMathVector m_yDirection = ZELMathVector(0.0, 1.0, 0.0);
};

//! Writes origin, normal, x direction, y direction (12 doubles).
ZELMATHEMATICS_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELMathPlane& plane);
//! Reads what operator<< wrote, as it is: nothing is normalised, and a
//! truncated stream leaves QDataStream's zeros.
ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathPlane& plane);

#endif // ZELMATHPLANE_H
