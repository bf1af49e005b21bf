#include "zelkinruntimetext.h"

#include <zelkinruntime.h>

#include <QtGlobal>

QString ZELKinRunTimeText::Clock(const ZELKinRunTime& runTime)
{
    const qint64 tenths = qRound64(runTime.seconds * 10.0);
    const QChar zero = QLatin1Char('0');
    const QString time = QStringLiteral("%1:%2:%3.%4")
                             .arg(tenths / 36000)
                             .arg(tenths / 600 % 60, 2, 10, zero)
                             .arg(tenths / 10 % 60, 2, 10, zero)
                             .arg(tenths % 10);
    return runTime.IsComplete() ? time : QStringLiteral(">= ") + time;
}
