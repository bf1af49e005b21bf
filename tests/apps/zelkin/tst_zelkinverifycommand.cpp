#include "zelkinpostednc.h"
#include "zelkintoolrun.h"

#include <zeltestsupport.h>

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <functional>

namespace {

const QString kToolpath = QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/cylinder-section.json");
const QString kPlyName = QStringLiteral("cylinder-section#0101.PPF");
const QString kVerifyHint = QStringLiteral("zelkin: hint: run 'zelkin help verify' for its usage");

// Measured in the findings' own units, which carry four decimals.
constexpr double kReported = 1e-4;
// A changed word is written with four decimals of an inch.
constexpr double kInchWord = 0.002;

// The demo part posted once for all tests; each test works on a copy.
class ZELKinVerifyCommand : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        posted = new QTemporaryDir();
        const ZELKinToolRun run = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"),
                                             GetExampleMachinePath(), QStringLiteral("--toolpath"), kToolpath,
                                             QStringLiteral("--output"), posted->path()},
                                            ReproducibleEnvironment());
        ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    }

    static void TearDownTestSuite()
    {
        delete posted;
        posted = nullptr;
    }

    void SetUp() override
    {
        program = QDir(copy.path()).filePath(QStringLiteral("cylinder-section"));
        CopyProgramFolder(QDir(posted->path()).filePath(QStringLiteral("cylinder-section")), program);
        ply = QDir(program).filePath(kPlyName);
    }

    ZELKinToolRun Verify(const QStringList& extra = {}) const
    {
        return RunZelkin(QStringList{QStringLiteral("verify"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                     QStringLiteral("--toolpath"), kToolpath, QStringLiteral("--nc"), copy.path()}
                         + extra);
    }

    QJsonObject VerifyAsJson() const
    {
        const ZELKinToolRun run = Verify({QStringLiteral("--json")});
        EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(run.standardOutput.toUtf8(), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << run.standardOutput.toStdString();
        return document.object();
    }

    // The number, from 1, of the `which`-th line after "COURSE_MODE" in the
    // block of course `course` of the ply file under test.
    int CourseLine(int course, int which) const
    {
        return ::CourseLine(ReadText(ply).split(QLatin1Char('\n')), course, which);
    }

    void ChangeLine(int number, const std::function<QString(const QString&)>& change) const
    {
        ::ChangeLine(ply, number, change);
    }

    static QList<QJsonObject> FindingsOf(const QJsonObject& result, const QString& check)
    {
        QList<QJsonObject> findings;
        for (const QJsonValue& finding : result.value(QStringLiteral("findings")).toArray()) {
            if (finding.toObject().value(QStringLiteral("check")).toString() == check)
                findings.append(finding.toObject());
        }
        return findings;
    }

    static inline QTemporaryDir* posted = nullptr;
    QTemporaryDir copy;
    QString program;
    QString ply;
};

} // namespace

TEST_F(ZELKinVerifyCommand, ThePostedDemoPartPassesEveryCheck)
{
    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 0) << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.endsWith(QStringLiteral("Result: PASS\n"))) << run.standardOutput.toStdString();
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("Findings:")));
    // The library's progress lines go to stderr, out of the report's way.
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("Solving kinematics")));
    EXPECT_TRUE(run.standardError.contains(QStringLiteral("Solving kinematics")));
}

TEST_F(ZELKinVerifyCommand, TheSummaryHasOneRowPerPlyWithItsProcedure)
{
    const QStringList lines = Verify().standardOutput.split(QLatin1Char('\n'));
    EXPECT_EQ(lines.at(0), QStringLiteral("Verified NC: %1").arg(copy.path()));
    EXPECT_EQ(lines.at(1), QStringLiteral("Gates: roller centre 0.0100 mm, normal and travel 0.0600 deg, flip "
                                          "30.000 deg, singularity 2.000 deg, tow events 0.010 mm"));
    EXPECT_TRUE(lines.at(3).startsWith(QStringLiteral("ply   procedure  courses  lines  matched  links  centre mm")));
    EXPECT_TRUE(lines.at(4).startsWith(QStringLiteral("0101  Ply 1 0    4 ")));
    EXPECT_TRUE(lines.at(5).startsWith(QStringLiteral("0102  Ply 2 +45  4 ")));
    EXPECT_TRUE(lines.at(6).startsWith(QStringLiteral("0103  Ply 3 -45  4 ")));
    EXPECT_TRUE(lines.at(7).startsWith(QStringLiteral("0104  Ply 4 +90  4 ")));
}

TEST_F(ZELKinVerifyCommand, TheJsonFormMatchesEveryCourseLineAndKeepsTheGates)
{
    const QJsonObject result = VerifyAsJson();
    EXPECT_TRUE(result.value(QStringLiteral("passed")).toBool());
    const QJsonObject gates = result.value(QStringLiteral("gates")).toObject();
    EXPECT_TRUE(ZELTest::SameDouble(0.01, gates.value(QStringLiteral("centreMm")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.06, gates.value(QStringLiteral("angleDeg")).toDouble(), ZELTest::kTight));
    const QJsonArray plies = result.value(QStringLiteral("plies")).toArray();
    ASSERT_EQ(plies.size(), 4);
    for (const QJsonValue& value : plies) {
        const QJsonObject ply = value.toObject();
        EXPECT_EQ(ply.value(QStringLiteral("courses")).toInt(), 4);
        EXPECT_GT(ply.value(QStringLiteral("matchedLines")).toInt(), 4 * 20);
        EXPECT_EQ(ply.value(QStringLiteral("matchedLines")).toInt() + ply.value(QStringLiteral("linkLines")).toInt(),
                  ply.value(QStringLiteral("motionLines")).toInt());
        EXPECT_LE(ply.value(QStringLiteral("maxCentreMm")).toObject().value(QStringLiteral("value")).toDouble(), 0.01);
        EXPECT_GT(ply.value(QStringLiteral("towEvents")).toInt(), 0);
    }
    EXPECT_TRUE(result.value(QStringLiteral("findings")).toArray().isEmpty());
}

TEST_F(ZELKinVerifyCommand, EachCourseIsCheckedOnItsOwnAndTheCoursesAddUpToThePly)
{
    const QStringList lines = Verify().standardOutput.split(QLatin1Char('\n'));
    const int perCourse = lines.indexOf(QStringLiteral("Per course:"));
    ASSERT_GT(perCourse, 0);
    EXPECT_TRUE(lines.at(perCourse + 1).startsWith(QStringLiteral("ply   course  lines  matched  links")));
    EXPECT_TRUE(lines.at(perCourse + 2).startsWith(QStringLiteral("0101  1 ")));
    EXPECT_TRUE(lines.at(perCourse + 17).startsWith(QStringLiteral("0104  4 ")));

    for (const QJsonValue& value : VerifyAsJson().value(QStringLiteral("plies")).toArray()) {
        const QJsonObject ply = value.toObject();
        const QJsonArray courses = ply.value(QStringLiteral("courseChecks")).toArray();
        ASSERT_EQ(courses.size(), 4);
        int motionLines = 0;
        int matchedLines = 0;
        for (int i = 0; i < courses.size(); ++i) {
            EXPECT_EQ(courses.at(i).toObject().value(QStringLiteral("course")).toInt(), i + 1);
            motionLines += courses.at(i).toObject().value(QStringLiteral("motionLines")).toInt();
            matchedLines += courses.at(i).toObject().value(QStringLiteral("matchedLines")).toInt();
        }
        EXPECT_EQ(motionLines, ply.value(QStringLiteral("motionLines")).toInt());
        EXPECT_EQ(matchedLines, ply.value(QStringLiteral("matchedLines")).toInt());
    }
}

TEST_F(ZELKinVerifyCommand, LinkLinesAreMeasuredAgainstTheirLinksPointsButNotGated)
{
    const QJsonObject result = VerifyAsJson();
    EXPECT_TRUE(result.value(QStringLiteral("passed")).toBool());
    const QJsonArray courses =
        result.value(QStringLiteral("plies")).toArray().at(0).toObject().value(QStringLiteral("courseChecks")).toArray();
    ASSERT_EQ(courses.size(), 4);
    const auto linkCentre = [&courses](int index) {
        return courses.at(index).toObject().value(QStringLiteral("maxLinkCentreMm")).toObject().value(
            QStringLiteral("value")).toDouble();
    };
    // The approach at the procedure's start waits for the wrist at the bare
    // point, the roller radius of 30 mm below its roller centre; the links
    // between courses are blended onto their points.
    EXPECT_TRUE(ZELTest::SameDouble(30.0, linkCentre(0), 0.01));
    EXPECT_LT(linkCentre(1), 0.01);
    EXPECT_LT(linkCentre(2), 0.01);
}

TEST_F(ZELKinVerifyCommand, AnXWordMovedATenthOfAnInchIsNamedWithItsFileAndLine)
{
    const int line = CourseLine(2, 5);
    double written = 0.0;
    ChangeLine(line, [&](const QString& text) {
        written = WordValue(text, QStringLiteral("X"));
        return WithWord(text, QStringLiteral("X"), written + 0.1);
    });
    ASSERT_NE(written, 0.0) << "the line has an X word";

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.standardOutput.contains(QStringLiteral("%1:%2: centre: the roller centre is 2.5").arg(ply).arg(line)))
        << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.contains(QStringLiteral("Result: FAIL")));

    const QList<QJsonObject> findings = FindingsOf(VerifyAsJson(), QStringLiteral("centre"));
    ASSERT_EQ(findings.size(), 1);
    EXPECT_EQ(findings.first().value(QStringLiteral("file")).toString(), ply);
    EXPECT_EQ(findings.first().value(QStringLiteral("line")).toInt(), line);
    EXPECT_EQ(findings.first().value(QStringLiteral("course")).toInt(), 2);
    EXPECT_EQ(findings.first().value(QStringLiteral("ply")).toString(), QStringLiteral("0101"));
    EXPECT_EQ(findings.first().value(QStringLiteral("procedure")).toString(), QStringLiteral("Ply 1 0"));
    EXPECT_TRUE(ZELTest::SameDouble(2.54, findings.first().value(QStringLiteral("value")).toDouble(), kInchWord));

    const QJsonArray courses =
        VerifyAsJson().value(QStringLiteral("plies")).toArray().at(0).toObject().value(QStringLiteral("courseChecks")).toArray();
    ASSERT_EQ(courses.size(), 4);
    EXPECT_EQ(courses.at(0).toObject().value(QStringLiteral("findings")).toInt(), 0);
    EXPECT_EQ(courses.at(1).toObject().value(QStringLiteral("findings")).toInt(), 1);
    EXPECT_EQ(courses.at(1).toObject().value(QStringLiteral("maxCentreMm")).toObject().value(QStringLiteral("line")).toInt(),
              line);
}

TEST_F(ZELKinVerifyCommand, AFirstRollTurnedInsideACourseIsAFlipAndTurnsTheNormal)
{
    // Ply 2 turns its first roll C along every course, so every line has a C word.
    ply = QDir(program).filePath(QStringLiteral("cylinder-section#0102.PPF"));
    const int line = CourseLine(2, 6);
    double written = 0.0;
    ChangeLine(line, [&](const QString& text) {
        written = WordValue(text, QStringLiteral("C"));
        return WithWord(text, QStringLiteral("C"), written + 40.0);
    });

    const QJsonObject result = VerifyAsJson();
    EXPECT_FALSE(result.value(QStringLiteral("passed")).toBool());
    const QList<QJsonObject> flips = FindingsOf(result, QStringLiteral("flip"));
    ASSERT_EQ(flips.size(), 2) << "into the changed line and out of it";
    EXPECT_EQ(flips.at(0).value(QStringLiteral("line")).toInt(), line);
    EXPECT_EQ(flips.at(1).value(QStringLiteral("line")).toInt(), line + 1);
    EXPECT_EQ(flips.at(0).value(QStringLiteral("subject")).toString(), QStringLiteral("C"));
    EXPECT_TRUE(flips.at(0).value(QStringLiteral("message")).toString().startsWith(QStringLiteral("C turns ")));
    EXPECT_GT(flips.at(0).value(QStringLiteral("value")).toDouble(), 30.0);
    const QList<QJsonObject> normals = FindingsOf(result, QStringLiteral("normal"));
    ASSERT_EQ(normals.size(), 1);
    EXPECT_EQ(normals.first().value(QStringLiteral("line")).toInt(), line);
}

TEST_F(ZELKinVerifyCommand, ARotaryWordBeyondItsLimitIsNamedWithTheLimit)
{
    const int line = CourseLine(1, 4);
    ChangeLine(line, [](const QString& text) { return WithWords(text, QStringLiteral("A100.0000")); });

    const QList<QJsonObject> limits = FindingsOf(VerifyAsJson(), QStringLiteral("limit"));
    ASSERT_FALSE(limits.isEmpty());
    EXPECT_EQ(limits.first().value(QStringLiteral("line")).toInt(), line);
    EXPECT_EQ(limits.first().value(QStringLiteral("subject")).toString(), QStringLiteral("A"));
    EXPECT_EQ(limits.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("A at 100.0000 deg is beyond its maximum of 95.0000 deg"));
    EXPECT_TRUE(ZELTest::SameDouble(95.0, limits.first().value(QStringLiteral("limit")).toDouble(), kReported));
}

TEST_F(ZELKinVerifyCommand, AFeedFasterThanAnAxisCanFollowIsASpeedFinding)
{
    // Along X at 100 m/min, where X runs at most 40 m/min.
    const int line = CourseLine(2, 5);
    ChangeLine(line, [](const QString& text) { return text.left(text.indexOf(QLatin1Char(';'))) + "F3937.01"; });

    const QList<QJsonObject> speeds = FindingsOf(VerifyAsJson(), QStringLiteral("speed"));
    ASSERT_FALSE(speeds.isEmpty());
    EXPECT_EQ(speeds.first().value(QStringLiteral("line")).toInt(), line);
    EXPECT_EQ(speeds.first().value(QStringLiteral("subject")).toString(), QStringLiteral("X"));
    EXPECT_TRUE(ZELTest::SameDouble(40.0, speeds.first().value(QStringLiteral("limit")).toDouble(), kReported));
    EXPECT_GT(speeds.first().value(QStringLiteral("value")).toDouble(), 40.0);
}

TEST_F(ZELKinVerifyCommand, ABendNearAQuarterTurnComesCloseToTheSingularity)
{
    // With A at 89 degrees the normal stands 1 degree off the first roll axis X.
    const int line = CourseLine(1, 4);
    ChangeLine(line, [](const QString& text) { return WithWords(text, QStringLiteral("A89.0000")); });
    // A is modal: the next line takes it back.
    ChangeLine(line + 1, [](const QString& text) { return WithWords(text, QStringLiteral("A0.0000")); });

    const QList<QJsonObject> singular = FindingsOf(VerifyAsJson(), QStringLiteral("singularity"));
    ASSERT_EQ(singular.size(), 1);
    EXPECT_EQ(singular.first().value(QStringLiteral("line")).toInt(), line);
    EXPECT_TRUE(ZELTest::SameDouble(1.0, singular.first().value(QStringLiteral("value")).toDouble(), 1e-3));
    EXPECT_EQ(singular.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("the normal is 1.000 deg from the first roll axis, the wrist's singularity (gate 2.000 deg)"));
}

TEST_F(ZELKinVerifyCommand, ATowAddMovedAlongTheCourseIsNamedWithItsEventLine)
{
    QStringList lines = ReadText(ply).split(QLatin1Char('\n'));
    const int index = lines.indexOf(QRegularExpression(QStringLiteral("^;PMAC1: G500U[0-9.]+A/B\\[.*")));
    ASSERT_GE(index, 0);
    const double u = WordValue(lines.at(index), QStringLiteral("G500U"));
    lines[index] = WithWord(lines.at(index), QStringLiteral("G500U"), u + 5.0);
    WriteText(ply, lines.join(QLatin1Char('\n')));

    const QList<QJsonObject> tows = FindingsOf(VerifyAsJson(), QStringLiteral("tow"));
    ASSERT_FALSE(tows.isEmpty());
    for (const QJsonObject& finding : tows) {
        EXPECT_EQ(finding.value(QStringLiteral("line")).toInt(), index + 1);
        EXPECT_TRUE(ZELTest::SameDouble(u + 5.0, finding.value(QStringLiteral("value")).toDouble(), kReported));
        EXPECT_TRUE(ZELTest::SameDouble(u, finding.value(QStringLiteral("limit")).toDouble(), 0.001));
    }
    EXPECT_TRUE(tows.first().value(QStringLiteral("message")).toString().startsWith(QStringLiteral("the NC adds tow ")));
}

TEST_F(ZELKinVerifyCommand, AMissingTowCutIsCountedAgainstTheToolpath)
{
    QStringList lines = ReadText(ply).split(QLatin1Char('\n'));
    const int index = lines.indexOf(QRegularExpression(QStringLiteral("^;PMAC1: G500U[0-9.]+C/B\\[.*")));
    ASSERT_GE(index, 0);
    lines.removeAt(index);
    WriteText(ply, lines.join(QLatin1Char('\n')));

    const QList<QJsonObject> tows = FindingsOf(VerifyAsJson(), QStringLiteral("tow"));
    ASSERT_FALSE(tows.isEmpty());
    EXPECT_TRUE(tows.first().value(QStringLiteral("message")).toString().contains(QStringLiteral(" 1 times in this "
                                                                                                 "course, the NC 0 "
                                                                                                 "times")))
        << tows.first().value(QStringLiteral("message")).toString().toStdString();
}

TEST_F(ZELKinVerifyCommand, APlyFileThatIsMissingIsAFindingNamingItsProcedure)
{
    ASSERT_TRUE(QFile::remove(QDir(program).filePath(QStringLiteral("cylinder-section#0102.PPF"))));

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.standardOutput.contains(
        QStringLiteral("\n  Ply 2 +45: missing: the NC has no ply file for the procedure 'Ply 2 +45'\n")))
        << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.endsWith(QStringLiteral("Result: FAIL (1 finding)\n")));
}

TEST_F(ZELKinVerifyCommand, ACourseNoLineRunsAlongIsAFinding)
{
    QStringList lines = ReadText(ply).split(QLatin1Char('\n'));
    const auto startsWith = [&lines](const QString& prefix) {
        return int(std::find_if(lines.cbegin(), lines.cend(),
                                [&prefix](const QString& line) { return line.startsWith(prefix); })
                   - lines.cbegin());
    };
    const int third = startsWith(QStringLiteral(";[COURSE] CourseNumber=3,"));
    const int fourth = startsWith(QStringLiteral(";[COURSE] CourseNumber=4,"));
    ASSERT_LT(third, fourth);
    lines.erase(lines.begin() + third, lines.begin() + fourth);
    WriteText(ply, lines.join(QLatin1Char('\n')));

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> missing = FindingsOf(result, QStringLiteral("missing"));
    ASSERT_EQ(missing.size(), 1);
    EXPECT_EQ(missing.first().value(QStringLiteral("course")).toInt(), 3);
    EXPECT_EQ(missing.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("no line of the NC runs along course 3 of the procedure"));
    // Its tows are neither added nor cut either.
    for (const QJsonObject& tow : FindingsOf(result, QStringLiteral("tow"))) {
        EXPECT_EQ(tow.value(QStringLiteral("course")).toInt(), 3);
        EXPECT_TRUE(tow.value(QStringLiteral("message")).toString().endsWith(QStringLiteral(" 1 times in this course, "
                                                                                           "the NC 0 times")));
    }
    EXPECT_FALSE(FindingsOf(result, QStringLiteral("tow")).isEmpty());
}

TEST_F(ZELKinVerifyCommand, APlyFileOfGarbageLaysNoCourseAndFailsEveryOne)
{
    QFile file(ply);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QByteArray garbage;
    for (int i = 0; i < 4096; ++i)
        garbage.append(char((i * 131 + 7) % 256));
    file.write(garbage);
    file.close();

    const ZELKinToolRun run = Verify({QStringLiteral("--json")});
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    const QJsonObject result = QJsonDocument::fromJson(run.standardOutput.toUtf8()).object();
    EXPECT_EQ(FindingsOf(result, QStringLiteral("missing")).size(), 4);
}

TEST_F(ZELKinVerifyCommand, ABundleIsReadLikeTheFolder)
{
    const QString bundle = QDir(copy.path()).filePath(QStringLiteral("job.bun"));
    ASSERT_EQ(RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                         QStringLiteral("--toolpath"), kToolpath, QStringLiteral("--output"), bundle},
                        ReproducibleEnvironment())
                  .exitCode,
              0);
    const ZELKinToolRun run = RunZelkin({QStringLiteral("verify"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), kToolpath, QStringLiteral("--nc"), bundle});
    EXPECT_EQ(run.exitCode, 0) << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.contains(QStringLiteral("\n0104  Ply 4 +90  4 ")));
}

TEST_F(ZELKinVerifyCommand, AFolderWithoutAPostedProgramIsAnError)
{
    const QTemporaryDir empty;
    const ZELKinToolRun run = RunZelkin({QStringLiteral("verify"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), kToolpath, QStringLiteral("--nc"), empty.path()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines().last(),
              QStringLiteral("zelkin: error: no posted program in %1: no program-set file (.PPSF) there or in a "
                             "folder inside it")
                  .arg(empty.path()));
    EXPECT_TRUE(run.standardOutput.isEmpty());
}

TEST_F(ZELKinVerifyCommand, APlyTheProgramSetDoesNotListIsAnError)
{
    ASSERT_TRUE(QFile::copy(ply, QDir(program).filePath(QStringLiteral("cylinder-section#0109.PPF"))));
    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines().last(),
              QStringLiteral("zelkin: error: the program-set file does not list ply 0109 (cylinder-section#0109.PPF)"));
}

TEST_F(ZELKinVerifyCommand, ACourseTheProcedureDoesNotHaveIsAnError)
{
    const int line = CourseLine(2, 1);
    QStringList lines = ReadText(ply).split(QLatin1Char('\n'));
    const int record = int(std::find_if(lines.cbegin(), lines.cend(),
                                        [](const QString& text) {
                                            return text.startsWith(QStringLiteral(";[COURSE] CourseNumber=2,"));
                                        })
                           - lines.cbegin());
    lines[record].replace(QStringLiteral("CourseNumber=2,"), QStringLiteral("CourseNumber=9,"));
    WriteText(ply, lines.join(QLatin1Char('\n')));

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    const QString error = run.GetErrorLines().last();
    EXPECT_TRUE(error.startsWith(QStringLiteral("zelkin: error: %1 line ").arg(ply))) << error.toStdString();
    EXPECT_TRUE(error.endsWith(QStringLiteral(": the procedure 'Ply 1 0' has no course 9"))) << error.toStdString();
    EXPECT_LT(line, lines.size());
}

TEST_F(ZELKinVerifyCommand, APlyOfAProcedureTheToolpathDoesNotHaveIsAnError)
{
    const QString programSet = QDir(program).filePath(QStringLiteral("cylinder-section.PPSF"));
    QStringList lines = ReadText(programSet).split(QLatin1Char('\n'));
    const int entry = lines.indexOf(QStringLiteral("; 0101, Ply 1 0"));
    ASSERT_GE(entry, 0);
    lines[entry] = QStringLiteral("; 0101, Ply 9");
    WriteText(programSet, lines.join(QLatin1Char('\n')));

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines().last(),
              QStringLiteral("zelkin: error: %1: ply 0101 is the procedure 'Ply 9', which the toolpath does not have "
                             "or which could not be solved")
                  .arg(ply));
}

TEST(ZELKinVerifyCommandUsage, WithoutTheNCPathTheCommandLineIsRefused)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("verify"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), kToolpath});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.GetErrorLines().last(), kVerifyHint);
}

TEST(ZELKinVerifyCommandUsage, AFlipAngleThatIsNoAngleIsRefused)
{
    const ZELKinToolRun run =
        RunZelkin({QStringLiteral("verify"), QStringLiteral("--machine"), GetExampleMachinePath(),
                   QStringLiteral("--toolpath"), kToolpath, QStringLiteral("--nc"), QStringLiteral("x"),
                   QStringLiteral("--flip-angle"), QStringLiteral("wide")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: --flip-angle takes an angle in degrees above 0 and below "
                                          "180, not 'wide'"),
                           kVerifyHint}));
}
