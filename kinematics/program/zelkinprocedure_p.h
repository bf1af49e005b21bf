#ifndef ZELKINPROCEDURE_P_H
#define ZELKINPROCEDURE_P_H

#include "zelkinprocedure.h"
#include "zelkinscript_p.h"

#include "zelkincountedlink_p.h"
#include "zelkinprogram.h"

#include <zeltpprocedure.h>

class ZELKINEMATICS_EXPORT ZELKinProcedurePrivate : public ZELKinScriptPrivate
{
    Q_DECLARE_PUBLIC(ZELKinProcedure)

public:
    explicit ZELKinProcedurePrivate(ZELKinProcedure* q)
        : ZELKinScriptPrivate(q)
    {
    }

    //! Procedures that hold their commands in courses and links take none
    //! themselves: both throw ZELSysNotImplementedException. Procedures
    //! that keep their own command list override both.
    int InsertCommand(ZELKinCommand* command, int index) override;
    int IndexOfCommand(ZELKinCommand* command) const override;

    ZELKinCountedLink<ZELKinProgram> program;
    ZELMathPlane safetyPlane;
    ZELKinCountedLink<const ZELTPProcedure> toolPathProcedure;
};

#endif // ZELKINPROCEDURE_P_H
