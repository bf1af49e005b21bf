#include "zelkinpostednc.h"
#include "zelkintoolrun.h"

#include <zeltestsupport.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <functional>

namespace {

const QString kToolpath = QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/cylinder-section.json");
const QString kReportHint = QStringLiteral("zelkin: hint: run 'zelkin help report' for its usage");
const QString kDemoGates = QStringLiteral(
    "roller centre, link and path 0.0100 mm; normal and travel 0.00005 deg a written rotary word, 0.001 rad a word "
    "left out, by the sine of its axis to the direction; contact 0.0100 mm and the roller radius times that; flip "
    "30.000 deg; singularity warning 2.000 deg; tow events 0.010 mm");

// The page keeps four decimals of a degree and two of a millimetre of path.
constexpr double kRotaryKept = 1e-4;
constexpr double kLengthKept = 0.01;
// A page's series is cut into at most this many stretches of path, each
// keeping its smallest and largest value, plus the first and last line.
constexpr int kMaxBuckets = 2000;

ZELKinToolRun Post(const QString& toolpath, const QString& output)
{
    return RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                      QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), output},
                     ReproducibleEnvironment());
}

ZELKinToolRun Report(const QString& toolpath, const QString& nc, const QString& report,
                     const QStringList& extra = {})
{
    return RunZelkin(QStringList{QStringLiteral("report"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                 QStringLiteral("--toolpath"), toolpath, QStringLiteral("--nc"), nc,
                                 QStringLiteral("-o"), report}
                     + extra);
}

// The data the page's script draws from.
QJsonObject DataOf(const QString& html)
{
    static const QRegularExpression data(
        QStringLiteral("<script type=\"application/json\" id=\"zelkin-report-data\">(.*?)</script>"),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = data.match(html);
    EXPECT_TRUE(match.hasMatch());
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(match.captured(1).toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    return document.object();
}

QJsonObject PlyData(const QJsonObject& data, const QString& number)
{
    for (const QJsonValue& ply : data.value(QStringLiteral("plies")).toArray()) {
        if (ply.toObject().value(QStringLiteral("number")).toString() == number)
            return ply.toObject();
    }
    ADD_FAILURE() << "no data for ply " << number.toStdString();
    return {};
}

QJsonObject AxisData(const QJsonObject& ply, const QString& label)
{
    for (const QJsonValue& axis : ply.value(QStringLiteral("axes")).toArray()) {
        if (axis.toObject().value(QStringLiteral("label")).toString() == label)
            return axis.toObject();
    }
    ADD_FAILURE() << "no data for axis " << label.toStdString();
    return {};
}

// The index of the kept line with the NC line number `line`; -1 when the
// line was not kept.
int SampleOfLine(const QJsonObject& ply, int line)
{
    const QJsonArray numbers = ply.value(QStringLiteral("n")).toArray();
    for (int i = 0; i < numbers.size(); ++i) {
        if (numbers.at(i).toInt() == line)
            return i;
    }
    return -1;
}

// The axis's value at a kept line; NaN when the axis does not keep it.
double AxisValueAt(const QJsonObject& axis, int sample)
{
    const QJsonArray samples = axis.value(QStringLiteral("i")).toArray();
    const QJsonArray values = axis.value(QStringLiteral("v")).toArray();
    for (int k = 0; k < samples.size(); ++k) {
        if (samples.at(k).toInt() == sample)
            return values.at(k).toDouble();
    }
    return std::nan("");
}

// The numbered blocks of a ply file, its motion lines, and those along its
// courses: between COURSE_MODE and OFF_COURSE_MODE, and the one after.
struct MotionLines
{
    int all = 0;
    int alongCourses = 0;
};

MotionLines CountMotionLines(const QString& ply)
{
    static const QRegularExpression block(QStringLiteral("^N\\d"));
    MotionLines count;
    bool along = false;
    bool offPartPoint = false;
    for (const QString& line : LinesOfFile(ply)) {
        if (line == QLatin1String("COURSE_MODE") || line == QLatin1String("OFF_COURSE_MODE")) {
            along = line == QLatin1String("COURSE_MODE");
            offPartPoint = !along;
            continue;
        }
        if (!block.match(line).hasMatch())
            continue;
        ++count.all;
        count.alongCourses += along || offPartPoint ? 1 : 0;
        offPartPoint = false;
    }
    return count;
}

// The findings the page's data holds for `ply` on the NC line `line`.
QList<QJsonObject> FindingDataAt(const QJsonObject& ply, const QString& path, int line)
{
    QList<QJsonObject> found;
    const QString where = QStringLiteral(", %1:%2: ").arg(path).arg(line);
    for (const QJsonValue& finding : ply.value(QStringLiteral("findings")).toArray()) {
        if (finding.toObject().value(QStringLiteral("text")).toString().contains(where))
            found.append(finding.toObject());
    }
    return found;
}

// `line` with its X word moved by a tenth of an inch.
QString WithXMoved(const QString& line)
{
    static const QRegularExpression x(QStringLiteral("X(-?\\d+\\.\\d+)"));
    const QRegularExpressionMatch match = x.match(line);
    EXPECT_TRUE(match.hasMatch()) << line.toStdString();
    QString changed = line;
    return changed.replace(match.capturedStart(), match.capturedLength(),
                           QStringLiteral("X%1").arg(match.captured(1).toDouble() + 0.1, 0, 'f', 4));
}

// Above the A axis's maximum of 95 deg for one line; A is modal, so the next
// line takes it back.
void SetAOutOfLimits(const QString& ply, int line)
{
    ChangeLine(ply, line, [](const QString& text) { return WithWords(text, QStringLiteral("A100.0000")); });
    ChangeLine(ply, line + 1, [](const QString& text) { return WithWords(text, QStringLiteral("A0.0000")); });
}

// The demo part posted once for all tests; each test works on a copy.
class ZELKinReportCommand : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        posted = new QTemporaryDir();
        const ZELKinToolRun run = Post(kToolpath, posted->path());
        ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    }

    static void TearDownTestSuite()
    {
        delete posted;
        posted = nullptr;
    }

    void SetUp() override
    {
        nc = QDir(work.path()).filePath(QStringLiteral("nc"));
        const QString program = QDir(nc).filePath(QStringLiteral("cylinder-section"));
        CopyProgramFolder(QDir(posted->path()).filePath(QStringLiteral("cylinder-section")), program);
        ply = QDir(program).filePath(QStringLiteral("cylinder-section#0101.PPF"));
        report = QDir(work.path()).filePath(QStringLiteral("report.html"));
    }

    // Writes the report of the copy and returns the page. The page is
    // written whatever the checks find; the exit status says which.
    QString WriteReport(const QStringList& extra = {}) const
    {
        const ZELKinToolRun run = Report(kToolpath, nc, report, extra);
        EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
        const bool passed = run.standardOutput.startsWith(QStringLiteral("Wrote %1: PASS").arg(report));
        EXPECT_TRUE(passed || run.standardOutput.startsWith(QStringLiteral("Wrote %1: FAIL (").arg(report)))
            << run.standardOutput.toStdString() << run.standardError.toStdString();
        EXPECT_EQ(run.exitCode, passed ? 0 : 1);
        return ReadText(report);
    }

    int CourseLineOfPly(int course, int which) const
    {
        return CourseLine(ReadText(ply).split(QLatin1Char('\n')), course, which);
    }

    static inline QTemporaryDir* posted = nullptr;
    QTemporaryDir work;
    QString nc;
    QString ply;
    QString report;
};

} // namespace

TEST_F(ZELKinReportCommand, TheDemoReportIsWrittenAndTheCommandSucceeds)
{
    const ZELKinToolRun run = Report(kToolpath, nc, report);
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(run.standardOutput, QStringLiteral("Wrote %1: PASS\n").arg(report));
    // Nothing is solved: no progress lines.
    EXPECT_TRUE(run.standardError.isEmpty()) << run.standardError.toStdString();

    ASSERT_TRUE(QFileInfo(report).isFile());
    const QString html = ReadText(report);
    EXPECT_TRUE(html.startsWith(QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n")));
    EXPECT_TRUE(html.endsWith(QStringLiteral("</body>\n</html>\n")));
    EXPECT_EQ(html.count(QStringLiteral("<p class=\"note\">No findings.</p>")), 4);
}

TEST_F(ZELKinReportCommand, TheReportRefersToNothingOutsideItself)
{
    const QString html = WriteReport();
    EXPECT_FALSE(html.contains(QStringLiteral("http://")));
    EXPECT_FALSE(html.contains(QStringLiteral("https://")));
    EXPECT_FALSE(html.contains(QStringLiteral("src=\"//")));
    EXPECT_FALSE(html.contains(QStringLiteral(" src=")));
    EXPECT_FALSE(html.contains(QStringLiteral("<link")));
    EXPECT_FALSE(html.contains(QStringLiteral("@import")));
    // Any reference that slipped in would be refused by the browser.
    EXPECT_TRUE(html.contains(QStringLiteral("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src "
                                             "'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'\">")));
}

TEST_F(ZELKinReportCommand, TheHeaderNamesTheFilesTheGatesAndThePass)
{
    const QString html = WriteReport();
    EXPECT_TRUE(html.contains(QStringLiteral("<title>zelkin report: cylinder-section.json, PASS</title>")));
    EXPECT_TRUE(html.contains(QStringLiteral("<h1>Verification of cylinder-section.json</h1>\n"
                                             "<p class=\"result pass\">PASS</p>\n")));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>toolpath</th><td>%1</td></tr>").arg(kToolpath)));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>machine</th><td>%1</td></tr>").arg(GetExampleMachinePath())));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>NC</th><td>%1</td></tr>").arg(nc)));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>gates</th><td>%1</td></tr>").arg(kDemoGates)));
}

TEST_F(ZELKinReportCommand, TheGatesGivenOnTheCommandLineAreTheOnesShown)
{
    const QString html = WriteReport({QStringLiteral("--flip-angle"), QStringLiteral("20"),
                                      QStringLiteral("--singularity-angle"), QStringLiteral("5")});
    QString gates = kDemoGates;
    gates.replace(QStringLiteral("flip 30.000 deg"), QStringLiteral("flip 20.000 deg"))
        .replace(QStringLiteral("singularity warning 2.000 deg"), QStringLiteral("singularity warning 5.000 deg"));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>gates</th><td>%1</td></tr>").arg(gates))) << gates.toStdString();
}

TEST_F(ZELKinReportCommand, EachPlyHasOneSectionWithItsNumberProcedureAndSummary)
{
    const QString html = WriteReport();
    EXPECT_EQ(html.count(QStringLiteral("<section class=\"ply\"")), 4);
    const QStringList sections{QStringLiteral("<section class=\"ply\" id=\"ply-0101\">\n<h2>Ply 0101: Ply 1 0</h2>"),
                               QStringLiteral("<section class=\"ply\" id=\"ply-0102\">\n<h2>Ply 0102: Ply 2 +45</h2>"),
                               QStringLiteral("<section class=\"ply\" id=\"ply-0103\">\n<h2>Ply 0103: Ply 3 -45</h2>"),
                               QStringLiteral("<section class=\"ply\" id=\"ply-0104\">\n<h2>Ply 0104: Ply 4 +90</h2>")};
    qsizetype last = -1;
    for (const QString& section : sections) {
        const qsizetype at = html.indexOf(section);
        EXPECT_GT(at, last) << section.toStdString();
        last = at;
    }
    for (const QString& number : {QStringLiteral("0101"), QStringLiteral("0102"), QStringLiteral("0103"),
                                  QStringLiteral("0104")})
        EXPECT_EQ(html.count(QStringLiteral("<div class=\"plots\" id=\"plots-%1\"></div>").arg(number)), 1);
    // The first ply's counts: 4 courses, its motion lines, those along the
    // courses and those on the links.
    const MotionLines lines = CountMotionLines(ply);
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><td>4</td><td>%1</td><td>%2</td><td>%3</td>")
                                  .arg(lines.all)
                                  .arg(lines.alongCourses)
                                  .arg(lines.all - lines.alongCourses)));
}

TEST_F(ZELKinReportCommand, TheDataAsksForAPlotPerAxisAndTheViewFromAbove)
{
    const QJsonObject data = DataOf(WriteReport());
    // Four plies, each with the seven machine axes and the view from above.
    EXPECT_EQ(data.value(QStringLiteral("plotsExpected")).toInt(), 4 * (7 + 1));
    const QJsonObject ply = PlyData(data, QStringLiteral("0101"));
    const QJsonArray axes = ply.value(QStringLiteral("axes")).toArray();
    ASSERT_EQ(axes.size(), 7);
    const QStringList labels{QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z"), QStringLiteral("C"),
                             QStringLiteral("A"), QStringLiteral("C1"), QStringLiteral("U")};
    const QStringList units{QStringLiteral("mm"),  QStringLiteral("mm"),  QStringLiteral("mm"), QStringLiteral("deg"),
                            QStringLiteral("deg"), QStringLiteral("deg"), QStringLiteral("mm")};
    for (int i = 0; i < axes.size(); ++i) {
        EXPECT_EQ(axes.at(i).toObject().value(QStringLiteral("label")).toString(), labels.at(i));
        EXPECT_EQ(axes.at(i).toObject().value(QStringLiteral("unit")).toString(), units.at(i));
    }
    EXPECT_EQ(AxisData(ply, QStringLiteral("X")).value(QStringLiteral("kind")).toString(),
              QStringLiteral("slide position"));
    EXPECT_EQ(AxisData(ply, QStringLiteral("U")).value(QStringLiteral("kind")).toString(),
              QStringLiteral("material axis"));
}

TEST_F(ZELKinReportCommand, LimitsComeInTheAxisUnitsAndAnAxisWithoutLimitsHasNone)
{
    const QJsonObject ply = PlyData(DataOf(WriteReport()), QStringLiteral("0101"));
    const QJsonObject a = AxisData(ply, QStringLiteral("A"));
    EXPECT_TRUE(ZELTest::SameDouble(-95.0, a.value(QStringLiteral("min")).toDouble(), kRotaryKept));
    EXPECT_TRUE(ZELTest::SameDouble(95.0, a.value(QStringLiteral("max")).toDouble(), kRotaryKept));
    const QJsonObject c = AxisData(ply, QStringLiteral("C"));
    EXPECT_TRUE(ZELTest::SameDouble(200.5, c.value(QStringLiteral("max")).toDouble(), kRotaryKept));
    const QJsonObject x = AxisData(ply, QStringLiteral("X"));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, x.value(QStringLiteral("min")).toDouble(), kLengthKept));
    EXPECT_TRUE(ZELTest::SameDouble(24384.0, x.value(QStringLiteral("max")).toDouble(), kLengthKept));
    const QJsonObject u = AxisData(ply, QStringLiteral("U"));
    EXPECT_TRUE(u.value(QStringLiteral("min")).isNull());
    EXPECT_TRUE(u.value(QStringLiteral("max")).isNull());
}

TEST_F(ZELKinReportCommand, ASmallPlyKeepsEveryLineAndTellsCourseLinesFromLinkLines)
{
    const MotionLines lines = CountMotionLines(this->ply);
    const QJsonObject ply = PlyData(DataOf(WriteReport()), QStringLiteral("0101"));
    const QJsonArray along = ply.value(QStringLiteral("a")).toArray();
    ASSERT_EQ(along.size(), lines.all);
    EXPECT_EQ(std::count_if(along.begin(), along.end(), [](const QJsonValue& value) { return value.toInt() == 1; }),
              lines.alongCourses);
    for (const QJsonValue& axis : ply.value(QStringLiteral("axes")).toArray())
        EXPECT_EQ(axis.toObject().value(QStringLiteral("i")).toArray().size(), lines.all);
    EXPECT_EQ(ply.value(QStringLiteral("top")).toArray().size(), lines.all);
    // The four courses, in the file's order.
    const QJsonArray courses = ply.value(QStringLiteral("c")).toArray();
    EXPECT_EQ(courses.first().toInt(), 1);
    EXPECT_EQ(courses.last().toInt(), 4);
}

TEST_F(ZELKinReportCommand, AChangedXWordIsListedAndMarkedWithItsFileAndLine)
{
    const int line = CourseLineOfPly(2, 5);
    ChangeLine(ply, line, WithXMoved);

    const ZELKinToolRun run = Report(kToolpath, nc, report);
    EXPECT_EQ(run.exitCode, 1) << "the report is written and the checks fail";
    EXPECT_TRUE(run.standardOutput.startsWith(QStringLiteral("Wrote %1: FAIL (").arg(report)));
    const QString html = ReadText(report);
    EXPECT_TRUE(html.contains(QStringLiteral("<p class=\"result fail\">FAIL (")));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><td>0101</td><td>2</td><td>6</td><td class=\"where\">%1:%2</td>"
                                             "<td>centre</td><td>the roller centre is 2.5")
                                  .arg(ply)
                                  .arg(line)))
        << html.toStdString();

    const QJsonObject plyData = PlyData(DataOf(html), QStringLiteral("0101"));
    QList<QJsonObject> findings = FindingDataAt(plyData, ply, line);
    findings.removeIf([](const QJsonObject& finding) {
        return !finding.value(QStringLiteral("text")).toString().contains(QStringLiteral(": centre: "));
    });
    ASSERT_EQ(findings.size(), 1);
    const QJsonObject finding = findings.first();
    const int sample = SampleOfLine(plyData, line);
    ASSERT_GE(sample, 0);
    // Marked where its line is: along the path and seen from above.
    EXPECT_TRUE(ZELTest::SameDouble(plyData.value(QStringLiteral("s")).toArray().at(sample).toDouble(),
                                    finding.value(QStringLiteral("s")).toDouble(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(plyData.value(QStringLiteral("x")).toArray().at(sample).toDouble(),
                                    finding.value(QStringLiteral("x")).toDouble(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(plyData.value(QStringLiteral("y")).toArray().at(sample).toDouble(),
                                    finding.value(QStringLiteral("y")).toDouble(), ZELTest::kExact));
    EXPECT_EQ(finding.value(QStringLiteral("axis")).toInt(), -1) << "a centre finding is about no one axis";
    EXPECT_TRUE(finding.value(QStringLiteral("text"))
                    .toString()
                    .startsWith(QStringLiteral("course 2, point 6, %1:%2: centre: the roller centre is 2.5")
                                    .arg(ply)
                                    .arg(line)));
}

TEST_F(ZELKinReportCommand, AnAxisBeyondItsLimitIsMarkedOnThatAxisInDegrees)
{
    const int line = CourseLineOfPly(1, 4);
    SetAOutOfLimits(ply, line);

    const QString html = WriteReport();
    EXPECT_TRUE(html.contains(QStringLiteral("<td class=\"where\">%1:%2</td><td>limit</td>"
                                             "<td>A at 100.0000 deg is beyond its maximum of 95.0000 deg</td>")
                                  .arg(ply)
                                  .arg(line)));
    const QJsonObject plyData = PlyData(DataOf(html), QStringLiteral("0101"));
    const QJsonObject a = AxisData(plyData, QStringLiteral("A"));
    EXPECT_TRUE(ZELTest::SameDouble(100.0, AxisValueAt(a, SampleOfLine(plyData, line)), kRotaryKept));
    // The A axis is the fifth plotted.
    const QJsonArray findings = plyData.value(QStringLiteral("findings")).toArray();
    const auto onA = std::find_if(findings.begin(), findings.end(), [](const QJsonValue& finding) {
        return finding.toObject().value(QStringLiteral("axis")).toInt() == 4;
    });
    ASSERT_NE(onA, findings.end());
    EXPECT_TRUE(ZELTest::SameDouble(100.0, onA->toObject().value(QStringLiteral("v")).toDouble(), kRotaryKept));
}

TEST_F(ZELKinReportCommand, ASingularityWarningIsListedApartFromTheFailures)
{
    // With A at 89 degrees the normal stands 1 degree off the first roll axis.
    const int line = CourseLineOfPly(1, 4);
    ChangeLine(ply, line, [](const QString& text) { return WithWords(text, QStringLiteral("A89.0000")); });
    ChangeLine(ply, line + 1, [](const QString& text) { return WithWords(text, QStringLiteral("A0.0000")); });

    const QString html = WriteReport();
    EXPECT_TRUE(html.contains(QStringLiteral("<tr class=\"warning\"><td>0101</td><td>1</td>")));
    EXPECT_TRUE(html.contains(QStringLiteral("<td class=\"where\">%1:%2</td><td>singularity (warning)</td><td>the "
                                             "normal is 1.000 deg from the first roll axis")
                                  .arg(ply)
                                  .arg(line)))
        << html.toStdString();
    EXPECT_TRUE(html.contains(QRegularExpression(QStringLiteral("<p class=\"result fail\">FAIL \\(\\d+ findings?, 1 "
                                                                "warning\\)</p>"))));
}

TEST_F(ZELKinReportCommand, PathsWithMarkupCharactersAreShownAsTheyAre)
{
    const QString odd = QDir(work.path()).filePath(QStringLiteral("nc & <old> \"copy\""));
    ASSERT_TRUE(QDir().rename(nc, odd));
    nc = odd;
    ply = QDir(odd).filePath(QStringLiteral("cylinder-section/cylinder-section#0101.PPF"));
    const int line = CourseLineOfPly(2, 5);
    ChangeLine(ply, line, WithXMoved);

    const QString html = WriteReport();
    const QString escaped = odd.toHtmlEscaped();
    EXPECT_TRUE(escaped.contains(QStringLiteral("nc &amp; &lt;old&gt; &quot;copy&quot;")));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>NC</th><td>%1</td></tr>").arg(escaped)));
    EXPECT_TRUE(html.contains(QStringLiteral("<td class=\"where\">%1:%2</td>").arg(ply.toHtmlEscaped()).arg(line)));
    EXPECT_FALSE(html.contains(QStringLiteral("<old>")));
    // The data holds the path itself; no string in it can end its script.
    EXPECT_FALSE(FindingDataAt(PlyData(DataOf(html), QStringLiteral("0101")), ply, line).isEmpty());
}

TEST_F(ZELKinReportCommand, AFailedVerificationWritesNoReport)
{
    const QTemporaryDir empty;
    const ZELKinToolRun run = Report(kToolpath, empty.path(), report);
    EXPECT_EQ(run.exitCode, 3) << "the NC cannot be read";
    EXPECT_EQ(run.GetErrorLines().last(),
              QStringLiteral("zelkin: error: no posted program in %1: no program-set file (.PPSF) there or in a "
                             "folder inside it")
                  .arg(empty.path()));
    EXPECT_FALSE(QFileInfo::exists(report));
    EXPECT_EQ(QDir(work.path()).entryList(QDir::Files), QStringList()) << "no temporary file is left either";
}

TEST_F(ZELKinReportCommand, AnEarlierReportStaysWholeWhenTheNextCannotBeMade)
{
    WriteText(report, QStringLiteral("the earlier report"));
    const QTemporaryDir empty;
    EXPECT_EQ(Report(kToolpath, empty.path(), report).exitCode, 3);
    EXPECT_EQ(ReadText(report), QStringLiteral("the earlier report"));
}

TEST(ZELKinReportCommandLarge, ALongPlyIsCutToBucketsThatKeepItsPeaksAndFindings)
{
    const QTemporaryDir work;
    const QString toolpath = QDir(work.path()).filePath(QStringLiteral("long.json"));
    const QString nc = QDir(work.path()).filePath(QStringLiteral("nc"));
    const QString report = QDir(work.path()).filePath(QStringLiteral("long.html"));
    ASSERT_EQ(RunZelkin({QStringLiteral("generate-toolpath"), QStringLiteral("--part"), QStringLiteral("cylinder"),
                         QStringLiteral("--plies"), QStringLiteral("0"), QStringLiteral("--courses"),
                         QStringLiteral("2"), QStringLiteral("--points-per-course"), QStringLiteral("6000"),
                         QStringLiteral("-o"), toolpath})
                  .exitCode,
              0);
    ASSERT_EQ(Post(toolpath, nc).exitCode, 0);
    const QString ply = QDir(nc).filePath(QStringLiteral("cylinder-section/cylinder-section#0101.PPF"));
    const QStringList lines = ReadText(ply).split(QLatin1Char('\n'));
    const int line = CourseLine(lines, 2, 3000);
    SetAOutOfLimits(ply, line);

    const ZELKinToolRun run = Report(toolpath, nc, report);
    ASSERT_EQ(run.exitCode, 1) << run.standardError.toStdString();
    const QString html = ReadText(report);
    const QJsonObject plyData = PlyData(DataOf(html), QStringLiteral("0101"));
    // Two courses of 6000 points each make more than 12000 motion lines.
    for (const QJsonValue& axis : plyData.value(QStringLiteral("axes")).toArray()) {
        const qsizetype kept = axis.toObject().value(QStringLiteral("i")).toArray().size();
        EXPECT_LE(kept, 2 * kMaxBuckets + 2) << axis.toObject().value(QStringLiteral("label")).toString().toStdString();
        EXPECT_LT(kept, 12000 / 2);
    }
    EXPECT_LE(plyData.value(QStringLiteral("top")).toArray().size(), 4 * kMaxBuckets + 2);
    // The line beyond the limit is one of the few kept.
    const QJsonObject a = AxisData(plyData, QStringLiteral("A"));
    EXPECT_TRUE(ZELTest::SameDouble(100.0, AxisValueAt(a, SampleOfLine(plyData, line)), kRotaryKept));
    // Every finding is kept, with its file and line in the list.
    const QJsonArray findings = plyData.value(QStringLiteral("findings")).toArray();
    EXPECT_EQ(findings.size(), html.count(QStringLiteral("<td class=\"where\">")));
    EXPECT_TRUE(html.contains(QStringLiteral("<td class=\"where\">%1:%2</td><td>limit</td>").arg(ply).arg(line)));
    // A page of twelve thousand lines stays far below their NC text.
    EXPECT_LT(QFileInfo(report).size(), QFileInfo(ply).size() / 4);
}

TEST(ZELKinReportCommandLarge, APlyWithThousandsOfFindingsListsAndMarksTheFirstFiveHundred)
{
    // Every X word of the ply moved by a tenth of an inch: every line of
    // two courses of 1500 points stands off its point.
    const QTemporaryDir work;
    const QString toolpath = QDir(work.path()).filePath(QStringLiteral("dense.json"));
    const QString nc = QDir(work.path()).filePath(QStringLiteral("nc"));
    const QString report = QDir(work.path()).filePath(QStringLiteral("dense.html"));
    ASSERT_EQ(RunZelkin({QStringLiteral("generate-toolpath"), QStringLiteral("--part"), QStringLiteral("cylinder"),
                         QStringLiteral("--plies"), QStringLiteral("0"), QStringLiteral("--courses"),
                         QStringLiteral("2"), QStringLiteral("--points-per-course"), QStringLiteral("1500"),
                         QStringLiteral("-o"), toolpath})
                  .exitCode,
              0);
    ASSERT_EQ(Post(toolpath, nc).exitCode, 0);
    const QString ply = QDir(nc).filePath(QStringLiteral("cylinder-section/cylinder-section#0101.PPF"));
    QStringList lines = LinesOfFile(ply);
    for (QString& line : lines) {
        if (line.startsWith(QLatin1Char('N')) && HasWord(line, QStringLiteral("X")))
            line = WithXMoved(line);
    }
    WriteText(ply, lines.join(QLatin1Char('\n')));

    const ZELKinToolRun run = Report(toolpath, nc, report);
    ASSERT_EQ(run.exitCode, 1) << run.standardError.toStdString();
    const QRegularExpressionMatch count =
        QRegularExpression(QStringLiteral("FAIL \\((\\d+) findings\\)")).match(run.standardOutput);
    ASSERT_TRUE(count.hasMatch()) << run.standardOutput.toStdString();
    const int total = count.captured(1).toInt();
    ASSERT_GT(total, 500);
    const QString html = ReadText(report);
    EXPECT_EQ(html.count(QStringLiteral("<td class=\"where\">")), 500);
    EXPECT_EQ(PlyData(DataOf(html), QStringLiteral("0101")).value(QStringLiteral("findings")).toArray().size(), 500);
    EXPECT_TRUE(html.contains(
        QStringLiteral("The first 500 are listed and marked; 'zelkin verify --json' lists all %1.").arg(total)));
}

TEST(ZELKinReportCommandUsage, WithoutTheReportFileTheCommandLineIsRefused)
{
    const ZELKinToolRun run =
        RunZelkin({QStringLiteral("report"), QStringLiteral("--machine"), GetExampleMachinePath(),
                   QStringLiteral("--toolpath"), kToolpath, QStringLiteral("--nc"), QStringLiteral("nc")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: missing the report file (-o REPORT.html)"), kReportHint}));
}

TEST(ZELKinReportCommandUsage, AFlipAngleThatIsNoAngleIsRefused)
{
    const QTemporaryDir work;
    const ZELKinToolRun run =
        Report(kToolpath, QStringLiteral("nc"), QDir(work.path()).filePath(QStringLiteral("r.html")),
               {QStringLiteral("--flip-angle"), QStringLiteral("wide")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: --flip-angle takes an angle in degrees above 0 and below "
                                          "180, not 'wide'"),
                           kReportHint}));
    EXPECT_TRUE(QDir(work.path()).isEmpty());
}

TEST(ZELKinReportCommandUsage, ASingularityAngleOfAHalfTurnIsRefused)
{
    const ZELKinToolRun run = Report(kToolpath, QStringLiteral("nc"), QStringLiteral("r.html"),
                                     {QStringLiteral("--singularity-angle"), QStringLiteral("180")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.GetErrorLines().first(),
              QStringLiteral("zelkin: error: --singularity-angle takes an angle in degrees above 0 and below 180, "
                             "not '180'"));
}

class ZELKinReportCommandUnwritable : public ZELKinReportCommand
{
protected:
    QStringList ErrorLinesOf(const ZELKinToolRun& run) const
    {
        return run.GetErrorLines().filter(QRegularExpression(QStringLiteral("^zelkin: error: ")));
    }
};

TEST_F(ZELKinReportCommandUnwritable, AFullDeviceIsOneError)
{
    const ZELKinToolRun run = Report(kToolpath, nc, QStringLiteral("/dev/full"));
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(ErrorLinesOf(run),
              QStringList({QStringLiteral("zelkin: error: cannot write /dev/full: No space left on device")}));
    EXPECT_EQ(run.GetErrorLines().last(), ErrorLinesOf(run).last());
    EXPECT_TRUE(run.standardOutput.isEmpty());
}

TEST_F(ZELKinReportCommandUnwritable, AFolderThatIsNotThereIsOneErrorBeforeAnyWork)
{
    const QString path = QDir(work.path()).filePath(QStringLiteral("missing/report.html"));
    const ZELKinToolRun run = Report(kToolpath, nc, path);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines(), QStringList({QStringLiteral("zelkin: error: cannot write %1: No such file or "
                                                               "directory")
                                                    .arg(path)}))
        << "no progress lines: the folder is looked at before the toolpath is solved";
    EXPECT_FALSE(QFileInfo::exists(QDir(work.path()).filePath(QStringLiteral("missing"))));
}

TEST(ZELKinReportCommandHelp, TheCommandListShowsTheReport)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help")});
    const QRegularExpression entry(QStringLiteral("^  report +Check posted NC as verify does and write the results "
                                                  "as one HTML page$"),
                                   QRegularExpression::MultilineOption);
    EXPECT_TRUE(entry.match(run.standardOutput).hasMatch()) << run.standardOutput.toStdString();
}
