#include "zelkinpostednc.h"
#include "zelkintoolrun.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <string>

#include <unistd.h>

namespace {

const QString CommandListHint = QStringLiteral("zelkin: hint: run 'zelkin help' for the list of commands");
const QString MachineUsageHint = QStringLiteral("zelkin: hint: run 'zelkin help machine' for its usage");

// A wrong command line prints nothing on stdout, the error and the hint on
// stderr, and ends with status 2.
void ExpectUsageError(const QStringList& arguments, const QString& error, const QString& hint)
{
    const ZELKinToolRun run = RunZelkin(arguments);
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(), QStringList({error, hint}));
}

bool HasLineMatching(const QString& text, const QString& pattern)
{
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    return expression.match(text).hasMatch();
}

} // namespace

TEST(ZELKinToolUsage, NoCommandIsAUsageError)
{
    ExpectUsageError({}, QStringLiteral("zelkin: error: missing the command"), CommandListHint);
}

TEST(ZELKinToolUsage, UnknownCommandIsAUsageError)
{
    ExpectUsageError({QStringLiteral("frobnicate")}, QStringLiteral("zelkin: error: unknown command 'frobnicate'"),
                     CommandListHint);
}

TEST(ZELKinToolUsage, UnknownOptionBeforeTheCommandIsAUsageError)
{
    ExpectUsageError({QStringLiteral("--frob"), QStringLiteral("machine")},
                     QStringLiteral("zelkin: error: unknown option '--frob'"), CommandListHint);
}

TEST(ZELKinToolUsage, UnknownOptionOfTheCommandPointsAtItsHelp)
{
    ExpectUsageError({QStringLiteral("machine"), GetExampleMachinePath(), QStringLiteral("--xml")},
                     QStringLiteral("zelkin: error: unknown option '--xml'"), MachineUsageHint);
}

TEST(ZELKinToolUsage, UnknownShortOptionIsNamedWithOneDash)
{
    ExpectUsageError({QStringLiteral("machine"), QStringLiteral("-j"), GetExampleMachinePath()},
                     QStringLiteral("zelkin: error: unknown option '-j'"), MachineUsageHint);
}

TEST(ZELKinToolUsage, OptionThatTakesNoValueIsAUsageError)
{
    ExpectUsageError({QStringLiteral("machine"), QStringLiteral("--json=yes"), GetExampleMachinePath()},
                     QStringLiteral("zelkin: error: unexpected value after '--json'"), MachineUsageHint);
}

TEST(ZELKinToolUsage, MachineWithoutFileIsAUsageError)
{
    ExpectUsageError({QStringLiteral("machine"), QStringLiteral("--json")},
                     QStringLiteral("zelkin: error: missing the machine description file"), MachineUsageHint);
}

TEST(ZELKinToolUsage, MachineWithASecondFileIsAUsageError)
{
    ExpectUsageError({QStringLiteral("machine"), GetExampleMachinePath(), QStringLiteral("second.xml")},
                     QStringLiteral("zelkin: error: unexpected argument 'second.xml'"), MachineUsageHint);
}

TEST(ZELKinToolUsage, VersionTakesNoArgument)
{
    ExpectUsageError({QStringLiteral("--version"), QStringLiteral("machine")},
                     QStringLiteral("zelkin: error: unexpected argument 'machine'"), CommandListHint);
}

TEST(ZELKinToolUsage, HelpForAnUnknownCommandPointsAtTheCommandList)
{
    ExpectUsageError({QStringLiteral("help"), QStringLiteral("frobnicate")},
                     QStringLiteral("zelkin: error: unknown command 'frobnicate'"), CommandListHint);
}

TEST(ZELKinToolUsage, HelpForTwoCommandsPointsAtTheHelpOfHelp)
{
    ExpectUsageError({QStringLiteral("help"), QStringLiteral("machine"), QStringLiteral("help")},
                     QStringLiteral("zelkin: error: unexpected argument 'help'"),
                     QStringLiteral("zelkin: hint: run 'zelkin help help' for its usage"));
}

TEST(ZELKinToolUsage, DoubleDashEndsTheOptions)
{
    // After "--" an argument with a leading dash is a file name, so the
    // command gets as far as looking for the file.
    const ZELKinToolRun run =
        RunZelkin({QStringLiteral("machine"), QStringLiteral("--"), QStringLiteral("-no-such-machine.xml")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: cannot read -no-such-machine.xml: No such file or directory")}));
}

TEST(ZELKinToolHelp, HelpListsEveryCommandWithItsSummary)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, QString());
    EXPECT_TRUE(run.standardOutput.startsWith(QStringLiteral("Usage: zelkin COMMAND [ARGUMENTS]\n")))
        << run.standardOutput.toStdString();
    EXPECT_TRUE(HasLineMatching(run.standardOutput,
                                QStringLiteral("^  help +Show the commands, or the usage of one command$")));
    EXPECT_TRUE(HasLineMatching(run.standardOutput,
                                QStringLiteral("^  machine +Load a machine description and show the machine$")));
}

TEST(ZELKinToolHelp, HelpOptionIsTheHelpCommand)
{
    const ZELKinToolRun help = RunZelkin({QStringLiteral("help")});
    for (const QString& option : {QStringLiteral("--help"), QStringLiteral("-h")}) {
        const ZELKinToolRun run = RunZelkin({option});
        EXPECT_EQ(run.exitCode, 0) << option.toStdString();
        EXPECT_EQ(run.standardOutput, help.standardOutput) << option.toStdString();
        EXPECT_EQ(run.standardError, QString()) << option.toStdString();
    }
}

TEST(ZELKinToolHelp, HelpForACommandShowsItsUsageAndOptions)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help"), QStringLiteral("machine")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, QString());
    EXPECT_TRUE(run.standardOutput.startsWith(QStringLiteral("Usage: zelkin machine FILE.xml [--json]\n\n")))
        << run.standardOutput.toStdString();
    EXPECT_TRUE(HasLineMatching(run.standardOutput, QStringLiteral("^  --json +Print one JSON object instead")));
}

TEST(ZELKinToolHelp, HelpOptionAfterACommandIsTheHelpForThatCommand)
{
    const ZELKinToolRun help = RunZelkin({QStringLiteral("help"), QStringLiteral("machine")});
    const QList<QStringList> lines{
        {QStringLiteral("machine"), QStringLiteral("--help")},
        {QStringLiteral("machine"), QStringLiteral("no-such-file.xml"), QStringLiteral("-h")},
        {QStringLiteral("--help"), QStringLiteral("machine")},
    };
    for (const QStringList& arguments : lines) {
        const ZELKinToolRun run = RunZelkin(arguments);
        EXPECT_EQ(run.exitCode, 0) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(run.standardOutput, help.standardOutput) << arguments.join(QLatin1Char(' ')).toStdString();
    }
}

TEST(ZELKinToolHelp, HelpAfterDoubleDashIsAFileName)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), QStringLiteral("--"), QStringLiteral("--help")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: cannot read --help: No such file or directory")}));
}

TEST(ZELKinToolVersion, PrintsTheProjectVersion)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("--version")});
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardOutput, QStringLiteral("zelkin " ZELKIN_VERSION "\n"));
    EXPECT_EQ(run.standardError, QString());
}

TEST(ZELKinToolHelp, HelpSaysWhatTheToolIsForItsExitStatusesAndWhereToReadMore)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("--help")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, QString());
    EXPECT_TRUE(run.standardOutput.contains(
        QStringLiteral("\nzelkin posts automated fibre placement (AFP) toolpaths for one machine. It\n")))
        << run.standardOutput.toStdString();
    EXPECT_TRUE(run.standardOutput.endsWith(
        QStringLiteral("\n"
                       "Exit statuses:\n"
                       "  0  success; verify and report: every check passed\n"
                       "  1  failure, said in one error line; verify and report: a check failed\n"
                       "  2  the command line is wrong, said in an error line and a hint\n"
                       "  3  solve and post: beyond the machine's limits; verify and report: an input cannot be read\n"
                       "\n"
                       "More in docs/zelkin.md of the ZELKinematics sources.\n")))
        << run.standardOutput.toStdString();
}

TEST(ZELKinToolHelp, HelpListsEveryCommand)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("--help")});
    for (const char* command :
         {"help", "machine", "generate-toolpath", "solve", "post", "gcode", "verify", "report", "completion"}) {
        EXPECT_TRUE(HasLineMatching(run.standardOutput, QStringLiteral("^  %1  +[A-Z]").arg(QLatin1String(command))))
            << command;
        const ZELKinToolRun help = RunZelkin({QLatin1String(command), QStringLiteral("--help")});
        EXPECT_EQ(help.exitCode, 0) << command;
        EXPECT_TRUE(help.standardOutput.startsWith(QStringLiteral("Usage: zelkin %1 ").arg(QLatin1String(command))))
            << command;
    }
}

// An option given twice: the last would win without a word, and the first
// may be the one meant.

namespace {

struct RepeatedOptionCase
{
    const char* name;
    QStringList arguments;
    const char* error;
    const char* command;
};

void PrintTo(const RepeatedOptionCase& c, std::ostream* out)
{
    *out << c.name;
}

class ZELKinToolRepeatedOption : public ::testing::TestWithParam<RepeatedOptionCase>
{
};

} // namespace

TEST_P(ZELKinToolRepeatedOption, IsAUsageErrorThatNamesTheOption)
{
    const RepeatedOptionCase& c = GetParam();
    ExpectUsageError(c.arguments, QStringLiteral("zelkin: error: ") + QString::fromUtf8(c.error),
                     QStringLiteral("zelkin: hint: run 'zelkin help %1' for its usage").arg(QLatin1String(c.command)));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, ZELKinToolRepeatedOption,
    ::testing::Values(
        RepeatedOptionCase{"ToolpathOfPost",
                           {QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                            QStringLiteral("--toolpath"), QStringLiteral("a.json"), QStringLiteral("--toolpath"),
                            QStringLiteral("b.json"), QStringLiteral("--output"), QStringLiteral("nc")},
                           "the option --toolpath is given twice",
                           "post"},
        RepeatedOptionCase{
            "ToolpathWithEqualsSigns",
            {QStringLiteral("solve"), QStringLiteral("--toolpath=a.json"), QStringLiteral("--toolpath=b.json")},
            "the option --toolpath is given twice",
            "solve"},
        RepeatedOptionCase{"TheSameValueTwice",
                           {QStringLiteral("post"), QStringLiteral("--format"), QStringLiteral("AFPGCode"),
                            QStringLiteral("--format"), QStringLiteral("AFPGCode")},
                           "the option --format is given twice",
                           "post"},
        RepeatedOptionCase{
            "FlagOfMachine",
            {QStringLiteral("machine"), QStringLiteral("--json"), GetExampleMachinePath(), QStringLiteral("--json")},
            "the option --json is given twice",
            "machine"},
        RepeatedOptionCase{"FlagOfSolve",
                           {QStringLiteral("solve"), QStringLiteral("--keep-going"), QStringLiteral("--keep-going")},
                           "the option --keep-going is given twice",
                           "solve"},
        RepeatedOptionCase{"NCOfVerify",
                           {QStringLiteral("verify"), QStringLiteral("--nc"), QStringLiteral("a"),
                            QStringLiteral("--nc"), QStringLiteral("b")},
                           "the option --nc is given twice",
                           "verify"},
        // One option by its two names is given twice; the name typed second is
        // the one named.
        RepeatedOptionCase{"OutputByItsTwoNames",
                           {QStringLiteral("report"), QStringLiteral("-o"), QStringLiteral("a.html"),
                            QStringLiteral("--output"), QStringLiteral("b.html")},
                           "the option --output is given twice",
                           "report"},
        RepeatedOptionCase{"ShortOption",
                           {QStringLiteral("generate-toolpath"), QStringLiteral("-o"), QStringLiteral("a.json"),
                            QStringLiteral("-o"), QStringLiteral("b.json")},
                           "the option -o is given twice",
                           "generate-toolpath"}),
    [](const ::testing::TestParamInfo<RepeatedOptionCase>& info) { return std::string(info.param.name); });

// "-" for --machine or --toolpath, or for the file of "machine": the
// standard input.

namespace {

const QString kMinimalToolpath = QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/minimal.json");

QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

// Runs the command line `arguments` twice: once with `file` where "@in"
// stands, once with "-" there and the file's bytes on standard input.
struct TwoWays
{
    TwoWays(const QStringList& arguments, const QString& file)
    {
        const QProcessEnvironment environment = ReproducibleEnvironment();
        QStringList named = arguments;
        named.replace(named.indexOf(QStringLiteral("@in")), file);
        QStringList piped = arguments;
        piped.replace(piped.indexOf(QStringLiteral("@in")), QStringLiteral("-"));
        fromFile = RunZelkin(named, environment);
        fromStandardInput = RunZelkin(piped, environment, ReadBytes(file));
    }

    ZELKinToolRun fromFile;
    ZELKinToolRun fromStandardInput;
};

} // namespace

TEST(ZELKinToolStandardInput, MachineShowsTheMachineOnStandardInput)
{
    const TwoWays runs({QStringLiteral("machine"), QStringLiteral("--json"), QStringLiteral("@in")},
                       GetExampleMachinePath());
    EXPECT_EQ(runs.fromStandardInput.exitCode, 0) << runs.fromStandardInput.standardError.toStdString();
    EXPECT_TRUE(runs.fromStandardInput.standardOutput.startsWith(QLatin1Char('{')));
    EXPECT_EQ(runs.fromStandardInput.standardOutput, runs.fromFile.standardOutput);
}

TEST(ZELKinToolStandardInput, SolveReadsTheToolpathFromStandardInput)
{
    const TwoWays runs({QStringLiteral("solve"), QStringLiteral("--machine"), GetExampleMachinePath(),
                        QStringLiteral("--toolpath"), QStringLiteral("@in")},
                       kMinimalToolpath);
    EXPECT_EQ(runs.fromStandardInput.exitCode, 0) << runs.fromStandardInput.standardError.toStdString();
    EXPECT_TRUE(runs.fromStandardInput.standardOutput.contains(QStringLiteral("procedure,script,index,X,Y,Z,")));
    EXPECT_EQ(runs.fromStandardInput.standardOutput, runs.fromFile.standardOutput);
}

TEST(ZELKinToolStandardInput, SolveReadsTheMachineFromStandardInput)
{
    const TwoWays runs({QStringLiteral("solve"), QStringLiteral("--machine"), QStringLiteral("@in"),
                        QStringLiteral("--toolpath"), kMinimalToolpath},
                       GetExampleMachinePath());
    EXPECT_EQ(runs.fromStandardInput.exitCode, 0) << runs.fromStandardInput.standardError.toStdString();
    EXPECT_TRUE(runs.fromStandardInput.standardOutput.contains(QStringLiteral("procedure,script,index,X,Y,Z,")));
    EXPECT_EQ(runs.fromStandardInput.standardOutput, runs.fromFile.standardOutput);
}

TEST(ZELKinToolStandardInput, PostWritesTheSameBundleFromAToolpathOnStandardInput)
{
    const QTemporaryDir folder;
    const auto post = [&folder](const QString& toolpath, const QString& bundle, const QByteArray& input) {
        return RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                          QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), folder.filePath(bundle)},
                         ReproducibleEnvironment(), input);
    };
    const ZELKinToolRun named = post(kMinimalToolpath, QStringLiteral("from-file.bun"), QByteArray());
    const ZELKinToolRun piped = post(QStringLiteral("-"), QStringLiteral("from-standard-input.bun"),
                                     ReadBytes(kMinimalToolpath));
    ASSERT_EQ(named.exitCode, 0) << named.standardError.toStdString();
    EXPECT_EQ(piped.exitCode, 0) << piped.standardError.toStdString();
    // The summaries name the bundles, which differ in their names alone.
    EXPECT_EQ(QString(piped.standardOutput)
                  .replace(QStringLiteral("from-standard-input.bun"), QStringLiteral("from-file.bun")),
              named.standardOutput);
    const QByteArray bundle = ReadBytes(folder.filePath(QStringLiteral("from-standard-input.bun")));
    EXPECT_TRUE(bundle.startsWith("SetId|minimal-panel|"));
    EXPECT_EQ(bundle, ReadBytes(folder.filePath(QStringLiteral("from-file.bun"))));
}

TEST(ZELKinToolStandardInput, VerifyReadsTheMachineAndTheToolpathFromStandardInput)
{
    const QTemporaryDir folder;
    const QString nc = folder.filePath(QStringLiteral("nc"));
    ASSERT_EQ(RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                         QStringLiteral("--toolpath"), kMinimalToolpath, QStringLiteral("--output"), nc})
                  .exitCode,
              0);
    const TwoWays toolpath({QStringLiteral("verify"), QStringLiteral("--machine"), GetExampleMachinePath(),
                            QStringLiteral("--toolpath"), QStringLiteral("@in"), QStringLiteral("--nc"), nc},
                           kMinimalToolpath);
    EXPECT_EQ(toolpath.fromStandardInput.exitCode, 0) << toolpath.fromStandardInput.standardError.toStdString();
    EXPECT_EQ(toolpath.fromStandardInput.standardOutput, toolpath.fromFile.standardOutput);
    const TwoWays machine({QStringLiteral("verify"), QStringLiteral("--machine"), QStringLiteral("@in"),
                           QStringLiteral("--toolpath"), kMinimalToolpath, QStringLiteral("--nc"), nc},
                          GetExampleMachinePath());
    EXPECT_EQ(machine.fromStandardInput.exitCode, 0) << machine.fromStandardInput.standardError.toStdString();
    EXPECT_EQ(machine.fromStandardInput.standardOutput, machine.fromFile.standardOutput);
    EXPECT_TRUE(machine.fromStandardInput.standardOutput.contains(QStringLiteral("Result: PASS")))
        << machine.fromStandardInput.standardOutput.toStdString();
}

namespace {

struct StandardInputErrorCase
{
    const char* name;
    // "@machine" and "@toolpath" stand for the shipped examples.
    QStringList arguments;
    QByteArray input;
    int exitCode;
    const char* error;
};

void PrintTo(const StandardInputErrorCase& c, std::ostream* out)
{
    *out << c.name;
}

class ZELKinToolStandardInputError : public ::testing::TestWithParam<StandardInputErrorCase>
{
};

} // namespace

TEST_P(ZELKinToolStandardInputError, NamesTheStandardInput)
{
    const StandardInputErrorCase& c = GetParam();
    QStringList arguments = c.arguments;
    arguments.replaceInStrings(QStringLiteral("@machine"), GetExampleMachinePath());
    arguments.replaceInStrings(QStringLiteral("@toolpath"), kMinimalToolpath);
    const ZELKinToolRun run = RunZelkin(arguments, QProcessEnvironment::systemEnvironment(), c.input);
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, c.exitCode);
    EXPECT_EQ(run.GetErrorLines(), QStringList({QStringLiteral("zelkin: error: ") + QString::fromUtf8(c.error)}));
}

INSTANTIATE_TEST_SUITE_P(
    Inputs, ZELKinToolStandardInputError,
    ::testing::Values(
        StandardInputErrorCase{"MachineThatIsNoXml",
                               {QStringLiteral("machine"), QStringLiteral("-")},
                               "<a>",
                               1,
                               "standard input:1:0: Premature end of document."},
        StandardInputErrorCase{"MachineOfSolveThatIsNoXml",
                               {QStringLiteral("solve"), QStringLiteral("--machine"), QStringLiteral("-"),
                                QStringLiteral("--toolpath"), QStringLiteral("@toolpath")},
                               "<a>",
                               1,
                               "standard input:1:0: Premature end of document."},
        StandardInputErrorCase{"MachineLargerThanTheLoaderTakes",
                               {QStringLiteral("machine"), QStringLiteral("-")},
                               QByteArray(4194305, ' '),
                               1,
                               "standard input: the machine description is larger than 4194304 bytes; a pipe or "
                               "a device is read no further"},
        StandardInputErrorCase{"ToolpathOfSolveThatIsNoJson",
                               {QStringLiteral("solve"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                QStringLiteral("--toolpath"), QStringLiteral("-")},
                               "{",
                               1,
                               "standard input: $: invalid JSON at byte 1: unexpected end of the document"},
        StandardInputErrorCase{"ToolpathOfPostThatIsEmpty",
                               {QStringLiteral("post"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                QStringLiteral("--toolpath"), QStringLiteral("-"), QStringLiteral("--output"),
                                QStringLiteral("/nonexistent/nc")},
                               "",
                               1,
                               "standard input: $: invalid JSON at byte 0: the document is empty"},
        // verify and report end an input they cannot read with status 3.
        StandardInputErrorCase{"ToolpathOfVerifyThatIsNoJson",
                               {QStringLiteral("verify"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                QStringLiteral("--toolpath"), QStringLiteral("-"), QStringLiteral("--nc"),
                                QStringLiteral("/nonexistent/nc")},
                               "{",
                               3,
                               "standard input: $: invalid JSON at byte 1: unexpected end of the document"}),
    [](const ::testing::TestParamInfo<StandardInputErrorCase>& info) { return std::string(info.param.name); });

namespace {

// A command line, its arguments separated by blanks.
class ZELKinToolStandardInputTwice : public ::testing::TestWithParam<const char*>
{
};

} // namespace

// Standard input is read once, to its end: the second reader would find it
// empty.
TEST_P(ZELKinToolStandardInputTwice, IsAUsageError)
{
    const QStringList arguments = QString::fromUtf8(GetParam()).split(QLatin1Char(' '));
    ExpectUsageError(arguments,
                     QStringLiteral("zelkin: error: --machine and --toolpath cannot both read standard input ('-')"),
                     QStringLiteral("zelkin: hint: run 'zelkin help %1' for its usage").arg(arguments.first()));
}

INSTANTIATE_TEST_SUITE_P(Commands, ZELKinToolStandardInputTwice,
                         ::testing::Values("solve --machine - --toolpath -",
                                           "post --machine - --toolpath - --output nc",
                                           "verify --machine - --toolpath - --nc nc",
                                           "report --toolpath - --machine - --nc nc -o report.html"));

// The single-ply mode reads the ply number from standard input: a toolpath
// there would leave none, or, redirected from a file, give its first line.
TEST(ZELKinToolStandardInputTwice, SinglePlyModeAndAToolpathOnStandardInputIsAUsageError)
{
    ExpectUsageError({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                      QStringLiteral("--toolpath"), QStringLiteral("-"), QStringLiteral("--output"),
                      QStringLiteral("nc.bun"), QStringLiteral("--ply-to-process"), QStringLiteral("ONEPLY")},
                     QStringLiteral("zelkin: error: --toolpath and --ply-to-process ONEPLY cannot both read standard "
                                    "input ('-')"),
                     QStringLiteral("zelkin: hint: run 'zelkin help post' for its usage"));
}

// Standard output that cannot be written: results that never arrive are no
// success, for every command.

namespace {

const QString kToolpath = QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/minimal.json");

// Runs zelkin with its standard output on the device `device`, or closed
// when `device` is empty, and waits for it to end.
ZELKinToolRun RunZelkinWithStandardOutputOn(const QStringList& arguments, const QString& device)
{
    QProcess process;
    if (device.isEmpty())
        process.setChildProcessModifier([] { ::close(STDOUT_FILENO); });
    else
        process.setStandardOutputFile(device);
    process.start(QStringLiteral(ZELKIN_EXECUTABLE), arguments);
    return FinishZelkinRun(process);
}

struct LostOutputCase
{
    const char* name;
    // "@machine", "@toolpath", "@nc" (a folder of the toolpath's posted NC),
    // "@ply" (its ply file) and "@out" (a folder that does not exist) stand
    // for paths the test makes.
    QStringList arguments;
    const char* device; // empty: stdout is closed
    const char* error;
};

void PrintTo(const LostOutputCase& c, std::ostream* out)
{
    *out << c.name;
}

class ZELKinToolLostOutput : public ::testing::TestWithParam<LostOutputCase>
{
protected:
    static void SetUpTestSuite()
    {
        folder = new QTemporaryDir;
        const ZELKinToolRun post = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"),
                                              GetExampleMachinePath(), QStringLiteral("--toolpath"), kToolpath,
                                              QStringLiteral("--output"), NCPath()});
        ASSERT_EQ(post.exitCode, 0) << post.standardError.toStdString();
    }

    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }

    static QString NCPath() { return folder->filePath(QStringLiteral("nc")); }
    static QString OutPath() { return folder->filePath(QStringLiteral("out")); }

    static QStringList Substituted(const QStringList& arguments)
    {
        QStringList substituted;
        for (const QString& argument : arguments) {
            if (argument == QLatin1String("@machine"))
                substituted.append(GetExampleMachinePath());
            else if (argument == QLatin1String("@toolpath"))
                substituted.append(kToolpath);
            else if (argument == QLatin1String("@nc"))
                substituted.append(NCPath());
            else if (argument == QLatin1String("@ply"))
                substituted.append(NCPath() + QStringLiteral("/minimal-panel/minimal-panel#0101.PPF"));
            else if (argument == QLatin1String("@out"))
                substituted.append(OutPath());
            else
                substituted.append(argument);
        }
        return substituted;
    }

    static inline QTemporaryDir* folder = nullptr;
};

const QString kFull = QStringLiteral("/dev/full");

} // namespace

TEST_P(ZELKinToolLostOutput, IsAnErrorOfItsOwnAndWritesNoFile)
{
    const LostOutputCase& c = GetParam();
    const ZELKinToolRun run = RunZelkinWithStandardOutputOn(Substituted(c.arguments), QString::fromUtf8(c.device));
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    const QStringList errors = run.GetErrorLines().filter(QRegularExpression(QStringLiteral("^zelkin: error: ")));
    EXPECT_EQ(errors, QStringList({QStringLiteral("zelkin: error: ") + QString::fromUtf8(c.error)}))
        << run.standardError.toStdString();
    EXPECT_FALSE(QFileInfo::exists(OutPath()));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, ZELKinToolLostOutput,
    ::testing::Values(LostOutputCase{"GCodeOnAFullDisk",
                                     {QStringLiteral("gcode"), QStringLiteral("@ply")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      LostOutputCase{"MachineJsonOnAFullDisk",
                                     {QStringLiteral("machine"), QStringLiteral("--json"), QStringLiteral("@machine")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      LostOutputCase{"MachineSummaryOnAFullDisk",
                                     {QStringLiteral("machine"), QStringLiteral("@machine")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      LostOutputCase{"VerifyOnAFullDisk",
                                     {QStringLiteral("verify"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                      QStringLiteral("--toolpath"), QStringLiteral("@toolpath"), QStringLiteral("--nc"),
                                      QStringLiteral("@nc")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      LostOutputCase{"VerifyJsonOnAFullDisk",
                                     {QStringLiteral("verify"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                      QStringLiteral("--toolpath"), QStringLiteral("@toolpath"), QStringLiteral("--nc"),
                                      QStringLiteral("@nc"), QStringLiteral("--json")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      LostOutputCase{"VersionOnAFullDisk",
                                     {QStringLiteral("--version")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      LostOutputCase{"HelpOnAFullDisk",
                                     {QStringLiteral("help"), QStringLiteral("post")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      LostOutputCase{"SolveOnAFullDisk",
                                     {QStringLiteral("solve"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                      QStringLiteral("--toolpath"), QStringLiteral("@toolpath")},
                                     "/dev/full",
                                     "cannot write the CSV to standard output: No space left on device"},
                      // The summary's first line is lost before anything is written, so
                      // the post writes nothing.
                      LostOutputCase{"PostOnAFullDisk",
                                     {QStringLiteral("post"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                      QStringLiteral("--toolpath"), QStringLiteral("@toolpath"),
                                      QStringLiteral("--output"), QStringLiteral("@out")},
                                     "/dev/full",
                                     "cannot write the standard output: No space left on device"},
                      // A descriptor left closed is never given to a file zelkin opens.
                      LostOutputCase{"VerifyOnAClosedStandardOutput",
                                     {QStringLiteral("verify"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                      QStringLiteral("--toolpath"), QStringLiteral("@toolpath"), QStringLiteral("--nc"),
                                      QStringLiteral("@nc")},
                                     "",
                                     "cannot write the standard output: Bad file descriptor"},
                      LostOutputCase{"PostOnAClosedStandardOutput",
                                     {QStringLiteral("post"), QStringLiteral("--machine"), QStringLiteral("@machine"),
                                      QStringLiteral("--toolpath"), QStringLiteral("@toolpath"),
                                      QStringLiteral("--output"), QStringLiteral("@out")},
                                     "",
                                     "cannot write the standard output: Bad file descriptor"}),
    [](const ::testing::TestParamInfo<LostOutputCase>& info) { return std::string(info.param.name); });
