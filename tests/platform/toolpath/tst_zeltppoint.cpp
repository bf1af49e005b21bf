#include "zeltptestsupport.h"

#include <zeltppoint.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <array>

namespace {

std::array<double, 12> Components(const ZELMathAxis& frame)
{
    const ZELMathPoint o = frame.GetOrigin();
    const ZELMathVector u = frame.GetUDirection();
    const ZELMathVector v = frame.GetVDirection();
    const ZELMathVector w = frame.GetWDirection();
    return {o.GetX(), o.GetY(), o.GetZ(), u.GetX(), u.GetY(), u.GetZ(),
            v.GetX(), v.GetY(), v.GetZ(), w.GetX(), w.GetY(), w.GetZ()};
}

::testing::AssertionResult SameFrame(const ZELMathAxis& expected, const ZELMathAxis& actual)
{
    const std::array<double, 12> e = Components(expected);
    const std::array<double, 12> a = Components(actual);
    for (std::size_t i = 0; i < e.size(); ++i) {
        ::testing::AssertionResult same = ZELTest::SameDouble(e[i], a[i], ZELTest::kExact);
        if (!same)
            return same << " at component " << i;
    }
    return ::testing::AssertionSuccess();
}

// A tilted frame whose directions carry the rounding of their normalisation.
ZELMathAxis TiltedFrame()
{
    return ZELMathAxis(ZELMathPoint(1250.5, -37.25, 812.125), ZELMathVector(1.0, 1.0, 0.0),
                       ZELMathVector(-1.0, 1.0, 1.0), ZELMathVector(1.0, -1.0, 2.0));
}

} // namespace

TEST(ZELTPPoint, LoadingConstructionGivesTheWorldFrame)
{
    const ZELTPPoint point(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(SameFrame(ZELMathAxis(), point.GetToolFrame()));
}

TEST(ZELTPPoint, CreatingConstructorKeepsTheFrameInTheGivenContainer)
{
    ZELGeoContainer container;
    const ZELTPPoint* point = new ZELTPPoint(&container, TiltedFrame());
    EXPECT_TRUE(SameFrame(TiltedFrame(), point->GetToolFrame()));
    EXPECT_EQ(point->GetContainer(), &container);
}

TEST(ZELTPPoint, SetToolFrameReplacesTheFrameAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    container.SetModified(false);
    point->SetToolFrame(TiltedFrame());
    EXPECT_TRUE(SameFrame(TiltedFrame(), point->GetToolFrame()));
    EXPECT_TRUE(container.IsModified());
}

TEST(ZELTPPoint, RecordIsTheFrameInItsStreamForm)
{
    const ZELTPPoint point(nullptr, TiltedFrame());
    ZELGeoStream record(point.GetCurrentState(), nullptr);
    ZELMathAxis frame;
    record >> frame;
    EXPECT_TRUE(SameFrame(TiltedFrame(), frame));
    EXPECT_TRUE(record.atEnd());
}

TEST(ZELTPPoint, FrameSurvivesSaveAndLoadBitForBit)
{
    ZELGeoContainer source;
    new ZELTPPoint(&source, TiltedFrame());

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    ASSERT_EQ(loaded.size(), 1);
    const auto* point = qobject_cast<const ZELTPPoint*>(loaded.first());
    ASSERT_NE(point, nullptr);
    EXPECT_TRUE(SameFrame(TiltedFrame(), point->GetToolFrame()));
}
