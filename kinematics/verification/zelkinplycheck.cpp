#include "zelkinplycheck_p.h"

#include <zelkinafpmachine.h>
#include <zelkinvariable.h>

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

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

QString Number(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
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

} // namespace

ZELKinVerifyAxes::ZELKinVerifyAxes(const ZELKinAFPMachine& machine, const QList<int>& slides)
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

QString ZELKinVerifyAxes::LabelOf(int index) const
{
    return variables.at(index) ? variables.at(index)->GetLabel() : QString();
}

ZELKinPlyCheck::ZELKinPlyCheck(const ZELKinVerifyAxes& axes, const Head& head, const ZELKinVerifyGates& gates,
                               const ZELKinNCPlyFile& ply, QList<ZELKinVerifyFinding>& findings)
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
    // A vertex a line: grown as it goes, the path would hold up to twice that.
    m_plyPath.Reserve(int(ply.motions.size()));
    for (const ZELKinNCTowEvent& event : ply.towEvents)
        Count(event.course, &ZELKinVerifyTally::towEvents);
}

ZELKinVerifiedPly ZELKinPlyCheck::Run(const ZELKinProcedurePlan* plan, bool keepLines)
{
    m_plan = plan;
    m_result.courses = plan ? int(plan->courses.size()) : 0;
    FindUnknownCourses();
    if (keepLines)
        m_result.lines.reserve(m_ply.motions.size());
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
        if (keepLines)
            m_result.lines.append(line);
        previous = &motion;
        previousLine = line;
    }
    if (m_plan) {
        CheckTowEvents();
        CheckEveryCourseIsRun();
        CheckEveryLinkPointIsPassed();
    }
    for (const ZELKinNCIrregularity& irregularity : m_ply.irregularities)
        Find(irregularity.check, ZELKinVerifyPlace{irregularity.course, 0, irregularity.file, irregularity.line},
             irregularity.subject, 0.0, 0.0, irregularity.message);
    for (const ZELKinVerifiedCourse& course : std::as_const(m_courses))
        m_result.courseTallies.append(course);
    return m_result;
}

ZELKinVerifyPlace ZELKinPlyCheck::PlaceOf(const ZELKinNCMotion& motion, int point) const
{
    return ZELKinVerifyPlace{motion.course, point, m_ply.path, motion.line};
}

void ZELKinPlyCheck::Find(const QString& check, const ZELKinVerifyPlace& place, const QString& subject, double value,
                          double limit, const QString& message, bool warning)
{
    m_findings.append(
        ZELKinVerifyFinding{check, m_ply.plyNumber, m_ply.procedure, place, subject, value, limit, message, warning});
    Tally(place.course, [warning](ZELKinVerifyTally& tally) { ++(warning ? tally.warnings : tally.findings); });
}

template <typename Change> void ZELKinPlyCheck::Tally(int course, const Change& change)
{
    change(static_cast<ZELKinVerifyTally&>(m_result));
    if (course <= 0)
        return;
    ZELKinVerifiedCourse& tally = m_courses[course];
    tally.course = course;
    change(static_cast<ZELKinVerifyTally&>(tally));
}

void ZELKinPlyCheck::Count(int course, int ZELKinVerifyTally::*count)
{
    Tally(course, [count](ZELKinVerifyTally& tally) { ++(tally.*count); });
}

void ZELKinPlyCheck::Keep(ZELKinVerifyExtreme ZELKinVerifyTally::*extreme, double value, const ZELKinVerifyPlace& place,
                          const QString& subject)
{
    Tally(place.course, [&](ZELKinVerifyTally& tally) { KeepLargest(tally.*extreme, value, place, subject); });
}

const ZELKinCoursePlan* ZELKinPlyCheck::CourseOf(int course) const
{
    return m_plan && course >= 1 && course <= m_plan->courses.size() ? &m_plan->courses.at(course - 1) : nullptr;
}

// A course record the procedure has no course for: its lines cannot be
// compared with anything.
void ZELKinPlyCheck::FindUnknownCourses()
{
    if (!m_plan)
        return;
    for (auto record = m_ply.courseRecords.cbegin(); record != m_ply.courseRecords.cend(); ++record) {
        if (!CourseOf(record.key()))
            Find(QStringLiteral("program"), ZELKinVerifyPlace{record.key(), 0, m_ply.path, record.value()}, QString(),
                 0.0, 0.0,
                 QStringLiteral("the procedure '%1' has no course %2: it has %3")
                     .arg(m_ply.procedure, QString::number(record.key()), QString::number(m_plan->courses.size())));
    }
}

ZELKinVerifiedLine ZELKinPlyCheck::Replay(const ZELKinNCMotion& motion, const Head::Pose& pose,
                                          const std::optional<ZELKinVerifiedLine>& previous) const
{
    ZELKinVerifiedLine line{motion.line, motion.course, motion.alongCourse, 0.0, pose.centre, pose.axes};
    line.pathLength = previous ? previous->pathLength + Step(previous->centre, line.centre) : 0.0;
    return line;
}

// Where the axes stand when the line begins: the slides where the line
// before left them, every other axis with the presets since applied.
ZELKinVerifiedLine ZELKinPlyCheck::StartOf(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& previous) const
{
    ZELKinVerifiedLine start = previous;
    for (int i = 0; i < start.axes.size(); ++i) {
        if (!m_axes.slides.contains(i))
            start.axes[i] = motion.starts.at(i);
    }
    return start;
}

double ZELKinPlyCheck::Step(const ZELMathPoint& from, const ZELMathPoint& to)
{
    const double step = to.GetDistanceTo(from);
    return std::isfinite(step) ? step : 0.0;
}

void ZELKinPlyCheck::CheckLimits(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& line)
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

void ZELKinPlyCheck::FindLimit(const ZELKinNCMotion& motion, int axis, double value, double limit, const QString& side)
{
    const bool rotary = m_axes.IsRotary(axis);
    const double scale = rotary ? qRadiansToDegrees(1.0) : 1.0;
    const QString unit = rotary ? QStringLiteral("deg") : QStringLiteral("mm");
    const QString label = m_axes.LabelOf(axis);
    Find(QStringLiteral("limit"), PlaceOf(motion), label, value * scale, limit * scale,
         QStringLiteral("%1 at %2 %4 is beyond its %5 of %3 %4")
             .arg(label, Number(value * scale, 4), Number(limit * scale, 4), unit, side));
}

void ZELKinPlyCheck::CheckRotarySteps(const ZELKinNCMotion& previous, const ZELKinNCMotion& motion)
{
    for (int i : m_axes.rotary) {
        const double step = std::abs(motion.values.at(i) - motion.starts.at(i));
        if (!std::isfinite(step))
            continue;
        const QString label = m_axes.LabelOf(i);
        Keep(&ZELKinVerifyTally::rotaryStep, step, PlaceOf(motion), label);
        const bool insideOneCourse = motion.alongCourse && previous.alongCourse && motion.course == previous.course;
        if (insideOneCourse && step > m_gates.flip)
            Find(QStringLiteral("flip"), PlaceOf(motion), label, qRadiansToDegrees(step),
                 qRadiansToDegrees(m_gates.flip),
                 QStringLiteral("%1 turns %2 deg from the line before, inside the course: a wrist flip (gate %3 deg)")
                     .arg(label, Number(qRadiansToDegrees(step), 3), Number(qRadiansToDegrees(m_gates.flip), 3)));
    }
}

// Under TRAORI the feed is the roller centre's speed along its path; each
// axis moves its share of the line in the time the centre takes.
void ZELKinPlyCheck::CheckSpeeds(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& before,
                                 const ZELKinVerifiedLine& line)
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
void ZELKinPlyCheck::FindSpeed(const ZELKinNCMotion& motion, int axis, double speed, double limit)
{
    const bool rotary = m_axes.IsRotary(axis);
    const double scale = rotary ? qRadiansToDegrees(60.0) : 0.06;
    const QString unit = rotary ? QStringLiteral("deg/min") : QStringLiteral("m/min");
    const QString label = m_axes.LabelOf(axis);
    Find(QStringLiteral("speed"), PlaceOf(motion), label, speed * scale, limit * scale,
         QStringLiteral("%1 would move at %2 %4 at the programmed feed, above its %3 %4")
             .arg(label, Number(speed * scale, 3), Number(limit * scale, 3), unit));
}

// The course's point a line stands for: the one at the line's length of
// material, and among those at the same length the one whose roller
// centre is nearest; never one before the last line's.
const ZELKinVerifyTarget* ZELKinPlyCheck::Match(const ZELKinCoursePlan& plan, const ZELKinNCMotion& motion,
                                                const ZELMathPoint& centre)
{
    const QList<ZELKinVerifyTarget>& targets = plan.targets;
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
double ZELKinPlyCheck::AngleGateOf(const ZELMathVector& direction, const ZELKinNCMotion& motion,
                                   const Head::Pose& pose) const
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

void ZELKinPlyCheck::CheckAlongCourse(const ZELKinNCMotion& motion, const Head::Pose& pose)
{
    const ZELKinCoursePlan* plan = CourseOf(motion.course);
    if (!plan)
        return;
    if (!ZELKinNCPath::IsFinite(pose.centre)) {
        Find(QStringLiteral("centre"), PlaceOf(motion), QString(), std::nan(""), m_gates.centre,
             QStringLiteral("the roller centre is not known: X, Y or Z has not been written yet"));
        return;
    }
    const ZELKinVerifyTarget* target = Match(*plan, motion, pose.centre);
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
    const ZELMathVector travel
        = (target->frame.GetUDirection() - normal * normal.Dot(target->frame.GetUDirection())).GetNormalized();
    const double normalGate = AngleGateOf(pose.normal, motion, pose);
    CheckAngle(QStringLiteral("normal"), QStringLiteral("the normal"), &ZELKinVerifyTally::normal, place,
               pose.normal.GetAngleTo(normal), normalGate);
    CheckAngle(QStringLiteral("travel"), QStringLiteral("the direction of travel"), &ZELKinVerifyTally::travel, place,
               pose.travel.GetAngleTo(travel), AngleGateOf(pose.travel, motion, pose));
    CheckContact(place, pose, *target, normalGate);
    CheckSingularity(place, pose);
}

void ZELKinPlyCheck::CheckAngle(const QString& check, const QString& what,
                                ZELKinVerifyExtreme ZELKinVerifyTally::*extreme, const ZELKinVerifyPlace& place,
                                double angle, double gate)
{
    Keep(extreme, angle, place);
    if (!(angle <= gate + kAngleRounding))
        Find(check, place, QString(), qRadiansToDegrees(angle), qRadiansToDegrees(gate),
             QStringLiteral("%1 is %2 deg off the toolpath point's (gate %3 deg on this line)")
                 .arg(what, Number(qRadiansToDegrees(angle), 5), Number(qRadiansToDegrees(gate), 5)));
}

// Where the tows land: the roller centre less the roller radius along
// the commanded normal, which the angle error swings about the centre.
void ZELKinPlyCheck::CheckContact(const ZELKinVerifyPlace& place, const Head::Pose& pose,
                                  const ZELKinVerifyTarget& target, double normalGate)
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
void ZELKinPlyCheck::CheckSingularity(const ZELKinVerifyPlace& place, const Head::Pose& pose)
{
    const double margin = m_head.SingularityMarginOf(pose);
    if (!std::isfinite(margin))
        return;
    Tally(place.course, [&](ZELKinVerifyTally& tally) { KeepSmallest(tally.singularityMargin, margin, place); });
    if (margin < m_gates.singularity)
        Find(QStringLiteral("singularity"), place, QString(), qRadiansToDegrees(margin),
             qRadiansToDegrees(m_gates.singularity),
             QStringLiteral("the normal is %1 deg from the first roll axis, the wrist's singularity (warning "
                            "below %2 deg)")
                 .arg(Number(qRadiansToDegrees(margin), 3), Number(qRadiansToDegrees(m_gates.singularity), 3)),
             true);
}

// The wrist may turn freely along a link; where the roller centre goes
// may not.
void ZELKinPlyCheck::CheckLinkLine(const ZELKinNCMotion& motion, const Head::Pose& pose)
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
void ZELKinPlyCheck::AddToPath(const ZELKinNCMotion& motion, const ZELMathPoint& centre)
{
    if (!m_paths.contains(motion.course)) {
        m_paths.insert(motion.course, ZELKinNCPath());
        if (m_lastCentre)
            m_paths[motion.course].Add(*m_lastCentre, m_lastLine);
    }
    m_paths[motion.course].Add(centre, motion.line);
    if (motion.link >= 0 && !m_linkStarts.contains(motion.link))
        m_linkStarts.insert(motion.link, m_plyPath.GetNumVertices());
    m_plyPath.Add(centre, motion.line);
    if (ZELKinNCPath::IsFinite(centre)) {
        m_lastCentre = centre;
        m_lastLine = motion.line;
    }
}

// A course that no line runs along is not laid at all; of one that is,
// every point through the roll-out must lie on the roller centre's path.
void ZELKinPlyCheck::CheckEveryCourseIsRun()
{
    for (int course = 1; course <= m_plan->courses.size(); ++course) {
        const ZELKinCoursePlan& plan = m_plan->courses.at(course - 1);
        Tally(course, [&plan](ZELKinVerifyTally& tally) { tally.points += plan.walked; });
        if (m_courses.value(course).matchedLines > 0) {
            CheckPath(course, plan);
            continue;
        }
        Find(QStringLiteral("missing"), ZELKinVerifyPlace{course, 0, m_ply.path, RecordLineOf(course)}, QString(), 0.0,
             0.0, QStringLiteral("no line of the NC runs along course %1 of the procedure").arg(course));
    }
}

QString ZELKinPlyCheck::NameOf(const ZELKinCoursePlan& plan, int number)
{
    if (number == plan.rollIn)
        return QStringLiteral(" (the roll-in point)");
    if (number == plan.rollOut)
        return QStringLiteral(" (the roll-out point)");
    return QString();
}

void ZELKinPlyCheck::CheckPath(int course, const ZELKinCoursePlan& plan)
{
    ZELKinNCPath& path = m_paths[course];
    for (int i = 0; i < plan.walked && !path.IsEmpty(); ++i) {
        const ZELKinVerifyTarget& target = plan.targets.at(i);
        const ZELKinNCPath::Nearest nearest = path.NearestTo(target.centre, m_gates.centre);
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

// A link's points are where the head must pass between the courses, off
// the part: one the NC's path misses is a move the toolpath did not ask for
// (a lift off the part left out, the head dragged straight across). Link
// l leaves course l. The approach, link 0, is not walked: the ply starts
// from the park position, with a rapid to above the first course's start
// and the move down to it, as every course run from park does.
void ZELKinPlyCheck::CheckEveryLinkPointIsPassed()
{
    if (m_plyPath.IsEmpty())
        return;
    for (int link = 1; link < m_plan->links.size(); ++link) {
        const QList<ZELMathPoint>& centres = m_plan->links.at(link);
        // The search starts where the link's own lines do (the course's
        // last line stands just before them): a ply of thousands of
        // courses is not searched whole for each point.
        if (m_linkStarts.contains(link))
            m_plyPath.SetHint(m_linkStarts.value(link));
        for (int i = 0; i < centres.size(); ++i) {
            const ZELKinNCPath::Nearest nearest = m_plyPath.NearestTo(centres.at(i), m_gates.centre);
            const ZELKinVerifyPlace place{link, i + 1, m_ply.path, m_plyPath.LineOf(nearest.end)};
            Keep(&ZELKinVerifyTally::pathGap, nearest.distance, place);
            if (!(nearest.distance <= m_gates.centre))
                Find(QStringLiteral("path"), place, QString(), nearest.distance, m_gates.centre,
                     QStringLiteral("no line's roller centre passes within %1 mm of point %2 of link %3: the "
                                    "nearest passes %4 mm from it")
                         .arg(Number(m_gates.centre, 4), QString::number(i + 1), QString::number(link),
                              Number(nearest.distance, 4)));
        }
    }
}

// Each tow's adds and cuts in the NC, in order, against the toolpath's,
// for every course of the procedure.
void ZELKinPlyCheck::CheckTowEvents()
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

void ZELKinPlyCheck::CompareTowEvents(const ZELKinCoursePlan& plan, int course,
                                      const QList<const ZELKinNCTowEvent*>& events, const QString& code)
{
    QMap<int, QList<double>> expected;
    for (const ZELKinVerifyTowEvent& event : plan.towEvents) {
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

void ZELKinPlyCheck::CompareTowEvent(int course, int tow, const QString& verb, double wanted,
                                     const ZELKinNCTowEvent& written)
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
