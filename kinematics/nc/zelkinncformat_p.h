#ifndef ZELKINNCFORMAT_P_H
#define ZELKINNCFORMAT_P_H

#include "zelkinematics_export.h"

#include <QString>

/*!
    The number formats of NC text, in one place, so that the writers format
    every number the same way.

    The texts are those of QString::number (and of QTextStream, which
    writes doubles the same way): the exact decimal value of the double,
    rounded at the last digit written with a tie (an exact half, which only
    a binary fraction of few bits can be) rounded away from zero; "nan" for
    every NaN, "inf" and "-inf"; a minus sign for every value below zero,
    also one that rounds to zero ("-0.0000"), and none for minus zero. They
    do not depend on the locale.

    The Write functions put the text into a caller's buffer of at least
    BufferSize chars and allocate nothing; the QString functions give the
    same text as a string.

    Model lengths are in mm and angles in rad; NC text is written in inches
    and degrees.
*/
class ZELKINEMATICS_EXPORT ZELKinNCFormat
{
public:
    ZELKinNCFormat() = delete;

    static constexpr double MillimetresPerInch = 25.4;
    static constexpr double DegreesPerRadian = 57.29577951308232;

    //! The most decimals that the fixed notation writes.
    static constexpr int MaximumDecimals = 17;
    //! Room for the longest text: the 309 integer digits of the largest
    //! double, a sign, a point, the decimals and the digits that rounding
    //! a tie needs on the way.
    static constexpr int BufferSize = 344;

    //! Plain decimal notation with exactly `decimals` digits after the point
    //! (none and no point for 0). `decimals` from 0 to MaximumDecimals.
    static QString Fixed(double value, int decimals);
    //! What QTextStream writes for a double when left at its defaults: the
    //! shorter of plain and exponent notation with at most six significant
    //! digits, trailing zeros dropped (100, 0.5, 1.23457e+06, 4.33e-05).
    static QString General(double value);

    //! Writes Fixed(value, decimals) into `buffer` as ASCII; returns the
    //! number of chars written. Throws nothing.
    static int WriteFixed(char* buffer, double value, int decimals);
    //! Writes General(value) into `buffer` as ASCII; returns the number of
    //! chars written. Throws nothing.
    static int WriteGeneral(char* buffer, double value);

    static double ToInches(double millimetres) { return millimetres / MillimetresPerInch; }
    static double ToDegrees(double radians) { return radians * DegreesPerRadian; }
};

#endif // ZELKINNCFORMAT_P_H
