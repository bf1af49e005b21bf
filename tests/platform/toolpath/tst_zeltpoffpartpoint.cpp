#include "zeltptestsupport.h"

#include <zeltpoffpartpoint.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

using ZELTPTest::Same;
using ZELTPTest::TiltedFrame;

TEST(ZELTPOffPartPoint, IsAToolpathPoint)
{
    const ZELTPOffPartPoint point(nullptr, TiltedFrame());
    EXPECT_NE(qobject_cast<const ZELTPPoint*>(&point), nullptr);
}

TEST(ZELTPOffPartPoint, LoadingConstructionGivesTheWorldFrameAndNoIndex)
{
    const ZELTPOffPartPoint point(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(Same(ZELMathAxis(), point.GetToolFrame()));
    EXPECT_EQ(point.GetIndex(), -1);
    EXPECT_EQ(point.GetTrajectory(), nullptr);
}

TEST(ZELTPOffPartPoint, CreatingConstructorKeepsTheFrameInTheGivenContainerWithoutIndex)
{
    ZELGeoContainer container;
    const ZELTPOffPartPoint* point = new ZELTPOffPartPoint(&container, TiltedFrame());
    EXPECT_TRUE(Same(TiltedFrame(), point->GetToolFrame()));
    EXPECT_TRUE(Same(TiltedFrame().GetOrigin(), point->GetTipCoordinates()));
    EXPECT_EQ(point->GetContainer(), &container);
    EXPECT_EQ(point->GetIndex(), -1);
}

TEST(ZELTPOffPartPoint, RecordIsThatOfAPoint)
{
    ZELTPOffPartPoint point(nullptr, TiltedFrame());
    point.SetIndex(3);
    const QByteArray expected = ZELTPTest::Record([](ZELGeoStream& s) { s << TiltedFrame() << qint32(3); });
    EXPECT_EQ(point.GetCurrentState(), expected);
}

TEST(ZELTPOffPartPoint, SurvivesSaveAndLoadAsAnOffPartPoint)
{
    ZELGeoContainer source;
    new ZELTPOffPartPoint(&source, TiltedFrame());

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    ASSERT_EQ(loaded.size(), 1);
    const auto* point = qobject_cast<const ZELTPOffPartPoint*>(loaded.first());
    ASSERT_NE(point, nullptr);
    EXPECT_TRUE(Same(TiltedFrame(), point->GetToolFrame()));
    EXPECT_EQ(point->GetIndex(), -1);
}
