#ifndef ZELTPPROGRAM_P_H
#define ZELTPPROGRAM_P_H

#include "zeltpprogram.h"
#include "zeltpobject_p.h"

#include "zeltplink_p.h"
#include "zeltpprocedure.h"

class ZELTPProgramPrivate : public ZELTPObjectPrivate
{
    Q_DECLARE_PUBLIC(ZELTPProgram)

public:
    explicit ZELTPProgramPrivate(ZELTPProgram* q)
        : ZELTPObjectPrivate(q)
    {
    }

    QString revision = QStringLiteral("0");
    QList<ZELTPLink<ZELTPProcedure>> procedures;
};

#endif // ZELTPPROGRAM_P_H
