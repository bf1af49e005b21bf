#ifndef ZELKINRESOURCE_P_H
#define ZELKINRESOURCE_P_H

#include "zelkinresource.h"

class ZELKinResourcePrivate
{
    Q_DECLARE_PUBLIC(ZELKinResource)

public:
    explicit ZELKinResourcePrivate(ZELKinResource* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELKinResourcePrivate() = default;

    ZELKinResource* const q_ptr;
    QString label;
};

#endif // ZELKINRESOURCE_P_H
