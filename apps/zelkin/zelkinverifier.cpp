#include "zelkinverifier.h"

#include <zelcomptowmask.h>
#include <zelkinafpmachine.h>
#include <zelkincourse.h>
#include <zelkincourselink.h>
#include <zelkinprogram.h>
#include <zelkinrbrsolver.h>
#include <zelkinrolllayupposition.h>
#include <zelkinrolllayupprocedure.h>
#include <zelkinsolution.h>
#include <zelkinvariable.h>
#include <zelmathaxis.h>
#include <zelsysexception.h>
#include <zeltppoint.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>
#include <zeltponparttrajectory.h>

#include <QHash>

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

namespace {

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

bool IsFiniteNumber(double value)
{
    return std::isfinite(value);
}

QString Number(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

// A position along a course that a line may stand for.
struct Target
{
    //! From 1, in the order the machine runs the course's positions.
    int number = 0;
    //! Material from the course start (mm), as the writer counts it.
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

// The course's positions with their material lengths, and where the
// toolpath adds and cuts tows along them.
struct CoursePlan
{
    QList<Target> targets;
    QList<ExpectedTowEvent> towEvents;
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
QList<ExpectedTowEvent> ExpectedTowEvents(const ZELTPTowCourse* course, const QHash<const ZELTPPoint*, double>& lengths)
{
    QList<ExpectedTowEvent> events;
    if (!course || !course->GetRollInTrajectory())
        return events;
    const ZELTPTrajectory* rollOut = course->GetRollOutTrajectory();
    std::optional<ZELCompTowMask> laid;
    for (const ZELTPTrajectory* trajectory = course->GetNextTrajectory(course->GetRollInTrajectory());
         trajectory && trajectory != rollOut; trajectory = course->GetNextTrajectory(trajectory)) {
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

CoursePlan PlanCourse(const ZELKinCourse& course, double rollerRadius)
{
    CoursePlan plan;
    QHash<const ZELTPPoint*, double> lengths;
    double length = 0.0;
    std::optional<ZELMathPoint> lastTip;
    int number = 0;
    for (int i = 0; i < course.GetNumCommands(); ++i) {
        const auto* position = qobject_cast<const ZELKinRollLayupPosition*>(course.GetCommand(i));
        if (!position)
            continue;
        ++number;
        const ZELTPPoint* point = position->GetToolPathPoint();
        if (!point)
            continue;
        const ZELMathPoint tip = point->GetTipCoordinates();
        if (lastTip)
            length += tip.GetDistanceTo(*lastTip);
        lastTip = tip;
        lengths.insert(point, length);
        const ZELMathAxis frame = point->GetToolFrame();
        plan.targets.append(Target{number, length, frame, frame.GetOrigin() + rollerRadius * frame.GetWDirection()});
    }
    plan.towEvents = ExpectedTowEvents(dynamic_cast<const ZELTPTowCourse*>(course.GetToolPathCourse()), lengths);
    return plan;
}

const ZELKinRollLayupProcedure* ProcedureNamed(const ZELKinProgram& program, const QString& name)
{
    for (const ZELKinProcedure* procedure : program.GetProcedures()) {
        const auto* layup = qobject_cast<const ZELKinRollLayupProcedure*>(procedure);
        if (layup && layup->objectName() == name)
            return layup;
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

// What the machine's variables are, read once.
struct Axes
{
    explicit Axes(const ZELKinAFPMachine& machine)
        : variables(machine.GetVariables())
    {
        const ZELKinVariable* material = machine.GetMaterialVariable();
        for (int i = 0; i < variables.size(); ++i) {
            const ZELKinVariable* variable = variables.at(i);
            if (!variable)
                continue;
            if (variable->GetType() == ZELKinVariable::Rotary)
                rotary.append(i);
            else if (variable != material && QStringLiteral("XYZ").contains(variable->GetLabel())
                     && variable->GetLabel().size() == 1)
                carrier.append(i);
            if (variable == material)
                materialIndex = i;
        }
    }

    bool IsRotary(int index) const { return rotary.contains(index); }
    QString LabelOf(int index) const { return variables.at(index) ? variables.at(index)->GetLabel() : QString(); }

    QList<ZELKinVariable*> variables;
    //! -1 for a machine without a material axis.
    int materialIndex = -1;
    QList<int> rotary;
    QList<int> carrier;
};

// One ply file checked line by line.
class PlyCheck
{
public:
    PlyCheck(const Axes& axes, const ZELKinRBRSolver& solver, const ZELKinVerifyGates& gates, double rollerRadius,
             const ZELKinNCPlyFile& ply, QList<ZELKinVerifyFinding>& findings)
        : m_axes(axes)
        , m_solver(solver)
        , m_gates(gates)
        , m_rollerRadius(rollerRadius)
        , m_ply(ply)
        , m_findings(findings)
    {
        m_result.plyNumber = ply.plyNumber;
        m_result.procedure = ply.procedure;
        m_result.file = ply.path;
        for (const ZELKinNCTowEvent& event : ply.towEvents)
            Count(event.course, &ZELKinVerifyTally::towEvents);
    }

    ZELKinVerifiedPly Run(const ZELKinRollLayupProcedure& procedure)
    {
        m_result.courses = procedure.GetNumCourses();
        const ZELKinNCMotion* previous = nullptr;
        std::optional<ZELKinVerifiedLine> previousLine;
        for (const ZELKinNCMotion& motion : m_ply.motions) {
            Count(motion.course, &ZELKinVerifyTally::motionLines);
            const ZELKinVerifiedLine line = Replay(motion, previousLine);
            CheckLimits(motion, line);
            if (previous && previousLine) {
                CheckRotarySteps(*previous, motion);
                CheckSpeeds(motion, StartOf(motion, *previousLine), line);
            }
            if (motion.alongCourse)
                CheckAlongCourse(procedure, motion, line);
            else
                CheckLinkLine(procedure, motion, line);
            m_result.lines.append(line);
            previous = &motion;
            previousLine = line;
        }
        CheckTowEvents(procedure);
        CheckEveryCourseIsRun(procedure);
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
              const QString& message)
    {
        m_findings.append(
            ZELKinVerifyFinding{check, m_ply.plyNumber, m_ply.procedure, place, subject, value, limit, message});
        Count(place.course, &ZELKinVerifyTally::findings);
    }

    // The tallies a course's lines count in: the ply's, and the course's
    // own for lines after a course record.
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

    // The solution the line leaves the machine at, when it sets every axis
    // the wrist's forward kinematics needs.
    std::optional<ZELKinSolution> SolutionOf(const ZELKinNCMotion& motion) const
    {
        ZELKinSolution solution;
        for (int i : m_axes.carrier + m_axes.rotary) {
            if (!IsFiniteNumber(motion.values.at(i)))
                return std::nullopt;
            solution.SetVariableValue(m_axes.variables.at(i), motion.values.at(i));
        }
        solution.SetTraori(true);
        return solution;
    }

    ZELKinVerifiedLine Replay(const ZELKinNCMotion& motion, const std::optional<ZELKinVerifiedLine>& previous) const
    {
        ZELKinVerifiedLine line{motion.line, motion.course, motion.alongCourse, 0.0, ZELMathPoint(), motion.values};
        const std::optional<ZELKinSolution> solution = SolutionOf(motion);
        if (solution) {
            const ZELKinSolution slides = m_solver.FromTraori(*solution);
            for (int i : m_axes.carrier)
                line.axes[i] = slides.GetVariableValue(m_axes.variables.at(i));
        }
        line.centre = CentreOf(motion);
        line.pathLength = previous ? previous->pathLength + Step(previous->centre, line.centre) : 0.0;
        return line;
    }

    // Where the axes stand when the line begins: the slides where the line
    // before left them, every other axis with the presets since applied.
    ZELKinVerifiedLine StartOf(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& previous) const
    {
        ZELKinVerifiedLine start = previous;
        for (int i = 0; i < start.axes.size(); ++i) {
            if (!m_axes.carrier.contains(i))
                start.axes[i] = motion.starts.at(i);
        }
        return start;
    }

    ZELMathPoint CentreOf(const ZELKinNCMotion& motion) const
    {
        double xyz[3] = {std::nan(""), std::nan(""), std::nan("")};
        for (int i : m_axes.carrier) {
            const int slot = QStringLiteral("XYZ").indexOf(m_axes.LabelOf(i));
            xyz[slot] = motion.values.at(i);
        }
        return ZELMathPoint(xyz[0], xyz[1], xyz[2]);
    }

    static double Step(const ZELMathPoint& from, const ZELMathPoint& to)
    {
        const double step = to.GetDistanceTo(from);
        return std::isfinite(step) ? step : 0.0;
    }

    void CheckLimits(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& line)
    {
        for (int i = 0; i < line.axes.size(); ++i) {
            const ZELKinVariable* variable = m_axes.variables.at(i);
            const double value = line.axes.at(i);
            if (!variable || !IsFiniteNumber(value))
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
            if (!IsFiniteNumber(step))
                continue;
            const QString label = m_axes.LabelOf(i);
            Keep(&ZELKinVerifyTally::rotaryStep, step, PlaceOf(motion), label);
            const bool insideOneCourse =
                motion.alongCourse && previous.alongCourse && motion.course == previous.course;
            if (insideOneCourse && step > m_gates.flip)
                Find(QStringLiteral("flip"), PlaceOf(motion), label, step * kDegreesPerRadian,
                     m_gates.flip * kDegreesPerRadian,
                     QStringLiteral("%1 turns %2 deg from the line before, inside the course: a wrist flip (gate %3 deg)")
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
        for (int i = 0; i < line.axes.size(); ++i) {
            const ZELKinVariable* variable = m_axes.variables.at(i);
            const double speed = std::abs(line.axes.at(i) - before.axes.at(i)) / seconds;
            if (!variable || !IsFiniteNumber(speed) || !(variable->GetMaxVelocity() > 0.0))
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

    const CoursePlan* PlanOf(const ZELKinRollLayupProcedure& procedure, int course)
    {
        if (course < 1 || course > procedure.GetNumCourses() || !procedure.GetCourse(course - 1))
            throw ZELSysException(QStringLiteral("%1 line %2: the procedure '%3' has no course %4")
                                      .arg(m_ply.path, QString::number(m_lineForErrors), m_ply.procedure,
                                           QString::number(course)));
        auto plan = m_plans.find(course);
        if (plan == m_plans.end())
            plan = m_plans.insert(course, PlanCourse(*procedure.GetCourse(course - 1), m_rollerRadius));
        return &plan.value();
    }

    // The course's position a line stands for: the one at the line's length
    // of material, and among those at the same length the one whose roller
    // centre is nearest; never one before the last line's.
    const Target* Match(const CoursePlan& plan, const ZELKinNCMotion& motion, const ZELKinVerifiedLine& line)
    {
        const QList<Target>& targets = plan.targets;
        const int from = motion.course == m_matchedCourse ? m_matchedIndex : 0;
        const double length = m_axes.materialIndex >= 0 ? motion.values.at(m_axes.materialIndex) : std::nan("");
        int best = -1;
        double bestScore = std::numeric_limits<double>::infinity();
        for (int i = from; i < targets.size(); ++i) {
            const double lengthOff = IsFiniteNumber(length) ? std::abs(targets.at(i).length - length) : 0.0;
            if (IsFiniteNumber(length) && targets.at(i).length > length + kLengthMatch && best >= 0)
                break;
            const double centreOff = line.centre.GetDistanceTo(targets.at(i).centre);
            const double score = (lengthOff > kLengthMatch ? lengthOff * 1e6 : 0.0) + centreOff;
            if (score < bestScore) {
                bestScore = score;
                best = i;
            }
        }
        if (best < 0)
            return nullptr;
        m_matchedCourse = motion.course;
        m_matchedIndex = best;
        return &targets.at(best);
    }

    void CheckAlongCourse(const ZELKinRollLayupProcedure& procedure, const ZELKinNCMotion& motion,
                          const ZELKinVerifiedLine& line)
    {
        m_lineForErrors = motion.line;
        const CoursePlan* plan = PlanOf(procedure, motion.course);
        const Target* target = Match(*plan, motion, line);
        const std::optional<ZELKinSolution> solution = SolutionOf(motion);
        if (!target || !solution)
            return;
        Count(motion.course, &ZELKinVerifyTally::matchedLines);
        const ZELKinVerifyPlace place = PlaceOf(motion, target->number);
        const ZELMathAxis commanded = m_solver.GetToolFrame(*solution);

        const double centreOff = line.centre.GetDistanceTo(target->centre);
        Keep(&ZELKinVerifyTally::centre, centreOff, place);
        if (!(centreOff <= m_gates.centre))
            Find(QStringLiteral("centre"), place, QString(), centreOff, m_gates.centre,
                 QStringLiteral("the roller centre is %1 mm from the toolpath point's (gate %2 mm)")
                     .arg(Number(centreOff, 4), Number(m_gates.centre, 4)));
        CheckAngle(QStringLiteral("normal"), QStringLiteral("the normal"), &ZELKinVerifyTally::normal, place,
                   commanded.GetWDirection().GetAngleTo(target->frame.GetWDirection()));
        CheckAngle(QStringLiteral("travel"), QStringLiteral("the direction of travel"), &ZELKinVerifyTally::travel, place,
                   commanded.GetUDirection().GetAngleTo(target->frame.GetUDirection()));

        const double margin = m_solver.GetSingularityMargin(commanded.GetWDirection());
        if (!IsFiniteNumber(margin))
            return;
        Tally(place.course, [&](ZELKinVerifyTally& tally) { KeepSmallest(tally.singularityMargin, margin, place); });
        if (margin < m_gates.singularity)
            Find(QStringLiteral("singularity"), place, QString(), margin * kDegreesPerRadian,
                 m_gates.singularity * kDegreesPerRadian,
                 QStringLiteral("the normal is %1 deg from the first roll axis, the wrist's singularity (gate %2 deg)")
                     .arg(Number(margin * kDegreesPerRadian, 3), Number(m_gates.singularity * kDegreesPerRadian, 3)));
    }

    // Link positions are not solved against their frames: how far the line
    // lies from its link's toolpath points is kept, and not gated.
    void CheckLinkLine(const ZELKinRollLayupProcedure& procedure, const ZELKinNCMotion& motion,
                       const ZELKinVerifiedLine& line)
    {
        Count(motion.course, &ZELKinVerifyTally::linkLines);
        if (motion.link < 0 || motion.link >= procedure.GetNumCourseLinks() || !procedure.GetCourseLink(motion.link))
            return;
        auto centres = m_linkCentres.find(motion.link);
        if (centres == m_linkCentres.end())
            centres = m_linkCentres.insert(motion.link, RollerCentresOf(*procedure.GetCourseLink(motion.link)));
        double nearest = std::numeric_limits<double>::infinity();
        for (const ZELMathPoint& centre : std::as_const(centres.value()))
            nearest = std::min(nearest, line.centre.GetDistanceTo(centre));
        if (std::isfinite(nearest))
            Keep(&ZELKinVerifyTally::linkCentre, nearest, PlaceOf(motion));
    }

    QList<ZELMathPoint> RollerCentresOf(const ZELKinScript& link) const
    {
        QList<ZELMathPoint> centres;
        for (int i = 0; i < link.GetNumCommands(); ++i) {
            const auto* position = qobject_cast<const ZELKinPosition*>(link.GetCommand(i));
            const ZELTPPoint* point = position ? position->GetToolPathPoint() : nullptr;
            if (!point)
                continue;
            const ZELMathAxis frame = point->GetToolFrame();
            centres.append(frame.GetOrigin() + m_rollerRadius * frame.GetWDirection());
        }
        return centres;
    }

    void CheckAngle(const QString& check, const QString& what, ZELKinVerifyExtreme ZELKinVerifyTally::*extreme,
                    const ZELKinVerifyPlace& place, double angle)
    {
        Keep(extreme, angle, place);
        if (!(angle <= m_gates.angle))
            Find(check, place, QString(), angle * kDegreesPerRadian, m_gates.angle * kDegreesPerRadian,
                 QStringLiteral("%1 is %2 deg off the toolpath point's (gate %3 deg)")
                     .arg(what, Number(angle * kDegreesPerRadian, 4), Number(m_gates.angle * kDegreesPerRadian, 4)));
    }

    // Each tow's adds and cuts in the NC, in order, against the toolpath's.
    // Every course of the procedure, and any other course the NC names.
    void CheckTowEvents(const ZELKinRollLayupProcedure& procedure)
    {
        QMap<int, QList<const ZELKinNCTowEvent*>> byCourse;
        for (int course = 1; course <= procedure.GetNumCourses(); ++course)
            byCourse.insert(course, {});
        for (const ZELKinNCTowEvent& event : m_ply.towEvents)
            byCourse[event.course].append(&event);
        for (auto course = byCourse.cbegin(); course != byCourse.cend(); ++course) {
            m_lineForErrors = course.value().isEmpty() ? RecordLineOf(course.key()) : course.value().first()->line;
            const CoursePlan* plan = PlanOf(procedure, course.key());
            for (const QString& code : {QStringLiteral("A/B"), QStringLiteral("C/B")})
                CompareTowEvents(*plan, course.key(), course.value(), code);
        }
    }

    unsigned RecordLineOf(int course) const { return m_ply.courseRecords.value(course, 0u); }

    // A course that no line runs along is not laid at all.
    void CheckEveryCourseIsRun(const ZELKinRollLayupProcedure& procedure)
    {
        for (int course = 1; course <= procedure.GetNumCourses(); ++course) {
            if (m_courses.value(course).matchedLines > 0)
                continue;
            Find(QStringLiteral("missing"), ZELKinVerifyPlace{course, 0, m_ply.path, RecordLineOf(course)}, QString(),
                 0.0, 0.0, QStringLiteral("no line of the NC runs along course %1 of the procedure").arg(course));
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
                if (!m_countsReported.contains({course, tow, code}))
                    Find(QStringLiteral("tow"), place, QStringLiteral("tow %1").arg(tow), written.size(),
                         wanted.size(),
                         QStringLiteral("the toolpath %1 tow %2 %3 times in this course, the NC %4 times")
                             .arg(verb)
                             .arg(tow)
                             .arg(wanted.size())
                             .arg(written.size()));
                m_countsReported.append({course, tow, code});
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
        if (off > m_gates.towEvent)
            Find(QStringLiteral("tow"), place, QStringLiteral("tow %1").arg(tow), written.u, wanted,
                 QStringLiteral("the NC %1 tow %2 at U %3 mm, the toolpath at %4 mm (gate %5 mm)")
                     .arg(verb)
                     .arg(tow)
                     .arg(Number(written.u, 3), Number(wanted, 3), Number(m_gates.towEvent, 3)));
    }

    struct CountKey
    {
        int course;
        int tow;
        QString code;
        bool operator==(const CountKey& other) const
        {
            return course == other.course && tow == other.tow && code == other.code;
        }
    };

    const Axes& m_axes;
    const ZELKinRBRSolver& m_solver;
    const ZELKinVerifyGates& m_gates;
    const double m_rollerRadius;
    const ZELKinNCPlyFile& m_ply;
    QList<ZELKinVerifyFinding>& m_findings;
    ZELKinVerifiedPly m_result;
    QMap<int, ZELKinVerifiedCourse> m_courses;
    QMap<int, CoursePlan> m_plans;
    QMap<int, QList<ZELMathPoint>> m_linkCentres;
    QList<CountKey> m_countsReported;
    int m_matchedCourse = 0;
    int m_matchedIndex = 0;
    unsigned m_lineForErrors = 0;
};

} // namespace

ZELKinVerifier::ZELKinVerifier(const ZELKinAFPMachine& machine, const ZELKinRBRSolver& solver,
                               const ZELKinProgram& program, const ZELKinVerifyGates& gates)
    : m_machine(machine)
    , m_solver(solver)
    , m_program(program)
    , m_gates(gates)
{
}

// A layup procedure of the program without a ply file is not laid at all.
void ZELKinVerifier::FindPliesNotPosted(const QList<ZELKinNCPlyFile>& plies,
                                        QList<ZELKinVerifyFinding>& findings) const
{
    for (const ZELKinProcedure* procedure : m_program.GetProcedures()) {
        if (!qobject_cast<const ZELKinRollLayupProcedure*>(procedure))
            continue;
        const QString name = procedure->objectName();
        const bool posted = std::any_of(plies.cbegin(), plies.cend(),
                                        [&name](const ZELKinNCPlyFile& ply) { return ply.procedure == name; });
        if (!posted)
            findings.append(ZELKinVerifyFinding{QStringLiteral("missing"), QString(), name, ZELKinVerifyPlace(),
                                                QString(), 0.0, 0.0,
                                                QStringLiteral("the NC has no ply file for the procedure '%1'")
                                                    .arg(name)});
    }
}

ZELKinVerification ZELKinVerifier::Verify(const QList<ZELKinNCPlyFile>& plies) const
{
    ZELKinVerification verification;
    verification.gates = m_gates;
    const Axes axes(m_machine);
    for (const ZELKinNCPlyFile& ply : plies) {
        const ZELKinRollLayupProcedure* procedure = ProcedureNamed(m_program, ply.procedure);
        if (!procedure)
            throw ZELSysException(QStringLiteral("%1: ply %2 is the procedure '%3', which the toolpath does not have "
                                                 "or which could not be solved")
                                      .arg(ply.path, ply.plyNumber, ply.procedure));
        PlyCheck check(axes, m_solver, m_gates, m_machine.GetRollerRadius(), ply, verification.findings);
        verification.plies.append(check.Run(*procedure));
    }
    FindPliesNotPosted(plies, verification.findings);
    return verification;
}
