#include "zelkinsolver.h"
#include "zelkinsolver_p.h"

ZELKinSolver::ZELKinSolver(ZELKinSolverPrivate* d)
    : d_ptr(d)
{
}

ZELKinSolver::ZELKinSolver(ZELKinMachine* machine)
    : ZELKinSolver(new ZELKinSolverPrivate(this, machine))
{
}

ZELKinSolver::~ZELKinSolver() = default;

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

void ZELKinSolver::SetSummaryPath(const QString& path)
{
    Q_D(ZELKinSolver);
    d->summaryPath = path;
}
