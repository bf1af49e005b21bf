#ifndef ZELKINWRITER_H
#define ZELKINWRITER_H

#include "zelkinematics_export.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>

class ZELKinPosition;
class ZELKinProgram;
class ZELKinWriterPrivate;

/*!
    Writes a solved kinematic program as NC text for its machine. The only
    format is "AFPGCode", the AFP G-code dialect; docs/nc-output.md
    describes its files for NC programmers.

    Writing adds dynamic properties to the program's objects: "PlyNum" on
    each roll layup procedure (101, 102, ... in program order), and on the
    course positions "uAxisOffset" when the course's first position has a
    material (U) value; a course whose first position has none gets U
    values measured along its toolpath points, in mm of material from the
    course start. Each course position's declared property
    "actualFeedrate" (ZELKinPosition::GetActualFeedrate) is set to the
    feed written for it.

    Progress lines ("  Writing " and the name of each procedure's toolpath
    procedure) go where the libraries' progress lines go (ZELSysProgress:
    standard output unless the host chose otherwise), and the positions of
    the courses written are counted there as "Writing the NC". A folder
    that cannot be made or a file that cannot be opened or written ends the
    process through Qt's fatal message handler, unless the host chose
    FileErrorThrows (SetFileErrorMode). No number that is not finite is ever
    written (see Write).
*/
class ZELKINEMATICS_EXPORT ZELKinWriter
{
public:
    //! The program (not owned) must outlive the writer; its machine must be
    //! a ZELKinAFPMachine.
    explicit ZELKinWriter(ZELKinProgram* program);
    //! A writer without a program, for Begin, Add and Finish.
    ZELKinWriter();
    virtual ~ZELKinWriter();

    //! The ply to process. "ONEPLY" lists the plies on standard error, reads
    //! the chosen ply number (such as 0102) from a line of standard input
    //! and writes only that ply; in a bundle it then replaces the ply's
    //! section. Empty by default: every procedure is written.
    void SetPlyToProcess(QString& ply);
    //! Whether the last Write ran the "ONEPLY" mode and read a ply number
    //! that no ply has: it then logged the critical message "Could not
    //! process <number>: procedure not found" and wrote nothing.
    bool IsChosenPlyMissing() const;
    //! The local date and time that the files print as the time they were
    //! made (the program-set file's "CPP DATE/TIME", the probing file's
    //! "Tool Point File processed at"), so that a run can be reproduced.
    //! While it is null (the default), each Write takes the current time.
    void SetCurrentDateTime(const QDateTime& now);

    /*!
        Told, for every motion line of the ply files that the controller
        always runs (the approach line "N1G641 ADIS=OFF_PART", each line
        along a course, the course's approach point among them when it has
        a line, the first off-part point and the retract lines), the
        file it is written to (a path below Write's `path`, or the bundle),
        its line number there from 1, and the position it moves to. In a
        bundle the line numbers count the bundle's lines. Called while the
        file is being written, in line order; an empty trace (the default) is
        not called. The trace must not throw.
    */
    using LineTrace = std::function<void(const QString& file, qint64 line, const ZELKinPosition* position)>;
    void SetLineTrace(LineTrace trace);

    //! What Write does when a folder cannot be made or a file cannot be
    //! opened, written or put in place.
    enum FileErrorMode {
        //! Ends the process through Qt's fatal message handler, with the
        //! message (the default).
        FileErrorEndsProcess,
        //! Throws ZELSysException with the same message, such as "Could not
        //! open the PPF file for writing at: '<file>': <reason>". What Write
        //! leaves behind is the same: a folder's files are published whole
        //! or not at all, and a file that failed stays as it was.
        FileErrorThrows
    };
    void SetFileErrorMode(FileErrorMode mode);

    /*!
        Checks an options text for Write before anything is read, so that a
        host can refuse what Write would quietly ignore or read as 0.
        Throws ZELSysException naming the first problem:

        - "unknown writer option 'bogus' (known: tooling-retract,
          pinch-max-length, pinch-release-length)";
        - "writer option 'tooling-retract' has no value";
        - "writer option 'tooling-retract': 'abc' is not a number", or
          "... 'nan' is not a finite number";
        - "writer option 'tooling-retract': '1e300' is outside the range
          0 <= length <= 1000 mm"; pinch-max-length and
          pinch-release-length take 0 < length <= 100000 mm;
        - "writer option 'tooling-retract' is given twice";
        - "writer option 'pinch-max-length' does nothing without
          'pinch-release-length'", and the other way round.

        Items are read as Write reads them (see Write); empty items pass.
    */
    static void CheckOptions(const QString& options);

    /*!
        Writes the program in `format`; a format other than
        "AFPGCode" (case-sensitive) writes nothing and reports
        nothing, and so does a writer without a program.

        `path` ending in ".bun" is a bundle file; ending in ".aptsource" a
        bundle of the same name ending in ".bun"; any other path an output
        directory, made as needed. `options` is the options text: items
        "key: value" separated by ";", of which "tooling-retract",
        "pinch-max-length" and "pinch-release-length" (mm) are read and
        others ignored; a value that is not a number reads as 0.

        Throws ZELSysException "cannot write the NC files of the program
        '<name>': its name contains '..'" (or another of the problems that
        ZELTPFileName names) before anything is written, when the program's
        original file name could not stay a single file name in `path`.

        Throws ZELSysException "cannot write the NC: the ply name of
        procedure 'P1' contains the line end U+000A" before anything is
        written, when a text the files would print (the program's name,
        revision and author, a layup procedure's name, its plies' names and
        materials) holds a line end, another control character or a double
        quote.

        Throws ZELSysException "cannot write the NC file '<file>': the
        <word> of line <n> is <nan|inf|-inf>, not a finite number" when a
        number to be written is a NaN or an infinity (the F of line 57, the
        RetractFeedrate of a ply without courses; in a bundle the line is
        the bundle's). That file is not written: what stood at its path
        stays as it was. The files written before it stay written, and
        nothing after it is written.

        Otherwise nothing of its own is thrown, and a file error ends the
        process or throws as SetFileErrorMode chose.
    */
    void Write(const QString& path, const QString& format, const QString& options);

    /*!
        Writes a program one procedure at a time, for a host that holds no
        more of a large program than a procedure or a few: Begin, then Add
        for each part of the program in program order, then Finish. The
        files are those Write writes for the program that the parts make
        together (its roll layups numbered 101, 102, ... across the parts),
        byte for byte, in every layout and with "ONEPLY", except that in a
        bundle a message's line counts the lines of the ply's section
        rather than the bundle's. The line trace is not called.

        Begin takes the program whose name, revision, author, date and
        machine the program-set file gives (its procedures are not
        written): typically a program translated from the toolpath without
        its procedures. Only "AFPGCode" is known: for another `format`,
        Begin, Add and Finish do nothing. Begin throws what Write throws
        for the program's name and texts.

        Add writes the procedures of `part` (not owned; it may be deleted
        once Add returns): into the staging folder, into a temporary file
        beside the bundle, or, for "ONEPLY", into a temporary folder, and
        keeps what the program-set file needs of them. It throws what
        Write throws for a text or a number of theirs.

        Finish writes the program-set file and puts the files in place, or,
        for "ONEPLY", lists the plies, reads the choice and writes that ply
        alone (IsChosenPlyMissing tells a number no ply has). A writer
        destroyed after Begin without Finish, or after a throw, leaves
        nothing of this write behind. File errors are handled as for Write.
    */
    void Begin(const QString& path, const QString& format, const QString& options, const ZELKinProgram* identification);
    void Add(ZELKinProgram* part);
    void Finish();
    //! Ends a write begun with Begin without putting anything in place.
    void Abandon();

protected:
    ZELKinWriter(ZELKinWriterPrivate* d);

    std::unique_ptr<ZELKinWriterPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinWriter)
    Q_DISABLE_COPY_MOVE(ZELKinWriter)
};

#endif // ZELKINWRITER_H
