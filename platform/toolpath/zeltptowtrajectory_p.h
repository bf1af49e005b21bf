#ifndef ZELTPTOWTRAJECTORY_P_H
#define ZELTPTOWTRAJECTORY_P_H

#include "zeltptowtrajectory.h"
#include "zeltponparttrajectory_p.h"

class ZELTPTowTrajectoryPrivate : public ZELTPOnPartTrajectoryPrivate
{
    Q_DECLARE_PUBLIC(ZELTPTowTrajectory)

public:
    explicit ZELTPTowTrajectoryPrivate(ZELTPTowTrajectory* q)
        : ZELTPOnPartTrajectoryPrivate(q)
    {
    }

    Kind GetKind() const override { return TowKind; }
    //! After the on-part fields: tow mask, forced mask (their stream form),
    //! forced rates (count as qint32, then one double each).
    void SaveFields(QDataStream& stream) const override;
    //! A rate count larger than the rates present stops at the end of the
    //! record.
    void LoadFields(QDataStream& stream) override;

    ZELCompTowMask towMask;
    ZELCompTowMask forcedMask;
    QList<double> forcedRates;
};

#endif // ZELTPTOWTRAJECTORY_P_H
