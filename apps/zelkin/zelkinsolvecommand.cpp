#include "zelkinsolvecommand.h"

#include "zelkinarguments.h"
#include "zelkinconsole.h"
#include "zelkinoutputfile.h"
#include "zelkinpositioncsv.h"
#include "zelkinprogressdisplay.h"
#include "zelkintranslationjob.h"

#include <zelkinprogram.h>
#include <zelsysexception.h>

#include <QFile>

#include <cstdio>

namespace {

const QString MachineOption = QStringLiteral("machine");
const QString ToolpathOption = QStringLiteral("toolpath");
const QString CsvOption = QStringLiteral("csv");
const QString KeepGoingOption = QStringLiteral("keep-going");

} // namespace

QString ZELKinSolveCommand::GetName() const
{
    return QStringLiteral("solve");
}

QString ZELKinSolveCommand::GetSummary() const
{
    return QStringLiteral("Translate and solve a toolpath and write the axis values as CSV");
}

QString ZELKinSolveCommand::GetSynopsis() const
{
    return QStringLiteral("--machine M.xml --toolpath T.json [--csv FILE] [--keep-going] [--quiet]");
}

QString ZELKinSolveCommand::GetDescription() const
{
    return QStringLiteral(
        "Loads the machine description M.xml and the toolpath file T.json, translates\n"
        "the toolpath into a program for that machine and solves its kinematics, as\n"
        "'zelkin post' does, showing its progress on standard error. Then writes the\n"
        "axis values of every position as CSV: procedure, script, index, and one column\n"
        "per machine variable (linear axes in mm, rotary axes in degrees).\n"
        "\n"
        "The solved program is checked as 'zelkin post' checks it: a layup procedure\n"
        "that could not be solved, a position without axis values or beyond an axis\n"
        "limit writes nothing, names the first problem and exits with status 3.\n"
        "\n"
        "Options:\n"
        "  --machine M.xml   The machine description.\n"
        "  --toolpath T.json The toolpath file.\n"
        "  --csv FILE        Write the CSV to FILE instead of standard output.\n"
        "  --keep-going      When the check finds problems, write the procedures that\n"
        "                    have none, and still exit with status 3.\n"
        "  --quiet           Show no progress.\n");
}

void ZELKinSolveCommand::WriteCsv(const ZELKinProgram& program, const ZELKinArguments& parsed)
{
    if (parsed.IsSet(CsvOption)) {
        ZELKinOutputFile csv(parsed.GetValue(CsvOption));
        if (!ZELKinPositionCsv::Write(program, csv.GetDevice()))
            csv.ThrowWriteError();
        csv.Commit();
        return;
    }
    std::fflush(stdout);
    QFile out;
    out.open(stdout, QIODevice::WriteOnly);
    // The last buffered write may fail only in the flush.
    if (!ZELKinPositionCsv::Write(program, &out) || !out.flush())
        throw ZELSysException(QStringLiteral("cannot write the CSV to standard output: %1").arg(out.errorString()));
}

QList<ZELKinOption> ZELKinSolveCommand::GetOptions() const
{
    return {ZELKinOption(MachineOption, ZELKinOption::Value::Input),
            ZELKinOption(ToolpathOption, ZELKinOption::Value::Input),
            ZELKinOption(CsvOption, ZELKinOption::Value::Path),
            ZELKinOption(KeepGoingOption, ZELKinOption::Value::None),
            ZELKinOption(ZELKinProgressDisplay::QuietOption, ZELKinOption::Value::None)};
}

int ZELKinSolveCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    parsed.RequireAtMostPositionals(0);
    parsed.RequirePaths({MachineOption, ToolpathOption, CsvOption});
    parsed.RequireNotAnInput(CsvOption, parsed.GetValue(CsvOption), {MachineOption, ToolpathOption});
    const ZELKinProgressDisplay display(
        ZELKinProgressDisplay::ChooseMode(parsed.IsSet(ZELKinProgressDisplay::QuietOption)));
    ZELKinTranslationJob& job = ZELKinTranslationJob::KeepUntilExit(std::make_unique<ZELKinTranslationJob>(
        ZELKinTranslationJob::Input{parsed.GetRequiredValue(MachineOption), parsed.GetRequiredValue(ToolpathOption),
                                    QString()}));
    job.RequireDeliverable(parsed.IsSet(KeepGoingOption));
    WriteCsv(*job.GetProgram(), parsed);
    job.ThrowIfIncomplete();
    return ZELKinExitStatus::Success;
}
