#include "zelkinafpgcodeply_p.h"

#include "zelkinafpgcodecourse_p.h"
#include "zelkinafpgcodeplies_p.h"
#include "zelkinafpmachine.h"
#include "zelkinncformat_p.h"
#include "zelkinncstream_p.h"
#include "zelkinposition.h"
#include "zelkinprogram.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkintowcourse.h"

#include <zelsysprogress.h>

#include <limits>

namespace {

// The feed of the move back to the safety plane: that of the last position
// of the procedure's first course.
double RetractFeedrateOf(const ZELKinRollLayupProcedure* procedure)
{
    const ZELKinPosition* last = procedure->GetNumCourses() > 0 && procedure->GetCourse(0)
        ? procedure->GetCourse(0)->GetLastPosition()
        : nullptr;
    return last ? last->GetFeedrate() : std::numeric_limits<double>::quiet_NaN();
}

ZELKinNCStream::Fixed Inches(double millimetres)
{
    return {ZELKinNCFormat::ToInches(millimetres), 6};
}

} // namespace

ZELKinAFPGCodePly::ZELKinAFPGCodePly(const ZELKinRollLayupProcedure* procedure,
                                     const ZELKinAFPGCodeTowEvents::PinchSplitting& splitting, ZELSysProgress* progress)
    : procedure(procedure)
    , splitting(splitting)
    , progress(progress)
{
}

qint64 ZELKinAFPGCodePly::CountCoursePositions(const ZELKinRollLayupProcedure* procedure)
{
    qint64 positions = 0;
    for (const ZELKinCourse* course : procedure->GetCourses()) {
        if (qobject_cast<const ZELKinTowCourse*>(course))
            positions += course->GetNumPositions();
    }
    return positions;
}

void ZELKinAFPGCodePly::Write(ZELKinNCStream& out) const
{
    WriteHead(out);
    WriteStartUp(out);
    WritePlyRecords(out);
    WriteCourses(out);
    WriteEnd(out);
}

void ZELKinAFPGCodePly::WriteHead(ZELKinNCStream& out) const
{
    const ZELKinProgram* program = procedure->GetProgram();
    const QString plyNumber = ZELKinAFPGCodePlies::PaddedPlyNumberOf(procedure);
    out << "; Sequence " << plyNumber << " processed by " << program->GetAuthor() << " at "
        << program->GetDate().toString(Qt::TextDate) << '\n'
        << "; SEQ       PLY      MATERIAL   ANGLE    METHOD  \n"
        << "; ==== ============= ======== ========= ======== \n";
    for (int i = 0; i < procedure->GetNumPlies(); ++i) {
        const ZELKinPlyDescription ply = procedure->GetPlyDefinition(i);
        out << "; " << plyNumber << ' ' << ply.GetName().leftJustified(13) << ' ' << ply.GetMaterial().leftJustified(8)
            << ' ' << ZELKinAFPGCodePlies::AngleField(ply.GetAngle()) << ' '
            << ZELKinAFPGCodePlies::MethodLabel(ply.GetMethod()).leftJustified(8) << '\n';
    }
}

void ZELKinAFPGCodePly::WriteStartUp(ZELKinNCStream& out) const
{
    const ZELKinProgram* program = procedure->GetProgram();
    out << ";[BEGIN START-UP CODES]\n"
        << "G700; English Units\n"
        << "HSL; Establish High Speed Functions\n"
        << "GUD_EID=\"" << program->GetOriginalFileName() << "\"\n"
        << "GUD_REVISION=\"" << program->GetRevisionNumber() << "\"\n"
        << "GUD_SEQUENCE_NUMBER=" << ZELKinAFPGCodePlies::PlyNumberOf(procedure) << '\n'
        << "GUD_CHECK_POINT_NUM=0\n"
        << "GUD_RECOVERY_NUM=0\n"
        << "M3; Start-of-Program Macro\n"
        << "MSG(\"Verify the probe is not mounted.\")\n"
        << "M0; Program Stop\n"
        << "MSG(\"\")\n"
        << "M10; Extend Head\n"
        << ";{G0R40.0000}; Head Extension Distance\n"
        << "G90; Absolute Positioning Mode\n"
        << "G94; Feed-Per-Minute Mode\n"
        << "M25; Turn On Tow Tension\n"
        << "M18; Turn Off Compaction Heater\n"
        << "M13; Turn On Compaction Force\n"
        << "M50; Cancel Process Parameter Zones\n"
        << ";[END START-UP CODES]\n"
        << "MSG(\"" << program->GetOriginalFileName() << "\")\n"
        << ";[RETRACT MODEL] OPMM=SPECIFIED,RetractAxis=Z,RetractValue="
        << Inches(procedure->GetSafetyPlane().GetOrigin().GetZ())
        << ",RetractFeedrate=" << Inches(RetractFeedrateOf(procedure)) << '\n';
}

void ZELKinAFPGCodePly::WritePlyRecords(ZELKinNCStream& out) const
{
    QString lastMaterial;
    for (int i = 0; i < procedure->GetNumPlies(); ++i) {
        const ZELKinPlyDescription ply = procedure->GetPlyDefinition(i);
        // The controller takes the angle in radians here, where the head
        // shows degrees.
        out << ";[PLY] PlyId=" << ply.GetName() << ",Angle=" << ZELKinNCStream::Fixed{ply.GetAngle(), 3}
            << ",Method=" << ZELKinAFPGCodePlies::MethodLabel(ply.GetMethod())
            << ",Area=" << ZELKinNCStream::Fixed{ply.GetArea(), 3} << '\n';
        lastMaterial = ply.GetMaterial();
    }
    out << "GUD_MATERIAL_REQUIRED=\"" << lastMaterial << "\"\n"
        << "M27; Verify Material Loaded\n"
        << ";[PHASE] Phase=AFP\n"
        << "M61; Activate Layup Traori\n"
        << "M67; Establish Tool Transformation Frame\n";
}

void ZELKinAFPGCodePly::WriteCourses(ZELKinNCStream& out) const
{
    const auto* machine = qobject_cast<const ZELKinAFPMachine*>(procedure->GetProgram()->GetMachine());
    const ZELKinAFPGCodeCourse courseWriter(machine, procedure, splitting);
    const QList<ZELKinCourse*> courses = procedure->GetCourses();
    for (int i = 0; i < courses.size(); ++i) {
        auto* course = qobject_cast<ZELKinTowCourse*>(courses.at(i));
        if (!course)
            continue;
        courseWriter.Write(out, course, i);
        if (progress)
            progress->Advance(course->GetNumPositions());
    }
}

void ZELKinAFPGCodePly::WriteEnd(ZELKinNCStream& out)
{
    out << "M21; Ply End\n"
        << "M23; Sequence End\n"
        << "RETZ; Move to clearance point\n"
        << "M02\n";
}
