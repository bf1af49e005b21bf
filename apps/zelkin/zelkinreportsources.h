#ifndef ZELKINREPORTSOURCES_H
#define ZELKINREPORTSOURCES_H

#include <QList>
#include <QString>

struct ZELKinVerification;

/*!
    The files a report checked, named so that a page mailed on its own can
    be tied to them: each with its name, its size and its SHA-256. A post's
    folder holds several NC files (the program-set file, one file per ply,
    the probing file), each listed; a bundle is one file.

    Only regular files are hashed: standard input, a pipe or a device was
    read once by the checks and would give other bytes, or none, if read
    again.
*/
class ZELKinReportSources
{
public:
    struct File
    {
        //! As the command line gave it, or as the checks found it.
        QString path;
        //! Bytes; -1 for a file that is not hashed.
        qint64 size = -1;
        //! Lower-case hex; empty for a file that is not hashed.
        QString sha256;
    };

    //! Reads and hashes every file, counted as one stretch of progress
    //! ("Hashing the inputs"). The NC files are found where the checks read
    //! the plies. Throws ZELSysException "cannot read <path> to hash it:
    //! <reason>" for a file that cannot be read.
    ZELKinReportSources(const QString& machinePath, const QString& toolpathPath, const QString& ncPath,
                        const ZELKinVerification& verification);

    const File& GetMachine() const { return m_machine; }
    const File& GetToolpath() const { return m_toolpath; }
    //! As the command line gave it.
    QString GetNCPath() const { return m_ncPath; }
    //! In name order; empty when the checks read no ply.
    const QList<File>& GetNCFiles() const { return m_ncFiles; }
    //! The name the post gave the program ("cylinder-section"): the
    //! program-set file's, or the bundle's set name; empty when the NC
    //! does not say.
    QString GetProgramName() const { return m_programName; }

private:
    File m_machine;
    File m_toolpath;
    QString m_ncPath;
    QList<File> m_ncFiles;
    QString m_programName;
};

#endif // ZELKINREPORTSOURCES_H
