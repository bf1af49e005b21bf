#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltponparttrajectory.h>
#include <zeltppoint.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <cmath>
#include <limits>
#include <memory>

namespace {

constexpr double kNotGiven = std::numeric_limits<double>::quiet_NaN();

struct TiltCase
{
    const char* name;
    double forward;
    double side;
    double smoothing;
};
ZELTEST_PRINT_CASE_BY_NAME(TiltCase);

const TiltCase kTilts[] = {
    {"AllGiven", 0.05, -0.02, M_PI / 36.0},
    {"SmoothingNotGiven", 0.1, 0.0, kNotGiven},
    {"NoneGiven", kNotGiven, kNotGiven, kNotGiven},
};

class ZELTPOnPartTrajectoryTilts : public ::testing::TestWithParam<TiltCase>
{
};

} // namespace

TEST(ZELTPOnPartTrajectory, IsATrajectoryWithItsFeedrateAndNoPoints)
{
    const ZELTPOnPartTrajectory onPart(9000.0, 0.0, 0.0, kNotGiven);
    const ZELTPTrajectory* trajectory = &onPart;
    EXPECT_NE(dynamic_cast<const ZELTPOnPartTrajectory*>(trajectory), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(9000.0, trajectory->GetFeedrate(), ZELTest::kExact));
    EXPECT_EQ(trajectory->GetNumPoints(), 0);
    EXPECT_EQ(trajectory->GetOwner(), nullptr);
}

TEST(ZELTPOnPartTrajectory, APlainTrajectoryIsNotOnPart)
{
    const auto plain = std::make_unique<const ZELTPTrajectory>(9000.0);
    const ZELTPTrajectory* trajectory = plain.get();
    EXPECT_EQ(dynamic_cast<const ZELTPOnPartTrajectory*>(trajectory), nullptr);
}

TEST_P(ZELTPOnPartTrajectoryTilts, KeepsTiltsAndSmoothingAngleNaNIncluded)
{
    const TiltCase& c = GetParam();
    const ZELTPOnPartTrajectory trajectory(9000.0, c.forward, c.side, c.smoothing);
    EXPECT_TRUE(ZELTest::SameDouble(c.forward, trajectory.GetForwardTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(c.side, trajectory.GetSideTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(c.smoothing, trajectory.GetSmoothingAngle(), ZELTest::kExact));
}

TEST_P(ZELTPOnPartTrajectoryTilts, RecordInItsOwnerIsTagFeedrateTiltsSmoothingAndPoints)
{
    const TiltCase& c = GetParam();
    ZELGeoContainer container;
    ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    ZELTPCourseLink link(&container, QString());
    auto* trajectory = new ZELTPOnPartTrajectory(9000.0, c.forward, c.side, c.smoothing);
    trajectory->AddPoint(point);
    link.AddTrajectory(trajectory);

    ZELGeoStream record(link.GetCurrentState(), nullptr);
    QString name;
    qint32 detail = -1;
    qint32 trajectories = -1;
    record >> name >> detail >> trajectories;
    ASSERT_EQ(trajectories, 1);
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << qint32(1) << 9000.0 << c.forward << c.side << c.smoothing << qint32(1) << point->GetReference();
    });
    EXPECT_EQ(record.device()->read(expected.size()), expected);
}

TEST_P(ZELTPOnPartTrajectoryTilts, SurvivesSaveAndLoadAsAnOnPartTrajectory)
{
    const TiltCase& c = GetParam();
    ZELGeoContainer source;
    ZELTPPoint* point = new ZELTPPoint(&source, ZELMathAxis());
    point->SetIndex(0);
    auto* link = new ZELTPCourseLink(&source, QString());
    auto* trajectory = new ZELTPOnPartTrajectory(9000.0, c.forward, c.side, c.smoothing);
    trajectory->AddPoint(point);
    link->AddTrajectory(trajectory);

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    const QList<ZELTPCourseLink*> links = ZELTPTest::AllOf<ZELTPCourseLink>(loaded);
    ASSERT_EQ(links.size(), 1);
    ASSERT_EQ(links.first()->GetNumTrajectories(), 1);
    const ZELTPTrajectory* copy = links.first()->GetTrajectory(0);
    EXPECT_EQ(typeid(*copy), typeid(ZELTPOnPartTrajectory));
    const auto* onPart = dynamic_cast<const ZELTPOnPartTrajectory*>(copy);
    ASSERT_NE(onPart, nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(9000.0, onPart->GetFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(c.forward, onPart->GetForwardTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(c.side, onPart->GetSideTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(c.smoothing, onPart->GetSmoothingAngle(), ZELTest::kExact));
    EXPECT_EQ(onPart->GetPoints(), QList<ZELTPPoint*>(ZELTPTest::AllOf<ZELTPPoint>(loaded)));
}

INSTANTIATE_TEST_SUITE_P(Tilts, ZELTPOnPartTrajectoryTilts, ::testing::ValuesIn(kTilts));
