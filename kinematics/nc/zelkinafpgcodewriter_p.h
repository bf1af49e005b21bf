#ifndef ZELKINAFPGCODEWRITER_P_H
#define ZELKINAFPGCODEWRITER_P_H

#include "zelkinafpgcodeprogramset_p.h"
#include "zelkinafpgcodetowevents_p.h"
#include "zelkinwriter.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class ZELKinNCStream;
class ZELKinProbeProcedure;
class ZELKinProcedure;
class ZELKinProgram;
class ZELKinRollLayupProcedure;
class ZELKinStagingFolder;
class ZELSysProgress;

/*!
    Writes a program in the "AFPGCode" dialect: the program-set
    file, one ply file per roll layup procedure and the probing file, as
    files in a directory or as sections of one bundle file. docs/nc-output.md
    describes the files for NC programmers.

    The layout follows the output path: a path ending in ".bun" is a bundle;
    one ending in ".aptsource" gives a bundle of the same name ending in
    ".bun" instead; any other path is a directory, in which the files go to
    the folder named after the program's original file name. With the ply to
    process "ONEPLY", only one ply is written, chosen on standard input, and
    in a bundle it replaces that ply's section.

    Every file is written in full before it replaces what stood at its path,
    so an interrupted write leaves the old file whole; in a directory, the
    folder named after the program is written in full in a staging folder
    (ZELKinStagingFolder) that then takes its place, so that the folder
    holds one post's files, all of them. A folder that cannot be made or a
    file that cannot be opened or written ends the process through Qt's
    fatal message handler, once the staging folder is removed; the path in
    the message is given in Latin-1 and followed by ": " and the system's
    reason. A ZELSysException while a file is written, such as the stream's
    refusal of a number that is not finite, leaves the file unwritten (and
    removes the staging folder) and is thrown on as "cannot write the NC
    file '<file>': <message>".

    Writing numbers the roll layup procedures ("PlyNum", a dynamic
    property), prepares the courses' material axis and keeps the feeds
    written as the positions' "actualFeedrate".
*/
class ZELKinAFPGCodeWriter
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinAFPGCodeWriter)

public:
    explicit ZELKinAFPGCodeWriter(const QString& path);
    ~ZELKinAFPGCodeWriter();

    /*!
        Reads the options text: items separated by ";", each a key and a
        value separated by ":", both simplified; the value is read as a
        number, 0 when it is none. The keys "tooling-retract",
        "pinch-max-length" and "pinch-release-length" (mm) are known; others
        are ignored.
    */
    void SetOptions(const QString& options);
    //! "ONEPLY" asks for one ply, chosen on standard input.
    void SetPlyToProcess(const QString& ply);
    //! The time printed as the time the files were made; the time the
    //! writer was made by default.
    void SetCurrentDateTime(const QDateTime& now);
    //! As ZELKinWriter::SetLineTrace.
    void SetLineTrace(ZELKinWriter::LineTrace trace);
    void SetFileErrorMode(ZELKinWriter::FileErrorMode mode) { fileErrorMode = mode; }

    void Write(ZELKinProgram* program) const;

    /*!
        Writing one procedure at a time, for a program too large to hold:
        Begin, then Add for each program translated from a part of the
        toolpath in toolpath order, then Finish. The files are those Write
        writes for the whole program, byte for byte, with one exception:
        a bundle's messages count the lines of the ply's section, from its
        marker line, rather than the bundle's.

        Begin takes the program whose name, revision, author, date and
        machine the program-set file gives (its procedures are not
        written). Add numbers the roll layup procedures of `part` on from
        those added before and writes them: into the staging folder, or
        into a temporary file beside the bundle, or, for "ONEPLY", into a
        temporary folder. Finish writes the program-set file and puts the
        files in place; for "ONEPLY" it lists the plies, reads the choice
        and writes that ply alone. A writer destroyed before Finish leaves
        nothing behind. The line trace is not called.
    */
    void Begin(const ZELKinProgram* identification);
    void Add(ZELKinProgram* part);
    void Finish();
    //! Whether the last Write, in single-ply mode, was given a ply number
    //! that no ply has, and so wrote nothing.
    bool IsChosenPlyMissing() const { return chosenPlyMissing; }

private:
    using TextWriter = std::function<void(ZELKinNCStream& out)>;
    struct Streaming;

    //! Runs `work`, turning a file that could not be written into the
    //! chosen error: an exception or the end of the process.
    void ReportingFileErrors(const std::function<void()>& work) const;
    //! As ReportingFileErrors, ending the write begun first on any failure.
    void WritingStreamed(const std::function<void()>& work);
    //! The part folder's staging folder, made with the output folder.
    std::unique_ptr<ZELKinStagingFolder> CreateStaging(const QString& name) const;
    //! The program-set file into `staging`, named where it will stand.
    void WriteStagedProgramSet(const QString& name, const ZELKinStagingFolder& staging,
                               const TextWriter& programSet) const;
    //! Puts the staging folder in the part folder's place.
    void Publish(const QString& name, ZELKinStagingFolder& staging) const;
    void WriteProcedureFiles(const ZELKinProgram* program, const QString& stagingPath) const;
    static void WriteBundleHead(ZELKinNCStream& out, const QString& name, const TextWriter& programSet);
    void WriteSections(ZELKinNCStream& out, const ZELKinProgram* program) const;
    //! Lists the padded ply numbers on standard error and reads the one to
    //! write; -1, with the critical message, for a number not listed.
    qsizetype ChoosePly(const QStringList& numbers) const;
    void WriteChosenPly(const QString& name, const QString& number, const TextWriter& text) const;
    void FinishBundle(const QString& name) const;
    void FinishSinglePly(const QString& name) const;

    bool IsBundle() const;
    void WriteDirectory(ZELKinProgram* program) const;
    void WriteBundle(ZELKinProgram* program) const;
    void WriteSinglePly(ZELKinProgram* program) const;
    //! Replaces the section of ply `plyNumber` in the bundle by the lines
    //! of `plyFile`.
    void ReplaceBundleSection(const QString& plyNumber, const QString& plyFile) const;

    //! A file written at `writtenAt`, which messages and the line trace
    //! call `fileName`: the path it has once its folder is in place.
    struct OutputFile
    {
        QString fileName;
        QString writtenAt;
    };
    static OutputFile InPlace(const QString& fileName);

    //! Makes `directory` with all missing parents.
    static void MakeOutputDirectory(const QString& directory);
    //! Makes `directory` and its folder `name`; returns the folder's path.
    static QString MakePartFolder(const QString& directory, const QString& name);
    [[noreturn]] static void FailPartFolder(const QString& name, const QString& reason);
    //! Writes the file in full through `write`, then puts it in place.
    //! `failure` is the fatal message, "%1" standing for the file name.
    void WriteFile(const OutputFile& target, const QString& failure, const TextWriter& write) const;
    void PrintProgress(const ZELKinProcedure* procedure) const;

    TextWriter ProgramSetText(const ZELKinProgram* program) const;
    TextWriter ProgramSetText(const ZELKinAFPGCodeProgramSet::Contents& contents) const;
    TextWriter PlyText(const ZELKinRollLayupProcedure* procedure) const;
    TextWriter ProbingText(const ZELKinProbeProcedure* procedure) const;

    QString outputPath;
    double toolingRetract = 0.0;
    ZELKinAFPGCodeTowEvents::PinchSplitting splitting;
    QString plyToProcess;
    QDateTime now;
    ZELKinWriter::LineTrace lineTrace;
    ZELKinWriter::FileErrorMode fileErrorMode = ZELKinWriter::FileErrorEndsProcess;
    //! Set by the write itself, which changes nothing else of the writer.
    mutable bool chosenPlyMissing = false;
    //! The write's count of positions, while it runs.
    mutable ZELSysProgress* progress = nullptr;
    //! What writing one procedure at a time keeps between Begin and Finish.
    std::unique_ptr<Streaming> streaming;
};

#endif // ZELKINAFPGCODEWRITER_P_H
