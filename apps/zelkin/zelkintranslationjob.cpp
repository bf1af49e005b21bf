#include "zelkintranslationjob.h"

#include "zelkinclock.h"
#include "zelkincommand.h"
#include "zelkininputfile.h"
#include "zelkinmachinefile.h"

#include <zelkinafpmachine.h>
#include <zelkinprocedure.h>
#include <zelkinprogram.h>
#include <zelkinsolver.h>
#include <zelkintranslator.h>
#include <zelsysexception.h>
#include <zelsysprogress.h>
#include <zeltpcourselink.h>
#include <zeltpprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptowcourse.h>

#include <QFileInfo>
#include <QSet>
#include <QThread>
#include <QtDebug>

#include <unistd.h>

#include <algorithm>
#include <cmath>
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

// The machine's tow width sizes the plies' areas, the toolpath's head the
// roller's tow count: a toolpath made for another head deserves a word,
// once, naming the first course that differs.
constexpr double kTowWidthTolerance = 0.001; // mm

struct TowWidthDifference
{
    QString path;
    double width = 0.0;
    int count = 0;
};

// Courses are numbered as the toolpath file lists them: in path order.
void FindTowWidthDifferences(const ZELTPRollLayupProcedure& procedure, int index, double machineWidth,
                             TowWidthDifference& found)
{
    QSet<const ZELTPCourseLink*> walked;
    const ZELTPCourseLink* link = procedure.GetApproachLink();
    for (int course = 0; link && link->GetToCourse() && !walked.contains(link); ++course) {
        walked.insert(link);
        const auto* towCourse = qobject_cast<const ZELTPTowCourse*>(link->GetToCourse());
        link = link->GetToCourse()->GetRetractLink();
        const double width = towCourse ? towCourse->GetMachineConfiguration().GetHead().GetTowWidth() : machineWidth;
        if (std::abs(width - machineWidth) <= kTowWidthTolerance)
            continue;
        if (found.count == 0) {
            found.path = QStringLiteral("$.program.procedures[%1].courses[%2].machineConfiguration.head.towWidth")
                             .arg(index)
                             .arg(course);
            found.width = width;
        }
        ++found.count;
    }
}

void WarnOfAnotherTowWidth(const ZELTPProgram& toolpath, const ZELKinAFPMachine& machine)
{
    TowWidthDifference found;
    for (int i = 0; i < toolpath.GetNumProcedures(); ++i) {
        if (const auto* procedure = qobject_cast<const ZELTPRollLayupProcedure*>(toolpath.GetProcedure(i)))
            FindTowWidthDifferences(*procedure, i, machine.GetTowWidth(), found);
    }
    if (found.count == 0)
        return;
    const QString count = found.count > 1 ? QStringLiteral("; %1 courses differ in all").arg(found.count) : QString();
    qWarning().noquote() << QStringLiteral("the toolpath's tow width %1 mm at %2 differs from the machine's %3 mm (the "
                                           "tow-width attribute of the machine description's root element)%4")
                                .arg(QString::number(found.width), found.path, QString::number(machine.GetTowWidth()),
                                     count);
}

} // namespace

ZELKinTranslationJob::ZELKinTranslationJob(const Input& input)
    : m_machine(ZELKinMachineFile::Load(&m_container, input.machinePath))
    , m_solver(CreateSolver(*m_machine))
{
    RequireMemoryFor(input.toolpathPath);
    const ZELTPProgram* toolpath = ZELKinInputFile::ReadToolpath(&m_container, input.toolpathPath,
                                                                 GetMaximumToolpathBytes());
    WarnOfAnotherTowWidth(*toolpath, *m_machine);
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
