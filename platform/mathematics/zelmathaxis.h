#ifndef ZELMATHAXIS_H
#define ZELMATHAXIS_H

#include "zelmathematics_export.h"
#include "zelmathplane.h"
#include "zelmathpoint.h"
#include "zelmathvector.h"

#include <QtGlobal>

#include <array>
#include <cstddef>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    A frame: an origin (millimetres) and three unit directions u, v, w that
    form a right-handed set. Angles are in radians.

    The frame's rotation R is the matrix whose columns are u, v and w, so a
    frame is at once a place and a change of coordinates:

    - `parent * local` carries out to world: it takes a frame, point or vector
      given in the parent's local coordinates and returns it in world
      coordinates (origin: parent origin + R * local origin; directions and
      vectors: R * local).
    - `world / parent` expresses in local: it takes a frame, point or vector
      given in world coordinates and returns it in the parent's local
      coordinates (origin: R^T * (world origin - parent origin); directions and
      vectors: R^T * world).

    The two undo each other: parent * (world / parent) is world again and
    (parent * local) / parent is local again, to rounding, for orthonormal frames.
    Vectors are only turned, never moved.

    Axes and planes of a frame are numbered 1 to 3, cyclically. Plane 1 has
    normal w and 2-D coordinates along (u, v); plane 2 has normal u and
    coordinates along (v, w); plane 3 has normal v and coordinates along
    (w, u). Axis number k is the normal of plane k: axis 1 is w, axis 2 is u,
    axis 3 is v. A number outside 1..3 throws ZELSysOutOfBoundsException
    with the bounds [1, 3]; GetPlane() and Tilt(), which take such numbers,
    are the only calls declared here that throw.
*/
class ZELMATHEMATICS_EXPORT ZELMathAxis
{
public:
    //! The world frame: origin (0,0,0), u (1,0,0), v (0,1,0), w (0,0,1).
    ZELMathAxis() = default;

    //! The directions are normalised as SetDirections() does. Does not throw.
    ZELMathAxis(const ZELMathPoint& origin, const ZELMathVector& u, const ZELMathVector& v,
                const ZELMathVector& w);

    ZELMathPoint GetOrigin() const { return m_origin; }
    void SetOrigin(const ZELMathPoint& origin) { m_origin = origin; }

    ZELMathVector GetUDirection() const { return m_directions[kU]; }
    ZELMathVector GetVDirection() const { return m_directions[kV]; }
    ZELMathVector GetWDirection() const { return m_directions[kW]; }

    /*!
        Normalises each direction it is given (a zero vector stays zero) and
        keeps it. It does not make them perpendicular: the caller passes three
        perpendicular directions in right-handed order, and the frame
        operations assume it. Does not throw.
    */
    void SetDirections(const ZELMathVector& u, const ZELMathVector& v, const ZELMathVector& w);

    //! Carries a frame given in this frame's local coordinates out to world. Does not throw.
    ZELMathAxis operator*(const ZELMathAxis& local) const;
    //! Carries a point given in this frame's local coordinates out to world. Does not throw.
    ZELMathPoint operator*(const ZELMathPoint& local) const;
    //! Carries a vector given in this frame's local coordinates out to world
    //! (turned only). Does not throw.
    ZELMathVector operator*(const ZELMathVector& local) const;
    //! Expresses this frame, given in world coordinates, in parent's local
    //! coordinates. Does not throw.
    ZELMathAxis operator/(const ZELMathAxis& parent) const;

    //! True when the origins differ by at most tolerance millimetres in each
    //! coordinate and each pair of directions by at most tolerance in each
    //! component (a NaN never equals). Does not throw.
    bool IsEqual(const ZELMathAxis& other, double tolerance) const;

    /*!
        Plane planeNumber (1..3) of frame, through the frame's origin. Its
        normal and basis are the frame's own directions exactly as they are,
        not re-orthogonalised, so projections into it match the frame bit for bit.

        Throws ZELSysOutOfBoundsException(planeNumber, 1, 3, true, true)
        outside 1..3.
    */
    static ZELMathPlane GetPlane(const ZELMathAxis& frame, int planeNumber);

    /*!
        Turns frame in place through angle (radians) about its own axis
        axisNumber (1..3), through its own origin, right-handedly:
        counter-clockwise seen from the tip of the axis. For axis 1,
        u' = cos(a) u + sin(a) v, v' = -sin(a) u + cos(a) v, and w and the
        origin stay as they are.

        Throws ZELSysOutOfBoundsException(axisNumber, 1, 3, true, true)
        outside 1..3, leaving frame unchanged.
    */
    static void Tilt(ZELMathAxis& frame, int axisNumber, double angle);

private:
    friend ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathAxis& frame);

    static constexpr std::size_t kU = 0;
    static constexpr std::size_t kV = 1;
    static constexpr std::size_t kW = 2;

    ZELMathPoint m_origin;
    std::array<ZELMathVector, 3> m_directions = {
        ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(0.0, 0.0, 1.0)};
};

//! Expresses a point given in world coordinates in frame's local coordinates. Does not throw.
ZELMATHEMATICS_EXPORT ZELMathPoint operator/(const ZELMathPoint& world, const ZELMathAxis& frame);
//! Expresses a vector given in world coordinates in frame's local coordinates
//! (turned only). Does not throw.
ZELMATHEMATICS_EXPORT ZELMathVector operator/(const ZELMathVector& world, const ZELMathAxis& frame);

//! Writes origin, u, v, w (12 doubles).
ZELMATHEMATICS_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELMathAxis& frame);
//! Reads what operator<< wrote, as it is: nothing is normalised, and a
//! truncated stream leaves QDataStream's zeros.
ZELMATHEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELMathAxis& frame);

#endif // ZELMATHAXIS_H
