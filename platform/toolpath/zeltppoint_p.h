#ifndef ZELTPPOINT_P_H
#define ZELTPPOINT_P_H

#include "zeltppoint.h"

class ZELTPPointPrivate
{
    Q_DECLARE_PUBLIC(ZELTPPoint)

public:
    explicit ZELTPPointPrivate(ZELTPPoint* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELTPPointPrivate() = default;

    ZELTPPoint* const q_ptr;
    ZELMathAxis toolFrame;
};

#endif // ZELTPPOINT_P_H
