#include "zelkinprogressdisplay.h"

#include "zelkinconsole.h"
#include "zelkinunits.h"

#include <QList>

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// A rate means something once the work has run this long.
constexpr double kShortestTimeForRate = 0.2; // s

QString Heading(const ZELSysProgress::Step& step)
{
    return step.item.isEmpty() ? step.phase : QStringLiteral("%1 (%2)").arg(step.phase, step.item);
}

} // namespace

class ZELKinProgressDisplay::Ticker
{
public:
    explicit Ticker(Mode mode)
        : m_mode(mode)
        , m_thread([this] { Run(); })
    {
    }

    ~Ticker()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_stopping = true;
        }
        m_wake.notify_all();
        m_thread.join();
        if (m_mode == Mode::Terminal)
            ZELKinConsole::ShowStatus(QString());
    }

    void WriteLine(const QString& line)
    {
        ZELKinConsole::Report(line);
        std::lock_guard<std::mutex> lock(m_mutex);
        m_lastLine = Clock::now();
    }

    void Update(const ZELSysProgress::Step& step)
    {
        QString ended;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            Running* running = Find(step.phase);
            if (!running && step.finished)
                return;
            if (!running) {
                m_running.append(Running{step, Clock::now()});
                return;
            }
            running->step = step;
            if (!step.finished)
                return;
            const double seconds = SecondsSince(running->start);
            if (!step.abandoned && seconds >= ShortestStretchTold)
                ended = DescribeEnd(step, seconds);
            m_running.removeIf([&step](const Running& r) { return r.step.phase == step.phase; });
        }
        if (!ended.isEmpty())
            WriteLine(ended);
    }

private:
    struct Running
    {
        ZELSysProgress::Step step;
        Clock::time_point start;
    };

    Running* Find(const QString& phase)
    {
        for (Running& running : m_running) {
            if (running.step.phase == phase)
                return &running;
        }
        return nullptr;
    }

    void Run()
    {
        const auto interval = std::chrono::duration<double>(TerminalInterval);
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_wake.wait_for(lock, interval, [this] { return m_stopping; })) {
            const bool due = m_mode == Mode::Terminal || SecondsSince(m_lastLine) >= LogInterval;
            if (!due)
                continue;
            // The stretch begun last is the one under way; those begun
            // before it wait for it.
            const QString status = m_running.isEmpty()
                ? QString()
                : DescribeStatus(m_running.last().step, SecondsSince(m_running.last().start));
            lock.unlock();
            Show(status);
            lock.lock();
        }
    }

    void Show(const QString& status)
    {
        if (m_mode == Mode::Terminal)
            ZELKinConsole::ShowStatus(status);
        else if (!status.isEmpty())
            WriteLine(status);
    }

    const Mode m_mode;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    QList<Running> m_running;
    Clock::time_point m_lastLine = Clock::now();
    // Last, so that it starts once everything it reads is there.
    std::thread m_thread;
};

ZELKinProgressDisplay::Mode ZELKinProgressDisplay::ChooseMode(bool quiet)
{
    if (quiet)
        return Mode::Quiet;
    return ::isatty(STDERR_FILENO) ? Mode::Terminal : Mode::Log;
}

ZELKinProgressDisplay::ZELKinProgressDisplay(Mode mode)
{
    if (mode == Mode::Quiet) {
        ZELSysProgress::SetLineHandler([](const QString&) {});
        return;
    }
    m_ticker = std::make_unique<Ticker>(mode);
    Ticker* ticker = m_ticker.get();
    ZELSysProgress::SetLineHandler([ticker](const QString& line) { ticker->WriteLine(line); });
    ZELSysProgress::SetStepHandler([ticker](const ZELSysProgress::Step& step) { ticker->Update(step); });
}

ZELKinProgressDisplay::~ZELKinProgressDisplay()
{
    ZELSysProgress::SetStepHandler(ZELSysProgress::StepHandler());
    ZELSysProgress::SetLineHandler(ZELSysProgress::LineHandler());
}

QString ZELKinProgressDisplay::DescribeStatus(const ZELSysProgress::Step& step, double seconds)
{
    if (step.done <= 0 && step.total <= 0)
        return QStringLiteral("%1: %2").arg(Heading(step), ZELKinUnits::Duration(seconds));
    QString text = Heading(step) + QStringLiteral(": ");
    if (step.total > 0) {
        const qint64 percent = std::min<qint64>(100, step.done * 100 / step.total);
        text += QStringLiteral("%1% (%2 of %3 %4)")
                    .arg(percent)
                    .arg(ZELKinUnits::Grouped(step.done), ZELKinUnits::Grouped(step.total), step.unit);
    } else {
        text += QStringLiteral("%1 %2").arg(ZELKinUnits::Grouped(step.done), step.unit);
    }
    if (step.done <= 0 || seconds < kShortestTimeForRate)
        return text;
    const double rate = double(step.done) / seconds;
    text += QStringLiteral(", %1 %2/s").arg(ZELKinUnits::Grouped(qRound64(rate)), step.unit);
    if (step.total > step.done)
        text += QStringLiteral(", %1 left").arg(ZELKinUnits::Duration(double(step.total - step.done) / rate));
    return text;
}

QString ZELKinProgressDisplay::DescribeEnd(const ZELSysProgress::Step& step, double seconds)
{
    if (step.done <= 0)
        return QStringLiteral("%1: done in %2").arg(step.phase, ZELKinUnits::Duration(seconds));
    QString text = QStringLiteral("%1: %2 %3 in %4")
                       .arg(step.phase, ZELKinUnits::Grouped(step.done), step.unit, ZELKinUnits::Duration(seconds));
    if (seconds >= kShortestTimeForRate)
        text
            += QStringLiteral(" (%1 %2/s)").arg(ZELKinUnits::Grouped(qRound64(double(step.done) / seconds)), step.unit);
    return text;
}
