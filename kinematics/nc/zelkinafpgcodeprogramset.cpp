#include "zelkinafpgcodeprogramset_p.h"

#include "zelkinafpgcodeplies_p.h"
#include "zelkinafpmachine.h"
#include "zelkinncformat_p.h"
#include "zelkinncstream_p.h"
#include "zelkinprogram.h"
#include "zelkinrolllayupprocedure.h"

#include <utility>

namespace {

const QString kDateFormat = QStringLiteral("MM/dd/yy HH:mm:ss");

// What the controller expects of this machine whatever the model holds.
const char* const kMachineDescription = "#MACHINE STYLE\n"
                                        " BASE   : GANTRY\n"
                                        " MANDREL: NO_MANDREL\n"
                                        " WRIST  : RBR(X)\n"
                                        "\n"
                                        "#HEAD 1\n"
                                        "TOW WIDTH    : 0.2500\n"
                                        "ROLLER RADIUS: 1.1811\n"
                                        ";                   X OFFSET    Y OFFSET    Z OFFSET\n"
                                        ";PROBE OFFSETS : NOT DEFINED\n"
                                        ";LASER OFFSETS : NOT DEFINED\n"
                                        "\n"
                                        "#MACHINE 1 OFFSETS\n"
                                        "; Machine offsets are not used for TRAORI machines.\n"
                                        "\n"
                                        "#MACHINE 1 LIMITS\n"
                                        ";           MINIMUM     MAXIMUM\n"
                                        " X     :      0.0000,    959.9981\n"
                                        " Y     :     45.2755,    314.9600\n"
                                        " Z     :   -118.1100,      0.0000\n"
                                        " C     :    -200.500,     200.500\n"
                                        " A     :     -95.000,      95.000\n"
                                        " C1    :    -185.500,     185.500\n"
                                        " P     :     -20.000,      20.000\n"
                                        "\n"
                                        "#KINEMATIC PRIORITIES\n"
                                        " P-AXIS LOCK        : 0.000\n"
                                        "\n"
                                        "#TOW PLACEMENT PARAMETERS\n"
                                        " LIFT_HEAD_ANGLE=90.0000\n"
                                        " LOWER_HEAD_ANGLE=90.0000\n"
                                        " WITHDRAWAL_DISTANCE=6.000\n"
                                        " POST_FILTER_A_AXIS=0.250\n"
                                        " STRAIGHTEN_A_MIN=100.000\n"
                                        " LIMIT_C_AXES_EXTREMES=OFF\n"
                                        "\n";

const char* const kFixedConfigParameters = " MINIMUM_TOW_INTERRUPT=0.100\n"
                                           " MINIMUM_TOW_LENGTH=4.000\n"
                                           " CONTROL_IPO_TIME=0.0020\n"
                                           " CUTTER_RETRACT_TIME=0.0100\n"
                                           " REWIND_ACTION=3\n"
                                           " FILTER_TYPE=0\n"
                                           " MAX_A_FOR_SIGN_CHANGE=7.0000\n"
                                           " MAX_A_FOR_LIFTING_MODE=10.0000\n"
                                           " OUTPUT_VISION_DATA=ON\n"
                                           " P_AXIS_COMP_MODE=1\n"
                                           " ENHANCED_OFF_PART_MOTION=ON\n";

ZELKinNCStream::Fixed Distance(double millimetres)
{
    return {ZELKinNCFormat::ToInches(millimetres), 3};
}

} // namespace

ZELKinAFPGCodeProgramSet::Contents ZELKinAFPGCodeProgramSet::Describe(const ZELKinProgram* program)
{
    const auto* machine = qobject_cast<const ZELKinAFPMachine*>(program->GetMachine());
    Contents contents{
        program->GetOriginalFileName(), program->GetRevisionNumber(), program->GetAuthor(),     program->GetDate(),
        machine->GetAddDistance(),      machine->GetCutDistance(),    machine->GetHeadTravel(), {}};
    AddPlyPrograms(contents, program);
    return contents;
}

void ZELKinAFPGCodeProgramSet::AddPlyPrograms(Contents& contents, const ZELKinProgram* program)
{
    for (const ZELKinRollLayupProcedure* procedure : ZELKinAFPGCodePlies::RollLayupProceduresOf(program)) {
        PlyProgram ply{ZELKinAFPGCodePlies::PaddedPlyNumberOf(procedure), procedure->objectName(), {}};
        for (int i = 0; i < procedure->GetNumPlies(); ++i)
            ply.plies.append(procedure->GetPlyDefinition(i));
        contents.plyPrograms.append(ply);
    }
}

ZELKinAFPGCodeProgramSet::ZELKinAFPGCodeProgramSet(const ZELKinProgram* program, const QDateTime& now)
    : ZELKinAFPGCodeProgramSet(Describe(program), now)
{
}

ZELKinAFPGCodeProgramSet::ZELKinAFPGCodeProgramSet(Contents contents, const QDateTime& now)
    : contents(std::move(contents))
    , now(now)
{
}

void ZELKinAFPGCodeProgramSet::Write(ZELKinNCStream& out) const
{
    WriteIdentification(out);
    WriteMachineDescription(out);
    WriteConfigParameters(out);
    WritePlyPrograms(out);
    WritePlyTable(out);
}

void ZELKinAFPGCodeProgramSet::WriteIdentification(ZELKinNCStream& out) const
{
    out << "PROGRAM SET ID: " << contents.name << '\n'
        << "REVISION      : " << contents.revision << '\n'
        << "CREATED BY    : " << contents.author << '\n'
        << "CREATED DATE  : ICPS\n"
        << "CHECKED BY    : ICPS\n"
        << "CHECKED DATE  : ICPS\n"
        << "TOOL TYPE     : FIXED\n"
        << "UNITS         : INCH\n"
        << "CPS DATE/TIME : " << contents.date.toString(kDateFormat) << '\n'
        << "CPS RELEASE   : APT-2N00077\\QuarterI\n"
        << "CPP DATE/TIME : " << now.toString(kDateFormat) << '\n'
        << "CPP RELEASE   : 001.004\n"
        << '\n';
}

void ZELKinAFPGCodeProgramSet::WriteMachineDescription(ZELKinNCStream& out)
{
    out << kMachineDescription;
}

void ZELKinAFPGCodeProgramSet::WriteConfigParameters(ZELKinNCStream& out) const
{
    out << "#SYSCOM/CONFIG PARAMETERS\n"
        << " NUMBER_OF_MACHINES=1\n"
        << " AVERAGE_ADD_DISTANCE=" << Distance(contents.addDistance) << '\n'
        << " AVERAGE_CUT_DISTANCE=" << Distance(contents.cutDistance) << '\n'
        << " EXTENDED_ZONE_DISTANCE=2.250\n"
        << " HEAD_SLIDE_TRAVEL=" << Distance(contents.headTravel) << '\n'
        << kFixedConfigParameters;
}

void ZELKinAFPGCodeProgramSet::WritePlyPrograms(ZELKinNCStream& out) const
{
    out << "; NC_NUM, VelTRACK Name\n";
    for (const PlyProgram& ply : contents.plyPrograms)
        out << "; " << ply.number << ", " << ply.procedure << '\n';
}

void ZELKinAFPGCodeProgramSet::WritePlyTable(ZELKinNCStream& out) const
{
    out << '\n'
        << "#PLY TABLE\n"
        << "; SEQ  PLY           MATERIAL     ANGLE   METHOD\n";
    for (const PlyProgram& program : contents.plyPrograms) {
        for (const ZELKinPlyDescription& ply : program.plies) {
            out << ' ' << program.number << ", " << ply.GetName().leftJustified(13) << ','
                << ply.GetMaterial().leftJustified(8) << ',' << ZELKinAFPGCodePlies::AngleField(ply.GetAngle()) << ','
                << ZELKinAFPGCodePlies::MethodLabel(ply.GetMethod()) << '\n';
        }
    }
    out << '\n';
}
