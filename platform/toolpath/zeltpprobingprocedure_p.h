#ifndef ZELTPPROBINGPROCEDURE_P_H
#define ZELTPPROBINGPROCEDURE_P_H

#include "zeltpprobingprocedure.h"
#include "zeltpprocedure_p.h"

#include "zeltptrajectorylist_p.h"

class ZELTPProbingProcedurePrivate : public ZELTPProcedurePrivate
{
    Q_DECLARE_PUBLIC(ZELTPProbingProcedure)

public:
    explicit ZELTPProbingProcedurePrivate(ZELTPProbingProcedure* q)
        : ZELTPProcedurePrivate(q)
        , trajectories(q)
    {
    }

    ZELTPTrajectoryList trajectories;
    QList<ZELTPProbingPoint> probingPoints;
};

#endif // ZELTPPROBINGPROCEDURE_P_H
