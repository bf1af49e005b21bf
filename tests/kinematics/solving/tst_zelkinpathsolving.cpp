// Path solving of a roll layup procedure through ZELKinSolver::Solve(procedure),
// driven by a fake solver whose candidates, continuity and cost the tests set.

#include <zelkinsolver.h>

#include "zelkintestgantry.h"

#include <zelkintestrolllayup.h>
#include <zelkintestrollsolver.h>

#include <zeltpcourselink.h>
#include <zeltppoint.h>
#include <zeltpprocedure.h>

#include <zeltestsupport.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtMath>

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <tuple>

namespace {

using Continuity = ZELKinSolver::Continuity;
using Detail = ZELTPCourseLink::PointsDetail;
using Key = std::tuple<double, double, double>;

Key KeyOf(const ZELMathPoint& point)
{
    return {point.GetX(), point.GetY(), point.GetZ()};
}

bool SamePoint(const ZELMathPoint& expected, const ZELMathPoint& actual)
{
    return ZELTest::SameDouble(expected.GetX(), actual.GetX(), ZELTest::kExact) &&
           ZELTest::SameDouble(expected.GetY(), actual.GetY(), ZELTest::kExact) &&
           ZELTest::SameDouble(expected.GetZ(), actual.GetZ(), ZELTest::kExact);
}

// What the fake solver answers at a frame origin: one candidate per roll
// value, in order, or the lone infinite solution of a free wrist, which
// reaches the rolls from `lowest` to `highest`.
struct Answer
{
    QList<double> rolls;
    bool free = false;
    double lowest = -std::numeric_limits<double>::infinity();
    double highest = std::numeric_limits<double>::infinity();
};

// One IsContiguous question the path solving asked.
struct Move
{
    double from;
    double to;
    Continuity mode;
};

// One Solve(frame, fraction, from, to) call.
struct Blend
{
    ZELMathPoint origin;
    double fraction;
    bool fromInfinite;
    bool toInfinite;
};

// One SolveNearest(frame, guess) call.
struct Nearest
{
    ZELMathPoint origin;
    //! The roll of the guess; NaN for an infinite guess.
    double guess;
};

/*
    A roll solver (ZELKinTestRollSolver) whose candidates come from a table
    keyed by the frame origin (none for an origin it does not know). A move
    is contiguous when A changes by less than 1 (ContinuityFull), less than
    2 (ContinuityFirstRoll) or anyhow (ContinuityNone). At a free frame
    SolveNearest keeps the roll of the guess when the frame reaches it and
    gives nothing when it does not; without a guess it takes the reachable
    roll nearest 0. Every question asked is recorded.
*/
class FakeSolver : public ZELKinTestRollSolver
{
public:
    using ZELKinTestRollSolver::ZELKinTestRollSolver;

    QList<ZELKinSolution> Solve(const ZELMathAxis& frame, bool) const override
    {
        asked.append(frame.GetOrigin());
        const auto answer = answers.find(KeyOf(frame.GetOrigin()));
        if (answer == answers.end())
            return {};
        if (answer->second.free)
            return {ZELKinSolution()};
        QList<ZELKinSolution> candidates;
        for (const double roll : answer->second.rolls)
            candidates.append(At(frame.GetOrigin(), roll));
        return candidates;
    }

    ZELKinSolution Solve(const ZELMathAxis& frame, double fraction, const ZELKinSolution& from,
                         const ZELKinSolution& to) const override
    {
        blends.append({frame.GetOrigin(), fraction, from.IsInfinite(), to.IsInfinite()});
        return ZELKinTestRollSolver::Solve(frame, fraction, from, to);
    }

    ZELKinSolution SolveNearest(const ZELMathAxis& frame, const ZELKinSolution& guess) const override
    {
        nearests.append({frame.GetOrigin(), Roll(guess)});
        const auto answer = answers.find(KeyOf(frame.GetOrigin()));
        if (answer == answers.end() || !answer->second.free)
            return ZELKinSolver::SolveNearest(frame, guess);
        const Answer& free = answer->second;
        const double roll = guess.IsInfinite() ? std::max(free.lowest, std::min(0.0, free.highest)) : Roll(guess);
        if (roll < free.lowest || roll > free.highest)
            return ZELKinSolution();
        return At(frame.GetOrigin(), roll);
    }

    bool IsContiguous(const ZELKinSolution& from, const ZELKinSolution& to, Continuity mode) const override
    {
        moves.append({Roll(from), Roll(to), mode});
        const double change = std::abs(Roll(to) - Roll(from));
        switch (mode) {
        case ContinuityFull:
            return change < 1.0;
        case ContinuityFirstRoll:
            return change < 2.0;
        default:
            return true;
        }
    }

    //! The mode of the first move asked into a candidate of roll `to`.
    std::optional<Continuity> ModeInto(double to) const
    {
        for (const Move& move : moves) {
            if (ZELTest::SameDouble(to, move.to, ZELTest::kExact))
                return move.mode;
        }
        return std::nullopt;
    }

    bool WasAsked(const ZELMathPoint& origin) const
    {
        for (const ZELMathPoint& point : asked) {
            if (SamePoint(origin, point))
                return true;
        }
        return false;
    }

    std::map<Key, Answer> answers;
    mutable QList<ZELMathPoint> asked;
    mutable QList<Move> moves;
    mutable QList<Blend> blends;
    mutable QList<Nearest> nearests;
};

// A point of the procedure: where its frame lies and what the solver
// answers there.
struct PointPlan
{
    ZELMathPoint origin;
    Answer answer;
};

PointPlan Pt(double x, const QList<double>& rolls)
{
    return {ZELMathPoint(x, 0.0, 0.0), {rolls, false}};
}

PointPlan Pt(const ZELMathPoint& origin, const QList<double>& rolls)
{
    return {origin, {rolls, false}};
}

PointPlan Free(double x)
{
    return {ZELMathPoint(x, 0.0, 0.0), {{}, true}};
}

PointPlan Free(const ZELMathPoint& origin)
{
    return {origin, {{}, true}};
}

// A free frame that reaches only the rolls from `lowest` to `highest`.
PointPlan FreeWithin(double x, double lowest, double highest)
{
    return {ZELMathPoint(x, 0.0, 0.0), {{}, true, lowest, highest}};
}

// A link point that is never solved: no answer needed.
PointPlan Off(const ZELMathPoint& origin)
{
    return {origin, {}};
}

ZELMathAxis FrameAt(const ZELMathPoint& origin)
{
    return ZELMathAxis(origin, ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0), ZELMathVector(0, 0, 1));
}

QString ReadText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QStringLiteral("<missing %1>").arg(path);
    return QString::fromUtf8(file.readAll());
}

class ZELKinPathSolvingTest : public ::testing::Test
{
protected:
    ZELKinPathSolvingTest()
        : x(ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("X")))
        , y(ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("Y")))
        , z(ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("Z")))
        , a(ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("A"), ZELKinVariable::Rotary, -10.0, 10.0))
        , solver(f.machine, x, y, z, a)
    {
    }

    ZELKinTowCourse* AddCourse(const QList<PointPlan>& points)
    {
        ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(f.procedure, f.machine->GetMaximumMask());
        for (const PointPlan& point : points)
            Place(ZELKinTestAccess::CreateRollLayupPosition(course), point);
        return course;
    }

    ZELKinCourseLink* AddLink(Detail detail, const QList<PointPlan>& points = {})
    {
        ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(f.procedure);
        auto* source = new ZELTPCourseLink(&f.container, QStringLiteral("link"));
        source->SetPointsDetail(detail);
        link->SetToolPathCourseLink(source);
        for (const PointPlan& point : points)
            Place(ZELKinTestAccess::CreatePosition(link), point);
        return link;
    }

    void Place(ZELKinPosition* position, const PointPlan& point)
    {
        position->SetToolPathPoint(new ZELTPPoint(&f.container, FrameAt(point.origin)));
        if (point.answer.free || !point.answer.rolls.isEmpty())
            solver.answers[KeyOf(point.origin)] = point.answer;
        positions.append(position);
    }

    ZELKinSolutionSeries Solve()
    {
        const ZELKinSolver& base = solver;
        ::testing::internal::CaptureStdout();
        const ZELKinSolutionSeries series = base.Solve(f.procedure);
        output = QString::fromStdString(::testing::internal::GetCapturedStdout());
        return series;
    }

    QList<double> Rolls(const ZELKinSolutionSeries& series) const
    {
        QList<double> rolls;
        for (const ZELKinSolution& solution : series.GetSolutions())
            rolls.append(solver.Roll(solution));
        return rolls;
    }

    static ::testing::AssertionResult SameRolls(const QList<double>& expected, const QList<double>& actual)
    {
        if (expected.size() != actual.size())
            return ::testing::AssertionFailure() << "expected " << expected.size() << " rolls, got " << actual.size();
        for (int i = 0; i < expected.size(); ++i) {
            ::testing::AssertionResult same = ZELTest::SameDouble(expected.at(i), actual.at(i), ZELTest::kTight);
            if (!same)
                return same << " at entry " << i;
        }
        return ::testing::AssertionSuccess();
    }

    QList<ZELKinCommand*> Positions() const
    {
        QList<ZELKinCommand*> commands;
        for (ZELKinPosition* position : positions)
            commands.append(position);
        return commands;
    }

    ZELTest::RollLayupFixture f;
    ZELKinVariable* x;
    ZELKinVariable* y;
    ZELKinVariable* z;
    ZELKinVariable* a;
    FakeSolver solver;
    QList<ZELKinPosition*> positions;
    QString output;
};

} // namespace

// --- Choosing the series ---------------------------------------------------

TEST_F(ZELKinPathSolvingTest, FollowsTheCheapestContinuousChainThroughACourse)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0, 3.0}), Pt(10, {0.5, 3.2}), Pt(20, {0.9, 3.1})});
    AddLink(ZELTPCourseLink::PointsDetailFull);

    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_TRUE(SameRolls({3.0, 3.2, 3.1}, Rolls(series)));
    EXPECT_TRUE(ZELTest::SameDouble(0.3, series.GetCost(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(20.0, series.GetSolution(2).GetVariableValue(x), ZELTest::kExact));
    EXPECT_EQ(output, QStringLiteral("  Processing \n"));
}

TEST_F(ZELKinPathSolvingTest, LeavesThePositionsAsTheyWere)
{
    AddCourse({Pt(0, {0.0}), Pt(10, {0.5})});
    const ZELKinSolutionSeries series = Solve();
    ASSERT_EQ(series.GetCount(), 2);
    for (const ZELKinPosition* position : positions)
        EXPECT_FALSE(position->IsVariableDefined(a));
}

TEST_F(ZELKinPathSolvingTest, DropsACandidateThatContinuesNoLiveSeries)
{
    AddCourse({Pt(0, {0.0}), Pt(10, {2.5, 0.4}), Pt(20, {0.6, 2.6})});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_TRUE(SameRolls({0.0, 0.4, 0.6}, Rolls(series)));
    EXPECT_TRUE(ZELTest::SameDouble(0.6, series.GetCost(), ZELTest::kTight));
    EXPECT_TRUE(output.indexOf(QStringLiteral("failed")) < 0);
}

TEST_F(ZELKinPathSolvingTest, AddsTheCostOfEveryMoveAlongTheSeries)
{
    AddCourse({Pt(0, {0.0}), Pt(10, {0.5}), Pt(20, {-0.25}), Pt(30, {0.5}), Pt(40, {0.5})});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_TRUE(ZELTest::SameDouble(0.5 + 0.75 + 0.75 + 0.0, series.GetCost(), ZELTest::kTight));
}

namespace {

// A course of two points with the candidates given, in the solver's order.
struct ChoiceCase
{
    const char* name;
    QList<double> first;
    QList<double> second;
    QList<double> expected;
};
ZELTEST_PRINT_CASE_BY_NAME(ChoiceCase);

class ZELKinPathSolvingChoice : public ZELKinPathSolvingTest, public ::testing::WithParamInterface<ChoiceCase>
{
};

} // namespace

TEST_P(ZELKinPathSolvingChoice, TakesTheCheapestAndOnEqualCostsTheFirst)
{
    AddCourse({Pt(0, GetParam().first), Pt(10, GetParam().second)});
    EXPECT_TRUE(SameRolls(GetParam().expected, Rolls(Solve())));
}

INSTANTIATE_TEST_SUITE_P(
    Ties, ZELKinPathSolvingChoice,
    ::testing::Values(ChoiceCase{"EqualPredecessorsTheFirstLiveSeriesWins", {0.0, 1.0}, {0.5}, {0.0, 0.5}},
                      ChoiceCase{"EqualPredecessorsInTheOtherOrder", {1.0, 0.0}, {0.5}, {1.0, 0.5}},
                      ChoiceCase{"AStrictlyCheaperLaterPredecessorWins", {0.0, 0.4}, {0.5}, {0.4, 0.5}},
                      ChoiceCase{"EqualSeriesAtTheEndTheFirstWins", {0.0, 1.0}, {0.5, 1.5}, {0.0, 0.5}},
                      ChoiceCase{"EqualSeriesAtTheEndInTheOtherOrder", {0.0, 1.0}, {1.5, 0.5}, {1.0, 1.5}},
                      ChoiceCase{"AStrictlyCheaperLaterSeriesAtTheEndWins", {0.0, 1.0}, {0.5, 1.2}, {1.0, 1.2}}));

TEST_F(ZELKinPathSolvingTest, ChainsTheMovesWithinACourseWithFullContinuity)
{
    AddLink(ZELTPCourseLink::PointsDetailLow);
    AddCourse({Pt(0, {0.0}), Pt(10, {0.5}), Pt(20, {0.7})});
    Solve();
    ASSERT_EQ(solver.moves.size(), 2);
    for (const Move& move : solver.moves)
        EXPECT_EQ(move.mode, ZELKinSolver::ContinuityFull);
}

// --- Waiting positions ---------------------------------------------------------

TEST_F(ZELKinPathSolvingTest, BlendsFreeWristPositionsByArcLengthAndChainsPastThemWithoutContinuity)
{
    // Path lengths from the first point: 3 and 7 of 19.
    AddCourse({Pt(ZELMathPoint(0, 0, 0), {0.0}), Free(ZELMathPoint(3, 0, 0)), Free(ZELMathPoint(3, 4, 0)),
               Pt(ZELMathPoint(3, 4, 12), {1.9})});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_TRUE(SameRolls({0.0, 0.3, 0.7, 1.9}, Rolls(series)));
    EXPECT_EQ(solver.ModeInto(1.9), ZELKinSolver::ContinuityNone);
    ASSERT_EQ(solver.blends.size(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(3.0 / 19.0, solver.blends.at(0).fraction, ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(7.0 / 19.0, solver.blends.at(1).fraction, ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(4.0, series.GetSolution(2).GetVariableValue(y), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1.9, series.GetCost(), ZELTest::kTight));
}

TEST_F(ZELKinPathSolvingTest, GivesFreeWristPositionsAtTheStartTheFirstSolvedWristValues)
{
    AddCourse({Free(0), Free(10), Pt(20, {0.7, -0.7}), Pt(30, {0.8})});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_TRUE(SameRolls({0.7, 0.7, 0.7, 0.8}, Rolls(series)));
    EXPECT_TRUE(ZELTest::SameDouble(10.0, series.GetSolution(1).GetVariableValue(x), ZELTest::kExact));
    ASSERT_EQ(solver.blends.size(), 4); // two waiting positions for each of two candidates
    for (const Blend& blend : solver.blends) {
        EXPECT_TRUE(blend.fromInfinite);
        EXPECT_FALSE(blend.toInfinite);
        EXPECT_TRUE(ZELTest::SameDouble(0.0, blend.fraction, ZELTest::kExact));
    }
}

TEST_F(ZELKinPathSolvingTest, GivesFreeWristPositionsAtTheEndTheLastSolvedWristValues)
{
    AddCourse({Pt(0, {0.2}), Pt(10, {0.3}), Free(20), Free(30)});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_TRUE(SameRolls({0.2, 0.3, 0.3, 0.3}, Rolls(series)));
    EXPECT_TRUE(ZELTest::SameDouble(30.0, series.GetSolution(3).GetVariableValue(x), ZELTest::kExact));
    ASSERT_EQ(solver.blends.size(), 2);
    for (const Blend& blend : solver.blends) {
        EXPECT_FALSE(blend.fromInfinite);
        EXPECT_TRUE(blend.toInfinite);
        EXPECT_TRUE(ZELTest::SameDouble(0.0, blend.fraction, ZELTest::kExact));
    }
}

TEST_F(ZELKinPathSolvingTest, AProcedureOfFreeWristsOnlyStartsFromItsFirstFreePositionSolvedWithoutAGuess)
{
    AddLink(ZELTPCourseLink::PointsDetailLow, {Off(ZELMathPoint(0, 0, 0))});
    AddCourse({FreeWithin(10, 0.4, 1.0), Free(20)});
    AddLink(ZELTPCourseLink::PointsDetailFull, {Free(30)});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    // The roll of the first free frame nearest 0 holds for every position.
    EXPECT_TRUE(SameRolls({0.4, 0.4, 0.4, 0.4}, Rolls(series)));
    for (const ZELKinSolution& solution : series.GetSolutions())
        EXPECT_FALSE(solution.IsInfinite());
    ASSERT_EQ(solver.nearests.size(), 3);
    EXPECT_TRUE(SamePoint(ZELMathPoint(10, 0, 0), solver.nearests.at(0).origin));
    EXPECT_TRUE(std::isnan(solver.nearests.at(0).guess));
    EXPECT_TRUE(SamePoint(ZELMathPoint(20, 0, 0), solver.nearests.at(1).origin));
    EXPECT_TRUE(ZELTest::SameDouble(0.4, solver.nearests.at(1).guess, ZELTest::kExact));
    EXPECT_TRUE(SamePoint(ZELMathPoint(30, 0, 0), solver.nearests.at(2).origin));
    EXPECT_TRUE(ZELTest::SameDouble(0.4, solver.nearests.at(2).guess, ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, series.GetCost(), ZELTest::kExact));
    EXPECT_EQ(output, QStringLiteral("  Processing \n"));
}

TEST_F(ZELKinPathSolvingTest, AProcedureWithoutSolvedOrFreePositionsStartsFromItsFirstPositionSolvedWithoutAGuess)
{
    AddLink(ZELTPCourseLink::PointsDetailLow, {Pt(0, {0.3, 0.6}), Pt(10, {0.9})});
    AddCourse({});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_TRUE(SameRolls({0.3, 0.3}, Rolls(series)));
    ASSERT_EQ(solver.nearests.size(), 1);
    EXPECT_TRUE(std::isnan(solver.nearests.first().guess));
}

TEST_F(ZELKinPathSolvingTest, AFirstFreePositionWithoutASolutionIsReportedAndEmptiesTheResult)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({FreeWithin(0, 1.0, 0.0), Free(10)});
    AddLink(ZELTPCourseLink::PointsDetailFull);
    EXPECT_TRUE(Solve().IsEmpty());
    EXPECT_EQ(output, QStringLiteral("  Processing \n"
                                     "    Kinematics solving failed for course 1 at point 1\n"));
}

TEST_F(ZELKinPathSolvingTest, AFreePositionGetsTheSolutionNearestTheBlendOfItsNeighbours)
{
    AddCourse({Pt(0, {0.0}), Free(10), Pt(40, {1.0})});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_TRUE(SameRolls({0.0, 0.25, 1.0}, Rolls(series)));
    ASSERT_EQ(solver.nearests.size(), 1);
    EXPECT_TRUE(SamePoint(ZELMathPoint(10, 0, 0), solver.nearests.first().origin));
    EXPECT_TRUE(ZELTest::SameDouble(0.25, solver.nearests.first().guess, ZELTest::kTight));
}

TEST_F(ZELKinPathSolvingTest, ALinkPositionOfLowerDetailKeepsItsBlendAndIsNotSolvedNearIt)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0})});
    AddLink(ZELTPCourseLink::PointsDetailMedium, {Off(ZELMathPoint(10, 0, 0))});
    AddCourse({Pt(20, {1.0})});
    EXPECT_TRUE(SameRolls({0.0, 0.5, 1.0}, Rolls(Solve())));
    EXPECT_TRUE(solver.nearests.isEmpty());
}

TEST_F(ZELKinPathSolvingTest, AFreePositionThatTheCheapestPredecessorCannotReachIsReachedFromTheNext)
{
    // Both predecessors cost 1.0; from the first the free frame would need 0.5.
    AddCourse({Pt(0, {0.0, 2.0}), FreeWithin(10, 1.2, 3.0), Pt(20, {1.0})});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_TRUE(SameRolls({2.0, 1.5, 1.0}, Rolls(series)));
    EXPECT_TRUE(ZELTest::SameDouble(1.0, series.GetCost(), ZELTest::kTight));
    ASSERT_EQ(solver.nearests.size(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(0.5, solver.nearests.at(0).guess, ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(1.5, solver.nearests.at(1).guess, ZELTest::kTight));
}

TEST_F(ZELKinPathSolvingTest, AFreePositionThatNoPredecessorReachesFailsTheNextStep)
{
    AddCourse({Pt(0, {0.0, 2.0}), FreeWithin(10, 5.0, 6.0), Pt(20, {1.0})});
    EXPECT_TRUE(Solve().IsEmpty());
    EXPECT_EQ(output, QStringLiteral("  Processing \n"
                                     "    Kinematics solving failed for course 1 at point 3\n"));
}

TEST_F(ZELKinPathSolvingTest, AFreePositionBeforeTheFirstSolvedOneDropsTheCandidatesThatCannotReachIt)
{
    AddCourse({FreeWithin(0, 0.5, 1.0), Pt(10, {0.2, 0.7})});
    EXPECT_TRUE(SameRolls({0.7, 0.7}, Rolls(Solve())));
}

TEST_F(ZELKinPathSolvingTest, AFreePositionAfterTheLastSolvedOneUnreachableFromTheCheapestSeriesIsReachedFromTheNext)
{
    AddCourse({Pt(0, {0.0, 1.5}), FreeWithin(10, 1.0, 2.0)});
    EXPECT_TRUE(SameRolls({1.5, 1.5}, Rolls(Solve())));
}

TEST_F(ZELKinPathSolvingTest, AFreePositionAfterTheLastSolvedOneThatNoSeriesReachesIsReportedAndEmptiesTheResult)
{
    AddCourse({Pt(0, {0.2}), Free(10), FreeWithin(20, 1.0, 2.0)});
    AddLink(ZELTPCourseLink::PointsDetailFull, {Free(30)});
    EXPECT_TRUE(Solve().IsEmpty());
    EXPECT_EQ(output, QStringLiteral("  Processing \n"
                                     "    Kinematics solving failed for course 1 at point 3\n"));
}

TEST_F(ZELKinPathSolvingTest, AProcedureWithoutPositionsGivesAnEmptySeries)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({});
    ZELKinTestAccess::CreateToolChange(AddLink(ZELTPCourseLink::PointsDetailLow), QStringLiteral("R2"),
                                       QStringLiteral("H1"));
    EXPECT_TRUE(Solve().IsEmpty());
    EXPECT_EQ(output, QStringLiteral("  Processing \n"));
}

TEST_F(ZELKinPathSolvingTest, ALowDetailLinkBetweenTwoCoursesIsBlendedByArcLengthAndLeadsOnWithoutContinuity)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(ZELMathPoint(0, 0, 0), {0.0})});
    AddLink(ZELTPCourseLink::PointsDetailLow, {Off(ZELMathPoint(3, 0, 0)), Off(ZELMathPoint(3, 4, 0))});
    AddCourse({Pt(ZELMathPoint(3, 4, 12), {1.9})});
    AddLink(ZELTPCourseLink::PointsDetailFull);

    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_TRUE(SameRolls({0.0, 0.3, 0.7, 1.9}, Rolls(series)));
    EXPECT_FALSE(solver.WasAsked(ZELMathPoint(3, 0, 0)));
    EXPECT_FALSE(solver.WasAsked(ZELMathPoint(3, 4, 0)));
    EXPECT_EQ(solver.ModeInto(1.9), ZELKinSolver::ContinuityNone);
    EXPECT_TRUE(ZELTest::SameDouble(4.0, series.GetSolution(2).GetVariableValue(y), ZELTest::kExact));
}

// --- Continuity by link detail and fresh starts ---------------------------------

namespace {

struct DetailCase
{
    const char* name;
    Detail detail;
    bool solved;            // the link's position is solved rather than blended
    Continuity expected;    // the continuity of the move into the next course
};
ZELTEST_PRINT_CASE_BY_NAME(DetailCase);

class ZELKinPathSolvingLinkDetail : public ZELKinPathSolvingTest, public ::testing::WithParamInterface<DetailCase>
{
};

const DetailCase kLinkDetailCases[] = {
    {"Low", ZELTPCourseLink::PointsDetailLow, false, ZELKinSolver::ContinuityNone},
    {"Medium", ZELTPCourseLink::PointsDetailMedium, false, ZELKinSolver::ContinuityFirstRoll},
    {"Full", ZELTPCourseLink::PointsDetailFull, true, ZELKinSolver::ContinuityFull},
    {"Unnamed", Detail(7), false, ZELKinSolver::ContinuityNone},
};

} // namespace

TEST_P(ZELKinPathSolvingLinkDetail, DecidesWhetherTheLinkIsSolvedAndHowTheNextCourseIsReached)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0})});
    AddLink(GetParam().detail, {Pt(10, {0.25})});
    AddCourse({Pt(20, {0.5})});
    AddLink(ZELTPCourseLink::PointsDetailFull);

    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_EQ(solver.WasAsked(ZELMathPoint(10, 0, 0)), GetParam().solved);
    // Solved, the link point keeps its candidate; blended, it lies half way.
    EXPECT_TRUE(SameRolls({0.0, 0.25, 0.5}, Rolls(series)));
    EXPECT_EQ(solver.ModeInto(0.5), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Details, ZELKinPathSolvingLinkDetail, ::testing::ValuesIn(kLinkDetailCases));

TEST_F(ZELKinPathSolvingTest, AMediumDetailLinkLetsTheFirstRollTurnUpToItsLimit)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0})});
    AddLink(ZELTPCourseLink::PointsDetailMedium, {Off(ZELMathPoint(10, 0, 0))});
    AddCourse({Pt(20, {1.5, 2.5})});
    const ZELKinSolutionSeries series = Solve();
    EXPECT_TRUE(SameRolls({0.0, 0.75, 1.5}, Rolls(series)));
}

namespace {

class ZELKinPathSolvingFreshStart : public ZELKinPathSolvingTest, public ::testing::WithParamInterface<DetailCase>
{
};

} // namespace

TEST_P(ZELKinPathSolvingFreshStart, ACourseAfterALinkWithoutPositionsStartsWithWhatThatLinkAsksFor)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0})});
    AddLink(GetParam().detail);
    AddCourse({Pt(10, {0.2}), Pt(20, {0.3})});
    AddLink(ZELTPCourseLink::PointsDetailFull);

    EXPECT_EQ(Solve().GetCount(), 3);
    EXPECT_EQ(solver.ModeInto(0.2), GetParam().expected);
    EXPECT_EQ(solver.ModeInto(0.3), ZELKinSolver::ContinuityFull);
}

INSTANTIATE_TEST_SUITE_P(Details, ZELKinPathSolvingFreshStart, ::testing::ValuesIn(kLinkDetailCases));

TEST_F(ZELKinPathSolvingTest, ALinkHoldingOnlyAToolChangeCountsNoPosition)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0})});
    ZELKinTestAccess::CreateToolChange(AddLink(ZELTPCourseLink::PointsDetailLow), QStringLiteral("R2"),
                                       QStringLiteral("H1"));
    AddCourse({Pt(10, {2.5})});
    EXPECT_TRUE(SameRolls({0.0, 2.5}, Rolls(Solve())));
    EXPECT_EQ(solver.ModeInto(2.5), ZELKinSolver::ContinuityNone);
}

TEST_F(ZELKinPathSolvingTest, ACourseRightAfterACourseWithPositionsIsNoFreshStart)
{
    AddLink(ZELTPCourseLink::PointsDetailLow);
    AddCourse({Pt(0, {0.0})});
    AddCourse({Pt(10, {0.2})});
    Solve();
    EXPECT_EQ(solver.ModeInto(0.2), ZELKinSolver::ContinuityFull);
}

TEST_F(ZELKinPathSolvingTest, AFreshStartWaitsForAStepWithoutWaitingPositions)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0})});
    AddLink(ZELTPCourseLink::PointsDetailLow);
    AddCourse({Free(10), Pt(20, {0.2}), Pt(30, {1.5})});
    EXPECT_TRUE(SameRolls({0.0, 0.1, 0.2, 1.5}, Rolls(Solve())));
    EXPECT_EQ(solver.ModeInto(0.2), ZELKinSolver::ContinuityNone);
    EXPECT_EQ(solver.ModeInto(1.5), ZELKinSolver::ContinuityNone);
}

// --- What the walk takes ---------------------------------------------------

TEST_F(ZELKinPathSolvingTest, TakesOnlyThePositionsInLinkAndCourseOrder)
{
    ZELKinCourseLink* approach = AddLink(ZELTPCourseLink::PointsDetailFull, {Pt(0, {0.0})});
    ZELKinTestAccess::CreateToolChange(approach, QStringLiteral("R2"), QStringLiteral("H1"));
    ZELKinTowCourse* course = AddCourse({Pt(10, {0.1}), Pt(20, {0.2})});
    ZELKinTestAccess::CreateTowCommand(course, f.machine->GetMaximumMask(), ZELKinTowCommand::Add, 0);
    AddLink(ZELTPCourseLink::PointsDetailFull, {Pt(30, {0.3})});

    const ZELKinSolutionSeries series = Solve();
    EXPECT_EQ(series.GetCommands(), Positions());
    EXPECT_TRUE(SameRolls({0.0, 0.1, 0.2, 0.3}, Rolls(series)));
}

TEST_F(ZELKinPathSolvingTest, SolvesAPositionWithoutAToolPathPointAtTheWorldFrameAndALinkWithoutSourceInFull)
{
    ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(f.procedure);
    ZELKinPosition* bare = ZELKinTestAccess::CreatePosition(link);
    solver.answers[KeyOf(ZELMathPoint())] = {{0.2}, false};
    AddCourse({Pt(10, {0.5})});

    const ZELKinSolutionSeries series = Solve();
    ASSERT_EQ(series.GetCount(), 2);
    EXPECT_EQ(series.GetCommand(0), bare);
    EXPECT_TRUE(SameRolls({0.2, 0.5}, Rolls(series)));
    ASSERT_FALSE(solver.asked.isEmpty());
    EXPECT_TRUE(SamePoint(ZELMathPoint(), solver.asked.first()));
    EXPECT_EQ(solver.ModeInto(0.5), ZELKinSolver::ContinuityFull);
}

// --- Failure -----------------------------------------------------------------

TEST_F(ZELKinPathSolvingTest, APositionThatCannotBeChainedIsReportedWithItsCourseAndPointAndEmptiesTheResult)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0})});
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(10, {0.5}), Pt(20, {2.0}), Pt(30, {2.5})});
    AddLink(ZELTPCourseLink::PointsDetailFull);
    f.procedure->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("Ply 3")));

    EXPECT_TRUE(Solve().IsEmpty());
    EXPECT_EQ(output, QStringLiteral("  Processing Ply 3\n"
                                     "    Kinematics solving failed for course 2 at point 2\n"));
    // The walk went on and started afresh after the failure.
    EXPECT_TRUE(solver.WasAsked(ZELMathPoint(30, 0, 0)));
    EXPECT_EQ(solver.ModeInto(2.5), std::nullopt);
}

TEST_F(ZELKinPathSolvingTest, AnUnreachableLinkPositionIsReportedAsACourseLinkAndEveryFailureIsReported)
{
    AddLink(ZELTPCourseLink::PointsDetailFull, {Pt(0, {})});
    AddCourse({Pt(10, {0.0})});
    AddLink(ZELTPCourseLink::PointsDetailFull, {Pt(20, {0.1}), Pt(30, {0.2}), Pt(40, {})});
    AddCourse({Pt(50, {0.3})});

    EXPECT_TRUE(Solve().IsEmpty());
    EXPECT_EQ(output, QStringLiteral("  Processing \n"
                                     "    Kinematics solving failed for course link 1 at point 1\n"
                                     "    Kinematics solving failed for course link 2 at point 3\n"));
}

// --- With the roll-bend-roll solver ----------------------------------------------

namespace {

// Procedures of the example gantry, solved by its own wrist solver.
class ZELKinPathSolvingWristTest : public ::testing::Test
{
protected:
    explicit ZELKinPathSolvingWristTest(const ZELTest::WristRanges& ranges = ZELTest::WristRanges())
        : configured(ranges)
        , g(configured.gantry)
        , procedure(ZELKinTestAccess::CreateRollLayupProcedure(ZELKinTestAccess::CreateProgram(g.machine), 2540.0,
                                                               1270.0))
    {
    }

    void AddCourse(const QList<ZELMathAxis>& points)
    {
        ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(procedure, g.machine->GetMaximumMask());
        for (const ZELMathAxis& frame : points)
            Place(ZELKinTestAccess::CreateRollLayupPosition(course), frame);
    }

    void AddLink(Detail detail, const QList<ZELMathAxis>& points = {})
    {
        ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(procedure);
        auto* source = new ZELTPCourseLink(&g.container, QStringLiteral("link"));
        source->SetPointsDetail(detail);
        link->SetToolPathCourseLink(source);
        for (const ZELMathAxis& frame : points)
            Place(ZELKinTestAccess::CreatePosition(link), frame);
    }

    void Place(ZELKinPosition* position, const ZELMathAxis& frame)
    {
        position->SetToolPathPoint(new ZELTPPoint(&g.container, frame));
        frames.append(frame);
    }

    ZELKinSolutionSeries Solve()
    {
        const ZELKinSolver& solver = configured.solver;
        ::testing::internal::CaptureStdout();
        const ZELKinSolutionSeries series = solver.Solve(procedure);
        ::testing::internal::GetCapturedStdout();
        return series;
    }

    //! Every axis defined, and the head on `frame`: its compaction point,
    //! normal and travel.
    ::testing::AssertionResult Reaches(const ZELKinSolution& solution, const ZELMathAxis& frame) const
    {
        for (ZELKinVariable* variable : {g.x, g.y, g.z, g.c, g.a, g.c1}) {
            if (!solution.IsDefined(variable))
                return ::testing::AssertionFailure() << variable->GetLabel().toStdString() << " undefined";
        }
        const ZELMathAxis reached = configured.solver.GetToolFrame(solution);
        const bool same = reached.GetOrigin().GetDistanceTo(frame.GetOrigin()) < kReach
            && reached.GetWDirection().GetAngleTo(frame.GetWDirection()) < kReach
            && reached.GetUDirection().GetAngleTo(frame.GetUDirection()) < kReach;
        if (same)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "the head misses the frame at (" << frame.GetOrigin().GetX() << ", "
                                             << frame.GetOrigin().GetY() << ", " << frame.GetOrigin().GetZ() << ")";
    }

    // Frames solved exactly, through a few frame products and arc tangents.
    static constexpr double kReach = 1e-9;

    ZELTest::ConfiguredGantry configured;
    ZELTest::Gantry& g;
    ZELKinRollLayupProcedure* procedure;
    QList<ZELMathAxis> frames;
};

// A frame on the wall x = 0, travelling along +Y, its normal tilted by
// `tilt` (rad) from +X towards +Z; 0 is the pole of the first roll axis.
ZELMathAxis WallFrame(double y, double tilt)
{
    return ZELTest::ToolFrame(ZELMathPoint(0.0, y, 0.0), ZELMathVector(0, 1, 0),
                              ZELMathVector(std::cos(tilt), 0.0, std::sin(tilt)));
}

} // namespace

TEST_F(ZELKinPathSolvingWristTest, SingularPositionsBetweenSolvedOnesKeepTheBlendedFirstRollAndMeetTheirFrames)
{
    // Arc lengths 10 and 30 of 40 from the first point to the last.
    AddCourse({WallFrame(0, 0.3), WallFrame(10, 0.0), WallFrame(30, 0.0), WallFrame(40, -0.3)});
    const ZELKinSolutionSeries series = Solve();
    ASSERT_EQ(series.GetCount(), 4);
    const double first = series.GetSolution(0).GetVariableValue(g.c);
    const double last = series.GetSolution(3).GetVariableValue(g.c);
    const double fractions[] = {0.0, 0.25, 0.75, 1.0};
    for (int i = 0; i < 4; ++i) {
        const ZELKinSolution& solution = series.GetSolution(i);
        EXPECT_TRUE(Reaches(solution, frames.at(i))) << "position " << i;
        EXPECT_TRUE(ZELTest::SameDouble(first + fractions[i] * (last - first), solution.GetVariableValue(g.c),
                                        ZELTest::kTight))
            << "position " << i;
    }
    // The second roll takes the turn nearest the neighbours' blend.
    const double firstSecondRoll = series.GetSolution(0).GetVariableValue(g.c1);
    const double lastSecondRoll = series.GetSolution(3).GetVariableValue(g.c1);
    for (int i = 1; i < 3; ++i) {
        const double blend = firstSecondRoll + fractions[i] * (lastSecondRoll - firstSecondRoll);
        EXPECT_LE(std::abs(series.GetSolution(i).GetVariableValue(g.c1) - blend), M_PI) << "position " << i;
    }
}

TEST_F(ZELKinPathSolvingWristTest, SingularPositionsBeforeTheFirstAndAfterTheLastSolvedOneKeepItsFirstRoll)
{
    AddCourse({WallFrame(0, 0.0), WallFrame(10, 0.3), WallFrame(20, 0.35), WallFrame(30, 0.0)});
    const ZELKinSolutionSeries series = Solve();
    ASSERT_EQ(series.GetCount(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(Reaches(series.GetSolution(i), frames.at(i))) << "position " << i;
    EXPECT_TRUE(ZELTest::SameDouble(series.GetSolution(1).GetVariableValue(g.c),
                                    series.GetSolution(0).GetVariableValue(g.c), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(series.GetSolution(2).GetVariableValue(g.c),
                                    series.GetSolution(3).GetVariableValue(g.c), ZELTest::kExact));
}

TEST_F(ZELKinPathSolvingWristTest, EveryLayupPositionStandsAtTheRollerCentreOfItsPoint)
{
    // Waiting before the first solved position, free, solved, blended on a
    // link, and after the last solved position: every X, Y, Z is the point
    // raised by the roller radius of 30 mm along its normal.
    const ZELMathVector travel(1, 0, 0);
    const ZELMathVector normal(0.0, 0.6, 0.8);
    const auto at = [&](double x) { return ZELTest::ToolFrame(ZELMathPoint(x, 5.0 * x, -2.0 * x), travel, normal); };
    const ZELMathAxis singular = ZELTest::ToolFrame(ZELMathPoint(35, 40, 45), ZELMathVector(0, 1, 0),
                                                    ZELMathVector(-1, 0, 0));
    AddLink(ZELTPCourseLink::PointsDetailLow, {at(-20), at(-10)});
    AddCourse({singular, at(0), at(10)});
    AddLink(ZELTPCourseLink::PointsDetailLow, {at(15), at(20)});
    AddCourse({at(30), singular});
    AddLink(ZELTPCourseLink::PointsDetailMedium, {at(50), at(60)});
    const ZELKinSolutionSeries series = Solve();
    ASSERT_EQ(series.GetCount(), frames.size());
    for (int i = 0; i < frames.size(); ++i) {
        const ZELMathPoint expected = frames.at(i).GetOrigin() + 30.0 * frames.at(i).GetWDirection();
        EXPECT_LT(g.LinearOf(series.GetSolution(i)).GetDistanceTo(expected), ZELTest::kTight) << "position " << i;
    }
}

namespace {

struct SingularProcedureCase
{
    const char* name;
    ZELTest::Range firstRoll;
    double expected;
};
ZELTEST_PRINT_CASE_BY_NAME(SingularProcedureCase);

class ZELKinPathSolvingSingularProcedure : public ZELKinPathSolvingWristTest,
                                           public ::testing::WithParamInterface<SingularProcedureCase>
{
protected:
    ZELKinPathSolvingSingularProcedure()
        : ZELKinPathSolvingWristTest(ZELTest::WristRanges{GetParam().firstRoll, {-1.6581, 1.6581}, {-3.2376, 3.2376}})
    {
    }
};

} // namespace

TEST_P(ZELKinPathSolvingSingularProcedure, HoldsTheFirstRollNearestZeroAndMeetsEveryFrame)
{
    // A flat course on the wall x = 0, whose normal is the first roll axis,
    // with links of low detail on it before and after.
    AddLink(ZELTPCourseLink::PointsDetailLow, {WallFrame(-20, 0.0)});
    AddCourse({WallFrame(0, 0.0), WallFrame(10, 0.0), WallFrame(20, 0.0), WallFrame(30, 0.0)});
    AddLink(ZELTPCourseLink::PointsDetailLow, {WallFrame(50, 0.0)});
    const ZELKinSolutionSeries series = Solve();
    ASSERT_EQ(series.GetCount(), frames.size());
    for (int i = 0; i < frames.size(); ++i) {
        const ZELKinSolution& solution = series.GetSolution(i);
        EXPECT_TRUE(Reaches(solution, frames.at(i))) << "position " << i;
        EXPECT_TRUE(ZELTest::SameDouble(GetParam().expected, solution.GetVariableValue(g.c), ZELTest::kExact))
            << "position " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(FirstRollRanges, ZELKinPathSolvingSingularProcedure,
                         ::testing::Values(SingularProcedureCase{"AroundZero", {-3.4994, 3.4994}, 0.0},
                                           SingularProcedureCase{"AboveZero", {0.5, 3.0}, 0.5},
                                           SingularProcedureCase{"BelowZero", {-3.0, -0.5}, -0.5}));

// --- Diagnostics -------------------------------------------------------------

namespace {

class ZELKinPathSolvingDiagnosticFiles : public ZELKinPathSolvingTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        solver.SetDebugPath(folder.path());
        f.procedure->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("Ply 7")));
    }

    QString PathOf(const QString& script, const QString& file) const
    {
        return QDir(folder.path()).filePath(QStringLiteral("Ply 7/%1/%2").arg(script, file));
    }

    QString Text(const QString& script, const QString& file) const { return ReadText(PathOf(script, file)); }

    //! The ids of each line of a script's series list.
    QList<QList<quint32>> IdsOf(const QString& script) const
    {
        QList<QList<quint32>> lines;
        const QStringList rows = Text(script, QStringLiteral("seriesList.txt")).split(QLatin1Char('\n'));
        for (const QString& row : rows) {
            if (row.isEmpty())
                continue;
            QList<quint32> ids;
            const QStringList parts = row.section(QStringLiteral(": "), 1).split(QLatin1Char(','));
            for (const QString& part : parts) {
                if (!part.isEmpty())
                    ids.append(part.toUInt());
            }
            lines.append(ids);
        }
        return lines;
    }

    QString SeriesText(const QString& script, quint32 id) const
    {
        return Text(script, QStringLiteral("series %1.txt").arg(id));
    }

    QTemporaryDir folder;
};

// The variable list of a solution at (x, 0, 0) with roll `degrees`.
QString At(int x, const QString& degrees)
{
    return QStringLiteral("\tX=%1\tY=0\tZ=0\tA=%2").arg(x).arg(degrees);
}

} // namespace

TEST_F(ZELKinPathSolvingTest, WritesNoDiagnosticsWithoutADebugPath)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    AddCourse({Pt(0, {0.0, 3.0}), Pt(10, {0.5})});
    const ZELKinSolutionSeries series = Solve();
    QDir::setCurrent(previous);
    EXPECT_EQ(series.GetCount(), 2);
    EXPECT_TRUE(QDir(folder.path()).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, KeepOneFolderPerScriptWithPositionsUnderTheProcedureName)
{
    AddLink(ZELTPCourseLink::PointsDetailLow, {Off(ZELMathPoint(-10, 0, 0))});
    AddCourse({Pt(0, {0.0})});
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(10, {0.1})});
    AddLink(ZELTPCourseLink::PointsDetailFull, {Pt(20, {0.2})});
    Solve();

    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"Ply 7"});
    EXPECT_EQ(QDir(folder.path() + QStringLiteral("/Ply 7")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              (QStringList{"course 1", "course 2", "link 1", "link 3"}));
    for (const QString& script : QStringList{"course 1", "course 2", "link 3"}) {
        const QStringList files = QDir(PathOf(script, QString())).entryList(QDir::Files);
        EXPECT_TRUE(files.contains(QStringLiteral("solutions.txt"))) << script.toStdString();
        EXPECT_TRUE(files.contains(QStringLiteral("seriesList.txt"))) << script.toStdString();
        EXPECT_EQ(files.filter(QRegularExpression(QStringLiteral("^series \\d+\\.txt$"))).size(), 1)
            << script.toStdString();
    }
    // The low detail link is never solved or chained: its files stay empty.
    EXPECT_EQ(Text(QStringLiteral("link 1"), QStringLiteral("solutions.txt")), QString());
    EXPECT_EQ(Text(QStringLiteral("link 1"), QStringLiteral("seriesList.txt")), QString());
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, KeepTheScriptFoldersInTheDebugPathWhenTheProcedureHasNoName)
{
    f.procedure->SetToolPathProcedure(nullptr);
    AddCourse({Pt(0, {0.0})});
    Solve();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"course 1"});
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, ListTheCandidatesOfEverySolvedPositionWithRotaryValuesInDegrees)
{
    AddCourse({Pt(0, {M_PI / 4.0, M_PI / 2.0}), Free(10), Pt(20, {}), Pt(30, {M_PI / 4.0})});
    Solve();
    EXPECT_EQ(Text(QStringLiteral("course 1"), QStringLiteral("solutions.txt")),
              QStringLiteral("Solutions for point 1\n") + At(0, "45") + "\n" + At(0, "90") +
                  "\n"
                  "Solutions for point 2\n"
                  "\tinfinite\n"
                  "Solutions for point 3\n"
                  "Solutions for point 4\n" +
                  At(30, "45") + "\n");
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, ListTheLiveSeriesAfterEachStepAndWriteEachSeriesEntryByEntry)
{
    AddCourse({Pt(0, {M_PI / 4.0}), Free(10), Pt(20, {M_PI / 2.0})});
    const ZELKinSolutionSeries series = Solve();

    const QList<QList<quint32>> lines = IdsOf(QStringLiteral("course 1"));
    ASSERT_EQ(lines.size(), 2);
    ASSERT_EQ(lines.at(0).size(), 1);
    EXPECT_EQ(lines.at(1), lines.at(0)); // the series lives on under its id
    const quint32 id = lines.at(0).first();
    EXPECT_EQ(series.GetId(), id);
    EXPECT_EQ(Text(QStringLiteral("course 1"), QStringLiteral("seriesList.txt")),
              QStringLiteral("1: %1,\n3: %1,\n").arg(id));
    EXPECT_EQ(SeriesText(QStringLiteral("course 1"), id),
              QStringLiteral("0: ") + At(0, "45") + "\n1: " + At(10, "67.5") + "\n2: " + At(20, "90") + "\n");
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, GiveTheSecondCopyOfOnePredecessorANewIdAndTheSameHistory)
{
    AddCourse({Pt(0, {0.0}), Pt(10, {M_PI / 4.0, M_PI / 6.0})});
    Solve();

    const QList<QList<quint32>> lines = IdsOf(QStringLiteral("course 1"));
    ASSERT_EQ(lines.size(), 2);
    ASSERT_EQ(lines.at(0).size(), 1);
    ASSERT_EQ(lines.at(1).size(), 2);
    EXPECT_EQ(lines.at(1).at(0), lines.at(0).at(0));
    EXPECT_NE(lines.at(1).at(1), lines.at(1).at(0));
    EXPECT_EQ(SeriesText(QStringLiteral("course 1"), lines.at(1).at(0)),
              QStringLiteral("0: ") + At(0, "0") + "\n1: " + At(10, "45") + "\n");
    EXPECT_EQ(SeriesText(QStringLiteral("course 1"), lines.at(1).at(1)),
              QStringLiteral("0: ") + At(0, "0") + "\n1: " + At(10, "30") + "\n");
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, MarkASeriesThatDiesAsAborted)
{
    AddCourse({Pt(0, {0.0, M_PI}), Pt(10, {M_PI / 4.0})});
    Solve();

    const QList<QList<quint32>> lines = IdsOf(QStringLiteral("course 1"));
    ASSERT_EQ(lines.size(), 2);
    ASSERT_EQ(lines.at(0).size(), 2);
    EXPECT_EQ(lines.at(1), QList<quint32>{lines.at(0).at(0)});
    EXPECT_EQ(SeriesText(QStringLiteral("course 1"), lines.at(0).at(1)),
              QStringLiteral("0: ") + At(0, "180") + "\n<aborted>\n");
    EXPECT_EQ(SeriesText(QStringLiteral("course 1"), lines.at(0).at(0)),
              QStringLiteral("0: ") + At(0, "0") + "\n1: " + At(10, "45") + "\n");
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, MarkASeriesAbortedInTheFolderItWasLastWrittenTo)
{
    AddLink(ZELTPCourseLink::PointsDetailFull);
    AddCourse({Pt(0, {0.0, M_PI})});
    AddLink(ZELTPCourseLink::PointsDetailFull, {Pt(10, {M_PI / 4.0})});
    Solve();

    const QList<QList<quint32>> courseLines = IdsOf(QStringLiteral("course 1"));
    const QList<QList<quint32>> linkLines = IdsOf(QStringLiteral("link 2"));
    ASSERT_EQ(courseLines.size(), 1);
    ASSERT_EQ(courseLines.at(0).size(), 2);
    ASSERT_EQ(linkLines.size(), 1);
    EXPECT_EQ(linkLines.at(0), QList<quint32>{courseLines.at(0).at(0)});
    EXPECT_EQ(SeriesText(QStringLiteral("course 1"), courseLines.at(0).at(1)),
              QStringLiteral("0: ") + At(0, "180") + "\n<aborted>\n");
    EXPECT_EQ(SeriesText(QStringLiteral("link 2"), linkLines.at(0).at(0)),
              QStringLiteral("0: ") + At(0, "0") + "\n1: " + At(10, "45") + "\n");
    EXPECT_FALSE(QFile::exists(PathOf(QStringLiteral("link 2"),
                                      QStringLiteral("series %1.txt").arg(courseLines.at(0).at(1)))));
}

TEST_F(ZELKinPathSolvingDiagnosticFiles, ListNoSeriesAfterAFailedStepAndAbortEveryLiveOne)
{
    AddCourse({Pt(0, {0.0, 0.5}), Pt(10, {3.0}), Pt(20, {3.1})});
    Solve();

    const QList<QList<quint32>> lines = IdsOf(QStringLiteral("course 1"));
    ASSERT_EQ(lines.size(), 3);
    ASSERT_EQ(lines.at(0).size(), 2);
    EXPECT_TRUE(lines.at(1).isEmpty());
    ASSERT_EQ(lines.at(2).size(), 1);
    EXPECT_TRUE(Text(QStringLiteral("course 1"), QStringLiteral("seriesList.txt"))
                    .contains(QStringLiteral("\n2: \n3: ")));
    for (const quint32 id : lines.at(0))
        EXPECT_TRUE(SeriesText(QStringLiteral("course 1"), id).endsWith(QStringLiteral("\n<aborted>\n")));
}
