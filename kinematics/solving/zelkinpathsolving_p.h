#ifndef ZELKINPATHSOLVING_P_H
#define ZELKINPATHSOLVING_P_H

#include "zelkinpathsolvingdiagnostics_p.h"
#include "zelkinsolutionseries.h"
#include "zelkinsolver.h"

#include <zelmathaxis.h>
#include <zelmathpoint.h>

#include <QList>
#include <QVarLengthArray>

#include <vector>

class ZELKinPosition;
class ZELKinRollLayupProcedure;
class ZELKinScript;
class ZELKinSolverPrivate;
class ZELSysProgress;

/*!
    Solves one roll layup procedure into one continuous series of solutions,
    one per position in path order, for ZELKinSolver::Solve(procedure). It
    asks the solver only through its abstract operations.

    The positions are walked link 0, course 0, link 1, ... Each course
    position, and each position of a link whose toolpath link asks for full
    points detail, is solved at the tool frame of its toolpath point: every
    candidate that the solver gives either starts a new series (while there
    is none) or extends a copy of the live series it continues most cheaply.
    Of equally cheap predecessors the first live series wins, and of equally
    cheap series at the end the first one. The live series form the beam;
    a candidate that continues none of them is dropped.

    Positions whose wrist is free (the solver gives one infinite solution)
    and the positions of links of lower detail wait until the next position
    is chained. The positions of links of lower detail then get the wrist
    values blended by arc length between the solutions before and after
    them; those at the very end keep the last solved wrist values, those at
    the start the first ones. A free position starts from that same blend
    and asks the solver for the solution of its frame nearest it
    (SolveNearest), which keeps what the wrist leaves free and meets the
    rest of the frame. When no position of the procedure is solved, the
    first free one (the first position, when none is free) is solved with
    nothing to be near, and the others follow it as they would a solved
    position. A series from which some free position cannot be reached is
    not continued: the next cheapest predecessor is tried, and a candidate
    that none leads to is dropped. So every position of a series that Run
    returns has its values.

    How strictly a step keeps the wrist continuous:
    - with positions waiting: the first roll when one of them lies on a
      link of medium detail, else not at all;
    - else ContinuityFull, but a course that follows a script without
      positions (an empty link, or nothing at the start of the procedure)
      starts afresh: its first step without positions waiting takes what
      the last link asks for (full detail: ContinuityFull, medium:
      ContinuityFirstRoll, low or any other value: ContinuityNone, and
      ContinuityNone before any link). A link with positions cancels a
      fresh start that has not been used yet.

    A position that no candidate can chain does not end the walk: the line
    "    Kinematics solving failed for course <n> at point <m>" (or "course
    link <n>") goes to standard output, n being the script's index + 1 and
    m the position's number within its script from 1, the beam starts
    afresh at the next solved position, and the procedure's result is an
    empty series. At the end of the walk, a free position that no series
    reaches, and a first free position that has no solution at all, are
    reported the same way and give the empty series too.

    Choices where the procedure's data leaves it open: a position without a
    toolpath point is solved at the world frame, and a link without a
    toolpath link counts as one of full points detail.

    Cost: each step costs the number of candidates times the number of live
    series, plus one append per waiting position and candidate, and for a
    free position one SolveNearest (again for the next predecessor when one
    cannot reach it); series share their history, so the whole walk is
    linear in the number of positions.
    Diagnostics (ZELKinPathSolvingDiagnostics) are written only under a
    debug path and cost nothing without one.
*/
class ZELKinPathSolving
{
public:
    //! Solves `procedure` (not null) with the solver of `solver`;
    //! `procedureName` names the procedure's diagnostics folder.
    ZELKinPathSolving(const ZELKinSolverPrivate& solver, ZELKinRollLayupProcedure* procedure,
                      const QString& procedureName);

    //! The cheapest continuous series; empty when a position could not be
    //! chained or the procedure has no position. Call it once. Throws
    //! nothing of its own; what the solver's operations throw passes
    //! through.
    ZELKinSolutionSeries Run();

private:
    //! The script being walked and what its points detail asks for.
    struct Script
    {
        bool isLink = false;
        int index = 0;
        //! Its positions are solved, not interpolated.
        bool solved = true;
        //! Its positions keep only the first roll continuous.
        bool firstRollOnly = false;
        ZELKinSolver::Continuity continuity = ZELKinSolver::ContinuityNone;
    };

    //! A position whose solution is still open, with the path length (mm)
    //! from the last chained position to it.
    struct WaitingPosition
    {
        ZELKinPosition* position;
        ZELMathAxis frame;
        double arcLength;
        //! Solved with its wrist free, rather than never solved.
        bool free;
        //! Its script and number there, for the failure line.
        Script script;
        int pointNumber;
    };
    using Waiting = std::vector<WaitingPosition>;
    //! Costs of the ways to one solution, NaN where there is none.
    using Costs = QVarLengthArray<double, 16>;

    static Script Describe(ZELKinScript* script);
    static ZELMathAxis FrameOf(const ZELKinPosition* position);

    void EnterScript(ZELKinScript* script);
    void TakePosition(ZELKinPosition* position);
    void Wait(ZELKinPosition* position, const ZELMathAxis& frame, bool free);
    void Chain(ZELKinPosition* position, const ZELMathAxis& frame, const QList<ZELKinSolution>& candidates);
    ZELKinSolver::Continuity ContinuityOfStep();
    QList<ZELKinSolutionSeries> StartSeries(ZELKinPosition* position,
                                            const QList<ZELKinSolution>& candidates) const;
    QList<ZELKinSolutionSeries> ExtendSeries(ZELKinPosition* position, const ZELMathAxis& frame,
                                             const QList<ZELKinSolution>& candidates,
                                             ZELKinSolver::Continuity continuity) const;
    //! Appends the waiting positions from `first` to `last` to `series`,
    //! placed between the solved solutions `from` and `to` (either infinite
    //! at an end of the procedure) by their arc length out of `totalLength`
    //! (0: at `from`'s end). Returns the first free position that no
    //! solution reaches, the series then being unusable; null when all are
    //! placed.
    const WaitingPosition* PlaceWaiting(ZELKinSolutionSeries& series, const ZELKinSolution& from,
                                        const ZELKinSolution& to, double totalLength, Waiting::const_iterator first,
                                        Waiting::const_iterator last) const;
    //! Starts the one live series of a procedure in which no position was
    //! solved. Returns where the positions after its first one begin; when
    //! that first one has no solution, reports it and leaves `live` empty.
    Waiting::const_iterator StartWithoutSolvedPosition();
    //! Prints the failure line for `point` of `script` and keeps its place
    //! for the translator; `reachable` says whether any wrist configuration
    //! reached the position.
    void ReportFailure(const Script& script, int point, bool reachable) const;
    ZELKinSolutionSeries Finish();
    //! The index of the least cost, the first of equal ones; -1 when every
    //! cost is NaN.
    static int Cheapest(const Costs& costs);

    const ZELKinSolver& solver;
    ZELSysProgress* const progress;
    ZELKinRollLayupProcedure* const procedure;
    ZELKinPathSolvingDiagnostics diagnostics;

    QList<ZELKinSolutionSeries> live;
    Waiting waiting;
    //! Some waiting position lies on a link of medium detail.
    bool waitingOnFirstRollLink = false;
    //! What the last link asks for, used by a fresh start.
    ZELKinSolver::Continuity scriptContinuity = ZELKinSolver::ContinuityNone;
    bool freshStart = false;
    Script current;
    //! The current position's number within its script, from 1.
    int pointNumber = 0;
    bool failed = false;
    //! The frame origin of the last position taken, and the path length
    //! (mm) from the last chained position to it.
    ZELMathPoint pathEnd;
    double pathLength = 0.0;
};

#endif // ZELKINPATHSOLVING_P_H
