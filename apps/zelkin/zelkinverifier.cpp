#include "zelkinverifier.h"

#include <zelcomptowmask.h>
#include <zelkinafpmachine.h>
#include <zelkinforwardkinematics.h>
#include <zelkinrotaryjoint.h>
#include <zelkintranslationjoint.h>
#include <zelkinvariable.h>
#include <zelmathaxis.h>
#include <zelsysexception.h>
#include <zeltpcourselink.h>
#include <zeltppoint.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>
#include <zeltponparttrajectory.h>

#include <QHash>
#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <set>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDegreesPerRadian = 57.29577951308232;
// Values are written with four decimals of an inch or a degree: a value
// right at a limit may read this much beyond it.
constexpr double kLinearLimitSlack = 0.002;
constexpr double kRotaryLimitSlack = 2e-6;
// Feeds are written with six significant digits.
constexpr double kSpeedSlack = 1e-3;
// A feed move shorter than this leaves the roller centre where it was.
constexpr double kInPlace = 1e-6;
// Lines along a course are matched by material length; U is written with
// four decimals of a millimetre.
constexpr double kLengthMatch = 0.01;
// Angles worked out through a few frame products carry this much rounding.
constexpr double kAngleRounding = 1e-9;
// Segments of the NC's path searched around the last one a point was found
// on before all are searched.
constexpr int kSegmentsBehind = 4;
constexpr int kSegmentsAhead = 64;

QString Number(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

bool IsFinite(const ZELMathPoint& point)
{
    return std::isfinite(point.GetX()) && std::isfinite(point.GetY()) && std::isfinite(point.GetZ());
}

ZELMathVector ReadVector(const QString& key, const QString& value)
{
    const QStringList parts = value.split(QLatin1Char(','));
    std::array<double, 3> coordinates{};
    bool allNumbers = parts.size() == 3;
    for (int i = 0; allNumbers && i < 3; ++i)
        coordinates[i] = parts.at(i).simplified().toDouble(&allNumbers);
    if (!allNumbers)
        throw ZELSysException(QStringLiteral("the machine's wrist configuration gives %1 as '%2', not three numbers "
                                             "separated by ','")
                                  .arg(key, value));
    return ZELMathVector(coordinates[0], coordinates[1], coordinates[2]);
}

// The part of `vector` across the unit `axis`, made unit; throws when
// nothing is left of it.
ZELMathVector Across(const ZELMathVector& vector, const ZELMathVector& axis, const QString& what)
{
    const ZELMathVector across = vector - axis * axis.Dot(vector);
    if (across.GetLength() < 1e-9)
        throw ZELSysException(
            QStringLiteral("the machine's wrist configuration gives %1 along its joint's axis").arg(what));
    return across.GetNormalized();
}

// A toolpath point a line along a course may stand for.
struct Target
{
    //! From 1, along the course's trajectories.
    int number = 0;
    //! Material from the course's first point (mm), as the post counts it.
    double length = 0.0;
    ZELMathAxis frame;
    ZELMathPoint centre;
};

struct ExpectedTowEvent
{
    QString code;
    int tow = 0;
    double length = 0.0;
};

// A course of the toolpath as the checks walk it.
struct CoursePlan
{
    //! Every point of the course's trajectories, in order, a point two
    //! trajectories share once.
    QList<Target> targets;
    //! The points from the approach's first through the roll-out point.
    int walked = 0;
    //! The numbers of the roll-in and roll-out points; 0 for none.
    int rollIn = 0;
    int rollOut = 0;
    QList<ExpectedTowEvent> towEvents;
};

// A procedure of the toolpath in path order: link 0 leads to course 1,
// whose retract link 1 leads to course 2, and so on.
struct ProcedurePlan
{
    QList<CoursePlan> courses;
    //! The roller centres of each link's points.
    QList<QList<ZELMathPoint>> links;
};

QList<int> TowsOf(const ZELCompTowMask& mask)
{
    QList<int> tows;
    for (int tow = 1; tow <= mask.GetNumTows(); ++tow) {
        if (mask.IsTowEnabled(tow))
            tows.append(tow);
    }
    return tows;
}

void AppendTowEvents(QList<ExpectedTowEvent>& events, const QString& code, const ZELCompTowMask& mask, double length)
{
    for (const int tow : TowsOf(mask))
        events.append(ExpectedTowEvent{code, tow, length});
}

// Tows are added where a tow trajectory lays more tows than the one before
// it, cut where it lays fewer, and the rest are cut where the roll-out
// begins.
QList<ExpectedTowEvent> ExpectedTowEvents(const ZELTPTowCourse& course, const QHash<const ZELTPPoint*, double>& lengths)
{
    QList<ExpectedTowEvent> events;
    if (!course.GetRollInTrajectory())
        return events;
    const ZELTPTrajectory* rollOut = course.GetRollOutTrajectory();
    std::optional<ZELCompTowMask> laid;
    for (const ZELTPTrajectory* trajectory = course.GetNextTrajectory(course.GetRollInTrajectory());
         trajectory && trajectory != rollOut; trajectory = course.GetNextTrajectory(trajectory)) {
        const auto* tows = dynamic_cast<const ZELTPTowTrajectory*>(trajectory);
        if (!tows || tows->GetNumPoints() == 0)
            continue;
        const ZELCompTowMask mask = tows->GetTowMask();
        const ZELCompTowMask before = laid.value_or(ZELCompTowMask(mask.GetNumTows(), false));
        const double length = lengths.value(tows->GetPoint(0));
        AppendTowEvents(events, QStringLiteral("A/B"), mask - before, length);
        AppendTowEvents(events, QStringLiteral("C/B"), before - mask, length);
        laid = mask;
    }
    if (laid && rollOut && rollOut->GetNumPoints() > 0)
        AppendTowEvents(events, QStringLiteral("C/B"), *laid, lengths.value(rollOut->GetPoint(0)));
    return events;
}

ZELMathPoint RollerCentreOf(const ZELMathAxis& frame, double rollerRadius)
{
    return frame.GetOrigin() + rollerRadius * frame.GetWDirection();
}

// The material is counted, as the post counts it, along the path through
// the course's points from its first.
CoursePlan PlanCourse(const ZELTPTowCourse& course, double rollerRadius)
{
    CoursePlan plan;
    QHash<const ZELTPPoint*, double> lengths;
    const ZELTPPoint* last = nullptr;
    double length = 0.0;
    for (int i = 0; i < course.GetNumTrajectories(); ++i) {
        for (const ZELTPPoint* point : course.GetTrajectory(i)->GetPoints()) {
            if (point == last)
                continue;
            if (last)
                length += point->GetTipCoordinates().GetDistanceTo(last->GetTipCoordinates());
            last = point;
            const int number = int(plan.targets.size()) + 1;
            const ZELMathAxis frame = point->GetToolFrame();
            plan.targets.append(Target{number, length, frame, RollerCentreOf(frame, rollerRadius)});
            if (!lengths.contains(point))
                lengths.insert(point, length);
            if (point == course.GetRollInPoint() && plan.rollIn == 0)
                plan.rollIn = number;
            if (point == course.GetRollOutPoint() && plan.rollOut == 0)
                plan.rollOut = number;
        }
    }
    plan.walked = plan.rollOut > 0 ? plan.rollOut : int(plan.targets.size());
    plan.towEvents = ExpectedTowEvents(course, lengths);
    return plan;
}

QList<ZELMathPoint> RollerCentresOf(const ZELTPCourseLink& link, double rollerRadius)
{
    QList<ZELMathPoint> centres;
    for (const ZELTPPoint* point : link.GetPoints())
        centres.append(RollerCentreOf(point->GetToolFrame(), rollerRadius));
    return centres;
}

ProcedurePlan PlanProcedure(const ZELTPRollLayupProcedure& procedure, double rollerRadius)
{
    ProcedurePlan plan;
    QSet<const ZELTPCourse*> walked;
    for (const ZELTPCourseLink* link = procedure.GetApproachLink(); link;) {
        plan.links.append(RollerCentresOf(*link, rollerRadius));
        const ZELTPCourse* course = link->GetToCourse();
        if (!course || walked.contains(course))
            break;
        walked.insert(course);
        const auto* tows = qobject_cast<const ZELTPTowCourse*>(course);
        plan.courses.append(tows ? PlanCourse(*tows, rollerRadius) : CoursePlan());
        link = course->GetRetractLink();
    }
    return plan;
}

QList<const ZELTPRollLayupProcedure*> LayupProceduresOf(const ZELTPProgram& toolpath)
{
    QList<const ZELTPRollLayupProcedure*> procedures;
    for (const ZELTPProcedure* procedure : toolpath.GetProcedures()) {
        if (const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(procedure))
            procedures.append(layup);
    }
    return procedures;
}

const ZELTPRollLayupProcedure* ProcedureNamed(const ZELTPProgram& toolpath, const QString& name)
{
    for (const ZELTPRollLayupProcedure* procedure : LayupProceduresOf(toolpath)) {
        if (procedure->GetName() == name)
            return procedure;
    }
    return nullptr;
}

bool IsLarger(double value, const ZELKinVerifyExtreme& extreme)
{
    return std::isnan(extreme.value) || value > extreme.value;
}

void KeepLargest(ZELKinVerifyExtreme& extreme, double value, const ZELKinVerifyPlace& place, const QString& subject)
{
    if (IsLarger(value, extreme))
        extreme = ZELKinVerifyExtreme{value, place, subject};
}

void KeepSmallest(ZELKinVerifyExtreme& extreme, double value, const ZELKinVerifyPlace& place)
{
    if (std::isnan(extreme.value) || value < extreme.value)
        extreme = ZELKinVerifyExtreme{value, place, {}};
}

// Where the nearest segment of a path lies from a point.
struct Nearest
{
    double distance = std::numeric_limits<double>::infinity();
    //! The index of the vertex that ends the segment.
    int end = 0;
};

double DistanceToSegment(const ZELMathPoint& point, const ZELMathPoint& from, const ZELMathPoint& to)
{
    const ZELMathVector along = to - from;
    const double squared = along.Dot(along);
    const double t = squared > 0.0 ? std::clamp((point - from).Dot(along) / squared, 0.0, 1.0) : 0.0;
    return point.GetDistanceTo(from + along * t);
}

// The roller centre's path through one course's lines. Points are looked
// up in order along it, so the search starts where the last one was found
// and only searches the whole path when nothing near passes there.
class NCPath
{
public:
    void Add(const ZELMathPoint& centre, unsigned line)
    {
        if (!IsFinite(centre))
            return;
        m_vertices.append(centre);
        m_lines.append(line);
    }

    bool IsEmpty() const { return m_vertices.isEmpty(); }
    unsigned LineOf(int vertex) const { return m_lines.at(vertex); }

    Nearest NearestTo(const ZELMathPoint& point, double gate)
    {
        Nearest nearest = NearestIn(point, m_hint - kSegmentsBehind, m_hint + kSegmentsAhead);
        if (!(nearest.distance <= gate))
            nearest = NearestIn(point, 0, int(m_vertices.size()));
        m_hint = nearest.end;
        return nearest;
    }

private:
    Nearest NearestIn(const ZELMathPoint& point, int from, int to) const
    {
        Nearest nearest;
        if (m_vertices.size() == 1)
            return Nearest{point.GetDistanceTo(m_vertices.first()), 0};
        for (int end = std::max(from, 1); end < std::min(to, int(m_vertices.size())); ++end) {
            const double distance = DistanceToSegment(point, m_vertices.at(end - 1), m_vertices.at(end));
            if (distance < nearest.distance)
                nearest = Nearest{distance, end};
        }
        return nearest;
    }

    QList<ZELMathPoint> m_vertices;
    QList<unsigned> m_lines;
    int m_hint = 0;
};

} // namespace

//! The machine's kinematics as the checks follow them: the joint tree's
//! forward kinematics, the tool the wrist configuration describes, and
//! TRAORI's programmed point.
class ZELKinVerifierHead
{
public:
    //! Where a line's values put the head.
    struct Pose
    {
        //! The line's values with X, Y and Z as slide positions.
        QVector<double> axes;
        //! The programmed point, the roller centre.
        ZELMathPoint centre;
        ZELMathVector normal;
        ZELMathVector travel;
        //! The axes of the chain's rotary joints as the line turns them.
        QList<ZELMathVector> rotaryAxes;
    };

    explicit ZELKinVerifierHead(const ZELKinAFPMachine& machine)
        : m_kinematics(machine)
        , m_rollerRadius(machine.GetRollerRadius())
    {
        const QList<ZELKinVariable*> variables = machine.GetVariables();
        const QList<ZELKinJoint*> chain = m_kinematics.GetChain();
        for (const ZELKinJoint* joint : chain) {
            if (qobject_cast<const ZELKinRotaryJoint*>(joint)) {
                m_rotaryJoints.append(joint);
                m_rotaryVariables.append(int(variables.indexOf(joint->GetVariable(0))));
            }
        }
        FindSlides(machine, chain);
        FindWrist(chain);
        m_kinematics.SetHomeToolFrame(HomeToolFrame(machine.GetSolverConfig()));
        m_tipOffset = m_kinematics.GetHomeToolFrame().GetOrigin() - ZELMathPoint();
    }

    double GetRollerRadius() const { return m_rollerRadius; }
    const QList<int>& GetSlideVariables() const { return m_slides; }
    const QList<int>& GetRotaryVariables() const { return m_rotaryVariables; }

    // Under TRAORI the X, Y and Z words are the programmed point, counted
    // from where the tool tip stands with every axis at zero: the slides are
    // whatever brings the tip there.
    Pose PoseOf(const QVector<double>& values) const
    {
        Pose pose;
        pose.centre = ZELMathPoint(values.at(m_slides.at(0)), values.at(m_slides.at(1)), values.at(m_slides.at(2)));
        pose.axes = m_kinematics.GetValuesForToolTip(values, pose.centre + m_tipOffset);
        const ZELMathAxis tool = m_kinematics.GetToolFrame(pose.axes);
        pose.normal = tool.GetWDirection();
        pose.travel = tool.GetUDirection();
        for (const ZELKinJoint* joint : m_rotaryJoints)
            pose.rotaryAxes.append(m_kinematics.GetAxis(pose.axes, joint));
        return pose;
    }

    //! The angle (rad, 0 to pi/2) between the normal's line and the first
    //! roll's axis, along which the wrist's first roll is free.
    double SingularityMarginOf(const Pose& pose) const
    {
        const double angle = pose.normal.GetAngleTo(pose.rotaryAxes.at(m_firstRoll));
        return std::min(angle, kPi - angle);
    }

private:
    void FindSlides(const ZELKinAFPMachine& machine, const QList<ZELKinJoint*>& chain)
    {
        const QList<ZELKinVariable*> variables = machine.GetVariables();
        QList<const ZELKinVariable*> slides;
        for (const ZELKinJoint* joint : chain) {
            if (qobject_cast<const ZELKinTranslationJoint*>(joint))
                slides.append(joint->GetVariable(0));
        }
        for (const QString& label : {QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z")}) {
            const ZELKinVariable* variable = machine.GetVariable(label);
            if (!variable || !slides.contains(variable) || slides.size() != 3)
                throw ZELSysException(QStringLiteral("the machine's three slides must be driven by the variables X, Y "
                                                     "and Z, which the NC's TRAORI point is written in"));
            m_slides.append(int(variables.indexOf(variable)));
        }
    }

    void FindWrist(const QList<ZELKinJoint*>& chain)
    {
        const qsizetype count = chain.size();
        for (qsizetype i = std::max<qsizetype>(0, count - 3); i < count; ++i) {
            if (count < 3 || !qobject_cast<const ZELKinRotaryJoint*>(chain.at(i)))
                throw ZELSysException(QStringLiteral("the machine's joint chain must end in a wrist of three rotary "
                                                     "joints: first roll, bend and second roll"));
        }
        m_bend = qobject_cast<const ZELKinRotaryJoint*>(chain.at(count - 2));
        m_secondRoll = qobject_cast<const ZELKinRotaryJoint*>(chain.at(count - 1));
        m_firstRoll = int(m_rotaryJoints.indexOf(chain.at(count - 3)));
    }

    // The wrist configuration ("key: value" items separated by ";") gives
    // the tip with every axis at zero, and the zero directions of the bend
    // and the second roll: the tool points along the bend's, so the normal
    // is its opposite, and travels along the second roll's.
    ZELMathAxis HomeToolFrame(const QString& configuration) const
    {
        ZELMathVector tip;
        ZELMathVector bendReference(0, 0, 1);
        ZELMathVector secondRollReference(1, 0, 0);
        for (const QString& item : configuration.split(QLatin1Char(';'))) {
            const QStringList parts = item.split(QLatin1Char(':'));
            const QString key = parts.at(0).simplified();
            const QString value = parts.value(1).simplified();
            if (key == QLatin1String("tip-point"))
                tip = ReadVector(key, value);
            else if (key == QLatin1String("bend-reference"))
                bendReference = ReadVector(key, value);
            else if (key == QLatin1String("second-roll-reference"))
                secondRollReference = ReadVector(key, value);
        }
        const ZELMathVector normal =
            -Across(bendReference, m_bend->GetVector().GetNormalized(), QStringLiteral("bend-reference"));
        const ZELMathVector roll = Across(secondRollReference, m_secondRoll->GetVector().GetNormalized(),
                                          QStringLiteral("second-roll-reference"));
        const ZELMathVector travel = Across(roll, normal, QStringLiteral("second-roll-reference"));
        return ZELMathAxis(ZELMathPoint() + tip, travel, normal.Cross(travel), normal);
    }

    ZELKinForwardKinematics m_kinematics;
    double m_rollerRadius = 0.0;
    QList<int> m_slides;
    QList<const ZELKinJoint*> m_rotaryJoints;
    QList<int> m_rotaryVariables;
    const ZELKinRotaryJoint* m_bend = nullptr;
    const ZELKinRotaryJoint* m_secondRoll = nullptr;
    //! The first roll among the rotary joints.
    int m_firstRoll = 0;
    ZELMathVector m_tipOffset;
};

namespace {

// What the machine's variables are, read once.
struct Axes
{
    Axes(const ZELKinAFPMachine& machine, const QList<int>& slides)
        : variables(machine.GetVariables())
        , slides(slides)
    {
        const ZELKinVariable* material = machine.GetMaterialVariable();
        for (int i = 0; i < variables.size(); ++i) {
            if (variables.at(i) && variables.at(i)->GetType() == ZELKinVariable::Rotary)
                rotary.append(i);
            if (variables.at(i) && variables.at(i) == material)
                materialIndex = i;
        }
    }

    bool IsRotary(int index) const { return rotary.contains(index); }
    QString LabelOf(int index) const { return variables.at(index) ? variables.at(index)->GetLabel() : QString(); }

    QList<ZELKinVariable*> variables;
    QList<int> slides;
    //! -1 for a machine without a material axis.
    int materialIndex = -1;
    QList<int> rotary;
};

// One ply file checked line by line against its procedure, when the
// toolpath has it.
class PlyCheck
{
public:
    using Head = ZELKinVerifierHead;

    PlyCheck(const Axes& axes, const Head& head, const ZELKinVerifyGates& gates, const ZELKinNCPlyFile& ply,
             QList<ZELKinVerifyFinding>& findings)
        : m_axes(axes)
        , m_head(head)
        , m_gates(gates)
        , m_rollerRadius(head.GetRollerRadius())
        , m_ply(ply)
        , m_findings(findings)
    {
        m_result.plyNumber = ply.plyNumber;
        m_result.procedure = ply.procedure;
        m_result.file = ply.path;
        for (const ZELKinNCTowEvent& event : ply.towEvents)
            Count(event.course, &ZELKinVerifyTally::towEvents);
    }

    //! `plan` is null for a ply whose procedure the toolpath does not have:
    //! its lines are then checked for limits, speeds, steps and codes only.
    ZELKinVerifiedPly Run(const ProcedurePlan* plan)
    {
        m_plan = plan;
        m_result.courses = plan ? int(plan->courses.size()) : 0;
        FindUnknownCourses();
        const ZELKinNCMotion* previous = nullptr;
        std::optional<ZELKinVerifiedLine> previousLine;
        for (const ZELKinNCMotion& motion : m_ply.motions) {
            Count(motion.course, &ZELKinVerifyTally::motionLines);
            const Head::Pose pose = m_head.PoseOf(motion.values);
            const ZELKinVerifiedLine line = Replay(motion, pose, previousLine);
            CheckLimits(motion, line);
            if (previous && previousLine) {
                CheckRotarySteps(*previous, motion);
                CheckSpeeds(motion, StartOf(motion, *previousLine), line);
            }
            if (motion.alongCourse)
                CheckAlongCourse(motion, pose);
            else
                CheckLinkLine(motion, pose);
            AddToPath(motion, line.centre);
            m_result.lines.append(line);
            previous = &motion;
            previousLine = line;
        }
        if (m_plan) {
            CheckTowEvents();
            CheckEveryCourseIsRun();
        }
        for (const ZELKinNCIrregularity& irregularity : m_ply.irregularities)
            Find(irregularity.check, ZELKinVerifyPlace{irregularity.course, 0, irregularity.file, irregularity.line},
                 irregularity.subject, 0.0, 0.0, irregularity.message);
        for (const ZELKinVerifiedCourse& course : std::as_const(m_courses))
            m_result.courseTallies.append(course);
        return m_result;
    }

private:
    ZELKinVerifyPlace PlaceOf(const ZELKinNCMotion& motion, int point = 0) const
    {
        return ZELKinVerifyPlace{motion.course, point, m_ply.path, motion.line};
    }

    void Find(const QString& check, const ZELKinVerifyPlace& place, const QString& subject, double value, double limit,
              const QString& message, bool warning = false)
    {
        m_findings.append(ZELKinVerifyFinding{check, m_ply.plyNumber, m_ply.procedure, place, subject, value, limit,
                                              message, warning});
        Tally(place.course, [warning](ZELKinVerifyTally& tally) { ++(warning ? tally.warnings : tally.findings); });
    }

    template <typename Change>
    void Tally(int course, const Change& change)
    {
        change(static_cast<ZELKinVerifyTally&>(m_result));
        if (course <= 0)
            return;
        ZELKinVerifiedCourse& tally = m_courses[course];
        tally.course = course;
        change(static_cast<ZELKinVerifyTally&>(tally));
    }

    void Count(int course, int ZELKinVerifyTally::*count)
    {
        Tally(course, [count](ZELKinVerifyTally& tally) { ++(tally.*count); });
    }

    void Keep(ZELKinVerifyExtreme ZELKinVerifyTally::*extreme, double value, const ZELKinVerifyPlace& place,
              const QString& subject = {})
    {
        Tally(place.course, [&](ZELKinVerifyTally& tally) { KeepLargest(tally.*extreme, value, place, subject); });
    }

    const CoursePlan* CourseOf(int course) const
    {
        return m_plan && course >= 1 && course <= m_plan->courses.size() ? &m_plan->courses.at(course - 1) : nullptr;
    }

    // A course record the procedure has no course for: its lines cannot be
    // compared with anything.
    void FindUnknownCourses()
    {
        if (!m_plan)
            return;
        for (auto record = m_ply.courseRecords.cbegin(); record != m_ply.courseRecords.cend(); ++record) {
            if (!CourseOf(record.key()))
                Find(QStringLiteral("program"), ZELKinVerifyPlace{record.key(), 0, m_ply.path, record.value()},
                     QString(), 0.0, 0.0,
                     QStringLiteral("the procedure '%1' has no course %2: it has %3")
                         .arg(m_ply.procedure, QString::number(record.key()), QString::number(m_plan->courses.size())));
        }
    }

    ZELKinVerifiedLine Replay(const ZELKinNCMotion& motion, const Head::Pose& pose,
                              const std::optional<ZELKinVerifiedLine>& previous) const
    {
        ZELKinVerifiedLine line{motion.line, motion.course, motion.alongCourse, 0.0, pose.centre, pose.axes};
        line.pathLength = previous ? previous->pathLength + Step(previous->centre, line.centre) : 0.0;
        return line;
    }

    // Where the axes stand when the line begins: the slides where the line
    // before left them, every other axis with the presets since applied.
    ZELKinVerifiedLine StartOf(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& previous) const
    {
        ZELKinVerifiedLine start = previous;
        for (int i = 0; i < start.axes.size(); ++i) {
            if (!m_axes.slides.contains(i))
                start.axes[i] = motion.starts.at(i);
        }
        return start;
    }

    static double Step(const ZELMathPoint& from, const ZELMathPoint& to)
    {
        const double step = to.GetDistanceTo(from);
        return std::isfinite(step) ? step : 0.0;
    }

    void CheckLimits(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& line)
    {
        for (int i = 0; i < line.axes.size() && i < m_axes.variables.size(); ++i) {
            const ZELKinVariable* variable = m_axes.variables.at(i);
            const double value = line.axes.at(i);
            if (!variable || !std::isfinite(value))
                continue;
            const double slack = m_axes.IsRotary(i) ? kRotaryLimitSlack : kLinearLimitSlack;
            if (value < variable->GetMinimum() - slack)
                FindLimit(motion, i, value, variable->GetMinimum(), QStringLiteral("minimum"));
            else if (value > variable->GetMaximum() + slack)
                FindLimit(motion, i, value, variable->GetMaximum(), QStringLiteral("maximum"));
        }
    }

    void FindLimit(const ZELKinNCMotion& motion, int axis, double value, double limit, const QString& side)
    {
        const bool rotary = m_axes.IsRotary(axis);
        const double scale = rotary ? kDegreesPerRadian : 1.0;
        const QString unit = rotary ? QStringLiteral("deg") : QStringLiteral("mm");
        const QString label = m_axes.LabelOf(axis);
        Find(QStringLiteral("limit"), PlaceOf(motion), label, value * scale, limit * scale,
             QStringLiteral("%1 at %2 %4 is beyond its %5 of %3 %4")
                 .arg(label, Number(value * scale, 4), Number(limit * scale, 4), unit, side));
    }

    void CheckRotarySteps(const ZELKinNCMotion& previous, const ZELKinNCMotion& motion)
    {
        for (int i : m_axes.rotary) {
            const double step = std::abs(motion.values.at(i) - motion.starts.at(i));
            if (!std::isfinite(step))
                continue;
            const QString label = m_axes.LabelOf(i);
            Keep(&ZELKinVerifyTally::rotaryStep, step, PlaceOf(motion), label);
            const bool insideOneCourse =
                motion.alongCourse && previous.alongCourse && motion.course == previous.course;
            if (insideOneCourse && step > m_gates.flip)
                Find(QStringLiteral("flip"), PlaceOf(motion), label, step * kDegreesPerRadian,
                     m_gates.flip * kDegreesPerRadian,
                     QStringLiteral(
                         "%1 turns %2 deg from the line before, inside the course: a wrist flip (gate %3 deg)")
                         .arg(label, Number(step * kDegreesPerRadian, 3), Number(m_gates.flip * kDegreesPerRadian, 3)));
        }
    }

    // Under TRAORI the feed is the roller centre's speed along its path; each
    // axis moves its share of the line in the time the centre takes.
    void CheckSpeeds(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& before, const ZELKinVerifiedLine& line)
    {
        if (motion.rapid || !(motion.feedrate > 0.0))
            return;
        const double distance = line.pathLength - before.pathLength;
        if (distance < kInPlace) {
            Count(motion.course, &ZELKinVerifyTally::movesInPlace);
            return;
        }
        const double seconds = distance / (motion.feedrate / 60.0);
        for (int i = 0; i < line.axes.size() && i < m_axes.variables.size(); ++i) {
            const ZELKinVariable* variable = m_axes.variables.at(i);
            const double speed = std::abs(line.axes.at(i) - before.axes.at(i)) / seconds;
            if (!variable || !std::isfinite(speed) || !(variable->GetMaxVelocity() > 0.0))
                continue;
            const double ratio = speed / variable->GetMaxVelocity();
            const QString label = m_axes.LabelOf(i);
            Keep(&ZELKinVerifyTally::speedRatio, ratio, PlaceOf(motion), label);
            if (ratio > 1.0 + kSpeedSlack)
                FindSpeed(motion, i, speed, variable->GetMaxVelocity());
        }
    }

    // In the description's units: m/min for linear axes, deg/min for rotary ones.
    void FindSpeed(const ZELKinNCMotion& motion, int axis, double speed, double limit)
    {
        const bool rotary = m_axes.IsRotary(axis);
        const double scale = rotary ? kDegreesPerRadian * 60.0 : 0.06;
        const QString unit = rotary ? QStringLiteral("deg/min") : QStringLiteral("m/min");
        const QString label = m_axes.LabelOf(axis);
        Find(QStringLiteral("speed"), PlaceOf(motion), label, speed * scale, limit * scale,
             QStringLiteral("%1 would move at %2 %4 at the programmed feed, above its %3 %4")
                 .arg(label, Number(speed * scale, 3), Number(limit * scale, 3), unit));
    }

    // The course's point a line stands for: the one at the line's length of
    // material, and among those at the same length the one whose roller
    // centre is nearest; never one before the last line's.
    const Target* Match(const CoursePlan& plan, const ZELKinNCMotion& motion, const ZELMathPoint& centre)
    {
        const QList<Target>& targets = plan.targets;
        const int from = motion.course == m_matchedCourse ? m_matchedIndex : 0;
        const double length = m_axes.materialIndex >= 0 ? motion.values.at(m_axes.materialIndex) : std::nan("");
        int best = -1;
        double bestScore = std::numeric_limits<double>::infinity();
        bool lengthMatched = false;
        for (int i = from; i < targets.size(); ++i) {
            const double lengthOff = std::isfinite(length) ? std::abs(targets.at(i).length - length) : 0.0;
            // Past the line's length once one point is at it: the rest lie further on.
            if (lengthMatched && targets.at(i).length > length + kLengthMatch)
                break;
            const double centreOff = centre.GetDistanceTo(targets.at(i).centre);
            const double score = (lengthOff > kLengthMatch ? lengthOff * 1e6 : 0.0) + centreOff;
            if (score < bestScore) {
                bestScore = score;
                best = i;
            }
            lengthMatched = lengthMatched || lengthOff <= kLengthMatch;
        }
        if (best < 0)
            return nullptr;
        m_matchedCourse = motion.course;
        m_matchedIndex = best;
        return &targets.at(best);
    }

    // How far the line's words may turn `direction` off the toolpath's:
    // each rotary joint turns it, to first order, by the error of its value
    // times the sine of the angle between its axis and the direction. A
    // written word is off by its rounding, a word left out by its lag too.
    // Half the square of the errors' sum bounds what the first order leaves.
    double AngleGateOf(const ZELMathVector& direction, const ZELKinNCMotion& motion, const Head::Pose& pose) const
    {
        const QList<int>& variables = m_head.GetRotaryVariables();
        double firstOrder = 0.0;
        double errors = 0.0;
        for (int k = 0; k < variables.size(); ++k) {
            const bool written = motion.written.value(variables.at(k), false);
            const double error = m_gates.rotaryRounding + (written ? 0.0 : m_gates.rotaryLag);
            firstOrder += error * pose.rotaryAxes.at(k).Cross(direction).GetLength();
            errors += error;
        }
        return firstOrder + 0.5 * errors * errors;
    }

    void CheckAlongCourse(const ZELKinNCMotion& motion, const Head::Pose& pose)
    {
        const CoursePlan* plan = CourseOf(motion.course);
        if (!plan)
            return;
        if (!IsFinite(pose.centre)) {
            Find(QStringLiteral("centre"), PlaceOf(motion), QString(), std::nan(""), m_gates.centre,
                 QStringLiteral("the roller centre is not known: X, Y or Z has not been written yet"));
            return;
        }
        const Target* target = Match(*plan, motion, pose.centre);
        if (!target)
            return;
        Count(motion.course, &ZELKinVerifyTally::matchedLines);
        const ZELKinVerifyPlace place = PlaceOf(motion, target->number);

        const double centreOff = pose.centre.GetDistanceTo(target->centre);
        Keep(&ZELKinVerifyTally::centre, centreOff, place);
        if (!(centreOff <= m_gates.centre))
            Find(QStringLiteral("centre"), place, QString(), centreOff, m_gates.centre,
                 QStringLiteral("the roller centre is %1 mm from the toolpath point's (gate %2 mm)")
                     .arg(Number(centreOff, 4), Number(m_gates.centre, 4)));

        const ZELMathVector normal = target->frame.GetWDirection();
        const ZELMathVector travel =
            (target->frame.GetUDirection() - normal * normal.Dot(target->frame.GetUDirection())).GetNormalized();
        const double normalGate = AngleGateOf(pose.normal, motion, pose);
        CheckAngle(QStringLiteral("normal"), QStringLiteral("the normal"), &ZELKinVerifyTally::normal, place,
                   pose.normal.GetAngleTo(normal), normalGate);
        CheckAngle(QStringLiteral("travel"), QStringLiteral("the direction of travel"), &ZELKinVerifyTally::travel,
                   place, pose.travel.GetAngleTo(travel), AngleGateOf(pose.travel, motion, pose));
        CheckContact(place, pose, *target, normalGate);
        CheckSingularity(place, pose);
    }

    void CheckAngle(const QString& check, const QString& what, ZELKinVerifyExtreme ZELKinVerifyTally::*extreme,
                    const ZELKinVerifyPlace& place, double angle, double gate)
    {
        Keep(extreme, angle, place);
        if (!(angle <= gate + kAngleRounding))
            Find(check, place, QString(), angle * kDegreesPerRadian, gate * kDegreesPerRadian,
                 QStringLiteral("%1 is %2 deg off the toolpath point's (gate %3 deg on this line)")
                     .arg(what, Number(angle * kDegreesPerRadian, 5), Number(gate * kDegreesPerRadian, 5)));
    }

    // Where the tows land: the roller centre less the roller radius along
    // the commanded normal, which the angle error swings about the centre.
    void CheckContact(const ZELKinVerifyPlace& place, const Head::Pose& pose, const Target& target, double normalGate)
    {
        const ZELMathPoint contact = pose.centre - m_rollerRadius * pose.normal;
        const double off = contact.GetDistanceTo(target.frame.GetOrigin());
        const double gate = m_gates.centre + m_rollerRadius * normalGate;
        Keep(&ZELKinVerifyTally::contact, off, place);
        if (!(off <= gate + m_rollerRadius * kAngleRounding))
            Find(QStringLiteral("contact"), place, QString(), off, gate,
                 QStringLiteral("the contact point is %1 mm from the toolpath point (gate %2 mm on this line)")
                     .arg(Number(off, 4), Number(gate, 4)));
    }

    // Near the singularity the first roll must turn fast for a small change
    // of the normal: the speed check fails what the machine cannot follow,
    // and the margin itself only warns.
    void CheckSingularity(const ZELKinVerifyPlace& place, const Head::Pose& pose)
    {
        const double margin = m_head.SingularityMarginOf(pose);
        if (!std::isfinite(margin))
            return;
        Tally(place.course, [&](ZELKinVerifyTally& tally) { KeepSmallest(tally.singularityMargin, margin, place); });
        if (margin < m_gates.singularity)
            Find(QStringLiteral("singularity"), place, QString(), margin * kDegreesPerRadian,
                 m_gates.singularity * kDegreesPerRadian,
                 QStringLiteral("the normal is %1 deg from the first roll axis, the wrist's singularity (warning "
                                "below %2 deg)")
                     .arg(Number(margin * kDegreesPerRadian, 3), Number(m_gates.singularity * kDegreesPerRadian, 3)),
                 true);
    }

    // The wrist may turn freely along a link; where the roller centre goes
    // may not.
    void CheckLinkLine(const ZELKinNCMotion& motion, const Head::Pose& pose)
    {
        Count(motion.course, &ZELKinVerifyTally::linkLines);
        if (!m_plan)
            return;
        const bool known = motion.link >= 0 && motion.link < m_plan->links.size();
        static const QList<ZELMathPoint> kNoLink;
        double nearest = std::numeric_limits<double>::infinity();
        for (const ZELMathPoint& centre : known ? m_plan->links.at(motion.link) : kNoLink)
            nearest = std::min(nearest, pose.centre.GetDistanceTo(centre));
        if (std::isfinite(nearest))
            Keep(&ZELKinVerifyTally::linkCentre, nearest, PlaceOf(motion));
        if (!known)
            Find(QStringLiteral("link"), PlaceOf(motion), QString(), std::nan(""), m_gates.centre,
                 QStringLiteral("the line stands on no link of the toolpath's procedure"));
        else if (!(nearest <= m_gates.centre))
            Find(QStringLiteral("link"), PlaceOf(motion), QString(), nearest, m_gates.centre,
                 QStringLiteral("the roller centre is %1 mm from the nearest roller centre of link %2's points "
                                "(gate %3 mm)")
                     .arg(Number(nearest, 4), QString::number(motion.link), Number(m_gates.centre, 4)));
    }

    // Each course's path runs from where the block before left the head
    // through every line of its own block.
    void AddToPath(const ZELKinNCMotion& motion, const ZELMathPoint& centre)
    {
        if (!m_paths.contains(motion.course)) {
            m_paths.insert(motion.course, NCPath());
            if (m_lastCentre)
                m_paths[motion.course].Add(*m_lastCentre, m_lastLine);
        }
        m_paths[motion.course].Add(centre, motion.line);
        if (IsFinite(centre)) {
            m_lastCentre = centre;
            m_lastLine = motion.line;
        }
    }

    unsigned RecordLineOf(int course) const { return m_ply.courseRecords.value(course, 0u); }

    // A course that no line runs along is not laid at all; of one that is,
    // every point through the roll-out must lie on the roller centre's path.
    void CheckEveryCourseIsRun()
    {
        for (int course = 1; course <= m_plan->courses.size(); ++course) {
            const CoursePlan& plan = m_plan->courses.at(course - 1);
            Tally(course, [&plan](ZELKinVerifyTally& tally) { tally.points += plan.walked; });
            if (m_courses.value(course).matchedLines > 0) {
                CheckPath(course, plan);
                continue;
            }
            Find(QStringLiteral("missing"), ZELKinVerifyPlace{course, 0, m_ply.path, RecordLineOf(course)}, QString(),
                 0.0, 0.0, QStringLiteral("no line of the NC runs along course %1 of the procedure").arg(course));
        }
    }

    static QString NameOf(const CoursePlan& plan, int number)
    {
        if (number == plan.rollIn)
            return QStringLiteral(" (the roll-in point)");
        if (number == plan.rollOut)
            return QStringLiteral(" (the roll-out point)");
        return QString();
    }

    void CheckPath(int course, const CoursePlan& plan)
    {
        NCPath& path = m_paths[course];
        for (int i = 0; i < plan.walked && !path.IsEmpty(); ++i) {
            const Target& target = plan.targets.at(i);
            const Nearest nearest = path.NearestTo(target.centre, m_gates.centre);
            const ZELKinVerifyPlace place{course, target.number, m_ply.path, path.LineOf(nearest.end)};
            Keep(&ZELKinVerifyTally::pathGap, nearest.distance, place);
            if (!(nearest.distance <= m_gates.centre))
                Find(QStringLiteral("path"), place, QString(), nearest.distance, m_gates.centre,
                     QStringLiteral("no line's roller centre passes within %1 mm of point %2%3 of course %4: the "
                                    "nearest passes %5 mm from it")
                         .arg(Number(m_gates.centre, 4), QString::number(target.number), NameOf(plan, target.number),
                              QString::number(course), Number(nearest.distance, 4)));
        }
    }

    // Each tow's adds and cuts in the NC, in order, against the toolpath's,
    // for every course of the procedure.
    void CheckTowEvents()
    {
        QMap<int, QList<const ZELKinNCTowEvent*>> byCourse;
        for (int course = 1; course <= m_plan->courses.size(); ++course)
            byCourse.insert(course, {});
        for (const ZELKinNCTowEvent& event : m_ply.towEvents) {
            if (CourseOf(event.course))
                byCourse[event.course].append(&event);
        }
        for (auto course = byCourse.cbegin(); course != byCourse.cend(); ++course) {
            for (const QString& code : {QStringLiteral("A/B"), QStringLiteral("C/B")})
                CompareTowEvents(*CourseOf(course.key()), course.key(), course.value(), code);
        }
    }

    void CompareTowEvents(const CoursePlan& plan, int course, const QList<const ZELKinNCTowEvent*>& events,
                          const QString& code)
    {
        QMap<int, QList<double>> expected;
        for (const ExpectedTowEvent& event : plan.towEvents) {
            if (event.code == code)
                expected[event.tow].append(event.length);
        }
        QMap<int, QList<const ZELKinNCTowEvent*>> posted;
        for (const ZELKinNCTowEvent* event : events) {
            for (int bit = 0; bit < 64 && event->code == code; ++bit) {
                if (event->tows & (quint64(1) << bit))
                    posted[bit + 1].append(event);
            }
        }
        const QString verb = code == QLatin1String("A/B") ? QStringLiteral("adds") : QStringLiteral("cuts");
        std::set<int> tows;
        for (const QMap<int, QList<double>>::key_type tow : expected.keys())
            tows.insert(tow);
        for (const QMap<int, QList<double>>::key_type tow : posted.keys())
            tows.insert(tow);
        for (const int tow : tows) {
            const QList<double>& wanted = expected[tow];
            const QList<const ZELKinNCTowEvent*>& written = posted[tow];
            const ZELKinVerifyPlace place{course, 0, m_ply.path,
                                          written.isEmpty() ? RecordLineOf(course) : written.first()->line};
            if (wanted.size() != written.size()) {
                Find(QStringLiteral("tow"), place, QStringLiteral("tow %1").arg(tow), written.size(), wanted.size(),
                     QStringLiteral("the toolpath %1 tow %2 %3 times in this course, the NC %4 times")
                         .arg(verb)
                         .arg(tow)
                         .arg(wanted.size())
                         .arg(written.size()));
                continue;
            }
            for (int i = 0; i < wanted.size(); ++i)
                CompareTowEvent(course, tow, verb, wanted.at(i), *written.at(i));
        }
    }

    void CompareTowEvent(int course, int tow, const QString& verb, double wanted, const ZELKinNCTowEvent& written)
    {
        const ZELKinVerifyPlace place{course, 0, m_ply.path, written.line};
        const double off = std::abs(written.u - wanted);
        Keep(&ZELKinVerifyTally::towEvent, off, place, QStringLiteral("tow %1").arg(tow));
        if (!(off <= m_gates.towEvent))
            Find(QStringLiteral("tow"), place, QStringLiteral("tow %1").arg(tow), written.u, wanted,
                 QStringLiteral("the NC %1 tow %2 at U %3 mm, the toolpath at %4 mm (gate %5 mm)")
                     .arg(verb)
                     .arg(tow)
                     .arg(Number(written.u, 3), Number(wanted, 3), Number(m_gates.towEvent, 3)));
    }

    const Axes& m_axes;
    const Head& m_head;
    const ZELKinVerifyGates& m_gates;
    const double m_rollerRadius;
    const ZELKinNCPlyFile& m_ply;
    QList<ZELKinVerifyFinding>& m_findings;
    const ProcedurePlan* m_plan = nullptr;
    ZELKinVerifiedPly m_result;
    QMap<int, ZELKinVerifiedCourse> m_courses;
    QMap<int, NCPath> m_paths;
    std::optional<ZELMathPoint> m_lastCentre;
    unsigned m_lastLine = 0;
    int m_matchedCourse = 0;
    int m_matchedIndex = 0;
};

ZELKinVerifyFinding ProgramFinding(const QString& check, const QString& procedure, const ZELKinVerifyPlace& place,
                                   const QString& subject, const QString& message)
{
    return ZELKinVerifyFinding{check, QString(), procedure, place, subject, 0.0, 0.0, message, false};
}

} // namespace

qsizetype ZELKinVerification::GetNumFailures() const
{
    return std::count_if(findings.cbegin(), findings.cend(),
                         [](const ZELKinVerifyFinding& finding) { return !finding.warning; });
}

ZELKinVerifier::ZELKinVerifier(const ZELKinAFPMachine& machine, const ZELKinVerifyGates& gates)
    : m_head(std::make_unique<ZELKinVerifierHead>(machine))
    , m_machine(machine)
    , m_gates(gates)
{
}

ZELKinVerifier::~ZELKinVerifier() = default;

ZELKinVerification ZELKinVerifier::Verify(const ZELTPProgram& toolpath, const ZELKinNCProgram& nc) const
{
    ZELKinVerification verification;
    verification.gates = m_gates;
    for (const ZELKinNCIrregularity& irregularity : nc.irregularities)
        verification.findings.append(ProgramFinding(irregularity.check, QString(),
                                                    ZELKinVerifyPlace{0, 0, irregularity.file, irregularity.line},
                                                    irregularity.subject, irregularity.message));
    const Axes axes(m_machine, m_head->GetSlideVariables());
    QHash<QString, QString> laidBy;
    for (const ZELKinNCPlyFile& ply : nc.plies) {
        const ZELTPRollLayupProcedure* procedure = ProcedureNamed(toolpath, ply.procedure);
        PlyCheck check(axes, *m_head, m_gates, ply, verification.findings);
        const std::optional<ProcedurePlan> plan =
            procedure && !laidBy.contains(ply.procedure)
                ? std::optional<ProcedurePlan>(PlanProcedure(*procedure, m_head->GetRollerRadius()))
                : std::nullopt;
        if (!procedure)
            verification.findings.append(ProgramFinding(
                QStringLiteral("program"), ply.procedure, ZELKinVerifyPlace{0, 0, ply.path, 0}, QString(),
                QStringLiteral("ply %1 lays the procedure '%2', which the toolpath does not have")
                    .arg(ply.plyNumber, ply.procedure)));
        else if (laidBy.contains(ply.procedure))
            verification.findings.append(ProgramFinding(
                QStringLiteral("program"), ply.procedure, ZELKinVerifyPlace{0, 0, ply.path, 0}, QString(),
                QStringLiteral("ply %1 lays the procedure '%2', which ply %3 lays already")
                    .arg(ply.plyNumber, ply.procedure, laidBy.value(ply.procedure))));
        laidBy.insert(ply.procedure, laidBy.value(ply.procedure, ply.plyNumber));
        verification.plies.append(check.Run(plan ? &*plan : nullptr));
    }
    for (const ZELTPRollLayupProcedure* procedure : LayupProceduresOf(toolpath)) {
        if (!laidBy.contains(procedure->GetName()))
            verification.findings.append(ProgramFinding(
                QStringLiteral("missing"), procedure->GetName(), ZELKinVerifyPlace(), QString(),
                QStringLiteral("the NC has no ply file for the procedure '%1'").arg(procedure->GetName())));
    }
    return verification;
}
