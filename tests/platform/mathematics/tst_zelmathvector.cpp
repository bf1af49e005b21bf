#include "zelmathtestsupport.h"

#include <cmath>
#include <limits>

using ZELMathTest::SameBits;
using ZELMathTest::SameValue;
using ZELTest::kExact;
using ZELTest::kFrame;

namespace {

const double kPi = std::acos(-1.0);
const double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(ZELMathVector, DefaultIsTheZeroVector)
{
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 0.0, 0.0), ZELMathVector(), kExact));
}

TEST(ZELMathVector, ConstructorAndSettersKeepTheComponents)
{
    ZELMathVector vector(1.5, -2.5, 3.5);
    EXPECT_TRUE(ZELTest::SameDouble(1.5, vector.GetX(), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-2.5, vector.GetY(), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.5, vector.GetZ(), kExact));

    vector.SetX(4.0);
    vector.SetY(5.0);
    vector.SetZ(-6.0);
    EXPECT_TRUE(SameValue(ZELMathVector(4.0, 5.0, -6.0), vector, kExact));
}

TEST(ZELMathVector, AddsSubtractsAndNegatesComponentWise)
{
    const ZELMathVector a(1.0, 2.0, 3.0);
    const ZELMathVector b(4.0, -5.0, 6.5);
    EXPECT_TRUE(SameValue(ZELMathVector(5.0, -3.0, 9.5), a + b, kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(-3.0, 7.0, -3.5), a - b, kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(-1.0, -2.0, -3.0), -a, kExact));
}

TEST(ZELMathVector, ScalesByAFactorOnEitherSideAndDivides)
{
    const ZELMathVector a(1.0, -2.0, 3.0);
    EXPECT_TRUE(SameValue(ZELMathVector(2.5, -5.0, 7.5), a * 2.5, kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(2.5, -5.0, 7.5), 2.5 * a, kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(0.25, -0.5, 0.75), a / 4.0, kExact));
}

TEST(ZELMathVector, CompoundAssignmentsChangeTheVectorAndReturnIt)
{
    ZELMathVector vector(1.0, 2.0, 3.0);
    EXPECT_TRUE(SameValue(ZELMathVector(2.0, 2.0, 5.0), vector += ZELMathVector(1.0, 0.0, 2.0), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(1.0, 3.0, 5.0), vector -= ZELMathVector(1.0, -1.0, 0.0), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(3.0, 9.0, 15.0), vector *= 3.0, kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(1.5, 4.5, 7.5), vector /= 2.0, kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(1.5, 4.5, 7.5), vector, kExact));
}

TEST(ZELMathVector, DotProductSumsTheComponentProducts)
{
    EXPECT_TRUE(ZELTest::SameDouble(32.0, ZELMathVector(1.0, 2.0, 3.0).Dot(ZELMathVector(4.0, 5.0, 6.0)), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, ZELMathVector(1.0, 0.0, 0.0).Dot(ZELMathVector(0.0, 7.0, 0.0)), kExact));
}

TEST(ZELMathVector, CrossProductIsRightHanded)
{
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 0.0, 1.0),
                          ZELMathVector(1.0, 0.0, 0.0).Cross(ZELMathVector(0.0, 1.0, 0.0)), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(-3.0, 6.0, -3.0),
                          ZELMathVector(1.0, 2.0, 3.0).Cross(ZELMathVector(4.0, 5.0, 6.0)), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(3.0, -6.0, 3.0),
                          ZELMathVector(4.0, 5.0, 6.0).Cross(ZELMathVector(1.0, 2.0, 3.0)), kExact));
}

TEST(ZELMathVector, LengthIsTheEuclideanNorm)
{
    EXPECT_TRUE(ZELTest::SameDouble(7.0, ZELMathVector(2.0, -3.0, 6.0).GetLength(), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, ZELMathVector().GetLength(), kExact));
}

struct NormalizeCase
{
    const char* name;
    ZELMathVector vector;
    ZELMathVector expected;
};
ZELTEST_PRINT_CASE_BY_NAME(NormalizeCase);

class ZELMathVectorNormalized : public ::testing::TestWithParam<NormalizeCase>
{
};

TEST_P(ZELMathVectorNormalized, HasUnitLengthAlongTheVectorAndZeroStaysZero)
{
    EXPECT_TRUE(SameValue(GetParam().expected, GetParam().vector.GetNormalized(), kFrame));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathVectorNormalized,
    ::testing::Values(
        NormalizeCase{"AlongZ", ZELMathVector(0.0, 0.0, 5.0), ZELMathVector(0.0, 0.0, 1.0)},
        NormalizeCase{"General", ZELMathVector(2.0, -3.0, 6.0), ZELMathVector(2.0 / 7.0, -3.0 / 7.0, 6.0 / 7.0)},
        NormalizeCase{"ShorterThanOne", ZELMathVector(-4e-3, 0.0, 3e-3), ZELMathVector(-0.8, 0.0, 0.6)},
        NormalizeCase{"ZeroStaysZero", ZELMathVector(), ZELMathVector()}));

struct AngleCase
{
    const char* name;
    ZELMathVector from;
    ZELMathVector to;
    double expected;
};
ZELTEST_PRINT_CASE_BY_NAME(AngleCase);

class ZELMathVectorAngle : public ::testing::TestWithParam<AngleCase>
{
};

// kFrame here also pins the method: an arc cosine of the dot product would be
// about 1e-12 off at 1e-4 rad.
TEST_P(ZELMathVectorAngle, IsTheUnsignedAngleToOneRoundingStep)
{
    const AngleCase& c = GetParam();
    EXPECT_TRUE(ZELTest::SameDouble(c.expected, c.from.GetAngleTo(c.to), kFrame));
    EXPECT_TRUE(ZELTest::SameDouble(c.expected, c.to.GetAngleTo(c.from), kFrame));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathVectorAngle,
    ::testing::Values(
        AngleCase{"Parallel", ZELMathVector(1.0, 2.0, 3.0), ZELMathVector(2.0, 4.0, 6.0), 0.0},
        AngleCase{"Perpendicular", ZELMathVector(0.0, 3.0, 0.0), ZELMathVector(0.0, 0.0, -0.5), kPi / 2.0},
        AngleCase{"Opposite", ZELMathVector(1.0, 1.0, 0.0), ZELMathVector(-2.0, -2.0, 0.0), kPi},
        AngleCase{"QuarterPi", ZELMathVector(5.0, 0.0, 0.0), ZELMathVector(1.0, 1.0, 0.0), kPi / 4.0},
        AngleCase{"SmallAngle", ZELMathVector(3.0, 0.0, 0.0),
                  ZELMathVector(1000.0 * std::cos(1e-4), 0.0, 1000.0 * std::sin(1e-4)), 1e-4},
        AngleCase{"NearlyOpposite", ZELMathVector(0.0, 2.0, 0.0),
                  ZELMathVector(std::sin(1e-4), -std::cos(1e-4), 0.0), kPi - 1e-4},
        AngleCase{"FromZero", ZELMathVector(), ZELMathVector(-1.0, 0.0, 0.0), 0.0},
        AngleCase{"NegativeZero", ZELMathVector(-0.0, -0.0, -0.0), ZELMathVector(1.0, 1.0, 1.0), 0.0}),
    [](const ::testing::TestParamInfo<AngleCase>& info) { return std::string(info.param.name); });

struct EqualCase
{
    const char* name;
    ZELMathVector other;
    bool expected;
};
ZELTEST_PRINT_CASE_BY_NAME(EqualCase);

class ZELMathVectorIsEqual : public ::testing::TestWithParam<EqualCase>
{
};

TEST_P(ZELMathVectorIsEqual, ComparesEachComponentWithinTolerance)
{
    EXPECT_EQ(GetParam().expected, ZELMathVector(1.0, 2.0, 3.0).IsEqual(GetParam().other, 0.5));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathVectorIsEqual,
    ::testing::Values(EqualCase{"Same", ZELMathVector(1.0, 2.0, 3.0), true},
                      EqualCase{"AllAtTolerance", ZELMathVector(1.5, 1.5, 3.5), true},
                      EqualCase{"XBeyond", ZELMathVector(1.75, 2.0, 3.0), false},
                      EqualCase{"YBeyond", ZELMathVector(1.0, 1.25, 3.0), false},
                      EqualCase{"ZBeyond", ZELMathVector(1.0, 2.0, 3.75), false},
                      EqualCase{"NaN", ZELMathVector(1.0, kNaN, 3.0), false}),
    [](const ::testing::TestParamInfo<EqualCase>& info) { return std::string(info.param.name); });

TEST(ZELMathVector, StreamWritesXYZAsDoubles)
{
    const QByteArray bytes = ZELMathTest::Written(ZELMathVector(1.5, -2.25, 3.0));
    EXPECT_TRUE(SameBits(std::vector<double>{1.5, -2.25, 3.0}, ZELMathTest::DoublesIn(bytes)));
}

TEST(ZELMathVector, StreamRoundTripKeepsEveryBitIncludingNaN)
{
    const ZELMathVector vector(kNaN, -0.0, std::nextafter(1.0, 2.0));
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathVector>(ZELMathTest::Written(vector), status);
    EXPECT_EQ(QDataStream::Ok, status);
    EXPECT_TRUE(SameBits(vector, read));
}

TEST(ZELMathVector, TruncatedStreamLeavesZeros)
{
    QByteArray bytes = ZELMathTest::Written(ZELMathVector(1.5, -2.25, 3.0));
    bytes.chop(sizeof(double));
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathVector>(bytes, status);
    EXPECT_EQ(QDataStream::ReadPastEnd, status);
    EXPECT_TRUE(SameBits(ZELMathVector(1.5, -2.25, 0.0), read));
}
