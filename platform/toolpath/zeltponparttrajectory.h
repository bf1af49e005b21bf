#ifndef ZELTPONPARTTRAJECTORY_H
#define ZELTPONPARTTRAJECTORY_H

#include "zeltptrajectory.h"

class ZELTPOnPartTrajectoryPrivate;

/*!
    A trajectory on the part, along which the roller presses on the surface:
    a course's roll-in and roll-out and, through ZELTPTowTrajectory, the runs
    that lay tows. Besides the feed rate it carries how far the tool leans
    from the surface normal, forward (along the direction of travel) and
    sideways, and the angle by which the controller may smooth the path.
    All angles are in radians; NaN stands for a value that the toolpath does
    not give.
*/
class ZELTOOLPATH_EXPORT ZELTPOnPartTrajectory : public ZELTPTrajectory
{
public:
    //! A trajectory without points or owner, at `feedrate` (mm/min), with
    //! the given tilts and smoothing angle (rad, NaN when not given).
    ZELTPOnPartTrajectory(double feedrate, double forwardTilt, double sideTilt, double smoothingAngle);
    ~ZELTPOnPartTrajectory() override;

    //! The forward tilt (rad); NaN when not given.
    double GetForwardTilt() const;
    //! The side tilt (rad); NaN when not given.
    double GetSideTilt() const;
    //! The smoothing angle (rad); NaN when not given.
    double GetSmoothingAngle() const;

protected:
    explicit ZELTPOnPartTrajectory(ZELTPOnPartTrajectoryPrivate* d);

private:
    Q_DECLARE_PRIVATE(ZELTPOnPartTrajectory)
};

#endif // ZELTPONPARTTRAJECTORY_H
