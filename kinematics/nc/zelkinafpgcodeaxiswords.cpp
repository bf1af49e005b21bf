#include "zelkinafpgcodeaxiswords_p.h"

#include "zelkinafpmachine.h"
#include "zelkinncformat_p.h"
#include "zelkinrolllayupposition.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkinvariable.h"

#include <QVariant>

#include <algorithm>
#include <cmath>

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

QString AngleWord(char letter, double radians)
{
    if (std::isnan(radians))
        return QString();
    return QLatin1Char(letter) + ZELKinNCFormat::Fixed(ZELKinNCFormat::ToDegrees(radians), 4);
}

} // namespace

ZELKinAFPGCodeAxisWords::ZELKinAFPGCodeAxisWords(const ZELKinAFPMachine* machine,
                                                 const ZELKinRollLayupProcedure* procedure)
    : variables(machine->GetVariables())
    , materialVariable(machine->GetMaterialVariable())
    , addFeedrate(procedure->GetAddFeedrate())
    , cutFeedrate(procedure->GetCutFeedrate())
{
}

QString ZELKinAFPGCodeAxisWords::Words(const ZELKinPosition* position, const ZELKinPosition* previous,
                                       const QStringList& excluded, const QString& towCodes) const
{
    if (!position)
        return QString();
    QString words;
    for (const ZELKinVariable* variable : variables) {
        if (!variable || !position->IsVariableDefined(variable))
            continue;
        const double value = position->GetVariableValue(variable);
        if (previous && previous->IsVariableDefined(variable) &&
            IsWithinTolerance(value, previous->GetVariableValue(variable)))
            continue;
        if (!excluded.contains(variable->GetLabel()))
            words += AxisWord(variable, value);
    }
    words += FeedWord(position, previous, towCodes);
    words += HeadRecord(position, towCodes);
    return words;
}

bool ZELKinAFPGCodeAxisWords::IsSamePosition(const ZELKinPosition* a, const ZELKinPosition* b) const
{
    if (!a || !b)
        return false;
    return std::all_of(variables.cbegin(), variables.cend(), [a, b](const ZELKinVariable* variable) {
        const bool defined = a->IsVariableDefined(variable);
        if (defined != b->IsVariableDefined(variable))
            return false;
        return !defined || IsWithinTolerance(a->GetVariableValue(variable), b->GetVariableValue(variable));
    });
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

QString ZELKinAFPGCodeAxisWords::AxisWord(const ZELKinVariable* variable, double value) const
{
    const QString label = variable->GetLabel();
    QString word = label.size() > 1 ? label + QLatin1Char('=') : label;
    if (variable == materialVariable)
        return word + ZELKinNCFormat::Fixed(value, 4);
    if (variable->GetType() == ZELKinVariable::Rotary)
        return word + ZELKinNCFormat::Fixed(ZELKinNCFormat::ToDegrees(value), 4);
    return word + ZELKinNCFormat::Fixed(ZELKinNCFormat::ToInches(value), 4);
}

QString ZELKinAFPGCodeAxisWords::FeedWord(const ZELKinPosition* position, const ZELKinPosition* previous,
                                          const QString& towCodes) const
{
    const bool afterAdd = towCodes.startsWith(QLatin1Char('T'));
    const bool afterCut = !towCodes.isEmpty() && !afterAdd;
    const double feed = LimitFeed(EffectiveFeed(position), afterAdd, afterCut);
    if (previous && !DiffersBeyondTolerance(feed, EffectiveFeed(previous)))
        return QString();
    return QLatin1Char('F') + ZELKinNCFormat::General(ZELKinNCFormat::ToInches(feed));
}

QString ZELKinAFPGCodeAxisWords::HeadRecord(const ZELKinPosition* position, const QString& towCodes)
{
    const auto* rollLayup = qobject_cast<const ZELKinRollLayupPosition*>(position);
    if (!rollLayup || (std::isnan(rollLayup->GetQAngle()) && towCodes.isEmpty()))
        return QString();
    return QStringLiteral(";{") + AngleWord('P', rollLayup->GetPAngle()) + AngleWord('Q', rollLayup->GetQAngle()) +
        AngleWord('M', rollLayup->GetSmoothAngle()) + towCodes + QLatin1Char('}');
}
