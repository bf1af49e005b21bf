#include "zelcomptowmask.h"

#include "zelsysexception.h"
#include "zelsysoutofboundsexception.h"

#include <QDataStream>
#include <QtAlgorithms>

#include <limits>
#include <optional>
#include <utility>

namespace {

bool IsTowCountInRange(int numTows)
{
    return numTows >= 0 && numTows <= ZELCompTowMask::MaximumTows;
}

// The bits of tows 1..numTows, none for a negative (invalid) count. Shifting a
// 64-bit word by 64 is undefined, so the full head is spelled out.
quint64 TowBits(int numTows)
{
    if (numTows >= ZELCompTowMask::MaximumTows)
        return std::numeric_limits<quint64>::max();
    return numTows > 0 ? (quint64(1) << numTows) - 1 : 0;
}

quint64 TowBit(int tow)
{
    return quint64(1) << (tow - 1);
}

int HexadecimalDigitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Hand-rolled: QByteArray::toULongLong() also takes a leading sign, which has
// no place in a tow mask.
std::optional<quint64> ParseHexadecimal(const QByteArray& text)
{
    QByteArray digits = text.trimmed();
    if (digits.startsWith("0x") || digits.startsWith("0X"))
        digits.remove(0, 2);
    if (digits.isEmpty())
        return std::nullopt;

    // Leading zeros cost nothing; only a value wider than 64 bits is refused.
    constexpr quint64 largestShiftable = std::numeric_limits<quint64>::max() >> 4;
    quint64 value = 0;
    for (const char c : std::as_const(digits)) {
        const int digit = HexadecimalDigitValue(c);
        if (digit < 0 || value > largestShiftable)
            return std::nullopt;
        value = (value << 4) | quint64(digit);
    }
    return value;
}

} // namespace

ZELCompTowMask::ZELCompTowMask(int numTows, bool enabled)
    : m_numTows(IsTowCountInRange(numTows) ? numTows : InvalidTowCount)
    , m_bits(enabled ? TowBits(m_numTows) : 0)
{
}

int ZELCompTowMask::GetNumEnabled() const
{
    return IsValid() ? int(qPopulationCount(m_bits)) : InvalidTowCount;
}

bool ZELCompTowMask::IsTowEnabled(int tow) const
{
    CheckTow(tow);
    return (m_bits & TowBit(tow)) != 0;
}

void ZELCompTowMask::SetTowEnabled(int tow, bool enabled)
{
    CheckTow(tow);
    if (enabled)
        m_bits |= TowBit(tow);
    else
        m_bits &= ~TowBit(tow);
}

QString ZELCompTowMask::GetHexadecimalString() const
{
    if (!IsValid())
        return QString();
    const int width = qMax(1, (m_numTows + 3) / 4);
    return QString::number(m_bits, 16).toUpper().rightJustified(width, QLatin1Char('0'));
}

QByteArray ZELCompTowMask::GetString() const
{
    return GetHexadecimalString().toLatin1();
}

void ZELCompTowMask::SetString(const QByteArray& text)
{
    const std::optional<quint64> value = ParseHexadecimal(text);
    if (!value)
        throw ZELSysException(
            QStringLiteral("tow mask text '%1' is not hexadecimal").arg(QString::fromLatin1(text)));
    if (!IsValid())
        return;
    if ((*value & ~TowBits(m_numTows)) != 0)
        throw ZELSysException(QStringLiteral("tow mask text '%1' enables tows beyond tow %2")
                                  .arg(QString::fromLatin1(text), QString::number(m_numTows)));
    m_bits = *value;
}

ZELCompTowMask ZELCompTowMask::operator|(const ZELCompTowMask& other) const
{
    return ZELCompTowMask(*this) |= other;
}

ZELCompTowMask& ZELCompTowMask::operator|=(const ZELCompTowMask& other)
{
    return AssignCombination(other, m_bits | other.m_bits);
}

ZELCompTowMask ZELCompTowMask::operator&(const ZELCompTowMask& other) const
{
    return ZELCompTowMask(*this) &= other;
}

ZELCompTowMask& ZELCompTowMask::operator&=(const ZELCompTowMask& other)
{
    return AssignCombination(other, m_bits & other.m_bits);
}

ZELCompTowMask ZELCompTowMask::operator-(const ZELCompTowMask& other) const
{
    return ZELCompTowMask(*this) -= other;
}

ZELCompTowMask& ZELCompTowMask::operator-=(const ZELCompTowMask& other)
{
    return AssignCombination(other, m_bits & ~other.m_bits);
}

ZELCompTowMask ZELCompTowMask::GetSingleTowMask(int numTows, int tow)
{
    ZELCompTowMask mask(numTows, false);
    if (mask.IsValid())
        mask.SetTowEnabled(tow, true);
    return mask;
}

ZELCompTowMask ZELCompTowMask::FromRawValue(int numTows, quint64 bits)
{
    ZELCompTowMask mask(numTows, false);
    mask.m_bits = bits & TowBits(mask.m_numTows);
    return mask;
}

void ZELCompTowMask::CheckTow(int tow) const
{
    // An invalid mask counts -1 tows, so no tow passes.
    if (tow < 1 || tow > m_numTows)
        throw ZELSysOutOfBoundsException(tow, 1, m_numTows, true, true);
}

ZELCompTowMask& ZELCompTowMask::AssignCombination(const ZELCompTowMask& other, quint64 bits)
{
    // Only the left operand's head is being described, so its count decides
    // which tows exist; an unknown head on either side leaves nothing known.
    *this = FromRawValue(other.IsValid() ? m_numTows : InvalidTowCount, bits);
    return *this;
}

QDataStream& operator<<(QDataStream& stream, const ZELCompTowMask& mask)
{
    return stream << qint32(mask.GetNumTows()) << quint64(mask.GetRawValue());
}

QDataStream& operator>>(QDataStream& stream, ZELCompTowMask& mask)
{
    qint32 numTows = 0;
    quint64 bits = 0;
    stream >> numTows >> bits;
    const bool complete = stream.status() == QDataStream::Ok;
    mask = ZELCompTowMask::FromRawValue(complete ? numTows : ZELCompTowMask::InvalidTowCount, bits);
    return stream;
}
