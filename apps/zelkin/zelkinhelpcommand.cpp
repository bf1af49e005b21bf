#include "zelkinhelpcommand.h"

#include "zelkinarguments.h"
#include "zelkincommandregistry.h"
#include "zelkinconsole.h"
#include "zelkintexttable.h"

ZELKinHelpCommand::ZELKinHelpCommand(const ZELKinCommandRegistry& registry)
    : m_registry(registry)
{
}

QString ZELKinHelpCommand::GetName() const
{
    return QStringLiteral("help");
}

QString ZELKinHelpCommand::GetSummary() const
{
    return QStringLiteral("Show the commands, or the usage of one command");
}

QString ZELKinHelpCommand::GetSynopsis() const
{
    return QStringLiteral("[COMMAND]");
}

QString ZELKinHelpCommand::GetDescription() const
{
    return QStringLiteral("Without COMMAND, lists zelkin's commands; with it, shows how to run that\n"
                          "command and what its options mean. \"zelkin --help\" is the same as\n"
                          "\"zelkin help\", and \"zelkin COMMAND --help\" the same as \"zelkin help COMMAND\".\n");
}

QList<ZELKinOption> ZELKinHelpCommand::GetOptions() const
{
    return {};
}

ZELKinOption ZELKinHelpCommand::GetPositional() const
{
    QStringList names;
    for (const ZELKinCommand* command : m_registry.GetCommands())
        names.append(command->GetName());
    return ZELKinOption::Positional(ZELKinOption::Value::Text, names);
}

int ZELKinHelpCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    parsed.RequireAtMostPositionals(1);
    const QStringList topics = parsed.GetPositionals();
    ZELKinConsole::Print(topics.isEmpty() ? GetCommandList() : GetCommandHelp(m_registry.Get(topics.first())));
    return ZELKinExitStatus::Success;
}

QString ZELKinHelpCommand::GetCommandHelp(const ZELKinCommand& command)
{
    return QStringLiteral("Usage: zelkin %1 %2\n\n%3").arg(command.GetName(), command.GetSynopsis(),
                                                          command.GetDescription());
}

QString ZELKinHelpCommand::GetCommandList() const
{
    ZELKinTextTable commands;
    for (const ZELKinCommand* command : m_registry.GetCommands())
        commands.AddRow({command->GetName(), command->GetSummary()});

    return QStringLiteral("Usage: zelkin COMMAND [ARGUMENTS]\n"
                          "       zelkin --help | --version\n"
                          "\n"
                          "zelkin posts automated fibre placement (AFP) toolpaths for one machine. It\n"
                          "reads the machine's description (XML) and a toolpath (JSON), solves every\n"
                          "point of the toolpath in the machine's axes within their limits, and writes\n"
                          "the NC files the machine's controller runs. verify and report then read\n"
                          "that NC back and check it, with kinematics of their own, against the\n"
                          "toolpath and the machine's limits, so that an error of the post cannot\n"
                          "hide itself.\n"
                          "\n"
                          "Commands:\n")
        + commands.ToText(2)
        + QStringLiteral(
               "\n"
               "Run 'zelkin help COMMAND' or 'zelkin COMMAND --help' for the usage of one command.\n"
               "\n"
               "Exit statuses:\n"
               "  0  success; verify and report: every check passed\n"
               "  1  failure, said in one error line; verify and report: a check failed\n"
               "  2  the command line is wrong, said in an error line and a hint\n"
               "  3  solve and post: beyond the machine's limits; verify and report: an input cannot be read\n"
               "\n"
               "More in docs/zelkin.md of the ZELKinematics sources.\n");
}
