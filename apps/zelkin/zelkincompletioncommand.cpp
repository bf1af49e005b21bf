#include "zelkincompletioncommand.h"

#include "zelkinarguments.h"
#include "zelkincommandregistry.h"
#include "zelkinconsole.h"

namespace {

const QString BashShell = QStringLiteral("bash");

// How the script completes a value: "input" (a file, or "-"), "path",
// "text" (one of its words, if it has any); empty for nothing.
QString BashKind(ZELKinOption::Value value)
{
    switch (value) {
    case ZELKinOption::Value::Text:
        return QStringLiteral("text");
    case ZELKinOption::Value::Path:
        return QStringLiteral("path");
    case ZELKinOption::Value::Input:
        return QStringLiteral("input");
    case ZELKinOption::Value::None:
        break;
    }
    return QString();
}

// `words`, separated by blanks, as one single-quoted bash word.
QString Quoted(const QStringList& words)
{
    QString text = words.join(QLatin1Char(' '));
    text.replace(QLatin1String("'"), QLatin1String("'\\''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

// The branch of the script's "case" that completes one command's words.
QString CommandBranch(const ZELKinCommand& command)
{
    QStringList typedNames;
    QString values;
    for (const ZELKinOption& option : command.GetOptions()) {
        typedNames += option.GetTypedNames();
        const QString kind = BashKind(option.GetValue());
        if (!kind.isEmpty())
            values += QStringLiteral("        %1) value=%2 words=%3 ;;\n")
                          .arg(option.GetTypedNames().join(QStringLiteral(" | ")), kind, Quoted(option.GetWords()));
    }
    const ZELKinOption positional = command.GetPositional();
    QString branch = QStringLiteral("    %1)\n"
                                    "        options=%2\n"
                                    "        positional=%3 positionalWords=%4\n")
                         .arg(command.GetName(), Quoted(typedNames), Quoted({BashKind(positional.GetValue())}),
                              Quoted(positional.GetWords()));
    if (!values.isEmpty())
        branch += QStringLiteral("        case $prev in\n") + values + QStringLiteral("        esac\n");
    return branch + QStringLiteral("        ;;\n");
}

// %1: the words after "zelkin"; %2: one branch per command.
const char* const BashTemplate = R"(# Bash completion for zelkin, as "zelkin completion bash" prints it.
# Load it with: source <(zelkin completion bash)

# COMPREPLY: the words of $1 that begin with $2.
_zelkin_words()
{
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

# COMPREPLY: the files and folders whose names begin with $1.
_zelkin_files()
{
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_zelkin()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    # The shell splits "--toolpath=T.json" at the "=".
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _zelkin_words %1 "$cur"
        return 0
    fi
    # The word is the value of the option before it (value, words), or
    # else an option or a positional argument (positional, positionalWords).
    local options= value= words= positional= positionalWords=
    case ${COMP_WORDS[1]} in
%2    *)
        return 0
        ;;
    esac
    if [[ -z $value ]]; then
        if [[ $cur == -* || -z $positional ]]; then
            _zelkin_words "$options --help" "$cur"
            [[ $cur == - && $positional == input ]] && COMPREPLY+=(-)
            return 0
        fi
        value=$positional
        words=$positionalWords
    fi
    case $value in
    input)
        _zelkin_files "$cur"
        [[ -z $cur || $cur == - ]] && COMPREPLY+=(-)
        ;;
    path)
        _zelkin_files "$cur"
        ;;
    text)
        _zelkin_words "$words" "$cur"
        ;;
    esac
    return 0
}

complete -F _zelkin zelkin
)";

} // namespace

ZELKinCompletionCommand::ZELKinCompletionCommand(const ZELKinCommandRegistry& registry)
    : m_registry(registry)
{
}

QString ZELKinCompletionCommand::GetName() const
{
    return QStringLiteral("completion");
}

QString ZELKinCompletionCommand::GetSummary() const
{
    return QStringLiteral("Print a script that completes zelkin's command lines in the shell");
}

QString ZELKinCompletionCommand::GetSynopsis() const
{
    return BashShell;
}

QString ZELKinCompletionCommand::GetDescription() const
{
    return QStringLiteral("Prints a bash script that completes zelkin's commands, their options, the\n"
                          "words some options take and file names where a path goes (and \"-\" where\n"
                          "standard input may be read). Load it into the running shell with\n"
                          "\n"
                          "  source <(zelkin completion bash)\n"
                          "\n"
                          "or save it where bash-completion finds it, for example as\n"
                          "~/.local/share/bash-completion/completions/zelkin.\n");
}

QList<ZELKinOption> ZELKinCompletionCommand::GetOptions() const
{
    return {};
}

ZELKinOption ZELKinCompletionCommand::GetPositional() const
{
    return ZELKinOption::Positional(ZELKinOption::Value::Text, {BashShell});
}

int ZELKinCompletionCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    parsed.RequireAtMostPositionals(1);
    const QStringList shells = parsed.GetPositionals();
    if (shells.isEmpty())
        throw ZELKinUsageError(QStringLiteral("missing the shell (known: %1)").arg(BashShell), GetName());
    if (shells.first() != BashShell)
        throw ZELKinUsageError(QStringLiteral("unknown shell '%1' (known: %2)").arg(shells.first(), BashShell),
                               GetName());
    ZELKinConsole::Print(GetBashScript());
    return ZELKinExitStatus::Success;
}

QString ZELKinCompletionCommand::GetBashScript() const
{
    QStringList firstWords;
    QString branches;
    for (const ZELKinCommand* command : m_registry.GetCommands()) {
        firstWords.append(command->GetName());
        branches += CommandBranch(*command);
    }
    firstWords << QStringLiteral("--help") << QStringLiteral("--version");
    return QString::fromLatin1(BashTemplate).arg(Quoted(firstWords), branches);
}
