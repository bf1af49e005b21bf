#include "zelkintranslationjob.h"

#include "zelkinclock.h"
#include "zelkincommand.h"
#include "zelkininputfile.h"
#include "zelkinmachinefile.h"
#include "zelkinpostmemory.h"
#include "zelkintowwidthwarning.h"

#include <zelkinafpmachine.h>
#include <zelkinprogram.h>
#include <zelkinsolver.h>
#include <zelkintranslator.h>
#include <zelsysexception.h>
#include <zelsysprogress.h>
#include <zeltpcourselink.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptowcourse.h>

#include <QFileInfo>
#include <QSet>
#include <QThread>
#include <QtDebug>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// A toolpath read whole whose post would need more than the machine's
// memory (docs/performance.md) is refused before it is read, with the
// figures, rather than left to exhaust the memory half-way.
constexpr qint64 kMemoryPerToolpathByte = ZELKinPostMemory::PerToolpathByte;

// A file whose size is known is refused before it is read, with the
// figures; a stream (a pipe, a device) has none, and the reader stops it at
// the same bound.
void RequireMemoryFor(const QString& toolpathPath)
{
    const qint64 size = QFileInfo(toolpathPath).size();
    const qint64 available = ZELKinPostMemory::GetPhysicalMemory();
    if (available <= 0 || size <= available / kMemoryPerToolpathByte)
        return;
    const auto gib = ZELKinPostMemory::InGiB;
    throw ZELSysException(QStringLiteral("%1: a toolpath of %2 GiB read whole needs about %3 GiB of memory to "
                                         "post, more than this machine's %4 GiB")
                              .arg(toolpathPath, gib(size), gib(size * kMemoryPerToolpathByte), gib(available)));
}

// "<the first problem> (<n> problems in all); <outcome>".
QString DescribeFindings(const ZELKinProgramCheck::Findings& findings, const QString& outcome)
{
    const QString first = findings.first.isEmpty() ? QString() : findings.first.first().GetText();
    const QString count = findings.count > 1 ? QStringLiteral(" (%1 problems in all)").arg(findings.count) : QString();
    return QStringLiteral("%1%2; %3").arg(first, count, outcome);
}

} // namespace

ZELKinTranslationJob::ZELKinTranslationJob(const Input& input)
    : m_machine(ZELKinMachineFile::Load(&m_container, input.machinePath))
    , m_solver(CreateSolver(*m_machine))
{
    RequireMemoryFor(input.toolpathPath);
    const ZELTPProgram* toolpath = ZELKinInputFile::ReadToolpath(&m_container, input.toolpathPath,
                                                                 GetMaximumToolpathBytes());
    ZELKinTowWidthWarning towWidth(m_machine->GetTowWidth());
    towWidth.Inspect(*toolpath);
    towWidth.Warn();
    m_solver->SetDebugPath(input.debugPath);

    ZELKinTranslator translator(m_solver.get());
    translator.SetCurrentDateTime(ZELKinClock::Now());
    // The machine's own solvers are safe to call from several threads; the
    // diagnostic files are written one procedure after the other.
    translator.SetThreadCount(input.debugPath.isEmpty() ? QThread::idealThreadCount() : 1);
    m_program = translator.Translate(toolpath);
    m_program->SetOriginalFileName(toolpath->GetName());
    m_program->SetRevisionNumber(toolpath->GetRevision());
    const ZELSysProgress checking(QStringLiteral("Checking the solved program"), QString(), 0);
    ZELKinProgramCheck check(m_solver.get());
    check.SetThreadCount(QThread::idealThreadCount());
    m_findings = check.Check(m_program, translator.GetOmissions());
}

void ZELKinTranslationJob::RequireDeliverable(bool keepGoing)
{
    if (m_findings.IsClean())
        return;
    if (!keepGoing)
        ThrowIfUndeliverable(m_findings);
    m_findings.RemoveProceduresFrom(m_program);
}

void ZELKinTranslationJob::ThrowIfIncomplete() const
{
    ThrowIfIncomplete(m_findings);
}

void ZELKinTranslationJob::ThrowIfUndeliverable(const ZELKinProgramCheck::Findings& findings)
{
    if (!findings.IsClean())
        throw ZELKinUndeliverable(DescribeFindings(findings, QStringLiteral("nothing was written")));
}

void ZELKinTranslationJob::ThrowIfIncomplete(const ZELKinProgramCheck::Findings& findings)
{
    if (!findings.IsClean())
        throw ZELKinUndeliverable(DescribeFindings(
            findings, QStringLiteral("written without '%1'").arg(findings.procedures.join(QStringLiteral("', '")))));
}

ZELKinSolver* ZELKinTranslationJob::CreateSolver(const ZELKinAFPMachine& machine)
{
    ZELKinSolver* solver = machine.CreateSolver();
    if (!solver)
        throw ZELSysException(QStringLiteral("the machine's solver '%1' is not one zelkin knows (it knows \"RBR\")")
                                  .arg(machine.GetSolverName()));
    return solver;
}

ZELKinTranslationJob::~ZELKinTranslationJob() = default;

qint64 ZELKinTranslationJob::GetMaximumToolpathBytes()
{
    const qint64 available = ZELKinPostMemory::GetPhysicalMemory();
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
