#ifndef ZELKINTOOLCHANGE_P_H
#define ZELKINTOOLCHANGE_P_H

#include "zelkintoolchange.h"
#include "zelkincommand_p.h"

class ZELKINEMATICS_EXPORT ZELKinToolChangePrivate : public ZELKinCommandPrivate
{
    Q_DECLARE_PUBLIC(ZELKinToolChange)

public:
    explicit ZELKinToolChangePrivate(ZELKinToolChange* q)
        : ZELKinCommandPrivate(q)
    {
    }

    QString newHead;
    QString newRoller;
};

#endif // ZELKINTOOLCHANGE_P_H
