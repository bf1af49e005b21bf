// The course blocks of a ply file: roller checks, the approach, one line per
// position along the course with its words modal against what the
// controller holds, feeds and tow codes, the off-part and retract moves, and
// the material axis they count in.

#include "zelkinnctestprograms.h"

#include <QRegularExpression>

#include <cmath>
#include <optional>

using ZELTest::Axes;
using ZELTest::HeadAngles;
using ZELTest::NCFixture;

namespace {

class ZELKinAFPGCodeCourseTest : public ::testing::Test
{
protected:
    explicit ZELKinAFPGCodeCourseTest(const ZELKinTestHead& head = ZELKinTestHead(), double rotarySpeed = 500.0)
        : f(head, rotarySpeed)
    {
    }

    //! Ply 0101 (add feedrate 1270, cut feedrate 1905 unless given) with
    //! `courses` courses of tows 1 and 2 on a 16-tow roller, each between
    //! two links. The links hold one position each, at the origin and the
    //! feed of At: a link into a course that starts there ends on its
    //! approach point.
    void MakePly(int courses = 1, double addFeedrate = 1270.0, double cutFeedrate = 1905.0)
    {
        procedure = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"), addFeedrate, cutFeedrate);
        procedure->AddPlyDefinition(
            NCFixture::Ply(QStringLiteral("P1"), QStringLiteral("T35"), 0.0, ZELCompStrategy::Angle, 1.0));
        for (int i = 0; i < courses; ++i) {
            f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 0.0}, 2540.0);
            f.AddCourse(procedure, 0x3, 16);
        }
        f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 0.0}, 2540.0);
    }

    //! Puts the retract's first position where `end`, the course's last,
    //! stands, as the link that leaves a course in a toolpath begins.
    void StartRetractAt(const ZELKinPosition* end) const
    {
        auto* first = qobject_cast<ZELKinPosition*>(procedure->GetCourseLink(1)->GetCommand(0));
        for (ZELKinVariable* variable : {f.x, f.y, f.z})
            first->SetVariableValue(variable, end->GetVariableValue(variable));
    }

    ZELKinTowCourse* Course(int index = 0) const { return qobject_cast<ZELKinTowCourse*>(procedure->GetCourse(index)); }

    //! A position `inches` along X on course `course`, numbered from 1 in
    //! the order made.
    ZELKinRollLayupPosition* At(double inches, double feedrate = 2540.0, const HeadAngles& angles = HeadAngles(),
                                int course = 0)
    {
        return f.AddCoursePosition(Course(course), ++numbers[course], {inches * 25.4, 0.0, 0.0}, feedrate, angles);
    }

    QString Ply(const QString& options = QString()) { return f.WriteAndRead(QStringLiteral("PART#0101.PPF"), options); }

    //! The lines from "COURSE_MODE" to "OFF_COURSE_MODE" of the first course.
    QStringList CourseLines()
    {
        return ZELTest::LinesBetween(Ply(), QStringLiteral("COURSE_MODE"), QStringLiteral("OFF_COURSE_MODE"));
    }

    NCFixture f;
    ZELKinRollLayupProcedure* procedure = nullptr;
    int numbers[2] = {0, 0};
};

} // namespace

TEST_F(ZELKinAFPGCodeCourseTest, PositionsThatRepeatTheLastLineWithin0001WriteNoLine)
{
    MakePly();
    At(0);
    At(1);
    ZELKinRollLayupPosition* repeated = At(1);
    repeated->SetVariableValue(f.x, 25.4 + 0.0009);
    repeated->SetVariableValue(f.y, -0.001);
    At(1);
    At(2);
    At(3);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000;First point in course"),
                           QStringLiteral("N5G1G642 ADIS=COURSEND X2.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, APositionDefiningAnotherAxisIsNotARepeat)
{
    MakePly();
    At(0);
    At(1);
    At(1)->SetVariableValue(f.a, 0.0);
    At(2);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000;First point in course"),
                           QStringLiteral("N3G1G642 ADIS=COURSEND A0.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, AWordIsLeftOutWhileWithin0001OfTheValueTheControllerHolds)
{
    MakePly();
    At(0);
    // Y stays within 0.001 of the 0 that the approach line wrote, Z does
    // not; A and C1 were never written.
    ZELKinRollLayupPosition* moved = At(1);
    moved->SetVariableValue(f.y, 0.001);
    moved->SetVariableValue(f.z, 0.0011);
    moved->SetVariableValue(f.a, 0.0);
    moved->SetVariableValue(f.c1, 0.0);
    // Y has gone 0.0015 from the 0 held, if only 0.0005 from the position
    // before; Z and A stay within 0.001 of what the line before wrote.
    ZELKinRollLayupPosition* next = At(2);
    next->SetVariableValue(f.y, 0.0015);
    next->SetVariableValue(f.z, 0.0011);
    next->SetVariableValue(f.a, 0.001);
    next->SetVariableValue(f.c1, ZELTest::Radians(-30));
    At(3);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"),
                           QStringLiteral("N2G1X1.0000Z0.0000A0.0000C1=0.0000;First point in course"),
                           QStringLiteral("N3G1G642 ADIS=COURSEND X2.0000Y0.0001C1=-30.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

namespace {

//! The value of `label`'s word in `line` (the number after the label),
//! when the line has the word.
std::optional<double> WordValue(const QString& line, const QString& label)
{
    const QRegularExpression word(QStringLiteral("(?<![A-Z])%1(-?[0-9.]+)").arg(label));
    const QRegularExpressionMatch match = word.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    return match.captured(1).toDouble();
}

} // namespace

TEST_F(ZELKinAFPGCodeCourseTest, AnAxisCreepingBelow0001APointIsRewrittenAtLeastEverySecondLine)
{
    // A rises 0.0008 rad a point over 100 points: from the 0 last written,
    // 0.0008 is left out, 0.0016 written, so A is written every second
    // line and the controller never holds it more than 0.001 rad behind.
    constexpr int kPoints = 101;
    constexpr double kRise = 0.0008;
    MakePly();
    for (int i = 0; i < kPoints; ++i)
        At(i)->SetVariableValue(f.a, kRise * i);
    const QString text = Ply();
    const QStringList lines = ZELTest::LinesBetween(text, QStringLiteral("COURSE_MODE"), QStringLiteral("N101"));
    ASSERT_EQ(lines.size(), 1 + (kPoints - 1) + 1 + 1);
    // The link does not define A: the approach point gets a line for it.
    EXPECT_EQ(lines.mid(0, 6),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9A0.0000;First point in course"),
                           QStringLiteral("N2G1X1.0000"), QStringLiteral("N3G1X2.0000A0.0917"),
                           QStringLiteral("N4G1X3.0000"), QStringLiteral("N5G1X4.0000A0.1833")}));
    EXPECT_EQ(lines.last(), QStringLiteral("N101G1G641 ADIS=OFF_PART M5M18X100.0000A4.5837;First off part point"));

    // Every motion line, from the approach point to the off-part point,
    // for point i.
    QStringList motion = lines.mid(1);
    motion.removeAll(QStringLiteral("OFF_COURSE_MODE"));
    ASSERT_EQ(motion.size(), kPoints);
    double held = ZELTest::kNaN;
    int sinceWritten = 0;
    for (int i = 0; i < kPoints; ++i) {
        const std::optional<double> degrees = WordValue(motion.at(i), QStringLiteral("A"));
        sinceWritten = degrees ? 0 : sinceWritten + 1;
        if (degrees)
            held = ZELTest::Radians(*degrees);
        EXPECT_LE(sinceWritten, 1) << motion.at(i).toStdString();
        // The word has four decimals of a degree.
        EXPECT_LE(std::abs(kRise * i - held), 0.001 + ZELTest::Radians(0.00005)) << motion.at(i).toStdString();
    }
}

namespace {

// The rotary axes turn at 0.04 rad/s at the most, and the machine knows no
// wrist to reach the slides through: a rotary word's lag may be caught up
// in one line at a quarter of that speed, 0.01 rad/s (half of it shared by
// the two rotary axes).
class ZELKinAFPGCodeCourseSlowWristTest : public ZELKinAFPGCodeCourseTest
{
protected:
    ZELKinAFPGCodeCourseSlowWristTest()
        : ZELKinAFPGCodeCourseTest(ZELKinTestHead(), 0.04)
    {
    }
};

} // namespace

TEST_F(ZELKinAFPGCodeCourseSlowWristTest, ARotaryWordOnShortLinesIsWrittenBeforeItsCatchUpWouldOutrunItsShare)
{
    // Lines of 0.01 in (0.254 mm) at 2540 mm/min take 0.006 s: A may lag
    // 0.01 rad/s x 0.006 s = 0.00006 rad. Rising 0.00005 rad a point, it
    // is left out once and written the next time, where the 0.001 rad
    // alone would leave it out for 19 lines.
    MakePly();
    for (int i = 0; i < 6; ++i)
        At(0.01 * i)->SetVariableValue(f.a, 0.00005 * i);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9A0.0000;First point in course"),
                           QStringLiteral("N2G1X0.0100"), QStringLiteral("N3G1X0.0200A0.0057"),
                           QStringLiteral("N4G1X0.0300"),
                           QStringLiteral("N5G1G642 ADIS=COURSEND X0.0400A0.0115;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseSlowWristTest, OnLinesOfCommonLengthTheToleranceAloneDecides)
{
    // Lines of 1 in take 0.6 s: the lag could be caught up up to 0.006 rad,
    // so the 0.001 rad decides: A rising 0.0004 rad a point is written
    // every third line.
    MakePly();
    for (int i = 0; i < 6; ++i)
        At(i)->SetVariableValue(f.a, 0.0004 * i);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9A0.0000;First point in course"),
                           QStringLiteral("N2G1X1.0000"), QStringLiteral("N3G1X2.0000"),
                           QStringLiteral("N4G1X3.0000A0.0688"),
                           QStringLiteral("N5G1G642 ADIS=COURSEND X4.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

// A long line followed by a very short one, as a tow event splits a course
// a few micrometres from a point: the short line turns whatever the long
// one left out. 0.0001 in at 2540 mm/min takes 0.00006 s, in which A may
// turn 0.01 rad/s x 0.00006 s = 0.0000006 rad: the A of 0.0008 rad (0.0458
// deg) the long line could leave out is written on it, not left for the
// short line to turn at 13 rad/s.

TEST_F(ZELKinAFPGCodeCourseSlowWristTest, ARotaryWordIsWrittenOnALongLineWhenTheShortLineAfterItWouldTurnItsLag)
{
    MakePly();
    At(0)->SetVariableValue(f.a, 0.0);
    // The cut after this position slows its line to 75 in/min: 0.8 s.
    At(1)->SetVariableValue(f.a, 0.0008);
    f.AddTowCommand(Course(), ZELKinTowCommand::Cut, 0x3);
    At(1.0001)->SetVariableValue(f.a, 0.0009);
    At(2)->SetVariableValue(f.a, 0.0009);
    At(3)->SetVariableValue(f.a, 0.0009);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9A0.0000;First point in course"),
                           QStringLiteral("N2M69G1X1.0000A0.0458F75;{S3}"), QStringLiteral("N3G1X1.0001A0.0516F100"),
                           QStringLiteral("N4G1G642 ADIS=COURSEND X2.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseSlowWristTest, TheLastCourseLineWritesARotaryWordThatAShortOffPartLineWouldTurn)
{
    MakePly();
    At(0)->SetVariableValue(f.a, 0.0);
    At(1)->SetVariableValue(f.a, 0.0008);
    At(1.0001)->SetVariableValue(f.a, 0.0009);
    EXPECT_EQ(ZELTest::LinesBetween(Ply(), QStringLiteral("COURSE_MODE"), QStringLiteral("CHECK_M01")),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9A0.0000;First point in course"),
                           QStringLiteral("N2G1G642 ADIS=COURSEND X1.0000A0.0458;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE"),
                           QStringLiteral("N3G1G641 ADIS=OFF_PART M5M18X1.0001A0.0516;First off part point"),
                           QStringLiteral("CHECK_M01; Check Whether Optional Stopping")}));
}

TEST_F(ZELKinAFPGCodeCourseSlowWristTest, TheOffPartLineWritesARotaryWordThatAShortRetractLineWouldTurn)
{
    MakePly();
    At(0)->SetVariableValue(f.a, 0.0);
    ZELKinRollLayupPosition* end = At(1);
    end->SetVariableValue(f.a, 0.0008);
    // The retract's first position stands at the course's end and gives no
    // line; the next moves 0.0001 in.
    StartRetractAt(end);
    f.AddLinkPosition(procedure->GetCourseLink(1), {25.4 * 1.0001, 0.0, 0.0}, 2540.0)->SetVariableValue(f.a, 0.0009);
    EXPECT_EQ(ZELTest::LinesBetween(Ply(), QStringLiteral("N2G1G641"), QStringLiteral("; End of Course")),
              QStringList({QStringLiteral("N2G1G641 ADIS=OFF_PART M5M18X1.0000A0.0458;First off part point"),
                           QStringLiteral("CHECK_M01; Check Whether Optional Stopping"),
                           QStringLiteral("N3G1G642 ADIS=OFF_PART X1.0001A0.0516"),
                           QStringLiteral("; End of Course #1 Circuit")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, AFeedCreepingBelow0001APointIsRewrittenEverySecondLine)
{
    // The feed rises 0.0008 mm/min a point from the 2540 held: F is written
    // again once it has gone 0.0016 from the value last written. Six
    // significant digits of it read F100 each time.
    MakePly();
    for (int i = 0; i < 8; ++i)
        At(i, 2540.0 + 0.0008 * i);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000;First point in course"),
                           QStringLiteral("N3G1X2.0000F100"), QStringLiteral("N4G1X3.0000"),
                           QStringLiteral("N5G1X4.0000F100"), QStringLiteral("N6G1X5.0000"),
                           QStringLiteral("N7G1G642 ADIS=COURSEND X6.0000F100;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, ALineWhoseAxesRepeatButWhoseFeedDiffersIsWrittenWithItsFeedAlone)
{
    MakePly();
    At(0);
    At(1);
    At(1, 3810.0);
    At(2, 3810.0);
    At(3, 3810.0);
    At(4, 3810.0);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000;First point in course"),
                           QStringLiteral("N3M69G1F150"), QStringLiteral("N4G1X2.0000"),
                           QStringLiteral("N5G1G642 ADIS=COURSEND X3.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, ARepeatedPositionWhoseCutLimitsItsFeedIsWrittenWithTheFeedAndTheCut)
{
    MakePly();
    At(0);
    At(1);
    At(1);
    f.AddTowCommand(Course(), ZELKinTowCommand::Cut, 0x3);
    At(2);
    At(3);
    At(4);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000;First point in course"),
                           QStringLiteral("N3M69G1F75;{S3}"), QStringLiteral("N4G1X2.0000F100"),
                           QStringLiteral("N5G1G642 ADIS=COURSEND X3.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, TheOffPartAndRetractLinesAreModalAgainstWhatTheControllerHolds)
{
    MakePly();
    At(0);
    // Y creeps by 0.0008 a position: 0.0008 is left out, 0.0016 written.
    At(1)->SetVariableValue(f.y, 0.0008);
    ZELKinRollLayupPosition* end = At(2);
    end->SetVariableValue(f.y, 0.0016);
    StartRetractAt(end);
    ZELKinCourseLink* retract = procedure->GetCourseLink(1);
    // After the link's first position, a repeat of the course's end:
    f.AddLinkPosition(retract, {50.8, 0.0024, 254.0}, 2540.0);
    f.AddLinkPosition(retract, {50.8, 0.0032, 254.0}, 2540.0);
    EXPECT_EQ(ZELTest::LinesBetween(Ply(), QStringLiteral("COURSE_MODE"), QStringLiteral("; End of Course")),
              QStringList({QStringLiteral("COURSE_MODE"),
                           QStringLiteral("N2G1G642 ADIS=COURSEND X1.0000;First point in course;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE"),
                           QStringLiteral("N3G1G641 ADIS=OFF_PART M5M18X2.0000Y0.0001;First off part point"),
                           QStringLiteral("CHECK_M01; Check Whether Optional Stopping"),
                           QStringLiteral("N4G1G642 ADIS=OFF_PART Z10.0000"),
                           QStringLiteral("N5G1G642 ADIS=OFF_PART Y0.0001"),
                           QStringLiteral("; End of Course #1 Circuit")}));
}

// The approach point

TEST_F(ZELKinAFPGCodeCourseTest, AnApproachPointTheLinkDoesNotEndOnGetsALineOfItsOwnWithAnExactStop)
{
    MakePly();
    // The link now ends 10 inches above the approach point.
    f.AddLinkPosition(procedure->GetCourseLink(0), {0.0, 0.0, 254.0}, 5080.0);
    ZELKinRollLayupPosition* first = At(0);
    At(1);
    At(2);
    At(3);
    const QString text = Ply();
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("N1G641")),
              QStringList({QStringLiteral("N1G641 ADIS=OFF_PART X0.0000Y0.0000Z10.0000F200; Last off part point")}));
    EXPECT_EQ(ZELTest::LinesBetween(text, QStringLiteral("COURSE_MODE"), QStringLiteral("OFF_COURSE_MODE")),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9Z0.0000F100;First point in course"),
                           QStringLiteral("N2G1X1.0000"),
                           QStringLiteral("N3G1G642 ADIS=COURSEND X2.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
    EXPECT_TRUE(ZELTest::SameDouble(2540.0, first->property("actualFeedrate").toDouble(), ZELTest::kExact));
}

TEST_F(ZELKinAFPGCodeCourseTest, TheApproachPointLineTakesTheTowCodesAfterItAndTheirFeed)
{
    MakePly();
    f.AddLinkPosition(procedure->GetCourseLink(0), {0.0, 0.0, 254.0}, 5080.0);
    At(0);
    f.AddTowCommand(Course(), ZELKinTowCommand::Add, 0x3);
    for (int i = 1; i < 5; ++i)
        At(i);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9Z0.0000F50;{T3};First point in course"),
                           QStringLiteral("N2M69G1X1.0000F100"), QStringLiteral("N3G1X2.0000"),
                           QStringLiteral("N4G1G642 ADIS=COURSEND X3.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, AnApproachPointTheLinkEndsOnGivesNoLineWhateverTheFeed)
{
    MakePly();
    // The link ends on the approach point's axes, at another feed, which
    // the first line writes.
    f.AddLinkPosition(procedure->GetCourseLink(0), {0.0, 0.0, 0.0}, 5080.0);
    ZELKinRollLayupPosition* first = At(0);
    f.AddTowCommand(Course(), ZELKinTowCommand::Add, 0x3);
    At(1);
    At(2);
    At(3);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000F100;First point in course"),
                           QStringLiteral("N3G1G642 ADIS=COURSEND X2.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
    EXPECT_TRUE(std::isnan(first->property("actualFeedrate").toDouble()));
}

namespace {

struct RollerCase
{
    const char* name;
    int rollerTows;
    QStringList lines;
};
ZELTEST_PRINT_CASE_BY_NAME(RollerCase);

class ZELKinAFPGCodeCourseRollerTest : public ZELKinAFPGCodeCourseTest, public ::testing::WithParamInterface<RollerCase>
{
};

const QString kVerifyStop = QStringLiteral("M0; Program Stop");
const QString kClearMessage = QStringLiteral("MSG(\"\")");
const QString kTraori = QStringLiteral(";[FROM PARK]M61; Activate Layup Traori");
const QString kPlyStart = QStringLiteral("M20; Ply Start");

const RollerCase kRollerCases[] = {
    {"EightTows",
     8,
     {kPlyStart, QStringLiteral("MSG(\"Verify 8-tow compaction roller is currently loaded on head\")"), kVerifyStop,
      kClearMessage, QStringLiteral("M85; 8-Tow Roller Loaded"), kTraori}},
    {"SixteenTows",
     16,
     {kPlyStart, QStringLiteral("MSG(\"Verify 16-tow compaction roller is currently loaded on head\")"), kVerifyStop,
      kClearMessage, QStringLiteral("M84; 16-Tow Roller Loaded"), kTraori}},
    {"TwelveTowsWriteNeither",
     12,
     {kPlyStart, QStringLiteral("MSG(\"Verify 12-tow compaction roller is currently loaded on head\")"), kVerifyStop,
      kClearMessage, kTraori}},
    {"NoRollerWritesNeither",
     0,
     {kPlyStart, QStringLiteral("MSG(\"Verify 0-tow compaction roller is currently loaded on head\")"), kVerifyStop,
      kClearMessage, kTraori}},
};

} // namespace

TEST_P(ZELKinAFPGCodeCourseRollerTest, TheRollerCheckNamesTheRollerAndItsMachineCode)
{
    MakePly();
    Course()->SetRollerTows(GetParam().rollerTows);
    At(0);
    At(1);
    EXPECT_EQ(ZELTest::LinesBetween(Ply(), kPlyStart, kTraori), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Rollers, ZELKinAFPGCodeCourseRollerTest, ::testing::ValuesIn(kRollerCases));

TEST_F(ZELKinAFPGCodeCourseTest, TheFirstCourseStartsTheSequenceAndChecksItsRollerWithoutPrefix)
{
    MakePly(2);
    Course(1)->SetRollerTows(8);
    for (const int course : {0, 1}) {
        At(0, 2540.0, HeadAngles(), course);
        At(1, 2540.0, HeadAngles(), course);
    }
    const QString text = Ply();
    EXPECT_EQ(ZELTest::LinesBetween(text, QStringLiteral("REQ_TOW1="), kTraori),
              QStringList({QStringLiteral("REQ_TOW1=3"), QStringLiteral(";[TOW LENGTH]T1=0.00,T2=0.00"),
                           QStringLiteral("M22; Sequence Start"), QStringLiteral("M20; Ply Start"),
                           QStringLiteral("MSG(\"Verify 16-tow compaction roller is currently loaded on head\")"),
                           kVerifyStop, kClearMessage, QStringLiteral("M84; 16-Tow Roller Loaded"), kTraori}));
    const QString second = text.mid(text.indexOf(QStringLiteral(";[COURSE] CourseNumber=2")));
    EXPECT_EQ(ZELTest::LinesBetween(second, QStringLiteral("REQ_TOW1="), kTraori),
              QStringList({QStringLiteral("REQ_TOW1=3"), QStringLiteral(";[TOW LENGTH]T1=0.00,T2=0.00"),
                           QStringLiteral(";[FROM PARK]MSG(\"Verify 8-tow compaction roller is currently loaded on "
                                          "head\")"),
                           QStringLiteral(";[FROM PARK]M0; Program Stop"), QStringLiteral(";[FROM PARK]MSG(\"\")"),
                           QStringLiteral(";[FROM PARK]M85; 8-Tow Roller Loaded"), kTraori}));
    EXPECT_EQ(text.count(QStringLiteral("M22; Sequence Start")), 1);
    EXPECT_EQ(text.count(QStringLiteral("M20; Ply Start")), 1);
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("GUD_CRS_BND_NUM=")),
              QStringList({QStringLiteral("GUD_CRS_BND_NUM=1"), QStringLiteral("GUD_CRS_BND_NUM=2")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("; End of Course #")),
              QStringList(
                  {QStringLiteral("; End of Course #1 Circuit"), QStringLiteral("; End of Course #2 Circuit")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, TheApproachPointIsTheLastPositionOfTheApproachLink)
{
    MakePly();
    ZELKinCourseLink* approach = procedure->GetCourseLink(0);
    f.AddLinkPosition(approach, {127.0, 254.0, 50.8, ZELTest::Radians(10), ZELTest::Radians(-20)}, 3810.0);
    ZELKinTestAccess::CreateToolChange(approach, QStringLiteral("R8"), QString());
    At(0);
    At(1);
    EXPECT_EQ(ZELTest::LinesBetween(Ply(), QStringLiteral(";[FROM PARK]G0"), QStringLiteral("N1G641")),
              QStringList({QStringLiteral(";[FROM PARK]G0X5.0000Y10.0000A10.0000C1=-20.0000F150;Last off part point"),
                           QStringLiteral(";[FROM PARK]G1F150;Last off part point"),
                           QStringLiteral(";[FROM COURSE]G0X5.0000Y10.0000Z2.0000A10.0000C1=-20.0000F150;Last off "
                                          "part point"),
                           QStringLiteral(";[FROM PARK]MSG(\"Verify compaction roller is above expected starting "
                                          "point on tool\")"),
                           QStringLiteral(";[FROM PARK]M0; Program Stop"), QStringLiteral(";[FROM PARK]MSG(\"\")"),
                           QStringLiteral("N1G641 ADIS=OFF_PART X5.0000Y10.0000Z2.0000A10.0000C1=-20.0000F150; Last "
                                          "off part point")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, AfterAnAddTheFeedIsLimitedToTheAddFeedrateAndFeedChangesAreMarkedAwayFromTheEnd)
{
    MakePly();
    At(0);
    At(1);
    f.AddTowCommand(Course(), ZELKinTowCommand::Add, 0x1);
    At(2);
    At(3);
    At(4, 3810.0);
    StartRetractAt(At(5, 3810.0));
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"),
                           QStringLiteral("N2M69G1X1.0000F50;{T1};First point in course"),
                           QStringLiteral("N3M69G1X2.0000F100"), QStringLiteral("N4G1X3.0000"),
                           QStringLiteral("N5G1G642 ADIS=COURSEND X4.0000F150;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(Ply(), QStringLiteral("N6")),
              QStringList({QStringLiteral("N6G1G641 ADIS=OFF_PART M5M18X5.0000;First off part point")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, TheFeedOfEachLineIsKeptAsTheActualFeedrate)
{
    MakePly();
    ZELKinRollLayupPosition* first = At(0);
    ZELKinRollLayupPosition* added = At(1);
    f.AddTowCommand(Course(), ZELKinTowCommand::Add, 0x1);
    ZELKinRollLayupPosition* cut = At(2, 3810.0);
    f.AddTowCommand(Course(), ZELKinTowCommand::Cut, 0x1);
    ZELKinRollLayupPosition* plain = At(3, 3810.0);
    ZELKinRollLayupPosition* last = At(4);
    Ply();
    EXPECT_TRUE(std::isnan(first->property("actualFeedrate").toDouble()));
    EXPECT_TRUE(ZELTest::SameDouble(1270.0, added->property("actualFeedrate").toDouble(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1905.0, cut->property("actualFeedrate").toDouble(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3810.0, plain->property("actualFeedrate").toDouble(), ZELTest::kExact));
    EXPECT_TRUE(std::isnan(last->property("actualFeedrate").toDouble()));
}

namespace {

struct LimitCase
{
    const char* name;
    double addFeedrate;
    double cutFeedrate;
    ZELKinTowCommand::CommandType type;
    const char* line;
};
ZELTEST_PRINT_CASE_BY_NAME(LimitCase);

class ZELKinAFPGCodeCourseLimitTest : public ZELKinAFPGCodeCourseTest, public ::testing::WithParamInterface<LimitCase>
{
};

const LimitCase kLimitCases[] = {
    {"AddLimits", 1270.0, 1905.0, ZELKinTowCommand::Add, "N2M69G1X1.0000F50;{T1};First point in course"},
    {"CutLimits", 1270.0, 1905.0, ZELKinTowCommand::Cut, "N2M69G1X1.0000F75;{S1};First point in course"},
    {"NaNAddFeedrateDoesNotLimit", ZELTest::kNaN, 1905.0, ZELKinTowCommand::Add,
     "N2G1X1.0000;{T1};First point in course"},
    {"NaNCutFeedrateDoesNotLimit", 1270.0, ZELTest::kNaN, ZELKinTowCommand::Cut,
     "N2G1X1.0000;{S1};First point in course"},
    {"AFasterFeedrateDoesNotLimit", 5080.0, 5080.0, ZELKinTowCommand::Add, "N2G1X1.0000;{T1};First point in course"},
    {"ForceNeitherLimitsNorCodes", 1270.0, 1905.0, ZELKinTowCommand::Force, "N2G1X1.0000;First point in course"},
    {"ReleaseNeitherLimitsNorCodes", 1270.0, 1905.0, ZELKinTowCommand::Release, "N2G1X1.0000;First point in course"},
};

} // namespace

TEST_P(ZELKinAFPGCodeCourseLimitTest, ATowCommandAfterAPositionLimitsTheFeedOfItsLine)
{
    MakePly(1, GetParam().addFeedrate, GetParam().cutFeedrate);
    At(0);
    At(1);
    f.AddTowCommand(Course(), GetParam().type, 0x1);
    for (int i = 2; i < 6; ++i)
        At(i);
    const QStringList lines = CourseLines();
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(lines.at(1), QString::fromUtf8(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(Limits, ZELKinAFPGCodeCourseLimitTest, ::testing::ValuesIn(kLimitCases));

TEST_F(ZELKinAFPGCodeCourseTest, TowCodesOfARunOfTowAndFeedCommandsGoTogetherAndBothLimitTheFeed)
{
    MakePly(1, 1905.0, 1270.0);
    At(0);
    At(1);
    ZELKinTestAccess::CreateTowFeedCommand(Course(), {0.5});
    f.AddTowCommand(Course(), ZELKinTowCommand::Add, 0x1);
    f.AddTowCommand(Course(), ZELKinTowCommand::Force, 0x1);
    ZELKinTestAccess::CreateTowFeedCommand(Course(), {1.0});
    f.AddTowCommand(Course(), ZELKinTowCommand::Cut, 0x2);
    At(2);
    f.AddTowCommand(Course(), ZELKinTowCommand::Cut, 0x1);
    At(3);
    At(4);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"),
                           QStringLiteral("N2M69G1X1.0000F50;{T1S2};First point in course"),
                           QStringLiteral("N3G1X2.0000;{S1}"),
                           QStringLiteral("N4G1G642 ADIS=COURSEND X3.0000F100;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, TheTowCodesOfARepeatedPositionGoToTheNextLineWritten)
{
    // Feedrates that limit nothing: the repeated positions' lines would
    // hold no word.
    MakePly(1, 5080.0, 5080.0);
    At(0);
    At(1);
    At(1);
    f.AddTowCommand(Course(), ZELKinTowCommand::Cut, 0x3);
    At(1);
    f.AddTowCommand(Course(), ZELKinTowCommand::Add, 0x1);
    At(2);
    At(3);
    At(4);
    At(5);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000;First point in course"),
                           QStringLiteral("N5G1X2.0000;{S3T1}"), QStringLiteral("N6G1X3.0000"),
                           QStringLiteral("N7G1G642 ADIS=COURSEND X4.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

namespace {

struct HeadRecordCase
{
    const char* name;
    HeadAngles angles;
    bool add;
    const char* line;
};
ZELTEST_PRINT_CASE_BY_NAME(HeadRecordCase);

class ZELKinAFPGCodeCourseHeadRecordTest : public ZELKinAFPGCodeCourseTest,
                                           public ::testing::WithParamInterface<HeadRecordCase>
{
};

const HeadRecordCase kHeadRecordCases[] = {
    {"NoAnglesNoCodes", HeadAngles(), false, "N2G1X1.0000;First point in course"},
    {"NoQAngleNoCodes",
     {ZELTest::Radians(5), ZELTest::kNaN, ZELTest::Radians(1)},
     false,
     "N2G1X1.0000;First point in course"},
    {"AllAngles",
     {ZELTest::Radians(5), ZELTest::Radians(-2.5), ZELTest::Radians(1)},
     false,
     "N2G1X1.0000;{P5.0000Q-2.5000M1.0000};First point in course"},
    {"QAngleOnly",
     {ZELTest::kNaN, ZELTest::Radians(0.25), ZELTest::kNaN},
     false,
     "N2G1X1.0000;{Q0.2500};First point in course"},
    {"CodesWithoutAngles", HeadAngles(), true, "N2M69G1X1.0000F50;{T3};First point in course"},
    {"CodesAfterTheAngles",
     {ZELTest::Radians(5), ZELTest::Radians(6), ZELTest::kNaN},
     true,
     "N2M69G1X1.0000F50;{P5.0000Q6.0000T3};First point in course"},
};

} // namespace

TEST_P(ZELKinAFPGCodeCourseHeadRecordTest, TheHeadRecordShowsTheAnglesThatAreSetAndTheTowCodes)
{
    MakePly();
    At(0);
    At(1, 2540.0, GetParam().angles);
    if (GetParam().add)
        f.AddTowCommand(Course(), ZELKinTowCommand::Add, 0x3);
    for (int i = 2; i < 6; ++i)
        At(i);
    const QStringList lines = CourseLines();
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(lines.at(1), QString::fromUtf8(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(HeadRecords, ZELKinAFPGCodeCourseHeadRecordTest, ::testing::ValuesIn(kHeadRecordCases));

TEST_F(ZELKinAFPGCodeCourseTest, ACourseOfOnePositionWritesOnlyItsOffPartLine)
{
    MakePly();
    At(0);
    const QString text = Ply();
    EXPECT_EQ(ZELTest::LinesBetween(text, QStringLiteral("COURSE_MODE"), QStringLiteral("CHECK_M01")),
              QStringList({QStringLiteral("COURSE_MODE;Last point in course"), QStringLiteral("OFF_COURSE_MODE"),
                           QStringLiteral("N1G1G641 ADIS=OFF_PART M5M18;First off part point"),
                           QStringLiteral("CHECK_M01; Check Whether Optional Stopping")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, TheRetractSkipsRepeatsWritesItsFirstMoveAndNumbersOnFromTheLastCourseLine)
{
    MakePly();
    At(0);
    At(1);
    At(2);
    ZELKinCourseLink* retract = procedure->GetCourseLink(1);
    // The link's first position (made by MakePly, at X 0) moves away from
    // the course's end: it is written, as the link's command 0, without an
    // F (the feed is the one held). Leaving it out would send the head from
    // X 2 straight up to the next position.
    f.AddLinkPosition(retract, {50.8, 0.0, 254.0}, 5080.0);
    f.AddLinkPosition(retract, {50.8, 0.0, 254.0005}, 5080.0);
    ZELKinTestAccess::CreateToolChange(retract, QStringLiteral("R8"), QStringLiteral("H1"));
    f.AddLinkPosition(retract, {76.2, 0.0, 254.0}, 5080.0);
    f.AddLinkPosition(retract, {76.2, 25.4, 254.0}, 2540.0);
    EXPECT_EQ(ZELTest::LinesBetween(Ply(), QStringLiteral("N3G1G641"), QStringLiteral("; End of Course")),
              QStringList({QStringLiteral("N3G1G641 ADIS=OFF_PART M5M18X2.0000;First off part point"),
                           QStringLiteral("CHECK_M01; Check Whether Optional Stopping"),
                           QStringLiteral("N3G1G641 ADIS=OFF_PART M5M18X0.0000"),
                           QStringLiteral("N4G1G642 ADIS=OFF_PART X2.0000Z10.0000F200"),
                           QStringLiteral("N7G1G642 ADIS=OFF_PART X3.0000"),
                           QStringLiteral("N8G1G642 ADIS=OFF_PART Y1.0000F100"),
                           QStringLiteral("; End of Course #1 Circuit")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, AFirstRetractPositionThatStaysAtTheCoursesEndAndOnlyChangesTheFeedGivesNoLine)
{
    MakePly();
    At(0);
    At(1);
    At(2, 5080.0);
    ZELKinCourseLink* retract = procedure->GetCourseLink(1);
    // Moved to the course's end: only its feed (100 in/min) differs from
    // the 200 held, so it only marks the start of the retract.
    qobject_cast<ZELKinPosition*>(retract->GetCommand(0))->SetVariableValue(f.x, 50.8);
    f.AddLinkPosition(retract, {50.8, 0.0, 254.0}, 2540.0);
    EXPECT_EQ(ZELTest::LinesBetween(Ply(), QStringLiteral("N3G1G641"), QStringLiteral("; End of Course")),
              QStringList({QStringLiteral("N3G1G641 ADIS=OFF_PART M5M18X2.0000F200;First off part point"),
                           QStringLiteral("CHECK_M01; Check Whether Optional Stopping"),
                           QStringLiteral("N4G1G642 ADIS=OFF_PART Z10.0000F100"),
                           QStringLiteral("; End of Course #1 Circuit")}));
}

// The material axis

TEST_F(ZELKinAFPGCodeCourseTest, WithoutUValuesACourseCountsUInMillimetresAlongItsToolpathPoints)
{
    MakePly();
    const ZELMathPoint tips[] = {{0.0, 0.0, 0.0}, {3.0, 4.0, 0.0}, {3.0, 4.0, 12.0}};
    QList<ZELKinRollLayupPosition*> positions;
    positions.append(f.AddCoursePosition(Course(), 1, {0.0, 0.0, 0.0}, 2540.0, HeadAngles(), &tips[0]));
    positions.append(f.AddCoursePosition(Course(), 2, {25.4, 0.0, 0.0}, 2540.0, HeadAngles(), &tips[1]));
    // No toolpath point: no length of its own.
    positions.append(f.AddCoursePosition(Course(), 3, {50.8, 0.0, 0.0}, 2540.0));
    positions.append(f.AddCoursePosition(Course(), 4, {76.2, 0.0, 0.0}, 2540.0, HeadAngles(), &tips[2]));
    positions.append(f.AddCoursePosition(Course(), 5, {101.6, 0.0, 0.0}, 2540.0));
    const QStringList lines = CourseLines();
    const double expected[] = {0.0, 5.0, 5.0, 17.0, 17.0};
    for (int i = 0; i < positions.size(); ++i) {
        EXPECT_TRUE(ZELTest::SameDouble(expected[i], positions.at(i)->GetVariableValue(f.u), ZELTest::kTight)) << i;
        EXPECT_FALSE(positions.at(i)->property("uAxisOffset").isValid()) << i;
    }
    EXPECT_EQ(lines,
              QStringList({QStringLiteral("COURSE_MODE"), QStringLiteral("N2G1X1.0000U5.0000;First point in course"),
                           QStringLiteral("N3G1X2.0000"),
                           QStringLiteral("N4G1G642 ADIS=COURSEND X3.0000U17.0000;Last point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
}

TEST_F(ZELKinAFPGCodeCourseTest, WithUValuesACourseKeepsThemAndCountsItsEventsFromTheFirst)
{
    MakePly();
    QList<ZELKinRollLayupPosition*> positions;
    for (const double u : {100.0, 110.0, 130.0}) {
        positions.append(At(u / 10.0));
        positions.last()->SetVariableValue(f.u, u);
    }
    f.AddTowCommand(Course(), ZELKinTowCommand::Cut, 0x3);
    positions.append(At(14.0));
    positions.last()->SetVariableValue(f.u, 140.0);
    const QString text = Ply();
    for (int i = 0; i < positions.size(); ++i)
        EXPECT_TRUE(ZELTest::SameDouble(100.0, positions.at(i)->property("uAxisOffset").toDouble(), ZELTest::kExact))
            << i;
    EXPECT_TRUE(ZELTest::SameDouble(130.0, positions.at(2)->GetVariableValue(f.u), ZELTest::kExact));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";PMAC1: G500")),
              QStringList({QStringLiteral(";PMAC1: G500U30.000C/B[0003]")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("N3")),
              QStringList({QStringLiteral("N3G1X13.0000U130.0000F75;{S3};Last point in course")}));
}

namespace {

class ZELKinAFPGCodeCourseWithoutMaterialAxisTest : public ZELKinAFPGCodeCourseTest
{
protected:
    static ZELKinTestHead HeadWithoutMaterialAxis()
    {
        ZELKinTestHead head;
        head.materialVariable = QStringLiteral("W");
        return head;
    }

    ZELKinAFPGCodeCourseWithoutMaterialAxisTest()
        : ZELKinAFPGCodeCourseTest(HeadWithoutMaterialAxis())
    {
    }
};

} // namespace

TEST_F(ZELKinAFPGCodeCourseWithoutMaterialAxisTest, AMachineWithoutMaterialAxisLeavesThePositionsAsTheyAre)
{
    MakePly();
    ZELKinRollLayupPosition* first = At(0);
    At(1);
    At(2);
    EXPECT_EQ(CourseLines(),
              QStringList({QStringLiteral("COURSE_MODE"),
                           QStringLiteral("N2G1G642 ADIS=COURSEND X1.0000;First point in course;Last "
                                          "point in course"),
                           QStringLiteral("OFF_COURSE_MODE")}));
    EXPECT_FALSE(first->IsVariableDefined(f.u));
    EXPECT_FALSE(first->property("uAxisOffset").isValid());
}
