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

int ZELKinHelpCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, {});
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
                          "zelkin reads the description of an automated fibre placement (AFP)\n"
                          "machine and shows the machine as the ZELKinematics library models it.\n"
                          "\n"
                          "Commands:\n")
        + commands.ToText(2)
        + QStringLiteral("\n"
                         "Run 'zelkin help COMMAND' for the usage of one command.\n"
                         "\n"
                         "Exit statuses: 0 success, 1 the command failed (an error line on stderr),\n"
                         "2 the command line is wrong.\n");
}
