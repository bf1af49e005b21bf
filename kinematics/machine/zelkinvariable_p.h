#ifndef ZELKINVARIABLE_P_H
#define ZELKINVARIABLE_P_H

#include "zelkinvariable.h"
#include "zelkinresource_p.h"

#include "zelkinmachine.h"
#include "zelkinweaklink_p.h"

#include <limits>

class ZELKinVariablePrivate : public ZELKinResourcePrivate
{
    Q_DECLARE_PUBLIC(ZELKinVariable)

public:
    explicit ZELKinVariablePrivate(ZELKinVariable* q)
        : ZELKinResourcePrivate(q)
    {
    }

    ZELKinWeakLink<ZELKinMachine> machine;
    ZELKinVariable::VariableType type = ZELKinVariable::Linear;
    double minimum = std::numeric_limits<double>::quiet_NaN();
    double maximum = std::numeric_limits<double>::quiet_NaN();
    double maxVelocity = std::numeric_limits<double>::quiet_NaN();
    double maxAcceleration = std::numeric_limits<double>::quiet_NaN();
};

#endif // ZELKINVARIABLE_P_H
