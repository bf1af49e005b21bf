#include "zelkinprobecommand.h"
#include "zelkinprobecommand_p.h"

#include "zelkinprobeprocedure.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinProbeCommand)

ZELKinProbeCommand::ZELKinProbeCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinProbeCommand(new ZELKinProbeCommandPrivate(this), container, reference)
{
}

ZELKinProbeCommand::ZELKinProbeCommand(ZELKinProbeCommandPrivate* d, ZELGeoContainer* container,
                                       const ZELGeoGeometryRef& reference)
    : ZELKinCommand(d, container, reference)
{
}

ZELKinProbeCommand::ZELKinProbeCommand(ZELKinProbeProcedure* procedure, TargetShape shape, double diameter)
    : ZELKinCommand(new ZELKinProbeCommandPrivate(this), procedure, -1)
{
    Q_D(ZELKinProbeCommand);
    d->targetShape = shape;
    d->diameter = diameter;
}

ZELKinProbeCommand::~ZELKinProbeCommand() = default;

void ZELKinProbeCommand::_constructor_checker()
{
    ZELKinProbeCommand checker(nullptr, ZELGeoGeometryRef());
}

ZELKinProbeCommand::TargetShape ZELKinProbeCommand::GetTargetShape() const
{
    Q_D(const ZELKinProbeCommand);
    return d->targetShape;
}

double ZELKinProbeCommand::GetDiameter() const
{
    Q_D(const ZELKinProbeCommand);
    return d->diameter;
}

void ZELKinProbeCommand::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinProbeCommand);
    ZELKinCommand::Save(stream);
    stream << qint32(d->targetShape) << d->diameter;
}

void ZELKinProbeCommand::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinProbeCommand);
    ZELKinCommand::Load(stream);
    qint32 shape = Sphere;
    stream >> shape >> d->diameter;
    d->targetShape = TargetShape(shape);
}
