#include "zelkinafpgcodeaxiswords_p.h"

#include "zelkinafpmachine.h"
#include "zelkinncformat_p.h"
#include "zelkinncstream_p.h"
#include "zelkinrolllayupposition.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkinvariable.h"

#include <QVariant>

#include <cmath>
#include <limits>

namespace {

constexpr double kModalTolerance = 0.001;
const char* const kActualFeedrateProperty = "actualFeedrate";

bool IsWithinTolerance(double a, double b)
{
    return std::abs(a - b) <= kModalTolerance;
}

bool DiffersBeyondTolerance(double a, double b)
{
    return std::abs(a - b) > kModalTolerance;
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
    for (const ZELKinVariable* variable : machine->GetVariables()) {
        if (!variable)
            continue;
        const QString label = variable->GetLabel();
        Scale scale = Scale::Inches;
        if (variable == material)
            scale = Scale::Unscaled;
        else if (variable->GetType() == ZELKinVariable::Rotary)
            scale = Scale::Degrees;
        axes.append(Axis{variable, label, label.size() > 1 ? label + QLatin1Char('=') : label, scale});
    }
}

void ZELKinAFPGCodeAxisWords::Write(ZELKinNCStream& out, const ZELKinPosition* position,
                                    const ZELKinPosition* previous, const QStringList& excluded,
                                    const QString& towCodes) const
{
    if (!position)
        return;
    const AxisValues previousValues = ValuesOf(previous);
    WriteAxes(out, ValuesOf(position), previous ? &previousValues : nullptr, excluded);
    const bool afterAdd = towCodes.startsWith(QLatin1Char('T'));
    const bool afterCut = !towCodes.isEmpty() && !afterAdd;
    WriteFeed(out, LimitFeed(EffectiveFeed(position), afterAdd, afterCut),
              previous ? std::optional<double>(EffectiveFeed(previous)) : std::nullopt);
    WriteHeadRecord(out, position, towCodes);
}

ZELKinAFPGCodeAxisWords::AxisValues ZELKinAFPGCodeAxisWords::ValuesOf(const ZELKinPosition* position) const
{
    AxisValues values;
    for (const Axis& axis : axes)
        values.append(position ? position->GetVariableValue(axis.variable) : std::numeric_limits<double>::quiet_NaN());
    return values;
}

void ZELKinAFPGCodeAxisWords::WriteModal(ZELKinNCStream& out, const ZELKinPosition* position,
                                         const AxisValues& values, const AxisValues& previousValues, double feed,
                                         double previousFeed, const QString& towCodes) const
{
    WriteAxes(out, values, &previousValues, QStringList());
    WriteFeed(out, feed, previousFeed);
    WriteHeadRecord(out, position, towCodes);
}

bool ZELKinAFPGCodeAxisWords::IsSamePosition(const ZELKinPosition* a, const ZELKinPosition* b) const
{
    return a && b && IsSamePosition(ValuesOf(a), ValuesOf(b));
}

bool ZELKinAFPGCodeAxisWords::IsSamePosition(const AxisValues& a, const AxisValues& b)
{
    // An undefined value reads as NaN, so one NaN test tells both whether
    // the axis is defined and its value.
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (std::isnan(a[i]) || std::isnan(b[i])) {
            if (std::isnan(a[i]) != std::isnan(b[i]))
                return false;
        } else if (!IsWithinTolerance(a[i], b[i])) {
            return false;
        }
    }
    return true;
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
    const QVariant actual = position->property(kActualFeedrateProperty);
    return actual.isValid() ? actual.toDouble() : position->GetFeedrate();
}

void ZELKinAFPGCodeAxisWords::SetActualFeed(ZELKinPosition* position, double feed)
{
    position->setProperty(kActualFeedrateProperty, feed);
}

void ZELKinAFPGCodeAxisWords::WriteAxes(ZELKinNCStream& out, const AxisValues& values,
                                        const AxisValues* previous, const QStringList& excluded) const
{
    for (qsizetype i = 0; i < axes.size(); ++i) {
        const double value = values[i];
        if (std::isnan(value))
            continue;
        if (previous && IsWithinTolerance(value, (*previous)[i]))
            continue;
        const Axis& axis = axes[i];
        // Most lines exclude nothing: they are spared the search.
        if (!excluded.isEmpty() && excluded.contains(axis.label))
            continue;
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
}

void ZELKinAFPGCodeAxisWords::WriteFeed(ZELKinNCStream& out, double feed, std::optional<double> previousFeed)
{
    if (previousFeed && !DiffersBeyondTolerance(feed, *previousFeed))
        return;
    out << 'F' << ZELKinNCFormat::ToInches(feed);
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
