#include "zelkinsolution.h"
#include "zelkinsolution_p.h"

#include "zelkinmachine.h"
#include "zelkinposition.h"
#include "zelkinprogram.h"
#include "zelkinvariable.h"

#include <cmath>
#include <limits>
#include <utility>

namespace {

// Two values closer than this are the same position of an axis, and a
// smaller travel is no change at all.
constexpr double kValueTolerance = 0.001;

// The value `solution` gives `variable` when compared componentwise: a
// variable it does not define counts as 0.0.
double ValueOrZero(const ZELKinSolutionPrivate& solution, const ZELKinVariable* variable)
{
    const ZELKinSolutionPrivate::Value* match = solution.Find(variable);
    return match ? match->value : 0.0;
}

// The machine of the program that `position` belongs to, if there is one.
ZELKinMachine* MachineOf(const ZELKinPosition* position)
{
    const ZELKinScript* script = position ? position->GetScript() : nullptr;
    const ZELKinProgram* program = script ? script->GetProgram() : nullptr;
    return program ? program->GetMachine() : nullptr;
}

// A fresh solution built through SetVariableValue, as the scalar-first
// operators want it: no TRAORI flag, and a NaN result drops its variable.
template <typename Operation>
ZELKinSolution Rebuilt(const ZELKinSolution& solution, Operation operation)
{
    ZELKinSolution result;
    for (ZELKinVariable* variable : solution.GetDefinedVariables())
        result.SetVariableValue(variable, operation(solution.GetVariableValue(variable)));
    return result;
}

} // namespace

ZELKinSolutionPrivate* ZELKinSolutionPrivate::SharedEmpty()
{
    // The extra reference keeps the count above zero for good.
    static ZELKinSolutionPrivate* const empty = [] {
        auto* body = new ZELKinSolutionPrivate;
        body->ref.ref();
        return body;
    }();
    return empty;
}

const ZELKinSolutionPrivate::Value* ZELKinSolutionPrivate::Find(const ZELKinVariable* variable) const
{
    for (const Value& entry : values) {
        if (entry.variable == variable)
            return &entry;
    }
    return nullptr;
}

ZELKinSolutionPrivate::Value* ZELKinSolutionPrivate::Find(const ZELKinVariable* variable)
{
    return const_cast<Value*>(std::as_const(*this).Find(variable));
}

void ZELKinSolutionPrivate::Set(ZELKinVariable* variable, double value)
{
    if (Value* match = Find(variable))
        match->value = value;
    else
        values.append(Value{variable, value});
}

void ZELKinSolutionPrivate::Remove(const ZELKinVariable* variable)
{
    if (const Value* match = Find(variable))
        values.remove(match - values.constData());
}

ZELKinSolution::ZELKinSolution()
    : d_ptr(ZELKinSolutionPrivate::SharedEmpty())
{
}

ZELKinSolution::ZELKinSolution(ZELKinPosition* position)
    : ZELKinSolution()
{
    const ZELKinMachine* machine = MachineOf(position);
    if (!machine)
        return;
    for (ZELKinVariable* variable : machine->GetVariables()) {
        if (position->IsVariableDefined(variable))
            SetVariableValue(variable, position->GetVariableValue(variable));
    }
}

ZELKinSolution::ZELKinSolution(const ZELKinSolution& other) = default;

ZELKinSolution& ZELKinSolution::operator=(const ZELKinSolution& other) = default;

ZELKinSolution::~ZELKinSolution() = default;

double ZELKinSolution::GetVariableValue(ZELKinVariable* variable) const
{
    Q_D(const ZELKinSolution);
    const ZELKinSolutionPrivate::Value* match = d->Find(variable);
    return match ? match->value : std::numeric_limits<double>::quiet_NaN();
}

void ZELKinSolution::SetVariableValue(ZELKinVariable* variable, double value)
{
    if (!variable)
        return;
    d_ptr.detach();
    Q_D(ZELKinSolution);
    if (std::isnan(value))
        d->Remove(variable);
    else
        d->Set(variable, value);
}

bool ZELKinSolution::IsDefined(ZELKinVariable* variable) const
{
    Q_D(const ZELKinSolution);
    return d->Find(variable) != nullptr;
}

QList<ZELKinVariable*> ZELKinSolution::GetDefinedVariables() const
{
    Q_D(const ZELKinSolution);
    QList<ZELKinVariable*> variables;
    variables.reserve(d->values.size());
    for (const ZELKinSolutionPrivate::Value& entry : d->values)
        variables.append(entry.variable);
    return variables;
}

bool ZELKinSolution::IsComplete() const
{
    Q_D(const ZELKinSolution);
    if (d->values.isEmpty())
        return false;
    const ZELKinMachine* machine = d->values.first().variable->GetMachine();
    if (!machine)
        return false;
    for (const ZELKinVariable* variable : machine->GetVariables()) {
        if (!d->Find(variable))
            return false;
    }
    return true;
}

bool ZELKinSolution::IsInfinite() const
{
    Q_D(const ZELKinSolution);
    return d->values.isEmpty();
}

bool ZELKinSolution::IsTraori() const
{
    Q_D(const ZELKinSolution);
    return d->traori;
}

void ZELKinSolution::SetTraori(bool traori)
{
    d_ptr.detach();
    Q_D(ZELKinSolution);
    d->traori = traori;
}

void ZELKinSolution::Apply(ZELKinPosition* position) const
{
    Q_D(const ZELKinSolution);
    if (!position)
        return;
    // Room for every axis of the machine: posting adds the ones that
    // solving leaves out.
    const ZELKinMachine* machine = MachineOf(position);
    position->ReserveVariableValues(int(std::max(machine ? machine->GetVariables().size() : 0, d->values.size())));
    for (const ZELKinSolutionPrivate::Value& entry : d->values)
        position->SetVariableValue(entry.variable, entry.value);
}

ZELKinVariable* ZELKinSolution::GetMostSignificantChange(const ZELKinSolution& other) const
{
    Q_D(const ZELKinSolution);
    if (!IsComplete() || !other.IsComplete())
        return nullptr;
    ZELKinVariable* best = nullptr;
    double bestMeasure = std::numeric_limits<double>::quiet_NaN();
    for (const ZELKinSolutionPrivate::Value& entry : d->values) {
        double measure = std::abs(entry.value - other.GetVariableValue(entry.variable));
        if (measure < kValueTolerance)
            continue;
        // A bounded axis that moves at all outranks every endless one: its
        // travel is measured against its range, an endless axis only
        // against the other endless axes in raw units.
        const bool bounded = !entry.variable->IsInfinite();
        const bool bestIsBounded = best && !best->IsInfinite();
        if (bounded) {
            measure /= entry.variable->GetMaximum() - entry.variable->GetMinimum();
            if (!best || !bestIsBounded || measure > bestMeasure) {
                best = entry.variable;
                bestMeasure = measure;
            }
        } else if (!best || (!bestIsBounded && measure > bestMeasure)) {
            best = entry.variable;
            bestMeasure = measure;
        }
    }
    return best;
}

ZELKinSolution ZELKinSolution::operator+(const ZELKinSolution& other) const
{
    ZELKinSolution sum(*this);
    sum += other;
    return sum;
}

ZELKinSolution ZELKinSolution::operator-(const ZELKinSolution& other) const
{
    ZELKinSolution difference(*this);
    difference.d_ptr.detach();
    difference.d_func()->Combine(*other.d_func(), [](double value, double subtrahend) { return value - subtrahend; });
    return difference;
}

ZELKinSolution& ZELKinSolution::operator+=(const ZELKinSolution& other)
{
    // Keep `other` alive and unchanged when it is this very solution.
    const ZELKinSolution addend(other);
    d_ptr.detach();
    Q_D(ZELKinSolution);
    d->Combine(*addend.d_func(), [](double value, double summand) { return value + summand; });
    return *this;
}

ZELKinSolution ZELKinSolution::operator*(double factor) const
{
    ZELKinSolution product(*this);
    product *= factor;
    return product;
}

ZELKinSolution& ZELKinSolution::operator*=(double factor)
{
    d_ptr.detach();
    Q_D(ZELKinSolution);
    d->Transform([factor](double value) { return value * factor; });
    return *this;
}

ZELKinSolution ZELKinSolution::operator/(double divisor) const
{
    ZELKinSolution quotient(*this);
    quotient.d_ptr.detach();
    quotient.d_func()->Transform([divisor](double value) { return value / divisor; });
    return quotient;
}

bool ZELKinSolution::operator==(const ZELKinSolution& other) const
{
    Q_D(const ZELKinSolution);
    const ZELKinSolutionPrivate* o = other.d_func();
    if (d->values.size() != o->values.size())
        return false;
    // With as many variables on each side, finding each of ours in `other`
    // means the two sets are the same.
    for (const ZELKinSolutionPrivate::Value& entry : d->values) {
        const ZELKinSolutionPrivate::Value* match = o->Find(entry.variable);
        if (!match || !(std::abs(entry.value - match->value) <= kValueTolerance))
            return false;
    }
    return true;
}

bool ZELKinSolution::operator!=(const ZELKinSolution& other) const
{
    return !(*this == other);
}

bool ZELKinSolution::operator<(const ZELKinSolution& other) const
{
    Q_D(const ZELKinSolution);
    for (const ZELKinSolutionPrivate::Value& entry : d->values) {
        if (entry.value > ValueOrZero(*other.d_func(), entry.variable))
            return false;
    }
    return true;
}

bool ZELKinSolution::operator>(const ZELKinSolution& other) const
{
    Q_D(const ZELKinSolution);
    for (const ZELKinSolutionPrivate::Value& entry : d->values) {
        if (ValueOrZero(*other.d_func(), entry.variable) > entry.value)
            return false;
    }
    return true;
}

ZELKinSolution operator*(double factor, const ZELKinSolution& solution)
{
    return Rebuilt(solution, [factor](double value) { return value * factor; });
}

ZELKinSolution operator/(double divisor, const ZELKinSolution& solution)
{
    return Rebuilt(solution, [divisor](double value) { return value / divisor; });
}
