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

TEST(ZELMathVector2D, DefaultIsTheZeroVector)
{
    EXPECT_TRUE(SameValue(ZELMathVector2D(0.0, 0.0), ZELMathVector2D(), kExact));
}

TEST(ZELMathVector2D, ConstructorAndSettersKeepTheComponents)
{
    ZELMathVector2D vector(1.5, -2.5);
    EXPECT_TRUE(ZELTest::SameDouble(1.5, vector.GetX(), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-2.5, vector.GetY(), kExact));

    vector.SetX(4.0);
    vector.SetY(-6.0);
    EXPECT_TRUE(SameValue(ZELMathVector2D(4.0, -6.0), vector, kExact));
}

TEST(ZELMathVector2D, DotProductSumsTheComponentProducts)
{
    EXPECT_TRUE(ZELTest::SameDouble(-7.0, ZELMathVector2D(1.0, 2.0).Dot(ZELMathVector2D(3.0, -5.0)), kExact));
}

TEST(ZELMathVector2D, CrossProductIsPositiveCounterClockwise)
{
    EXPECT_TRUE(ZELTest::SameDouble(1.0, ZELMathVector2D(1.0, 0.0).Cross(ZELMathVector2D(0.0, 1.0)), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-11.0, ZELMathVector2D(1.0, 2.0).Cross(ZELMathVector2D(3.0, -5.0)), kExact));
}

TEST(ZELMathVector2D, LengthIsTheEuclideanNorm)
{
    EXPECT_TRUE(ZELTest::SameDouble(5.0, ZELMathVector2D(-3.0, 4.0).GetLength(), kExact));
}

struct EqualCase
{
    const char* name;
    ZELMathVector2D other;
    bool expected;
};
ZELTEST_PRINT_CASE_BY_NAME(EqualCase);

class ZELMathVector2DIsEqual : public ::testing::TestWithParam<EqualCase>
{
};

TEST_P(ZELMathVector2DIsEqual, ComparesEachComponentWithinTolerance)
{
    EXPECT_EQ(GetParam().expected, ZELMathVector2D(1.0, 2.0).IsEqual(GetParam().other, 0.5));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathVector2DIsEqual,
    ::testing::Values(EqualCase{"Same", ZELMathVector2D(1.0, 2.0), true},
                      EqualCase{"BothAtTolerance", ZELMathVector2D(1.5, 1.5), true},
                      EqualCase{"XBeyond", ZELMathVector2D(1.75, 2.0), false},
                      EqualCase{"YBeyond", ZELMathVector2D(1.0, 1.25), false},
                      EqualCase{"NaN", ZELMathVector2D(1.0, kNaN), false}),
    [](const ::testing::TestParamInfo<EqualCase>& info) { return std::string(info.param.name); });

struct AngleCase
{
    const char* name;
    ZELMathVector2D from;
    ZELMathVector2D to;
    double expected;
};
ZELTEST_PRINT_CASE_BY_NAME(AngleCase);

class ZELMathVector2DAngle : public ::testing::TestWithParam<AngleCase>
{
};

TEST_P(ZELMathVector2DAngle, IsSignedCounterClockwiseInHalfOpenRangeToPi)
{
    const AngleCase& c = GetParam();
    EXPECT_TRUE(ZELTest::SameDouble(c.expected, c.from.GetAngleTo(c.to), kFrame));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathVector2DAngle,
    ::testing::Values(
        AngleCase{"Same", ZELMathVector2D(2.0, 1.0), ZELMathVector2D(4.0, 2.0), 0.0},
        AngleCase{"QuarterTurnCounterClockwise", ZELMathVector2D(1.0, 0.0), ZELMathVector2D(0.0, 3.0), kPi / 2.0},
        AngleCase{"QuarterTurnClockwise", ZELMathVector2D(0.0, 1.0), ZELMathVector2D(2.0, 0.0), -kPi / 2.0},
        AngleCase{"ThreeQuartersIsMinusOneQuarter", ZELMathVector2D(1.0, 1.0), ZELMathVector2D(1.0, -1.0),
                  -kPi / 2.0},
        AngleCase{"Opposite", ZELMathVector2D(1.0, 0.0), ZELMathVector2D(-1.0, 0.0), kPi},
        AngleCase{"OppositeWithNegativeZero", ZELMathVector2D(1.0, 0.0), ZELMathVector2D(-1.0, -0.0), kPi},
        AngleCase{"OppositeFromMinusX", ZELMathVector2D(-1.0, 0.0), ZELMathVector2D(1.0, 0.0), kPi},
        AngleCase{"SmallClockwise", ZELMathVector2D(1.0, 0.0), ZELMathVector2D(std::cos(1e-4), -std::sin(1e-4)),
                  -1e-4},
        AngleCase{"FromZero", ZELMathVector2D(), ZELMathVector2D(-1.0, 0.0), 0.0},
        AngleCase{"ToNegativeZero", ZELMathVector2D(1.0, 1.0), ZELMathVector2D(-0.0, -0.0), 0.0}),
    [](const ::testing::TestParamInfo<AngleCase>& info) { return std::string(info.param.name); });

TEST(ZELMathVector2D, StreamWritesXYAsDoubles)
{
    const QByteArray bytes = ZELMathTest::Written(ZELMathVector2D(1.5, -2.25));
    EXPECT_TRUE(SameBits(std::vector<double>{1.5, -2.25}, ZELMathTest::DoublesIn(bytes)));
}

TEST(ZELMathVector2D, StreamRoundTripKeepsEveryBitIncludingNaN)
{
    const ZELMathVector2D vector(kNaN, -0.0);
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathVector2D>(ZELMathTest::Written(vector), status);
    EXPECT_EQ(QDataStream::Ok, status);
    EXPECT_TRUE(SameBits(vector, read));
}

TEST(ZELMathVector2D, TruncatedStreamLeavesZeros)
{
    QByteArray bytes = ZELMathTest::Written(ZELMathVector2D(1.5, -2.25));
    bytes.chop(sizeof(double));
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathVector2D>(bytes, status);
    EXPECT_EQ(QDataStream::ReadPastEnd, status);
    EXPECT_TRUE(SameBits(ZELMathVector2D(1.5, 0.0), read));
}
