#ifndef ZELKINCLOCK_H
#define ZELKINCLOCK_H

#include <QDateTime>

/*!
    The time that zelkin stamps into what it writes (program dates, NC file
    headers). Reproducible builds set SOURCE_DATE_EPOCH, and then the same
    inputs give the same bytes.
*/
namespace ZELKinClock {

//! SOURCE_DATE_EPOCH (seconds since 1970-01-01 UTC) as a UTC date and time
//! when it is set, else the current local date and time. Throws
//! ZELSysException "SOURCE_DATE_EPOCH is not a number of seconds: '<value>'"
//! when it is set to anything but a whole number.
QDateTime Now();

} // namespace ZELKinClock

#endif // ZELKINCLOCK_H
