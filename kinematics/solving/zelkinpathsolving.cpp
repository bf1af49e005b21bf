#include "zelkinpathsolving_p.h"

#include "zelkinsolver_p.h"

#include "zelkincourse.h"
#include "zelkincourselink.h"
#include "zelkinposition.h"
#include "zelkinrolllayupprocedure_p.h"

#include <zeltpcourselink.h>
#include <zeltppoint.h>

#include <QCoreApplication>

namespace {

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
    , procedure(procedure)
    , diagnostics(solver.debugPath, procedureName, solver.machine)
{
}

ZELKinSolutionSeries ZELKinPathSolving::Run()
{
    // A place left by a solve whose caller did not ask for it is not this one's.
    ZELKinSolverPrivate::TakeFailure();
    // The procedure's own GetCommand walks its children for every index;
    // walking the children here keeps the walk linear.
    const QList<ZELKinScript*> children =
        ZELKinRollLayupProcedurePrivate::get(procedure)->GetChildrenInCommandOrder();
    for (ZELKinScript* child : children) {
        if (!child)
            continue;
        EnterScript(child);
        const int count = child->GetNumCommands();
        for (int index = 0; index < count; ++index) {
            if (auto* position = qobject_cast<ZELKinPosition*>(child->GetCommand(index)))
                TakePosition(position);
        }
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
        Wait(position, frame);
        return;
    }
    const QList<ZELKinSolution> candidates = solver.Solve(frame, false);
    diagnostics.WriteCandidates(pointNumber, candidates);
    if (candidates.size() == 1 && candidates.first().IsInfinite())
        Wait(position, frame);
    else
        Chain(position, frame, candidates);
}

void ZELKinPathSolving::Wait(ZELKinPosition* position, const ZELMathAxis& frame)
{
    const ZELMathPoint origin = frame.GetOrigin();
    pathLength += pathEnd.GetDistanceTo(origin);
    pathEnd = origin;
    waiting.push_back({position, frame, pathLength});
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
        ReportFailure(!candidates.isEmpty());
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
        ZELKinSolutionSeries series;
        for (const WaitingPosition& entry : waiting)
            series.Append(entry.position, solver.Solve(entry.frame, 0.0, infinite, candidate));
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
        int best = -1;
        double bestCost = 0.0;
        for (int i = 0; i < live.size(); ++i) {
            if (!solver.IsContiguous(lastSolutions.at(i), candidate, continuity))
                continue;
            const double cost = live.at(i).GetCost() + solver.ComputeCost(lastSolutions.at(i), candidate);
            if (best < 0 || cost < bestCost) {
                best = i;
                bestCost = cost;
            }
        }
        if (best < 0)
            continue;
        ZELKinSolutionSeries series = live.at(best);
        series.SetCost(bestCost);
        for (const WaitingPosition& entry : waiting) {
            const double fraction = Fraction(entry.arcLength, totalLength);
            series.Append(entry.position, solver.Solve(entry.frame, fraction, lastSolutions.at(best), candidate));
        }
        series.Append(position, candidate);
        extended.append(series);
    }
    return extended;
}

void ZELKinPathSolving::ReportFailure(bool reachable) const
{
    ZELKinSolverPrivate::RecordFailure({current.isLink, current.index + 1, pointNumber, reachable});
    const QString line =
        current.isLink
            ? QCoreApplication::translate("ZELKinSolver", "    Kinematics solving failed for course link %1 at point %2")
            : QCoreApplication::translate("ZELKinSolver", "    Kinematics solving failed for course %1 at point %2");
    ZELKinSolverPrivate::PrintLine(line.arg(current.index + 1).arg(pointNumber));
}

ZELKinSolutionSeries ZELKinPathSolving::Finish()
{
    if (failed)
        return ZELKinSolutionSeries();
    const ZELKinSolution infinite;
    auto first = waiting.cbegin();
    if (live.isEmpty()) {
        // No position was ever solved: the wrist is free all along.
        if (first == waiting.cend())
            return ZELKinSolutionSeries();
        live.append(ZELKinSolutionSeries(first->position, solver.Solve(first->frame, 0.0, infinite, infinite)));
        ++first;
    }
    ZELKinSolutionSeries result = live.at(Cheapest(live));
    const ZELKinSolution last = result.GetLastSolution();
    for (auto entry = first; entry != waiting.cend(); ++entry)
        result.Append(entry->position, solver.Solve(entry->frame, 0.0, last, infinite));
    return result;
}

int ZELKinPathSolving::Cheapest(const QList<ZELKinSolutionSeries>& series)
{
    int best = 0;
    for (int i = 1; i < series.size(); ++i) {
        if (series.at(i).GetCost() < series.at(best).GetCost())
            best = i;
    }
    return best;
}
