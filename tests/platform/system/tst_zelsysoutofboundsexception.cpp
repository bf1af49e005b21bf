#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

TEST(ZELSysOutOfBoundsException, CarriesValueBoundsAndInclusiveness)
{
    const ZELSysOutOfBoundsException exception(5, 0, 4, true, false);
    EXPECT_EQ(exception.GetValue().toInt(), 5);
    EXPECT_EQ(exception.GetLowerBound().toInt(), 0);
    EXPECT_EQ(exception.GetUpperBound().toInt(), 4);
    EXPECT_TRUE(exception.IsLowerBoundInclusive());
    EXPECT_FALSE(exception.IsUpperBoundInclusive());
}

struct BoundsMessageCase
{
    const char* name;
    QVariant value, lower, upper;
    bool lowerInclusive, upperInclusive;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(BoundsMessageCase);

class ZELSysOutOfBoundsExceptionMessage : public ::testing::TestWithParam<BoundsMessageCase>
{
};

TEST_P(ZELSysOutOfBoundsExceptionMessage, WritesBracketsForInclusiveAndParenthesesForExclusiveBounds)
{
    const BoundsMessageCase& c = GetParam();
    const ZELSysOutOfBoundsException exception(c.value, c.lower, c.upper, c.lowerInclusive, c.upperInclusive);
    EXPECT_EQ(exception.GetMessage(), QString::fromUtf8(c.message));
}

INSTANTIATE_TEST_SUITE_P(
    Bounds, ZELSysOutOfBoundsExceptionMessage,
    ::testing::Values(
        BoundsMessageCase{"BothInclusive", 5, 0, 4, true, true, "value 5 is out of bounds [0, 4]"},
        BoundsMessageCase{"UpperBelowLower", 0, 0, -1, true, true, "value 0 is out of bounds [0, -1]"},
        BoundsMessageCase{"BothExclusive", -1, 0, 3, false, false, "value -1 is out of bounds (0, 3)"},
        BoundsMessageCase{"InclusiveLowerExclusiveUpper", 70, 1, 64, true, false,
                          "value 70 is out of bounds [1, 64)"}));

TEST(ZELSysOutOfBoundsException, IsAZELSysException)
{
    EXPECT_THROW_MESSAGE(throw ZELSysOutOfBoundsException(3, 0, 2, true, true), ZELSysException,
                         "value 3 is out of bounds [0, 2]");
}
