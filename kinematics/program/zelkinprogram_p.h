#ifndef ZELKINPROGRAM_P_H
#define ZELKINPROGRAM_P_H

#include "zelkinprogram.h"
#include "zelkinscript_p.h"

#include "zelkincountedlink_p.h"
#include "zelkincountedlinklist_p.h"
#include "zelkinmachine.h"
#include "zelkinprocedure.h"

class ZELKINEMATICS_EXPORT ZELKinProgramPrivate : public ZELKinScriptPrivate
{
    Q_DECLARE_PUBLIC(ZELKinProgram)

public:
    explicit ZELKinProgramPrivate(ZELKinProgram* q)
        : ZELKinScriptPrivate(q)
    {
    }

    static ZELKinProgramPrivate* get(ZELKinProgram* program) { return program->d_func(); }

    //! Commands go into the procedures' scripts, never into the program:
    //! both throw ZELSysNotImplementedException.
    int InsertCommand(ZELKinCommand* command, int index) override;
    int IndexOfCommand(ZELKinCommand* command) const override;

    //! Appends `procedure`, which its constructor has linked to this program.
    //! Throws ZELSysException "program mismatch" when the procedure's program
    //! is another one, appending nothing.
    void AppendProcedure(ZELKinProcedure* procedure);

    ZELKinCountedLinkList<ZELKinProcedure> procedures;
    ZELKinCountedLink<ZELKinMachine> machine;
    QDateTime date;
    QString author;
    QString originalFileName;
    QString revisionNumber = QStringLiteral("0");
};

#endif // ZELKINPROGRAM_P_H
