#ifndef ZELKINSOLUTION_P_H
#define ZELKINSOLUTION_P_H

#include "zelkinsolution.h"

#include <QSharedData>
#include <QVarLengthArray>

/*!
    The shared body of ZELKinSolution.

    The values are a small flat array in insertion order: a new variable goes
    to the end, replacing a value keeps its place and removing one closes the
    gap. A machine has a handful of axes, so a linear search beats hashing,
    and the fixed order makes every walk over the values (GetDefinedVariables,
    Apply, the tie-break of GetMostSignificantChange) repeatable.
*/
class ZELKinSolutionPrivate : public QSharedData
{
public:
    struct Value
    {
        ZELKinVariable* variable;
        double value;
    };
    // Room for the axes of a gantry with a three-joint wrist and a spare,
    // without a second allocation.
    using Values = QVarLengthArray<Value, 8>;

    //! The body of every default-constructed solution; it is never freed, so
    //! a default solution costs no allocation until it is modified.
    static ZELKinSolutionPrivate* SharedEmpty();

    const Value* Find(const ZELKinVariable* variable) const;
    Value* Find(const ZELKinVariable* variable);
    void Set(ZELKinVariable* variable, double value);
    void Remove(const ZELKinVariable* variable);

    //! Replaces each value with operation(value) as it comes out, NaN included.
    template <typename Operation>
    void Transform(Operation operation)
    {
        for (Value& entry : values)
            entry.value = operation(entry.value);
    }

    //! Replaces each value that `other` also defines with
    //! operation(value, other's value); the others stay as they are.
    template <typename Operation>
    void Combine(const ZELKinSolutionPrivate& other, Operation operation)
    {
        for (Value& entry : values) {
            if (const Value* match = other.Find(entry.variable))
                entry.value = operation(entry.value, match->value);
        }
    }

    Values values;
    bool traori = false;
};

#endif // ZELKINSOLUTION_P_H
