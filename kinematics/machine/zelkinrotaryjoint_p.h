#ifndef ZELKINROTARYJOINT_P_H
#define ZELKINROTARYJOINT_P_H

#include "zelkinrotaryjoint.h"
#include "zelkinjoint_p.h"

class ZELKinRotaryJointPrivate : public ZELKinJointPrivate
{
    Q_DECLARE_PUBLIC(ZELKinRotaryJoint)

public:
    explicit ZELKinRotaryJointPrivate(ZELKinRotaryJoint* q)
        : ZELKinJointPrivate(q)
    {
    }

    ZELMathVector vector;
    ZELMathPoint pivot;
};

#endif // ZELKINROTARYJOINT_P_H
