#include "zelkinafpgcodematerialaxis_p.h"

#include "zelkincourse.h"
#include "zelkinrolllayupposition.h"

#include <zeltppoint.h>

#include <cmath>
#include <optional>

std::optional<double> ZELKinAFPGCodeMaterialAxis::Prepare(ZELKinCourse* course, ZELKinVariable* materialVariable)
{
    const ZELKinPosition* first = course->GetFirstPosition();
    if (!materialVariable || !first)
        return std::nullopt;
    if (first->IsVariableDefined(materialVariable)) {
        const double offset = first->GetVariableValue(materialVariable);
        SetOffsets(course, offset);
        return offset;
    }
    // Positions of other kinds than roll layup keep their own offsets.
    SetMaterialLengths(course, materialVariable);
    return std::nullopt;
}

double ZELKinAFPGCodeMaterialAxis::MaterialFromCourseStart(const ZELKinPosition* position,
                                                           const ZELKinVariable* materialVariable)
{
    const double offset = position->GetUAxisOffset();
    return position->GetVariableValue(materialVariable) - (std::isnan(offset) ? 0.0 : offset);
}

void ZELKinAFPGCodeMaterialAxis::SetMaterialLengths(ZELKinCourse* course, ZELKinVariable* materialVariable)
{
    double length = 0.0;
    std::optional<ZELMathPoint> lastTip;
    for (int i = 0; i < course->GetNumCommands(); ++i) {
        auto* position = qobject_cast<ZELKinRollLayupPosition*>(course->GetCommand(i));
        if (!position)
            continue;
        if (const ZELTPPoint* point = position->GetToolPathPoint()) {
            const ZELMathPoint tip = point->GetTipCoordinates();
            if (lastTip)
                length += tip.GetDistanceTo(*lastTip);
            lastTip = tip;
        }
        position->SetVariableValue(materialVariable, length);
    }
}

void ZELKinAFPGCodeMaterialAxis::SetOffsets(ZELKinCourse* course, double offset)
{
    for (int i = 0; i < course->GetNumCommands(); ++i) {
        if (auto* position = qobject_cast<ZELKinPosition*>(course->GetCommand(i)))
            position->SetUAxisOffset(offset);
    }
}
