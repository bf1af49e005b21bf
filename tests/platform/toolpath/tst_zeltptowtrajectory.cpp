#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltppoint.h>
#include <zeltptowtrajectory.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <limits>
#include <memory>

namespace {

constexpr double kNotGiven = std::numeric_limits<double>::quiet_NaN();

ZELCompTowMask Mask(int tows, std::initializer_list<int> enabled)
{
    ZELCompTowMask mask(tows, false);
    for (const int tow : enabled)
        mask.SetTowEnabled(tow, true);
    return mask;
}

struct TowCase
{
    const char* name;
    ZELCompTowMask towMask;
    ZELCompTowMask forcedMask;
    QList<double> forcedRates;
};
ZELTEST_PRINT_CASE_BY_NAME(TowCase);

const TowCase kTowCases[] = {
    {"NothingForced", Mask(8, {1, 2, 3, 4, 5, 6, 7, 8}), Mask(8, {}), {}},
    {"TwoTowsForced", Mask(8, {2, 3, 4}), Mask(8, {3, 4}), {0.0, 0.0, 1.05, 0.975, 0.0, 0.0, 0.0, 0.0}},
    {"NoTows", ZELCompTowMask(), ZELCompTowMask(), {}},
};

class ZELTPTowTrajectoryCases : public ::testing::TestWithParam<TowCase>
{
};

} // namespace

TEST(ZELTPTowTrajectory, IsAnOnPartTrajectoryWithItsFeedrateTiltsAndSmoothing)
{
    const ZELTPTowTrajectory tow(7500.0, 0.03, -0.01, kNotGiven, Mask(4, {1}), Mask(4, {}), {});
    const ZELTPTrajectory* trajectory = &tow;
    const auto* onPart = dynamic_cast<const ZELTPOnPartTrajectory*>(trajectory);
    ASSERT_NE(onPart, nullptr);
    EXPECT_NE(dynamic_cast<const ZELTPTowTrajectory*>(trajectory), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(7500.0, onPart->GetFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.03, onPart->GetForwardTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-0.01, onPart->GetSideTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(kNotGiven, onPart->GetSmoothingAngle(), ZELTest::kExact));
}

TEST(ZELTPTowTrajectory, AnOnPartTrajectoryIsNotATowTrajectory)
{
    const auto onPart = std::make_unique<const ZELTPOnPartTrajectory>(7500.0, 0.0, 0.0, 0.0);
    const ZELTPTrajectory* trajectory = onPart.get();
    EXPECT_EQ(dynamic_cast<const ZELTPTowTrajectory*>(trajectory), nullptr);
}

TEST_P(ZELTPTowTrajectoryCases, KeepsMasksAndRates)
{
    const TowCase& c = GetParam();
    const ZELTPTowTrajectory trajectory(7500.0, 0.0, 0.0, 0.0, c.towMask, c.forcedMask, c.forcedRates);
    EXPECT_TRUE(trajectory.GetTowMask() == c.towMask);
    EXPECT_TRUE(trajectory.GetForcedMask() == c.forcedMask);
    EXPECT_TRUE(ZELTPTest::SameDoubles(c.forcedRates, trajectory.GetForcedRates()));
}

TEST_P(ZELTPTowTrajectoryCases, RecordInItsOwnerIsTagOnPartFieldsMasksRatesAndPoints)
{
    const TowCase& c = GetParam();
    ZELGeoContainer container;
    ZELTPPoint* first = new ZELTPPoint(&container, ZELMathAxis());
    ZELTPPoint* second = new ZELTPPoint(&container, ZELMathAxis());
    ZELTPCourseLink link(&container, QString());
    auto* trajectory = new ZELTPTowTrajectory(7500.0, 0.03, -0.01, 0.2, c.towMask, c.forcedMask, c.forcedRates);
    trajectory->AddPoint(first);
    trajectory->AddPoint(second);
    link.AddTrajectory(trajectory);

    ZELGeoStream record(link.GetCurrentState(), nullptr);
    QString name;
    qint32 detail = -1;
    qint32 trajectories = -1;
    record >> name >> detail >> trajectories;
    ASSERT_EQ(trajectories, 1);
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << qint32(2) << 7500.0 << 0.03 << -0.01 << 0.2 << c.towMask << c.forcedMask
          << qint32(c.forcedRates.size());
        for (const double rate : c.forcedRates)
            s << rate;
        s << qint32(2) << first->GetReference() << second->GetReference();
    });
    EXPECT_EQ(record.device()->read(expected.size()), expected);
}

TEST_P(ZELTPTowTrajectoryCases, SurvivesSaveAndLoadAsATowTrajectory)
{
    const TowCase& c = GetParam();
    ZELGeoContainer source;
    auto* link = new ZELTPCourseLink(&source, QString());
    link->AddTrajectory(new ZELTPTowTrajectory(7500.0, 0.03, -0.01, 0.2, c.towMask, c.forcedMask, c.forcedRates));

    ZELGeoContainer target;
    const QList<ZELTPCourseLink*> links =
        ZELTPTest::AllOf<ZELTPCourseLink>(ZELTPTest::CopyContainer(source, target));
    ASSERT_EQ(links.size(), 1);
    ASSERT_EQ(links.first()->GetNumTrajectories(), 1);
    const auto* copy = dynamic_cast<const ZELTPTowTrajectory*>(links.first()->GetTrajectory(0));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(7500.0, copy->GetFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.03, copy->GetForwardTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-0.01, copy->GetSideTilt(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.2, copy->GetSmoothingAngle(), ZELTest::kExact));
    EXPECT_TRUE(copy->GetTowMask() == c.towMask);
    EXPECT_TRUE(copy->GetForcedMask() == c.forcedMask);
    EXPECT_TRUE(ZELTPTest::SameDoubles(c.forcedRates, copy->GetForcedRates()));
}

INSTANTIATE_TEST_SUITE_P(Tows, ZELTPTowTrajectoryCases, ::testing::ValuesIn(kTowCases));

TEST(ZELTPTowTrajectory, ARateCountBeyondTheRecordStopsAtItsEnd)
{
    ZELGeoContainer container;
    ZELTPCourseLink link(&container, QString());
    // A tow trajectory that claims a billion rates and holds two.
    link.SetCurrentState(ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("link") << qint32(ZELTPCourseLink::PointsDetailLow) << qint32(1) << qint32(2) << 7500.0
          << 0.0 << 0.0 << 0.0 << ZELCompTowMask(2, true) << ZELCompTowMask(2, true) << qint32(1000000000) << 1.1
          << 0.9;
    }));
    ASSERT_EQ(link.GetNumTrajectories(), 1);
    const auto* trajectory = dynamic_cast<const ZELTPTowTrajectory*>(link.GetTrajectory(0));
    ASSERT_NE(trajectory, nullptr);
    EXPECT_TRUE(ZELTPTest::SameDoubles({1.1, 0.9}, trajectory->GetForcedRates()));
    EXPECT_EQ(trajectory->GetNumPoints(), 0);
    EXPECT_EQ(link.GetToCourse(), nullptr);
}
