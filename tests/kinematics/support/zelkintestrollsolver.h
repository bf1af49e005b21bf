#ifndef ZELKINTESTROLLSOLVER_H
#define ZELKINTESTROLLSOLVER_H

#include <zelkinsolution.h>
#include <zelkinsolver.h>

#include <zelmathaxis.h>
#include <zelmathpoint.h>

#include <cmath>

/*!
    A stand-in wrist of one roll axis A over the linear axes X, Y and Z,
    for the tests and benchmarks of path solving: each candidate places X,
    Y and Z at the frame origin and turns A. The TRAORI conversions leave a
    solution as it is, the tip stands at X, Y, Z, and a move costs the
    change of A. A blend mixes A linearly and keeps the side that is not
    infinite, as the wrist solvers do.

    What a frame gives (Solve(frame, closest)) and which moves are
    contiguous are the subclass's to say.
*/
class ZELKinTestRollSolver : public ZELKinSolver
{
public:
    ZELKinTestRollSolver(ZELKinMachine* machine, ZELKinVariable* x, ZELKinVariable* y, ZELKinVariable* z,
                         ZELKinVariable* a)
        : ZELKinSolver(machine)
        , x(x)
        , y(y)
        , z(z)
        , a(a)
    {
    }

    void Configure(const QString&) override { }

    using ZELKinSolver::Solve;

    ZELKinSolution Solve(const ZELMathAxis& frame, double fraction, const ZELKinSolution& from,
                         const ZELKinSolution& to) const override
    {
        if (from.IsInfinite() && to.IsInfinite())
            return ZELKinSolution();
        const double roll = from.IsInfinite() ? Roll(to)
            : to.IsInfinite()                 ? Roll(from)
                                              : Roll(to) * fraction + Roll(from) * (1.0 - fraction);
        return At(frame.GetOrigin(), roll);
    }

    ZELKinSolution FromTraori(const ZELKinSolution& solution) const override { return solution; }
    ZELKinSolution ToTraori(const ZELKinSolution& solution) const override { return solution; }

    ZELMathPoint GetTipPoint(const ZELKinSolution& solution) const override
    {
        return ZELMathPoint(solution.GetVariableValue(x), solution.GetVariableValue(y), solution.GetVariableValue(z));
    }

    double ComputeCost(const ZELKinSolution& from, const ZELKinSolution& to) const override
    {
        return std::abs(Roll(to) - Roll(from));
    }

    double Roll(const ZELKinSolution& solution) const { return solution.GetVariableValue(a); }

protected:
    //! The candidate at `origin` with A at `roll`.
    ZELKinSolution At(const ZELMathPoint& origin, double roll) const
    {
        ZELKinSolution solution;
        solution.SetVariableValue(x, origin.GetX());
        solution.SetVariableValue(y, origin.GetY());
        solution.SetVariableValue(z, origin.GetZ());
        solution.SetVariableValue(a, roll);
        solution.SetTraori(true);
        return solution;
    }

private:
    ZELKinVariable* const x;
    ZELKinVariable* const y;
    ZELKinVariable* const z;
    ZELKinVariable* const a;
};

#endif // ZELKINTESTROLLSOLVER_H
