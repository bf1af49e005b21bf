#ifndef ZELKINHELPCOMMAND_H
#define ZELKINHELPCOMMAND_H

#include "zelkincommand.h"

class ZELKinCommandRegistry;

/*!
    "zelkin help [COMMAND]": the command list, or the usage of one command.
    It reads the commands from the registry it is part of, so a new command
    appears in the help without touching this class.
*/
class ZELKinHelpCommand : public ZELKinCommand
{
public:
    explicit ZELKinHelpCommand(const ZELKinCommandRegistry& registry);

    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    ZELKinOption GetPositional() const override;
    int Run(const QStringList& arguments) override;

    //! The usage line and description of one command.
    static QString GetCommandHelp(const ZELKinCommand& command);

private:
    QString GetCommandList() const;

    const ZELKinCommandRegistry& m_registry;
};

#endif // ZELKINHELPCOMMAND_H
