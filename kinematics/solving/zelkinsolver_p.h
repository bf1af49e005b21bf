#ifndef ZELKINSOLVER_P_H
#define ZELKINSOLVER_P_H

#include "zelkinsolver.h"

#include <QString>
#include <QtGlobal>

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

    ZELKinSolver* const q_ptr;
    //! The machine solved for; not owned.
    ZELKinMachine* const machine;
    //! Folder of the per-procedure diagnostic files of path solving; none when empty.
    QString debugPath;
    //! Folder of the summary diagnostics of path solving; none when empty.
    QString summaryPath;
    //! Working state that procedure path solving keeps with the solver;
    //! zero until path solving sets it.
    quint64 pathSolvingState = 0;
};

#endif // ZELKINSOLVER_P_H
