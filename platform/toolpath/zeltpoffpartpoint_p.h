#ifndef ZELTPOFFPARTPOINT_P_H
#define ZELTPOFFPARTPOINT_P_H

#include "zeltpoffpartpoint.h"
#include "zeltppoint_p.h"

class ZELTPOffPartPointPrivate : public ZELTPPointPrivate
{
    Q_DECLARE_PUBLIC(ZELTPOffPartPoint)

public:
    explicit ZELTPOffPartPointPrivate(ZELTPOffPartPoint* q)
        : ZELTPPointPrivate(q)
    {
    }
};

#endif // ZELTPOFFPARTPOINT_P_H
