#ifndef ZELCOMPTOWMASK_H
#define ZELCOMPTOWMASK_H

#include "zelcomposites_export.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>

class QDataStream;

/*!
    The set of tows in use on a fibre placement head.

    A mask knows how many tows the head carries (0 to MaximumTows) and which of
    them are enabled. Tows are numbered from 1, as operators and NC code count
    them: bit i of the raw value (bit 0 the least significant) is tow i + 1, so
    tow 1 is bit 0 and tow 64 is bit 63. Bits beyond the tow count are always
    clear.

    A mask built with a tow count outside 0..MaximumTows is invalid: it stands
    for a head whose tow count is unknown. Its tow count and enabled count both
    read -1, its raw value is 0, and every tow is out of its range. A machine
    relies on this to report a maximum mask that could not be built.
*/
class ZELCOMPOSITES_EXPORT ZELCompTowMask
{
public:
    //! The widest head a mask describes: one bit of a 64-bit word per tow.
    static constexpr int MaximumTows = 64;

    //! A valid mask of 0 tows.
    ZELCompTowMask() = default;
    //! A mask of `numTows` tows, all enabled when `enabled` is true and none
    //! otherwise. A count outside 0..MaximumTows gives an invalid mask.
    ZELCompTowMask(int numTows, bool enabled);

    bool IsValid() const { return m_numTows != InvalidTowCount; }
    //! The number of tows on the head; -1 for an invalid mask.
    int GetNumTows() const { return m_numTows; }
    //! The number of enabled tows; -1 for an invalid mask.
    int GetNumEnabled() const;
    //! Bit i is tow i + 1; 0 for an invalid mask.
    quint64 GetRawValue() const { return m_bits; }

    //! Whether tow `tow` (counted from 1) is enabled.
    //! Throws ZELSysOutOfBoundsException(tow, 1, GetNumTows(), true, true) when
    //! `tow` is outside 1..GetNumTows(), which is always the case on an invalid mask.
    bool IsTowEnabled(int tow) const;
    //! Enables or disables tow `tow` (counted from 1).
    //! Throws as IsTowEnabled() does, leaving the mask unchanged.
    void SetTowEnabled(int tow, bool enabled);

    //! The raw value as upper-case hexadecimal without prefix, zero-padded to
    //! one digit per four tows (rounded up, at least one digit), so that masks
    //! of one head all read with the same width: 16 tows all enabled give
    //! "FFFF", 12 tows with tow 1 give "001", 0 tows give "0".
    //! An invalid mask gives an empty string.
    QString GetHexadecimalString() const;
    //! The text of GetHexadecimalString() as Latin-1 bytes.
    QByteArray GetString() const;
    //! Sets the enabled tows from hexadecimal text; the tow count is kept.
    //! Accepted besides the form GetString() writes: lower case, a leading "0x"
    //! or "0X", surrounding white space, and any number of digits as long as
    //! the value fits in 64 bits.
    //! Throws ZELSysException "tow mask text '<text>' is not hexadecimal" for
    //! other text, and "tow mask text '<text>' enables tows beyond tow <count>"
    //! when a valid mask would get a tow beyond its count; <text> is quoted as
    //! given. On an invalid mask good text is accepted and the mask stays
    //! invalid, since with no tow count there is nothing to set.
    //! On a throw the mask is unchanged.
    void SetString(const QByteArray& text);

    //! Set operations. The result keeps the tow count of the left operand, and
    //! tows of the right operand beyond that count are dropped. When either
    //! operand is invalid, so is the result.
    //! Union: the tows enabled in either mask.
    ZELCompTowMask operator|(const ZELCompTowMask& other) const;
    ZELCompTowMask& operator|=(const ZELCompTowMask& other);
    //! Intersection: the tows enabled in both masks.
    ZELCompTowMask operator&(const ZELCompTowMask& other) const;
    ZELCompTowMask& operator&=(const ZELCompTowMask& other);
    //! Difference: the tows enabled in this mask and not in the other.
    ZELCompTowMask operator-(const ZELCompTowMask& other) const;
    ZELCompTowMask& operator-=(const ZELCompTowMask& other);

    //! A mask of `numTows` tows with only `tow` enabled.
    //! A count outside 0..MaximumTows gives an invalid mask, whatever the tow.
    //! Throws ZELSysOutOfBoundsException(tow, 1, numTows, true, true) when
    //! `tow` is outside 1..numTows for a valid count.
    static ZELCompTowMask GetSingleTowMask(int numTows, int tow);

    //! Equal masks have the same validity, tow count and enabled tows.
    bool operator==(const ZELCompTowMask& other) const
    {
        return m_numTows == other.m_numTows && m_bits == other.m_bits;
    }
    bool operator!=(const ZELCompTowMask& other) const { return !(*this == other); }

private:
    static constexpr int InvalidTowCount = -1;

    //! A mask of `numTows` tows (invalid outside 0..MaximumTows) with the bits
    //! of `bits` that lie within the count.
    static ZELCompTowMask FromRawValue(int numTows, quint64 bits);
    void CheckTow(int tow) const;
    ZELCompTowMask& AssignCombination(const ZELCompTowMask& other, quint64 bits);

    friend ZELCOMPOSITES_EXPORT QDataStream& operator>>(QDataStream& stream, ZELCompTowMask& mask);

    int m_numTows = 0;
    quint64 m_bits = 0;
};

//! Stream form: the tow count as qint32 (-1 for an invalid mask), then the raw
//! value as quint64.
ZELCOMPOSITES_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELCompTowMask& mask);
//! Reads the stream form without trusting it: a tow count outside
//! 0..MaximumTows gives an invalid mask, bits beyond a valid count are dropped,
//! and a read that fails (truncated data, say) gives an invalid mask.
ZELCOMPOSITES_EXPORT QDataStream& operator>>(QDataStream& stream, ZELCompTowMask& mask);

Q_DECLARE_METATYPE(ZELCompTowMask)

#endif // ZELCOMPTOWMASK_H
