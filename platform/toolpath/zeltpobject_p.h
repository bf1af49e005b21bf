#ifndef ZELTPOBJECT_P_H
#define ZELTPOBJECT_P_H

#include "zeltpobject.h"

class ZELTPObjectPrivate
{
    Q_DECLARE_PUBLIC(ZELTPObject)

public:
    explicit ZELTPObjectPrivate(ZELTPObject* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELTPObjectPrivate() = default;

    ZELTPObject* const q_ptr;
    QString name;
};

#endif // ZELTPOBJECT_P_H
