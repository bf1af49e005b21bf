#include "zelkinpathsolving_p.h"

#include "zelkinsolver_p.h"

#include "zelkincourse.h"
#include "zelkincourselink.h"
#include "zelkinposition.h"
#include "zelkinrolllayupprocedure.h"

#include <zelsysprogress.h>
#include <zeltpcourselink.h>
#include <zeltppoint.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The cost of a way that does not exist.
constexpr double kNoWay = std::numeric_limits<double>::quiet_NaN();

// The share of the path from the last chained position to the next one
// that lies before a waiting position. All origins may coincide: then the
// waiting positions stay with the last chained solution.
double Fraction(double arcLength, double pathLength)
{
    return pathLength > 0.0 ? arcLength / pathLength : 0.0;
}

} // namespace

ZELKinPathSolving::ZELKinPathSolving(const ZELKinSolverPrivate& solver, ZELKinRollLayupProcedure* procedure,
                                     const QString& procedureName)
    : solver(*solver.q_ptr)
    , progress(solver.progress)
    , procedure(procedure)
    , diagnostics(solver.debugPath, procedureName, solver.machine)
{
}

ZELKinSolutionSeries ZELKinPathSolving::Run()
{
    // A place left by a solve whose caller did not ask for it is not this one's.
    ZELKinSolver::TakeFailure();
    // The procedure's own GetCommand walks its children for every index;
    // walking the children here keeps the walk linear.
    const QList<ZELKinScript*> children = procedure->GetScriptsInCommandOrder();
    for (ZELKinScript* child : children) {
        if (!child)
            continue;
        EnterScript(child);
        const int count = child->GetNumCommands();
        int positions = 0;
        for (int index = 0; index < count; ++index) {
            if (auto* position = qobject_cast<ZELKinPosition*>(child->GetCommand(index))) {
                TakePosition(position);
                ++positions;
            }
        }
        if (progress)
            progress->Advance(positions);
    }
    return Finish();
}

ZELKinPathSolving::Script ZELKinPathSolving::Describe(ZELKinScript* script)
{
    Script described;
    if (const auto* course = qobject_cast<const ZELKinCourse*>(script)) {
        described.index = course->GetIndex();
        return described;
    }
    const auto* link = qobject_cast<const ZELKinCourseLink*>(script);
    described.isLink = true;
    described.index = link ? link->GetIndex() : 0;
    const ZELTPCourseLink* source = link ? link->GetToolPathCourseLink() : nullptr;
    switch (source ? source->GetPointsDetail() : ZELTPCourseLink::PointsDetailFull) {
    case ZELTPCourseLink::PointsDetailFull:
        described.continuity = ZELKinSolver::ContinuityFull;
        break;
    case ZELTPCourseLink::PointsDetailMedium:
        described.solved = false;
        described.firstRollOnly = true;
        described.continuity = ZELKinSolver::ContinuityFirstRoll;
        break;
    default:
        described.solved = false;
        break;
    }
    return described;
}

ZELMathAxis ZELKinPathSolving::FrameOf(const ZELKinPosition* position)
{
    const ZELTPPoint* point = position->GetToolPathPoint();
    return point ? point->GetToolFrame() : ZELMathAxis();
}

void ZELKinPathSolving::EnterScript(ZELKinScript* script)
{
    const bool previousHadPositions = pointNumber > 0;
    current = Describe(script);
    pointNumber = 0;
    if (current.isLink) {
        scriptContinuity = current.continuity;
        freshStart = false;
    } else if (!previousHadPositions) {
        freshStart = true;
    }
}

void ZELKinPathSolving::TakePosition(ZELKinPosition* position)
{
    if (++pointNumber == 1)
        diagnostics.BeginScript(current.isLink, current.index);
    const ZELMathAxis frame = FrameOf(position);
    if (!current.solved) {
        Wait(position, frame, false);
        return;
    }
    const QList<ZELKinSolution> candidates = solver.Solve(frame, false);
    diagnostics.WriteCandidates(pointNumber, candidates);
    if (ZELKinSolverPrivate::IsFree(candidates))
        Wait(position, frame, true);
    else
        Chain(position, frame, candidates);
}

void ZELKinPathSolving::Wait(ZELKinPosition* position, const ZELMathAxis& frame, bool free)
{
    const ZELMathPoint origin = frame.GetOrigin();
    pathLength += pathEnd.GetDistanceTo(origin);
    pathEnd = origin;
    waiting.push_back({position, frame, pathLength, free, current, pointNumber});
    waitingOnFirstRollLink = waitingOnFirstRollLink || current.firstRollOnly;
}

void ZELKinPathSolving::Chain(ZELKinPosition* position, const ZELMathAxis& frame,
                              const QList<ZELKinSolution>& candidates)
{
    const ZELKinSolver::Continuity continuity = ContinuityOfStep();
    QList<ZELKinSolutionSeries> next = live.isEmpty() ? StartSeries(position, candidates)
                                                      : ExtendSeries(position, frame, candidates, continuity);
    diagnostics.WriteStep(pointNumber, live, next);
    live = std::move(next);
    waiting.clear();
    waitingOnFirstRollLink = false;
    pathEnd = frame.GetOrigin();
    pathLength = 0.0;
    if (live.isEmpty()) {
        ReportFailure(current, pointNumber, !candidates.isEmpty());
        failed = true;
    }
}

ZELKinSolver::Continuity ZELKinPathSolving::ContinuityOfStep()
{
    if (!waiting.empty())
        return waitingOnFirstRollLink ? ZELKinSolver::ContinuityFirstRoll : ZELKinSolver::ContinuityNone;
    const ZELKinSolver::Continuity continuity = freshStart ? scriptContinuity : ZELKinSolver::ContinuityFull;
    freshStart = false;
    return continuity;
}

QList<ZELKinSolutionSeries> ZELKinPathSolving::StartSeries(ZELKinPosition* position,
                                                           const QList<ZELKinSolution>& candidates) const
{
    const ZELKinSolution infinite;
    QList<ZELKinSolutionSeries> started;
    started.reserve(candidates.size());
    for (const ZELKinSolution& candidate : candidates) {
        // A candidate from which a free position before it cannot be
        // reached starts no series.
        ZELKinSolutionSeries series;
        const WaitingPosition* unreached =
            PlaceWaiting(series, infinite, candidate, 0.0, waiting.cbegin(), waiting.cend());
        if (unreached)
            continue;
        series.Append(position, candidate);
        started.append(series);
    }
    return started;
}

QList<ZELKinSolutionSeries> ZELKinPathSolving::ExtendSeries(ZELKinPosition* position, const ZELMathAxis& frame,
                                                            const QList<ZELKinSolution>& candidates,
                                                            ZELKinSolver::Continuity continuity) const
{
    QList<ZELKinSolution> lastSolutions;
    lastSolutions.reserve(live.size());
    for (const ZELKinSolutionSeries& series : live)
        lastSolutions.append(series.GetLastSolution());
    const double totalLength = pathLength + pathEnd.GetDistanceTo(frame.GetOrigin());

    QList<ZELKinSolutionSeries> extended;
    extended.reserve(candidates.size());
    for (const ZELKinSolution& candidate : candidates) {
        Costs costs;
        for (int i = 0; i < live.size(); ++i) {
            const bool contiguous = solver.IsContiguous(lastSolutions.at(i), candidate, continuity);
            costs.append(contiguous ? live.at(i).GetCost() + solver.ComputeCost(lastSolutions.at(i), candidate)
                                    : kNoWay);
        }
        // The cheapest predecessor, unless a free position on the way cannot
        // be reached from it: then the next cheapest.
        for (int best = Cheapest(costs); best >= 0; best = Cheapest(costs)) {
            ZELKinSolutionSeries series = live.at(best);
            series.SetCost(costs.at(best));
            const WaitingPosition* unreached =
                PlaceWaiting(series, lastSolutions.at(best), candidate, totalLength, waiting.cbegin(), waiting.cend());
            if (unreached) {
                costs[best] = kNoWay;
                continue;
            }
            series.Append(position, candidate);
            extended.append(series);
            break;
        }
    }
    return extended;
}

const ZELKinPathSolving::WaitingPosition* ZELKinPathSolving::PlaceWaiting(ZELKinSolutionSeries& series,
                                                                          const ZELKinSolution& from,
                                                                          const ZELKinSolution& to, double totalLength,
                                                                          Waiting::const_iterator first,
                                                                          Waiting::const_iterator last) const
{
    for (auto entry = first; entry != last; ++entry) {
        const ZELKinSolution blend = solver.Solve(entry->frame, Fraction(entry->arcLength, totalLength), from, to);
        if (!entry->free) {
            series.Append(entry->position, blend);
            continue;
        }
        const ZELKinSolution solution = solver.SolveNearest(entry->frame, blend);
        if (solution.IsInfinite())
            return &*entry;
        series.Append(entry->position, solution);
    }
    return nullptr;
}

void ZELKinPathSolving::ReportFailure(const Script& script, int point, bool reachable) const
{
    ZELKinSolverPrivate::RecordFailure({script.isLink, script.index + 1, point, reachable});
    const QString line =
        script.isLink
            ? QCoreApplication::translate("ZELKinSolver", "    Kinematics solving failed for course link %1 at point %2")
            : QCoreApplication::translate("ZELKinSolver", "    Kinematics solving failed for course %1 at point %2");
    ZELKinSolver::PrintProgressLine(line.arg(script.index + 1).arg(point));
}

ZELKinPathSolving::Waiting::const_iterator ZELKinPathSolving::StartWithoutSolvedPosition()
{
    // The first free position decides what the wrist leaves free for all of
    // them; only a procedure without one starts from its first position.
    const auto isFree = [](const WaitingPosition& entry) { return entry.free; };
    auto first = std::find_if(waiting.cbegin(), waiting.cend(), isFree);
    if (first == waiting.cend())
        first = waiting.cbegin();
    const ZELKinSolution solution = solver.SolveNearest(first->frame, ZELKinSolution());
    if (solution.IsInfinite()) {
        ReportFailure(first->script, first->pointNumber, false);
        return waiting.cend();
    }
    // The positions before it are never solved, so each of them is placed.
    ZELKinSolutionSeries series;
    PlaceWaiting(series, ZELKinSolution(), solution, 0.0, waiting.cbegin(), first);
    series.Append(first->position, solution);
    live.append(series);
    return first + 1;
}

ZELKinSolutionSeries ZELKinPathSolving::Finish()
{
    if (failed || (waiting.empty() && live.isEmpty()))
        return ZELKinSolutionSeries();
    const auto rest = live.isEmpty() ? StartWithoutSolvedPosition() : waiting.cbegin();
    Costs costs;
    for (const ZELKinSolutionSeries& series : live)
        costs.append(series.GetCost());
    const WaitingPosition* unreached = nullptr;
    for (int best = Cheapest(costs); best >= 0; best = Cheapest(costs)) {
        ZELKinSolutionSeries result = live.at(best);
        const WaitingPosition* missed =
            PlaceWaiting(result, result.GetLastSolution(), ZELKinSolution(), 0.0, rest, waiting.cend());
        if (!missed)
            return result;
        unreached = unreached ? unreached : missed;
        costs[best] = kNoWay;
    }
    if (unreached)
        ReportFailure(unreached->script, unreached->pointNumber, false);
    return ZELKinSolutionSeries();
}

int ZELKinPathSolving::Cheapest(const Costs& costs)
{
    int best = -1;
    for (int i = 0; i < costs.size(); ++i) {
        if (!std::isnan(costs.at(i)) && (best < 0 || costs.at(i) < costs.at(best)))
            best = i;
    }
    return best;
}
