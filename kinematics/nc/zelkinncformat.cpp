#include "zelkinncformat_p.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

namespace {

constexpr int kSignificantDigits = 6;
// From 2^53 up, every double is an even integer.
constexpr double kFirstEvenOnlyDouble = 9007199254740992.0;
// Below 2^52 a double is exact to half a unit or better.
constexpr double kFirstWholeUlpDouble = 4503599627370496.0;
// The largest power of ten that a double holds exactly.
constexpr int kLargestExactPowerOfTen = 22;
static_assert(ZELKinNCFormat::MaximumDecimals <= kLargestExactPowerOfTen);
// The integer digits of the largest double.
constexpr int kLargestIntegerDigits = 309;

// The power of ten of the first digit of the smallest subnormal double,
// 4.94066e-324.
constexpr int kSmallestExponent = -324;

// A sign, a carry, the integer digits, a point and the decimals with the
// digit of a tie.
static_assert(ZELKinNCFormat::BufferSize >= 1 + 1 + kLargestIntegerDigits + 1 + ZELKinNCFormat::MaximumDecimals + 1);
// A sign, "0.", the zeros after the point and six digits.
static_assert(ZELKinNCFormat::BufferSize >= 1 + 2 + (-kSmallestExponent - 1) + kSignificantDigits);

// The six significant digits of a value and the power of ten of the first.
struct Significand
{
    char digits[kSignificantDigits];
    int exponent;
};

char* CopyText(char* out, const char* text)
{
    const std::size_t length = std::strlen(text);
    std::memcpy(out, text, length);
    return out + length;
}

// 10^exponent for an exponent from 0 to kLargestExactPowerOfTen, exact.
double PowerOfTen(int exponent)
{
    static constexpr double kPowers[kLargestExactPowerOfTen + 1] = {
        1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    return kPowers[exponent];
}

/*
    `magnitude` x 10^decimals rounded to a whole number, a tie up, exactly:
    the product is held as the rounded one plus its exact error (by a fused
    multiply-add), and the error decides where the rounded product is
    short of a half. Empty when the product reaches 2^52, where a double no
    longer resolves halves.
*/
std::optional<std::uint64_t> ScaledAndRounded(double magnitude, int decimals)
{
    const double scale = PowerOfTen(decimals);
    const double product = magnitude * scale;
    if (!(product < kFirstWholeUlpDouble))
        return std::nullopt;
    const double error = std::fma(magnitude, scale, -product);
    // The product is not negative: truncating is flooring.
    const double whole = double(std::uint64_t(product));
    // Exact: both are multiples of the product's unit, below 1 apart.
    const double aboveHalf = (product - whole) - 0.5;
    // The sign of an exact sum survives its rounding.
    const double fromHalf = aboveHalf + error;
    return static_cast<std::uint64_t>(whole) + (fromHalf >= 0.0 ? 1U : 0U);
}

// The number of decimal digits of `value`, below 10^19; 1 for 0.
int DigitCount(std::uint64_t value)
{
    int count = 1;
    for (std::uint64_t power = 10; value >= power; power *= 10)
        ++count;
    return count;
}

// Writes `scaled` / 10^decimals in plain notation, at least one digit
// before the point, from its last digit backwards.
char* WriteScaled(char* out, std::uint64_t scaled, int decimals)
{
    const int integerDigits = std::max(DigitCount(scaled) - decimals, 1);
    char* const end = out + integerDigits + (decimals > 0 ? 1 + decimals : 0);
    char* digit = end;
    for (int i = 0; i < decimals; ++i, scaled /= 10)
        *--digit = char('0' + scaled % 10);
    if (decimals > 0)
        *--digit = '.';
    for (int i = 0; i < integerDigits; ++i, scaled /= 10)
        *--digit = char('0' + scaled % 10);
    return end;
}

/*
    Whether `magnitude` lies exactly halfway between two multiples of
    10^-decimals (of 10^|decimals| for negative decimals): the only values
    that std::to_chars, which rounds such a tie to even, and Qt, which
    rounds it away from zero, write differently.
*/
bool IsTie(double magnitude, int decimals)
{
    if (decimals >= 0) {
        // magnitude x 10^d is a half integer exactly when magnitude x 2^(d+1)
        // is an odd integer, 5^d being odd.
        const double scaled = std::ldexp(magnitude, decimals + 1);
        if (!(scaled < kFirstEvenOnlyDouble))
            return false;
        const auto whole = static_cast<std::int64_t>(scaled);
        return static_cast<double>(whole) == scaled && (whole & 1) != 0;
    }
    // Half of 10^q is 5^q x 2^(q-1): beyond 10^22, 5^q no longer divides a
    // 53-bit significand.
    if (-decimals > kLargestExactPowerOfTen)
        return false;
    const double unit = PowerOfTen(-decimals);
    return std::fmod(magnitude, unit) == unit / 2.0;
}

// Adds one unit in the last of the digits in [first, last), stepping over a
// point; returns whether the carry runs out past the first digit.
bool IncrementDigits(char* first, char* last)
{
    for (char* digit = last; digit != first;) {
        --digit;
        if (*digit == '.')
            continue;
        if (*digit != '9') {
            ++*digit;
            return false;
        }
        *digit = '0';
    }
    return true;
}

// "nan", "inf" or "-inf" into `out`; null for a finite value.
char* WriteNonFinite(char* out, double value)
{
    if (std::isnan(value))
        return CopyText(out, "nan");
    if (std::isinf(value))
        return CopyText(out, value < 0 ? "-inf" : "inf");
    return nullptr;
}

// Reads "d.ddddd...e+XX" as written by std::to_chars in scientific notation:
// its first six digits and its exponent.
Significand ReadScientific(const char* first, const char* last)
{
    Significand significand{};
    significand.digits[0] = first[0];
    std::copy(first + 2, first + 1 + kSignificantDigits, significand.digits + 1);
    const char* exponent = std::find(first, last, 'e') + 1;
    if (*exponent == '+')
        ++exponent;
    std::from_chars(exponent, last, significand.exponent);
    return significand;
}

// The positive, finite, non-zero `magnitude` rounded to six significant
// digits, a tie away from zero.
Significand SixSignificantDigits(double magnitude)
{
    char text[32];
    const char* end = std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific,
                                    kSignificantDigits - 1)
                          .ptr;
    Significand significand = ReadScientific(text, end);
    // A tie whose rounding carried into a new power of ten rounded up
    // already, its digits being all nines; every other one is found here.
    if (IsTie(magnitude, kSignificantDigits - 1 - significand.exponent)) {
        // The seventh digit, exactly a 5, is dropped and the rest rounded up.
        end = std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific, kSignificantDigits)
                  .ptr;
        significand = ReadScientific(text, end);
        if (IncrementDigits(significand.digits, significand.digits + kSignificantDigits)) {
            significand.digits[0] = '1';
            ++significand.exponent;
        }
    }
    return significand;
}

// The six digits in plain notation, without trailing zeros, and without
// the point when no decimal is left: a controller would read the "e" of an
// exponent as a word of its own.
char* WritePlain(char* out, const Significand& significand)
{
    const char* digits = significand.digits;
    const int exponent = significand.exponent;
    int count = kSignificantDigits;
    while (count > 1 && digits[count - 1] == '0')
        --count;
    if (exponent < 0) {
        *out++ = '0';
        *out++ = '.';
        out = std::fill_n(out, -exponent - 1, '0');
        return std::copy(digits, digits + count, out);
    }
    const int whole = exponent + 1;
    for (int i = 0; i < whole; ++i)
        *out++ = i < count ? digits[i] : '0';
    if (count > whole) {
        *out++ = '.';
        out = std::copy(digits + whole, digits + count, out);
    }
    return out;
}

} // namespace

int ZELKinNCFormat::WriteFixed(char* buffer, double value, int decimals)
{
    if (const char* end = WriteNonFinite(buffer, value))
        return int(end - buffer);
    char* out = buffer;
    if (value < 0)
        *out++ = '-';
    const double magnitude = std::abs(value);
    // Coordinates, feeds and angles take the whole-number way; huge values
    // and many decimals take std::to_chars, which writes the exact digits
    // but rounds a tie to even.
    if (const std::optional<std::uint64_t> scaled = ScaledAndRounded(magnitude, decimals))
        return int(WriteScaled(out, *scaled, decimals) - buffer);
    char* const last = buffer + BufferSize;
    if (!IsTie(magnitude, decimals))
        return int(std::to_chars(out, last, magnitude, std::chars_format::fixed, decimals).ptr - buffer);
    // The exact value has one decimal more, a 5: it is dropped (with the
    // point when no decimals are asked) and the rest rounded up, with room
    // left in front for a carry.
    char* first = out + 1;
    char* end = std::to_chars(first, last, magnitude, std::chars_format::fixed, decimals + 1).ptr - 1;
    if (decimals == 0)
        --end;
    if (IncrementDigits(first, end))
        *--first = '1';
    std::memmove(out, first, std::size_t(end - first));
    return int(out + (end - first) - buffer);
}

int ZELKinNCFormat::WriteGeneral(char* buffer, double value)
{
    if (const char* end = WriteNonFinite(buffer, value))
        return int(end - buffer);
    if (value == 0.0)
        return int(CopyText(buffer, "0") - buffer);
    char* out = buffer;
    if (value < 0)
        *out++ = '-';
    return int(WritePlain(out, SixSignificantDigits(std::abs(value))) - buffer);
}
