#include "zelkinstreamingpost.h"
#include "zelkinstreamingpost_p.h"

#include "zelkinafpmachine.h"
#include "zelkinprogram.h"
#include "zelkinsolver.h"
#include "zelkintranslator.h"
#include "zelkinwriter.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>
#include <zelsysheap.h>
#include <zeltpprogram.h>
#include <zeltpprogramstream.h>

#include <algorithm>
#include <deque>
#include <future>
#include <utility>

namespace {

// Holds the calling thread's progress lines for as long as it lives.
class HeldLines
{
public:
    explicit HeldLines(QStringList* lines) { ZELKinSolver::HoldProgressLines(lines); }
    ~HeldLines() { ZELKinSolver::HoldProgressLines(nullptr); }
    Q_DISABLE_COPY_MOVE(HeldLines)
};

std::unique_ptr<ZELKinSolver> CreateSolver(const ZELKinAFPMachine* machine)
{
    std::unique_ptr<ZELKinSolver> solver(machine ? machine->CreateSolver() : nullptr);
    if (!solver)
        throw ZELSysException(ZELKinStreamingPost::tr("the machine has no solver to post with"));
    return solver;
}

} // namespace

ZELKinStreamingPostPrivate::ZELKinStreamingPostPrivate(ZELKinStreamingPost* q,
                                                       ZELKinStreamingPost::MachineLoader loader,
                                                       const ZELTPProgramStream* toolpath)
    : q_ptr(q)
    , loader(std::move(loader))
    , toolpath(toolpath)
{
}

ZELKinStreamingPostPrivate::~ZELKinStreamingPostPrivate() = default;

// Translating the program without procedures gives the phase lines once,
// for all of them; they are printed with the first procedure's lines, so
// that a toolpath that cannot be read prints none.
ZELKinProgram* ZELKinStreamingPostPrivate::Identify(std::unique_ptr<ZELGeoContainer>& container,
                                                    QStringList& phaseLines) const
{
    container = std::make_unique<ZELGeoContainer>();
    const std::unique_ptr<ZELKinSolver> solver = CreateSolver(loader(container.get()));
    ZELKinTranslator translator(solver.get());
    translator.SetCurrentDateTime(now);
    const HeldLines held(&phaseLines);
    ZELKinProgram* program = translator.Translate(nullptr);
    program->SetOriginalFileName(toolpath->GetName());
    program->SetRevisionNumber(toolpath->GetRevision());
    return program;
}

ZELKinStreamingPostPrivate::Part ZELKinStreamingPostPrivate::Prepare(int index) const
{
    Part part;
    part.container = std::make_unique<ZELGeoContainer>();
    const HeldLines held(&part.lines);
    const std::unique_ptr<ZELKinSolver> solver = CreateSolver(loader(part.container.get()));
    part.toolpath = toolpath->ReadProcedure(index, part.container.get());
    ZELKinTranslator translator(solver.get());
    translator.SetCurrentDateTime(now);
    translator.SetPhaseLinesPrinted(false);
    part.program = translator.Translate(part.toolpath);
    part.program->SetOriginalFileName(toolpath->GetName());
    part.program->SetRevisionNumber(toolpath->GetRevision());
    part.omitted = !translator.GetOmissions().isEmpty();
    part.findings = ZELKinProgramCheck(solver.get()).Check(part.program, translator.GetOmissions());
    return part;
}

// The procedures are taken in order: while one is written, the next ones
// are prepared on threads of their own, so that no more than the thread
// count are held at once. A written procedure is let go on a thread of its
// own too, so that writing the next one need not wait for its millions of
// objects to go; the procedure prepared next waits for them instead.
void ZELKinStreamingPostPrivate::PostParts(ZELKinWriter& writer, QStringList& phaseLines,
                                           ZELKinProgramCheck::Findings& omitted, ZELKinProgramCheck::Findings& others)
{
    const auto launch = threadCount > 1 ? std::launch::async : std::launch::deferred;
    std::deque<std::future<Part>> running;
    std::shared_future<void> released;
    const int count = toolpath->GetNumProcedures();
    int next = 0;
    for (int index = 0; index < count; ++index) {
        while (next < count && running.size() < std::size_t(threadCount)) {
            const int prepared = next++;
            running.push_back(std::async(launch, [this, prepared, released] {
                if (released.valid())
                    released.wait();
                return Prepare(prepared);
            }));
        }
        Part part = running.front().get();
        running.pop_front();
        for (const QString& line : std::as_const(phaseLines))
            ZELKinSolver::PrintProgressLine(line);
        phaseLines.clear();
        for (const QString& line : std::as_const(part.lines))
            ZELKinSolver::PrintProgressLine(line);
        if (inspection)
            inspection(index, part.toolpath->GetProcedure(0));
        (part.omitted ? omitted : others).Append(part.findings);
        part.findings.RemoveProceduresFrom(part.program);
        if (keepGoing || (omitted.IsClean() && others.IsClean())) {
            writer.Add(part.program);
            positionsByProcedure.insert(part.program->GetPositionsByProcedure());
        }
        released = std::async(launch, [written = std::move(part)]() mutable {
                       written = Part();
                       // The next procedures are made of blocks of other sizes than
                       // the holes this one leaves.
                       ZELSysHeap::ReturnFreePages();
                   }).share();
    }
    if (released.valid())
        released.wait();
}

ZELKinStreamingPost::ZELKinStreamingPost(MachineLoader loader, const ZELTPProgramStream* toolpath)
    : ZELKinStreamingPost(new ZELKinStreamingPostPrivate(this, std::move(loader), toolpath))
{
}

ZELKinStreamingPost::ZELKinStreamingPost(ZELKinStreamingPostPrivate* d)
    : d_ptr(d)
{
}

ZELKinStreamingPost::~ZELKinStreamingPost() = default;

void ZELKinStreamingPost::SetCurrentDateTime(const QDateTime& now)
{
    Q_D(ZELKinStreamingPost);
    d->now = now;
}

void ZELKinStreamingPost::SetThreadCount(int count)
{
    Q_D(ZELKinStreamingPost);
    d->threadCount = std::max(1, count);
}

void ZELKinStreamingPost::SetKeepGoing(bool keepGoing)
{
    Q_D(ZELKinStreamingPost);
    d->keepGoing = keepGoing;
}

void ZELKinStreamingPost::SetProcedureInspection(ProcedureInspection inspection)
{
    Q_D(ZELKinStreamingPost);
    d->inspection = std::move(inspection);
}

QHash<QString, qint64> ZELKinStreamingPost::GetPositionsByProcedure() const
{
    Q_D(const ZELKinStreamingPost);
    return d->positionsByProcedure;
}

// A whole-program check lists the problems of the procedures that could not
// be solved first. A failure puts nothing in place.
ZELKinProgramCheck::Findings ZELKinStreamingPost::Post(ZELKinWriter& writer, const QString& path, const QString& format,
                                                       const QString& options)
{
    Q_D(ZELKinStreamingPost);
    d->positionsByProcedure.clear();
    if (d->now.isNull())
        d->now = QDateTime::currentDateTime();
    std::unique_ptr<ZELGeoContainer> identificationContainer;
    QStringList phaseLines;
    writer.Begin(path, format, options, d->Identify(identificationContainer, phaseLines));

    ZELKinProgramCheck::Findings omitted;
    ZELKinProgramCheck::Findings others;
    try {
        d->PostParts(writer, phaseLines, omitted, others);
    } catch (...) {
        writer.Abandon();
        throw;
    }
    for (const QString& line : std::as_const(phaseLines))
        ZELKinSolver::PrintProgressLine(line);
    omitted.Append(others);
    if (d->keepGoing || omitted.IsClean())
        writer.Finish();
    else
        writer.Abandon();
    return omitted;
}
