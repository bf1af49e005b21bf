#ifndef ZELKINCOMMANDREGISTRY_H
#define ZELKINCOMMANDREGISTRY_H

#include "zelkincommand.h"

#include <QList>

#include <memory>
#include <vector>

/*!
    The commands zelkin offers, in the order "zelkin help" lists them. A new
    command is one ZELKinCommand class and one Add() where the tool starts.
*/
class ZELKinCommandRegistry
{
public:
    void Add(std::unique_ptr<ZELKinCommand> command);
    //! The command of that name. Throws ZELKinUsageError "unknown command
    //! '<name>'", which points the user at the command list.
    ZELKinCommand& Get(const QString& name) const;
    QList<const ZELKinCommand*> GetCommands() const;

private:
    std::vector<std::unique_ptr<ZELKinCommand>> m_commands;
};

#endif // ZELKINCOMMANDREGISTRY_H
