#ifndef ZELKINAPPLICATION_H
#define ZELKINAPPLICATION_H

#include <QString>
#include <QStringList>

class ZELKinCommand;
class ZELKinCommandRegistry;
class ZELKinUsageError;

/*!
    The zelkin command line: picks the command named by the first argument
    and runs it, answers "--help" and "--version", and turns whatever a
    command throws into one diagnostic line and the exit status.

    - success: status 0;
    - a ZELKinUsageError: "zelkin: error: <message>", a hint line pointing at
      the help, status 2;
    - any other exception: "zelkin: error: <message>", status 1;
    - output that could not all be written to stdout, by a command that
      reported no error of its own: "zelkin: error: cannot write the
      standard output: <reason>", status 1.
*/
class ZELKinApplication
{
public:
    //! `registry` must hold a command named "help", which answers "--help".
    ZELKinApplication(const ZELKinCommandRegistry& registry, const QString& version);

    //! `arguments` are those after the program name. Never throws.
    int Run(const QStringList& arguments) const;

private:
    int Dispatch(const QStringList& arguments) const;
    int RunOption(const QStringList& arguments) const;
    int RunCommand(ZELKinCommand& command, const QStringList& arguments) const;
    int PrintVersion(const QStringList& arguments) const;
    static void ReportUsageError(const ZELKinUsageError& error);

    const ZELKinCommandRegistry& m_registry;
    QString m_version;
};

#endif // ZELKINAPPLICATION_H
