#ifndef ZELKINAFPGCODEAXISWORDS_P_H
#define ZELKINAFPGCODEAXISWORDS_P_H

#include <QList>
#include <QString>
#include <QStringList>
#include <QVarLengthArray>

#include <optional>

class ZELKinAFPMachine;
class ZELKinNCStream;
class ZELKinPosition;
class ZELKinRollLayupProcedure;
class ZELKinVariable;

/*!
    The words of one motion line of a ply file: the axis values of a
    position, its feed and, for a roll layup position, the head record in
    braces; and the test of whether a position repeats another.

    An axis word is the variable's label, "=" when the label is longer than
    one character, and the value with four decimals: linear axes in inches,
    rotary axes in degrees, and the material (U) axis unscaled, in mm of
    material. Words are modal: given the previously written position, a
    value within 0.001 (model units) of the previous one is left out, and so
    is a feed within 0.001 of the previous position's.
*/
class ZELKinAFPGCodeAxisWords
{
public:
    //! The machine gives the axes, their order and the material axis; the
    //! procedure the add and cut feedrates.
    ZELKinAFPGCodeAxisWords(const ZELKinAFPMachine* machine, const ZELKinRollLayupProcedure* procedure);

    /*!
        Writes the axis words of `position` (none for a null position),
        modal against `previous` when that is given, leaving out the axes
        labelled in `excluded`, then "F" and the feed in inches per minute
        (in the stream's default number format), then for a roll layup
        position the record ";{P..Q..M..<tow codes>}". The feed is the
        position's "actualFeedrate" when set, else its feedrate, limited by
        the add feedrate when `towCodes` begins with "T" and by the cut
        feedrate when it holds other codes; the previous feed is the
        previous position's "actualFeedrate" or feedrate. The record is left
        out when the position has no Q angle and there are no tow codes; an
        angle that is NaN is left out of it.
    */
    void Write(ZELKinNCStream& out, const ZELKinPosition* position, const ZELKinPosition* previous = nullptr,
               const QStringList& excluded = QStringList(), const QString& towCodes = QString()) const;

    //! The values of the machine's axes at a position, in the machine's
    //! order; NaN where the position defines none.
    using AxisValues = QVarLengthArray<double, 8>;

    //! The values of `position`'s axes, for a writer that compares and
    //! writes a position more than once; all NaN for a null position.
    AxisValues ValuesOf(const ZELKinPosition* position) const;

    /*!
        The same words, modal against the previously written position, for
        a writer that already knows the values and the feeds: `values` are
        those of `position` and `previousValues` those of the previous
        position; `feed` is the one of `position`, limited as its tow codes
        ask, and `previousFeed` the one of the previous position.
    */
    void WriteModal(ZELKinNCStream& out, const ZELKinPosition* position, const AxisValues& values,
                    const AxisValues& previousValues, double feed, double previousFeed,
                    const QString& towCodes) const;

    //! Whether `a` and `b` define the same axes, each within 0.001; false
    //! when either is null.
    bool IsSamePosition(const ZELKinPosition* a, const ZELKinPosition* b) const;
    //! Whether two positions of these values define the same axes, each
    //! within 0.001.
    static bool IsSamePosition(const AxisValues& a, const AxisValues& b);

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
    };

    //! The axis words of `values`, modal against `previous` when given.
    void WriteAxes(ZELKinNCStream& out, const AxisValues& values, const AxisValues* previous,
                   const QStringList& excluded) const;
    //! "F" and `feed` in inches per minute, unless there is a previous
    //! feed and `feed` lies within the tolerance of it.
    static void WriteFeed(ZELKinNCStream& out, double feed, std::optional<double> previousFeed);
    static void WriteHeadRecord(ZELKinNCStream& out, const ZELKinPosition* position, const QString& towCodes);

    QList<Axis> axes;
    double addFeedrate;
    double cutFeedrate;
};

#endif // ZELKINAFPGCODEAXISWORDS_P_H
