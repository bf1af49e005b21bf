#include "zelkinafpgcodetowevents_p.h"

#include "zelkinafpgcodematerialaxis_p.h"
#include "zelkinafpgcodetexts_p.h"
#include "zelkinncstream_p.h"
#include "zelkinposition.h"
#include "zelkintowcommand.h"
#include "zelkintowcourse.h"
#include "zelkintowfeedcommand.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMergeDistance = 0.001;

const char* CodeOf(ZELKinAFPGCodeTowEvents::Kind kind)
{
    switch (kind) {
    case ZELKinAFPGCodeTowEvents::AddBegin:
        return "A/B";
    case ZELKinAFPGCodeTowEvents::AddEnd:
        return "A/E";
    case ZELKinAFPGCodeTowEvents::CutBegin:
        return "C/B";
    case ZELKinAFPGCodeTowEvents::PinchBegin:
        return "P/B";
    case ZELKinAFPGCodeTowEvents::PinchEnd:
        return "P/E";
    }
    return "";
}

bool IsPositiveAndFinite(double value)
{
    return std::isfinite(value) && value > 0.0;
}

// NaN positions sort last, so that the order stays a strict weak one.
bool IsBefore(const ZELKinAFPGCodeTowEvents::Event& a, const ZELKinAFPGCodeTowEvents::Event& b)
{
    if (std::isnan(a.u))
        return false;
    return std::isnan(b.u) || a.u < b.u;
}

// The event already kept that `event` merges into: one of the same kind
// less than the merge distance before it; null when there is none.
ZELKinAFPGCodeTowEvents::Event* MergePartner(QList<ZELKinAFPGCodeTowEvents::Event>& kept,
                                             const ZELKinAFPGCodeTowEvents::Event& event)
{
    for (auto candidate = kept.rbegin(); candidate != kept.rend(); ++candidate) {
        if (candidate->kind == event.kind && std::abs(event.u - candidate->u) < kMergeDistance)
            return &*candidate;
        // Kept in order of U: the ones before this lie further away still.
        if (event.u - candidate->u >= kMergeDistance)
            return nullptr;
    }
    return nullptr;
}

} // namespace

ZELKinAFPGCodeTowEvents::ZELKinAFPGCodeTowEvents(double pinchDistance, const ZELKinVariable* materialVariable,
                                                 const PinchSplitting& splitting)
    : pinchDistance(pinchDistance)
    , materialVariable(materialVariable)
    , splitting(splitting)
{
}

QList<ZELKinAFPGCodeTowEvents::Event> ZELKinAFPGCodeTowEvents::Collect(const ZELKinTowCourse* course,
                                                                         std::optional<double> offset)
{
    Reset(course);
    for (int i = 0; i < course->GetNumCommands(); ++i) {
        const ZELKinCommand* command = course->GetCommand(i);
        if (const auto* position = qobject_cast<const ZELKinPosition*>(command)) {
            currentU = offset ? position->GetVariableValue(materialVariable) - *offset
                              : ZELKinAFPGCodeMaterialAxis::MaterialFromCourseStart(position, materialVariable);
        } else if (const auto* feed = qobject_cast<const ZELKinTowFeedCommand*>(command)) {
            ApplyFeed(feed);
        } else if (const auto* tow = qobject_cast<const ZELKinTowCommand*>(command)) {
            ApplyTowCommand(tow);
        }
    }
    return SortedAndMerged(events);
}

void ZELKinAFPGCodeTowEvents::WriteLine(ZELKinNCStream& out, const Event& event)
{
    out << ZELKinAFPGCodeTexts::TowEvent << ZELKinNCStream::Fixed{event.u, 3} << CodeOf(event.kind) << '['
        << event.mask.GetHexadecimalString() << "]\n";
}

void ZELKinAFPGCodeTowEvents::Reset(const ZELKinTowCourse* course)
{
    numTows = std::max(course->GetTowMask().GetNumTows(), 0);
    currentU = 0.0;
    rates.fill(1.0, numTows);
    pinchStarts.fill(std::numeric_limits<double>::quiet_NaN(), numTows);
    largestRate = 1.0;
    events.clear();
}

void ZELKinAFPGCodeTowEvents::ApplyFeed(const ZELKinTowFeedCommand* command)
{
    const QList<double> given = command->GetRates();
    for (int i = 0; i < std::min(int(given.size()), numTows); ++i) {
        if (!std::isnan(given.at(i)))
            rates[i] = given.at(i);
    }
    largestRate = command->GetLargestRate();
}

void ZELKinAFPGCodeTowEvents::ApplyTowCommand(const ZELKinTowCommand* command)
{
    const ZELCompTowMask mask = command->GetTowMask();
    switch (command->GetType()) {
    case ZELKinTowCommand::Add:
        Add(currentU, AddBegin, mask);
        Add(currentU + pinchDistance * largestRate, AddEnd, mask);
        break;
    case ZELKinTowCommand::Cut:
        Add(currentU, CutBegin, mask);
        break;
    case ZELKinTowCommand::Force:
        ApplyForce(mask);
        break;
    case ZELKinTowCommand::Release:
        ApplyRelease(mask);
        break;
    }
}

void ZELKinAFPGCodeTowEvents::ApplyForce(const ZELCompTowMask& mask)
{
    Add(currentU, PinchBegin, mask);
    for (int tow = 1; tow <= std::min(mask.GetNumTows(), numTows); ++tow) {
        if (mask.IsTowEnabled(tow))
            pinchStarts[tow - 1] = currentU;
    }
}

void ZELKinAFPGCodeTowEvents::ApplyRelease(const ZELCompTowMask& mask)
{
    const qsizetype release = events.size();
    Add(currentU, PinchEnd, mask);
    if (std::isnan(splitting.maximumLength))
        return;
    for (int tow = 1; tow <= std::min(mask.GetNumTows(), numTows); ++tow) {
        if (!mask.IsTowEnabled(tow) || std::isnan(pinchStarts.at(tow - 1)))
            continue;
        if (SplitPinch(tow, pinchStarts.at(tow - 1)))
            events[release].mask.SetTowEnabled(tow, false);
        pinchStarts[tow - 1] = std::numeric_limits<double>::quiet_NaN();
    }
}

bool ZELKinAFPGCodeTowEvents::SplitPinch(int tow, double pinchStart)
{
    const double stretch = currentU - pinchStart;
    const double length = stretch / rates.at(tow - 1);
    if (!IsSplittingEnabled() || !std::isfinite(length))
        return false;
    const ZELCompTowMask single = ZELCompTowMask::GetSingleTowMask(numTows, tow);
    double reached = splitting.maximumLength;
    Kind kind = PinchEnd;
    for (int added = 0; length > reached && added < MaximumPinchSplitEvents; ++added) {
        Add(pinchStart + (reached / length) * stretch, kind, single);
        if (kind == PinchEnd) {
            reached += splitting.releaseLength;
            if (reached > length)
                return true;
            kind = PinchBegin;
        } else {
            reached += splitting.maximumLength;
            kind = PinchEnd;
        }
    }
    return false;
}

bool ZELKinAFPGCodeTowEvents::IsSplittingEnabled() const
{
    return IsPositiveAndFinite(splitting.maximumLength) && IsPositiveAndFinite(splitting.releaseLength);
}

void ZELKinAFPGCodeTowEvents::Add(double u, Kind kind, const ZELCompTowMask& mask)
{
    events.append(Event{u, kind, mask});
}

QList<ZELKinAFPGCodeTowEvents::Event> ZELKinAFPGCodeTowEvents::SortedAndMerged(QList<Event> events)
{
    events.removeIf([](const Event& event) { return event.mask.GetNumEnabled() <= 0; });
    std::stable_sort(events.begin(), events.end(), IsBefore);
    QList<Event> merged;
    for (const Event& event : std::as_const(events)) {
        if (Event* partner = MergePartner(merged, event))
            partner->mask |= event.mask;
        else
            merged.append(event);
    }
    return merged;
}
