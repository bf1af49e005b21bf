#include <zelgencourseplan.h>
#include <zelgenpart.h>

#include <zeltestsupport.h>

#include <QtMath>

#include <cmath>

namespace {

constexpr double kLengthTolerance = 1e-9;

const ZELMathVector2D kAlongX(1.0, 0.0);

class ZELGenCoursePlanTest : public ::testing::Test
{
protected:
    // 3000 x 1500 mm, centred on its course plane's origin.
    std::unique_ptr<ZELGenPart> m_panel = ZELGenPart::Create(QStringLiteral("flat"));
};

} // namespace

TEST_F(ZELGenCoursePlanTest, ACourseAcrossThePanelLaysEveryTowFromEdgeToEdge)
{
    const ZELGenCoursePlan plan(*m_panel, kAlongX, 0.0, 0, 16);
    ASSERT_FALSE(plan.IsEmpty());
    ASSERT_EQ(plan.GetStations().size(), 2);
    EXPECT_NEAR(plan.GetStart(), -1500.0, kLengthTolerance);
    EXPECT_NEAR(plan.GetEnd(), 1500.0, kLengthTolerance);
    EXPECT_EQ(plan.GetTowMask(), QStringLiteral("1111111111111111"));
    EXPECT_EQ(plan.GetStretchMask(0), QStringLiteral("1111111111111111"));
    for (const double length : plan.GetTowLengths())
        EXPECT_NEAR(length, 3000.0, kLengthTolerance);
    EXPECT_NEAR(plan.GetMaterialLength(), 16 * 3000.0, kLengthTolerance);
}

TEST_F(ZELGenCoursePlanTest, TheNarrowRollerLaysItsEightMiddleTows)
{
    const ZELGenCoursePlan plan(*m_panel, kAlongX, 0.0, 4, 8);
    EXPECT_EQ(plan.GetTowMask(), QStringLiteral("0000111111110000"));
    const QList<double> lengths = plan.GetTowLengths();
    ASSERT_EQ(lengths.size(), 16);
    EXPECT_NEAR(lengths.at(3), 0.0, kLengthTolerance);
    EXPECT_NEAR(lengths.at(4), 3000.0, kLengthTolerance);
    EXPECT_NEAR(lengths.at(11), 3000.0, kLengthTolerance);
    EXPECT_NEAR(lengths.at(12), 0.0, kLengthTolerance);
}

// Along +X the head's tows follow to the left, +Y. The groups' centre lines
// stand (4 g - 6) x 6.35 mm from the course's: 730 mm from the middle, the
// fourth group's (768.1 mm) is off the 750 mm half width and is not laid.
TEST_F(ZELGenCoursePlanTest, AGroupOfTowsWhoseCentreLineMissesThePartIsNotLaid)
{
    const ZELGenCoursePlan plan(*m_panel, kAlongX, 730.0, 0, 16);
    EXPECT_EQ(plan.GetTowMask(), QStringLiteral("1111111111110000"));
    EXPECT_NEAR(plan.GetTowLengths().at(15), 0.0, kLengthTolerance);
    EXPECT_NEAR(plan.GetMaterialLength(), 12 * 3000.0, kLengthTolerance);
}

TEST_F(ZELGenCoursePlanTest, ACourseBesideThePartIsEmpty)
{
    const ZELGenCoursePlan plan(*m_panel, kAlongX, 900.0, 0, 16);
    EXPECT_TRUE(plan.IsEmpty());
    EXPECT_LT(plan.GetStations().size(), 2);
    EXPECT_NEAR(plan.GetMaterialLength(), 0.0, kLengthTolerance);
}

// Across a corner at 30 degrees each group enters and leaves the panel at
// its own place, so the laid tows change along the course; every stretch
// lays only tows of the course, and together the stretches lay all of them.
TEST_F(ZELGenCoursePlanTest, AGroupIsAddedWhereItEntersThePartAndCutWhereItLeaves)
{
    const double angle = qDegreesToRadians(30.0);
    const ZELMathVector2D direction(std::cos(angle), std::sin(angle));
    const ZELGenCoursePlan plan(*m_panel, direction, 600.0, 0, 16);
    ASSERT_FALSE(plan.IsEmpty());
    const QList<double> stations = plan.GetStations();
    ASSERT_GT(stations.size(), 2);
    for (qsizetype i = 1; i < stations.size(); ++i)
        EXPECT_GT(stations.at(i), stations.at(i - 1));

    const QString courseMask = plan.GetTowMask();
    QString laid(16, QLatin1Char('0'));
    bool masksChange = false;
    for (int stretch = 0; stretch + 1 < stations.size(); ++stretch) {
        const QString mask = plan.GetStretchMask(stretch);
        masksChange = masksChange || mask != plan.GetStretchMask(0);
        for (int tow = 0; tow < 16; ++tow) {
            if (mask.at(tow) == QLatin1Char('1')) {
                EXPECT_EQ(courseMask.at(tow), QLatin1Char('1')) << "stretch " << stretch << " tow " << tow;
                laid[tow] = QLatin1Char('1');
            }
        }
    }
    EXPECT_TRUE(masksChange);
    EXPECT_EQ(laid, courseMask);
}

TEST_F(ZELGenCoursePlanTest, APointOfTheCourseLiesOnItsCentreLine)
{
    const ZELGenCoursePlan plan(*m_panel, ZELMathVector2D(0.0, 1.0), -200.0, 0, 16);
    const ZELGenPoint point = plan.GetPoint(300.0);
    const ZELGenPoint expected = m_panel->GetSurfacePoint(ZELMathVector2D(200.0, 300.0), ZELMathVector2D(0.0, 1.0));
    EXPECT_NEAR(point.GetOrigin().GetX(), expected.GetOrigin().GetX(), kLengthTolerance);
    EXPECT_NEAR(point.GetOrigin().GetY(), expected.GetOrigin().GetY(), kLengthTolerance);
    EXPECT_NEAR(point.GetOrigin().GetZ(), expected.GetOrigin().GetZ(), kLengthTolerance);
}
