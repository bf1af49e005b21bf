// The number formats of NC text.

#include <zelkinncformat_p.h>

#include <zeltestsupport.h>

#include <QString>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/*
    The number formats the writers use: the fixed notation with the
    decimals of tow lengths (2), angles, distances and tow events (3), axis
    words (4) and the retract model (6); and the six significant digits of
    feeds (`decimals` -1).
*/
const int kWrittenFormats[] = {2, 3, 4, 6, -1};

constexpr int kGeneral = -1;

// What the format writes, as a string.
QString FormatText(double value, int decimals)
{
    char text[ZELKinNCFormat::BufferSize];
    const int length = decimals == kGeneral ? ZELKinNCFormat::WriteGeneral(text, value)
                                            : ZELKinNCFormat::WriteFixed(text, value, decimals);
    return QString::fromLatin1(text, length);
}

/*
    Qt's six significant digits of `value` (its 'e' format with five
    decimals), moved into plain notation by the rule: the point shifted by
    the exponent, trailing zeros and a trailing point dropped. Zero has no
    sign; "nan", "inf" and "-inf" as Qt writes them.
*/
QString PlainFromQt(double value)
{
    if (!std::isfinite(value))
        return QString::number(value, 'g', 6);
    if (value == 0.0)
        return QStringLiteral("0");
    const QString scientific = QString::number(std::abs(value), 'e', 5);
    const qsizetype e = scientific.indexOf(QLatin1Char('e'));
    const QString digits = scientific.left(1) + scientific.mid(2, e - 2);
    const int exponent = scientific.mid(e + 1).toInt();
    QString plain;
    if (exponent < 0)
        plain = QStringLiteral("0.") + QString(-exponent - 1, QLatin1Char('0')) + digits;
    else if (exponent + 1 >= digits.size())
        plain = digits + QString(exponent + 1 - digits.size(), QLatin1Char('0'));
    else
        plain = digits.left(exponent + 1) + QLatin1Char('.') + digits.mid(exponent + 1);
    if (plain.contains(QLatin1Char('.'))) {
        while (plain.endsWith(QLatin1Char('0')))
            plain.chop(1);
        if (plain.endsWith(QLatin1Char('.')))
            plain.chop(1);
    }
    return (value < 0 ? QStringLiteral("-") : QString()) + plain;
}

// What Qt writes for the same value: its fixed notation, or its six
// significant digits in plain notation.
QString QtText(double value, int decimals)
{
    return decimals == kGeneral ? PlainFromQt(value) : QString::number(value, 'f', decimals);
}

std::string Describe(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

// "0." and `zeros` zeros, then `digits`: a tiny value written out.
std::string TinyText(int zeros, const char* digits)
{
    return "0." + std::string(std::size_t(zeros), '0') + digits;
}

// `digits` and `zeros` zeros: a huge value written out.
std::string HugeText(const char* digits, int zeros)
{
    return digits + std::string(std::size_t(zeros), '0');
}

/*
    Six significant digits, each text written out by hand from the rule:
    the digits of the exact value rounded at the sixth, a tie away from
    zero, in plain notation without trailing zeros or a trailing point.
*/
struct GeneralCase
{
    const char* name;
    double value;
    std::string expected;
};
ZELTEST_PRINT_CASE_BY_NAME(GeneralCase);

class ZELKinNCFormatGeneralTest : public ::testing::TestWithParam<GeneralCase>
{
};

const GeneralCase kGeneralCases[] = {
    {"Zero", 0.0, "0"},
    {"MinusZeroHasNoSign", -0.0, "0"},
    {"Integer", 100.0, "100"},
    {"Half", 0.5, "0.5"},
    {"TrailingZerosOfAnIntegerStay", 1200.0, "1200"},
    {"SmallestWithoutLeadingZeros", 0.0001, "0.0001"},
    {"LargestOfSixDigits", 999999.0, "999999"},
    {"FeedOfAThousandMillimetresAMinute", 1000.0 / 25.4, "39.3701"},
    {"TinyKeepsItsSixDigitsAfterTheZeros", 4.33071e-05, "0.0000433071"},
    {"TinyFeed", 3.93701e-302, TinyText(301, "393701")},
    {"SmallestSubnormal", 5e-324, TinyText(323, "494066")},
    {"MillionIsWrittenOut", 1234567.0, "1234570"},
    {"Huge", 1e300, HugeText("1", 300)},
    {"Largest", DBL_MAX, HugeText("179769", 303)},
    {"MinusLargest", -DBL_MAX, "-" + HugeText("179769", 303)},
    {"Negative", -2.5, "-2.5"},
    {"NegativeTiny", -4.33071e-05, "-0.0000433071"},
    {"NegativeMillion", -1234567.0, "-1234570"},
    {"RoundsDownAtTheSixthDigit", 123456.4, "123456"},
    {"RoundsUpAtTheSixthDigit", 123456.7, "123457"},
    {"RoundsAtTheSixthDigitAfterThePoint", 1.2345649, "1.23456"},
    {"TieRoundsAway", 123456.5, "123457"},
    {"TieWithOneDecimal", 12346.25, "12346.3"},
    {"TieWithTwoDecimals", 1234.625, "1234.63"},
    {"TieOfALargeValue", 1234565000.0, "1234570000"},
    {"TieRoundsUpToAMillion", 999999.5, "1000000"},
    {"RoundsUpToANewDigitBeforeThePoint", 9.9999996, "10"},
    {"RoundsUpToANewDigitAfterThePoint", 0.00009999996, "0.0001"},
    {"RoundsUpToAHundredThousand", 99999.96, "100000"},
    {"NegativeRoundsUpToANewDigit", -0.99999951, "-1"},
};

} // namespace

TEST_P(ZELKinNCFormatGeneralTest, WritesSixSignificantDigitsInPlainNotation)
{
    EXPECT_EQ(FormatText(GetParam().value, kGeneral), QString::fromStdString(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Values, ZELKinNCFormatGeneralTest, ::testing::ValuesIn(kGeneralCases));

namespace {

/*
    Edge values: each with its text written out from the rules (the exact
    binary value, a tie away from zero, no sign for minus zero, a sign for
    a negative value rounded to zero), which Qt must give too.
*/
struct EdgeCase
{
    const char* name;
    double value;
    int decimals;
    const char* expected;
};
ZELTEST_PRINT_CASE_BY_NAME(EdgeCase);

class ZELKinNCFormatEdgeTest : public ::testing::TestWithParam<EdgeCase>
{
};

const EdgeCase kEdgeCases[] = {
    {"NaNFixed", kNaN, 4, "nan"},
    {"NegativeNaNFixed", -kNaN, 4, "nan"},
    {"NaNGeneral", kNaN, kGeneral, "nan"},
    {"NegativeNaNGeneral", -kNaN, kGeneral, "nan"},
    {"InfinityFixed", kInfinity, 2, "inf"},
    {"MinusInfinityFixed", -kInfinity, 6, "-inf"},
    {"InfinityGeneral", kInfinity, kGeneral, "inf"},
    {"MinusInfinityGeneral", -kInfinity, kGeneral, "-inf"},
    {"ZeroFixed", 0.0, 4, "0.0000"},
    {"HalfFixed", 0.5, 4, "0.5000"},
    {"NegativeFixed", -2.5, 4, "-2.5000"},
    {"SmallestOfFourDecimals", 0.0001, 4, "0.0001"},
    {"FixedRoundsAtTheLastDecimal", 1000.0 / 25.4, 4, "39.3701"},
    {"FixedKeepsEveryDigitBeforeThePoint", 123456.7, 4, "123456.7000"},
    {"IntegerFixed", 100.0, 4, "100.0000"},
    {"MillionFixed", 1234567.0, 4, "1234567.0000"},
    {"TinyFixedRoundsToZero", 0.0000433, 4, "0.0000"},
    {"MinusZeroFixedHasNoSign", -0.0, 4, "0.0000"},
    {"MinusZeroNoDecimals", -0.0, 0, "0"},
    {"RoundsToZeroFromBelowKeepsTheSign", -0.00001, 4, "-0.0000"},
    {"RoundsToZeroFromBelowNoDecimals", -0.4, 0, "-0"},
    {"SmallestSubnormalBelowZeroFixed", -5e-324, 6, "-0.000000"},
    {"FixedRoundsHalfAway", 0.00005, 4, "0.0001"},
    {"TieRoundsAwayTwoDecimals", 0.125, 2, "0.13"},
    {"TieRoundsAwayWhereEvenIsUp", 0.375, 2, "0.38"},
    {"NegativeTieRoundsAway", -0.125, 2, "-0.13"},
    {"TieRoundsAwayNoDecimals", 2.5, 0, "3"},
    {"HalfRoundsToOne", 0.5, 0, "1"},
    {"NegativeTieNoDecimals", -2.5, 0, "-3"},
    {"TieRoundsAwayFourDecimals", 9.03125, 4, "9.0313"},
    {"TieRoundsAwaySixDecimals", 100.0078125, 6, "100.007813"},
    {"TieCarriesIntoANewDigit", 99.5, 0, "100"},
    {"TieCarriesPastThePoint", 9.5, 0, "10"},
    {"TieThreeDecimals", 1.0625, 3, "1.063"},
    {"NotATieJustBelowHalf", 0.12499999999999999, 2, "0.12"},
    {"GeneralNegativeExponentPlain", -0.00123, kGeneral, "-0.00123"},
    {"GeneralTieCarriesToAMillion", 999999.5, kGeneral, "1000000"},
    {"FixedSmallestSubnormal", 5e-324, 4, "0.0000"},
    {"FixedTieWhereTheNextDoubleIsFar", 1125899906842624.25, 1, "1125899906842624.3"},
    {"FixedLargeOddHalf", 4503599627370495.5, 0, "4503599627370496"},
    {"FixedTwoToTheSixtyFour", 18446744073709551616.0, 2, "18446744073709551616.00"},
};

} // namespace

TEST_P(ZELKinNCFormatEdgeTest, WritesTheTextOfTheRulesAsQtDoes)
{
    const EdgeCase& edge = GetParam();
    const QString expected = QString::fromLatin1(edge.expected);
    EXPECT_EQ(FormatText(edge.value, edge.decimals), expected);
    EXPECT_EQ(QtText(edge.value, edge.decimals), expected);
}

INSTANTIATE_TEST_SUITE_P(Values, ZELKinNCFormatEdgeTest, ::testing::ValuesIn(kEdgeCases));

TEST(ZELKinNCFormat, LengthsAreConvertedToInchesAndAnglesToDegrees)
{
    EXPECT_TRUE(ZELTest::SameDouble(2.0, ZELKinNCFormat::ToInches(50.8), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(-180.0, ZELKinNCFormat::ToDegrees(-3.141592653589793), ZELTest::kTight));
}

TEST(ZELKinNCFormat, HugeValuesAreWrittenWithEveryIntegerDigit)
{
    // The double nearest 1e300 is not 1e300: its exact value has 301 digits.
    const QString hundredth = FormatText(1e300, 2);
    EXPECT_EQ(hundredth.size(), 301 + 3);
    EXPECT_TRUE(hundredth.startsWith(QLatin1String("1000000000000000052504760255204420248704468581108159")));
    EXPECT_TRUE(hundredth.endsWith(QLatin1String("196386865459400540160.00")));
    EXPECT_EQ(hundredth, QString::number(1e300, 'f', 2));

    // 2^1024 - 2^971, 309 digits.
    const QString largest = FormatText(-DBL_MAX, 6);
    EXPECT_EQ(largest.size(), 1 + 309 + 7);
    EXPECT_TRUE(largest.startsWith(QLatin1String("-17976931348623157081452742373170435679807056752584499")));
    EXPECT_TRUE(largest.endsWith(QLatin1String("26184124858368.000000")));
    EXPECT_EQ(largest, QString::number(-DBL_MAX, 'f', 6));
}

TEST(ZELKinNCFormat, TheLongestTextsFitTheBuffer)
{
    char text[ZELKinNCFormat::BufferSize];
    EXPECT_EQ(ZELKinNCFormat::WriteFixed(text, -DBL_MAX, ZELKinNCFormat::MaximumDecimals),
              1 + 309 + 1 + ZELKinNCFormat::MaximumDecimals);
    EXPECT_EQ(QString::fromLatin1(text, 1 + 309 + 1 + ZELKinNCFormat::MaximumDecimals),
              QString::number(-DBL_MAX, 'f', ZELKinNCFormat::MaximumDecimals));
    // "-0.", 323 zeros and six digits.
    EXPECT_EQ(ZELKinNCFormat::WriteGeneral(text, -5e-324), 3 + 323 + 6);
}

namespace {

/*
    One kind of random value, and how many of it are drawn; the kinds add up
    to one million values, each written in every format the writers use.
*/
struct RandomCase
{
    const char* name;
    int count;
    double (*draw)(std::mt19937_64& random, int decimals);
};
ZELTEST_PRINT_CASE_BY_NAME(RandomCase);

class ZELKinNCFormatRandomTest : public ::testing::TestWithParam<RandomCase>
{
};

double Sign(std::mt19937_64& random)
{
    return (random() & 1) != 0 ? -1.0 : 1.0;
}

double FromBits(std::uint64_t bits)
{
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Machine coordinates as the writer meets them.
double UniformWithinTenThousand(std::mt19937_64& random, int)
{
    return std::uniform_real_distribution<double>(-1e4, 1e4)(random);
}

// Any double: NaNs, infinities, subnormals (one in eight) and all.
double RandomBitPattern(std::mt19937_64& random, int)
{
    std::uint64_t bits = random();
    if (random() % 8 == 0)
        bits &= 0x800FFFFFFFFFFFFFULL;
    return FromBits(bits);
}

// An odd number of halves of the last digit of the format: an exact tie.
double TieAtTheRoundingDigit(std::mt19937_64& random, int decimals)
{
    if (decimals != kGeneral) {
        const auto odd = double(2 * (random() % (std::uint64_t(1) << 40)) + 1);
        return Sign(random) * std::ldexp(odd, -(decimals + 1));
    }
    // (m + 1/2) x 10^q with six digits in m; for q < 0 the odd 2m + 1 is
    // made a multiple of 5^-q, so that the value is a binary fraction.
    const int q = int(random() % 15) - 6;
    double fivePower = 1.0;
    for (int i = 0; i < std::abs(q); ++i)
        fivePower *= 5.0;
    if (q >= 0) {
        const auto odd = double(2 * (100000 + random() % 900000) + 1);
        return Sign(random) * std::ldexp(odd * fivePower, q - 1);
    }
    const auto low = std::uint64_t(200001.0 / fivePower) + 1;
    const auto high = std::uint64_t(1999999.0 / fivePower);
    const std::uint64_t multiple = (low + random() % (high - low + 1)) | 1;
    return Sign(random) * std::ldexp(double(multiple), q - 1);
}

// From 1e15 up to the largest double.
double Huge(std::mt19937_64& random, int)
{
    const std::uint64_t exponent = 1074 + random() % (2046 - 1074 + 1);
    return FromBits((random() & 0x800FFFFFFFFFFFFFULL) | (exponent << 52));
}

// From the smallest subnormal up to about 1e-3.
double Tiny(std::mt19937_64& random, int)
{
    const std::uint64_t exponent = random() % (1013 + 1);
    return FromBits((random() & 0x800FFFFFFFFFFFFFULL) | (exponent << 52));
}

// Zeros of both signs and values just around the rounding digit of the
// format, where a value rounds to zero or to one unit.
double AroundZeroAndOneUnit(std::mt19937_64& random, int decimals)
{
    switch (random() % 4) {
    case 0:
        return Sign(random) * 0.0;
    case 1:
        return Sign(random) * std::ldexp(double(random() % 1000), -int(random() % 40));
    default: {
        const double unit = std::pow(10.0, decimals == kGeneral ? -5 : -decimals);
        return Sign(random) * unit * std::uniform_real_distribution<double>(0.0, 2.0)(random);
    }
    }
}

// Huge values in plain notation run to hundreds of digits, which Qt takes
// long to write: there are fewer of them.
const RandomCase kRandomCases[] = {
    {"UniformWithinTenThousand", 480000, UniformWithinTenThousand},
    {"RandomBitPatterns", 50000, RandomBitPattern},
    {"TiesAtTheRoundingDigit", 250000, TieAtTheRoundingDigit},
    {"Huge", 20000, Huge},
    {"Tiny", 100000, Tiny},
    {"AroundZeroAndOneUnit", 100000, AroundZeroAndOneUnit},
};

} // namespace

TEST_P(ZELKinNCFormatRandomTest, EveryFormatWritesWhatQtWrites)
{
    std::mt19937_64 random(20240305);
    int mismatches = 0;
    for (int i = 0; i < GetParam().count; ++i) {
        for (const int decimals : kWrittenFormats) {
            const double value = GetParam().draw(random, decimals);
            const QString expected = QtText(value, decimals);
            const QString actual = FormatText(value, decimals);
            if (actual != expected && ++mismatches <= 10)
                ADD_FAILURE() << Describe(value) << " with " << decimals << " decimals: \"" << actual.toStdString()
                              << "\", Qt \"" << expected.toStdString() << '"';
        }
    }
    EXPECT_EQ(mismatches, 0);
}

INSTANTIATE_TEST_SUITE_P(Values, ZELKinNCFormatRandomTest, ::testing::ValuesIn(kRandomCases));
