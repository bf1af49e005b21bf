#include "zelmathtestsupport.h"

#include <cmath>
#include <limits>

using ZELMathTest::SameBits;
using ZELMathTest::SameValue;
using ZELTest::kExact;

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(ZELMathPoint, DefaultIsTheOrigin)
{
    EXPECT_TRUE(SameValue(ZELMathPoint(0.0, 0.0, 0.0), ZELMathPoint(), kExact));
}

TEST(ZELMathPoint, ConstructorAndSettersKeepTheCoordinates)
{
    ZELMathPoint point(1.5, -2.5, 3.5);
    EXPECT_TRUE(ZELTest::SameDouble(1.5, point.GetX(), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-2.5, point.GetY(), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.5, point.GetZ(), kExact));

    point.SetX(4.0);
    point.SetY(5.0);
    point.SetZ(-6.0);
    EXPECT_TRUE(SameValue(ZELMathPoint(4.0, 5.0, -6.0), point, kExact));
}

TEST(ZELMathPoint, MovesByAVector)
{
    const ZELMathPoint point(1.0, 2.0, 3.0);
    const ZELMathVector offset(0.5, -4.0, 2.0);
    EXPECT_TRUE(SameValue(ZELMathPoint(1.5, -2.0, 5.0), point + offset, kExact));
    EXPECT_TRUE(SameValue(ZELMathPoint(0.5, 6.0, 1.0), point - offset, kExact));
}

TEST(ZELMathPoint, CompoundMovesChangeThePointAndReturnIt)
{
    ZELMathPoint point(1.0, 2.0, 3.0);
    EXPECT_TRUE(SameValue(ZELMathPoint(1.5, -2.0, 5.0), point += ZELMathVector(0.5, -4.0, 2.0), kExact));
    EXPECT_TRUE(SameValue(ZELMathPoint(0.5, -2.5, 5.0), point -= ZELMathVector(1.0, 0.5, 0.0), kExact));
    EXPECT_TRUE(SameValue(ZELMathPoint(0.5, -2.5, 5.0), point, kExact));
}

TEST(ZELMathPoint, DifferenceIsTheVectorFromTheSecondToTheFirst)
{
    const ZELMathPoint from(1.0, 2.0, 3.0);
    const ZELMathPoint to(4.0, 0.0, 3.5);
    EXPECT_TRUE(SameValue(ZELMathVector(3.0, -2.0, 0.5), to - from, kExact));
    EXPECT_TRUE(SameValue(to, from + (to - from), kExact));
}

TEST(ZELMathPoint, DistanceIsTheLengthOfTheDifferenceEitherWay)
{
    const ZELMathPoint a(1.0, 2.0, 3.0);
    const ZELMathPoint b(4.0, 6.0, 3.0);
    EXPECT_TRUE(ZELTest::SameDouble(5.0, a.GetDistanceTo(b), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(5.0, b.GetDistanceTo(a), kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, a.GetDistanceTo(a), kExact));
}

struct EqualCase
{
    const char* name;
    ZELMathPoint other;
    bool expected;
};
ZELTEST_PRINT_CASE_BY_NAME(EqualCase);

class ZELMathPointIsEqual : public ::testing::TestWithParam<EqualCase>
{
};

TEST_P(ZELMathPointIsEqual, ComparesEachCoordinateWithinTolerance)
{
    EXPECT_EQ(GetParam().expected, ZELMathPoint(1.0, 2.0, 3.0).IsEqual(GetParam().other, 0.5));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathPointIsEqual,
    ::testing::Values(EqualCase{"Same", ZELMathPoint(1.0, 2.0, 3.0), true},
                      EqualCase{"AllAtTolerance", ZELMathPoint(0.5, 2.5, 2.5), true},
                      EqualCase{"XBeyond", ZELMathPoint(0.25, 2.0, 3.0), false},
                      EqualCase{"YBeyond", ZELMathPoint(1.0, 2.75, 3.0), false},
                      EqualCase{"ZBeyond", ZELMathPoint(1.0, 2.0, 2.25), false},
                      EqualCase{"NaN", ZELMathPoint(kNaN, 2.0, 3.0), false}),
    [](const ::testing::TestParamInfo<EqualCase>& info) { return std::string(info.param.name); });

TEST(ZELMathPoint, StreamWritesXYZAsDoubles)
{
    const QByteArray bytes = ZELMathTest::Written(ZELMathPoint(1.5, -2.25, 3.0));
    EXPECT_TRUE(SameBits(std::vector<double>{1.5, -2.25, 3.0}, ZELMathTest::DoublesIn(bytes)));
}

TEST(ZELMathPoint, StreamRoundTripKeepsEveryBitIncludingNaN)
{
    const ZELMathPoint point(-0.0, kNaN, std::nextafter(1000.0, 0.0));
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathPoint>(ZELMathTest::Written(point), status);
    EXPECT_EQ(QDataStream::Ok, status);
    EXPECT_TRUE(SameBits(point, read));
}

TEST(ZELMathPoint, TruncatedStreamLeavesZeros)
{
    QByteArray bytes = ZELMathTest::Written(ZELMathPoint(1.5, -2.25, 3.0));
    bytes.chop(2 * sizeof(double));
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathPoint>(bytes, status);
    EXPECT_EQ(QDataStream::ReadPastEnd, status);
    EXPECT_TRUE(SameBits(ZELMathPoint(1.5, 0.0, 0.0), read));
}
