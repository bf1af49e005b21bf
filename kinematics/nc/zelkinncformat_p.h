#ifndef ZELKINNCFORMAT_P_H
#define ZELKINNCFORMAT_P_H

#include "zelkinematics_export.h"

#include <QtMath>

/*!
    The number formats of NC text, in one place, so that the writers format
    every number the same way.

    Both write plain decimal notation, never an exponent, which a
    controller would read as a word of its own:

    - fixed: exactly the decimals asked (`-12.3457`, `0.0001`), however
      large the value;
    - six significant digits: the digits that QString::number writes in its
      'g' format (and a QTextStream at its defaults), written out in plain
      notation, trailing zeros and a trailing point dropped (`100`, `0.5`,
      `1234570`, `0.0000433071`).

    The digits are those of the exact decimal value of the double, rounded
    at the last digit written with a tie (an exact half, which only a binary
    fraction of few bits can be) rounded away from zero, as Qt rounds. A
    value below zero keeps its minus sign also when it rounds to zero
    ("-0.0000"); minus zero has none. A NaN is written "nan", infinities
    "inf" and "-inf" (ZELKinNCStream lets none of them reach a file). The
    texts do not depend on the locale.

    The functions put the text into a caller's buffer of at least
    BufferSize chars, allocate nothing and throw nothing.

    Model lengths are in mm and angles in rad; NC text is written in inches
    and degrees.
*/
class ZELKINEMATICS_EXPORT ZELKinNCFormat
{
public:
    ZELKinNCFormat() = delete;

    static constexpr double MillimetresPerInch = 25.4;

    //! The most decimals that the fixed notation writes.
    static constexpr int MaximumDecimals = 17;
    //! Room for the longest text: the 309 integer digits of the largest
    //! double, a sign, a point, the decimals and the digits that rounding
    //! a tie needs on the way; or the 323 zeros after the point before the
    //! six digits of the smallest double.
    static constexpr int BufferSize = 344;

    //! Writes `value` in plain decimal notation with exactly `decimals`
    //! digits after the point (none and no point for 0) into `buffer` as
    //! ASCII; returns the number of chars written. `decimals` from 0 to
    //! MaximumDecimals.
    static int WriteFixed(char* buffer, double value, int decimals);
    //! Writes `value` with six significant digits in plain decimal notation
    //! into `buffer` as ASCII; returns the number of chars written.
    static int WriteGeneral(char* buffer, double value);

    static double ToInches(double millimetres) { return millimetres / MillimetresPerInch; }
    static double ToDegrees(double radians) { return qRadiansToDegrees(radians); }
};

#endif // ZELKINNCFORMAT_P_H
