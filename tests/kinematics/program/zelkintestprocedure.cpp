#include "zelkintestprocedure.h"

#include "zelkintestscript.h"

#include <zelkincountedlinklist_p.h>
#include <zelkinprocedure_p.h>

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinTestProcedure)

class ZELKinTestProcedurePrivate : public ZELKinProcedurePrivate
{
public:
    explicit ZELKinTestProcedurePrivate(ZELKinTestProcedure* q)
        : ZELKinProcedurePrivate(q)
    {
    }

    ZELKinCountedLinkList<ZELKinTestScript> scripts;
};

ZELKinTestProcedure::ZELKinTestProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinTestProcedure(new ZELKinTestProcedurePrivate(this), container, reference)
{
}

ZELKinTestProcedure::ZELKinTestProcedure(ZELKinProgram* program)
    : ZELKinProcedure(new ZELKinTestProcedurePrivate(this), program)
{
}

ZELKinTestProcedure::ZELKinTestProcedure(ZELKinTestProcedurePrivate* d, ZELGeoContainer* container,
                                         const ZELGeoGeometryRef& reference)
    : ZELKinProcedure(d, container, reference)
{
}

ZELKinTestProcedure::~ZELKinTestProcedure() = default;

void ZELKinTestProcedure::_constructor_checker()
{
    ZELKinTestProcedure checker(nullptr, ZELGeoGeometryRef());
}

int ZELKinTestProcedure::GetNumCommands() const
{
    Q_D(const ZELKinTestProcedure);
    return ZELKinScriptPrivate::CountCommands(d->scripts.GetList());
}

ZELKinCommand* ZELKinTestProcedure::GetCommand(int index) const
{
    Q_D(const ZELKinTestProcedure);
    return ZELKinScriptPrivate::CommandAt(*this, d->scripts.GetList(), index);
}

QList<ZELKinTestScript*> ZELKinTestProcedure::GetScripts() const
{
    Q_D(const ZELKinTestProcedure);
    return d->scripts.GetList();
}

void ZELKinTestProcedure::AppendScript(ZELKinTestScript* script)
{
    Q_D(ZELKinTestProcedure);
    AboutToChange();
    d->scripts.Append(script);
}

bool ZELKinTestProcedure::VisitCommands(const CommandVisitor& visit, WalkOrder order) const
{
    Q_D(const ZELKinTestProcedure);
    return ZELKinScriptPrivate::VisitChildren(d->scripts.GetList(), visit, order);
}

void ZELKinTestProcedure::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinTestProcedure);
    ZELKinProcedure::Save(stream);
    d->scripts.Save(stream);
}

void ZELKinTestProcedure::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinTestProcedure);
    ZELKinProcedure::Load(stream);
    d->scripts.Load(stream);
}
