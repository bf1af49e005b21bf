#ifndef ZELTPPOINT_P_H
#define ZELTPPOINT_P_H

#include "zeltppoint.h"

#include <QVarLengthArray>

class ZELTPPointPrivate
{
    Q_DECLARE_PUBLIC(ZELTPPoint)

public:
    explicit ZELTPPointPrivate(ZELTPPoint* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELTPPointPrivate() = default;

    static ZELTPPointPrivate* get(ZELTPPoint* point) { return point->d_func(); }

    //! Called by a trajectory that adds the point, once per addition.
    void JoinTrajectory(ZELTPTrajectory* trajectory) { trajectories.append(trajectory); }
    //! Called by a trajectory that is destroyed, once per addition.
    void LeaveTrajectory(const ZELTPTrajectory* trajectory);

    ZELTPPoint* const q_ptr;
    ZELMathAxis toolFrame;
    qint32 index = -1;
    // The trajectories holding the point, once for each time one added it,
    // in the order they added it. Nearly every point has one, kept inside
    // the private object: a list of its own would cost a toolpath of
    // millions of points an allocation each.
    QVarLengthArray<ZELTPTrajectory*, 1> trajectories;
};

#endif // ZELTPPOINT_P_H
