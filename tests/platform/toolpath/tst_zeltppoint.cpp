// A point's frame, tip and index, its record, and how it knows the
// trajectories that hold it.

#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltppoint.h>
#include <zeltptrajectory.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <memory>

using ZELTPTest::Same;
using ZELTPTest::TiltedFrame;

TEST(ZELTPPoint, LoadingConstructionGivesTheWorldFrameAndNoIndex)
{
    const ZELTPPoint point(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(Same(ZELMathAxis(), point.GetToolFrame()));
    EXPECT_EQ(point.GetIndex(), -1);
    EXPECT_EQ(point.GetTrajectory(), nullptr);
}

TEST(ZELTPPoint, CreatingConstructorKeepsTheFrameInTheGivenContainerWithoutIndex)
{
    ZELGeoContainer container;
    const ZELTPPoint* point = new ZELTPPoint(&container, TiltedFrame());
    EXPECT_TRUE(Same(TiltedFrame(), point->GetToolFrame()));
    EXPECT_EQ(point->GetContainer(), &container);
    EXPECT_EQ(point->GetIndex(), -1);
    EXPECT_EQ(point->GetTrajectory(), nullptr);
}

TEST(ZELTPPoint, SetToolFrameReplacesTheFrameAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    container.SetModified(false);
    point->SetToolFrame(TiltedFrame());
    EXPECT_TRUE(Same(TiltedFrame(), point->GetToolFrame()));
    EXPECT_TRUE(container.IsModified());
}

TEST(ZELTPPoint, TipCoordinatesAreTheFrameOrigin)
{
    ZELTPPoint point(nullptr, TiltedFrame());
    EXPECT_TRUE(Same(ZELMathPoint(1250.5, -37.25, 812.125), point.GetTipCoordinates()));
    point.SetToolFrame(ZELTPTest::FrameAt(-3.0, 4.5, 0.25));
    EXPECT_TRUE(Same(ZELMathPoint(-3.0, 4.5, 0.25), point.GetTipCoordinates()));
}

TEST(ZELTPPoint, SetIndexReplacesTheIndexAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    container.SetModified(false);
    point->SetIndex(41);
    EXPECT_EQ(point->GetIndex(), 41);
    EXPECT_TRUE(container.IsModified());
    point->SetIndex(-1);
    EXPECT_EQ(point->GetIndex(), -1);
}

TEST(ZELTPPoint, RecordIsTheFrameInItsStreamFormThenTheIndex)
{
    ZELTPPoint point(nullptr, TiltedFrame());
    point.SetIndex(7);
    const QByteArray expected = ZELTPTest::Record([](ZELGeoStream& s) { s << TiltedFrame() << qint32(7); });
    EXPECT_EQ(point.GetCurrentState(), expected);
}

TEST(ZELTPPoint, FrameAndIndexSurviveSaveAndLoadBitForBit)
{
    ZELGeoContainer source;
    (new ZELTPPoint(&source, TiltedFrame()))->SetIndex(12);
    new ZELTPPoint(&source, ZELTPTest::FrameAt(1.0, 2.0, 3.0));

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    const QList<ZELTPPoint*> points = ZELTPTest::AllOf<ZELTPPoint>(loaded);
    ASSERT_EQ(points.size(), 2);
    EXPECT_STREQ(points.at(0)->metaObject()->className(), "ZELTPPoint");
    EXPECT_TRUE(Same(TiltedFrame(), points.at(0)->GetToolFrame()));
    EXPECT_EQ(points.at(0)->GetIndex(), 12);
    EXPECT_EQ(points.at(1)->GetIndex(), -1);
}

TEST(ZELTPPoint, ARecordThatEndsAfterTheFrameReadsIndexZero)
{
    // Past the end of a record every number reads as zero.
    ZELTPPoint point(nullptr, ZELMathAxis());
    point.SetIndex(5);
    point.SetCurrentState(ZELTPTest::Record([](ZELGeoStream& s) { s << TiltedFrame(); }));
    EXPECT_TRUE(Same(TiltedFrame(), point.GetToolFrame()));
    EXPECT_EQ(point.GetIndex(), 0);
}

TEST(ZELTPPoint, TrajectoryIsTheOneThatAddedThePoint)
{
    ZELGeoContainer container;
    ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    ZELTPTrajectory trajectory(1000.0);
    trajectory.AddPoint(point);
    EXPECT_EQ(point->GetTrajectory(), &trajectory);
}

TEST(ZELTPPoint, ASharedPointReportsTheTrajectoryThatAddedItLast)
{
    ZELGeoContainer container;
    ZELTPPoint* shared = new ZELTPPoint(&container, ZELMathAxis());
    ZELTPTrajectory first(1000.0);
    ZELTPTrajectory second(2000.0);
    first.AddPoint(shared);
    second.AddPoint(shared);
    EXPECT_EQ(shared->GetTrajectory(), &second);
}

TEST(ZELTPPoint, FallsBackToTheEarlierTrajectoryWhenTheLaterIsDestroyedAndToNullAfterBoth)
{
    ZELGeoContainer container;
    ZELTPPoint* shared = new ZELTPPoint(&container, ZELMathAxis());
    auto first = std::make_unique<ZELTPTrajectory>(1000.0);
    auto second = std::make_unique<ZELTPTrajectory>(2000.0);
    first->AddPoint(shared);
    second->AddPoint(shared);
    second.reset();
    EXPECT_EQ(shared->GetTrajectory(), first.get());
    first.reset();
    EXPECT_EQ(shared->GetTrajectory(), nullptr);
}

TEST(ZELTPPoint, LosesItsTrajectoryWhenTheOwningLinkIsDeleted)
{
    ZELGeoContainer container;
    ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("transfer"));
    auto* trajectory = new ZELTPTrajectory(1000.0);
    link->AddTrajectory(trajectory);
    trajectory->AddPoint(point);
    container.DeleteGeometry(link);
    EXPECT_EQ(point->GetTrajectory(), nullptr);
}

TEST(ZELTPPoint, ADestroyedPointLeavesEveryTrajectoryThatHeldIt)
{
    ZELGeoContainer container;
    ZELTPPoint* kept = new ZELTPPoint(&container, ZELMathAxis());
    ZELTPPoint* gone = new ZELTPPoint(&container, ZELMathAxis());
    ZELTPTrajectory first(1000.0);
    ZELTPTrajectory second(2000.0);
    first.AddPoint(kept);
    first.AddPoint(gone);
    second.AddPoint(gone);
    second.AddPoint(kept);
    second.AddPoint(gone);
    container.DeleteGeometry(gone);
    EXPECT_EQ(first.GetPoints(), QList<ZELTPPoint*>({kept}));
    EXPECT_EQ(second.GetPoints(), QList<ZELTPPoint*>({kept}));
}

TEST(ZELTPPoint, TheTrajectoryIsNotPartOfTheRecord)
{
    ZELGeoContainer container;
    ZELTPPoint* point = new ZELTPPoint(&container, TiltedFrame());
    const QByteArray alone = point->GetCurrentState();
    ZELTPTrajectory trajectory(1000.0);
    trajectory.AddPoint(point);
    EXPECT_EQ(point->GetCurrentState(), alone);
}
