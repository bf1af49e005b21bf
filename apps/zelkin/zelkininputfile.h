#ifndef ZELKININPUTFILE_H
#define ZELKININPUTFILE_H

#include <QString>

class ZELGeoContainer;
class ZELTPProgram;

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

//! Reads the toolpath document at `path` into `container`, as
//! ZELTPProgramReader::Read does with `maximumBytes`, and throws its
//! ZELTPFormatException with the file named by GetName().
ZELTPProgram* ReadToolpath(ZELGeoContainer* container, const QString& path, qint64 maximumBytes);

} // namespace ZELKinInputFile

#endif // ZELKININPUTFILE_H
