#include "zelmathtestsupport.h"

#include "zelsysoutofboundsexception.h"

#include <cmath>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

using ZELMathTest::SameBits;
using ZELMathTest::SameValue;
using ZELTest::kExact;
using ZELTest::kFrame;

namespace {

const double kPi = std::acos(-1.0);
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// The random frames have unit directions and origins within a millimetre of
// the world origin, so every result is of order one. A component passes
// through about eight roundings (a three-term dot product, a three-term
// weighted sum, the origin subtraction and addition) of at most 1.1e-16 on
// values up to 2, and the drawn directions are orthonormal only to a few
// 1e-16: about 2e-15 at worst, which 1e5 random pairs reach (2.1e-15).
constexpr double kFrameRoundTrip = 4 * kFrame;

//! Right-handed orthonormal frames from a fixed seed, so every run sees the same ones.
class RandomFrames
{
public:
    ZELMathAxis Next()
    {
        // The rotation of a random unit quaternion (a, b, c, d); its columns are u, v, w.
        double a = m_normal(m_engine);
        double b = m_normal(m_engine);
        double c = m_normal(m_engine);
        double d = m_normal(m_engine);
        const double length = std::sqrt(a * a + b * b + c * c + d * d);
        a /= length;
        b /= length;
        c /= length;
        d /= length;
        const ZELMathVector u(1 - 2 * (c * c + d * d), 2 * (b * c + a * d), 2 * (b * d - a * c));
        const ZELMathVector v(2 * (b * c - a * d), 1 - 2 * (b * b + d * d), 2 * (c * d + a * b));
        const ZELMathVector w(2 * (b * d + a * c), 2 * (c * d - a * b), 1 - 2 * (b * b + c * c));
        const ZELMathPoint origin(m_uniform(m_engine), m_uniform(m_engine), m_uniform(m_engine));
        return ZELMathAxis(origin, u, v, w);
    }

private:
    std::mt19937_64 m_engine{20240611};
    std::normal_distribution<double> m_normal{0.0, 1.0};
    std::uniform_real_distribution<double> m_uniform{-1.0, 1.0};
};

constexpr int kRandomCases = 200;

//! Rodrigues' formula: vector turned through angle about the unit axis, right-handedly.
ZELMathVector Rotated(const ZELMathVector& vector, const ZELMathVector& unitAxis, double angle)
{
    const double cosine = std::cos(angle);
    return vector * cosine + unitAxis.Cross(vector) * std::sin(angle)
        + unitAxis * (unitAxis.Dot(vector) * (1.0 - cosine));
}

using Direction = ZELMathVector (ZELMathAxis::*)() const;

//! Plane number k of a frame: its normal is axis number k, and (first, second) its basis.
struct NumberedPlane
{
    int number;
    Direction normal;
    Direction first;
    Direction second;
};

const NumberedPlane kPlanes[] = {
    {1, &ZELMathAxis::GetWDirection, &ZELMathAxis::GetUDirection, &ZELMathAxis::GetVDirection},
    {2, &ZELMathAxis::GetUDirection, &ZELMathAxis::GetVDirection, &ZELMathAxis::GetWDirection},
    {3, &ZELMathAxis::GetVDirection, &ZELMathAxis::GetWDirection, &ZELMathAxis::GetUDirection},
};

void PrintTo(const NumberedPlane& plane, std::ostream* out)
{
    *out << "Plane" << plane.number;
}

//! A plane and a tilt angle as one word, such as Plane2_Angle-1.2.
void PrintTo(const std::tuple<NumberedPlane, double>& planeAndAngle, std::ostream* out)
{
    PrintTo(std::get<0>(planeAndAngle), out);
    *out << "_Angle" << std::get<1>(planeAndAngle);
}

std::string PlaneName(const ::testing::TestParamInfo<NumberedPlane>& info)
{
    return "Number" + std::to_string(info.param.number);
}

} // namespace

TEST(ZELMathAxis, DefaultIsTheWorldFrame)
{
    const ZELMathAxis frame;
    EXPECT_TRUE(SameValue(ZELMathPoint(), frame.GetOrigin(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(1.0, 0.0, 0.0), frame.GetUDirection(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 1.0, 0.0), frame.GetVDirection(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 0.0, 1.0), frame.GetWDirection(), kExact));
}

TEST(ZELMathAxis, ConstructorKeepsTheOriginAndNormalisesTheDirections)
{
    const ZELMathAxis frame(ZELMathPoint(1.0, 2.0, 3.0), ZELMathVector(0.0, 2.0, 0.0), ZELMathVector(-3.0, 0.0, 0.0),
                            ZELMathVector(0.0, 0.0, 0.5));
    EXPECT_TRUE(SameValue(ZELMathPoint(1.0, 2.0, 3.0), frame.GetOrigin(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 1.0, 0.0), frame.GetUDirection(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(-1.0, 0.0, 0.0), frame.GetVDirection(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 0.0, 1.0), frame.GetWDirection(), kExact));
}

TEST(ZELMathAxis, SetDirectionsNormalisesButDoesNotOrthogonalise)
{
    ZELMathAxis frame;
    frame.SetDirections(ZELMathVector(3.0, 4.0, 0.0), ZELMathVector(0.0, 5.0, 0.0), ZELMathVector());
    EXPECT_TRUE(SameValue(ZELMathVector(0.6, 0.8, 0.0), frame.GetUDirection(), kFrame));
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 1.0, 0.0), frame.GetVDirection(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(), frame.GetWDirection(), kExact));
}

TEST(ZELMathAxis, SetOriginMovesOnlyTheOrigin)
{
    ZELMathAxis frame;
    frame.SetOrigin(ZELMathPoint(-1.0, 0.5, 2.0));
    EXPECT_TRUE(SameValue(ZELMathAxis(ZELMathPoint(-1.0, 0.5, 2.0), ZELMathVector(1.0, 0.0, 0.0),
                                      ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(0.0, 0.0, 1.0)),
                          frame, kExact));
}

// A parent turned a quarter about world z and moved to (1, 2, 3), and a child
// given in it; every number is exact, so the results must be too.
class ZELMathAxisQuarterTurnedParent : public ::testing::Test
{
protected:
    const ZELMathAxis parent{ZELMathPoint(1.0, 2.0, 3.0), ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(-1.0, 0.0, 0.0),
                             ZELMathVector(0.0, 0.0, 1.0)};
    const ZELMathAxis local{ZELMathPoint(1.0, 0.0, 2.0), ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(1.0, 0.0, 0.0),
                            ZELMathVector(0.0, 1.0, 0.0)};
    const ZELMathAxis world{ZELMathPoint(1.0, 3.0, 5.0), ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(0.0, 1.0, 0.0),
                            ZELMathVector(-1.0, 0.0, 0.0)};
};

TEST_F(ZELMathAxisQuarterTurnedParent, ProductCarriesALocalFrameOutToWorld)
{
    EXPECT_TRUE(SameValue(world, parent * local, kExact));
}

TEST_F(ZELMathAxisQuarterTurnedParent, QuotientExpressesAWorldFrameInLocal)
{
    EXPECT_TRUE(SameValue(local, world / parent, kExact));
}

TEST_F(ZELMathAxisQuarterTurnedParent, PointsAreTurnedAndMoved)
{
    EXPECT_TRUE(SameValue(ZELMathPoint(1.0, 3.0, 5.0), parent * ZELMathPoint(1.0, 0.0, 2.0), kExact));
    EXPECT_TRUE(SameValue(ZELMathPoint(1.0, 0.0, 2.0), ZELMathPoint(1.0, 3.0, 5.0) / parent, kExact));
}

TEST_F(ZELMathAxisQuarterTurnedParent, VectorsAreOnlyTurned)
{
    EXPECT_TRUE(SameValue(ZELMathVector(0.0, 1.0, 2.0), parent * ZELMathVector(1.0, 0.0, 2.0), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(1.0, 0.0, 2.0), ZELMathVector(0.0, 1.0, 2.0) / parent, kExact));
}

TEST(ZELMathAxis, ProductOfQuotientGivesTheWorldFrameBack)
{
    RandomFrames frames;
    for (int i = 0; i < kRandomCases; ++i) {
        const ZELMathAxis parent = frames.Next();
        const ZELMathAxis world = frames.Next();
        SCOPED_TRACE(i);
        EXPECT_TRUE(SameValue(world, parent * (world / parent), kFrameRoundTrip));
    }
}

TEST(ZELMathAxis, QuotientOfProductGivesTheLocalFrameBack)
{
    RandomFrames frames;
    for (int i = 0; i < kRandomCases; ++i) {
        const ZELMathAxis parent = frames.Next();
        const ZELMathAxis local = frames.Next();
        SCOPED_TRACE(i);
        EXPECT_TRUE(SameValue(local, (parent * local) / parent, kFrameRoundTrip));
    }
}

TEST(ZELMathAxis, PointsAndVectorsRoundTripThroughAFrame)
{
    RandomFrames frames;
    for (int i = 0; i < kRandomCases; ++i) {
        const ZELMathAxis frame = frames.Next();
        const ZELMathPoint point = frames.Next().GetOrigin();
        const ZELMathVector vector = point - ZELMathPoint();
        SCOPED_TRACE(i);
        EXPECT_TRUE(SameValue(point, frame * (point / frame), kFrameRoundTrip));
        EXPECT_TRUE(SameValue(point, (frame * point) / frame, kFrameRoundTrip));
        EXPECT_TRUE(SameValue(vector, frame * (vector / frame), kFrameRoundTrip));
        EXPECT_TRUE(SameValue(vector, (frame * vector) / frame, kFrameRoundTrip));
    }
}

TEST(ZELMathAxis, ProductCarriesTheLocalOriginAsAPointAndTheDirectionsAsVectors)
{
    RandomFrames frames;
    const ZELMathAxis parent = frames.Next();
    const ZELMathAxis local = frames.Next();
    const ZELMathAxis world = parent * local;
    EXPECT_TRUE(SameBits(parent * local.GetOrigin(), world.GetOrigin()));
    EXPECT_TRUE(SameBits(parent * local.GetUDirection(), world.GetUDirection()));
    EXPECT_TRUE(SameBits(parent * local.GetVDirection(), world.GetVDirection()));
    EXPECT_TRUE(SameBits(parent * local.GetWDirection(), world.GetWDirection()));
}

class ZELMathAxisPlane : public ::testing::TestWithParam<NumberedPlane>
{
};

TEST_P(ZELMathAxisPlane, CarriesTheFrameDirectionsBitForBit)
{
    // Not quite perpendicular, so that any re-orthogonalisation would show.
    const ZELMathAxis frame(ZELMathPoint(1.0, -2.0, 0.5), ZELMathVector(1.0, 0.1, 0.0), ZELMathVector(0.0, 1.0, 0.2),
                            ZELMathVector(0.3, 0.0, 1.0));
    const NumberedPlane& p = GetParam();
    const ZELMathPlane plane = ZELMathAxis::GetPlane(frame, p.number);
    EXPECT_TRUE(SameBits(frame.GetOrigin(), plane.GetOrigin()));
    EXPECT_TRUE(SameBits((frame.*p.normal)(), plane.GetNormal()));
    EXPECT_TRUE(SameBits((frame.*p.first)(), plane.GetXDirection()));
    EXPECT_TRUE(SameBits((frame.*p.second)(), plane.GetYDirection()));
}

TEST_P(ZELMathAxisPlane, ProjectGivesTheComponentsAlongTheBasis)
{
    const ZELMathAxis frame = RandomFrames().Next();
    const ZELMathVector vector(0.3, -1.2, 2.0);
    const NumberedPlane& p = GetParam();
    ZELMathVector2D result;
    EXPECT_EQ(ZELMathPlane::kProjected, ZELMathAxis::GetPlane(frame, p.number).Project(vector, result));
    EXPECT_TRUE(
        SameValue(ZELMathVector2D(vector.Dot((frame.*p.first)()), vector.Dot((frame.*p.second)())), result, kExact));
}

TEST_P(ZELMathAxisPlane, QuarterTiltMapsFirstBasisDirectionToSecondAndSecondToMinusFirst)
{
    const ZELMathAxis frame = RandomFrames().Next();
    const NumberedPlane& p = GetParam();
    ZELMathAxis tilted = frame;
    ZELMathAxis::Tilt(tilted, p.number, kPi / 2.0);
    EXPECT_TRUE(SameValue((frame.*p.second)(), (tilted.*p.first)(), kFrame));
    EXPECT_TRUE(SameValue(-(frame.*p.first)(), (tilted.*p.second)(), kFrame));
}

TEST_P(ZELMathAxisPlane, TiltKeepsItsAxisAndTheOriginBitForBit)
{
    const ZELMathAxis frame = RandomFrames().Next();
    const NumberedPlane& p = GetParam();
    ZELMathAxis tilted = frame;
    ZELMathAxis::Tilt(tilted, p.number, 0.8);
    EXPECT_TRUE(SameBits((frame.*p.normal)(), (tilted.*p.normal)()));
    EXPECT_TRUE(SameBits(frame.GetOrigin(), tilted.GetOrigin()));
}

INSTANTIATE_TEST_SUITE_P(Planes, ZELMathAxisPlane, ::testing::ValuesIn(kPlanes), PlaneName);

TEST(ZELMathAxis, TiltAboutAxisOneTurnsTheWorldFrameCounterClockwiseAboutZ)
{
    ZELMathAxis frame;
    ZELMathAxis::Tilt(frame, 1, 0.5);
    EXPECT_TRUE(SameValue(ZELMathVector(std::cos(0.5), std::sin(0.5), 0.0), frame.GetUDirection(), kExact));
    EXPECT_TRUE(SameValue(ZELMathVector(-std::sin(0.5), std::cos(0.5), 0.0), frame.GetVDirection(), kExact));
}

class ZELMathAxisTiltAngle : public ::testing::TestWithParam<std::tuple<NumberedPlane, double>>
{
};

// Together with GetAngleTo this pins the sign: the tilted frame sees the old
// basis direction turned back by the angle, the old frame sees the new one
// turned forward.
TEST_P(ZELMathAxisTiltAngle, MeasuresMinusTheAngleInTheTiltedPlaneAndPlusTheAngleInTheOldOne)
{
    const auto& [p, angle] = GetParam();
    const ZELMathAxis frame = RandomFrames().Next();
    ZELMathAxis tilted = frame;
    ZELMathAxis::Tilt(tilted, p.number, angle);
    const ZELMathVector2D reference(1.0, 0.0);

    ZELMathVector2D oldInTilted;
    ASSERT_EQ(ZELMathPlane::kProjected, ZELMathAxis::GetPlane(tilted, p.number).Project((frame.*p.first)(), oldInTilted));
    EXPECT_TRUE(ZELTest::SameDouble(-angle, reference.GetAngleTo(oldInTilted), kFrameRoundTrip));

    ZELMathVector2D tiltedInOld;
    ASSERT_EQ(ZELMathPlane::kProjected, ZELMathAxis::GetPlane(frame, p.number).Project((tilted.*p.first)(), tiltedInOld));
    EXPECT_TRUE(ZELTest::SameDouble(angle, reference.GetAngleTo(tiltedInOld), kFrameRoundTrip));
}

// A child expressed in its parent moves with the parent: tilting the parent
// and carrying the child back out turns the child about the parent's axis,
// through the parent's origin.
TEST_P(ZELMathAxisTiltAngle, CarriesAChildRoundTheParentsAxisThroughTheParentsOrigin)
{
    const auto& [p, angle] = GetParam();
    RandomFrames frames;
    ZELMathAxis parent = frames.Next();
    const ZELMathAxis child = frames.Next();
    const ZELMathPoint pivot = parent.GetOrigin();
    const ZELMathVector axis = (parent.*p.normal)();

    const ZELMathAxis childInParent = child / parent;
    ZELMathAxis::Tilt(parent, p.number, angle);

    const ZELMathAxis expected(pivot + Rotated(child.GetOrigin() - pivot, axis, angle),
                               Rotated(child.GetUDirection(), axis, angle),
                               Rotated(child.GetVDirection(), axis, angle),
                               Rotated(child.GetWDirection(), axis, angle));
    EXPECT_TRUE(SameValue(expected, parent * childInParent, kFrameRoundTrip));
}

INSTANTIATE_TEST_SUITE_P(PlanesAndAngles, ZELMathAxisTiltAngle,
                         ::testing::Combine(::testing::ValuesIn(kPlanes),
                                            ::testing::Values(0.3, -1.2, 2.5, -3.0, 1e-4)));

class ZELMathAxisNumberOutOfRange : public ::testing::TestWithParam<int>
{
};

TEST_P(ZELMathAxisNumberOutOfRange, GetPlaneThrowsWithBoundsOneAndThree)
{
    const int number = GetParam();
    EXPECT_THROW_MESSAGE(ZELMathAxis::GetPlane(ZELMathAxis(), number), ZELSysOutOfBoundsException,
                         QStringLiteral("value %1 is out of bounds [1, 3]").arg(number));
}

TEST_P(ZELMathAxisNumberOutOfRange, TiltThrowsWithBoundsOneAndThreeAndLeavesTheFrame)
{
    const int number = GetParam();
    const ZELMathAxis frame = RandomFrames().Next();
    ZELMathAxis tilted = frame;
    EXPECT_THROW_MESSAGE(ZELMathAxis::Tilt(tilted, number, 0.5), ZELSysOutOfBoundsException,
                         QStringLiteral("value %1 is out of bounds [1, 3]").arg(number));
    EXPECT_TRUE(SameBits(frame, tilted));
}

INSTANTIATE_TEST_SUITE_P(Numbers, ZELMathAxisNumberOutOfRange, ::testing::Values(0, 4, -1));

TEST(ZELMathAxis, OutOfRangeNumberCarriesTheValueAndInclusiveBounds)
{
    try {
        ZELMathAxis::GetPlane(ZELMathAxis(), 4);
        ADD_FAILURE() << "threw nothing";
    } catch (const ZELSysOutOfBoundsException& e) {
        EXPECT_EQ(4, e.GetValue().toInt());
        EXPECT_EQ(1, e.GetLowerBound().toInt());
        EXPECT_EQ(3, e.GetUpperBound().toInt());
        EXPECT_TRUE(e.IsLowerBoundInclusive());
        EXPECT_TRUE(e.IsUpperBoundInclusive());
    }
}

struct EqualCase
{
    const char* name;
    ZELMathAxis other;
    bool expected;
};
ZELTEST_PRINT_CASE_BY_NAME(EqualCase);

class ZELMathAxisIsEqual : public ::testing::TestWithParam<EqualCase>
{
};

TEST_P(ZELMathAxisIsEqual, ComparesTheOriginAndEachDirectionWithinTolerance)
{
    EXPECT_EQ(GetParam().expected, ZELMathAxis().IsEqual(GetParam().other, 0.5));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathAxisIsEqual,
    ::testing::Values(
        EqualCase{"Same", ZELMathAxis(), true},
        EqualCase{"OriginAtTolerance", ZELMathAxis(ZELMathPoint(0.5, -0.5, 0.5), ZELMathVector(1.0, 0.0, 0.0),
                                                   ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(0.0, 0.0, 1.0)),
                  true},
        EqualCase{"OriginBeyond", ZELMathAxis(ZELMathPoint(0.0, 0.0, 0.75), ZELMathVector(1.0, 0.0, 0.0),
                                              ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(0.0, 0.0, 1.0)),
                  false},
        EqualCase{"UBeyond", ZELMathAxis(ZELMathPoint(), ZELMathVector(-1.0, 0.0, 0.0), ZELMathVector(0.0, 1.0, 0.0),
                                         ZELMathVector(0.0, 0.0, 1.0)),
                  false},
        EqualCase{"VBeyond", ZELMathAxis(ZELMathPoint(), ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 0.0, 1.0),
                                         ZELMathVector(0.0, 0.0, 1.0)),
                  false},
        EqualCase{"WBeyond", ZELMathAxis(ZELMathPoint(), ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 1.0, 0.0),
                                         ZELMathVector(1.0, 0.0, 0.0)),
                  false},
        EqualCase{"NaNOrigin", ZELMathAxis(ZELMathPoint(kNaN, 0.0, 0.0), ZELMathVector(1.0, 0.0, 0.0),
                                           ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(0.0, 0.0, 1.0)),
                  false}),
    [](const ::testing::TestParamInfo<EqualCase>& info) { return std::string(info.param.name); });

TEST(ZELMathAxis, StreamWritesOriginUVAndWAsDoubles)
{
    const ZELMathAxis frame = RandomFrames().Next();
    EXPECT_TRUE(SameBits(ZELMathTest::Components(frame), ZELMathTest::DoublesIn(ZELMathTest::Written(frame))));
}

TEST(ZELMathAxis, StreamRoundTripKeepsEveryBitIncludingNaN)
{
    ZELMathAxis frame = RandomFrames().Next();
    frame.SetOrigin(ZELMathPoint(kNaN, -0.0, 1e300));
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathAxis>(ZELMathTest::Written(frame), status);
    EXPECT_EQ(QDataStream::Ok, status);
    EXPECT_TRUE(SameBits(frame, read));
}

TEST(ZELMathAxis, TruncatedStreamLeavesZerosWithoutRenormalising)
{
    const ZELMathAxis frame(ZELMathPoint(1.0, 2.0, 3.0), ZELMathVector(0.8, 0.0, -0.6), ZELMathVector(0.0, 1.0, 0.0),
                            ZELMathVector(0.6, 0.0, 0.8));
    QByteArray bytes = ZELMathTest::Written(frame);
    bytes.chop(sizeof(double));
    std::vector<double> expected = ZELMathTest::Components(frame);
    expected.back() = 0.0;

    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathAxis>(bytes, status);
    EXPECT_EQ(QDataStream::ReadPastEnd, status);
    EXPECT_TRUE(SameBits(expected, ZELMathTest::Components(read)));
}
