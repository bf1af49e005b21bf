#ifndef ZELKINRBRSOLVER_P_H
#define ZELKINRBRSOLVER_P_H

#include "zelkinrbrsolver.h"
#include "zelkinsolver_p.h"

#include <zelmathaxis.h>
#include <zelmathplane.h>
#include <zelmathpoint.h>
#include <zelmathvector.h>

#include <algorithm>
#include <limits>
#include <optional>

class ZELKinRotaryJoint;
class ZELKinVariable;

class ZELKinRBRSolverPrivate : public ZELKinSolverPrivate
{
    Q_DECLARE_PUBLIC(ZELKinRBRSolver)

public:
    /*!
        A wrist variable with its limits (rad) as solving reads them: a NaN
        limit, no limit on its side, is already an infinite one. The machine
        does not change under its solver, so this is read once, when the
        wrist is found, rather than for every tool frame.
    */
    struct WristAxis
    {
        ZELKinVariable* variable = nullptr;
        double minimum = -std::numeric_limits<double>::infinity();
        double maximum = std::numeric_limits<double>::infinity();

        bool IsOutside(double angle) const { return angle < minimum || angle > maximum; }
        bool IsStrictlyInside(double angle) const { return angle > minimum && angle < maximum; }
        //! The value within the limits nearest `angle`.
        double Nearest(double angle) const { return std::min(std::max(angle, minimum), maximum); }
    };

    //! What the bend and the second roll make of one first roll value: the
    //! bend (rad) and the second roll's angle before whole turns are added.
    struct Reach
    {
        double bend;
        double secondRoll;
    };

    ZELKinRBRSolverPrivate(ZELKinRBRSolver* q, ZELKinMachine* machine)
        : ZELKinSolverPrivate(q, machine)
    {
    }

    //! Compaction roller radius (mm).
    double rollerRadius = 0.0;
    ZELKinVariable* x = nullptr;
    ZELKinVariable* y = nullptr;
    ZELKinVariable* z = nullptr;
    ZELKinRotaryJoint* firstRoll = nullptr;
    ZELKinRotaryJoint* bend = nullptr;
    ZELKinRotaryJoint* secondRoll = nullptr;
    //! Angle (rad) under which two directions count as parallel and a bend as none.
    double normalTolerance = 0.001;
    //! Joint frames at home: origin at the pivot, w along the rotation axis,
    //! u along the zero direction.
    ZELMathAxis firstRollFrame;
    ZELMathAxis bendFrame;
    ZELMathAxis secondRollFrame;
    ZELMathVector firstRollReference = ZELMathVector(1.0, 0.0, 0.0);
    ZELMathVector bendReference = ZELMathVector(0.0, 0.0, 1.0);
    ZELMathVector secondRollReference = ZELMathVector(1.0, 0.0, 0.0);
    //! Tool tip with every axis at zero (mm).
    ZELMathPoint tipPoint;

    // What solving a tool frame needs of the machine and the frames, kept
    // here so that the per-frame path reads no joint and builds no frame or
    // plane that does not depend on the frame.
    //! The variables that drive the wrist joints (each joint's variable 0)
    //! and their limits, read when the wrist is found; null for a missing joint.
    WristAxis firstRollAxis;
    WristAxis bendAxis;
    WristAxis secondRollAxis;
    //! The first roll's rotation vector as its joint gives it (not normalised).
    ZELMathVector firstRollVector;
    //! Plane 1 of firstRollFrame, in which the first roll angle is measured.
    ZELMathPlane firstRollPlane;
    //! bendFrame and secondRollFrame in the coordinates of firstRollFrame:
    //! what the first roll carries along when it turns.
    ZELMathAxis bendOnFirstRoll;
    ZELMathAxis secondRollOnFirstRoll;
    //! What WristSolution starts from: a TRAORI solution that already
    //! defines the wrist variables and X, Y, Z in the order it sets them, so
    //! that a new solution takes one allocation and replaces values in place.
    ZELKinSolution solutionTemplate;

    //! Walks the joint tree of the machine for the wrist and reads its
    //! variables; throws as the solver's constructor.
    void FindWrist();
    bool HasWrist() const { return firstRoll && bend && secondRoll; }
    //! The angle (rad, 0 to pi/2) between the line of `normal` and the
    //! first roll axis; NaN for a non-finite normal.
    double PoleDistance(const ZELMathVector& normal) const;
    //! Whether `normal` lies within the normal tolerance of either pole of
    //! the first roll axis, where the first roll is free.
    bool IsSingular(const ZELMathVector& normal) const;
    //! The bend that turns the head onto `normal` with the first roll at
    //! `firstRollValue`, snapped to 0 within the normal tolerance before
    //! its range check, and the second roll angle that then turns it onto
    //! `travel`; none when the bend is outside its limits or an angle has
    //! no value.
    std::optional<Reach> ReachWith(double firstRollValue, const ZELMathVector& normal,
                                   const ZELMathVector& travel) const;
    //! Stores the X, Y, Z variables and the roller radius of the machine.
    void FindCarrier();
    //! Reads one "key: value" item of the configuration text.
    void ReadItem(const QString& item);
    //! Builds the three joint frames from the joints and the references,
    //! then firstRollPlane, bendOnFirstRoll and secondRollOnFirstRoll from them.
    void BuildFrames();
    //! The TRAORI offset of `solution`: how far the wrist moves the tool tip
    //! from its home position. Fatal for an incomplete solution.
    ZELMathVector TipOffset(const ZELKinSolution& solution) const;
    //! The wrist's joint frames and the tool tip as `solution` turns them.
    struct TurnedWrist
    {
        ZELMathAxis first;
        ZELMathAxis middle;
        ZELMathAxis second;
        ZELMathPoint tip;
    };
    //! Fatal for an incomplete solution, as TipOffset.
    TurnedWrist Turned(const ZELKinSolution& solution) const;
    //! The compaction point of `frame` moved by the roller radius along its normal.
    ZELMathPoint RollerCentre(const ZELMathAxis& frame) const;
    //! The X, Y, Z values of `solution` as a point (NaN where undefined).
    ZELMathPoint LinearPoint(const ZELKinSolution& solution) const;
    //! `solution` with X, Y, Z set to `point`.
    ZELKinSolution WithLinear(ZELKinSolution solution, const ZELMathPoint& point) const;
    //! A TRAORI solution of the three wrist values with X, Y, Z at `point`,
    //! the variables in the order first roll, bend, second roll, X, Y, Z.
    ZELKinSolution WristSolution(double firstRollValue, double bendValue, double secondRollValue,
                                 const ZELMathPoint& point) const;
};

#endif // ZELKINRBRSOLVER_P_H
