#include "zelkintranslationjob.h"

#include "zelkinclock.h"
#include "zelkinmachinefile.h"

#include <zelkinafpmachine.h>
#include <zelkinprogram.h>
#include <zelkinsolver.h>
#include <zelkintranslator.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zelsysexception.h>

#include <QThread>

#include <vector>

namespace {

ZELKinSolver* CreateSolver(const ZELKinAFPMachine& machine)
{
    ZELKinSolver* solver = machine.CreateSolver();
    if (!solver)
        throw ZELSysException(QStringLiteral("the machine's solver '%1' is not one zelkin knows (it knows \"RBR\")")
                                  .arg(machine.GetSolverName()));
    return solver;
}

} // namespace

ZELKinTranslationJob::ZELKinTranslationJob(const Input& input)
    : m_machine(ZELKinMachineFile::Load(&m_container, input.machinePath))
    , m_solver(CreateSolver(*m_machine))
{
    const ZELTPProgram* toolpath = ZELTPProgramReader(&m_container).Read(input.toolpathPath);
    m_solver->SetDebugPath(input.debugPath);

    ZELKinTranslator translator(m_solver.get());
    translator.SetCurrentDateTime(ZELKinClock::Now());
    // The machine's own solvers are safe to call from several threads; the
    // diagnostic files are written one procedure after the other.
    translator.SetThreadCount(input.debugPath.isEmpty() ? QThread::idealThreadCount() : 1);
    m_program = translator.Translate(toolpath);
    m_program->SetOriginalFileName(toolpath->GetName());
    m_program->SetRevisionNumber(toolpath->GetRevision());
}

ZELKinTranslationJob::~ZELKinTranslationJob() = default;

void ZELKinTranslationJob::KeepUntilExit(std::unique_ptr<ZELKinTranslationJob> job)
{
    // Allocated once and never freed, so that nothing destroys it at exit.
    static auto* const kept = new std::vector<std::unique_ptr<ZELKinTranslationJob>>;
    kept->push_back(std::move(job));
}
