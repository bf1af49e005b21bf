#include "zelkinverificationjob.h"

#include "zelkinarguments.h"
#include "zelkincommand.h"
#include "zelkinconsole.h"
#include "zelkinncreplay.h"
#include "zelkintranslationjob.h"

#include <zelkinafpmachine.h>
#include <zelkinmachine.h>
#include <zelkinrbrsolver.h>
#include <zelsysexception.h>

#include <cmath>

namespace {

const QString MachineOption = QStringLiteral("machine");
const QString ToolpathOption = QStringLiteral("toolpath");
const QString NCOption = QStringLiteral("nc");
const QString FlipOption = QStringLiteral("flip-angle");
const QString SingularityOption = QStringLiteral("singularity-angle");

constexpr double kDegreesPerRadian = 57.29577951308232;

double AngleOption(const ZELKinArguments& parsed, const QString& option, double fallback, const QString& command)
{
    if (!parsed.IsSet(option))
        return fallback;
    bool ok = false;
    const double degrees = parsed.GetValue(option).toDouble(&ok);
    if (!ok || !std::isfinite(degrees) || degrees <= 0.0 || degrees >= 180.0)
        throw ZELKinUsageError(QStringLiteral("--%1 takes an angle in degrees above 0 and below 180, not '%2'")
                                   .arg(option, parsed.GetValue(option)),
                               command);
    return degrees / kDegreesPerRadian;
}

std::unique_ptr<ZELKinTranslationJob> Translate(const ZELKinVerificationJob::Input& input)
{
    const ZELKinConsole::StdoutToStderr progressAside;
    return std::make_unique<ZELKinTranslationJob>(
        ZELKinTranslationJob::Input{input.machinePath, input.toolpathPath, QString()});
}

const ZELKinRBRSolver& RBRSolverOf(const ZELKinTranslationJob& job)
{
    const auto* solver = dynamic_cast<const ZELKinRBRSolver*>(job.GetSolver());
    if (!solver)
        throw ZELSysException(QStringLiteral("the machine's solver '%1' has no forward kinematics that the checks "
                                             "know (they know \"RBR\")")
                                  .arg(job.GetMachine()->GetSolverName()));
    return *solver;
}

} // namespace

QList<QCommandLineOption> ZELKinVerificationJob::GetOptions()
{
    const QString valueName = QStringLiteral("value");
    return {QCommandLineOption(MachineOption, QString(), valueName),
            QCommandLineOption(ToolpathOption, QString(), valueName),
            QCommandLineOption(NCOption, QString(), valueName),
            QCommandLineOption(FlipOption, QString(), valueName),
            QCommandLineOption(SingularityOption, QString(), valueName)};
}

ZELKinVerificationJob::Input ZELKinVerificationJob::GetInput(const ZELKinArguments& parsed, const QString& command)
{
    Input input{parsed.GetRequiredValue(MachineOption), parsed.GetRequiredValue(ToolpathOption),
                parsed.GetRequiredValue(NCOption), ZELKinVerifyGates()};
    input.gates.flip = AngleOption(parsed, FlipOption, input.gates.flip, command);
    input.gates.singularity = AngleOption(parsed, SingularityOption, input.gates.singularity, command);
    return input;
}

ZELKinVerificationJob::ZELKinVerificationJob(const Input& input)
    : m_job(Translate(input))
{
    const ZELKinAFPMachine& machine = *m_job->GetMachine();
    const QList<ZELKinNCPlyFile> plies = ZELKinNCReplay(machine).Read(input.ncPath);
    m_verification = ZELKinVerifier(machine, RBRSolverOf(*m_job), *m_job->GetProgram(), input.gates).Verify(plies);
}

ZELKinVerificationJob::~ZELKinVerificationJob()
{
    ZELKinTranslationJob::KeepUntilExit(std::move(m_job));
}

ZELKinAFPMachine* ZELKinVerificationJob::GetMachine() const
{
    return m_job->GetMachine();
}
