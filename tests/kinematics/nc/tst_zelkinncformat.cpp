// The number formats of NC text.

#include <zelkinncformat_p.h>

#include <zeltestsupport.h>

#include <QTextStream>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

struct FormatCase
{
    const char* name;
    double value;
    const char* general;
    const char* fixedFour;
};
ZELTEST_PRINT_CASE_BY_NAME(FormatCase);

class ZELKinNCFormatTest : public ::testing::TestWithParam<FormatCase>
{
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const FormatCase kFormatCases[] = {
    {"Zero", 0.0, "0", "0.0000"},
    {"Integer", 100.0, "100", "100.0000"},
    {"Half", 0.5, "0.5", "0.5000"},
    {"SixSignificantDigits", 39.37007874015748, "39.3701", "39.3701"},
    {"RoundsInTheSixthDigit", 123456.7, "123457", "123456.7000"},
    {"MillionTurnsToExponent", 1234567.0, "1.23457e+06", "1234567.0000"},
    {"SmallTurnsToExponent", 0.0000433, "4.33e-05", "0.0000"},
    {"SmallestPlain", 0.0001, "0.0001", "0.0001"},
    {"Negative", -2.5, "-2.5", "-2.5000"},
    {"FixedRoundsHalfAway", 0.00005, "5e-05", "0.0001"},
    {"NaN", std::numeric_limits<double>::quiet_NaN(), "nan", "nan"},
    {"Infinity", kInfinity, "inf", "inf"},
    {"MinusInfinity", -kInfinity, "-inf", "-inf"},
};

/*
    The number formats the writers use: the fixed notation with the
    decimals of tow lengths (2), angles, distances and tow events (3), axis
    words (4) and the retract model (6); and the general one of feeds
    (`decimals` -1).
*/
const int kWrittenFormats[] = {2, 3, 4, 6, -1};

constexpr int kGeneral = -1;

// What the fast path writes, as a string.
QString FastText(double value, int decimals)
{
    char text[ZELKinNCFormat::BufferSize];
    const int length = decimals == kGeneral ? ZELKinNCFormat::WriteGeneral(text, value)
                                            : ZELKinNCFormat::WriteFixed(text, value, decimals);
    return QString::fromLatin1(text, length);
}

// What Qt writes for the same value.
QString QtText(double value, int decimals)
{
    return decimals == kGeneral ? QString::number(value, 'g', 6) : QString::number(value, 'f', decimals);
}

std::string Describe(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

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
    {"NegativeNaNGeneral", -kNaN, kGeneral, "nan"},
    {"InfinityFixed", kInfinity, 2, "inf"},
    {"MinusInfinityFixed", -kInfinity, 6, "-inf"},
    {"MinusInfinityGeneral", -kInfinity, kGeneral, "-inf"},
    {"ZeroFixed", 0.0, 4, "0.0000"},
    {"MinusZeroFixedHasNoSign", -0.0, 4, "0.0000"},
    {"MinusZeroGeneralHasNoSign", -0.0, kGeneral, "0"},
    {"MinusZeroNoDecimals", -0.0, 0, "0"},
    {"RoundsToZeroFromBelowKeepsTheSign", -0.00001, 4, "-0.0000"},
    {"RoundsToZeroFromBelowNoDecimals", -0.4, 0, "-0"},
    {"SmallestSubnormalBelowZeroFixed", -5e-324, 6, "-0.000000"},
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
    {"GeneralTieRoundsAway", 123456.5, kGeneral, "123457"},
    {"GeneralTieCarriesToExponent", 999999.5, kGeneral, "1e+06"},
    {"GeneralTieWithOneDecimal", 12346.25, kGeneral, "12346.3"},
    {"GeneralTieWithTwoDecimals", 1234.625, kGeneral, "1234.63"},
    {"GeneralTieOfALargeValue", 1234565000.0, kGeneral, "1.23457e+09"},
    {"GeneralSmallestSubnormal", 5e-324, kGeneral, "4.94066e-324"},
    {"GeneralLargest", DBL_MAX, kGeneral, "1.79769e+308"},
    {"GeneralHuge", 1e300, kGeneral, "1e+300"},
    {"GeneralSmallestPlain", 0.0001, kGeneral, "0.0001"},
    {"GeneralLargestPlain", 999999.0, kGeneral, "999999"},
    {"GeneralTrailingZerosDropped", 1200.0, kGeneral, "1200"},
    {"GeneralNegativeExponentPlain", -0.00123, kGeneral, "-0.00123"},
    {"FixedSmallestSubnormal", 5e-324, 4, "0.0000"},
    {"FixedTieWhereTheNextDoubleIsFar", 1125899906842624.25, 1, "1125899906842624.3"},
    {"FixedLargeOddHalf", 4503599627370495.5, 0, "4503599627370496"},
    {"FixedTwoToTheSixtyFour", 18446744073709551616.0, 2, "18446744073709551616.00"},
};

} // namespace

TEST_P(ZELKinNCFormatTest, GeneralIsWhatATextStreamWritesByDefault)
{
    QString streamed;
    QTextStream(&streamed) << GetParam().value;
    EXPECT_EQ(ZELKinNCFormat::General(GetParam().value), QString::fromLatin1(GetParam().general));
    EXPECT_EQ(ZELKinNCFormat::General(GetParam().value), streamed);
}

TEST_P(ZELKinNCFormatTest, FixedWritesExactlyTheDecimalsAsked)
{
    EXPECT_EQ(ZELKinNCFormat::Fixed(GetParam().value, 4), QString::fromLatin1(GetParam().fixedFour));
}

INSTANTIATE_TEST_SUITE_P(Values, ZELKinNCFormatTest, ::testing::ValuesIn(kFormatCases));

TEST_P(ZELKinNCFormatEdgeTest, WritesTheTextOfTheRulesAsQtDoes)
{
    const EdgeCase& edge = GetParam();
    const QString expected = QString::fromLatin1(edge.expected);
    EXPECT_EQ(FastText(edge.value, edge.decimals), expected);
    EXPECT_EQ(QtText(edge.value, edge.decimals), expected);
    if (edge.decimals == kGeneral)
        EXPECT_EQ(ZELKinNCFormat::General(edge.value), expected);
    else
        EXPECT_EQ(ZELKinNCFormat::Fixed(edge.value, edge.decimals), expected);
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
    const QString hundredth = ZELKinNCFormat::Fixed(1e300, 2);
    EXPECT_EQ(hundredth.size(), 301 + 3);
    EXPECT_TRUE(hundredth.startsWith(QLatin1String("1000000000000000052504760255204420248704468581108159")));
    EXPECT_TRUE(hundredth.endsWith(QLatin1String("196386865459400540160.00")));
    EXPECT_EQ(hundredth, QString::number(1e300, 'f', 2));

    // 2^1024 - 2^971, 309 digits.
    const QString largest = ZELKinNCFormat::Fixed(-DBL_MAX, 6);
    EXPECT_EQ(largest.size(), 1 + 309 + 7);
    EXPECT_TRUE(largest.startsWith(QLatin1String("-17976931348623157081452742373170435679807056752584499")));
    EXPECT_TRUE(largest.endsWith(QLatin1String("26184124858368.000000")));
    EXPECT_EQ(largest, QString::number(-DBL_MAX, 'f', 6));
}

TEST(ZELKinNCFormat, TheLongestTextFitsTheBuffer)
{
    char text[ZELKinNCFormat::BufferSize];
    EXPECT_EQ(ZELKinNCFormat::WriteFixed(text, -DBL_MAX, ZELKinNCFormat::MaximumDecimals),
              1 + 309 + 1 + ZELKinNCFormat::MaximumDecimals);
    EXPECT_EQ(QString::fromLatin1(text, 1 + 309 + 1 + ZELKinNCFormat::MaximumDecimals),
              QString::number(-DBL_MAX, 'f', ZELKinNCFormat::MaximumDecimals));
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
            const QString actual = FastText(value, decimals);
            if (actual != expected && ++mismatches <= 10)
                ADD_FAILURE() << Describe(value) << " with " << decimals << " decimals: \"" << actual.toStdString()
                              << "\", Qt \"" << expected.toStdString() << '"';
        }
    }
    EXPECT_EQ(mismatches, 0);
}

INSTANTIATE_TEST_SUITE_P(Values, ZELKinNCFormatRandomTest, ::testing::ValuesIn(kRandomCases));
