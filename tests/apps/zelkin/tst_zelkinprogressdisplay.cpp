#include "zelkinprogressdisplay.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

ZELSysProgress::Step StepOf(const QString& phase, const QString& unit, qint64 done, qint64 total,
                            const QString& item = QString())
{
    ZELSysProgress::Step step;
    step.phase = phase;
    step.unit = unit;
    step.item = item;
    step.done = done;
    step.total = total;
    return step;
}

struct StatusCase
{
    const char* name;
    ZELSysProgress::Step step;
    double seconds;
    QString expected;
};

void PrintTo(const StatusCase& testCase, std::ostream* os)
{
    *os << testCase.name;
}

class ZELKinProgressDisplayStatus : public ::testing::TestWithParam<StatusCase>
{
};

class ZELKinProgressDisplayEnd : public ::testing::TestWithParam<StatusCase>
{
};

const QString kSolving = QStringLiteral("Solving kinematics");
const QString kPositions = QStringLiteral("positions");

} // namespace

TEST_P(ZELKinProgressDisplayStatus, SaysWhereTheWorkStands)
{
    EXPECT_EQ(ZELKinProgressDisplay::DescribeStatus(GetParam().step, GetParam().seconds), GetParam().expected);
}

// Rates are the count over the seconds, time left what remains at that rate.
INSTANTIATE_TEST_SUITE_P(
    Stretches, ZELKinProgressDisplayStatus,
    ::testing::Values(
        // 456 000 / 1 013 413 is 44.99 %; 456 000 in 0.5 s is 912 000 a second,
        // and the 557 413 left take 0.61 s at that rate.
        StatusCase{"PercentCountRateAndTimeLeft",
                   StepOf(kSolving, kPositions, 456000, 1013413, QStringLiteral("Ply 3")), 0.5,
                   QStringLiteral("Solving kinematics (Ply 3): 44% (456 000 of 1 013 413 positions), 912 000 "
                                  "positions/s, 0.6 s left")},
        StatusCase{"WithoutAnItemNoParentheses", StepOf(kSolving, kPositions, 500, 1000), 1.0,
                   QStringLiteral("Solving kinematics: 50% (500 of 1 000 positions), 500 positions/s, 1.0 s left")},
        StatusCase{"TooEarlyForARate", StepOf(QStringLiteral("Writing the NC"), kPositions, 0, 10), 0.1,
                   QStringLiteral("Writing the NC: 0% (0 of 10 positions)")},
        StatusCase{"AllDoneLeavesNothing", StepOf(kSolving, kPositions, 10, 10), 2.0,
                   QStringLiteral("Solving kinematics: 100% (10 of 10 positions), 5 positions/s")},
        // The 999 000 left at 1 000 a second take 999 s: 16 min 39 s.
        StatusCase{"ALongWayToGo", StepOf(kSolving, kPositions, 1000, 1000000), 1.0,
                   QStringLiteral("Solving kinematics: 0% (1 000 of 1 000 000 positions), 1 000 positions/s, "
                                  "16:39 left")},
        // The 360 000 left at 10 a second take 36 000 s: ten hours.
        StatusCase{"HoursLeft", StepOf(kSolving, kPositions, 10, 360010), 1.0,
                   QStringLiteral("Solving kinematics: 0% (10 of 360 010 positions), 10 positions/s, 10:00:00 left")},
        StatusCase{"ACountWithoutATotal", StepOf(QStringLiteral("Replaying the NC"), QStringLiteral("lines"), 16384, 0),
                   2.0, QStringLiteral("Replaying the NC: 16 384 lines, 8 192 lines/s")},
        StatusCase{"NothingCountedShowsTheTimeSpent", StepOf(QStringLiteral("Reading the toolpath"), QString(), 0, 0),
                   2.34, QStringLiteral("Reading the toolpath: 2.3 s")},
        StatusCase{"AnItemThatLooksLikeAPlaceholderStaysAsItIs",
                   StepOf(kSolving, kPositions, 1, 2, QStringLiteral("%1 %2")), 0.1,
                   QStringLiteral("Solving kinematics (%1 %2): 50% (1 of 2 positions)")}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_P(ZELKinProgressDisplayEnd, SaysWhatTheStretchDid)
{
    EXPECT_EQ(ZELKinProgressDisplay::DescribeEnd(GetParam().step, GetParam().seconds), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Stretches, ZELKinProgressDisplayEnd,
    ::testing::Values(
        // 1 013 413 / 1.2 s = 844 510.8 a second.
        StatusCase{"CountTimeAndRate", StepOf(kSolving, kPositions, 1013413, 1013413), 1.2,
                   QStringLiteral("Solving kinematics: 1 013 413 positions in 1.2 s (844 511 positions/s)")},
        StatusCase{"TooShortForARate", StepOf(kSolving, kPositions, 16, 16), 0.01,
                   QStringLiteral("Solving kinematics: 16 positions in 0.0 s")},
        StatusCase{"NothingCountedSaysHowLongItTook", StepOf(QStringLiteral("Reading the toolpath"), QString(), 0, 0),
                   1.5, QStringLiteral("Reading the toolpath: done in 1.5 s")}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ZELKinProgressDisplay, QuietWhenAskedAndALogWhereStandardErrorIsNoTerminal)
{
    // The tests run with stderr on a pipe or a file.
    EXPECT_EQ(ZELKinProgressDisplay::ChooseMode(true), ZELKinProgressDisplay::Mode::Quiet);
    if (!::isatty(2)) {
        EXPECT_EQ(ZELKinProgressDisplay::ChooseMode(false), ZELKinProgressDisplay::Mode::Log);
    }
}
