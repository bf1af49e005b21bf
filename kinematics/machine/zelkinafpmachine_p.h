#ifndef ZELKINAFPMACHINE_P_H
#define ZELKINAFPMACHINE_P_H

#include "zelkinafpmachine.h"
#include "zelkinmachine_p.h"

class ZELKinAFPMachinePrivate : public ZELKinMachinePrivate
{
    Q_DECLARE_PUBLIC(ZELKinAFPMachine)

public:
    explicit ZELKinAFPMachinePrivate(ZELKinAFPMachine* q)
        : ZELKinMachinePrivate(q)
    {
    }

    ZELCompTowMask maximumMask;
    double rollerRadius = 0.0;
    QString materialVariable;
    double towWidth = 0.0;
    double addDistance = 0.0;
    double addPinch = 0.0;
    double cutDistance = 0.0;
    double headTravel = 0.0;
};

#endif // ZELKINAFPMACHINE_P_H
