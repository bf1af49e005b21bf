#include "zelkincommand.h"
#include "zelkincommand_p.h"

#include "zelkinscript_p.h"

ZELKinCommand::ZELKinCommand(ZELKinCommandPrivate* d, ZELKinScript* script, int index)
    : ZELKinObject(ZELKinScriptPrivate::ContainerOf(script), ZELGeoGeometryRef())
    , d_ptr(d)
{
    d->script.Set(script);
    if (script)
        d->index = ZELKinScriptPrivate::get(script)->InsertCommand(this, index);
}

ZELKinCommand::ZELKinCommand(ZELKinCommandPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinObject(container, reference)
    , d_ptr(d)
{
}

ZELKinCommand::~ZELKinCommand() = default;

ZELKinScript* ZELKinCommand::GetScript() const
{
    Q_D(const ZELKinCommand);
    return d->script.Get();
}

int ZELKinCommand::GetIndex() const
{
    Q_D(const ZELKinCommand);
    return d->index;
}

void ZELKinCommand::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinCommand);
    ZELKinObject::Save(stream);
    d->script.Save(stream);
}

void ZELKinCommand::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinCommand);
    ZELKinObject::Load(stream);
    d->script.Load(stream);
}
