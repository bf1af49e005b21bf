#include <zelkinrbrsolver.h>
#include <zelkinrbrsolver_p.h>

#include "zelkintestgantry.h"

#include <zelkintestaccess.h>

#include <zeltestsupport.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

using ZELTest::ConfiguredGantry;
using ZELTest::Gantry;
using ZELTest::kNaN;
using ZELTest::Range;
using ZELTest::ToolFrame;
using ZELTest::WristRanges;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kDefaultTolerance = 0.001;

template <typename Case>
std::string CaseName(const ::testing::TestParamInfo<Case>& info)
{
    return info.param.name;
}

// Lets the tests read what the solver keeps.
class InspectedSolver : public ZELKinRBRSolver
{
public:
    using ZELKinRBRSolver::ZELKinRBRSolver;

    const ZELKinRBRSolverPrivate* Private() const { return static_cast<const ZELKinRBRSolverPrivate*>(d_ptr.get()); }
};

// Records every Qt log message while it lives and puts the previous handler
// back when it goes.
class MessageLog
{
public:
    MessageLog()
        : m_previous(qInstallMessageHandler(&MessageLog::Record))
    {
        s_active = this;
    }

    ~MessageLog()
    {
        s_active = nullptr;
        qInstallMessageHandler(m_previous);
    }

    QStringList warnings;

private:
    static void Record(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        if (s_active && type == QtWarningMsg)
            s_active->warnings.append(text);
    }

    static inline MessageLog* s_active = nullptr;
    const QtMessageHandler m_previous;
};

ZELMathVector Unit(double x, double y, double z)
{
    return ZELMathVector(x, y, z).GetNormalized();
}

// The values of `variable` in solution order, a run of equal values counted once.
std::vector<double> DistinctRuns(const QList<ZELKinSolution>& solutions, ZELKinVariable* variable)
{
    std::vector<double> values;
    for (const ZELKinSolution& solution : solutions) {
        const double value = solution.GetVariableValue(variable);
        if (values.empty() || std::abs(values.back() - value) > ZELTest::kTight)
            values.push_back(value);
    }
    return values;
}

::testing::AssertionResult SameValues(const std::vector<double>& expected, const std::vector<double>& actual,
                                      double tolerance)
{
    bool same = expected.size() == actual.size();
    for (std::size_t i = 0; same && i < expected.size(); ++i)
        same = ZELTest::SameDouble(expected[i], actual[i], tolerance);
    if (same)
        return ::testing::AssertionSuccess();
    auto failure = ::testing::AssertionFailure() << "expected";
    for (const double value : expected)
        failure << " " << value;
    failure << ", got";
    for (const double value : actual)
        failure << " " << value;
    return failure;
}

::testing::AssertionResult SameVector(const ZELMathVector& expected, const ZELMathVector& actual, double tolerance)
{
    if (actual.IsEqual(expected, tolerance))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "expected (" << expected.GetX() << ", " << expected.GetY() << ", "
                                         << expected.GetZ() << "), got (" << actual.GetX() << ", " << actual.GetY()
                                         << ", " << actual.GetZ() << ")";
}

::testing::AssertionResult SamePoint(const ZELMathPoint& expected, const ZELMathPoint& actual, double tolerance)
{
    return SameVector(expected - ZELMathPoint(), actual - ZELMathPoint(), tolerance);
}

::testing::AssertionResult SameFrame(const ZELMathAxis& expected, const ZELMathAxis& actual)
{
    if (actual.IsEqual(expected, ZELTest::kTight))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
        << "origin " << SamePoint(expected.GetOrigin(), actual.GetOrigin(), ZELTest::kTight).message() << "; u "
        << SameVector(expected.GetUDirection(), actual.GetUDirection(), ZELTest::kTight).message() << "; v "
        << SameVector(expected.GetVDirection(), actual.GetVDirection(), ZELTest::kTight).message() << "; w "
        << SameVector(expected.GetWDirection(), actual.GetWDirection(), ZELTest::kTight).message();
}

} // namespace

// Finding the wrist.

TEST(ZELKinRBRSolver, FindsTheWristBelowTheThirdLevelAndTheLinearAxesByLabel)
{
    Gantry gantry;
    const InspectedSolver solver(gantry.machine);
    const ZELKinRBRSolverPrivate* d = solver.Private();
    EXPECT_EQ(solver.GetMachine(), gantry.machine);
    EXPECT_EQ(d->firstRoll, gantry.firstRoll);
    EXPECT_EQ(d->bend, gantry.bend);
    EXPECT_EQ(d->secondRoll, gantry.secondRoll);
    EXPECT_EQ(d->x, gantry.x);
    EXPECT_EQ(d->y, gantry.y);
    EXPECT_EQ(d->z, gantry.z);
    EXPECT_TRUE(ZELTest::SameDouble(30.0, d->rollerRadius, ZELTest::kExact));
}

TEST(ZELKinRBRSolver, StartsWithTheDefaultToleranceReferencesAndTipPointAndUnbuiltFrames)
{
    Gantry gantry;
    const InspectedSolver solver(gantry.machine);
    const ZELKinRBRSolverPrivate* d = solver.Private();
    EXPECT_TRUE(ZELTest::SameDouble(0.001, d->normalTolerance, ZELTest::kExact));
    EXPECT_TRUE(SameVector(ZELMathVector(1, 0, 0), d->firstRollReference, ZELTest::kExact));
    EXPECT_TRUE(SameVector(ZELMathVector(0, 0, 1), d->bendReference, ZELTest::kExact));
    EXPECT_TRUE(SameVector(ZELMathVector(1, 0, 0), d->secondRollReference, ZELTest::kExact));
    EXPECT_TRUE(SamePoint(ZELMathPoint(), d->tipPoint, ZELTest::kExact));
    for (const ZELMathAxis* frame : {&d->firstRollFrame, &d->bendFrame, &d->secondRollFrame})
        EXPECT_TRUE(SameFrame(ZELMathAxis(), *frame));
}

TEST(ZELKinRBRSolver, LabelsOfTheLinearAxesAreCaseSensitive)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("x"));
    ZELKinVariable* y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    const InspectedSolver solver(machine);
    EXPECT_EQ(solver.Private()->x, nullptr);
    EXPECT_EQ(solver.Private()->y, y);
    EXPECT_EQ(solver.Private()->z, nullptr);
}

TEST(ZELKinRBRSolver, TheLastThirdLevelJointWalkedWins)
{
    Gantry gantry;
    // A second carrier beside Z, with a wrist of its own.
    ZELKinJoint* yJoint = gantry.carrier->GetParent();
    ZELKinJoint* otherCarrier =
        ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("W"), gantry.machine, gantry.z, yJoint);
    ZELKinRotaryJoint* first =
        ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C'"), gantry.machine, gantry.c, otherCarrier);
    ZELKinRotaryJoint* middle = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("A'"), gantry.machine, gantry.a, first);
    ZELKinRotaryJoint* last = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C1'"), gantry.machine, gantry.c1, middle);
    const InspectedSolver solver(gantry.machine);
    EXPECT_EQ(solver.Private()->firstRoll, first);
    EXPECT_EQ(solver.Private()->bend, middle);
    EXPECT_EQ(solver.Private()->secondRoll, last);
}

TEST(ZELKinRBRSolver, ATreeLessThanThreeLevelsDeepLeavesTheWristMissingAndConfigureRefusesIt)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinVariable* c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary);
    ZELKinJoint* root = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, x);
    ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), machine, c, root);
    InspectedSolver solver(machine);
    EXPECT_EQ(solver.Private()->firstRoll, nullptr);
    EXPECT_EQ(solver.Private()->bend, nullptr);
    EXPECT_EQ(solver.Private()->secondRoll, nullptr);
    EXPECT_THROW_MESSAGE(solver.Configure(ZELTest::kGantrySolverConfig), ZELSysException, "not a rotary joint");
    EXPECT_TRUE(solver.Solve(ZELMathAxis(), true).isEmpty());
}

TEST(ZELKinRBRSolver, WithoutAMachineConfigureRefusesTheMissingWrist)
{
    ZELKinRBRSolver solver(static_cast<ZELKinMachine*>(nullptr));
    EXPECT_THROW_MESSAGE(solver.Configure(QStringLiteral("normal-tolerance: 1")), ZELSysException,
                         "not a rotary joint");
}

namespace {

// A gantry whose wrist chain is broken in one place.
struct WalkCase
{
    const char* name;
    std::function<void(Gantry&)> breakChain;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(WalkCase);

class ZELKinRBRSolverWalk : public ::testing::TestWithParam<WalkCase>
{
};

// A second child of `parent`, rotary or not.
void AddChild(Gantry& gantry, ZELKinJoint* parent, bool rotary)
{
    if (rotary)
        ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("extra"), gantry.machine, gantry.c, parent);
    else
        ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("extra"), gantry.machine, gantry.x, parent);
}

// A gantry with only a translation joint where the wrist joint `level`
// (0 first roll, 1 bend, 2 second roll) should be, and no wrist below it.
// The chain hangs from a second carrier beside Z, walked after it.
void TranslationAt(Gantry& g, int level)
{
    ZELKinJoint* parent = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Z2"), g.machine, g.z,
                                                                   g.carrier->GetParent());
    for (int i = 0; i < level; ++i)
        parent = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("R%1").arg(i), g.machine, g.c, parent);
    ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("T"), g.machine, g.x, parent);
}

} // namespace

TEST_P(ZELKinRBRSolverWalk, ThrowsItsMessage)
{
    Gantry gantry;
    GetParam().breakChain(gantry);
    EXPECT_THROW_MESSAGE(ZELKinRBRSolver solver(gantry.machine), ZELSysException, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    BrokenChains, ZELKinRBRSolverWalk,
    ::testing::Values(
        WalkCase{"CarrierWithoutChild",
                 [](Gantry& g) {
                     ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Z2"), g.machine, g.z,
                                                              g.carrier->GetParent());
                 },
                 "there must only be one first roll joint"},
        WalkCase{"CarrierWithTwoChildren", [](Gantry& g) { AddChild(g, g.carrier, true); },
                 "there must only be one first roll joint"},
        WalkCase{"FirstRollThatIsATranslation", [](Gantry& g) { TranslationAt(g, 0); },
                 "first roll joint is not rotary"},
        WalkCase{"FirstRollWithTwoChildren", [](Gantry& g) { AddChild(g, g.firstRoll, true); },
                 "there must be only one bend joint"},
        WalkCase{"FirstRollWithoutChild",
                 [](Gantry& g) {
                     ZELKinJoint* carrier = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Z2"), g.machine,
                                                                                     g.z, g.carrier->GetParent());
                     ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("R"), g.machine, g.c, carrier);
                 },
                 "there must be only one bend joint"},
        WalkCase{"BendThatIsATranslation", [](Gantry& g) { TranslationAt(g, 1); }, "the bend joint is not rotary"},
        WalkCase{"BendWithTwoChildren", [](Gantry& g) { AddChild(g, g.bend, false); },
                 "there must only be one second roll joint"},
        WalkCase{"SecondRollThatIsATranslation", [](Gantry& g) { TranslationAt(g, 2); },
                 "the second roll joint is not rotary"}),
    CaseName<WalkCase>);

// Configuration.

TEST(ZELKinRBRSolver, ConfigureBuildsEachJointFrameFromPivotAxisAndReference)
{
    Gantry gantry;
    InspectedSolver solver(gantry.machine);
    solver.Configure(ZELTest::kGantrySolverConfig);
    const ZELKinRBRSolverPrivate* d = solver.Private();
    EXPECT_TRUE(SameFrame(ZELMathAxis(ZELMathPoint(0, 0, 0), ZELMathVector(0, 1, 0), ZELMathVector(0, 0, 1),
                                      ZELMathVector(1, 0, 0)),
                          d->firstRollFrame));
    EXPECT_TRUE(SameFrame(ZELMathAxis(ZELMathPoint(0, 0, -150), ZELMathVector(0, 0, -1), ZELMathVector(-1, 0, 0),
                                      ZELMathVector(0, 1, 0)),
                          d->bendFrame));
    EXPECT_TRUE(SameFrame(ZELMathAxis(ZELMathPoint(0, 0, -300), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                      ZELMathVector(0, 0, 1)),
                          d->secondRollFrame));
    EXPECT_TRUE(SamePoint(ZELMathPoint(0, 0, -330), d->tipPoint, ZELTest::kExact));
}

TEST(ZELKinRBRSolver, AReferenceIsMadePerpendicularToAnAxisOfAnyLength)
{
    Gantry gantry;
    ZELKinRotaryJoint* first =
        ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), gantry.machine, gantry.c,
                                            ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Z2"),
                                                                                     gantry.machine, gantry.z,
                                                                                     gantry.carrier->GetParent()),
                                            ZELMathVector(0, 0, 2), ZELMathPoint(1, 2, 3));
    ZELKinRotaryJoint* middle = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("A"), gantry.machine, gantry.a, first);
    ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C1"), gantry.machine, gantry.c1, middle);
    InspectedSolver solver(gantry.machine);
    solver.Configure(QStringLiteral("first-roll-reference: 1, 0, 5"));
    EXPECT_TRUE(SameFrame(ZELMathAxis(ZELMathPoint(1, 2, 3), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                      ZELMathVector(0, 0, 1)),
                          solver.Private()->firstRollFrame));
}

namespace {

struct KeyCase
{
    const char* name;
    const char* config;
    std::function<::testing::AssertionResult(const ZELKinRBRSolverPrivate*)> check;
};
ZELTEST_PRINT_CASE_BY_NAME(KeyCase);

class ZELKinRBRSolverKey : public ::testing::TestWithParam<KeyCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverKey, SetsItsValue)
{
    Gantry gantry;
    InspectedSolver solver(gantry.machine);
    MessageLog log;
    solver.Configure(QString::fromUtf8(GetParam().config));
    EXPECT_TRUE(GetParam().check(solver.Private()));
    EXPECT_TRUE(log.warnings.isEmpty()) << log.warnings.join(QLatin1Char('|')).toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Keys, ZELKinRBRSolverKey,
    ::testing::Values(
        KeyCase{"NormalToleranceInDegrees", "normal-tolerance: 0.5",
                [](const ZELKinRBRSolverPrivate* d) {
                    return ZELTest::SameDouble(0.5 * kPi / 180.0, d->normalTolerance, ZELTest::kTight);
                }},
        KeyCase{"NormalToleranceThatIsNotANumberIsZero", "normal-tolerance: wide",
                [](const ZELKinRBRSolverPrivate* d) {
                    return ZELTest::SameDouble(0.0, d->normalTolerance, ZELTest::kExact);
                }},
        KeyCase{"FirstRollReference", "first-roll-reference: 0,1,0",
                [](const ZELKinRBRSolverPrivate* d) {
                    return SameVector(ZELMathVector(0, 1, 0), d->firstRollReference, ZELTest::kExact);
                }},
        KeyCase{"BendReference", "bend-reference: 0, 0, -1",
                [](const ZELKinRBRSolverPrivate* d) {
                    return SameVector(ZELMathVector(0, 0, -1), d->bendReference, ZELTest::kExact);
                }},
        KeyCase{"SecondRollReference", "second-roll-reference:1,1,0",
                [](const ZELKinRBRSolverPrivate* d) {
                    return SameVector(ZELMathVector(1, 1, 0), d->secondRollReference, ZELTest::kExact);
                }},
        KeyCase{"TipPointWithBlanksEverywhere", "  tip-point  :   1.5 ,  -2 ,\t-330  ",
                [](const ZELKinRBRSolverPrivate* d) {
                    return SamePoint(ZELMathPoint(1.5, -2, -330), d->tipPoint, ZELTest::kExact);
                }},
        KeyCase{"CoordinateThatIsNotANumberIsZero", "tip-point: 1,two,3",
                [](const ZELKinRBRSolverPrivate* d) {
                    return SamePoint(ZELMathPoint(1, 0, 3), d->tipPoint, ZELTest::kExact);
                }},
        KeyCase{"LaterItemsWin", "tip-point: 1,2,3; tip-point: 4,5,6",
                [](const ZELKinRBRSolverPrivate* d) {
                    return SamePoint(ZELMathPoint(4, 5, 6), d->tipPoint, ZELTest::kExact);
                }}),
    CaseName<KeyCase>);

TEST(ZELKinRBRSolver, SetAngleToleranceWritesTheNormalToleranceInRadians)
{
    Gantry gantry;
    InspectedSolver solver(gantry.machine);
    solver.SetAngleTolerance(0.25);
    EXPECT_TRUE(ZELTest::SameDouble(0.25, solver.Private()->normalTolerance, ZELTest::kExact));
}

TEST(ZELKinRBRSolver, AnUnknownKeyLogsAWarningAndChangesNothing)
{
    Gantry gantry;
    InspectedSolver configured(gantry.machine);
    configured.Configure(ZELTest::kGantrySolverConfig);
    InspectedSolver solver(gantry.machine);
    MessageLog log;
    solver.Configure(ZELTest::kGantrySolverConfig + QStringLiteral("; foo: 1,2,3"));
    EXPECT_EQ(log.warnings, QStringList{QStringLiteral("Unknown solver variable: foo")});
    const ZELKinRBRSolverPrivate* expected = configured.Private();
    const ZELKinRBRSolverPrivate* actual = solver.Private();
    EXPECT_TRUE(ZELTest::SameDouble(expected->normalTolerance, actual->normalTolerance, ZELTest::kExact));
    EXPECT_TRUE(SameVector(expected->firstRollReference, actual->firstRollReference, ZELTest::kExact));
    EXPECT_TRUE(SameVector(expected->bendReference, actual->bendReference, ZELTest::kExact));
    EXPECT_TRUE(SameVector(expected->secondRollReference, actual->secondRollReference, ZELTest::kExact));
    EXPECT_TRUE(SamePoint(expected->tipPoint, actual->tipPoint, ZELTest::kExact));
    EXPECT_TRUE(SameFrame(expected->firstRollFrame, actual->firstRollFrame));
}

TEST(ZELKinRBRSolver, KeysAreCaseSensitive)
{
    Gantry gantry;
    InspectedSolver solver(gantry.machine);
    MessageLog log;
    solver.Configure(QStringLiteral("Tip-Point: 1,2,3"));
    EXPECT_EQ(log.warnings, QStringList{QStringLiteral("Unknown solver variable: Tip-Point")});
    EXPECT_TRUE(SamePoint(ZELMathPoint(), solver.Private()->tipPoint, ZELTest::kExact));
}

TEST(ZELKinRBRSolver, EmptyItemsAreReadAsAnEmptyKeyAndTheFramesAreStillBuilt)
{
    Gantry gantry;
    InspectedSolver solver(gantry.machine);
    MessageLog log;
    solver.Configure(QString());
    solver.Configure(QStringLiteral("tip-point: 0,0,-330;"));
    EXPECT_EQ(log.warnings, QStringList({QStringLiteral("Unknown solver variable: "),
                                         QStringLiteral("Unknown solver variable: ")}));
    EXPECT_TRUE(SameVector(ZELMathVector(0, 1, 0), solver.Private()->bendFrame.GetWDirection(), ZELTest::kExact));
    EXPECT_TRUE(SamePoint(ZELMathPoint(0, 0, -300), solver.Private()->secondRollFrame.GetOrigin(), ZELTest::kExact));
}

namespace {

struct FatalConfigCase
{
    const char* name;
    const char* config;
};
ZELTEST_PRINT_CASE_BY_NAME(FatalConfigCase);

class ZELKinRBRSolverConfigDeathTest : public ::testing::TestWithParam<FatalConfigCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverConfigDeathTest, AVectorThatIsNotThreeNumbersEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Gantry gantry;
    ZELKinRBRSolver solver(gantry.machine);
    EXPECT_DEATH(solver.Configure(QString::fromUtf8(GetParam().config)),
                 ZELTest::Literally(QStringLiteral("Variable not 3 coordinates separated by ','")));
}

INSTANTIATE_TEST_SUITE_P(Vectors, ZELKinRBRSolverConfigDeathTest,
                         ::testing::Values(FatalConfigCase{"TipPointWithTwoCoordinates", "tip-point: 0,-330"},
                                           FatalConfigCase{"FirstRollReferenceWithFour", "first-roll-reference: 0,1,0,0"},
                                           FatalConfigCase{"BendReferenceWithoutValue", "bend-reference"},
                                           FatalConfigCase{"SecondRollReferenceWithOne", "second-roll-reference: 1"}),
                         CaseName<FatalConfigCase>);

// Solving one frame.

namespace {


} // namespace

TEST(ZELKinRBRSolver, TheHomeFrameGivesTheHomeWristWithTheRollerCentreInTraoriForm)
{
    ConfiguredGantry configured;
    const ZELMathAxis frame = ToolFrame(ZELMathPoint(100, 200, -900), ZELMathVector(1, 0, 0), ZELMathVector(0, 0, 1));
    const QList<ZELKinSolution> solutions = configured.solver.Solve(frame, false);
    // Half a turn of C would need a bend of half a turn: only C = 0 is left.
    ASSERT_EQ(solutions.size(), 1);
    const ZELKinSolution& solution = solutions.first();
    const Gantry& g = configured.gantry;
    EXPECT_TRUE(solution.IsTraori());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, solution.GetVariableValue(g.c), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, solution.GetVariableValue(g.a), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, solution.GetVariableValue(g.c1), ZELTest::kTight));
    EXPECT_TRUE(SamePoint(ZELMathPoint(100, 200, -870), configured.solver.GetTipPoint(solution), ZELTest::kTight));
    EXPECT_EQ(solution.GetDefinedVariables().size(), 6);
}

TEST(ZELKinRBRSolver, EverySolutionPlacesTheRollerCentreAlongTheNormal)
{
    ConfiguredGantry configured(WristRanges(), 12.5);
    const ZELMathVector normal = Unit(0.3, -0.4, 0.8);
    const ZELMathVector travel = Unit(0.0, 0.8, 0.4);
    const QList<ZELKinSolution> solutions = configured.solver.Solve(ToolFrame(ZELMathPoint(1, 2, 3), travel, normal), false);
    ASSERT_FALSE(solutions.isEmpty());
    for (const ZELKinSolution& solution : solutions) {
        EXPECT_TRUE(solution.IsTraori());
        EXPECT_TRUE(SamePoint(ZELMathPoint(1, 2, 3) + 12.5 * normal, configured.solver.GetTipPoint(solution),
                              ZELTest::kTight));
    }
}

namespace {

struct SingularCase
{
    const char* name;
    //! The pole: +1 along the first roll axis, -1 against it.
    double pole;
    //! Angle of the normal from that pole, in normal tolerances.
    double tolerances;
    bool infinite;
};
ZELTEST_PRINT_CASE_BY_NAME(SingularCase);

class ZELKinRBRSolverSingular : public ::testing::TestWithParam<SingularCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverSingular, WithoutTraoriANormalAtEitherPoleOfTheFirstRollAxisGivesOneInfiniteSolution)
{
    ConfiguredGantry configured;
    const double angle = GetParam().tolerances * kDefaultTolerance;
    const double pole = GetParam().pole;
    const ZELMathVector normal(pole * std::cos(angle), 0.0, std::sin(angle));
    const ZELMathVector travel(-pole * std::sin(angle), 0.0, std::cos(angle));
    const QList<ZELKinSolution> solutions = configured.solver.Solve(ToolFrame(ZELMathPoint(), travel, normal), false);
    ASSERT_FALSE(solutions.isEmpty());
    if (GetParam().infinite) {
        ASSERT_EQ(solutions.size(), 1);
        EXPECT_TRUE(solutions.first().IsInfinite());
    } else {
        for (const ZELKinSolution& solution : solutions)
            EXPECT_FALSE(solution.IsInfinite());
    }
}

INSTANTIATE_TEST_SUITE_P(Normals, ZELKinRBRSolverSingular,
                         ::testing::Values(SingularCase{"AlongTheAxis", 1.0, 0.0, true},
                                           SingularCase{"WithinTheTolerance", 1.0, 0.99, true},
                                           SingularCase{"JustOutsideTheTolerance", 1.0, 1.01, false},
                                           SingularCase{"AgainstTheAxis", -1.0, 0.0, true},
                                           SingularCase{"WithinTheToleranceOfTheOppositePole", -1.0, 0.99, true},
                                           SingularCase{"JustOutsideTheToleranceOfTheOppositePole", -1.0, 1.01,
                                                        false}),
                         CaseName<SingularCase>);

namespace {

class ZELKinRBRSolverPole : public ::testing::TestWithParam<double>
{
};

} // namespace

TEST_P(ZELKinRBRSolverPole, WithTraoriANormalAtThePoleTakesTheFirstRollFromTheTravel)
{
    ConfiguredGantry configured;
    // Seen along X the travel lies 0.4 rad counter-clockwise of the first roll's
    // zero direction +Z.
    const ZELMathVector travel(0.0, -std::sin(0.4), std::cos(0.4));
    const QList<ZELKinSolution> solutions =
        configured.solver.Solve(ToolFrame(ZELMathPoint(), travel, ZELMathVector(GetParam(), 0, 0)), true);
    // 0.4 + pi lies beyond the maximum of 3.4994.
    EXPECT_TRUE(SameValues({0.4, 0.4 - kPi}, DistinctRuns(solutions, configured.gantry.c), ZELTest::kTight));
    for (const ZELKinSolution& solution : solutions)
        EXPECT_TRUE(ZELTest::SameDouble(kPi / 2.0, std::abs(solution.GetVariableValue(configured.gantry.a)),
                                        ZELTest::kTight));
}

INSTANTIATE_TEST_SUITE_P(Poles, ZELKinRBRSolverPole, ::testing::Values(1.0, -1.0),
                         [](const ::testing::TestParamInfo<double>& info) {
                             return std::string(info.param > 0.0 ? "AlongTheAxis" : "AgainstTheAxis");
                         });

TEST(ZELKinRBRSolver, ATravelWithoutDirectionAcrossASingularFirstRollStartsAtZeroAndKeepsItsHalfTurnsInRange)
{
    WristRanges ranges;
    ranges.firstRoll = {0.5, 4.0};
    ConfiguredGantry configured(ranges);
    // A frame whose travel is its normal: nothing of it shows across the first roll.
    const ZELMathAxis frame(ZELMathPoint(), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0), ZELMathVector(1, 0, 0));
    const QList<ZELKinSolution> solutions = configured.solver.Solve(frame, true);
    EXPECT_TRUE(SameValues({kPi}, DistinctRuns(solutions, configured.gantry.c), ZELTest::kTight));
}

namespace {

struct FirstRollCase
{
    const char* name;
    Range range;
    std::vector<double> expected;
};
ZELTEST_PRINT_CASE_BY_NAME(FirstRollCase);

class ZELKinRBRSolverFirstRoll : public ::testing::TestWithParam<FirstRollCase>
{
};

std::vector<double> Turns(double start, double step, int count)
{
    std::vector<double> values;
    for (int k = 1; k <= count; ++k)
        values.push_back(start + k * step);
    return values;
}

std::vector<double> EightHalfTurnsEachWay()
{
    std::vector<double> values{0.3};
    for (const double value : Turns(0.3, -kPi, 8))
        values.push_back(value);
    for (const double value : Turns(0.3, kPi, 8))
        values.push_back(value);
    return values;
}

} // namespace

TEST_P(ZELKinRBRSolverFirstRoll, CandidatesComeInHalfTurnsDownThenUp)
{
    WristRanges ranges;
    ranges.firstRoll = GetParam().range;
    // Every half turn of C keeps the bend plane, which takes a bend of about
    // 0.2 rad at the even turns and about pi - 0.2 at the odd ones: a bend
    // range of a whole turn keeps them all.
    ranges.bend = {-3.2, 3.2};
    ConfiguredGantry configured(ranges);
    // Seen along X the normal lies 0.3 rad counter-clockwise of +Z.
    const ZELMathVector normal = Unit(0.2, -std::sin(0.3), std::cos(0.3));
    const ZELMathVector travel = Unit(0.0, std::cos(0.3), std::sin(0.3));
    const QList<ZELKinSolution> solutions =
        configured.solver.Solve(ToolFrame(ZELMathPoint(), travel, normal), false);
    EXPECT_TRUE(SameValues(GetParam().expected, DistinctRuns(solutions, configured.gantry.c), 1e-12));
}

INSTANTIATE_TEST_SUITE_P(
    Ranges, ZELKinRBRSolverFirstRoll,
    ::testing::Values(
        FirstRollCase{"TwoTurnsWide", {-2.0 * kPi, 2.0 * kPi}, {0.3, 0.3 - kPi, 0.3 - 2.0 * kPi, 0.3 + kPi}},
        FirstRollCase{"AboveTheAngle", {2.0, 9.0}, {0.3 + kPi, 0.3 + 2.0 * kPi}},
        FirstRollCase{"BelowTheAngle", {-9.0, -2.0}, {0.3 - kPi, 0.3 - 2.0 * kPi}},
        FirstRollCase{"NarrowerThanHalfATurnHoldingNoHalfTurnGivesNone", {-0.5, 0.2}, {}},
        FirstRollCase{"NarrowerThanHalfATurnHoldingOne", {-3.0, -2.5}, {0.3 - kPi}},
        FirstRollCase{"FarAboveZero", {100.0 * kPi, 102.0 * kPi}, {0.3 + 100.0 * kPi, 0.3 + 101.0 * kPi}},
        FirstRollCase{"FarBelowZero", {-102.0 * kPi, -100.0 * kPi}, {0.3 - 101.0 * kPi, 0.3 - 102.0 * kPi}},
        FirstRollCase{"WiderThanEightHalfTurnsEachWayListsTheNearestEight", {-20.0 * kPi, 20.0 * kPi},
                      EightHalfTurnsEachWay()},
        FirstRollCase{"InfiniteLimitsStopAfterEightHalfTurnsEachWay", {-kInfinity, kInfinity},
                      EightHalfTurnsEachWay()},
        FirstRollCase{"HugeLimitsStopAfterEightHalfTurnsEachWay", {-1e300, 1e300}, EightHalfTurnsEachWay()},
        FirstRollCase{"NaNLimitsAreNoLimits", {kNaN, kNaN}, EightHalfTurnsEachWay()}),
    CaseName<FirstRollCase>);

TEST(ZELKinRBRSolver, AMinimumTooLargeForHalfTurnsToShowGivesAtMostOneCandidateWithinTheLimits)
{
    WristRanges ranges;
    ranges.firstRoll = {1e300, kInfinity};
    ranges.bend = {-3.2, 3.2};
    ConfiguredGantry configured(ranges);
    const ZELMathVector normal = Unit(0.2, -std::sin(0.3), std::cos(0.3));
    const ZELMathVector travel = Unit(0.0, std::cos(0.3), std::sin(0.3));
    const std::vector<double> firstRolls =
        DistinctRuns(configured.solver.Solve(ToolFrame(ZELMathPoint(), travel, normal), false), configured.gantry.c);
    EXPECT_LE(firstRolls.size(), 1u);
    for (const double firstRoll : firstRolls)
        EXPECT_GE(firstRoll, 1e300);
}

namespace {

struct SecondRollCase
{
    const char* name;
    Range range;
    double angle;
    std::vector<double> expected;
};
ZELTEST_PRINT_CASE_BY_NAME(SecondRollCase);

class ZELKinRBRSolverSecondRoll : public ::testing::TestWithParam<SecondRollCase>
{
};

std::vector<double> EightTurnsEachWayFromOne()
{
    std::vector<double> values{1.0};
    for (const double value : Turns(1.0, -2.0 * kPi, 8))
        values.push_back(value);
    for (const double value : Turns(1.0, 2.0 * kPi, 8))
        values.push_back(value);
    return values;
}

} // namespace

TEST_P(ZELKinRBRSolverSecondRoll, CandidatesComeInWholeTurnsDownThenUp)
{
    WristRanges ranges;
    ranges.secondRoll = GetParam().range;
    ConfiguredGantry configured(ranges);
    const double angle = GetParam().angle;
    const QList<ZELKinSolution> solutions = configured.solver.Solve(
        ToolFrame(ZELMathPoint(), ZELMathVector(std::cos(angle), std::sin(angle), 0.0), ZELMathVector(0, 0, 1)), false);
    std::vector<double> values;
    for (const ZELKinSolution& solution : solutions) {
        EXPECT_TRUE(ZELTest::SameDouble(0.0, solution.GetVariableValue(configured.gantry.c), ZELTest::kTight));
        values.push_back(solution.GetVariableValue(configured.gantry.c1));
    }
    EXPECT_TRUE(SameValues(GetParam().expected, values, 1e-12));
}

INSTANTIATE_TEST_SUITE_P(
    Ranges, ZELKinRBRSolverSecondRoll,
    ::testing::Values(
        SecondRollCase{"ExampleRange", {-3.2376, 3.2376}, 3.1, {3.1, 3.1 - 2.0 * kPi}},
        SecondRollCase{"FourTurnsWide", {-4.0 * kPi, 4.0 * kPi}, 1.0, {1.0, 1.0 - 2.0 * kPi, 1.0 - 4.0 * kPi, 1.0 + 2.0 * kPi}},
        SecondRollCase{"AngleBelowTheRange", {4.0, 10.0}, 1.0, {1.0 + 2.0 * kPi}},
        SecondRollCase{"NoTurnFits", {1.5, 2.0}, 1.0, {}},
        SecondRollCase{"TurnsBelowTheAngleAreCheckedAgainstTheMaximumToo", {-20.0, -10.0}, 3.1,
                       {3.1 - 6.0 * kPi}},
        SecondRollCase{"TurnsAboveTheAngleAreCheckedAgainstTheMinimumToo", {10.0, 20.0}, 1.0,
                       {1.0 + 4.0 * kPi, 1.0 + 6.0 * kPi}},
        SecondRollCase{"FarAboveZero", {100.0 * kPi, 102.0 * kPi}, 1.0, {1.0 + 100.0 * kPi}},
        SecondRollCase{"FarBelowZero", {-102.0 * kPi, -100.0 * kPi}, 1.0, {1.0 - 102.0 * kPi}},
        SecondRollCase{"InfiniteLimitsStopAfterEightTurnsEachWay", {-kInfinity, kInfinity}, 1.0,
                       EightTurnsEachWayFromOne()},
        SecondRollCase{"NaNLimitsAreNoLimits", {kNaN, kNaN}, 1.0, EightTurnsEachWayFromOne()},
        SecondRollCase{"OneNaNLimit", {0.5, kNaN}, 1.0, {1.0, 1.0 + 2.0 * kPi, 1.0 + 4.0 * kPi, 1.0 + 6.0 * kPi,
                                                          1.0 + 8.0 * kPi, 1.0 + 10.0 * kPi, 1.0 + 12.0 * kPi,
                                                          1.0 + 14.0 * kPi, 1.0 + 16.0 * kPi}}),
    CaseName<SecondRollCase>);

namespace {

struct BendCase
{
    const char* name;
    double bend;
    double tolerance;
    double expected;
};
ZELTEST_PRINT_CASE_BY_NAME(BendCase);

class ZELKinRBRSolverBend : public ::testing::TestWithParam<BendCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverBend, ABendThatItsRangeHoldsIsKeptAsComputedAndOnlyRoundingNoiseIsZero)
{
    WristRanges ranges;
    ranges.firstRoll = {-1.0, 1.0};
    ConfiguredGantry configured(ranges);
    if (!std::isnan(GetParam().tolerance))
        configured.solver.SetAngleTolerance(GetParam().tolerance);
    // Bending A by b about Y turns the home normal +Z to (sin b, 0, cos b).
    const double bend = GetParam().bend;
    const QList<ZELKinSolution> solutions = configured.solver.Solve(
        ToolFrame(ZELMathPoint(), ZELMathVector(std::cos(bend), 0, -std::sin(bend)), ZELMathVector(std::sin(bend), 0, std::cos(bend))),
        false);
    ASSERT_EQ(solutions.size(), 1);
    const double tolerance = GetParam().expected == 0.0 ? ZELTest::kExact : ZELTest::kTight;
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().expected, solutions.first().GetVariableValue(configured.gantry.a),
                                    tolerance));
}

INSTANTIATE_TEST_SUITE_P(Bends, ZELKinRBRSolverBend,
                         ::testing::Values(BendCase{"BelowTheDefaultTolerance", 0.0005, kNaN, 0.0005},
                                           BendCase{"NegativeBelowTheDefaultTolerance", -0.0005, kNaN, -0.0005},
                                           BendCase{"AboveTheDefaultTolerance", 0.0015, kNaN, 0.0015},
                                           BendCase{"BelowAWiderTolerance", 0.0015, 0.002, 0.0015},
                                           BendCase{"ZeroTolerance", 0.0005, 0.0, 0.0005},
                                           BendCase{"RoundingNoise", 1e-15, kNaN, 0.0},
                                           BendCase{"NegativeRoundingNoise", -1e-15, kNaN, 0.0}),
                         CaseName<BendCase>);

namespace {

// A bend near zero against a bend range, with the default tolerance.
struct BendRangeCase
{
    const char* name;
    double bend;
    Range range;
    std::vector<double> expected;
};
ZELTEST_PRINT_CASE_BY_NAME(BendRangeCase);

class ZELKinRBRSolverBendRange : public ::testing::TestWithParam<BendRangeCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverBendRange, IsCheckedAfterTheSnapToZero)
{
    WristRanges ranges;
    ranges.firstRoll = {-1.0, 1.0};
    ranges.bend = GetParam().range;
    ConfiguredGantry configured(ranges);
    // Bending A by b about Y turns the home normal +Z to (sin b, 0, cos b).
    const double bend = GetParam().bend;
    const QList<ZELKinSolution> solutions = configured.solver.Solve(
        ToolFrame(ZELMathPoint(), ZELMathVector(std::cos(bend), 0, -std::sin(bend)),
                  ZELMathVector(std::sin(bend), 0, std::cos(bend))),
        false);
    std::vector<double> bends;
    for (const ZELKinSolution& solution : solutions)
        bends.push_back(solution.GetVariableValue(configured.gantry.a));
    EXPECT_TRUE(SameValues(GetParam().expected, bends, ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(
    Bends, ZELKinRBRSolverBendRange,
    ::testing::Values(BendRangeCase{"NegativeSnappedIntoARangeFromZero", -0.0005, {0.0, 1.0}, {0.0}},
                      BendRangeCase{"SnappedOutOfARangeFromInsideTheTolerance", 0.0001, {0.0002, 1.0}, {}},
                      BendRangeCase{"SnappedOutOfARangeThatHeldIt", 0.0005, {0.0002, 1.0}, {}},
                      BendRangeCase{"SnappedOutOfARangeUpToInsideTheTolerance", -0.0005, {-1.0, -0.0002}, {}},
                      BendRangeCase{"SnappedIntoARangeAroundZero", 0.0005, {-0.0002, 0.0002}, {0.0}}),
    CaseName<BendRangeCase>);

TEST(ZELKinRBRSolver, ABendOutsideItsRangeDropsTheFirstRollCandidate)
{
    WristRanges ranges;
    ranges.bend = {0.0, 1.6};
    ConfiguredGantry configured(ranges);
    const ZELMathVector normal(std::sin(0.5), 0.0, std::cos(0.5));
    const ZELMathVector travel(std::cos(0.5), 0, -std::sin(0.5));
    const QList<ZELKinSolution> solutions = configured.solver.Solve(ToolFrame(ZELMathPoint(), travel, normal), false);
    // C = 0 bends by +0.5; C = +-pi would bend by -0.5.
    EXPECT_TRUE(SameValues({0.0}, DistinctRuns(solutions, configured.gantry.c), ZELTest::kTight));
    for (const ZELKinSolution& solution : solutions)
        EXPECT_TRUE(ZELTest::SameDouble(0.5, solution.GetVariableValue(configured.gantry.a), ZELTest::kTight));
}

TEST(ZELKinRBRSolver, AFrameNoBendReachesGivesNoSolution)
{
    WristRanges ranges;
    ranges.bend = {0.6, 0.7};
    ConfiguredGantry configured(ranges);
    const ZELMathVector normal(std::sin(0.5), 0.0, std::cos(0.5));
    EXPECT_TRUE(configured.solver
                    .Solve(ToolFrame(ZELMathPoint(), ZELMathVector(std::cos(0.5), 0, -std::sin(0.5)), normal), true)
                    .isEmpty());
}

namespace {

struct NonFiniteCase
{
    const char* name;
    ZELMathAxis frame;
};
ZELTEST_PRINT_CASE_BY_NAME(NonFiniteCase);

class ZELKinRBRSolverNonFinite : public ::testing::TestWithParam<NonFiniteCase>
{
};

ZELMathAxis HomeFrameWith(const ZELMathPoint& origin, const ZELMathVector& travel, const ZELMathVector& normal)
{
    return ZELMathAxis(origin, travel, ZELMathVector(0, 1, 0), normal);
}

} // namespace

TEST_P(ZELKinRBRSolverNonFinite, FrameGivesNoSolutionAndEndsEveryLoop)
{
    WristRanges ranges;
    ranges.firstRoll = {-kInfinity, kInfinity};
    ranges.bend = {kNaN, kNaN};
    ranges.secondRoll = {-kInfinity, kInfinity};
    ConfiguredGantry configured(ranges);
    EXPECT_TRUE(configured.solver.Solve(GetParam().frame, true).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Frames, ZELKinRBRSolverNonFinite,
    ::testing::Values(
        NonFiniteCase{"NaNOrigin", HomeFrameWith(ZELMathPoint(kNaN, 0, 0), ZELMathVector(1, 0, 0), ZELMathVector(0, 0, 1))},
        NonFiniteCase{"InfiniteOrigin",
                      HomeFrameWith(ZELMathPoint(0, kInfinity, 0), ZELMathVector(1, 0, 0), ZELMathVector(0, 0, 1))},
        NonFiniteCase{"NaNNormal", HomeFrameWith(ZELMathPoint(), ZELMathVector(1, 0, 0), ZELMathVector(0, kNaN, 1))},
        NonFiniteCase{"NaNTravel", HomeFrameWith(ZELMathPoint(), ZELMathVector(kNaN, 0, 0), ZELMathVector(0, 0, 1))},
        NonFiniteCase{"InfiniteNormal",
                      HomeFrameWith(ZELMathPoint(), ZELMathVector(1, 0, 0), ZELMathVector(0, 0, kInfinity))}),
    CaseName<NonFiniteCase>);

TEST(ZELKinRBRSolver, ANaNNormalToleranceNeitherSnapsNorFindsTheAxisAndStillEnds)
{
    ConfiguredGantry configured;
    configured.solver.SetAngleTolerance(kNaN);
    const QList<ZELKinSolution> solutions =
        configured.solver.Solve(ToolFrame(ZELMathPoint(), ZELMathVector(0, 0, 1), ZELMathVector(1, 0, 0)), false);
    ASSERT_FALSE(solutions.isEmpty());
    EXPECT_FALSE(solutions.first().IsInfinite());
}

// Solving between two solved points.

namespace {

struct BetweenCase
{
    const char* name;
    bool fromInfinite;
    bool toInfinite;
};
ZELTEST_PRINT_CASE_BY_NAME(BetweenCase);

class ZELKinRBRSolverBetween : public ::testing::TestWithParam<BetweenCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverBetween, AnInfiniteEndGivesTheOtherEndAtTheRollerCentre)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    ZELKinSolution from = g.Solution(ZELMathPoint(1, 2, 3), 0.1, 0.2, 0.3);
    ZELKinSolution to = g.Solution(ZELMathPoint(4, 5, 6), 0.4, 0.5, 0.6);
    to.SetTraori(true);
    if (GetParam().fromInfinite)
        from = ZELKinSolution();
    if (GetParam().toInfinite)
        to = ZELKinSolution();
    // The roller centre lies 30 mm along the normal (0, 0.6, 0.8) from the origin.
    const ZELMathAxis frame = ToolFrame(ZELMathPoint(7, 8, 9), ZELMathVector(1, 0, 0), ZELMathVector(0, 0.6, 0.8));
    const ZELKinSolution result = configured.solver.Solve(frame, 0.25, from, to);
    if (GetParam().fromInfinite && GetParam().toInfinite) {
        EXPECT_TRUE(result.IsInfinite());
        return;
    }
    const ZELKinSolution& kept = GetParam().fromInfinite ? to : from;
    EXPECT_EQ(result.IsTraori(), kept.IsTraori());
    EXPECT_TRUE(SamePoint(ZELMathPoint(7, 26, 33), g.LinearOf(result), ZELTest::kTight));
    for (ZELKinVariable* wrist : {g.c, g.a, g.c1})
        EXPECT_TRUE(ZELTest::SameDouble(kept.GetVariableValue(wrist), result.GetVariableValue(wrist), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(Ends, ZELKinRBRSolverBetween,
                         ::testing::Values(BetweenCase{"FromInfinite", true, false},
                                           BetweenCase{"ToInfinite", false, true},
                                           BetweenCase{"BothInfinite", true, true}),
                         CaseName<BetweenCase>);

TEST(ZELKinRBRSolver, BetweenTwoSolvedPointsTheWristIsBlendedAndTheRollerCentreTaken)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    ZELKinSolution from = g.Solution(ZELMathPoint(1, 2, 3), 0.0, 0.2, 1.0);
    from.SetVariableValue(ZELKinTestAccess::CreateVariable(g.machine, QStringLiteral("U")), 1.0);
    const ZELKinSolution to = g.Solution(ZELMathPoint(4, 5, 6), 1.0, 0.4, -1.0);
    const ZELMathVector normal = Unit(0, 0.6, 0.8);
    const ZELKinSolution result =
        configured.solver.Solve(ToolFrame(ZELMathPoint(7, 8, 9), ZELMathVector(1, 0, 0), normal), 0.25, from, to);
    EXPECT_TRUE(result.IsTraori());
    EXPECT_EQ(result.GetDefinedVariables().size(), 6);
    EXPECT_TRUE(ZELTest::SameDouble(0.25, result.GetVariableValue(g.c), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.25, result.GetVariableValue(g.a), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.5, result.GetVariableValue(g.c1), ZELTest::kTight));
    EXPECT_TRUE(SamePoint(ZELMathPoint(7, 8, 9) + 30.0 * normal, configured.solver.GetTipPoint(result), ZELTest::kTight));
}

// Solving a frame nearest a guess.

namespace {

struct NearestCase
{
    const char* name;
    Range firstRollRange;
    //! The normal lies along (+1) or against (-1) the first roll axis.
    double pole;
    //! The first roll of the guess; NaN for a guess without one.
    double guessedFirstRoll;
    double firstRoll;
};
ZELTEST_PRINT_CASE_BY_NAME(NearestCase);

class ZELKinRBRSolverNearest : public ::testing::TestWithParam<NearestCase>
{
};

// A frame at a pole of the first roll axis X, travelling across it.
ZELMathAxis PoleFrame(double pole)
{
    return ToolFrame(ZELMathPoint(100, 200, -300), Unit(0.0, 0.6, 0.8), ZELMathVector(pole, 0, 0));
}

} // namespace

TEST_P(ZELKinRBRSolverNearest, WhereTheWristIsFreeKeepsTheFirstRollAndMeetsTheFrame)
{
    WristRanges ranges;
    ranges.firstRoll = GetParam().firstRollRange;
    ConfiguredGantry configured(ranges);
    const Gantry& g = configured.gantry;
    ZELKinSolution guess = g.Solution(ZELMathPoint(1, 2, 3), GetParam().guessedFirstRoll, 0.3, 0.2);
    const ZELMathAxis frame = PoleFrame(GetParam().pole);
    const ZELKinSolution solution = configured.solver.SolveNearest(frame, guess);
    ASSERT_EQ(solution.GetDefinedVariables().size(), 6);
    EXPECT_TRUE(solution.IsTraori());
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().firstRoll, solution.GetVariableValue(g.c), ZELTest::kExact));
    EXPECT_TRUE(SamePoint(frame.GetOrigin() + 30.0 * frame.GetWDirection(), g.LinearOf(solution), ZELTest::kTight));
    const ZELMathAxis reached = configured.solver.GetToolFrame(solution);
    EXPECT_TRUE(SamePoint(frame.GetOrigin(), reached.GetOrigin(), 1e-9));
    EXPECT_TRUE(SameVector(frame.GetWDirection(), reached.GetWDirection(), 1e-9));
    EXPECT_TRUE(SameVector(frame.GetUDirection(), reached.GetUDirection(), 1e-9));
}

INSTANTIATE_TEST_SUITE_P(
    Guesses, ZELKinRBRSolverNearest,
    ::testing::Values(NearestCase{"KeepsTheGuessAlongTheAxis", {-3.4994, 3.4994}, 1.0, 0.7, 0.7},
                      NearestCase{"KeepsTheGuessAgainstTheAxis", {-3.4994, 3.4994}, -1.0, -2.0, -2.0},
                      NearestCase{"WithoutAGuessTakesZero", {-3.4994, 3.4994}, 1.0, kNaN, 0.0},
                      NearestCase{"WithoutAGuessTakesTheMinimumAboveZero", {0.5, 3.0}, 1.0, kNaN, 0.5},
                      NearestCase{"WithoutAGuessTakesTheMaximumBelowZero", {-3.0, -0.5}, -1.0, kNaN, -0.5},
                      NearestCase{"AGuessBeyondTheLimitsTakesTheNearestLimit", {-1.0, 1.0}, 1.0, 1.5, 1.0}),
    CaseName<NearestCase>);

TEST(ZELKinRBRSolver, WhereTheWristIsFreeTheSecondRollIsItsTurnNearestTheGuess)
{
    WristRanges ranges;
    ranges.secondRoll = {-kInfinity, kInfinity};
    ConfiguredGantry configured(ranges);
    const Gantry& g = configured.gantry;
    const ZELMathAxis frame = PoleFrame(1.0);
    const double angle =
        configured.solver.SolveNearest(frame, g.Solution(ZELMathPoint(), 0.7, 0.0, 0.0)).GetVariableValue(g.c1);
    ASSERT_FALSE(std::isnan(angle));
    EXPECT_LE(std::abs(angle), kPi);
    const ZELKinSolution solution =
        configured.solver.SolveNearest(frame, g.Solution(ZELMathPoint(), 0.7, 0.0, angle + 4.0 * kPi + 3.0));
    EXPECT_TRUE(ZELTest::SameDouble(angle + 4.0 * kPi, solution.GetVariableValue(g.c1), ZELTest::kTight));
}

TEST(ZELKinRBRSolver, WhereTheWristIsFreeTheSecondRollIsTheTurnWithinItsLimitsNearestTheGuess)
{
    ConfiguredGantry endless(WristRanges{{-3.4994, 3.4994}, {-1.6581, 1.6581}, {-kInfinity, kInfinity}});
    const ZELMathAxis frame = PoleFrame(1.0);
    const double angle = endless.solver.SolveNearest(frame, endless.gantry.Solution(ZELMathPoint(), 0.7, 0.0, 0.0))
                             .GetVariableValue(endless.gantry.c1);
    // The range lies wholly above the guess of 0: its lowest turn is the nearest.
    ConfiguredGantry configured(WristRanges{{-3.4994, 3.4994}, {-1.6581, 1.6581}, {10.0, 20.0}});
    const ZELKinSolution solution =
        configured.solver.SolveNearest(frame, configured.gantry.Solution(ZELMathPoint(), 0.7, 0.0, 0.0));
    const double lowest = angle + 2.0 * kPi * std::ceil((10.0 - angle) / (2.0 * kPi));
    EXPECT_TRUE(ZELTest::SameDouble(lowest, solution.GetVariableValue(configured.gantry.c1), ZELTest::kTight));
}

TEST(ZELKinRBRSolver, WhereTheWristIsFreeABendRangeShortOfAQuarterTurnGivesAnInfiniteSolution)
{
    // At either pole the head needs a bend of a quarter turn, whatever the first roll.
    ConfiguredGantry configured(WristRanges{{-3.4994, 3.4994}, {-1.5, 1.5}, {-3.2376, 3.2376}});
    const ZELKinSolution guess = configured.gantry.Solution(ZELMathPoint(), 0.7, 0.0, 0.0);
    EXPECT_TRUE(configured.solver.SolveNearest(PoleFrame(1.0), guess).IsInfinite());
    EXPECT_TRUE(configured.solver.SolveNearest(PoleFrame(-1.0), guess).IsInfinite());
}

TEST(ZELKinRBRSolver, WhereTheWristIsFreeASecondRollRangeMissingEveryTurnGivesAnInfiniteSolution)
{
    ConfiguredGantry endless(WristRanges{{-3.4994, 3.4994}, {-1.6581, 1.6581}, {-kInfinity, kInfinity}});
    const ZELMathAxis frame = PoleFrame(1.0);
    const ZELKinSolution guess = endless.gantry.Solution(ZELMathPoint(), 0.7, 0.0, 0.0);
    const double angle = endless.solver.SolveNearest(frame, guess).GetVariableValue(endless.gantry.c1);
    ConfiguredGantry configured(WristRanges{{-3.4994, 3.4994}, {-1.6581, 1.6581}, {angle + 0.1, angle + 0.2}});
    EXPECT_TRUE(configured.solver.SolveNearest(frame, guess).IsInfinite());
}

TEST(ZELKinRBRSolver, AwayFromThePolesSolveNearestTakesTheCandidateWithTheLeastRollTravel)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    // Travelling 3.1 rad round from +X, the second roll reaches the frame at
    // 3.1 and at 3.1 - 2 pi.
    const ZELMathAxis frame =
        ToolFrame(ZELMathPoint(1, 2, 3), ZELMathVector(std::cos(3.1), std::sin(3.1), 0.0), ZELMathVector(0, 0, 1));
    const QList<ZELKinSolution> candidates = configured.solver.Solve(frame, false);
    ASSERT_EQ(candidates.size(), 2);
    for (const ZELKinSolution& candidate : {candidates.first(), candidates.last()}) {
        // A guess a little off the candidate, elsewhere: only its rolls count.
        const ZELKinSolution guess = g.Solution(ZELMathPoint(500, 500, 500), candidate.GetVariableValue(g.c) + 0.01,
                                                -candidate.GetVariableValue(g.a), candidate.GetVariableValue(g.c1));
        const ZELKinSolution solution = configured.solver.SolveNearest(frame, guess);
        for (ZELKinVariable* variable : {g.x, g.y, g.z, g.c, g.a, g.c1})
            EXPECT_TRUE(ZELTest::SameDouble(candidate.GetVariableValue(variable), solution.GetVariableValue(variable),
                                            ZELTest::kExact));
    }
    EXPECT_TRUE(configured.solver.SolveNearest(frame, ZELKinSolution()) == candidates.first());
}

TEST(ZELKinRBRSolver, SolveNearestOfAFrameThatIsNotFiniteOrWithoutAWristIsInfinite)
{
    ConfiguredGantry configured;
    const ZELKinSolution guess = configured.gantry.Solution(ZELMathPoint(), 0.7, 0.0, 0.0);
    const ZELMathAxis notFinite(ZELMathPoint(kNaN, 0, 0), ZELMathVector(0, 1, 0), ZELMathVector(0, 0, 1),
                                ZELMathVector(1, 0, 0));
    EXPECT_TRUE(configured.solver.SolveNearest(notFinite, guess).IsInfinite());
    const ZELKinRBRSolver withoutWrist(static_cast<ZELKinMachine*>(nullptr));
    EXPECT_TRUE(withoutWrist.SolveNearest(PoleFrame(1.0), guess).IsInfinite());
}

// Every candidate within the limits, whatever the limits.

namespace {

struct LimitsCase
{
    const char* name;
    WristRanges ranges;
};
ZELTEST_PRINT_CASE_BY_NAME(LimitsCase);

class ZELKinRBRSolverLimits : public ::testing::TestWithParam<LimitsCase>
{
};

bool Within(const ZELKinSolution& solution, ZELKinVariable* variable)
{
    const double value = solution.GetVariableValue(variable);
    return value >= variable->GetMinimum() && value <= variable->GetMaximum();
}

} // namespace

TEST_P(ZELKinRBRSolverLimits, EveryCandidateOfManyFramesLiesWithinTheLimitsAndReachesItsFrame)
{
    ConfiguredGantry configured(GetParam().ranges);
    const Gantry& g = configured.gantry;
    std::mt19937_64 random(20261124);
    std::normal_distribution<double> gauss;
    std::uniform_real_distribution<double> angle(-20.0, 20.0);
    const auto unitVector = [&] { return Unit(gauss(random), gauss(random), gauss(random)); };
    std::uniform_real_distribution<double> offPole(0.0, 0.999 * kDefaultTolerance);
    const auto across = [&](const ZELMathVector& direction) {
        const ZELMathVector other = unitVector();
        return (other - other.Dot(direction) * direction).GetNormalized();
    };
    int candidates = 0;
    for (int i = 0; i < 2000; ++i) {
        // Every tenth normal lies within the normal tolerance of a pole of the
        // first roll axis X, where the first roll is free.
        const ZELMathVector pole(i % 20 == 0 ? 1.0 : -1.0, 0.0, 0.0);
        const double fromPole = offPole(random);
        const ZELMathVector normal =
            i % 10 == 0 ? std::cos(fromPole) * pole + std::sin(fromPole) * across(pole) : unitVector();
        const ZELMathVector travel = across(normal);
        const ZELMathAxis frame = ToolFrame(ZELMathPoint(10.0 * i, -5.0 * i, 2.0 * i), travel, normal);
        QList<ZELKinSolution> solutions = configured.solver.Solve(frame, true);
        const bool free = configured.solver.GetSingularityMargin(normal) < kDefaultTolerance;
        if (!free)
            solutions.append(configured.solver.Solve(frame, false));
        const double guessedFirstRoll = angle(random);
        const double guessedSecondRoll = angle(random);
        const ZELKinSolution nearest =
            configured.solver.SolveNearest(frame, g.Solution(ZELMathPoint(), guessedFirstRoll, 0.0, guessedSecondRoll));
        if (!nearest.IsInfinite())
            solutions.append(nearest);
        EXPECT_LE(solutions.size(), 2 * 17 * 17 + 1);
        for (const ZELKinSolution& solution : solutions) {
            ++candidates;
            for (ZELKinVariable* wrist : {g.c, g.a, g.c1})
                EXPECT_TRUE(Within(solution, wrist)) << wrist->GetLabel().toStdString() << " "
                                                     << solution.GetVariableValue(wrist) << " at frame " << i;
            // A snapped bend or a free first roll misses the frame by up to the tolerance.
            const bool snapped = std::abs(solution.GetVariableValue(g.a)) < kDefaultTolerance;
            const double allowed = free || snapped ? 2.0 * kDefaultTolerance : 1e-9;
            const ZELMathAxis reached = configured.solver.GetToolFrame(solution);
            EXPECT_TRUE(SameVector(normal, reached.GetWDirection(), allowed)) << "frame " << i;
            EXPECT_TRUE(SameVector(travel, reached.GetUDirection(), allowed)) << "frame " << i;
        }
    }
    EXPECT_GT(candidates, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Limits, ZELKinRBRSolverLimits,
    ::testing::Values(
        LimitsCase{"Example", WristRanges()},
        LimitsCase{"FirstRollNarrowerThanHalfATurn", WristRanges{{0.2, 2.0}, {-1.6581, 1.6581}, {-3.2376, 3.2376}}},
        LimitsCase{"FarFromZero",
                   WristRanges{{100.0 * kPi, 102.0 * kPi}, {-1.6581, 1.6581}, {-102.0 * kPi, -100.0 * kPi}}},
        LimitsCase{"SecondRollWhollyBelowZero", WristRanges{{-3.4994, 3.4994}, {-1.6581, 1.6581}, {-20.0, -10.0}}},
        LimitsCase{"SecondRollWhollyAboveZero", WristRanges{{-3.4994, 3.4994}, {-1.6581, 1.6581}, {10.0, 20.0}}},
        LimitsCase{"BendLeavingOutZero", WristRanges{{-3.4994, 3.4994}, {0.0002, 1.6581}, {-3.2376, 3.2376}}},
        LimitsCase{"Endless", WristRanges{{-kInfinity, kInfinity}, {-3.2, 3.2}, {-kInfinity, kInfinity}}},
        LimitsCase{"NarrowEverywhere", WristRanges{{-0.5, 0.2}, {-0.5, 0.5}, {1.5, 2.0}}}),
    CaseName<LimitsCase>);

// TRAORI conversions.

namespace {

struct OffsetCase
{
    const char* name;
    double c;
    double a;
    double c1;
    const char* tipPoint;
    ZELMathVector offset;
};
ZELTEST_PRINT_CASE_BY_NAME(OffsetCase);

class ZELKinRBRSolverOffset : public ::testing::TestWithParam<OffsetCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverOffset, ToTraoriAddsAndFromTraoriTakesOffTheTipOffset)
{
    ConfiguredGantry configured;
    configured.solver.Configure(QStringLiteral("tip-point: ") + QString::fromUtf8(GetParam().tipPoint));
    const Gantry& g = configured.gantry;
    const OffsetCase& offsetCase = GetParam();
    ZELKinSolution machine = g.Solution(ZELMathPoint(10, 20, 30), offsetCase.c, offsetCase.a, offsetCase.c1);
    const ZELKinSolution traori = configured.solver.ToTraori(machine);
    EXPECT_FALSE(traori.IsTraori());
    EXPECT_TRUE(SamePoint(ZELMathPoint(10, 20, 30) + offsetCase.offset, configured.solver.GetTipPoint(machine),
                          ZELTest::kTight));
    EXPECT_TRUE(SamePoint(ZELMathPoint(10, 20, 30) + offsetCase.offset,
                          ZELMathPoint(traori.GetVariableValue(g.x), traori.GetVariableValue(g.y),
                                       traori.GetVariableValue(g.z)),
                          ZELTest::kTight));
    machine.SetTraori(true);
    const ZELKinSolution back = configured.solver.FromTraori(machine);
    EXPECT_TRUE(back.IsTraori());
    EXPECT_TRUE(SamePoint(ZELMathPoint(10, 20, 30) - offsetCase.offset,
                          ZELMathPoint(back.GetVariableValue(g.x), back.GetVariableValue(g.y), back.GetVariableValue(g.z)),
                          ZELTest::kTight));
    for (ZELKinVariable* wrist : {g.c, g.a, g.c1})
        EXPECT_TRUE(ZELTest::SameDouble(machine.GetVariableValue(wrist), back.GetVariableValue(wrist), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(
    Wrists, ZELKinRBRSolverOffset,
    ::testing::Values(OffsetCase{"Home", 0.0, 0.0, 0.0, "0,0,-330", ZELMathVector(0, 0, 0)},
                      // C turns the tip about X through the origin.
                      OffsetCase{"FirstRollQuarterTurn", kPi / 2.0, 0.0, 0.0, "0,0,-330", ZELMathVector(0, 330, 330)},
                      OffsetCase{"FirstRollHalfTurn", kPi, 0.0, 0.0, "0,0,-330", ZELMathVector(0, 0, 660)},
                      // A turns the tip about Y through (0, 0, -150).
                      OffsetCase{"BendQuarterTurn", 0.0, kPi / 2.0, 0.0, "0,0,-330", ZELMathVector(-180, 0, 180)},
                      // C1 turns a tip beside its axis about Z through (0, 0, -300).
                      OffsetCase{"SecondRollQuarterTurnOffAxis", 0.0, 0.0, kPi / 2.0, "10,0,-330",
                                 ZELMathVector(-10, 10, 0)},
                      OffsetCase{"SecondRollOnItsAxis", 0.0, 0.0, 1.234, "0,0,-330", ZELMathVector(0, 0, 0)},
                      // A bends the tip to (-180, 0, -150), then C turns it about X.
                      OffsetCase{"BendThenFirstRoll", kPi / 2.0, kPi / 2.0, 0.0, "0,0,-330",
                                 ZELMathVector(-180, 150, 330)}),
    CaseName<OffsetCase>);

TEST(ZELKinRBRSolver, FromTraoriUndoesToTraori)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    const ZELKinSolution machine = g.Solution(ZELMathPoint(100, -250, 75), 2.1, -1.2, 0.7);
    const ZELKinSolution back = configured.solver.FromTraori(configured.solver.ToTraori(machine));
    for (ZELKinVariable* variable : {g.x, g.y, g.z, g.c, g.a, g.c1})
        EXPECT_TRUE(ZELTest::SameDouble(machine.GetVariableValue(variable), back.GetVariableValue(variable), 1e-12));
}

TEST(ZELKinRBRSolver, SolvedFramesRoundTripThroughMachineAxesBackToTheRollerCentre)
{
    ConfiguredGantry configured;
    const ZELMathVector normal = Unit(0.3, -0.4, 0.8);
    const ZELMathVector travel = Unit(0.0, 0.8, 0.4);
    const ZELMathPoint origin(500, 2000, -1500);
    for (const ZELKinSolution& solution : configured.solver.Solve(ToolFrame(origin, travel, normal), true)) {
        ZELKinSolution machine = configured.solver.FromTraori(solution);
        machine.SetTraori(false);
        EXPECT_TRUE(SamePoint(origin + 30.0 * normal, configured.solver.GetTipPoint(machine), 1e-9));
    }
}

TEST(ZELKinRBRSolver, TheTipPointOfATraoriSolutionIsItsLinearValues)
{
    ConfiguredGantry configured;
    ZELKinSolution solution = configured.gantry.Solution(ZELMathPoint(1, 2, 3), kPi, 0.0, 0.0);
    solution.SetTraori(true);
    EXPECT_TRUE(SamePoint(ZELMathPoint(1, 2, 3), configured.solver.GetTipPoint(solution), ZELTest::kExact));
}

namespace {

struct IncompleteCase
{
    const char* name;
    int missing;
    int conversion;
};
ZELTEST_PRINT_CASE_BY_NAME(IncompleteCase);

class ZELKinRBRSolverIncompleteDeathTest : public ::testing::TestWithParam<IncompleteCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverIncompleteDeathTest, ConvertingEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    ZELKinSolution solution = g.Solution(ZELMathPoint(1, 2, 3), 0.1, 0.2, 0.3);
    ZELKinVariable* const variables[] = {g.x, g.y, g.z, g.c, g.a, g.c1};
    solution.SetVariableValue(variables[GetParam().missing], kNaN);
    const std::function<void()> conversions[] = {
        [&] { configured.solver.ToTraori(solution); },
        [&] { configured.solver.FromTraori(solution); },
        [&] { configured.solver.GetTipPoint(solution); },
    };
    EXPECT_DEATH(conversions[GetParam().conversion](), ZELTest::Literally(QStringLiteral("Solution is not complete.")));
}

INSTANTIATE_TEST_SUITE_P(Solutions, ZELKinRBRSolverIncompleteDeathTest,
                         ::testing::Values(IncompleteCase{"ToTraoriWithoutX", 0, 0},
                                           IncompleteCase{"ToTraoriWithoutY", 1, 0},
                                           IncompleteCase{"ToTraoriWithoutZ", 2, 0},
                                           IncompleteCase{"ToTraoriWithoutFirstRoll", 3, 0},
                                           IncompleteCase{"ToTraoriWithoutBend", 4, 0},
                                           IncompleteCase{"ToTraoriWithoutSecondRoll", 5, 0},
                                           IncompleteCase{"FromTraoriWithoutBend", 4, 1},
                                           IncompleteCase{"TipPointWithoutZ", 2, 2}),
                         CaseName<IncompleteCase>);

// Cost and continuity.

namespace {

struct MoveCase
{
    const char* name;
    double firstRollA, bendA, secondRollA;
    double firstRollB, bendB, secondRollB;
    int mode;
    bool contiguous;
};
ZELTEST_PRINT_CASE_BY_NAME(MoveCase);

class ZELKinRBRSolverContiguous : public ::testing::TestWithParam<MoveCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverContiguous, JudgesTheMove)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    const MoveCase& move = GetParam();
    const ZELKinSolution a = g.Solution(ZELMathPoint(1, 2, 3), move.firstRollA, move.bendA, move.secondRollA);
    const ZELKinSolution b = g.Solution(ZELMathPoint(400, 500, 600), move.firstRollB, move.bendB, move.secondRollB);
    EXPECT_EQ(configured.solver.IsContiguous(a, b, ZELKinSolver::Continuity(move.mode)), move.contiguous);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, ZELKinRBRSolverContiguous,
    ::testing::Values(
        MoveCase{"FullBendChangesSideRollsStill", 0.5, 0.2, 0.5, 0.5, -0.2, 0.5, 0, true},
        MoveCase{"FullSameSideRollsCancel", 1.0, 0.2, -1.0, 0.0, 0.3, 0.0, 0, true},
        MoveCase{"FullSameSideRollsAddUp", 1.0, 0.2, 1.0, 0.0, 0.3, 0.0, 0, false},
        MoveCase{"FullSameSideFirstRollHalfTurn", 3.2, 0.2, -3.2, 0.0, 0.3, 0.0, 0, false},
        MoveCase{"FullBothNegative", 0.5, -0.2, 0.5, 0.0, -0.3, 0.0, 0, true},
        MoveCase{"FullZeroCountsAsPositive", 1.0, 0.0, 1.0, 0.0, 0.3, 0.0, 0, false},
        MoveCase{"FullZeroAndNegativeChangeSide", 1.0, 0.0, 1.0, 0.0, -0.3, 0.0, 0, true},
        MoveCase{"FullSideChangeWithSmallRolls", 1.5, 0.2, -1.5, 0.0, -0.3, 0.0, 0, true},
        MoveCase{"FullSideChangeWithFirstRollQuarterTurn", 1.6, 0.2, 0.0, 0.0, -0.3, 0.0, 0, false},
        MoveCase{"FullSideChangeWithSecondRollQuarterTurn", 0.0, 0.2, 1.6, 0.0, -0.3, 0.0, 0, false},
        MoveCase{"FirstRollUnderHalfATurn", 3.1, 0.2, 9.0, 0.0, -0.3, 0.0, 1, true},
        MoveCase{"FirstRollOverHalfATurn", -3.2, 0.2, 0.0, 0.0, 0.2, 0.0, 1, false},
        MoveCase{"NoneAllowsAnyMove", 10.0, 1.0, -10.0, 0.0, -1.0, 0.0, 2, true},
        MoveCase{"UnknownModeAllowsAnyMove", 10.0, 1.0, -10.0, 0.0, -1.0, 0.0, 7, true}),
    CaseName<MoveCase>);

namespace {

struct CostCase
{
    const char* name;
    double firstRollA, bendA, secondRollA;
    double firstRollB, bendB, secondRollB;
    double cost;
};
ZELTEST_PRINT_CASE_BY_NAME(CostCase);

class ZELKinRBRSolverCost : public ::testing::TestWithParam<CostCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverCost, IsTheTravelOfBothRolls)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    const CostCase& move = GetParam();
    const ZELKinSolution a = g.Solution(ZELMathPoint(1, 2, 3), move.firstRollA, move.bendA, move.secondRollA);
    const ZELKinSolution b = g.Solution(ZELMathPoint(400, 500, 600), move.firstRollB, move.bendB, move.secondRollB);
    EXPECT_TRUE(ZELTest::SameDouble(move.cost, configured.solver.ComputeCost(a, b), ZELTest::kTight));
}

INSTANTIATE_TEST_SUITE_P(Moves, ZELKinRBRSolverCost,
                         ::testing::Values(CostCase{"OnlyTheBendMoves", 0.5, 0.2, -0.5, 0.5, -1.2, -0.5, 0.0},
                                           CostCase{"BothRollsCountTheirDistance", 1.0, 0.0, -1.0, -0.5, 0.0, 0.5, 3.0},
                                           CostCase{"OppositeRollsDoNotCancel", 1.0, 0.0, 1.0, 0.0, 0.0, 2.0, 2.0}),
                         CaseName<CostCase>);

TEST(ZELKinRBRSolver, EndlessRollsListEveryHalfTurnOfTheFirstWithEveryWholeTurnOfTheSecond)
{
    WristRanges ranges;
    ranges.firstRoll = {-kInfinity, kInfinity};
    // A bend range of a whole turn keeps the bends of every half turn of C.
    ranges.bend = {-3.2, 3.2};
    ranges.secondRoll = {-kInfinity, kInfinity};
    ConfiguredGantry configured(ranges);
    // Seen along X the normal lies 0.3 rad counter-clockwise of +Z.
    const ZELMathVector normal = Unit(0.2, -std::sin(0.3), std::cos(0.3));
    const ZELMathVector travel = Unit(0.0, std::cos(0.3), std::sin(0.3));
    const QList<ZELKinSolution> solutions = configured.solver.Solve(ToolFrame(ZELMathPoint(), travel, normal), false);

    // Seventeen first rolls, each with seventeen second rolls: far more
    // candidates than a real wrist gives, and every one of them in order.
    const Gantry& g = configured.gantry;
    const std::vector<double> firstRolls = EightHalfTurnsEachWay();
    const std::size_t perFirstRoll = 17;
    ASSERT_EQ(std::size_t(solutions.size()), firstRolls.size() * perFirstRoll);
    for (std::size_t run = 0; run < firstRolls.size(); ++run) {
        const ZELKinSolution& head = solutions.at(qsizetype(run * perFirstRoll));
        const double secondRoll = head.GetVariableValue(g.c1);
        std::vector<double> expected{secondRoll};
        for (const double value : Turns(secondRoll, -2.0 * kPi, 8))
            expected.push_back(value);
        for (const double value : Turns(secondRoll, 2.0 * kPi, 8))
            expected.push_back(value);
        std::vector<double> secondRolls;
        for (std::size_t i = run * perFirstRoll; i < (run + 1) * perFirstRoll; ++i) {
            const ZELKinSolution& solution = solutions.at(qsizetype(i));
            EXPECT_TRUE(ZELTest::SameDouble(firstRolls[run], solution.GetVariableValue(g.c), 1e-12));
            EXPECT_TRUE(ZELTest::SameDouble(head.GetVariableValue(g.a), solution.GetVariableValue(g.a), ZELTest::kExact));
            secondRolls.push_back(solution.GetVariableValue(g.c1));
        }
        EXPECT_TRUE(SameValues(expected, secondRolls, 1e-12)) << "first roll " << firstRolls[run];
    }
}

TEST(ZELKinRBRSolver, SolutionsDefineTheWristThenTheRollerCentreInThatOrder)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    const QList<ZELKinSolution> solutions = configured.solver.Solve(
        ToolFrame(ZELMathPoint(7, 8, 9), ZELMathVector(1, 0, 0), ZELMathVector(0, 0, 1)), false);
    ASSERT_FALSE(solutions.isEmpty());
    const QList<ZELKinVariable*> expected{g.c, g.a, g.c1, g.x, g.y, g.z};
    for (const ZELKinSolution& solution : solutions)
        EXPECT_EQ(solution.GetDefinedVariables(), expected);
}

TEST(ZELKinRBRSolver, ABlendWithAnEndWithoutTheBendLeavesTheBendUndefined)
{
    ConfiguredGantry configured;
    const Gantry& g = configured.gantry;
    const ZELKinSolution from = g.Solution(ZELMathPoint(1, 2, 3), 0.0, 0.2, 1.0);
    ZELKinSolution to = g.Solution(ZELMathPoint(4, 5, 6), 1.0, 0.4, -1.0);
    to.SetVariableValue(g.a, kNaN);
    const ZELKinSolution result = configured.solver.Solve(
        ToolFrame(ZELMathPoint(7, 8, 9), ZELMathVector(1, 0, 0), ZELMathVector(0, 0, 1)), 0.25, from, to);
    EXPECT_FALSE(result.IsDefined(g.a));
    const QList<ZELKinVariable*> expected{g.c, g.c1, g.x, g.y, g.z};
    EXPECT_EQ(result.GetDefinedVariables(), expected);
    EXPECT_TRUE(ZELTest::SameDouble(0.25, result.GetVariableValue(g.c), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.5, result.GetVariableValue(g.c1), ZELTest::kTight));
    EXPECT_TRUE(SamePoint(ZELMathPoint(7, 8, 39), configured.solver.GetTipPoint(result), ZELTest::kTight));
}

// Forward kinematics: the tool frame a solution puts the head on.

namespace {

struct ToolFrameCase
{
    const char* name;
    ZELMathPoint origin;
    ZELMathVector travel;
    ZELMathVector normal;
};
ZELTEST_PRINT_CASE_BY_NAME(ToolFrameCase);

class ZELKinRBRSolverToolFrame : public ::testing::TestWithParam<ToolFrameCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverToolFrame, EverySolutionOfAFrameGivesThatFrameBack)
{
    ConfiguredGantry configured;
    const ToolFrameCase& c = GetParam();
    const ZELMathVector normal = Unit(c.normal.GetX(), c.normal.GetY(), c.normal.GetZ());
    const ZELMathVector travel = Unit(c.travel.GetX(), c.travel.GetY(), c.travel.GetZ());
    const QList<ZELKinSolution> solutions = configured.solver.Solve(ToolFrame(c.origin, travel, normal), true);
    ASSERT_FALSE(solutions.isEmpty());
    for (const ZELKinSolution& solution : solutions) {
        const ZELMathAxis frame = configured.solver.GetToolFrame(solution);
        EXPECT_TRUE(SamePoint(c.origin, frame.GetOrigin(), 1e-9));
        EXPECT_TRUE(SameVector(normal, frame.GetWDirection(), 1e-9));
        EXPECT_TRUE(SameVector(travel, frame.GetUDirection(), 1e-9));
        // The machine axes of the same solution put the head on the same frame.
        ZELKinSolution machine = configured.solver.FromTraori(solution);
        machine.SetTraori(false);
        EXPECT_TRUE(SamePoint(c.origin, configured.solver.GetToolFrame(machine).GetOrigin(), 1e-9));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Frames, ZELKinRBRSolverToolFrame,
    ::testing::Values(
        ToolFrameCase{"Home", ZELMathPoint(100, 200, -900), ZELMathVector(1, 0, 0), ZELMathVector(0, 0, 1)},
        ToolFrameCase{"TravelAlongY", ZELMathPoint(0, 0, 0), ZELMathVector(0, 1, 0), ZELMathVector(0, 0, 1)},
        ToolFrameCase{"CylinderSide", ZELMathPoint(1500, 4000, -1200), ZELMathVector(1, 0, 0),
                      ZELMathVector(0, 0.5, 0.8660254037844386)},
        ToolFrameCase{"Oblique", ZELMathPoint(500, 2000, -1500), ZELMathVector(0.0, 0.8, 0.4),
                      ZELMathVector(0.3, -0.4, 0.8)},
        ToolFrameCase{"WallFacingY", ZELMathPoint(10, 20, 30), ZELMathVector(1, 0, 0), ZELMathVector(0, -1, 0)}),
    CaseName<ToolFrameCase>);

TEST(ZELKinRBRSolver, TheHomeWristPointsTheHeadDownOntoANormalAlongZTravellingAlongX)
{
    ConfiguredGantry configured;
    ZELKinSolution solution = configured.gantry.Solution(ZELMathPoint(10, 20, 30), 0.0, 0.0, 0.0);
    solution.SetTraori(true);
    const ZELMathAxis frame = configured.solver.GetToolFrame(solution);
    EXPECT_TRUE(SameVector(ZELMathVector(0, 0, 1), frame.GetWDirection(), ZELTest::kTight));
    EXPECT_TRUE(SameVector(ZELMathVector(1, 0, 0), frame.GetUDirection(), ZELTest::kTight));
    EXPECT_TRUE(SamePoint(ZELMathPoint(10, 20, 0), frame.GetOrigin(), ZELTest::kTight));
}

TEST(ZELKinRBRSolver, ABendOfAQuarterTurnTipsTheNormalOntoTheFirstRollAxis)
{
    ConfiguredGantry configured(WristRanges{Range{-4, 4}, Range{-2, 2}, Range{-4, 4}});
    ZELKinSolution solution = configured.gantry.Solution(ZELMathPoint(0, 0, 0), 0.0, kPi / 2, 0.0);
    solution.SetTraori(true);
    const ZELMathVector normal = configured.solver.GetToolFrame(solution).GetWDirection();
    EXPECT_TRUE(ZELTest::SameDouble(1.0, std::abs(normal.GetX()), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, configured.solver.GetSingularityMargin(normal), ZELTest::kTight));
}

namespace {

struct MarginCase
{
    const char* name;
    ZELMathVector normal;
    double margin;
};
ZELTEST_PRINT_CASE_BY_NAME(MarginCase);

class ZELKinRBRSolverMargin : public ::testing::TestWithParam<MarginCase>
{
};

} // namespace

TEST_P(ZELKinRBRSolverMargin, IsTheAngleBetweenTheNormalsLineAndTheFirstRollAxis)
{
    ConfiguredGantry configured;
    const double margin = configured.solver.GetSingularityMargin(GetParam().normal);
    if (std::isnan(GetParam().margin))
        EXPECT_TRUE(std::isnan(margin));
    else
        EXPECT_TRUE(ZELTest::SameDouble(GetParam().margin, margin, ZELTest::kTight));
}

INSTANTIATE_TEST_SUITE_P(Normals, ZELKinRBRSolverMargin,
                         ::testing::Values(MarginCase{"AcrossTheAxis", ZELMathVector(0, 0, 1), kPi / 2},
                                           MarginCase{"AlongTheAxis", ZELMathVector(1, 0, 0), 0.0},
                                           MarginCase{"AgainstTheAxis", ZELMathVector(-2, 0, 0), 0.0},
                                           MarginCase{"ThirtyDegreesOff", ZELMathVector(0.8660254037844386, 0.5, 0),
                                                      kPi / 6},
                                           MarginCase{"ThirtyDegreesOffBackwards",
                                                      ZELMathVector(-0.8660254037844386, 0, 0.5), kPi / 6},
                                           MarginCase{"Zero", ZELMathVector(0, 0, 0), kNaN},
                                           MarginCase{"NotFinite", ZELMathVector(kNaN, 0, 1), kNaN}),
                         CaseName<MarginCase>);

TEST(ZELKinRBRSolver, WithoutAWristTheSingularityMarginIsNaN)
{
    ZELKinRBRSolver solver(static_cast<ZELKinMachine*>(nullptr));
    EXPECT_TRUE(std::isnan(solver.GetSingularityMargin(ZELMathVector(0, 0, 1))));
}

TEST(ZELKinRBRSolver, TheTipReachOfEachWristJointRunsAlongThePivotsBelowItToTheTip)
{
    // The gantry's pivots stand at 0, -150 and -300 mm on Z and its tip at
    // -330 mm: 30 mm below the second roll's, 180 below the bend's, 330
    // below the first roll's.
    ConfiguredGantry configured;
    EXPECT_TRUE(ZELTest::SameDouble(30.0, configured.solver.GetTipReach(configured.gantry.c1), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(180.0, configured.solver.GetTipReach(configured.gantry.a), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(330.0, configured.solver.GetTipReach(configured.gantry.c), ZELTest::kTight));
    EXPECT_TRUE(std::isnan(configured.solver.GetTipReach(configured.gantry.x)));
    EXPECT_TRUE(std::isnan(configured.solver.GetTipReach(nullptr)));
}

TEST(ZELKinRBRSolver, TheTipReachAddsThePivotsDistancesWhereTheyStandOffTheLine)
{
    // The tip 40 mm to the side of the second roll's pivot: 50 mm from it;
    // the bend's pivot 150 mm above that pivot and 80 mm to the side of the
    // first roll's: 170 mm from it.
    ConfiguredGantry configured;
    configured.solver.Configure(QStringLiteral("tip-point: 40,0,-330"));
    EXPECT_TRUE(ZELTest::SameDouble(50.0, configured.solver.GetTipReach(configured.gantry.c1), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(200.0, configured.solver.GetTipReach(configured.gantry.a), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(350.0, configured.solver.GetTipReach(configured.gantry.c), ZELTest::kTight));
}
