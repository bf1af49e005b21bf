#ifndef ZELKINSTREAMINGPOSTJOB_H
#define ZELKINSTREAMINGPOSTJOB_H

#include <zelgeocontainer.h>
#include <zelkinprogramcheck.h>
#include <zeltpprogramstream.h>

#include <QDateTime>
#include <QHash>
#include <QString>

class ZELKinAFPMachine;
class ZELKinWriter;

/*!
    What "post" does with a toolpath file: one procedure at a time
    (ZELKinStreamingPost), so that its memory is bounded by the largest
    procedures it holds, not by the whole toolpath. The files and messages
    are those of ZELKinTranslationJob and ZELKinWriter::Write.

    As many procedures are held at once as there are cores, and fewer when
    the machine's memory would not hold that many of the largest one: about
    ZELKinTranslationJob::MemoryPerToolpathByte bytes for each byte of its
    text. A toolpath whose largest procedure alone needs more is refused
    before any procedure is read.
*/
class ZELKinStreamingPostJob
{
public:
    struct Input
    {
        QString machinePath;
        QString toolpathPath;
        bool keepGoing = false;
    };

    //! Whether the post can read both inputs more than once: regular files,
    //! not pipes.
    static bool CanStream(const QString& machinePath, const QString& toolpathPath);

    //! Loads the machine and opens the toolpath. Throws ZELSysException
    //! (and its kin) for inputs that cannot be read, and the refusal of
    //! ZELKinPostMemory::ChooseProceduresInFlight.
    explicit ZELKinStreamingPostJob(const Input& input);

    QString GetName() const { return m_toolpath.GetName(); }
    QString GetRevision() const { return m_toolpath.GetRevision(); }
    ZELKinAFPMachine* GetMachine() const { return m_machine; }
    //! How many procedures the post holds at once.
    int GetProceduresInFlight() const { return m_inFlight; }

    //! Translates, solves, checks and writes every procedure through
    //! `writer`. Throws ZELKinUndeliverable, naming the first problem and
    //! their count, when the check found any, unless keepGoing; the files
    //! of the procedures without problems are then in place, and
    //! ThrowIfIncomplete throws after them.
    void Post(ZELKinWriter& writer, const QDateTime& now, const QString& path, const QString& format,
              const QString& options);
    void ThrowIfIncomplete() const;
    //! The positions of each roll layup procedure written, by its toolpath
    //! procedure's name.
    const QHash<QString, qint64>& GetPositionsByProcedure() const { return m_positions; }

private:
    const Input m_input;
    ZELGeoContainer m_container;
    ZELKinAFPMachine* m_machine = nullptr;
    ZELTPProgramStream m_toolpath;
    int m_inFlight = 1;
    ZELKinProgramCheck::Findings m_findings;
    QHash<QString, qint64> m_positions;
};

#endif // ZELKINSTREAMINGPOSTJOB_H
