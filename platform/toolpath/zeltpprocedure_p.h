#ifndef ZELTPPROCEDURE_P_H
#define ZELTPPROCEDURE_P_H

#include "zeltpprocedure.h"
#include "zeltpobject_p.h"

class ZELTPProcedurePrivate : public ZELTPObjectPrivate
{
    Q_DECLARE_PUBLIC(ZELTPProcedure)

public:
    explicit ZELTPProcedurePrivate(ZELTPProcedure* q)
        : ZELTPObjectPrivate(q)
    {
    }

    ZELMathPlane safetyPlane;
};

#endif // ZELTPPROCEDURE_P_H
