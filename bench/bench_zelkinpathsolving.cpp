// Path solving must stay linear in the number of positions: the time per
// position of a procedure of 1 000 000 positions may be at most 1.5 times
// that of one of 10 000. The "per_position" counter gives it in seconds.

#include <zelkinsolver.h>

#include <zelkintestaccess.h>

#include <zeltpcourselink.h>
#include <zeltppoint.h>

#include <benchmark/benchmark.h>

#include <QList>

#include <cmath>
#include <map>
#include <memory>

namespace {

constexpr double kPi = 3.14159265358979323846;
// Positions per course, and per link between two courses.
constexpr int kCoursePositions = 995;
constexpr int kLinkPositions = 5;

/*
    A deterministic wrist of one roll axis A over X, Y, Z that behaves the
    way a roll-bend-roll wrist does along a course: each frame has the roll
    that follows the course and the one half a turn away; every tenth frame
    a third, slightly turned one, whose chain competes with the first for a
    few steps; every 97th frame has a free wrist. Continuity and cost as a
    wrist solver judges them: the change of the roll.
*/
class BenchSolver : public ZELKinSolver
{
public:
    BenchSolver(ZELKinMachine* machine, ZELKinVariable* x, ZELKinVariable* y, ZELKinVariable* z, ZELKinVariable* a)
        : ZELKinSolver(machine)
        , x(x)
        , y(y)
        , z(z)
        , a(a)
    {
    }

    void Configure(const QString&) override {}

    QList<ZELKinSolution> Solve(const ZELMathAxis& frame, bool) const override
    {
        const ZELMathPoint origin = frame.GetOrigin();
        const int step = int(origin.GetX());
        if (step % 97 == 0)
            return {ZELKinSolution()};
        const double roll = 0.5 * std::sin(origin.GetX() / 500.0);
        QList<ZELKinSolution> candidates{At(origin, roll), At(origin, roll + kPi)};
        if (step % 10 == 0)
            candidates.append(At(origin, roll + 0.05));
        return candidates;
    }

    ZELKinSolution Solve(const ZELMathAxis& frame, double fraction, const ZELKinSolution& from,
                         const ZELKinSolution& to) const override
    {
        if (from.IsInfinite() && to.IsInfinite())
            return ZELKinSolution();
        const double roll = from.IsInfinite() ? Roll(to)
                            : to.IsInfinite() ? Roll(from)
                                              : Roll(to) * fraction + Roll(from) * (1.0 - fraction);
        return At(frame.GetOrigin(), roll);
    }

    ZELKinSolution FromTraori(const ZELKinSolution& solution) const override { return solution; }
    ZELKinSolution ToTraori(const ZELKinSolution& solution) const override { return solution; }

    ZELMathPoint GetTipPoint(const ZELKinSolution& solution) const override
    {
        return ZELMathPoint(solution.GetVariableValue(x), solution.GetVariableValue(y), solution.GetVariableValue(z));
    }

    bool IsContiguous(const ZELKinSolution& from, const ZELKinSolution& to, Continuity mode) const override
    {
        const double change = std::abs(Roll(to) - Roll(from));
        switch (mode) {
        case ContinuityFull:
            return change < kPi / 2.0;
        case ContinuityFirstRoll:
            return change < kPi;
        default:
            return true;
        }
    }

    double ComputeCost(const ZELKinSolution& from, const ZELKinSolution& to) const override
    {
        return std::abs(Roll(to) - Roll(from));
    }

private:
    double Roll(const ZELKinSolution& solution) const { return solution.GetVariableValue(a); }

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

    ZELKinVariable* const x;
    ZELKinVariable* const y;
    ZELKinVariable* const z;
    ZELKinVariable* const a;
};

/*
    A procedure of about `positions` positions: links and courses in laying
    order, the links of low, medium and full points detail in turn. The
    points lie 1 mm apart along X.
*/
class BenchProcedure
{
public:
    explicit BenchProcedure(int positions)
        : machine(ZELKinTestAccess::CreateMachine(&container))
        , x(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"), ZELKinVariable::Linear, -1e9, 1e9))
        , y(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y")))
        , z(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z")))
        , a(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("A"), ZELKinVariable::Rotary, -10.0, 10.0))
        , procedure(ZELKinTestAccess::CreateRollLayupProcedure(ZELKinTestAccess::CreateProgram(machine), 2540.0,
                                                                 1270.0))
        , solver(machine, x, y, z, a)
    {
        static const ZELTPCourseLink::PointsDetail kDetails[] = {ZELTPCourseLink::PointsDetailLow,
                                                                 ZELTPCourseLink::PointsDetailMedium,
                                                                 ZELTPCourseLink::PointsDetailFull};
        for (int link = 0; count < positions; ++link) {
            AddLink(kDetails[link % 3]);
            AddCourse();
        }
        AddLink(ZELTPCourseLink::PointsDetailFull);
    }

    int GetCount() const { return count; }
    const ZELKinSolver& GetSolver() const { return solver; }
    ZELKinRollLayupProcedure* GetProcedure() const { return procedure; }

private:
    const ZELTPPoint* NextPoint()
    {
        const ZELMathPoint origin(double(++count), 0.0, 0.0);
        return new ZELTPPoint(&container, ZELMathAxis(origin, ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                                      ZELMathVector(0, 0, 1)));
    }

    void AddLink(ZELTPCourseLink::PointsDetail detail)
    {
        ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(procedure);
        auto* source = new ZELTPCourseLink(&container, QStringLiteral("link"));
        source->SetPointsDetail(detail);
        link->SetToolPathCourseLink(source);
        for (int i = 0; i < kLinkPositions; ++i)
            ZELKinTestAccess::CreatePosition(link)->SetToolPathPoint(NextPoint());
    }

    void AddCourse()
    {
        ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(procedure, machine->GetMaximumMask());
        for (int i = 0; i < kCoursePositions; ++i)
            ZELKinTestAccess::CreateRollLayupPosition(course)->SetToolPathPoint(NextPoint());
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    ZELKinVariable* x;
    ZELKinVariable* y;
    ZELKinVariable* z;
    ZELKinVariable* a;
    ZELKinRollLayupProcedure* procedure;
    BenchSolver solver;
    int count = 0;
};

// Building a procedure of a million positions takes longer than solving it,
// and the benchmark runs its function more than once: build each size once.
const BenchProcedure& ProcedureOf(int positions)
{
    static std::map<int, std::unique_ptr<BenchProcedure>> procedures;
    std::unique_ptr<BenchProcedure>& procedure = procedures[positions];
    if (!procedure)
        procedure = std::make_unique<BenchProcedure>(positions);
    return *procedure;
}

void SolveProcedure(benchmark::State& state)
{
    const BenchProcedure& procedure = ProcedureOf(int(state.range(0)));
    for (auto _ : state) {
        const ZELKinSolutionSeries series = procedure.GetSolver().Solve(procedure.GetProcedure());
        if (series.GetCount() != procedure.GetCount())
            state.SkipWithError("the procedure was not solved whole");
        benchmark::DoNotOptimize(series.GetCost());
    }
    state.counters["positions"] = procedure.GetCount();
    state.counters["per_position"] = benchmark::Counter(double(procedure.GetCount()),
                                                        benchmark::Counter::kIsIterationInvariantRate |
                                                            benchmark::Counter::kInvert);
}

// The first solve of each size, right after its procedure was built: it
// also pays for the memory that the process takes from the system for the
// first time, which later solves reuse.
void SolveProcedureTheFirstTime(benchmark::State& state)
{
    SolveProcedure(state);
}
BENCHMARK(SolveProcedureTheFirstTime)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// The steady state that the sizes are compared in: warmed up, and timed
// over several solves.
BENCHMARK(SolveProcedure)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->MinWarmUpTime(1.0)
    ->MinTime(2.0)
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
