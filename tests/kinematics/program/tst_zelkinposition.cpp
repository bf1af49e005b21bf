#include "zelkintestprograms.h"

#include <zeltppoint.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <QPair>

#include <cmath>
#include <functional>

using ZELTest::kNaN;

namespace {

using SavedValue = QPair<ZELGeoGeometryRef, double>;

// A position record as ZELKinPosition::Save lays it out. `count` is written
// as given, so that it may disagree with the values that follow.
QByteArray PositionRecord(const ZELGeoGeometryRef& script, double feedrate, qint32 count,
                          const QList<SavedValue>& values, const ZELGeoGeometryRef& point, double adjustment)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script << feedrate << count;
    for (const SavedValue& value : values)
        out << value.first << value.second;
    out << point << adjustment;
    return record;
}

// A machine with four axes and a standalone position in its container.
struct PositionFixture
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinVariable* y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    ZELKinVariable* z = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z"));
    ZELKinVariable* a = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("A"), ZELKinVariable::Rotary);
    ZELKinPosition* position = new ZELKinPosition(&container, ZELGeoGeometryRef());
};

} // namespace

TEST(ZELKinPosition, LoadingConstructionGivesTheDefaults)
{
    PositionFixture f;
    EXPECT_FALSE(f.position->IsVariableDefined(f.x));
    EXPECT_TRUE(std::isnan(f.position->GetVariableValue(f.x)));
    EXPECT_TRUE(std::isnan(f.position->GetFeedrate()));
    EXPECT_TRUE(f.position->IsTraori());
    EXPECT_EQ(f.position->GetToolPathPoint(), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, f.position->GetLateralPositionAdjustment(), ZELTest::kExact));
    EXPECT_EQ(f.position->GetScript(), nullptr);
}

TEST(ZELKinPosition, SetVariableValueDefinesAndReplacesEachVariableOnItsOwn)
{
    PositionFixture f;
    f.position->SetVariableValue(f.x, 120.5);
    f.position->SetVariableValue(f.a, -1.25);
    f.position->SetVariableValue(f.x, 0.0);
    EXPECT_TRUE(f.position->IsVariableDefined(f.x));
    EXPECT_TRUE(f.position->IsVariableDefined(f.a));
    EXPECT_FALSE(f.position->IsVariableDefined(f.y));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, f.position->GetVariableValue(f.x), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-1.25, f.position->GetVariableValue(f.a), ZELTest::kExact));
    EXPECT_TRUE(std::isnan(f.position->GetVariableValue(f.y)));
}

TEST(ZELKinPosition, GetVariableValuesReadsEachAskedVariableInTheOrderAskedAndNaNForTheOthers)
{
    PositionFixture f;
    f.position->SetVariableValue(f.z, 3.5);
    f.position->SetVariableValue(f.x, -1.25);
    f.position->SetVariableValue(f.a, 0.5);
    const ZELKinVariable* const asked[] = {f.x, f.y, nullptr, f.a, f.z, f.x};
    double values[6] = {7.0, 7.0, 7.0, 7.0, 7.0, 7.0};
    f.position->GetVariableValues(asked, 6, values);
    EXPECT_TRUE(ZELTest::SameDouble(-1.25, values[0], ZELTest::kExact));
    EXPECT_TRUE(std::isnan(values[1]));
    EXPECT_TRUE(std::isnan(values[2]));
    EXPECT_TRUE(ZELTest::SameDouble(0.5, values[3], ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.5, values[4], ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-1.25, values[5], ZELTest::kExact));
}

TEST(ZELKinPosition, GetVariableValuesFindsNothingOfAVariableDestroyedSinceItWasSet)
{
    PositionFixture f;
    f.position->SetVariableValue(f.x, 1.0);
    f.position->SetVariableValue(f.y, 2.0);
    f.container.DeleteGeometry(f.x);
    // A new variable may take the destroyed one's address; the value set on
    // the old one must not read as the new one's.
    ZELKinVariable* w = ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("W"));
    const ZELKinVariable* const asked[] = {w, f.y};
    double values[2] = {7.0, 7.0};
    f.position->GetVariableValues(asked, 2, values);
    EXPECT_TRUE(std::isnan(values[0]));
    EXPECT_TRUE(ZELTest::SameDouble(2.0, values[1], ZELTest::kExact));
    EXPECT_TRUE(std::isnan(f.position->GetVariableValue(w)));
}

TEST(ZELKinPosition, SettingNaNOnADefinedVariableUndefinesIt)
{
    PositionFixture f;
    f.position->SetVariableValue(f.x, 1.0);
    f.position->SetVariableValue(f.y, 2.0);
    f.position->SetVariableValue(f.x, kNaN);
    EXPECT_FALSE(f.position->IsVariableDefined(f.x));
    EXPECT_TRUE(std::isnan(f.position->GetVariableValue(f.x)));
    EXPECT_TRUE(ZELTest::SameDouble(2.0, f.position->GetVariableValue(f.y), ZELTest::kExact));
}

TEST(ZELKinPosition, SettingNaNOnAFreshPositionLeavesItWithoutValuesAndSaveWritesACountOfZero)
{
    PositionFixture f;
    f.position->SetVariableValue(f.x, kNaN);
    EXPECT_FALSE(f.position->IsVariableDefined(f.x));
    EXPECT_EQ(f.x->GetReferenceCount(), 1); // the machine's list only
    EXPECT_EQ(f.position->GetCurrentState(),
              PositionRecord(ZELGeoGeometryRef(), kNaN, 0, {}, ZELGeoGeometryRef(), 0.0));
}

TEST(ZELKinPosition, NullVariableIsNeverDefinedAndCannotBeSet)
{
    PositionFixture f;
    f.position->SetVariableValue(nullptr, 3.0);
    EXPECT_FALSE(f.position->IsVariableDefined(nullptr));
    EXPECT_TRUE(std::isnan(f.position->GetVariableValue(nullptr)));
    EXPECT_EQ(f.position->GetCurrentState(),
              PositionRecord(ZELGeoGeometryRef(), kNaN, 0, {}, ZELGeoGeometryRef(), 0.0));
}

TEST(ZELKinPosition, EachValueHoldsOneReferenceOnItsVariableUntilItIsRemoved)
{
    PositionFixture f;
    f.position->SetVariableValue(f.x, 1.0);
    f.position->SetVariableValue(f.y, 2.0);
    f.position->SetVariableValue(f.z, 3.0);
    f.position->SetVariableValue(f.y, 4.0);
    EXPECT_EQ(f.x->GetReferenceCount(), 2);
    EXPECT_EQ(f.y->GetReferenceCount(), 2);
    EXPECT_EQ(f.z->GetReferenceCount(), 2);

    // Removing the first value moves the others up; each keeps its reference.
    f.position->SetVariableValue(f.x, kNaN);
    EXPECT_EQ(f.x->GetReferenceCount(), 1);
    EXPECT_EQ(f.y->GetReferenceCount(), 2);
    EXPECT_EQ(f.z->GetReferenceCount(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(4.0, f.position->GetVariableValue(f.y), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.0, f.position->GetVariableValue(f.z), ZELTest::kExact));
}

TEST(ZELKinPosition, DestroyingThePositionReleasesItsVariablesAndItsPoint)
{
    PositionFixture f;
    const ZELTPPoint* point = new ZELTPPoint(&f.container, ZELMathAxis());
    f.position->SetVariableValue(f.x, 1.0);
    f.position->SetToolPathPoint(point);
    ASSERT_EQ(point->GetReferenceCount(), 1);
    f.container.DeleteGeometry(f.position);
    EXPECT_EQ(f.x->GetReferenceCount(), 1);
    EXPECT_EQ(point->GetReferenceCount(), 0);
}

TEST(ZELKinPosition, ToolPathPointIsACountedLinkThatReadsNullOnceThePointIsGone)
{
    PositionFixture f;
    ZELTPPoint* first = new ZELTPPoint(&f.container, ZELMathAxis());
    const ZELTPPoint* second = new ZELTPPoint(&f.container, ZELMathAxis());
    f.position->SetToolPathPoint(first);
    f.position->SetToolPathPoint(second);
    EXPECT_EQ(f.position->GetToolPathPoint(), second);
    EXPECT_EQ(first->GetReferenceCount(), 0);
    EXPECT_EQ(second->GetReferenceCount(), 1);

    f.position->SetToolPathPoint(first);
    f.container.DeleteGeometry(first);
    EXPECT_EQ(f.position->GetToolPathPoint(), nullptr);
    EXPECT_EQ(second->GetReferenceCount(), 0);
}

TEST(ZELKinPosition, ScalarFieldsKeepWhatIsSet)
{
    PositionFixture f;
    f.position->SetFeedrate(2500.0);
    f.position->SetTraori(false);
    f.position->SetLateralPositionAdjustment(-3.175);
    EXPECT_TRUE(ZELTest::SameDouble(2500.0, f.position->GetFeedrate(), ZELTest::kExact));
    EXPECT_FALSE(f.position->IsTraori());
    EXPECT_TRUE(ZELTest::SameDouble(-3.175, f.position->GetLateralPositionAdjustment(), ZELTest::kExact));
    f.position->SetFeedrate(kNaN);
    EXPECT_TRUE(std::isnan(f.position->GetFeedrate()));
}

TEST(ZELKinPosition, ActualFeedrateIsADeclaredPropertyThatNeitherChangesTheProgramNorAddsADynamicOne)
{
    PositionFixture f;
    EXPECT_TRUE(std::isnan(f.position->property("actualFeedrate").toDouble()));
    f.container.SetModified(false);
    EXPECT_TRUE(f.position->setProperty("actualFeedrate", 1905.0));
    EXPECT_TRUE(ZELTest::SameDouble(1905.0, f.position->GetActualFeedrate(), ZELTest::kExact));
    f.position->SetActualFeedrate(3810.0);
    EXPECT_TRUE(ZELTest::SameDouble(3810.0, f.position->property("actualFeedrate").toDouble(), ZELTest::kExact));
    EXPECT_TRUE(f.position->dynamicPropertyNames().isEmpty());
    EXPECT_FALSE(f.container.IsModified());
    EXPECT_TRUE(std::isnan(f.position->GetFeedrate()));
}

TEST(ZELKinPosition,
     UAxisOffsetIsADeclaredPropertyThatReadsInvalidUntilSetAndNeitherChangesTheProgramNorAddsADynamicOne)
{
    PositionFixture f;
    EXPECT_FALSE(f.position->property("uAxisOffset").isValid());
    EXPECT_TRUE(std::isnan(f.position->GetUAxisOffset()));
    f.container.SetModified(false);
    EXPECT_TRUE(f.position->setProperty("uAxisOffset", 127.5));
    EXPECT_TRUE(ZELTest::SameDouble(127.5, f.position->GetUAxisOffset(), ZELTest::kExact));
    f.position->SetUAxisOffset(-4.0);
    EXPECT_TRUE(ZELTest::SameDouble(-4.0, f.position->property("uAxisOffset").toDouble(), ZELTest::kExact));
    EXPECT_TRUE(f.position->dynamicPropertyNames().isEmpty());
    EXPECT_FALSE(f.container.IsModified());
}

TEST(ZELKinPosition, UAxisOffsetIsUnsetByAnInvalidValueByOneThatIsNoNumberAndByNaN)
{
    PositionFixture f;
    const QVariant unsetting[] = {QVariant(), QVariant(QStringLiteral("ten mm")), QVariant(kNaN)};
    for (const QVariant& value : unsetting) {
        f.position->SetUAxisOffset(1.0);
        f.position->setProperty("uAxisOffset", value);
        EXPECT_FALSE(f.position->property("uAxisOffset").isValid()) << value.toString().toStdString();
        EXPECT_TRUE(std::isnan(f.position->GetUAxisOffset()));
    }
}

struct SetterCase
{
    const char* name;
    std::function<void(PositionFixture&)> set;
};
ZELTEST_PRINT_CASE_BY_NAME(SetterCase);

class ZELKinPositionSetter : public ::testing::TestWithParam<SetterCase>
{
};

TEST_P(ZELKinPositionSetter, MarksTheContainerModified)
{
    PositionFixture f;
    f.container.SetModified(false);
    GetParam().set(f);
    EXPECT_TRUE(f.container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(
    Setters, ZELKinPositionSetter,
    ::testing::Values(SetterCase{"VariableValue", [](PositionFixture& f) { f.position->SetVariableValue(f.x, 1.0); }},
                      SetterCase{"Feedrate", [](PositionFixture& f) { f.position->SetFeedrate(1.0); }},
                      SetterCase{"Traori", [](PositionFixture& f) { f.position->SetTraori(false); }},
                      SetterCase{"ToolPathPoint", [](PositionFixture& f) { f.position->SetToolPathPoint(nullptr); }},
                      SetterCase{"LateralPositionAdjustment",
                                 [](PositionFixture& f) { f.position->SetLateralPositionAdjustment(1.0); }}),
    [](const ::testing::TestParamInfo<SetterCase>& info) { return std::string(info.param.name); });

TEST(ZELKinPosition, RecordHoldsFeedrateValuesPointAndAdjustmentAfterTheScript)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    auto* script = new ZELKinTestScript(&container);
    const ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    ZELKinPosition* position = new ZELKinTestPosition(script);
    position->SetFeedrate(1800.0);
    position->SetVariableValue(x, 42.5);
    position->SetToolPathPoint(point);
    position->SetLateralPositionAdjustment(0.75);
    position->SetTraori(false);
    EXPECT_EQ(position->GetCurrentState(), PositionRecord(script->GetReference(), 1800.0, 1,
                                                          {{x->GetReference(), 42.5}}, point->GetReference(), 0.75));
}

TEST(ZELKinPosition, SaveAndLoadKeepEveryValueAndTheTraoriFlagComesBackTrue)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinVariable* c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    auto* script = new ZELKinTestScript(&source);
    const ZELTPPoint* point = new ZELTPPoint(&source, ZELMathAxis());
    ZELKinPosition* saved = new ZELKinTestPosition(script);
    saved->SetVariableValue(x, -812.0625);
    saved->SetVariableValue(c, 3.0 * std::atan(1.0));
    saved->SetFeedrate(1234.5);
    saved->SetToolPathPoint(point);
    saved->SetLateralPositionAdjustment(-1.5);
    saved->SetTraori(false);

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinAFPMachine* loadedMachine = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    const ZELKinPosition* loaded = ZELTest::FirstOf<ZELKinPosition>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetScript(), ZELTest::FirstOf<ZELKinTestScript>(target));
    EXPECT_TRUE(
        ZELTest::SameDouble(-812.0625, loaded->GetVariableValue(loadedMachine->GetVariable(0)), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.0 * std::atan(1.0), loaded->GetVariableValue(loadedMachine->GetVariable(1)),
                                    ZELTest::kExact));
    EXPECT_FALSE(loaded->IsVariableDefined(loadedMachine->GetVariable(2)));
    EXPECT_TRUE(ZELTest::SameDouble(1234.5, loaded->GetFeedrate(), ZELTest::kExact));
    EXPECT_EQ(loaded->GetToolPathPoint(), ZELTest::FirstOf<ZELTPPoint>(target));
    EXPECT_TRUE(ZELTest::SameDouble(-1.5, loaded->GetLateralPositionAdjustment(), ZELTest::kExact));
    EXPECT_TRUE(loaded->IsTraori());
}

TEST(ZELKinPosition, LoadReplacesTheValuesItHadAndTakesReferencesOnTheLoadedOnes)
{
    PositionFixture f;
    f.position->SetVariableValue(f.x, 1.0);
    ZELGeoStream stream(PositionRecord(ZELGeoGeometryRef(), 10.0, 1, {{f.y->GetReference(), 2.0}},
                                       ZELGeoGeometryRef(), 0.0),
                        &f.container);
    f.position->Load(stream);
    EXPECT_FALSE(f.position->IsVariableDefined(f.x));
    EXPECT_TRUE(ZELTest::SameDouble(2.0, f.position->GetVariableValue(f.y), ZELTest::kExact));
    EXPECT_EQ(f.x->GetReferenceCount(), 1);
    EXPECT_EQ(f.y->GetReferenceCount(), 2);
}

TEST(ZELKinPosition, ValueOfAVariableDestroyedBeforeSavingIsWrittenEmptyAndDroppedOnLoad)
{
    PositionFixture f;
    f.position->SetVariableValue(f.x, 1.0);
    f.position->SetVariableValue(f.y, 2.0);
    f.container.DeleteGeometry(f.x);
    EXPECT_EQ(f.position->GetCurrentState(),
              PositionRecord(ZELGeoGeometryRef(), kNaN, 2, {{ZELGeoGeometryRef(), 1.0}, {f.y->GetReference(), 2.0}},
                             ZELGeoGeometryRef(), 0.0));

    ZELGeoContainer target;
    ASSERT_NO_THROW(ZELTest::CopyContainer(f.container, target));
    const ZELKinAFPMachine* machine = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    const ZELKinPosition* loaded = ZELTest::FirstOf<ZELKinPosition>(target);
    EXPECT_TRUE(ZELTest::SameDouble(2.0, loaded->GetVariableValue(machine->GetVariable(QStringLiteral("Y"))),
                                    ZELTest::kExact));
}

TEST(ZELKinPosition, CountLargerThanTheValuesPresentStopsAtTheEndOfTheRecord)
{
    PositionFixture f;
    QByteArray record;
    {
        ZELGeoStream out(&record, nullptr);
        out << ZELGeoGeometryRef() << 500.0 << qint32(1000000) << f.z->GetReference() << 7.0;
    }
    ZELGeoStream stream(record, &f.container);
    EXPECT_NO_THROW(f.position->Load(stream));
    EXPECT_TRUE(ZELTest::SameDouble(500.0, f.position->GetFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(7.0, f.position->GetVariableValue(f.z), ZELTest::kExact));
    EXPECT_EQ(f.position->GetToolPathPoint(), nullptr);
}

struct UnresolvedCase
{
    const char* name;
    bool inValues; // else in the toolpath point
    bool wrongClass;
    const char* expectedClass;
};
ZELTEST_PRINT_CASE_BY_NAME(UnresolvedCase);

class ZELKinPositionUnresolved : public ::testing::TestWithParam<UnresolvedCase>
{
};

TEST_P(ZELKinPositionUnresolved, ReferenceThrowsNotFound)
{
    const UnresolvedCase& c = GetParam();
    PositionFixture f;
    const ZELKinPosition* other = new ZELKinPosition(&f.container, ZELGeoGeometryRef());
    const ZELGeoGeometryRef bad = c.wrongClass ? other->GetReference() : ZELGeoGeometryRef(999999);
    const QList<SavedValue> values = c.inValues ? QList<SavedValue>{{bad, 1.0}} : QList<SavedValue>{};
    ZELGeoStream stream(PositionRecord(ZELGeoGeometryRef(), 1.0, qint32(values.size()), values,
                                       c.inValues ? ZELGeoGeometryRef() : bad, 0.0),
                        &f.container);
    EXPECT_THROW_MESSAGE(f.position->Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class %1 with reference %2")
                             .arg(QString::fromLatin1(c.expectedClass))
                             .arg(bad.GetIdentity()));
}

INSTANTIATE_TEST_SUITE_P(References, ZELKinPositionUnresolved,
                         ::testing::Values(UnresolvedCase{"VariableOfNoObject", true, false, "ZELKinVariable"},
                                           UnresolvedCase{"VariableOfAnotherClass", true, true, "ZELKinVariable"},
                                           UnresolvedCase{"PointOfNoObject", false, false, "ZELTPPoint"},
                                           UnresolvedCase{"PointOfAnotherClass", false, true, "ZELTPPoint"}),
                         [](const ::testing::TestParamInfo<UnresolvedCase>& info) {
                             return std::string(info.param.name);
                         });
