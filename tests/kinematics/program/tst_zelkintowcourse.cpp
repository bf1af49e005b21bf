#include "zelkintestcommand.h"
#include "zelkintestprograms.h"
#include "zelkintestrolllayup.h"

#include <zelkinscript_p.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <functional>
#include <memory>
#include <vector>

using ZELTest::RollLayupFixture;

namespace {

ZELKinTestHead HeadOf(int tows)
{
    ZELKinTestHead head;
    head.mask = ZELCompTowMask(tows, true);
    return head;
}

// The tow course's own fields as ZELKinTowCourse::Save writes them after the
// course's.
QByteArray TowCourseFields(const QList<ZELGeoGeometryRef>& commands, const ZELCompTowMask& mask,
                           const QList<double>& lengths)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << qint32(commands.size());
    for (const ZELGeoGeometryRef& command : commands)
        out << command;
    out << mask << qint32(lengths.size());
    for (const double length : lengths)
        out << length;
    return record;
}

QByteArray CourseFields(const ZELGeoGeometryRef& procedure, qint32 index, const QString& roller,
                        const QString& material)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << procedure << index << roller << material;
    return record;
}

} // namespace

TEST(ZELKinTowCourse, NewCourseWithA32TowMaskHas32LengthsOfZeroAndTow32IsOutOfBounds)
{
    RollLayupFixture f(HeadOf(32));
    const ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(f.procedure, ZELCompTowMask(32, true));
    for (int tow = 0; tow < 32; ++tow)
        EXPECT_TRUE(ZELTest::SameDouble(0.0, course->GetTowLength(tow), ZELTest::kExact)) << tow;
    EXPECT_THROW_MESSAGE(course->GetTowLength(32), ZELSysOutOfBoundsException, "value 32 is out of bounds [0, 31]");
    EXPECT_THROW_MESSAGE(course->GetTowLength(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 31]");
}

TEST(ZELKinTowCourse, CreationAppendsToTheProcedureAndKeepsTheMaskAsGiven)
{
    RollLayupFixture f;
    ZELCompTowMask mask(16, false);
    mask.SetTowEnabled(3, true);
    mask.SetTowEnabled(16, true);
    const ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(f.procedure, mask);
    EXPECT_EQ(f.procedure->GetCourses(), QList<ZELKinCourse*>({const_cast<ZELKinTowCourse*>(course)}));
    EXPECT_TRUE(course->GetTowMask() == mask);
    EXPECT_EQ(course->GetNumCommands(), 0);
    EXPECT_EQ(course->GetRollerTows(), 0);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, course->GetTowLength(15), ZELTest::kExact));
    EXPECT_THROW(course->GetTowLength(16), ZELSysOutOfBoundsException);
}

TEST(ZELKinTowCourse, LoadingConstructionHasAMaskOfNoTowsAndNoLengths)
{
    const ZELKinTowCourse course(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(course.GetTowMask() == ZELCompTowMask());
    EXPECT_EQ(course.GetNumCommands(), 0);
    EXPECT_EQ(course.GetRollerTows(), 0);
    EXPECT_THROW_MESSAGE(course.GetTowLength(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
}

// Objects made outside any container, which the test deletes itself.
using Outside = std::vector<std::unique_ptr<QObject>>;

struct NoMachineCase
{
    const char* name;
    std::function<ZELKinRollLayupProcedure*(RollLayupFixture&, Outside&)> procedure;
};
ZELTEST_PRINT_CASE_BY_NAME(NoMachineCase);

class ZELKinTowCourseWithoutAFPMachine : public ::testing::TestWithParam<NoMachineCase>
{
};

TEST_P(ZELKinTowCourseWithoutAFPMachine, ThrowsAfterJoiningTheProcedureWhichKeepsANullEntry)
{
    RollLayupFixture f;
    Outside outside;
    ZELKinRollLayupProcedure* procedure = GetParam().procedure(f, outside);
    // The mask is wrong too: the machine is checked first.
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowCourse(procedure, ZELCompTowMask(8, true)), ZELSysException,
                         "tow course added to program without AFP machine");
    if (procedure) {
        EXPECT_EQ(procedure->GetCourses(), QList<ZELKinCourse*>({nullptr}));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Programs, ZELKinTowCourseWithoutAFPMachine,
    ::testing::Values(NoMachineCase{"MachineIsGone",
                                    [](RollLayupFixture& f, Outside&) {
                                        f.container.DeleteGeometry(f.machine);
                                        return f.procedure;
                                    }},
                      NoMachineCase{"ProgramWithoutMachine",
                                    [](RollLayupFixture&, Outside& outside) {
                                        ZELKinProgram* program = ZELKinTestAccess::CreateProgram(nullptr);
                                        auto* procedure = ZELKinTestAccess::CreateRollLayupProcedure(program, 1.0, 1.0);
                                        outside.emplace_back(procedure);
                                        outside.emplace_back(program);
                                        return procedure;
                                    }},
                      NoMachineCase{"ProcedureWithoutProgram",
                                    [](RollLayupFixture&, Outside& outside) {
                                        auto* procedure = ZELKinTestAccess::CreateRollLayupProcedure(nullptr, 1.0, 1.0);
                                        outside.emplace_back(procedure);
                                        return procedure;
                                    }},
                      NoMachineCase{"NoProcedure",
                                    [](RollLayupFixture&, Outside&) -> ZELKinRollLayupProcedure* { return nullptr; }}),
    [](const ::testing::TestParamInfo<NoMachineCase>& info) { return std::string(info.param.name); });

struct MaskSizeCase
{
    const char* name;
    ZELCompTowMask mask;
};
ZELTEST_PRINT_CASE_BY_NAME(MaskSizeCase);

class ZELKinTowCourseMaskSize : public ::testing::TestWithParam<MaskSizeCase>
{
};

TEST_P(ZELKinTowCourseMaskSize, OtherThanTheMachinesThrowsAndLeavesANullEntry)
{
    RollLayupFixture f; // 16 tows
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowCourse(f.procedure, GetParam().mask), ZELSysException,
                         "tow mask size does not match machine tow mask size");
    EXPECT_EQ(f.procedure->GetCourses(), QList<ZELKinCourse*>({nullptr}));
    // The next course still gets the next index.
    EXPECT_EQ(ZELTest::AddCourse(f.procedure, 0)->GetIndex(), 1);
}

INSTANTIATE_TEST_SUITE_P(Masks, ZELKinTowCourseMaskSize,
                         ::testing::Values(MaskSizeCase{"Fewer", ZELCompTowMask(8, true)},
                                           MaskSizeCase{"More", ZELCompTowMask(32, true)},
                                           MaskSizeCase{"NoTows", ZELCompTowMask()},
                                           MaskSizeCase{"Invalid", ZELCompTowMask(65, true)}),
                         [](const ::testing::TestParamInfo<MaskSizeCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinTowCourse, OnlyTheNumberOfTowsOfTheMaskMustMatchTheMachine)
{
    RollLayupFixture f;
    EXPECT_NO_THROW(ZELKinTestAccess::CreateTowCourse(f.procedure, ZELCompTowMask(16, false)));
}

class ZELKinTowCourseInsert : public ::testing::TestWithParam<ZELTest::InsertCase>
{
};

TEST_P(ZELKinTowCourseInsert, AcceptsTheCountAsAnAppendingIndex)
{
    const ZELTest::InsertCase& c = GetParam();
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 2);
    const QList<ZELKinCommand*> before = ZELTest::CommandsByIndex(*course);
    ZELKinCommand* inserted = nullptr;
    if (c.expectedIndex < 0) {
        EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowFeedCommand(course, {1.0}, c.index),
                             ZELSysOutOfBoundsException, c.message);
    } else {
        inserted = ZELKinTestAccess::CreateTowFeedCommand(course, {1.0}, c.index);
        EXPECT_EQ(inserted->GetIndex(), c.expectedIndex);
    }
    EXPECT_EQ(ZELTest::CommandsByIndex(*course), ZELTest::ExpectedOrder(before, inserted, c));
}

INSTANTIATE_TEST_SUITE_P(
    Indices, ZELKinTowCourseInsert,
    ::testing::Values(ZELTest::InsertCase{"MinusOneAppends", -1, 2, "", {0, 1, 2}},
                      ZELTest::InsertCase{"ZeroInsertsFirst", 0, 0, "", {2, 0, 1}},
                      ZELTest::InsertCase{"OneInsertsBetween", 1, 1, "", {0, 2, 1}},
                      ZELTest::InsertCase{"TheCountAppends", 2, 2, "", {0, 1, 2}},
                      ZELTest::InsertCase{"OneBeyondTheCountIsRefused", 3, -1, "value 3 is out of bounds [-1, 2]", {0, 1}},
                      ZELTest::InsertCase{"FarBeyondTheCountIsRefused", 40, -1, "value 40 is out of bounds [-1, 2]",
                                 {0, 1}}),
    [](const ::testing::TestParamInfo<ZELTest::InsertCase>& info) { return std::string(info.param.name); });

TEST(ZELKinTowCourse, InsertingAtZeroIntoAnEmptyCourseAppends)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    const ZELKinCommand* command = ZELKinTestAccess::CreateTowFeedCommand(course, {}, 0);
    EXPECT_EQ(command->GetIndex(), 0);
    EXPECT_EQ(course->GetCommand(0), command);
}

TEST(ZELKinTowCourse, CommandOfAnotherScriptIsRefusedAndNothingIsInserted)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 1);
    ZELKinTowCourse* other = ZELTest::AddCourse(f.procedure, 1);
    ZELKinCommand* foreign = other->GetCommand(0);
    const int references = foreign->GetReferenceCount();
    f.container.SetModified(false);
    EXPECT_THROW_MESSAGE(ZELKinScriptPrivate::get(course)->InsertCommand(foreign, -1), ZELSysException,
                         "command does not belong to course");
    EXPECT_THROW_MESSAGE(ZELKinScriptPrivate::get(course)->InsertCommand(foreign, 0), ZELSysException,
                         "command does not belong to course");
    EXPECT_EQ(course->GetNumCommands(), 1);
    EXPECT_EQ(foreign->GetReferenceCount(), references);
    EXPECT_FALSE(f.container.IsModified());
}

TEST(ZELKinTowCourse, TheScriptIsCheckedBeforeTheIndex)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    ZELKinCommand* foreign = ZELTest::AddLink(f.procedure, 1)->GetCommand(0);
    EXPECT_THROW_MESSAGE(ZELKinScriptPrivate::get(course)->InsertCommand(foreign, 9), ZELSysException,
                         "command does not belong to course");
}

TEST(ZELKinTowCourse, TakesCommandsOfAnyKindThatNameIt)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 1);
    auto* other = new ZELKinTestCommand(course);
    EXPECT_EQ(course->GetCommand(1), other);
    EXPECT_EQ(ZELKinScriptPrivate::get(course)->IndexOfCommand(other), 1);
    EXPECT_EQ(ZELKinScriptPrivate::get(course)->IndexOfCommand(nullptr), -1);
    EXPECT_EQ(ZELKinScriptPrivate::get(ZELTest::AddCourse(f.procedure, 0))->IndexOfCommand(other), -1);
}

TEST(ZELKinTowCourse, GetCommandOutsideTheListThrowsWithInclusiveBounds)
{
    RollLayupFixture f;
    const ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 2);
    EXPECT_THROW_MESSAGE(course->GetCommand(2), ZELSysOutOfBoundsException, "value 2 is out of bounds [0, 1]");
    EXPECT_THROW_MESSAGE(course->GetCommand(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 1]");
}

TEST(ZELKinTowCourse, DestroyedCommandKeepsItsPlaceAsNull)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 2);
    f.container.DeleteGeometry(course->GetCommand(0));
    EXPECT_EQ(course->GetNumCommands(), 2);
    EXPECT_EQ(course->GetCommand(0), nullptr);
    EXPECT_EQ(course->GetFirstPosition(), course->GetCommand(1));
}

TEST(ZELKinTowCourse, TowLengthsAndRollerTowsKeepWhatIsSet)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    course->SetTowLength(0, 1250.5);
    course->SetTowLength(15, 3.25);
    course->SetRollerTows(12);
    EXPECT_TRUE(ZELTest::SameDouble(1250.5, course->GetTowLength(0), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, course->GetTowLength(1), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.25, course->GetTowLength(15), ZELTest::kExact));
    EXPECT_EQ(course->GetRollerTows(), 12);
}

TEST(ZELKinTowCourse, SetTowLengthOutsideTheTowsThrowsAndChangesNothing)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    f.container.SetModified(false);
    EXPECT_THROW_MESSAGE(course->SetTowLength(16, 1.0), ZELSysOutOfBoundsException,
                         "value 16 is out of bounds [0, 15]");
    EXPECT_THROW_MESSAGE(course->SetTowLength(-1, 1.0), ZELSysOutOfBoundsException,
                         "value -1 is out of bounds [0, 15]");
    EXPECT_FALSE(f.container.IsModified());
    for (int tow = 0; tow < 16; ++tow)
        EXPECT_TRUE(ZELTest::SameDouble(0.0, course->GetTowLength(tow), ZELTest::kExact));
}

struct SetterCase
{
    const char* name;
    std::function<void(ZELKinTowCourse*)> set;
};
ZELTEST_PRINT_CASE_BY_NAME(SetterCase);

class ZELKinTowCourseSetter : public ::testing::TestWithParam<SetterCase>
{
};

TEST_P(ZELKinTowCourseSetter, MarksTheContainerModified)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    f.container.SetModified(false);
    GetParam().set(course);
    EXPECT_TRUE(f.container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(
    Setters, ZELKinTowCourseSetter,
    ::testing::Values(SetterCase{"TowLength", [](ZELKinTowCourse* c) { c->SetTowLength(2, 1.0); }},
                      SetterCase{"RollerTows", [](ZELKinTowCourse* c) { c->SetRollerTows(4); }},
                      SetterCase{"Inserting",
                                 [](ZELKinTowCourse* c) { ZELKinTestAccess::CreateRollLayupPosition(c); }}),
    [](const ::testing::TestParamInfo<SetterCase>& info) { return std::string(info.param.name); });

TEST(ZELKinTowCourse, RecordHoldsTheCourseThenCommandsMaskAndLengthsButNoRollerTows)
{
    RollLayupFixture f;
    ZELCompTowMask mask(16, false);
    mask.SetTowEnabled(5, true);
    ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(f.procedure, mask);
    course->SetRoller(QStringLiteral("R1"));
    course->SetMaterial(QStringLiteral("T35"));
    course->SetRollerTows(8);
    course->SetTowLength(4, 812.5);
    const ZELKinCommand* position = ZELKinTestAccess::CreateRollLayupPosition(course);
    const ZELKinCommand* cut = ZELKinTestAccess::CreateTowCommand(course, mask, ZELKinTowCommand::Cut);
    QList<double> lengths(16, 0.0);
    lengths[4] = 812.5;
    EXPECT_EQ(course->GetCurrentState(),
              CourseFields(f.procedure->GetReference(), 0, QStringLiteral("R1"), QStringLiteral("T35")) +
                  TowCourseFields({position->GetReference(), cut->GetReference()}, mask, lengths));
}

TEST(ZELKinTowCourse, SaveAndLoadKeepCommandsMaskAndLengthsAndRollerTowsReadZero)
{
    RollLayupFixture f;
    ZELCompTowMask mask(16, false);
    mask.SetTowEnabled(1, true);
    mask.SetTowEnabled(9, true);
    ZELKinTowCourse* saved = ZELKinTestAccess::CreateTowCourse(f.procedure, mask);
    saved->SetRollerTows(16);
    saved->SetTowLength(8, 640.0);
    ZELKinTestAccess::CreateRollLayupPosition(saved);
    ZELKinTestAccess::CreateTowCommand(saved, mask, ZELKinTowCommand::Add);
    ZELKinTestAccess::CreateTowFeedCommand(saved, {1.0, 2.0});

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinTowCourse* loaded = ZELTest::FirstOf<ZELKinTowCourse>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetProcedure(), ZELTest::FirstOf<ZELKinRollLayupProcedure>(target));
    EXPECT_TRUE(loaded->GetTowMask() == mask);
    EXPECT_TRUE(ZELTest::SameDouble(640.0, loaded->GetTowLength(8), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, loaded->GetTowLength(15), ZELTest::kExact));
    EXPECT_THROW(loaded->GetTowLength(16), ZELSysOutOfBoundsException);
    EXPECT_EQ(loaded->GetRollerTows(), 0);
    ASSERT_EQ(loaded->GetNumCommands(), 3);
    EXPECT_EQ(loaded->GetCommand(0), ZELTest::FirstOf<ZELKinRollLayupPosition>(target));
    EXPECT_EQ(loaded->GetCommand(1), ZELTest::FirstOf<ZELKinTowCommand>(target));
    EXPECT_EQ(loaded->GetCommand(2), ZELTest::FirstOf<ZELKinTowFeedCommand>(target));
    EXPECT_EQ(loaded->GetCommand(1)->GetScript(), loaded);
}

TEST(ZELKinTowCourse, LengthCountLargerThanTheLengthsPresentStopsAtTheEndOfTheRecord)
{
    RollLayupFixture f;
    ZELKinTowCourse loaded(&f.container, ZELGeoGeometryRef());
    QByteArray record = CourseFields(f.procedure->GetReference(), 0, QString(), QString());
    {
        ZELGeoStream out(&record, nullptr);
        out << qint32(0) << ZELCompTowMask(4, true) << qint32(1000000) << 1.5 << 2.5;
    }
    ZELGeoStream stream(record, &f.container);
    EXPECT_NO_THROW(loaded.Load(stream));
    EXPECT_TRUE(loaded.GetTowMask() == ZELCompTowMask(4, true));
    EXPECT_TRUE(ZELTest::SameDouble(2.5, loaded.GetTowLength(1), ZELTest::kExact));
    EXPECT_THROW_MESSAGE(loaded.GetTowLength(2), ZELSysOutOfBoundsException, "value 2 is out of bounds [0, 1]");
}

TEST(ZELKinTowCourse, UnresolvableCommandThrowsNotFound)
{
    RollLayupFixture f;
    ZELKinTowCourse loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(CourseFields(f.procedure->GetReference(), 0, QString(), QString()) +
                            TowCourseFields({f.program->GetReference()}, ZELCompTowMask(), {}),
                        &f.container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinCommand with reference %1")
                             .arg(f.program->GetReference().GetIdentity()));
}
