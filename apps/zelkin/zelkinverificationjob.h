#ifndef ZELKINVERIFICATIONJOB_H
#define ZELKINVERIFICATIONJOB_H

#include "zelkinverifier.h"

#include <QString>

#include <memory>

class ZELKinAFPMachine;
class ZELKinTranslationJob;

/*!
    What "verify" and "report" share: the machine and the toolpath are
    translated and solved as "post" does (the library's progress lines go to
    stderr, so that stdout stays the command's own), the posted NC is read
    back and checked against the solved program.
*/
class ZELKinVerificationJob
{
public:
    struct Input
    {
        QString machinePath;
        QString toolpathPath;
        QString ncPath;
        ZELKinVerifyGates gates;
    };

    //! Throws ZELSysException (and its kin) for a machine, toolpath or NC
    //! that cannot be read, and for a machine whose solver is not the RBR
    //! solver, whose kinematics the checks need.
    explicit ZELKinVerificationJob(const Input& input);
    ~ZELKinVerificationJob();

    ZELKinAFPMachine* GetMachine() const;
    const ZELKinVerification& GetVerification() const { return m_verification; }

private:
    std::unique_ptr<ZELKinTranslationJob> m_job;
    ZELKinVerification m_verification;
};

#endif // ZELKINVERIFICATIONJOB_H
