// The plain trajectory: feed rate, points, owner. Its record inside its
// owner's is pinned here too, with a course link as the owner.

#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltpoffpartpoint.h>
#include <zeltptrajectory.h>

#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

namespace {

struct Fixture
{
    ZELGeoContainer container;
    ZELTPPoint* a = new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(0.0, 0.0, 100.0));
    ZELTPPoint* b = new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(10.0, 0.0, 100.0));
    ZELTPPoint* c = new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(20.0, 0.0, 100.0));
};

} // namespace

TEST(ZELTPTrajectory, KeepsItsFeedrateAndStartsWithoutPointsOrOwner)
{
    const ZELTPTrajectory trajectory(12000.0);
    EXPECT_TRUE(ZELTest::SameDouble(12000.0, trajectory.GetFeedrate(), ZELTest::kExact));
    EXPECT_EQ(trajectory.GetNumPoints(), 0);
    EXPECT_TRUE(trajectory.GetPoints().isEmpty());
    EXPECT_EQ(trajectory.GetOwner(), nullptr);
}

TEST(ZELTPTrajectory, AddPointAppendsInOrder)
{
    Fixture f;
    ZELTPTrajectory trajectory(5000.0);
    trajectory.AddPoint(f.a);
    trajectory.AddPoint(f.b);
    trajectory.AddPoint(f.c);
    EXPECT_EQ(trajectory.GetNumPoints(), 3);
    EXPECT_EQ(trajectory.GetPoints(), QList<ZELTPPoint*>({f.a, f.b, f.c}));
    EXPECT_EQ(trajectory.GetPoint(0), f.a);
    EXPECT_EQ(trajectory.GetPoint(2), f.c);
}

TEST(ZELTPTrajectory, GetPointOutsideThePointsThrows)
{
    Fixture f;
    ZELTPTrajectory trajectory(5000.0);
    EXPECT_THROW_MESSAGE(trajectory.GetPoint(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
    trajectory.AddPoint(f.a);
    trajectory.AddPoint(f.b);
    EXPECT_THROW_MESSAGE(trajectory.GetPoint(2), ZELSysOutOfBoundsException, "value 2 is out of bounds [0, 1]");
    EXPECT_THROW_MESSAGE(trajectory.GetPoint(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 1]");
}

TEST(ZELTPTrajectory, IndexOfPointFindsTheFirstEntryAndMinusOneForOthers)
{
    Fixture f;
    ZELTPTrajectory trajectory(5000.0);
    trajectory.AddPoint(f.a);
    trajectory.AddPoint(f.b);
    trajectory.AddPoint(f.a);
    EXPECT_EQ(trajectory.IndexOfPoint(f.a), 0);
    EXPECT_EQ(trajectory.IndexOfPoint(f.b), 1);
    EXPECT_EQ(trajectory.IndexOfPoint(f.c), -1);
    EXPECT_EQ(trajectory.IndexOfPoint(nullptr), -1);
}

TEST(ZELTPTrajectory, AddingANullPointThrowsAndChangesNothing)
{
    Fixture f;
    ZELTPTrajectory trajectory(5000.0);
    trajectory.AddPoint(f.a);
    EXPECT_THROW_MESSAGE(trajectory.AddPoint(nullptr), ZELSysException, "cannot add a null point to a trajectory");
    EXPECT_EQ(trajectory.GetPoints(), QList<ZELTPPoint*>({f.a}));
}

TEST(ZELTPTrajectory, OwnerIsTheGeometryItWasAddedTo)
{
    Fixture f;
    auto* link = new ZELTPCourseLink(&f.container, QStringLiteral("transfer"));
    auto* trajectory = new ZELTPTrajectory(5000.0);
    link->AddTrajectory(trajectory);
    EXPECT_EQ(trajectory->GetOwner(), link);
}

TEST(ZELTPTrajectory, AddPointMarksTheOwnersContainerModified)
{
    Fixture f;
    auto* link = new ZELTPCourseLink(&f.container, QStringLiteral("transfer"));
    auto* trajectory = new ZELTPTrajectory(5000.0);
    link->AddTrajectory(trajectory);
    f.container.SetModified(false);
    trajectory->AddPoint(f.a);
    EXPECT_TRUE(f.container.IsModified());
}

TEST(ZELTPTrajectory, AddPointWithoutOwnerLeavesTheContainerUnmodified)
{
    Fixture f;
    ZELTPTrajectory trajectory(5000.0);
    f.container.SetModified(false);
    trajectory.AddPoint(f.a);
    EXPECT_FALSE(f.container.IsModified());
}

TEST(ZELTPTrajectory, ADestroyedPointLeavesTheTrajectoryEveryTimeItWasAdded)
{
    Fixture f;
    ZELTPTrajectory trajectory(5000.0);
    trajectory.AddPoint(f.a);
    trajectory.AddPoint(f.b);
    trajectory.AddPoint(f.a);
    trajectory.AddPoint(f.c);
    f.container.DeleteGeometry(f.a);
    EXPECT_EQ(trajectory.GetPoints(), QList<ZELTPPoint*>({f.b, f.c}));
}

TEST(ZELTPTrajectory, DestroyingTheContainerBeforeTheTrajectoryEmptiesIt)
{
    auto container = std::make_unique<ZELGeoContainer>();
    ZELTPTrajectory trajectory(5000.0);
    trajectory.AddPoint(new ZELTPPoint(container.get(), ZELMathAxis()));
    trajectory.AddPoint(new ZELTPPoint(container.get(), ZELMathAxis()));
    container.reset();
    EXPECT_EQ(trajectory.GetNumPoints(), 0);
}

TEST(ZELTPTrajectory, RecordInItsOwnerIsTagFeedrateAndPointReferences)
{
    Fixture f;
    ZELTPCourseLink link(&f.container, QStringLiteral("transfer"));
    auto* trajectory = new ZELTPTrajectory(4500.0);
    trajectory->AddPoint(f.a);
    trajectory->AddPoint(f.c);
    link.AddTrajectory(trajectory);

    ZELGeoStream record(link.GetCurrentState(), nullptr);
    QString name;
    qint32 detail = -1;
    qint32 trajectories = -1;
    record >> name >> detail >> trajectories;
    ASSERT_EQ(trajectories, 1);
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << qint32(0) << 4500.0 << qint32(2) << f.a->GetReference() << f.c->GetReference();
    });
    EXPECT_EQ(record.device()->read(expected.size()), expected);
}

TEST(ZELTPTrajectory, SurvivesSaveAndLoadAsAPlainTrajectoryWithItsPoints)
{
    Fixture f;
    auto* link = new ZELTPCourseLink(&f.container, QStringLiteral("transfer"));
    auto* trajectory = new ZELTPTrajectory(4500.0);
    trajectory->AddPoint(f.b);
    trajectory->AddPoint(f.a);
    link->AddTrajectory(trajectory);

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(f.container, target);
    const QList<ZELTPPoint*> points = ZELTPTest::AllOf<ZELTPPoint>(loaded);
    const QList<ZELTPCourseLink*> links = ZELTPTest::AllOf<ZELTPCourseLink>(loaded);
    ASSERT_EQ(points.size(), 3);
    ASSERT_EQ(links.size(), 1);
    ASSERT_EQ(links.first()->GetNumTrajectories(), 1);
    const ZELTPTrajectory* copy = links.first()->GetTrajectory(0);
    EXPECT_EQ(typeid(*copy), typeid(ZELTPTrajectory));
    EXPECT_TRUE(ZELTest::SameDouble(4500.0, copy->GetFeedrate(), ZELTest::kExact));
    EXPECT_EQ(copy->GetPoints(), QList<ZELTPPoint*>({points.at(1), points.at(0)}));
    EXPECT_EQ(copy->GetOwner(), links.first());
    EXPECT_EQ(points.at(0)->GetTrajectory(), copy);
    EXPECT_EQ(points.at(2)->GetTrajectory(), nullptr);
}
