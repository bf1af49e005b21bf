#ifndef ZELKINJOINT_P_H
#define ZELKINJOINT_P_H

#include "zelkinjoint.h"
#include "zelkinresource_p.h"

#include "zelkincountedlinklist_p.h"
#include "zelkinmachine.h"
#include "zelkinvariable.h"
#include "zelkinweaklink_p.h"

class ZELKinJointPrivate : public ZELKinResourcePrivate
{
    Q_DECLARE_PUBLIC(ZELKinJoint)

public:
    explicit ZELKinJointPrivate(ZELKinJoint* q)
        : ZELKinResourcePrivate(q)
    {
    }

    static ZELKinJointPrivate* get(ZELKinJoint* joint) { return joint->d_func(); }

    ZELKinWeakLink<ZELKinMachine> machine;
    ZELKinWeakLink<ZELKinJoint> parent;
    ZELKinCountedLinkList<ZELKinVariable> variables;
    ZELKinCountedLinkList<ZELKinJoint> children;
    ZELKinJoint::Priority priority = ZELKinJoint::Medium;
};

#endif // ZELKINJOINT_P_H
