#ifndef ZELKINRBRSOLVER_P_H
#define ZELKINRBRSOLVER_P_H

#include "zelkinrbrsolver.h"
#include "zelkinsolver_p.h"

#include <zelmathaxis.h>
#include <zelmathpoint.h>
#include <zelmathvector.h>

class ZELKinRotaryJoint;
class ZELKinVariable;

class ZELKinRBRSolverPrivate : public ZELKinSolverPrivate
{
    Q_DECLARE_PUBLIC(ZELKinRBRSolver)

public:
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

    //! The variables that drive the wrist joints; null for a missing joint.
    ZELKinVariable* FirstRollVariable() const;
    ZELKinVariable* BendVariable() const;
    ZELKinVariable* SecondRollVariable() const;

    //! Walks the joint tree of the machine for the wrist; throws as the
    //! solver's constructor.
    void FindWrist();
    //! Stores the X, Y, Z variables and the roller radius of the machine.
    void FindCarrier();
    //! Reads one "key: value" item of the configuration text.
    void ReadItem(const QString& item);
    //! Builds the three joint frames from the joints and the references.
    void BuildFrames();
    //! The TRAORI offset of `solution`: how far the wrist moves the tool tip
    //! from its home position. Fatal for an incomplete solution.
    ZELMathVector TipOffset(const ZELKinSolution& solution) const;
    //! The compaction point of `frame` moved by the roller radius along its normal.
    ZELMathPoint RollerCentre(const ZELMathAxis& frame) const;
    //! The X, Y, Z values of `solution` as a point (NaN where undefined).
    ZELMathPoint LinearPoint(const ZELKinSolution& solution) const;
    //! `solution` with X, Y, Z set to `point`.
    ZELKinSolution WithLinear(ZELKinSolution solution, const ZELMathPoint& point) const;
    //! A TRAORI solution of the three wrist values with X, Y, Z at `point`.
    ZELKinSolution WristSolution(double firstRollValue, double bendValue, double secondRollValue,
                                 const ZELMathPoint& point) const;
};

#endif // ZELKINRBRSOLVER_P_H
