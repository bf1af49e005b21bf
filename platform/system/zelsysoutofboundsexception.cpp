#include "zelsysoutofboundsexception.h"

namespace {

QString BoundsMessage(const QVariant& value, const QVariant& lower, const QVariant& upper,
                      bool lowerInclusive, bool upperInclusive)
{
    return QStringLiteral("value %1 is out of bounds %2%3, %4%5")
        .arg(value.toString(), lowerInclusive ? QStringLiteral("[") : QStringLiteral("("),
             lower.toString(), upper.toString(),
             upperInclusive ? QStringLiteral("]") : QStringLiteral(")"));
}

} // namespace

ZELSysOutOfBoundsException::ZELSysOutOfBoundsException(const QVariant& value, const QVariant& lower,
                                                       const QVariant& upper, bool lowerInclusive,
                                                       bool upperInclusive)
    : ZELSysException(BoundsMessage(value, lower, upper, lowerInclusive, upperInclusive))
    , m_value(value)
    , m_lower(lower)
    , m_upper(upper)
    , m_lowerInclusive(lowerInclusive)
    , m_upperInclusive(upperInclusive)
{
}

ZELSysOutOfBoundsException::~ZELSysOutOfBoundsException() = default;

QVariant ZELSysOutOfBoundsException::GetValue() const
{
    return m_value;
}

QVariant ZELSysOutOfBoundsException::GetLowerBound() const
{
    return m_lower;
}

QVariant ZELSysOutOfBoundsException::GetUpperBound() const
{
    return m_upper;
}

bool ZELSysOutOfBoundsException::IsLowerBoundInclusive() const
{
    return m_lowerInclusive;
}

bool ZELSysOutOfBoundsException::IsUpperBoundInclusive() const
{
    return m_upperInclusive;
}
