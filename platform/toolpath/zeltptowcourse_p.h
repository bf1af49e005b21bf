#ifndef ZELTPTOWCOURSE_P_H
#define ZELTPTOWCOURSE_P_H

#include "zeltptowcourse.h"
#include "zeltpcourse_p.h"

#include "zeltppoint.h"
#include "zeltptrajectorylist_p.h"

class ZELTPTowCoursePrivate : public ZELTPCoursePrivate
{
    Q_DECLARE_PUBLIC(ZELTPTowCourse)

public:
    //! The shortest chain that has an approach, a roll-in, a roll-out and a
    //! retract.
    static constexpr int MinimumChainLength = 4;

    explicit ZELTPTowCoursePrivate(ZELTPTowCourse* q)
        : ZELTPCoursePrivate(q)
        , trajectories(q)
    {
    }

    //! The trajectory at `index` of the chain, counted from the back for a
    //! negative index; null for a chain shorter than MinimumChainLength.
    ZELTPTrajectory* ChainMember(int index) const;

    ZELCompTowMask usedTowMask;
    ZELTPMachineConfiguration machineConfiguration;
    QList<double> towLengths;
    ZELTPTrajectoryList trajectories;
    ZELTPLink<ZELTPPoint> rollInPoint;
    ZELTPLink<ZELTPPoint> rollOutPoint;
};

#endif // ZELTPTOWCOURSE_P_H
