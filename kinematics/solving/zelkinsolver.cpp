#include "zelkinsolver.h"
#include "zelkinsolver_p.h"

#include "zelkinpathsolving_p.h"
#include "zelkinrolllayupprocedure.h"

#include <zelsysprogress.h>
#include <zeltpprocedure.h>

#include <QCoreApplication>

#include <limits>

namespace {

//! The name of the toolpath procedure `procedure` was translated from; empty
//! when there is none.
QString ToolPathNameOf(const ZELKinProcedure* procedure)
{
    const ZELTPProcedure* source = procedure->GetToolPathProcedure();
    return source ? source->GetName() : QString();
}

thread_local QStringList* heldLines = nullptr;
thread_local std::optional<ZELKinSolver::FailurePlace> failurePlace;

} // namespace

void ZELKinSolver::HoldProgressLines(QStringList* lines)
{
    heldLines = lines;
}

void ZELKinSolverPrivate::RecordFailure(const ZELKinSolver::FailurePlace& place)
{
    if (!failurePlace)
        failurePlace = place;
}

std::optional<ZELKinSolver::FailurePlace> ZELKinSolver::TakeFailure()
{
    std::optional<FailurePlace> taken;
    taken.swap(failurePlace);
    return taken;
}

void ZELKinSolver::PrintProgressLine(const QString& line)
{
    if (heldLines) {
        heldLines->append(line);
        return;
    }
    ZELSysProgress::WriteLine(line);
}

bool ZELKinSolverPrivate::IsFree(const QList<ZELKinSolution>& candidates)
{
    return candidates.size() == 1 && candidates.first().IsInfinite();
}

ZELKinSolver::ZELKinSolver(ZELKinSolverPrivate* d)
    : d_ptr(d)
{
}

ZELKinSolver::ZELKinSolver(ZELKinMachine* machine)
    : ZELKinSolver(new ZELKinSolverPrivate(this, machine))
{
}

ZELKinSolver::~ZELKinSolver() = default;

double ZELKinSolver::GetTipReach(const ZELKinVariable*) const
{
    return std::numeric_limits<double>::quiet_NaN();
}

ZELKinSolution ZELKinSolver::SolveNearest(const ZELMathAxis& frame, const ZELKinSolution& guess) const
{
    const QList<ZELKinSolution> candidates = Solve(frame, false);
    if (candidates.isEmpty())
        return ZELKinSolution();
    if (ZELKinSolverPrivate::IsFree(candidates))
        return guess;
    if (guess.IsInfinite())
        return candidates.first();
    int nearest = 0;
    double nearestCost = ComputeCost(guess, candidates.first());
    for (int i = 1; i < candidates.size(); ++i) {
        const double cost = ComputeCost(guess, candidates.at(i));
        if (cost < nearestCost) {
            nearest = i;
            nearestCost = cost;
        }
    }
    return candidates.at(nearest);
}

ZELKinMachine* ZELKinSolver::GetMachine() const
{
    Q_D(const ZELKinSolver);
    return d->machine;
}

void ZELKinSolver::SetDebugPath(const QString& path)
{
    Q_D(ZELKinSolver);
    d->debugPath = path;
}

void ZELKinSolver::SetProgress(ZELSysProgress* progress)
{
    Q_D(ZELKinSolver);
    d->progress = progress;
}

void ZELKinSolver::SetSummaryPath(const QString& path)
{
    Q_D(ZELKinSolver);
    d->summaryPath = path;
}

ZELKinSolutionSeries ZELKinSolver::Solve(ZELKinProcedure* procedure) const
{
    Q_D(const ZELKinSolver);
    auto* layup = qobject_cast<ZELKinRollLayupProcedure*>(procedure);
    if (!layup)
        return ZELKinSolutionSeries();
    const QString name = ToolPathNameOf(layup);
    ZELKinSolver::PrintProgressLine(QCoreApplication::translate("ZELKinSolver", "  Processing %1").arg(name));
    return ZELKinPathSolving(*d, layup, name).Run();
}
