#include "zelkintestscript.h"

#include "zelkintestprocedure.h"

#include <zelkincommandinsertion_p.h>
#include <zelkincountedlink_p.h>
#include <zelkinscript_p.h>

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinTestScript)

class ZELKinTestScriptPrivate : public ZELKinScriptPrivate
{
public:
    explicit ZELKinTestScriptPrivate(ZELKinTestScript* q)
        : ZELKinScriptPrivate(q)
    {
    }

    int InsertCommand(ZELKinCommand* command, int index) override
    {
        return ZELKinCommandInsertion::ByCommonRule(q_ptr, commands, command, index);
    }

    int IndexOfCommand(ZELKinCommand* command) const override { return commands.IndexOf(command); }

    ZELKinCountedLink<ZELKinTestProcedure> procedure;
    ZELKinCountedLinkList<ZELKinCommand> commands;
    mutable int countQueries = 0;
};

ZELKinTestScript::ZELKinTestScript(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinTestScript(new ZELKinTestScriptPrivate(this), container, reference)
{
}

ZELKinTestScript::ZELKinTestScript(ZELGeoContainer* container)
    : ZELKinTestScript(new ZELKinTestScriptPrivate(this), container, ZELGeoGeometryRef())
{
}

ZELKinTestScript::ZELKinTestScript(ZELKinTestProcedure* procedure)
    : ZELKinTestScript(procedure->GetContainer())
{
    Q_D(ZELKinTestScript);
    d->procedure.Set(procedure);
    procedure->AppendScript(this);
}

ZELKinTestScript::ZELKinTestScript(ZELKinTestScriptPrivate* d, ZELGeoContainer* container,
                                   const ZELGeoGeometryRef& reference)
    : ZELKinScript(d, container, reference)
{
}

ZELKinTestScript::~ZELKinTestScript() = default;

void ZELKinTestScript::_constructor_checker()
{
    ZELKinTestScript checker(nullptr, ZELGeoGeometryRef());
}

int ZELKinTestScript::GetNumCommands() const
{
    Q_D(const ZELKinTestScript);
    ++d->countQueries;
    return d->commands.GetCount();
}

ZELKinCommand* ZELKinTestScript::GetCommand(int index) const
{
    Q_D(const ZELKinTestScript);
    return d->commands.At(index);
}

ZELKinProgram* ZELKinTestScript::GetProgram() const
{
    const ZELKinTestProcedure* procedure = GetProcedure();
    return procedure ? procedure->GetProgram() : nullptr;
}

ZELKinTestProcedure* ZELKinTestScript::GetProcedure() const
{
    Q_D(const ZELKinTestScript);
    return d->procedure.Get();
}

int ZELKinTestScript::IndexOfCommand(ZELKinCommand* command) const
{
    Q_D(const ZELKinTestScript);
    return d->IndexOfCommand(command);
}

int ZELKinTestScript::GetCountQueries() const
{
    Q_D(const ZELKinTestScript);
    return d->countQueries;
}

void ZELKinTestScript::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinTestScript);
    ZELKinScript::Save(stream);
    d->procedure.Save(stream);
    d->commands.Save(stream);
}

void ZELKinTestScript::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinTestScript);
    ZELKinScript::Load(stream);
    d->procedure.Load(stream);
    d->commands.Load(stream);
}
