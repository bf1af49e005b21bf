#include "zelkinpostednc.h"
#include "zelkintoolrun.h"

#include <zeltestsupport.h>

#include <QCryptographicHash>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>

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
constexpr double kMillimetresPerInch = 25.4;
// A ply's series is cut into at least this many stretches of path, the
// lines along each course and those of each link into stretches of their
// own, at least kMinStretchesPerCourse; each stretch keeps its smallest and
// largest value, each course and link its first and last line. One of at
// most twice its stretches keeps every line.
constexpr int kMinStretchesPerPly = 2000;
constexpr int kMinStretchesPerCourse = 16;
// A ply marks at most this many lines with findings one by one.
constexpr int kMaxMarks = 2000;
// SOURCE_DATE_EPOCH of ReproducibleEnvironment().
const QString kMadeAt = QStringLiteral("<time datetime=\"2023-11-14T22:13:20Z\">2023-11-14 22:13:20 UTC</time>");

ZELKinToolRun Post(const QString& toolpath, const QString& output)
{
    return RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                      QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), output},
                     ReproducibleEnvironment());
}

ZELKinToolRun Report(const QString& toolpath, const QString& nc, const QString& report, const QStringList& extra = {},
                     const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    return RunZelkin(QStringList{QStringLiteral("report"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                 QStringLiteral("--toolpath"), toolpath, QStringLiteral("--nc"), nc,
                                 QStringLiteral("-o"), report}
                         + extra,
                     environment);
}

// The last cell of the row of `ply` in the "Estimated run time" table of
// "zelkin verify": its run time as hours, minutes and seconds.
QString VerifiedRunTime(const QString& toolpath, const QString& nc, const QString& ply)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("verify"), QStringLiteral("--quiet"),
                                         QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), toolpath, QStringLiteral("--nc"), nc});
    const QString table = run.standardOutput.mid(run.standardOutput.indexOf(QStringLiteral("Estimated run time:")));
    const QRegularExpression row(QStringLiteral("^%1 .*? ((>= )?\\d+:\\d\\d:\\d\\d\\.\\d)$").arg(ply),
                                 QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = row.match(table);
    EXPECT_TRUE(match.hasMatch()) << run.standardOutput.toStdString();
    return match.captured(1);
}

QString Sha256Of(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromLatin1(QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex());
}

// The header's row for an input file: its name, its size in bytes, its SHA-256.
QString InputRow(const QString& input, const QString& path)
{
    return QStringLiteral("<tr><td>%1</td><td>%2</td><td class=\"bytes\">%3</td><td class=\"hash\">%4</td></tr>")
        .arg(input, QFileInfo(path).fileName().toHtmlEscaped(), QString::number(QFileInfo(path).size()),
             Sha256Of(path));
}

// The findings a run of report counted: "Wrote <page>: FAIL (<n> findings)".
int CountedFindings(const ZELKinToolRun& run)
{
    const QRegularExpressionMatch count
        = QRegularExpression(QStringLiteral(": FAIL \\((\\d+) findings?")).match(run.standardOutput);
    EXPECT_TRUE(count.hasMatch()) << run.standardOutput.toStdString();
    return count.captured(1).toInt();
}

// Where the roller centre stands after a line of a ply file, and how far it
// has come: each numbered block moves it in a straight line to its X, Y and
// Z words (inches), a word left out keeping its value, from the ply's first
// motion line on.
struct CentreAtLine
{
    double x = std::nan("");
    double y = std::nan("");
    double pathLength = 0.0;
};

CentreAtLine WalkToLine(const QString& plyFile, int line)
{
    static const QRegularExpression block(QStringLiteral("^N\\d"));
    const QStringList lines = LinesOfFile(plyFile);
    double centre[3] = {std::nan(""), std::nan(""), std::nan("")};
    std::optional<std::array<double, 3>> previous;
    CentreAtLine walked;
    for (int i = 0; i < line && i < lines.size(); ++i) {
        if (!block.match(lines.at(i)).hasMatch())
            continue;
        const QString words = lines.at(i).left(lines.at(i).indexOf(QLatin1Char(';')));
        const QStringList names{QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z")};
        for (int k = 0; k < 3; ++k) {
            if (HasWord(words, names.at(k)))
                centre[k] = WordValue(words, names.at(k)) * kMillimetresPerInch;
        }
        if (previous)
            walked.pathLength += std::hypot(centre[0] - previous->at(0), centre[1] - previous->at(1),
                                            centre[2] - previous->at(2));
        previous = std::array<double, 3>{centre[0], centre[1], centre[2]};
    }
    walked.x = centre[0];
    walked.y = centre[1];
    return walked;
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

// The mark the page's data holds for `ply` at the NC line `line`; empty
// when there is none.
QJsonObject MarkAt(const QJsonObject& ply, int line)
{
    for (const QJsonValue& mark : ply.value(QStringLiteral("marks")).toArray()) {
        if (mark.toObject().value(QStringLiteral("line")).toInt() == line)
            return mark.toObject();
    }
    return {};
}

// How many findings the marks of `ply` count together.
int CountMarked(const QJsonObject& ply)
{
    int count = 0;
    for (const QJsonValue& mark : ply.value(QStringLiteral("marks")).toArray())
        count += mark.toObject().value(QStringLiteral("count")).toInt();
    return count;
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
        program = QDir(nc).filePath(QStringLiteral("cylinder-section"));
        CopyProgramFolder(QDir(posted->path()).filePath(QStringLiteral("cylinder-section")), program);
        ply = PlyFile(QStringLiteral("0101"));
        report = QDir(work.path()).filePath(QStringLiteral("report.html"));
    }

    QString PlyFile(const QString& number) const
    {
        return QDir(program).filePath(QStringLiteral("cylinder-section#%1.PPF").arg(number));
    }

    // Writes the report of the copy and returns the page. The page is
    // written whatever the checks find; the exit status says which.
    QString WriteReport(const QStringList& extra = {},
                        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) const
    {
        const ZELKinToolRun run = Report(kToolpath, nc, report, extra, environment);
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
    QString program;
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
    // A part this small is checked and hashed in well under a second: no
    // progress lines.
    EXPECT_TRUE(run.standardError.isEmpty()) << run.standardError.toStdString();

    ASSERT_TRUE(QFileInfo(report).isFile());
    const QString html = ReadText(report);
    EXPECT_TRUE(html.startsWith(QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n")));
    EXPECT_TRUE(html.endsWith(QStringLiteral("</body>\n</html>\n")));
    EXPECT_EQ(html.count(QStringLiteral("<p class=\"note\">No findings.</p>")), 4);
}

TEST_F(ZELKinReportCommand, WithQuietNothingIsShownOnStandardError)
{
    const ZELKinToolRun run = Report(kToolpath, nc, report, {QStringLiteral("--quiet")});
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(run.standardOutput, QStringLiteral("Wrote %1: PASS\n").arg(report));
    EXPECT_EQ(run.standardError, QString());
    EXPECT_TRUE(QFileInfo(report).isFile());
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
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>program</th><td>cylinder-section</td></tr>")));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>toolpath</th><td>%1</td></tr>").arg(kToolpath)));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>machine</th><td>%1</td></tr>").arg(GetExampleMachinePath())));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>NC</th><td>%1</td></tr>").arg(nc)));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>gates</th><td>%1</td></tr>").arg(kDemoGates)));
}

TEST_F(ZELKinReportCommand, TheHeaderSaysWhenAndByWhichZelkinThePageWasMade)
{
    const QString html = WriteReport({}, ReproducibleEnvironment());
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>made</th><td>%1</td></tr>").arg(kMadeAt))) << html.toStdString();
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>by</th><td>zelkin " ZELKIN_VERSION "</td></tr>")));
}

TEST_F(ZELKinReportCommand, ADateThatIsNoNumberOfSecondsIsOneErrorAndNoPage)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("soon"));
    const ZELKinToolRun run = Report(kToolpath, nc, report, {}, environment);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: SOURCE_DATE_EPOCH is not a number of seconds: 'soon'")}));
    EXPECT_FALSE(QFileInfo::exists(report));
}

TEST_F(ZELKinReportCommand, EachInputIsNamedWithItsSizeAndSha256)
{
    const QString html = WriteReport();
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>input</th><th>file</th><th>bytes</th><th>SHA-256</th></tr>")));
    EXPECT_TRUE(html.contains(InputRow(QStringLiteral("machine description"), GetExampleMachinePath())));
    EXPECT_TRUE(html.contains(InputRow(QStringLiteral("toolpath"), kToolpath)));
    // Every file of the posted folder, in name order.
    QString files;
    for (const QString& name :
         {QStringLiteral("cylinder-section#0101.PPF"), QStringLiteral("cylinder-section#0102.PPF"),
          QStringLiteral("cylinder-section#0103.PPF"), QStringLiteral("cylinder-section#0104.PPF"),
          QStringLiteral("cylinder-section.PPSF"), QStringLiteral("cylinder-section.PTPF")})
        files += InputRow(QStringLiteral("NC"), QDir(program).filePath(name)) + QLatin1Char('\n');
    EXPECT_TRUE(html.contains(files)) << html.toStdString();
}

TEST_F(ZELKinReportCommand, ABundleIsOneInputAndNamesItsProgram)
{
    const QString bundle = QDir(work.path()).filePath(QStringLiteral("job.bun"));
    ASSERT_EQ(Post(kToolpath, bundle).exitCode, 0);
    const ZELKinToolRun run = Report(kToolpath, bundle, report);
    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    const QString html = ReadText(report);
    EXPECT_TRUE(html.contains(InputRow(QStringLiteral("NC"), bundle) + QStringLiteral("\n</table>")));
    EXPECT_EQ(html.count(QStringLiteral("<tr><td>NC</td>")), 1);
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><th>program</th><td>cylinder-section</td></tr>")));
}

TEST_F(ZELKinReportCommand, AToolpathFromStandardInputIsNamedButNotHashed)
{
    QFile toolpath(kToolpath);
    ASSERT_TRUE(toolpath.open(QIODevice::ReadOnly));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("report"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), QStringLiteral("-"), QStringLiteral("--nc"), nc,
                                         QStringLiteral("-o"), report},
                                        QProcessEnvironment::systemEnvironment(), toolpath.readAll());
    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    // Read once by the checks, it cannot be read again.
    EXPECT_TRUE(ReadText(report).contains(QStringLiteral(
        "<tr><td>toolpath</td><td>standard input</td><td class=\"bytes\">-</td><td class=\"hash\">- (not a file that "
        "can be read again)</td></tr>")));
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

TEST_F(ZELKinReportCommand, ThePlyListSaysWhichPlyFailsWithItsFindingsAndRunTime)
{
    const QString second = PlyFile(QStringLiteral("0102"));
    ChangeLine(second, CourseLine(LinesOfFile(second), 3, 10), WithXMoved);

    const ZELKinToolRun run = Report(kToolpath, nc, report);
    ASSERT_EQ(run.exitCode, 1) << run.standardError.toStdString();
    const QString html = ReadText(report);
    // Only the second ply fails: it has every finding.
    const QString failed = QStringLiteral("FAIL (%1 findings)").arg(CountedFindings(run));
    EXPECT_TRUE(html.contains(QStringLiteral("<tr class=\"fail\"><td><a href=\"#ply-0102\">Ply 0102</a></td><td>Ply 2 "
                                             "+45</td><td class=\"verdict\">%1</td><td class=\"time\">%2</td></tr>")
                                  .arg(failed, VerifiedRunTime(kToolpath, nc, QStringLiteral("0102")))))
        << html.toStdString();
    EXPECT_TRUE(html.contains(QStringLiteral("<tr class=\"pass\"><td><a href=\"#ply-0101\">Ply 0101</a></td><td>Ply 1 "
                                             "0</td><td class=\"verdict\">PASS</td><td class=\"time\">%1</td></tr>")
                                  .arg(VerifiedRunTime(kToolpath, nc, QStringLiteral("0101")))));
    EXPECT_EQ(html.count(QStringLiteral("<td class=\"verdict\">PASS</td>")), 3);
    EXPECT_TRUE(html.contains(QStringLiteral("<tr class=\"total\"><td>all plies</td><td></td><td></td><td "
                                             "class=\"time\">%1</td></tr>")
                                  .arg(VerifiedRunTime(kToolpath, nc, QStringLiteral("total")))));
    EXPECT_TRUE(html.contains(QStringLiteral("<h2>Ply 0102: Ply 2 +45</h2>\n<p class=\"verdict fail\">%1; estimated "
                                             "run time %2</p>")
                                  .arg(failed, VerifiedRunTime(kToolpath, nc, QStringLiteral("0102")))));
}

TEST_F(ZELKinReportCommand, FindingsOutsideThePlyFilesFailARowOfTheirOwn)
{
    // A ply file the program-set file does not list, beside the others.
    const QString stray = QDir(program).filePath(QStringLiteral("cylinder-section#0105.PPF"));
    ASSERT_TRUE(QFile::copy(ply, stray));

    const ZELKinToolRun run = Report(kToolpath, nc, report);
    ASSERT_EQ(run.exitCode, 1) << run.standardError.toStdString();
    const QString html = ReadText(report);
    EXPECT_TRUE(html.contains(QStringLiteral("<tr class=\"fail\"><td><a href=\"#outside\">other</a></td><td>outside "
                                             "the ply files</td><td class=\"verdict\">FAIL (%1 finding%2)</td><td></td>"
                                             "</tr>")
                                  .arg(CountedFindings(run))
                                  .arg(CountedFindings(run) == 1 ? QString() : QStringLiteral("s"))))
        << html.toStdString();
    EXPECT_EQ(html.count(QStringLiteral("<td class=\"verdict\">PASS</td>")), 4);
    EXPECT_TRUE(html.contains(QStringLiteral("<h3 id=\"outside\">Findings outside the ply files</h3>")));
    // The stray file is one of the NC files the page names.
    EXPECT_TRUE(html.contains(InputRow(QStringLiteral("NC"), stray)));
}

TEST_F(ZELKinReportCommand, APlyWithWarningsCountsThemInTheList)
{
    // With A at 89 degrees the normal stands 1 degree off the first roll axis.
    const int line = CourseLineOfPly(1, 4);
    ChangeLine(ply, line, [](const QString& text) { return WithWords(text, QStringLiteral("A89.0000")); });
    ChangeLine(ply, line + 1, [](const QString& text) { return WithWords(text, QStringLiteral("A0.0000")); });

    const ZELKinToolRun run = Report(kToolpath, nc, report);
    const QString html = ReadText(report);
    EXPECT_TRUE(html.contains(
        QStringLiteral("<td class=\"verdict\">FAIL (%1 findings, 1 warning)</td>").arg(CountedFindings(run))))
        << html.toStdString();
}

TEST_F(ZELKinReportCommand, ARunTimeThatLeavesOutLinesIsABound)
{
    // Without its first feed the ply's first lines cannot be timed.
    const QString third = PlyFile(QStringLiteral("0103"));
    ChangeLine(third, LineStartingWith(LinesOfFile(third), QStringLiteral("N")),
               [](const QString& text) { return WithoutWord(text, QStringLiteral("F")); });

    const QString html = WriteReport();
    const QString time = VerifiedRunTime(kToolpath, nc, QStringLiteral("0103"));
    EXPECT_TRUE(time.startsWith(QStringLiteral(">= "))) << time.toStdString();
    EXPECT_TRUE(html.contains(QStringLiteral("<td>Ply 3 -45</td><td class=\"verdict\">PASS</td><td "
                                             "class=\"time\">%1</td>")
                                  .arg(time.toHtmlEscaped())))
        << html.toStdString();
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
    for (const QString& number :
         {QStringLiteral("0101"), QStringLiteral("0102"), QStringLiteral("0103"), QStringLiteral("0104")}) {
        EXPECT_EQ(html.count(QStringLiteral("<div class=\"choice\" id=\"choice-%1\"></div>").arg(number)), 1);
        EXPECT_EQ(html.count(QStringLiteral("<div class=\"plots\" id=\"plots-%1\"></div>").arg(number)), 1);
    }
    // The first ply's counts: 4 courses, its motion lines, those along the
    // courses and those on the links.
    const MotionLines lines = CountMotionLines(ply);
    EXPECT_TRUE(html.contains(QStringLiteral("<tr><td>4</td><td>%1</td><td>%2</td><td>%3</td>")
                                  .arg(lines.all)
                                  .arg(lines.alongCourses)
                                  .arg(lines.all - lines.alongCourses)));
}

TEST_F(ZELKinReportCommand, TheSummaryNamesTheAxisNearestItsSpeedLimit)
{
    // A feed of 10 000 inches a minute drives the slides far past their limits.
    const int line = CourseLineOfPly(2, 5);
    ChangeLine(ply, line, [](const QString& text) { return WithWords(text, QStringLiteral("F10000")); });

    const QString html = WriteReport();
    EXPECT_TRUE(html.contains(QStringLiteral("<th>speed % (axis)</th>")));
    const QRegularExpressionMatch speed
        = QRegularExpression(QStringLiteral("<tr><td>4</td>(<td>[^<]*</td>){9}<td>(\\d+\\.\\d) \\(([A-Z0-9]+)\\)</td>"))
              .match(html);
    ASSERT_TRUE(speed.hasMatch()) << html.toStdString();
    EXPECT_GT(speed.captured(2).toDouble(), 100.0);
    // The axis the first speed finding of the line names.
    const QRegularExpressionMatch finding
        = QRegularExpression(QStringLiteral("<td>speed</td><td>([A-Z0-9]+) would move at")).match(html);
    ASSERT_TRUE(finding.hasMatch());
    EXPECT_TRUE(QStringList({QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z"), QStringLiteral("C"),
                             QStringLiteral("A"), QStringLiteral("C1"), QStringLiteral("U")})
                    .contains(speed.captured(3)));
}

TEST_F(ZELKinReportCommand, TheDataAsksForTheOverviewTheViewFromAboveAndAPlotPerAxis)
{
    const QJsonObject data = DataOf(WriteReport());
    // Four plies, each with the overview, the view from above and the seven
    // machine axes.
    EXPECT_EQ(data.value(QStringLiteral("plotsExpected")).toInt(), 4 * (2 + 7));
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

TEST_F(ZELKinReportCommand, EachCourseComesWithItsFindingsRunTimeAndFastestAxis)
{
    const QString second = PlyFile(QStringLiteral("0102"));
    ChangeLine(second, CourseLine(LinesOfFile(second), 3, 10), WithXMoved);

    const QJsonObject plyData = PlyData(DataOf(WriteReport()), QStringLiteral("0102"));
    const QJsonArray courses = plyData.value(QStringLiteral("courses")).toArray();
    ASSERT_EQ(courses.size(), 4);
    for (int i = 0; i < courses.size(); ++i) {
        const QJsonObject course = courses.at(i).toObject();
        EXPECT_EQ(course.value(QStringLiteral("course")).toInt(), i + 1);
        EXPECT_EQ(course.value(QStringLiteral("findings")).toInt() > 0, i + 1 == 3) << "course " << i + 1;
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d+:\\d\\d:\\d\\d\\.\\d$"))
                        .match(course.value(QStringLiteral("time")).toString())
                        .hasMatch());
        const QJsonObject speed = course.value(QStringLiteral("speed")).toObject();
        EXPECT_FALSE(speed.value(QStringLiteral("axis")).toString().isEmpty());
        EXPECT_GT(speed.value(QStringLiteral("percent")).toDouble(), 0.0);
    }
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
    EXPECT_EQ(ply.value(QStringLiteral("s")).toArray().size(), lines.all);
    EXPECT_EQ(std::count_if(along.begin(), along.end(), [](const QJsonValue& value) { return value.toInt() == 1; }),
              lines.alongCourses);
    // The material axis moves on every line along a course.
    const QJsonArray u = AxisData(ply, QStringLiteral("U")).value(QStringLiteral("i")).toArray();
    EXPECT_EQ(std::count_if(u.begin(), u.end(),
                            [&along](const QJsonValue& sample) { return along.at(sample.toInt()).toInt() == 1; }),
              lines.alongCourses);
    // The four courses, in the file's order.
    const QJsonArray courses = ply.value(QStringLiteral("c")).toArray();
    EXPECT_EQ(courses.first().toInt(), 1);
    EXPECT_EQ(courses.last().toInt(), 4);
}

TEST_F(ZELKinReportCommand, AnAxisThatStandsStillKeepsTheEndsOfEachCourseAndLink)
{
    // A 0 degree ply holds the bend A at 0 throughout.
    const QJsonObject ply = PlyData(DataOf(WriteReport()), QStringLiteral("0101"));
    const QJsonArray courses = ply.value(QStringLiteral("c")).toArray();
    const QJsonArray along = ply.value(QStringLiteral("a")).toArray();
    int stretches = 0;
    for (int i = 0; i < courses.size(); ++i)
        stretches += i == 0 || courses.at(i) != courses.at(i - 1) || along.at(i) != along.at(i - 1) ? 1 : 0;
    const QJsonObject a = AxisData(ply, QStringLiteral("A"));
    const QJsonArray values = a.value(QStringLiteral("v")).toArray();
    EXPECT_LE(values.size(), 2 * stretches);
    EXPECT_LT(values.size(), courses.size() / 2);
    for (const QJsonValue& value : values)
        EXPECT_TRUE(ZELTest::SameDouble(0.0, value.toDouble(), kRotaryKept));
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
    const QString row = QStringLiteral("<tr data-course=\"2\"><td>0101</td><td>2</td><td>6</td><td class=\"where\">"
                                       "%1:%2</td><td>%3")
                            .arg(ply)
                            .arg(line);
    EXPECT_TRUE(html.contains(row.arg(QStringLiteral("centre</td><td>the roller centre is 2.5"))))
        << html.toStdString();
    EXPECT_TRUE(html.contains(row.arg(QStringLiteral("contact</td>"))));

    const QJsonObject plyData = PlyData(DataOf(html), QStringLiteral("0101"));
    const QJsonObject mark = MarkAt(plyData, line);
    ASSERT_FALSE(mark.isEmpty());
    // Every finding of the line in one mark: as many as the list has rows
    // for the line.
    EXPECT_EQ(mark.value(QStringLiteral("count")).toInt(), html.count(QStringLiteral("%1:%2</td>").arg(ply).arg(line)));
    EXPECT_EQ(mark.value(QStringLiteral("last")).toInt(), line);
    EXPECT_FALSE(mark.value(QStringLiteral("warning")).toBool());
    // Marked where its line is: along the path and seen from above.
    const CentreAtLine centre = WalkToLine(ply, line);
    EXPECT_TRUE(ZELTest::SameDouble(centre.pathLength, mark.value(QStringLiteral("s")).toDouble(), kLengthKept));
    EXPECT_TRUE(ZELTest::SameDouble(centre.x, mark.value(QStringLiteral("x")).toDouble(), kLengthKept));
    EXPECT_TRUE(ZELTest::SameDouble(centre.y, mark.value(QStringLiteral("y")).toDouble(), kLengthKept));
    EXPECT_TRUE(mark.value(QStringLiteral("axes")).toArray().isEmpty()) << "a centre finding is about no one axis";
    EXPECT_TRUE(
        mark.value(QStringLiteral("text"))
            .toString()
            .startsWith(
                QStringLiteral("course 2, point 6, %1:%2: centre: the roller centre is 2.5").arg(ply).arg(line)));
}

TEST_F(ZELKinReportCommand, AFindingInTheMiddleOfAPlyIsMarkedAtItsLinesPathLength)
{
    const QString second = PlyFile(QStringLiteral("0102"));
    const int line = CourseLine(LinesOfFile(second), 3, 10);
    ChangeLine(second, line, WithXMoved);

    const QJsonObject plyData = PlyData(DataOf(WriteReport()), QStringLiteral("0102"));
    const QJsonObject mark = MarkAt(plyData, line);
    ASSERT_FALSE(mark.isEmpty());
    const double length = WalkToLine(second, line).pathLength;
    // Course 3 of four lies well into the ply.
    EXPECT_GT(length, plyData.value(QStringLiteral("length")).toDouble() / 3);
    EXPECT_TRUE(ZELTest::SameDouble(length, mark.value(QStringLiteral("s")).toDouble(), kLengthKept));
    // No other ply marks anything.
    for (const QString& number : {QStringLiteral("0101"), QStringLiteral("0103"), QStringLiteral("0104")})
        EXPECT_TRUE(PlyData(DataOf(ReadText(report)), number).value(QStringLiteral("marks")).toArray().isEmpty());
}

TEST_F(ZELKinReportCommand, ATowEventFindingIsMarkedAtTheMotionLineBeforeIt)
{
    // Course 3's first tow event a millimetre of material later.
    const QStringList lines = LinesOfFile(ply);
    const int record = LineStartingWith(lines, QStringLiteral(";[COURSE] CourseNumber=3,"));
    const int event = LineStartingWith(lines, QStringLiteral(";PMAC1: G500U"), record);
    ChangeLine(ply, event, [](const QString& text) {
        const QRegularExpressionMatch u = QRegularExpression(QStringLiteral("U(\\d+\\.\\d+)")).match(text);
        QString changed = text;
        return changed.replace(u.capturedStart(1), u.capturedLength(1),
                               QString::number(u.captured(1).toDouble() + 1.0, 'f', 3));
    });
    int before = event - 1;
    while (!lines.at(before - 1).startsWith(QLatin1Char('N')))
        --before;

    const QString html = WriteReport();
    EXPECT_TRUE(html.contains(QStringLiteral("<td class=\"where\">%1:%2</td><td>tow</td>").arg(ply).arg(event)))
        << html.toStdString();
    const QJsonObject plyData = PlyData(DataOf(html), QStringLiteral("0101"));
    const QJsonObject mark = MarkAt(plyData, before);
    ASSERT_FALSE(mark.isEmpty());
    EXPECT_TRUE(
        mark.value(QStringLiteral("text")).toString().contains(QStringLiteral("%1:%2: tow: ").arg(ply).arg(event)));
    EXPECT_TRUE(ZELTest::SameDouble(WalkToLine(ply, before).pathLength, mark.value(QStringLiteral("s")).toDouble(),
                                    kLengthKept));
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
    // The A axis is the fifth plotted: the mark is circled on it at 100 deg.
    const QJsonArray axes = MarkAt(plyData, line).value(QStringLiteral("axes")).toArray();
    const auto onA = std::find_if(axes.begin(), axes.end(),
                                  [](const QJsonValue& axis) { return axis.toArray().at(0).toInt() == 4; });
    ASSERT_NE(onA, axes.end());
    EXPECT_TRUE(ZELTest::SameDouble(100.0, onA->toArray().at(1).toDouble(), kRotaryKept));
}

TEST_F(ZELKinReportCommand, ASingularityWarningIsListedApartFromTheFailures)
{
    // With A at 89 degrees the normal stands 1 degree off the first roll axis.
    const int line = CourseLineOfPly(1, 4);
    ChangeLine(ply, line, [](const QString& text) { return WithWords(text, QStringLiteral("A89.0000")); });
    ChangeLine(ply, line + 1, [](const QString& text) { return WithWords(text, QStringLiteral("A0.0000")); });

    const QString html = WriteReport();
    EXPECT_TRUE(html.contains(QStringLiteral("<tr class=\"warning\" data-course=\"1\"><td>0101</td><td>1</td>")));
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
    EXPECT_TRUE(html.contains(InputRow(QStringLiteral("NC"), ply)));
    EXPECT_FALSE(html.contains(QStringLiteral("<old>")));
    // The data holds the path itself; no string in it can end its script.
    EXPECT_TRUE(MarkAt(PlyData(DataOf(html), QStringLiteral("0101")), line)
                    .value(QStringLiteral("text"))
                    .toString()
                    .contains(ply));
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

// A generated cylinder ply of `courses` courses of `points` points, posted.
struct GeneratedPly
{
    GeneratedPly(int courses, int points)
    {
        EXPECT_EQ(RunZelkin({QStringLiteral("generate-toolpath"), QStringLiteral("--part"), QStringLiteral("cylinder"),
                             QStringLiteral("--plies"), QStringLiteral("0"), QStringLiteral("--courses"),
                             QString::number(courses), QStringLiteral("--points-per-course"), QString::number(points),
                             QStringLiteral("-o"), toolpath})
                      .exitCode,
                  0);
        EXPECT_EQ(Post(toolpath, nc).exitCode, 0);
    }

    QTemporaryDir work;
    const QString toolpath = QDir(work.path()).filePath(QStringLiteral("part.json"));
    const QString nc = QDir(work.path()).filePath(QStringLiteral("nc"));
    const QString ply = QDir(nc).filePath(QStringLiteral("cylinder-section/cylinder-section#0101.PPF"));
    const QString report = QDir(work.path()).filePath(QStringLiteral("part.html"));

    // Moves the X word of every numbered line of the ply file (WithXMoved).
    void MoveEveryX() const
    {
        QStringList lines = LinesOfFile(ply);
        for (QString& line : lines) {
            if (line.startsWith(QLatin1Char('N')) && HasWord(line, QStringLiteral("X")))
                line = WithXMoved(line);
        }
        WriteText(ply, lines.join(QLatin1Char('\n')));
    }
};

TEST(ZELKinReportCommandLarge, ALongPlyIsCutToStretchesThatKeepItsPeaksAndFindings)
{
    const GeneratedPly part(2, 6000);
    const int line = CourseLine(LinesOfFile(part.ply), 2, 3000);
    SetAOutOfLimits(part.ply, line);

    const ZELKinToolRun run = Report(part.toolpath, part.nc, part.report);
    ASSERT_EQ(run.exitCode, 1) << run.standardError.toStdString();
    const QString html = ReadText(part.report);
    const QJsonObject plyData = PlyData(DataOf(html), QStringLiteral("0101"));
    // Two courses of 6000 points each make more than 12000 motion lines,
    // each course cut into half the ply's stretches.
    for (const QJsonValue& axis : plyData.value(QStringLiteral("axes")).toArray()) {
        const qsizetype kept = axis.toObject().value(QStringLiteral("i")).toArray().size();
        EXPECT_LE(kept, 2 * kMinStretchesPerPly + 2 * 2)
            << axis.toObject().value(QStringLiteral("label")).toString().toStdString();
        EXPECT_LT(kept, 12000 / 2);
    }
    EXPECT_LE(plyData.value(QStringLiteral("top")).toArray().size(), 2 * (2 * kMinStretchesPerPly + 2 * 2));
    // The line beyond the limit is one of the few kept.
    const QJsonObject a = AxisData(plyData, QStringLiteral("A"));
    EXPECT_TRUE(ZELTest::SameDouble(100.0, AxisValueAt(a, SampleOfLine(plyData, line)), kRotaryKept));
    // Every finding is marked and listed with its file and line.
    EXPECT_EQ(CountMarked(plyData), CountedFindings(run));
    EXPECT_EQ(CountMarked(plyData), html.count(QStringLiteral("<td class=\"where\">")));
    EXPECT_TRUE(html.contains(QStringLiteral("<td class=\"where\">%1:%2</td><td>limit</td>").arg(part.ply).arg(line)));
    // A page of twelve thousand lines stays well below their NC text.
    EXPECT_LT(QFileInfo(part.report).size(), QFileInfo(part.ply).size() / 2);
}

TEST(ZELKinReportCommandLarge, EachCourseOfAPlyOfManyIsCutOnItsOwn)
{
    // Three hundred courses: the ply's 2000 stretches would leave fewer
    // than seven to a course.
    const GeneratedPly part(300, 100);
    ASSERT_EQ(Report(part.toolpath, part.nc, part.report).exitCode, 0);
    const QJsonObject plyData = PlyData(DataOf(ReadText(part.report)), QStringLiteral("0101"));
    // Along a course of a 0 degree ply X runs one way: each stretch keeps
    // its first and its last line.
    const QJsonArray courses = plyData.value(QStringLiteral("c")).toArray();
    const QJsonArray along = plyData.value(QStringLiteral("a")).toArray();
    QHash<int, int> kept;
    for (const QJsonValue& sample : AxisData(plyData, QStringLiteral("X")).value(QStringLiteral("i")).toArray()) {
        if (along.at(sample.toInt()).toInt() == 1)
            ++kept[courses.at(sample.toInt()).toInt()];
    }
    EXPECT_EQ(kept.size(), 300);
    for (auto course = kept.cbegin(); course != kept.cend(); ++course) {
        EXPECT_GE(course.value(), kMinStretchesPerCourse) << "course " << course.key();
        EXPECT_LE(course.value(), 2 * kMinStretchesPerCourse + 2) << "course " << course.key();
    }
    // Each course keeps its first line.
    const QStringList lines = LinesOfFile(part.ply);
    QList<int> numbers;
    for (const QJsonValue& number : plyData.value(QStringLiteral("n")).toArray())
        numbers.append(number.toInt());
    for (int course = 1; course <= 300; ++course) {
        const int record = LineStartingWith(lines, QStringLiteral(";[COURSE] CourseNumber=%1,").arg(course));
        const int first = LineStartingWith(lines, QStringLiteral("N"), record);
        EXPECT_TRUE(numbers.contains(first)) << "course " << course << " line " << first;
    }
}

TEST(ZELKinReportCommandLarge, ACourseOfFewLinesKeepsThemAllInAPlyOfMany)
{
    const GeneratedPly part(300, 20);
    ASSERT_EQ(Report(part.toolpath, part.nc, part.report).exitCode, 0);
    const MotionLines lines = CountMotionLines(part.ply);
    ASSERT_GT(lines.all, kMinStretchesPerPly * 2);
    const QJsonObject plyData = PlyData(DataOf(ReadText(part.report)), QStringLiteral("0101"));
    EXPECT_EQ(plyData.value(QStringLiteral("s")).toArray().size(), lines.all);
    // The material axis moves on every line along a course.
    const QJsonArray along = plyData.value(QStringLiteral("a")).toArray();
    const QJsonArray u = AxisData(plyData, QStringLiteral("U")).value(QStringLiteral("i")).toArray();
    EXPECT_EQ(std::count_if(u.begin(), u.end(),
                            [&along](const QJsonValue& sample) { return along.at(sample.toInt()).toInt() == 1; }),
              lines.alongCourses);
}

TEST(ZELKinReportCommandLarge, APlyWithThousandsOfFindingsMarksThemAllAndListsEachCourse)
{
    // Every X word of the ply moved by a tenth of an inch: every line of
    // two courses of 1500 points stands off its point.
    const GeneratedPly part(2, 1500);
    part.MoveEveryX();

    const ZELKinToolRun run = Report(part.toolpath, part.nc, part.report);
    ASSERT_EQ(run.exitCode, 1) << run.standardError.toStdString();
    const int total = CountedFindings(run);
    ASSERT_GT(total, 500);
    const QString html = ReadText(part.report);
    EXPECT_EQ(html.count(QStringLiteral("<td class=\"where\">")), 500);
    EXPECT_EQ(html.count(QStringLiteral("<tr data-course=\"1\">")), 250);
    EXPECT_EQ(html.count(QStringLiteral("<tr data-course=\"2\">")), 250);
    EXPECT_TRUE(html.contains(QStringLiteral("500 of the %1 are listed, the first of each course in turn; the plots "
                                             "mark them all. 'zelkin verify --json' lists all %1.")
                                  .arg(total)));
    // The marks count every finding, spread over the whole ply, each line's
    // findings in one mark.
    const QJsonObject plyData = PlyData(DataOf(html), QStringLiteral("0101"));
    EXPECT_EQ(CountMarked(plyData), total);
    const QJsonArray marks = plyData.value(QStringLiteral("marks")).toArray();
    EXPECT_LE(marks.size(), kMaxMarks);
    EXPECT_GT(marks.last().toObject().value(QStringLiteral("s")).toDouble(),
              plyData.value(QStringLiteral("length")).toDouble() / 2);
}

TEST(ZELKinReportCommandLarge, AMarkStandsForEveryFindingOfItsStretchWhenLinesWithFindingsAreTooMany)
{
    // Over two thousand lines with findings, each marked one by one no more.
    const GeneratedPly part(2, 2500);
    part.MoveEveryX();

    const ZELKinToolRun run = Report(part.toolpath, part.nc, part.report);
    ASSERT_EQ(run.exitCode, 1);
    const QJsonObject plyData = PlyData(DataOf(ReadText(part.report)), QStringLiteral("0101"));
    const QJsonArray marks = plyData.value(QStringLiteral("marks")).toArray();
    EXPECT_LE(marks.size(), kMaxMarks);
    EXPECT_EQ(CountMarked(plyData), CountedFindings(run));
    // Some mark spans several lines, and the marks follow each other.
    int spanning = 0;
    int last = 0;
    for (const QJsonValue& value : marks) {
        const QJsonObject mark = value.toObject();
        spanning += mark.value(QStringLiteral("last")).toInt() > mark.value(QStringLiteral("line")).toInt() ? 1 : 0;
        EXPECT_GT(mark.value(QStringLiteral("line")).toInt(), last);
        last = mark.value(QStringLiteral("last")).toInt();
    }
    EXPECT_GT(spanning, 0);
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

TEST(ZELKinReportCommandHelp, TheHelpNamesTheQuietOption)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help"), QStringLiteral("report")});
    EXPECT_TRUE(run.standardOutput.contains(QStringLiteral("[--singularity-angle DEG] [--quiet]")))
        << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.contains(QStringLiteral("  --quiet                   Show no progress.\n")));
}

TEST(ZELKinReportCommandHelp, TheCommandListShowsTheReport)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help")});
    const QRegularExpression entry(QStringLiteral("^  report +Check posted NC as verify does and write the results "
                                                  "as one HTML page$"),
                                   QRegularExpression::MultilineOption);
    EXPECT_TRUE(entry.match(run.standardOutput).hasMatch()) << run.standardOutput.toStdString();
}
