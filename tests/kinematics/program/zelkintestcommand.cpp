#include "zelkintestcommand.h"

#include <zelkincommand_p.h>

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinTestCommand)

ZELKinTestCommand::ZELKinTestCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinCommand(new ZELKinCommandPrivate(this), container, reference)
{
}

ZELKinTestCommand::ZELKinTestCommand(ZELKinScript* script, int index)
    : ZELKinCommand(new ZELKinCommandPrivate(this), script, index)
{
}

ZELKinTestCommand::~ZELKinTestCommand() = default;

void ZELKinTestCommand::_constructor_checker()
{
    ZELKinTestCommand checker(nullptr, ZELGeoGeometryRef());
}
