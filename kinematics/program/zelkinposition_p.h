#ifndef ZELKINPOSITION_P_H
#define ZELKINPOSITION_P_H

#include "zelkinposition.h"
#include "zelkincommand_p.h"

#include "zelkincountedlink_p.h"
#include "zelkinvariable.h"

#include <zeltppoint.h>

#include <limits>
#include <vector>

class ZELKINEMATICS_EXPORT ZELKinPositionPrivate : public ZELKinCommandPrivate
{
    Q_DECLARE_PUBLIC(ZELKinPosition)

public:
    explicit ZELKinPositionPrivate(ZELKinPosition* q)
        : ZELKinCommandPrivate(q)
    {
    }

    struct VariableValue
    {
        ZELKinCountedLink<ZELKinVariable> variable;
        double value;
    };
    using VariableValues = std::vector<VariableValue>;

    //! The entry of `variable`, or end(); null finds nothing, so the entry of
    //! a destroyed variable is never found.
    VariableValues::const_iterator Find(const ZELKinVariable* variable) const;
    //! Inserts, replaces or (for NaN) removes the variable's value.
    void StoreValue(ZELKinVariable* variable, double value);
    //! Makes room for `count` values in all, so that a position's values
    //! cost one allocation of their exact size rather than a doubling
    //! vector's spare room, on each of millions of positions.
    void ReserveValues(std::size_t count) { variableValues.reserve(count); }

    static ZELKinPositionPrivate* get(ZELKinPosition* position) { return position->d_func(); }

    // A flat list, not a hash: a program holds millions of positions, each
    // with at most the machine's handful of axes. A linear scan over a few
    // entries costs less than hashing, and an empty vector allocates nothing
    // until the first value is set. Entries stay in the order their
    // variables were first set.
    VariableValues variableValues;
    double feedrate = std::numeric_limits<double>::quiet_NaN();
    double actualFeedrate = std::numeric_limits<double>::quiet_NaN();
    double uAxisOffset = std::numeric_limits<double>::quiet_NaN();
    bool traori = true;
    ZELKinCountedLink<const ZELTPPoint> toolPathPoint;
    double lateralPositionAdjustment = 0.0;
};

#endif // ZELKINPOSITION_P_H
