#include "zeltptestsupport.h"

#include <zeltpcourse.h>
#include <zeltpoffpartpoint.h>
#include <zeltptoolchangelink.h>
#include <zeltptrajectory.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

namespace {

ZELTPMachineConfiguration Narrow()
{
    return ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R25"), 25.4),
                                     ZELTPAFPHead(QStringLiteral("H8"), 3.175));
}

ZELTPMachineConfiguration Wide()
{
    return ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R100"), 101.6),
                                     ZELTPAFPHead(QStringLiteral("H16"), 6.35));
}

::testing::AssertionResult SameConfiguration(const ZELTPMachineConfiguration& expected,
                                             const ZELTPMachineConfiguration& actual)
{
    if (expected.GetTool().GetName() != actual.GetTool().GetName()
        || expected.GetHead().GetName() != actual.GetHead().GetName())
        return ::testing::AssertionFailure() << "names differ";
    ::testing::AssertionResult width =
        ZELTest::SameDouble(expected.GetTool().GetWidth(), actual.GetTool().GetWidth(), ZELTest::kExact);
    if (!width)
        return width << " (roller width)";
    ::testing::AssertionResult towWidth =
        ZELTest::SameDouble(expected.GetHead().GetTowWidth(), actual.GetHead().GetTowWidth(), ZELTest::kExact);
    if (!towWidth)
        return towWidth << " (tow width)";
    return ::testing::AssertionSuccess();
}

} // namespace

TEST(ZELTPToolChangeLink, IsACourseLinkOfFullDetail)
{
    const ZELTPToolChangeLink link(nullptr, QStringLiteral("tool change"));
    EXPECT_NE(qobject_cast<const ZELTPCourseLink*>(&link), nullptr);
    EXPECT_EQ(link.GetPointsDetail(), ZELTPCourseLink::PointsDetailFull);
}

TEST(ZELTPToolChangeLink, StartsWithoutToolRemovePointAndWithDefaultConfigurations)
{
    const ZELTPToolChangeLink loading(nullptr, ZELGeoGeometryRef());
    const ZELTPToolChangeLink creating(nullptr, QStringLiteral("tool change"));
    for (const ZELTPToolChangeLink* link : {&loading, &creating}) {
        EXPECT_EQ(link->GetToolRemovePoint(), nullptr);
        EXPECT_TRUE(SameConfiguration(ZELTPMachineConfiguration(), link->GetPreviousMachineConfiguration()));
        EXPECT_TRUE(SameConfiguration(ZELTPMachineConfiguration(), link->GetNextMachineConfiguration()));
    }
}

TEST(ZELTPToolChangeLink, SettersKeepTheirValuesAndMarkTheContainerModified)
{
    ZELGeoContainer container;
    auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("tool change"));
    auto* point = new ZELTPOffPartPoint(&container, ZELMathAxis());

    container.SetModified(false);
    link->SetToolRemovePoint(point);
    EXPECT_TRUE(container.IsModified());
    EXPECT_EQ(link->GetToolRemovePoint(), point);

    container.SetModified(false);
    link->SetPreviousMachineConfiguration(Narrow());
    EXPECT_TRUE(container.IsModified());
    EXPECT_TRUE(SameConfiguration(Narrow(), link->GetPreviousMachineConfiguration()));

    container.SetModified(false);
    link->SetNextMachineConfiguration(Wide());
    EXPECT_TRUE(container.IsModified());
    EXPECT_TRUE(SameConfiguration(Wide(), link->GetNextMachineConfiguration()));
}

TEST(ZELTPToolChangeLink, ToolRemovePointReadsNullOnceDestroyed)
{
    ZELGeoContainer container;
    auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("tool change"));
    auto* point = new ZELTPOffPartPoint(&container, ZELMathAxis());
    link->SetToolRemovePoint(point);
    container.DeleteGeometry(point);
    EXPECT_EQ(link->GetToolRemovePoint(), nullptr);
}

TEST(ZELTPToolChangeLink, RecordIsTheLinksThenRemovePointAndBothConfigurations)
{
    ZELGeoContainer container;
    auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("tool change"));
    auto* point = new ZELTPOffPartPoint(&container, ZELMathAxis());
    auto* trajectory = new ZELTPTrajectory(15000.0);
    trajectory->AddPoint(point);
    link->AddTrajectory(trajectory);
    link->SetPointsDetail(ZELTPCourseLink::PointsDetailLow);
    link->SetToolRemovePoint(point);
    link->SetPreviousMachineConfiguration(Narrow());
    link->SetNextMachineConfiguration(Wide());
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("tool change") << qint32(0) << qint32(1) << qint32(0) << 15000.0 << qint32(1)
          << point->GetReference() << ZELGeoGeometryRef();
        s << point->GetReference() << QStringLiteral("R25") << 25.4 << QStringLiteral("H8") << 3.175
          << QStringLiteral("R100") << 101.6 << QStringLiteral("H16") << 6.35;
    });
    EXPECT_EQ(link->GetCurrentState(), expected);
}

TEST(ZELTPToolChangeLink, SurvivesSaveAndLoadAsAToolChangeLink)
{
    ZELGeoContainer source;
    auto* link = new ZELTPToolChangeLink(&source, QStringLiteral("tool change"));
    auto* point = new ZELTPOffPartPoint(&source, ZELTPTest::FrameAt(0.0, 0.0, 500.0));
    auto* course = new ZELTPCourse(&source, QStringLiteral("course 3"));
    auto* trajectory = new ZELTPTrajectory(15000.0);
    trajectory->AddPoint(point);
    link->AddTrajectory(trajectory);
    link->SetToCourse(course);
    link->SetToolRemovePoint(point);
    link->SetPreviousMachineConfiguration(Narrow());
    link->SetNextMachineConfiguration(Wide());

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    const QList<ZELTPToolChangeLink*> links = ZELTPTest::AllOf<ZELTPToolChangeLink>(loaded);
    const QList<ZELTPPoint*> points = ZELTPTest::AllOf<ZELTPPoint>(loaded);
    ASSERT_EQ(links.size(), 1);
    ASSERT_EQ(points.size(), 1);
    EXPECT_EQ(links.first()->GetToolRemovePoint(), points.first());
    EXPECT_EQ(links.first()->GetPoints(), QList<ZELTPPoint*>({points.first()}));
    EXPECT_EQ(links.first()->GetToCourse(), ZELTPTest::AllOf<ZELTPCourse>(loaded).first());
    EXPECT_TRUE(SameConfiguration(Narrow(), links.first()->GetPreviousMachineConfiguration()));
    EXPECT_TRUE(SameConfiguration(Wide(), links.first()->GetNextMachineConfiguration()));
}

TEST(ZELTPToolChangeLink, AToolRemovePointThatNamesNothingThrowsNotFound)
{
    ZELGeoContainer container;
    auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("tool change"));
    const QByteArray record = ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("tool change") << qint32(2) << qint32(0) << ZELGeoGeometryRef() << ZELGeoGeometryRef(31);
    });
    EXPECT_THROW_MESSAGE(link->SetCurrentState(record), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELTPPoint with reference 31");
}
