#ifndef ZELKINSOLUTION_H
#define ZELKINSOLUTION_H

#include "zelkinematics_export.h"

#include <QExplicitlySharedDataPointer>
#include <QList>

class ZELKinPosition;
class ZELKinSolutionPrivate;
class ZELKinVariable;

/*!
    One configuration of a machine in joint space: a value for each machine
    variable (axis) that the solution defines, and a flag that says whether
    the linear values are given in TRAORI form (tool tip programming, where
    the control applies the wrist offset itself).

    Values are in each variable's own unit: millimetres for a linear axis,
    radians for a rotary one. A variable is defined exactly when the solution
    holds a value for it; a solution that defines no variable at all is the
    infinite solution, which solvers return when every configuration fits.

    A solution is a value type with copy-on-write sharing: copies share one
    body through an atomic reference count, and every modifying call first
    gives the solution a body of its own. Copies may therefore be read from
    several threads; one instance must not be modified from two threads at
    once. Variables are not owned.

    The defined variables keep the order in which they were first set
    (replacing a value keeps its place, removing one keeps the order of the
    rest). Every walk over them follows that order: GetDefinedVariables,
    Apply, the arithmetic, and the tie-break of GetMostSignificantChange.

    Nothing declared here throws.
*/
class ZELKINEMATICS_EXPORT ZELKinSolution
{
public:
    //! No variable defined (the infinite solution), not in TRAORI form.
    ZELKinSolution();
    //! The values that `position` defines for the variables of the machine
    //! of its program, set in the machine's variable order; not in TRAORI
    //! form. The infinite solution when the position is null or has no
    //! script, program or machine.
    explicit ZELKinSolution(ZELKinPosition* position);
    ZELKinSolution(const ZELKinSolution& other);
    ZELKinSolution& operator=(const ZELKinSolution& other);
    ~ZELKinSolution();

    //! The value of `variable`, or a quiet NaN where it is not defined.
    double GetVariableValue(ZELKinVariable* variable) const;
    //! Sets or replaces the value of `variable`. A NaN value removes the
    //! variable instead, so setting NaN and removing are one operation;
    //! removing an undefined variable does nothing. A null variable is ignored.
    void SetVariableValue(ZELKinVariable* variable, double value);
    bool IsDefined(ZELKinVariable* variable) const;
    //! The defined variables, in the order they were first set.
    QList<ZELKinVariable*> GetDefinedVariables() const;
    //! True when every variable of the machine of the first defined variable
    //! is defined. False for the infinite solution, and when that variable's
    //! machine has gone. Defined variables of other machines do not count.
    bool IsComplete() const;
    //! True when no variable is defined.
    bool IsInfinite() const;
    bool IsTraori() const;
    void SetTraori(bool traori);

    //! Writes every defined value into `position`; the position keeps its
    //! values of the other variables, and its TRAORI flag. A null position
    //! is ignored.
    void Apply(ZELKinPosition* position) const;

    /*!
        The variable whose value travels furthest, relative to its range,
        between this solution and `other`; null when either solution is not
        complete or no variable moves by 0.001 or more.

        A bounded variable is judged by its travel divided by its range and
        outranks every variable without limits, which are judged by their
        raw travel. On equal measures the variable set first wins.
    */
    ZELKinVariable* GetMostSignificantChange(const ZELKinSolution& other) const;

    //! The variables of this solution; where `other` defines one, the sum of
    //! the two values, else this solution's value. Keeps this solution's flag.
    ZELKinSolution operator+(const ZELKinSolution& other) const;
    //! As operator+, with the difference.
    ZELKinSolution operator-(const ZELKinSolution& other) const;
    //! operator+ in place; the flag is unchanged.
    ZELKinSolution& operator+=(const ZELKinSolution& other);
    //! Every value times `factor`; keeps the flag. A value that comes out
    //! NaN stays defined.
    ZELKinSolution operator*(double factor) const;
    ZELKinSolution& operator*=(double factor);
    //! Every value divided by `divisor`; keeps the flag. A value that comes
    //! out NaN stays defined.
    ZELKinSolution operator/(double divisor) const;

    //! The same variables, each value within 0.001 of the other's. The
    //! flag is not compared.
    bool operator==(const ZELKinSolution& other) const;
    bool operator!=(const ZELKinSolution& other) const;
    //! No value of this solution is greater than `other`'s value of the same
    //! variable, where `other` reads 0.0 for a variable it does not define.
    //! Variables that only `other` defines are ignored; there is no
    //! tolerance. Together with operator>, true for equal solutions.
    bool operator<(const ZELKinSolution& other) const;
    //! No value of this solution is less than `other`'s (0.0 where `other`
    //! does not define the variable), over this solution's variables.
    bool operator>(const ZELKinSolution& other) const;

private:
    QExplicitlySharedDataPointer<ZELKinSolutionPrivate> d_ptr;
    Q_DECLARE_PRIVATE(ZELKinSolution)
};

Q_DECLARE_TYPEINFO(ZELKinSolution, Q_RELOCATABLE_TYPE);

//! A fresh solution of the variables of `solution`, each value times
//! `factor`. The TRAORI flag is not carried over, and a variable whose
//! product is NaN is left out.
ZELKINEMATICS_EXPORT ZELKinSolution operator*(double factor, const ZELKinSolution& solution);
//! A fresh solution of the variables of `solution`, each value divided by
//! `divisor` (not `divisor` divided by the value). The TRAORI flag is not
//! carried over, and a variable whose quotient is NaN is left out.
ZELKINEMATICS_EXPORT ZELKinSolution operator/(double divisor, const ZELKinSolution& solution);

#endif // ZELKINSOLUTION_H
