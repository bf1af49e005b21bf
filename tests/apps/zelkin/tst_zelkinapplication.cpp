#include "zelkintoolrun.h"

#include <QRegularExpression>

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
