#include "zelkinafpgcodecourse_p.h"

#include "zelkinafpgcodematerialaxis_p.h"
#include "zelkinafpgcodetexts_p.h"
#include "zelkinafpmachine.h"
#include "zelkincourselink.h"
#include "zelkinncformat_p.h"
#include "zelkinncstream_p.h"
#include "zelkinrolllayupposition.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkintowcommand.h"
#include "zelkintowcourse.h"
#include "zelkintowfeedcommand.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double kFeedChangeTolerance = 0.001;
const QString kFromPark = QStringLiteral(";[FROM PARK]");

// The tow codes that the next position line carries, and whether they add
// or cut tows (which limits its feed).
struct TowCodes
{
    QString text;
    bool afterAdd = false;
    bool afterCut = false;
};

// The codes of `tow` ahead of `after`, the codes of the commands after it:
// "T" and the mask for an add, "S" and the mask for a cut.
TowCodes Prepended(const ZELKinTowCommand* tow, TowCodes after)
{
    const QString mask = QString::number(tow->GetTowMask().GetRawValue());
    if (tow->GetType() == ZELKinTowCommand::Add) {
        after.text.prepend(QLatin1Char('T') + mask);
        after.afterAdd = true;
    } else if (tow->GetType() == ZELKinTowCommand::Cut) {
        after.text.prepend(QLatin1Char('S') + mask);
        after.afterCut = true;
    }
    return after;
}

// Codes carried over from a position that gave no line go with the next.
void Append(TowCodes& codes, const TowCodes& more)
{
    codes.text += more.text;
    codes.afterAdd = codes.afterAdd || more.afterAdd;
    codes.afterCut = codes.afterCut || more.afterCut;
}

// The procedure's link at `index`; null past the end of its links.
const ZELKinCourseLink* LinkAt(const ZELKinRollLayupProcedure* procedure, int index)
{
    return index >= 0 && index < procedure->GetNumCourseLinks() ? procedure->GetCourseLink(index) : nullptr;
}

// "T" n "=" length for each tow n the course uses, separated by ",".
void WriteTowLengths(ZELKinNCStream& out, const ZELKinTowCourse* course)
{
    const ZELCompTowMask mask = course->GetTowMask();
    const char* separator = "";
    for (int tow = 1; tow <= mask.GetNumTows(); ++tow) {
        if (!mask.IsTowEnabled(tow))
            continue;
        out << separator << 'T' << tow << '=' << ZELKinNCStream::Fixed{course->GetTowLength(tow - 1), 2};
        separator = ",";
    }
}

} // namespace

struct ZELKinAFPGCodeCourse::Step
{
    //! Null for a command that is not a roll layup position.
    ZELKinRollLayupPosition* position = nullptr;
    //! A position's axis values, and the codes of the run of tow and tow
    //! feed commands right after it.
    ZELKinAFPGCodeAxisWords::AxisValues values;
    TowCodes codes;
};

ZELKinAFPGCodeCourse::ZELKinAFPGCodeCourse(const ZELKinAFPMachine* machine, const ZELKinRollLayupProcedure* procedure,
                                           const ZELKinAFPGCodeTowEvents::PinchSplitting& splitting)
    : machine(machine)
    , procedure(procedure)
    , splitting(splitting)
    , words(machine, procedure)
{
    if (procedure->GetNumPlies() > 0) {
        const ZELKinPlyDescription ply = procedure->GetPlyDefinition(0);
        material = ply.GetMaterial();
        plyName = ply.GetName();
    }
}

void ZELKinAFPGCodeCourse::Write(ZELKinNCStream& out, ZELKinTowCourse* course, int listIndex) const
{
    const std::optional<double> offset = ZELKinAFPGCodeMaterialAxis::Prepare(course, machine->GetMaterialVariable());
    WriteRecordAndEvents(out, course, listIndex, offset);
    WriteTowsRequired(out, course);
    WriteStartChecks(out, course, listIndex);
    Written written{WriteApproach(out, course), 0};
    WriteCourseStart(out, course, written.held);
    const Steps steps = CollectSteps(course);
    WriteCourseLines(out, course, steps, written);
    WriteOffPartLine(out, course, steps, written.held);
    out << "CHECK_M01; Check Whether Optional Stopping\n";
    WriteRetract(out, course, written);
    out << "; End of Course #" << listIndex + 1 << " Circuit\n";
}

void ZELKinAFPGCodeCourse::WriteRecordAndEvents(ZELKinNCStream& out, const ZELKinTowCourse* course, int listIndex,
                                                std::optional<double> offset) const
{
    out << ZELKinAFPGCodeTexts::CourseRecord << listIndex + 1 << ",TowRoller=" << course->GetRollerTows()
        << ",TowsUsed=" << course->GetTowMask().GetHexadecimalString() << ",Material=" << material << '\n'
        << ";PMAC1: G400U0\n";
    ZELKinAFPGCodeTowEvents events(machine->GetPinchDistance(), machine->GetMaterialVariable(), splitting);
    for (const ZELKinAFPGCodeTowEvents::Event& event : events.Collect(course, offset))
        ZELKinAFPGCodeTowEvents::WriteLine(out, event);
}

void ZELKinAFPGCodeCourse::WriteTowsRequired(ZELKinNCStream& out, const ZELKinTowCourse* course)
{
    const ZELCompTowMask mask = course->GetTowMask();
    out << "; Tows Required for Course [" << mask.GetHexadecimalString() << "]\n"
        << "REQ_TOW1=" << mask.GetRawValue() << '\n'
        << ";[TOW LENGTH]";
    WriteTowLengths(out, course);
    out << '\n';
}

void ZELKinAFPGCodeCourse::WriteStartChecks(ZELKinNCStream& out, const ZELKinTowCourse* course, int listIndex)
{
    // The first course of a procedure starts the sequence and the ply, and
    // always checks the roller; the later ones only when coming from park.
    QString prefix = kFromPark;
    if (listIndex == 0) {
        out << "M22; Sequence Start\n"
            << "M20; Ply Start\n";
        prefix.clear();
    }
    const int rollerTows = course->GetRollerTows();
    out << prefix << "MSG(\"Verify " << rollerTows << "-tow compaction roller is currently loaded on head\")\n"
        << prefix << "M0; Program Stop\n"
        << prefix << "MSG(\"\")\n";
    if (rollerTows == 8)
        out << prefix << "M85; 8-Tow Roller Loaded\n";
    else if (rollerTows == 16)
        out << prefix << "M84; 16-Tow Roller Loaded\n";
}

ZELKinAFPGCodeAxisWords::Held ZELKinAFPGCodeCourse::WriteApproach(ZELKinNCStream& out,
                                                                  const ZELKinTowCourse* course) const
{
    const ZELKinCourseLink* approach = LinkAt(procedure, course->GetIndex());
    const ZELKinPosition* last = approach ? approach->GetLastPosition() : nullptr;
    const double feed = last ? last->GetFeedrate() : std::numeric_limits<double>::quiet_NaN();
    out << kFromPark << "M61; Activate Layup Traori\n"
        << kFromPark << "M67; Establish Tool Transformation Frame\n"
        << kFromPark << "GUD_MATERIAL_REQUIRED=\"" << material << "\"\n"
        << kFromPark << "M27; Verify Material Loaded\n"
        << kFromPark << "RETZ; Retract head\n"
        << kFromPark << "G0";
    words.WriteAll(out, last, {QStringLiteral("Z")});
    out << ";Last off part point\n"
        << kFromPark << "G1F" << ZELKinNCFormat::ToInches(feed) << ";Last off part point\n"
        << ";[FROM COURSE]G0";
    words.WriteAll(out, last);
    out << ";Last off part point\n"
        << kFromPark << "MSG(\"Verify compaction roller is above expected starting point on tool\")\n"
        << kFromPark << "M0; Program Stop\n"
        << kFromPark << "MSG(\"\")\n";
    // The lines marked ";[FROM PARK]" and ";[FROM COURSE]" run only on one
    // way into the course; this one always does, and as nothing is known
    // to be held before it, it writes every word.
    out.TracePosition(last);
    out << "N1G641 ADIS=OFF_PART ";
    ZELKinAFPGCodeAxisWords::Held held = words.NothingHeld();
    words.WriteModal(out, last, held, std::numeric_limits<double>::quiet_NaN());
    out << "; Last off part point\n"
        << ";[FROM COURSE]M7; Check if prior course completed\n"
        << ";[END OF CONDITIONAL BLOCKS]\n";
    return held;
}

void ZELKinAFPGCodeCourse::WriteCourseStart(ZELKinNCStream& out, const ZELKinTowCourse* course,
                                            ZELKinAFPGCodeAxisWords::Held& held) const
{
    out << "GUD_PHASE=\"AFP\"\n"
        << "GUD_PLY_ID=\"" << plyName << "\"\n"
        << "GUD_CRS_BND_NUM=" << course->GetIndex() + 1 << '\n'
        << "GUD_RECOVERY_NUM=0\n"
        << "HSL; Establish High Speed Functions\n"
        << "G92(U,0.0000); Preset U-Axis\n";
    words.Preset(held, QStringLiteral("U"), 0.0);
    out << "$A_DBD[580]=REQ_TOW1\n"
        << "M64; Handshake Between PMAC and CNC\n"
        << "M26; Check tows are loaded\n"
        << "M4; Start Course\n"
        << "M19; Turn On Compaction Heater\n";
}

// Walked backwards, so that each position finds the codes of the commands
// after it collected.
ZELKinAFPGCodeCourse::Steps ZELKinAFPGCodeCourse::CollectSteps(const ZELKinTowCourse* course) const
{
    Steps steps(std::size_t(course->GetNumCommands()));
    TowCodes run;
    for (int i = course->GetNumCommands() - 1; i >= 0; --i) {
        Step& step = steps[std::size_t(i)];
        ZELKinCommand* command = course->GetCommand(i);
        step.position = qobject_cast<ZELKinRollLayupPosition*>(command);
        if (step.position) {
            step.values = words.ValuesOf(step.position);
            step.codes = std::exchange(run, TowCodes());
        } else if (qobject_cast<const ZELKinTowFeedCommand*>(command)) {
            continue;
        } else if (const auto* tow = qobject_cast<const ZELKinTowCommand*>(command)) {
            run = Prepended(tow, std::move(run));
        } else {
            run = TowCodes();
        }
    }
    return steps;
}

void ZELKinAFPGCodeCourse::WriteCourseLines(ZELKinNCStream& out, const ZELKinTowCourse* course, const Steps& steps,
                                            Written& written) const
{
    const int count = int(steps.size());
    const auto firstStep = std::find_if(steps.cbegin(), steps.cend(), [](const Step& step) { return step.position; });
    const ZELKinRollLayupPosition* first = firstStep != steps.cend() ? firstStep->position : nullptr;
    written.lastCourseLineN = first ? first->GetNIndex() : 0;
    // The feed of the line before, against which a feed change (M69) is
    // marked: the approach point's, also when it gives no line.
    double previousFeed = first ? ZELKinAFPGCodeAxisWords::EffectiveFeed(first)
                                : std::numeric_limits<double>::quiet_NaN();
    TowCodes codes;
    bool firstLine = true;
    // Each line begins with its line end, so that the last one can be
    // marked after the loop.
    out << ZELKinAFPGCodeTexts::CourseMode;
    for (int i = 0; i < count - 1; ++i) {
        const Step& step = steps[std::size_t(i)];
        ZELKinRollLayupPosition* position = step.position;
        if (!position)
            continue;
        Append(codes, step.codes);
        const double feed = words.LimitFeed(position->GetFeedrate(), codes.afterAdd, codes.afterCut);
        if (position == first ? ZELKinAFPGCodeAxisWords::HoldsAxes(written.held, step.values)
                              : ZELKinAFPGCodeAxisWords::HoldsAll(written.held, step.values, feed)) {
            // The approach link ended on the approach point: it gives no
            // line, and the tow codes after it none either.
            if (position == first)
                codes = TowCodes();
            continue;
        }
        out << '\n';
        out.TracePosition(position);
        out << 'N' << position->GetNIndex();
        if (i > 0 && i < count - 3 && std::abs(feed - previousFeed) > kFeedChangeTolerance)
            out << "M69";
        ZELKinAFPGCodeAxisWords::SetActualFeed(position, feed);
        out << "G1";
        if (i == 0)
            out << "G9";
        if (i == count - 2)
            out << "G642 ADIS=COURSEND ";
        words.WriteModal(out, position, step.values, feed, written.held, codes.text,
                         FollowingSeconds(course, steps, i, step.values));
        if (firstLine)
            out << ";First point in course";
        firstLine = false;
        codes = TowCodes();
        previousFeed = feed;
        written.lastCourseLineN = position->GetNIndex();
    }
    out << ";Last point in course\n" << ZELKinAFPGCodeTexts::OffCourseMode << '\n';
}

void ZELKinAFPGCodeCourse::WriteOffPartLine(ZELKinNCStream& out, const ZELKinTowCourse* course, const Steps& steps,
                                            ZELKinAFPGCodeAxisWords::Held& held) const
{
    const ZELKinRollLayupPosition* last = steps.empty() ? nullptr : steps.back().position;
    if (!last)
        return;
    out.TracePosition(last);
    out << 'N' << last->GetNIndex() << "G1G641 ADIS=OFF_PART M5M18";
    words.WriteModal(out, last, held, RetractFollowingSeconds(course, -1, steps.back().values));
    out << ";First off part point\n";
}

void ZELKinAFPGCodeCourse::WriteRetract(ZELKinNCStream& out, const ZELKinTowCourse* course, Written& written) const
{
    const ZELKinCourseLink* retract = LinkAt(procedure, course->GetIndex() + 1);
    if (!retract)
        return;
    // The first position that differs from the course's end only marks the
    // start of the retract when it stands there (its feed alone differs).
    // One that moves away is written: leaving it out would send the head from
    // the course's end straight to the next point, past the one the toolpath
    // asks for (the lift off the part).
    bool started = false;
    for (int j = 0; j < retract->GetNumCommands(); ++j) {
        const auto* position = qobject_cast<const ZELKinPosition*>(retract->GetCommand(j));
        if (!position)
            continue;
        const ZELKinAFPGCodeAxisWords::AxisValues values = words.ValuesOf(position);
        const double feed = ZELKinAFPGCodeAxisWords::EffectiveFeed(position);
        if (ZELKinAFPGCodeAxisWords::HoldsAll(written.held, values, feed))
            continue;
        if (!started) {
            started = true;
            if (ZELKinAFPGCodeAxisWords::HoldsAxes(written.held, values))
                continue;
        }
        out.TracePosition(position);
        out << 'N' << written.lastCourseLineN + 1 + j << (j == 0 ? "G1G641 ADIS=OFF_PART M5M18" : "G1G642 ADIS=OFF_PART ");
        words.WriteModal(out, position, values, feed, written.held, QString(),
                         RetractFollowingSeconds(course, j, values));
        out << '\n';
    }
}

double ZELKinAFPGCodeCourse::FollowingSeconds(const ZELKinTowCourse* course, const Steps& steps, int command,
                                              const ZELKinAFPGCodeAxisWords::AxisValues& values) const
{
    const ZELKinAFPGCodeAxisWords::Held from{values, std::numeric_limits<double>::quiet_NaN()};
    const int count = int(steps.size());
    for (int j = command + 1; j < count; ++j) {
        const Step& step = steps[std::size_t(j)];
        if (!step.position || ZELKinAFPGCodeAxisWords::HoldsAxes(from, step.values))
            continue;
        // The last position is the off-part line's, at its own feed.
        if (j == count - 1)
            return words.StepSeconds(values, step.values, ZELKinAFPGCodeAxisWords::EffectiveFeed(step.position));
        return words.StepSeconds(
            values, step.values,
            words.LimitFeed(step.position->GetFeedrate(), step.codes.afterAdd, step.codes.afterCut));
    }
    return RetractFollowingSeconds(course, -1, values);
}

double ZELKinAFPGCodeCourse::RetractFollowingSeconds(const ZELKinTowCourse* course, int index,
                                                     const ZELKinAFPGCodeAxisWords::AxisValues& values) const
{
    const ZELKinCourseLink* retract = LinkAt(procedure, course->GetIndex() + 1);
    if (!retract)
        return std::numeric_limits<double>::quiet_NaN();
    const ZELKinAFPGCodeAxisWords::Held from{values, std::numeric_limits<double>::quiet_NaN()};
    for (int j = index + 1; j < retract->GetNumCommands(); ++j) {
        const auto* position = qobject_cast<const ZELKinPosition*>(retract->GetCommand(j));
        if (!position)
            continue;
        const ZELKinAFPGCodeAxisWords::AxisValues next = words.ValuesOf(position);
        if (!ZELKinAFPGCodeAxisWords::HoldsAxes(from, next))
            return words.StepSeconds(values, next, ZELKinAFPGCodeAxisWords::EffectiveFeed(position));
    }
    return std::numeric_limits<double>::quiet_NaN();
}
