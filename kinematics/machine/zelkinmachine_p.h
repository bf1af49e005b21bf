#ifndef ZELKINMACHINE_P_H
#define ZELKINMACHINE_P_H

#include "zelkinmachine.h"
#include "zelkinresource_p.h"

#include "zelkincountedlinklist_p.h"
#include "zelkinjoint.h"
#include "zelkinvariable.h"

class ZELKinMachinePrivate : public ZELKinResourcePrivate
{
    Q_DECLARE_PUBLIC(ZELKinMachine)

public:
    explicit ZELKinMachinePrivate(ZELKinMachine* q)
        : ZELKinResourcePrivate(q)
    {
    }

    static ZELKinMachinePrivate* get(ZELKinMachine* machine) { return machine->d_func(); }
    //! The container a new variable or joint of `machine` lives in.
    static ZELGeoContainer* ContainerOf(const ZELKinMachine* machine)
    {
        return machine ? machine->GetContainer() : nullptr;
    }

    // Variables and joints register themselves as they are created.
    void AddVariable(ZELKinVariable* variable);
    void AddJoint(ZELKinJoint* joint);

    ZELKinCountedLinkList<ZELKinJoint> joints;
    ZELKinCountedLinkList<ZELKinVariable> variables;
    QString ncCodeFormat;
    QString ncCodeConfig;
    QString solver;
    QString solverConfig;
};

#endif // ZELKINMACHINE_P_H
