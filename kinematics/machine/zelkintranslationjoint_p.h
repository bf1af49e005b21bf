#ifndef ZELKINTRANSLATIONJOINT_P_H
#define ZELKINTRANSLATIONJOINT_P_H

#include "zelkintranslationjoint.h"
#include "zelkinjoint_p.h"

class ZELKinTranslationJointPrivate : public ZELKinJointPrivate
{
    Q_DECLARE_PUBLIC(ZELKinTranslationJoint)

public:
    explicit ZELKinTranslationJointPrivate(ZELKinTranslationJoint* q)
        : ZELKinJointPrivate(q)
    {
    }

    ZELMathVector vector;
};

#endif // ZELKINTRANSLATIONJOINT_P_H
