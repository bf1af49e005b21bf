// The run time of posted NC, on plies built line by line for a machine with
// round limits; every expected time is worked out by hand from the model
// (docs/run-time.md) in the comment beside it.

#include <zelkinruntimeestimator.h>

#include <zelkinncreplay.h>
#include <zelkintestaccess.h>
#include <zeltestsupport.h>

#include <cmath>
#include <limits>

namespace {

// Hand-worked times are exact to about this in seconds.
constexpr double kHandWorked = 1e-9;
constexpr double kNoLimit = std::numeric_limits<double>::quiet_NaN();

// Feeds in mm/min: 50 mm/s, 25 mm/s and 200 mm/s.
constexpr double kFeed = 3000.0;
constexpr double kHalfFeed = 1500.0;
constexpr double kFastFeed = 12000.0;

// The machine's axes in its order.
enum Axis { X, Y, Z, A, U, kAxisCount };

/*
    X, Y and Z at 100 mm/s and 1000 mm/s^2 at the most; A at 1 rad/s and
    10 rad/s^2; U, the material axis, with no limits at all.
*/
class LimitedMachine
{
public:
    LimitedMachine()
        : machine(ZELKinTestAccess::CreateMachine(&container))
    {
        for (const char* label : {"X", "Y", "Z"})
            ZELKinTestAccess::CreateVariable(machine, QString::fromLatin1(label), ZELKinVariable::Linear, -1e4, 1e4,
                                             100.0, 1000.0);
        ZELKinTestAccess::CreateVariable(machine, QStringLiteral("A"), ZELKinVariable::Rotary, -100.0, 100.0, 1.0,
                                         10.0);
        ZELKinTestAccess::CreateVariable(machine, QStringLiteral("U"), ZELKinVariable::Linear, kNoLimit, kNoLimit,
                                         kNoLimit, kNoLimit);
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
};

QVector<double> At(double x, double y = 0.0, double z = 0.0, double a = 0.0, double u = 0.0)
{
    return {x, y, z, a, u};
}

// Motion lines as ZELKinNCReplay reads them: each starts where the one
// before ended, with any preset since applied.
class PlyLines
{
public:
    explicit PlyLines(const QVector<double>& start)
        : m_position(start)
    {
        m_ply.plyNumber = QStringLiteral("0101");
        m_ply.procedure = QStringLiteral("Ply 1 0");
    }

    PlyLines& Feed(const QVector<double>& to, double feedrate = kFeed) { return Move(to, feedrate, false); }
    //! A rapid carries the modal feed; it does not run at it.
    PlyLines& Rapid(const QVector<double>& to) { return Move(to, kFeed, true); }
    //! G92: from here on the axis holds `value` where the head stands.
    PlyLines& Preset(Axis axis, double value)
    {
        m_position[axis] = value;
        return *this;
    }
    //! The lines after this belong to `course`, as after its course record.
    PlyLines& Course(int course)
    {
        m_course = course;
        return *this;
    }

    const ZELKinNCPlyFile& Ply() const { return m_ply; }

private:
    PlyLines& Move(const QVector<double>& to, double feedrate, bool rapid)
    {
        ZELKinNCMotion motion;
        motion.line = unsigned(m_ply.motions.size() + 1);
        motion.course = m_course;
        motion.rapid = rapid;
        motion.values = to;
        motion.starts = m_position;
        motion.written = QVector<bool>(kAxisCount, true);
        motion.feedrate = feedrate;
        m_ply.motions.append(motion);
        m_position = to;
        return *this;
    }

    ZELKinNCPlyFile m_ply;
    QVector<double> m_position;
    int m_course = 1;
};

ZELKinPlyRunTime Estimate(const PlyLines& lines)
{
    const LimitedMachine limited;
    return ZELKinRunTimeEstimator(*limited.machine).Estimate(lines.Ply());
}

// A ply of one line from the origin to `to`: a rapid, or a feed line at `feedrate`.
ZELKinPlyRunTime EstimateOneLine(const QVector<double>& to, double feedrate, bool rapid)
{
    PlyLines lines(At(0.0));
    if (rapid)
        lines.Rapid(to);
    else
        lines.Feed(to, feedrate);
    return Estimate(lines);
}

// One line from rest to rest.
struct LineCase
{
    const char* name;
    QVector<double> to;
    double feedrate;
    bool rapid;
    double seconds;
};

ZELTEST_PRINT_CASE_BY_NAME(LineCase);

class ZELKinRunTimeEstimatorLine : public ::testing::TestWithParam<LineCase>
{
};

TEST_P(ZELKinRunTimeEstimatorLine, RunsFromRestToRestAtItsSpeedAndAcceleration)
{
    const LineCase& c = GetParam();
    const ZELKinPlyRunTime runTime = EstimateOneLine(c.to, c.feedrate, c.rapid);
    EXPECT_TRUE(ZELTest::SameDouble(c.seconds, runTime.seconds, kHandWorked));
    EXPECT_EQ(runTime.motionLines, 1);
    EXPECT_TRUE(runTime.IsComplete());
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ZELKinRunTimeEstimatorLine,
    ::testing::Values(
        // 100 mm at 50 mm/s, 1000 mm/s^2: 50 / 1000 = 0.05 s and 50^2 / 2000 =
        // 1.25 mm to speed up, the same to brake, 97.5 mm / 50 = 1.95 s between:
        // 0.05 + 1.95 + 0.05.
        LineCase{"ATrapezoidAtItsFeed", At(100.0), kFeed, false, 2.05},
        // 1 mm is too short to reach 50 mm/s (2.5 mm): the peak is sqrt(1000 x 1),
        // reached and lost in 2 sqrt(1 / 1000) s.
        LineCase{"ATriangleOnALineTooShortForItsFeed", At(1.0), kFeed, false, 0.0632455532034},
        // 200 mm/s asked, X runs 100 at the most: 0.1 s and 5 mm each way,
        // 90 mm / 100 = 0.9 s between.
        LineCase{"AFeedAboveTheAxisSpeedAtTheAxisSpeed", At(100.0), kFastFeed, false, 1.1},
        // The centre runs the hypotenuse, 50 mm; Y takes 0.8 of it, so 1250 mm/s^2:
        // 50 / 1250 = 0.04 s and 1 mm each way, 48 mm / 50 = 0.96 s between.
        LineCase{"ADiagonalAlongTheCentresPath", At(30.0, 40.0), kFeed, false, 1.04},
        // A turns 0.04 rad a mm: at 50 mm/s it would turn 2 rad/s against its 1,
        // so 25 mm/s, and 10 / 0.04 = 250 mm/s^2: 0.1 s and 1.25 mm each way,
        // 97.5 mm / 25 = 3.9 s between.
        LineCase{"ARotaryAxisTooSlowForTheFeedLowersIt", At(100.0, 0.0, 0.0, 4.0), kFeed, false, 4.1},
        // U has no limits: 10 mm of material a mm slows nothing.
        LineCase{"AnAxisWithoutLimitsLeavesTheFeed", At(100.0, 0.0, 0.0, 0.0, 1000.0), kFeed, false, 2.05},
        // As fast as the slowest axis: X's 100 mm at 100 mm/s, 1000 mm/s^2 (Y's
        // 50 mm would take half as long): 0.1 s and 5 mm each way, 90 mm / 100 =
        // 0.9 s between. The modal feed does not count.
        LineCase{"ARapidAtItsSlowestAxis", At(100.0, 50.0), kFeed, true, 1.1},
        LineCase{"ARapidNotSlowedByAnAxisWithoutLimits", At(100.0, 0.0, 0.0, 0.0, 1000.0), kFeed, true, 1.1},
        // The centre stays put, so the feed says nothing: A turns 2 rad at 1 rad/s,
        // 10 rad/s^2: 0.1 s and 0.05 rad each way, 1.9 rad / 1 = 1.9 s between.
        LineCase{"ATurnInPlaceAtItsAxisSpeed", At(0.0, 0.0, 0.0, 2.0), kFeed, false, 2.1}),
    [](const ::testing::TestParamInfo<LineCase>& info) { return info.param.name; });

// Lines after each other, the first from rest and the last to rest.
struct JunctionCase
{
    const char* name;
    PlyLines lines;
    double seconds;
};

ZELTEST_PRINT_CASE_BY_NAME(JunctionCase);

class ZELKinRunTimeEstimatorJunction : public ::testing::TestWithParam<JunctionCase>
{
};

TEST_P(ZELKinRunTimeEstimatorJunction, BlendsWhereNoAxisJumpsAndStopsWhereTheControllerMust)
{
    const JunctionCase& c = GetParam();
    const ZELKinPlyRunTime runTime = Estimate(c.lines);
    EXPECT_TRUE(ZELTest::SameDouble(c.seconds, runTime.seconds, kHandWorked));
    EXPECT_EQ(runTime.motionLines, c.lines.Ply().motions.size());
    EXPECT_TRUE(runTime.IsComplete());
}

INSTANTIATE_TEST_SUITE_P(
    Junctions, ZELKinRunTimeEstimatorJunction,
    ::testing::Values(
        // No axis changes speed between the lines: one 20 mm move at 50 mm/s,
        // 0.05 s and 1.25 mm each way, 17.5 mm / 50 = 0.35 s between.
        JunctionCase{"StraightOnBlendsIntoOneMove", PlyLines(At(0.0)).Feed(At(10.0)).Feed(At(20.0)), 0.45},
        // Each 10 mm line from rest to rest: 0.05 + 7.5 / 50 + 0.05 = 0.25 s.
        JunctionCase{
            "StraightOnAcrossAPresetStops",
            PlyLines(At(0.0)).Feed(At(10.0, 0.0, 0.0, 0.0, 10.0)).Preset(U, 0.0).Feed(At(20.0, 0.0, 0.0, 0.0, 10.0)),
            0.5},
        // X's speed turns from +v to -v: a jump of 2v, at most 1000 x 0.004 =
        // 4 mm/s, so v = 2 mm/s. Each line: 0.05 s up to 50 mm/s, 0.048 s down
        // to 2 mm/s; 1.25 and (2500 - 4) / 2000 = 1.248 mm of ramps, 7.502 mm /
        // 50 = 0.15004 s between: 0.24804 s.
        JunctionCase{"AReversalSlowsToTheJumpOneCycleAllows", PlyLines(At(0.0)).Feed(At(10.0)).Feed(At(0.0)), 0.49608},
        // X stops and Y starts: each jumps by v <= 4 mm/s. Each line: 0.05 +
        // 0.046 s of ramps over 1.25 + 1.242 mm, 7.508 mm / 50 = 0.15016 s between:
        // 0.24616 s.
        JunctionCase{"ASquareCornerSlowsToTheJumpOneCycleAllows", PlyLines(At(0.0)).Feed(At(10.0)).Feed(At(10.0, 10.0)),
                     0.49232},
        // The feed halves to 25 mm/s at the junction. First line: 0.05 s up,
        // 0.025 s down to 25, ramps of 1.25 + 0.9375 mm, 7.8125 mm / 50 =
        // 0.15625 s between: 0.23125 s. Second: 0.025 s down from 25 over
        // 0.3125 mm, 9.6875 mm / 25 = 0.3875 s: 0.4125 s.
        JunctionCase{"AFeedChangeIsReachedByTheJunction", PlyLines(At(0.0)).Feed(At(10.0)).Feed(At(20.0), kHalfFeed),
                     0.64375},
        // Three 1 mm lines straight on run as one 3 mm move, which reaches
        // 50 mm/s: 0.05 s and 1.25 mm each way, 0.5 mm / 50 = 0.01 s between.
        JunctionCase{"ShortLinesReachTheSpeedTheirSumAllows",
                     PlyLines(At(0.0)).Feed(At(1.0)).Feed(At(2.0)).Feed(At(3.0)), 0.11},
        // A line that moves nothing neither takes time nor stops the head.
        JunctionCase{"ALineThatMovesNothingIsPassedThrough",
                     PlyLines(At(0.0)).Feed(At(10.0)).Feed(At(10.0)).Feed(At(20.0)), 0.45},
        // Rest before and after the rapid: 0.25 s each feed line; the rapid's
        // 10 mm at 1000 mm/s^2 just reach 100 mm/s at its middle: 2 x 0.1 s.
        JunctionCase{"ARapidBetweenFeedLinesStopsBeforeAndAfterIt",
                     PlyLines(At(0.0)).Feed(At(10.0)).Rapid(At(20.0)).Feed(At(30.0)), 0.7},
        // Rest around the turn in place (2.1 s, as on its own) and 0.25 s each
        // feed line.
        JunctionCase{"ATurnInPlaceBetweenFeedLinesStopsBeforeAndAfterIt",
                     PlyLines(At(0.0)).Feed(At(10.0)).Feed(At(10.0, 0.0, 0.0, 2.0)).Feed(At(20.0, 0.0, 0.0, 2.0)),
                     2.6}),
    [](const ::testing::TestParamInfo<JunctionCase>& info) { return info.param.name; });

// One line from which no speed follows.
struct UntimedCase
{
    const char* name;
    QVector<double> to;
    double feedrate;
    bool rapid;
};

ZELTEST_PRINT_CASE_BY_NAME(UntimedCase);

class ZELKinRunTimeEstimatorUntimed : public ::testing::TestWithParam<UntimedCase>
{
};

TEST_P(ZELKinRunTimeEstimatorUntimed, IsCountedAndLeftOutOfTheTime)
{
    const UntimedCase& c = GetParam();
    const ZELKinPlyRunTime runTime = EstimateOneLine(c.to, c.feedrate, c.rapid);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, runTime.seconds, kHandWorked));
    EXPECT_EQ(runTime.motionLines, 1);
    EXPECT_EQ(runTime.untimedLines, 1);
    EXPECT_FALSE(runTime.IsComplete());
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ZELKinRunTimeEstimatorUntimed,
    ::testing::Values(UntimedCase{"AFeedLineWithoutAFeed", At(10.0), kNoLimit, false},
                      UntimedCase{"AFeedLineAtAFeedOfZero", At(10.0), 0.0, false},
                      UntimedCase{"ARapidOfAnAxisWithoutLimits", At(0.0, 0.0, 0.0, 0.0, 100.0), kFeed, true},
                      UntimedCase{"ATurnInPlaceOfAnAxisWithoutLimits", At(0.0, 0.0, 0.0, 0.0, 100.0), kFeed, false}),
    [](const ::testing::TestParamInfo<UntimedCase>& info) { return info.param.name; });

} // namespace

TEST(ZELKinRunTimeEstimator, TheLinesAroundALineWithoutATimeStopAtItAndKeepTheirTimes)
{
    // Each timed line from rest to rest: 0.05 + 7.5 / 50 + 0.05 = 0.25 s.
    const ZELKinPlyRunTime runTime = Estimate(PlyLines(At(0.0)).Feed(At(10.0)).Feed(At(20.0), kNoLimit).Feed(At(30.0)));
    EXPECT_TRUE(ZELTest::SameDouble(0.5, runTime.seconds, kHandWorked));
    EXPECT_EQ(runTime.motionLines, 3);
    EXPECT_EQ(runTime.untimedLines, 1);
    ASSERT_EQ(runTime.courses.size(), 1);
    EXPECT_EQ(runTime.courses.at(0).untimedLines, 1);
    EXPECT_FALSE(runTime.courses.at(0).IsComplete());
}

TEST(ZELKinRunTimeEstimator, EachCourseGetsItsLinesTimesAndThePlyTheirSum)
{
    // The ply's first line comes from where the head stood before the ply,
    // which is not known: no time. Course 1's line runs on its own, from
    // rest to the preset: 0.25 s. Course 2's two lines blend into one 20 mm
    // move, 0.05 s and 1.25 mm to speed up in the first line, 8.75 mm / 50 =
    // 0.175 s at speed: 0.225 s each.
    const QVector<double> unknown(kAxisCount, kNoLimit);
    PlyLines lines(unknown);
    lines.Course(0).Feed(At(0.0));
    lines.Course(1).Feed(At(10.0, 0.0, 0.0, 0.0, 10.0)).Preset(U, 0.0);
    lines.Course(2).Feed(At(20.0, 0.0, 0.0, 0.0, 10.0)).Feed(At(30.0, 0.0, 0.0, 0.0, 20.0));
    const ZELKinPlyRunTime runTime = Estimate(lines);

    EXPECT_EQ(runTime.plyNumber, QStringLiteral("0101"));
    EXPECT_EQ(runTime.procedure, QStringLiteral("Ply 1 0"));
    ASSERT_EQ(runTime.courses.size(), 3);
    const QList<int> numbers{0, 1, 2};
    const QList<int> motionLines{1, 1, 2};
    const QList<double> seconds{0.0, 0.25, 0.45};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(runTime.courses.at(i).course, numbers.at(i));
        EXPECT_EQ(runTime.courses.at(i).motionLines, motionLines.at(i)) << "course " << i;
        EXPECT_TRUE(ZELTest::SameDouble(seconds.at(i), runTime.courses.at(i).seconds, kHandWorked)) << "course " << i;
        EXPECT_TRUE(runTime.courses.at(i).IsComplete());
    }
    EXPECT_TRUE(ZELTest::SameDouble(0.7, runTime.seconds, kHandWorked));
    EXPECT_EQ(runTime.motionLines, 4);
    EXPECT_TRUE(runTime.IsComplete());
}

TEST(ZELKinRunTimeEstimator, ACourseThatBlendsIntoTheNextEndsWhereItsLastLineEnds)
{
    // One 20 mm move at 50 mm/s over two courses: the first line speeds up
    // (0.05 s over 1.25 mm) and runs 8.75 mm / 50 = 0.175 s; the second
    // mirrors it.
    const ZELKinPlyRunTime runTime = Estimate(PlyLines(At(0.0)).Feed(At(10.0)).Course(2).Feed(At(20.0)));
    ASSERT_EQ(runTime.courses.size(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(0.225, runTime.courses.at(0).seconds, kHandWorked));
    EXPECT_TRUE(ZELTest::SameDouble(0.225, runTime.courses.at(1).seconds, kHandWorked));
}

TEST(ZELKinRunTimeEstimator, APlyWithoutMotionLinesTakesNoTime)
{
    const LimitedMachine limited;
    const ZELKinPlyRunTime runTime = ZELKinRunTimeEstimator(*limited.machine).Estimate(ZELKinNCPlyFile());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, runTime.seconds, kHandWorked));
    EXPECT_EQ(runTime.motionLines, 0);
    EXPECT_TRUE(runTime.courses.isEmpty());
    EXPECT_TRUE(runTime.IsComplete());
}
