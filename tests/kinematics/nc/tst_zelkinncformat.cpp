// The number formats of NC text.

#include <zelkinncformat_p.h>

#include <zeltestsupport.h>

#include <QTextStream>

#include <limits>

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

TEST(ZELKinNCFormat, LengthsAreConvertedToInchesAndAnglesToDegrees)
{
    EXPECT_TRUE(ZELTest::SameDouble(2.0, ZELKinNCFormat::ToInches(50.8), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(-180.0, ZELKinNCFormat::ToDegrees(-3.141592653589793), ZELTest::kTight));
}
