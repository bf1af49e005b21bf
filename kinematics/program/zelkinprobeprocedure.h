#ifndef ZELKINPROBEPROCEDURE_H
#define ZELKINPROBEPROCEDURE_H

#include "zelkinprocedure.h"

class ZELKinProbeProcedurePrivate;

/*!
    The procedure that measures the part or the tool with a probe instead of
    laying material: one flat sequence of positions and probe commands, in
    the order the machine runs them.

    A probing sequence only grows at its end: commands join it through
    ZELKinPosition(ZELKinProbeProcedure*) and ZELKinProbeCommand, which both
    append. Inserting a command at an explicit index throws ZELSysException
    "cannot insert commands in a probing operation" and inserts nothing.

    The procedure holds a counted link to each of its commands.

    Record: that of ZELKinProcedure. The command list is not saved: a loaded
    probe procedure holds no commands, although its loaded commands still
    name it as their script.
*/
class ZELKINEMATICS_EXPORT ZELKinProbeProcedure : public ZELKinProcedure
{
    Q_OBJECT

public:
    //! Loading constructor: no program and no commands until Load, which
    //! restores the program only.
    Q_INVOKABLE ZELKinProbeProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinProbeProcedure() override;

    //! The list size, commands that have gone included.
    int GetNumCommands() const override;
    //! The command at `index`; null if it has been destroyed. The index is
    //! not checked against the list: callers stay within
    //! 0..GetNumCommands() - 1, and an index outside it reads null.
    ZELKinCommand* GetCommand(int index) const override;

protected:
    ZELKinProbeProcedure(ZELKinProbeProcedurePrivate* d, ZELGeoContainer* container,
                         const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Creates an empty probe procedure in the program's container and
    //! appends it to the program. A null program gives a procedure outside
    //! any container and any program.
    explicit ZELKinProbeProcedure(ZELKinProgram* program);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinProbeProcedure)
};

#endif // ZELKINPROBEPROCEDURE_H
