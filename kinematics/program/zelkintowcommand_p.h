#ifndef ZELKINTOWCOMMAND_P_H
#define ZELKINTOWCOMMAND_P_H

#include "zelkintowcommand.h"
#include "zelkincommand_p.h"

class ZELKINEMATICS_EXPORT ZELKinTowCommandPrivate : public ZELKinCommandPrivate
{
    Q_DECLARE_PUBLIC(ZELKinTowCommand)

public:
    explicit ZELKinTowCommandPrivate(ZELKinTowCommand* q)
        : ZELKinCommandPrivate(q)
    {
    }

    ZELCompTowMask towMask;
    ZELKinTowCommand::CommandType type = ZELKinTowCommand::Add;
};

#endif // ZELKINTOWCOMMAND_P_H
