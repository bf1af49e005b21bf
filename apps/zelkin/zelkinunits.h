#ifndef ZELKINUNITS_H
#define ZELKINUNITS_H

#include <QString>
#include <QtGlobal>

/*!
    Counts, times and sizes as zelkin shows them to people. Nothing here
    throws.
*/
namespace ZELKinUnits {

//! `count` with a blank between groups of three digits: "1 013 413".
QString Grouped(qint64 count);
//! "4.2 s" below ten seconds, "42 s" below a minute, then "3:07" (minutes
//! and seconds) and "1:02:07" (hours, minutes, seconds); "-" for a time that
//! is not a finite, non-negative number.
QString Duration(double seconds);
//! "812 B", then in decimal units with one decimal: "3.4 kB", "12.3 MB",
//! "1.2 GB".
QString Size(qint64 bytes);

} // namespace ZELKinUnits

#endif // ZELKINUNITS_H
