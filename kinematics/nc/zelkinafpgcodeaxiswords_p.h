#ifndef ZELKINAFPGCODEAXISWORDS_P_H
#define ZELKINAFPGCODEAXISWORDS_P_H

#include <QList>
#include <QString>
#include <QStringList>
#include <QVarLengthArray>

class ZELKinAFPMachine;
class ZELKinNCStream;
class ZELKinPosition;
class ZELKinRollLayupProcedure;
class ZELKinVariable;

/*!
    The words of one motion line of a ply file: the axis values of a
    position, its feed and, for a roll layup position, the head record in
    braces; and what the controller holds once they are written.

    An axis word is the variable's label, "=" when the label is longer than
    one character, and the value with four decimals: linear axes in inches,
    rotary axes in degrees, and the material (U) axis unscaled, in mm of
    material. The feed word is "F" and the feed in inches per minute.

    Words are modal as the controller is: it keeps the last value written
    for each word until another is written. A word is left out of a line
    only when its value lies within 0.001 (mm, rad, mm/min) of the value
    the controller holds for it; measured against the last value written,
    not against the position before, a value that creeps by less than that
    from line to line is still written as soon as it has gone 0.001 from
    what the controller holds.

    A rotary word left out lags, and the line that writes it again turns
    the axis by the whole lag. On short lines that step would turn the axis,
    and move the slides that carry the tool tip round it, faster than they
    can go at the line's feed: a rotary word is therefore also written once
    its lag, turned within the line's time, would take a share of the axis's
    speed or of the slowest slide's (the slides' speed reached through the
    solver's tip reach, GetTipReach). Each rotary axis has 1 / (2 n) of each
    speed, n the number of rotary axes, so that all of them catching up in
    one line use half of it at most. The lag is turned by the next line that
    moves, so the share is taken within the shorter of this line's time and
    that one's: a long line followed by a very short one (a point split at a
    tow event) does not leave the short one a lag it cannot turn in time. On
    lines of common length the 0.001 decides alone.
*/
class ZELKinAFPGCodeAxisWords
{
public:
    //! The machine gives the axes, their order and the material axis; the
    //! procedure the add and cut feedrates.
    ZELKinAFPGCodeAxisWords(const ZELKinAFPMachine* machine, const ZELKinRollLayupProcedure* procedure);

    //! The values of the machine's axes at a position, in the machine's
    //! order; NaN where the position defines none.
    using AxisValues = QVarLengthArray<double, 8>;

    //! The value the controller holds for each axis word, in the machine's
    //! order, and for the feed word, in model units (mm, rad, mm/min); NaN
    //! where no value is known to be held.
    struct Held
    {
        AxisValues axes;
        double feed;
    };

    //! A controller of which nothing is known.
    Held NothingHeld() const;
    //! The controller holds `value` for the axis labelled `label` (a preset
    //! such as "G92(U,0.0000)"); nothing changes when there is no such axis.
    void Preset(Held& held, const QString& label, double value) const;

    /*!
        Writes every axis word of `position` but those labelled in
        `excluded`, then "F" and its feed, then its head record, whatever
        the controller holds: for a line that runs only on some ways into a
        course and so tells nothing of what the controller holds after it.
        The feed is the position's "actualFeedrate" when set, else its
        feedrate. The head record is ";{P..Q..M..}" for a roll layup
        position with a Q angle; an angle that is NaN is left out of it.
    */
    void WriteAll(ZELKinNCStream& out, const ZELKinPosition* position,
                  const QStringList& excluded = QStringList()) const;

    /*!
        Writes the words of `position` that `held` does not hold, its feed
        as for WriteAll, then its head record; `held` then holds what was
        written. `followingSeconds` is the time (s) of the next line that
        moves, which turns whatever rotary lag this one leaves; NaN when no
        such line is known, which leaves the lag to this line's own time.
    */
    void WriteModal(ZELKinNCStream& out, const ZELKinPosition* position, Held& held, double followingSeconds) const;
    /*!
        The same for a line along a course, for a writer that already knows
        the position's `values` and its `feed` (limited as its tow codes
        ask, see LimitFeed). The head record carries `towCodes`, and is
        written for them also when the position has no Q angle.
    */
    void WriteModal(ZELKinNCStream& out, const ZELKinPosition* position, const AxisValues& values, double feed,
                    Held& held, const QString& towCodes, double followingSeconds) const;

    //! The time (s) a line from `from` to `to` takes at `feed` (mm/min),
    //! along the linear axes but the material axis; NaN where it is not
    //! known.
    double StepSeconds(const AxisValues& from, const AxisValues& to, double feed) const;

    //! The values of `position`'s axes, for a writer that compares and
    //! writes a position more than once; all NaN for a null position.
    AxisValues ValuesOf(const ZELKinPosition* position) const;

    //! Whether every axis word of `values` would be left out: each defined
    //! axis lies within 0.001 of the value held.
    static bool HoldsAxes(const Held& held, const AxisValues& values);
    //! Whether every word of a line of `values` and `feed` would be left
    //! out, which makes the line a repeat.
    static bool HoldsAll(const Held& held, const AxisValues& values, double feed);

    //! `feed` limited to the add feedrate when `afterAdd` and to the cut
    //! feedrate when `afterCut`. A NaN feedrate sets no limit, so a
    //! procedure loaded without its feedrates keeps its positions' feeds.
    double LimitFeed(double feed, bool afterAdd, bool afterCut) const;

    //! The position's "actualFeedrate" when it has one, else its feedrate.
    static double EffectiveFeed(const ZELKinPosition* position);
    //! Keeps `feed` as the position's "actualFeedrate".
    static void SetActualFeed(ZELKinPosition* position, double feed);

private:
    //! How an axis value becomes the number written.
    enum class Scale { Inches, Degrees, Unscaled };

    //! An axis in the machine's order, with what its words begin with.
    struct Axis
    {
        const ZELKinVariable* variable;
        QString label;
        //! The label, and "=" after a label of more than one character.
        QString prefix;
        Scale scale;
        //! How fast a rotary word's lag may be caught up in one line (rad/s);
        //! infinite where nothing limits it.
        double catchUpRate;
    };

    //! How far a word of axis `index` may lie from the value held and still
    //! be left out of a line of `seconds`.
    double Allowance(qsizetype index, double seconds) const;
    void WriteAxis(ZELKinNCStream& out, const Axis& axis, double value) const;
    static void WriteHeadRecord(ZELKinNCStream& out, const ZELKinPosition* position, const QString& towCodes);

    QList<Axis> axes;
    //! Each axis' variable, in the same order, to read a position's values
    //! in one walk.
    QVarLengthArray<const ZELKinVariable*, 8> axisVariables;
    double addFeedrate;
    double cutFeedrate;
};

#endif // ZELKINAFPGCODEAXISWORDS_P_H
