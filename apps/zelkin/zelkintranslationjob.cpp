#include "zelkintranslationjob.h"

#include "zelkinclock.h"
#include "zelkincommand.h"
#include "zelkinmachinefile.h"

#include <zelkinafpmachine.h>
#include <zelkinprocedure.h>
#include <zelkinprogram.h>
#include <zelkinsolver.h>
#include <zelkintranslator.h>
#include <zeltpprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zelsysexception.h>

#include <QFileInfo>
#include <QThread>

#include <unistd.h>

#include <algorithm>
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

// Posting a toolpath takes about seven and a half times its file's size in
// memory at its peak (docs/performance.md): the toolpath model, the solved
// program and the axis values. A toolpath whose post would need more than
// the machine's memory is refused before it is read, with the figures,
// rather than left to exhaust the memory half-way.
constexpr qint64 kMemoryPerToolpathByte = 8;

qint64 PhysicalMemory()
{
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? qint64(pages) * qint64(pageSize) : 0;
}

// A file whose size is known is refused before it is read, with the
// figures; a stream (a pipe, a device) has none, and the reader stops it at
// the same bound.
void RequireMemoryFor(const QString& toolpathPath)
{
    const qint64 size = QFileInfo(toolpathPath).size();
    const qint64 available = PhysicalMemory();
    if (available <= 0 || size <= available / kMemoryPerToolpathByte)
        return;
    const auto gib = [](qint64 bytes) { return QString::number(double(bytes) / double(qint64(1) << 30), 'f', 1); };
    throw ZELSysException(QStringLiteral("%1: a toolpath of %2 GiB needs about %3 GiB of memory to post, more than "
                                         "this machine's %4 GiB")
                              .arg(toolpathPath, gib(size), gib(size * kMemoryPerToolpathByte), gib(available)));
}

} // namespace

ZELKinTranslationJob::ZELKinTranslationJob(const Input& input)
    : m_machine(ZELKinMachineFile::Load(&m_container, input.machinePath))
    , m_solver(CreateSolver(*m_machine))
{
    RequireMemoryFor(input.toolpathPath);
    const ZELTPProgram* toolpath = ZELTPProgramReader(&m_container).Read(input.toolpathPath, GetMaximumToolpathBytes());
    m_solver->SetDebugPath(input.debugPath);

    ZELKinTranslator translator(m_solver.get());
    translator.SetCurrentDateTime(ZELKinClock::Now());
    // The machine's own solvers are safe to call from several threads; the
    // diagnostic files are written one procedure after the other.
    translator.SetThreadCount(input.debugPath.isEmpty() ? QThread::idealThreadCount() : 1);
    m_program = translator.Translate(toolpath);
    m_program->SetOriginalFileName(toolpath->GetName());
    m_program->SetRevisionNumber(toolpath->GetRevision());
    ZELKinProgramCheck check(m_solver.get());
    check.SetThreadCount(QThread::idealThreadCount());
    m_findings = check.Check(m_program, translator.GetOmissions());
}

void ZELKinTranslationJob::RequireDeliverable(bool keepGoing)
{
    if (m_findings.IsClean())
        return;
    if (!keepGoing)
        throw ZELKinUndeliverable(DescribeFindings(QStringLiteral("nothing was written")));
    for (ZELKinProcedure* procedure : m_program->GetProcedures()) {
        const ZELTPProcedure* source = procedure->GetToolPathProcedure();
        if (source && m_findings.procedures.contains(source->GetName()))
            m_program->RemoveProcedure(procedure);
    }
}

void ZELKinTranslationJob::ThrowIfIncomplete() const
{
    if (!m_findings.IsClean())
        throw ZELKinUndeliverable(DescribeFindings(
            QStringLiteral("written without '%1'").arg(m_findings.procedures.join(QStringLiteral("', '")))));
}

QString ZELKinTranslationJob::DescribeFindings(const QString& outcome) const
{
    const QString first = m_findings.first.isEmpty() ? QString() : m_findings.first.first().GetText();
    const QString count =
        m_findings.count > 1 ? QStringLiteral(" (%1 problems in all)").arg(m_findings.count) : QString();
    return QStringLiteral("%1%2; %3").arg(first, count, outcome);
}

ZELKinTranslationJob::~ZELKinTranslationJob() = default;

qint64 ZELKinTranslationJob::GetMaximumToolpathBytes()
{
    const qint64 available = PhysicalMemory();
    return available > 0 ? std::min(available / kMemoryPerToolpathByte, ZELTPProgramReader::MaximumDocumentBytes)
                         : ZELTPProgramReader::MaximumDocumentBytes;
}

ZELKinTranslationJob& ZELKinTranslationJob::KeepUntilExit(std::unique_ptr<ZELKinTranslationJob> job)
{
    // Allocated once and never freed, so that nothing destroys it at exit.
    static auto* const kept = new std::vector<std::unique_ptr<ZELKinTranslationJob>>;
    kept->push_back(std::move(job));
    return *kept->back();
}
