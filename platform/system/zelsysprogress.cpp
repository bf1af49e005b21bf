#include "zelsysprogress.h"

#include "zelsysprogress_p.h"

#include <QIODevice>
#include <QMutexLocker>

#include <cstdio>
#include <exception>

namespace {

// The process's one pair of destinations. Handlers are copied out under the
// lock and called outside it, so that a handler may itself write a line.
struct Destinations
{
    QMutex mutex;
    ZELSysProgress::LineHandler lineHandler;
    ZELSysProgress::StepHandler stepHandler;
};

Destinations& TheDestinations()
{
    static Destinations destinations;
    return destinations;
}

ZELSysProgress::LineHandler CurrentLineHandler()
{
    Destinations& destinations = TheDestinations();
    QMutexLocker locker(&destinations.mutex);
    return destinations.lineHandler;
}

ZELSysProgress::StepHandler CurrentStepHandler()
{
    Destinations& destinations = TheDestinations();
    QMutexLocker locker(&destinations.mutex);
    return destinations.stepHandler;
}

void WriteToStandardOutput(const QString& line)
{
    std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stdout);
    std::fflush(stdout);
}

} // namespace

void ZELSysProgress::SetLineHandler(LineHandler handler)
{
    Destinations& destinations = TheDestinations();
    QMutexLocker locker(&destinations.mutex);
    destinations.lineHandler = std::move(handler);
}

void ZELSysProgress::SetLineDevice(QIODevice* device)
{
    if (!device) {
        SetLineHandler(LineHandler());
        return;
    }
    SetLineHandler([device](const QString& line) { device->write((line + QLatin1Char('\n')).toUtf8()); });
}

void ZELSysProgress::WriteLine(const QString& line)
{
    if (const LineHandler handler = CurrentLineHandler())
        handler(line);
    else
        WriteToStandardOutput(line);
}

void ZELSysProgress::SetStepHandler(StepHandler handler)
{
    Destinations& destinations = TheDestinations();
    QMutexLocker locker(&destinations.mutex);
    destinations.stepHandler = std::move(handler);
}

ZELSysProgressPrivate::ZELSysProgressPrivate(ZELSysProgress* q, const QString& phase, const QString& unit, qint64 total)
    : q_ptr(q)
    , phase(phase)
    , unit(unit)
    , total(total)
    , uncaughtExceptions(std::uncaught_exceptions())
{
}

void ZELSysProgressPrivate::Report(qint64 done, bool finished, bool abandoned) const
{
    const ZELSysProgress::StepHandler handler = CurrentStepHandler();
    if (!handler)
        return;
    ZELSysProgress::Step step;
    step.phase = phase;
    step.unit = unit;
    {
        QMutexLocker locker(&itemMutex);
        step.item = item;
    }
    step.done = done;
    step.total = total;
    step.finished = finished;
    step.abandoned = abandoned;
    handler(step);
}

ZELSysProgress::ZELSysProgress(ZELSysProgressPrivate* d)
    : d_ptr(d)
{
    d->Report(0, false);
}

ZELSysProgress::ZELSysProgress(const QString& phase, const QString& unit, qint64 total)
    : ZELSysProgress(new ZELSysProgressPrivate(this, phase, unit, total))
{
}

ZELSysProgress::~ZELSysProgress()
{
    Q_D(const ZELSysProgress);
    d->Report(d->done.load(std::memory_order_relaxed), true, std::uncaught_exceptions() > d->uncaughtExceptions);
}

void ZELSysProgress::SetItem(const QString& item)
{
    Q_D(ZELSysProgress);
    {
        QMutexLocker locker(&d->itemMutex);
        d->item = item;
    }
    d->Report(d->done.load(std::memory_order_relaxed), false);
}

void ZELSysProgress::Advance(qint64 units)
{
    Q_D(ZELSysProgress);
    const qint64 done = d->done.fetch_add(units, std::memory_order_relaxed) + units;
    d->Report(done, false);
}
