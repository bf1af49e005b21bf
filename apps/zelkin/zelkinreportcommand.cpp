#include "zelkinreportcommand.h"

#include "zelkinarguments.h"
#include "zelkinclock.h"
#include "zelkinconsole.h"
#include "zelkinhtmlreport.h"
#include "zelkinoutputfile.h"
#include "zelkinreportplydata.h"
#include "zelkinreportsources.h"
#include "zelkinverificationjob.h"

#include <QMap>

namespace {

const QString OutputOption = QStringLiteral("o");

QString OutputPath(const ZELKinArguments& parsed, const QString& command)
{
    if (!parsed.IsSet(OutputOption))
        throw ZELKinUsageError(QStringLiteral("missing the report file (-o REPORT.html)"), command);
    return parsed.GetValue(OutputOption);
}

void Write(ZELKinOutputFile& file, const QString& html)
{
    const QByteArray bytes = html.toUtf8();
    if (file.GetDevice()->write(bytes) != bytes.size())
        file.ThrowWriteError();
    file.Commit();
}

} // namespace

QString ZELKinReportCommand::GetName() const
{
    return QStringLiteral("report");
}

QString ZELKinReportCommand::GetSummary() const
{
    return QStringLiteral("Check posted NC as verify does and write the results as one HTML page");
}

QString ZELKinReportCommand::GetSynopsis() const
{
    return QStringLiteral("--machine M.xml --toolpath T.json --nc PATH -o REPORT.html\n"
                          "                      [--flip-angle DEG] [--singularity-angle DEG] [--quiet]");
}

QString ZELKinReportCommand::GetDescription() const
{
    return QStringLiteral("Runs the checks of 'zelkin verify' on the NC that 'zelkin post' wrote to PATH\n"
                          "and writes what they found to REPORT.html, one page that any browser opens\n"
                          "with no network: style, script and data are all inside it.\n"
                          "\n"
                          "The page says when it was made (SOURCE_DATE_EPOCH when set) and by which\n"
                          "zelkin, names the program and each file checked with its size and SHA-256,\n"
                          "the gates and the result (PASS, or FAIL with the number of findings), and\n"
                          "lists the plies, each PASS or FAIL with its findings and estimated run time.\n"
                          "Per ply it shows the summary of 'zelkin verify', an overview of the whole\n"
                          "ply, the roller centre's path seen from above and one plot per machine axis\n"
                          "against the path length (rotary axes in deg, linear ones in mm, X, Y and Z\n"
                          "as slide positions) with the axis's limits, for the whole ply or the courses\n"
                          "the reader chooses; every finding is marked where it happens and listed\n"
                          "with its file and line. Each course's lines are cut to the smallest and\n"
                          "largest value of stretches of its path, so peaks stay visible.\n"
                          "\n"
                          "Exit status 0 when every check passes (warnings do not fail), 1 when any\n"
                          "fails (the page is written all the same) or the page cannot be written, 3\n"
                          "when the machine, the toolpath or the NC cannot be read.\n"
                          "\n"
                          "Options:\n"
                          "  --machine M.xml           The machine description.\n"
                          "  --toolpath T.json         The toolpath file the NC was posted from.\n"
                          "  --nc PATH                 The posted NC: a folder or a bundle (.bun).\n"
                          "  -o, --output REPORT.html  The page to write; it is replaced only once the\n"
                          "                            new one is complete.\n"
                          "  --flip-angle DEG          A wrist flip (default 30).\n"
                          "  --singularity-angle DEG   Closest allowed to the singularity (default 2).\n"
                          "  --quiet                   Show no progress.\n");
}

QList<ZELKinOption> ZELKinReportCommand::GetOptions() const
{
    return ZELKinVerificationJob::GetOptions()
        << ZELKinOption({OutputOption, QStringLiteral("output")}, ZELKinOption::Value::Path);
}

int ZELKinReportCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    parsed.RequireAtMostPositionals(0);
    ZELKinVerificationJob::Input input = ZELKinVerificationJob::GetInput(parsed, GetName());
    // Each ply's plots are made as soon as it is checked, from its lines,
    // which are let go before the next ply is read.
    QMap<int, QString> plyData;
    input.onPly = [&plyData](const ZELKinAFPMachine& machine, int index, const ZELKinVerifiedPly& ply,
                             const QList<ZELKinVerifyFinding>& findings) {
        plyData.insert(index, ZELKinReportPlyData::ToJson(machine, ply, findings));
    };
    const QString reportPath = OutputPath(parsed, GetName());
    parsed.RequirePaths({OutputOption});
    parsed.RequireNotAnInput(OutputOption, reportPath, ZELKinVerificationJob::GetFileOptions());

    // Taken and opened before the long verification, so that a clock set
    // wrong or a folder that is not there fails at once.
    const QDateTime made = ZELKinClock::Now();
    ZELKinOutputFile file(reportPath);
    return ZELKinVerificationJob::Run(input, [&](const ZELKinVerificationJob& job) {
        const ZELKinReportSources sources(input.machinePath, input.toolpathPath, input.ncPath, job.GetVerification());
        const ZELKinHtmlReport report(*job.GetMachine(), job.GetVerification(), plyData.values(), sources, made);
        Write(file, report.ToHtml());
        ZELKinConsole::Print(QStringLiteral("Wrote %1: %2\n").arg(reportPath, report.GetResult()));
        return job.GetVerification().IsPassed() ? ZELKinExitStatus::Success : ZELKinExitStatus::Failure;
    });
}
