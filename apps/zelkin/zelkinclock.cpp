#include "zelkinclock.h"

#include <zelsysexception.h>

#include <QByteArray>
#include <QTimeZone>

QDateTime ZELKinClock::Now()
{
    const QByteArray epoch = qgetenv("SOURCE_DATE_EPOCH");
    if (epoch.isEmpty())
        return QDateTime::currentDateTime();
    bool isNumber = false;
    const qint64 seconds = epoch.trimmed().toLongLong(&isNumber);
    if (!isNumber)
        throw ZELSysException(
            QStringLiteral("SOURCE_DATE_EPOCH is not a number of seconds: '%1'").arg(QString::fromLocal8Bit(epoch)));
    return QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::utc());
}
