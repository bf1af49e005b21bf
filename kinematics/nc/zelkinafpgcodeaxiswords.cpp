#include "zelkinafpgcodeaxiswords_p.h"

#include "zelkinafpmachine.h"
#include "zelkinncformat_p.h"
#include "zelkinncstream_p.h"
#include "zelkinrolllayupposition.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkinsolver.h"
#include "zelkinvariable.h"

#include <zelsysexception.h>

#include <QVariant>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace {

constexpr double kModalTolerance = 0.001;
constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

// Whether a word of `value` is left out for the controller holding
// `held`. Nothing is held as NaN, and a value that is not finite is never
// within the tolerance: it is written, and so refused.
bool IsHeld(double held, double value)
{
    return std::abs(value - held) <= kModalTolerance;
}

constexpr double kUnlimited = std::numeric_limits<double>::infinity();
constexpr double kSecondsPerMinute = 60.0;

bool IsSpeed(double speed)
{
    return std::isfinite(speed) && speed > 0.0;
}

// The machine's solver, which knows how far the tool tip stands from each
// wrist joint; none for a machine whose solver or wrist it cannot build.
std::unique_ptr<const ZELKinSolver> SolverOf(const ZELKinAFPMachine* machine)
{
    try {
        return std::unique_ptr<const ZELKinSolver>(machine->CreateSolver());
    } catch (const ZELSysException&) {
        return nullptr;
    }
}

// The speed of the slowest slide that carries the tool (mm/s): the linear
// axes but the material axis. Infinite when none gives one.
double SlowestSlide(const ZELKinAFPMachine* machine)
{
    double slowest = kUnlimited;
    for (const ZELKinVariable* variable : machine->GetVariables()) {
        if (variable && variable->GetType() == ZELKinVariable::Linear && variable != machine->GetMaterialVariable()
            && IsSpeed(variable->GetMaxVelocity()))
            slowest = std::min(slowest, variable->GetMaxVelocity());
    }
    return slowest;
}

// How fast a rotary word's lag may be caught up in one line (rad/s): a
// share of the axis's own speed and of the turn at which the tip, `reach`
// mm from the axis, moves the slowest slide at its speed.
double CatchUpRate(const ZELKinVariable* variable, double reach, double slowestSlide, int rotaryAxes)
{
    double rate = IsSpeed(variable->GetMaxVelocity()) ? variable->GetMaxVelocity() : kUnlimited;
    if (std::isfinite(reach) && reach > 0.0)
        rate = std::min(rate, slowestSlide / reach);
    return rate / (2.0 * rotaryAxes);
}

void WriteAngle(ZELKinNCStream& out, char letter, double radians)
{
    if (!std::isnan(radians))
        out << letter << ZELKinNCStream::Fixed{ZELKinNCFormat::ToDegrees(radians), 4};
}

} // namespace

ZELKinAFPGCodeAxisWords::ZELKinAFPGCodeAxisWords(const ZELKinAFPMachine* machine,
                                                 const ZELKinRollLayupProcedure* procedure)
    : addFeedrate(procedure->GetAddFeedrate())
    , cutFeedrate(procedure->GetCutFeedrate())
{
    const ZELKinVariable* material = machine->GetMaterialVariable();
    const QList<ZELKinVariable*> variables = machine->GetVariables();
    const int rotaryAxes = int(std::count_if(variables.cbegin(), variables.cend(), [](const ZELKinVariable* variable) {
        return variable && variable->GetType() == ZELKinVariable::Rotary;
    }));
    const std::unique_ptr<const ZELKinSolver> solver = SolverOf(machine);
    const double slowestSlide = SlowestSlide(machine);
    for (const ZELKinVariable* variable : variables) {
        if (!variable)
            continue;
        const QString label = variable->GetLabel();
        Scale scale = Scale::Inches;
        double catchUpRate = kUnlimited;
        if (variable == material) {
            scale = Scale::Unscaled;
        } else if (variable->GetType() == ZELKinVariable::Rotary) {
            scale = Scale::Degrees;
            const double reach = solver ? solver->GetTipReach(variable) : std::nan("");
            catchUpRate = CatchUpRate(variable, reach, slowestSlide, rotaryAxes);
        }
        axes.append(Axis{variable, label, label.size() > 1 ? label + QLatin1Char('=') : label, scale, catchUpRate});
        axisVariables.append(variable);
    }
}

ZELKinAFPGCodeAxisWords::Held ZELKinAFPGCodeAxisWords::NothingHeld() const
{
    return Held{AxisValues(axes.size(), kNothing), kNothing};
}

void ZELKinAFPGCodeAxisWords::Preset(Held& held, const QString& label, double value) const
{
    for (qsizetype i = 0; i < axes.size(); ++i) {
        if (axes[i].label == label)
            held.axes[i] = value;
    }
}

void ZELKinAFPGCodeAxisWords::WriteAll(ZELKinNCStream& out, const ZELKinPosition* position,
                                       const QStringList& excluded) const
{
    if (!position)
        return;
    const AxisValues values = ValuesOf(position);
    for (qsizetype i = 0; i < axes.size(); ++i) {
        // Most lines exclude nothing: they are spared the search.
        if (!std::isnan(values[i]) && (excluded.isEmpty() || !excluded.contains(axes[i].label)))
            WriteAxis(out, axes[i], values[i]);
    }
    out << 'F' << ZELKinNCFormat::ToInches(EffectiveFeed(position));
    WriteHeadRecord(out, position, QString());
}

void ZELKinAFPGCodeAxisWords::WriteModal(ZELKinNCStream& out, const ZELKinPosition* position, Held& held,
                                         double followingSeconds) const
{
    if (position)
        WriteModal(out, position, ValuesOf(position), EffectiveFeed(position), held, QString(), followingSeconds);
}

void ZELKinAFPGCodeAxisWords::WriteModal(ZELKinNCStream& out, const ZELKinPosition* position, const AxisValues& values,
                                         double feed, Held& held, const QString& towCodes,
                                         double followingSeconds) const
{
    // std::fmin passes over a NaN: a following line not known leaves this
    // line's own time to decide.
    const double seconds = std::fmin(StepSeconds(held.axes, values, feed), followingSeconds);
    for (qsizetype i = 0; i < axes.size(); ++i) {
        if (std::isnan(values[i]) || std::abs(values[i] - held.axes[i]) <= Allowance(i, seconds))
            continue;
        WriteAxis(out, axes[i], values[i]);
        held.axes[i] = values[i];
    }
    if (!IsHeld(held.feed, feed)) {
        out << 'F' << ZELKinNCFormat::ToInches(feed);
        held.feed = feed;
    }
    WriteHeadRecord(out, position, towCodes);
}

ZELKinAFPGCodeAxisWords::AxisValues ZELKinAFPGCodeAxisWords::ValuesOf(const ZELKinPosition* position) const
{
    AxisValues values(axes.size(), kNothing);
    if (position)
        position->GetVariableValues(axisVariables.constData(), int(axisVariables.size()), values.data());
    return values;
}

bool ZELKinAFPGCodeAxisWords::HoldsAxes(const Held& held, const AxisValues& values)
{
    // An undefined value reads as NaN and gives no word.
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (!std::isnan(values[i]) && !IsHeld(held.axes[i], values[i]))
            return false;
    }
    return true;
}

bool ZELKinAFPGCodeAxisWords::HoldsAll(const Held& held, const AxisValues& values, double feed)
{
    return IsHeld(held.feed, feed) && HoldsAxes(held, values);
}

double ZELKinAFPGCodeAxisWords::LimitFeed(double feed, bool afterAdd, bool afterCut) const
{
    const auto limit = [](double value, double limit) { return limit < value ? limit : value; };
    if (afterAdd)
        feed = limit(feed, addFeedrate);
    if (afterCut)
        feed = limit(feed, cutFeedrate);
    return feed;
}

double ZELKinAFPGCodeAxisWords::EffectiveFeed(const ZELKinPosition* position)
{
    const double actual = position->GetActualFeedrate();
    return std::isnan(actual) ? position->GetFeedrate() : actual;
}

void ZELKinAFPGCodeAxisWords::SetActualFeed(ZELKinPosition* position, double feed)
{
    position->SetActualFeedrate(feed);
}

double ZELKinAFPGCodeAxisWords::StepSeconds(const AxisValues& from, const AxisValues& to, double feed) const
{
    double squared = 0.0;
    for (qsizetype i = 0; i < axes.size(); ++i) {
        if (axes[i].scale == Scale::Inches && !std::isnan(to[i])) {
            const double step = to[i] - from[i];
            squared += step * step;
        }
    }
    return std::sqrt(squared) / (feed / kSecondsPerMinute);
}

double ZELKinAFPGCodeAxisWords::Allowance(qsizetype index, double seconds) const
{
    const double rate = axes[index].catchUpRate;
    if (rate == kUnlimited)
        return kModalTolerance;
    // A time that is not known (NaN) leaves the tolerance alone.
    const double caughtUp = rate * seconds;
    return caughtUp < kModalTolerance ? caughtUp : kModalTolerance;
}

void ZELKinAFPGCodeAxisWords::WriteAxis(ZELKinNCStream& out, const Axis& axis, double value) const
{
    switch (axis.scale) {
    case Scale::Inches:
        out << axis.prefix << ZELKinNCStream::Fixed{ZELKinNCFormat::ToInches(value), 4};
        break;
    case Scale::Degrees:
        out << axis.prefix << ZELKinNCStream::Fixed{ZELKinNCFormat::ToDegrees(value), 4};
        break;
    case Scale::Unscaled:
        out << axis.prefix << ZELKinNCStream::Fixed{value, 4};
        break;
    }
}

void ZELKinAFPGCodeAxisWords::WriteHeadRecord(ZELKinNCStream& out, const ZELKinPosition* position,
                                              const QString& towCodes)
{
    const auto* rollLayup = qobject_cast<const ZELKinRollLayupPosition*>(position);
    if (!rollLayup || (std::isnan(rollLayup->GetQAngle()) && towCodes.isEmpty()))
        return;
    out << ";{";
    WriteAngle(out, 'P', rollLayup->GetPAngle());
    WriteAngle(out, 'Q', rollLayup->GetQAngle());
    WriteAngle(out, 'M', rollLayup->GetSmoothAngle());
    out << towCodes << '}';
}
