#include "zelkinrotaryjoint.h"
#include "zelkinrotaryjoint_p.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>

ZELGEO_REGISTER_CLASS(ZELKinRotaryJoint)

ZELKinRotaryJoint::ZELKinRotaryJoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinRotaryJoint(new ZELKinRotaryJointPrivate(this), container, reference)
{
}

ZELKinRotaryJoint::ZELKinRotaryJoint(ZELKinRotaryJointPrivate* d, ZELGeoContainer* container,
                                     const ZELGeoGeometryRef& reference)
    : ZELKinJoint(d, container, reference)
{
}

ZELKinRotaryJoint::ZELKinRotaryJoint(const QString& name, ZELKinMachine* machine, ZELKinVariable* variable,
                                     ZELKinJoint::Priority priority, const ZELMathVector& vector,
                                     const ZELMathPoint& pivot, ZELKinJoint* parent)
    : ZELKinJoint(new ZELKinRotaryJointPrivate(this), name, machine, {variable}, priority, parent)
{
    Q_D(ZELKinRotaryJoint);
    d->vector = vector;
    d->pivot = pivot;
    if (!variable || variable->GetType() != ZELKinVariable::Rotary)
        throw ZELSysException(tr("Rotary joint requires rotary variable."));
}

ZELKinRotaryJoint::~ZELKinRotaryJoint() = default;

void ZELKinRotaryJoint::_constructor_checker()
{
    ZELKinRotaryJoint checker(nullptr, ZELGeoGeometryRef());
}

ZELMathVector ZELKinRotaryJoint::GetVector() const
{
    Q_D(const ZELKinRotaryJoint);
    return d->vector;
}

ZELMathPoint ZELKinRotaryJoint::GetPivot() const
{
    Q_D(const ZELKinRotaryJoint);
    return d->pivot;
}

void ZELKinRotaryJoint::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinRotaryJoint);
    ZELKinJoint::Save(stream);
    stream << d->vector << d->pivot;
}

void ZELKinRotaryJoint::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinRotaryJoint);
    ZELKinJoint::Load(stream);
    stream >> d->vector >> d->pivot;
}
