#include <zelkinsolver.h>
#include <zelkinsolver_p.h>

#include <zelkinprocedure_p.h>
#include <zelkintestaccess.h>

#include <zeltppoint.h>
#include <zeltpprocedure.h>

#include <zeltestsupport.h>

#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace {

class TestSolverPrivate;

// The smallest concrete solver: it places the X axis at the frame's origin
// and records what the base hands it, so that the base can be tested alone.
class TestSolver : public ZELKinSolver
{
public:
    // Built the way a solver with its own private fields is built.
    TestSolver(ZELKinMachine* machine, bool* privateDeleted);
    // Built on the base's own private object.
    explicit TestSolver(ZELKinMachine* machine)
        : ZELKinSolver(machine)
    {
    }

    void Configure(const QString& config) override { configuration = config; }

    ZELKinSolution Solve(const ZELMathAxis& frame, double fraction, const ZELKinSolution& from,
                         const ZELKinSolution& to) const override
    {
        ZELKinSolution solution = from * (1.0 - fraction) + to * fraction;
        solution.SetVariableValue(X(), frame.GetOrigin().GetX());
        return solution;
    }

    QList<ZELKinSolution> Solve(const ZELMathAxis& frame, bool traori) const override
    {
        if (candidates)
            return *candidates;
        ZELKinSolution solution;
        solution.SetVariableValue(X(), frame.GetOrigin().GetX());
        solution.SetTraori(traori);
        return {solution};
    }

    ZELKinSolution FromTraori(const ZELKinSolution& solution) const override { return WithTraori(solution, false); }
    ZELKinSolution ToTraori(const ZELKinSolution& solution) const override { return WithTraori(solution, true); }

    ZELMathPoint GetTipPoint(const ZELKinSolution& solution) const override
    {
        return ZELMathPoint(solution.GetVariableValue(X()), 0.0, 0.0);
    }

    bool IsContiguous(const ZELKinSolution& a, const ZELKinSolution& b, Continuity mode) const override
    {
        return mode == ContinuityNone || std::abs(a.GetVariableValue(X()) - b.GetVariableValue(X())) < 1.0;
    }

    double ComputeCost(const ZELKinSolution& a, const ZELKinSolution& b) const override
    {
        return std::abs(a.GetVariableValue(X()) - b.GetVariableValue(X()));
    }

    const ZELKinSolverPrivate* Private() const { return d_ptr.get(); }

    QString configuration;
    //! What Solve(frame, traori) gives instead of X at the frame's origin.
    std::optional<QList<ZELKinSolution>> candidates;

private:
    ZELKinVariable* X() const { return GetMachine()->GetVariable(QStringLiteral("X")); }

    static ZELKinSolution WithTraori(ZELKinSolution solution, bool traori)
    {
        solution.SetTraori(traori);
        return solution;
    }
};

// A derived private part, which tells when the base has deleted it.
class TestSolverPrivate : public ZELKinSolverPrivate
{
public:
    TestSolverPrivate(TestSolver* q, ZELKinMachine* machine, bool* deleted)
        : ZELKinSolverPrivate(q, machine)
        , deleted(deleted)
    {
    }
    ~TestSolverPrivate() override { *deleted = true; }

    bool* const deleted;
};

TestSolver::TestSolver(ZELKinMachine* machine, bool* privateDeleted)
    : ZELKinSolver(new TestSolverPrivate(this, machine, privateDeleted))
{
}

class ZELKinSolverTest : public ::testing::Test
{
protected:
    ZELKinSolverTest()
        : machine(ZELKinTestAccess::CreateMachine(&container))
        , x(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X")))
    {
    }

    ZELKinSolution At(double value) const
    {
        ZELKinSolution solution;
        solution.SetVariableValue(x, value);
        return solution;
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    ZELKinVariable* x;
};

} // namespace

TEST(ZELKinSolver, IsAbstractAndNotCopyable)
{
    EXPECT_TRUE(std::is_abstract_v<ZELKinSolver>);
    EXPECT_FALSE(std::is_copy_constructible_v<ZELKinSolver>);
    EXPECT_TRUE(std::has_virtual_destructor_v<ZELKinSolver>);
}

TEST(ZELKinSolver, ContinuityValuesAreFixed)
{
    EXPECT_EQ(int(ZELKinSolver::ContinuityFull), 0);
    EXPECT_EQ(int(ZELKinSolver::ContinuityFirstRoll), 1);
    EXPECT_EQ(int(ZELKinSolver::ContinuityNone), 2);
}

TEST_F(ZELKinSolverTest, BaseConstructionKeepsTheMachineWithEmptyPathsAndAZeroWord)
{
    const TestSolver solver(machine);
    EXPECT_EQ(solver.GetMachine(), machine);
    const ZELKinSolverPrivate* d = solver.Private();
    EXPECT_EQ(d->q_ptr, &solver);
    EXPECT_EQ(d->machine, machine);
    EXPECT_TRUE(d->debugPath.isEmpty());
    EXPECT_TRUE(d->summaryPath.isEmpty());
    EXPECT_EQ(d->pathSolvingState, 0u);
}

TEST_F(ZELKinSolverTest, ConstructionWithADerivedPrivateKeepsTheMachineWithEmptyPathsAndAZeroWord)
{
    bool deleted = false;
    const TestSolver solver(machine, &deleted);
    EXPECT_EQ(solver.GetMachine(), machine);
    const ZELKinSolverPrivate* d = solver.Private();
    EXPECT_NE(dynamic_cast<const TestSolverPrivate*>(d), nullptr);
    EXPECT_EQ(d->q_ptr, &solver);
    EXPECT_TRUE(d->debugPath.isEmpty());
    EXPECT_TRUE(d->summaryPath.isEmpty());
    EXPECT_EQ(d->pathSolvingState, 0u);
}

TEST_F(ZELKinSolverTest, AMachinelessSolverHasNoMachine)
{
    const TestSolver solver(nullptr);
    EXPECT_EQ(solver.GetMachine(), nullptr);
}

TEST_F(ZELKinSolverTest, DeletingThroughTheBaseDeletesTheDerivedPrivate)
{
    bool deleted = false;
    std::unique_ptr<ZELKinSolver> solver = std::make_unique<TestSolver>(machine, &deleted);
    EXPECT_FALSE(deleted);
    solver.reset();
    EXPECT_TRUE(deleted);
}

TEST_F(ZELKinSolverTest, SetDebugPathAndSetSummaryPathStoreEachItsOwnPath)
{
    TestSolver solver(machine);
    solver.SetDebugPath(QStringLiteral("/tmp/debug"));
    EXPECT_EQ(solver.Private()->debugPath, QStringLiteral("/tmp/debug"));
    EXPECT_TRUE(solver.Private()->summaryPath.isEmpty());
    solver.SetSummaryPath(QStringLiteral("/tmp/summary"));
    EXPECT_EQ(solver.Private()->summaryPath, QStringLiteral("/tmp/summary"));
    EXPECT_EQ(solver.Private()->debugPath, QStringLiteral("/tmp/debug"));
    solver.SetDebugPath(QString());
    EXPECT_TRUE(solver.Private()->debugPath.isEmpty());
}

TEST_F(ZELKinSolverTest, OperationsCalledThroughTheBaseReachTheDerivedSolver)
{
    TestSolver derived(machine);
    ZELKinSolver& solver = derived;
    solver.Configure(QStringLiteral("tip-point: 0,0,-330"));
    EXPECT_EQ(derived.configuration, QStringLiteral("tip-point: 0,0,-330"));

    const ZELMathAxis frame(ZELMathPoint(12.0, 0.0, 0.0), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                            ZELMathVector(0, 0, 1));
    const QList<ZELKinSolution> all = solver.Solve(frame, true);
    ASSERT_EQ(all.size(), 1);
    EXPECT_TRUE(all.first() == At(12.0));
    EXPECT_TRUE(all.first().IsTraori());
    EXPECT_TRUE(solver.Solve(frame, 0.5, At(0.0), At(4.0)) == At(12.0));

    EXPECT_TRUE(solver.ToTraori(At(3.0)).IsTraori());
    EXPECT_FALSE(solver.FromTraori(solver.ToTraori(At(3.0))).IsTraori());
    EXPECT_TRUE(ZELTest::SameDouble(3.0, solver.GetTipPoint(At(3.0)).GetX(), ZELTest::kExact));
    EXPECT_TRUE(solver.IsContiguous(At(0.0), At(5.0), ZELKinSolver::ContinuityNone));
    EXPECT_FALSE(solver.IsContiguous(At(0.0), At(5.0), ZELKinSolver::ContinuityFull));
    EXPECT_TRUE(ZELTest::SameDouble(5.0, solver.ComputeCost(At(0.0), At(5.0)), ZELTest::kExact));
}

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// The candidates and the guess are values of X; NaN stands for an infinite
// guess or result.
struct NearestCase
{
    const char* name;
    QList<double> candidates;
    //! Solve gives the infinite solution alone instead.
    bool free;
    double guess;
    double expected;
};
ZELTEST_PRINT_CASE_BY_NAME(NearestCase);

class ZELKinSolverNearest : public ZELKinSolverTest, public ::testing::WithParamInterface<NearestCase>
{
protected:
    ZELKinSolution AtOrInfinite(double value) const { return std::isnan(value) ? ZELKinSolution() : At(value); }
};

} // namespace

TEST_P(ZELKinSolverNearest, SolveNearestTakesTheCandidateCheapestToReachFromTheGuess)
{
    TestSolver derived(machine);
    QList<ZELKinSolution> candidates;
    for (const double value : GetParam().candidates)
        candidates.append(At(value));
    derived.candidates = GetParam().free ? QList<ZELKinSolution>{ZELKinSolution()} : candidates;
    const ZELKinSolver& solver = derived;
    const ZELMathAxis frame;
    const ZELKinSolution nearest = solver.SolveNearest(frame, AtOrInfinite(GetParam().guess));
    EXPECT_EQ(nearest.IsInfinite(), std::isnan(GetParam().expected));
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().expected, nearest.GetVariableValue(x), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(
    Candidates, ZELKinSolverNearest,
    ::testing::Values(NearestCase{"TheLeastCost", {0.0, 5.0, 3.0}, false, 3.2, 3.0},
                      NearestCase{"TheFirstOfEqualCosts", {5.0, 3.0}, false, 4.0, 5.0},
                      NearestCase{"TheFirstForAnInfiniteGuess", {5.0, 3.0}, false, kNone, 5.0},
                      NearestCase{"NoneForNoCandidate", {}, false, 4.0, kNone},
                      NearestCase{"TheGuessWhereEveryConfigurationFits", {}, true, 4.0, 4.0},
                      NearestCase{"NoneWhereEveryConfigurationFitsWithoutAGuess", {}, true, kNone, kNone}),
    [](const ::testing::TestParamInfo<NearestCase>& info) { return std::string(info.param.name); });

TEST_F(ZELKinSolverTest, SolvingAProbeProcedureGivesAnEmptySeriesAndPrintsNothing)
{
    ZELKinProbeProcedure* probing = ZELKinTestAccess::CreateProbeProcedure(ZELKinTestAccess::CreateProgram(machine));
    ZELKinTestAccess::CreatePosition(probing)->SetVariableValue(x, 250.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 12.7);
    TestSolver derived(machine);
    const ZELKinSolver& solver = derived;

    ::testing::internal::CaptureStdout();
    const ZELKinSolutionSeries series = solver.Solve(probing);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(series.IsEmpty());
    EXPECT_EQ(series.GetCount(), 0);
}

namespace {

// A procedure of a kind that is not roll layup, apart from the library's own.
class OtherProcedure : public ZELKinProcedure
{
    Q_OBJECT

public:
    explicit OtherProcedure(ZELKinProgram* program)
        : ZELKinProcedure(new ZELKinProcedurePrivate(this), program)
    {
    }

    int GetNumCommands() const override { return 0; }
    ZELKinCommand* GetCommand(int) const override { return nullptr; }
};

// Solves `procedure` with a solver of `machine` and keeps what was printed.
ZELKinSolutionSeries SolveCapturingOutput(ZELKinMachine* machine, ZELKinProcedure* procedure, std::string* output)
{
    const TestSolver derived(machine);
    const ZELKinSolver& solver = derived;
    ::testing::internal::CaptureStdout();
    const ZELKinSolutionSeries series = solver.Solve(procedure);
    *output = ::testing::internal::GetCapturedStdout();
    return series;
}

} // namespace

TEST_F(ZELKinSolverTest, SolvingAProcedureThatIsNotRollLayupGivesAnEmptySeriesAndPrintsNothing)
{
    auto* procedure = new OtherProcedure(ZELKinTestAccess::CreateProgram(machine));
    procedure->SetToolPathProcedure(new ZELTPProcedure(&container, QStringLiteral("other")));
    std::string output = "not run";
    const ZELKinSolutionSeries series = SolveCapturingOutput(machine, procedure, &output);
    EXPECT_EQ(output, "");
    EXPECT_TRUE(series.IsEmpty());
    EXPECT_EQ(series.GetCount(), 0);
}

TEST_F(ZELKinSolverTest, SolvingNoProcedureGivesAnEmptySeriesAndPrintsNothing)
{
    std::string output = "not run";
    const ZELKinSolutionSeries series = SolveCapturingOutput(machine, nullptr, &output);
    EXPECT_EQ(output, "");
    EXPECT_TRUE(series.IsEmpty());
}

// The chaining itself is tested in tst_zelkinpathsolving.cpp; here the base
// hands a roll layup procedure to it after the progress line.
TEST_F(ZELKinSolverTest, SolvingARollLayupProcedurePrintsItsToolPathNameAndGivesASolutionPerPosition)
{
    ZELKinRollLayupProcedure* procedure =
        ZELKinTestAccess::CreateRollLayupProcedure(ZELKinTestAccess::CreateProgram(machine), 2540.0, 1270.0);
    procedure->SetToolPathProcedure(new ZELTPProcedure(&container, QStringLiteral("Lage 101 – Ø")));
    ZELKinPosition* first = ZELKinTestAccess::CreatePosition(ZELKinTestAccess::CreateCourseLink(procedure));
    ZELKinTestAccess::CreateTowCourse(procedure, machine->GetMaximumMask());
    ZELKinPosition* second = ZELKinTestAccess::CreatePosition(ZELKinTestAccess::CreateCourseLink(procedure));
    second->SetToolPathPoint(new ZELTPPoint(&container, ZELMathAxis(ZELMathPoint(0.5, 0.0, 0.0), ZELMathVector(1, 0, 0),
                                                                    ZELMathVector(0, 1, 0), ZELMathVector(0, 0, 1))));
    std::string output;
    const ZELKinSolutionSeries series = SolveCapturingOutput(machine, procedure, &output);
    EXPECT_EQ(QString::fromStdString(output), QStringLiteral("  Processing Lage 101 – Ø\n"));
    EXPECT_EQ(series.GetCommands(), (QList<ZELKinCommand*>{first, second}));
    EXPECT_TRUE(series.GetSolution(0) == At(0.0));
    EXPECT_TRUE(series.GetSolution(1) == At(0.5));
}

TEST_F(ZELKinSolverTest, SolvingARollLayupProcedureWithoutAToolPathProcedurePrintsAnEmptyName)
{
    ZELKinRollLayupProcedure* procedure =
        ZELKinTestAccess::CreateRollLayupProcedure(ZELKinTestAccess::CreateProgram(machine), 2540.0, 1270.0);
    std::string output;
    const ZELKinSolutionSeries series = SolveCapturingOutput(machine, procedure, &output);
    EXPECT_EQ(output, "  Processing \n");
    EXPECT_TRUE(series.IsEmpty());
}

#include "tst_zelkinsolver.moc"

TEST_F(ZELKinSolverTest, KnowsNoTipReachOfItsOwn)
{
    const TestSolver solver(machine);
    EXPECT_TRUE(std::isnan(solver.GetTipReach(x)));
    EXPECT_TRUE(std::isnan(solver.GetTipReach(nullptr)));
}
