#include "zelkinscript.h"
#include "zelkinscript_p.h"

#include "zelkinposition.h"

namespace {

// A visitor that ends the walk at the first position it meets, kept in `found`.
std::function<bool(ZELKinCommand*)> StopAtPosition(ZELKinPosition*& found)
{
    return [&found](ZELKinCommand* command) {
        found = qobject_cast<ZELKinPosition*>(command);
        return !found;
    };
}

} // namespace

ZELKinScript::ZELKinScript(ZELKinScriptPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinObject(container, reference)
    , d_ptr(d)
{
}

ZELKinScript::~ZELKinScript() = default;

ZELKinPosition* ZELKinScript::GetFirstPosition() const
{
    ZELKinPosition* found = nullptr;
    VisitCommands(StopAtPosition(found), WalkOrder::Forward);
    return found;
}

ZELKinPosition* ZELKinScript::GetLastPosition() const
{
    ZELKinPosition* found = nullptr;
    VisitCommands(StopAtPosition(found), WalkOrder::Backward);
    return found;
}

int ZELKinScript::GetNumPositions() const
{
    int positions = 0;
    VisitCommands(
        [&positions](ZELKinCommand* command) {
            positions += qobject_cast<ZELKinPosition*>(command) ? 1 : 0;
            return true;
        },
        WalkOrder::Forward);
    return positions;
}

ZELKinPosition* ZELKinScript::GetCorrespondingPosition(const ZELTPPoint* point, int* index) const
{
    ZELKinPosition* found = nullptr;
    int flatIndex = 0;
    VisitCommands(
        [&](ZELKinCommand* command) {
            auto* position = qobject_cast<ZELKinPosition*>(command);
            if (position && position->GetToolPathPoint() == point) {
                found = position;
                return false;
            }
            ++flatIndex;
            return true;
        },
        WalkOrder::Forward);
    if (found && index)
        *index = flatIndex;
    return found;
}

bool ZELKinScript::VisitCommands(const CommandVisitor& visit, WalkOrder order) const
{
    const int count = GetNumCommands();
    for (int step = 0; step < count; ++step) {
        const int index = order == WalkOrder::Forward ? step : count - 1 - step;
        if (!visit(GetCommand(index)))
            return false;
    }
    return true;
}
