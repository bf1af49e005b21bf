#include "zelkinmachine.h"
#include "zelkinmachine_p.h"

#include <zelsysoutofboundsexception.h>

#include <QHash>

namespace {

void CheckIndex(int index, int count)
{
    if (index < 0 || index >= count)
        throw ZELSysOutOfBoundsException(index, 0, count - 1, true, true);
}

// Filled while the library loads, read only afterwards.
QHash<QString, ZELKinMachine::SolverFactory>& SolverFactories()
{
    static QHash<QString, ZELKinMachine::SolverFactory> factories;
    return factories;
}

} // namespace

void ZELKinMachinePrivate::AddVariable(ZELKinVariable* variable)
{
    Q_Q(ZELKinMachine);
    q->AboutToChange();
    variables.Append(variable);
}

void ZELKinMachinePrivate::AddJoint(ZELKinJoint* joint)
{
    Q_Q(ZELKinMachine);
    q->AboutToChange();
    joints.Append(joint);
}

ZELKinMachine::ZELKinMachine(ZELKinMachinePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinResource(d, container, reference)
{
}

ZELKinMachine::ZELKinMachine(ZELKinMachinePrivate* d, ZELGeoContainer* container, const QString& label,
                             const QString& ncCodeFormat, const QString& ncCodeConfig, const QString& solver,
                             const QString& solverConfig)
    : ZELKinResource(d, container, label)
{
    d->ncCodeFormat = ncCodeFormat;
    d->ncCodeConfig = ncCodeConfig;
    d->solver = solver;
    d->solverConfig = solverConfig;
}

ZELKinMachine::~ZELKinMachine() = default;

int ZELKinMachine::GetNumVariables() const
{
    Q_D(const ZELKinMachine);
    return d->variables.GetCount();
}

int ZELKinMachine::GetNumJoints() const
{
    Q_D(const ZELKinMachine);
    return d->joints.GetCount();
}

QList<ZELKinVariable*> ZELKinMachine::GetVariables() const
{
    Q_D(const ZELKinMachine);
    return d->variables.GetList();
}

QList<ZELKinJoint*> ZELKinMachine::GetJoints() const
{
    Q_D(const ZELKinMachine);
    return d->joints.GetList();
}

ZELKinVariable* ZELKinMachine::GetVariable(int index) const
{
    Q_D(const ZELKinMachine);
    CheckIndex(index, d->variables.GetCount());
    return d->variables.At(index);
}

ZELKinJoint* ZELKinMachine::GetJoint(int index) const
{
    Q_D(const ZELKinMachine);
    CheckIndex(index, d->joints.GetCount());
    return d->joints.At(index);
}

ZELKinVariable* ZELKinMachine::GetVariable(const QString& name) const
{
    Q_D(const ZELKinMachine);
    return d->variables.FindByLabel(name);
}

QList<ZELKinJoint*> ZELKinMachine::GetRootJoints() const
{
    Q_D(const ZELKinMachine);
    QList<ZELKinJoint*> roots;
    for (ZELKinJoint* joint : d->joints.GetList()) {
        if (joint && !joint->GetParent())
            roots.append(joint);
    }
    return roots;
}

QString ZELKinMachine::GetNCCodeFormat() const
{
    Q_D(const ZELKinMachine);
    return d->ncCodeFormat;
}

QString ZELKinMachine::GetNCCodeConfig() const
{
    Q_D(const ZELKinMachine);
    return d->ncCodeConfig;
}

QString ZELKinMachine::GetSolverName() const
{
    Q_D(const ZELKinMachine);
    return d->solver;
}

QString ZELKinMachine::GetSolverConfig() const
{
    Q_D(const ZELKinMachine);
    return d->solverConfig;
}

ZELKinSolver* ZELKinMachine::CreateSolver() const
{
    Q_D(const ZELKinMachine);
    const SolverFactory factory = SolverFactories().value(d->solver);
    // The solver refers to its machine but never changes it.
    return factory ? factory(const_cast<ZELKinMachine*>(this), d->solverConfig) : nullptr;
}

void ZELKinMachine::SetSolverFactory(const QString& name, SolverFactory factory)
{
    SolverFactories().insert(name, factory);
}

void ZELKinMachine::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinMachine);
    ZELKinResource::Save(stream);
    d->joints.Save(stream);
    d->variables.Save(stream);
    stream << d->ncCodeFormat << d->ncCodeConfig << d->solver << d->solverConfig;
}

void ZELKinMachine::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinMachine);
    ZELKinResource::Load(stream);
    d->joints.Load(stream);
    d->variables.Load(stream);
    stream >> d->ncCodeFormat >> d->ncCodeConfig >> d->solver >> d->solverConfig;
}
