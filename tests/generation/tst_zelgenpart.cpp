#include <zelgenpart.h>

#include <zeltestsupport.h>

#include <QtMath>

#include <cmath>

namespace {

constexpr double kUnitTolerance = 1e-12;
constexpr double kLengthTolerance = 1e-9;
// The height of every part's highest point, its centre (mm).
constexpr double kTopZ = -2000.0;

struct PartCase
{
    const char* name;
    const char* kind;
    const char* partName;
    const char* propagation;
};
ZELTEST_PRINT_CASE_BY_NAME(PartCase);

const PartCase kParts[] = {
    {"FlatPanel", "flat", "flat-panel", "angle"},
    {"CylinderSection", "cylinder", "cylinder-section", "angle"},
    {"Dome", "dome", "dome", "parallel"},
};

double Dot(const ZELMathVector& a, const ZELMathVector& b)
{
    return a.GetX() * b.GetX() + a.GetY() * b.GetY() + a.GetZ() * b.GetZ();
}

class ZELGenPartTest : public ::testing::TestWithParam<PartCase>
{
protected:
    void SetUp() override
    {
        m_part = ZELGenPart::Create(QLatin1String(GetParam().kind));
        ASSERT_NE(m_part, nullptr);
    }

    std::unique_ptr<ZELGenPart> m_part;
};

// A point of a convex boundary lies inside it when the crossing of a line
// through it holds the point itself (0 along the line).
bool IsInside(const ZELGenPart& part, const ZELMathVector2D& position)
{
    const std::optional<ZELGenPart::Range> crossing = part.GetCrossing(position, ZELMathVector2D(1.0, 0.0));
    return crossing && crossing->from <= 0.0 && crossing->to >= 0.0;
}

} // namespace

TEST_P(ZELGenPartTest, IsNamedByItsKindAndSaysHowCoursesPropagate)
{
    EXPECT_EQ(m_part->GetName(), QLatin1String(GetParam().partName));
    EXPECT_EQ(m_part->GetPropagation(), QLatin1String(GetParam().propagation));
}

TEST_P(ZELGenPartTest, SurfacePointsHaveUnitPerpendicularTravelAndNormalPointingUp)
{
    for (const double x : {-900.0, -200.0, 0.0, 450.0, 1000.0}) {
        for (const double y : {-500.0, 0.0, 300.0}) {
            for (const double degrees : {0.0, 45.0, 90.0, -30.0}) {
                const double angle = qDegreesToRadians(degrees);
                const ZELGenPoint point = m_part->GetSurfacePoint(ZELMathVector2D(x, y),
                                                                  ZELMathVector2D(std::cos(angle), std::sin(angle)));
                EXPECT_NEAR(std::sqrt(Dot(point.GetTravel(), point.GetTravel())), 1.0, kUnitTolerance);
                EXPECT_NEAR(std::sqrt(Dot(point.GetNormal(), point.GetNormal())), 1.0, kUnitTolerance);
                EXPECT_NEAR(Dot(point.GetTravel(), point.GetNormal()), 0.0, kUnitTolerance);
                EXPECT_GT(point.GetNormal().GetZ(), 0.0);
            }
        }
    }
}

TEST_P(ZELGenPartTest, IsHighestAtTheCentreOfItsCoursePlane)
{
    const ZELMathVector2D alongX(1.0, 0.0);
    EXPECT_NEAR(m_part->GetSurfacePoint(ZELMathVector2D(), alongX).GetOrigin().GetZ(), kTopZ, kLengthTolerance);
    for (const double x : {-1200.0, -300.0, 700.0}) {
        for (const double y : {-600.0, 250.0}) {
            EXPECT_LE(m_part->GetSurfacePoint(ZELMathVector2D(x, y), alongX).GetOrigin().GetZ(),
                      kTopZ + kLengthTolerance);
        }
    }
}

TEST_P(ZELGenPartTest, ProbeTargetsStandOutsideTheBoundaryAndItsCentreInside)
{
    EXPECT_TRUE(IsInside(*m_part, ZELMathVector2D()));
    const QList<ZELMathVector2D> targets = m_part->GetProbeTargets();
    ASSERT_EQ(targets.size(), 3);
    for (const ZELMathVector2D& target : targets)
        EXPECT_FALSE(IsInside(*m_part, target)) << target.GetX() << ", " << target.GetY();
}

TEST_P(ZELGenPartTest, ALineFarOutsideTheExtentMissesThePart)
{
    const ZELGenPart::Range extent = m_part->GetExtent(ZELMathVector2D(0.0, 1.0));
    EXPECT_LT(extent.from, 0.0);
    EXPECT_GT(extent.to, 0.0);
    EXPECT_FALSE(m_part->GetCrossing(ZELMathVector2D(0.0, extent.to + 1.0), ZELMathVector2D(1.0, 0.0)));
    EXPECT_FALSE(m_part->GetCrossing(ZELMathVector2D(0.0, extent.from - 1.0), ZELMathVector2D(1.0, 0.0)));
}

INSTANTIATE_TEST_SUITE_P(EveryShape, ZELGenPartTest, ::testing::ValuesIn(kParts));

TEST(ZELGenPart, AnUnknownKindMakesNoPart)
{
    EXPECT_EQ(ZELGenPart::Create(QStringLiteral("cone")), nullptr);
    EXPECT_EQ(ZELGenPart::Create(QString()), nullptr);
    EXPECT_EQ(ZELGenPart::Create(QStringLiteral("Flat")), nullptr);
}

// 3000 x 1500 mm: a line along X through the panel crosses 1500 mm either
// side of the centre, and courses across Y reach 750 mm either side.
TEST(ZELGenPart, TheFlatPanelIs3000By1500Millimetres)
{
    const std::unique_ptr<ZELGenPart> panel = ZELGenPart::Create(QStringLiteral("flat"));
    const std::optional<ZELGenPart::Range> crossing = panel->GetCrossing(ZELMathVector2D(0.0, 100.0),
                                                                         ZELMathVector2D(1.0, 0.0));
    ASSERT_TRUE(crossing);
    EXPECT_NEAR(crossing->from, -1500.0, kLengthTolerance);
    EXPECT_NEAR(crossing->to, 1500.0, kLengthTolerance);
    const ZELGenPart::Range extent = panel->GetExtent(ZELMathVector2D(0.0, 1.0));
    EXPECT_NEAR(extent.from, -750.0, kLengthTolerance);
    EXPECT_NEAR(extent.to, 750.0, kLengthTolerance);
    EXPECT_NEAR(panel->GetLength(ZELMathVector2D(-100.0, 0.0), ZELMathVector2D(200.0, 400.0)), 500.0, kLengthTolerance);
}
