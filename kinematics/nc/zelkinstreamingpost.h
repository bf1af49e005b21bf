#ifndef ZELKINSTREAMINGPOST_H
#define ZELKINSTREAMINGPOST_H

#include "zelkinematics_export.h"
#include "zelkinprogramcheck.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QHash>
#include <QString>

#include <functional>
#include <memory>

class ZELGeoContainer;
class ZELKinAFPMachine;
class ZELKinStreamingPostPrivate;
class ZELKinWriter;
class ZELTPProcedure;
class ZELTPProgramStream;

/*!
    Posts a toolpath one procedure at a time, so that the memory a post
    takes is bounded by its largest procedures rather than by the whole
    program: each procedure is read (ZELTPProgramStream), translated,
    solved and checked (ZELKinTranslator, ZELKinProgramCheck) in a
    container of its own, written (ZELKinWriter's Begin, Add and Finish),
    and released before the next but a few is read.

    Up to SetThreadCount procedures are held at once: the others are read,
    translated and solved on threads of their own while one is written.
    The files and the findings are those of the whole program translated,
    checked and written at once. The progress lines are too, but for their
    order: the phase lines come once, before the first procedure's, and
    each procedure's solving lines, held until its turn, come right before
    its "  Writing" line.

    The machine is built for each procedure, in its container, by the
    loader given: the machine's own solver must be safe to call from
    several threads, as ZELKinRBRSolver is. Lengths in mm, angles in rad.
*/
class ZELKINEMATICS_EXPORT ZELKinStreamingPost
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinStreamingPost)

public:
    //! Builds the machine in `container` and returns it (owned by the
    //! container); throws what loading throws. Called once for the
    //! program's identification and once per procedure, on any thread.
    using MachineLoader = std::function<ZELKinAFPMachine*(ZELGeoContainer* container)>;
    //! Told each toolpath procedure, on the calling thread, in program
    //! order, before it is written: `index` is its place in the document.
    using ProcedureInspection = std::function<void(int index, const ZELTPProcedure* procedure)>;

    //! `toolpath` (not owned, opened) must outlive the post.
    ZELKinStreamingPost(MachineLoader loader, const ZELTPProgramStream* toolpath);
    virtual ~ZELKinStreamingPost();

    //! The date and time the programs are stamped with (ZELKinTranslator);
    //! the current time while null.
    void SetCurrentDateTime(const QDateTime& now);
    //! How many procedures are held at once; 1 (the default, and what
    //! anything less is taken as) does everything on the calling thread.
    void SetThreadCount(int count);
    //! When the check finds problems: false (the default) writes nothing
    //! more and puts nothing in place; true writes the procedures without
    //! problems and puts them in place, as a whole-program post that took
    //! the others out would.
    void SetKeepGoing(bool keepGoing);
    void SetProcedureInspection(ProcedureInspection inspection);

    /*!
        Posts the toolpath through `writer` to `path` in `format` with
        `options` (as ZELKinWriter::Write takes them) and returns what the
        check found, gathered as ZELKinProgramCheck::Check gathers them for
        the whole program. Throws what reading, loading, translating and
        writing throw; nothing is then put in place.
    */
    ZELKinProgramCheck::Findings Post(ZELKinWriter& writer, const QString& path, const QString& format,
                                      const QString& options);

    //! After Post: the positions of each roll layup procedure written, by
    //! its toolpath procedure's name.
    QHash<QString, qint64> GetPositionsByProcedure() const;

protected:
    explicit ZELKinStreamingPost(ZELKinStreamingPostPrivate* d);

    std::unique_ptr<ZELKinStreamingPostPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinStreamingPost)
    Q_DISABLE_COPY_MOVE(ZELKinStreamingPost)
};

#endif // ZELKINSTREAMINGPOST_H
