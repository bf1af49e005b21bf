// The writer front end: formats, the directory and bundle layouts with their
// file names and markers, the options text, progress, the fatal paths and
// the single-ply mode.

#include "zelkinnctestprograms.h"

#include <zelkintestprocedure.h>

#include <zelsysexception.h>

#include <cstdio>
#include <cstdlib>
#include <limits>

using ZELTest::NCFixture;

namespace {

const QString kFormat = QStringLiteral("AFPGCode");

QStringList EntriesOf(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
}

void MakeDirectory(const QString& path)
{
    ASSERT_TRUE(QDir().mkpath(path)) << path.toStdString();
}

void WriteText(const QString& path, const QString& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(text.toUtf8());
}

// Death tests here fork without re-running the test ("fast" style), so that
// the child writes into the temporary folder that the parent made and
// checks afterwards.
void UseForkingDeathTests()
{
    GTEST_FLAG_SET(death_test_style, "fast");
}

// In a death test's child: standard input reads `text`.
void FeedStandardInput(const QString& folder, const QString& text)
{
    const QString path = QDir(folder).filePath(QStringLiteral("stdin.txt"));
    WriteText(path, text);
    if (!std::freopen(path.toLocal8Bit().constData(), "r", stdin))
        std::_Exit(3);
}

/*!
    The program of the golden bundle KIT.bun: a procedure of another kind
    ("Other"), ply 0101 "Ply K" with one short course on a 12-tow roller,
    and a probe procedure with a position and no targets.
*/
void BuildKit(NCFixture& f)
{
    f.program->SetOriginalFileName(QStringLiteral("KIT"));
    f.program->SetRevisionNumber(QStringLiteral("C"));
    auto* other = new ZELKinTestProcedure(f.program);
    other->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("Other")));

    ZELKinRollLayupProcedure* ply = f.AddLayup(QStringLiteral("Ply K"), QStringLiteral("Layup K"));
    ply->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0, 0, 254.0), ZELMathVector(0, 0, 1)));
    ply->AddPlyDefinition(
        NCFixture::Ply(QStringLiteral("K1"), QStringLiteral("T35"), 0.0, ZELCompStrategy::Offset, 0.5));
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(ply), {0.0, 0.0, 25.4, 0.0, 0.0}, 2540.0);
    ZELKinTowCourse* course = f.AddCourse(ply, 0x1, 12);
    f.AddCoursePosition(course, 1, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0}, 2540.0);
    f.AddCoursePosition(course, 2, {25.4, 0.0, 0.0, 0.0, 0.0, 25.4}, 2540.0);
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(ply), {25.4, 0.0, 25.4, 0.0, 0.0}, 2540.0);

    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("Probe K"));
    f.AddProbePosition(probing, {0.0, 0.0, 0.0}, 1270.0);
}

//! A program of two plies, 0101 and 0102, each with one course.
void BuildTwoPlies(NCFixture& f)
{
    for (const char* name : {"Ply A", "Ply B"}) {
        ZELKinRollLayupProcedure* ply = f.AddLayup(QString::fromLatin1(name), QString::fromLatin1(name));
        f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(ply), {0.0, 0.0, 25.4}, 2540.0);
        ZELKinTowCourse* course = f.AddCourse(ply, 0x3, 16);
        f.AddCoursePosition(course, 1, {0.0, 0.0, 0.0}, 2540.0);
        f.AddCoursePosition(course, 2, {25.4, 0.0, 0.0}, 2540.0);
        f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(ply), {25.4, 0.0, 25.4}, 2540.0);
    }
}

class ZELKinWriterTest : public ::testing::Test
{
protected:
    void Write(const QString& path, const QString& options = QString(), const QString& format = kFormat)
    {
        WriteWith(ZELKinWriter::FileErrorEndsProcess, path, options, format);
    }

    void WriteWith(ZELKinWriter::FileErrorMode mode, const QString& path, const QString& options = QString(),
                   const QString& format = kFormat)
    {
        ZELKinWriter writer(f.program);
        writer.SetCurrentDateTime(NCFixture::Now());
        writer.SetFileErrorMode(mode);
        writer.Write(path, format, options);
    }

    //! Whether the writer found the chosen ply missing.
    bool WriteOnePly(const QString& path)
    {
        ZELKinWriter writer(f.program);
        QString ply = QStringLiteral("ONEPLY");
        writer.SetPlyToProcess(ply);
        writer.SetCurrentDateTime(NCFixture::Now());
        writer.Write(path, kFormat, QString());
        return writer.IsChosenPlyMissing();
    }

    QString Output(const QString& relative = QString()) const
    {
        return relative.isEmpty() ? f.output.path() : QDir(f.output.path()).filePath(relative);
    }

    NCFixture f;
};

} // namespace

TEST_F(ZELKinWriterTest, AnUnknownFormatWritesNothing)
{
    f.BuildPart();
    Write(Output(QStringLiteral("out")), QString(), QStringLiteral("afpgcode"));
    Write(Output(QStringLiteral("out.bun")), QString(), QStringLiteral("Other"));
    Write(Output(QStringLiteral("vendor")), QString(), QStringLiteral("VendorAFPGCode"));
    EXPECT_EQ(EntriesOf(Output()), QStringList());
}

namespace {

struct UnsafeNameCase
{
    const char* name;
    QString programName;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(UnsafeNameCase);

class ZELKinWriterUnsafeName : public ZELKinWriterTest, public ::testing::WithParamInterface<UnsafeNameCase>
{
};

} // namespace

TEST_P(ZELKinWriterUnsafeName, IsRefusedBeforeAnythingIsWrittenInEveryLayout)
{
    f.BuildPart();
    f.program->SetOriginalFileName(GetParam().programName);
    for (const QString& target : {QStringLiteral("nc"), QStringLiteral("nc/PART.bun"), QStringLiteral("nc/PART.aptsource")}) {
        SCOPED_TRACE(target.toStdString());
        EXPECT_THROW_MESSAGE(Write(Output(target)), ZELSysException, GetParam().message);
    }
    EXPECT_EQ(EntriesOf(Output()), QStringList());
    EXPECT_FALSE(QFileInfo::exists(QDir(Output()).filePath(QStringLiteral("../escaped"))));
}

INSTANTIATE_TEST_SUITE_P(
    Names, ZELKinWriterUnsafeName,
    ::testing::Values(
        UnsafeNameCase{"ParentStep", QStringLiteral("../escaped"),
                       "cannot write the NC files of the program '../escaped': its name contains the path separator "
                       "'/'"},
        UnsafeNameCase{"TwoDots", QStringLiteral(".."),
                       "cannot write the NC files of the program '..': its name contains '..'"},
        UnsafeNameCase{"Backslash", QStringLiteral("a\\b"),
                       "cannot write the NC files of the program 'a\\b': its name contains the path separator '\\'"},
        UnsafeNameCase{"Control", QStringLiteral("a\x01"),
                       "cannot write the NC files of the program 'a\x01': its name contains the control character "
                       "U+0001"},
        UnsafeNameCase{"Empty", QString(), "cannot write the NC files of the program '': its name is empty"}),
    [](const ::testing::TestParamInfo<UnsafeNameCase>& info) { return std::string(info.param.name); });

TEST_F(ZELKinWriterTest, APathEndingInAptsourceWritesABundleBesideItAndNoDirectory)
{
    f.BuildPart();
    Write(Output(QStringLiteral("cam/PART.aptsource")));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("cam"))), QStringList({QStringLiteral("PART.bun")}));
    EXPECT_TRUE(
        NCFixture::ReadText(Output(QStringLiteral("cam/PART.bun"))).startsWith(QStringLiteral("SetId|PART|\n")));
}

TEST_F(ZELKinWriterTest, ThreePliesAndAProbeProcedureGiveTheProgramSetThreePlyFilesAndTheProbingFile)
{
    for (const char* name : {"one", "two"})
        f.AddShortCourse(f.AddLayup(QString::fromLatin1(name), QString::fromLatin1(name)));
    f.AddProbing(QStringLiteral("probe"));
    f.AddShortCourse(f.AddLayup(QStringLiteral("three"), QStringLiteral("three")));
    Write(Output(QStringLiteral("nc")));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc"))), QStringList({QStringLiteral("PART")}));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc/PART"))),
              QStringList({QStringLiteral("PART#0101.PPF"), QStringLiteral("PART#0102.PPF"),
                           QStringLiteral("PART#0103.PPF"), QStringLiteral("PART.PPSF"), QStringLiteral("PART.PTPF")}));
}

TEST_F(ZELKinWriterTest, RollLayupProceduresAreNumberedFrom101SkippingOtherKinds)
{
    ZELKinRollLayupProcedure* first = f.AddLayup(QStringLiteral("one"), QStringLiteral("one"));
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    ZELKinRollLayupProcedure* second = f.AddLayup(QStringLiteral("two"), QStringLiteral("two"));
    f.AddShortCourse(first);
    f.AddShortCourse(second);
    Write(Output(QStringLiteral("nc")));
    EXPECT_EQ(first->property("PlyNum").toInt(), 101);
    EXPECT_EQ(second->property("PlyNum").toInt(), 102);
    EXPECT_FALSE(probing->property("PlyNum").isValid());
}

TEST_F(ZELKinWriterTest, AProcedureThatIsGoneIsSkipped)
{
    delete f.AddLayup(QStringLiteral("gone"), QStringLiteral("gone"));
    ZELKinRollLayupProcedure* kept = f.AddLayup(QStringLiteral("kept"), QStringLiteral("kept"));
    f.AddShortCourse(kept);
    ASSERT_EQ(f.program->GetProcedure(0), nullptr);
    ::testing::internal::CaptureStdout();
    Write(Output(QStringLiteral("PART.bun")));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "  Writing kept\n");
    EXPECT_EQ(kept->property("PlyNum").toInt(), 101);
    const QString bundle = NCFixture::ReadText(Output(QStringLiteral("PART.bun")));
    EXPECT_EQ(ZELTest::LinesStartingWith(bundle, QStringLiteral(">>>>> Filename|")),
              QStringList({QStringLiteral(">>>>> Filename|PART.PPSF| <<<<<"),
                           QStringLiteral(">>>>> Filename|PART#0101.PPF| <<<<<")}));
}

TEST_F(ZELKinWriterTest, AProgramOfOtherProceduresOnlyStillGetsItsProgramSetFile)
{
    new ZELKinTestProcedure(f.program);
    new ZELKinTestProcedure(f.program);
    Write(Output(QStringLiteral("nc")));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc/PART"))), QStringList({QStringLiteral("PART.PPSF")}));
    EXPECT_TRUE(NCFixture::ReadText(Output(QStringLiteral("nc/PART/PART.PPSF")))
                    .startsWith(QStringLiteral("PROGRAM SET ID: PART\n")));
}

TEST_F(ZELKinWriterTest, ABundleHoldsEachFileBetweenItsMarkersAndNoSectionForOtherProcedures)
{
    BuildKit(f);
    Write(Output(QStringLiteral("KIT.bun")));
    EXPECT_TRUE(ZELTest::SameText(ZELTest::Golden(QStringLiteral("KIT.bun")),
                                  NCFixture::ReadText(Output(QStringLiteral("KIT.bun")))));
}

TEST_F(ZELKinWriterTest, ABundleInAMissingFolderGetsTheFolder)
{
    BuildKit(f);
    Write(Output(QStringLiteral("a/b/KIT.bun")));
    EXPECT_TRUE(ZELTest::SameText(ZELTest::Golden(QStringLiteral("KIT.bun")),
                                  NCFixture::ReadText(Output(QStringLiteral("a/b/KIT.bun")))));
}

TEST_F(ZELKinWriterTest, EachProcedureIsAnnouncedOnStandardOutputByItsToolpathName)
{
    BuildKit(f);
    ::testing::internal::CaptureStdout();
    Write(Output(QStringLiteral("nc")));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "  Writing Other\n  Writing Layup K\n  Writing Probe K\n");
}

TEST_F(ZELKinWriterTest, SeveralProbeProceduresShareOneProbingFileAndTheLastOneStays)
{
    for (const double z : {254.0, 508.0}) {
        ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
        probing->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0, 0, z), ZELMathVector(0, 0, 1)));
    }
    Write(Output(QStringLiteral("nc")));
    const QString text = NCFixture::ReadText(Output(QStringLiteral("nc/PART/PART.PTPF")));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";[RETRACT MODEL]")),
              QStringList({QStringLiteral(
                  ";[RETRACT MODEL] OPMM=SPECIFIED,RetractAxis=Z,RetractValue=20.000000,RetractFeedrate=0.0000")}));
}

TEST_F(ZELKinWriterTest, AnExistingFileIsReplacedWholeAndNoTemporaryFileIsLeft)
{
    f.BuildPart();
    MakeDirectory(Output(QStringLiteral("nc/PART")));
    WriteText(Output(QStringLiteral("nc/PART/PART.PPSF")), QString(20000, QLatin1Char('x')));
    Write(Output(QStringLiteral("nc")), ZELTest::kGoldenOptions);
    EXPECT_TRUE(ZELTest::SameText(ZELTest::Golden(QStringLiteral("PART.PPSF")),
                                  NCFixture::ReadText(Output(QStringLiteral("nc/PART/PART.PPSF")))));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc/PART"))),
              QStringList({QStringLiteral("PART#0101.PPF"), QStringLiteral("PART#0102.PPF"),
                           QStringLiteral("PART.PPSF"), QStringLiteral("PART.PTPF")}));
}

TEST_F(ZELKinWriterTest, AFolderOfAnEarlierPostWithMorePliesIsReplacedWholeAndNoStagingFolderIsLeft)
{
    BuildTwoPlies(f);
    Write(Output(QStringLiteral("nc")));
    ASSERT_EQ(
        EntriesOf(Output(QStringLiteral("nc/PART"))),
        QStringList({QStringLiteral("PART#0101.PPF"), QStringLiteral("PART#0102.PPF"), QStringLiteral("PART.PPSF")}));
    delete f.program->GetProcedure(1);

    Write(Output(QStringLiteral("nc")));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc"))), QStringList({QStringLiteral("PART")}));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc/PART"))),
              QStringList({QStringLiteral("PART#0101.PPF"), QStringLiteral("PART.PPSF")}));
}

TEST_F(ZELKinWriterTest, WithoutAGivenTimeTheFilesPrintTheTimeOfWriting)
{
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    ZELKinWriter writer(f.program);
    writer.Write(Output(QStringLiteral("nc")), kFormat, QString());
    const QDateTime after = QDateTime::currentDateTime().addSecs(1);
    const QStringList lines = ZELTest::LinesStartingWith(NCFixture::ReadText(
                                                             Output(QStringLiteral("nc/PART/PART.PPSF"))),
                                                         QStringLiteral("CPP DATE/TIME : "));
    ASSERT_EQ(lines.size(), 1);
    // Two-digit years read as 19xx; the file's century is today's.
    const QDateTime printed = QDateTime::fromString(lines.first().mid(16), QStringLiteral("MM/dd/yy HH:mm:ss"))
                                  .addYears(before.date().year() / 100 * 100 - 1900);
    EXPECT_TRUE(printed >= before.addMSecs(-before.time().msec()) && printed <= after) << lines.first().toStdString();
}

TEST_F(ZELKinWriterTest, TextOutsideAsciiIsWrittenInUtf8)
{
    f.program->SetAuthor(QString::fromUtf8("J\xC3\xA9r\xC3\xB4me"));
    ZELKinRollLayupProcedure* ply = f.AddLayup(QString::fromUtf8("Pli \xC3\xA9t\xC3\xA9"), QStringLiteral("Layup"));
    ply->AddPlyDefinition(NCFixture::Ply(QString::fromUtf8("\xE5\xB1\xA4"), QString::fromUtf8("\xC3\x84S4"), 0.0,
                                         ZELCompStrategy::Angle, 1.0));
    f.AddShortCourse(ply);
    Write(Output(QStringLiteral("nc")));

    QFile programSet(Output(QStringLiteral("nc/PART/PART.PPSF")));
    ASSERT_TRUE(programSet.open(QIODevice::ReadOnly));
    const QByteArray programSetBytes = programSet.readAll();
    EXPECT_TRUE(programSetBytes.contains("CREATED BY    : J\xC3\xA9r\xC3\xB4me\n"));
    EXPECT_TRUE(programSetBytes.contains("; 0101, Pli \xC3\xA9t\xC3\xA9\n"));
    // Padding counts characters, not bytes.
    EXPECT_TRUE(programSetBytes.contains(" 0101, \xE5\xB1\xA4            ,\xC3\x84S4     ,    0.000,A-ANGLE\n"));

    QFile plyFile(Output(QStringLiteral("nc/PART/PART#0101.PPF")));
    ASSERT_TRUE(plyFile.open(QIODevice::ReadOnly));
    const QByteArray plyBytes = plyFile.readAll();
    EXPECT_TRUE(plyBytes.startsWith("; Sequence 0101 processed by J\xC3\xA9r\xC3\xB4me at "));
    EXPECT_TRUE(plyBytes.contains(";[PLY] PlyId=\xE5\xB1\xA4,Angle=0.000,Method=A-ANGLE,Area=1.000\n"));
    EXPECT_TRUE(plyBytes.contains("GUD_MATERIAL_REQUIRED=\"\xC3\x84S4\"\n"));
}

TEST_F(ZELKinWriterTest, APlyFileOfManyBlocksIsWrittenWholeAndInOrder)
{
    // Some twenty thousand motion lines: more than one block of the
    // writer's buffer. Each position moves one inch along X only.
    constexpr int kPositions = 20000;
    ZELKinRollLayupProcedure* ply = f.AddLayup(QStringLiteral("Long"), QStringLiteral("Long"));
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(ply), {25.4, 0.0, 25.4}, 2540.0);
    ZELKinTowCourse* course = f.AddCourse(ply, 0x1, 16);
    for (int n = 1; n <= kPositions; ++n)
        f.AddCoursePosition(course, n, {25.4 * n, 0.0, 0.0}, 2540.0);
    Write(Output(QStringLiteral("nc")));

    // The link ends an inch above the approach point, which gets a line.
    QStringList expected{QStringLiteral("COURSE_MODE"), QStringLiteral("N1G1G9Z0.0000;First point in course")};
    for (int n = 2; n < kPositions - 1; ++n)
        expected.append(QStringLiteral("N%1G1X%1.0000").arg(n));
    expected.append(QStringLiteral("N%1G1G642 ADIS=COURSEND X%1.0000;Last point in course").arg(kPositions - 1));
    expected.append(QStringLiteral("OFF_COURSE_MODE"));
    const QString text = NCFixture::ReadText(Output(QStringLiteral("nc/PART/PART#0101.PPF")));
    EXPECT_GT(text.size(), 256 * 1024);
    EXPECT_EQ(ZELTest::LinesBetween(text, QStringLiteral("COURSE_MODE"), QStringLiteral("OFF_COURSE_MODE")),
              expected);
    EXPECT_TRUE(text.endsWith(QStringLiteral("N%1G1G641 ADIS=OFF_PART M5M18X%1.0000;First off part point\n"
                                             "CHECK_M01; Check Whether Optional Stopping\n"
                                             "; End of Course #1 Circuit\n"
                                             "M21; Ply End\n"
                                             "M23; Sequence End\n"
                                             "RETZ; Move to clearance point\n"
                                             "M02\n")
                                  .arg(kPositions)));
}

// Numbers that are not finite

namespace {

/*!
    One ply (0101) without ply records: a link ending at the origin, and a
    course of four positions an inch apart along X, at 2540 mm/min.
    Returns the course's third position, whose line is line 70 of the ply
    file: the approach point gives no line, the second position's is
    line 69.
*/
ZELKinRollLayupPosition* BuildShortPly(NCFixture& f)
{
    ZELKinRollLayupProcedure* ply = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"));
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(ply), {0.0, 0.0, 0.0}, 2540.0);
    ZELKinTowCourse* course = f.AddCourse(ply, 0x1, 16);
    ZELKinRollLayupPosition* third = nullptr;
    for (int n = 1; n <= 4; ++n) {
        ZELKinRollLayupPosition* position = f.AddCoursePosition(course, n, {25.4 * (n - 1), 0.0, 0.0}, 2540.0);
        if (n == 3)
            third = position;
    }
    f.AddLinkPosition(ZELKinTestAccess::CreateCourseLink(ply), {76.2, 0.0, 25.4}, 2540.0);
    return third;
}

} // namespace

TEST_F(ZELKinWriterTest, ANumberThatIsNotFiniteFailsTheWriteAndLeavesTheOldFileWhole)
{
    ZELKinRollLayupPosition* third = BuildShortPly(f);
    Write(Output(QStringLiteral("nc")));
    const QString plyFile = Output(QStringLiteral("nc/PART/PART#0101.PPF"));
    const QString before = NCFixture::ReadText(plyFile);
    ASSERT_TRUE(before.contains(QStringLiteral("\nN3G1G642 ADIS=COURSEND X2.0000;Last point in course\n")));

    third->SetFeedrate(ZELTest::kNaN);
    // A procedure after the ply, whose file is never begun.
    f.AddProbing(QStringLiteral("probe"));
    EXPECT_THROW_MESSAGE(
        Write(Output(QStringLiteral("nc"))), ZELSysException,
        QStringLiteral("cannot write the NC file '%1': the F of line 70 is nan, not a finite number").arg(plyFile));
    EXPECT_EQ(NCFixture::ReadText(plyFile), before);
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc/PART"))),
              QStringList({QStringLiteral("PART#0101.PPF"), QStringLiteral("PART.PPSF")}));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc"))), QStringList({QStringLiteral("PART")}));
}

TEST_F(ZELKinWriterTest, InABundleANumberThatIsNotFiniteIsNamedByTheBundlesLineAndTheBundleStaysWhole)
{
    ZELKinRollLayupPosition* third = BuildShortPly(f);
    const QString bundle = Output(QStringLiteral("PART.bun"));
    Write(bundle);
    const QString before = NCFixture::ReadText(bundle);

    third->SetVariableValue(f.x, std::numeric_limits<double>::infinity());
    // Line 70 of the ply comes after the bundle's first line, three empty
    // lines, the program-set marker and an empty line, the 72 lines of the
    // program-set file, its end marker and the ply's marker: line 150.
    EXPECT_THROW_MESSAGE(
        Write(bundle), ZELSysException,
        QStringLiteral("cannot write the NC file '%1': the X of line 150 is inf, not a finite number").arg(bundle));
    EXPECT_EQ(NCFixture::ReadText(bundle), before);
    EXPECT_EQ(EntriesOf(Output()), QStringList({QStringLiteral("PART.bun")}));
}

TEST_F(ZELKinWriterTest, AToolingRetractThatIsNotANumberFailsTheProbingFile)
{
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    f.AddProbePosition(probing, {0.0, 0.0, 0.0}, 1270.0);
    const QString probingFile = Output(QStringLiteral("nc/PART/PART.PTPF"));
    EXPECT_THROW_MESSAGE(
        Write(Output(QStringLiteral("nc")), QStringLiteral("tooling-retract: nan")), ZELSysException,
        QStringLiteral("cannot write the NC file '%1': the Retract of line 22 is nan, not a finite number")
            .arg(probingFile));
    EXPECT_FALSE(QFileInfo::exists(probingFile));
}

TEST_F(ZELKinWriterTest, ATextWithALineEndIsRefusedBeforeAnyFileIsWritten)
{
    f.BuildPart();
    f.program->SetAuthor(QStringLiteral("jdoe\nM30"));
    for (const QString& path : {Output(QStringLiteral("nc")), Output(QStringLiteral("PART.bun"))})
        EXPECT_THROW_MESSAGE(Write(path), ZELSysException,
                             "cannot write the NC: the author contains the line end U+000A");
    EXPECT_EQ(EntriesOf(Output()), QStringList());
}

TEST_F(ZELKinWriterTest, AWriterWithoutAProgramWritesNothing)
{
    ZELKinWriter writer(static_cast<ZELKinProgram*>(nullptr));
    writer.Write(Output(QStringLiteral("nc")), kFormat, QString());
    EXPECT_EQ(EntriesOf(Output()), QStringList());
}

// The options text

namespace {

struct OptionsCase
{
    const char* name;
    const char* options;
    const char* retractValueLine;
};
ZELTEST_PRINT_CASE_BY_NAME(OptionsCase);

class ZELKinWriterOptionsTest : public ZELKinWriterTest, public ::testing::WithParamInterface<OptionsCase>
{
};

const OptionsCase kOptionsCases[] = {
    {"PlainItem", "tooling-retract:25.4", ";[RETRACT VALUE] Retract=1.0000"},
    {"SpacesAroundKeyAndValueAreSimplified", "  tooling-retract :\t50.8 ", ";[RETRACT VALUE] Retract=2.0000"},
    {"AmongOtherItems", "pinch-max-length: 3;tooling-retract: 12.7;pinch-release-length: 1",
     ";[RETRACT VALUE] Retract=0.5000"},
    {"UnknownKeysAreIgnored", "retract: 25.4; tooling-retract-x: 25.4", ";[RETRACT VALUE] Retract=0.0000"},
    {"KeysAreCaseSensitive", "Tooling-Retract: 25.4", ";[RETRACT VALUE] Retract=0.0000"},
    {"InnerSpacesInAKeyCount", "tooling -retract: 25.4", ";[RETRACT VALUE] Retract=0.0000"},
    {"ANonNumberReadsAsZero", "tooling-retract: 25.4; tooling-retract: one inch", ";[RETRACT VALUE] Retract=0.0000"},
    {"AMissingValueReadsAsZero", "tooling-retract: 25.4; tooling-retract", ";[RETRACT VALUE] Retract=0.0000"},
    {"TheLastItemWins", "tooling-retract: 25.4; tooling-retract: 76.2", ";[RETRACT VALUE] Retract=3.0000"},
    {"EmptyItemsAreIgnored", ";;tooling-retract: 25.4;", ";[RETRACT VALUE] Retract=1.0000"},
};

} // namespace

TEST_P(ZELKinWriterOptionsTest, ToolingRetractIsReadFromTheOptionsText)
{
    f.AddProbing(QStringLiteral("probe"));
    Write(Output(QStringLiteral("nc")), QString::fromUtf8(GetParam().options));
    const QString text = NCFixture::ReadText(Output(QStringLiteral("nc/PART/PART.PTPF")));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";[RETRACT VALUE]")),
              QStringList({QString::fromUtf8(GetParam().retractValueLine)}));
}

INSTANTIATE_TEST_SUITE_P(Options, ZELKinWriterOptionsTest, ::testing::ValuesIn(kOptionsCases));

// Checking an options text before writing

namespace {

struct CheckedOptionsCase
{
    const char* name;
    const char* options;
    //! Empty for a text the check accepts.
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(CheckedOptionsCase);

class ZELKinWriterCheckOptionsTest : public ::testing::TestWithParam<CheckedOptionsCase>
{
};

const CheckedOptionsCase kCheckedOptionsCases[] = {
    {"NoOptions", "", ""},
    {"EmptyItemsAndBlanks", " ; ;tooling-retract: 25.4;", ""},
    {"EveryKeyOnce", "tooling-retract: 0; pinch-max-length: 300; pinch-release-length: 100000", ""},
    {"SpacesAroundKeyAndValue", "  tooling-retract :\t1000 ", ""},
    {"UnknownKey", "bogus: 3",
     "unknown writer option 'bogus' (known: tooling-retract, pinch-max-length, pinch-release-length)"},
    {"KeyInAnotherCase", "Tooling-Retract: 25.4",
     "unknown writer option 'Tooling-Retract' (known: tooling-retract, pinch-max-length, pinch-release-length)"},
    {"EmptyKey", ": 25.4", "unknown writer option '' (known: tooling-retract, pinch-max-length, pinch-release-length)"},
    {"KeyWithoutAValue", "tooling-retract", "writer option 'tooling-retract' has no value"},
    {"EmptyValue", "tooling-retract:", "writer option 'tooling-retract': '' is not a number"},
    {"ValueWithAUnit", "tooling-retract: 1 in", "writer option 'tooling-retract': '1 in' is not a number"},
    {"TwoValues", "tooling-retract: 1: 2", "writer option 'tooling-retract': '1: 2' is not a number"},
    {"NaN", "tooling-retract: nan", "writer option 'tooling-retract': 'nan' is not a finite number"},
    {"Infinity", "pinch-max-length: inf; pinch-release-length: 1",
     "writer option 'pinch-max-length': 'inf' is not a finite number"},
    {"BeyondADouble", "tooling-retract: 1e999", "writer option 'tooling-retract': '1e999' is not a finite number"},
    {"RetractAboveItsRange", "tooling-retract: 1e300",
     "writer option 'tooling-retract': '1e300' is outside the range 0 <= length <= 1000 mm"},
    {"RetractJustAboveItsRange", "tooling-retract: 1000.001",
     "writer option 'tooling-retract': '1000.001' is outside the range 0 <= length <= 1000 mm"},
    {"RetractNegative", "tooling-retract: -1",
     "writer option 'tooling-retract': '-1' is outside the range 0 <= length <= 1000 mm"},
    {"PinchLengthZero", "pinch-max-length: 0; pinch-release-length: 1",
     "writer option 'pinch-max-length': '0' is outside the range 0 < length <= 100000 mm"},
    {"PinchReleaseAboveItsRange", "pinch-max-length: 1; pinch-release-length: 100001",
     "writer option 'pinch-release-length': '100001' is outside the range 0 < length <= 100000 mm"},
    {"KeyGivenTwice", "tooling-retract: 25.4; tooling-retract: 76.2", "writer option 'tooling-retract' is given twice"},
    {"PinchMaxLengthAlone", "pinch-max-length: 300",
     "writer option 'pinch-max-length' does nothing without 'pinch-release-length'"},
    {"PinchReleaseLengthAlone", "tooling-retract: 1; pinch-release-length: 25",
     "writer option 'pinch-release-length' does nothing without 'pinch-max-length'"},
    {"FirstProblemIsNamed", "tooling-retract: x; bogus: 1", "writer option 'tooling-retract': 'x' is not a number"},
};

} // namespace

TEST_P(ZELKinWriterCheckOptionsTest, NamesWhatTheWriterWouldNotUseAsWritten)
{
    const CheckedOptionsCase& c = GetParam();
    const QString options = QString::fromUtf8(c.options);
    if (QString::fromUtf8(c.message).isEmpty())
        EXPECT_NO_THROW(ZELKinWriter::CheckOptions(options));
    else
        EXPECT_THROW_MESSAGE(ZELKinWriter::CheckOptions(options), ZELSysException, QString::fromUtf8(c.message));
}

INSTANTIATE_TEST_SUITE_P(Options, ZELKinWriterCheckOptionsTest, ::testing::ValuesIn(kCheckedOptionsCases));

// Fatal paths

TEST_F(ZELKinWriterTest, AnOutputDirectoryThatCannotBeMadeEndsTheProcess)
{
    UseForkingDeathTests();
    f.BuildPart();
    WriteText(Output(QStringLiteral("file")), QStringLiteral("not a folder"));
    const QString path = Output(QStringLiteral("file/nc"));
    EXPECT_DEATH(
        Write(path),
        ZELTest::Literally(QStringLiteral("Could not create the output directory '%1': Not a directory").arg(path)));
}

// Longer than a file name may be (255 bytes), so that no folder of that
// name can be made, not even by root.
const QString kOverlongName(300, QLatin1Char('P'));

TEST_F(ZELKinWriterTest, APartOutputDirectoryThatCannotBeMadeEndsTheProcess)
{
    UseForkingDeathTests();
    f.BuildPart();
    f.program->SetOriginalFileName(kOverlongName);
    EXPECT_DEATH(
        Write(Output(QStringLiteral("nc"))),
        ZELTest::Literally(
            QStringLiteral("Could not create the part output directory '%1': File name too long").arg(kOverlongName)));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc"))), QStringList());
}

TEST_F(ZELKinWriterTest, TheNameInAFatalMessageIsWrittenInLatin1)
{
    UseForkingDeathTests();
    f.program->SetOriginalFileName(kOverlongName + QStringLiteral("\u00e9\u0141"));
    EXPECT_DEATH(Write(Output(QStringLiteral("nc"))),
                 ZELTest::Literally(QStringLiteral("Could not create the part output directory '%1\u00e9?'")
                                        .arg(kOverlongName)));
}

namespace {

// A program name that fits a folder name (255 bytes) but not the name of
// one of the folder's files.
struct OverlongFileNameCase
{
    const char* name;
    int programNameLength;
    const char* fileName; // "%1" is the program name
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(OverlongFileNameCase);

class ZELKinWriterOverlongFileNameTest : public ZELKinWriterTest,
                                         public ::testing::WithParamInterface<OverlongFileNameCase>
{
};

const OverlongFileNameCase kOverlongFileNameCases[] = {
    {"ProgramSetFile", 251, "%1.PPSF", "Could not open the PPSF file for writing at: '%1'"},
    {"PlyFile", 250, "%1#0101.PPF", "Could not open the PPF file for writing at: '%1'"},
};

} // namespace

TEST_P(ZELKinWriterOverlongFileNameTest, EndsTheProcessWithTheSystemsReasonAndLeavesNothing)
{
    UseForkingDeathTests();
    f.BuildPart();
    const QString name(GetParam().programNameLength, QLatin1Char('P'));
    f.program->SetOriginalFileName(name);
    const QString file = Output(QStringLiteral("nc/%1/").arg(name) + QString::fromUtf8(GetParam().fileName).arg(name));
    EXPECT_DEATH(
        Write(Output(QStringLiteral("nc"))),
        ZELTest::Literally(QString::fromUtf8(GetParam().message).arg(file) + QStringLiteral(": File name too long")));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc"))), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Files, ZELKinWriterOverlongFileNameTest, ::testing::ValuesIn(kOverlongFileNameCases));

TEST_F(ZELKinWriterTest, ABundleFileThatCannotBeOpenedEndsTheProcessWithTheSystemsReason)
{
    UseForkingDeathTests();
    f.BuildPart();
    const QString bundle = Output(QStringLiteral("nc/PART.bun"));
    MakeDirectory(bundle);
    EXPECT_DEATH(
        Write(bundle),
        ZELTest::Literally(QStringLiteral("Could not open the bundle file for writing at: '%1': ").arg(bundle)));
}

// A host that asked for exceptions gets the same messages, and the same
// files, as the process would have ended with.

TEST_F(ZELKinWriterTest, AnOutputDirectoryThatCannotBeMadeThrowsWhenTheHostAsksForExceptions)
{
    f.BuildPart();
    WriteText(Output(QStringLiteral("file")), QStringLiteral("not a folder"));
    const QString path = Output(QStringLiteral("file/nc"));
    EXPECT_THROW_MESSAGE(WriteWith(ZELKinWriter::FileErrorThrows, path), ZELSysException,
                         QStringLiteral("Could not create the output directory '%1': Not a directory").arg(path));
}

TEST_P(ZELKinWriterOverlongFileNameTest, ThrowsWhenTheHostAsksForExceptionsAndLeavesNothing)
{
    f.BuildPart();
    const QString name(GetParam().programNameLength, QLatin1Char('P'));
    f.program->SetOriginalFileName(name);
    const QString file = Output(QStringLiteral("nc/%1/").arg(name) + QString::fromUtf8(GetParam().fileName).arg(name));
    EXPECT_THROW_MESSAGE(WriteWith(ZELKinWriter::FileErrorThrows, Output(QStringLiteral("nc"))), ZELSysException,
                         QString::fromUtf8(GetParam().message).arg(file) + QStringLiteral(": File name too long"));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc"))), QStringList());
}

TEST_F(ZELKinWriterTest, ABundleFolderThatCannotBeMadeEndsTheProcess)
{
    UseForkingDeathTests();
    f.BuildPart();
    WriteText(Output(QStringLiteral("file")), QStringLiteral("not a folder"));
    EXPECT_DEATH(Write(Output(QStringLiteral("file/PART.bun"))),
                 ZELTest::Literally(QStringLiteral("Could not create the output directory '%1': Not a directory")
                                        .arg(Output(QStringLiteral("file")))));
}

// Single-ply mode: the child of each death test reads the ply number from
// a file put in place of its standard input, and exits with this status
// when the writer says that no ply has it.
constexpr int kChosenPlyMissing = 4;

TEST_F(ZELKinWriterTest, OnePlyListsThePliesAndWritesOnlyTheChosenPlyFile)
{
    UseForkingDeathTests();
    BuildTwoPlies(f);
    f.AddProbing(QStringLiteral("probe"));
    const QString prompt = QStringLiteral(
        "\n Program has these procedures:\n0101\n0102\n Enter PROCEDURE to process: ");
    EXPECT_EXIT(
        {
            // Spaces around the number and a carriage return do not count.
            FeedStandardInput(Output(), QStringLiteral("  0102 \r\n"));
            std::_Exit(WriteOnePly(Output(QStringLiteral("nc"))) ? kChosenPlyMissing : 0);
        },
        ::testing::ExitedWithCode(0), ZELTest::Literally(prompt));
    EXPECT_EQ(EntriesOf(Output()), QStringList({QStringLiteral("nc_procedures"), QStringLiteral("stdin.txt")}));
    EXPECT_EQ(EntriesOf(Output(QStringLiteral("nc_procedures/PART"))), QStringList({QStringLiteral("PART#0102.PPF")}));
    EXPECT_TRUE(NCFixture::ReadText(Output(QStringLiteral("nc_procedures/PART/PART#0102.PPF")))
                    .startsWith(QStringLiteral("; Sequence 0102 processed by jdoe")));
}

TEST_F(ZELKinWriterTest, OnePlyReplacesItsSectionOfTheBundleAndKeepsTheRest)
{
    UseForkingDeathTests();
    BuildTwoPlies(f);
    ZELKinRollLayupProcedure* second = qobject_cast<ZELKinRollLayupProcedure*>(f.program->GetProcedure(1));
    const QString bundle = Output(QStringLiteral("PART.bun"));
    Write(bundle);
    const QString before = NCFixture::ReadText(bundle);
    // The second ply changes before it is written again on its own.
    second->AddPlyDefinition(
        NCFixture::Ply(QStringLiteral("NEW"), QStringLiteral("T35"), 0.0, ZELCompStrategy::Angle, 1.0));

    EXPECT_EXIT(
        {
            FeedStandardInput(Output(), QStringLiteral("0102\n"));
            std::_Exit(WriteOnePly(bundle) ? kChosenPlyMissing : 0);
        },
        ::testing::ExitedWithCode(0), "Enter PROCEDURE to process");

    const QString plyFile = NCFixture::ReadText(Output(QStringLiteral("PART.bun_procedures/PART/PART#0102.PPF")));
    EXPECT_TRUE(plyFile.contains(QStringLiteral(";[PLY] PlyId=NEW,")));
    const QString marker = QStringLiteral(">>>>> Filename|PART#0102.PPF| <<<<<\n");
    const QString endOfFile = QStringLiteral(">>>>> End of File <<<<<\n");
    const qsizetype sectionStart = before.indexOf(marker) + marker.size();
    const qsizetype sectionEnd = before.indexOf(endOfFile, sectionStart);
    ASSERT_GT(sectionStart, marker.size());
    ASSERT_GT(sectionEnd, sectionStart);
    EXPECT_EQ(NCFixture::ReadText(bundle), before.left(sectionStart) + plyFile + before.mid(sectionEnd));
    EXPECT_FALSE(before.contains(QStringLiteral(";[PLY] PlyId=NEW,")));
}

TEST_F(ZELKinWriterTest, OnePlyReadFromAnEmptyStandardInputIsMissing)
{
    UseForkingDeathTests();
    BuildTwoPlies(f);
    EXPECT_EXIT(
        {
            FeedStandardInput(Output(), QString());
            std::_Exit(WriteOnePly(Output(QStringLiteral("nc"))) ? kChosenPlyMissing : 0);
        },
        ::testing::ExitedWithCode(kChosenPlyMissing),
        ZELTest::Literally(QStringLiteral("Could not process : procedure not found")));
    EXPECT_EQ(EntriesOf(Output()), QStringList({QStringLiteral("stdin.txt")}));
}

TEST_F(ZELKinWriterTest, AWriteOfEveryPlyFindsNoChosenPlyMissing)
{
    BuildTwoPlies(f);
    ZELKinWriter writer(f.program);
    writer.Write(Output(QStringLiteral("nc")), kFormat, QString());
    EXPECT_FALSE(writer.IsChosenPlyMissing());
}

TEST_F(ZELKinWriterTest, OnePlyOfAnUnknownNumberIsReportedAndWritesNothing)
{
    UseForkingDeathTests();
    BuildTwoPlies(f);
    const QString bundle = Output(QStringLiteral("PART.bun"));
    Write(bundle);
    const QString before = NCFixture::ReadText(bundle);
    EXPECT_EXIT(
        {
            FeedStandardInput(Output(), QStringLiteral("0109\n"));
            std::_Exit(WriteOnePly(bundle) ? kChosenPlyMissing : 0);
        },
        ::testing::ExitedWithCode(kChosenPlyMissing),
        ZELTest::Literally(QStringLiteral("Could not process 0109: procedure not found")));
    EXPECT_EQ(NCFixture::ReadText(bundle), before);
    EXPECT_EQ(EntriesOf(Output()), QStringList({QStringLiteral("PART.bun"), QStringLiteral("stdin.txt")}));
}

TEST_F(ZELKinWriterTest, OnePlyMissingFromTheOldBundleEndsTheProcessAndLeavesTheBundleWhole)
{
    UseForkingDeathTests();
    BuildTwoPlies(f);
    const QString bundle = Output(QStringLiteral("PART.bun"));
    Write(bundle);
    const QString before = NCFixture::ReadText(bundle);
    // A third ply that the bundle does not hold yet.
    ZELKinRollLayupProcedure* third = f.AddLayup(QStringLiteral("Ply C"), QStringLiteral("Ply C"));
    third->AddPlyDefinition(
        NCFixture::Ply(QStringLiteral("C1"), QStringLiteral("T35"), 0.0, ZELCompStrategy::Angle, 1.0));
    f.AddShortCourse(third);

    EXPECT_DEATH(
        {
            FeedStandardInput(Output(), QStringLiteral("0103\n"));
            WriteOnePly(bundle);
        },
        ZELTest::Literally(QStringLiteral("Could not find old procedure '0103' in file: '%1'").arg(bundle)));
    EXPECT_EQ(NCFixture::ReadText(bundle), before);
    EXPECT_EQ(EntriesOf(Output()),
              QStringList(
                  {QStringLiteral("PART.bun"), QStringLiteral("PART.bun_procedures"), QStringLiteral("stdin.txt")}));
}

TEST_F(ZELKinWriterTest, OnePlyWithoutAnOldBundleEndsTheProcess)
{
    UseForkingDeathTests();
    BuildTwoPlies(f);
    const QString bundle = Output(QStringLiteral("PART.bun"));
    EXPECT_DEATH(
        {
            FeedStandardInput(Output(), QStringLiteral("0101\n"));
            WriteOnePly(bundle);
        },
        ZELTest::Literally(
            QStringLiteral("Could not open the old bundle file for reading: '%1': No such file or directory")
                .arg(bundle)));
    EXPECT_FALSE(QFileInfo::exists(bundle));
}

// The trace of motion lines.

namespace {

struct TracedLine
{
    QString file;
    qint64 line;
    const ZELKinPosition* position;
};

// Every line of `path` that the controller runs as a numbered block ("N..."),
// as "<path>:<line>".
QStringList NumberedBlocks(const QString& path)
{
    QStringList blocks;
    const QStringList lines = NCFixture::ReadText(path).split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        if (lines.at(i).startsWith(QLatin1Char('N')))
            blocks.append(QStringLiteral("%1:%2").arg(path).arg(i + 1));
    }
    return blocks;
}

// Writes `program` to `path` and returns what the line trace was told.
QList<TracedLine> WriteTraced(ZELKinProgram* program, const QString& path)
{
    QList<TracedLine> traced;
    ZELKinWriter writer(program);
    writer.SetCurrentDateTime(NCFixture::Now());
    writer.SetLineTrace([&traced](const QString& file, qint64 line, const ZELKinPosition* position) {
        traced.append(TracedLine{file, line, position});
    });
    writer.Write(path, kFormat, QString());
    return traced;
}

QStringList PlacesOf(const QList<TracedLine>& traced)
{
    QStringList places;
    for (const TracedLine& line : traced)
        places.append(QStringLiteral("%1:%2").arg(line.file).arg(line.line));
    return places;
}

} // namespace

TEST_F(ZELKinWriterTest, ALineTraceIsToldEveryNumberedBlockOfThePlyFilesInOrder)
{
    BuildTwoPlies(f);
    const QList<TracedLine> traced = WriteTraced(f.program, Output(QStringLiteral("nc")));

    const QString first = Output(QStringLiteral("nc/PART/PART#0101.PPF"));
    const QString second = Output(QStringLiteral("nc/PART/PART#0102.PPF"));
    // Per ply: the approach line, the course's first position (the approach
    // point, which the link ends above) and its last, the off-part point;
    // then the retract's one position, the lift an inch above it.
    ASSERT_EQ(NumberedBlocks(first).size(), 4);
    EXPECT_EQ(PlacesOf(traced), NumberedBlocks(first) + NumberedBlocks(second));

    const auto* firstPly = qobject_cast<ZELKinRollLayupProcedure*>(f.program->GetProcedure(0));
    ASSERT_NE(firstPly, nullptr);
    EXPECT_EQ(traced.at(0).position, firstPly->GetCourseLink(0)->GetLastPosition());
    EXPECT_EQ(traced.at(1).position, qobject_cast<ZELKinPosition*>(firstPly->GetCourse(0)->GetCommand(0)));
    EXPECT_EQ(traced.at(2).position, firstPly->GetCourse(0)->GetLastPosition());
    EXPECT_EQ(traced.at(3).position, firstPly->GetCourseLink(1)->GetLastPosition());
}

TEST_F(ZELKinWriterTest, InABundleTheTraceCountsTheBundlesLines)
{
    BuildTwoPlies(f);
    const QString bundle = Output(QStringLiteral("job.bun"));
    const QList<TracedLine> traced = WriteTraced(f.program, bundle);

    EXPECT_EQ(PlacesOf(traced), NumberedBlocks(bundle));
    EXPECT_EQ(traced.size(), 8);
}
