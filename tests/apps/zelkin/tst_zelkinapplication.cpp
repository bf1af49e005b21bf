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
