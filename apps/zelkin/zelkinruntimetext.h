#ifndef ZELKINRUNTIMETEXT_H
#define ZELKINRUNTIMETEXT_H

#include <QString>

struct ZELKinRunTime;

/*!
    An estimated run time (ZELKinRunTimeEstimator) as zelkin shows it. A
    time that leaves out lines the estimate cannot time is only a bound, and
    says so: ">= 0:02:11.9".
*/
namespace ZELKinRunTimeText {

//! "1:02:05.5": hours, minutes, and seconds to a tenth.
QString Clock(const ZELKinRunTime& runTime);

} // namespace ZELKinRunTimeText

#endif // ZELKINRUNTIMETEXT_H
