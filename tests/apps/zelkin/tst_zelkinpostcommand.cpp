#include "zelkintesttoolpath.h"
#include "zelkinpostednc.h"
#include "zelkintoolrun.h"

#include <zeltestnamedpipe.h>
#include <zeltestsupport.h>

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <string>

namespace {

// The time of ReproducibleEnvironment's SOURCE_DATE_EPOCH as the files print it.
const QString kStamp = QStringLiteral("11/14/23 22:13:20");

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QStringList LinesOf(const QString& path)
{
    return QString::fromUtf8(ReadAll(path)).split(QLatin1Char('\n'));
}

// Every file below `directory`, as paths relative to it, sorted.
QStringList FilesBelow(const QString& directory)
{
    QStringList files;
    QDirIterator it(directory, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(QDir(directory).relativeFilePath(it.next()));
    files.sort();
    return files;
}

// Every file below `directory` with its bytes.
QMap<QString, QByteArray> ContentsBelow(const QString& directory)
{
    QMap<QString, QByteArray> contents;
    for (const QString& file : FilesBelow(directory))
        contents.insert(file, ReadAll(QDir(directory).filePath(file)));
    return contents;
}

struct Posting
{
    explicit Posting(const QString& document = ZELKinTestToolpath::Document())
    {
        toolpath = WriteFile(directory, QStringLiteral("flat.json"), document);
    }

    QString PathOf(const QString& name) const { return QDir(directory.path()).filePath(name); }

    ZELKinToolRun Post(const QString& output, const QStringList& extra = QStringList(),
                       const QByteArray& input = QByteArray()) const
    {
        return RunZelkin(QStringList{QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                     QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), output} +
                             extra,
                         ReproducibleEnvironment(), input);
    }

    QTemporaryDir directory;
    QString toolpath;
};

// The largest material axis value ("U" word, mm) of the ply file's lines.
double LastMaterialOf(const QString& plyFile)
{
    QFile file(plyFile);
    if (!file.open(QIODevice::ReadOnly))
        return -1.0;
    const QRegularExpression word(QStringLiteral("(?:^|[^A-Z_])U(-?\\d+\\.\\d+)"));
    double largest = 0.0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QRegularExpressionMatch found = word.match(QString::fromLatin1(line));
        if (found.hasMatch())
            largest = std::max(largest, found.captured(1).toDouble());
    }
    return largest;
}

} // namespace

TEST(ZELKinPostCommand, WritesTheProgramSetPlyAndProbingFilesInAFolderNamedAfterTheProgram)
{
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    const ZELKinToolRun run = posting.Post(output);

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(FilesBelow(output), QStringList({QStringLiteral("flat-test/flat-test#0101.PPF"),
                                               QStringLiteral("flat-test/flat-test.PPSF"),
                                               QStringLiteral("flat-test/flat-test.PTPF")}));
}

TEST(ZELKinPostCommand, ShowsTheLibrarysProgressLinesOnStandardError)
{
    const Posting posting;
    const ZELKinToolRun run = posting.Post(posting.PathOf(QStringLiteral("nc")));

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    const QStringList library = run.GetErrorLines().filter(QRegularExpression(
        QStringLiteral("^(Translating the program|Solving kinematics|  Processing .*|  Writing .*)$")));
    EXPECT_EQ(library, QStringList({QStringLiteral("Translating the program"), QStringLiteral("Solving kinematics"),
                                    QStringLiteral("  Processing ply one"), QStringLiteral("  Writing ply one"),
                                    QStringLiteral("  Writing probe")}))
        << run.standardError.toStdString();
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("Translating the program")));
    EXPECT_TRUE(run.GetErrorLines().filter(QStringLiteral("zelkin: ")).isEmpty()) << run.standardError.toStdString();
}

TEST(ZELKinPostCommand, EndsWithWhatItWroteOnStandardOutput)
{
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    const ZELKinToolRun run = posting.Post(output, {QStringLiteral("--quiet")});

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(run.standardError, QString());
    const QStringList lines = run.standardOutput.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 10) << run.standardOutput.toStdString();
    EXPECT_EQ(lines.at(0), QStringLiteral("Program flat-test, revision B"));
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^Wrote 3 files, \\d+(\\.\\d)? k?B:$")).match(lines.at(1)).hasMatch())
        << lines.at(1).toStdString();
    // The folder's files in name order, each with its size.
    const QString folder = QDir(output).filePath(QStringLiteral("flat-test"));
    const QStringList files{QStringLiteral("flat-test#0101.PPF"), QStringLiteral("flat-test.PPSF"),
                            QStringLiteral("flat-test.PTPF")};
    for (int i = 0; i < files.size(); ++i) {
        const QString path = QDir(folder).filePath(files.at(i));
        EXPECT_TRUE(lines.at(2 + i).startsWith(QStringLiteral("  ") + path + QStringLiteral("  ")))
            << lines.at(2 + i).toStdString();
        const qint64 size = QFileInfo(path).size();
        const QString shown = size < 1000 ? QStringLiteral("%1 B").arg(size)
                                          : QStringLiteral("%1 kB").arg(double(size) / 1000.0, 0, 'f', 1);
        EXPECT_TRUE(lines.at(2 + i).endsWith(QStringLiteral(" ") + shown)) << lines.at(2 + i).toStdString();
    }
    EXPECT_EQ(lines.at(5), QString());
    // One course of 16 positions between the approach link's and the
    // retract link's position: 18. The material axis counts the course's
    // material from its start; the ply's laid length is where it ends.
    const QStringList heading = lines.at(6).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    EXPECT_EQ(heading, QStringList({QStringLiteral("ply"), QStringLiteral("procedure"), QStringLiteral("courses"),
                                    QStringLiteral("positions"), QStringLiteral("laid"), QStringLiteral("length"),
                                    QStringLiteral("estimated"), QStringLiteral("run"), QStringLiteral("time")}));
    EXPECT_TRUE(lines.at(7).startsWith(QStringLiteral("0101  ply one    1        18         ")))
        << lines.at(7).toStdString();
    EXPECT_TRUE(lines.at(8).startsWith(QStringLiteral("all              1        18         ")))
        << lines.at(8).toStdString();
    // Cells stand two blanks or more apart; the ply's and the whole
    // program's laid length and run time are the same, one ply in all.
    const QRegularExpression apart(QStringLiteral("  +"));
    const QStringList ply = lines.at(7).split(apart);
    const QStringList all = lines.at(8).split(apart);
    ASSERT_EQ(ply.size(), 6) << lines.at(7).toStdString();
    ASSERT_EQ(all.size(), 5) << lines.at(8).toStdString();
    EXPECT_EQ(ply.at(4),
              QStringLiteral("%1 m").arg(LastMaterialOf(QDir(folder).filePath(files.first())) / 1000.0, 0, 'f', 2));
    EXPECT_EQ(all.at(3), ply.at(4));
    // A run time as verify shows it, "h:mm:ss.s".
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d+:\\d\\d:\\d\\d\\.\\d$")).match(ply.at(5)).hasMatch())
        << ply.at(5).toStdString();
    EXPECT_EQ(all.at(4), ply.at(5));
    EXPECT_EQ(lines.at(9), QString());
}

TEST(ZELKinPostCommand, StampsTheToolpathsNameRevisionAndTheSourceDateIntoTheProgramSet)
{
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    ASSERT_EQ(posting.Post(output).exitCode, 0);

    const QStringList lines = LinesOf(output + QStringLiteral("/flat-test/flat-test.PPSF"));
    ASSERT_GE(lines.size(), 12);
    EXPECT_EQ(lines.at(0), QStringLiteral("PROGRAM SET ID: flat-test"));
    EXPECT_EQ(lines.at(1), QStringLiteral("REVISION      : B"));
    EXPECT_EQ(lines.at(8), QStringLiteral("CPS DATE/TIME : ") + kStamp);
    EXPECT_EQ(lines.at(10), QStringLiteral("CPP DATE/TIME : ") + kStamp);
    EXPECT_TRUE(lines.contains(QStringLiteral("; 0101, ply one")));
}

TEST(ZELKinPostCommand, ThePlyFileLaysTheCourseWithItsTowsAddedAndCut)
{
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    ASSERT_EQ(posting.Post(output).exitCode, 0);

    const QStringList lines = LinesOf(output + QStringLiteral("/flat-test/flat-test#0101.PPF"));
    EXPECT_TRUE(lines.contains(QStringLiteral("GUD_EID=\"flat-test\"")));
    EXPECT_TRUE(lines.contains(QStringLiteral("GUD_REVISION=\"B\"")));
    EXPECT_TRUE(lines.contains(QStringLiteral(";[COURSE] CourseNumber=1,TowRoller=16,TowsUsed=FFFF,Material=T35-E120")));
    EXPECT_TRUE(lines.contains(QStringLiteral("; Tows Required for Course [FFFF]")));
    EXPECT_FALSE(lines.contains(QStringLiteral("M85; 8-Tow Roller Loaded")));
    EXPECT_TRUE(lines.contains(QStringLiteral("M84; 16-Tow Roller Loaded")));
    // U counts the path of the course's points from its first position: 50
    // mm along and 100 mm down to the part (111.803 mm), 60 mm more to where
    // the tow trajectory starts and the tows are added, pinched for the
    // machine's 12.7 mm add pinch, and 90 mm more to the roll-out, where
    // they are cut.
    EXPECT_TRUE(lines.contains(QStringLiteral(";PMAC1: G500U171.803A/B[FFFF]")));
    EXPECT_TRUE(lines.contains(QStringLiteral(";PMAC1: G500U184.503A/E[FFFF]")));
    EXPECT_TRUE(lines.contains(QStringLiteral(";PMAC1: G500U261.803C/B[FFFF]")));
    EXPECT_EQ(lines.last(), QString()) << "the file ends its last line";
    EXPECT_EQ(lines.at(lines.size() - 2), QStringLiteral("M02"));
}

TEST(ZELKinPostCommand, ALinkEndingAboveTheCourseComesDownToItsApproachPointOnALineOfItsOwn)
{
    // The toolpath's approach link ends 300 mm over the part at X 2800, its
    // course's approach 100 mm over it at X 2900, as a CAM system may write
    // them. Every line commands the roller centre, 30 mm above its point;
    // the N1 line writes every word, and each line after it the words that
    // moved from what the controller holds. The approach point, an off-part
    // point of a course of 13 on-part points, is N15, with the exact stop
    // of a course's first command; the touch-down at 2950 (index -1) and
    // the roll-in point at 3000 (index 0) are both N1. U counts the path
    // from the approach point: 111.8034 mm down to 2950, 50 more to 3000.
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    ASSERT_EQ(posting.Post(output).exitCode, 0);

    const QStringList lines = LinesOf(output + QStringLiteral("/flat-test/flat-test#0101.PPF"));
    const qsizetype approach = lines.indexOf(
        QStringLiteral("N1G641 ADIS=OFF_PART X110.2362Y137.7953Z-46.0630C0.0000A0.0000C1=0.0000F393.701; Last off "
                       "part point"));
    ASSERT_GE(approach, 0);
    const qsizetype courseMode = lines.indexOf(QStringLiteral("COURSE_MODE"), approach);
    ASSERT_GT(courseMode, approach);
    EXPECT_EQ(lines.mid(courseMode, 4),
              QStringList({QStringLiteral("COURSE_MODE"),
                           QStringLiteral("N15G1G9X114.1732Z-53.9370;First point in course"),
                           QStringLiteral("N1G1X116.1417Z-57.8740U111.8034"),
                           QStringLiteral("N1M69G1X118.1102U161.8034F236.22")}));
}

TEST(ZELKinPostCommand, TheSameInputsAndSourceDateGiveTheSameBytes)
{
    const Posting posting;
    const QString first = posting.PathOf(QStringLiteral("first.bun"));
    const QString second = posting.PathOf(QStringLiteral("second.bun"));
    ASSERT_EQ(posting.Post(first).exitCode, 0);
    ASSERT_EQ(posting.Post(second).exitCode, 0);

    const QByteArray bundle = ReadAll(first);
    EXPECT_FALSE(bundle.isEmpty());
    EXPECT_EQ(bundle, ReadAll(second));
}

TEST(ZELKinPostCommand, ABundlePathWritesOneFileWithEverySection)
{
    const Posting posting;
    const QString bundle = posting.PathOf(QStringLiteral("job.bun"));
    ASSERT_EQ(posting.Post(bundle).exitCode, 0);

    const QStringList lines = LinesOf(bundle);
    EXPECT_EQ(lines.first(), QStringLiteral("SetId|flat-test|"));
    EXPECT_TRUE(lines.contains(QStringLiteral(">>>>> Filename|flat-test.PPSF| <<<<<")));
    EXPECT_TRUE(lines.contains(QStringLiteral(">>>>> Filename|flat-test#0101.PPF| <<<<<")));
    EXPECT_TRUE(lines.contains(QStringLiteral(">>>>> Filename|flat-test.PTPF| <<<<<")));
    EXPECT_EQ(lines.count(QStringLiteral(">>>>> End of File <<<<<")), 3);
    EXPECT_EQ(FilesBelow(posting.directory.path()), QStringList({QStringLiteral("flat.json"), QStringLiteral("job.bun")}));
}

TEST(ZELKinPostCommand, AnAptsourcePathWritesTheBundleBesideIt)
{
    const Posting posting;
    ASSERT_EQ(posting.Post(posting.PathOf(QStringLiteral("job.aptsource"))).exitCode, 0);

    EXPECT_EQ(FilesBelow(posting.directory.path()), QStringList({QStringLiteral("flat.json"), QStringLiteral("job.bun")}));
}

TEST(ZELKinPostCommand, OnePlyModeReadsThePlyFromStandardInputAndReplacesItsSectionOfTheBundle)
{
    const Posting posting;
    const QString bundle = posting.PathOf(QStringLiteral("job.bun"));
    ASSERT_EQ(posting.Post(bundle).exitCode, 0);
    const QByteArray before = ReadAll(bundle);

    const ZELKinToolRun run = posting.Post(bundle, {QStringLiteral("--ply-to-process"), QStringLiteral("ONEPLY")},
                                           QByteArrayLiteral("0101\n"));

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_TRUE(run.standardError.contains(QStringLiteral(" Program has these procedures:\n0101\n")))
        << run.standardError.toStdString();
    EXPECT_TRUE(run.standardError.contains(QStringLiteral(" Enter PROCEDURE to process: ")));
    EXPECT_TRUE(QFile::exists(bundle + QStringLiteral("_procedures/flat-test/flat-test#0101.PPF")));
    // The ply was posted from the same inputs, so its new section is the old one.
    EXPECT_EQ(ReadAll(bundle), before);
}

TEST(ZELKinPostCommand, OnePlyModeGivenANumberNoPlyHasFailsAndWritesNothing)
{
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));

    const ZELKinToolRun run = posting.Post(output, {QStringLiteral("--ply-to-process"), QStringLiteral("ONEPLY")},
                                           QByteArrayLiteral("0109\n"));

    EXPECT_EQ(run.exitCode, 1);
    const QStringList lines = run.GetErrorLines();
    EXPECT_TRUE(lines.contains(QStringLiteral("zelkin: error: the ply number read from standard input is not one of "
                                              "the program's; nothing was written")))
        << run.standardError.toStdString();
    EXPECT_TRUE(run.standardError.contains(QStringLiteral("Could not process 0109: procedure not found")));
    EXPECT_FALSE(QFileInfo::exists(output + QStringLiteral("_procedures")));
    EXPECT_FALSE(QFileInfo::exists(output));
}

TEST(ZELKinPostCommand, AnAuthorWithALineEndFromTheEnvironmentWritesNothing)
{
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    QProcessEnvironment environment = ReproducibleEnvironment();
    environment.insert(QStringLiteral("USER"), QStringLiteral("jdoe\nM30"));

    const ZELKinToolRun run = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), posting.toolpath, QStringLiteral("--output"),
                                         output},
                                        environment);

    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(
        run.GetErrorLines(),
        QStringList({QStringLiteral("zelkin: error: the author's name from the environment variable USER contains "
                                    "the line end U+000A; set USER to a name without control characters or "
                                    "double quotes")}));
    EXPECT_EQ(FilesBelow(posting.directory.path()), QStringList({QStringLiteral("flat.json")}));
}

namespace {

// The toolpath document `document` with every tow width given as `width`.
QString WithTowWidth(QString document, const QString& width)
{
    return document.replace(QStringLiteral("\"towWidth\": 6.35"), QStringLiteral("\"towWidth\": ") + width);
}

QStringList WarningLines(const ZELKinToolRun& run)
{
    QStringList warnings;
    for (const QString& line : run.GetErrorLines()) {
        if (line.startsWith(QLatin1String("zelkin: warning: ")))
            warnings.append(line);
    }
    return warnings;
}

} // namespace

TEST(ZELKinPostCommand, ATowWidthOtherThanTheMachinesIsOneWarningNamingBoth)
{
    const Posting posting(WithTowWidth(ZELKinTestToolpath::Document(), QStringLiteral("3.175")));

    const ZELKinToolRun run = posting.Post(posting.PathOf(QStringLiteral("nc")));

    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(WarningLines(run),
              QStringList({QStringLiteral(
                  "zelkin: warning: the toolpath's tow width 3.175 mm at "
                  "$.program.procedures[0].courses[0].machineConfiguration.head.towWidth differs from the machine's "
                  "6.35 mm (the tow-width attribute of the machine description's root element)")}));
}

// The courses lay 16 tows on a roller of 16 of the machine's tows: a tow
// width that differs stays narrower, so that the roller still holds them.
TEST(ZELKinPostCommand, TowWidthsOtherThanTheMachinesInSeveralCoursesAreOneWarningForThePost)
{
    using namespace ZELKinTestToolpath;
    const Posting posting(
        WithTowWidth(ProgramDocument(QStringLiteral("flat-test"), QStringLiteral("B"),
                                     QJsonArray{ProbingProcedure(), LayupProcedure(QStringLiteral("ply one"), false),
                                                LayupProcedure(QStringLiteral("ply two"), false)}),
                     QStringLiteral("6.2")));

    const ZELKinToolRun run = posting.Post(posting.PathOf(QStringLiteral("nc")));

    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(WarningLines(run),
              QStringList({QStringLiteral(
                  "zelkin: warning: the toolpath's tow width 6.2 mm at "
                  "$.program.procedures[1].courses[0].machineConfiguration.head.towWidth differs from the machine's "
                  "6.35 mm (the tow-width attribute of the machine description's root element); 2 courses differ in "
                  "all")}));
}

TEST(ZELKinPostCommand, ATowWidthWithinAThousandthOfAMillimetreOfTheMachinesIsNoWarning)
{
    const Posting posting(WithTowWidth(ZELKinTestToolpath::Document(), QStringLiteral("6.3495")));

    const ZELKinToolRun run = posting.Post(posting.PathOf(QStringLiteral("nc")));

    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(WarningLines(run), QStringList());
}

namespace {

// The toolpath's one layup turns over at its course's point 8: the wrist
// reaches it only by turning the second roll half a turn in one step.
const QString kCannotBeSolved = QStringLiteral(
    "zelkin: error: procedure 'ply one', course 1, point 8: the wrist cannot reach this point from the one before "
    "without a flip: the procedure cannot be solved");

} // namespace

TEST(ZELKinPostCommand, AProcedureThatCannotBeSolvedStopsThePostWithStatusThreeAndReplacesNothing)
{
    Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    ASSERT_EQ(posting.Post(output).exitCode, 0);
    const QMap<QString, QByteArray> before = ContentsBelow(output);
    posting.toolpath = WriteFile(posting.directory, QStringLiteral("turning.json"),
                                 ZELKinTestToolpath::Document(QStringLiteral("ply one"), true));

    const ZELKinToolRun run = posting.Post(output);

    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.GetDiagnosticLines(), QStringList{kCannotBeSolved + QStringLiteral("; nothing was written")})
        << run.standardError.toStdString();
    // The library's own lines still say where solving stopped.
    EXPECT_TRUE(run.standardError.contains(QStringLiteral("    Kinematics solving failed for course 1 at point 8\n")))
        << run.standardError.toStdString();
    EXPECT_TRUE(run.standardError.contains(
        QStringLiteral("      Could not successfully find a kinematics solution for procedure ply one. It will be "
                       "omitted from the program.\n")))
        << run.standardError.toStdString();
    EXPECT_EQ(ContentsBelow(output), before);
}

TEST(ZELKinPostCommand, AMachineThatCannotReachThreePliesOfFourPostsNone)
{
    // The example machine with its second roll limited to +-40 deg: the 0
    // deg ply is laid with C1 at 0, the +-45 and 90 deg plies would need C1
    // at 45 deg and more (or C turned half a turn, which the bend cannot
    // then follow).
    QTemporaryDir directory;
    QFile example(GetExampleMachinePath());
    ASSERT_TRUE(example.open(QIODevice::ReadOnly));
    QString description = QString::fromUtf8(example.readAll());
    const QString secondRoll = QStringLiteral("name=\"C1\" type=\"rotary\" minimum=\"-185.5\" maximum=\"185.5\"");
    ASSERT_TRUE(description.contains(secondRoll));
    description.replace(secondRoll, QStringLiteral("name=\"C1\" type=\"rotary\" minimum=\"-40\" maximum=\"40\""));
    const QString machine = WriteFile(directory, QStringLiteral("narrow-c1.xml"), description);
    const QString toolpath = QDir(directory.path()).filePath(QStringLiteral("cylinder.json"));
    ASSERT_EQ(RunZelkin({QStringLiteral("generate-toolpath"), QStringLiteral("--part"), QStringLiteral("cylinder"),
                         QStringLiteral("--plies"), QStringLiteral("0,45,-45,90"), QStringLiteral("--courses"),
                         QStringLiteral("2"), QStringLiteral("-o"), toolpath})
                  .exitCode,
              0);
    const QString output = QDir(directory.path()).filePath(QStringLiteral("nc"));

    const ZELKinToolRun run = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), machine,
                                         QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), output});

    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.GetDiagnosticLines(),
              QStringList{QStringLiteral("zelkin: error: procedure 'Ply 2 +45', course 1, point 1: no wrist "
                                         "configuration within the machine's limits reaches this point: the procedure "
                                         "cannot be solved (3 problems in all); nothing was written")})
        << run.standardError.toStdString();
    EXPECT_FALSE(QFileInfo::exists(output));
}

TEST(ZELKinPostCommand, KeepGoingWritesTheProceduresWithoutProblemsAndStillExitsWithStatusThree)
{
    const Posting posting(ZELKinTestToolpath::Document(QStringLiteral("ply one"), true));
    const QString output = posting.PathOf(QStringLiteral("nc"));

    const ZELKinToolRun run = posting.Post(output, {QStringLiteral("--keep-going")});

    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.GetDiagnosticLines(), QStringList{kCannotBeSolved + QStringLiteral("; written without 'ply one'")})
        << run.standardError.toStdString();
    EXPECT_EQ(FilesBelow(output), QStringList({QStringLiteral("flat-test/flat-test.PPSF"),
                                               QStringLiteral("flat-test/flat-test.PTPF")}));
}

TEST(ZELKinPostCommand, ASourceDateThatIsNoNumberIsAnErrorAndNothingIsWritten)
{
    const Posting posting;
    QProcessEnvironment environment = ReproducibleEnvironment();
    environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("yesterday"));
    const QString output = posting.PathOf(QStringLiteral("nc"));
    const ZELKinToolRun run =
        RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                   QStringLiteral("--toolpath"), posting.toolpath, QStringLiteral("--output"), output},
                  environment);

    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetDiagnosticLines(),
              QStringList({QStringLiteral("zelkin: error: SOURCE_DATE_EPOCH is not a number of seconds: 'yesterday'")}));
    EXPECT_FALSE(QFile::exists(output));
}

TEST(ZELKinPostCommand, PostsTheShippedExampleEndToEnd)
{
    QTemporaryDir directory;
    const QString output = QDir(directory.path()).filePath(QStringLiteral("nc"));
    const ZELKinToolRun run =
        RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                   QStringLiteral("--toolpath"), QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/cylinder-section.json"),
                   QStringLiteral("--output"), output},
                  ReproducibleEnvironment());

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("Could not successfully find")));
    const QStringList files = FilesBelow(output);
    EXPECT_EQ(files.filter(QStringLiteral(".PPSF")).size(), 1);
    EXPECT_GE(files.filter(QStringLiteral(".PPF")).size(), 4) << files.join(QLatin1Char(' ')).toStdString();
    EXPECT_EQ(files.filter(QStringLiteral(".PTPF")).size(), 1);
}

namespace {

// Waits until `process` has shown `text` on its standard error.
bool WaitForProgress(QProcess& process, const QString& text)
{
    process.setReadChannel(QProcess::StandardError);
    QByteArray output;
    while (!output.contains(text.toUtf8())) {
        if (!process.waitForReadyRead(60000))
            return false;
        output += process.readAllStandardError();
    }
    return true;
}

} // namespace

TEST(ZELKinPostCommand, APostKilledWhileWritingPliesLeavesThePreviousFilesWholeAndNothingElse)
{
    QTemporaryDir directory;
    const QString toolpath = QDir(directory.path()).filePath(QStringLiteral("large.json"));
    const QString output = QDir(directory.path()).filePath(QStringLiteral("nc"));
    // Plies of 100 000 positions each take long enough to write that the
    // kill lands while one of them is being written.
    ASSERT_EQ(RunZelkin({QStringLiteral("generate-toolpath"), QStringLiteral("--part"), QStringLiteral("cylinder"),
                         QStringLiteral("--plies"), QStringLiteral("0,45,-45,90"), QStringLiteral("--courses"),
                         QStringLiteral("10"), QStringLiteral("--points-per-course"), QStringLiteral("10000"),
                         QStringLiteral("-o"), toolpath})
                  .exitCode,
              0);
    const QStringList arguments{QStringLiteral("post"),     QStringLiteral("--machine"), GetExampleMachinePath(),
                                QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), output};
    ASSERT_EQ(RunZelkin(arguments, ReproducibleEnvironment()).exitCode, 0);
    const QMap<QString, QByteArray> before = ContentsBelow(output);
    ASSERT_EQ(before.size(), 6) << QStringList(before.keys()).join(QLatin1Char(' ')).toStdString();

    QProcess post;
    post.setProcessEnvironment(ReproducibleEnvironment());
    post.start(QStringLiteral(ZELKIN_EXECUTABLE), arguments);
    ASSERT_TRUE(WaitForProgress(post, QStringLiteral("  Writing ")));
    post.kill();
    ASSERT_TRUE(post.waitForFinished(60000));
    ASSERT_EQ(post.exitStatus(), QProcess::CrashExit) << "the post ended before it was killed";

    // The same inputs write the same bytes: any other file, or any file
    // that differs, was left half-written.
    EXPECT_EQ(ContentsBelow(output), before);
}

struct UsageCase
{
    const char* name;
    QStringList arguments;
    const char* error;
};
ZELTEST_PRINT_CASE_BY_NAME(UsageCase);

class ZELKinPostCommandUsage : public ::testing::TestWithParam<UsageCase>
{
};

TEST_P(ZELKinPostCommandUsage, IsRefusedWithStatusTwoAndWritesNothing)
{
    QTemporaryDir directory;
    const ZELKinToolRun run = RunZelkin(QStringList{QStringLiteral("post")} + GetParam().arguments);

    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: ") + QString::fromUtf8(GetParam().error),
                           QStringLiteral("zelkin: hint: run 'zelkin help post' for its usage")}));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELKinPostCommandUsage,
    ::testing::Values(
        UsageCase{"NoOutput",
                  {QStringLiteral("--machine"), QStringLiteral("m.xml"), QStringLiteral("--toolpath"),
                   QStringLiteral("t.json")},
                  "missing the option --output"},
        UsageCase{
            "NoMachine",
            {QStringLiteral("--toolpath"), QStringLiteral("t.json"), QStringLiteral("--output"), QStringLiteral("out")},
            "missing the option --machine"},
        UsageCase{"UnknownFormat",
                  {QStringLiteral("--machine"), QStringLiteral("m.xml"), QStringLiteral("--toolpath"),
                   QStringLiteral("t.json"), QStringLiteral("--output"), QStringLiteral("out"),
                   QStringLiteral("--format"), QStringLiteral("VendorAFPGCode")},
                  "unknown NC format 'VendorAFPGCode' (known: AFPGCode)"},
        UsageCase{"UnknownWriterOption",
                  {QStringLiteral("--machine"), QStringLiteral("m.xml"), QStringLiteral("--toolpath"),
                   QStringLiteral("t.json"), QStringLiteral("--output"), QStringLiteral("out"),
                   QStringLiteral("--options"), QStringLiteral("tooling-retract: 25.4; retract: 1")},
                  "unknown writer option 'retract' (known: tooling-retract, pinch-max-length, pinch-release-length)"},
        UsageCase{"WriterOptionNotFinite",
                  {QStringLiteral("--machine"), QStringLiteral("m.xml"), QStringLiteral("--toolpath"),
                   QStringLiteral("t.json"), QStringLiteral("--output"), QStringLiteral("out"),
                   QStringLiteral("--options"), QStringLiteral("tooling-retract: inf")},
                  "writer option 'tooling-retract': 'inf' is not a finite number"},
        UsageCase{"UnknownPlyToProcess",
                  {QStringLiteral("--machine"), QStringLiteral("m.xml"), QStringLiteral("--toolpath"),
                   QStringLiteral("t.json"), QStringLiteral("--output"), QStringLiteral("out"),
                   QStringLiteral("--ply-to-process"), QStringLiteral("0101")},
                  "unknown ply to process '0101' (known: ONEPLY)"}),
    [](const ::testing::TestParamInfo<UsageCase>& info) { return std::string(info.param.name); });

TEST(ZELKinPostCommand, TheSameInputsAndSourceDateGiveTheSameFilesInAFolderSolvedOnEveryCore)
{
    QTemporaryDir directory;
    const QString toolpath = QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/dome.json");
    QList<QMap<QString, QByteArray>> runs;
    for (const QString& folder : {QStringLiteral("first"), QStringLiteral("second")}) {
        const QString output = QDir(directory.path()).filePath(folder);
        const ZELKinToolRun run =
            RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                       QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), output},
                      ReproducibleEnvironment());
        ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
        runs.append(ContentsBelow(output));
    }
    EXPECT_EQ(runs.at(0).size(), 6);
    EXPECT_EQ(runs.at(0), runs.at(1));
}

// One procedure at a time against the whole program at once.

namespace {

struct LayoutCase
{
    const char* name;
    const char* toolpath;
    //! Where the post writes, below its folder.
    const char* output;
    //! The ply number to answer the single-ply mode with; none for a whole post.
    const char* ply;
};
ZELTEST_PRINT_CASE_BY_NAME(LayoutCase);

const LayoutCase kLayouts[] = {
    {"CylinderInAFolder", "cylinder-section.json", "nc", nullptr},
    {"CylinderInABundle", "cylinder-section.json", "part.bun", nullptr},
    {"CylinderThirdPlyInAFolder", "cylinder-section.json", "nc", "0103"},
    {"CylinderSecondPlyInABundle", "cylinder-section.json", "part.bun", "0102"},
    {"DomeInAFolder", "dome.json", "nc", nullptr},
    {"DomeInABundle", "dome.json", "part.aptsource", nullptr},
    {"DomeFirstPlyInABundle", "dome.json", "part.bun", "0101"},
    {"FlatPanelInAFolder", "flat-panel.json", "nc", nullptr},
    {"FlatPanelInABundle", "flat-panel.json", "part.bun", nullptr},
    {"MinimalInAFolder", "minimal.json", "nc", nullptr},
    {"MinimalOnlyPlyInAFolder", "minimal.json", "nc", "0101"},
};

class ZELKinPostCommandLayout : public ::testing::TestWithParam<LayoutCase>
{
protected:
    // Posts into `folder`: first the whole part, then, for a ply, that ply
    // alone. `extra` goes with both. Returns whether the first post says it
    // went one procedure at a time.
    static bool Post(const QString& folder, const QStringList& extra)
    {
        const LayoutCase& layout = GetParam();
        const QStringList post{QStringLiteral("post"),
                               QStringLiteral("--machine"),
                               GetExampleMachinePath(),
                               QStringLiteral("--toolpath"),
                               QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/%1").arg(QLatin1String(layout.toolpath)),
                               QStringLiteral("--output"),
                               QDir(folder).filePath(QLatin1String(layout.output))};
        const ZELKinToolRun whole = RunZelkin(post + extra, ReproducibleEnvironment());
        EXPECT_EQ(whole.exitCode, 0) << whole.standardError.toStdString();
        if (layout.ply) {
            const ZELKinToolRun one
                = RunZelkin(post + extra + QStringList{QStringLiteral("--ply-to-process"), QStringLiteral("ONEPLY")},
                            ReproducibleEnvironment(), QByteArray(layout.ply) + '\n');
            EXPECT_EQ(one.exitCode, 0) << one.standardError.toStdString();
        }
        return !whole.GetErrorLines().filter(QStringLiteral("Posted one procedure at a time, at most ")).isEmpty();
    }
};

} // namespace

// The solving diagnostics (--debug-path) hold the whole program at once;
// without them, a toolpath file is posted one procedure at a time.
TEST_P(ZELKinPostCommandLayout, OneProcedureAtATimeWritesTheBytesOfTheWholeProgramAtOnce)
{
    QTemporaryDir directory;
    const QString atOnce = QDir(directory.path()).filePath(QStringLiteral("at-once"));
    const QString byProcedure = QDir(directory.path()).filePath(QStringLiteral("by-procedure"));
    ASSERT_TRUE(QDir().mkpath(atOnce) && QDir().mkpath(byProcedure));
    EXPECT_FALSE(
        Post(atOnce, {QStringLiteral("--debug-path"), QDir(directory.path()).filePath(QStringLiteral("diag"))}));
    EXPECT_TRUE(Post(byProcedure, {}));

    const QMap<QString, QByteArray> expected = ContentsBelow(atOnce);
    ASSERT_FALSE(expected.isEmpty());
    for (const QByteArray& bytes : expected)
        EXPECT_FALSE(bytes.isEmpty());
    EXPECT_EQ(ContentsBelow(byProcedure), expected);
    if (GetParam().ply) {
        EXPECT_EQ(FilesBelow(byProcedure).filter(QStringLiteral("_procedures/")).size(), 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Examples, ZELKinPostCommandLayout, ::testing::ValuesIn(kLayouts),
                         [](const ::testing::TestParamInfo<LayoutCase>& info) { return info.param.name; });

// The trace of motion lines.

namespace {

// Every numbered block ("N...") of the ply files below `directory`, as
// "<path>,<line>", in file and line order.
QStringList NumberedBlocksBelow(const QString& directory)
{
    QStringList blocks;
    for (const QString& file : FilesBelow(directory)) {
        if (!file.endsWith(QStringLiteral(".PPF")))
            continue;
        const QString path = QDir(directory).filePath(file);
        const QStringList lines = LinesOf(path);
        for (int i = 0; i < lines.size(); ++i) {
            if (lines.at(i).startsWith(QLatin1Char('N')))
                blocks.append(QStringLiteral("%1,%2").arg(path).arg(i + 1));
        }
    }
    return blocks;
}

} // namespace

TEST(ZELKinPostCommand, TheTraceNamesEveryNumberedBlockOfThePlyFilesWithThePositionSolveNames)
{
    const Posting posting;
    const QString output = posting.PathOf(QStringLiteral("nc"));
    const QString trace = posting.PathOf(QStringLiteral("trace.csv"));
    const QString axes = posting.PathOf(QStringLiteral("axes.csv"));
    ASSERT_EQ(posting.Post(output, {QStringLiteral("--trace"), trace}).exitCode, 0);
    ASSERT_EQ(RunZelkin({QStringLiteral("solve"), QStringLiteral("--machine"), GetExampleMachinePath(),
                         QStringLiteral("--toolpath"), posting.toolpath, QStringLiteral("--csv"), axes})
                  .exitCode,
              0);

    QStringList rows = LinesOf(trace);
    ASSERT_EQ(rows.takeLast(), QString()) << "the trace ends its last line";
    ASSERT_EQ(rows.takeFirst(), QStringLiteral("file,line,procedure,script,index"));
    QStringList places;
    for (const QString& row : rows)
        places.append(row.section(QLatin1Char(','), 0, 1));
    EXPECT_EQ(places, NumberedBlocksBelow(output));

    // Each traced line moves X where the position solve names puts it.
    QMap<QString, QString> xOf;
    for (const QString& row : LinesOf(axes).mid(1))
        xOf.insert(row.section(QLatin1Char(','), 0, 2), row.section(QLatin1Char(','), 3, 3));
    int checked = 0;
    for (const QString& row : rows) {
        const QString line = LinesOf(row.section(QLatin1Char(','), 0, 0)).at(row.section(QLatin1Char(','), 1, 1).toInt() - 1);
        const QString key = row.section(QLatin1Char(','), 2, 4);
        ASSERT_TRUE(xOf.contains(key)) << key.toStdString();
        const QRegularExpressionMatch x = QRegularExpression(QStringLiteral("X(-?\\d+\\.\\d{4})")).match(line);
        if (!x.hasMatch())
            continue;
        EXPECT_EQ(x.captured(1), QString::number(xOf.value(key).toDouble() / 25.4, 'f', 4))
            << row.toStdString() << ": " << line.toStdString();
        ++checked;
    }
    EXPECT_GT(checked, rows.size() / 2);
}

TEST(ZELKinPostCommand, InABundleTheTraceGivesTheBundlesLines)
{
    const Posting posting;
    const QString bundle = posting.PathOf(QStringLiteral("job.bun"));
    const QString trace = posting.PathOf(QStringLiteral("trace.csv"));
    ASSERT_EQ(posting.Post(bundle, {QStringLiteral("--trace"), trace}).exitCode, 0);

    const QStringList lines = LinesOf(bundle);
    const QStringList rows = LinesOf(trace).mid(1, LinesOf(trace).size() - 2);
    ASSERT_FALSE(rows.isEmpty());
    int numbered = 0;
    for (const QString& line : lines)
        numbered += line.startsWith(QLatin1Char('N')) ? 1 : 0;
    EXPECT_EQ(rows.size(), numbered);
    for (const QString& row : rows) {
        EXPECT_EQ(row.section(QLatin1Char(','), 0, 0), bundle);
        EXPECT_TRUE(lines.at(row.section(QLatin1Char(','), 1, 1).toInt() - 1).startsWith(QLatin1Char('N')))
            << row.toStdString();
    }
}

TEST(ZELKinPostCommand, ATraceThatCannotBeWrittenIsAnError)
{
    const Posting posting;
    const ZELKinToolRun run =
        posting.Post(posting.PathOf(QStringLiteral("nc")), {QStringLiteral("--trace"), QStringLiteral("/dev/full")});
    EXPECT_EQ(run.exitCode, 1);
    ASSERT_EQ(run.GetDiagnosticLines().size(), 1);
    EXPECT_TRUE(run.GetDiagnosticLines().first().startsWith(QStringLiteral("zelkin: error: cannot write /dev/full: ")))
        << run.standardError.toStdString();
}

// Toolpath values that would reach the NC unfit for it.

namespace {

// The test toolpath with `edit` applied to its layup procedure.
QString EditedLayupDocument(const std::function<void(QJsonObject&)>& edit)
{
    QJsonObject layup = ZELKinTestToolpath::LayupProcedure(QStringLiteral("ply one"), false);
    edit(layup);
    return ZELKinTestToolpath::ProgramDocument(QStringLiteral("flat-test"), QStringLiteral("B"),
                                               QJsonArray{layup, ZELKinTestToolpath::ProbingProcedure()});
}

void SetMaterialId(QJsonObject& layup, const QString& id)
{
    layup.insert(QStringLiteral("material"), QJsonObject{{QStringLiteral("id"), id}});
}

// Moves point `point` of trajectory `trajectory` of the layup's first course
// to X = `x`.
void MovePoint(QJsonObject& layup, int trajectory, int point, double x)
{
    QJsonArray courses = layup.value(QStringLiteral("courses")).toArray();
    QJsonObject course = courses.at(0).toObject();
    QJsonArray trajectories = course.value(QStringLiteral("trajectories")).toArray();
    QJsonObject run = trajectories.at(trajectory).toObject();
    QJsonArray points = run.value(QStringLiteral("points")).toArray();
    QJsonObject moved = points.at(point).toObject();
    QJsonArray origin = moved.value(QStringLiteral("origin")).toArray();
    origin.replace(0, x);
    moved.insert(QStringLiteral("origin"), origin);
    points.replace(point, moved);
    run.insert(QStringLiteral("points"), points);
    trajectories.replace(trajectory, run);
    course.insert(QStringLiteral("trajectories"), trajectories);
    courses.replace(0, course);
    layup.insert(QStringLiteral("courses"), courses);
}

struct UnfitToolpathCase
{
    const char* name;
    std::function<void(QJsonObject&)> edit;
    const char* error;
};
ZELTEST_PRINT_CASE_BY_NAME(UnfitToolpathCase);

class ZELKinPostCommandUnfitToolpath : public ::testing::TestWithParam<UnfitToolpathCase>
{
};

// Every file below `directory` that holds or would hold NC.
QStringList NcFilesBelow(const QString& directory)
{
    QStringList nc;
    for (const QString& file : FilesBelow(directory)) {
        const QString suffix = QFileInfo(file).suffix().toUpper();
        if (suffix == QLatin1String("PPSF") || suffix == QLatin1String("PPF") || suffix == QLatin1String("PTPF")
            || suffix == QLatin1String("BUN"))
            nc.append(file);
    }
    return nc;
}

} // namespace

TEST_P(ZELKinPostCommandUnfitToolpath, IsRefusedWithOneLineNamingTheFieldAndNoNcIsWritten)
{
    const UnfitToolpathCase& c = GetParam();
    const Posting posting(EditedLayupDocument(c.edit));
    const QString output = posting.PathOf(QStringLiteral("nc"));

    const ZELKinToolRun run = posting.Post(output);

    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList{QStringLiteral("zelkin: error: %1: %2").arg(posting.toolpath, QString::fromUtf8(c.error))});
    EXPECT_EQ(NcFilesBelow(posting.directory.path()), QStringList());
    EXPECT_FALSE(QFileInfo::exists(output));
}

INSTANTIATE_TEST_SUITE_P(
    Values, ZELKinPostCommandUnfitToolpath,
    ::testing::Values(
        UnfitToolpathCase{"MaterialIdHoldingNcLines",
                          [](QJsonObject& layup) { SetMaterialId(layup, QStringLiteral("T35-E120\nG0 Z0\nM30")); },
                          "$.program.procedures[0].material.id: text contains the line end U+000A"},
        UnfitToolpathCase{"MaterialIdClosingItsQuotes",
                          [](QJsonObject& layup) { SetMaterialId(layup, QStringLiteral("T35\")\nM30")); },
                          "$.program.procedures[0].material.id: text contains a double quote"},
        UnfitToolpathCase{"OriginOf1e300",
                          [](QJsonObject& layup) { MovePoint(layup, 2, 3, 1e300); },
                          "$.program.procedures[0].courses[0].trajectories[2].points[3].origin[0]: "
                          "expected a number from -100000 to 100000, found 1e+300"}),
    [](const ::testing::TestParamInfo<UnfitToolpathCase>& info) { return std::string(info.param.name); });

// A toolpath handed over through a pipe ("--toolpath <(cat T.json)",
// /dev/stdin) has no size to go by: it is read to its end as it comes.
TEST(ZELKinPostCommand, AToolpathFromANamedPipePostsTheSameBytesAsItsFile)
{
    const Posting posting;
    const QString fromFile = posting.PathOf(QStringLiteral("file.bun"));
    ASSERT_EQ(posting.Post(fromFile).exitCode, 0);

    const ZELTest::NamedPipe pipe(posting.directory.path(), QStringLiteral("toolpath.fifo"), ReadAll(posting.toolpath));
    ASSERT_TRUE(pipe.IsCreated());
    const QString fromPipe = posting.PathOf(QStringLiteral("pipe.bun"));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), pipe.GetPath(), QStringLiteral("--output"),
                                         fromPipe},
                                        ReproducibleEnvironment());

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    const QByteArray bundle = ReadAll(fromFile);
    EXPECT_FALSE(bundle.isEmpty());
    EXPECT_EQ(ReadAll(fromPipe), bundle);
}

TEST(ZELKinPostCommand, AMachineFromANamedPipePostsTheSameBytesAsItsFile)
{
    const Posting posting;
    const QString fromFile = posting.PathOf(QStringLiteral("file.bun"));
    ASSERT_EQ(posting.Post(fromFile).exitCode, 0);

    const ZELTest::NamedPipe pipe(posting.directory.path(), QStringLiteral("machine.fifo"),
                                  ReadAll(GetExampleMachinePath()));
    ASSERT_TRUE(pipe.IsCreated());
    const QString fromPipe = posting.PathOf(QStringLiteral("pipe.bun"));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), pipe.GetPath(),
                                         QStringLiteral("--toolpath"), posting.toolpath, QStringLiteral("--output"),
                                         fromPipe},
                                        ReproducibleEnvironment());

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(ReadAll(fromPipe), ReadAll(fromFile));
}
