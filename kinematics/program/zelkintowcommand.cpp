#include "zelkintowcommand.h"
#include "zelkintowcommand_p.h"

#include "zelkinafpmachine.h"
#include "zelkintowcourse_p.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>

ZELGEO_REGISTER_CLASS(ZELKinTowCommand)

ZELKinTowCommand::ZELKinTowCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinTowCommand(new ZELKinTowCommandPrivate(this), container, reference)
{
}

ZELKinTowCommand::ZELKinTowCommand(ZELKinTowCommandPrivate* d, ZELGeoContainer* container,
                                   const ZELGeoGeometryRef& reference)
    : ZELKinCommand(d, container, reference)
{
}

ZELKinTowCommand::ZELKinTowCommand(ZELKinTowCourse* course, const ZELCompTowMask& mask, CommandType type, int index)
    : ZELKinCommand(new ZELKinTowCommandPrivate(this), course, index)
{
    Q_D(ZELKinTowCommand);
    d->towMask = mask;
    d->type = type;
    const ZELKinAFPMachine* machine = ZELKinTowCoursePrivate::MachineOf(course);
    if (!machine || mask.GetNumTows() != machine->GetMaximumMask().GetNumTows())
        throw ZELSysException(tr("mask is not compatible with machine"));
}

ZELKinTowCommand::~ZELKinTowCommand() = default;

void ZELKinTowCommand::_constructor_checker()
{
    ZELKinTowCommand checker(nullptr, ZELGeoGeometryRef());
}

ZELCompTowMask ZELKinTowCommand::GetTowMask() const
{
    Q_D(const ZELKinTowCommand);
    return d->towMask;
}

ZELKinTowCommand::CommandType ZELKinTowCommand::GetType() const
{
    Q_D(const ZELKinTowCommand);
    return d->type;
}

void ZELKinTowCommand::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinTowCommand);
    ZELKinCommand::Save(stream);
    stream << d->towMask << qint32(d->type);
}

void ZELKinTowCommand::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinTowCommand);
    ZELKinCommand::Load(stream);
    qint32 type = 0;
    stream >> d->towMask >> type;
    d->type = CommandType(type);
}
