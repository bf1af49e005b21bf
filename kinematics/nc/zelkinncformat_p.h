#ifndef ZELKINNCFORMAT_P_H
#define ZELKINNCFORMAT_P_H

#include "zelkinematics_export.h"

#include <QString>

/*!
    The number formats of NC text, in one place, so that the writers format
    every number the same way and a faster formatting can replace this one
    without touching them.

    Model lengths are in mm and angles in rad; NC text is written in inches
    and degrees.
*/
class ZELKINEMATICS_EXPORT ZELKinNCFormat
{
public:
    ZELKinNCFormat() = delete;

    static constexpr double MillimetresPerInch = 25.4;
    static constexpr double DegreesPerRadian = 57.29577951308232;

    //! Plain decimal notation with exactly `decimals` digits after the point
    //! ("nan" and "inf" as they are).
    static QString Fixed(double value, int decimals);
    //! What QTextStream writes for a double when left at its defaults: the
    //! shorter of plain and exponent notation with at most six significant
    //! digits, trailing zeros dropped (100, 0.5, 1.23457e+06).
    static QString General(double value);

    static double ToInches(double millimetres) { return millimetres / MillimetresPerInch; }
    static double ToDegrees(double radians) { return radians * DegreesPerRadian; }
};

#endif // ZELKINNCFORMAT_P_H
