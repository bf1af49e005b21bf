#ifndef ZELTPTRAJECTORY_H
#define ZELTPTRAJECTORY_H

#include "zeltoolpath_export.h"

#include <QList>
#include <QtGlobal>

#include <memory>

class ZELGeoGeometry;
class ZELTPPoint;
class ZELTPTrajectoryPrivate;

/*!
    One run of toolpath points that the machine moves along at one feed rate
    (mm/min). A plain trajectory moves off the part (an approach, retract,
    link or probing move); ZELTPOnPartTrajectory and its subclass
    ZELTPTowTrajectory run on the part. Tell the kinds apart with
    dynamic_cast.

    A trajectory is not a geometry: it lives inside the course, course link
    or probing procedure that it was added to (its owner), which deletes it
    and saves it within its own record; until then its creator owns it. It holds its points by plain
    pointers; the points themselves live in the container. A point destroyed
    while the trajectory holds it leaves the trajectory.

    ZELTPTrajectory owns the private object of its class tree: the
    most-derived constructor allocates its own private class and hands it
    down through the protected constructor.
*/
class ZELTOOLPATH_EXPORT ZELTPTrajectory
{
public:
    //! A trajectory without points or owner, at `feedrate` (mm/min).
    explicit ZELTPTrajectory(double feedrate);
    //! Leaves the trajectory's points without it.
    virtual ~ZELTPTrajectory();

    //! The feed rate (mm/min).
    double GetFeedrate() const;

    int GetNumPoints() const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the points.
    ZELTPPoint* GetPoint(int index) const;
    //! The points in moving order; never holds null.
    const QList<ZELTPPoint*>& GetPoints() const;
    //! The index of the first entry that is `point`, or -1.
    int IndexOfPoint(const ZELTPPoint* point) const;
    //! Appends `point` and makes this trajectory the point's trajectory. The
    //! same point may be added to several trajectories (and more than once to
    //! one). Marks the owner modified. Throws ZELSysException "cannot add a
    //! null point to a trajectory" for a null point.
    void AddPoint(ZELTPPoint* point);

    //! The course, course link or probing procedure that owns the
    //! trajectory; null until it is added to one.
    ZELGeoGeometry* GetOwner() const;

protected:
    explicit ZELTPTrajectory(ZELTPTrajectoryPrivate* d);

    std::unique_ptr<ZELTPTrajectoryPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELTPTrajectory)
    Q_DISABLE_COPY_MOVE(ZELTPTrajectory)
};

#endif // ZELTPTRAJECTORY_H
