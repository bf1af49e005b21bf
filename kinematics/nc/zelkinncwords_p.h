#ifndef ZELKINNCWORDS_P_H
#define ZELKINNCWORDS_P_H

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

/*!
    The scanners that take a posted NC line apart as a controller reads it.
    Each reads a line once from its start to its end, whatever it holds: a
    line of millions of words reads in time in proportion to it.
*/
namespace ZELKinNCWords {

//! Views into the line the word was read from.
struct Word
{
    QStringView name;
    //! Empty for a word without a number.
    QStringView number;
};

//! The end of the number that starts at `at`, or `at` when none does. A
//! number as a controller reads it: a sign, digits with an optional point
//! and more digits (or a point and digits), and an exponent with its own
//! sign.
qsizetype NumberEnd(QStringView text, qsizetype at);

//! The value of `number`, a number as NumberEnd reads it, to the nearest
//! double; what QString::toDouble makes of any other text.
double NumberValue(QStringView number);

//! The words of `code`: an address (capital letters and underscores, with
//! one digit when "=" follows it), then an optional "=", "(" and double
//! quote, then its value: a number, read whole, or a text up to the next
//! double quote, with no carriage return or line feed in it. Anything else
//! between words is skipped.
QList<Word> WordsOf(QStringView code);

//! "G92(U,0.0000)", anywhere on the line: the first preset's axis and
//! number.
struct PresetText
{
    QStringView axis;
    QStringView number;
};
std::optional<PresetText> FindPreset(QStringView line);

//! ";PMAC1: G500U117.703A/B[FFFF]": material, event code and tows, as text.
struct TowEventText
{
    QStringView u;
    QStringView code;
    QStringView tows;
};
std::optional<TowEventText> ParseTowEvent(QStringView line);

//! The post writes plain decimals only; a controller reads "2e+05" as
//! 200000 where a person, or a reader that stops at the "e", sees 2.
bool IsInExponentNotation(QStringView number);

} // namespace ZELKinNCWords

#endif // ZELKINNCWORDS_P_H
