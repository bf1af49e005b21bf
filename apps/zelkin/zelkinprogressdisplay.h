#ifndef ZELKINPROGRESSDISPLAY_H
#define ZELKINPROGRESSDISPLAY_H

#include <zelsysprogress.h>

#include <QString>

#include <memory>

/*!
    What a command shows on stderr while it works, for as long as the
    display lives: the libraries' progress lines ("Solving kinematics",
    "  Processing Ply 1") and where the work stands.

    On a terminal one status line at the foot is redrawn a few times a
    second: phase, what is worked on, percentage, count, rate and time left.
    Elsewhere (a log file, a pipe) the same text is a line of its own once
    LogInterval seconds have passed without a line. Each stretch of work
    that took a second or more leaves one line when it is done: how much it
    did, in how long, how fast. Quiet shows nothing at all,
    the libraries' lines included. Standard output is left to results.
*/
class ZELKinProgressDisplay
{
public:
    enum class Mode { Quiet, Terminal, Log };

    //! The option that turns the display off, "--quiet", for the commands
    //! that show it.
    static inline const QString QuietOption = QStringLiteral("quiet");

    //! Seconds between two status lines in a log, so that a log is neither
    //! silent for long nor flooded.
    static constexpr double LogInterval = 1.5;
    //! Seconds between two redraws of a terminal's status line.
    static constexpr double TerminalInterval = 0.1;
    //! A stretch of work that ends sooner, or by an error, leaves no line.
    static constexpr double ShortestStretchTold = 1.0;

    //! Quiet when `quiet`, else Terminal when stderr is a terminal, else Log.
    static Mode ChooseMode(bool quiet);

    //! Takes the libraries' progress lines and counts from now on.
    explicit ZELKinProgressDisplay(Mode mode);
    //! Gives them back to the libraries' defaults.
    ~ZELKinProgressDisplay();

    //! The status of `step`, `seconds` after its stretch began: "Solving
    //! kinematics (Ply 3): 45% (456 000 of 1 013 413 positions),
    //! 812 000 positions/s, 1 s left"; without a total, "Reading the
    //! toolpath: 2.3 s".
    static QString DescribeStatus(const ZELSysProgress::Step& step, double seconds);
    //! What an ended stretch did: "Solving kinematics: 1 013 413 positions
    //! in 1.2 s (844 511 positions/s)".
    static QString DescribeEnd(const ZELSysProgress::Step& step, double seconds);

private:
    class Ticker;
    std::unique_ptr<Ticker> m_ticker;
};

#endif // ZELKINPROGRESSDISPLAY_H
