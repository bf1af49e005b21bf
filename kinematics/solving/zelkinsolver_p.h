#ifndef ZELKINSOLVER_P_H
#define ZELKINSOLVER_P_H

#include "zelkinsolver.h"

#include <QString>
#include <QStringList>
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

    //! Writes `line` and a line end to standard output at once, so that
    //! progress and failure lines keep their order with other output; on a
    //! thread that holds its lines back, appends it to them instead.
    static void PrintLine(const QString& line);
    //! From now on PrintLine on the calling thread appends to `lines`; null
    //! makes it print again. Procedures solved side by side hold their lines
    //! back, so that they can be printed in the procedures' order.
    static void HoldLines(QStringList* lines);
    //! Whether the candidates of a frame leave the wrist free: the infinite
    //! solution alone.
    static bool IsFree(const QList<ZELKinSolution>& candidates);

    ZELKinSolver* const q_ptr;
    //! The machine solved for; not owned.
    ZELKinMachine* const machine;
    //! Folder of the per-procedure diagnostic files of path solving; none when empty.
    QString debugPath;
    //! Folder of the summary diagnostics of path solving; none when empty.
    QString summaryPath;
    //! Room for state that path solving might keep between procedures. It
    //! keeps none today (each Solve(procedure) starts from scratch), so the
    //! word stays zero.
    quint64 pathSolvingState = 0;
};

#endif // ZELKINSOLVER_P_H
