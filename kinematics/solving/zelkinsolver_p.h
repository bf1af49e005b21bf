#ifndef ZELKINSOLVER_P_H
#define ZELKINSOLVER_P_H

#include "zelkinsolver.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

class ZELKinSolverPrivate
{
    Q_DECLARE_PUBLIC(ZELKinSolver)

public:
    ZELKinSolverPrivate(ZELKinSolver* q, ZELKinMachine* machine)
        : q_ptr(q)
        , machine(machine)
    {
    }
    virtual ~ZELKinSolverPrivate() = default;

    //! Whether the candidates of a frame leave the wrist free: the infinite
    //! solution alone.
    static bool IsFree(const QList<ZELKinSolution>& candidates);

    //! Keeps `place` for the calling thread unless a place is kept already
    //! (ZELKinSolver::TakeFailure): the first failure of a procedure is the
    //! one that explains it.
    static void RecordFailure(const ZELKinSolver::FailurePlace& place);

    ZELKinSolver* const q_ptr;
    //! The machine solved for; not owned.
    ZELKinMachine* const machine;
    //! Folder of the per-procedure diagnostic files of path solving; none when empty.
    QString debugPath;
    //! Folder of the summary diagnostics of path solving; none when empty.
    QString summaryPath;
    //! Counts the positions walked; not owned, null for none.
    ZELSysProgress* progress = nullptr;
    //! Room for state that path solving might keep between procedures. It
    //! keeps none today (each Solve(procedure) starts from scratch), so the
    //! word stays zero.
    quint64 pathSolvingState = 0;
};

#endif // ZELKINSOLVER_P_H
