#include "zelkincommandregistry.h"

void ZELKinCommandRegistry::Add(std::unique_ptr<ZELKinCommand> command)
{
    m_commands.push_back(std::move(command));
}

ZELKinCommand& ZELKinCommandRegistry::Get(const QString& name) const
{
    for (const std::unique_ptr<ZELKinCommand>& command : m_commands) {
        if (command->GetName() == name)
            return *command;
    }
    throw ZELKinUsageError(QStringLiteral("unknown command '%1'").arg(name));
}

QList<const ZELKinCommand*> ZELKinCommandRegistry::GetCommands() const
{
    QList<const ZELKinCommand*> commands;
    for (const std::unique_ptr<ZELKinCommand>& command : m_commands)
        commands.append(command.get());
    return commands;
}
