#include "zelkinapplication.h"

#include "zelkinarguments.h"
#include "zelkincommandregistry.h"
#include "zelkinconsole.h"
#include "zelkinhelpcommand.h"

#include <exception>

namespace {

const QString HelpCommand = QStringLiteral("help");

bool IsOption(const QString& argument)
{
    return argument.startsWith(QLatin1Char('-'));
}

} // namespace

ZELKinApplication::ZELKinApplication(const ZELKinCommandRegistry& registry, const QString& version)
    : m_registry(registry)
    , m_version(version)
{
}

int ZELKinApplication::Run(const QStringList& arguments) const
{
    try {
        const int status = Dispatch(arguments);
        // Results that never arrived are no success. A command that failed
        // has said why already, in its one error line.
        if (!ZELKinConsole::HasReportedError())
            ZELKinConsole::FlushStandardOutput();
        return status;
    } catch (const ZELKinUsageError& error) {
        ReportUsageError(error);
        return ZELKinExitStatus::Usage;
    } catch (const ZELKinUndeliverable& error) {
        ZELKinConsole::Diagnose(QStringLiteral("error"), QString::fromUtf8(error.what()));
        return ZELKinExitStatus::Undeliverable;
    } catch (const std::exception& error) {
        ZELKinConsole::Diagnose(QStringLiteral("error"), QString::fromUtf8(error.what()));
        return ZELKinExitStatus::Failure;
    }
}

int ZELKinApplication::Dispatch(const QStringList& arguments) const
{
    if (arguments.isEmpty())
        throw ZELKinUsageError(QStringLiteral("missing the command"));
    if (IsOption(arguments.first()))
        return RunOption(arguments);
    return RunCommand(m_registry.Get(arguments.first()), arguments.mid(1));
}

// Before the command only "--help" and "--version" are understood; "--help"
// takes the rest of the line as the help command's arguments, so that
// "zelkin --help machine" works as "zelkin help machine" does.
int ZELKinApplication::RunOption(const QStringList& arguments) const
{
    const QString option = arguments.first();
    if (option == QLatin1String("--help") || option == QLatin1String("-h"))
        return RunCommand(m_registry.Get(HelpCommand), arguments.mid(1));
    if (option == QLatin1String("--version"))
        return PrintVersion(arguments.mid(1));
    throw ZELKinUsageError(QStringLiteral("unknown option '%1'").arg(option));
}

int ZELKinApplication::RunCommand(ZELKinCommand& command, const QStringList& arguments) const
{
    if (ZELKinArguments::AsksForHelp(arguments)) {
        ZELKinConsole::Print(ZELKinHelpCommand::GetCommandHelp(command));
        return ZELKinExitStatus::Success;
    }
    return command.Run(arguments);
}

int ZELKinApplication::PrintVersion(const QStringList& arguments) const
{
    if (!arguments.isEmpty())
        throw ZELKinUsageError(QStringLiteral("unexpected argument '%1'").arg(arguments.first()));
    ZELKinConsole::Print(QStringLiteral("zelkin %1\n").arg(m_version));
    return ZELKinExitStatus::Success;
}

void ZELKinApplication::ReportUsageError(const ZELKinUsageError& error)
{
    ZELKinConsole::Diagnose(QStringLiteral("error"), QString::fromUtf8(error.what()));
    const QString command = error.GetCommand();
    ZELKinConsole::Diagnose(QStringLiteral("hint"),
                            command.isEmpty()
                                ? QStringLiteral("run 'zelkin help' for the list of commands")
                                : QStringLiteral("run 'zelkin help %1' for its usage").arg(command));
}
