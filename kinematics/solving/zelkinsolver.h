#ifndef ZELKINSOLVER_H
#define ZELKINSOLVER_H

#include "zelkinematics_export.h"
#include "zelkinsolution.h"
#include "zelkinsolutionseries.h"

#include <zelmathaxis.h>
#include <zelmathpoint.h>

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class ZELKinMachine;
class ZELKinProcedure;
class ZELKinSolverPrivate;
class ZELSysProgress;
class ZELKinVariable;

/*!
    The inverse-kinematics solver of a machine: it turns tool frames into
    joint-space solutions, converts solutions to and from TRAORI form, and
    judges and prices the moves between solutions.

    A machine creates its solver (ZELKinMachine::CreateSolver) and hands it
    the machine's solver configuration text through Configure, before any
    solving; the caller owns the solver. The diagnostic paths may be set at
    any time before solving.

    ZELKinSolver is abstract and owns the private object of its whole class
    tree: a derived solver extends ZELKinSolverPrivate and hands its own
    private object to the protected constructor.

    Lengths are in millimetres and angles in radians, as in the solutions.
    The calls the base implements do not throw; each solver states what its
    own operations throw.
*/
class ZELKINEMATICS_EXPORT ZELKinSolver
{
public:
    //! How strictly a move must keep the wrist continuous.
    enum Continuity : qint32 {
        //! The whole wrist moves continuously (both rolls and the bend).
        ContinuityFull = 0,
        //! Only the first roll axis must move continuously.
        ContinuityFirstRoll = 1,
        //! Any move counts as contiguous.
        ContinuityNone = 2
    };

    virtual ~ZELKinSolver();

    //! Reads the machine's solver configuration text.
    virtual void Configure(const QString& config) = 0;
    //! The solution at a point `fraction` (0 to 1) of the way from the
    //! solved point `from` to the solved point `to`, with tool frame `frame`.
    virtual ZELKinSolution Solve(const ZELMathAxis& frame, double fraction, const ZELKinSolution& from,
                                 const ZELKinSolution& to) const = 0;
    //! Every solution that puts the tool on `frame`, in TRAORI form when
    //! `traori` is true; empty when the frame cannot be reached.
    virtual QList<ZELKinSolution> Solve(const ZELMathAxis& frame, bool traori) const = 0;
    //! The machine axis values of a solution whose linear values are the
    //! tool tip position.
    virtual ZELKinSolution FromTraori(const ZELKinSolution& solution) const = 0;
    //! The inverse of FromTraori.
    virtual ZELKinSolution ToTraori(const ZELKinSolution& solution) const = 0;
    //! The tool tip position (millimetres) of a solution.
    virtual ZELMathPoint GetTipPoint(const ZELKinSolution& solution) const = 0;
    //! Whether the machine can move from `a` to `b` without a wrist flip
    //! under `mode`.
    virtual bool IsContiguous(const ZELKinSolution& a, const ZELKinSolution& b, Continuity mode) const = 0;
    //! The cost of the move from `a` to `b`; lower is better.
    virtual double ComputeCost(const ZELKinSolution& a, const ZELKinSolution& b) const = 0;
    /*!
        The solution of `frame` nearest `guess`. Path solving asks it for
        the positions whose wrist is free, with the blend of their solved
        neighbours as `guess` (an infinite one when no position of the
        procedure was solved), so that what the frame still fixes is met.

        Here: of the candidates of Solve(frame, false), the one with the
        least ComputeCost from `guess`, the first of equally cheap ones, and
        the first of all when `guess` is infinite. When the frame leaves
        every configuration open (Solve gives the infinite solution alone),
        `guess` itself. An infinite solution when no candidate reaches the
        frame. A solver whose free wrist still has to meet part of the frame
        overrides it. Throws nothing of its own; what Solve and ComputeCost
        throw passes through.
    */
    virtual ZELKinSolution SolveNearest(const ZELMathAxis& frame, const ZELKinSolution& guess) const;

    /*!
        How far the tool tip can stand from the axis of the joint that the
        rotary `variable` drives, in any configuration (mm): turning that
        joint by a small angle moves the tip, and with it the slides, by at
        most this times the angle. NaN when the solver does not know it, as
        here; a solver that knows its wrist overrides it. Throws nothing.
    */
    virtual double GetTipReach(const ZELKinVariable* variable) const;

    //! The machine solved for (not owned).
    ZELKinMachine* GetMachine() const;
    /*!
        Folder for the diagnostic files of path solving; an empty path (the
        default) writes none. Under it, Solve(procedure) writes one folder
        per toolpath procedure name (left out when the name is empty), in it
        one folder per course or course link that holds positions, named
        "course <n>" or "link <n>" (n = index + 1), holding:
        - "solutions.txt": the solver's candidates at each solved position;
        - "seriesList.txt": the ids of the live series after each step;
        - "series <id>.txt": the entries of each live series, rewritten
          after each step, with "<aborted>" appended when the series dies.
        Folders are made as needed and files overwritten. The formats are
        described in docs/path-solving-diagnostics.md.
    */
    void SetDebugPath(const QString& path);
    //! Folder for summary diagnostics; empty by default. Path solving
    //! writes nothing there.
    void SetSummaryPath(const QString& path);
    //! Counts the positions Solve(procedure) walks in `progress` (not
    //! owned; null, the default, for none), a script at a time, from every
    //! thread that solves.
    void SetProgress(ZELSysProgress* progress);

    /*!
        Solves a whole roll layup procedure into one series of solutions,
        one per position in path order. Any other procedure (a probe
        procedure, a null one) gives an empty series and prints nothing.

        For a roll layup procedure it first writes the progress line
        "  Processing <name>" to standard output, <name> being the name of
        the procedure's toolpath procedure (empty when it has none). It then
        returns the cheapest continuous series: one solution per position,
        in path order (link 0, course 0, link 1, ...), chosen among the
        candidates of Solve(frame, false) at each course position and each
        position of a link of full points detail, so that every move is
        contiguous (IsContiguous) and the sum of ComputeCost along the
        series is least; on equal costs the series met first wins. The
        positions of links of lower detail get wrist values blended by arc
        length between their neighbours through Solve(frame, fraction, from,
        to), or keep the last solved ones at the end of the procedure (the
        first ones at its start). A position whose wrist is free gets
        SolveNearest(frame, that blend); when no position of the procedure
        is solved, the first free one gets SolveNearest(frame, infinite
        solution) and the others follow it. Every position of a returned
        series has its values. The solutions are not applied to the
        positions.

        When some position cannot be chained, the line "    Kinematics
        solving failed for course <n> at point <m>" ("course link <n>" for
        a link; n = index + 1, m = the position's number within it, from
        1) goes to standard output, the walk goes on, and the result is an
        empty series; so too, naming the free position, when SolveNearest
        finds no solution for a free position after the last solved one or
        for the first free one of a procedure without solved positions. A
        procedure without positions also gives an empty series.

        A derived solver that overrides the other Solve overloads hides this
        one: call it through a ZELKinSolver reference or pointer, or bring
        it in with a using-declaration. Throws nothing of its own; what the
        derived solver's operations throw passes through.
    */
    ZELKinSolutionSeries Solve(ZELKinProcedure* procedure) const;

    //! Where Solve(procedure) first found no way on: the script (a course
    //! or a course link, numbered from 1 as the failure line numbers it)
    //! and the position in it (from 1), and whether any wrist configuration
    //! reached that position at all.
    struct FailurePlace
    {
        bool onLink = false;
        int script = 0;
        int point = 0;
        bool reachable = false;
    };
    //! The place of the first failure of Solve(procedure) on the calling
    //! thread since the last call, if any; forgets it.
    static std::optional<FailurePlace> TakeFailure();

    //! Writes `line` where the libraries' progress lines go
    //! (ZELSysProgress::WriteLine; standard output unless the host chose
    //! otherwise) at once, so that progress and failure lines keep their
    //! order with other output; on a thread that holds its lines back,
    //! appends it to them instead.
    static void PrintProgressLine(const QString& line);
    //! From now on the progress and failure lines of the calling thread go
    //! to `lines`; null prints them again. Procedures solved side by side
    //! hold their lines back, so that they can be printed in the
    //! procedures' order.
    static void HoldProgressLines(QStringList* lines);

protected:
    //! Takes ownership of `d`, a derived solver's private object.
    explicit ZELKinSolver(ZELKinSolverPrivate* d);
    //! Creates a private object of the base for `machine`.
    explicit ZELKinSolver(ZELKinMachine* machine);

    std::unique_ptr<ZELKinSolverPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinSolver)
    Q_DISABLE_COPY_MOVE(ZELKinSolver)
};

#endif // ZELKINSOLVER_H
