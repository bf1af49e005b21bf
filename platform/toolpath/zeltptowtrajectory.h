#ifndef ZELTPTOWTRAJECTORY_H
#define ZELTPTOWTRAJECTORY_H

#include "zeltponparttrajectory.h"

#include <zelcomptowmask.h>

#include <QList>

class ZELTPTowTrajectoryPrivate;

/*!
    An on-part trajectory that lays tows: the tows in use along it (its tow
    mask), the tows whose feed is forced (driven at a rate of their own
    rather than pulled by the part) and their rates. A course's tow
    trajectories run between its roll-in and its roll-out; the translator
    adds and cuts tows where the mask changes from one to the next.
*/
class ZELTOOLPATH_EXPORT ZELTPTowTrajectory : public ZELTPOnPartTrajectory
{
public:
    //! A trajectory without points or owner, at `feedrate` (mm/min), with
    //! the given tilts and smoothing angle (rad, NaN when not given), tow
    //! mask, forced mask and forced rates.
    ZELTPTowTrajectory(double feedrate, double forwardTilt, double sideTilt, double smoothingAngle,
                       const ZELCompTowMask& towMask, const ZELCompTowMask& forcedMask,
                       const QList<double>& forcedRates);
    ~ZELTPTowTrajectory() override;

    //! The tows laid along the trajectory.
    ZELCompTowMask GetTowMask() const;
    //! The tows whose feed is forced; only those also in the tow mask count.
    ZELCompTowMask GetForcedMask() const;
    //! One rate per tow of the mask (entry i for tow i + 1), each a fraction
    //! of the feed rate; may be empty when no tow is forced.
    QList<double> GetForcedRates() const;

protected:
    explicit ZELTPTowTrajectory(ZELTPTowTrajectoryPrivate* d);

private:
    Q_DECLARE_PRIVATE(ZELTPTowTrajectory)
};

#endif // ZELTPTOWTRAJECTORY_H
