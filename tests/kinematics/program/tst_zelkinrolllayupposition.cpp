#include "zelkintestrolllayup.h"

#include <zeltppoint.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <cmath>
#include <functional>

using ZELTest::kNaN;
using ZELTest::RollLayupFixture;

namespace {

// A roll layup position record: the position's fields as ZELKinPosition::Save
// writes them (no variable values), then P, Q and N.
QByteArray RollLayupPositionRecord(const ZELGeoGeometryRef& script, double feedrate, const ZELGeoGeometryRef& point,
                                   double adjustment, double pAngle, double qAngle, qint32 nIndex)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script << feedrate << qint32(0) << point << adjustment << pAngle << qAngle << nIndex;
    return record;
}

void ExpectPositionDefaults(const ZELKinPosition* position, const ZELKinVariable* variable)
{
    EXPECT_EQ(position->GetScript(), nullptr);
    EXPECT_TRUE(std::isnan(position->GetFeedrate()));
    EXPECT_FALSE(position->IsVariableDefined(variable));
    EXPECT_EQ(position->GetToolPathPoint(), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, position->GetLateralPositionAdjustment(), ZELTest::kExact));
    EXPECT_TRUE(position->IsTraori());
}

} // namespace

TEST(ZELKinRollLayupPosition, CreationAppendsItToTheCourseWithNaNAnglesAndNIndexZero)
{
    RollLayupFixture f;
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 2);
    const ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(course);
    EXPECT_EQ(position->GetCourse(), course);
    EXPECT_EQ(position->GetScript(), course);
    EXPECT_EQ(position->GetIndex(), 2);
    EXPECT_EQ(course->GetCommand(2), position);
    EXPECT_EQ(position->GetContainer(), &f.container);
    EXPECT_TRUE(std::isnan(position->GetPAngle()));
    EXPECT_TRUE(std::isnan(position->GetQAngle()));
    EXPECT_TRUE(std::isnan(position->GetSmoothAngle()));
    EXPECT_EQ(position->GetNIndex(), 0);
    EXPECT_TRUE(std::isnan(position->GetFeedrate()));
    EXPECT_TRUE(position->IsTraori());
}

TEST(ZELKinRollLayupPosition, LoadingConstructionHasNoCourse)
{
    const ZELKinRollLayupPosition position(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(position.GetCourse(), nullptr);
    EXPECT_TRUE(std::isnan(position.GetPAngle()));
    EXPECT_EQ(position.GetNIndex(), 0);
}

TEST(ZELKinRollLayupPosition, WithoutACourseStandsOutsideAnyContainer)
{
    const ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(nullptr);
    EXPECT_EQ(position->GetContainer(), nullptr);
    EXPECT_EQ(position->GetCourse(), nullptr);
    delete position;
}

TEST(ZELKinRollLayupPosition, IsAPositionToEveryoneWhoWalksTheCourse)
{
    RollLayupFixture f;
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    ZELKinTestAccess::CreateTowFeedCommand(qobject_cast<ZELKinTowCourse*>(course), {1.0});
    ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(course);
    EXPECT_EQ(course->GetFirstPosition(), position);
    EXPECT_EQ(f.procedure->GetLastPosition(), position);
}

TEST(ZELKinRollLayupPosition, AnglesAndNIndexKeepWhatIsSet)
{
    RollLayupFixture f;
    ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(ZELTest::AddCourse(f.procedure, 0));
    position->SetPAngle(0.125);
    position->SetQAngle(-0.25);
    position->SetSmoothAngle(0.0625);
    position->SetNIndex(41);
    EXPECT_TRUE(ZELTest::SameDouble(0.125, position->GetPAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-0.25, position->GetQAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0625, position->GetSmoothAngle(), ZELTest::kExact));
    EXPECT_EQ(position->GetNIndex(), 41);
}

struct SetterCase
{
    const char* name;
    std::function<void(ZELKinRollLayupPosition*)> set;
};
ZELTEST_PRINT_CASE_BY_NAME(SetterCase);

class ZELKinRollLayupPositionSetter : public ::testing::TestWithParam<SetterCase>
{
};

TEST_P(ZELKinRollLayupPositionSetter, MarksTheContainerModified)
{
    RollLayupFixture f;
    ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(ZELTest::AddCourse(f.procedure, 0));
    f.container.SetModified(false);
    GetParam().set(position);
    EXPECT_TRUE(f.container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(
    Setters, ZELKinRollLayupPositionSetter,
    ::testing::Values(SetterCase{"PAngle", [](ZELKinRollLayupPosition* p) { p->SetPAngle(1.0); }},
                      SetterCase{"QAngle", [](ZELKinRollLayupPosition* p) { p->SetQAngle(1.0); }},
                      SetterCase{"SmoothAngle", [](ZELKinRollLayupPosition* p) { p->SetSmoothAngle(1.0); }},
                      SetterCase{"NIndex", [](ZELKinRollLayupPosition* p) { p->SetNIndex(1); }}),
    [](const ::testing::TestParamInfo<SetterCase>& info) { return std::string(info.param.name); });

TEST(ZELKinRollLayupPosition, RecordHoldsThePositionThenPQAndNButNoSmoothAngle)
{
    RollLayupFixture f;
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    const ZELTPPoint* point = new ZELTPPoint(&f.container, ZELMathAxis());
    ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(course);
    position->SetFeedrate(3000.0);
    position->SetToolPathPoint(point);
    position->SetLateralPositionAdjustment(0.5);
    position->SetPAngle(0.125);
    position->SetQAngle(-0.25);
    position->SetSmoothAngle(0.0625);
    position->SetNIndex(7);
    EXPECT_EQ(position->GetCurrentState(), RollLayupPositionRecord(course->GetReference(), 3000.0,
                                                                   point->GetReference(), 0.5, 0.125, -0.25, 7));
}

TEST(ZELKinRollLayupPosition, LoadReadsPQAndNFromTheStartOfTheRecordAndLeavesThePositionDefault)
{
    // Load hands the stream to the position's Save, which a reading stream
    // ignores, so P, Q and N come from where the position's fields stand: an
    // empty script reference (P 0.0), the feedrate (Q), the value count (N).
    RollLayupFixture f;
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("X"));
    ZELKinRollLayupPosition loaded(&f.container, ZELGeoGeometryRef());
    loaded.SetSmoothAngle(0.5);
    QByteArray record;
    {
        ZELGeoStream out(&record, nullptr);
        out << ZELGeoGeometryRef() << 12.5 << qint32(1) << x->GetReference() << 99.0 << ZELGeoGeometryRef() << 0.75
            << 0.125 << -0.25 << qint32(7);
    }
    const QByteArray original = record;
    ZELGeoStream stream(record, &f.container);
    loaded.Load(stream);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, loaded.GetPAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(12.5, loaded.GetQAngle(), ZELTest::kExact));
    EXPECT_EQ(loaded.GetNIndex(), 1);
    EXPECT_TRUE(ZELTest::SameDouble(0.5, loaded.GetSmoothAngle(), ZELTest::kExact));
    ExpectPositionDefaults(&loaded, x);
    EXPECT_EQ(record, original);
    EXPECT_EQ(stream.status(), QDataStream::Ok);
}

TEST(ZELKinRollLayupPosition, ThroughAContainerItLoadsTheRecordHeadAsAnglesAndADefaultPosition)
{
    RollLayupFixture f;
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("X"));
    ZELKinVariable* u = ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("U"));
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    ZELKinRollLayupPosition* saved = ZELKinTestAccess::CreateRollLayupPosition(course);
    saved->SetVariableValue(x, 812.0625);
    saved->SetVariableValue(u, 25.4);
    saved->SetFeedrate(2750.0);
    saved->SetToolPathPoint(new ZELTPPoint(&f.container, ZELMathAxis()));
    saved->SetLateralPositionAdjustment(-1.5);
    saved->SetTraori(false);
    saved->SetPAngle(0.125);
    saved->SetQAngle(-0.25);
    saved->SetSmoothAngle(0.0625);
    saved->SetNIndex(9);
    // Something after it in the container, to show that its record is read
    // within its own bounds and spoils nothing that follows.
    ZELKinRollLayupPosition* next = ZELKinTestAccess::CreateRollLayupPosition(course);
    next->SetFeedrate(1500.0);

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const auto* loadedCourse = ZELTest::FirstOf<ZELKinTowCourse>(target);
    ASSERT_EQ(loadedCourse->GetNumCommands(), 2);
    const auto* loaded = qobject_cast<const ZELKinRollLayupPosition*>(loadedCourse->GetCommand(0));
    ASSERT_NE(loaded, nullptr);
    const ZELKinAFPMachine* machine = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    ExpectPositionDefaults(loaded, machine->GetVariable(QStringLiteral("X")));
    EXPECT_EQ(loaded->GetCourse(), nullptr);

    const ZELTest::RecordHead head = ZELTest::ReadRecordHead(saved->GetCurrentState());
    EXPECT_TRUE(ZELTest::SameDouble(head.pAngle, loaded->GetPAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(2750.0, loaded->GetQAngle(), ZELTest::kExact));
    EXPECT_EQ(loaded->GetNIndex(), 2);
    EXPECT_TRUE(std::isnan(loaded->GetSmoothAngle()));

    const auto* loadedNext = qobject_cast<const ZELKinRollLayupPosition*>(loadedCourse->GetCommand(1));
    ASSERT_NE(loadedNext, nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(1500.0, loadedNext->GetQAngle(), ZELTest::kExact));
    EXPECT_EQ(loadedNext->GetNIndex(), 0);
}

TEST(ZELKinRollLayupPosition, SmoothAngleIsNaNAfterSaveAndLoadWhateverItHeld)
{
    for (const double smooth : {0.0, 0.3, -2.0}) {
        SCOPED_TRACE(smooth);
        RollLayupFixture f;
        ZELKinTestAccess::CreateRollLayupPosition(ZELTest::AddCourse(f.procedure, 0))->SetSmoothAngle(smooth);
        ZELGeoContainer target;
        ZELTest::CopyContainer(f.container, target);
        const auto* loaded = ZELTest::FirstOf<ZELKinRollLayupPosition>(target);
        ASSERT_NE(loaded, nullptr);
        EXPECT_TRUE(std::isnan(loaded->GetSmoothAngle()));
    }
}
