#ifndef ZELKINCOMMAND_P_H
#define ZELKINCOMMAND_P_H

#include "zelkincommand.h"

#include "zelkincountedlink_p.h"
#include "zelkinscript.h"

class ZELKINEMATICS_EXPORT ZELKinCommandPrivate
{
    Q_DECLARE_PUBLIC(ZELKinCommand)

public:
    explicit ZELKinCommandPrivate(ZELKinCommand* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELKinCommandPrivate() = default;

    ZELKinCommand* const q_ptr;
    ZELKinCountedLink<ZELKinScript> script;
    int index = 0;
};

#endif // ZELKINCOMMAND_P_H
