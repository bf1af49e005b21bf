#include "zelkinafpgcodeprobing_p.h"

#include "zelkinafpmachine.h"
#include "zelkinncformat_p.h"
#include "zelkinncstream_p.h"
#include "zelkinposition.h"
#include "zelkinprobecommand.h"
#include "zelkinprobeprocedure.h"
#include "zelkinprogram.h"
#include "zelkinvariable.h"

#include <cmath>

namespace {

constexpr double kMoveTolerance = 0.001;
constexpr double MillimetresPerInchOfRadius = 2.0 * ZELKinNCFormat::MillimetresPerInch;

ZELKinNCStream::Fixed Inches(double millimetres, int decimals)
{
    return {ZELKinNCFormat::ToInches(millimetres), decimals};
}

const ZELKinAFPMachine* MachineOf(const ZELKinProbeProcedure* procedure)
{
    const ZELKinProgram* program = procedure->GetProgram();
    return program ? qobject_cast<const ZELKinAFPMachine*>(program->GetMachine()) : nullptr;
}

// A move word of the incremental move between targets: only for an axis
// that moves.
void WriteMoveWord(ZELKinNCStream& out, char axis, double from, double to)
{
    if (std::abs(to - from) > kMoveTolerance)
        out << axis << ZELKinNCFormat::ToInches(to - from);
}

} // namespace

ZELKinAFPGCodeProbing::ZELKinAFPGCodeProbing(const ZELKinProbeProcedure* procedure, double toolingRetract,
                                             const QDateTime& now)
    : procedure(procedure)
    , toolingRetract(toolingRetract)
    , now(now)
{
}

void ZELKinAFPGCodeProbing::Write(ZELKinNCStream& out)
{
    if (!CanWrite())
        return;
    CollectTargets();
    WriteStartUp(out);
    WriteModel(out);
    for (int target = 0; target < targets.size(); ++target)
        WriteLocating(out, target);
    out << "M02\n";
}

bool ZELKinAFPGCodeProbing::CanWrite() const
{
    const ZELKinAFPMachine* machine = MachineOf(procedure);
    return machine && machine->GetVariable(QStringLiteral("X")) && machine->GetVariable(QStringLiteral("Y")) &&
        machine->GetVariable(QStringLiteral("Z"));
}

void ZELKinAFPGCodeProbing::CollectTargets()
{
    const ZELKinAFPMachine* machine = MachineOf(procedure);
    const ZELKinVariable* x = machine->GetVariable(QStringLiteral("X"));
    const ZELKinVariable* y = machine->GetVariable(QStringLiteral("Y"));
    const ZELKinVariable* z = machine->GetVariable(QStringLiteral("Z"));
    ZELMathPoint current;
    targets.clear();
    feedrate = 0.0;
    diameter = 0.0;
    for (int i = 0; i < procedure->GetNumCommands(); ++i) {
        const ZELKinCommand* command = procedure->GetCommand(i);
        if (const auto* position = qobject_cast<const ZELKinPosition*>(command)) {
            current = ZELMathPoint(position->GetVariableValue(x), position->GetVariableValue(y),
                                   position->GetVariableValue(z));
            feedrate = position->GetFeedrate();
        } else if (const auto* probe = qobject_cast<const ZELKinProbeCommand*>(command)) {
            targets.append(current);
            diameter = probe->GetDiameter();
        }
    }
}

void ZELKinAFPGCodeProbing::WriteStartUp(ZELKinNCStream& out) const
{
    const ZELKinProgram* program = procedure->GetProgram();
    out << "; Tool Point File processed at " << now.toString(Qt::TextDate) << '\n'
        << ";[BEGIN START-UP CODES]\n"
        << "G700; English Units\n"
        << "HSL; Establish High Speed Functions\n"
        << "GUD_EID=\"" << program->GetOriginalFileName() << "\"\n"
        << "GUD_REVISION=\"" << program->GetRevisionNumber() << "\"\n"
        << "TRAFOOF; Cancel Traori\n"
        << "G79; Cancel All Frames\n"
        << "M3; Start-of-Program Macro\n"
        << "MSG(\"Verify the probe is mounted.\")\n"
        << "M0; Program Stop\n"
        << "MSG(\"\")\n"
        << "M75; Enable Probe Protection Mode\n"
        << "M10; Extend Head\n"
        << ";{G0R" << Inches(MachineOf(procedure)->GetHeadTravel(), 4) << "}; Head Extension Distance\n"
        << "G90; Absolute Positioning Mode\n"
        << "G94; Feed-Per-Minute Mode\n"
        << ";[END START-UP CODES]\n"
        << "MSG(\"ID," << program->GetOriginalFileName() << ',' << program->GetRevisionNumber() << "\")\n"
        << "G700\n";
}

void ZELKinAFPGCodeProbing::WriteModel(ZELKinNCStream& out) const
{
    out << ";[RETRACT MODEL] OPMM=SPECIFIED,RetractAxis=Z,RetractValue="
        << Inches(procedure->GetSafetyPlane().GetOrigin().GetZ(), 6) << ",RetractFeedrate=" << Inches(feedrate, 4)
        << '\n';
    for (int i = 0; i < targets.size(); ++i) {
        const ZELMathPoint& target = targets.at(i);
        out << ";[THEORETICAL POINT " << i + 1 << "] X=" << Inches(target.GetX(), 4)
            << " Y=" << Inches(target.GetY(), 4) << " Z=" << Inches(target.GetZ(), 4) << '\n';
    }
    out << ";[RETRACT VALUE] Retract=" << Inches(toolingRetract, 4) << '\n'
        << ";[TARGET DIAMETER] Diameter=" << Inches(diameter, 4) << '\n'
        << ";[LEG LENGTH TOLERANCE] Tolerance=9999.0000\n"
        << ";[CENTER OF GRAVITY TOLERANCE] Tolerance=9999.0000\n";
}

void ZELKinAFPGCodeProbing::WriteLocating(ZELKinNCStream& out, int target) const
{
    const int number = target + 1;
    out << ";Start of Locating Process for Point " << number << '\n';
    WriteMoveToTarget(out, target);
    out << "MSG(\"Move probe to within " << Inches(toolingRetract, 2) << " inches of target #" << number
        << ".  Adjust X,Y,Z (ONLY) in manual mode.\")\n"
        << "M0; Program Stop\n"
        << "MSG(\"\")\n"
        << "G90; Absolute Positioning Mode\n"
        << "M63; Activate Probe Traori\n"
        << "M74; Disable Probe Protection Mode\n"
        << "PRB_SPH (GUD_PROBED_X, GUD_PROBED_Y, GUD_PROBED_Z, " << Inches(toolingRetract, 4) << ", "
        << ZELKinNCStream::Fixed{diameter / MillimetresPerInchOfRadius, 4} << "); Initiate Probe Cycle\n"
        << "M75; Enable Probe Protection Mode\n"
        << "M39; Read Probed Point\n"
        << "RETZ; Retract to Clearance Plane\n"
        << "TRAFOOF; Cancel Traori\n"
        << ";End of Locating Process for Point " << number << '\n';
}

void ZELKinAFPGCodeProbing::WriteMoveToTarget(ZELKinNCStream& out, int target) const
{
    if (target == 0) {
        out << "RETZ; Retract to Clearance Plane\n"
            << "G0C0A0C1=0; Move Wrist Axes to Zero\n";
        return;
    }
    // Only X and Y move towards the next target: Z stays at the clearance
    // plane.
    const ZELMathPoint& from = targets.at(target - 1);
    const ZELMathPoint& to = targets.at(target);
    out << "G91; Incremental Positioning Mode\n"
        << "G1";
    WriteMoveWord(out, 'X', from.GetX(), to.GetX());
    WriteMoveWord(out, 'Y', from.GetY(), to.GetY());
    out << 'F' << ZELKinNCFormat::ToInches(feedrate) << "; Position Axes For Next Tooling Point\n";
}
