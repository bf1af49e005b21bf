#include "zelkinconsole.h"

#include "zelkincommand.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

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

ZELKinConsole::StdoutToStderr::StdoutToStderr()
{
    std::fflush(stdout);
    m_saved = ::dup(STDOUT_FILENO);
    if (m_saved >= 0 && ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        ::close(m_saved);
        m_saved = -1;
    }
}

ZELKinConsole::StdoutToStderr::~StdoutToStderr()
{
    std::fflush(stdout);
    if (m_saved < 0)
        return;
    ::dup2(m_saved, STDOUT_FILENO);
    ::close(m_saved);
}
