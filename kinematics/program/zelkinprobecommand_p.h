#ifndef ZELKINPROBECOMMAND_P_H
#define ZELKINPROBECOMMAND_P_H

#include "zelkinprobecommand.h"
#include "zelkincommand_p.h"

#include <limits>

class ZELKINEMATICS_EXPORT ZELKinProbeCommandPrivate : public ZELKinCommandPrivate
{
    Q_DECLARE_PUBLIC(ZELKinProbeCommand)

public:
    explicit ZELKinProbeCommandPrivate(ZELKinProbeCommand* q)
        : ZELKinCommandPrivate(q)
    {
    }

    ZELKinProbeCommand::TargetShape targetShape = ZELKinProbeCommand::Sphere;
    double diameter = std::numeric_limits<double>::quiet_NaN();
};

#endif // ZELKINPROBECOMMAND_P_H
