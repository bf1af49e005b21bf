#ifndef ZELKINMACHINEFACTS_H
#define ZELKINMACHINEFACTS_H

#include <zelkinjoint.h>
#include <zelkinvariable.h>
#include <zelmathpoint.h>
#include <zelmathvector.h>

#include <QString>
#include <QStringList>

#include <optional>

/*!
    What zelkin shows of a machine's parts, read the same way for the summary
    and for the JSON form: the words for kinds and priorities, and a joint's
    geometry whatever its class.
*/
namespace ZELKinMachineFacts {

//! "linear" or "rotary".
QString GetVariableTypeWord(ZELKinVariable::VariableType type);
//! "rotary" for a rotary joint, "translation" for a translation joint.
QString GetJointTypeWord(const ZELKinJoint& joint);
//! "high", "medium" or "low", the words of the machine description.
QString GetPriorityWord(ZELKinJoint::Priority priority);

//! The axis of rotation or the direction of travel, as stored.
ZELMathVector GetJointVector(const ZELKinJoint& joint);
//! The pivot of a rotary joint; none for a translation joint.
std::optional<ZELMathPoint> GetJointPivot(const ZELKinJoint& joint);
//! The labels of the variables that drive the joint, in order.
QStringList GetJointVariableNames(const ZELKinJoint& joint);

} // namespace ZELKinMachineFacts

#endif // ZELKINMACHINEFACTS_H
