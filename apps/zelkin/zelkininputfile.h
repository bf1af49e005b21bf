#ifndef ZELKININPUTFILE_H
#define ZELKININPUTFILE_H

#include <zeltpformatexception.h>

#include <QString>

class ZELGeoContainer;
class ZELTPProgram;
class ZELTPProgramStream;

/*!
    The files the commands read. On the command line "-" names the
    standard input; it is read through its path, /dev/stdin, so that a
    pipe is read as a stream and a redirected file as the file it is, and
    messages name it "standard input".
*/
namespace ZELKinInputFile {

//! The argument that names the standard input.
QString GetStandardInputArgument();
//! Where the file `argument` names is read: /dev/stdin for "-",
//! `argument` itself otherwise.
QString GetPath(const QString& argument);
//! How messages name the file at `path`: "standard input" for /dev/stdin,
//! `path` as it was written otherwise.
QString GetName(const QString& path);

//! Whether the file at `path` can be read more than once, a part at a
//! time: a file or a folder, not a pipe or a device.
bool CanBeReadAgain(const QString& path);

//! Runs `read` and throws a ZELTPFormatException it throws with the file
//! named by GetName().
template <typename Read> auto NamingTheFile(const Read& read) -> decltype(read())
{
    try {
        return read();
    } catch (const ZELTPFormatException& error) {
        const QString name = GetName(error.GetSourceName());
        if (name == error.GetSourceName())
            throw;
        throw ZELTPFormatException(name, error.GetLocation(), error.GetProblem());
    }
}

//! Reads the toolpath document at `path` into `container`, as
//! ZELTPProgramReader::Read does with `maximumBytes`, and throws its
//! ZELTPFormatException with the file named by GetName().
ZELTPProgram* ReadToolpath(ZELGeoContainer* container, const QString& path, qint64 maximumBytes);
//! Opens the toolpath document at `path` to be read one procedure at a
//! time (ZELTPProgramStream::Open), with the same progress and names.
void OpenToolpath(ZELTPProgramStream& stream, const QString& path);

} // namespace ZELKinInputFile

#endif // ZELKININPUTFILE_H
