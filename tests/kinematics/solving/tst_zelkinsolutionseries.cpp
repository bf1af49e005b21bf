#include <zelkinsolutionseries.h>

#include <zelkintestaccess.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <QList>

#include <array>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace {

// The series never looks into its commands, so distinct addresses stand in
// for the positions of a procedure.
ZELKinCommand* Command(int number)
{
    static std::array<char, 1 << 20> places;
    return reinterpret_cast<ZELKinCommand*>(&places.at(std::size_t(number)));
}

class ZELKinSolutionSeriesTest : public ::testing::Test
{
protected:
    ZELKinSolutionSeriesTest()
        : machine(ZELKinTestAccess::CreateMachine(&container))
        , x(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X")))
    {
    }

    // A solution that tells entry `number` apart from every other.
    ZELKinSolution Solution(int number) const
    {
        ZELKinSolution solution;
        solution.SetVariableValue(x, number);
        return solution;
    }

    // Entry `number` is the command Command(number) with Solution(number).
    void AppendNumbered(ZELKinSolutionSeries& series, int first, int count) const
    {
        for (int number = first; number < first + count; ++number)
            series.Append(Command(number), Solution(number));
    }

    // The series holds exactly these numbered entries, in order.
    ::testing::AssertionResult Holds(const ZELKinSolutionSeries& series, const std::vector<int>& numbers) const
    {
        if (series.GetCount() != int(numbers.size()))
            return ::testing::AssertionFailure() << "count " << series.GetCount() << ", expected " << numbers.size();
        for (int index = 0; index < series.GetCount(); ++index) {
            const int number = numbers[std::size_t(index)];
            if (series.GetCommand(index) != Command(number))
                return ::testing::AssertionFailure() << "command " << index << " is not number " << number;
            const double value = series.GetSolution(index).GetVariableValue(x);
            if (!ZELTest::SameDouble(number, value, ZELTest::kExact))
                return ::testing::AssertionFailure() << "solution " << index << " is " << value << ", not " << number;
        }
        return ::testing::AssertionSuccess();
    }

    static std::vector<int> Range(int first, int count)
    {
        std::vector<int> numbers(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            numbers[std::size_t(i)] = first + i;
        return numbers;
    }

    static std::vector<int> Joined(std::vector<int> front, const std::vector<int>& back)
    {
        front.insert(front.end(), back.begin(), back.end());
        return front;
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    ZELKinVariable* x;
};

} // namespace

TEST_F(ZELKinSolutionSeriesTest, NewSeriesIsEmptyWithCostZero)
{
    const ZELKinSolutionSeries series;
    EXPECT_TRUE(series.IsEmpty());
    EXPECT_EQ(series.GetCount(), 0);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, series.GetCost(), ZELTest::kExact));
    EXPECT_TRUE(series.GetCommands().isEmpty());
    EXPECT_TRUE(series.GetSolutions().isEmpty());
}

TEST_F(ZELKinSolutionSeriesTest, LastSolutionOfAnEmptySeriesIsAnEmptySolution)
{
    const ZELKinSolutionSeries series;
    ZELKinSolution last;
    EXPECT_NO_THROW(last = series.GetLastSolution());
    EXPECT_TRUE(last.IsInfinite());
    EXPECT_FALSE(last.IsTraori());
}

TEST_F(ZELKinSolutionSeriesTest, CreatedWithOneEntryHoldsIt)
{
    const ZELKinSolutionSeries series(Command(7), Solution(7));
    EXPECT_FALSE(series.IsEmpty());
    EXPECT_TRUE(Holds(series, {7}));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, series.GetCost(), ZELTest::kExact));
    EXPECT_TRUE(series.GetLastSolution() == Solution(7));
}

TEST_F(ZELKinSolutionSeriesTest, AppendAddsAtTheEndOfBothLists)
{
    ZELKinSolutionSeries series;
    AppendNumbered(series, 10, 3);
    EXPECT_TRUE(Holds(series, {10, 11, 12}));
    EXPECT_EQ(series.GetCommands(), QList<ZELKinCommand*>({Command(10), Command(11), Command(12)}));
    const QList<ZELKinSolution> solutions = series.GetSolutions();
    ASSERT_EQ(solutions.size(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(solutions[i] == Solution(10 + i)) << i;
    EXPECT_TRUE(series.GetLastSolution() == Solution(12));
}

TEST_F(ZELKinSolutionSeriesTest, KeepsTheSolutionAsAppended)
{
    ZELKinSolution solution = Solution(3);
    solution.SetTraori(true);
    ZELKinSolutionSeries series(Command(3), solution);
    solution.SetVariableValue(x, 99.0);
    EXPECT_TRUE(series.GetSolution(0).IsTraori());
    EXPECT_TRUE(Holds(series, {3}));
}

TEST_F(ZELKinSolutionSeriesTest, SetCostOverwritesTheCost)
{
    ZELKinSolutionSeries series(Command(1), Solution(1));
    series.SetCost(2.5);
    EXPECT_TRUE(ZELTest::SameDouble(2.5, series.GetCost(), ZELTest::kExact));
    series.SetCost(0.75);
    EXPECT_TRUE(ZELTest::SameDouble(0.75, series.GetCost(), ZELTest::kExact));
}

namespace {

struct IndexCase
{
    const char* name;
    int entries;
    int index;
};
ZELTEST_PRINT_CASE_BY_NAME(IndexCase);

class ZELKinSolutionSeriesIndex : public ZELKinSolutionSeriesTest, public ::testing::WithParamInterface<IndexCase>
{
protected:
    QString Message() const
    {
        return QStringLiteral("value %1 is out of bounds [0, %2]").arg(GetParam().index).arg(GetParam().entries - 1);
    }

    void ExpectBounds(const ZELSysOutOfBoundsException& e) const
    {
        EXPECT_EQ(e.GetValue().toInt(), GetParam().index);
        EXPECT_EQ(e.GetLowerBound().toInt(), 0);
        EXPECT_EQ(e.GetUpperBound().toInt(), GetParam().entries - 1);
        EXPECT_TRUE(e.IsLowerBoundInclusive());
        EXPECT_TRUE(e.IsUpperBoundInclusive());
    }
};

} // namespace

TEST_P(ZELKinSolutionSeriesIndex, SolutionOutsideTheSeriesThrowsWithInclusiveBounds)
{
    ZELKinSolutionSeries series;
    AppendNumbered(series, 0, GetParam().entries);
    EXPECT_THROW_MESSAGE(series.GetSolution(GetParam().index), ZELSysOutOfBoundsException, Message());
    try {
        series.GetSolution(GetParam().index);
    } catch (const ZELSysOutOfBoundsException& e) {
        ExpectBounds(e);
    }
}

TEST_P(ZELKinSolutionSeriesIndex, CommandOutsideTheSeriesThrowsWithInclusiveBounds)
{
    ZELKinSolutionSeries series;
    AppendNumbered(series, 0, GetParam().entries);
    EXPECT_THROW_MESSAGE(series.GetCommand(GetParam().index), ZELSysOutOfBoundsException, Message());
    try {
        series.GetCommand(GetParam().index);
    } catch (const ZELSysOutOfBoundsException& e) {
        ExpectBounds(e);
    }
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinSolutionSeriesIndex,
                         ::testing::Values(IndexCase{"TheCount", 3, 3}, IndexCase{"MinusOne", 3, -1},
                                           IndexCase{"ZeroOfAnEmptySeries", 0, 0},
                                           IndexCase{"FarBeyondAFullChunk", 64, 200}),
                         [](const ::testing::TestParamInfo<IndexCase>& info) { return std::string(info.param.name); });

TEST_F(ZELKinSolutionSeriesTest, TwoNewSeriesCarryDifferentIds)
{
    const ZELKinSolutionSeries first;
    const ZELKinSolutionSeries second;
    const ZELKinSolutionSeries third(Command(1), Solution(1));
    EXPECT_NE(first.GetId(), second.GetId());
    EXPECT_NE(second.GetId(), third.GetId());
}

TEST_F(ZELKinSolutionSeriesTest, ACopyKeepsTheIdAndTheCost)
{
    ZELKinSolutionSeries original(Command(1), Solution(1));
    original.SetCost(4.0);
    const ZELKinSolutionSeries copy = original;
    ZELKinSolutionSeries assigned;
    assigned = original;
    EXPECT_EQ(copy.GetId(), original.GetId());
    EXPECT_EQ(assigned.GetId(), original.GetId());
    EXPECT_TRUE(ZELTest::SameDouble(4.0, copy.GetCost(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(4.0, assigned.GetCost(), ZELTest::kExact));
}

TEST_F(ZELKinSolutionSeriesTest, RenewIdChangesTheIdOfThatCopyOnly)
{
    const ZELKinSolutionSeries original(Command(1), Solution(1));
    ZELKinSolutionSeries copy = original;
    copy.RenewId();
    EXPECT_NE(copy.GetId(), original.GetId());
    EXPECT_TRUE(Holds(copy, {1}));
}

TEST_F(ZELKinSolutionSeriesTest, ModifyingACopyLeavesTheOriginal)
{
    ZELKinSolutionSeries original;
    AppendNumbered(original, 0, 3);
    original.SetCost(1.0);
    const quint32 id = original.GetId();

    ZELKinSolutionSeries appended = original;
    appended.Append(Command(50), Solution(50));
    ZELKinSolutionSeries costed = original;
    costed.SetCost(9.0);
    ZELKinSolutionSeries inserted = original;
    inserted.InsertBeside(Command(1), Command(60), false);

    EXPECT_TRUE(Holds(original, {0, 1, 2}));
    EXPECT_TRUE(ZELTest::SameDouble(1.0, original.GetCost(), ZELTest::kExact));
    EXPECT_EQ(original.GetId(), id);
    EXPECT_TRUE(Holds(appended, {0, 1, 2, 50}));
    EXPECT_TRUE(ZELTest::SameDouble(9.0, costed.GetCost(), ZELTest::kExact));
    EXPECT_EQ(inserted.GetCount(), 4);
}

TEST_F(ZELKinSolutionSeriesTest, ModifyingTheOriginalLeavesACopy)
{
    ZELKinSolutionSeries original;
    AppendNumbered(original, 0, 2);
    const ZELKinSolutionSeries copy = original;
    original.Append(Command(9), Solution(9));
    original.SetCost(3.0);
    original.RenewId();
    EXPECT_TRUE(Holds(copy, {0, 1}));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, copy.GetCost(), ZELTest::kExact));
    EXPECT_NE(copy.GetId(), original.GetId());
}

namespace {

struct InsertCase
{
    const char* name;
    int existing; // number of the entry to insert beside
    bool after;
    std::vector<int> expected;
};
ZELTEST_PRINT_CASE_BY_NAME(InsertCase);

class ZELKinSolutionSeriesInsertBeside : public ZELKinSolutionSeriesTest, public ::testing::WithParamInterface<InsertCase>
{
};

} // namespace

TEST_P(ZELKinSolutionSeriesInsertBeside, InsertsTheCommandWithACopyOfItsNeighboursSolution)
{
    ZELKinSolutionSeries series;
    AppendNumbered(series, 0, 3);
    series.InsertBeside(Command(GetParam().existing), Command(100), GetParam().after);
    QList<ZELKinCommand*> commands;
    for (int number : GetParam().expected)
        commands.append(Command(number));
    EXPECT_EQ(series.GetCommands(), commands);
    for (int index = 0; index < series.GetCount(); ++index) {
        const int number = GetParam().expected[std::size_t(index)];
        const int solutionOf = number == 100 ? GetParam().existing : number;
        EXPECT_TRUE(series.GetSolution(index) == Solution(solutionOf)) << index;
    }
}

INSTANTIATE_TEST_SUITE_P(Positions, ZELKinSolutionSeriesInsertBeside,
                         ::testing::Values(InsertCase{"BeforeTheFirst", 0, false, {100, 0, 1, 2}},
                                           InsertCase{"AfterTheFirst", 0, true, {0, 100, 1, 2}},
                                           InsertCase{"BeforeAMiddleOne", 1, false, {0, 100, 1, 2}},
                                           InsertCase{"AfterAMiddleOne", 1, true, {0, 1, 100, 2}},
                                           InsertCase{"BeforeTheLast", 2, false, {0, 1, 100, 2}},
                                           InsertCase{"AfterTheLast", 2, true, {0, 1, 2, 100}}),
                         [](const ::testing::TestParamInfo<InsertCase>& info) { return std::string(info.param.name); });

TEST_F(ZELKinSolutionSeriesTest, InsertBesideACommandThatOccursTwiceUsesTheFirst)
{
    ZELKinSolutionSeries series;
    series.Append(Command(1), Solution(1));
    series.Append(Command(2), Solution(2));
    series.Append(Command(1), Solution(3));
    series.InsertBeside(Command(1), Command(9), true);
    EXPECT_EQ(series.GetCommands(), QList<ZELKinCommand*>({Command(1), Command(9), Command(2), Command(1)}));
    EXPECT_TRUE(series.GetSolution(1) == Solution(1));
}

TEST_F(ZELKinSolutionSeriesTest, InsertBesideAnAbsentCommandThrowsAndLeavesTheSeries)
{
    ZELKinSolutionSeries series;
    AppendNumbered(series, 0, 3);
    series.SetCost(2.0);
    EXPECT_THROW_MESSAGE(series.InsertBeside(Command(42), Command(43), true), ZELSysOutOfBoundsException,
                         "value -1 is out of bounds [0, 2]");
    EXPECT_TRUE(Holds(series, {0, 1, 2}));
    EXPECT_TRUE(ZELTest::SameDouble(2.0, series.GetCost(), ZELTest::kExact));
}

TEST_F(ZELKinSolutionSeriesTest, InsertBesideInAnEmptySeriesThrows)
{
    ZELKinSolutionSeries series;
    EXPECT_THROW_MESSAGE(series.InsertBeside(Command(1), Command(2), false), ZELSysOutOfBoundsException,
                         "value -1 is out of bounds [0, -1]");
    EXPECT_TRUE(series.IsEmpty());
}

TEST_F(ZELKinSolutionSeriesTest, InsertBesideKeepsIdAndCost)
{
    ZELKinSolutionSeries series;
    AppendNumbered(series, 0, 2);
    series.SetCost(5.0);
    const quint32 id = series.GetId();
    series.InsertBeside(Command(1), Command(7), false);
    EXPECT_EQ(series.GetId(), id);
    EXPECT_TRUE(ZELTest::SameDouble(5.0, series.GetCost(), ZELTest::kExact));
}

TEST_F(ZELKinSolutionSeriesTest, InsertBesideInALongSeriesKeepsEveryEntryAndItsCopies)
{
    ZELKinSolutionSeries series;
    AppendNumbered(series, 0, 9000);
    const ZELKinSolutionSeries before = series;
    series.InsertBeside(Command(4100), Command(60000), true);
    series.Append(Command(9000), Solution(9000));

    EXPECT_TRUE(Holds(before, Range(0, 9000)));
    ASSERT_EQ(series.GetCount(), 9002);
    EXPECT_EQ(series.GetCommand(4101), Command(60000));
    EXPECT_TRUE(series.GetSolution(4101) == Solution(4100));
    const std::vector<int> others = Joined(Range(0, 4101), Range(4101, 9000 - 4101 + 1));
    for (int index = 0; index < series.GetCount(); ++index) {
        if (index == 4101)
            continue;
        const int number = others[std::size_t(index < 4101 ? index : index - 1)];
        ASSERT_EQ(series.GetCommand(index), Command(number)) << index;
        ASSERT_TRUE(series.GetSolution(index) == Solution(number)) << index;
    }
}

// Sharing of history -------------------------------------------------------

namespace {

struct ForkCase
{
    const char* name;
    int shared; // entries before the copies part ways
};
ZELTEST_PRINT_CASE_BY_NAME(ForkCase);

class ZELKinSolutionSeriesFork : public ZELKinSolutionSeriesTest, public ::testing::WithParamInterface<ForkCase>
{
};

} // namespace

TEST_P(ZELKinSolutionSeriesFork, CopiesExtendedDifferentlyEachReadTheirOwnEntries)
{
    const int shared = GetParam().shared;
    ZELKinSolutionSeries base;
    AppendNumbered(base, 0, shared);
    ZELKinSolutionSeries first = base;
    ZELKinSolutionSeries second = base;
    AppendNumbered(first, 10000, 70);
    AppendNumbered(second, 20000, 4200);
    ZELKinSolutionSeries third = base;
    AppendNumbered(third, 30000, 1);
    AppendNumbered(base, 40000, 2);

    EXPECT_TRUE(Holds(first, Joined(Range(0, shared), Range(10000, 70))));
    EXPECT_TRUE(Holds(second, Joined(Range(0, shared), Range(20000, 4200))));
    EXPECT_TRUE(Holds(third, Joined(Range(0, shared), Range(30000, 1))));
    EXPECT_TRUE(Holds(base, Joined(Range(0, shared), Range(40000, 2))));
}

// Lengths around the chunk (64 entries), page (4096 entries) and book
// (262 144 entries) boundaries.
INSTANTIATE_TEST_SUITE_P(SharedLengths, ZELKinSolutionSeriesFork,
                         ::testing::Values(ForkCase{"Empty", 0}, ForkCase{"One", 1}, ForkCase{"ChunkLessOne", 63},
                                           ForkCase{"Chunk", 64}, ForkCase{"ChunkAndOne", 65},
                                           ForkCase{"PageLessOne", 4095}, ForkCase{"Page", 4096},
                                           ForkCase{"PageAndOne", 4097}, ForkCase{"TwoPagesAndAHalfChunk", 8224},
                                           ForkCase{"BookLessOne", 262143}, ForkCase{"Book", 262144},
                                           ForkCase{"BookAndOne", 262145},
                                           ForkCase{"TwoBooksAPageAndAHalfChunk", 528416}),
                         [](const ::testing::TestParamInfo<ForkCase>& info) { return std::string(info.param.name); });

TEST_F(ZELKinSolutionSeriesTest, EveryCopyInAChainOfCopiesKeepsItsLength)
{
    // Each step appends to a fresh copy of the series before, as path
    // solving does; every earlier copy must still read its own entries.
    std::vector<ZELKinSolutionSeries> chain{ZELKinSolutionSeries()};
    for (int number = 0; number < 9000; ++number) {
        ZELKinSolutionSeries next = chain.back();
        next.Append(Command(number), Solution(number));
        chain.push_back(next);
    }
    for (std::size_t length : {std::size_t(0), std::size_t(1), std::size_t(64), std::size_t(4097), std::size_t(9000)})
        EXPECT_TRUE(Holds(chain[length], Range(0, int(length)))) << length;
}

TEST_F(ZELKinSolutionSeriesTest, RandomTreeOfCopiesReadsBackEveryBranch)
{
    // Copies of random members of the family, each extended by a random
    // number of entries, with their expected contents alongside.
    std::mt19937 random(20240611);
    std::vector<ZELKinSolutionSeries> family{ZELKinSolutionSeries()};
    std::vector<std::vector<int>> expected{{}};
    int next = 0;
    for (int step = 0; step < 400; ++step) {
        const std::size_t parent = std::uniform_int_distribution<std::size_t>(0, family.size() - 1)(random);
        const int extra = std::uniform_int_distribution<int>(0, 150)(random);
        ZELKinSolutionSeries child = family[parent];
        std::vector<int> numbers = expected[parent];
        for (int i = 0; i < extra && next < 60000; ++i, ++next) {
            child.Append(Command(next), Solution(next));
            numbers.push_back(next);
        }
        family.push_back(child);
        expected.push_back(numbers);
    }
    for (std::size_t member = 0; member < family.size(); ++member)
        ASSERT_TRUE(Holds(family[member], expected[member])) << "member " << member;
}

TEST_F(ZELKinSolutionSeriesTest, ReleasingAVeryLongSharedSeriesDoesNotRecurse)
{
    // A node-per-entry history would be freed one nested call per entry and
    // overflow the stack here.
    constexpr int kEntries = 1 << 20;
    auto series = std::make_unique<ZELKinSolutionSeries>();
    for (int number = 0; number < kEntries; ++number) {
        ZELKinSolutionSeries next = *series;
        next.Append(Command(number % 1000), Solution(number));
        *series = next;
    }
    ASSERT_EQ(series->GetCount(), kEntries);
    EXPECT_TRUE(series->GetSolution(kEntries - 1) == Solution(kEntries - 1));
    EXPECT_EQ(series->GetCommand(kEntries - 1), Command((kEntries - 1) % 1000));
    series.reset();
}

TEST_F(ZELKinSolutionSeriesTest, CopiesAreReadAndExtendedFromSeveralThreads)
{
    ZELKinSolutionSeries base;
    AppendNumbered(base, 0, 100);
    constexpr int kThreads = 4;
    constexpr int kAppends = 3000;
    std::vector<ZELKinSolutionSeries> results(kThreads);
    std::vector<int> baseMismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        // Every thread starts from a copy of the same series and extends it
        // with its own numbers, so all race for the store's next slots.
        threads.emplace_back([&, t, copy = base] {
            ZELKinSolutionSeries series = copy;
            for (int i = 0; i < kAppends; ++i) {
                ZELKinSolutionSeries next = series;
                next.Append(Command(1000 + t * kAppends + i), Solution(1000 + t * kAppends + i));
                series = next;
                const int index = i % 100;
                if (copy.GetCommand(index) != Command(index) || !(copy.GetSolution(index) == Solution(index)))
                    ++baseMismatches[t];
            }
            results[t] = series;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(Holds(base, Range(0, 100)));
    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(baseMismatches[t], 0) << "thread " << t;
        EXPECT_TRUE(Holds(results[t], Joined(Range(0, 100), Range(1000 + t * kAppends, kAppends))))
            << "thread " << t;
    }
}

namespace {

// The numbers of the entries that TakeEntries hands on, in the order given.
std::vector<int> TakeNumbers(ZELKinSolutionSeries& series, ZELKinVariable* x)
{
    std::vector<int> numbers;
    series.TakeEntries([&numbers, x](ZELKinCommand* command, const ZELKinSolution& solution) {
        const int number = int(solution.GetVariableValue(x));
        numbers.push_back(command == Command(number) ? number : -1);
    });
    return numbers;
}

class ZELKinSolutionSeriesTake : public ZELKinSolutionSeriesTest, public ::testing::WithParamInterface<ForkCase>
{
};

} // namespace

TEST_P(ZELKinSolutionSeriesTake, HandsOnEveryEntryInOrderAndLeavesTheSeriesEmptyWithItsIdAndCost)
{
    const int length = GetParam().shared;
    ZELKinSolutionSeries series;
    AppendNumbered(series, 0, length);
    series.SetCost(12.5);
    const quint32 id = series.GetId();
    EXPECT_EQ(TakeNumbers(series, x), Range(0, length));
    EXPECT_TRUE(Holds(series, {}));
    EXPECT_EQ(series.GetId(), id);
    EXPECT_TRUE(ZELTest::SameDouble(12.5, series.GetCost(), ZELTest::kExact));
    // An emptied series is a series like any other.
    AppendNumbered(series, 7, 2);
    EXPECT_TRUE(Holds(series, {7, 8}));
}

TEST_P(ZELKinSolutionSeriesTake, TakingASeriesLeavesEveryCopyThatSharesItsEntriesWhole)
{
    const int length = GetParam().shared;
    ZELKinSolutionSeries base;
    AppendNumbered(base, 0, length);
    ZELKinSolutionSeries whole = base;
    ZELKinSolutionSeries longer = base;
    AppendNumbered(longer, 10000, 4200);
    AppendNumbered(base, 20000, 3);
    ZELKinSolutionSeries taken = base;

    EXPECT_EQ(TakeNumbers(taken, x), Joined(Range(0, length), Range(20000, 3)));
    EXPECT_TRUE(Holds(base, Joined(Range(0, length), Range(20000, 3))));
    EXPECT_TRUE(Holds(whole, Range(0, length)));
    EXPECT_TRUE(Holds(longer, Joined(Range(0, length), Range(10000, 4200))));

    // Taking the original while copies live leaves the copies too.
    EXPECT_EQ(TakeNumbers(base, x), Joined(Range(0, length), Range(20000, 3)));
    EXPECT_TRUE(Holds(whole, Range(0, length)));
    EXPECT_EQ(TakeNumbers(longer, x), Joined(Range(0, length), Range(10000, 4200)));
    EXPECT_TRUE(Holds(whole, Range(0, length)));
}

INSTANTIATE_TEST_SUITE_P(Lengths, ZELKinSolutionSeriesTake,
                         ::testing::Values(ForkCase{"Empty", 0}, ForkCase{"One", 1}, ForkCase{"PageLessOne", 4095},
                                           ForkCase{"Page", 4096}, ForkCase{"PageAndOne", 4097},
                                           ForkCase{"BookAndOne", 262145}),
                         [](const ::testing::TestParamInfo<ForkCase>& info) { return std::string(info.param.name); });
