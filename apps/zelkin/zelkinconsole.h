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

} // namespace ZELKinConsole

#endif // ZELKINCONSOLE_H
