#include "zelkinrbrsolver.h"
#include "zelkinrbrsolver_p.h"

#include "zelkinafpmachine.h"
#include "zelkinrotaryjoint.h"
#include "zelkinvariable.h"

#include <zelmathplane.h>
#include <zelmathvector2d.h>
#include <zelsysexception.h>

#include <QStringList>
#include <QVarLengthArray>
#include <QtDebug>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <memory>
#include <tuple>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTurn = 2.0 * kPi;
// Real wrist axes travel a turn or two either way; listing at most this many
// turns either way of an angle covers them and keeps infinite or huge limits
// from listing candidates without end.
constexpr int kMaxStepsEachWay = 8;
// A bend this small is what rounding leaves of none (rad); far below what
// the NC can write (0.00005 deg), it is taken as exactly none.
constexpr double kNoBend = 1e-12;
// A joint frame turns about its third direction w, which is the frame's axis
// number 1 and the normal of its plane number 1.
constexpr int kRotationAxis = 1;

bool IsFinite(const ZELMathVector& vector)
{
    return std::isfinite(vector.GetX()) && std::isfinite(vector.GetY()) && std::isfinite(vector.GetZ());
}

bool IsFinite(const ZELMathAxis& frame)
{
    return IsFinite(frame.GetOrigin() - ZELMathPoint()) && IsFinite(frame.GetUDirection())
        && IsFinite(frame.GetVDirection()) && IsFinite(frame.GetWDirection());
}

using WristAxis = ZELKinRBRSolverPrivate::WristAxis;

// Candidate angles of one joint: the angle itself and at most
// kMaxStepsEachWay steps either way, listed without touching the heap.
using Angles = QVarLengthArray<double, 1 + 2 * kMaxStepsEachWay>;

// One wrist configuration found for a tool frame (rad).
struct WristAngles
{
    double firstRoll;
    double bend;
    double secondRoll;
};

// Real frames give a handful of configurations; only wrists with endless
// or huge ranges give more, and those may take the heap.
using Configurations = QVarLengthArray<WristAngles, 32>;

// The signed angle from `zero` to `direction` seen in `plane`, the plane
// across a joint's rotation axis. A direction along the axis has no angle
// there: it gives 0, and `projected` (when asked for) says false.
double AngleIn(const ZELMathPlane& plane, const ZELMathVector& direction, const ZELMathVector2D& zero,
               bool* projected = nullptr)
{
    ZELMathVector2D inPlane;
    const int status = plane.Project(direction, inPlane);
    if (projected)
        *projected = status == ZELMathPlane::kProjected;
    return zero.GetAngleTo(inPlane);
}

double AngleAbout(const ZELMathAxis& joint, const ZELMathVector& direction, const ZELMathVector2D& zero)
{
    return AngleIn(ZELMathAxis::GetPlane(joint, kRotationAxis), direction, zero);
}

// Turns `joint` about its rotation axis and carries along what is mounted on
// it (frames and points in world coordinates), so that child joints and the
// tool tip follow their parent.
template <typename... Mounted>
void Turn(ZELMathAxis& joint, double angle, Mounted&... mounted)
{
    const auto local = std::make_tuple((mounted / joint)...);
    ZELMathAxis::Tilt(joint, kRotationAxis, angle);
    std::apply([&](const auto&... each) { ((mounted = joint * each), ...); }, local);
}

// The variable that drives `joint` and its limits. A NaN limit is no limit
// on its side, as is an infinite one.
WristAxis WristAxisOf(const ZELKinRotaryJoint* joint)
{
    WristAxis axis;
    axis.variable = joint->GetVariable(0);
    if (axis.variable) {
        const double minimum = axis.variable->GetMinimum();
        const double maximum = axis.variable->GetMaximum();
        if (!std::isnan(minimum))
            axis.minimum = minimum;
        if (!std::isnan(maximum))
            axis.maximum = maximum;
    }
    return axis;
}

// Whether `value` lies at `limit` or beyond it, seen from below when `step`
// goes up and from above when it goes down.
bool IsAtOrPast(double value, double limit, double step)
{
    return step > 0.0 ? value >= limit : value <= limit;
}

// `angle` moved by the fewest whole `step`s (signed) that take it to `limit`
// or past it. The steps are counted rather than walked, so that a limit far
// away is reached at once; rounding may leave the count one off, which is
// put right.
double StepTo(double angle, double limit, double step)
{
    double moved = angle + std::ceil((limit - angle) / step) * step;
    if (!IsAtOrPast(moved, limit, step))
        moved += step;
    else if (IsAtOrPast(moved - step, limit, step))
        moved -= step;
    return moved;
}

// An angle known modulo half a turn, moved by the fewest half turns that
// bring it to the minimum or above, then, when that passes the maximum, by
// the fewest that bring it back to the maximum or below. A range narrower
// than half a turn may hold no half turn of the angle: the result then lies
// below the minimum.
double IntoRange(double angle, const WristAxis& axis)
{
    if (angle < axis.minimum)
        angle = StepTo(angle, axis.minimum, kPi);
    if (angle > axis.maximum)
        angle = StepTo(angle, axis.maximum, -kPi);
    return angle;
}

// How many whole `step`s (signed, at least one) take `angle` strictly inside
// the range going that way; NaN when none does. Counted rather than walked:
// the estimate is the last count short of the near limit, which rounding may
// make the first count inside or one count shorter, so three are tried.
double StepsIntoRange(double angle, double step, const WristAxis& axis)
{
    const double nearLimit = step > 0.0 ? axis.minimum : axis.maximum;
    const double estimate = std::max(1.0, std::floor((nearLimit - angle) / step));
    for (int extra = 0; extra < 3; ++extra) {
        if (axis.IsStrictlyInside(angle + (estimate + extra) * step))
            return estimate + extra;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

// Appends the angles whole `step`s (signed) from `angle` that lie strictly
// inside the range, nearest first, at most kMaxStepsEachWay of them. A range
// far from the angle costs no more than one beside it.
void AppendTurns(Angles& angles, double angle, double step, const WristAxis& axis)
{
    double previous = angle;
    double steps = StepsIntoRange(angle, step, axis);
    for (int listed = 0; listed < kMaxStepsEachWay && !std::isnan(steps); ++listed, steps += 1.0) {
        const double turned = angle + steps * step;
        // Past the far limit, or at a size where a step no longer moves it.
        if (!axis.IsStrictlyInside(turned) || turned == previous)
            break;
        angles.append(turned);
        previous = turned;
    }
}

Angles FirstRollCandidates(double theta, const WristAxis& axis)
{
    // Half a turn of the first roll brings the bend plane back onto the
    // normal, which another bend may then reach.
    Angles angles;
    if (!axis.IsOutside(theta))
        angles.append(theta);
    AppendTurns(angles, theta, -kPi, axis);
    AppendTurns(angles, theta, kPi, axis);
    return angles;
}

Angles SecondRollCandidates(double angle, const WristAxis& axis)
{
    Angles angles;
    if (axis.IsStrictlyInside(angle))
        angles.append(angle);
    AppendTurns(angles, angle, -kTurn, axis);
    AppendTurns(angles, angle, kTurn, axis);
    return angles;
}

// Of the angles whole turns from `angle` strictly inside the range, the one
// nearest `target`; NaN when none is.
double NearestTurn(double angle, double target, const WristAxis& axis)
{
    const double nearest = angle + std::round((target - angle) / kTurn) * kTurn;
    if (axis.IsStrictlyInside(nearest))
        return nearest;
    // Beyond a limit, the first turn back inside is the nearest to the target.
    const double step = nearest <= axis.minimum ? kTurn : -kTurn;
    return nearest + StepsIntoRange(nearest, step, axis) * step;
}

// The value of `variable` in `solution`, or `fallback` where it has none.
double ValueOr(const ZELKinSolution& solution, ZELKinVariable* variable, double fallback)
{
    const double value = solution.GetVariableValue(variable);
    return std::isnan(value) ? fallback : value;
}

// The only child of `joint`, which must be rotary; throws `countMessage` when
// there is not exactly one child and `typeMessage` when it is not rotary.
ZELKinRotaryJoint* OnlyRotaryChild(const ZELKinJoint* joint, const QString& countMessage,
                                   const QString& typeMessage)
{
    const QList<ZELKinJoint*> children = joint->GetChildJoints();
    if (children.size() != 1)
        throw ZELSysException(countMessage);
    auto* child = qobject_cast<ZELKinRotaryJoint*>(children.first());
    if (!child)
        throw ZELSysException(typeMessage);
    return child;
}

// The frame of a rotary joint: origin at the pivot, w along the rotation
// axis, u along the zero direction made perpendicular to it.
ZELMathAxis JointFrame(const ZELKinRotaryJoint* joint, const ZELMathVector& reference)
{
    // The wrist walk keeps rotary joints only, so a joint that is not there
    // is the one that fails here.
    if (!joint)
        throw ZELSysException(ZELKinRBRSolver::tr("not a rotary joint"));
    const ZELMathVector w = joint->GetVector();
    const ZELMathVector v = w.Cross(reference);
    ZELMathAxis frame;
    frame.SetOrigin(joint->GetPivot());
    frame.SetDirections(v.Cross(w), v, w);
    return frame;
}

ZELMathVector ReadVector(const QString& value)
{
    const QStringList coordinates = value.split(QLatin1Char(','));
    if (coordinates.size() != 3)
        qFatal("%s", qPrintable(ZELKinRBRSolver::tr("Variable not 3 coordinates separated by ','")));
    return ZELMathVector(coordinates.at(0).simplified().toDouble(), coordinates.at(1).simplified().toDouble(),
                         coordinates.at(2).simplified().toDouble());
}

ZELKinSolver* CreateRBRSolver(ZELKinMachine* machine, const QString& configuration)
{
    auto solver = std::make_unique<ZELKinRBRSolver>(machine);
    solver->Configure(configuration);
    return solver.release();
}

// The machine makes its solver by name; the roll-bend-roll solver is there
// as soon as the library is loaded.
const bool kRBRSolverAdded = (ZELKinMachine::SetSolverFactory(QStringLiteral("RBR"), &CreateRBRSolver), true);
} // namespace

void ZELKinRBRSolverPrivate::FindWrist()
{
    if (!machine)
        return;
    for (const ZELKinJoint* root : machine->GetRootJoints()) {
        for (const ZELKinJoint* second : root->GetChildJoints()) {
            if (!second)
                continue;
            for (const ZELKinJoint* carrier : second->GetChildJoints()) {
                if (!carrier)
                    continue;
                firstRoll = OnlyRotaryChild(carrier, ZELKinRBRSolver::tr("there must only be one first roll joint"),
                                            ZELKinRBRSolver::tr("first roll joint is not rotary"));
                bend = OnlyRotaryChild(firstRoll, ZELKinRBRSolver::tr("there must be only one bend joint"),
                                       ZELKinRBRSolver::tr("the bend joint is not rotary"));
                secondRoll = OnlyRotaryChild(bend, ZELKinRBRSolver::tr("there must only be one second roll joint"),
                                             ZELKinRBRSolver::tr("the second roll joint is not rotary"));
            }
        }
    }
    if (!firstRoll)
        return;
    firstRollAxis = WristAxisOf(firstRoll);
    bendAxis = WristAxisOf(bend);
    secondRollAxis = WristAxisOf(secondRoll);
    firstRollVector = firstRoll->GetVector();
}

void ZELKinRBRSolverPrivate::FindCarrier()
{
    if (!machine)
        return;
    for (ZELKinVariable* variable : machine->GetVariables()) {
        if (!variable)
            continue;
        const QString label = variable->GetLabel();
        if (label == QLatin1String("X"))
            x = variable;
        else if (label == QLatin1String("Y"))
            y = variable;
        else if (label == QLatin1String("Z"))
            z = variable;
    }
    if (const auto* afpMachine = qobject_cast<const ZELKinAFPMachine*>(machine))
        rollerRadius = afpMachine->GetRollerRadius();
}

void ZELKinRBRSolverPrivate::ReadItem(const QString& item)
{
    const QStringList parts = item.split(QLatin1Char(':'));
    const QString key = parts.at(0).simplified();
    const QString value = parts.value(1).simplified();
    if (key == QLatin1String("normal-tolerance"))
        normalTolerance = qDegreesToRadians(value.toDouble());
    else if (key == QLatin1String("first-roll-reference"))
        firstRollReference = ReadVector(value);
    else if (key == QLatin1String("second-roll-reference"))
        secondRollReference = ReadVector(value);
    else if (key == QLatin1String("bend-reference"))
        bendReference = ReadVector(value);
    else if (key == QLatin1String("tip-point"))
        tipPoint = ZELMathPoint() + ReadVector(value);
    else
        qWarning().noquote().nospace() << ZELKinRBRSolver::tr("Unknown solver variable: ") << key;
}

void ZELKinRBRSolverPrivate::BuildFrames()
{
    firstRollFrame = JointFrame(firstRoll, firstRollReference);
    bendFrame = JointFrame(bend, bendReference);
    secondRollFrame = JointFrame(secondRoll, secondRollReference);
    firstRollPlane = ZELMathAxis::GetPlane(firstRollFrame, kRotationAxis);
    bendOnFirstRoll = bendFrame / firstRollFrame;
    secondRollOnFirstRoll = secondRollFrame / firstRollFrame;
}

ZELKinRBRSolverPrivate::TurnedWrist ZELKinRBRSolverPrivate::Turned(const ZELKinSolution& solution) const
{
    ZELKinVariable* const wrist[] = {firstRollAxis.variable, bendAxis.variable, secondRollAxis.variable};
    for (ZELKinVariable* variable : {wrist[0], wrist[1], wrist[2], x, y, z}) {
        if (!solution.IsDefined(variable))
            qFatal("%s", qPrintable(ZELKinRBRSolver::tr("Solution is not complete.")));
    }
    TurnedWrist turned{firstRollFrame, bendFrame, secondRollFrame, tipPoint};
    Turn(turned.first, solution.GetVariableValue(wrist[0]), turned.middle, turned.second, turned.tip);
    Turn(turned.middle, solution.GetVariableValue(wrist[1]), turned.second, turned.tip);
    Turn(turned.second, solution.GetVariableValue(wrist[2]), turned.tip);
    return turned;
}

double ZELKinRBRSolverPrivate::PoleDistance(const ZELMathVector& normal) const
{
    const double angle = normal.GetAngleTo(firstRollVector);
    return std::min(angle, kPi - angle);
}

bool ZELKinRBRSolverPrivate::IsSingular(const ZELMathVector& normal) const
{
    return PoleDistance(normal) < normalTolerance;
}

std::optional<ZELKinRBRSolverPrivate::Reach> ZELKinRBRSolverPrivate::ReachWith(double firstRollValue,
                                                                             const ZELMathVector& normal,
                                                                             const ZELMathVector& travel) const
{
    const ZELMathVector2D wristZero(1.0, 0.0);
    // Turning the first roll carries along the bend and second roll frames,
    // which sit on it as they do at home.
    ZELMathAxis turnedFirstRoll = firstRollFrame;
    ZELMathAxis::Tilt(turnedFirstRoll, kRotationAxis, firstRollValue);
    ZELMathAxis turnedBend = turnedFirstRoll * bendOnFirstRoll;

    // A bend within the tolerance counts as none for its range, so that a
    // range that ends at zero keeps it. The head still takes the bend the
    // normal asks for wherever the range holds it: a bend taken as none
    // would tilt the roller, and the tows, by up to the tolerance. Only
    // what the arithmetic leaves of no bend at all is made exactly none.
    const double exactBend = AngleAbout(turnedBend, -normal, wristZero);
    if (std::isnan(exactBend))
        return std::nullopt;
    const double snappedBend = std::abs(exactBend) < normalTolerance ? 0.0 : exactBend;
    if (bendAxis.IsOutside(snappedBend))
        return std::nullopt;
    const bool keepsExact = !bendAxis.IsOutside(exactBend) && std::abs(exactBend) >= kNoBend;
    const double bendValue = keepsExact ? exactBend : snappedBend;
    ZELMathAxis turnedSecondRoll = turnedFirstRoll * secondRollOnFirstRoll;
    Turn(turnedBend, bendValue, turnedSecondRoll);

    const double secondRollValue = AngleAbout(turnedSecondRoll, travel, wristZero);
    if (std::isnan(secondRollValue))
        return std::nullopt;
    return Reach{bendValue, secondRollValue};
}

ZELMathVector ZELKinRBRSolverPrivate::TipOffset(const ZELKinSolution& solution) const
{
    return Turned(solution).tip - tipPoint;
}

ZELMathPoint ZELKinRBRSolverPrivate::RollerCentre(const ZELMathAxis& frame) const
{
    return frame.GetOrigin() + rollerRadius * frame.GetWDirection();
}

ZELMathPoint ZELKinRBRSolverPrivate::LinearPoint(const ZELKinSolution& solution) const
{
    return ZELMathPoint(solution.GetVariableValue(x), solution.GetVariableValue(y), solution.GetVariableValue(z));
}

ZELKinSolution ZELKinRBRSolverPrivate::WithLinear(ZELKinSolution solution, const ZELMathPoint& point) const
{
    solution.SetVariableValue(x, point.GetX());
    solution.SetVariableValue(y, point.GetY());
    solution.SetVariableValue(z, point.GetZ());
    return solution;
}

ZELKinSolution ZELKinRBRSolverPrivate::WristSolution(double firstRollValue, double bendValue,
                                                     double secondRollValue, const ZELMathPoint& point) const
{
    ZELKinSolution solution = solutionTemplate;
    solution.SetVariableValue(firstRollAxis.variable, firstRollValue);
    solution.SetVariableValue(bendAxis.variable, bendValue);
    solution.SetVariableValue(secondRollAxis.variable, secondRollValue);
    solution.SetTraori(true);
    return WithLinear(solution, point);
}

ZELKinRBRSolver::ZELKinRBRSolver(ZELKinMachine* machine)
    : ZELKinRBRSolver(new ZELKinRBRSolverPrivate(this, machine))
{
}

ZELKinRBRSolver::ZELKinRBRSolver(ZELKinRBRSolverPrivate* d)
    : ZELKinSolver(d)
{
    d->FindWrist();
    d->FindCarrier();
    // Built from the empty template, so in the order WristSolution sets the values.
    d->solutionTemplate = d->WristSolution(0.0, 0.0, 0.0, ZELMathPoint());
}

ZELKinRBRSolver::~ZELKinRBRSolver() = default;

void ZELKinRBRSolver::Configure(const QString& config)
{
    Q_D(ZELKinRBRSolver);
    // Empty items are read too: each logs the unknown-key warning.
    for (const QString& item : config.split(QLatin1Char(';')))
        d->ReadItem(item);
    d->BuildFrames();
}

ZELKinSolution ZELKinRBRSolver::Solve(const ZELMathAxis& frame, double fraction, const ZELKinSolution& from,
                                      const ZELKinSolution& to) const
{
    Q_D(const ZELKinRBRSolver);
    if (from.IsInfinite())
        return to.IsInfinite() ? ZELKinSolution() : d->WithLinear(to, d->RollerCentre(frame));
    if (to.IsInfinite())
        return d->WithLinear(from, d->RollerCentre(frame));
    const auto blend = [&](ZELKinVariable* variable) {
        return to.GetVariableValue(variable) * fraction + from.GetVariableValue(variable) * (1.0 - fraction);
    };
    return d->WristSolution(blend(d->firstRollAxis.variable), blend(d->bendAxis.variable),
                            blend(d->secondRollAxis.variable), d->RollerCentre(frame));
}

QList<ZELKinSolution> ZELKinRBRSolver::Solve(const ZELMathAxis& frame, bool traori) const
{
    Q_D(const ZELKinRBRSolver);
    if (!d->HasWrist() || !IsFinite(frame))
        return {};
    const ZELMathVector normal = frame.GetWDirection();
    const ZELMathVector travel = frame.GetUDirection();
    const ZELMathVector2D firstRollZero(0.0, 1.0);

    // The first roll turns the bend axis across the normal; at either pole
    // of the first roll axis any turn does, and the direction of travel
    // decides it.
    double theta = 0.0;
    bool bringIntoRange = true;
    if (d->IsSingular(normal)) {
        if (!traori)
            return {ZELKinSolution()};
        theta = AngleIn(d->firstRollPlane, travel, firstRollZero, &bringIntoRange);
    } else {
        theta = AngleIn(d->firstRollPlane, normal, firstRollZero);
    }
    if (std::isnan(theta))
        return {};
    if (bringIntoRange)
        theta = IntoRange(theta, d->firstRollAxis);

    // The configurations are gathered first so that the list of solutions
    // is allocated once, at its size.
    Configurations found;
    for (const double firstRoll : FirstRollCandidates(theta, d->firstRollAxis)) {
        const std::optional<ZELKinRBRSolverPrivate::Reach> reach = d->ReachWith(firstRoll, normal, travel);
        if (!reach)
            continue;
        for (const double candidate : SecondRollCandidates(reach->secondRoll, d->secondRollAxis))
            found.append(WristAngles{firstRoll, reach->bend, candidate});
    }

    const ZELMathPoint rollerCentre = d->RollerCentre(frame);
    QList<ZELKinSolution> solutions;
    solutions.reserve(found.size());
    for (const WristAngles& angles : found)
        solutions.append(d->WristSolution(angles.firstRoll, angles.bend, angles.secondRoll, rollerCentre));
    return solutions;
}

ZELKinSolution ZELKinRBRSolver::SolveNearest(const ZELMathAxis& frame, const ZELKinSolution& guess) const
{
    Q_D(const ZELKinRBRSolver);
    if (!d->HasWrist() || !IsFinite(frame) || !d->IsSingular(frame.GetWDirection()))
        return ZELKinSolver::SolveNearest(frame, guess);
    // The first roll is free: it stays where the neighbours have it, and the
    // bend and second roll still have to meet the normal and the travel.
    const double firstRoll = d->firstRollAxis.Nearest(ValueOr(guess, d->firstRollAxis.variable, 0.0));
    const std::optional<ZELKinRBRSolverPrivate::Reach> reach =
        d->ReachWith(firstRoll, frame.GetWDirection(), frame.GetUDirection());
    if (!reach)
        return ZELKinSolution();
    const double secondRoll =
        NearestTurn(reach->secondRoll, ValueOr(guess, d->secondRollAxis.variable, 0.0), d->secondRollAxis);
    if (std::isnan(secondRoll))
        return ZELKinSolution();
    return d->WristSolution(firstRoll, reach->bend, secondRoll, d->RollerCentre(frame));
}

ZELKinSolution ZELKinRBRSolver::FromTraori(const ZELKinSolution& solution) const
{
    Q_D(const ZELKinRBRSolver);
    return d->WithLinear(solution, d->LinearPoint(solution) - d->TipOffset(solution));
}

ZELKinSolution ZELKinRBRSolver::ToTraori(const ZELKinSolution& solution) const
{
    Q_D(const ZELKinRBRSolver);
    return d->WithLinear(solution, d->LinearPoint(solution) + d->TipOffset(solution));
}

ZELMathPoint ZELKinRBRSolver::GetTipPoint(const ZELKinSolution& solution) const
{
    Q_D(const ZELKinRBRSolver);
    return d->LinearPoint(solution.IsTraori() ? solution : ToTraori(solution));
}

double ZELKinRBRSolver::GetTipReach(const ZELKinVariable* variable) const
{
    Q_D(const ZELKinRBRSolver);
    if (!variable || !d->HasWrist())
        return std::numeric_limits<double>::quiet_NaN();
    const ZELMathPoint secondPivot = d->secondRoll->GetPivot();
    const double secondRollReach = secondPivot.GetDistanceTo(d->tipPoint);
    if (variable == d->secondRollAxis.variable)
        return secondRollReach;
    const ZELMathPoint bendPivot = d->bend->GetPivot();
    const double bendReach = bendPivot.GetDistanceTo(secondPivot) + secondRollReach;
    if (variable == d->bendAxis.variable)
        return bendReach;
    if (variable == d->firstRollAxis.variable)
        return d->firstRoll->GetPivot().GetDistanceTo(bendPivot) + bendReach;
    return std::numeric_limits<double>::quiet_NaN();
}

ZELMathAxis ZELKinRBRSolver::GetToolFrame(const ZELKinSolution& solution) const
{
    Q_D(const ZELKinRBRSolver);
    const ZELKinSolution traori = solution.IsTraori() ? solution : ToTraori(solution);
    const ZELKinRBRSolverPrivate::TurnedWrist turned = d->Turned(traori);
    // Solve turns the bend's zero direction onto the tool's direction, which
    // points into the surface, and the second roll's onto the travel.
    const ZELMathVector normal = -turned.middle.GetUDirection();
    const ZELMathVector travel = turned.second.GetUDirection();
    const ZELMathPoint compaction = d->LinearPoint(traori) - d->rollerRadius * normal;
    return ZELMathAxis(compaction, travel, normal.Cross(travel), normal);
}

double ZELKinRBRSolver::GetSingularityMargin(const ZELMathVector& normal) const
{
    Q_D(const ZELKinRBRSolver);
    const double length = normal.GetLength();
    if (!d->firstRoll || !std::isfinite(length) || length <= 0.0)
        return std::numeric_limits<double>::quiet_NaN();
    return d->PoleDistance(normal);
}

bool ZELKinRBRSolver::IsContiguous(const ZELKinSolution& a, const ZELKinSolution& b, Continuity mode) const
{
    Q_D(const ZELKinRBRSolver);
    ZELKinVariable* const firstRoll = d->firstRollAxis.variable;
    ZELKinVariable* const secondRoll = d->secondRollAxis.variable;
    const double firstRollChange = a.GetVariableValue(firstRoll) - b.GetVariableValue(firstRoll);
    const double secondRollChange = a.GetVariableValue(secondRoll) - b.GetVariableValue(secondRoll);
    if (mode == ContinuityFull) {
        ZELKinVariable* const bend = d->bendAxis.variable;
        const bool bendKeepsItsSide = (a.GetVariableValue(bend) < 0.0) == (b.GetVariableValue(bend) < 0.0);
        // While the bend keeps its side, turning both rolls the same way cancels out.
        if (bendKeepsItsSide)
            return std::abs(firstRollChange + secondRollChange) < kPi / 2.0 && std::abs(firstRollChange) < kPi;
        return std::abs(firstRollChange) < kPi / 2.0 && std::abs(secondRollChange) < kPi / 2.0;
    }
    if (mode == ContinuityFirstRoll)
        return std::abs(firstRollChange) < kPi;
    return true;
}

double ZELKinRBRSolver::ComputeCost(const ZELKinSolution& a, const ZELKinSolution& b) const
{
    Q_D(const ZELKinRBRSolver);
    ZELKinVariable* const firstRoll = d->firstRollAxis.variable;
    ZELKinVariable* const secondRoll = d->secondRollAxis.variable;
    return std::abs(a.GetVariableValue(firstRoll) - b.GetVariableValue(firstRoll))
        + std::abs(a.GetVariableValue(secondRoll) - b.GetVariableValue(secondRoll));
}

void ZELKinRBRSolver::SetAngleTolerance(double tolerance)
{
    Q_D(ZELKinRBRSolver);
    d->normalTolerance = tolerance;
}
