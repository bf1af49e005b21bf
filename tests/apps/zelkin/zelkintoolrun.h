#ifndef ZELKINTOOLRUN_H
#define ZELKINTOOLRUN_H

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

//! What one run of zelkin left behind.
struct ZELKinToolRun
{
    //! NormalExit unless the process crashed or aborted.
    QProcess::ExitStatus exitStatus = QProcess::CrashExit;
    int exitCode = -1;
    QString standardOutput;
    QString standardError;

    //! stderr as lines, without their line breaks.
    QStringList GetErrorLines() const
    {
        QStringList lines = standardError.split(QLatin1Char('\n'));
        if (lines.last().isEmpty())
            lines.removeLast();
        return lines;
    }

    //! The diagnostics among stderr's lines ("zelkin: <kind>: ..."), without
    //! the progress around them.
    QStringList GetDiagnosticLines() const
    {
        return GetErrorLines().filter(QRegularExpression(QStringLiteral("^zelkin: ")));
    }
};

//! Closes the standard input of the zelkin `process` has started, waits for
//! it to end and gathers what it printed.
inline ZELKinToolRun FinishZelkinRun(QProcess& process)
{
    process.closeWriteChannel();
    ZELKinToolRun run;
    if (!process.waitForFinished(60000)) {
        ADD_FAILURE() << "zelkin did not run to its end: " << process.errorString().toStdString();
        return run;
    }
    run.exitStatus = process.exitStatus();
    run.exitCode = process.exitCode();
    run.standardOutput = QString::fromUtf8(process.readAllStandardOutput());
    run.standardError = QString::fromUtf8(process.readAllStandardError());
    return run;
}

//! Runs zelkin with `arguments` in `environment`, feeding it `input` on
//! standard input, and waits for it to end.
inline ZELKinToolRun RunZelkin(const QStringList& arguments, const QProcessEnvironment& environment,
                               const QByteArray& input = QByteArray())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ZELKIN_EXECUTABLE), arguments);
    process.write(input);
    return FinishZelkinRun(process);
}

//! Runs zelkin with `arguments` in the test's own environment.
inline ZELKinToolRun RunZelkin(const QStringList& arguments)
{
    return RunZelkin(arguments, QProcessEnvironment::systemEnvironment());
}

//! The shipped example machine.
inline QString GetExampleMachinePath()
{
    return QStringLiteral(ZELKIN_EXAMPLES_DIR "/machines/gantry-rbr.xml");
}

//! Writes `text` to the file `name` in `directory` and returns its path.
inline QString WriteFile(const QTemporaryDir& directory, const QString& name, const QString& text)
{
    const QString path = QDir(directory.path()).filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        ADD_FAILURE() << "cannot write " << path.toStdString();
    return path;
}

#endif // ZELKINTOOLRUN_H
