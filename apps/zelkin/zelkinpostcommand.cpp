#include "zelkinpostcommand.h"

#include "zelkinarguments.h"
#include "zelkinclock.h"
#include "zelkinconsole.h"
#include "zelkinoutputfile.h"
#include "zelkinpositioncsv.h"
#include "zelkinpostsummary.h"
#include "zelkinprogressdisplay.h"
#include "zelkinstreamingpostjob.h"
#include "zelkintranslationjob.h"

#include <zelkinprogram.h>
#include <zelkinwriter.h>
#include <zelsysexception.h>

#include <QDir>
#include <QFileInfo>

#include <optional>

namespace {

const QString MachineOption = QStringLiteral("machine");
const QString ToolpathOption = QStringLiteral("toolpath");
const QString OutputOption = QStringLiteral("output");
const QString FormatOption = QStringLiteral("format");
const QString OptionsOption = QStringLiteral("options");
const QString PlyOption = QStringLiteral("ply-to-process");
const QString DebugPathOption = QStringLiteral("debug-path");
const QString TraceOption = QStringLiteral("trace");
const QString KeepGoingOption = QStringLiteral("keep-going");

// The one dialect the writer knows; any other name would write nothing.
const QString AFPGCodeFormat = QStringLiteral("AFPGCode");
// The one ply-to-process word the writer knows; it would take any other
// for "every ply".
const QString SinglePly = QStringLiteral("ONEPLY");
const QString BundleSuffix = QStringLiteral("bun");
const QString AptsourceSuffix = QStringLiteral("aptsource");

// The file the writer writes for `output`: a path ending in .aptsource
// writes the bundle beside it.
QString WrittenFile(const QString& output)
{
    if (QFileInfo(output).suffix() != AptsourceSuffix)
        return output;
    return output.left(output.lastIndexOf(QLatin1Char('.')) + 1) + BundleSuffix;
}

// Whether the post replaces the folder of the program in `output` whole.
bool ReplacesAFolder(const QString& output, const QString& ply)
{
    const QString suffix = QFileInfo(output).suffix();
    return suffix != BundleSuffix && suffix != AptsourceSuffix && ply != SinglePly;
}

QString FormatOf(const ZELKinArguments& arguments, const QString& command)
{
    if (!arguments.IsSet(FormatOption))
        return AFPGCodeFormat;
    const QString format = arguments.GetValue(FormatOption);
    if (format != AFPGCodeFormat)
        throw ZELKinUsageError(QStringLiteral("unknown NC format '%1' (known: %2)").arg(format, AFPGCodeFormat),
                               command);
    return format;
}

// The writer would ignore an unknown key and write a value it cannot read as
// 0: what it would not use as written is a usage error.
QString OptionsOf(const ZELKinArguments& arguments, const QString& command)
{
    const QString options = arguments.GetValue(OptionsOption);
    try {
        ZELKinWriter::CheckOptions(options);
    } catch (const ZELSysException& error) {
        throw ZELKinUsageError(error.GetMessage(), command);
    }
    return options;
}

QString PlyToProcessOf(const ZELKinArguments& arguments, const QString& command)
{
    const QString ply = arguments.GetValue(PlyOption);
    if (arguments.IsSet(PlyOption) && ply != SinglePly)
        throw ZELKinUsageError(QStringLiteral("unknown ply to process '%1' (known: %2)").arg(ply, SinglePly), command);
    return ply;
}

// The trace CSV: one row per motion line, naming the position it came from
// as "zelkin solve" names it.
class LineTraceCsv
{
public:
    LineTraceCsv(const QString& path, const ZELKinProgram& program)
        : m_file(path)
        , m_keys(ZELKinPositionCsv::GetKeys(program))
    {
        Write("file,line,procedure,script,index");
    }

    void Trace(const QString& file, qint64 line, const ZELKinPosition* position)
    {
        Write(ZELKinPositionCsv::Field(file) + ',' + QByteArray::number(line) + ',' + m_keys.value(position));
    }

    void Commit()
    {
        if (!m_ok)
            m_file.ThrowWriteError();
        m_file.Commit();
    }

private:
    void Write(const QByteArray& row)
    {
        m_ok = m_ok && m_file.GetDevice()->write(row + '\n') == row.size() + 1;
    }

    ZELKinOutputFile m_file;
    const QHash<const ZELKinPosition*, QByteArray> m_keys;
    bool m_ok = true;
};

// The files the post wrote, in the order the folder lists them: for
// ONEPLY the one ply file of its own folder, which holds the files of
// earlier single-ply posts too.
QStringList FilesIn(const QString& folder)
{
    QStringList files;
    const QDir directory(folder);
    for (const QString& name : directory.entryList(QDir::Files, QDir::Name))
        files.append(directory.filePath(name));
    return files;
}

QString Summarize(const ZELKinPostSummary& summary, const QString& output, const QString& ply, const QString& name)
{
    if (ply == SinglePly)
        return summary.DescribeFiles(FilesIn(QDir(output + QStringLiteral("_procedures")).filePath(name)));
    if (!ReplacesAFolder(output, ply))
        return summary.Describe({WrittenFile(output)}, WrittenFile(output));
    return summary.Describe(FilesIn(QDir(output).filePath(name)), output);
}

// The files are in place once the summary is made: a second post of the
// same program may already have replaced them, so that they cannot be read
// back. The post has done its work; the summary is then a warning.
void PrintSummary(const ZELKinPostSummary& summary, const QString& output, const QString& ply, const QString& name)
{
    QString text;
    try {
        text = Summarize(summary, output, ply, name);
    } catch (const ZELSysException& error) {
        ZELKinConsole::Diagnose(QStringLiteral("warning"),
                                QStringLiteral("the files were written but could not be read back for the summary "
                                               "(another post may have replaced them): %1")
                                    .arg(error.GetMessage()));
        return;
    }
    ZELKinConsole::Print(text);
}

// The summary's first line goes out before anything is written: a standard
// output that loses it (a full disk) fails the post while it has written
// nothing yet.
void AnnounceProgram(const QString& name, const QString& revision)
{
    ZELKinConsole::Print(QStringLiteral("Program %1, revision %2\n").arg(name, revision));
    ZELKinConsole::FlushStandardOutput();
}

void RequireChosenPly(const ZELKinWriter& writer)
{
    if (writer.IsChosenPlyMissing())
        throw ZELSysException(QStringLiteral("the ply number read from standard input is not one of the program's; "
                                             "nothing was written"));
}

} // namespace

QString ZELKinPostCommand::GetName() const
{
    return QStringLiteral("post");
}

QString ZELKinPostCommand::GetSummary() const
{
    return QStringLiteral("Post a toolpath for a machine: write its NC files");
}

QString ZELKinPostCommand::GetSynopsis() const
{
    return QStringLiteral("--machine M.xml --toolpath T.json --output PATH [--format NAME]\n"
                          "                    [--options TEXT] [--ply-to-process TEXT] [--debug-path DIR]\n"
                          "                    [--trace FILE.csv] [--keep-going] [--quiet]");
}

QString ZELKinPostCommand::GetDescription() const
{
    return QStringLiteral(
        "Loads the machine description M.xml and the toolpath file T.json, translates\n"
        "and solves the toolpath for the machine, and writes the NC files. Progress\n"
        "goes to standard error: on a terminal one status line (phase, ply, percent,\n"
        "rate, time left), elsewhere a line every few seconds. Standard output gets\n"
        "the program's name, then, once the files are written, each file with its\n"
        "size and per ply the courses, positions and laid length, read back from\n"
        "the files.\n"
        "\n"
        "Before anything is written, the solved program is checked: a layup procedure\n"
        "that could not be solved, a position without axis values and a position\n"
        "beyond an axis limit (linear axes as slide positions) each stop the post. It\n"
        "then writes nothing, replaces no earlier file, names the first problem (its\n"
        "procedure, course and point) and how many there are, and exits with status 3.\n"
        "\n"
        "PATH decides the layout: a path ending in .bun is one bundle file; a path\n"
        "ending in .aptsource writes the bundle beside it (same name, .bun); any other\n"
        "path is a directory, which gets a folder named after the toolpath program\n"
        "with the program-set file (.PPSF), one ply file per layup procedure (.PPF)\n"
        "and the probing file (.PTPF). That folder is written whole under a hidden\n"
        "name beside it and then replaces the earlier folder and everything in it.\n"
        "\n"
        "Options:\n"
        "  --machine M.xml        The machine description.\n"
        "  --toolpath T.json      The toolpath file.\n"
        "  --output PATH          Where the NC files go (see above).\n"
        "  --format NAME          The NC dialect; only AFPGCode (the default).\n"
        "  --options TEXT         Writer options, \"key: value\" items separated by ';':\n"
        "                         tooling-retract (0 to 1000 mm), pinch-max-length\n"
        "                         and pinch-release-length (above 0, to 100000 mm,\n"
        "                         both or neither). Anything else is a usage error.\n"
        "  --ply-to-process TEXT  ONEPLY, the only value: list the plies on stderr,\n"
        "                         read the padded ply number to write from standard\n"
        "                         input, write it alone to PATH_procedures and, for a\n"
        "                         bundle, replace that ply's section in the existing\n"
        "                         bundle. A number no ply has writes nothing and fails.\n"
        "  --debug-path DIR       Write path-solving diagnostic files under DIR.\n"
        "  --trace FILE.csv       Write, for every motion line of the ply files, its\n"
        "                         file and line beside the procedure, script and index\n"
        "                         of the position it came from (as 'zelkin solve'\n"
        "                         names them).\n"
        "  --keep-going           When the check finds problems, write the procedures\n"
        "                         that have none, and still exit with status 3.\n"
        "  --quiet                Show no progress.\n"
        "\n"
        "Dates in the files come from SOURCE_DATE_EPOCH when it is set.\n");
}

QList<ZELKinOption> ZELKinPostCommand::GetOptions() const
{
    return {ZELKinOption(MachineOption, ZELKinOption::Value::Input),
            ZELKinOption(ToolpathOption, ZELKinOption::Value::Input),
            ZELKinOption(OutputOption, ZELKinOption::Value::Path),
            ZELKinOption(FormatOption, ZELKinOption::Value::Text, {AFPGCodeFormat}),
            ZELKinOption(OptionsOption, ZELKinOption::Value::Text),
            ZELKinOption(PlyOption, ZELKinOption::Value::Text, {SinglePly}),
            ZELKinOption(DebugPathOption, ZELKinOption::Value::Path),
            ZELKinOption(TraceOption, ZELKinOption::Value::Path),
            ZELKinOption(KeepGoingOption, ZELKinOption::Value::None),
            ZELKinOption(ZELKinProgressDisplay::QuietOption, ZELKinOption::Value::None)};
}

int ZELKinPostCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    parsed.RequireAtMostPositionals(0);
    const QString format = FormatOf(parsed, GetName());
    const QString output = parsed.GetRequiredValue(OutputOption);
    const QString options = OptionsOf(parsed, GetName());
    const QString ply = PlyToProcessOf(parsed, GetName());
    // The single-ply mode reads the ply number from the standard input.
    if (ply == SinglePly)
        parsed.RequireStandardInputFor(QStringLiteral("--%1 %2").arg(PlyOption, SinglePly));
    const QStringList inputs{MachineOption, ToolpathOption};
    parsed.RequirePaths(inputs + QStringList{OutputOption, DebugPathOption, TraceOption});
    parsed.RequireNotAnInput(OutputOption, WrittenFile(output), inputs);
    parsed.RequireNotAnInput(TraceOption, parsed.GetValue(TraceOption), inputs);
    const ZELKinProgressDisplay display(
        ZELKinProgressDisplay::ChooseMode(parsed.IsSet(ZELKinProgressDisplay::QuietOption)));
    const Posting posting{parsed, output, format, options, ply};
    // The trace names positions across the whole program, the solving
    // diagnostics are written one procedure after the other, and a pipe
    // cannot be read twice: those posts hold the whole program at once.
    if (!parsed.IsSet(TraceOption) && !parsed.IsSet(DebugPathOption)
        && ZELKinStreamingPostJob::CanStream(parsed.GetRequiredValue(MachineOption),
                                             parsed.GetRequiredValue(ToolpathOption)))
        return PostProcedureByProcedure(posting);
    return PostWholeProgram(posting);
}

int ZELKinPostCommand::PostProcedureByProcedure(const Posting& posting) const
{
    const ZELKinArguments& parsed = posting.parsed;
    ZELKinStreamingPostJob job(ZELKinStreamingPostJob::Input{parsed.GetRequiredValue(MachineOption),
                                                             parsed.GetRequiredValue(ToolpathOption),
                                                             parsed.IsSet(KeepGoingOption)});
    if (ReplacesAFolder(posting.output, posting.ply))
        parsed.RequireOutside(OutputOption, QDir(posting.output).filePath(job.GetName()),
                              {MachineOption, ToolpathOption});
    AnnounceProgram(job.GetName(), job.GetRevision());
    const QDateTime now = ZELKinClock::Now();
    ZELKinWriter writer;
    writer.SetCurrentDateTime(now);
    QString ply = posting.ply;
    writer.SetPlyToProcess(ply);
    job.Post(writer, now, posting.output, posting.format, posting.options);
    RequireChosenPly(writer);
    PrintSummary(ZELKinPostSummary(*job.GetMachine(), job.GetPositionsByProcedure()), posting.output, posting.ply,
                 job.GetName());
    job.ThrowIfIncomplete();
    return ZELKinExitStatus::Success;
}

int ZELKinPostCommand::PostWholeProgram(const Posting& posting) const
{
    const ZELKinArguments& parsed = posting.parsed;
    const QStringList inputs{MachineOption, ToolpathOption};
    // Kept from the start, so that a post that fails leaves as quickly as
    // one that writes.
    ZELKinTranslationJob& job = ZELKinTranslationJob::KeepUntilExit(
        std::make_unique<ZELKinTranslationJob>(ZELKinTranslationJob::Input{parsed.GetRequiredValue(MachineOption),
                                                                           parsed.GetRequiredValue(ToolpathOption),
                                                                           parsed.GetValue(DebugPathOption)}));
    job.RequireDeliverable(parsed.IsSet(KeepGoingOption));
    if (ReplacesAFolder(posting.output, posting.ply))
        parsed.RequireOutside(OutputOption, QDir(posting.output).filePath(job.GetProgram()->GetOriginalFileName()),
                              inputs);

    ZELKinWriter writer(job.GetProgram());
    writer.SetCurrentDateTime(ZELKinClock::Now());
    QString ply = posting.ply;
    writer.SetPlyToProcess(ply);
    std::optional<LineTraceCsv> trace;
    if (parsed.IsSet(TraceOption)) {
        trace.emplace(parsed.GetValue(TraceOption), *job.GetProgram());
        writer.SetLineTrace([&trace](const QString& file, qint64 line, const ZELKinPosition* position) {
            trace->Trace(file, line, position);
        });
    }
    AnnounceProgram(job.GetProgram()->GetOriginalFileName(), job.GetProgram()->GetRevisionNumber());
    writer.Write(posting.output, posting.format, posting.options);
    RequireChosenPly(writer);
    if (trace)
        trace->Commit();
    PrintSummary(ZELKinPostSummary(*job.GetMachine(), *job.GetProgram()), posting.output, posting.ply,
                 job.GetProgram()->GetOriginalFileName());
    job.ThrowIfIncomplete();
    return ZELKinExitStatus::Success;
}
