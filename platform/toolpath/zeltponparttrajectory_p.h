#ifndef ZELTPONPARTTRAJECTORY_P_H
#define ZELTPONPARTTRAJECTORY_P_H

#include "zeltponparttrajectory.h"
#include "zeltptrajectory_p.h"

#include <limits>

class ZELTPOnPartTrajectoryPrivate : public ZELTPTrajectoryPrivate
{
    Q_DECLARE_PUBLIC(ZELTPOnPartTrajectory)

public:
    explicit ZELTPOnPartTrajectoryPrivate(ZELTPOnPartTrajectory* q)
        : ZELTPTrajectoryPrivate(q)
    {
    }

    Kind GetKind() const override { return OnPartKind; }
    //! After the base fields: forward tilt, side tilt, smoothing angle.
    void SaveFields(QDataStream& stream) const override;
    void LoadFields(QDataStream& stream) override;

    double forwardTilt = std::numeric_limits<double>::quiet_NaN();
    double sideTilt = std::numeric_limits<double>::quiet_NaN();
    double smoothingAngle = std::numeric_limits<double>::quiet_NaN();
};

#endif // ZELTPONPARTTRAJECTORY_P_H
