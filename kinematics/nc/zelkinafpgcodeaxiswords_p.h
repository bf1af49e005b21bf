#ifndef ZELKINAFPGCODEAXISWORDS_P_H
#define ZELKINAFPGCODEAXISWORDS_P_H

#include <QList>
#include <QString>
#include <QStringList>

class ZELKinAFPMachine;
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
        The axis words of `position` (none for a null position), modal
        against `previous` when that is given, leaving out the axes
        labelled in `excluded`, then "F" and the feed in inches per minute
        (in the stream's default number format), then for a roll layup
        position the record ";{P..Q..M..<tow codes>}". The feed is the
        position's "actualFeedrate" when set, else its feedrate, limited by
        the add feedrate when `towCodes` begins with "T" and by the cut
        feedrate when it holds other codes. The record is left out when the
        position has no Q angle and there are no tow codes; an angle that
        is NaN is left out of it.
    */
    QString Words(const ZELKinPosition* position, const ZELKinPosition* previous = nullptr,
                  const QStringList& excluded = QStringList(), const QString& towCodes = QString()) const;

    //! Whether `a` and `b` define the same axes, each within 0.001; false
    //! when either is null.
    bool IsSamePosition(const ZELKinPosition* a, const ZELKinPosition* b) const;

    //! `feed` limited to the add feedrate when `afterAdd` and to the cut
    //! feedrate when `afterCut`. A NaN feedrate sets no limit, so a
    //! procedure loaded without its feedrates keeps its positions' feeds.
    double LimitFeed(double feed, bool afterAdd, bool afterCut) const;

    //! The position's "actualFeedrate" when it has one, else its feedrate.
    static double EffectiveFeed(const ZELKinPosition* position);
    //! Keeps `feed` as the position's "actualFeedrate".
    static void SetActualFeed(ZELKinPosition* position, double feed);

private:
    QString AxisWord(const ZELKinVariable* variable, double value) const;
    QString FeedWord(const ZELKinPosition* position, const ZELKinPosition* previous, const QString& towCodes) const;
    static QString HeadRecord(const ZELKinPosition* position, const QString& towCodes);

    QList<ZELKinVariable*> variables;
    const ZELKinVariable* materialVariable;
    double addFeedrate;
    double cutFeedrate;
};

#endif // ZELKINAFPGCODEAXISWORDS_P_H
