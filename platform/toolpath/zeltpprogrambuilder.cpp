#include "zeltpprogrambuilder_p.h"

#include "zeltpdocumentkeys_p.h"
#include "zeltpoffpartpoint.h"
#include "zeltponparttrajectory.h"
#include "zeltpprobingprocedure.h"
#include "zeltpprogram.h"
#include "zeltpprogramreader.h"
#include "zeltprolllayupprocedure.h"
#include "zeltptoolchangelink.h"
#include "zeltptowcourse.h"
#include "zeltptowtrajectory.h"

#include <zelgeocontainer.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace ZELTPReading {

namespace Key = ZELTPDocument::Key;

namespace {

// How far apart the two copies of a junction point may be (mm).
constexpr double JunctionTolerance = 0.001;
// The fewest trajectories a course has: approach, roll-in, roll-out, retract.
constexpr qsizetype MinimumCourseTrajectories = 4;

// Points without directions take those of the nearest preceding point that
// has them, else of the nearest following one, else travel +X, normal +Z.
void DeriveMissingDirections(std::vector<PointRecord>& points)
{
    const auto firstGiven = std::find_if(points.begin(), points.end(),
                                         [](const PointRecord& point) { return point.hasDirections; });
    ZELMathVector travel(1.0, 0.0, 0.0);
    ZELMathVector normal(0.0, 0.0, 1.0);
    if (firstGiven != points.end()) {
        travel = firstGiven->travel;
        normal = firstGiven->normal;
    }
    for (PointRecord& point : points) {
        if (point.hasDirections) {
            travel = point.travel;
            normal = point.normal;
        } else {
            point.travel = travel;
            point.normal = normal;
        }
    }
}

ZELMathAxis ToolFrame(const PointRecord& point)
{
    return ZELMathAxis(point.origin, point.travel, point.normal.Cross(point.travel), point.normal);
}

std::unique_ptr<ZELTPTrajectory> CreateTrajectory(const TrajectoryRecord& record)
{
    if (record.kind == TrajectoryKind::OffPart)
        return std::make_unique<ZELTPTrajectory>(record.feedrate);
    if (record.kind == TrajectoryKind::OnPart)
        return std::make_unique<ZELTPOnPartTrajectory>(record.feedrate, record.forwardTilt, record.sideTilt,
                                                       record.smoothingAngle);
    return std::make_unique<ZELTPTowTrajectory>(record.feedrate, record.forwardTilt, record.sideTilt,
                                                record.smoothingAngle, record.towMask, record.forcedMask,
                                                record.forcedRates);
}

} // namespace

ProgramBuilder::ProgramBuilder(ZELGeoContainer* container)
    : m_container(container)
    , m_wasModified(container->IsModified())
{
}

ProgramBuilder::~ProgramBuilder()
{
    if (m_built)
        return;
    std::for_each(m_created.rbegin(), m_created.rend(),
                  [this](ZELGeoGeometry* geometry) { m_container->DeleteGeometry(geometry); });
    m_container->SetModified(m_wasModified);
}

ZELTPProgram* ProgramBuilder::Build(const Value& root)
{
    return BuildProgram(root, true);
}

ZELTPProgram* ProgramBuilder::BuildHead(const Value& root)
{
    return BuildProgram(root, false);
}

ZELTPProcedure* ProgramBuilder::BuildAlone(const Value& procedure, EntrySource* courses)
{
    m_courses = courses;
    ZELTPProcedure* object = BuildProcedure(procedure);
    if (m_courses)
        m_courses->ParseRest();
    Finish();
    return object;
}

ZELTPProgram* ProgramBuilder::BuildProgram(const Value& root, bool withProcedures)
{
    ReadFormatName(root.GetMember(Key::kFormat));
    ReadVersion(root.GetMember(Key::kVersion));
    const Value program = root.GetMember(Key::kProgram);
    const QString name = ReadName(program.GetMember(Key::kName));
    const QString revision = ReadOptionalText(program, Key::kRevision, QStringLiteral("0"));
    const Value procedures = program.GetMember(Key::kProcedures);
    procedures.GetArray();

    auto* object = Create<ZELTPProgram>(name);
    object->SetRevision(revision);
    if (withProcedures)
        ForEachEntry(procedures, [&](const Value& procedure) { object->AddProcedure(BuildProcedure(procedure)); });
    Finish();
    return object;
}

void ProgramBuilder::Finish()
{
    for (ZELGeoGeometry* geometry : m_created)
        geometry->Initialize();
    m_built = true;
}

ZELTPProcedure* ProgramBuilder::BuildProcedure(const Value& procedure)
{
    const Value kind = procedure.GetMember(Key::kKind);
    const std::string_view text = kind.GetText();
    if (text == ZELTPDocument::ProcedureKind::kRollLayup)
        return BuildRollLayup(procedure);
    if (text == ZELTPDocument::ProcedureKind::kProbing)
        return BuildProbing(procedure);
    kind.Fail(ZELTPProgramReader::tr("unknown procedure kind %1").arg(Quoted(text)));
}

ZELTPRollLayupProcedure* ProgramBuilder::BuildRollLayup(const Value& procedure)
{
    const QString name = ReadName(procedure.GetMember(Key::kName));
    const ZELMathPlane safetyPlane = ReadSafetyPlane(procedure.GetMember(Key::kSafetyPlane));
    const double addingFeedrate = ReadNumberIn(procedure.GetMember(Key::kAddingFeedrate), FeedrateRange);
    const double cuttingFeedrate = ReadNumberIn(procedure.GetMember(Key::kCuttingFeedrate), FeedrateRange);
    const ZELTPMaterialDescription material = ReadMaterial(procedure.GetMember(Key::kMaterial));
    const double totalMaterialLength = ReadNumberIn(procedure.GetMember(Key::kTotalMaterialLength),
                                                    MaterialLengthRange);
    const QList<ZELTPPlyDescription> plies = ReadPlies(procedure.GetMember(Key::kPlies));
    const Value links = procedure.GetMember(Key::kLinks);
    const Value courses = procedure.GetMember(Key::kCourses);
    const simdjson::dom::array linkArray = links.GetArray();
    const simdjson::dom::array courseArray = courses.GetArray();
    const qsizetype numCourses = CountEntries(courseArray);
    const qsizetype numLinks = CountEntries(linkArray);
    // The NC program of a layup starts from its first course.
    if (numCourses == 0)
        courses.Fail(ZELTPProgramReader::tr("roll layup procedure '%1' has no course (expected at least 1)").arg(name));
    if (numLinks != numCourses + 1)
        links.Fail(ZELTPProgramReader::tr("expected %1 links, one more than courses (%2), found %3")
                       .arg(numCourses + 1)
                       .arg(numCourses)
                       .arg(numLinks));

    auto* layup = Create<ZELTPRollLayupProcedure>(name);
    layup->SetSafetyPlane(safetyPlane);
    layup->SetAddingFeedrate(addingFeedrate);
    layup->SetCuttingFeedrate(cuttingFeedrate);
    layup->SetMaterialDescription(material);
    layup->SetTotalMaterialLength(totalMaterialLength);
    for (const ZELTPPlyDescription& ply : plies)
        layup->AddPlyDescription(ply);

    // Link i leads into course i and link i + 1 leaves it.
    auto link = linkArray.begin();
    auto course = courseArray.begin();
    ZELTPCourseLink* into = BuildLink(links.GetEntry(*link, 0));
    layup->SetApproachLink(into);
    for (qsizetype index = 0; index < numCourses; ++index, ++course) {
        const simdjson::dom::element entry = m_courses ? m_courses->Parse(index) : *course;
        ZELTPTowCourse* towCourse = BuildCourse(courses.GetEntry(entry, index));
        into->SetToCourse(towCourse);
        ++link;
        into = BuildLink(links.GetEntry(*link, index + 1));
        towCourse->SetRetractLink(into);
    }
    return layup;
}

ZELTPProbingProcedure* ProgramBuilder::BuildProbing(const Value& procedure)
{
    const QString name = ReadName(procedure.GetMember(Key::kName));
    const ZELMathPlane safetyPlane = ReadSafetyPlane(procedure.GetMember(Key::kSafetyPlane));
    const Value trajectories = procedure.GetMember(Key::kTrajectories);
    const Value probingPoints = procedure.GetMember(Key::kProbingPoints);
    const qsizetype numTrajectories = CountEntries(trajectories.GetArray());
    const qsizetype numTargets = CountEntries(probingPoints.GetArray());
    if (numTrajectories != numTargets + 1)
        trajectories.Fail(ZELTPProgramReader::tr("expected %1 trajectories, one more than probingPoints (%2), "
                                                 "found %3")
                              .arg(numTargets + 1)
                              .arg(numTargets)
                              .arg(numTrajectories));
    QList<ZELTPProbingPoint> targets;
    ForEachEntry(probingPoints, [&](const Value& target) {
        targets.append(ZELTPProbingPoint(ReadNumberIn(target.GetMember(Key::kDiameter), WidthRange)));
    });
    ReadOffPartChain(trajectories);
    CreatePoints(0);

    auto* probing = Create<ZELTPProbingProcedure>(name);
    probing->SetSafetyPlane(safetyPlane);
    AddTrajectories(probing);
    for (const ZELTPProbingPoint& target : targets)
        probing->AddProbingPoint(target);
    return probing;
}

ZELTPCourseLink* ProgramBuilder::BuildLink(const Value& link)
{
    const QString name = ReadOptionalText(link, Key::kName, QString());
    const ZELTPCourseLink::PointsDetail detail = ReadPointsDetail(link);
    ReadOffPartChain(link.GetMember(Key::kTrajectories));

    const std::optional<Value> toolChange = link.FindMember(Key::kToolChange);
    std::size_t removePoint = 0;
    ZELTPMachineConfiguration previous;
    ZELTPMachineConfiguration next;
    if (toolChange) {
        removePoint = std::size_t(ReadIndex(toolChange->GetMember(Key::kRemovePoint), qsizetype(m_points.size()),
                                            ZELTPProgramReader::tr("the link's points")));
        previous = ReadMachineConfiguration(toolChange->GetMember(Key::kPrevious));
        next = ReadMachineConfiguration(toolChange->GetMember(Key::kNext));
    }
    CreatePoints(0);

    ZELTPCourseLink* object = nullptr;
    if (toolChange) {
        auto* change = Create<ZELTPToolChangeLink>(name);
        change->SetToolRemovePoint(m_pointObjects[removePoint]);
        change->SetPreviousMachineConfiguration(previous);
        change->SetNextMachineConfiguration(next);
        object = change;
    } else {
        object = Create<ZELTPCourseLink>(name);
    }
    object->SetPointsDetail(detail);
    AddTrajectories(object);
    return object;
}

ZELTPTowCourse* ProgramBuilder::BuildCourse(const Value& course)
{
    const QString name = ReadOptionalText(course, Key::kName, QString());
    const Value towMask = course.GetMember(Key::kTowMask);
    const ZELCompTowMask usedTowMask = ReadTowMask(towMask);
    const ZELTPMachineConfiguration configuration
        = ReadMachineConfiguration(course.GetMember(Key::kMachineConfiguration));
    RequireRollerCovers(towMask, usedTowMask, configuration);
    const QList<double> towLengths = ReadTowLengths(course.GetMember(Key::kTowLengths), usedTowMask.GetNumTows());
    ReadCourseChain(course.GetMember(Key::kTrajectories), usedTowMask);

    const TrajectoryRecord& rollIn = m_trajectories[1];
    const TrajectoryRecord& rollOut = m_trajectories[m_trajectories.size() - 2];
    const std::size_t rollInPoint = rollIn.firstPoint
        + std::size_t(ReadIndex(course.GetMember(Key::kRollInPoint), qsizetype(rollIn.numPoints),
                                ZELTPProgramReader::tr("the roll-in trajectory's points")));
    const std::size_t rollOutPoint = rollOut.firstPoint
        + std::size_t(ReadIndex(course.GetMember(Key::kRollOutPoint), qsizetype(rollOut.numPoints),
                                ZELTPProgramReader::tr("the roll-out trajectory's points")));
    CreatePoints(rollInPoint);

    auto* towCourse = Create<ZELTPTowCourse>(name);
    towCourse->SetUsedTowMask(usedTowMask);
    towCourse->SetMachineConfiguration(configuration);
    towCourse->SetTowLengths(towLengths);
    AddTrajectories(towCourse);
    towCourse->SetRollInPoint(m_pointObjects[rollInPoint]);
    towCourse->SetRollOutPoint(m_pointObjects[rollOutPoint]);
    return towCourse;
}

// The trajectories of a link or probing procedure: off the part, none
// sharing a point with another.
void ProgramBuilder::ReadOffPartChain(const Value& trajectories)
{
    m_points.clear();
    m_trajectories.clear();
    ForEachEntry(trajectories, [&](const Value& trajectory) {
        m_trajectories.push_back(ReadTrajectory(trajectory, Role::OffPart, ZELCompTowMask(), false));
    });
    DeriveMissingDirections(m_points);
}

void ProgramBuilder::ReadCourseChain(const Value& trajectories, const ZELCompTowMask& courseMask)
{
    const qsizetype count = CountEntries(trajectories.GetArray());
    if (count < MinimumCourseTrajectories)
        trajectories.Fail(ZELTPProgramReader::tr("expected at least %1 trajectories (approach, roll-in, roll-out, "
                                                 "retract), found %2")
                              .arg(MinimumCourseTrajectories)
                              .arg(count));
    m_points.clear();
    m_trajectories.clear();
    qsizetype index = 0;
    ForEachEntry(trajectories, [&](const Value& trajectory) {
        const Role role = index == 0 ? Role::Approach : index == count - 1 ? Role::Retract : Role::OnPart;
        m_trajectories.push_back(ReadTrajectory(trajectory, role, courseMask, index > 0));
        ++index;
    });
    DeriveMissingDirections(m_points);
}

TrajectoryRecord ProgramBuilder::ReadTrajectory(const Value& trajectory, Role role, const ZELCompTowMask& courseMask,
                                                bool joinsPrevious)
{
    TrajectoryRecord record;
    record.kind = ReadTrajectoryKind(trajectory.GetMember(Key::kKind), role);
    record.feedrate = ReadNumberIn(trajectory.GetMember(Key::kFeedrate), FeedrateRange);
    const bool onPart = record.kind != TrajectoryKind::OffPart;
    if (onPart) {
        record.forwardTilt = ReadOptionalAngle(trajectory, Key::kForwardTilt, TiltRange);
        record.sideTilt = ReadOptionalAngle(trajectory, Key::kSideTilt, TiltRange);
        record.smoothingAngle = ReadOptionalAngle(trajectory, Key::kSmoothingAngle, SmoothingAngleRange);
    }
    if (record.kind == TrajectoryKind::Tow)
        ReadTowFields(trajectory, courseMask, record);

    const Value points = trajectory.GetMember(Key::kPoints);
    const std::size_t minimum = record.kind == TrajectoryKind::Tow ? 2 : 1;
    if (points.GetArray().size() < minimum)
        points.Fail(record.kind == TrajectoryKind::Tow
                        ? ZELTPProgramReader::tr("tow trajectory needs at least 2 points")
                        : ZELTPProgramReader::tr("trajectory needs at least 1 point"));
    record.firstPoint = joinsPrevious ? m_points.size() - 1 : m_points.size();
    ForEachEntry(points, [&](const Value& point) {
        const PointRecord read = ReadPoint(point, onPart);
        if (joinsPrevious && record.numPoints == 0)
            JoinPoint(read, point);
        else
            m_points.push_back(read);
        ++record.numPoints;
    });
    return record;
}

void ProgramBuilder::ReadTowFields(const Value& trajectory, const ZELCompTowMask& courseMask,
                                   TrajectoryRecord& record) const
{
    const int numTows = courseMask.GetNumTows();
    const Value towMask = trajectory.GetMember(Key::kTowMask);
    record.towMask = ReadTowMaskOf(towMask, numTows, ZELTPProgramReader::tr("the course's towMask"));
    RequireTowsOfCourse(towMask, record.towMask, courseMask);
    const std::optional<Value> forcedMask = trajectory.FindMember(Key::kForcedMask);
    record.forcedMask = forcedMask
        ? ReadTowMaskOf(*forcedMask, numTows, ZELTPProgramReader::tr("the trajectory's towMask"))
        : ZELCompTowMask(numTows, false);
    record.forcedRates = ReadForcedRates(trajectory, numTows);
}

// The first point of a course's trajectory is the last point of the one
// before: one point, which takes the directions of whichever copy gives them.
void ProgramBuilder::JoinPoint(const PointRecord& copy, const Value& point)
{
    PointRecord& junction = m_points.back();
    const ZELMathVector offset = copy.origin - junction.origin;
    if (!(offset.Dot(offset) <= JunctionTolerance * JunctionTolerance))
        point.GetMember(Key::kOrigin)
            .Fail(ZELTPProgramReader::tr("origin is %1 mm from the previous trajectory's last "
                                         "point (at most %2 mm)")
                      .arg(Number(LengthOf(offset)))
                      .arg(Number(JunctionTolerance)));
    if (!junction.hasDirections && copy.hasDirections) {
        junction.travel = copy.travel;
        junction.normal = copy.normal;
        junction.hasDirections = true;
    }
    junction.onPart = junction.onPart || copy.onPart;
}

// Creates the chain's points; an on-part point is numbered by its distance
// along the chain from the point at `indexOrigin`.
void ProgramBuilder::CreatePoints(std::size_t indexOrigin)
{
    m_pointObjects.clear();
    m_pointObjects.reserve(m_points.size());
    for (std::size_t position = 0; position < m_points.size(); ++position) {
        const PointRecord& record = m_points[position];
        if (record.onPart) {
            auto* point = Create<ZELTPPoint>(ToolFrame(record));
            point->SetIndex(int(qint64(position) - qint64(indexOrigin)));
            m_pointObjects.push_back(point);
        } else {
            m_pointObjects.push_back(Create<ZELTPOffPartPoint>(ToolFrame(record)));
        }
    }
}

template <typename Owner> void ProgramBuilder::AddTrajectories(Owner* owner) const
{
    for (const TrajectoryRecord& record : m_trajectories) {
        std::unique_ptr<ZELTPTrajectory> trajectory = CreateTrajectory(record);
        for (std::size_t point = 0; point < record.numPoints; ++point)
            trajectory->AddPoint(m_pointObjects[record.firstPoint + point]);
        owner->AddTrajectory(trajectory.get());
        trajectory.release();
    }
}

} // namespace ZELTPReading
