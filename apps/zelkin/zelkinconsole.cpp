#include "zelkinconsole.h"

#include "zelkincommand.h"

#include <zelsysexception.h>

#include <QtGlobal>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

const QString ErrorKind = QStringLiteral("error");

bool errorReported = false;
// Lines reach stderr from the libraries' threads and the progress display's.
std::mutex errorStreamMutex;
// The status line on the terminal, empty while none is shown.
QString statusLine;
// The system's reason for the last failed write of Print; 0 while none failed.
int printError = 0;

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
    return ErrorKind;
}

void HandleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    ZELKinConsole::Diagnose(KindOf(type), message);
    if (type != QtFatalMsg)
        return;
    ZELKinConsole::ShowStatus(QString());
    // Returning would let Qt abort. _Exit skips the destructors of objects a
    // half-built machine may have left inconsistent; stdout must be flushed
    // by hand, since _Exit does not.
    std::fflush(stdout);
    std::_Exit(ZELKinExitStatus::Failure);
}

} // namespace

void ZELKinConsole::Print(const QString& text)
{
    if (std::fputs(text.toUtf8().constData(), stdout) == EOF)
        printError = errno;
}

namespace {

// "\r" goes back to the line's start and "ESC [ K" clears it to its end:
// what every terminal emulator in use understands.
const char* const ClearTerminalLine = "\r\x1b[K";

int TerminalColumns()
{
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

void WriteToErrorStream(const QString& line)
{
    std::lock_guard<std::mutex> lock(errorStreamMutex);
    if (!statusLine.isEmpty())
        std::fputs(ClearTerminalLine, stderr);
    std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stderr);
    if (!statusLine.isEmpty())
        std::fputs(statusLine.toUtf8().constData(), stderr);
    std::fflush(stderr);
}

} // namespace

void ZELKinConsole::Diagnose(const QString& kind, const QString& message)
{
    errorReported = errorReported || kind == ErrorKind;
    WriteToErrorStream(QStringLiteral("zelkin: %1: %2").arg(kind, message));
}

void ZELKinConsole::Report(const QString& line)
{
    WriteToErrorStream(line);
}

void ZELKinConsole::ShowStatus(const QString& line)
{
    // A line wider than the terminal would wrap, and the carriage return
    // would then redraw only its last row.
    const QString shown = line.left(std::max(1, TerminalColumns() - 1));
    std::lock_guard<std::mutex> lock(errorStreamMutex);
    if (shown == statusLine)
        return;
    std::fputs(ClearTerminalLine, stderr);
    std::fputs(shown.toUtf8().constData(), stderr);
    std::fflush(stderr);
    statusLine = shown;
}

bool ZELKinConsole::HasReportedError()
{
    return errorReported;
}

void ZELKinConsole::FlushStandardOutput()
{
    // The stream keeps only the fact of an earlier failure, not its reason:
    // a flush that fails now, or a failed Print, tells the reason.
    const bool lostEarlier = std::ferror(stdout) != 0;
    const int error = std::fflush(stdout) == 0 ? printError : errno;
    if (!lostEarlier && error == 0)
        return;
    const QString reason = error != 0 ? qt_error_string(error) : QStringLiteral("an earlier write failed");
    throw ZELSysException(QStringLiteral("cannot write the standard output: %1").arg(reason));
}

void ZELKinConsole::KeepStandardStreamsOpen()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF)
            continue;
        // The lowest free descriptor: this one, as those before it are open.
        const int opened = ::open("/dev/null", O_RDONLY);
        if (opened >= 0 && opened != descriptor) {
            ::dup2(opened, descriptor);
            ::close(opened);
        }
    }
}

void ZELKinConsole::InstallMessageHandler()
{
    qInstallMessageHandler(HandleQtMessage);
}

