#ifndef ZELKINCOMPLETIONCOMMAND_H
#define ZELKINCOMPLETIONCOMMAND_H

#include "zelkincommand.h"

class ZELKinCommandRegistry;

/*!
    "zelkin completion bash": prints a script that teaches bash to complete
    zelkin's command lines: the commands, each command's options, the words
    an option or argument is one of, and file names where a path goes ("-"
    too where standard input may be read). The script is made from the
    registry's commands and the options they parse with, so that a new
    command or option is completed without touching this class.
*/
class ZELKinCompletionCommand : public ZELKinCommand
{
public:
    explicit ZELKinCompletionCommand(const ZELKinCommandRegistry& registry);

    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    ZELKinOption GetPositional() const override;
    //! Throws ZELKinUsageError "missing the shell (known: bash)" without a
    //! shell and "unknown shell '<shell>' (known: bash)" for another.
    int Run(const QStringList& arguments) override;

private:
    QString GetBashScript() const;

    const ZELKinCommandRegistry& m_registry;
};

#endif // ZELKINCOMPLETIONCOMMAND_H
