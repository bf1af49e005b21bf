#ifndef ZELKINTESTGANTRY_H
#define ZELKINTESTGANTRY_H

#include <zelkinrbrsolver.h>

#include <zelkintestaccess.h>

#include <zelmathaxis.h>

namespace ZELTest {

//! The solver configuration of the example gantry.
inline const QString kGantrySolverConfig = QStringLiteral(
    "first-roll-reference: 0,1,0; bend-reference: 0,0,-1; second-roll-reference: 1,0,0; tip-point: 0,0,-330");

struct Range
{
    double minimum;
    double maximum;
};

//! The wrist ranges (rad) of the example gantry.
struct WristRanges
{
    Range firstRoll{-3.4994, 3.4994};
    Range bend{-1.6581, 1.6581};
    Range secondRoll{-3.2376, 3.2376};
};

//! The example gantry: X, Y, Z carry the first roll C about X through the
//! origin, the bend A about Y through (0, 0, -150) and the second roll C1
//! about Z through (0, 0, -300). With every axis at zero the head's normal
//! is +Z and it travels along +X.
struct Gantry
{
    explicit Gantry(const WristRanges& ranges = WristRanges(), double rollerRadius = 30.0)
    {
        ZELKinTestAccess::Head head;
        head.rollerRadius = rollerRadius;
        machine = ZELKinTestAccess::CreateMachine(&container, head);
        x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"), ZELKinVariable::Linear, -1e5, 1e5);
        y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"), ZELKinVariable::Linear, -1e5, 1e5);
        z = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z"), ZELKinVariable::Linear, -1e5, 1e5);
        c = Rotary(QStringLiteral("C"), ranges.firstRoll);
        a = Rotary(QStringLiteral("A"), ranges.bend);
        c1 = Rotary(QStringLiteral("C1"), ranges.secondRoll);
        ZELKinJoint* xJoint = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, x);
        ZELKinJoint* yJoint =
            ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Y"), machine, y, xJoint, ZELMathVector(0, 1, 0));
        carrier =
            ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Z"), machine, z, yJoint, ZELMathVector(0, 0, 1));
        firstRoll = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), machine, c, carrier,
                                                        ZELMathVector(1, 0, 0), ZELMathPoint(0, 0, 0));
        bend = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("A"), machine, a, firstRoll, ZELMathVector(0, 1, 0),
                                                   ZELMathPoint(0, 0, -150));
        secondRoll = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C1"), machine, c1, bend,
                                                         ZELMathVector(0, 0, 1), ZELMathPoint(0, 0, -300));
    }

    ZELKinVariable* Rotary(const QString& name, const Range& range)
    {
        return ZELKinTestAccess::CreateVariable(machine, name, ZELKinVariable::Rotary, range.minimum, range.maximum);
    }

    //! A solution with every axis of the gantry set.
    ZELKinSolution Solution(const ZELMathPoint& linear, double first, double middle, double second) const
    {
        ZELKinSolution solution;
        solution.SetVariableValue(x, linear.GetX());
        solution.SetVariableValue(y, linear.GetY());
        solution.SetVariableValue(z, linear.GetZ());
        solution.SetVariableValue(c, first);
        solution.SetVariableValue(a, middle);
        solution.SetVariableValue(c1, second);
        return solution;
    }

    //! The X, Y, Z values of `solution` as a point.
    ZELMathPoint LinearOf(const ZELKinSolution& solution) const
    {
        return ZELMathPoint(solution.GetVariableValue(x), solution.GetVariableValue(y), solution.GetVariableValue(z));
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine = nullptr;
    ZELKinVariable* x = nullptr;
    ZELKinVariable* y = nullptr;
    ZELKinVariable* z = nullptr;
    ZELKinVariable* c = nullptr;
    ZELKinVariable* a = nullptr;
    ZELKinVariable* c1 = nullptr;
    ZELKinJoint* carrier = nullptr;
    ZELKinRotaryJoint* firstRoll = nullptr;
    ZELKinRotaryJoint* bend = nullptr;
    ZELKinRotaryJoint* secondRoll = nullptr;
};

//! The example gantry with its solver, configured.
struct ConfiguredGantry
{
    explicit ConfiguredGantry(const WristRanges& ranges = WristRanges(), double rollerRadius = 30.0)
        : gantry(ranges, rollerRadius)
        , solver(gantry.machine)
    {
        solver.Configure(kGantrySolverConfig);
    }

    Gantry gantry;
    ZELKinRBRSolver solver;
};

//! A tool frame: origin, travel direction u and normal w (v completes them).
inline ZELMathAxis ToolFrame(const ZELMathPoint& origin, const ZELMathVector& travel, const ZELMathVector& normal)
{
    return ZELMathAxis(origin, travel, normal.Cross(travel), normal);
}

} // namespace ZELTest

#endif // ZELKINTESTGANTRY_H
