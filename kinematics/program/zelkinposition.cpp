#include "zelkinposition.h"
#include "zelkinposition_p.h"

#include "zelkincourselink.h"
#include "zelkinprobeprocedure.h"

#include <zelgeocontainer.h>

#include <algorithm>
#include <cmath>

ZELGEO_REGISTER_CLASS(ZELKinPosition)

ZELKinPositionPrivate::VariableValues::const_iterator ZELKinPositionPrivate::Find(const ZELKinVariable* variable) const
{
    if (!variable)
        return variableValues.cend();
    return std::find_if(variableValues.cbegin(), variableValues.cend(),
                        [variable](const VariableValue& entry) { return entry.variable.Is(variable); });
}

void ZELKinPositionPrivate::StoreValue(ZELKinVariable* variable, double value)
{
    const auto entry = Find(variable);
    if (std::isnan(value)) {
        if (entry != variableValues.cend())
            variableValues.erase(entry);
    } else if (entry != variableValues.cend()) {
        variableValues[std::size_t(entry - variableValues.cbegin())].value = value;
    } else if (variable) {
        variableValues.push_back(VariableValue{ZELKinCountedLink<ZELKinVariable>(variable), value});
    }
}

ZELKinPosition::ZELKinPosition(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinPosition(new ZELKinPositionPrivate(this), container, reference)
{
}

ZELKinPosition::ZELKinPosition(ZELKinPositionPrivate* d, ZELKinScript* script, int index)
    : ZELKinCommand(d, script, index)
{
}

ZELKinPosition::ZELKinPosition(ZELKinProbeProcedure* procedure)
    : ZELKinPosition(new ZELKinPositionPrivate(this), procedure, -1)
{
}

ZELKinPosition::ZELKinPosition(ZELKinCourseLink* link, int index)
    : ZELKinPosition(new ZELKinPositionPrivate(this), link, index)
{
}

ZELKinPosition::ZELKinPosition(ZELKinCommandPrivate* d, ZELGeoContainer* container,
                               const ZELGeoGeometryRef& reference)
    : ZELKinCommand(d, container, reference)
{
}

ZELKinPosition::~ZELKinPosition() = default;

void ZELKinPosition::_constructor_checker()
{
    ZELKinPosition checker(nullptr, ZELGeoGeometryRef());
}

double ZELKinPosition::GetVariableValue(const ZELKinVariable* variable) const
{
    Q_D(const ZELKinPosition);
    const auto entry = d->Find(variable);
    return entry != d->variableValues.cend() ? entry->value : std::numeric_limits<double>::quiet_NaN();
}

void ZELKinPosition::GetVariableValues(const ZELKinVariable* const* variables, int count, double* values) const
{
    Q_D(const ZELKinPosition);
    std::fill_n(values, std::max(count, 0), std::numeric_limits<double>::quiet_NaN());
    for (const ZELKinPositionPrivate::VariableValue& entry : d->variableValues) {
        const QObject* target = entry.variable.GetAddress();
        if (!target)
            continue;
        for (int i = 0; i < count; ++i) {
            if (target == variables[i])
                values[i] = entry.value;
        }
    }
}

bool ZELKinPosition::IsVariableDefined(const ZELKinVariable* variable) const
{
    Q_D(const ZELKinPosition);
    return d->Find(variable) != d->variableValues.cend();
}

void ZELKinPosition::SetVariableValue(ZELKinVariable* variable, double value)
{
    Q_D(ZELKinPosition);
    AboutToChange();
    d->StoreValue(variable, value);
}

void ZELKinPosition::ReserveVariableValues(int count)
{
    Q_D(ZELKinPosition);
    d->ReserveValues(std::size_t(std::max(count, 0)));
}

double ZELKinPosition::GetFeedrate() const
{
    Q_D(const ZELKinPosition);
    return d->feedrate;
}

void ZELKinPosition::SetFeedrate(double feedrate)
{
    Q_D(ZELKinPosition);
    AboutToChange();
    d->feedrate = feedrate;
}

double ZELKinPosition::GetActualFeedrate() const
{
    Q_D(const ZELKinPosition);
    return d->actualFeedrate;
}

// What was written is no change of the program: the container is not told.
void ZELKinPosition::SetActualFeedrate(double feedrate)
{
    Q_D(ZELKinPosition);
    d->actualFeedrate = feedrate;
}

double ZELKinPosition::GetUAxisOffset() const
{
    Q_D(const ZELKinPosition);
    return d->uAxisOffset;
}

// Like the actual feedrate, an account of what was written, not a change.
void ZELKinPosition::SetUAxisOffset(double offset)
{
    Q_D(ZELKinPosition);
    d->uAxisOffset = offset;
}

QVariant ZELKinPosition::ReadUAxisOffset() const
{
    const double offset = GetUAxisOffset();
    return std::isnan(offset) ? QVariant() : QVariant(offset);
}

void ZELKinPosition::WriteUAxisOffset(const QVariant& offset)
{
    bool number = false;
    const double value = offset.toDouble(&number);
    SetUAxisOffset(number ? value : std::numeric_limits<double>::quiet_NaN());
}

bool ZELKinPosition::IsTraori() const
{
    Q_D(const ZELKinPosition);
    return d->traori;
}

void ZELKinPosition::SetTraori(bool traori)
{
    Q_D(ZELKinPosition);
    AboutToChange();
    d->traori = traori;
}

const ZELTPPoint* ZELKinPosition::GetToolPathPoint() const
{
    Q_D(const ZELKinPosition);
    return d->toolPathPoint.Get();
}

void ZELKinPosition::SetToolPathPoint(const ZELTPPoint* point)
{
    Q_D(ZELKinPosition);
    AboutToChange();
    d->toolPathPoint.Set(point);
}

double ZELKinPosition::GetLateralPositionAdjustment() const
{
    Q_D(const ZELKinPosition);
    return d->lateralPositionAdjustment;
}

void ZELKinPosition::SetLateralPositionAdjustment(double adjustment)
{
    Q_D(ZELKinPosition);
    AboutToChange();
    d->lateralPositionAdjustment = adjustment;
}

void ZELKinPosition::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinPosition);
    ZELKinCommand::Save(stream);
    stream << d->feedrate << qint32(d->variableValues.size());
    for (const ZELKinPositionPrivate::VariableValue& entry : d->variableValues) {
        entry.variable.Save(stream);
        stream << entry.value;
    }
    d->toolPathPoint.Save(stream);
    stream << d->lateralPositionAdjustment;
}

void ZELKinPosition::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinPosition);
    ZELKinCommand::Load(stream);
    qint32 count = 0;
    stream >> d->feedrate >> count;
    d->variableValues.clear();
    for (qint32 entry = 0; entry < count && !stream.atEnd(); ++entry) {
        ZELGeoGeometryRef saved;
        double value = std::numeric_limits<double>::quiet_NaN();
        stream >> saved >> value;
        ZELKinVariable* variable = ZELGeoLinks::Resolve<ZELKinVariable>(stream, saved);
        ZELGeoLinks::ExpectResolved(variable, saved);
        d->StoreValue(variable, value);
    }
    d->toolPathPoint.Load(stream);
    stream >> d->lateralPositionAdjustment;
}
