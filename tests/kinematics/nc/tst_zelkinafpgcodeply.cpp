// The ply file (.PPF) of the AFP G-code dialect: its head, start-up codes,
// ply records and end, a whole ply of two courses, and the plies that cannot
// be written for a number that is not finite.

#include "zelkinnctestprograms.h"

#include <zelsysexception.h>

using ZELTest::NCFixture;

namespace {

// The text of a ply file, which these tests read for its head.
QString HeadOf(NCFixture& f, const QString& fileName = QStringLiteral("PART#0101.PPF"))
{
    return f.WriteAndRead(fileName);
}

} // namespace

TEST(ZELKinAFPGCodePly, APlyOfTwoCoursesIsWrittenLineByLine)
{
    NCFixture f;
    f.BuildPart();
    EXPECT_TRUE(ZELTest::SameText(ZELTest::Golden(QStringLiteral("PART#0101.PPF")),
                                  f.WriteAndRead(QStringLiteral("PART#0101.PPF"), ZELTest::kGoldenOptions)));
}

TEST(ZELKinAFPGCodePly, WritingTwiceGivesTheSameText)
{
    NCFixture f;
    f.BuildPart();
    const QString first = f.WriteAndRead(QStringLiteral("PART#0101.PPF"), ZELTest::kGoldenOptions);
    EXPECT_EQ(f.WriteAndRead(QStringLiteral("PART#0101.PPF"), ZELTest::kGoldenOptions), first);
}

TEST(ZELKinAFPGCodePly, APlyWithoutPliesHasOnlyItsFixedLinesAroundItsCourses)
{
    NCFixture f;
    f.AddShortCourse(f.AddLayup(QStringLiteral("First"), QStringLiteral("First")));
    f.AddShortCourse(f.AddLayup(QStringLiteral("Second"), QStringLiteral("Second")));
    const QString head = QStringLiteral(
        "; Sequence 0102 processed by jdoe at Tue Mar 5 14:07:09 2024\n"
        "; SEQ       PLY      MATERIAL   ANGLE    METHOD  \n"
        "; ==== ============= ======== ========= ======== \n"
        ";[BEGIN START-UP CODES]\n"
        "G700; English Units\n"
        "HSL; Establish High Speed Functions\n"
        "GUD_EID=\"PART\"\n"
        "GUD_REVISION=\"B\"\n"
        "GUD_SEQUENCE_NUMBER=102\n"
        "GUD_CHECK_POINT_NUM=0\n"
        "GUD_RECOVERY_NUM=0\n"
        "M3; Start-of-Program Macro\n"
        "MSG(\"Verify the probe is not mounted.\")\n"
        "M0; Program Stop\n"
        "MSG(\"\")\n"
        "M10; Extend Head\n"
        ";{G0R40.0000}; Head Extension Distance\n"
        "G90; Absolute Positioning Mode\n"
        "G94; Feed-Per-Minute Mode\n"
        "M25; Turn On Tow Tension\n"
        "M18; Turn Off Compaction Heater\n"
        "M13; Turn On Compaction Force\n"
        "M50; Cancel Process Parameter Zones\n"
        ";[END START-UP CODES]\n"
        "MSG(\"PART\")\n"
        ";[RETRACT MODEL] OPMM=SPECIFIED,RetractAxis=Z,RetractValue=0.000000,RetractFeedrate=100.000000\n"
        "GUD_MATERIAL_REQUIRED=\"\"\n"
        "M27; Verify Material Loaded\n"
        ";[PHASE] Phase=AFP\n"
        "M61; Activate Layup Traori\n"
        "M67; Establish Tool Transformation Frame\n");
    const QString end = QStringLiteral(
        "; End of Course #1 Circuit\n"
        "M21; Ply End\n"
        "M23; Sequence End\n"
        "RETZ; Move to clearance point\n"
        "M02\n");
    const QString text = HeadOf(f, QStringLiteral("PART#0102.PPF"));
    EXPECT_EQ(text.left(text.indexOf(QStringLiteral(";[COURSE] "))), head);
    EXPECT_TRUE(text.endsWith(end)) << text.right(end.size()).toStdString();
}

TEST(ZELKinAFPGCodePly, APlyWithoutCoursesIsNotWrittenForWantOfARetractFeedrate)
{
    NCFixture f;
    f.AddLayup(QStringLiteral("Empty"), QStringLiteral("Empty"));
    const QString path = QDir(f.output.path()).filePath(QStringLiteral("PART/PART#0101.PPF"));
    EXPECT_THROW_MESSAGE(
        HeadOf(f), ZELSysException,
        QStringLiteral("cannot write the NC file '%1': the RetractFeedrate of line 26 is nan, not a finite number")
            .arg(path));
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST(ZELKinAFPGCodePly, APlyOfAnAreaThatIsNotANumberIsNotWritten)
{
    NCFixture f;
    ZELKinRollLayupProcedure* procedure = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"));
    procedure->AddPlyDefinition(
        NCFixture::Ply(QStringLiteral("P1"), QStringLiteral("T35"), 0.0, ZELCompStrategy::Angle, ZELTest::kNaN));
    f.AddShortCourse(procedure);
    // The ply record follows the three heading lines, the ply's head line,
    // 21 start-up lines, the message and the retract model.
    EXPECT_THROW_MESSAGE(
        HeadOf(f), ZELSysException,
        QStringLiteral("cannot write the NC file '%1': the Area of line 28 is nan, not a finite number")
            .arg(QDir(f.output.path()).filePath(QStringLiteral("PART/PART#0101.PPF"))));
}

namespace {

struct PlyRecordCase
{
    const char* name;
    const char* plyName;
    const char* material;
    double degrees;
    int method;
    double area;
    const char* headLine;
    const char* plyRecord;
};
ZELTEST_PRINT_CASE_BY_NAME(PlyRecordCase);

class ZELKinAFPGCodePlyRecordTest : public ::testing::TestWithParam<PlyRecordCase>
{
};

const PlyRecordCase kPlyRecordCases[] = {
    {"MinusFortyFive", "P1", "T35", -45.0, 0, 2.0, "; 0101 P1            T35        -45.000 A-ANGLE ",
     ";[PLY] PlyId=P1,Angle=-0.785,Method=A-ANGLE,Area=2.000"},
    {"Ninety", "P1", "T35", 90.0, 1, 0.1234, "; 0101 P1            T35         90.000 A-OFFSET",
     ";[PLY] PlyId=P1,Angle=1.571,Method=A-OFFSET,Area=0.123"},
    {"LongNameShiftsTheColumns", "ABCDEFGHIJKLMNOP", "T35", 0.0, 2, 1.0,
     "; 0101 ABCDEFGHIJKLMNOP T35          0.000 G-OFFSET",
     ";[PLY] PlyId=ABCDEFGHIJKLMNOP,Angle=0.000,Method=G-OFFSET,Area=1.000"},
    {"LongLabelIsWrittenWhole", "P1", "T35", 0.0, 5, 1.0, "; 0101 P1            T35          0.000 User Defined",
     ";[PLY] PlyId=P1,Angle=0.000,Method=User Defined,Area=1.000"},
    {"ShortLabelIsPadded", "P1", "T35", 0.0, 4, 1.0, "; 0101 P1            T35          0.000 Geodesic",
     ";[PLY] PlyId=P1,Angle=0.000,Method=Geodesic,Area=1.000"},
};

} // namespace

TEST_P(ZELKinAFPGCodePlyRecordTest, APlyIsShownInDegreesInTheHeadAndInRadiansInItsRecord)
{
    NCFixture f;
    ZELKinRollLayupProcedure* procedure = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"));
    procedure->AddPlyDefinition(NCFixture::Ply(QString::fromUtf8(GetParam().plyName),
                                               QString::fromUtf8(GetParam().material),
                                               ZELTest::Radians(GetParam().degrees),
                                               ZELCompStrategy::PropagationMode(GetParam().method), GetParam().area));
    f.AddShortCourse(procedure);
    const QString text = HeadOf(f);
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("; 0101 ")),
              QStringList({QString::fromUtf8(GetParam().headLine)}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";[PLY] ")),
              QStringList({QString::fromUtf8(GetParam().plyRecord)}));
}

INSTANTIATE_TEST_SUITE_P(Plies, ZELKinAFPGCodePlyRecordTest, ::testing::ValuesIn(kPlyRecordCases));

TEST(ZELKinAFPGCodePly, TheRequiredMaterialIsThatOfTheLastPly)
{
    NCFixture f;
    ZELKinRollLayupProcedure* procedure = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"));
    for (const char* material : {"T35", "AS4", "T800"})
        procedure->AddPlyDefinition(
            NCFixture::Ply(QStringLiteral("P"), QString::fromLatin1(material), 0.0, ZELCompStrategy::Angle, 1.0));
    f.AddShortCourse(procedure);
    EXPECT_EQ(ZELTest::LinesStartingWith(HeadOf(f), QStringLiteral("GUD_MATERIAL_REQUIRED=")),
              QStringList({QStringLiteral("GUD_MATERIAL_REQUIRED=\"T800\"")}));
}

TEST(ZELKinAFPGCodePly, TheRetractModelTakesTheSafetyPlaneAndTheFeedOfTheFirstCoursesLastPosition)
{
    NCFixture f;
    ZELKinRollLayupProcedure* procedure = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"));
    procedure->SetSafetyPlane(ZELMathPlane(ZELMathPoint(1.0, 2.0, -12.7), ZELMathVector(0, 0, 1)));
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 25.4}, 3810.0);
    ZELKinTowCourse* first = f.AddCourse(procedure, 0x1, 16);
    f.AddCoursePosition(first, 1, {0.0, 0.0, 0.0}, 2540.0);
    f.AddCoursePosition(first, 2, {25.4, 0.0, 0.0}, 1270.0);
    // A command after the last position does not hide it.
    f.AddTowCommand(first, ZELKinTowCommand::Cut, 0x1);
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 25.4}, 3810.0);
    ZELKinTowCourse* second = f.AddCourse(procedure, 0x1, 16);
    f.AddCoursePosition(second, 1, {0.0, 0.0, 0.0}, 5080.0);
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 25.4}, 3810.0);
    EXPECT_EQ(ZELTest::LinesStartingWith(HeadOf(f), QStringLiteral(";[RETRACT MODEL]")),
              QStringList({QStringLiteral(
                  ";[RETRACT MODEL] OPMM=SPECIFIED,RetractAxis=Z,RetractValue=-0.500000,RetractFeedrate=50.000000")}));
}

TEST(ZELKinAFPGCodePly, TheSequenceRecordPrintsTheProgramsAuthorAndDate)
{
    NCFixture f;
    f.program->SetAuthor(QStringLiteral("A. N. Other"));
    f.program->SetDate(QDateTime(QDate(2023, 12, 25), QTime(23, 59, 58)));
    f.AddShortCourse(f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply")));
    EXPECT_EQ(ZELTest::LinesStartingWith(HeadOf(f), QStringLiteral("; Sequence")),
              QStringList({QStringLiteral("; Sequence 0101 processed by A. N. Other at Mon Dec 25 23:59:58 2023")}));
}
