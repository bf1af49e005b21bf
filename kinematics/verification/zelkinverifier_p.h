#ifndef ZELKINVERIFIER_P_H
#define ZELKINVERIFIER_P_H

#include "zelkinruntimeestimator.h"
#include "zelkinverifier.h"
#include "zelkinverifierhead_p.h"

class ZELKinVerifierPrivate
{
    Q_DECLARE_PUBLIC(ZELKinVerifier)

public:
    ZELKinVerifierPrivate(ZELKinVerifier* q, const ZELKinAFPMachine& machine, const ZELKinVerifyGates& gates);
    virtual ~ZELKinVerifierPrivate() = default;

    ZELKinVerifier* const q_ptr;
    //! The machine's kinematics as the checks follow them.
    const ZELKinVerifierHead head;
    const ZELKinAFPMachine& machine;
    const ZELKinVerifyGates gates;
    const ZELKinRunTimeEstimator runTime;
};

#endif // ZELKINVERIFIER_P_H
