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

    //! Where path solving of a procedure first found no way on: the script
    //! (a course or a course link, numbered from 1 as the failure line
    //! numbers it) and the position in it (from 1), and whether any wrist
    //! configuration reached that position at all.
    struct FailurePlace
    {
        bool onLink = false;
        int script = 0;
        int point = 0;
        bool reachable = false;
    };
    //! Keeps `place` for the calling thread unless a place is kept already:
    //! the first failure of a procedure is the one that explains it.
    static void RecordFailure(const FailurePlace& place);
    //! The place kept for the calling thread since the last call, if any,
    //! and forgets it.
    static std::optional<FailurePlace> TakeFailure();

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
