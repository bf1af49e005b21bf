#ifndef ZELKINFORWARDKINEMATICS_P_H
#define ZELKINFORWARDKINEMATICS_P_H

#include "zelkinforwardkinematics.h"

#include <zelmathpoint.h>
#include <zelmathvector.h>

class ZELKinForwardKinematicsPrivate
{
    Q_DECLARE_PUBLIC(ZELKinForwardKinematics)

public:
    //! One joint of the chain as the product of exponentials reads it.
    struct Link
    {
        ZELKinJoint* joint = nullptr;
        //! Its variable's index among the machine's variables.
        int variable = -1;
        bool rotary = false;
        //! The joint's vector made unit.
        ZELMathVector direction;
        //! A point on a rotary joint's axis; unused for a translation.
        ZELMathPoint pivot;
    };

    ZELKinForwardKinematicsPrivate(ZELKinForwardKinematics* q, const ZELKinMachine& machine);
    virtual ~ZELKinForwardKinematicsPrivate() = default;

    //! The chain's index of `joint`; throws when it is not in the chain.
    int IndexOf(const ZELKinJoint* joint) const;
    //! The motion of the chain's first `count` joints.
    ZELMathAxis Compose(const QVector<double>& values, int count) const;
    QList<int> TranslationLinks() const;

    ZELKinForwardKinematics* const q_ptr;
    //! Root first.
    QList<Link> chain;
    ZELMathAxis homeTool;
    int variableCount = 0;
};

#endif // ZELKINFORWARDKINEMATICS_P_H
