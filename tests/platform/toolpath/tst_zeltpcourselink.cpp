// What a course link keeps beside its name: the points detail, its
// trajectories and their points as one list, and the course it leads to. The
// name itself is tested with the other named objects in tst_zeltpobject.cpp.

#include "zeltptestsupport.h"

#include <zeltpcourse.h>
#include <zeltpcourselink.h>
#include <zeltpoffpartpoint.h>
#include <zeltptrajectory.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

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

TEST_P(ZELTPCourseLinkDetail, FollowsTheNameInTheRecord)
{
    ZELTPCourseLink link(nullptr, QStringLiteral("retract"));
    link.SetPointsDetail(GetParam().detail);
    // No trajectories and no to-course follow the detail.
    const qint32 detail = qint32(GetParam().detail);
    const QByteArray expected = ZELTPTest::Record([detail](ZELGeoStream& s) {
        s << QStringLiteral("retract") << detail << qint32(0) << ZELGeoGeometryRef();
    });
    EXPECT_EQ(link.GetCurrentState(), expected);
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

namespace {

// A link of three trajectories: approach a b, transfer b c d, descent d e,
// where consecutive trajectories share their end points.
struct TransferLink
{
    ZELGeoContainer container;
    ZELTPCourseLink* link = new ZELTPCourseLink(&container, QStringLiteral("transfer"));
    QList<ZELTPPoint*> p;
    ZELTPTrajectory* lift = new ZELTPTrajectory(5000.0);
    ZELTPTrajectory* transfer = new ZELTPTrajectory(30000.0);
    ZELTPTrajectory* descent = new ZELTPTrajectory(5000.0);

    TransferLink()
    {
        for (int i = 0; i < 5; ++i)
            p.append(new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(100.0 * i, 0.0, 80.0)));
        lift->AddPoint(p[0]);
        lift->AddPoint(p[1]);
        transfer->AddPoint(p[1]);
        transfer->AddPoint(p[2]);
        transfer->AddPoint(p[3]);
        descent->AddPoint(p[3]);
        descent->AddPoint(p[4]);
        link->AddTrajectory(lift);
        link->AddTrajectory(transfer);
        link->AddTrajectory(descent);
    }
};

} // namespace

TEST(ZELTPCourseLink, StartsWithoutTrajectoriesPointsOrToCourse)
{
    const ZELTPCourseLink loading(nullptr, ZELGeoGeometryRef());
    const ZELTPCourseLink creating(nullptr, QStringLiteral("approach"));
    for (const ZELTPCourseLink* link : {&loading, &creating}) {
        EXPECT_EQ(link->GetNumTrajectories(), 0);
        EXPECT_EQ(link->GetNumPoints(), 0);
        EXPECT_TRUE(link->GetPoints().isEmpty());
        EXPECT_EQ(link->GetToCourse(), nullptr);
    }
}

TEST(ZELTPCourseLink, AddTrajectoryAppendsTakesOwnershipAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    auto* first = new ZELTPTrajectory(5000.0);
    auto* second = new ZELTPTrajectory(8000.0);
    container.SetModified(false);
    link->AddTrajectory(first);
    EXPECT_TRUE(container.IsModified());
    link->AddTrajectory(second);
    EXPECT_EQ(link->GetNumTrajectories(), 2);
    EXPECT_EQ(link->GetTrajectory(0), first);
    EXPECT_EQ(link->GetTrajectory(1), second);
    EXPECT_EQ(first->GetOwner(), link);
}

TEST(ZELTPCourseLink, GetTrajectoryOutsideTheTrajectoriesThrows)
{
    TransferLink t;
    EXPECT_THROW_MESSAGE(t.link->GetTrajectory(3), ZELSysOutOfBoundsException, "value 3 is out of bounds [0, 2]");
    EXPECT_THROW_MESSAGE(t.link->GetTrajectory(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 2]");
}

TEST(ZELTPCourseLink, AddingANullOrOwnedTrajectoryThrowsAndChangesNothing)
{
    TransferLink t;
    auto* other = new ZELTPCourseLink(&t.container, QStringLiteral("other"));
    EXPECT_THROW_MESSAGE(other->AddTrajectory(nullptr), ZELSysException, "cannot add a null trajectory");
    EXPECT_THROW_MESSAGE(other->AddTrajectory(t.transfer), ZELSysException, "trajectory already has an owner");
    EXPECT_EQ(other->GetNumTrajectories(), 0);
    EXPECT_EQ(t.transfer->GetOwner(), t.link);
}

TEST(ZELTPCourseLink, PointsAreEveryTrajectorysPointsInOrderSharedOnesTwice)
{
    TransferLink t;
    EXPECT_EQ(t.link->GetNumPoints(), 7);
    const QList<ZELTPPoint*> expected({t.p[0], t.p[1], t.p[1], t.p[2], t.p[3], t.p[3], t.p[4]});
    EXPECT_EQ(t.link->GetPoints(), expected);
    for (int index = 0; index < expected.size(); ++index)
        EXPECT_EQ(t.link->GetPoint(index), expected.at(index)) << index;
}

TEST(ZELTPCourseLink, GetPointOutsideThePointsThrows)
{
    TransferLink t;
    EXPECT_THROW_MESSAGE(t.link->GetPoint(7), ZELSysOutOfBoundsException, "value 7 is out of bounds [0, 6]");
    EXPECT_THROW_MESSAGE(t.link->GetPoint(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 6]");
    const ZELTPCourseLink empty(nullptr, QString());
    EXPECT_THROW_MESSAGE(empty.GetPoint(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
}

TEST(ZELTPCourseLink, PointsSkipTrajectoriesWithoutPoints)
{
    ZELGeoContainer container;
    ZELTPCourseLink link(&container, QString());
    auto* point = new ZELTPOffPartPoint(&container, ZELMathAxis());
    auto* loaded = new ZELTPTrajectory(1000.0);
    loaded->AddPoint(point);
    link.AddTrajectory(new ZELTPTrajectory(1000.0));
    link.AddTrajectory(loaded);
    link.AddTrajectory(new ZELTPTrajectory(1000.0));
    EXPECT_EQ(link.GetNumPoints(), 1);
    EXPECT_EQ(link.GetPoint(0), point);
}

TEST(ZELTPCourseLink, SetToCourseKeepsTheCourseAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    auto* course = new ZELTPCourse(&container, QStringLiteral("course 1"));
    container.SetModified(false);
    link->SetToCourse(course);
    EXPECT_EQ(link->GetToCourse(), course);
    EXPECT_TRUE(container.IsModified());
    link->SetToCourse(nullptr);
    EXPECT_EQ(link->GetToCourse(), nullptr);
}

TEST(ZELTPCourseLink, ToCourseReadsNullOnceTheCourseIsDestroyed)
{
    ZELGeoContainer container;
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    auto* course = new ZELTPCourse(&container, QStringLiteral("course 1"));
    link->SetToCourse(course);
    container.DeleteGeometry(course);
    EXPECT_EQ(link->GetToCourse(), nullptr);
}

TEST(ZELTPCourseLink, RecordIsNameDetailTrajectoriesThenToCourse)
{
    TransferLink t;
    auto* course = new ZELTPCourse(&t.container, QStringLiteral("course 2"));
    t.link->SetToCourse(course);
    t.link->SetPointsDetail(ZELTPCourseLink::PointsDetailMedium);
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("transfer") << qint32(1) << qint32(3);
        s << qint32(0) << 5000.0 << qint32(2) << t.p[0]->GetReference() << t.p[1]->GetReference();
        s << qint32(0) << 30000.0 << qint32(3) << t.p[1]->GetReference() << t.p[2]->GetReference()
          << t.p[3]->GetReference();
        s << qint32(0) << 5000.0 << qint32(2) << t.p[3]->GetReference() << t.p[4]->GetReference();
        s << course->GetReference();
    });
    EXPECT_EQ(t.link->GetCurrentState(), expected);
}

TEST(ZELTPCourseLink, TrajectoriesAndToCourseSurviveSaveAndLoad)
{
    TransferLink t;
    t.link->SetToCourse(new ZELTPCourse(&t.container, QStringLiteral("course 2")));

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(t.container, target);
    const QList<ZELTPCourseLink*> links = ZELTPTest::AllOf<ZELTPCourseLink>(loaded);
    const QList<ZELTPPoint*> p = ZELTPTest::AllOf<ZELTPPoint>(loaded);
    ASSERT_EQ(links.size(), 1);
    ASSERT_EQ(p.size(), 5);
    const ZELTPCourseLink* link = links.first();
    EXPECT_EQ(link->GetToCourse(), ZELTPTest::AllOf<ZELTPCourse>(loaded).first());
    ASSERT_EQ(link->GetNumTrajectories(), 3);
    EXPECT_TRUE(ZELTest::SameDouble(30000.0, link->GetTrajectory(1)->GetFeedrate(), ZELTest::kExact));
    EXPECT_EQ(link->GetPoints(), QList<ZELTPPoint*>({p[0], p[1], p[1], p[2], p[3], p[3], p[4]}));
    EXPECT_EQ(p[1]->GetTrajectory(), link->GetTrajectory(1));
}

TEST(ZELTPCourseLink, AToCourseThatNamesNothingThrowsNotFound)
{
    ZELGeoContainer container;
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    const QByteArray record = ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("approach") << qint32(2) << qint32(0) << ZELGeoGeometryRef(77);
    });
    EXPECT_THROW_MESSAGE(link->SetCurrentState(record), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELTPCourse with reference 77");
}

TEST(ZELTPCourseLink, ATrajectoryCountBeyondTheRecordStopsAtItsEnd)
{
    ZELGeoContainer container;
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    auto* point = new ZELTPOffPartPoint(&container, ZELMathAxis());
    link->SetCurrentState(ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("approach") << qint32(0) << qint32(2000000000) << qint32(0) << 900.0 << qint32(2000000000)
          << point->GetReference();
    }));
    ASSERT_EQ(link->GetNumTrajectories(), 1);
    EXPECT_EQ(link->GetPoints(), QList<ZELTPPoint*>({point}));
    EXPECT_EQ(link->GetPointsDetail(), ZELTPCourseLink::PointsDetailLow);
}

TEST(ZELTPCourseLink, AnEmptyPointReferenceIsLeftOut)
{
    ZELGeoContainer container;
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    auto* point = new ZELTPOffPartPoint(&container, ZELMathAxis());
    link->SetCurrentState(ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("approach") << qint32(2) << qint32(1) << qint32(0) << 900.0 << qint32(2)
          << ZELGeoGeometryRef() << point->GetReference() << ZELGeoGeometryRef();
    }));
    EXPECT_EQ(link->GetPoints(), QList<ZELTPPoint*>({point}));
}

TEST(ZELTPCourseLink, EveryTruncationOfItsRecordLoadsWithoutCrashing)
{
    TransferLink t;
    t.link->SetToCourse(new ZELTPCourse(&t.container, QStringLiteral("course 2")));
    const QByteArray whole = t.link->GetCurrentState();
    auto* reader = new ZELTPCourseLink(&t.container, QString());
    for (qsizetype length = 0; length < whole.size(); ++length) {
        reader->SetCurrentState(whole.left(length));
        EXPECT_LE(reader->GetNumTrajectories(), 3) << length;
        EXPECT_LE(reader->GetNumPoints(), 7) << length;
        EXPECT_EQ(reader->GetToCourse(), nullptr) << length;
    }
    reader->SetCurrentState(whole);
    EXPECT_EQ(reader->GetNumPoints(), 7);
    EXPECT_NE(reader->GetToCourse(), nullptr);
}
