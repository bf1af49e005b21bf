#include "zelkinmachinejson.h"

#include "zelkinmachinefacts.h"

#include <zelkinafpmachine.h>

#include <QJsonArray>

#include <cmath>

namespace {

// JSON has no NaN or infinity; a reader must not choke on them.
QJsonValue ToNumber(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue(QJsonValue::Null);
}

QJsonArray ToTriple(double x, double y, double z)
{
    return QJsonArray{ToNumber(x), ToNumber(y), ToNumber(z)};
}

template <typename Resource>
QJsonArray ToNames(const QList<Resource*>& resources)
{
    QJsonArray names;
    for (const Resource* resource : resources)
        names.append(resource->GetLabel());
    return names;
}

QJsonObject ToJsonObject(const ZELCompTowMask& mask)
{
    return QJsonObject{{QStringLiteral("numTows"), mask.GetNumTows()},
                       {QStringLiteral("hex"), mask.GetHexadecimalString()}};
}

QJsonObject ToJsonObject(const ZELKinVariable& variable)
{
    return QJsonObject{
        {QStringLiteral("name"), variable.GetLabel()},
        {QStringLiteral("type"), ZELKinMachineFacts::GetVariableTypeWord(variable.GetType())},
        {QStringLiteral("minimum"), ToNumber(variable.GetMinimum())},
        {QStringLiteral("maximum"), ToNumber(variable.GetMaximum())},
        {QStringLiteral("maxVelocity"), ToNumber(variable.GetMaxVelocity())},
        {QStringLiteral("maxAcceleration"), ToNumber(variable.GetMaxAcceleration())},
    };
}

QJsonObject ToJsonObject(const ZELKinJoint& joint)
{
    const ZELMathVector vector = ZELKinMachineFacts::GetJointVector(joint);
    const ZELKinJoint* parent = joint.GetParent();
    QJsonObject object{
        {QStringLiteral("name"), joint.GetLabel()},
        {QStringLiteral("type"), ZELKinMachineFacts::GetJointTypeWord(joint)},
        {QStringLiteral("variables"), QJsonArray::fromStringList(ZELKinMachineFacts::GetJointVariableNames(joint))},
        {QStringLiteral("parent"), parent ? QJsonValue(parent->GetLabel()) : QJsonValue(QJsonValue::Null)},
        {QStringLiteral("children"), ToNames(joint.GetChildJoints())},
        {QStringLiteral("priority"), ZELKinMachineFacts::GetPriorityWord(joint.GetPriority())},
        {QStringLiteral("vector"), ToTriple(vector.GetX(), vector.GetY(), vector.GetZ())},
    };
    if (const std::optional<ZELMathPoint> pivot = ZELKinMachineFacts::GetJointPivot(joint))
        object.insert(QStringLiteral("pivot"), ToTriple(pivot->GetX(), pivot->GetY(), pivot->GetZ()));
    return object;
}

template <typename Resource>
QJsonArray ToJsonArray(const QList<Resource*>& resources)
{
    QJsonArray array;
    for (const Resource* resource : resources)
        array.append(ToJsonObject(*resource));
    return array;
}

} // namespace

QJsonObject ZELKinMachineJson::ToJson(const ZELKinAFPMachine& machine)
{
    return QJsonObject{
        {QStringLiteral("label"), machine.GetLabel()},
        {QStringLiteral("ncFormat"), machine.GetNCCodeFormat()},
        {QStringLiteral("ncConfig"), machine.GetNCCodeConfig()},
        {QStringLiteral("solver"), machine.GetSolverName()},
        {QStringLiteral("solverConfig"), machine.GetSolverConfig()},
        {QStringLiteral("maximumMask"), ToJsonObject(machine.GetMaximumMask())},
        {QStringLiteral("rollerRadius"), ToNumber(machine.GetRollerRadius())},
        {QStringLiteral("materialVariable"), machine.GetMaterialVariableName()},
        {QStringLiteral("towWidth"), ToNumber(machine.GetTowWidth())},
        {QStringLiteral("addDistance"), ToNumber(machine.GetAddDistance())},
        {QStringLiteral("pinchDistance"), ToNumber(machine.GetPinchDistance())},
        {QStringLiteral("cutDistance"), ToNumber(machine.GetCutDistance())},
        {QStringLiteral("headTravel"), ToNumber(machine.GetHeadTravel())},
        {QStringLiteral("variables"), ToJsonArray(machine.GetVariables())},
        {QStringLiteral("joints"), ToJsonArray(machine.GetJoints())},
        {QStringLiteral("rootJoints"), ToNames(machine.GetRootJoints())},
    };
}
