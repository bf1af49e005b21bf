#ifndef ZELKINJOINT_H
#define ZELKINJOINT_H

#include "zelkinresource.h"

#include <QList>

class ZELKinJointPrivate;
class ZELKinMachine;
class ZELKinVariable;

/*!
    One link of a machine's kinematic chain: driven by machine variables,
    mounted on a parent joint (none for a root joint), with a priority for the
    solver. Joints hold geometry only; the solver evaluates the chain.

    Record (after the label): machine (weak link), parent (weak link, empty
    for a root joint), variables (counted links), children (counted links),
    priority (qint32).
*/
class ZELKINEMATICS_EXPORT ZELKinJoint : public ZELKinResource
{
    Q_OBJECT

public:
    enum Priority : qint32 { High = 0, Medium = 1, Low = 2 };
    Q_ENUM(Priority)

    ~ZELKinJoint() override;

    //! The machine, or null if it has gone.
    ZELKinMachine* GetMachine() const;
    //! The joint this one is mounted on; null for a root joint or if it has gone.
    ZELKinJoint* GetParent() const;
    //! The joints mounted on this one, in order of creation (null where one has gone).
    QList<ZELKinJoint*> GetChildJoints() const;
    //! The number of variables that drive the joint.
    int GetDegreesOfFreedom() const;
    //! The variable at `index`, or null if it has gone or the index is not
    //! in 0 .. GetDegreesOfFreedom() - 1 (no exception is thrown).
    ZELKinVariable* GetVariable(int index) const;
    //! The first variable whose label is exactly `name`; null if none.
    ZELKinVariable* GetVariable(const QString& name) const;
    Priority GetPriority() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinJoint(ZELKinJointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Registers the joint with its machine and its parent. Throws
    //! ZELSysException "joint '%1' needs a machine" for a null machine.
    ZELKinJoint(ZELKinJointPrivate* d, const QString& name, ZELKinMachine* machine,
                const QList<ZELKinVariable*>& variables, Priority priority, ZELKinJoint* parent);

private:
    Q_DECLARE_PRIVATE(ZELKinJoint)
};

#endif // ZELKINJOINT_H
