#include "zelkinprocedure.h"
#include "zelkinprocedure_p.h"

#include "zelkinprogram_p.h"

#include <zelsysnotimplementedexception.h>

int ZELKinProcedurePrivate::InsertCommand(ZELKinCommand*, int)
{
    throw ZELSysNotImplementedException(QStringLiteral("InsertCommand"));
}

int ZELKinProcedurePrivate::IndexOfCommand(ZELKinCommand*) const
{
    throw ZELSysNotImplementedException(QStringLiteral("IndexOfCommand"));
}

ZELKinProcedure::ZELKinProcedure(ZELKinProcedurePrivate* d, ZELKinProgram* program)
    : ZELKinScript(d, ZELKinScriptPrivate::ContainerOf(program), ZELGeoGeometryRef())
{
    d->program.Set(program);
    if (program)
        ZELKinProgramPrivate::get(program)->AppendProcedure(this);
}

ZELKinProcedure::ZELKinProcedure(ZELKinProcedurePrivate* d, ZELGeoContainer* container,
                                 const ZELGeoGeometryRef& reference)
    : ZELKinScript(d, container, reference)
{
}

ZELKinProcedure::~ZELKinProcedure() = default;

ZELKinProgram* ZELKinProcedure::GetProgram() const
{
    Q_D(const ZELKinProcedure);
    return d->program.Get();
}

const ZELTPProcedure* ZELKinProcedure::GetToolPathProcedure() const
{
    Q_D(const ZELKinProcedure);
    return d->toolPathProcedure.Get();
}

void ZELKinProcedure::SetToolPathProcedure(const ZELTPProcedure* procedure)
{
    Q_D(ZELKinProcedure);
    AboutToChange();
    d->toolPathProcedure.Set(procedure);
}

ZELMathPlane ZELKinProcedure::GetSafetyPlane() const
{
    Q_D(const ZELKinProcedure);
    return d->safetyPlane;
}

void ZELKinProcedure::SetSafetyPlane(const ZELMathPlane& plane)
{
    Q_D(ZELKinProcedure);
    AboutToChange();
    d->safetyPlane = plane;
}

void ZELKinProcedure::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinProcedure);
    ZELKinScript::Save(stream);
    d->program.Save(stream);
}

void ZELKinProcedure::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinProcedure);
    ZELKinScript::Load(stream);
    d->program.Load(stream);
}
