#include "zelgentoolpathgenerator.h"

#include "zelgencourseplan.h"
#include "zelgenpart.h"
#include "zelgenpoint.h"

#include <zelsysprogress.h>
#include <zeltpdocumentwriter.h>

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

// Distances (mm) of a course's ends: the roller rolls on the surface this far
// before the first add and after the last cut ...
constexpr double kRunDistance = 25.4;
// ... and comes down onto it, and leaves it, over this distance along the
// course from points lifted this high.
constexpr double kLeadDistance = 12.7;
constexpr double kLeadHeight = 6.35;
// The approach starts and the retract ends this far above the lifted points.
constexpr double kApproachHeight = 50.8;

// Heights (mm): the safety plane above the part's highest point, the links'
// traverse above the safety plane, and where each ply starts and ends.
constexpr double kSafetyClearance = 152.4;
constexpr double kTraverseClearance = 25.4;
constexpr double kParkClearance = 254.0;

// Feed rates (mm/min). Links run fast, but slowly enough that no slide of
// the example gantry exceeds its speed (Z: 20 m/min) while the wrist turns
// on the lift off the part.
constexpr double kLinkFeedrate = 15000.0;
constexpr double kApproachFeedrate = 6000.0;
constexpr double kRollFeedrate = 5080.0;
constexpr double kLayingFeedrate = 12700.0;
constexpr double kAddingFeedrate = 2540.0;
constexpr double kCuttingFeedrate = 1270.0;
constexpr double kProbingFeedrate = 3000.0;

// Where the head puts down one roller and picks up the other (mm), the head
// pointing straight down.
const ZELGenPoint kToolChangePoint(ZELMathPoint(1000.0, 1500.0, -1000.0), ZELMathVector(1.0, 0.0, 0.0),
                                   ZELMathVector(0.0, 0.0, 1.0));
const char* const kHeadName = "H1";

constexpr double kProbeSphereDiameter = 12.7;
// The probe comes down onto each sphere from this far above it (mm).
constexpr double kProbeApproachHeight = 25.4;

// Whole quarter turns exactly, so that courses at 90 degrees run exactly along Y.
ZELMathVector2D DirectionOf(double degrees)
{
    if (std::abs(degrees) == 90.0)
        return ZELMathVector2D(0.0, degrees > 0.0 ? 1.0 : -1.0);
    const double angle = qDegreesToRadians(degrees);
    return ZELMathVector2D(std::cos(angle), std::sin(angle));
}

QString AngleText(double degrees)
{
    return QString::number(degrees, 'g', 15);
}

void AddPoint(ZELTPDocumentWriter& writer, const ZELGenPoint& point)
{
    writer.AddPoint(point.GetOrigin(), point.GetTravel(), point.GetNormal());
}

void AddPoints(ZELTPDocumentWriter& writer, const QList<ZELGenPoint>& points)
{
    for (const ZELGenPoint& point : points)
        AddPoint(writer, point);
}

void WriteOffPartTrajectory(ZELTPDocumentWriter& writer, double feedrate, const QList<ZELGenPoint>& points)
{
    writer.BeginOffPartTrajectory(feedrate);
    AddPoints(writer, points);
    writer.EndTrajectory();
}

// Tilt and smoothing angles are 0 everywhere.
void WriteOnPartTrajectory(ZELTPDocumentWriter& writer, const QList<ZELGenPoint>& points)
{
    writer.BeginOnPartTrajectory(kRollFeedrate, ZELTPDocumentWriter::Tilts());
    AddPoints(writer, points);
    writer.EndTrajectory();
}

// The places of a course, from the plan of its tows.
ZELGenPoint GetLeadIn(const ZELGenCoursePlan& plan)
{
    return plan.GetPoint(plan.GetStart() - kRunDistance - kLeadDistance).GetLifted(kLeadHeight);
}

ZELGenPoint GetTouchDown(const ZELGenCoursePlan& plan)
{
    return plan.GetPoint(plan.GetStart() - kRunDistance);
}

ZELGenPoint GetRunOut(const ZELGenCoursePlan& plan)
{
    return plan.GetPoint(plan.GetEnd() + kRunDistance);
}

ZELGenPoint GetLiftOff(const ZELGenCoursePlan& plan)
{
    return plan.GetPoint(plan.GetEnd() + kRunDistance + kLeadDistance).GetLifted(kLeadHeight);
}

ZELGenPoint GetApproachStart(const ZELGenCoursePlan& plan)
{
    return GetLeadIn(plan).GetLifted(kApproachHeight);
}

ZELGenPoint GetRetractEnd(const ZELGenCoursePlan& plan)
{
    return GetLiftOff(plan).GetLifted(kApproachHeight);
}

} // namespace

const ZELGenToolpathGenerator::Roller ZELGenToolpathGenerator::kWideRoller{"R16-4in", 0, 16};
const ZELGenToolpathGenerator::Roller ZELGenToolpathGenerator::kNarrowRoller{"R8-2in", 4, 8};

ZELGenToolpathGenerator::ZELGenToolpathGenerator(const ZELGenPart& part, const Settings& settings)
    : m_part(part)
    , m_settings(settings)
{
}

void ZELGenToolpathGenerator::Write(ZELTPDocumentWriter& writer) const
{
    writer.BeginProgram(m_settings.name, QStringLiteral("A"));
    // The head starts with the wide roller; each course may need the other.
    const Roller* onHead = &kWideRoller;
    ZELSysProgress progress(QStringLiteral("Generating the toolpath"), QStringLiteral("courses"),
                            qint64(m_settings.plyAngles.size()) * m_settings.courses);
    for (int ply = 0; ply < m_settings.plyAngles.size(); ++ply)
        WriteLayupProcedure(writer, ply, onHead, progress);
    WriteProbingProcedure(writer);
    writer.EndProgram();
}

void ZELGenToolpathGenerator::WriteLayupProcedure(ZELTPDocumentWriter& writer, int ply, const Roller*& onHead,
                                                  ZELSysProgress& progress) const
{
    const double angle = m_settings.plyAngles.at(ply);
    const QString signedAngle = (angle > 0.0 ? QStringLiteral("+") : QString()) + AngleText(angle);

    ZELTPDocumentWriter::RollLayup procedure;
    procedure.name = QStringLiteral("Ply %1 %2").arg(ply + 1).arg(signedAngle);
    procedure.safetyPlane = GetSafetyPlane();
    procedure.addingFeedrate = kAddingFeedrate;
    procedure.cuttingFeedrate = kCuttingFeedrate;
    procedure.material = ZELTPMaterialDescription(QStringLiteral("T35-E120-6.35"),
                                                  QStringLiteral("T35/E120 1/4in tow"));
    procedure.totalMaterialLength = GetMaterialLength(ply);
    procedure.plies = {{QStringLiteral("P") + AngleText(angle), angle, m_part.GetPropagation()}};
    writer.BeginRollLayupProcedure(procedure);
    WriteLinks(writer, ply, onHead);
    WriteCourses(writer, ply, progress);
    writer.EndRollLayupProcedure();
}

// Link i leads into course i; the last link is the final retract. A link
// into a course that needs the other roller changes it on the way.
void ZELGenToolpathGenerator::WriteLinks(ZELTPDocumentWriter& writer, int ply, const Roller*& onHead) const
{
    writer.BeginLinks();
    std::optional<ZELGenPoint> previousEnd;
    for (int course = 0; course < m_settings.courses; ++course) {
        const ZELGenCoursePlan plan = PlanCourse(ply, course);
        if (plan.IsEmpty())
            continue;
        const Roller& roller = GetRoller(ply, course);
        const bool changesRoller = &roller != onHead;
        const ZELGenPoint start = GetApproachStart(plan);

        writer.BeginLink(previousEnd ? QStringLiteral("transfer") : QStringLiteral("approach"),
                         previousEnd ? ZELTPCourseLink::PointsDetailMedium : ZELTPCourseLink::PointsDetailLow);
        QList<ZELGenPoint> points{previousEnd ? previousEnd->GetAtHeight(GetTraverseHeight())
                                              : start.GetAtHeight(GetParkHeight())};
        if (changesRoller)
            points.append(kToolChangePoint);
        points.append(start.GetAtHeight(GetTraverseHeight()));
        WriteOffPartTrajectory(writer, kLinkFeedrate, points);
        // The link ends where the course's approach begins, so that the head
        // stands on the course's first position when the course starts; it
        // comes down at the approach's feed, with the wrist turning on the way.
        WriteOffPartTrajectory(writer, kApproachFeedrate, {start});
        std::optional<ZELTPDocumentWriter::ToolChange> toolChange;
        if (changesRoller)
            toolChange = ZELTPDocumentWriter::ToolChange{1, MachineConfigurationOf(*onHead),
                                                         MachineConfigurationOf(roller)};
        writer.EndLink(toolChange);

        onHead = &roller;
        previousEnd = GetRetractEnd(plan);
    }

    // The course nearest the middle of the part always crosses it, so some
    // course was laid.
    writer.BeginLink(QStringLiteral("retract"), ZELTPCourseLink::PointsDetailLow);
    WriteOffPartTrajectory(
        writer, kLinkFeedrate,
        {previousEnd.value().GetAtHeight(GetTraverseHeight()), previousEnd.value().GetAtHeight(GetParkHeight())});
    writer.EndLink();
    writer.EndLinks();
}

void ZELGenToolpathGenerator::WriteCourses(ZELTPDocumentWriter& writer, int ply, ZELSysProgress& progress) const
{
    writer.BeginCourses();
    int number = 0;
    for (int course = 0; course < m_settings.courses; ++course) {
        const ZELGenCoursePlan plan = PlanCourse(ply, course);
        if (!plan.IsEmpty())
            WriteCourse(writer, plan, GetRoller(ply, course), ++number);
        progress.Advance(1);
    }
    writer.EndCourses();
}

void ZELGenToolpathGenerator::WriteCourse(ZELTPDocumentWriter& writer, const ZELGenCoursePlan& plan,
                                          const Roller& roller, int number) const
{
    ZELTPDocumentWriter::Course course;
    course.name = QStringLiteral("course %1").arg(number);
    course.towMask = plan.GetTowMask();
    course.machineConfiguration = MachineConfigurationOf(roller);
    course.towLengths = plan.GetTowLengths();
    // The roll-in's point 0 is the lead-in, the last of the approach; the
    // roll-out's last point is the lift-off, the first of the retract.
    course.rollInPoint = 1;
    course.rollOutPoint = 2;
    writer.BeginCourse(course);
    WriteOffPartTrajectory(writer, kApproachFeedrate, {GetApproachStart(plan), GetLeadIn(plan)});
    WriteOnPartTrajectory(writer, {GetLeadIn(plan), GetTouchDown(plan), plan.GetPoint(plan.GetStart())});
    for (int stretch = 0; stretch + 1 < plan.GetStations().size(); ++stretch)
        WriteTowTrajectory(writer, plan, stretch);
    WriteOnPartTrajectory(writer, {plan.GetPoint(plan.GetEnd()), GetRunOut(plan), GetLiftOff(plan)});
    WriteOffPartTrajectory(writer, kApproachFeedrate, {GetLiftOff(plan), GetRetractEnd(plan)});
    writer.EndCourse();
}

// The points of the whole laid stretch stand evenly from the first add to
// the last cut; each tow trajectory takes those between its ends, and a
// point that would stand almost on an end gives way to it.
void ZELGenToolpathGenerator::WriteTowTrajectory(ZELTPDocumentWriter& writer, const ZELGenCoursePlan& plan,
                                                 int stretch) const
{
    const double from = plan.GetStations().at(stretch);
    const double to = plan.GetStations().at(stretch + 1);
    const int count = m_settings.pointsPerCourse;
    const double spacing = (plan.GetEnd() - plan.GetStart()) / (count - 1);
    const double margin = std::min(1.0, spacing / 4.0);

    writer.BeginTowTrajectory(kLayingFeedrate, ZELTPDocumentWriter::Tilts(), plan.GetStretchMask(stretch));
    AddPoint(writer, plan.GetPoint(from));
    const int first = std::max(0, static_cast<int>(std::floor((from - plan.GetStart()) / spacing)));
    for (int index = first; index < count; ++index) {
        const double along = plan.GetStart() + index * spacing;
        if (along >= to - margin)
            break;
        if (along > from + margin)
            AddPoint(writer, plan.GetPoint(along));
    }
    AddPoint(writer, plan.GetPoint(to));
    writer.EndTrajectory();
}

// The head points straight down over each target: trajectory 0 leads down
// onto the first sphere, each further one up from a sphere, across above the
// safety plane and down onto the next, the last one up and away.
void ZELGenToolpathGenerator::WriteProbingProcedure(ZELTPDocumentWriter& writer) const
{
    QList<ZELGenPoint> targets;
    for (const ZELMathVector2D& place : m_part.GetProbeTargets()) {
        const ZELMathPoint centre = m_part.GetSurfacePoint(place, ZELMathVector2D(1.0, 0.0))
                                        .GetLifted(kProbeSphereDiameter / 2.0)
                                        .GetOrigin();
        targets.append(ZELGenPoint(centre, ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 0.0, 1.0)));
    }

    writer.BeginProbingProcedure(QStringLiteral("probe tool"), GetSafetyPlane());
    QList<ZELGenPoint> points;
    for (const ZELGenPoint& target : targets) {
        points << target.GetAtHeight(GetTraverseHeight()) << target.GetLifted(kProbeApproachHeight) << target;
        WriteOffPartTrajectory(writer, kProbingFeedrate, points);
        points = {target.GetLifted(kProbeApproachHeight), target.GetAtHeight(GetTraverseHeight())};
    }
    WriteOffPartTrajectory(writer, kProbingFeedrate, points);
    writer.EndProbingProcedure(QList<double>(targets.size(), kProbeSphereDiameter));
}

ZELMathPlane ZELGenToolpathGenerator::GetSafetyPlane() const
{
    const ZELMathPoint centre = m_part.GetSurfacePoint(ZELMathVector2D(), ZELMathVector2D(1.0, 0.0)).GetOrigin();
    return ZELMathPlane(ZELMathPoint(centre.GetX(), centre.GetY(), GetSafetyHeight()), ZELMathVector(0.0, 0.0, 1.0));
}

// The courses of a ply lie side by side, a roller's width apart, across the
// middle of the part; when they would reach beyond it, they are spread
// evenly across it instead.
ZELTPMachineConfiguration ZELGenToolpathGenerator::MachineConfigurationOf(const Roller& roller)
{
    return ZELTPMachineConfiguration(
        ZELTPRoller(QLatin1String(roller.name), roller.towCount * ZELGenCoursePlan::kTowWidth),
        ZELTPAFPHead(QLatin1String(kHeadName), ZELGenCoursePlan::kTowWidth));
}

ZELGenCoursePlan ZELGenToolpathGenerator::PlanCourse(int ply, int course) const
{
    const ZELMathVector2D direction = DirectionOf(m_settings.plyAngles.at(ply));
    const ZELGenPart::Range extent = m_part.GetExtent(ZELMathVector2D(-direction.GetY(), direction.GetX()));
    const double width = kWideRoller.towCount * ZELGenCoursePlan::kTowWidth;
    const double spacing = std::min(width, (extent.to - extent.from) / m_settings.courses);
    const double across = (extent.from + extent.to) / 2.0 + (course - (m_settings.courses - 1) / 2.0) * spacing;
    const Roller& roller = GetRoller(ply, course);
    return ZELGenCoursePlan(m_part, direction, across, roller.firstTow, roller.towCount);
}

const ZELGenToolpathGenerator::Roller& ZELGenToolpathGenerator::GetRoller(int ply, int course) const
{
    return ply == 0 && course == m_settings.courses - 1 ? kNarrowRoller : kWideRoller;
}

double ZELGenToolpathGenerator::GetMaterialLength(int ply) const
{
    double length = 0.0;
    for (int course = 0; course < m_settings.courses; ++course)
        length += PlanCourse(ply, course).GetMaterialLength();
    return length;
}

double ZELGenToolpathGenerator::GetSafetyHeight() const
{
    // Every part is highest at its centre.
    return m_part.GetSurfacePoint(ZELMathVector2D(), ZELMathVector2D(1.0, 0.0)).GetOrigin().GetZ() + kSafetyClearance;
}

double ZELGenToolpathGenerator::GetTraverseHeight() const
{
    return GetSafetyHeight() + kTraverseClearance;
}

double ZELGenToolpathGenerator::GetParkHeight() const
{
    return GetSafetyHeight() + kParkClearance;
}
