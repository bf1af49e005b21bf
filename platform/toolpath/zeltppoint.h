#ifndef ZELTPPOINT_H
#define ZELTPPOINT_H

#include "zeltoolpath_export.h"

#include <zelgeogeometry.h>
#include <zelmathaxis.h>
#include <zelmathpoint.h>

#include <memory>

class ZELTPPointPrivate;
class ZELTPTrajectory;

/*!
    One point of a toolpath: where the tool is to be and how it is turned
    there, as a tool frame. The frame's origin is the compaction point on the
    part (mm), its first direction (u) the direction of travel and its third
    (w) the surface normal; the wrist solver turns it into axis values. The
    position command that realises the point links back to it.

    A point on the part carries its index along its course, counted from 0
    in laying order; points off the part (ZELTPOffPartPoint) and points not
    yet numbered carry -1.

    Trajectories hold points by plain pointers and the point knows the
    trajectories that hold it: a destroyed point leaves every trajectory that
    held it, and a destroyed trajectory leaves its points without it.

    ZELTPPoint owns the private object of its class tree: the most-derived
    constructor allocates its own private class and hands it down.

    Record: the geometry part, then the tool frame (ZELMathAxis stream form:
    origin, u, v, w), then the index (qint32). The trajectory is not saved:
    the trajectory's owner restores it when it loads.
*/
class ZELTOOLPATH_EXPORT ZELTPPoint : public ZELGeoGeometry
{
    Q_OBJECT

public:
    //! Loading constructor: the world frame and index -1 until Load.
    Q_INVOKABLE ZELTPPoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the point in `container` (null for one outside any container),
    //! with index -1.
    ZELTPPoint(ZELGeoContainer* container, const ZELMathAxis& toolFrame);
    //! Leaves every trajectory that holds the point.
    ~ZELTPPoint() override;

    //! The tool frame, copied out; the world frame by default.
    ZELMathAxis GetToolFrame() const;
    //! Keeps a copy of the frame as it is given (not re-normalised).
    void SetToolFrame(const ZELMathAxis& toolFrame);
    //! Where the tool tip is to be (mm): the tool frame's origin.
    ZELMathPoint GetTipCoordinates() const;

    //! The index of an on-part point along its course, from 0; -1 by default
    //! and for points that have none.
    int GetIndex() const;
    void SetIndex(int index);

    //! The trajectory that holds the point: the one that added it last when
    //! two trajectories share it (a trajectory's last point is usually the
    //! next one's first). Null until a trajectory adds it, and again when
    //! every trajectory that held it is gone.
    const ZELTPTrajectory* GetTrajectory() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPPoint(ZELTPPointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

    std::unique_ptr<ZELTPPointPrivate> const d_ptr;

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPPoint)
    Q_DISABLE_COPY_MOVE(ZELTPPoint)
};

#endif // ZELTPPOINT_H
