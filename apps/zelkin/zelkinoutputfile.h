#ifndef ZELKINOUTPUTFILE_H
#define ZELKINOUTPUTFILE_H

#include <QFileDevice>
#include <QString>

#include <memory>

/*!
    A file that zelkin writes: the data go to a temporary file beside it,
    which takes the file's name only when everything was written, so that an
    error half-way (a full disk, say) leaves no half file and any earlier
    file whole.

    A path that names something other than a regular file (a device such as
    /dev/null or /dev/full, a pipe) is written in place: renaming a file
    over it would replace the device itself.
*/
class ZELKinOutputFile
{
public:
    //! Opens the temporary file (or the device). Throws ZELSysException
    //! "cannot write <path>: <reason>" when it cannot be opened.
    explicit ZELKinOutputFile(const QString& path);
    ~ZELKinOutputFile();

    QIODevice* GetDevice() { return m_file.get(); }

    //! Gives the file its name. Throws ZELSysException "cannot write
    //! <path>: <reason>" when the data could not all be written.
    void Commit();
    //! Throws that same error for a write the caller saw fail.
    [[noreturn]] void ThrowWriteError() const;

private:
    std::unique_ptr<QFileDevice> m_file;
};

#endif // ZELKINOUTPUTFILE_H
