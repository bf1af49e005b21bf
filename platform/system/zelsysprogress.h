#ifndef ZELSYSPROGRESS_H
#define ZELSYSPROGRESS_H

#include "zelsystem_export.h"

#include <QString>
#include <QtGlobal>

#include <functional>
#include <memory>

class QIODevice;
class ZELSysProgressPrivate;

/*!
    Where the ZELKinematics libraries tell how their work goes, for the
    whole process: progress lines for people ("Solving kinematics",
    "  Processing Ply 1", "  Writing Ply 1"), and counts of long stretches of
    work (positions solved, lines written) for a host that shows a
    percentage.

    Lines go to standard output unless the host chooses otherwise, a
    handler or a device; counts go nowhere unless the host sets a step
    handler. Set both before the libraries start working: they are read by
    every thread that reports, and changing them while work runs is safe but
    a line may still reach the old destination.

    An object of this class is one stretch of work, from its construction to
    its destruction: a phase ("Solving"), its unit ("positions") and how
    many units it takes. Advance() may be called from several threads at
    once; callers advance in chunks (a course, a few thousand positions), not
    unit by unit, since every call reaches the step handler. Nothing here
    throws; a handler must not throw either, since the end of a stretch is
    told from a destructor, perhaps while an exception unwinds the stack.
*/
class ZELSYSTEM_EXPORT ZELSysProgress
{
public:
    //! Told each line without its line end, from the thread that writes it.
    using LineHandler = std::function<void(const QString& line)>;

    //! Where one stretch of work stands.
    struct Step
    {
        QString phase;
        //! What `done` and `total` count ("positions", "lines", "courses").
        QString unit;
        //! What is being worked on, when the work tells ("Ply 3"); may be empty.
        QString item;
        qint64 done = 0;
        //! 0 when the work does not know its size beforehand.
        qint64 total = 0;
        //! The stretch has ended: its object is gone.
        bool finished = false;
        //! It ended by an exception, before its work was done.
        bool abandoned = false;
    };
    //! Told of every start, advance and end, from the thread that advances.
    using StepHandler = std::function<void(const Step& step)>;

    //! Progress lines go to `handler` from now on; an empty one restores
    //! standard output.
    static void SetLineHandler(LineHandler handler);
    //! Progress lines go to `device` as UTF-8 text, each with a "\n", from
    //! now on; null restores standard output. The device is not owned and
    //! must stay open while the libraries work.
    static void SetLineDevice(QIODevice* device);
    //! Writes `line` and a line end where progress lines go.
    static void WriteLine(const QString& line);

    //! Counts go to `handler` from now on; an empty one stops them.
    static void SetStepHandler(StepHandler handler);

    //! Starts a stretch of `total` units of `unit` in `phase` and tells the
    //! step handler.
    ZELSysProgress(const QString& phase, const QString& unit, qint64 total);
    //! Ends the stretch and tells the step handler.
    virtual ~ZELSysProgress();

    //! Names what is being worked on from now on.
    void SetItem(const QString& item);
    //! Counts `units` more done. Thread-safe.
    void Advance(qint64 units);

protected:
    ZELSysProgress(ZELSysProgressPrivate* d);

    std::unique_ptr<ZELSysProgressPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELSysProgress)
    Q_DISABLE_COPY_MOVE(ZELSysProgress)
};

#endif // ZELSYSPROGRESS_H
