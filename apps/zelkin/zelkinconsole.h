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
//! Writes `line` and a line break to stderr: a progress line of the tool or
//! of the libraries. The status line, when one is shown, is taken away
//! first and shown again after it.
void Report(const QString& line);
//! Shows `line` as the one status line at the foot of a terminal on stderr,
//! in place of the one before; an empty line takes it away. Only for a
//! stderr that is a terminal: the line is redrawn with a carriage return.
void ShowStatus(const QString& line);

//! Whether a diagnostic of the kind "error" was written.
bool HasReportedError();

/*!
    Flushes stdout and makes sure that everything written to it since the
    start, by Print or by anything else that writes to stdout (the
    libraries' progress lines, a QFile opened on it), reached it. Throws
    ZELSysException "cannot write the standard output: <reason>" when
    something was lost: a full disk, a closed descriptor. The reason is the
    system's when it is known; a write whose caller dropped its error
    leaves only "an earlier write failed".
*/
void FlushStandardOutput();

//! Opens /dev/null in place of a standard stream that zelkin was started
//! without, read-only for stdout and stderr, so that writing to them fails:
//! a file that zelkin opens later must never take their descriptors and
//! receive the tool's output lines.
void KeepStandardStreamsOpen();

//! Routes Qt's messages into diagnostics. A fatal message (the machine
//! loader ends the process this way on some broken descriptions) becomes an
//! error line and exit status 1 instead of an abort and a core dump.
void InstallMessageHandler();

} // namespace ZELKinConsole

#endif // ZELKINCONSOLE_H
