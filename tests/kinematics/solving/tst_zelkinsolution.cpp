#include <zelkinsolution.h>

#include <zelkintestaccess.h>
#include <zelkintestprograms.h>

#include <zeltestsupport.h>

#include <QList>

#include <cmath>
#include <limits>
#include <thread>
#include <utility>
#include <vector>

using ZELTest::kNaN;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A variable name with its value, in the order the values are set.
using Values = std::vector<std::pair<const char*, double>>;

// A machine with two bounded linear axes of different ranges and two endless
// rotary axes, and a variable of a second machine.
class ZELKinSolutionTest : public ::testing::Test
{
protected:
    ZELKinSolutionTest()
        : machine(ZELKinTestAccess::CreateMachine(&container))
        , x(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"), ZELKinVariable::Linear, -500.0, 500.0))
        , y(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"), ZELKinVariable::Linear, 0.0, 100.0))
        , c(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary, kNaN, kNaN))
        , a(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("A"), ZELKinVariable::Rotary, kNaN, kNaN))
        , otherMachine(ZELKinTestAccess::CreateMachine(&container))
        , w(ZELKinTestAccess::CreateVariable(otherMachine, QStringLiteral("W")))
    {
    }

    ZELKinVariable* Variable(const char* name) const
    {
        for (ZELKinVariable* variable : {x, y, c, a, w}) {
            if (variable->GetLabel() == QLatin1String(name))
                return variable;
        }
        ADD_FAILURE() << "no variable " << name;
        return nullptr;
    }

    ZELKinSolution Make(const Values& values, bool traori = false) const
    {
        ZELKinSolution solution;
        for (const auto& [name, value] : values)
            solution.SetVariableValue(Variable(name), value);
        solution.SetTraori(traori);
        return solution;
    }

    QList<ZELKinVariable*> Variables(const Values& values) const
    {
        QList<ZELKinVariable*> variables;
        for (const auto& entry : values)
            variables.append(Variable(entry.first));
        return variables;
    }

    // The solution defines exactly these variables, in this order, with
    // these values (NaN matching a NaN value).
    ::testing::AssertionResult Holds(const ZELKinSolution& solution, const Values& expected) const
    {
        if (solution.GetDefinedVariables() != Variables(expected))
            return ::testing::AssertionFailure() << "defines other variables or another order";
        for (const auto& [name, value] : expected) {
            const ::testing::AssertionResult same =
                ZELTest::SameDouble(value, solution.GetVariableValue(Variable(name)), ZELTest::kTight);
            if (!same)
                return ::testing::AssertionFailure() << name << ": " << same.message();
        }
        return ::testing::AssertionSuccess();
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    ZELKinVariable* x;
    ZELKinVariable* y;
    ZELKinVariable* c;
    ZELKinVariable* a;
    ZELKinAFPMachine* otherMachine;
    ZELKinVariable* w;
};

} // namespace

TEST_F(ZELKinSolutionTest, DefaultIsTheInfiniteSolution)
{
    const ZELKinSolution solution;
    EXPECT_TRUE(solution.IsInfinite());
    EXPECT_FALSE(solution.IsComplete());
    EXPECT_FALSE(solution.IsTraori());
    EXPECT_TRUE(solution.GetDefinedVariables().isEmpty());
    for (ZELKinVariable* variable : {x, y, c, a, w}) {
        EXPECT_TRUE(std::isnan(solution.GetVariableValue(variable)));
        EXPECT_FALSE(solution.IsDefined(variable));
    }
    const ZELKinSolution complete = Make({{"X", 1.0}, {"Y", 2.0}, {"C", 3.0}, {"A", 4.0}});
    EXPECT_EQ(solution.GetMostSignificantChange(solution), nullptr);
    EXPECT_EQ(solution.GetMostSignificantChange(complete), nullptr);
    EXPECT_EQ(complete.GetMostSignificantChange(solution), nullptr);
}

TEST_F(ZELKinSolutionTest, SetVariableValueDefinesAndReplaces)
{
    ZELKinSolution solution;
    solution.SetVariableValue(x, 12.5);
    EXPECT_TRUE(solution.IsDefined(x));
    EXPECT_FALSE(solution.IsInfinite());
    EXPECT_TRUE(ZELTest::SameDouble(12.5, solution.GetVariableValue(x), ZELTest::kExact));
    solution.SetVariableValue(x, -3.0);
    EXPECT_TRUE(Holds(solution, {{"X", -3.0}}));
}

TEST_F(ZELKinSolutionTest, SettingNaNRemovesTheVariable)
{
    ZELKinSolution solution = Make({{"X", 1.0}, {"Y", 2.0}});
    solution.SetVariableValue(x, kNaN);
    EXPECT_FALSE(solution.IsDefined(x));
    EXPECT_TRUE(std::isnan(solution.GetVariableValue(x)));
    EXPECT_TRUE(Holds(solution, {{"Y", 2.0}}));
    solution.SetVariableValue(y, kNaN);
    EXPECT_TRUE(solution.IsInfinite());
}

TEST_F(ZELKinSolutionTest, RemovingAnUndefinedVariableChangesNothing)
{
    ZELKinSolution solution = Make({{"X", 1.0}});
    solution.SetVariableValue(y, kNaN);
    EXPECT_TRUE(Holds(solution, {{"X", 1.0}}));
}

TEST_F(ZELKinSolutionTest, NullVariableIsIgnored)
{
    ZELKinSolution solution = Make({{"X", 1.0}});
    solution.SetVariableValue(nullptr, 5.0);
    EXPECT_TRUE(Holds(solution, {{"X", 1.0}}));
    EXPECT_FALSE(solution.IsDefined(nullptr));
}

TEST_F(ZELKinSolutionTest, DefinedVariablesKeepTheOrderTheyWereFirstSet)
{
    ZELKinSolution solution = Make({{"Y", 1.0}, {"X", 2.0}, {"C", 3.0}});
    solution.SetVariableValue(y, 4.0);
    solution.SetVariableValue(x, kNaN);
    solution.SetVariableValue(a, 5.0);
    EXPECT_TRUE(Holds(solution, {{"Y", 4.0}, {"C", 3.0}, {"A", 5.0}}));
}

TEST_F(ZELKinSolutionTest, TraoriFlagIsReadAndWritten)
{
    ZELKinSolution solution;
    solution.SetTraori(true);
    EXPECT_TRUE(solution.IsTraori());
    solution.SetTraori(false);
    EXPECT_FALSE(solution.IsTraori());
}

TEST_F(ZELKinSolutionTest, CompleteWhenEveryVariableOfTheMachineIsDefined)
{
    ZELKinSolution solution = Make({{"C", 1.0}, {"X", 2.0}, {"A", 3.0}});
    EXPECT_FALSE(solution.IsComplete());
    solution.SetVariableValue(y, 0.0);
    EXPECT_TRUE(solution.IsComplete());
    solution.SetVariableValue(w, 7.0);
    EXPECT_TRUE(solution.IsComplete()) << "a variable of another machine does not make it incomplete";
}

TEST_F(ZELKinSolutionTest, CompletenessIsJudgedByTheMachineOfTheFirstVariable)
{
    const ZELKinSolution otherFirst = Make({{"W", 1.0}, {"X", 2.0}});
    EXPECT_TRUE(otherFirst.IsComplete());
    const ZELKinSolution machineFirst = Make({{"X", 2.0}, {"W", 1.0}});
    EXPECT_FALSE(machineFirst.IsComplete());
}

TEST_F(ZELKinSolutionTest, NotCompleteOnceTheMachineHasGone)
{
    const ZELKinSolution solution = Make({{"W", 1.0}});
    ASSERT_TRUE(solution.IsComplete());
    container.DeleteGeometry(otherMachine);
    ASSERT_EQ(w->GetMachine(), nullptr);
    EXPECT_FALSE(solution.IsComplete());
}

TEST_F(ZELKinSolutionTest, ModifyingACopyLeavesTheOriginal)
{
    const ZELKinSolution original = Make({{"X", 1.0}, {"Y", 2.0}}, true);

    ZELKinSolution changed = original;
    changed.SetVariableValue(x, 10.0);
    ZELKinSolution removed = original;
    removed.SetVariableValue(y, kNaN);
    ZELKinSolution flagged = original;
    flagged.SetTraori(false);
    ZELKinSolution added = original;
    added += original;
    ZELKinSolution scaled = original;
    scaled *= 3.0;

    EXPECT_TRUE(Holds(original, {{"X", 1.0}, {"Y", 2.0}}));
    EXPECT_TRUE(original.IsTraori());
    EXPECT_TRUE(Holds(changed, {{"X", 10.0}, {"Y", 2.0}}));
    EXPECT_TRUE(Holds(removed, {{"X", 1.0}}));
    EXPECT_FALSE(flagged.IsTraori());
    EXPECT_TRUE(Holds(added, {{"X", 2.0}, {"Y", 4.0}}));
    EXPECT_TRUE(Holds(scaled, {{"X", 3.0}, {"Y", 6.0}}));
}

TEST_F(ZELKinSolutionTest, ModifyingTheOriginalLeavesACopy)
{
    ZELKinSolution original = Make({{"X", 1.0}});
    const ZELKinSolution copy = original;
    ZELKinSolution assigned;
    assigned = original;
    original.SetVariableValue(x, 5.0);
    original.SetTraori(true);
    EXPECT_TRUE(Holds(copy, {{"X", 1.0}}));
    EXPECT_TRUE(Holds(assigned, {{"X", 1.0}}));
    EXPECT_FALSE(copy.IsTraori());
}

TEST_F(ZELKinSolutionTest, DefaultSolutionsDoNotShareModifications)
{
    ZELKinSolution first;
    ZELKinSolution second;
    first.SetVariableValue(x, 1.0);
    first.SetTraori(true);
    EXPECT_TRUE(second.IsInfinite());
    EXPECT_FALSE(second.IsTraori());
    EXPECT_TRUE(ZELKinSolution().IsInfinite());
}

TEST_F(ZELKinSolutionTest, AddingASolutionToItselfDoublesIt)
{
    ZELKinSolution solution = Make({{"X", 1.5}, {"C", -2.0}});
    solution += solution;
    EXPECT_TRUE(Holds(solution, {{"X", 3.0}, {"C", -4.0}}));
}

TEST_F(ZELKinSolutionTest, CopiesAreReadSafelyFromSeveralThreads)
{
    ZELKinSolution shared = Make({{"X", 1.0}, {"Y", 2.0}, {"C", 3.0}}, true);
    constexpr int kThreads = 4;
    constexpr int kRounds = 2000;
    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t, copy = shared] {
            for (int round = 0; round < kRounds; ++round) {
                ZELKinSolution local = copy;
                const bool same = local.GetVariableValue(x) == 1.0 && local.GetVariableValue(y) == 2.0
                                  && local.GetVariableValue(c) == 3.0 && local.IsTraori()
                                  && local.GetDefinedVariables().size() == 3;
                local.SetVariableValue(x, double(round));
                if (!same || local.GetVariableValue(x) != double(round))
                    ++mismatches[t];
            }
        });
    }
    for (int round = 0; round < kRounds; ++round)
        shared.SetVariableValue(y, double(round));
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(mismatches[t], 0) << "thread " << t;
    EXPECT_TRUE(ZELTest::SameDouble(kRounds - 1.0, shared.GetVariableValue(y), ZELTest::kExact));
}

// Positions ----------------------------------------------------------------

namespace {

// A position in a script of a procedure of a program for the fixture's machine.
class ZELKinSolutionPositionTest : public ZELKinSolutionTest
{
protected:
    ZELKinSolutionPositionTest()
        : program(ZELKinTestAccess::CreateProgram(machine))
        , procedure(ZELTest::AddProcedure(program, {2}))
        , position(procedure->GetFirstPosition())
    {
    }

    ZELKinProgram* program;
    ZELKinTestProcedure* procedure;
    ZELKinPosition* position;
};

} // namespace

TEST_F(ZELKinSolutionPositionTest, FromAPositionTakesItsValuesInMachineOrder)
{
    position->SetVariableValue(a, 4.0);
    position->SetVariableValue(w, 9.0);
    position->SetVariableValue(x, 1.0);
    ASSERT_TRUE(position->IsTraori());
    const ZELKinSolution solution(position);
    EXPECT_TRUE(Holds(solution, {{"X", 1.0}, {"A", 4.0}})) << "only the machine's variables, in its order";
    EXPECT_FALSE(solution.IsTraori());
}

TEST_F(ZELKinSolutionPositionTest, FromAPositionWithoutValuesIsInfinite)
{
    EXPECT_TRUE(ZELKinSolution(position).IsInfinite());
}

TEST_F(ZELKinSolutionPositionTest, FromAPositionOutsideAnyProgramIsInfinite)
{
    ZELKinPosition* alone = ZELTest::AddPositions(new ZELKinTestScript(&container), 1).first();
    alone->SetVariableValue(x, 1.0);
    ASSERT_EQ(alone->GetScript()->GetProgram(), nullptr);
    EXPECT_TRUE(ZELKinSolution(alone).IsInfinite());
    EXPECT_TRUE(ZELKinSolution(static_cast<ZELKinPosition*>(nullptr)).IsInfinite());
}

TEST_F(ZELKinSolutionPositionTest, ApplyWritesTheDefinedValuesAndLeavesTheRest)
{
    position->SetVariableValue(x, 1.0);
    position->SetVariableValue(y, 2.0);
    position->SetTraori(false);
    const ZELKinSolution solution = Make({{"Y", 5.0}, {"C", 3.0}}, true);
    solution.Apply(position);
    EXPECT_TRUE(ZELTest::SameDouble(1.0, position->GetVariableValue(x), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(5.0, position->GetVariableValue(y), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.0, position->GetVariableValue(c), ZELTest::kExact));
    EXPECT_FALSE(position->IsVariableDefined(a));
    EXPECT_FALSE(position->IsTraori()) << "the flag is not transferred";
    EXPECT_FALSE(procedure->GetLastPosition()->IsVariableDefined(y)) << "other positions stay as they were";
}

TEST_F(ZELKinSolutionPositionTest, AppliedThenReadBackGivesTheSameSolution)
{
    const ZELKinSolution solution = Make({{"C", 0.5}, {"X", -20.0}, {"Y", 7.25}, {"A", 1.5}});
    solution.Apply(position);
    const ZELKinSolution readBack(position);
    EXPECT_TRUE(readBack == solution);
    EXPECT_TRUE(Holds(readBack, {{"X", -20.0}, {"Y", 7.25}, {"C", 0.5}, {"A", 1.5}}));
}

TEST_F(ZELKinSolutionPositionTest, ApplyingTheInfiniteSolutionOrToNoPositionChangesNothing)
{
    position->SetVariableValue(x, 1.0);
    ZELKinSolution().Apply(position);
    EXPECT_TRUE(ZELTest::SameDouble(1.0, position->GetVariableValue(x), ZELTest::kExact));
    EXPECT_NO_THROW(Make({{"X", 2.0}}).Apply(nullptr));
}

// Arithmetic ---------------------------------------------------------------

namespace {

enum class Operation { Plus, Minus, PlusAssign, Times, TimesAssign, Divide, ScalarTimes, ScalarDivide };

struct ArithmeticCase
{
    const char* name;
    Values left;
    bool leftTraori;
    Operation operation;
    Values right; // the right operand of a sum or difference
    double scalar;
    Values expected;
    bool expectedTraori;
};
ZELTEST_PRINT_CASE_BY_NAME(ArithmeticCase);

class ZELKinSolutionArithmetic : public ZELKinSolutionTest, public ::testing::WithParamInterface<ArithmeticCase>
{
protected:
    ZELKinSolution Apply(const ZELKinSolution& left, const ZELKinSolution& right, double scalar) const
    {
        ZELKinSolution result = left;
        switch (GetParam().operation) {
        case Operation::Plus:
            return left + right;
        case Operation::Minus:
            return left - right;
        case Operation::PlusAssign:
            EXPECT_EQ(&(result += right), &result);
            return result;
        case Operation::Times:
            return left * scalar;
        case Operation::TimesAssign:
            EXPECT_EQ(&(result *= scalar), &result);
            return result;
        case Operation::Divide:
            return left / scalar;
        case Operation::ScalarTimes:
            return scalar * left;
        case Operation::ScalarDivide:
            return scalar / left;
        }
        ADD_FAILURE() << "unknown operation";
        return result;
    }
};

} // namespace

TEST_P(ZELKinSolutionArithmetic, GivesTheVariablesValuesAndFlagOfTheTable)
{
    const ArithmeticCase& test = GetParam();
    const ZELKinSolution left = Make(test.left, test.leftTraori);
    const ZELKinSolution right = Make(test.right, true);
    const ZELKinSolution result = Apply(left, right, test.scalar);
    EXPECT_TRUE(Holds(result, test.expected));
    EXPECT_EQ(result.IsTraori(), test.expectedTraori);
    EXPECT_TRUE(Holds(left, test.left)) << "the operands stay as they were";
    EXPECT_TRUE(Holds(right, test.right)) << "the operands stay as they were";
}

INSTANTIATE_TEST_SUITE_P(
    Table, ZELKinSolutionArithmetic,
    ::testing::Values(
        ArithmeticCase{"PlusAddsWhereBothDefine", {{"X", 2.0}, {"Y", 3.0}}, false, Operation::Plus,
                       {{"Y", 0.5}}, 0.0, {{"X", 2.0}, {"Y", 3.5}}, false},
        ArithmeticCase{"PlusIgnoresVariablesOnlyTheRightDefines", {{"X", 2.0}}, false, Operation::Plus,
                       {{"Y", 1.0}}, 0.0, {{"X", 2.0}}, false},
        ArithmeticCase{"PlusKeepsTheLeftFlag", {{"X", 2.0}}, true, Operation::Plus, {{"X", 1.0}}, 0.0,
                       {{"X", 3.0}}, true},
        ArithmeticCase{"MinusSubtractsWhereBothDefine", {{"X", 2.0}, {"Y", 3.0}}, false, Operation::Minus,
                       {{"X", 0.5}}, 0.0, {{"X", 1.5}, {"Y", 3.0}}, false},
        ArithmeticCase{"MinusIgnoresVariablesOnlyTheRightDefines", {{"C", 1.0}}, false, Operation::Minus,
                       {{"A", 4.0}, {"C", 3.0}}, 0.0, {{"C", -2.0}}, false},
        ArithmeticCase{"MinusKeepsTheLeftFlag", {{"X", 2.0}}, true, Operation::Minus, {{"X", 2.0}}, 0.0,
                       {{"X", 0.0}}, true},
        ArithmeticCase{"PlusAssignAddsInPlace", {{"X", 1.0}, {"Y", 1.0}}, false, Operation::PlusAssign,
                       {{"Y", 2.0}, {"C", 9.0}}, 0.0, {{"X", 1.0}, {"Y", 3.0}}, false},
        ArithmeticCase{"PlusAssignLeavesTheFlag", {{"X", 1.0}}, true, Operation::PlusAssign, {{"X", 1.0}},
                       0.0, {{"X", 2.0}}, true},
        ArithmeticCase{"TimesScalesEveryValue", {{"X", 2.0}, {"Y", -3.0}}, false, Operation::Times, {}, 2.0,
                       {{"X", 4.0}, {"Y", -6.0}}, false},
        ArithmeticCase{"TimesKeepsTheFlag", {{"X", 2.0}}, true, Operation::Times, {}, 0.5, {{"X", 1.0}}, true},
        ArithmeticCase{"TimesKeepsANaNProduct", {{"X", kInfinity}, {"Y", 1.0}}, false, Operation::Times, {},
                       0.0, {{"X", kNaN}, {"Y", 0.0}}, false},
        ArithmeticCase{"TimesAssignScalesInPlace", {{"X", 2.0}, {"C", 0.25}}, true, Operation::TimesAssign, {},
                       4.0, {{"X", 8.0}, {"C", 1.0}}, true},
        ArithmeticCase{"DivideDividesEveryValue", {{"X", 4.0}, {"Y", -1.0}}, false, Operation::Divide, {}, 2.0,
                       {{"X", 2.0}, {"Y", -0.5}}, false},
        ArithmeticCase{"DivideKeepsTheFlag", {{"X", 4.0}}, true, Operation::Divide, {}, 2.0, {{"X", 2.0}},
                       true},
        ArithmeticCase{"DivideKeepsANaNQuotient", {{"X", 0.0}}, false, Operation::Divide, {}, 0.0,
                       {{"X", kNaN}}, false},
        ArithmeticCase{"ScalarTimesScalesEveryValue", {{"X", 2.0}, {"Y", -3.0}}, false, Operation::ScalarTimes,
                       {}, 2.0, {{"X", 4.0}, {"Y", -6.0}}, false},
        ArithmeticCase{"ScalarTimesDropsTheFlag", {{"X", 2.0}}, true, Operation::ScalarTimes, {}, 3.0,
                       {{"X", 6.0}}, false},
        ArithmeticCase{"ScalarTimesLeavesOutANaNProduct", {{"X", kInfinity}, {"Y", 1.0}}, false,
                       Operation::ScalarTimes, {}, 0.0, {{"Y", 0.0}}, false},
        ArithmeticCase{"ScalarDivideDividesTheValueByTheScalar", {{"X", 4.0}}, false, Operation::ScalarDivide,
                       {}, 2.0, {{"X", 2.0}}, false},
        ArithmeticCase{"ScalarDivideDropsTheFlag", {{"X", 4.0}, {"Y", 1.0}}, true, Operation::ScalarDivide, {},
                       2.0, {{"X", 2.0}, {"Y", 0.5}}, false},
        ArithmeticCase{"ScalarDivideLeavesOutANaNQuotient", {{"X", 0.0}, {"Y", 1.0}}, false,
                       Operation::ScalarDivide, {}, 0.0, {{"Y", kInfinity}}, false}),
    [](const ::testing::TestParamInfo<ArithmeticCase>& info) { return std::string(info.param.name); });

// Comparison ---------------------------------------------------------------

namespace {

struct ComparisonCase
{
    const char* name;
    Values left;
    bool leftTraori;
    Values right;
    bool equal;
    bool less;
    bool greater;
};
ZELTEST_PRINT_CASE_BY_NAME(ComparisonCase);

class ZELKinSolutionComparison : public ZELKinSolutionTest, public ::testing::WithParamInterface<ComparisonCase>
{
};

} // namespace

TEST_P(ZELKinSolutionComparison, GivesTheResultsOfTheTable)
{
    const ComparisonCase& test = GetParam();
    const ZELKinSolution left = Make(test.left, test.leftTraori);
    const ZELKinSolution right = Make(test.right);
    EXPECT_EQ(left == right, test.equal);
    EXPECT_EQ(left != right, !test.equal);
    EXPECT_EQ(left < right, test.less);
    EXPECT_EQ(left > right, test.greater);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ZELKinSolutionComparison,
    ::testing::Values(
        ComparisonCase{"EqualWithinTheTolerance", {{"X", 1.0}}, false, {{"X", 1.0009}}, true, true, false},
        ComparisonCase{"UnequalBeyondTheTolerance", {{"X", 1.0}}, false, {{"X", 1.0011}}, false, true, false},
        ComparisonCase{"UnequalWithAVariableOnlyTheRightDefines", {{"X", 1.0}}, false, {{"X", 1.0}, {"Y", 0.0}},
                       false, true, true},
        ComparisonCase{"UnequalWithAVariableOnlyTheLeftDefines", {{"X", 1.0}, {"Y", 0.0}}, false, {{"X", 1.0}},
                       false, true, true},
        ComparisonCase{"UnequalOverDifferentVariables", {{"X", 1.0}}, false, {{"Y", 1.0}}, false, false, true},
        ComparisonCase{"EqualWhateverTheOrderOfSetting", {{"X", 1.0}, {"Y", 2.0}}, false,
                       {{"Y", 2.0}, {"X", 1.0}}, true, true, true},
        ComparisonCase{"EqualWhateverTheFlag", {{"X", 1.0}}, true, {{"X", 1.0}}, true, true, true},
        ComparisonCase{"EqualSolutionsAreBothLessAndGreater", {{"X", 1.0}, {"C", -2.0}}, false,
                       {{"X", 1.0}, {"C", -2.0}}, true, true, true},
        ComparisonCase{"TwoInfiniteSolutionsAreEqual", {}, false, {}, true, true, true},
        ComparisonCase{"NegativeIsLessThanAMissingValue", {{"X", -1.0}}, false, {}, false, true, false},
        ComparisonCase{"PositiveIsGreaterThanAMissingValue", {{"X", 1.0}}, false, {}, false, false, true},
        ComparisonCase{"InfiniteLeftIsBothLessAndGreater", {}, false, {{"X", 1.0}}, false, true, true},
        ComparisonCase{"OrderHasNoTolerance", {{"X", 1.0005}}, false, {{"X", 1.0}}, true, false, true},
        ComparisonCase{"OrderIsComponentwise", {{"X", 1.0}, {"Y", 5.0}}, false, {{"X", 2.0}, {"Y", 4.0}}, false,
                       false, false},
        ComparisonCase{"OrderIgnoresVariablesOnlyTheRightDefines", {{"X", 1.0}}, false,
                       {{"X", 2.0}, {"Y", -9.0}}, false, true, false}),
    [](const ::testing::TestParamInfo<ComparisonCase>& info) { return std::string(info.param.name); });

// Most significant change --------------------------------------------------

namespace {

struct ChangeCase
{
    const char* name;
    Values from;
    Values to;
    const char* expected; // null for no variable
};
ZELTEST_PRINT_CASE_BY_NAME(ChangeCase);

class ZELKinSolutionMostSignificantChange : public ZELKinSolutionTest, public ::testing::WithParamInterface<ChangeCase>
{
};

} // namespace

TEST_P(ZELKinSolutionMostSignificantChange, PicksTheVariableOfTheLargestRelativeTravel)
{
    const ChangeCase& test = GetParam();
    const ZELKinSolution from = Make(test.from);
    const ZELKinSolution to = Make(test.to);
    ZELKinVariable* const expected = test.expected ? Variable(test.expected) : nullptr;
    EXPECT_EQ(from.GetMostSignificantChange(to), expected);
}

// X has a range of 1000, Y of 100; C and A are endless.
INSTANTIATE_TEST_SUITE_P(
    Cases, ZELKinSolutionMostSignificantChange,
    ::testing::Values(
        ChangeCase{"BoundedAxisOutranksALargerEndlessTravel",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"X", 10.0}, {"Y", 0.0}, {"C", 180.0}, {"A", 0.0}}, "X"},
        ChangeCase{"BoundedAxisMetAfterAnEndlessOneStillWins",
                   {{"C", 0.0}, {"A", 0.0}, {"X", 0.0}, {"Y", 0.0}},
                   {{"C", 180.0}, {"A", 0.0}, {"X", 0.0}, {"Y", 0.01}}, "Y"},
        ChangeCase{"BoundedAxesCompareTravelAgainstTheirRange",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"X", 10.0}, {"Y", 5.0}, {"C", 0.0}, {"A", 0.0}}, "Y"},
        ChangeCase{"EndlessAxesCompareRawTravel",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 1.0}, {"A", -2.0}}, "A"},
        ChangeCase{"ChangesBelowTheToleranceGiveNone",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"X", 0.0009}, {"Y", -0.0009}, {"C", 0.0005}, {"A", 0.0}}, nullptr},
        ChangeCase{"NoChangeGivesNone",
                   {{"X", 1.0}, {"Y", 2.0}, {"C", 3.0}, {"A", 4.0}},
                   {{"X", 1.0}, {"Y", 2.0}, {"C", 3.0}, {"A", 4.0}}, nullptr},
        ChangeCase{"TravelOfExactlyTheToleranceCounts",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.001}, {"A", 0.0}}, "C"},
        ChangeCase{"EqualRelativeTravelKeepsTheFirstSet",
                   {{"Y", 0.0}, {"X", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"X", 10.0}, {"Y", 1.0}, {"C", 0.0}, {"A", 0.0}}, "Y"},
        ChangeCase{"EqualRelativeTravelKeepsTheFirstSetInTheOtherOrder",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"Y", 1.0}, {"X", 10.0}, {"C", 0.0}, {"A", 0.0}}, "X"},
        ChangeCase{"EqualEndlessTravelKeepsTheFirstSet",
                   {{"A", 0.0}, {"C", 0.0}, {"X", 0.0}, {"Y", 0.0}},
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 2.0}, {"A", -2.0}}, "A"},
        ChangeCase{"IncompleteFromGivesNone",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}},
                   {{"X", 10.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}}, nullptr},
        ChangeCase{"IncompleteToGivesNone",
                   {{"X", 0.0}, {"Y", 0.0}, {"C", 0.0}, {"A", 0.0}},
                   {{"X", 10.0}, {"Y", 0.0}, {"A", 0.0}}, nullptr}),
    [](const ::testing::TestParamInfo<ChangeCase>& info) { return std::string(info.param.name); });
