#include "zelkinverifycommand.h"

#include "zelkinarguments.h"
#include "zelkinconsole.h"
#include "zelkinruntimetext.h"
#include "zelkintexttable.h"
#include "zelkinverificationjob.h"

#include <zelkinverifysummary.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

const QString JsonOption = QStringLiteral("json");

// The text summary lists this many findings; --json lists them all.
constexpr int kFindingsShown = 50;

// "course 2, point 6, <file>:<line>", leaving out what the place has not.
QString Where(const ZELKinVerifyPlace& place)
{
    QStringList parts;
    if (place.course > 0)
        parts.append(QStringLiteral("course %1").arg(place.course));
    if (place.point > 0)
        parts.append(QStringLiteral("point %1").arg(place.point));
    if (!place.file.isEmpty())
        parts.append(QStringLiteral("%1:%2").arg(place.file, QString::number(place.line)));
    return parts.join(QStringLiteral(", "));
}

QString Describe(const ZELKinVerifyFinding& finding)
{
    QStringList where{finding.plyNumber.isEmpty() ? finding.procedure
                                                  : finding.plyNumber + QLatin1Char(' ') + finding.procedure};
    if (!Where(finding.place).isEmpty())
        where.append(Where(finding.place));
    return QStringLiteral("%1: %2: %3").arg(where.join(QStringLiteral(", ")), finding.check, finding.message);
}

QString Listed(const QString& heading, const QList<ZELKinVerifyFinding>& findings)
{
    if (findings.isEmpty())
        return QString();
    QString text = QStringLiteral("\n%1:\n").arg(heading);
    for (int i = 0; i < findings.size() && i < kFindingsShown; ++i)
        text += QStringLiteral("  %1\n").arg(Describe(findings.at(i)));
    if (findings.size() > kFindingsShown)
        text += QStringLiteral("  ... and %1 more (--json lists them all)\n").arg(findings.size() - kFindingsShown);
    return text;
}

QList<ZELKinVerifyFinding> Severity(const QList<ZELKinVerifyFinding>& findings, bool warning)
{
    QList<ZELKinVerifyFinding> chosen;
    std::copy_if(findings.cbegin(), findings.cend(), std::back_inserter(chosen),
                 [warning](const ZELKinVerifyFinding& finding) { return finding.warning == warning; });
    return chosen;
}

// A time that leaves out lines the estimate cannot time is only a bound.
QString Bounded(const ZELKinRunTime& runTime, const QString& time)
{
    return runTime.IsComplete() ? time : QStringLiteral(">= ") + time;
}

QString Seconds(const ZELKinRunTime& runTime)
{
    return Bounded(runTime, QString::number(runTime.seconds, 'f', 1));
}

QStringList RunTimeCells(const ZELKinRunTime& runTime)
{
    return {QString::number(runTime.motionLines), QString::number(runTime.untimedLines), Seconds(runTime),
            ZELKinRunTimeText::Clock(runTime)};
}

QString RunTimes(const ZELKinVerification& verification)
{
    ZELKinTextTable table;
    table.AddRow(QStringList{QStringLiteral("ply"), QStringLiteral("procedure"), QStringLiteral("courses"),
                             QStringLiteral("lines"), QStringLiteral("untimed"), QStringLiteral("seconds"),
                             QStringLiteral("h:mm:ss.s")});
    int courses = 0;
    for (const ZELKinVerifiedPly& ply : verification.plies) {
        table.AddRow(QStringList{ply.plyNumber, ply.procedure, QString::number(ply.courses)}
                     + RunTimeCells(ply.runTime));
        courses += ply.courses;
    }
    table.AddRow(QStringList{QStringLiteral("total"), QString(), QString::number(courses)}
                 + RunTimeCells(verification.runTime));
    QString text = QStringLiteral("\nEstimated run time:\n") + table.ToText(0);
    text += QStringLiteral("From the feeds, the rapids and the axes' speed and acceleration limits; the controller's "
                           "waits (program stops, tow and heater codes) are not counted.\n");
    if (!verification.runTime.IsComplete())
        text += QStringLiteral("%1 of %2 lines cannot be timed (a feed line without a feed, or a rapid or a turn in "
                               "place whose axes have no speed limit): a time marked >= leaves them out.\n")
                    .arg(verification.runTime.untimedLines)
                    .arg(verification.runTime.motionLines);
    return text;
}

QString Summary(const QString& ncPath, const ZELKinVerification& verification)
{
    QString text = QStringLiteral("Verified NC: %1\n").arg(ncPath);
    text += QStringLiteral("Gates: %1\n\n").arg(ZELKinVerifySummary::DescribeGates(verification.gates));
    ZELKinTextTable table;
    table.AddRow(QStringList{QStringLiteral("ply"), QStringLiteral("procedure"), QStringLiteral("courses")}
                 + ZELKinVerifySummary::GetHeadings());
    for (const ZELKinVerifiedPly& ply : verification.plies)
        table.AddRow(QStringList{ply.plyNumber, ply.procedure, QString::number(ply.courses)}
                     + ZELKinVerifySummary::GetCells(ply));
    ZELKinTextTable courses;
    courses.AddRow(QStringList{QStringLiteral("ply"), QStringLiteral("course")} + ZELKinVerifySummary::GetHeadings()
                   << QStringLiteral("run time s"));
    for (const ZELKinVerifiedPly& ply : verification.plies) {
        for (const ZELKinVerifiedCourse& course : ply.courseTallies)
            courses.AddRow(
                QStringList{ply.plyNumber, QString::number(course.course)} + ZELKinVerifySummary::GetCells(course)
                << Seconds(course.runTime));
    }
    text += table.ToText(0);
    text += QStringLiteral("\nPer course:\n") + courses.ToText(0);
    text += RunTimes(verification);
    text += Listed(QStringLiteral("Findings"), Severity(verification.findings, false));
    text += Listed(QStringLiteral("Warnings"), Severity(verification.findings, true));
    text += QStringLiteral("\nLink lines (approach, between courses, retract) are gated by their roller centre only; "
                           "the probing file is not checked.\n");
    text += QStringLiteral("Result: %1\n").arg(ZELKinVerifySummary::GetResult(verification));
    return text;
}

QJsonValue JsonNumber(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonObject JsonPlace(const ZELKinVerifyPlace& place)
{
    return QJsonObject{{QStringLiteral("course"), place.course},
                       {QStringLiteral("point"), place.point},
                       {QStringLiteral("file"), place.file},
                       {QStringLiteral("line"), qint64(place.line)}};
}

QJsonObject JsonExtreme(const ZELKinVerifyExtreme& extreme, double scale)
{
    QJsonObject object = JsonPlace(extreme.place);
    object.insert(QStringLiteral("value"), JsonNumber(extreme.value * scale));
    if (!extreme.subject.isEmpty())
        object.insert(QStringLiteral("subject"), extreme.subject);
    return object;
}

QJsonObject JsonTally(const ZELKinVerifyTally& tally)
{
    return QJsonObject{
        {QStringLiteral("motionLines"), tally.motionLines},
        {QStringLiteral("matchedLines"), tally.matchedLines},
        {QStringLiteral("linkLines"), tally.linkLines},
        {QStringLiteral("movesInPlace"), tally.movesInPlace},
        {QStringLiteral("towEvents"), tally.towEvents},
        {QStringLiteral("points"), tally.points},
        {QStringLiteral("findings"), tally.findings},
        {QStringLiteral("warnings"), tally.warnings},
        {QStringLiteral("maxCentreMm"), JsonExtreme(tally.centre, 1.0)},
        {QStringLiteral("maxContactMm"), JsonExtreme(tally.contact, 1.0)},
        {QStringLiteral("maxNormalDeg"), JsonExtreme(tally.normal, qRadiansToDegrees(1.0))},
        {QStringLiteral("maxTravelDeg"), JsonExtreme(tally.travel, qRadiansToDegrees(1.0))},
        {QStringLiteral("maxRotaryStepDeg"), JsonExtreme(tally.rotaryStep, qRadiansToDegrees(1.0))},
        {QStringLiteral("maxSpeedRatio"), JsonExtreme(tally.speedRatio, 1.0)},
        {QStringLiteral("minSingularityMarginDeg"), JsonExtreme(tally.singularityMargin, qRadiansToDegrees(1.0))},
        {QStringLiteral("maxTowEventMm"), JsonExtreme(tally.towEvent, 1.0)},
        {QStringLiteral("maxLinkCentreMm"), JsonExtreme(tally.linkCentre, 1.0)},
        {QStringLiteral("maxPathGapMm"), JsonExtreme(tally.pathGap, 1.0)},
        {QStringLiteral("runTimeSeconds"), tally.runTime.seconds},
        {QStringLiteral("untimedLines"), tally.runTime.untimedLines}};
}

QJsonObject JsonPly(const ZELKinVerifiedPly& ply)
{
    QJsonObject object = JsonTally(ply);
    object.insert(QStringLiteral("ply"), ply.plyNumber);
    object.insert(QStringLiteral("procedure"), ply.procedure);
    object.insert(QStringLiteral("file"), ply.file);
    object.insert(QStringLiteral("courses"), ply.courses);
    QJsonArray courses;
    for (const ZELKinVerifiedCourse& course : ply.courseTallies) {
        QJsonObject entry = JsonTally(course);
        entry.insert(QStringLiteral("course"), course.course);
        courses.append(entry);
    }
    object.insert(QStringLiteral("courseChecks"), courses);
    return object;
}

QJsonObject JsonFinding(const ZELKinVerifyFinding& finding)
{
    QJsonObject object = JsonPlace(finding.place);
    object.insert(QStringLiteral("check"), finding.check);
    object.insert(QStringLiteral("ply"), finding.plyNumber);
    object.insert(QStringLiteral("procedure"), finding.procedure);
    object.insert(QStringLiteral("subject"), finding.subject);
    object.insert(QStringLiteral("value"), JsonNumber(finding.value));
    object.insert(QStringLiteral("limit"), JsonNumber(finding.limit));
    object.insert(QStringLiteral("message"), finding.message);
    object.insert(QStringLiteral("warning"), finding.warning);
    return object;
}

QString Json(const QString& ncPath, const ZELKinVerification& verification)
{
    const ZELKinVerifyGates& gates = verification.gates;
    QJsonArray plies;
    for (const ZELKinVerifiedPly& ply : verification.plies)
        plies.append(JsonPly(ply));
    QJsonArray findings;
    for (const ZELKinVerifyFinding& finding : verification.findings)
        findings.append(JsonFinding(finding));
    const QJsonObject root{{QStringLiteral("nc"), ncPath},
                           {QStringLiteral("passed"), verification.IsPassed()},
                           {QStringLiteral("failures"), qint64(verification.GetNumFailures())},
                           {QStringLiteral("warnings"), qint64(verification.GetNumWarnings())},
                           {QStringLiteral("gates"),
                            QJsonObject{{QStringLiteral("centreMm"), gates.centre},
                                        {QStringLiteral("rotaryRoundingDeg"), qRadiansToDegrees(gates.rotaryRounding)},
                                        {QStringLiteral("rotaryLagRad"), gates.rotaryLag},
                                        {QStringLiteral("flipDeg"), qRadiansToDegrees(gates.flip)},
                                        {QStringLiteral("singularityDeg"), qRadiansToDegrees(gates.singularity)},
                                        {QStringLiteral("towEventMm"), gates.towEvent}}},
                           {QStringLiteral("runTimeSeconds"), verification.runTime.seconds},
                           {QStringLiteral("untimedLines"), verification.runTime.untimedLines},
                           {QStringLiteral("plies"), plies},
                           {QStringLiteral("findings"), findings}};
    return QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented));
}

} // namespace

QString ZELKinVerifyCommand::GetName() const
{
    return QStringLiteral("verify");
}

QString ZELKinVerifyCommand::GetSummary() const
{
    return QStringLiteral("Check posted NC against its toolpath and the machine's limits");
}

QString ZELKinVerifyCommand::GetSynopsis() const
{
    return QStringLiteral("--machine M.xml --toolpath T.json --nc PATH [--json]\n"
                          "                      [--flip-angle DEG] [--singularity-angle DEG]");
}

QString ZELKinVerifyCommand::GetDescription() const
{
    return QStringLiteral(
        "Reads the NC files that 'zelkin post' wrote to PATH (its output folder, the\n"
        "program's folder or a bundle) back line by line, as the controller runs\n"
        "them, and checks them against the toolpath T.json with kinematics of its\n"
        "own, built from the joint tree of M.xml; nothing is solved:\n"
        "\n"
        "  - every course of every layup procedure is laid: the roller centre's path\n"
        "    passes within 0.01 mm of each point from the approach through the\n"
        "    roll-out;\n"
        "  - each line along a course puts the roller centre on its toolpath point\n"
        "    (gate 0.01 mm), with the point's normal and direction of travel as far\n"
        "    as the line's rotary words allow (their rounding when written, 0.001\n"
        "    rad when left out), and the tows where they land; link lines keep the\n"
        "    roller centre on their link's points;\n"
        "  - numbers are plain decimals, and no program stop or strange code stands\n"
        "    between motion lines;\n"
        "  - every axis stays within its limits (X, Y and Z as slide positions) and\n"
        "    speeds, and no rotary axis turns more than the flip angle inside a\n"
        "    course;\n"
        "  - tows are added and cut where the toolpath adds and cuts them.\n"
        "A normal closer to the wrist's singularity than the singularity angle is a\n"
        "warning, which does not fail.\n"
        "\n"
        "Prints a table per ply and per course, an estimate of each ply's and each\n"
        "course's run time (from the feeds and the axes' speed and acceleration\n"
        "limits), and every finding with its course, point, file and line. Exit\n"
        "status 0 when every check passes, 1 when any fails, 3 when the machine,\n"
        "the toolpath or the NC cannot be read.\n"
        "\n"
        "Options:\n"
        "  --machine M.xml           The machine description.\n"
        "  --toolpath T.json         The toolpath file the NC was posted from.\n"
        "  --nc PATH                 The posted NC: a folder or a bundle (.bun).\n"
        "  --json                    Print the results as one JSON object.\n"
        "  --flip-angle DEG          A wrist flip (default 30).\n"
        "  --singularity-angle DEG   Warn closer to the singularity (default 2).\n");
}

QList<ZELKinOption> ZELKinVerifyCommand::GetOptions() const
{
    return ZELKinVerificationJob::GetOptions() << ZELKinOption(JsonOption, ZELKinOption::Value::None);
}

int ZELKinVerifyCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    parsed.RequireAtMostPositionals(0);
    const ZELKinVerificationJob::Input input = ZELKinVerificationJob::GetInput(parsed, GetName());
    return ZELKinVerificationJob::Run(input, [&](const ZELKinVerificationJob& job) {
        const ZELKinVerification& verification = job.GetVerification();
        ZELKinConsole::Print(parsed.IsSet(JsonOption) ? Json(input.ncPath, verification)
                                                      : Summary(input.ncPath, verification));
        return verification.IsPassed() ? ZELKinExitStatus::Success : ZELKinExitStatus::Failure;
    });
}
