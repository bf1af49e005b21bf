#ifndef ZELKINCOMMAND_H
#define ZELKINCOMMAND_H

#include "zelkinoption.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <stdexcept>

//! The exit statuses of zelkin, the same for every command.
namespace ZELKinExitStatus {
constexpr int Success = 0;
//! The command could not do its work: a file, a description or a library refused.
constexpr int Failure = 1;
//! The command line itself is wrong.
constexpr int Usage = 2;
//! The post cannot deliver NC that does what the toolpath asks inside the
//! machine's limits: a procedure could not be solved, or a position would
//! leave a limit or lacks axis values.
constexpr int Undeliverable = 3;
} // namespace ZELKinExitStatus

/*!
    One subcommand of zelkin ("zelkin <name> <arguments>").

    Run() writes its results to stdout and returns the exit status. A command
    reports failure by throwing: ZELKinUsageError for arguments it cannot
    accept, any other std::exception (the libraries' ZELSysException among
    them) for everything else. The application turns these into the tool's
    diagnostics and exit statuses, so that every command fails the same way.
    "--help" anywhere among a command's arguments never reaches Run(): the
    application shows the command's help instead.
*/
class ZELKinCommand
{
public:
    virtual ~ZELKinCommand() = default;

    //! The word that selects the command.
    virtual QString GetName() const = 0;
    //! One line for the command list of "zelkin help".
    virtual QString GetSummary() const = 0;
    //! The arguments after the name, as in "FILE.xml [--json]".
    virtual QString GetSynopsis() const = 0;
    //! What the command does and what its options mean, for "zelkin help <name>".
    virtual QString GetDescription() const = 0;
    //! The options Run() reads its arguments against, which "zelkin
    //! completion" completes as well.
    virtual QList<ZELKinOption> GetOptions() const = 0;
    //! What the positional arguments are, for "zelkin completion": none
    //! unless the command says otherwise.
    virtual ZELKinOption GetPositional() const { return ZELKinOption::Positional(ZELKinOption::Value::None); }

    //! `arguments` are those after the command's name.
    virtual int Run(const QStringList& arguments) = 0;
};

/*!
    Arguments the command line cannot be run with; zelkin exits with status 2.

    The error names the command whose help explains the right usage, so that
    the hint printed with it points there; an error without a command (an
    unknown command, say) points at the command list.
*/
class ZELKinUsageError : public std::runtime_error
{
public:
    explicit ZELKinUsageError(const QString& message, const QString& command = QString())
        : std::runtime_error(message.toStdString())
        , m_command(command)
    {
    }

    //! The command whose usage was broken; empty for the command line as a whole.
    QString GetCommand() const { return m_command; }

private:
    QString m_command;
};

/*!
    A program that cannot be posted as the toolpath asks; zelkin exits with
    status 3. The message names the first problem and how many there are.
*/
class ZELKinUndeliverable : public std::runtime_error
{
public:
    explicit ZELKinUndeliverable(const QString& message)
        : std::runtime_error(message.toStdString())
    {
    }
};

#endif // ZELKINCOMMAND_H
