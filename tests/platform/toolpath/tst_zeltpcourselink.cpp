// What a course link keeps beside its name: the points detail. The name
// itself is tested with the other named objects in tst_zeltpobject.cpp.

#include "zeltptestsupport.h"

#include <zeltpcourselink.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

namespace {

using Detail = ZELTPCourseLink::PointsDetail;

struct DetailCase
{
    const char* name;
    Detail detail;
};
ZELTEST_PRINT_CASE_BY_NAME(DetailCase);

const DetailCase kDetailCases[] = {
    {"Low", ZELTPCourseLink::PointsDetailLow},
    {"Medium", ZELTPCourseLink::PointsDetailMedium},
    {"Full", ZELTPCourseLink::PointsDetailFull},
    // Records may carry values the enumeration does not name.
    {"Unnamed", Detail(7)},
};

class ZELTPCourseLinkDetail : public ::testing::TestWithParam<DetailCase>
{
};

} // namespace

TEST(ZELTPCourseLink, PointsDetailValuesAreFixed)
{
    EXPECT_EQ(int(ZELTPCourseLink::PointsDetailLow), 0);
    EXPECT_EQ(int(ZELTPCourseLink::PointsDetailMedium), 1);
    EXPECT_EQ(int(ZELTPCourseLink::PointsDetailFull), 2);
}

TEST(ZELTPCourseLink, IsOfFullDetailAfterEitherConstruction)
{
    const ZELTPCourseLink loading(nullptr, ZELGeoGeometryRef());
    const ZELTPCourseLink creating(nullptr, QStringLiteral("approach"));
    EXPECT_EQ(loading.GetPointsDetail(), ZELTPCourseLink::PointsDetailFull);
    EXPECT_EQ(creating.GetPointsDetail(), ZELTPCourseLink::PointsDetailFull);
}

TEST(ZELTPCourseLink, SetPointsDetailMarksTheContainerModified)
{
    ZELGeoContainer container;
    ZELTPCourseLink* link = new ZELTPCourseLink(&container, QStringLiteral("transfer"));
    container.SetModified(false);
    link->SetPointsDetail(ZELTPCourseLink::PointsDetailLow);
    EXPECT_EQ(link->GetPointsDetail(), ZELTPCourseLink::PointsDetailLow);
    EXPECT_TRUE(container.IsModified());
}

TEST_P(ZELTPCourseLinkDetail, FollowsTheNameAsTheRestOfTheRecord)
{
    ZELTPCourseLink link(nullptr, QStringLiteral("retract"));
    link.SetPointsDetail(GetParam().detail);
    ZELGeoStream record(link.GetCurrentState(), nullptr);
    QString name;
    qint32 detail = -1;
    record >> name >> detail;
    EXPECT_EQ(name, QStringLiteral("retract"));
    EXPECT_EQ(detail, qint32(GetParam().detail));
    EXPECT_TRUE(record.atEnd());
}

TEST_P(ZELTPCourseLinkDetail, SurvivesSaveAndLoad)
{
    ZELGeoContainer source;
    (new ZELTPCourseLink(&source, QStringLiteral("retract")))->SetPointsDetail(GetParam().detail);

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    ASSERT_EQ(loaded.size(), 1);
    const auto* link = qobject_cast<const ZELTPCourseLink*>(loaded.first());
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->GetName(), QStringLiteral("retract"));
    EXPECT_EQ(link->GetPointsDetail(), GetParam().detail);
}

TEST_P(ZELTPCourseLinkDetail, IsReplacedWhenALoadedStateIsSet)
{
    ZELTPCourseLink link(nullptr, QStringLiteral("old"));
    link.SetPointsDetail(GetParam().detail == ZELTPCourseLink::PointsDetailLow ? ZELTPCourseLink::PointsDetailFull
                                                                              : ZELTPCourseLink::PointsDetailLow);
    ZELTPCourseLink other(nullptr, QStringLiteral("new"));
    other.SetPointsDetail(GetParam().detail);
    link.SetCurrentState(other.GetCurrentState());
    EXPECT_EQ(link.GetPointsDetail(), GetParam().detail);
}

INSTANTIATE_TEST_SUITE_P(Details, ZELTPCourseLinkDetail, ::testing::ValuesIn(kDetailCases));
