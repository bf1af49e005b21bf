#include "zelkintranslator.h"
#include "zelkintranslator_p.h"

#include "zelkinafpmachine.h"
#include "zelkincourselink.h"
#include "zelkinplydescription.h"
#include "zelkinposition.h"
#include "zelkinprobecommand.h"
#include "zelkinprobeprocedure.h"
#include "zelkinprogram.h"
#include "zelkinrolllayupposition.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkinsolver.h"
#include "zelkintoolchange.h"
#include "zelkintowcourse.h"
#include "zelkintowfeedcommand.h"
#include "zelkinvariable.h"

#include <zelsysexception.h>
#include <zelsysprogress.h>
#include <zeltpcourselink.h>
#include <zeltpoffpartpoint.h>
#include <zeltponparttrajectory.h>
#include <zeltpprobingprocedure.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptext.h>
#include <zeltptoolchangelink.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>

#include <QSet>

#include <algorithm>
#include <cmath>
#include <deque>
#include <future>
#include <limits>
#include <utility>

namespace {

// Forced rates closer than this are the same rate.
constexpr double RateTolerance = 0.001;
// A segment end that stands for the trajectory's second to last point: its
// last point is the next trajectory's first and is taken there.
constexpr int DefaultEnd = -1;

// Through the solver's printing, so that the lines keep their order with
// the solver's.
void PrintLine(const QString& line)
{
    ZELKinSolver::PrintProgressLine(line);
}

// Counts the solver's positions in a progress for as long as it lives, and
// no longer: the solver outlives the translation.
class ProgressOfSolver
{
public:
    ProgressOfSolver(ZELKinSolver* solver, ZELSysProgress* progress)
        : m_solver(solver)
    {
        m_solver->SetProgress(progress);
    }
    ~ProgressOfSolver() { m_solver->SetProgress(nullptr); }
    Q_DISABLE_COPY_MOVE(ProgressOfSolver)

private:
    ZELKinSolver* const m_solver;
};

// The NC files print the author in comments and headers: a strange login
// name is refused here, naming the variable to fix, rather than written.
QString AuthorFromEnvironment()
{
    const char* variable = "USER";
    QString author = qEnvironmentVariable(variable);
    if (author.isEmpty()) {
        variable = "USERNAME";
        author = qEnvironmentVariable(variable);
    }
    const QString problem = ZELTPText::DescribeFirstUnfitCharacter(author);
    if (!problem.isEmpty())
        throw ZELSysException(ZELKinTranslator::tr("the author's name from the environment variable %1 contains %2; "
                                                   "set %1 to a name without control characters or double quotes")
                                  .arg(QLatin1String(variable), problem));
    return author;
}

double FeedrateOf(const ZELTPTrajectory* trajectory)
{
    return trajectory ? trajectory->GetFeedrate() : std::numeric_limits<double>::quiet_NaN();
}

// The N index that the NC program numbers a course position by: on-part
// points by their place along the course from 1, off-part points past the
// course's end.
int NIndexOf(const ZELTPPoint* point, int numCoursePoints)
{
    if (qobject_cast<const ZELTPOffPartPoint*>(point))
        return numCoursePoints + 2;
    return std::max(point->GetIndex(), 0) + 1;
}

// A tow that a list gives no rate for is not forced: it reads 0.
double RateOf(const QList<double>& rates, qsizetype tow)
{
    return tow < rates.size() ? rates.at(tow) : 0.0;
}

bool RatesDiffer(const QList<double>& a, const QList<double>& b)
{
    const qsizetype count = std::max(a.size(), b.size());
    for (qsizetype tow = 0; tow < count; ++tow) {
        if (std::abs(RateOf(a, tow) - RateOf(b, tow)) > RateTolerance)
            return true;
    }
    return false;
}

// Tow commands follow a trajectory's first position; a trajectory that gave
// no position leaves them at the end of the course.
int TowCommandIndex(const ZELKinTowCourse* course, int start)
{
    return std::min(start + 1, course->GetNumCommands());
}

int LastIndex(const ZELTPTrajectory* trajectory)
{
    return trajectory->GetNumPoints() - 1;
}

// Where a trajectory's own points begin: after its first point when that is
// the junction it shares with the trajectory before it.
int FirstAfterJunction(const ZELTPTrajectory* trajectory, const ZELTPTrajectory* before)
{
    const bool joined = before && before->GetNumPoints() > 0 && trajectory->GetNumPoints() > 0
        && trajectory->GetPoint(0) == before->GetPoint(before->GetNumPoints() - 1);
    return joined ? 1 : 0;
}

ZELKinVariable* LinearVariable(const ZELKinMachine* machine, const QString& label)
{
    const QList<ZELKinVariable*> variables = machine ? machine->GetVariables() : QList<ZELKinVariable*>();
    for (ZELKinVariable* variable : variables) {
        if (variable && variable->GetType() == ZELKinVariable::Linear && variable->GetLabel() == label)
            return variable;
    }
    return nullptr;
}

} // namespace

template <typename Object, typename... Arguments> Object* ZELKinTranslator::Create(Arguments&&... arguments)
{
    Object* object = new Object(std::forward<Arguments>(arguments)...);
    object->Initialize();
    return object;
}

QDateTime ZELKinTranslatorPrivate::GetProgramDate() const
{
    return currentDateTime.isNull() ? QDateTime::currentDateTime() : currentDateTime;
}

void ZELKinTranslatorPrivate::TranslateProcedure(ZELKinProgram* program, const ZELTPProcedure* source, int index) const
{
    if (const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(source))
        TranslateRollLayup(program, layup, index);
    else if (const auto* probing = qobject_cast<const ZELTPProbingProcedure*>(source))
        TranslateProbing(program, probing);
}

void ZELKinTranslatorPrivate::TranslateRollLayup(ZELKinProgram* program, const ZELTPRollLayupProcedure* source,
                                                 int index) const
{
    auto* procedure = ZELKinTranslator::Create<ZELKinRollLayupProcedure>(program, source->GetAddingFeedrate(),
                                                                         source->GetCuttingFeedrate());
    procedure->SetSafetyPlane(source->GetSafetyPlane());
    procedure->setObjectName(source->GetName());
    procedure->SetToolPathProcedure(source);
    AddPlies(procedure, source);

    // A damaged toolpath may lead back to a link already walked; the path
    // ends there instead of running round for ever.
    QSet<const ZELTPCourseLink*> walked;
    CoursePlace place{index, source->GetName(), 0};
    // A course that is not laid with tows is passed over together with the
    // link into it, so that each link the procedure keeps leads into the
    // course after it and the moves stay in path order.
    for (const ZELTPCourseLink* link = source->GetApproachLink(); link && !walked.contains(link);) {
        walked.insert(link);
        const ZELTPCourse* course = link->GetToCourse();
        const auto* towCourse = qobject_cast<const ZELTPTowCourse*>(course);
        if (towCourse || !course)
            TranslateLink(procedure, link);
        if (!course)
            break;
        if (towCourse)
            TranslateTowCourseAt(procedure, towCourse, place);
        link = course->GetRetractLink();
        ++place.course;
    }
}

void ZELKinTranslatorPrivate::AddPlies(ZELKinRollLayupProcedure* procedure, const ZELTPRollLayupProcedure* source) const
{
    const auto* machine = qobject_cast<const ZELKinAFPMachine*>(procedure->GetProgram()->GetMachine());
    const double area = machine ? source->GetTotalMaterialLength() * machine->GetTowWidth() : 0.0;
    const QString material = source->GetMaterialDescription().GetId();
    for (const ZELTPPlyDescription& ply : source->GetPlyDescriptions()) {
        ZELKinPlyDescription definition;
        definition.SetAngle(ply.GetOrientation());
        definition.SetName(ply.GetName());
        definition.SetMaterial(material);
        definition.SetMethod(ply.GetPropagationMode());
        definition.SetArea(area);
        procedure->AddPlyDefinition(definition);
    }
}

void ZELKinTranslatorPrivate::TranslateLink(ZELKinRollLayupProcedure* procedure, const ZELTPCourseLink* source) const
{
    auto* link = ZELKinTranslator::Create<ZELKinCourseLink>(procedure);
    link->SetToolPathCourseLink(source);
    const auto* toolChange = qobject_cast<const ZELTPToolChangeLink*>(source);
    const ZELTPPoint* toolRemovePoint = toolChange ? toolChange->GetToolRemovePoint() : nullptr;
    bool toolChanged = false;
    for (ZELTPPoint* point : source->GetPoints()) {
        auto* position = ZELKinTranslator::Create<ZELKinPosition>(link, -1);
        position->SetToolPathPoint(point);
        position->SetFeedrate(FeedrateOf(point->GetTrajectory()));
        // Where two trajectories of the link share the point, the tool is
        // changed the first time only.
        if (point == toolRemovePoint && !toolChanged) {
            AddToolChange(link, toolChange);
            toolChanged = true;
        }
    }
}

void ZELKinTranslatorPrivate::AddToolChange(ZELKinCourseLink* link, const ZELTPToolChangeLink* source) const
{
    const ZELTPMachineConfiguration next = source->GetNextMachineConfiguration();
    const QString head = next.GetHead().GetName();
    const bool headChanges = head != source->GetPreviousMachineConfiguration().GetHead().GetName();
    ZELKinTranslator::Create<ZELKinToolChange>(link, next.GetTool().GetName(), headChanges ? head : QString());
}

void ZELKinTranslatorPrivate::TranslateTowCourseAt(ZELKinRollLayupProcedure* procedure, const ZELTPTowCourse* source,
                                                   const CoursePlace& place) const
{
    // What goes wrong in a course is only of use with where the course is:
    // the toolpath's path to it and the names its author knows it by.
    try {
        TranslateTowCourse(procedure, source);
    } catch (const ZELSysException& error) {
        throw ZELSysException(
            ZELKinTranslator::tr("$.program.procedures[%1].courses[%2]: procedure '%3', course %4: %5")
                .arg(place.procedure)
                .arg(place.course)
                .arg(place.procedureName)
                .arg(place.course + 1)
                .arg(error.GetMessage()));
    }
}

void ZELKinTranslatorPrivate::TranslateTowCourse(ZELKinRollLayupProcedure* procedure,
                                                 const ZELTPTowCourse* source) const
{
    auto* course = ZELKinTranslator::Create<ZELKinTowCourse>(procedure, source->GetUsedTowMask());
    course->SetToolPathCourse(source);
    const ZELTPMachineConfiguration configuration = source->GetMachineConfiguration();
    course->SetRollerTows(configuration.GetRollerTows());
    course->SetRoller(configuration.GetTool().GetName());
    SetTowLengths(course, source);
    AddCoursePositions(course, source);
}

void ZELKinTranslatorPrivate::SetTowLengths(ZELKinTowCourse* course, const ZELTPTowCourse* source) const
{
    const ZELCompTowMask mask = course->GetTowMask();
    const QList<double> lengths = source->GetTowLengths();
    // A tow that the toolpath gives no length for keeps 0.
    const int count = std::min(mask.GetNumTows(), int(lengths.size()));
    for (int tow = 0; tow < count; ++tow) {
        if (mask.IsTowEnabled(tow + 1))
            course->SetTowLength(tow, lengths.at(tow));
    }
}

void ZELKinTranslatorPrivate::AddCoursePositions(ZELKinTowCourse* course, const ZELTPTowCourse* source) const
{
    const CourseWalk walk{course, source->GetNumPoints()};
    const ZELTPTrajectory* approach = source->GetApproachTrajectory();
    const ZELTPOnPartTrajectory* rollIn = source->GetRollInTrajectory();
    const ZELTPOnPartTrajectory* rollOut = source->GetRollOutTrajectory();

    // Every point from the approach's first through the roll-out's last is
    // a place the head must pass: the approach and the roll-out keep the
    // points they share with the roll-in and the retract, at their own feed.
    if (approach)
        AddSegment(walk, approach, 0, LastIndex(approach), rollIn);
    if (rollIn)
        AddSegment(walk, rollIn, FirstAfterJunction(rollIn, approach), DefaultEnd, rollIn);

    const int numTows = course->GetTowMask().GetNumTows();
    TowState tows{ZELCompTowMask(numTows, false), ZELCompTowMask(numTows, false), {}};
    for (const ZELTPTrajectory* trajectory = source->GetNextTrajectory(rollIn); trajectory && trajectory != rollOut;
         trajectory = source->GetNextTrajectory(trajectory)) {
        const auto* towTrajectory = dynamic_cast<const ZELTPTowTrajectory*>(trajectory);
        if (!towTrajectory)
            throw ZELSysException(ZELKinTranslator::tr("not a tow trajectory"));
        const int start = AddSegment(walk, towTrajectory, 0, DefaultEnd, towTrajectory);
        AddTowChanges(course, tows, towTrajectory, start);
    }

    if (rollOut)
        EndTows(course, tows, AddSegment(walk, rollOut, 0, LastIndex(rollOut), rollOut));
    if (const ZELTPTrajectory* retract = source->GetRetractTrajectory())
        AddSegment(walk, retract, FirstAfterJunction(retract, rollOut), LastIndex(retract), rollOut);
}

int ZELKinTranslatorPrivate::AddSegment(const CourseWalk& walk, const ZELTPTrajectory* trajectory, int from, int to,
                                        const ZELTPOnPartTrajectory* tilts) const
{
    const int start = walk.course->GetNumCommands();
    const QList<ZELTPPoint*>& points = trajectory->GetPoints();
    const int first = std::max(from, 0);
    const int last = std::min(to < 0 ? int(points.size()) - 2 : to, int(points.size()) - 1);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (int i = first; i <= last; ++i) {
        auto* position = ZELKinTranslator::Create<ZELKinRollLayupPosition>(walk.course);
        position->SetToolPathPoint(points.at(i));
        position->SetPAngle(tilts ? tilts->GetForwardTilt() : nan);
        position->SetQAngle(tilts ? tilts->GetSideTilt() : nan);
        position->SetSmoothAngle(tilts ? tilts->GetSmoothingAngle() : nan);
        position->SetFeedrate(trajectory->GetFeedrate());
        position->SetNIndex(NIndexOf(points.at(i), walk.numPoints));
    }
    return start;
}

void ZELKinTranslatorPrivate::AddTowChanges(ZELKinTowCourse* course, TowState& tows,
                                            const ZELTPTowTrajectory* trajectory, int start) const
{
    // Each command goes to the same index, so the later ones stand before
    // the earlier ones: feed, release, force, cut, add.
    const int index = TowCommandIndex(course, start);
    const ZELCompTowMask laid = trajectory->GetTowMask();
    if (laid != tows.laid) {
        AddTowCommand(course, laid - tows.laid, ZELKinTowCommand::Add, index);
        AddTowCommand(course, tows.laid - laid, ZELKinTowCommand::Cut, index);
        tows.laid = laid;
    }
    const ZELCompTowMask forced = trajectory->GetForcedMask() & laid;
    if (forced != tows.forced) {
        AddTowCommand(course, forced - tows.forced, ZELKinTowCommand::Force, index);
        AddTowCommand(course, tows.forced - forced, ZELKinTowCommand::Release, index);
        tows.forced = forced;
    }
    const QList<double> rates = trajectory->GetForcedRates();
    if (RatesDiffer(rates, tows.rates)) {
        ZELKinTranslator::Create<ZELKinTowFeedCommand>(course, rates, index);
        tows.rates = rates;
    }
}

void ZELKinTranslatorPrivate::EndTows(ZELKinTowCourse* course, const TowState& tows, int start) const
{
    // Released first and cut second at one index: the cut stands first.
    const int index = TowCommandIndex(course, start);
    AddTowCommand(course, tows.forced, ZELKinTowCommand::Release, index);
    AddTowCommand(course, tows.laid, ZELKinTowCommand::Cut, index);
}

void ZELKinTranslatorPrivate::AddTowCommand(ZELKinTowCourse* course, const ZELCompTowMask& mask,
                                            ZELKinTowCommand::CommandType type, int index) const
{
    if (mask.GetNumEnabled() > 0)
        ZELKinTranslator::Create<ZELKinTowCommand>(course, mask, type, index);
}

void ZELKinTranslatorPrivate::TranslateProbing(ZELKinProgram* program, const ZELTPProbingProcedure* source) const
{
    auto* procedure = ZELKinTranslator::Create<ZELKinProbeProcedure>(program);
    procedure->SetSafetyPlane(source->GetSafetyPlane());
    procedure->SetToolPathProcedure(source);

    const ZELKinMachine* machine = program->GetMachine();
    const TipVariables tip{LinearVariable(machine, QStringLiteral("X")), LinearVariable(machine, QStringLiteral("Y")),
                           LinearVariable(machine, QStringLiteral("Z"))};
    // Trajectory i leads to probing point i, and trajectory i + 1 leaves it.
    const int numTrajectories = source->GetNumTrajectories();
    if (numTrajectories > 0)
        AddProbePositions(procedure, source->GetTrajectory(0), tip);
    for (int i = 0; i < source->GetNumProbingPoints(); ++i) {
        ZELKinTranslator::Create<ZELKinProbeCommand>(procedure, ZELKinProbeCommand::Sphere,
                                                     source->GetProbingPoint(i).GetDiameter());
        if (i + 1 < numTrajectories)
            AddProbePositions(procedure, source->GetTrajectory(i + 1), tip);
    }
}

void ZELKinTranslatorPrivate::AddProbePositions(ZELKinProbeProcedure* procedure, const ZELTPTrajectory* trajectory,
                                                const TipVariables& tip) const
{
    // Probe positions are not solved: the probe moves in tip coordinates.
    for (ZELTPPoint* point : trajectory->GetPoints()) {
        auto* position = ZELKinTranslator::Create<ZELKinPosition>(procedure);
        position->SetToolPathPoint(point);
        position->SetFeedrate(trajectory->GetFeedrate());
        const ZELMathPoint tipPoint = point->GetTipCoordinates();
        position->SetVariableValue(tip.x, tipPoint.GetX());
        position->SetVariableValue(tip.y, tipPoint.GetY());
        position->SetVariableValue(tip.z, tipPoint.GetZ());
    }
}

void ZELKinTranslatorPrivate::Solve(ZELKinProgram* program) const
{
    QList<ZELKinRollLayupProcedure*> layups;
    qint64 positions = 0;
    for (ZELKinProcedure* procedure : program->GetProcedures()) {
        if (auto* layup = qobject_cast<ZELKinRollLayupProcedure*>(procedure)) {
            layups.append(layup);
            positions += layup->GetNumPositions();
        }
    }
    ZELSysProgress progress(ZELKinTranslator::tr("Solving kinematics"), ZELKinTranslator::tr("positions"), positions);
    const ProgressOfSolver counting(solver, &progress);
    if (threadCount <= 1) {
        for (ZELKinRollLayupProcedure* layup : std::as_const(layups))
            Keep(program, SolveInPlace(layup));
        return;
    }
    // Up to threadCount procedures are solved ahead, each on a thread of
    // its own; the calling thread prints and keeps them in order.
    std::deque<std::future<SolvedProcedure>> running;
    qsizetype next = 0;
    while (next < layups.size() || !running.empty()) {
        while (next < layups.size() && running.size() < std::size_t(threadCount)) {
            ZELKinRollLayupProcedure* layup = layups.at(next++);
            running.push_back(std::async(std::launch::async, [this, layup] { return SolveHoldingLines(layup); }));
        }
        SolvedProcedure solved = running.front().get();
        running.pop_front();
        for (const QString& line : std::as_const(solved.lines))
            PrintLine(line);
        Keep(program, std::move(solved));
    }
}

ZELKinTranslatorPrivate::SolvedProcedure ZELKinTranslatorPrivate::SolveHoldingLines(
    ZELKinRollLayupProcedure* layup) const
{
    QStringList lines;
    ZELKinSolver::HoldProgressLines(&lines);
    try {
        SolvedProcedure solved = SolveInPlace(layup);
        ZELKinSolver::HoldProgressLines(nullptr);
        solved.lines = lines;
        return solved;
    } catch (...) {
        ZELKinSolver::HoldProgressLines(nullptr);
        throw;
    }
}

ZELKinTranslatorPrivate::SolvedProcedure ZELKinTranslatorPrivate::SolveInPlace(ZELKinRollLayupProcedure* layup) const
{
    SolvedProcedure solved{layup, solver->Solve(layup), QStringList(), std::nullopt};
    solved.failure = ZELKinSolver::TakeFailure();
    return solved;
}

void ZELKinTranslatorPrivate::Keep(ZELKinProgram* program, SolvedProcedure solved) const
{
    ZELKinSolutionSeries& series = solved.series;
    if (series.GetCount() == 0) {
        const ZELTPProcedure* source = solved.layup->GetToolPathProcedure();
        const QString name = source ? source->GetName() : QString();
        PrintLine(ZELKinTranslator::tr("      Could not successfully find a kinematics solution for procedure "
                                       "%1. It will be omitted from the program.")
                      .arg(name));
        const ZELKinSolver::FailurePlace place = solved.failure.value_or(ZELKinSolver::FailurePlace());
        omissions.append(ZELKinTranslator::Omission{name, place.onLink, place.script, place.point, place.reachable});
        program->RemoveProcedure(solved.layup);
        return;
    }
    // Taken rather than read: the solutions go as the positions take them.
    series.TakeEntries([](ZELKinCommand* command, const ZELKinSolution& solution) {
        solution.Apply(qobject_cast<ZELKinPosition*>(command));
    });
}

ZELKinTranslator::ZELKinTranslator(ZELKinSolver* solver)
    : ZELKinTranslator(new ZELKinTranslatorPrivate(this, solver))
{
}

ZELKinTranslator::ZELKinTranslator(ZELKinTranslatorPrivate* d)
    : d_ptr(d)
{
}

ZELKinTranslator::~ZELKinTranslator() = default;

void ZELKinTranslator::SetThreadCount(int count)
{
    Q_D(ZELKinTranslator);
    d->threadCount = std::max(1, count);
}

void ZELKinTranslator::SetPhaseLinesPrinted(bool printed)
{
    Q_D(ZELKinTranslator);
    d->phaseLinesPrinted = printed;
}

void ZELKinTranslator::SetCurrentDateTime(const QDateTime& now)
{
    Q_D(ZELKinTranslator);
    d->currentDateTime = now;
}

QList<ZELKinTranslator::Omission> ZELKinTranslator::GetOmissions() const
{
    Q_D(const ZELKinTranslator);
    return d->omissions;
}

ZELKinProgram* ZELKinTranslator::Translate(const ZELTPProgram* program) const
{
    Q_D(const ZELKinTranslator);
    d->omissions.clear();
    const QString author = AuthorFromEnvironment();
    if (d->phaseLinesPrinted)
        PrintLine(tr("Translating the program"));
    auto* result = Create<ZELKinProgram>(d->solver->GetMachine());
    result->SetAuthor(author);
    result->SetDate(d->GetProgramDate());
    const int numProcedures = program ? program->GetNumProcedures() : 0;
    {
        ZELSysProgress progress(tr("Translating the program"), tr("procedures"), numProcedures);
        for (int i = 0; i < numProcedures; ++i) {
            progress.SetItem(program->GetProcedure(i) ? program->GetProcedure(i)->GetName() : QString());
            d->TranslateProcedure(result, program->GetProcedure(i), i);
            progress.Advance(1);
        }
    }
    if (d->phaseLinesPrinted)
        PrintLine(tr("Solving kinematics"));
    d->Solve(result);
    return result;
}
