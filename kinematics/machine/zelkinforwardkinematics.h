#ifndef ZELKINFORWARDKINEMATICS_H
#define ZELKINFORWARDKINEMATICS_H

#include "zelkinematics_export.h"

#include <zelmathaxis.h>

#include <QCoreApplication>
#include <QList>
#include <QVector>

#include <memory>

class ZELKinForwardKinematicsPrivate;
class ZELKinJoint;
class ZELKinMachine;

/*!
    Where a machine's joints, and the tool they carry, stand for given
    variable values, worked out from the joint tree alone: no solver, no
    configuration of one.

    The chain runs from a root joint down to the machine's one joint without
    children, which carries the tool. Each joint moves everything mounted on
    it: a translation joint by its variable's value (mm) along its vector, a
    rotary joint by its variable's value (rad) about its vector through its
    pivot, right-handedly. Vectors and pivots are those of the home
    configuration, every variable at zero, in machine coordinates; a vector
    gives a direction only, its length does not count. The joints compose
    from the root down as a product of exponentials: the k-th joint of the
    chain has moved by exp(xi_1 q_1) ... exp(xi_k q_k), where xi_i is the
    home motion of joint i and q_i its value.

    Values come as one number per machine variable, in the order of
    ZELKinMachine::GetVariables(); a variable that drives no joint of the
    chain is ignored, and a NaN value gives NaN where it counts.

    The tool is a frame at home (SetHomeToolFrame): its origin is the tool
    tip, its first direction (u) the direction of travel and its third (w)
    the normal, both as they stand with every variable at zero.
*/
class ZELKINEMATICS_EXPORT ZELKinForwardKinematics
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinForwardKinematics)

public:
    /*!
        Reads the chain of `machine` (not owned; its joints and variables
        must not change while the kinematics lives). Throws ZELSysException
        "the machine has no joints", "the joint tree ends in more than one
        joint: '%1' and '%2'" (the first two joints without children) and
        "joint '%1' is not driven by a variable of the machine".
    */
    explicit ZELKinForwardKinematics(const ZELKinMachine& machine);
    virtual ~ZELKinForwardKinematics();

    //! The joints of the chain, the root first and the tool's joint last.
    QList<ZELKinJoint*> GetChain() const;

    //! The tool at home; the world frame until it is set.
    ZELMathAxis GetHomeToolFrame() const;
    void SetHomeToolFrame(const ZELMathAxis& home);

    /*!
        How far `joint` and everything mounted on it have moved from home: a
        frame whose product with a home point (pose * point) or direction
        (pose * vector) is where that point or direction stands. Throws
        ZELSysException "joint '%1' is not in the chain" for any other joint.
    */
    ZELMathAxis GetPose(const QVector<double>& values, const ZELKinJoint* joint) const;

    //! The unit direction of `joint`'s vector as its parents have turned it:
    //! the axis it rotates about or slides along. Throws as GetPose.
    ZELMathVector GetAxis(const QVector<double>& values, const ZELKinJoint* joint) const;

    //! The home tool frame carried by the last joint of the chain.
    ZELMathAxis GetToolFrame(const QVector<double>& values) const;

    /*!
        `values` with the values of the chain's translation joints replaced
        by those that bring the tool tip to `tip`, every other value kept.
        The tip moves linearly with the slides once the rotary values are
        fixed, so the answer is exact. NaN slides when the slides' directions
        do not span space there or a value that counts is NaN. Throws
        ZELSysException "placing the tool tip needs three translation joints
        in the chain, not %1".
    */
    QVector<double> GetValuesForToolTip(const QVector<double>& values, const ZELMathPoint& tip) const;

protected:
    explicit ZELKinForwardKinematics(ZELKinForwardKinematicsPrivate* d);

    std::unique_ptr<ZELKinForwardKinematicsPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinForwardKinematics)
    Q_DISABLE_COPY_MOVE(ZELKinForwardKinematics)
};

#endif // ZELKINFORWARDKINEMATICS_H
