#include "zelkinpostednc.h"
#include "zelkintesttoolpath.h"
#include "zelkintoolrun.h"

#include <zeltestsupport.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

const QString kToolpath = QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/cylinder-section.json");
const QString kDomeToolpath = QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/dome.json");
const QString kPlyName = QStringLiteral("cylinder-section#0101.PPF");
const QString kVerifyHint = QStringLiteral("zelkin: hint: run 'zelkin help verify' for its usage");
const QString kGates = QStringLiteral(
    "roller centre, link and path 0.0100 mm; normal and travel 0.00005 deg a written rotary word, 0.001 rad a word "
    "left out, by the sine of its axis to the direction; contact 0.0100 mm and the roller radius times that; flip "
    "30.000 deg; singularity warning 2.000 deg; tow events 0.010 mm");

constexpr double kDegreesPerRadian = 57.29577951308232;
constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kMillimetresPerInch = 25.4;
// The example machine: a roller of 30 mm, the tool tip 330 mm below the
// first roll's pivot.
constexpr double kRollerRadius = 30.0;
constexpr double kTipDrop = 330.0;
// Measured in the findings' own units, which carry four decimals.
constexpr double kReported = 1e-4;
// A changed word is written with four decimals of an inch; the line stood
// off its point by up to a few thousandths of a millimetre before.
constexpr double kInchWord = 0.005;
// A rotary word carries four decimals of a degree.
constexpr double kDegreeWord = 2e-4;
// A lag the modal rule allows (under 0.001 rad), in degrees.
constexpr double kAllowedLagDegrees = 0.0009 * kDegreesPerRadian;
// A first roll word moved by five hundredths of a degree.
constexpr double kSmallTurnDegrees = 0.05;
// A run time printed to a tenth of a second.
constexpr double kPrintedTenth = 0.05 + 1e-9;
// Run times in seconds summed in another order.
constexpr double kSummedSeconds = 1e-9;

ZELKinToolRun Post(const QString& toolpath, const QString& output)
{
    return RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                      QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), output},
                     ReproducibleEnvironment());
}

ZELKinToolRun Verify(const QString& toolpath, const QString& nc, const QStringList& extra = {},
                     const QString& machine = GetExampleMachinePath())
{
    return RunZelkin(QStringList{QStringLiteral("verify"), QStringLiteral("--machine"), machine,
                                 QStringLiteral("--toolpath"), toolpath, QStringLiteral("--nc"), nc}
                     + extra);
}

QJsonObject VerifyAsJson(const QString& toolpath, const QString& nc)
{
    const ZELKinToolRun run = Verify(toolpath, nc, {QStringLiteral("--json")});
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(run.standardOutput.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << run.standardOutput.toStdString();
    return document.object();
}

QList<QJsonObject> FindingsOf(const QJsonObject& result, const QString& check)
{
    QList<QJsonObject> findings;
    for (const QJsonValue& finding : result.value(QStringLiteral("findings")).toArray()) {
        if (finding.toObject().value(QStringLiteral("check")).toString() == check)
            findings.append(finding.toObject());
    }
    return findings;
}

QList<QJsonObject> FindingsAt(const QJsonObject& result, const QString& check, const QString& ply, int line)
{
    QList<QJsonObject> findings;
    for (const QJsonObject& finding : FindingsOf(result, check)) {
        if (finding.value(QStringLiteral("ply")).toString() == ply
            && finding.value(QStringLiteral("line")).toInt() == line)
            findings.append(finding);
    }
    return findings;
}

QJsonObject PlyOf(const QJsonObject& result, const QString& number)
{
    for (const QJsonValue& ply : result.value(QStringLiteral("plies")).toArray()) {
        if (ply.toObject().value(QStringLiteral("ply")).toString() == number)
            return ply.toObject();
    }
    ADD_FAILURE() << "no ply " << number.toStdString();
    return {};
}

QJsonObject ReadJson(const QString& path)
{
    return QJsonDocument::fromJson(ReadText(path).toUtf8()).object();
}

QJsonObject ProcedureOf(const QJsonObject& toolpath, const QString& name)
{
    for (const QJsonValue& procedure :
         toolpath.value(QStringLiteral("program")).toObject().value(QStringLiteral("procedures")).toArray()) {
        if (procedure.toObject().value(QStringLiteral("name")).toString() == name)
            return procedure.toObject();
    }
    ADD_FAILURE() << "no procedure " << name.toStdString();
    return {};
}

// The points of each course of the toolpath's procedure from the approach's
// first through the roll-out point, counted as the toolpath document
// defines them: the trajectories in order, the point two of them share
// once, and the roll-out point the "rollOutPoint"-th of the second to last
// trajectory.
QList<int> WalkedPointsOf(const QString& toolpathPath, const QString& procedure)
{
    QList<int> walked;
    for (const QJsonValue& value :
         ProcedureOf(ReadJson(toolpathPath), procedure).value(QStringLiteral("courses")).toArray()) {
        const QJsonObject course = value.toObject();
        const QJsonArray trajectories = course.value(QStringLiteral("trajectories")).toArray();
        const int rollOut = int(trajectories.size()) - 2;
        int count = 0;
        QJsonObject last;
        for (int t = 0; t <= rollOut; ++t) {
            const QJsonArray points = trajectories.at(t).toObject().value(QStringLiteral("points")).toArray();
            const int end =
                t == rollOut ? course.value(QStringLiteral("rollOutPoint")).toInt() + 1 : int(points.size());
            for (int p = 0; p < end; ++p) {
                if (points.at(p).toObject() != last)
                    ++count;
                last = points.at(p).toObject();
            }
        }
        walked.append(count);
    }
    return walked;
}

// The number, from 1, of the `which`-th line after "COURSE_MODE" in the
// block of course `course` of the ply file at `path`.
int CourseLineOf(const QString& path, int course, int which)
{
    return CourseLine(LinesOfFile(path), course, which);
}

int CourseRecordOf(const QString& path, int course)
{
    return LineStartingWith(LinesOfFile(path), QStringLiteral(";[COURSE] CourseNumber=%1,").arg(course));
}

// The first line along course `course` from its `which`-th on that writes
// every one of `words`.
int CourseLineWriting(const QString& path, int course, int which, const QStringList& words)
{
    const QStringList lines = LinesOfFile(path);
    for (int number = CourseLine(lines, course, which); number < lines.size(); ++number) {
        const QString& line = lines.at(number - 1);
        if (line == QLatin1String("OFF_COURSE_MODE"))
            break;
        if (std::all_of(words.cbegin(), words.cend(), [&line](const QString& word) { return HasWord(line, word); }))
            return number;
    }
    ADD_FAILURE() << "no line of course " << course << " writes " << words.join(QLatin1Char(' ')).toStdString();
    return 0;
}

// A line along course `course` that writes every one of `words`, as does
// the line before it.
int SecondOfTwoCourseLinesWriting(const QString& path, int course, const QStringList& words)
{
    const QStringList lines = LinesOfFile(path);
    const auto writesAll = [&](int number) {
        return std::all_of(words.cbegin(), words.cend(),
                           [&](const QString& word) { return HasWord(lines.at(number - 1), word); });
    };
    for (int number = CourseLine(lines, course, 2); number < lines.size(); ++number) {
        if (lines.at(number - 1) == QLatin1String("OFF_COURSE_MODE"))
            break;
        if (writesAll(number - 1) && writesAll(number))
            return number;
    }
    ADD_FAILURE() << "no two lines of course " << course << " write " << words.join(QLatin1Char(' ')).toStdString();
    return 0;
}

// `line` with each of `words` set to `value(word)`, with four decimals.
QString WithWordsSet(const QString& line, const QStringList& words, const std::function<double(const QString&)>& value)
{
    QString changed = line;
    for (const QString& word : words)
        changed = WithWord(changed, word, value(word));
    return changed;
}

QString WithoutWords(const QString& line, const QStringList& words)
{
    QString changed = line;
    for (const QString& word : words)
        changed = WithoutWord(changed, word);
    return changed;
}

/*!
    A course on a wall facing +X, the example machine's first roll axis: the
    head lays it with the bend at a quarter turn, where the first roll is
    free, and keeps the first roll still. The course runs along +Y at
    X 6000, Z -2000 mm: an approach from 100 mm off the wall at Y 3900 down
    to Y 3950, the roll-in to the touch-down at 4000 and the first add at
    4010, tows to 4100, the roll-out to the lift-off at 4120, and a retract
    100 mm off at 4170. The approach link ends on the course's first point,
    the retract link stands on its last.
*/
namespace Wall {

constexpr double kWallX = 6000.0;
constexpr double kWallZ = -2000.0;
constexpr double kOff = 100.0;

QJsonObject Point(double y, double off = 0.0)
{
    return QJsonObject{{QStringLiteral("origin"), QJsonArray{kWallX + off, y, kWallZ}},
                       {QStringLiteral("travel"), QJsonArray{0, 1, 0}},
                       {QStringLiteral("normal"), QJsonArray{1, 0, 0}}};
}

QJsonObject Trajectory(const QString& kind, const QJsonArray& points)
{
    return QJsonObject{
        {QStringLiteral("kind"), kind}, {QStringLiteral("feedrate"), 6000}, {QStringLiteral("points"), points}};
}

QJsonArray PointsAt(double from, double to)
{
    QJsonArray points;
    for (double y = from; y <= to; y += 10.0)
        points.append(Point(y));
    return points;
}

QJsonObject Link(const QString& name, const QJsonObject& point)
{
    return QJsonObject{
        {QStringLiteral("name"), name},
        {QStringLiteral("pointsDetail"), QStringLiteral("low")},
        {QStringLiteral("trajectories"), QJsonArray{Trajectory(QStringLiteral("offPart"), QJsonArray{point})}}};
}

QString Toolpath()
{
    QJsonObject tows = Trajectory(QStringLiteral("tow"), PointsAt(4010, 4100));
    tows.insert(QStringLiteral("towMask"), QStringLiteral("1111111111111111"));
    const QJsonObject course = ZELKinTestToolpath::TowCourse(
        QJsonArray{Trajectory(QStringLiteral("offPart"), QJsonArray{Point(3900, kOff), Point(3950)}),
                   Trajectory(QStringLiteral("onPart"), QJsonArray{Point(3950), Point(4000), Point(4010)}), tows,
                   Trajectory(QStringLiteral("onPart"), QJsonArray{Point(4100), Point(4110), Point(4120)}),
                   Trajectory(QStringLiteral("offPart"), QJsonArray{Point(4120), Point(4170, kOff)})});
    const QJsonObject safetyPlane{{QStringLiteral("origin"), QJsonArray{6300, 0, 0}},
                                  {QStringLiteral("normal"), QJsonArray{1, 0, 0}}};
    const QJsonObject procedure = ZELKinTestToolpath::LayupProcedureOf(
        QStringLiteral("wall"), safetyPlane,
        QJsonArray{Link(QStringLiteral("approach"), Point(3900, kOff)), Link(QStringLiteral("retract"), Point(4170, kOff))},
        QJsonArray{course});
    return ZELKinTestToolpath::ProgramDocument(QStringLiteral("wall"), QStringLiteral("A"), QJsonArray{procedure});
}

QString Inches(double millimetres)
{
    return QString::number(millimetres / kMillimetresPerInch, 'f', 4);
}

/*!
    The ply file as the post writes it: every word in inches or degrees with
    four decimals, X, Y and Z the roller centre (the point 30 mm off the
    wall), a word left out while it holds. C 0, A 90 and C1 90 turn the
    normal onto +X and the travel onto +Y, and stay. U is the material from
    the course's first point: 111.8034 mm (100 mm off and 50 along) down to
    Y 3950, then the distance along the wall, then 111.8034 mm up again.
*/
QString PlyFile()
{
    const double down = std::hypot(kOff, 50.0);
    QStringList lines{
        QStringLiteral(";[BEGIN START-UP CODES]"),
        QStringLiteral("G700; English Units"),
        QStringLiteral("M3; Start-of-Program Macro"),
        QStringLiteral("M0; Program Stop"),
        QStringLiteral("G90; Absolute Positioning Mode"),
        QStringLiteral("G94; Feed-Per-Minute Mode"),
        QStringLiteral(";[END START-UP CODES]"),
        QStringLiteral("M61; Activate Layup Traori"),
        QStringLiteral(";[COURSE] CourseNumber=1,TowRoller=16,TowsUsed=FFFF,Material=T35-E120"),
        QStringLiteral(";PMAC1: G400U0"),
        QStringLiteral(";PMAC1: G500U%1A/B[FFFF]").arg(down + 60.0, 0, 'f', 3),
        QStringLiteral(";PMAC1: G500U%1C/B[FFFF]").arg(down + 150.0, 0, 'f', 3),
        QStringLiteral("M22; Sequence Start"),
        QStringLiteral("N1G641 ADIS=OFF_PART X%1Y%2Z%3C0.0000A90.0000C1=90.0000F236.22; Last off part point")
            .arg(Inches(kWallX + kOff + kRollerRadius), Inches(3900), Inches(kWallZ)),
        QStringLiteral("G92(U,0.0000); Preset U-Axis"),
        QStringLiteral("M4; Start Course"),
        QStringLiteral("COURSE_MODE")};
    int number = 2;
    for (double y = 3950; y <= 4120; y += y < 4000 ? 50.0 : 10.0) {
        const QString x = y == 3950 ? QStringLiteral("X") + Inches(kWallX + kRollerRadius) : QString();
        lines.append(QStringLiteral("N%1G1%2Y%3U%4").arg(number++).arg(x, Inches(y)).arg(down + y - 3950, 0, 'f', 4));
    }
    lines.append(QStringLiteral("OFF_COURSE_MODE"));
    lines.append(QStringLiteral("N%1G1G641 ADIS=OFF_PART M5M18X%2Y%3U%4;First off part point")
                     .arg(number)
                     .arg(Inches(kWallX + kOff + kRollerRadius), Inches(4170))
                     .arg(down + 170.0 + down, 0, 'f', 4));
    lines.append(QStringLiteral("M21; Ply End"));
    lines.append(QStringLiteral("M02"));
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace Wall

// The rows of a summary's "Estimated run time:" table, its heading first.
QStringList RunTimeRows(const QString& summary)
{
    const QStringList lines = summary.split(QLatin1Char('\n'));
    QStringList rows;
    for (int i = int(lines.indexOf(QStringLiteral("Estimated run time:"))) + 1;
         i > 0 && i < lines.size() && !lines.at(i).startsWith(QStringLiteral("From the feeds")); ++i)
        rows.append(lines.at(i));
    return rows;
}

// One row of that table: ply, procedure, courses, lines, lines without a
// time, then the time in seconds and as h:mm:ss.s, each marked ">= " when
// lines are left out.
struct RunTimeRow
{
    explicit RunTimeRow(const QString& row)
    {
        static const QRegularExpression pattern(
            QStringLiteral("^(\\S+)  +(.*\\S)?  +(\\d+)  +(\\d+)  +(\\d+)  +"
                           "(>= )?(\\d+\\.\\d)  +(>= )?(\\d+):(\\d\\d):(\\d\\d\\.\\d)$"));
        const QRegularExpressionMatch match = pattern.match(row);
        EXPECT_TRUE(match.hasMatch()) << row.toStdString();
        ply = match.captured(1);
        procedure = match.captured(2);
        courses = match.captured(3).toInt();
        lines = match.captured(4).toInt();
        untimed = match.captured(5).toInt();
        secondsBounded = match.hasCaptured(6);
        seconds = match.captured(7).toDouble();
        clockBounded = match.hasCaptured(8);
        clock = match.captured(9).toInt() * 3600.0 + match.captured(10).toInt() * 60.0 + match.captured(11).toDouble();
    }

    QString ply;
    QString procedure;
    int courses = 0;
    int lines = 0;
    int untimed = 0;
    bool secondsBounded = false;
    double seconds = 0.0;
    bool clockBounded = false;
    double clock = 0.0;
};

// A posted program, posted once for all tests of a suite; each test works
// on a copy of it.
class PostedProgram : public ::testing::Test
{
protected:
    static void PostOnce(QTemporaryDir*& posted, const QString& toolpath)
    {
        posted = new QTemporaryDir();
        const ZELKinToolRun run = Post(toolpath, posted->path());
        ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    }

    void CopyFrom(const QTemporaryDir& posted, const QString& name)
    {
        program = QDir(copy.path()).filePath(name);
        CopyProgramFolder(QDir(posted.path()).filePath(name), program);
    }

    QString PlyFile(const QString& name) const { return QDir(program).filePath(name); }

    QTemporaryDir copy;
    QString program;
};

// The demo part, the example cylinder section.
class ZELKinVerifyCommand : public PostedProgram
{
protected:
    static void SetUpTestSuite() { PostOnce(posted, kToolpath); }
    static void TearDownTestSuite()
    {
        delete posted;
        posted = nullptr;
    }

    void SetUp() override
    {
        CopyFrom(*posted, QStringLiteral("cylinder-section"));
        ply = PlyFile(kPlyName);
    }

    ZELKinToolRun Verify(const QStringList& extra = {}) const { return ::Verify(kToolpath, copy.path(), extra); }
    QJsonObject VerifyAsJson() const { return ::VerifyAsJson(kToolpath, copy.path()); }

    static inline QTemporaryDir* posted = nullptr;
    QString ply;
};

// The example dome, where the normal tilts both ways and the wrist turns
// all three rotary axes along a course.
class ZELKinVerifyDome : public PostedProgram
{
protected:
    static void SetUpTestSuite() { PostOnce(posted, kDomeToolpath); }
    static void TearDownTestSuite()
    {
        delete posted;
        posted = nullptr;
    }

    void SetUp() override
    {
        CopyFrom(*posted, QStringLiteral("dome"));
        ply = PlyFile(QStringLiteral("dome#0102.PPF"));
    }

    QJsonObject VerifyAsJson() const { return ::VerifyAsJson(kDomeToolpath, copy.path()); }

    static inline QTemporaryDir* posted = nullptr;
    QString ply;
};

} // namespace

// What the post writes once every point gets its line and words are left
// out against the value the controller holds: these pass then.

TEST_F(ZELKinVerifyCommand, ThePostedDemoPartPassesEveryCheck)
{
    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 0) << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.endsWith(QStringLiteral("Result: PASS\n"))) << run.standardOutput.toStdString();
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("Findings:")));
}

TEST_F(ZELKinVerifyDome, ThePostedDomePassesEveryCheck)
{
    const QJsonObject result = VerifyAsJson();
    EXPECT_TRUE(result.value(QStringLiteral("passed")).toBool());
    EXPECT_EQ(result.value(QStringLiteral("failures")).toInt(), 0)
        << QJsonDocument(result.value(QStringLiteral("findings")).toArray()).toJson().left(4000).toStdString();
}

TEST(ZELKinVerifyCommandDense, AFortyFiveDegreePlyOfFifteenHundredPointsACourseKeepsItsWristOnTheToolpath)
{
    // The first roll turns by less than the modal tolerance from one point
    // to the next: left out against the held value, it never drifts.
    const QTemporaryDir work;
    const QString toolpath = QDir(work.path()).filePath(QStringLiteral("dense.json"));
    const QString nc = QDir(work.path()).filePath(QStringLiteral("nc"));
    ASSERT_EQ(RunZelkin({QStringLiteral("generate-toolpath"), QStringLiteral("--part"), QStringLiteral("cylinder"),
                         QStringLiteral("--plies"), QStringLiteral("45"), QStringLiteral("--courses"),
                         QStringLiteral("2"), QStringLiteral("--points-per-course"), QStringLiteral("1500"),
                         QStringLiteral("-o"), toolpath})
                  .exitCode,
              0);
    ASSERT_EQ(Post(toolpath, nc).exitCode, 0);

    const QJsonObject result = VerifyAsJson(toolpath, nc);
    EXPECT_TRUE(FindingsOf(result, QStringLiteral("normal")).isEmpty());
    EXPECT_TRUE(FindingsOf(result, QStringLiteral("travel")).isEmpty());
    EXPECT_TRUE(result.value(QStringLiteral("passed")).toBool());
}

// The summary and its numbers.

TEST_F(ZELKinVerifyCommand, VerifySolvesNothingAndWritesNoProgress)
{
    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_TRUE(run.standardError.isEmpty()) << run.standardError.toStdString();
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("Solving kinematics")));
}

TEST_F(ZELKinVerifyCommand, TheSummaryHasOneRowPerPlyWithItsProcedure)
{
    const QStringList lines = Verify().standardOutput.split(QLatin1Char('\n'));
    ASSERT_GT(lines.size(), 8);
    EXPECT_EQ(lines.at(0), QStringLiteral("Verified NC: %1").arg(copy.path()));
    EXPECT_EQ(lines.at(1), QStringLiteral("Gates: ") + kGates);
    EXPECT_TRUE(
        lines.at(3).startsWith(QStringLiteral("ply   procedure  courses  lines  matched  links  points  centre mm  "
                                              "contact mm  normal deg  travel deg")))
        << lines.at(3).toStdString();
    EXPECT_TRUE(lines.at(4).startsWith(QStringLiteral("0101  Ply 1 0    4 ")));
    EXPECT_TRUE(lines.at(5).startsWith(QStringLiteral("0102  Ply 2 +45  4 ")));
    EXPECT_TRUE(lines.at(6).startsWith(QStringLiteral("0103  Ply 3 -45  4 ")));
    EXPECT_TRUE(lines.at(7).startsWith(QStringLiteral("0104  Ply 4 +90  4 ")));
}

TEST_F(ZELKinVerifyCommand, TheJsonFormKeepsTheGatesAndAccountsForEveryLine)
{
    const QJsonObject result = VerifyAsJson();
    const QJsonObject gates = result.value(QStringLiteral("gates")).toObject();
    EXPECT_TRUE(ZELTest::SameDouble(0.01, gates.value(QStringLiteral("centreMm")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(
        ZELTest::SameDouble(0.00005, gates.value(QStringLiteral("rotaryRoundingDeg")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.001, gates.value(QStringLiteral("rotaryLagRad")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(30.0, gates.value(QStringLiteral("flipDeg")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(2.0, gates.value(QStringLiteral("singularityDeg")).toDouble(), ZELTest::kTight));
    EXPECT_FALSE(gates.contains(QStringLiteral("angleDeg"))) << "no fixed angle gate";
    const QJsonArray plies = result.value(QStringLiteral("plies")).toArray();
    ASSERT_EQ(plies.size(), 4);
    for (const QJsonValue& value : plies) {
        const QJsonObject ply = value.toObject();
        EXPECT_EQ(ply.value(QStringLiteral("courses")).toInt(), 4);
        EXPECT_GT(ply.value(QStringLiteral("matchedLines")).toInt(), 4 * 20);
        EXPECT_EQ(ply.value(QStringLiteral("matchedLines")).toInt() + ply.value(QStringLiteral("linkLines")).toInt(),
                  ply.value(QStringLiteral("motionLines")).toInt());
        EXPECT_GT(ply.value(QStringLiteral("towEvents")).toInt(), 0);
    }
}

TEST_F(ZELKinVerifyCommand, EveryCourseIsWalkedFromItsApproachThroughItsRollOutPoint)
{
    const QJsonObject result = VerifyAsJson();
    const QStringList procedures{QStringLiteral("Ply 1 0"), QStringLiteral("Ply 2 +45"), QStringLiteral("Ply 3 -45"),
                                 QStringLiteral("Ply 4 +90")};
    for (int p = 0; p < procedures.size(); ++p) {
        const QList<int> walked = WalkedPointsOf(kToolpath, procedures.at(p));
        const QJsonArray courses =
            PlyOf(result, QStringLiteral("010%1").arg(p + 1)).value(QStringLiteral("courseChecks")).toArray();
        ASSERT_EQ(courses.size(), walked.size());
        for (int c = 0; c < walked.size(); ++c)
            EXPECT_EQ(courses.at(c).toObject().value(QStringLiteral("points")).toInt(), walked.at(c))
                << procedures.at(p).toStdString() << ", course " << c + 1;
    }
}

TEST_F(ZELKinVerifyCommand, EachCourseIsCheckedOnItsOwnAndTheCoursesAddUpToThePly)
{
    const QStringList lines = Verify().standardOutput.split(QLatin1Char('\n'));
    const int perCourse = int(lines.indexOf(QStringLiteral("Per course:")));
    ASSERT_GT(perCourse, 0);
    EXPECT_TRUE(lines.at(perCourse + 1).startsWith(QStringLiteral("ply   course  lines  matched  links  points")));
    EXPECT_TRUE(lines.at(perCourse + 2).startsWith(QStringLiteral("0101  1 ")));
    EXPECT_TRUE(lines.at(perCourse + 17).startsWith(QStringLiteral("0104  4 ")));

    for (const QJsonValue& value : VerifyAsJson().value(QStringLiteral("plies")).toArray()) {
        const QJsonObject ply = value.toObject();
        const QJsonArray courses = ply.value(QStringLiteral("courseChecks")).toArray();
        ASSERT_EQ(courses.size(), 4);
        int motionLines = 0;
        int matchedLines = 0;
        int points = 0;
        for (int i = 0; i < courses.size(); ++i) {
            EXPECT_EQ(courses.at(i).toObject().value(QStringLiteral("course")).toInt(), i + 1);
            motionLines += courses.at(i).toObject().value(QStringLiteral("motionLines")).toInt();
            matchedLines += courses.at(i).toObject().value(QStringLiteral("matchedLines")).toInt();
            points += courses.at(i).toObject().value(QStringLiteral("points")).toInt();
        }
        EXPECT_EQ(motionLines, ply.value(QStringLiteral("motionLines")).toInt());
        EXPECT_EQ(matchedLines, ply.value(QStringLiteral("matchedLines")).toInt());
        EXPECT_EQ(points, ply.value(QStringLiteral("points")).toInt());
    }
}

// The estimated run time.

TEST_F(ZELKinVerifyCommand, TheRunTimeTableHasARowPerPlyAndATotalWithTheTimesOfTheJson)
{
    const QStringList rows = RunTimeRows(Verify().standardOutput);
    ASSERT_EQ(rows.size(), 6);
    EXPECT_EQ(rows.at(0), QStringLiteral("ply    procedure  courses  lines  untimed  seconds  h:mm:ss.s"));
    const QJsonObject result = VerifyAsJson();
    const QStringList procedures{QStringLiteral("Ply 1 0"), QStringLiteral("Ply 2 +45"), QStringLiteral("Ply 3 -45"),
                                 QStringLiteral("Ply 4 +90")};
    int lines = 0;
    for (int p = 0; p < procedures.size(); ++p) {
        const RunTimeRow row(rows.at(p + 1));
        const QJsonObject ply = PlyOf(result, QStringLiteral("010%1").arg(p + 1));
        EXPECT_EQ(row.ply, QStringLiteral("010%1").arg(p + 1));
        EXPECT_EQ(row.procedure, procedures.at(p));
        EXPECT_EQ(row.courses, 4);
        EXPECT_EQ(row.lines, ply.value(QStringLiteral("motionLines")).toInt());
        EXPECT_EQ(row.untimed, 0);
        EXPECT_FALSE(row.secondsBounded || row.clockBounded) << rows.at(p + 1).toStdString();
        EXPECT_TRUE(
            ZELTest::SameDouble(ply.value(QStringLiteral("runTimeSeconds")).toDouble(), row.seconds, kPrintedTenth));
        EXPECT_TRUE(ZELTest::SameDouble(row.seconds, row.clock, kPrintedTenth)) << rows.at(p + 1).toStdString();
        lines += row.lines;
    }
    const RunTimeRow total(rows.at(5));
    EXPECT_EQ(total.ply, QStringLiteral("total"));
    EXPECT_TRUE(total.procedure.isEmpty());
    EXPECT_EQ(total.courses, 16);
    EXPECT_EQ(total.lines, lines);
    EXPECT_EQ(total.untimed, 0);
    EXPECT_TRUE(
        ZELTest::SameDouble(result.value(QStringLiteral("runTimeSeconds")).toDouble(), total.seconds, kPrintedTenth));
    EXPECT_TRUE(ZELTest::SameDouble(total.seconds, total.clock, kPrintedTenth));
}

TEST_F(ZELKinVerifyCommand, TheRunTimesOfTheCoursesAddUpToTheirPlysAndThePliesToTheTotal)
{
    const QJsonObject result = VerifyAsJson();
    double plies = 0.0;
    for (const QJsonValue& value : result.value(QStringLiteral("plies")).toArray()) {
        const QJsonObject ply = value.toObject();
        const QString number = ply.value(QStringLiteral("ply")).toString();
        double courses = 0.0;
        for (const QJsonValue& course : ply.value(QStringLiteral("courseChecks")).toArray()) {
            const double seconds = course.toObject().value(QStringLiteral("runTimeSeconds")).toDouble();
            EXPECT_TRUE(std::isfinite(seconds) && seconds > 0.0) << number.toStdString() << ": " << seconds;
            EXPECT_EQ(course.toObject().value(QStringLiteral("untimedLines")).toInt(-1), 0);
            courses += seconds;
        }
        const double seconds = ply.value(QStringLiteral("runTimeSeconds")).toDouble();
        EXPECT_TRUE(ZELTest::SameDouble(seconds, courses, kSummedSeconds)) << number.toStdString();
        EXPECT_EQ(ply.value(QStringLiteral("untimedLines")).toInt(-1), 0);
        plies += seconds;
    }
    EXPECT_GT(plies, 0.0);
    EXPECT_TRUE(ZELTest::SameDouble(plies, result.value(QStringLiteral("runTimeSeconds")).toDouble(), kSummedSeconds));
    EXPECT_EQ(result.value(QStringLiteral("untimedLines")).toInt(-1), 0);
}

TEST_F(ZELKinVerifyCommand, EachCourseRowEndsWithItsRunTimeInSeconds)
{
    const QStringList lines = Verify().standardOutput.split(QLatin1Char('\n'));
    const int perCourse = int(lines.indexOf(QStringLiteral("Per course:")));
    ASSERT_GT(perCourse, 0);
    EXPECT_TRUE(lines.at(perCourse + 1).endsWith(QStringLiteral("  warnings  run time s")))
        << lines.at(perCourse + 1).toStdString();
    int row = perCourse + 2;
    for (const QJsonValue& ply : VerifyAsJson().value(QStringLiteral("plies")).toArray()) {
        for (const QJsonValue& course : ply.toObject().value(QStringLiteral("courseChecks")).toArray()) {
            const QString cell = lines.at(row++).split(QLatin1Char(' '), Qt::SkipEmptyParts).last();
            EXPECT_TRUE(ZELTest::SameDouble(course.toObject().value(QStringLiteral("runTimeSeconds")).toDouble(),
                                            cell.toDouble(), kPrintedTenth))
                << cell.toStdString();
        }
    }
}

TEST_F(ZELKinVerifyCommand, ALineWithoutAFeedLeavesItsPlysRunTimeABoundAndSaysSo)
{
    // The ply's first motion line sets the feed the first line along course
    // 1 runs at; without it that line has none.
    const int first = LineStartingWith(LinesOfFile(ply), QStringLiteral("N1G641 ADIS=OFF_PART "));
    ASSERT_GT(first, 0);
    ChangeLine(ply, first, [](const QString& text) { return WithoutWord(text, QStringLiteral("F")); });

    const QJsonObject result = VerifyAsJson();
    const QJsonObject untimed = PlyOf(result, QStringLiteral("0101"));
    const QJsonObject course = untimed.value(QStringLiteral("courseChecks")).toArray().at(0).toObject();
    EXPECT_EQ(untimed.value(QStringLiteral("untimedLines")).toInt(), 1);
    EXPECT_EQ(course.value(QStringLiteral("untimedLines")).toInt(), 1);
    EXPECT_EQ(PlyOf(result, QStringLiteral("0102")).value(QStringLiteral("untimedLines")).toInt(), 0);
    EXPECT_EQ(result.value(QStringLiteral("untimedLines")).toInt(), 1);

    const QString summary = Verify().standardOutput;
    const QStringList rows = RunTimeRows(summary);
    ASSERT_EQ(rows.size(), 6);
    const RunTimeRow row(rows.at(1));
    EXPECT_EQ(row.untimed, 1);
    EXPECT_TRUE(row.secondsBounded && row.clockBounded) << rows.at(1).toStdString();
    EXPECT_FALSE(RunTimeRow(rows.at(2)).secondsBounded) << rows.at(2).toStdString();
    const RunTimeRow total(rows.at(5));
    EXPECT_TRUE(total.secondsBounded && total.clockBounded) << rows.at(5).toStdString();
    EXPECT_TRUE(summary.contains(QStringLiteral("\n1 of %1 lines cannot be timed (a feed line without a feed, or a "
                                                "rapid or a turn in place whose axes have no speed limit): a time "
                                                "marked >= leaves them out.\n")
                                     .arg(total.lines)))
        << summary.toStdString();
}

// The machine's own kinematics.

TEST_F(ZELKinVerifyCommand, AFirstRollWordTurnedTurnsTheNormalAndSwingsTheContactPointAboutTheRollerCentre)
{
    // Along ply 2 the first roll turns, and every normal of the cylinder
    // stands square to the first roll axis X: a degree of C turns it by a
    // degree, and swings the contact point on the roller's circle.
    ply = PlyFile(QStringLiteral("cylinder-section#0102.PPF"));
    const int line = CourseLineWriting(ply, 2, 6, {QStringLiteral("C")});
    ChangeLine(ply, line, [](const QString& text) {
        return WithWord(text, QStringLiteral("C"), WordValue(text, QStringLiteral("C")) + 1.0);
    });

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> normals = FindingsAt(result, QStringLiteral("normal"), QStringLiteral("0102"), line);
    ASSERT_EQ(normals.size(), 1);
    EXPECT_TRUE(ZELTest::SameDouble(1.0, normals.first().value(QStringLiteral("value")).toDouble(), kDegreeWord));
    const QList<QJsonObject> contacts = FindingsAt(result, QStringLiteral("contact"), QStringLiteral("0102"), line);
    ASSERT_EQ(contacts.size(), 1);
    const double chord = 2.0 * kRollerRadius * std::sin(0.5 * kRadiansPerDegree);
    EXPECT_TRUE(ZELTest::SameDouble(chord, contacts.first().value(QStringLiteral("value")).toDouble(), kInchWord));
    EXPECT_TRUE(FindingsAt(result, QStringLiteral("centre"), QStringLiteral("0102"), line).isEmpty())
        << "the roller centre is where X, Y and Z put it";
}

TEST_F(ZELKinVerifyCommand, TheSlidesAreTheProgrammedPointLessTheWristsTipOffset)
{
    // Course 1 of ply 1 is laid with the first roll C turned and the bend and
    // second roll at zero: the tip, 330 mm below C's pivot, stands
    // 330 (1 - cos C) mm higher than at home, so the Z slide stands that much
    // below the programmed point. A programmed point just inside Z's travel
    // of -3000 mm puts the slide beyond it.
    const QStringList lines = LinesOfFile(ply);
    const int approach = LineStartingWith(lines, QStringLiteral("N1G641"), CourseRecordOf(ply, 1));
    ASSERT_GT(approach, 0);
    const double c = WordValue(lines.at(approach - 1), QStringLiteral("C"));
    ASSERT_GT(std::abs(c), 1.0) << "the course is laid off the crest";
    const int line = CourseLineOf(ply, 1, 3);
    ChangeLine(ply, line, [](const QString& text) {
        return HasWord(text, QStringLiteral("Z")) ? WithWordText(text, QStringLiteral("Z"), QStringLiteral("-118.0906"))
                                                  : WithWords(text, QStringLiteral("Z-118.0906"));
    });

    const QList<QJsonObject> limits = FindingsAt(VerifyAsJson(), QStringLiteral("limit"), QStringLiteral("0101"), line);
    ASSERT_EQ(limits.size(), 1);
    const double slide = -118.0906 * kMillimetresPerInch - kTipDrop * (1.0 - std::cos(c * kRadiansPerDegree));
    EXPECT_EQ(limits.first().value(QStringLiteral("subject")).toString(), QStringLiteral("Z"));
    EXPECT_TRUE(ZELTest::SameDouble(slide, limits.first().value(QStringLiteral("value")).toDouble(), kReported));
    EXPECT_EQ(limits.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("Z at %1 mm is beyond its minimum of -3000.0000 mm").arg(slide, 0, 'f', 4));
}

// Against the toolpath, not against what was solved.

TEST_F(ZELKinVerifyCommand, PliesThePostLeftOutAreNamedByTheirProcedures)
{
    const QString programSet = PlyFile(QStringLiteral("cylinder-section.PPSF"));
    QStringList lines = LinesOfFile(programSet);
    for (const QString& number : {QStringLiteral("0102"), QStringLiteral("0103"), QStringLiteral("0104")}) {
        ASSERT_TRUE(QFile::remove(PlyFile(QStringLiteral("cylinder-section#%1.PPF").arg(number))));
        lines.removeIf(
            [&number](const QString& line) { return line.startsWith(QStringLiteral("; %1, ").arg(number)); });
    }
    WriteText(programSet, lines.join(QLatin1Char('\n')));

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    for (const QString& procedure :
         {QStringLiteral("Ply 2 +45"), QStringLiteral("Ply 3 -45"), QStringLiteral("Ply 4 +90")})
        EXPECT_TRUE(run.standardOutput.contains(
            QStringLiteral("\n  %1: missing: the NC has no ply file for the procedure '%1'\n").arg(procedure)))
            << run.standardOutput.toStdString();
    const QList<QJsonObject> missing = FindingsOf(VerifyAsJson(), QStringLiteral("missing"));
    ASSERT_EQ(missing.size(), 3);
    EXPECT_EQ(missing.at(0).value(QStringLiteral("procedure")).toString(), QStringLiteral("Ply 2 +45"));
}

TEST_F(ZELKinVerifyCommand, ALiftOffPointWithoutALineIsAPathFindingNamingTheRollOutPoint)
{
    const QStringList lines = LinesOfFile(ply);
    const int line = LineStartingWith(lines, QStringLiteral("OFF_COURSE_MODE"), CourseRecordOf(ply, 2)) - 1;
    ASSERT_TRUE(lines.at(line - 1).endsWith(QStringLiteral(";Last point in course")));
    RemoveLine(ply, line);

    const int rollOut = WalkedPointsOf(kToolpath, QStringLiteral("Ply 1 0")).at(1);
    const QList<QJsonObject> paths = FindingsOf(VerifyAsJson(), QStringLiteral("path"));
    const auto onRollOut = std::find_if(paths.cbegin(), paths.cend(), [rollOut](const QJsonObject& finding) {
        return finding.value(QStringLiteral("ply")).toString() == QLatin1String("0101")
            && finding.value(QStringLiteral("course")).toInt() == 2
            && finding.value(QStringLiteral("point")).toInt() == rollOut;
    });
    ASSERT_NE(onRollOut, paths.cend());
    EXPECT_TRUE(onRollOut->value(QStringLiteral("message")).toString().contains(
        QStringLiteral("of point %1 (the roll-out point) of course 2").arg(rollOut)))
        << onRollOut->value(QStringLiteral("message")).toString().toStdString();
    EXPECT_GT(onRollOut->value(QStringLiteral("value")).toDouble(), 0.01);
}

TEST_F(ZELKinVerifyCommand, ALineTakenOutOfACurvedCourseLeavesItsPointOffThePath)
{
    // Ply 4 runs round the cylinder: the chord between the lines either side
    // of the missing one passes inside the arc.
    ply = PlyFile(QStringLiteral("cylinder-section#0104.PPF"));
    const int line = CourseLineOf(ply, 2, 10);
    RemoveLine(ply, line);

    const QList<QJsonObject> paths = FindingsAt(VerifyAsJson(), QStringLiteral("path"), QStringLiteral("0104"), line);
    ASSERT_EQ(paths.size(), 1) << "the line after it now has its number and ends the chord";
    EXPECT_EQ(paths.first().value(QStringLiteral("course")).toInt(), 2);
    EXPECT_GT(paths.first().value(QStringLiteral("value")).toDouble(), 0.1);
}

TEST_F(ZELKinVerifyCommand, ALineTakenOutOfAStraightCourseLeavesEveryPointOnThePath)
{
    // Ply 1 runs along the cylinder's axis: the line either side of the
    // missing one join through its point.
    const int line = CourseLineOf(ply, 2, 10);
    RemoveLine(ply, line);

    const int rollOut = WalkedPointsOf(kToolpath, QStringLiteral("Ply 1 0")).at(1);
    for (const QJsonObject& path : FindingsOf(VerifyAsJson(), QStringLiteral("path"))) {
        if (path.value(QStringLiteral("ply")).toString() == QLatin1String("0101")
            && path.value(QStringLiteral("course")).toInt() == 2) {
            EXPECT_EQ(path.value(QStringLiteral("point")).toInt(), rollOut) << "only a missing lift-off may show";
        }
    }
}

TEST_F(ZELKinVerifyCommand, ACourseNoLineRunsAlongIsAFinding)
{
    QStringList lines = LinesOfFile(ply);
    const int third = CourseRecordOf(ply, 3);
    const int fourth = CourseRecordOf(ply, 4);
    ASSERT_LT(third, fourth);
    lines.erase(lines.begin() + third - 1, lines.begin() + fourth - 1);
    WriteText(ply, lines.join(QLatin1Char('\n')));

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> missing = FindingsOf(result, QStringLiteral("missing"));
    ASSERT_EQ(missing.size(), 1);
    EXPECT_EQ(missing.first().value(QStringLiteral("course")).toInt(), 3);
    EXPECT_EQ(missing.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("no line of the NC runs along course 3 of the procedure"));
    // Its tows are neither added nor cut either.
    const QList<QJsonObject> tows = FindingsOf(result, QStringLiteral("tow"));
    EXPECT_FALSE(tows.isEmpty());
    for (const QJsonObject& tow : tows) {
        EXPECT_EQ(tow.value(QStringLiteral("course")).toInt(), 3);
        EXPECT_TRUE(tow.value(QStringLiteral("message")).toString().endsWith(QStringLiteral(" 1 times in this course, "
                                                                                           "the NC 0 times")));
    }
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
    int missingInGarbage = 0;
    for (const QJsonObject& finding : FindingsOf(result, QStringLiteral("missing")))
        missingInGarbage += finding.value(QStringLiteral("ply")).toString() == QLatin1String("0101") ? 1 : 0;
    EXPECT_EQ(missingInGarbage, 4);
}

// Gates that follow from the modal rule.

TEST_F(ZELKinVerifyDome, AFirstRollWordFiveHundredthsOfADegreeOffOnALineThatWritesEveryRotaryWordIsAFinding)
{
    const int line = CourseLineWriting(ply, 2, 2, {QStringLiteral("C"), QStringLiteral("A"), QStringLiteral("C1=")});
    ChangeLine(ply, line, [](const QString& text) {
        return WithWord(text, QStringLiteral("C"), WordValue(text, QStringLiteral("C")) + kSmallTurnDegrees);
    });

    const QList<QJsonObject> normals =
        FindingsAt(VerifyAsJson(), QStringLiteral("normal"), QStringLiteral("0102"), line);
    ASSERT_EQ(normals.size(), 1);
    // C turns the normal by the turn times the sine of its angle to the
    // first roll axis X, which on a cap of 30 degrees round +Z is at least
    // cos 30 deg; with every rotary word written the gate is their rounding.
    const double value = normals.first().value(QStringLiteral("value")).toDouble();
    EXPECT_GT(value, kSmallTurnDegrees * std::cos(30.0 * kRadiansPerDegree) - kDegreeWord);
    EXPECT_LT(value, kSmallTurnDegrees + kDegreeWord);
    EXPECT_LT(normals.first().value(QStringLiteral("limit")).toDouble(), 0.001);
}

TEST_F(ZELKinVerifyDome, ThreeRotaryWordsLeftOutTogetherWithinTheirLagAreNotAFinding)
{
    // The line before holds every rotary axis 0.0009 rad short of this
    // line's values, and this line leaves all three words out, as the modal
    // rule allows: their errors add up on this line beyond any one lag.
    const QStringList rotary{QStringLiteral("C"), QStringLiteral("A"), QStringLiteral("C1=")};
    const int line = SecondOfTwoCourseLinesWriting(ply, 2, rotary);
    ASSERT_GT(line, 0);
    const QString current = LinesOfFile(ply).at(line - 1);
    ChangeLine(ply, line - 1, [&](const QString& text) {
        return WithWordsSet(text, rotary,
                            [&](const QString& word) { return WordValue(current, word) - kAllowedLagDegrees; });
    });
    ChangeLine(ply, line, [&](const QString& text) { return WithoutWords(text, rotary); });

    const QJsonObject result = VerifyAsJson();
    EXPECT_FALSE(FindingsAt(result, QStringLiteral("normal"), QStringLiteral("0102"), line - 1).isEmpty())
        << "the words written on the line before are off its point";
    for (const QString& check : {QStringLiteral("normal"), QStringLiteral("travel"), QStringLiteral("contact")})
        EXPECT_TRUE(FindingsAt(result, check, QStringLiteral("0102"), line).isEmpty()) << check.toStdString();
}

TEST_F(ZELKinVerifyDome, ARotaryWordLeftOutThatLagsBeyondTheModalRuleIsAFinding)
{
    // The first roll held 0.2 deg (0.0035 rad) short, the others exact: it
    // turns the normal by more than the lags of all three words could.
    const QStringList rotary{QStringLiteral("C"), QStringLiteral("A"), QStringLiteral("C1=")};
    const int line = SecondOfTwoCourseLinesWriting(ply, 2, rotary);
    ASSERT_GT(line, 0);
    const QString current = LinesOfFile(ply).at(line - 1);
    ChangeLine(ply, line - 1, [&](const QString& text) {
        return WithWordsSet(text, rotary, [&](const QString& word) {
            return WordValue(current, word) - (word == QLatin1String("C") ? 0.2 : 0.0);
        });
    });
    ChangeLine(ply, line, [&](const QString& text) { return WithoutWords(text, rotary); });

    EXPECT_EQ(FindingsAt(VerifyAsJson(), QStringLiteral("normal"), QStringLiteral("0102"), line).size(), 1);
}

TEST_F(ZELKinVerifyCommand, ALinkLineOffItsLinksPointsIsAFinding)
{
    const int line = LineStartingWith(LinesOfFile(ply), QStringLiteral("N1G641"), CourseRecordOf(ply, 2));
    ASSERT_GT(line, 0);
    ChangeLine(ply, line, [](const QString& text) {
        return WithWord(text, QStringLiteral("X"), WordValue(text, QStringLiteral("X")) + 0.1);
    });

    const QList<QJsonObject> links = FindingsAt(VerifyAsJson(), QStringLiteral("link"), QStringLiteral("0101"), line);
    ASSERT_EQ(links.size(), 1);
    EXPECT_TRUE(ZELTest::SameDouble(0.1 * kMillimetresPerInch, links.first().value(QStringLiteral("value")).toDouble(),
                                    kInchWord));
    EXPECT_TRUE(links.first().value(QStringLiteral("message")).toString().startsWith(
        QStringLiteral("the roller centre is 2.5")));
}

TEST_F(ZELKinVerifyCommand, AnXWordMovedATenthOfAnInchIsNamedWithItsFileAndLine)
{
    const int line = CourseLineWriting(ply, 2, 5, {QStringLiteral("X")});
    ChangeLine(ply, line, [](const QString& text) {
        return WithWord(text, QStringLiteral("X"), WordValue(text, QStringLiteral("X")) + 0.1);
    });

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(
        run.standardOutput.contains(QStringLiteral("%1:%2: centre: the roller centre is 2.5").arg(ply).arg(line)))
        << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.contains(QStringLiteral("Result: FAIL")));

    const QList<QJsonObject> findings =
        FindingsAt(VerifyAsJson(), QStringLiteral("centre"), QStringLiteral("0101"), line);
    ASSERT_EQ(findings.size(), 1);
    EXPECT_EQ(findings.first().value(QStringLiteral("file")).toString(), ply);
    EXPECT_EQ(findings.first().value(QStringLiteral("course")).toInt(), 2);
    EXPECT_EQ(findings.first().value(QStringLiteral("procedure")).toString(), QStringLiteral("Ply 1 0"));
    EXPECT_FALSE(findings.first().value(QStringLiteral("warning")).toBool());
    EXPECT_TRUE(ZELTest::SameDouble(2.54, findings.first().value(QStringLiteral("value")).toDouble(), kInchWord));
}

TEST_F(ZELKinVerifyCommand, AFirstRollTurnedInsideACourseIsAFlipAndTurnsTheNormal)
{
    ply = PlyFile(QStringLiteral("cylinder-section#0102.PPF"));
    const int line = CourseLineWriting(ply, 2, 6, {QStringLiteral("C")});
    ASSERT_TRUE(HasWord(LinesOfFile(ply).at(line), QStringLiteral("C"))) << "the next line writes C back";
    ChangeLine(ply, line, [](const QString& text) {
        return WithWord(text, QStringLiteral("C"), WordValue(text, QStringLiteral("C")) + 40.0);
    });

    const QJsonObject result = VerifyAsJson();
    EXPECT_FALSE(result.value(QStringLiteral("passed")).toBool());
    const QList<QJsonObject> into = FindingsAt(result, QStringLiteral("flip"), QStringLiteral("0102"), line);
    const QList<QJsonObject> outOf = FindingsAt(result, QStringLiteral("flip"), QStringLiteral("0102"), line + 1);
    ASSERT_EQ(into.size(), 1);
    ASSERT_EQ(outOf.size(), 1);
    EXPECT_EQ(into.first().value(QStringLiteral("subject")).toString(), QStringLiteral("C"));
    EXPECT_TRUE(into.first().value(QStringLiteral("message")).toString().startsWith(QStringLiteral("C turns ")));
    EXPECT_GT(into.first().value(QStringLiteral("value")).toDouble(), 30.0);
    EXPECT_EQ(FindingsAt(result, QStringLiteral("normal"), QStringLiteral("0102"), line).size(), 1);
}

TEST(ZELKinVerifyCommandSingularity, AWallHeldOnTheSingularityWithAStillRollPassesWithWarnings)
{
    const QTemporaryDir work;
    const QString toolpath = WriteFile(work, QStringLiteral("wall.json"), Wall::Toolpath());
    const QString program = QDir(work.path()).filePath(QStringLiteral("nc/wall"));
    ASSERT_TRUE(QDir().mkpath(program));
    WriteText(QDir(program).filePath(QStringLiteral("wall.PPSF")),
              QStringLiteral("PROGRAM SET ID: wall\n; NC_NUM, VelTRACK Name\n; 0101, wall\n"));
    WriteText(QDir(program).filePath(QStringLiteral("wall#0101.PPF")), Wall::PlyFile());

    const QString nc = QDir(work.path()).filePath(QStringLiteral("nc"));
    const ZELKinToolRun run = Verify(toolpath, nc);
    EXPECT_EQ(run.exitCode, 0) << run.standardOutput.toStdString();
    // Fifteen lines along the course, from Y 3950 to the lift-off and the
    // line off the wall, each with its normal on the first roll axis.
    EXPECT_TRUE(run.standardOutput.endsWith(QStringLiteral("Result: PASS (15 warnings)\n")))
        << run.standardOutput.toStdString();
    const QJsonObject result = VerifyAsJson(toolpath, nc);
    const QList<QJsonObject> warnings = FindingsOf(result, QStringLiteral("singularity"));
    ASSERT_EQ(warnings.size(), 15);
    for (const QJsonObject& warning : warnings) {
        EXPECT_TRUE(warning.value(QStringLiteral("warning")).toBool());
        EXPECT_TRUE(ZELTest::SameDouble(0.0, warning.value(QStringLiteral("value")).toDouble(), kReported));
    }
    const QJsonObject ply = PlyOf(result, QStringLiteral("0101"));
    EXPECT_EQ(ply.value(QStringLiteral("points")).toInt(), 15) << "Y 3900 off the wall, 3950, 4000, 4010 to 4120";
    EXPECT_EQ(ply.value(QStringLiteral("matchedLines")).toInt(), 15);
    EXPECT_LT(ply.value(QStringLiteral("maxSpeedRatio")).toObject().value(QStringLiteral("value")).toDouble(), 1.0);
}

// Reading the numbers whole, and the codes between motion lines.

TEST_F(ZELKinVerifyCommand, AFeedInExponentNotationIsReadWholeAndIsAFinding)
{
    const int line = CourseLineOf(ply, 2, 5);
    ChangeLine(ply, line, [](const QString& text) {
        const QString code = WithoutWord(text.left(text.indexOf(QLatin1Char(';'))), QStringLiteral("F"));
        return code + QStringLiteral("F2e+05") + text.mid(text.indexOf(QLatin1Char(';')));
    });

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> numbers = FindingsAt(result, QStringLiteral("number"), QStringLiteral("0101"), line);
    ASSERT_EQ(numbers.size(), 1);
    EXPECT_EQ(numbers.first().value(QStringLiteral("subject")).toString(), QStringLiteral("F"));
    EXPECT_EQ(numbers.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("the F word is written in exponent notation, 2e+05, which reads as 200000.0000"));
    // 200000 inches a minute, not 2: no axis follows.
    EXPECT_FALSE(FindingsAt(result, QStringLiteral("speed"), QStringLiteral("0101"), line).isEmpty());
}

TEST_F(ZELKinVerifyCommand, AnAxisWordInExponentNotationIsReadWholeAndIsAFinding)
{
    const int line = CourseLineWriting(ply, 2, 5, {QStringLiteral("X")});
    ChangeLine(ply, line, [](const QString& text) {
        const double inches = WordValue(text, QStringLiteral("X"));
        return WithWordText(text, QStringLiteral("X"), QString::number(inches / 100.0, 'f', 6) + QStringLiteral("e2"));
    });

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> numbers = FindingsAt(result, QStringLiteral("number"), QStringLiteral("0101"), line);
    ASSERT_EQ(numbers.size(), 1);
    EXPECT_EQ(numbers.first().value(QStringLiteral("subject")).toString(), QStringLiteral("X"));
    EXPECT_TRUE(FindingsAt(result, QStringLiteral("centre"), QStringLiteral("0101"), line).isEmpty())
        << "read whole, the word puts the roller centre where it was";
}

struct InsertedCode
{
    const char* name;
    const char* line;
    const char* subject;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(InsertedCode);

class ZELKinVerifyInsertedCode : public ZELKinVerifyCommand, public ::testing::WithParamInterface<InsertedCode>
{
};

TEST_P(ZELKinVerifyInsertedCode, BetweenMotionLinesIsACodeFinding)
{
    const int line = CourseLineOf(ply, 2, 5) + 1;
    InsertLine(ply, line, QString::fromUtf8(GetParam().line));

    const QList<QJsonObject> codes = FindingsAt(VerifyAsJson(), QStringLiteral("code"), QStringLiteral("0101"), line);
    ASSERT_EQ(codes.size(), 1);
    EXPECT_EQ(codes.first().value(QStringLiteral("subject")).toString(), QString::fromUtf8(GetParam().subject));
    EXPECT_EQ(codes.first().value(QStringLiteral("message")).toString(), QString::fromUtf8(GetParam().message));
    EXPECT_EQ(codes.first().value(QStringLiteral("course")).toInt(), 2);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, ZELKinVerifyInsertedCode,
    ::testing::Values(
        InsertedCode{"ProgramStop", "M0", "M0", "M0 stops the program between the ply's motion lines"},
        InsertedCode{"OptionalStop", "M1", "M1", "M1 stops the program between the ply's motion lines"},
        InsertedCode{"ProgramEnd", "M2", "M2", "M2 stops the program between the ply's motion lines"},
        InsertedCode{"ProgramEndAndRewind", "M30", "M30", "M30 stops the program between the ply's motion lines"},
        InsertedCode{"RapidMove", "G0Z0.0000", "G0", "G0 is not a code the post writes between motion lines"},
        InsertedCode{"SubprogramCall", "M98", "M98", "M98 is not a code the post writes between motion lines"}),
    [](const ::testing::TestParamInfo<InsertedCode>& info) { return std::string(info.param.name); });

TEST_F(ZELKinVerifyCommand, TheProgramStopsOfTheStartUpAreNoFinding)
{
    const QStringList lines = LinesOfFile(ply);
    const int stop = LineStartingWith(lines, QStringLiteral("M0; Program Stop"));
    ASSERT_GT(stop, 0);
    ASSERT_LT(stop, CourseLineOf(ply, 1, 0)) << "the start-up stops before the first motion line";
    EXPECT_TRUE(FindingsOf(VerifyAsJson(), QStringLiteral("code")).isEmpty());
}

TEST_F(ZELKinVerifyCommand, ASecondProgramSetFileIsAFinding)
{
    ASSERT_TRUE(QFile::copy(PlyFile(QStringLiteral("cylinder-section.PPSF")), PlyFile(QStringLiteral("other.PPSF"))));

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    const QList<QJsonObject> programs = FindingsOf(VerifyAsJson(), QStringLiteral("program"));
    ASSERT_EQ(programs.size(), 1);
    EXPECT_EQ(programs.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("a second program-set file, other.PPSF, stands beside cylinder-section.PPSF"));
    EXPECT_EQ(programs.first().value(QStringLiteral("file")).toString(), PlyFile(QStringLiteral("other.PPSF")));
}

TEST_F(ZELKinVerifyCommand, APlyTheProgramSetDoesNotListIsAFinding)
{
    ASSERT_TRUE(QFile::copy(ply, PlyFile(QStringLiteral("cylinder-section#0109.PPF"))));

    const ZELKinToolRun run = Verify();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.standardOutput.contains(
        QStringLiteral("program: the program-set file does not list ply 0109 (cylinder-section#0109.PPF)")))
        << run.standardOutput.toStdString();
}

TEST_F(ZELKinVerifyCommand, APlyOfAProcedureTheToolpathDoesNotHaveIsAFinding)
{
    const QString programSet = PlyFile(QStringLiteral("cylinder-section.PPSF"));
    QStringList lines = LinesOfFile(programSet);
    const int entry = int(lines.indexOf(QStringLiteral("; 0101, Ply 1 0")));
    ASSERT_GE(entry, 0);
    lines[entry] = QStringLiteral("; 0101, Ply 9");
    WriteText(programSet, lines.join(QLatin1Char('\n')));

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> programs = FindingsOf(result, QStringLiteral("program"));
    ASSERT_EQ(programs.size(), 1);
    EXPECT_EQ(programs.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("ply 0101 lays the procedure 'Ply 9', which the toolpath does not have"));
    const QList<QJsonObject> missing = FindingsOf(result, QStringLiteral("missing"));
    ASSERT_EQ(missing.size(), 1);
    EXPECT_EQ(missing.first().value(QStringLiteral("procedure")).toString(), QStringLiteral("Ply 1 0"));
}

TEST_F(ZELKinVerifyCommand, ACourseTheProcedureDoesNotHaveIsAFinding)
{
    const int record = CourseRecordOf(ply, 2);
    ChangeLine(ply, record, [](const QString& text) {
        QString changed = text;
        return changed.replace(QStringLiteral("CourseNumber=2,"), QStringLiteral("CourseNumber=9,"));
    });

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> programs = FindingsOf(result, QStringLiteral("program"));
    ASSERT_EQ(programs.size(), 1);
    EXPECT_EQ(programs.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("the procedure 'Ply 1 0' has no course 9: it has 4"));
    EXPECT_EQ(programs.first().value(QStringLiteral("line")).toInt(), record);
    const QList<QJsonObject> missing = FindingsOf(result, QStringLiteral("missing"));
    ASSERT_EQ(missing.size(), 1);
    EXPECT_EQ(missing.first().value(QStringLiteral("course")).toInt(), 2);
}

// Limits, speeds and the singularity.

TEST_F(ZELKinVerifyCommand, ARotaryWordBeyondItsLimitIsNamedWithTheLimit)
{
    const int line = CourseLineOf(ply, 1, 4);
    ChangeLine(ply, line, [](const QString& text) { return WithWords(text, QStringLiteral("A100.0000")); });

    const QList<QJsonObject> limits = FindingsAt(VerifyAsJson(), QStringLiteral("limit"), QStringLiteral("0101"), line);
    ASSERT_FALSE(limits.isEmpty());
    EXPECT_EQ(limits.first().value(QStringLiteral("subject")).toString(), QStringLiteral("A"));
    EXPECT_EQ(limits.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("A at 100.0000 deg is beyond its maximum of 95.0000 deg"));
    EXPECT_TRUE(ZELTest::SameDouble(95.0, limits.first().value(QStringLiteral("limit")).toDouble(), kReported));
}

TEST_F(ZELKinVerifyCommand, AFeedFasterThanAnAxisCanFollowIsASpeedFinding)
{
    // Along X at 100 m/min, where X runs at most 40 m/min.
    const int line = CourseLineOf(ply, 2, 5);
    ChangeLine(ply, line, [](const QString& text) {
        return WithoutWord(text.left(text.indexOf(QLatin1Char(';'))), QStringLiteral("F")) + QStringLiteral("F3937.01");
    });

    const QList<QJsonObject> speeds = FindingsAt(VerifyAsJson(), QStringLiteral("speed"), QStringLiteral("0101"), line);
    ASSERT_FALSE(speeds.isEmpty());
    EXPECT_EQ(speeds.first().value(QStringLiteral("subject")).toString(), QStringLiteral("X"));
    EXPECT_TRUE(ZELTest::SameDouble(40.0, speeds.first().value(QStringLiteral("limit")).toDouble(), kReported));
    EXPECT_GT(speeds.first().value(QStringLiteral("value")).toDouble(), 40.0);
}

TEST_F(ZELKinVerifyCommand, ABendNearAQuarterTurnIsAWarningAboutTheSingularity)
{
    // With A at 89 degrees the normal stands 1 degree off the first roll axis X.
    const int line = CourseLineOf(ply, 1, 4);
    ChangeLine(ply, line, [](const QString& text) { return WithWords(text, QStringLiteral("A89.0000")); });
    // A is modal: the next line takes it back.
    ChangeLine(ply, line + 1, [](const QString& text) { return WithWords(text, QStringLiteral("A0.0000")); });

    const QJsonObject result = VerifyAsJson();
    const QList<QJsonObject> singular = FindingsAt(result, QStringLiteral("singularity"), QStringLiteral("0101"), line);
    ASSERT_EQ(singular.size(), 1);
    EXPECT_TRUE(singular.first().value(QStringLiteral("warning")).toBool());
    EXPECT_TRUE(ZELTest::SameDouble(1.0, singular.first().value(QStringLiteral("value")).toDouble(), 1e-3));
    EXPECT_EQ(singular.first().value(QStringLiteral("message")).toString(),
              QStringLiteral("the normal is 1.000 deg from the first roll axis, the wrist's singularity (warning "
                             "below 2.000 deg)"));
    EXPECT_GE(result.value(QStringLiteral("warnings")).toInt(), 1);
}

// Tows.

TEST_F(ZELKinVerifyCommand, ATowAddMovedAlongTheCourseIsNamedWithItsEventLine)
{
    QStringList lines = LinesOfFile(ply);
    const int index = int(lines.indexOf(QRegularExpression(QStringLiteral("^;PMAC1: G500U[0-9.]+A/B\\[.*"))));
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
    EXPECT_TRUE(
        tows.first().value(QStringLiteral("message")).toString().startsWith(QStringLiteral("the NC adds tow ")));
}

TEST_F(ZELKinVerifyCommand, AMissingTowCutIsCountedAgainstTheToolpath)
{
    QStringList lines = LinesOfFile(ply);
    const int index = int(lines.indexOf(QRegularExpression(QStringLiteral("^;PMAC1: G500U[0-9.]+C/B\\[.*"))));
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

// Where the NC is.

TEST_F(ZELKinVerifyCommand, ABundleIsReadLikeTheFolder)
{
    const QString bundle = QDir(copy.path()).filePath(QStringLiteral("job.bun"));
    ASSERT_EQ(Post(kToolpath, bundle).exitCode, 0);
    const QJsonObject fromBundle = ::VerifyAsJson(kToolpath, bundle);
    const QJsonObject fromFolder = VerifyAsJson();
    EXPECT_EQ(fromBundle.value(QStringLiteral("failures")), fromFolder.value(QStringLiteral("failures")));
    const QJsonArray bundlePlies = fromBundle.value(QStringLiteral("plies")).toArray();
    const QJsonArray folderPlies = fromFolder.value(QStringLiteral("plies")).toArray();
    ASSERT_EQ(bundlePlies.size(), 4);
    ASSERT_EQ(folderPlies.size(), 4);
    for (int i = 0; i < 4; ++i) {
        for (const QString& count :
             {QStringLiteral("motionLines"), QStringLiteral("matchedLines"), QStringLiteral("points")})
            EXPECT_EQ(bundlePlies.at(i).toObject().value(count), folderPlies.at(i).toObject().value(count));
    }
    EXPECT_EQ(bundlePlies.at(0).toObject().value(QStringLiteral("file")).toString(), bundle);
}

// Exit statuses.

TEST_F(ZELKinVerifyCommand, AFolderWithoutAPostedProgramCannotBeRead)
{
    const QTemporaryDir empty;
    const ZELKinToolRun run = ::Verify(kToolpath, empty.path());
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: no posted program in %1: no program-set file (.PPSF) there "
                                          "or in a folder inside it")
                               .arg(empty.path())}));
    EXPECT_TRUE(run.standardOutput.isEmpty());
}

TEST_F(ZELKinVerifyCommand, AMachineWhoseJointTreeBranchesCannotBeFollowed)
{
    QString description = ReadText(GetExampleMachinePath());
    description.replace(QStringLiteral("parent=\"A\" priority=\"medium\"/>"),
                        QStringLiteral("parent=\"A\" priority=\"medium\"/>\n<joint name=\"B\" type=\"rotation\" "
                                       "vector=\"0,0,1\" pivot=\"0,0,0\" variables=\"C\" parent=\"Z\"/>"));
    const QString machine = WriteFile(copy, QStringLiteral("branching.xml"), description);

    const ZELKinToolRun run = ::Verify(kToolpath, copy.path(), {}, machine);
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: the joint tree ends in more than one joint: 'C1' and 'B'")}));
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
        Verify(kToolpath, QStringLiteral("x"), {QStringLiteral("--flip-angle"), QStringLiteral("wide")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: --flip-angle takes an angle in degrees above 0 and below "
                                          "180, not 'wide'"),
                           kVerifyHint}));
}
