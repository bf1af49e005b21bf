#ifndef ZELTPPROGRAMSTREAM_H
#define ZELTPPROGRAMSTREAM_H

#include "zeltoolpath_export.h"

#include <QCoreApplication>
#include <QString>

#include <memory>

class ZELGeoContainer;
class ZELTPProgram;
class ZELTPProgramStreamPrivate;

/*!
    Reads a toolpath document (the format of ZELTPProgramReader) one
    procedure at a time, so that a host holds no more of a large toolpath
    than its largest procedure.

    Open reads the file once, keeping the program's own fields and where
    each entry of "procedures" stands in the file (its bytes, not its
    contents). ReadProcedure then reads one entry back from the file, a
    roll layup's courses one at a time (it holds the procedure it builds
    and the parsed text of one course, never the whole entry's), and
    builds it as ZELTPProgramReader would have built it inside the whole
    program: the same objects and values, the same rules, and messages with
    the same JSON paths ("$.program.procedures[3].courses[0]...") and, for
    a document that is not JSON, the same byte offsets.

    Only a file can be read twice: a pipe or a device is refused. Several
    threads may call ReadProcedure at once, each with its own container.
*/
class ZELTOOLPATH_EXPORT ZELTPProgramStream
{
    Q_DECLARE_TR_FUNCTIONS(ZELTPProgramStream)

public:
    ZELTPProgramStream();
    virtual ~ZELTPProgramStream();

    /*!
        Opens the document in the file `fileName`: reads it through once and
        checks the program's own fields (format, version, name, revision,
        procedures being an array). Throws ZELTPFormatException naming
        `fileName`: "cannot open the file: <reason>", "cannot read the
        file: <reason>", "a pipe or a device cannot be read one procedure
        at a time; give a file", the reader's messages for a program field
        that breaks a rule, and the reader's "invalid JSON at byte <n>:
        ..." for text that is not JSON outside the procedures. A procedure
        entry (or its syntax) is not checked until it is read.
    */
    void Open(const QString& fileName);

    //! The file opened; empty before Open.
    QString GetFileName() const;
    //! The file's size in bytes.
    qint64 GetFileBytes() const;
    //! The program's name and revision ("0" when the document gives none).
    QString GetName() const;
    QString GetRevision() const;
    //! The number of entries of the document's procedures array.
    int GetNumProcedures() const;
    //! The bytes of the JSON text of procedure entry `index` (0 to
    //! GetNumProcedures() - 1, or 0).
    qint64 GetProcedureBytes(int index) const;
    //! The index of the entry with the most bytes; -1 without any.
    int GetLargestProcedure() const;

    /*!
        Reads procedure entry `index` (0 to GetNumProcedures() - 1) into
        `container` (not owned) and returns a program of the document's
        name and revision that holds that procedure alone, every object
        initialised and owned by the container. Throws ZELTPFormatException
        with the reader's messages for an entry that breaks a rule or is
        not JSON, and "cannot read the file: <reason>" or "the file changed
        while it was read" when the file is no longer what Open read;
        `container` is then left as it was.
    */
    ZELTPProgram* ReadProcedure(int index, ZELGeoContainer* container) const;

protected:
    explicit ZELTPProgramStream(ZELTPProgramStreamPrivate* d);

    std::unique_ptr<ZELTPProgramStreamPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELTPProgramStream)
    Q_DISABLE_COPY_MOVE(ZELTPProgramStream)
};

#endif // ZELTPPROGRAMSTREAM_H
