#ifndef ZELKINOUTPUTFILE_H
#define ZELKINOUTPUTFILE_H

#include <QSaveFile>
#include <QString>

/*!
    A file that zelkin writes: the data go to a temporary file beside it,
    which takes the file's name only when everything was written, so that an
    error half-way (a full disk, say) leaves no half file and any earlier
    file whole.
*/
class ZELKinOutputFile
{
public:
    //! Opens the temporary file. Throws ZELSysException "cannot write
    //! <path>: <reason>" when it cannot be created.
    explicit ZELKinOutputFile(const QString& path);

    QIODevice* GetDevice() { return &m_file; }

    //! Gives the file its name. Throws ZELSysException "cannot write
    //! <path>: <reason>" when the data could not all be written.
    void Commit();
    //! Throws that same error for a write the caller saw fail.
    [[noreturn]] void ThrowWriteError() const;

private:
    QSaveFile m_file;
};

#endif // ZELKINOUTPUTFILE_H
