#ifndef ZELKINVERIFICATIONJOB_H
#define ZELKINVERIFICATIONJOB_H

#include "zelkinoption.h"

#include <zelkinncreplay.h>
#include <zelkinverifier.h>
#include <zeltpprogramstream.h>

#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <stdexcept>

class ZELGeoContainer;
class ZELKinAFPMachine;
class ZELKinArguments;

/*!
    A machine description, a toolpath or posted NC that the checks cannot
    read, or a machine whose kinematics they cannot follow: "verify" and
    "report" end with ZELKinVerificationJob::UnreadableInput then, apart
    from a failed check.
*/
class ZELKinUnreadableInputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/*!
    What "verify" and "report" share: the machine description and the
    toolpath are read, and the posted NC is read back and checked against
    them. Nothing is translated or solved: the checks stand on the
    toolpath and on kinematics of their own, so that an error the solver or
    the post makes cannot hide itself.
*/
class ZELKinVerificationJob
{
public:
    //! The exit status of "verify" and "report" when an input cannot be read.
    static constexpr int UnreadableInput = 3;

    struct Input
    {
        QString machinePath;
        QString toolpathPath;
        QString ncPath;
        ZELKinVerifyGates gates;
        //! Show no progress on stderr.
        bool quiet = false;
        //! Told of each ply once it is checked, with its lines and findings
        //! (see ZELKinVerifier::PlyHandler), on the machine read. The lines
        //! are dropped after it, so that no more than one ply's are held.
        std::function<void(const ZELKinAFPMachine& machine, int index, const ZELKinVerifiedPly& ply,
                           const QList<ZELKinVerifyFinding>& findings)>
            onPly = nullptr;
    };

    //! The options that say what to check: --machine, --toolpath, --nc,
    //! --flip-angle and --singularity-angle (in degrees); and --quiet.
    static QList<ZELKinOption> GetOptions();
    //! The options among them that name the files read.
    static QStringList GetFileOptions();
    //! The input those options ask for. Throws ZELKinUsageError for
    //! `command` when one of the three files is missing or given an empty
    //! path, or an angle is not above 0 and below 180 degrees.
    static Input GetInput(const ZELKinArguments& parsed, const QString& command);

    //! Throws ZELKinUnreadableInputError for a machine, toolpath or NC that
    //! cannot be read and a machine whose kinematics the checks cannot
    //! follow. A fatal message of the libraries while the machine is read
    //! ends the process with UnreadableInput.
    explicit ZELKinVerificationJob(const Input& input);
    ~ZELKinVerificationJob();

    //! The job for `input` handed to `use`, whose exit status it returns;
    //! when an input cannot be read, its one error line and UnreadableInput.
    static int Run(const Input& input, const std::function<int(const ZELKinVerificationJob&)>& use);

    ZELKinAFPMachine* GetMachine() const { return m_machine; }
    const ZELKinVerification& GetVerification() const { return m_verification; }

private:
    //! A file is read one procedure at a time, any other toolpath whole.
    ZELKinVerifier::ToolpathSource ReadToolpath(const QString& path, qint64 maximumBytes);
    //! A file or a folder is read one ply at a time, any other NC whole.
    ZELKinVerifier::NCSource ReadNC(const QString& path, qint64 maximumBytes);

    std::unique_ptr<ZELGeoContainer> m_container;
    ZELKinAFPMachine* m_machine = nullptr;
    ZELTPProgramStream m_toolpathStream;
    std::unique_ptr<ZELKinNCReplay> m_replay;
    ZELKinNCProgram m_wholeNC;
    ZELKinVerification m_verification;
};

#endif // ZELKINVERIFICATIONJOB_H
