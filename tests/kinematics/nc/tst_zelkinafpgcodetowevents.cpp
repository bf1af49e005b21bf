// The tow events of a course block (";PMAC1: G500" lines): add, cut, force
// and release events, the splitting of long pinches, and their order.

#include "zelkinnctestprograms.h"

#include <zelsysexception.h>

#include <QFileInfo>

#include <limits>

using ZELTest::NCFixture;

namespace {

/*!
    One course of ply 0101 whose positions stand every 10 mm of material
    along U (0, 10, 20, ... by default), so that the events of a command
    after position i fall at U = 10 i; the pinch distance is 12.7 mm.
*/
class ZELKinAFPGCodeTowEventsTest : public ::testing::Test
{
protected:
    ZELKinAFPGCodeTowEventsTest()
    {
        procedure = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"));
        f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 254.0}, 5080.0);
        course = f.AddCourse(procedure, 0xFFFF, 16);
        f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 254.0}, 5080.0);
    }

    //! The next position, `step` mm of material after the last one.
    void Position(double step = 10.0)
    {
        u += step;
        f.AddCoursePosition(course, ++n, {u, 0.0, 0.0, ZELTest::kNaN, ZELTest::kNaN, u}, 2540.0);
    }

    void Tow(ZELKinTowCommand::CommandType type, quint64 tows) { f.AddTowCommand(course, type, tows); }

    QStringList Events(const QString& options = QString())
    {
        if (n == 0 || !qobject_cast<ZELKinPosition*>(course->GetCommand(course->GetNumCommands() - 1)))
            Position();
        return ZELTest::LinesStartingWith(f.WriteAndRead(QStringLiteral("PART#0101.PPF"), options),
                                          QStringLiteral(";PMAC1:"));
    }

    NCFixture f;
    ZELKinRollLayupProcedure* procedure = nullptr;
    ZELKinTowCourse* course = nullptr;
    double u = -10.0;
    int n = 0;
};

const QString kStart = QStringLiteral(";PMAC1: G400U0");

QString Event(const char* text)
{
    return QStringLiteral(";PMAC1: G500U") + QString::fromLatin1(text);
}

} // namespace

TEST_F(ZELKinAFPGCodeTowEventsTest, ACourseWithoutTowCommandsHasOnlyItsStartLine)
{
    Position();
    Position();
    EXPECT_EQ(Events(), QStringList({kStart}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, AnAddBeginsAtItsPositionAndEndsAPinchDistanceLater)
{
    Position();
    Position();
    Tow(ZELKinTowCommand::Add, 0x3);
    EXPECT_EQ(Events(), QStringList({kStart, Event("10.000A/B[0003]"), Event("22.700A/E[0003]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, TheAddPinchGrowsWithTheLargestTowRate)
{
    Position();
    ZELKinTestAccess::CreateTowFeedCommand(course, {0.5, 2.5, ZELTest::kNaN});
    Tow(ZELKinTowCommand::Add, 0x1);
    Position();
    ZELKinTestAccess::CreateTowFeedCommand(course, {0.5});
    Tow(ZELKinTowCommand::Add, 0x2);
    EXPECT_EQ(Events(),
              QStringList({kStart, Event("0.000A/B[0001]"), Event("10.000A/B[0002]"), Event("22.700A/E[0002]"),
                           Event("31.750A/E[0001]")}));
}

// Line 34 of a ply file without plies: 3 head lines, 21 start-up lines,
// the message, the retract model, the material, 4 more lines, the course
// record and the "G400U0" line come before it.
TEST_F(ZELKinAFPGCodeTowEventsTest, AnEventAtAUThatIsNotFiniteFailsThePlyFile)
{
    Position();
    f.AddCoursePosition(
        course, ++n, {10.0, 0.0, 0.0, ZELTest::kNaN, ZELTest::kNaN, std::numeric_limits<double>::infinity()}, 2540.0);
    Tow(ZELKinTowCommand::Add, 0x3);
    Position();
    const QString plyFile = QDir(f.output.path()).filePath(QStringLiteral("PART/PART#0101.PPF"));
    EXPECT_THROW_MESSAGE(
        f.WriteAndRead(QStringLiteral("PART#0101.PPF")), ZELSysException,
        QStringLiteral("cannot write the NC file '%1': the U of line 34 is inf, not a finite number").arg(plyFile));
    EXPECT_FALSE(QFileInfo::exists(plyFile));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, CutForceAndReleaseGiveOneEventEach)
{
    Position();
    Tow(ZELKinTowCommand::Force, 0x10);
    Position();
    Tow(ZELKinTowCommand::Release, 0x10);
    Position();
    Tow(ZELKinTowCommand::Cut, 0x8000);
    EXPECT_EQ(Events(),
              QStringList({kStart, Event("0.000P/B[0010]"), Event("10.000P/E[0010]"), Event("20.000C/B[8000]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, EventsAreSortedByUAndAnEventWithoutTowsIsDropped)
{
    Position();
    Tow(ZELKinTowCommand::Add, 0x1);
    Position(5.0);
    Tow(ZELKinTowCommand::Cut, 0x2);
    Tow(ZELKinTowCommand::Cut, 0x0);
    EXPECT_EQ(Events(),
              QStringList({kStart, Event("0.000A/B[0001]"), Event("5.000C/B[0002]"), Event("12.700A/E[0001]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, EventsOfOneKindLessThan0001ApartMergeIntoTheFirst)
{
    Position();
    Tow(ZELKinTowCommand::Cut, 0x1);
    Tow(ZELKinTowCommand::Force, 0x1);
    Position(0.0009);
    Tow(ZELKinTowCommand::Cut, 0x2);
    Position(0.0009);
    Tow(ZELKinTowCommand::Cut, 0x4);
    Position(0.002);
    Tow(ZELKinTowCommand::Cut, 0x8);
    EXPECT_EQ(Events(),
              QStringList({kStart, Event("0.000C/B[0003]"), Event("0.000P/B[0001]"), Event("0.002C/B[0004]"),
                           Event("0.004C/B[0008]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, ATowCommandOfAnotherTypeGivesNoEvent)
{
    Position();
    Tow(ZELKinTowCommand::CommandType(7), 0x1);
    Position();
    EXPECT_EQ(Events(), QStringList({kStart}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, EventsCountUFromTheFirstPositionsValue)
{
    u = -5.0;
    Position();
    Position();
    Tow(ZELKinTowCommand::Cut, 0x1);
    Position();
    Tow(ZELKinTowCommand::Cut, 0x2);
    EXPECT_EQ(Events(), QStringList({kStart, Event("10.000C/B[0001]"), Event("20.000C/B[0002]")}));
}

// Pinch splitting: a stretch of forced tows longer than the pinch maximum
// length is released and pinched again along the way.

TEST_F(ZELKinAFPGCodeTowEventsTest, WithoutAPinchMaximumLengthAPinchIsNotSplit)
{
    Position();
    Tow(ZELKinTowCommand::Force, 0x1);
    for (int i = 0; i < 10; ++i)
        Position();
    Tow(ZELKinTowCommand::Release, 0x1);
    EXPECT_EQ(Events(QStringLiteral("pinch-release-length: 5")),
              QStringList({kStart, Event("0.000P/B[0001]"), Event("100.000P/E[0001]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, APinchNoLongerThanTheMaximumIsNotSplit)
{
    Position();
    Tow(ZELKinTowCommand::Force, 0x1);
    Position(30.0);
    Tow(ZELKinTowCommand::Release, 0x1);
    EXPECT_EQ(Events(QStringLiteral("pinch-max-length: 30; pinch-release-length: 5")),
              QStringList({kStart, Event("0.000P/B[0001]"), Event("30.000P/E[0001]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, ALongPinchIsReleasedAndPinchedAgainAlongTheWay)
{
    Position();
    Tow(ZELKinTowCommand::Force, 0x3);
    Position(100.0);
    Tow(ZELKinTowCommand::Release, 0x3);
    // L = 100 for both tows: releases at 30 and 65, pinches again at 35 and
    // 70; the next release would be at 100, where L > r no longer holds, so
    // both tows stay in the command's own release.
    EXPECT_EQ(Events(QStringLiteral("pinch-max-length: 30; pinch-release-length: 5")),
              QStringList({kStart, Event("0.000P/B[0003]"), Event("30.000P/E[0003]"), Event("35.000P/B[0003]"),
                           Event("65.000P/E[0003]"), Event("70.000P/B[0003]"), Event("100.000P/E[0003]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, APinchThatEndsWhileReleasedLeavesItsTowOutOfTheCommandsRelease)
{
    Position();
    Tow(ZELKinTowCommand::Force, 0x3);
    Position(80.0);
    Tow(ZELKinTowCommand::Force, 0x4);
    Position(30.0);
    Tow(ZELKinTowCommand::Release, 0x7);
    // Tows 1 and 2 (L = 110): released at 40, pinched at 60, released at
    // 100; the release length then reaches past L, so they end released
    // and leave the command's own release. Tow 3 (L = 30) is not split and
    // stays in it.
    EXPECT_EQ(Events(QStringLiteral("pinch-max-length: 40; pinch-release-length: 20")),
              QStringList({kStart, Event("0.000P/B[0003]"), Event("40.000P/E[0003]"), Event("60.000P/B[0003]"),
                           Event("80.000P/B[0004]"), Event("100.000P/E[0003]"), Event("110.000P/E[0004]")}));
}

TEST_F(ZELKinAFPGCodeTowEventsTest, ATowsRateStretchesItsPinchLength)
{
    Position();
    ZELKinTestAccess::CreateTowFeedCommand(course, {0.5, 2.0});
    Tow(ZELKinTowCommand::Force, 0x3);
    Position(60.0);
    Tow(ZELKinTowCommand::Release, 0x3);
    // Tow 1 at rate 0.5: L = 120, events at 60 r / 120 along the 60 mm;
    // tow 2 at rate 2: L = 30, no longer than the maximum.
    EXPECT_EQ(Events(QStringLiteral("pinch-max-length: 40; pinch-release-length: 10")),
              QStringList({kStart, Event("0.000P/B[0003]"), Event("20.000P/E[0001]"), Event("25.000P/B[0001]"),
                           Event("45.000P/E[0001]"), Event("50.000P/B[0001]"), Event("60.000P/E[0003]")}));
}

namespace {

struct UnsplitCase
{
    const char* name;
    const char* options;
    double rate;
};
ZELTEST_PRINT_CASE_BY_NAME(UnsplitCase);

class ZELKinAFPGCodeTowEventsUnsplitTest : public ZELKinAFPGCodeTowEventsTest,
                                           public ::testing::WithParamInterface<UnsplitCase>
{
};

const UnsplitCase kUnsplitCases[] = {
    {"ZeroMaximum", "pinch-max-length: 0; pinch-release-length: 5", 1.0},
    {"NegativeMaximum", "pinch-max-length: -10; pinch-release-length: 5", 1.0},
    {"NaNMaximum", "pinch-max-length: nan; pinch-release-length: 5", 1.0},
    {"InfiniteMaximum", "pinch-max-length: inf; pinch-release-length: 5", 1.0},
    {"UnreadableMaximum", "pinch-max-length: long; pinch-release-length: 5", 1.0},
    {"NoReleaseLength", "pinch-max-length: 10", 1.0},
    {"ZeroReleaseLength", "pinch-max-length: 10; pinch-release-length: 0", 1.0},
    {"NegativeReleaseLength", "pinch-max-length: 10; pinch-release-length: -20", 1.0},
    {"InfiniteReleaseLength", "pinch-max-length: 10; pinch-release-length: inf", 1.0},
    {"ZeroTowRate", "pinch-max-length: 10; pinch-release-length: 5", 0.0},
    {"NegativeTowRate", "pinch-max-length: 10; pinch-release-length: 5", -1.0},
};

} // namespace

TEST_P(ZELKinAFPGCodeTowEventsUnsplitTest, OptionsThatCannotSplitAPinchLeaveItWhole)
{
    Position();
    ZELKinTestAccess::CreateTowFeedCommand(course, {GetParam().rate});
    Tow(ZELKinTowCommand::Force, 0x1);
    Position(100.0);
    Tow(ZELKinTowCommand::Release, 0x1);
    EXPECT_EQ(Events(QString::fromUtf8(GetParam().options)),
              QStringList({kStart, Event("0.000P/B[0001]"), Event("100.000P/E[0001]")}));
}

INSTANTIATE_TEST_SUITE_P(Options, ZELKinAFPGCodeTowEventsUnsplitTest, ::testing::ValuesIn(kUnsplitCases));

TEST_F(ZELKinAFPGCodeTowEventsTest, TheSplittingOfOnePinchIsBounded)
{
    Position();
    Tow(ZELKinTowCommand::Force, 0x1);
    Position(1.0e6);
    Tow(ZELKinTowCommand::Release, 0x1);
    const QStringList events = Events(QStringLiteral("pinch-max-length: 0.01; pinch-release-length: 0.01"));
    // The start line, the force, 1000 split events from 0.01 on, every
    // 0.01, and the release.
    ASSERT_EQ(events.size(), 1 + 1 + 1000 + 1);
    EXPECT_EQ(events.at(2), Event("0.010P/E[0001]"));
    EXPECT_EQ(events.at(3), Event("0.020P/B[0001]"));
    EXPECT_EQ(events.at(1001), Event("10.000P/B[0001]"));
    EXPECT_EQ(events.last(), Event("1000000.000P/E[0001]"));
}
