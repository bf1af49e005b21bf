#ifndef ZELKINVERIFIER_P_H
#define ZELKINVERIFIER_P_H

#include "zelkinruntimeestimator.h"
#include "zelkinverifier.h"
#include "zelkinverifierhead_p.h"
#include "zelkinverifyplan_p.h"

#include <QList>
#include <QString>

struct ZELKinVerifyAxes;

class ZELKinVerifierPrivate
{
    Q_DECLARE_PUBLIC(ZELKinVerifier)

public:
    ZELKinVerifierPrivate(ZELKinVerifier* q, const ZELKinAFPMachine& machine, const ZELKinVerifyGates& gates);
    virtual ~ZELKinVerifierPrivate() = default;

    //! One ply's checks and findings, kept until every ply has been checked
    //! and the verification is put together in ply order.
    struct CheckedPly
    {
        ZELKinVerifiedPly ply;
        QList<ZELKinVerifyFinding> findings;
        bool isChecked = false;
    };

    //! Reads ply `index` of `nc` and checks it against `plan` (null for
    //! none), after the finding `pairing` when it has one.
    void CheckPly(const ZELKinVerifier::NCSource& nc, int index, const ZELKinProcedurePlan* plan,
                  const ZELKinVerifyFinding* pairing, const ZELKinVerifyAxes& axes,
                  const ZELKinVerifier::PlyHandler& handler, CheckedPly& checked) const;

    ZELKinVerifier* const q_ptr;
    //! The machine's kinematics as the checks follow them.
    const ZELKinVerifierHead head;
    const ZELKinAFPMachine& machine;
    const ZELKinVerifyGates gates;
    const ZELKinRunTimeEstimator runTime;
    bool keepLines = true;
};

#endif // ZELKINVERIFIER_P_H
