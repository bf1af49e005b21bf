#ifndef ZELSYSOUTOFBOUNDSEXCEPTION_H
#define ZELSYSOUTOFBOUNDSEXCEPTION_H

#include "zelsysexception.h"

#include <QVariant>

/*!
    Thrown when a value (most often an index) lies outside its allowed range.

    It carries the offending value, the two bounds and whether each bound is
    inclusive. The message reads, for an index 5 against [0, 4]:
    "value 5 is out of bounds [0, 4]"; an exclusive bound is written with a
    parenthesis instead of a bracket.
*/
class ZELSYSTEM_EXPORT ZELSysOutOfBoundsException : public ZELSysException
{
public:
    ZELSysOutOfBoundsException(const QVariant& value, const QVariant& lower, const QVariant& upper,
                               bool lowerInclusive, bool upperInclusive);
    ~ZELSysOutOfBoundsException() override;

    ZELSysOutOfBoundsException(const ZELSysOutOfBoundsException&) = default;
    ZELSysOutOfBoundsException& operator=(const ZELSysOutOfBoundsException&) = default;

    QVariant GetValue() const;
    QVariant GetLowerBound() const;
    QVariant GetUpperBound() const;
    bool IsLowerBoundInclusive() const;
    bool IsUpperBoundInclusive() const;

private:
    QVariant m_value;
    QVariant m_lower;
    QVariant m_upper;
    bool m_lowerInclusive;
    bool m_upperInclusive;
};

#endif // ZELSYSOUTOFBOUNDSEXCEPTION_H
