#include "zelkinverifycommand.h"

#include "zelkinarguments.h"
#include "zelkinconsole.h"
#include "zelkintexttable.h"
#include "zelkinverificationjob.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

const QString MachineOption = QStringLiteral("machine");
const QString ToolpathOption = QStringLiteral("toolpath");
const QString NCOption = QStringLiteral("nc");
const QString JsonOption = QStringLiteral("json");
const QString FlipOption = QStringLiteral("flip-angle");
const QString SingularityOption = QStringLiteral("singularity-angle");

constexpr double kDegreesPerRadian = 57.29577951308232;
// The text summary lists this many findings; --json lists them all.
constexpr int kFindingsShown = 50;

double AngleOption(const ZELKinArguments& parsed, const QString& option, double fallback, const QString& command)
{
    if (!parsed.IsSet(option))
        return fallback;
    bool ok = false;
    const double degrees = parsed.GetValue(option).toDouble(&ok);
    if (!ok || !std::isfinite(degrees) || degrees <= 0.0 || degrees >= 180.0)
        throw ZELKinUsageError(QStringLiteral("--%1 takes an angle in degrees above 0 and below 180, not '%2'")
                                   .arg(option, parsed.GetValue(option)),
                               command);
    return degrees / kDegreesPerRadian;
}

QString Cell(double value, double scale, int decimals)
{
    return std::isnan(value) ? QStringLiteral("-") : QString::number(value * scale, 'f', decimals);
}

QString Where(const ZELKinVerifyPlace& place)
{
    QString where = QStringLiteral("course %1").arg(place.course);
    if (place.point > 0)
        where += QStringLiteral(", point %1").arg(place.point);
    return where + QStringLiteral(", %1:%2").arg(place.file).arg(place.line);
}

QString Summary(const QString& ncPath, const ZELKinVerification& verification)
{
    const ZELKinVerifyGates& gates = verification.gates;
    QString text = QStringLiteral("Verified NC: %1\n").arg(ncPath);
    text += QStringLiteral("Gates: roller centre %1 mm, normal and travel %2 deg, flip %3 deg, singularity %4 deg, "
                           "tow events %5 mm\n\n")
                .arg(Cell(gates.centre, 1.0, 4), Cell(gates.angle, kDegreesPerRadian, 4),
                     Cell(gates.flip, kDegreesPerRadian, 3), Cell(gates.singularity, kDegreesPerRadian, 3),
                     Cell(gates.towEvent, 1.0, 3));
    ZELKinTextTable table;
    table.AddRow({QStringLiteral("ply"), QStringLiteral("procedure"), QStringLiteral("courses"), QStringLiteral("lines"),
                  QStringLiteral("matched"), QStringLiteral("links"), QStringLiteral("centre mm"),
                  QStringLiteral("normal deg"), QStringLiteral("travel deg"), QStringLiteral("step deg"),
                  QStringLiteral("speed %"), QStringLiteral("margin deg"), QStringLiteral("tows mm"),
                  QStringLiteral("findings")});
    for (const ZELKinVerifiedPly& ply : verification.plies)
        table.AddRow({ply.plyNumber, ply.procedure, QString::number(ply.courses), QString::number(ply.motionLines),
                      QString::number(ply.matchedLines), QString::number(ply.linkLines),
                      Cell(ply.centre.value, 1.0, 4), Cell(ply.normal.value, kDegreesPerRadian, 4),
                      Cell(ply.travel.value, kDegreesPerRadian, 4), Cell(ply.rotaryStep.value, kDegreesPerRadian, 3),
                      Cell(ply.speedRatio.value, 100.0, 1), Cell(ply.singularityMargin.value, kDegreesPerRadian, 3),
                      Cell(ply.towEvent.value, 1.0, 3), QString::number(ply.findings)});
    text += table.ToText(0);

    const QList<ZELKinVerifyFinding>& findings = verification.findings;
    if (!findings.isEmpty()) {
        text += QStringLiteral("\nFindings:\n");
        for (int i = 0; i < findings.size() && i < kFindingsShown; ++i) {
            const ZELKinVerifyFinding& finding = findings.at(i);
            text += QStringLiteral("  %1 %2, %3: %4: %5\n")
                        .arg(finding.plyNumber, finding.procedure, Where(finding.place), finding.check,
                             finding.message);
        }
        if (findings.size() > kFindingsShown)
            text += QStringLiteral("  ... and %1 more (--json lists them all)\n").arg(findings.size() - kFindingsShown);
    }
    text += QStringLiteral("\nLink lines (approach, retract) are checked for limits, speeds and steps only; the "
                           "probing file is not checked.\n");
    text += verification.IsPassed() ? QStringLiteral("Result: PASS\n")
                                    : QStringLiteral("Result: FAIL (%1 findings)\n").arg(findings.size());
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

QJsonObject JsonPly(const ZELKinVerifiedPly& ply)
{
    return QJsonObject{{QStringLiteral("ply"), ply.plyNumber},
                       {QStringLiteral("procedure"), ply.procedure},
                       {QStringLiteral("file"), ply.file},
                       {QStringLiteral("courses"), ply.courses},
                       {QStringLiteral("motionLines"), ply.motionLines},
                       {QStringLiteral("matchedLines"), ply.matchedLines},
                       {QStringLiteral("linkLines"), ply.linkLines},
                       {QStringLiteral("movesInPlace"), ply.movesInPlace},
                       {QStringLiteral("towEvents"), ply.towEvents},
                       {QStringLiteral("findings"), ply.findings},
                       {QStringLiteral("maxCentreMm"), JsonExtreme(ply.centre, 1.0)},
                       {QStringLiteral("maxNormalDeg"), JsonExtreme(ply.normal, kDegreesPerRadian)},
                       {QStringLiteral("maxTravelDeg"), JsonExtreme(ply.travel, kDegreesPerRadian)},
                       {QStringLiteral("maxRotaryStepDeg"), JsonExtreme(ply.rotaryStep, kDegreesPerRadian)},
                       {QStringLiteral("maxSpeedRatio"), JsonExtreme(ply.speedRatio, 1.0)},
                       {QStringLiteral("minSingularityMarginDeg"),
                        JsonExtreme(ply.singularityMargin, kDegreesPerRadian)},
                       {QStringLiteral("maxTowEventMm"), JsonExtreme(ply.towEvent, 1.0)}};
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
                           {QStringLiteral("gates"),
                            QJsonObject{{QStringLiteral("centreMm"), gates.centre},
                                        {QStringLiteral("angleDeg"), gates.angle * kDegreesPerRadian},
                                        {QStringLiteral("flipDeg"), gates.flip * kDegreesPerRadian},
                                        {QStringLiteral("singularityDeg"), gates.singularity * kDegreesPerRadian},
                                        {QStringLiteral("towEventMm"), gates.towEvent}}},
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
        "them, and checks them against the toolpath T.json solved for M.xml:\n"
        "\n"
        "  - each line along a course puts the roller centre on its toolpath point\n"
        "    (gate 0.01 mm), with the point's normal and direction of travel (gate\n"
        "    0.06 deg);\n"
        "  - every axis stays within its limits (X, Y and Z as slide positions);\n"
        "  - no rotary axis turns more than the flip angle between two lines of a\n"
        "    course;\n"
        "  - no axis moves faster than its speed limit at the programmed feed;\n"
        "  - no point comes closer to the wrist's singularity than the singularity\n"
        "    angle;\n"
        "  - tows are added and cut where the toolpath adds and cuts them.\n"
        "\n"
        "Prints a table per ply and every finding with its course, point, file and\n"
        "line. Exit status 0 when every check passes, 1 when any fails.\n"
        "\n"
        "Options:\n"
        "  --machine M.xml           The machine description.\n"
        "  --toolpath T.json         The toolpath file the NC was posted from.\n"
        "  --nc PATH                 The posted NC: a folder or a bundle (.bun).\n"
        "  --json                    Print the results as one JSON object.\n"
        "  --flip-angle DEG          A wrist flip (default 30).\n"
        "  --singularity-angle DEG   Closest allowed to the singularity (default 2).\n");
}

int ZELKinVerifyCommand::Run(const QStringList& arguments)
{
    const QString valueName = QStringLiteral("value");
    const ZELKinArguments parsed(GetName(), arguments,
                                 {QCommandLineOption(MachineOption, QString(), valueName),
                                  QCommandLineOption(ToolpathOption, QString(), valueName),
                                  QCommandLineOption(NCOption, QString(), valueName),
                                  QCommandLineOption(JsonOption),
                                  QCommandLineOption(FlipOption, QString(), valueName),
                                  QCommandLineOption(SingularityOption, QString(), valueName)});
    parsed.RequireAtMostPositionals(0);
    ZELKinVerifyGates gates;
    gates.flip = AngleOption(parsed, FlipOption, gates.flip, GetName());
    gates.singularity = AngleOption(parsed, SingularityOption, gates.singularity, GetName());
    const QString ncPath = parsed.GetRequiredValue(NCOption);
    const ZELKinVerificationJob job(ZELKinVerificationJob::Input{
        parsed.GetRequiredValue(MachineOption), parsed.GetRequiredValue(ToolpathOption), ncPath, gates});
    const ZELKinVerification& verification = job.GetVerification();
    ZELKinConsole::Print(parsed.IsSet(JsonOption) ? Json(ncPath, verification) : Summary(ncPath, verification));
    return verification.IsPassed() ? ZELKinExitStatus::Success : ZELKinExitStatus::Failure;
}
