#ifndef ZELKINPROBEPROCEDURE_P_H
#define ZELKINPROBEPROCEDURE_P_H

#include "zelkinprobeprocedure.h"
#include "zelkinprocedure_p.h"

#include "zelkincommand.h"
#include "zelkincountedlinklist_p.h"

class ZELKINEMATICS_EXPORT ZELKinProbeProcedurePrivate : public ZELKinProcedurePrivate
{
    Q_DECLARE_PUBLIC(ZELKinProbeProcedure)

public:
    explicit ZELKinProbeProcedurePrivate(ZELKinProbeProcedure* q)
        : ZELKinProcedurePrivate(q)
    {
    }

    //! Appends for a negative index and gives the new count minus one. Any
    //! other index throws ZELSysException "cannot insert commands in a
    //! probing operation" and inserts nothing.
    int InsertCommand(ZELKinCommand* command, int index) override;
    int IndexOfCommand(ZELKinCommand* command) const override;

    ZELKinCountedLinkList<ZELKinCommand> commands;
};

#endif // ZELKINPROBEPROCEDURE_P_H
