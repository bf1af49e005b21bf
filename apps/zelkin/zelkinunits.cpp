#include "zelkinunits.h"

#include <cmath>
#include <cstdlib>

QString ZELKinUnits::Grouped(qint64 count)
{
    QString digits = QString::number(std::llabs(count));
    for (qsizetype i = digits.size() - 3; i > 0; i -= 3)
        digits.insert(i, QLatin1Char(' '));
    return count < 0 ? QLatin1Char('-') + digits : digits;
}

QString ZELKinUnits::Duration(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0.0)
        return QStringLiteral("-");
    // Below ten seconds a tenth still tells something.
    if (seconds < 9.95)
        return QStringLiteral("%1 s").arg(seconds, 0, 'f', 1);
    const qint64 whole = qRound64(seconds);
    if (whole < 60)
        return QStringLiteral("%1 s").arg(whole);
    const QLatin1Char zero('0');
    const qint64 hours = whole / 3600;
    const qint64 minutes = whole / 60 % 60;
    const qint64 rest = whole % 60;
    if (hours > 0)
        return QStringLiteral("%1:%2:%3").arg(hours).arg(minutes, 2, 10, zero).arg(rest, 2, 10, zero);
    return QStringLiteral("%1:%2").arg(minutes).arg(rest, 2, 10, zero);
}

QString ZELKinUnits::Size(qint64 bytes)
{
    if (bytes < 1000)
        return QStringLiteral("%1 B").arg(bytes);
    const char* const units[] = {"kB", "MB", "GB", "TB"};
    double value = double(bytes) / 1000.0;
    int unit = 0;
    // 999.95 kB would print as 1000.0 kB.
    while (value >= 999.95 && unit < 3) {
        value /= 1000.0;
        ++unit;
    }
    return QStringLiteral("%1 %2").arg(value, 0, 'f', 1).arg(QLatin1String(units[unit]));
}
