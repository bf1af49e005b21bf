#ifndef ZELKINCONSOLE_H
#define ZELKINCONSOLE_H

#include <QString>

/*!
    zelkin's two streams: results on stdout, diagnostics on stderr. Every
    diagnostic is one line "zelkin: <kind>: <message>", so that scripts can
    tell the tool's lines from anything else and grep for errors.
*/
namespace ZELKinConsole {

//! Writes `text` to stdout as UTF-8, as it is.
void Print(const QString& text);

//! Writes "zelkin: <kind>: <message>" and a line break to stderr.
void Diagnose(const QString& kind, const QString& message);

//! Routes Qt's messages into diagnostics. A fatal message (the machine
//! loader ends the process this way on some broken descriptions) becomes an
//! error line and exit status 1 instead of an abort and a core dump.
void InstallMessageHandler();

/*!
    While it lives, whatever is written to stdout (the library's progress
    lines among it) goes to stderr instead, so that a command whose stdout
    is a report keeps it clean. Flushes stdout on both ends. Throws nothing;
    when the descriptors cannot be duplicated, stdout stays as it is.
*/
class StdoutToStderr
{
public:
    StdoutToStderr();
    ~StdoutToStderr();
    StdoutToStderr(const StdoutToStderr&) = delete;
    StdoutToStderr& operator=(const StdoutToStderr&) = delete;

private:
    int m_saved = -1;
};

} // namespace ZELKinConsole

#endif // ZELKINCONSOLE_H
