// The tow course: its tow and tooling fields, its chain of trajectories with
// the named members found by position, its on-part point count and its
// record.

#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltpoffpartpoint.h>
#include <zeltponparttrajectory.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <functional>
#include <vector>

namespace {

enum class Kind { Plain, OnPart, Tow };

ZELTPTrajectory* Make(Kind kind)
{
    switch (kind) {
    case Kind::Plain:
        return new ZELTPTrajectory(20000.0);
    case Kind::OnPart:
        return new ZELTPOnPartTrajectory(3000.0, 0.0, 0.0, 0.0);
    case Kind::Tow:
        return new ZELTPTowTrajectory(6000.0, 0.0, 0.0, 0.0, ZELCompTowMask(8, true), ZELCompTowMask(8, false), {});
    }
    return nullptr;
}

ZELTPMachineConfiguration Tooling()
{
    return ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R50"), 50.8),
                                     ZELTPAFPHead(QStringLiteral("H8"), 6.35));
}

// The members of a chain by index; -1 where the accessor must answer null.
struct ChainCase
{
    const char* name;
    std::vector<Kind> chain;
    int approach;
    int rollIn;
    int rollOut;
    int retract;
};
ZELTEST_PRINT_CASE_BY_NAME(ChainCase);

const ChainCase kChains[] = {
    {"Empty", {}, -1, -1, -1, -1},
    {"One", {Kind::Plain}, -1, -1, -1, -1},
    {"ThreeHasNoNamedMembers", {Kind::Plain, Kind::OnPart, Kind::Plain}, -1, -1, -1, -1},
    {"FourWithoutTows", {Kind::Plain, Kind::OnPart, Kind::OnPart, Kind::Plain}, 0, 1, 2, 3},
    {"SixWithTwoTowTrajectories",
     {Kind::Plain, Kind::OnPart, Kind::Tow, Kind::Tow, Kind::OnPart, Kind::Plain},
     0,
     1,
     4,
     5},
    {"RollsThatAreNotOnPart", {Kind::Plain, Kind::Plain, Kind::Plain, Kind::Plain}, 0, -1, -1, 3},
    {"TowTrajectoriesCountAsOnPart", {Kind::Plain, Kind::Tow, Kind::Tow, Kind::Plain}, 0, 1, 2, 3},
    {"RollOutNotOnPart", {Kind::Plain, Kind::OnPart, Kind::Tow, Kind::Plain, Kind::Plain}, 0, 1, -1, 4},
};

class ZELTPTowCourseChain : public ::testing::TestWithParam<ChainCase>
{
};

ZELTPTrajectory* Member(const ZELTPTowCourse& course, int index)
{
    return index < 0 ? nullptr : course.GetTrajectory(index);
}

// A course laid from an approach to a retract: approach o1 o2, roll-in o2 p0,
// tow p0 p1 p2, tow p2 p3, roll-out p3 p4, retract p4 o3, where o are off-part
// points and p on-part points with their index.
struct LaidCourse
{
    ZELGeoContainer container;
    ZELTPTowCourse* course = new ZELTPTowCourse(&container, QStringLiteral("course 1"));
    QList<ZELTPPoint*> off;
    QList<ZELTPPoint*> on;
    ZELTPTrajectory* approach = new ZELTPTrajectory(20000.0);
    ZELTPOnPartTrajectory* rollIn = new ZELTPOnPartTrajectory(3000.0, 0.05, 0.0, 0.1);
    ZELTPTowTrajectory* layFirst = new ZELTPTowTrajectory(6000.0, 0.05, 0.0, 0.1, ZELCompTowMask(8, true),
                                                          ZELCompTowMask(8, false), {});
    ZELTPTowTrajectory* laySecond = new ZELTPTowTrajectory(6000.0, 0.05, 0.0, 0.1, ZELCompTowMask(8, true),
                                                           ZELCompTowMask(8, false), {});
    ZELTPOnPartTrajectory* rollOut = new ZELTPOnPartTrajectory(3000.0, 0.05, 0.0, 0.1);
    ZELTPTrajectory* retract = new ZELTPTrajectory(20000.0);

    LaidCourse()
    {
        for (int i = 0; i < 3; ++i)
            off.append(new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(10.0 * i, 0.0, 50.0)));
        for (int i = 0; i < 5; ++i) {
            on.append(new ZELTPPoint(&container, ZELTPTest::FrameAt(10.0 * i, 0.0, 0.0)));
            on.last()->SetIndex(i);
        }
        Fill(approach, {off[0], off[1]});
        Fill(rollIn, {off[1], on[0]});
        Fill(layFirst, {on[0], on[1], on[2]});
        Fill(laySecond, {on[2], on[3]});
        Fill(rollOut, {on[3], on[4]});
        Fill(retract, {on[4], off[2]});
        for (ZELTPTrajectory* trajectory : {approach, static_cast<ZELTPTrajectory*>(rollIn),
                                            static_cast<ZELTPTrajectory*>(layFirst),
                                            static_cast<ZELTPTrajectory*>(laySecond),
                                            static_cast<ZELTPTrajectory*>(rollOut), retract})
            course->AddTrajectory(trajectory);
        course->SetRollInPoint(on[0]);
        course->SetRollOutPoint(on[4]);
    }

    static void Fill(ZELTPTrajectory* trajectory, std::initializer_list<ZELTPPoint*> points)
    {
        for (ZELTPPoint* point : points)
            trajectory->AddPoint(point);
    }
};

struct SetterCase
{
    const char* name;
    std::function<void(ZELTPTowCourse&, ZELGeoContainer&)> set;
};
ZELTEST_PRINT_CASE_BY_NAME(SetterCase);

const SetterCase kSetters[] = {
    {"UsedTowMask", [](ZELTPTowCourse& c, ZELGeoContainer&) { c.SetUsedTowMask(ZELCompTowMask(16, true)); }},
    {"MachineConfiguration", [](ZELTPTowCourse& c, ZELGeoContainer&) { c.SetMachineConfiguration(Tooling()); }},
    {"TowLengths", [](ZELTPTowCourse& c, ZELGeoContainer&) { c.SetTowLengths({1.0}); }},
    {"Trajectory", [](ZELTPTowCourse& c, ZELGeoContainer&) { c.AddTrajectory(new ZELTPTrajectory(1.0)); }},
    {"RollInPoint",
     [](ZELTPTowCourse& c, ZELGeoContainer& k) { c.SetRollInPoint(new ZELTPPoint(&k, ZELMathAxis())); }},
    {"RollOutPoint",
     [](ZELTPTowCourse& c, ZELGeoContainer& k) { c.SetRollOutPoint(new ZELTPPoint(&k, ZELMathAxis())); }},
    {"RetractLink",
     [](ZELTPTowCourse& c, ZELGeoContainer& k) { c.SetRetractLink(new ZELTPCourseLink(&k, QString())); }},
};

class ZELTPTowCourseSetter : public ::testing::TestWithParam<SetterCase>
{
};

} // namespace

TEST(ZELTPTowCourse, IsACourse)
{
    const ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    EXPECT_NE(qobject_cast<const ZELTPCourse*>(&course), nullptr);
}

TEST(ZELTPTowCourse, StartsEmptyAfterEitherConstruction)
{
    const ZELTPTowCourse loading(nullptr, ZELGeoGeometryRef());
    const ZELTPTowCourse creating(nullptr, QStringLiteral("course 1"));
    for (const ZELTPTowCourse* course : {&loading, &creating}) {
        EXPECT_TRUE(course->GetUsedTowMask() == ZELCompTowMask());
        EXPECT_TRUE(course->GetMachineConfiguration().GetTool().GetName().isEmpty());
        EXPECT_TRUE(course->GetMachineConfiguration().GetHead().GetName().isEmpty());
        EXPECT_TRUE(course->GetTowLengths().isEmpty());
        EXPECT_EQ(course->GetNumTrajectories(), 0);
        EXPECT_EQ(course->GetRollInPoint(), nullptr);
        EXPECT_EQ(course->GetRollOutPoint(), nullptr);
        EXPECT_EQ(course->GetRetractLink(), nullptr);
        EXPECT_EQ(course->GetNumPoints(), 0);
    }
}

TEST_P(ZELTPTowCourseSetter, MarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* course = new ZELTPTowCourse(&container, QStringLiteral("course 1"));
    container.SetModified(false);
    GetParam().set(*course, container);
    EXPECT_TRUE(container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(Setters, ZELTPTowCourseSetter, ::testing::ValuesIn(kSetters));

TEST(ZELTPTowCourse, KeepsTheUsedTowMaskAndTheMachineConfiguration)
{
    ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    ZELCompTowMask mask(16, false);
    mask.SetTowEnabled(2, true);
    mask.SetTowEnabled(15, true);
    course.SetUsedTowMask(mask);
    course.SetMachineConfiguration(Tooling());
    EXPECT_TRUE(course.GetUsedTowMask() == mask);
    EXPECT_EQ(course.GetMachineConfiguration().GetTool().GetName(), QStringLiteral("R50"));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, course.GetMachineConfiguration().GetTool().GetWidth(), ZELTest::kExact));
    EXPECT_EQ(course.GetMachineConfiguration().GetHead().GetName(), QStringLiteral("H8"));
    EXPECT_TRUE(
        ZELTest::SameDouble(6.35, course.GetMachineConfiguration().GetHead().GetTowWidth(), ZELTest::kExact));
}

TEST(ZELTPTowCourse, TowLengthsAreCountedFromZero)
{
    ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    course.SetTowLengths({812.5, 0.0, 790.25});
    EXPECT_TRUE(ZELTPTest::SameDoubles({812.5, 0.0, 790.25}, course.GetTowLengths()));
    EXPECT_TRUE(ZELTest::SameDouble(812.5, course.GetTowLength(0), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, course.GetTowLength(1), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(790.25, course.GetTowLength(2), ZELTest::kExact));
}

TEST(ZELTPTowCourse, TowLengthOutsideTheLengthsThrows)
{
    ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    EXPECT_THROW_MESSAGE(course.GetTowLength(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
    course.SetTowLengths({1.0, 2.0});
    EXPECT_THROW_MESSAGE(course.GetTowLength(2), ZELSysOutOfBoundsException, "value 2 is out of bounds [0, 1]");
    EXPECT_THROW_MESSAGE(course.GetTowLength(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 1]");
}

TEST(ZELTPTowCourse, AddTrajectoryAppendsAndTakesOwnership)
{
    ZELGeoContainer container;
    auto* course = new ZELTPTowCourse(&container, QStringLiteral("course 1"));
    ZELTPTrajectory* first = Make(Kind::Plain);
    ZELTPTrajectory* second = Make(Kind::OnPart);
    course->AddTrajectory(first);
    course->AddTrajectory(second);
    EXPECT_EQ(course->GetNumTrajectories(), 2);
    EXPECT_EQ(course->GetTrajectory(0), first);
    EXPECT_EQ(course->GetTrajectory(1), second);
    EXPECT_EQ(first->GetOwner(), course);
    EXPECT_EQ(second->GetOwner(), course);
}

TEST(ZELTPTowCourse, GetTrajectoryOutsideTheChainThrows)
{
    ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    EXPECT_THROW_MESSAGE(course.GetTrajectory(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
    course.AddTrajectory(Make(Kind::Plain));
    EXPECT_THROW_MESSAGE(course.GetTrajectory(1), ZELSysOutOfBoundsException, "value 1 is out of bounds [0, 0]");
    EXPECT_THROW_MESSAGE(course.GetTrajectory(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 0]");
}

TEST(ZELTPTowCourse, AddingANullTrajectoryThrowsAndChangesNothing)
{
    ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    EXPECT_THROW_MESSAGE(course.AddTrajectory(nullptr), ZELSysException, "cannot add a null trajectory");
    EXPECT_EQ(course.GetNumTrajectories(), 0);
}

TEST(ZELTPTowCourse, AddingATrajectoryThatHasAnOwnerThrowsAndChangesNothing)
{
    ZELGeoContainer container;
    auto* course = new ZELTPTowCourse(&container, QStringLiteral("course 1"));
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    ZELTPTrajectory* linkTrajectory = Make(Kind::Plain);
    ZELTPTrajectory* ownTrajectory = Make(Kind::Plain);
    link->AddTrajectory(linkTrajectory);
    course->AddTrajectory(ownTrajectory);
    EXPECT_THROW_MESSAGE(course->AddTrajectory(linkTrajectory), ZELSysException, "trajectory already has an owner");
    EXPECT_THROW_MESSAGE(course->AddTrajectory(ownTrajectory), ZELSysException, "trajectory already has an owner");
    EXPECT_EQ(course->GetNumTrajectories(), 1);
    EXPECT_EQ(linkTrajectory->GetOwner(), link);
}

TEST(ZELTPTowCourse, DeletingTheCourseDeletesItsTrajectories)
{
    LaidCourse laid;
    ZELTPPoint* offPart = laid.off[0];
    ASSERT_EQ(offPart->GetTrajectory(), laid.approach);
    laid.container.DeleteGeometry(laid.course);
    EXPECT_EQ(offPart->GetTrajectory(), nullptr);
    for (const ZELTPPoint* point : laid.on)
        EXPECT_EQ(point->GetTrajectory(), nullptr);
}

TEST_P(ZELTPTowCourseChain, NamedMembersAreFoundByPosition)
{
    const ChainCase& c = GetParam();
    ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    for (const Kind kind : c.chain)
        course.AddTrajectory(Make(kind));
    EXPECT_EQ(course.GetApproachTrajectory(), Member(course, c.approach));
    EXPECT_EQ(course.GetRollInTrajectory(), Member(course, c.rollIn));
    EXPECT_EQ(course.GetRollOutTrajectory(), Member(course, c.rollOut));
    EXPECT_EQ(course.GetRetractTrajectory(), Member(course, c.retract));
}

TEST_P(ZELTPTowCourseChain, NextTrajectoryIsTheFollowingOneAndNullAfterTheLast)
{
    const ChainCase& c = GetParam();
    ZELTPTowCourse course(nullptr, QStringLiteral("course 1"));
    for (const Kind kind : c.chain)
        course.AddTrajectory(Make(kind));
    for (int index = 0; index + 1 < course.GetNumTrajectories(); ++index)
        EXPECT_EQ(course.GetNextTrajectory(course.GetTrajectory(index)), course.GetTrajectory(index + 1)) << index;
    if (course.GetNumTrajectories() > 0) {
        EXPECT_EQ(course.GetNextTrajectory(course.GetTrajectory(course.GetNumTrajectories() - 1)), nullptr);
    }
    EXPECT_EQ(course.GetNextTrajectory(nullptr), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Chains, ZELTPTowCourseChain, ::testing::ValuesIn(kChains));

TEST(ZELTPTowCourse, NextTrajectoryOfATrajectoryOutsideTheChainIsNull)
{
    LaidCourse laid;
    ZELTPTrajectory foreign(1000.0);
    EXPECT_EQ(laid.course->GetNextTrajectory(&foreign), nullptr);
    auto* other = new ZELTPTowCourse(&laid.container, QStringLiteral("course 2"));
    ZELTPTrajectory* otherFirst = Make(Kind::Plain);
    other->AddTrajectory(otherFirst);
    other->AddTrajectory(Make(Kind::OnPart));
    EXPECT_EQ(laid.course->GetNextTrajectory(otherFirst), nullptr);
}

TEST(ZELTPTowCourse, ALaidCourseNamesItsChainMembersAndRollPoints)
{
    LaidCourse laid;
    EXPECT_EQ(laid.course->GetApproachTrajectory(), laid.approach);
    EXPECT_EQ(laid.course->GetRollInTrajectory(), laid.rollIn);
    EXPECT_EQ(laid.course->GetNextTrajectory(laid.rollIn), laid.layFirst);
    EXPECT_EQ(laid.course->GetNextTrajectory(laid.layFirst), laid.laySecond);
    EXPECT_EQ(laid.course->GetNextTrajectory(laid.laySecond), laid.rollOut);
    EXPECT_EQ(laid.course->GetRollOutTrajectory(), laid.rollOut);
    EXPECT_EQ(laid.course->GetRetractTrajectory(), laid.retract);
    EXPECT_EQ(laid.course->GetRollInPoint(), laid.on[0]);
    EXPECT_EQ(laid.course->GetRollOutPoint(), laid.on[4]);
}

TEST(ZELTPTowCourse, NumPointsCountsEachSharedOnPartPointOnce)
{
    // Nine entries of on-part points (four of them shared), five points.
    LaidCourse laid;
    EXPECT_EQ(laid.course->GetNumPoints(), 5);
}

TEST(ZELTPTowCourse, NumPointsLeavesOffPartAndUnnumberedPointsOut)
{
    ZELGeoContainer container;
    ZELTPTowCourse course(&container, QStringLiteral("course 1"));
    ZELTPTrajectory* trajectory = Make(Kind::OnPart);
    course.AddTrajectory(trajectory);
    trajectory->AddPoint(new ZELTPOffPartPoint(&container, ZELMathAxis()));
    trajectory->AddPoint(new ZELTPPoint(&container, ZELMathAxis()));
    EXPECT_EQ(course.GetNumPoints(), 0);
    auto* numbered = new ZELTPPoint(&container, ZELMathAxis());
    numbered->SetIndex(0);
    trajectory->AddPoint(numbered);
    trajectory->AddPoint(numbered);
    EXPECT_EQ(course.GetNumPoints(), 1);
}

TEST(ZELTPTowCourse, NumPointsFollowsAPointNumberedAfterItWasAdded)
{
    LaidCourse laid;
    laid.off[1]->SetIndex(0);
    EXPECT_EQ(laid.course->GetNumPoints(), 6);
}

TEST(ZELTPTowCourse, RollPointsReadNullOnceDestroyed)
{
    LaidCourse laid;
    laid.container.DeleteGeometry(laid.on[0]);
    laid.container.DeleteGeometry(laid.on[4]);
    EXPECT_EQ(laid.course->GetRollInPoint(), nullptr);
    EXPECT_EQ(laid.course->GetRollOutPoint(), nullptr);
    EXPECT_EQ(laid.course->GetNumPoints(), 3);
}

TEST(ZELTPTowCourse, RecordIsTheCoursesThenMaskToolingLengthsTrajectoriesAndRollPoints)
{
    ZELGeoContainer container;
    auto* course = new ZELTPTowCourse(&container, QStringLiteral("course 7"));
    auto* retractLink = new ZELTPCourseLink(&container, QStringLiteral("retract 7"));
    auto* in = new ZELTPPoint(&container, ZELMathAxis());
    auto* out = new ZELTPPoint(&container, ZELMathAxis());
    ZELCompTowMask mask(4, false);
    mask.SetTowEnabled(2, true);
    course->SetRetractLink(retractLink);
    course->SetUsedTowMask(mask);
    course->SetMachineConfiguration(Tooling());
    course->SetTowLengths({0.0, 640.5, 0.0, 0.0});
    auto* plain = new ZELTPTrajectory(20000.0);
    plain->AddPoint(in);
    course->AddTrajectory(plain);
    auto* onPart = new ZELTPOnPartTrajectory(3000.0, 0.1, 0.2, 0.3);
    onPart->AddPoint(in);
    onPart->AddPoint(out);
    course->AddTrajectory(onPart);
    course->SetRollInPoint(in);
    course->SetRollOutPoint(out);

    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("course 7") << retractLink->GetReference();
        s << mask << QStringLiteral("R50") << 50.8 << QStringLiteral("H8") << 6.35;
        s << qint32(4) << 0.0 << 640.5 << 0.0 << 0.0;
        s << qint32(2);
        s << qint32(0) << 20000.0 << qint32(1) << in->GetReference();
        s << qint32(1) << 3000.0 << 0.1 << 0.2 << 0.3 << qint32(2) << in->GetReference() << out->GetReference();
        s << in->GetReference() << out->GetReference();
    });
    EXPECT_EQ(course->GetCurrentState(), expected);
}

TEST(ZELTPTowCourse, SurvivesSaveAndLoadWithItsWholeChain)
{
    LaidCourse laid;
    ZELCompTowMask mask(8, true);
    mask.SetTowEnabled(8, false);
    laid.course->SetUsedTowMask(mask);
    laid.course->SetMachineConfiguration(Tooling());
    laid.course->SetTowLengths({100.0, 101.0, 102.0, 103.0, 104.0, 105.0, 106.0, 0.0});
    auto* retractLink = new ZELTPCourseLink(&laid.container, QStringLiteral("retract"));
    laid.course->SetRetractLink(retractLink);

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(laid.container, target);
    const QList<ZELTPTowCourse*> courses = ZELTPTest::AllOf<ZELTPTowCourse>(loaded);
    const QList<ZELTPPoint*> points = ZELTPTest::AllOf<ZELTPPoint>(loaded);
    ASSERT_EQ(courses.size(), 1);
    ASSERT_EQ(points.size(), 8);
    const ZELTPTowCourse* course = courses.first();
    // Points were created after the course: three off-part, then five on-part.
    const QList<ZELTPPoint*> off = points.mid(0, 3);
    const QList<ZELTPPoint*> on = points.mid(3, 5);

    EXPECT_EQ(course->GetName(), QStringLiteral("course 1"));
    EXPECT_EQ(course->GetRetractLink(), ZELTPTest::AllOf<ZELTPCourseLink>(loaded).first());
    EXPECT_TRUE(course->GetUsedTowMask() == mask);
    EXPECT_EQ(course->GetMachineConfiguration().GetHead().GetName(), QStringLiteral("H8"));
    EXPECT_TRUE(
        ZELTPTest::SameDoubles({100.0, 101.0, 102.0, 103.0, 104.0, 105.0, 106.0, 0.0}, course->GetTowLengths()));
    ASSERT_EQ(course->GetNumTrajectories(), 6);
    EXPECT_EQ(typeid(*course->GetApproachTrajectory()), typeid(ZELTPTrajectory));
    EXPECT_EQ(typeid(*course->GetRollInTrajectory()), typeid(ZELTPOnPartTrajectory));
    EXPECT_EQ(typeid(*course->GetTrajectory(2)), typeid(ZELTPTowTrajectory));
    EXPECT_EQ(typeid(*course->GetTrajectory(3)), typeid(ZELTPTowTrajectory));
    EXPECT_EQ(typeid(*course->GetRollOutTrajectory()), typeid(ZELTPOnPartTrajectory));
    EXPECT_EQ(typeid(*course->GetRetractTrajectory()), typeid(ZELTPTrajectory));
    EXPECT_EQ(course->GetApproachTrajectory()->GetPoints(), QList<ZELTPPoint*>({off[0], off[1]}));
    EXPECT_EQ(course->GetRollInTrajectory()->GetPoints(), QList<ZELTPPoint*>({off[1], on[0]}));
    EXPECT_EQ(course->GetTrajectory(2)->GetPoints(), QList<ZELTPPoint*>({on[0], on[1], on[2]}));
    EXPECT_EQ(course->GetTrajectory(3)->GetPoints(), QList<ZELTPPoint*>({on[2], on[3]}));
    EXPECT_EQ(course->GetRollOutTrajectory()->GetPoints(), QList<ZELTPPoint*>({on[3], on[4]}));
    EXPECT_EQ(course->GetRetractTrajectory()->GetPoints(), QList<ZELTPPoint*>({on[4], off[2]}));
    EXPECT_EQ(course->GetRollInPoint(), on[0]);
    EXPECT_EQ(course->GetRollOutPoint(), on[4]);
    EXPECT_EQ(course->GetNumPoints(), 5);
    EXPECT_EQ(on[2]->GetTrajectory(), course->GetTrajectory(3));
    EXPECT_EQ(off[0]->GetTrajectory(), course->GetApproachTrajectory());
}

TEST(ZELTPTowCourse, LoadingReplacesTheChainAndReleasesTheOldTrajectoriesPoints)
{
    LaidCourse laid;
    ZELTPTowCourse empty(nullptr, QStringLiteral("empty"));
    laid.course->SetCurrentState(empty.GetCurrentState());
    EXPECT_EQ(laid.course->GetNumTrajectories(), 0);
    EXPECT_EQ(laid.course->GetRollInPoint(), nullptr);
    for (const ZELTPPoint* point : laid.on)
        EXPECT_EQ(point->GetTrajectory(), nullptr);
}

TEST(ZELTPTowCourse, ATrajectoryPointThatNamesNothingThrowsNotFound)
{
    ZELGeoContainer container;
    auto* course = new ZELTPTowCourse(&container, QStringLiteral("course 1"));
    const QByteArray record = ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("course 1") << ZELGeoGeometryRef() << ZELCompTowMask() << ZELTPMachineConfiguration()
          << qint32(0) << qint32(1) << qint32(0) << 1000.0 << qint32(1) << ZELGeoGeometryRef(4242);
    });
    EXPECT_THROW_MESSAGE(course->SetCurrentState(record), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELTPPoint with reference 4242");
}

TEST(ZELTPTowCourse, ATrajectoryOfUnknownKindThrows)
{
    ZELGeoContainer container;
    auto* course = new ZELTPTowCourse(&container, QStringLiteral("course 1"));
    const QByteArray record = ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("course 1") << ZELGeoGeometryRef() << ZELCompTowMask() << ZELTPMachineConfiguration()
          << qint32(0) << qint32(1) << qint32(3) << 1000.0 << qint32(0);
    });
    EXPECT_THROW_MESSAGE(course->SetCurrentState(record), ZELSysException, "unknown trajectory kind 3");
}

TEST(ZELTPTowCourse, EveryTruncationOfItsRecordLoadsWithoutCrashing)
{
    LaidCourse laid;
    laid.course->SetTowLengths({1.0, 2.0, 3.0});
    laid.course->SetMachineConfiguration(Tooling());
    const QByteArray whole = laid.course->GetCurrentState();
    ZELTPTowCourse* reader = new ZELTPTowCourse(&laid.container, QString());
    for (qsizetype length = 0; length < whole.size(); ++length) {
        reader->SetCurrentState(whole.left(length));
        EXPECT_LE(reader->GetNumTrajectories(), 6) << length;
        EXPECT_LE(reader->GetTowLengths().size(), 3) << length;
        EXPECT_LE(reader->GetNumPoints(), 5) << length;
    }
    reader->SetCurrentState(whole);
    EXPECT_EQ(reader->GetNumTrajectories(), 6);
    EXPECT_EQ(reader->GetNumPoints(), 5);
}
