#include "zelkintoolpathgenerator.h"

#include "zelkintoolpathcourseplan.h"
#include "zelkintoolpathjsonwriter.h"
#include "zelkintoolpathpart.h"
#include "zelkintoolpathpoint.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using Layout = ZELKinToolpathJsonWriter::Layout;

constexpr double kPi = 3.14159265358979323846;

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

// Feed rates (mm/min).
constexpr double kLinkFeedrate = 20000.0;
constexpr double kApproachFeedrate = 6000.0;
constexpr double kRollFeedrate = 5080.0;
constexpr double kLayingFeedrate = 12700.0;
constexpr double kAddingFeedrate = 2540.0;
constexpr double kCuttingFeedrate = 1270.0;
constexpr double kProbingFeedrate = 3000.0;

// Where the head puts down one roller and picks up the other (mm), the head
// pointing straight down.
const ZELKinToolpathPoint kToolChangePoint(ZELMathPoint(1000.0, 1500.0, -1000.0), ZELMathVector(1.0, 0.0, 0.0),
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
    const double angle = degrees * kPi / 180.0;
    return ZELMathVector2D(std::cos(angle), std::sin(angle));
}

QString AngleText(double degrees)
{
    return QString::number(degrees, 'g', 15);
}

void WriteTriple(ZELKinToolpathJsonWriter& writer, const char* key, double x, double y, double z)
{
    writer.WriteKey(key);
    writer.BeginArray(Layout::Line);
    writer.WriteNumber(x);
    writer.WriteNumber(y);
    writer.WriteNumber(z);
    writer.EndArray();
}

void WriteTriple(ZELKinToolpathJsonWriter& writer, const char* key, const ZELMathPoint& point)
{
    WriteTriple(writer, key, point.GetX(), point.GetY(), point.GetZ());
}

void WriteTriple(ZELKinToolpathJsonWriter& writer, const char* key, const ZELMathVector& vector)
{
    WriteTriple(writer, key, vector.GetX(), vector.GetY(), vector.GetZ());
}

void WritePoint(ZELKinToolpathJsonWriter& writer, const ZELKinToolpathPoint& point)
{
    writer.BeginObject(Layout::Line);
    WriteTriple(writer, "origin", point.GetOrigin());
    WriteTriple(writer, "travel", point.GetTravel());
    WriteTriple(writer, "normal", point.GetNormal());
    writer.EndObject();
}

void WriteString(ZELKinToolpathJsonWriter& writer, const char* key, const QString& text)
{
    writer.WriteKey(key);
    writer.WriteString(text);
}

void WriteNumber(ZELKinToolpathJsonWriter& writer, const char* key, double value)
{
    writer.WriteKey(key);
    writer.WriteNumber(value);
}

void WriteInteger(ZELKinToolpathJsonWriter& writer, const char* key, long long value)
{
    writer.WriteKey(key);
    writer.WriteInteger(value);
}

// Opens a trajectory object, up to its "points" array.
void BeginTrajectory(ZELKinToolpathJsonWriter& writer, const char* kind, double feedrate)
{
    writer.BeginObject();
    WriteString(writer, "kind", QLatin1String(kind));
    WriteNumber(writer, "feedrate", feedrate);
}

void WriteNoTilt(ZELKinToolpathJsonWriter& writer)
{
    WriteNumber(writer, "forwardTilt", 0.0);
    WriteNumber(writer, "sideTilt", 0.0);
    WriteNumber(writer, "smoothingAngle", 0.0);
}

void WritePoints(ZELKinToolpathJsonWriter& writer, const QList<ZELKinToolpathPoint>& points)
{
    writer.WriteKey("points");
    writer.BeginArray();
    for (const ZELKinToolpathPoint& point : points)
        WritePoint(writer, point);
    writer.EndArray();
}

void WriteOffPartTrajectory(ZELKinToolpathJsonWriter& writer, double feedrate,
                            const QList<ZELKinToolpathPoint>& points)
{
    BeginTrajectory(writer, "offPart", feedrate);
    WritePoints(writer, points);
    writer.EndObject();
}

void WriteOnPartTrajectory(ZELKinToolpathJsonWriter& writer, const QList<ZELKinToolpathPoint>& points)
{
    BeginTrajectory(writer, "onPart", kRollFeedrate);
    WriteNoTilt(writer);
    WritePoints(writer, points);
    writer.EndObject();
}

// The places of a course, from the plan of its tows.
ZELKinToolpathPoint GetLeadIn(const ZELKinToolpathCoursePlan& plan)
{
    return plan.GetPoint(plan.GetStart() - kRunDistance - kLeadDistance).GetLifted(kLeadHeight);
}

ZELKinToolpathPoint GetTouchDown(const ZELKinToolpathCoursePlan& plan)
{
    return plan.GetPoint(plan.GetStart() - kRunDistance);
}

ZELKinToolpathPoint GetRunOut(const ZELKinToolpathCoursePlan& plan)
{
    return plan.GetPoint(plan.GetEnd() + kRunDistance);
}

ZELKinToolpathPoint GetLiftOff(const ZELKinToolpathCoursePlan& plan)
{
    return plan.GetPoint(plan.GetEnd() + kRunDistance + kLeadDistance).GetLifted(kLeadHeight);
}

ZELKinToolpathPoint GetApproachStart(const ZELKinToolpathCoursePlan& plan)
{
    return GetLeadIn(plan).GetLifted(kApproachHeight);
}

ZELKinToolpathPoint GetRetractEnd(const ZELKinToolpathCoursePlan& plan)
{
    return GetLiftOff(plan).GetLifted(kApproachHeight);
}

void WriteMachineConfiguration(ZELKinToolpathJsonWriter& writer, const char* key, const char* rollerName,
                               int rollerTows)
{
    writer.WriteKey(key);
    writer.BeginObject(Layout::Line);
    writer.WriteKey("roller");
    writer.BeginObject();
    WriteString(writer, "name", QLatin1String(rollerName));
    WriteNumber(writer, "width", rollerTows * ZELKinToolpathCoursePlan::kTowWidth);
    writer.EndObject();
    writer.WriteKey("head");
    writer.BeginObject();
    WriteString(writer, "name", QLatin1String(kHeadName));
    WriteNumber(writer, "towWidth", ZELKinToolpathCoursePlan::kTowWidth);
    writer.EndObject();
    writer.EndObject();
}

} // namespace

const ZELKinToolpathGenerator::Roller ZELKinToolpathGenerator::kWideRoller{"R16-4in", 0, 16};
const ZELKinToolpathGenerator::Roller ZELKinToolpathGenerator::kNarrowRoller{"R8-2in", 4, 8};

ZELKinToolpathGenerator::ZELKinToolpathGenerator(const ZELKinToolpathPart& part, const Settings& settings)
    : m_part(part)
    , m_settings(settings)
{
}

void ZELKinToolpathGenerator::Write(ZELKinToolpathJsonWriter& writer) const
{
    writer.BeginObject();
    WriteString(writer, "format", QStringLiteral("zelkin-toolpath"));
    WriteInteger(writer, "version", 1);
    writer.WriteKey("program");
    writer.BeginObject();
    WriteString(writer, "name", m_settings.name);
    WriteString(writer, "revision", QStringLiteral("A"));
    writer.WriteKey("procedures");
    writer.BeginArray();
    // The head starts with the wide roller; each course may need the other.
    const Roller* onHead = &kWideRoller;
    for (int ply = 0; ply < m_settings.plyAngles.size(); ++ply)
        WriteLayupProcedure(writer, ply, onHead);
    WriteProbingProcedure(writer);
    writer.EndArray();
    writer.EndObject();
    writer.EndObject();
    writer.Finish();
}

void ZELKinToolpathGenerator::WriteLayupProcedure(ZELKinToolpathJsonWriter& writer, int ply,
                                                  const Roller*& onHead) const
{
    const double angle = m_settings.plyAngles.at(ply);
    const QString signedAngle = (angle > 0.0 ? QStringLiteral("+") : QString()) + AngleText(angle);

    writer.BeginObject();
    WriteString(writer, "kind", QStringLiteral("rollLayup"));
    WriteString(writer, "name", QStringLiteral("Ply %1 %2").arg(ply + 1).arg(signedAngle));
    WriteSafetyPlane(writer);
    WriteNumber(writer, "addingFeedrate", kAddingFeedrate);
    WriteNumber(writer, "cuttingFeedrate", kCuttingFeedrate);
    writer.WriteKey("material");
    writer.BeginObject(Layout::Line);
    WriteString(writer, "id", QStringLiteral("IM7-8552-6.35"));
    WriteString(writer, "name", QStringLiteral("IM7/8552 1/4in tow"));
    writer.EndObject();
    WriteNumber(writer, "totalMaterialLength", GetMaterialLength(ply));
    writer.WriteKey("plies");
    writer.BeginArray();
    writer.BeginObject(Layout::Line);
    WriteString(writer, "name", QStringLiteral("P") + AngleText(angle));
    WriteNumber(writer, "orientation", angle);
    WriteString(writer, "propagation", m_part.GetPropagation());
    writer.EndObject();
    writer.EndArray();
    WriteLinks(writer, ply, onHead);
    WriteCourses(writer, ply);
    writer.EndObject();
}

// Link i leads into course i; the last link is the final retract. A link
// into a course that needs the other roller changes it on the way.
void ZELKinToolpathGenerator::WriteLinks(ZELKinToolpathJsonWriter& writer, int ply, const Roller*& onHead) const
{
    writer.WriteKey("links");
    writer.BeginArray();
    std::optional<ZELKinToolpathPoint> previousEnd;
    for (int course = 0; course < m_settings.courses; ++course) {
        const ZELKinToolpathCoursePlan plan = PlanCourse(ply, course);
        if (plan.IsEmpty())
            continue;
        const Roller& roller = GetRoller(ply, course);
        const bool changesRoller = &roller != onHead;
        const ZELKinToolpathPoint start = GetApproachStart(plan);

        writer.BeginObject();
        WriteString(writer, "name", previousEnd ? QStringLiteral("transfer") : QStringLiteral("approach"));
        WriteString(writer, "pointsDetail", previousEnd ? QStringLiteral("medium") : QStringLiteral("low"));
        writer.WriteKey("trajectories");
        writer.BeginArray();
        QList<ZELKinToolpathPoint> points{previousEnd ? previousEnd->GetAtHeight(GetTraverseHeight())
                                                      : start.GetAtHeight(GetParkHeight())};
        if (changesRoller)
            points.append(kToolChangePoint);
        points.append(start.GetAtHeight(GetTraverseHeight()));
        WriteOffPartTrajectory(writer, kLinkFeedrate, points);
        // The link ends where the course's approach begins, so that the head
        // stands on the course's first position when the course starts; it
        // comes down at the approach's feed, with the wrist turning on the way.
        WriteOffPartTrajectory(writer, kApproachFeedrate, {start});
        writer.EndArray();
        if (changesRoller) {
            writer.WriteKey("toolChange");
            writer.BeginObject();
            WriteInteger(writer, "removePoint", 1);
            WriteMachineConfiguration(writer, "previous", onHead->name, onHead->towCount);
            WriteMachineConfiguration(writer, "next", roller.name, roller.towCount);
            writer.EndObject();
        }
        writer.EndObject();

        onHead = &roller;
        previousEnd = GetRetractEnd(plan);
    }

    // The course nearest the middle of the part always crosses it, so some
    // course was laid.
    writer.BeginObject();
    WriteString(writer, "name", QStringLiteral("retract"));
    WriteString(writer, "pointsDetail", QStringLiteral("low"));
    writer.WriteKey("trajectories");
    writer.BeginArray();
    WriteOffPartTrajectory(writer, kLinkFeedrate,
                           {previousEnd.value().GetAtHeight(GetTraverseHeight()),
                            previousEnd.value().GetAtHeight(GetParkHeight())});
    writer.EndArray();
    writer.EndObject();
    writer.EndArray();
}

void ZELKinToolpathGenerator::WriteCourses(ZELKinToolpathJsonWriter& writer, int ply) const
{
    writer.WriteKey("courses");
    writer.BeginArray();
    int number = 0;
    for (int course = 0; course < m_settings.courses; ++course) {
        const ZELKinToolpathCoursePlan plan = PlanCourse(ply, course);
        if (!plan.IsEmpty())
            WriteCourse(writer, plan, GetRoller(ply, course), ++number);
    }
    writer.EndArray();
}

void ZELKinToolpathGenerator::WriteCourse(ZELKinToolpathJsonWriter& writer, const ZELKinToolpathCoursePlan& plan,
                                          const Roller& roller, int number) const
{
    writer.BeginObject();
    WriteString(writer, "name", QStringLiteral("course %1").arg(number));
    WriteString(writer, "towMask", plan.GetTowMask());
    WriteMachineConfiguration(writer, "machineConfiguration", roller.name, roller.towCount);
    writer.WriteKey("towLengths");
    writer.BeginArray(Layout::Line);
    for (const double length : plan.GetTowLengths())
        writer.WriteNumber(length);
    writer.EndArray();
    // The roll-in's point 0 is the lead-in, the last of the approach; the
    // roll-out's last point is the lift-off, the first of the retract.
    WriteInteger(writer, "rollInPoint", 1);
    WriteInteger(writer, "rollOutPoint", 2);

    writer.WriteKey("trajectories");
    writer.BeginArray();
    WriteOffPartTrajectory(writer, kApproachFeedrate, {GetApproachStart(plan), GetLeadIn(plan)});
    WriteOnPartTrajectory(writer, {GetLeadIn(plan), GetTouchDown(plan), plan.GetPoint(plan.GetStart())});
    for (int stretch = 0; stretch + 1 < plan.GetStations().size(); ++stretch)
        WriteTowTrajectory(writer, plan, stretch);
    WriteOnPartTrajectory(writer, {plan.GetPoint(plan.GetEnd()), GetRunOut(plan), GetLiftOff(plan)});
    WriteOffPartTrajectory(writer, kApproachFeedrate, {GetLiftOff(plan), GetRetractEnd(plan)});
    writer.EndArray();
    writer.EndObject();
}

// The points of the whole laid stretch stand evenly from the first add to
// the last cut; each tow trajectory takes those between its ends, and a
// point that would stand almost on an end gives way to it.
void ZELKinToolpathGenerator::WriteTowTrajectory(ZELKinToolpathJsonWriter& writer,
                                                 const ZELKinToolpathCoursePlan& plan, int stretch) const
{
    const double from = plan.GetStations().at(stretch);
    const double to = plan.GetStations().at(stretch + 1);
    const int count = m_settings.pointsPerCourse;
    const double spacing = (plan.GetEnd() - plan.GetStart()) / (count - 1);
    const double margin = std::min(1.0, spacing / 4.0);

    BeginTrajectory(writer, "tow", kLayingFeedrate);
    WriteNoTilt(writer);
    WriteString(writer, "towMask", plan.GetStretchMask(stretch));
    writer.WriteKey("points");
    writer.BeginArray();
    WritePoint(writer, plan.GetPoint(from));
    const int first = std::max(0, static_cast<int>(std::floor((from - plan.GetStart()) / spacing)));
    for (int index = first; index < count; ++index) {
        const double along = plan.GetStart() + index * spacing;
        if (along >= to - margin)
            break;
        if (along > from + margin)
            WritePoint(writer, plan.GetPoint(along));
    }
    WritePoint(writer, plan.GetPoint(to));
    writer.EndArray();
    writer.EndObject();
}

// The head points straight down over each target: trajectory 0 leads down
// onto the first sphere, each further one up from a sphere, across above the
// safety plane and down onto the next, the last one up and away.
void ZELKinToolpathGenerator::WriteProbingProcedure(ZELKinToolpathJsonWriter& writer) const
{
    QList<ZELKinToolpathPoint> targets;
    for (const ZELMathVector2D& place : m_part.GetProbeTargets()) {
        const ZELMathPoint centre =
            m_part.GetSurfacePoint(place, ZELMathVector2D(1.0, 0.0)).GetLifted(kProbeSphereDiameter / 2.0).GetOrigin();
        targets.append(ZELKinToolpathPoint(centre, ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 0.0, 1.0)));
    }

    writer.BeginObject();
    WriteString(writer, "kind", QStringLiteral("probing"));
    WriteString(writer, "name", QStringLiteral("probe tool"));
    WriteSafetyPlane(writer);
    writer.WriteKey("trajectories");
    writer.BeginArray();
    QList<ZELKinToolpathPoint> points;
    for (const ZELKinToolpathPoint& target : targets) {
        points << target.GetAtHeight(GetTraverseHeight()) << target.GetLifted(kProbeApproachHeight) << target;
        WriteOffPartTrajectory(writer, kProbingFeedrate, points);
        points = {target.GetLifted(kProbeApproachHeight), target.GetAtHeight(GetTraverseHeight())};
    }
    WriteOffPartTrajectory(writer, kProbingFeedrate, points);
    writer.EndArray();
    writer.WriteKey("probingPoints");
    writer.BeginArray();
    for (qsizetype target = 0; target < targets.size(); ++target) {
        writer.BeginObject(Layout::Line);
        WriteNumber(writer, "diameter", kProbeSphereDiameter);
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
}

void ZELKinToolpathGenerator::WriteSafetyPlane(ZELKinToolpathJsonWriter& writer) const
{
    const ZELMathPoint centre = m_part.GetSurfacePoint(ZELMathVector2D(), ZELMathVector2D(1.0, 0.0)).GetOrigin();
    writer.WriteKey("safetyPlane");
    writer.BeginObject(Layout::Line);
    WriteTriple(writer, "origin", centre.GetX(), centre.GetY(), GetSafetyHeight());
    WriteTriple(writer, "normal", 0.0, 0.0, 1.0);
    writer.EndObject();
}

// The courses of a ply lie side by side, a roller's width apart, across the
// middle of the part; when they would reach beyond it, they are spread
// evenly across it instead.
ZELKinToolpathCoursePlan ZELKinToolpathGenerator::PlanCourse(int ply, int course) const
{
    const ZELMathVector2D direction = DirectionOf(m_settings.plyAngles.at(ply));
    const ZELKinToolpathPart::Range extent =
        m_part.GetExtent(ZELMathVector2D(-direction.GetY(), direction.GetX()));
    const double width = kWideRoller.towCount * ZELKinToolpathCoursePlan::kTowWidth;
    const double spacing = std::min(width, (extent.to - extent.from) / m_settings.courses);
    const double across = (extent.from + extent.to) / 2.0 + (course - (m_settings.courses - 1) / 2.0) * spacing;
    const Roller& roller = GetRoller(ply, course);
    return ZELKinToolpathCoursePlan(m_part, direction, across, roller.firstTow, roller.towCount);
}

const ZELKinToolpathGenerator::Roller& ZELKinToolpathGenerator::GetRoller(int ply, int course) const
{
    return ply == 0 && course == m_settings.courses - 1 ? kNarrowRoller : kWideRoller;
}

double ZELKinToolpathGenerator::GetMaterialLength(int ply) const
{
    double length = 0.0;
    for (int course = 0; course < m_settings.courses; ++course)
        length += PlanCourse(ply, course).GetMaterialLength();
    return length;
}

double ZELKinToolpathGenerator::GetSafetyHeight() const
{
    // Every part is highest at its centre.
    return m_part.GetSurfacePoint(ZELMathVector2D(), ZELMathVector2D(1.0, 0.0)).GetOrigin().GetZ()
        + kSafetyClearance;
}

double ZELKinToolpathGenerator::GetTraverseHeight() const
{
    return GetSafetyHeight() + kTraverseClearance;
}

double ZELKinToolpathGenerator::GetParkHeight() const
{
    return GetSafetyHeight() + kParkClearance;
}
