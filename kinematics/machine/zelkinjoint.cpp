#include "zelkinjoint.h"
#include "zelkinjoint_p.h"

#include "zelkinmachine_p.h"

#include <zelsysexception.h>

ZELKinJoint::ZELKinJoint(ZELKinJointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinResource(d, container, reference)
{
}

ZELKinJoint::ZELKinJoint(ZELKinJointPrivate* d, const QString& name, ZELKinMachine* machine,
                         const QList<ZELKinVariable*>& variables, Priority priority, ZELKinJoint* parent)
    : ZELKinResource(d, ZELKinMachinePrivate::ContainerOf(machine), name)
{
    if (!machine)
        throw ZELSysException(tr("joint '%1' needs a machine").arg(name));
    d->machine.Set(machine);
    ZELKinMachinePrivate::get(machine)->AddJoint(this);
    for (ZELKinVariable* variable : variables)
        d->variables.Append(variable);
    d->priority = priority;
    d->parent.Set(parent);
    if (parent) {
        parent->AboutToChange();
        ZELKinJointPrivate::get(parent)->children.Append(this);
    }
}

ZELKinJoint::~ZELKinJoint() = default;

ZELKinMachine* ZELKinJoint::GetMachine() const
{
    Q_D(const ZELKinJoint);
    return d->machine.Get();
}

ZELKinJoint* ZELKinJoint::GetParent() const
{
    Q_D(const ZELKinJoint);
    return d->parent.Get();
}

QList<ZELKinJoint*> ZELKinJoint::GetChildJoints() const
{
    Q_D(const ZELKinJoint);
    return d->children.GetList();
}

int ZELKinJoint::GetDegreesOfFreedom() const
{
    Q_D(const ZELKinJoint);
    return d->variables.GetCount();
}

ZELKinVariable* ZELKinJoint::GetVariable(int index) const
{
    Q_D(const ZELKinJoint);
    return d->variables.At(index);
}

ZELKinVariable* ZELKinJoint::GetVariable(const QString& name) const
{
    Q_D(const ZELKinJoint);
    return d->variables.FindByLabel(name);
}

ZELKinJoint::Priority ZELKinJoint::GetPriority() const
{
    Q_D(const ZELKinJoint);
    return d->priority;
}

void ZELKinJoint::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinJoint);
    ZELKinResource::Save(stream);
    d->machine.Save(stream);
    d->parent.Save(stream);
    d->variables.Save(stream);
    d->children.Save(stream);
    stream << qint32(d->priority);
}

void ZELKinJoint::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinJoint);
    ZELKinResource::Load(stream);
    d->machine.Load(stream);
    d->parent.Load(stream);
    d->variables.Load(stream);
    d->children.Load(stream);
    qint32 priority = 0;
    stream >> priority;
    d->priority = Priority(priority);
}
