#ifndef ZELKINTRANSLATIONTESTSOLVER_H
#define ZELKINTRANSLATIONTESTSOLVER_H

#include <zelkinmachine.h>
#include <zelkinsolution.h>
#include <zelkinsolver.h>

#include <zelmathaxis.h>

#include <functional>

namespace ZELKinTranslationTest {

/*!
    A solver for the translation tests that gives every frame one solution
    with the machine's variable X alone, at what `xOf` says for the frame,
    and takes every move as contiguous and free: the positions it solves
    lack every other axis.
*/
class XOnlySolver : public ZELKinSolver
{
public:
    using XOf = std::function<double(const ZELMathAxis& frame)>;

    XOnlySolver(ZELKinMachine* machine, XOf xOf)
        : ZELKinSolver(machine)
        , m_xOf(std::move(xOf))
    {
    }

    void Configure(const QString&) override { }
    ZELKinSolution Solve(const ZELMathAxis& frame, double, const ZELKinSolution&, const ZELKinSolution&) const override
    {
        return At(frame);
    }
    QList<ZELKinSolution> Solve(const ZELMathAxis& frame, bool) const override { return {At(frame)}; }
    ZELKinSolution FromTraori(const ZELKinSolution& solution) const override { return solution; }
    ZELKinSolution ToTraori(const ZELKinSolution& solution) const override { return solution; }
    ZELMathPoint GetTipPoint(const ZELKinSolution&) const override { return ZELMathPoint(); }
    bool IsContiguous(const ZELKinSolution&, const ZELKinSolution&, Continuity) const override { return true; }
    double ComputeCost(const ZELKinSolution&, const ZELKinSolution&) const override { return 0.0; }

private:
    ZELKinSolution At(const ZELMathAxis& frame) const
    {
        ZELKinSolution solution;
        solution.SetVariableValue(GetMachine()->GetVariable(QStringLiteral("X")), m_xOf(frame));
        return solution;
    }

    XOf m_xOf;
};

} // namespace ZELKinTranslationTest

#endif // ZELKINTRANSLATIONTESTSOLVER_H
