#include "zelkintoolrun.h"

#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <initializer_list>
#include <string>

namespace {

// Loads the script as a user does, "source <(zelkin completion bash)", and
// runs `commands` after it; the completion's words are the arguments.
const QString kLoad = QStringLiteral("source <(\"$ZELKIN\" completion bash) || exit 9\n");

QString Bash()
{
    return QStandardPaths::findExecutable(QStringLiteral("bash"));
}

struct BashRun
{
    int exitCode = -1;
    QString standardOutput;
    QString standardError;
};

BashRun RunBash(const QString& commands, const QStringList& arguments, const QString& folder)
{
    QProcess bash;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ZELKIN"), QStringLiteral(ZELKIN_EXECUTABLE));
    bash.setProcessEnvironment(environment);
    bash.setWorkingDirectory(folder);
    bash.start(Bash(), QStringList{QStringLiteral("-c"), kLoad + commands, QStringLiteral("bash")} + arguments);
    bash.closeWriteChannel();
    BashRun run;
    if (!bash.waitForFinished(60000)) {
        ADD_FAILURE() << "bash did not run to its end: " << bash.errorString().toStdString();
        return run;
    }
    run.exitCode = bash.exitStatus() == QProcess::NormalExit ? bash.exitCode() : -1;
    run.standardOutput = QString::fromUtf8(bash.readAllStandardOutput());
    run.standardError = QString::fromUtf8(bash.readAllStandardError());
    return run;
}

// What the shell offers for the last of `words` (the command line up to the
// cursor, "zelkin" first), sorted: files come in the folder's order.
QStringList Offered(const QStringList& words, const QString& folder)
{
    const BashRun run = RunBash(QStringLiteral("COMP_WORDS=(\"$@\")\n"
                                               "COMP_CWORD=$(($# - 1))\n"
                                               "_zelkin\n"
                                               "printf '%s\\n' \"${COMPREPLY[@]}\"\n"),
                                words, folder);
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(run.standardError, QString());
    QStringList offered = run.standardOutput.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    std::sort(offered.begin(), offered.end());
    return offered;
}

class ZELKinCompletion : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (Bash().isEmpty())
            GTEST_SKIP() << "no bash to complete in";
        ASSERT_TRUE(folder.isValid());
        for (const QString& name : {QStringLiteral("gantry.xml"), QStringLiteral("part.json")})
            WriteFile(folder, name, QString());
        ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("nc")));
    }

    QStringList Offered(const QStringList& words) const { return ::Offered(words, folder.path()); }
    //! What the shell offers, separated by blanks, as failures show it best.
    std::string Complete(std::initializer_list<const char*> words) const
    {
        QStringList typed;
        for (const char* word : words)
            typed.append(QString::fromUtf8(word));
        return Offered(typed).join(QLatin1Char(' ')).toStdString();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(ZELKinCompletion, ScriptLoadsWithSourceAndCompletesZelkin)
{
    const BashRun run = RunBash(QStringLiteral("complete -p zelkin\n"), {}, folder.path());
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, QString());
    EXPECT_EQ(run.standardOutput, QStringLiteral("complete -F _zelkin zelkin\n"));
}

TEST_F(ZELKinCompletion, FirstWordIsACommand)
{
    EXPECT_EQ(Complete({"zelkin", "po"}), "post");
    EXPECT_EQ(Complete({"zelkin", "g"}), "gcode generate-toolpath");
    EXPECT_EQ(Complete({"zelkin", "--"}), "--help --version");
}

TEST_F(ZELKinCompletion, OptionsAreTheCommandsOwn)
{
    EXPECT_EQ(Complete({"zelkin", "post", "--to"}), "--toolpath");
    EXPECT_EQ(Complete({"zelkin", "solve", "--"}), "--csv --help --keep-going --machine --quiet --toolpath");
    EXPECT_EQ(Complete({"zelkin", "machine", "-"}), "- --help --json");
    // A command that takes no positional argument offers its options at once.
    EXPECT_EQ(Complete({"zelkin", "verify", ""}),
              "--flip-angle --help --json --machine --nc --quiet --singularity-angle --toolpath");
}

TEST_F(ZELKinCompletion, AFileThatIsReadMayBeStandardInput)
{
    EXPECT_EQ(Complete({"zelkin", "post", "--toolpath", ""}), "- gantry.xml nc part.json");
    EXPECT_EQ(Complete({"zelkin", "solve", "--machine", "g"}), "gantry.xml");
    // "--toolpath=p": the shell splits the word at the "=".
    EXPECT_EQ(Complete({"zelkin", "verify", "--toolpath", "=", "p"}), "part.json");
    EXPECT_EQ(Complete({"zelkin", "machine", ""}), "- gantry.xml nc part.json");
}

TEST_F(ZELKinCompletion, AFileThatIsWrittenIsNeverStandardInput)
{
    EXPECT_EQ(Complete({"zelkin", "post", "--output", ""}), "gantry.xml nc part.json");
    EXPECT_EQ(Complete({"zelkin", "report", "-o", "n"}), "nc");
}

TEST_F(ZELKinCompletion, WordsAreOfferedWhereAValueIsOneOfThem)
{
    EXPECT_EQ(Complete({"zelkin", "post", "--format", ""}), "AFPGCode");
    EXPECT_EQ(Complete({"zelkin", "post", "--ply-to-process", ""}), "ONEPLY");
    EXPECT_EQ(Complete({"zelkin", "help", "ma"}), "machine");
    EXPECT_EQ(Complete({"zelkin", "completion", ""}), "bash");
    // A value that is no file and no word of a list: nothing to offer.
    EXPECT_EQ(Complete({"zelkin", "verify", "--flip-angle", ""}), "");
}

// The script is made from the options the commands parse with: every option
// it offers is one its command accepts, once.
TEST_F(ZELKinCompletion, EveryOptionOfferedIsAcceptedOnceAndRefusedTwice)
{
    QStringList commands = Offered({QStringLiteral("zelkin"), QString()});
    commands.removeIf([](const QString& word) { return word.startsWith(QLatin1Char('-')); });
    ASSERT_EQ(commands.size(), 9) << commands.join(QLatin1Char(' ')).toStdString();
    int checked = 0;
    for (const QString& command : std::as_const(commands)) {
        for (const QString& option : Offered({QStringLiteral("zelkin"), command, QStringLiteral("-")})) {
            if (option == QLatin1String("-") || option == QLatin1String("--help"))
                continue;
            const std::string where = (command + QLatin1Char(' ') + option).toStdString();
            const ZELKinToolRun alone = RunZelkin({command, option});
            EXPECT_FALSE(alone.standardError.contains(QStringLiteral("unknown option"))) << where;
            const bool takesAValue = alone.standardError.contains(QStringLiteral("missing value after"));
            const QStringList once = takesAValue ? QStringList{option, QStringLiteral("x")} : QStringList{option};
            const ZELKinToolRun twice = RunZelkin(QStringList{command} + once + once);
            EXPECT_EQ(twice.exitCode, 2) << where;
            EXPECT_EQ(twice.GetErrorLines().value(0),
                      QStringLiteral("zelkin: error: the option %1 is given twice").arg(option))
                << where;
            ++checked;
        }
    }
    EXPECT_GT(checked, 30);
}

TEST(ZELKinCompletionCommand, MissingShellIsAUsageError)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("completion")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: missing the shell (known: bash)"),
                           QStringLiteral("zelkin: hint: run 'zelkin help completion' for its usage")}));
}

TEST(ZELKinCompletionCommand, UnknownShellIsAUsageError)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("completion"), QStringLiteral("zsh")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: unknown shell 'zsh' (known: bash)"),
                           QStringLiteral("zelkin: hint: run 'zelkin help completion' for its usage")}));
}

TEST(ZELKinCompletionCommand, PrintsTheScriptAloneOnStandardOutput)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("completion"), QStringLiteral("bash")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, QString());
    EXPECT_TRUE(run.standardOutput.startsWith(QStringLiteral("# Bash completion for zelkin")));
    EXPECT_TRUE(run.standardOutput.endsWith(QStringLiteral("\ncomplete -F _zelkin zelkin\n")));
}
