#ifndef ZELSYSPROGRESS_P_H
#define ZELSYSPROGRESS_P_H

#include "zelsysprogress.h"

#include <QMutex>

#include <atomic>

class ZELSysProgressPrivate
{
    Q_DECLARE_PUBLIC(ZELSysProgress)

public:
    ZELSysProgressPrivate(ZELSysProgress* q, const QString& phase, const QString& unit, qint64 total);
    virtual ~ZELSysProgressPrivate() = default;

    //! Tells the step handler where the stretch stands.
    void Report(qint64 done, bool finished, bool abandoned = false) const;

    ZELSysProgress* const q_ptr;
    const QString phase;
    const QString unit;
    const qint64 total;
    std::atomic<qint64> done{0};
    //! Exceptions under way when the stretch began: one more at its end
    //! means that an exception ended it.
    const int uncaughtExceptions;
    mutable QMutex itemMutex;
    QString item;
};

#endif // ZELSYSPROGRESS_P_H
