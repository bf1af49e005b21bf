#include "zelkinverificationjob.h"

#include "zelkinconsole.h"
#include "zelkinncreplay.h"
#include "zelkintranslationjob.h"

#include <zelkinafpmachine.h>
#include <zelkinmachine.h>
#include <zelkinrbrsolver.h>
#include <zelsysexception.h>

namespace {

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
