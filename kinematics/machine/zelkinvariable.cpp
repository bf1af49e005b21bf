#include "zelkinvariable.h"
#include "zelkinvariable_p.h"

#include "zelkinmachine_p.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>

#include <cmath>

ZELGEO_REGISTER_CLASS(ZELKinVariable)

ZELKinVariable::ZELKinVariable(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinVariable(new ZELKinVariablePrivate(this), container, reference)
{
}

ZELKinVariable::ZELKinVariable(ZELKinVariablePrivate* d, ZELGeoContainer* container,
                               const ZELGeoGeometryRef& reference)
    : ZELKinResource(d, container, reference)
{
}

ZELKinVariable::ZELKinVariable(ZELKinMachine* machine, const QString& name, VariableType type, double minimum,
                               double maximum, double maxVelocity, double maxAcceleration)
    : ZELKinResource(new ZELKinVariablePrivate(this), ZELKinMachinePrivate::ContainerOf(machine), name)
{
    Q_D(ZELKinVariable);
    if (!machine)
        throw ZELSysException(tr("variable '%1' needs a machine").arg(name));
    ZELKinMachinePrivate::get(machine)->AddVariable(this);
    d->machine.Set(machine);
    if (minimum > maximum)
        throw ZELSysException(tr("variable minimum is greater than maximum for '%1'").arg(name));
    d->type = type;
    d->minimum = minimum;
    d->maximum = maximum;
    d->maxVelocity = maxVelocity;
    d->maxAcceleration = maxAcceleration;
}

ZELKinVariable::~ZELKinVariable() = default;

void ZELKinVariable::_constructor_checker()
{
    ZELKinVariable checker(nullptr, ZELGeoGeometryRef());
}

ZELKinMachine* ZELKinVariable::GetMachine() const
{
    Q_D(const ZELKinVariable);
    return d->machine.Get();
}

ZELKinVariable::VariableType ZELKinVariable::GetType() const
{
    Q_D(const ZELKinVariable);
    return d->type;
}

double ZELKinVariable::GetMinimum() const
{
    Q_D(const ZELKinVariable);
    return d->minimum;
}

double ZELKinVariable::GetMaximum() const
{
    Q_D(const ZELKinVariable);
    return d->maximum;
}

double ZELKinVariable::GetMaxVelocity() const
{
    Q_D(const ZELKinVariable);
    return d->maxVelocity;
}

double ZELKinVariable::GetMaxAcceleration() const
{
    Q_D(const ZELKinVariable);
    return d->maxAcceleration;
}

bool ZELKinVariable::IsInfinite() const
{
    Q_D(const ZELKinVariable);
    return std::isnan(d->minimum) && std::isnan(d->maximum);
}

void ZELKinVariable::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinVariable);
    ZELKinResource::Save(stream);
    d->machine.Save(stream);
    stream << qint32(d->type) << d->minimum << d->maximum << d->maxVelocity << d->maxAcceleration;
}

void ZELKinVariable::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinVariable);
    ZELKinResource::Load(stream);
    d->machine.Load(stream);
    qint32 type = 0;
    stream >> type >> d->minimum >> d->maximum >> d->maxVelocity >> d->maxAcceleration;
    d->type = VariableType(type);
}
