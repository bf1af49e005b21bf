#ifndef ZELKINRBRSOLVER_H
#define ZELKINRBRSOLVER_H

#include "zelkinsolver.h"

#include <QCoreApplication>

class ZELKinRBRSolverPrivate;

/*!
    The solver of a fibre placement head carried by three linear axes, whose
    variables are labelled "X", "Y" and "Z", and a roll-bend-roll wrist: a
    first roll joint, a bend joint and a second roll joint, all rotary, each
    driven by its variable 0.

    A tool frame has its origin at the compaction point on the part, its
    first direction (u) along the direction of travel and its third
    direction (w) along the surface normal. Solutions come in TRAORI form:
    their X, Y and Z are the roller centre, the compaction point moved by the
    roller radius along the normal; FromTraori turns them into machine axis
    values and ToTraori back.

    Lengths are in millimetres, angles in radians (the configuration text
    gives the normal tolerance in degrees).

    The wrist is found when the solver is built: below every joint of the
    third level of the joint tree (the carriers of the wrist) hangs a chain of
    three rotary joints, first roll, bend, second roll, each the only child of
    the one before; when several third-level joints exist, the last one walked
    wins. The variables driving the wrist joints and their limits are read
    then too, once: the machine must not change under its solver. The
    joints' reference frames are built by Configure, which must run before
    any solving.

    No candidate lies outside its variable's limits. Solve lists at most
    eight half turns of the first roll either way of its angle, and at most
    eight whole turns of the second, in each case the turns within the
    limits nearest the angle: all of them for a real wrist, whose axes
    travel a turn or two, and a bounded list (at most 17 x 17 candidates)
    for infinite or huge limits and any range wider than eight turns either
    way. A range far from zero is reached as easily as one around it: the
    turns short of it are counted, not walked. A NaN limit is no limit on
    its side, the same as an infinite one.

    The wrist is singular where the normal lies within the normal tolerance
    of the first roll axis or of its opposite: the first roll is then free,
    and SolveNearest finds the rest of the wrist for a first roll chosen by
    continuity.
*/
class ZELKINEMATICS_EXPORT ZELKinRBRSolver : public ZELKinSolver
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinRBRSolver)

public:
    /*!
        Finds the wrist, the X, Y and Z variables and, for an AFP machine,
        the roller radius of `machine` (not owned). A null machine gives a
        solver without wrist, which Configure refuses.

        Throws ZELSysException when a third-level joint does not carry a
        roll-bend-roll chain: "there must only be one first roll joint",
        "first roll joint is not rotary", "there must be only one bend
        joint", "the bend joint is not rotary", "there must only be one second
        roll joint" or "the second roll joint is not rotary".
    */
    explicit ZELKinRBRSolver(ZELKinMachine* machine);
    ~ZELKinRBRSolver() override;

    /*!
        Reads the configuration text: items separated by ";", each a key, a
        ":" and a value, with surrounding and doubled blanks ignored. Keys:
        "normal-tolerance" (degrees; text that is not a number gives 0),
        "first-roll-reference", "bend-reference", "second-roll-reference"
        (zero directions of the joints) and "tip-point" (the tool tip with
        every axis at zero, mm), each of the last four three numbers
        separated by ",". Then builds each joint's frame: origin at the
        pivot, third direction along the rotation axis, first direction along
        the reference made perpendicular to the axis.

        An unknown key, the empty one of an empty item included, logs the
        warning "Unknown solver variable: <key>" and is ignored. A vector that
        is not three numbers ends the process through Qt's fatal message
        "Variable not 3 coordinates separated by ','". Throws ZELSysException
        "not a rotary joint" when the machine has no wrist.
    */
    void Configure(const QString& config) override;

    /*!
        The solution `fraction` (0 to 1) of the way from `from` to `to`: the
        wrist values blended linearly, X, Y and Z the roller centre of
        `frame` (its origin moved by the roller radius along its normal), in
        TRAORI form. When one end is infinite (defines nothing), a copy of
        the other with X, Y and Z at the roller centre; when both are, an
        infinite solution. Throws nothing.
    */
    ZELKinSolution Solve(const ZELMathAxis& frame, double fraction, const ZELKinSolution& from,
                         const ZELKinSolution& to) const override;

    /*!
        Every wrist configuration that puts the head on `frame`, in TRAORI
        form, each value within its variable's limits: first roll candidates
        from the angle that turns the bend axis across the normal, brought
        to the range by half turns, then half a turn less, a whole turn
        less, ..., then half a turn more, ...; for each, the bend and the
        second roll candidates, the angle itself, then whole turns less,
        then whole turns more. A first roll range narrower than half a turn
        may hold none of them.

        A bend within the normal tolerance of 0 counts as none for its range
        check: it is snapped to 0 before it. A bend range that leaves out 0
        but reaches into that band, such as [0.0002, 1] with the default
        tolerance of 0.001, therefore drops the bends of the band that it
        holds (0.0005 as well as 0.0001), and a range [0, 1] keeps a bend of
        -0.0005, as 0. Where the range holds the bend itself, the solution
        keeps it as computed (0.0005 stays 0.0005), so that the head meets
        the normal; a snapped bend would tilt it by up to the tolerance.
        Below 1e-12 rad, what rounding leaves of no bend, it is exactly 0.

        When the normal lies within the normal tolerance of the first roll
        axis or of its opposite the wrist is free: without `traori` the list
        holds one infinite solution; with it the first roll is taken from
        the direction of travel instead. The list is empty when no candidate
        fits the ranges, when the frame has a coordinate that is not finite,
        and for a solver without wrist. Throws nothing.
    */
    QList<ZELKinSolution> Solve(const ZELMathAxis& frame, bool traori) const override;
    using ZELKinSolver::Solve;

    /*!
        The solution of `frame` nearest `guess`, in TRAORI form. Where the
        wrist is free (the normal within the normal tolerance of either pole
        of the first roll axis) the first roll is the value within its
        limits nearest that of `guess` (nearest 0 when `guess` has none),
        and the bend and second roll are solved for the frame with it, the
        second roll the whole turn of its angle nearest that of `guess`
        (nearest 0 without one), both within their limits; X, Y and Z are
        the roller centre. The head then has the frame's normal and travel,
        to within the normal's angle from the pole. Elsewhere the candidate
        of Solve(frame, false) with the least roll travel from `guess`, as
        ZELKinSolver::SolveNearest. An infinite solution when no value
        within the limits reaches the frame (with that first roll, where it
        is free). Throws nothing.
    */
    ZELKinSolution SolveNearest(const ZELMathAxis& frame, const ZELKinSolution& guess) const override;
    /*!
        For a wrist variable, the distance from its joint's pivot to the tip
        point along the chain of pivots below it: the second roll's pivot
        to the tip; the bend's pivot to the second roll's, plus that; the
        first roll's pivot to the bend's, plus that (mm). Joints keep their
        pivots' distances as they turn, so the tip never stands farther from
        a joint's axis. The tip point is the configured one (the origin until
        Configure reads one). NaN for any other variable.
    */
    double GetTipReach(const ZELKinVariable* variable) const override;

    /*!
        `solution` with the wrist's tip offset taken off X, Y and Z: the
        machine axis values of a TRAORI solution. The traori flag is kept as
        it is. A solution that does not define X, Y, Z and the three wrist
        variables ends the process through Qt's fatal message "Solution is
        not complete.".
    */
    ZELKinSolution FromTraori(const ZELKinSolution& solution) const override;
    //! The inverse of FromTraori, with the same fatal message.
    ZELKinSolution ToTraori(const ZELKinSolution& solution) const override;
    //! The TRAORI X, Y, Z of `solution` (mm), converted with ToTraori first
    //! unless it is in TRAORI form; fatal as ToTraori.
    ZELMathPoint GetTipPoint(const ZELKinSolution& solution) const override;

    /*!
        Whether the wrist moves from `a` to `b` without a flip. Under
        ContinuityFull, when both bends lie on the same side (both negative,
        or both zero or positive) the rolls' changes must sum to less than a
        quarter turn and the first roll change be under half a turn (turning
        both rolls the same way cancels out); when the bend changes side both
        roll changes must be under a quarter turn. Under ContinuityFirstRoll
        the first roll change must be under half a turn. Any other mode
        allows every move. Throws nothing.
    */
    bool IsContiguous(const ZELKinSolution& a, const ZELKinSolution& b, Continuity mode) const override;
    //! The rolls' travel |Δ first roll| + |Δ second roll| (rad); the bend and
    //! the linear axes are not counted. Throws nothing.
    double ComputeCost(const ZELKinSolution& a, const ZELKinSolution& b) const override;

    //! Sets the normal tolerance (radians). Throws nothing.
    void SetAngleTolerance(double tolerance);

    /*!
        The forward kinematics of the wrist: the tool frame that `solution`
        puts the head on, the inverse of Solve(frame, true). The first
        direction (u) is the direction of travel and the third (w) the
        surface normal that the wrist angles point the head at; the origin is
        the compaction point, the roller centre (the TRAORI X, Y, Z, mm)
        moved back by the roller radius along the normal. A solution that is
        not in TRAORI form is converted with ToTraori first. Fatal as
        ToTraori for an incomplete solution.
    */
    ZELMathAxis GetToolFrame(const ZELKinSolution& solution) const;
    //! How far `normal` stands from the wrist's singularity, where the
    //! normal lies along the first roll axis and the first roll is free: the
    //! angle (rad, 0 to pi/2) between the normal's line and that axis; NaN
    //! for a zero or non-finite normal and for a solver without wrist.
    //! Throws nothing.
    double GetSingularityMargin(const ZELMathVector& normal) const;

protected:
    //! Takes ownership of `d` and finds the wrist of its machine; throws as
    //! the public constructor.
    explicit ZELKinRBRSolver(ZELKinRBRSolverPrivate* d);

private:
    Q_DECLARE_PRIVATE(ZELKinRBRSolver)
};

#endif // ZELKINRBRSOLVER_H
