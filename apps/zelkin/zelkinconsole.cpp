#include "zelkinconsole.h"

#include "zelkincommand.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace {

QString KindOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("debug");
    case QtInfoMsg:
        return QStringLiteral("info");
    case QtWarningMsg:
        return QStringLiteral("warning");
    case QtCriticalMsg:
        return QStringLiteral("critical");
    case QtFatalMsg:
        break;
    }
    return QStringLiteral("error");
}

void HandleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    ZELKinConsole::Diagnose(KindOf(type), message);
    if (type != QtFatalMsg)
        return;
    // Returning would let Qt abort. _Exit skips the destructors of objects a
    // half-built machine may have left inconsistent; stdout must be flushed
    // by hand, since _Exit does not.
    std::fflush(stdout);
    std::_Exit(ZELKinExitStatus::Failure);
}

} // namespace

void ZELKinConsole::Print(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
}

void ZELKinConsole::Diagnose(const QString& kind, const QString& message)
{
    const QString line = QStringLiteral("zelkin: %1: %2\n").arg(kind, message);
    std::fputs(line.toUtf8().constData(), stderr);
}

void ZELKinConsole::InstallMessageHandler()
{
    qInstallMessageHandler(HandleQtMessage);
}
