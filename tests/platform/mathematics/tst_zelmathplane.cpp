#include "zelmathtestsupport.h"

#include "zelsysexception.h"

#include <cmath>
#include <limits>

using ZELMathTest::SameBits;
using ZELMathTest::SameValue;
using ZELTest::kExact;
using ZELTest::kFrame;

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kRootHalf = std::sqrt(0.5);

void ExpectBasis(const ZELMathPlane& plane, const ZELMathVector& normal, const ZELMathVector& x,
                 const ZELMathVector& y, double tolerance)
{
    EXPECT_TRUE(SameValue(normal, plane.GetNormal(), tolerance));
    EXPECT_TRUE(SameValue(x, plane.GetXDirection(), tolerance));
    EXPECT_TRUE(SameValue(y, plane.GetYDirection(), tolerance));
}

} // namespace

TEST(ZELMathPlane, DefaultIsTheWorldXYPlane)
{
    const ZELMathPlane plane;
    EXPECT_TRUE(SameValue(ZELMathPoint(), plane.GetOrigin(), kExact));
    ExpectBasis(plane, ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 1.0, 0.0),
                kExact);
}

TEST(ZELMathPlane, KeepsTheOriginAsGiven)
{
    const ZELMathPoint origin(10.0, -20.0, 30.5);
    EXPECT_TRUE(SameValue(origin, ZELMathPlane(origin, ZELMathVector(1.0, 2.0, 3.0)).GetOrigin(), kExact));
    EXPECT_TRUE(SameValue(origin,
                          ZELMathPlane(origin, ZELMathVector(1.0, 2.0, 3.0), ZELMathVector(1.0, 0.0, 0.0)).GetOrigin(),
                          kExact));
}

struct NormalCase
{
    const char* name;
    ZELMathVector normal;
    ZELMathVector expectedNormal;
    ZELMathVector expectedX;
    ZELMathVector expectedY;
    double tolerance;
};
ZELTEST_PRINT_CASE_BY_NAME(NormalCase);

class ZELMathPlaneFromNormal : public ::testing::TestWithParam<NormalCase>
{
};

TEST_P(ZELMathPlaneFromNormal, TakesXFromTheWorldAxisLeastAlignedWithTheNormal)
{
    const NormalCase& c = GetParam();
    ExpectBasis(ZELMathPlane(ZELMathPoint(), c.normal), c.expectedNormal, c.expectedX, c.expectedY, c.tolerance);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathPlaneFromNormal,
    ::testing::Values(
        NormalCase{"WorldZIsTheWorldXYBasisExactly", ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(0.0, 0.0, 1.0),
                   ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 1.0, 0.0), kExact},
        NormalCase{"LongWorldZIsNormalised", ZELMathVector(0.0, 0.0, 5.0), ZELMathVector(0.0, 0.0, 1.0),
                   ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 1.0, 0.0), kExact},
        NormalCase{"MinusZ", ZELMathVector(0.0, 0.0, -2.0), ZELMathVector(0.0, 0.0, -1.0),
                   ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, -1.0, 0.0), kExact},
        NormalCase{"WorldXTieGoesToY", ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(1.0, 0.0, 0.0),
                   ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(0.0, 0.0, 1.0), kExact},
        NormalCase{"WorldY", ZELMathVector(0.0, 1.0, 0.0), ZELMathVector(0.0, 1.0, 0.0),
                   ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 0.0, -1.0), kExact},
        NormalCase{"DiagonalXY", ZELMathVector(1.0, 1.0, 0.0), ZELMathVector(kRootHalf, kRootHalf, 0.0),
                   ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(kRootHalf, -kRootHalf, 0.0), kFrame},
        NormalCase{"General", ZELMathVector(3.0, -1.0, 2.0), ZELMathVector(3.0, -1.0, 2.0) / std::sqrt(14.0),
                   ZELMathVector(3.0, 13.0, 2.0) / std::sqrt(182.0), ZELMathVector(-2.0, 0.0, 3.0) / std::sqrt(13.0),
                   kFrame}),
    [](const ::testing::TestParamInfo<NormalCase>& info) { return std::string(info.param.name); });

struct XDirectionCase
{
    const char* name;
    ZELMathVector normal;
    ZELMathVector xDirection;
    ZELMathVector expectedNormal;
    ZELMathVector expectedX;
    ZELMathVector expectedY;
};
ZELTEST_PRINT_CASE_BY_NAME(XDirectionCase);

class ZELMathPlaneFromNormalAndX : public ::testing::TestWithParam<XDirectionCase>
{
};

TEST_P(ZELMathPlaneFromNormalAndX, TakesXAsThePerpendicularPartOfTheGivenDirection)
{
    const XDirectionCase& c = GetParam();
    ExpectBasis(ZELMathPlane(ZELMathPoint(), c.normal, c.xDirection), c.expectedNormal, c.expectedX, c.expectedY,
                kFrame);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathPlaneFromNormalAndX,
    ::testing::Values(
        XDirectionCase{"TiltedX", ZELMathVector(0.0, 0.0, 2.0), ZELMathVector(1.0, 1.0, 0.5),
                       ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(kRootHalf, kRootHalf, 0.0),
                       ZELMathVector(-kRootHalf, kRootHalf, 0.0)},
        XDirectionCase{"TiltedNormal", ZELMathVector(1.0, 1.0, 0.0), ZELMathVector(1.0, 0.0, 0.0),
                       ZELMathVector(kRootHalf, kRootHalf, 0.0), ZELMathVector(kRootHalf, -kRootHalf, 0.0),
                       ZELMathVector(0.0, 0.0, -1.0)},
        XDirectionCase{"InPlaneX", ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(0.0, -3.0, 0.0),
                       ZELMathVector(0.0, 0.0, 1.0), ZELMathVector(0.0, -1.0, 0.0), ZELMathVector(1.0, 0.0, 0.0)}),
    [](const ::testing::TestParamInfo<XDirectionCase>& info) { return std::string(info.param.name); });

TEST(ZELMathPlane, ZeroNormalThrows)
{
    EXPECT_THROW_MESSAGE(ZELMathPlane(ZELMathPoint(), ZELMathVector()), ZELSysException,
                         "plane normal has zero length");
    EXPECT_THROW_MESSAGE(ZELMathPlane(ZELMathPoint(), ZELMathVector(), ZELMathVector(1.0, 0.0, 0.0)),
                         ZELSysException, "plane normal has zero length");
}

struct ParallelXCase
{
    const char* name;
    ZELMathVector xDirection;
};
ZELTEST_PRINT_CASE_BY_NAME(ParallelXCase);

class ZELMathPlaneParallelX : public ::testing::TestWithParam<ParallelXCase>
{
};

TEST_P(ZELMathPlaneParallelX, ThrowsForAnXDirectionAlongTheNormal)
{
    EXPECT_THROW_MESSAGE(ZELMathPlane(ZELMathPoint(), ZELMathVector(0.0, 0.0, 2.0), GetParam().xDirection),
                         ZELSysException, "plane x direction is parallel to the normal");
}

INSTANTIATE_TEST_SUITE_P(Cases, ZELMathPlaneParallelX,
                         ::testing::Values(ParallelXCase{"AlongTheNormal", ZELMathVector(0.0, 0.0, 3.0)},
                                           ParallelXCase{"AgainstTheNormal", ZELMathVector(0.0, 0.0, -1.0)},
                                           ParallelXCase{"ZeroVector", ZELMathVector()},
                                           ParallelXCase{"WithinRoundingOfTheNormal", ZELMathVector(1e-13, 0.0, 1.0)}));

struct ProjectCase
{
    const char* name;
    ZELMathPlane plane;
    ZELMathVector vector;
    int expectedStatus;
    ZELMathVector2D expected;
};
ZELTEST_PRINT_CASE_BY_NAME(ProjectCase);

class ZELMathPlaneProject : public ::testing::TestWithParam<ProjectCase>
{
};

TEST_P(ZELMathPlaneProject, GivesTheInPlaneCoordinatesOrReportsAVectorAlongTheNormal)
{
    const ProjectCase& c = GetParam();
    ZELMathVector2D result(7.0, -7.0);
    EXPECT_EQ(c.expectedStatus, c.plane.Project(c.vector, result));
    EXPECT_TRUE(SameValue(c.expected, result, kFrame));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELMathPlaneProject,
    ::testing::Values(
        ProjectCase{"WorldXY", ZELMathPlane(), ZELMathVector(2.0, 3.0, 4.0), ZELMathPlane::kProjected,
                    ZELMathVector2D(2.0, 3.0)},
        ProjectCase{"OriginIsNotSubtracted", ZELMathPlane(ZELMathPoint(10.0, 20.0, 30.0), ZELMathVector(0.0, 0.0, 1.0)),
                    ZELMathVector(2.0, 3.0, 4.0), ZELMathPlane::kProjected, ZELMathVector2D(2.0, 3.0)},
        ProjectCase{"TiltedPlane", ZELMathPlane(ZELMathPoint(), ZELMathVector(1.0, 1.0, 0.0)),
                    ZELMathVector(1.0, 0.0, 5.0), ZELMathPlane::kProjected, ZELMathVector2D(5.0, kRootHalf)},
        ProjectCase{"JustOffTheNormal", ZELMathPlane(), ZELMathVector(1e-11, 0.0, 1.0), ZELMathPlane::kProjected,
                    ZELMathVector2D(1e-11, 0.0)},
        ProjectCase{"AlongTheNormal", ZELMathPlane(), ZELMathVector(0.0, 0.0, 5.0), ZELMathPlane::kAlongNormal,
                    ZELMathVector2D()},
        ProjectCase{"AgainstTheNormal", ZELMathPlane(), ZELMathVector(0.0, 0.0, -5.0), ZELMathPlane::kAlongNormal,
                    ZELMathVector2D()},
        ProjectCase{"WithinRoundingOfTheNormal", ZELMathPlane(), ZELMathVector(1e-13, 0.0, 1.0),
                    ZELMathPlane::kAlongNormal, ZELMathVector2D()},
        ProjectCase{"ZeroVector", ZELMathPlane(), ZELMathVector(), ZELMathPlane::kAlongNormal, ZELMathVector2D()}),
    [](const ::testing::TestParamInfo<ProjectCase>& info) { return std::string(info.param.name); });

TEST(ZELMathPlane, ProjectStatusValuesAreZeroAndOne)
{
    EXPECT_EQ(0, ZELMathPlane::kProjected);
    EXPECT_EQ(1, ZELMathPlane::kAlongNormal);
}

TEST(ZELMathPlane, StreamWritesOriginNormalXAndYAsDoubles)
{
    const ZELMathPlane plane(ZELMathPoint(1.0, 2.0, 3.0), ZELMathVector(3.0, -1.0, 2.0));
    EXPECT_TRUE(SameBits(ZELMathTest::Components(plane), ZELMathTest::DoublesIn(ZELMathTest::Written(plane))));
}

TEST(ZELMathPlane, StreamRoundTripKeepsEveryBitIncludingNaN)
{
    const ZELMathPlane plane(ZELMathPoint(kNaN, -0.0, 1e300), ZELMathVector(3.0, -1.0, 2.0));
    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathPlane>(ZELMathTest::Written(plane), status);
    EXPECT_EQ(QDataStream::Ok, status);
    EXPECT_TRUE(SameBits(plane, read));
}

TEST(ZELMathPlane, TruncatedStreamLeavesZerosWithoutRenormalising)
{
    const ZELMathPlane plane(ZELMathPoint(1.0, 2.0, 3.0), ZELMathVector(3.0, -1.0, 2.0));
    QByteArray bytes = ZELMathTest::Written(plane);
    bytes.chop(sizeof(double));
    std::vector<double> expected = ZELMathTest::Components(plane);
    expected.back() = 0.0;

    QDataStream::Status status = QDataStream::Ok;
    const auto read = ZELMathTest::ReadBack<ZELMathPlane>(bytes, status);
    EXPECT_EQ(QDataStream::ReadPastEnd, status);
    EXPECT_TRUE(SameBits(expected, ZELMathTest::Components(read)));
}
