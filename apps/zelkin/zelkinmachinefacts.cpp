#include "zelkinmachinefacts.h"

#include <zelkinrotaryjoint.h>
#include <zelkintranslationjoint.h>

QString ZELKinMachineFacts::GetVariableTypeWord(ZELKinVariable::VariableType type)
{
    return type == ZELKinVariable::Rotary ? QStringLiteral("rotary") : QStringLiteral("linear");
}

QString ZELKinMachineFacts::GetJointTypeWord(const ZELKinJoint& joint)
{
    return qobject_cast<const ZELKinRotaryJoint*>(&joint) ? QStringLiteral("rotary") : QStringLiteral("translation");
}

QString ZELKinMachineFacts::GetPriorityWord(ZELKinJoint::Priority priority)
{
    switch (priority) {
    case ZELKinJoint::High:
        return QStringLiteral("high");
    case ZELKinJoint::Low:
        return QStringLiteral("low");
    case ZELKinJoint::Medium:
        break;
    }
    return QStringLiteral("medium");
}

ZELMathVector ZELKinMachineFacts::GetJointVector(const ZELKinJoint& joint)
{
    if (const auto* rotary = qobject_cast<const ZELKinRotaryJoint*>(&joint))
        return rotary->GetVector();
    // A joint is either rotary or a translation joint; the loader makes no other kind.
    return static_cast<const ZELKinTranslationJoint&>(joint).GetVector();
}

std::optional<ZELMathPoint> ZELKinMachineFacts::GetJointPivot(const ZELKinJoint& joint)
{
    if (const auto* rotary = qobject_cast<const ZELKinRotaryJoint*>(&joint))
        return rotary->GetPivot();
    return std::nullopt;
}

QStringList ZELKinMachineFacts::GetJointVariableNames(const ZELKinJoint& joint)
{
    QStringList names;
    for (int i = 0; i < joint.GetDegreesOfFreedom(); ++i)
        names.append(joint.GetVariable(i)->GetLabel());
    return names;
}
