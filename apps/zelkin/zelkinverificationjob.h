#ifndef ZELKINVERIFICATIONJOB_H
#define ZELKINVERIFICATIONJOB_H

#include "zelkinverifier.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>

#include <memory>

class ZELKinAFPMachine;
class ZELKinArguments;
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

    //! The options that say what to check: --machine, --toolpath, --nc,
    //! --flip-angle and --singularity-angle (in degrees).
    static QList<QCommandLineOption> GetOptions();
    //! The input those options ask for. Throws ZELKinUsageError for
    //! `command` when one of the three files is missing or an angle is not
    //! above 0 and below 180 degrees.
    static Input GetInput(const ZELKinArguments& parsed, const QString& command);

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
