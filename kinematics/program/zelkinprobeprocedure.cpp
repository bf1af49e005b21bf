#include "zelkinprobeprocedure.h"
#include "zelkinprobeprocedure_p.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>

ZELGEO_REGISTER_CLASS(ZELKinProbeProcedure)

int ZELKinProbeProcedurePrivate::InsertCommand(ZELKinCommand* command, int index)
{
    Q_Q(ZELKinProbeProcedure);
    // Each probe command measures at the position before it, so a command
    // slipped in between would move a target onto another position.
    if (index >= 0)
        throw ZELSysException(ZELKinProbeProcedure::tr("cannot insert commands in a probing operation"));
    q->AboutToChange();
    commands.Append(command);
    return commands.GetCount() - 1;
}

int ZELKinProbeProcedurePrivate::IndexOfCommand(ZELKinCommand* command) const
{
    return commands.IndexOf(command);
}

ZELKinProbeProcedure::ZELKinProbeProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinProbeProcedure(new ZELKinProbeProcedurePrivate(this), container, reference)
{
}

ZELKinProbeProcedure::ZELKinProbeProcedure(ZELKinProbeProcedurePrivate* d, ZELGeoContainer* container,
                                           const ZELGeoGeometryRef& reference)
    : ZELKinProcedure(d, container, reference)
{
}

ZELKinProbeProcedure::ZELKinProbeProcedure(ZELKinProgram* program)
    : ZELKinProcedure(new ZELKinProbeProcedurePrivate(this), program)
{
}

ZELKinProbeProcedure::~ZELKinProbeProcedure() = default;

void ZELKinProbeProcedure::_constructor_checker()
{
    ZELKinProbeProcedure checker(nullptr, ZELGeoGeometryRef());
}

int ZELKinProbeProcedure::GetNumCommands() const
{
    Q_D(const ZELKinProbeProcedure);
    return d->commands.GetCount();
}

ZELKinCommand* ZELKinProbeProcedure::GetCommand(int index) const
{
    Q_D(const ZELKinProbeProcedure);
    return d->commands.At(index);
}
