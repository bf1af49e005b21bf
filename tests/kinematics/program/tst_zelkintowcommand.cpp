#include "zelkintestprograms.h"
#include "zelkintestrolllayup.h"

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <QMetaEnum>

using ZELTest::RollLayupFixture;

namespace {

// A tow command record as ZELKinTowCommand::Save lays it out.
QByteArray TowCommandRecord(const ZELGeoGeometryRef& script, const ZELCompTowMask& mask, qint32 type)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script << mask << type;
    return record;
}

ZELCompTowMask Tows(std::initializer_list<int> tows)
{
    ZELCompTowMask mask(16, false);
    for (const int tow : tows)
        mask.SetTowEnabled(tow, true);
    return mask;
}

} // namespace

TEST(ZELKinTowCommand, CommandTypeValuesAreFixed)
{
    EXPECT_EQ(int(ZELKinTowCommand::Add), 0);
    EXPECT_EQ(int(ZELKinTowCommand::Cut), 1);
    EXPECT_EQ(int(ZELKinTowCommand::Force), 2);
    EXPECT_EQ(int(ZELKinTowCommand::Release), 3);
}

TEST(ZELKinTowCommand, CreationInsertsItIntoTheCourseWithItsMaskAndType)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 2);
    const ZELKinTowCommand* add = ZELKinTestAccess::CreateTowCommand(course, Tows({1, 2}), ZELKinTowCommand::Add, 1);
    const ZELKinTowCommand* release =
        ZELKinTestAccess::CreateTowCommand(course, Tows({16}), ZELKinTowCommand::Release);
    EXPECT_EQ(add->GetScript(), course);
    EXPECT_EQ(add->GetIndex(), 1);
    EXPECT_EQ(release->GetIndex(), 3);
    EXPECT_EQ(course->GetCommand(1), add);
    EXPECT_EQ(course->GetCommand(3), release);
    EXPECT_TRUE(add->GetTowMask() == Tows({1, 2}));
    EXPECT_EQ(add->GetType(), ZELKinTowCommand::Add);
    EXPECT_TRUE(release->GetTowMask() == Tows({16}));
    EXPECT_EQ(release->GetType(), ZELKinTowCommand::Release);
}

TEST(ZELKinTowCommand, LoadingConstructionHasAMaskOfNoTowsAndTypeAdd)
{
    const ZELKinTowCommand command(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(command.GetTowMask() == ZELCompTowMask());
    EXPECT_EQ(command.GetType(), ZELKinTowCommand::Add);
    EXPECT_EQ(command.GetScript(), nullptr);
}

TEST(ZELKinTowCommand, MaskOfAnotherSizeThanTheMachinesIsRejectedAfterTheInsertion)
{
    RollLayupFixture f; // 16 tows
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 2);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowCommand(course, ZELCompTowMask(8, true), ZELKinTowCommand::Cut, 1),
                         ZELSysException, "mask is not compatible with machine");
    // The rejected command was inserted first: its entry stays, and reads
    // null now that the command is gone.
    ASSERT_EQ(course->GetNumCommands(), 3);
    EXPECT_EQ(course->GetCommand(1), nullptr);
    const ZELKinTowCommand* next = ZELKinTestAccess::CreateTowCommand(course, Tows({3}), ZELKinTowCommand::Cut);
    EXPECT_EQ(next->GetIndex(), 3);
}

TEST(ZELKinTowCommand, OnlyTheNumberOfTowsOfTheMaskMustMatchTheMachine)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    EXPECT_NO_THROW(ZELKinTestAccess::CreateTowCommand(course, ZELCompTowMask(16, false), ZELKinTowCommand::Force));
}

TEST(ZELKinTowCommand, InsertionFailsBeforeTheMaskIsChecked)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 1);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowCommand(course, ZELCompTowMask(8, true), ZELKinTowCommand::Add, 3),
                         ZELSysOutOfBoundsException, "value 3 is out of bounds [-1, 1]");
    EXPECT_EQ(course->GetNumCommands(), 1);
}

TEST(ZELKinTowCommand, CourseThatLeadsToNoMachineAnyMoreRejectsTheCommand)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    f.container.DeleteGeometry(f.machine);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowCommand(course, Tows({1}), ZELKinTowCommand::Add),
                         ZELSysException, "mask is not compatible with machine");
    EXPECT_EQ(course->GetNumCommands(), 1);
}

TEST(ZELKinTowCommand, WithoutACourseIsRejectedOutsideAnyContainer)
{
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowCommand(nullptr, Tows({1}), ZELKinTowCommand::Add),
                         ZELSysException, "mask is not compatible with machine");
}

TEST(ZELKinTowCommand, IsNotAPosition)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 1);
    ZELKinTestAccess::CreateTowCommand(course, Tows({1}), ZELKinTowCommand::Add, 0);
    EXPECT_EQ(course->GetFirstPosition(), course->GetCommand(1));
}

TEST(ZELKinTowCommand, RecordHoldsTheScriptThenMaskAndType)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    const ZELKinTowCommand* command =
        ZELKinTestAccess::CreateTowCommand(course, Tows({2, 15}), ZELKinTowCommand::Force);
    EXPECT_EQ(command->GetCurrentState(), TowCommandRecord(course->GetReference(), Tows({2, 15}), 2));
}

class ZELKinTowCommandType : public ::testing::TestWithParam<ZELKinTowCommand::CommandType>
{
};

TEST_P(ZELKinTowCommandType, SurvivesSaveAndLoadWithTheMask)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 1);
    ZELKinTestAccess::CreateTowCommand(course, Tows({1, 7, 16}), GetParam(), 0);

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinTowCommand* loaded = ZELTest::FirstOf<ZELKinTowCommand>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetType(), GetParam());
    EXPECT_TRUE(loaded->GetTowMask() == Tows({1, 7, 16}));
    EXPECT_EQ(loaded->GetScript(), ZELTest::FirstOf<ZELKinTowCourse>(target));
    EXPECT_EQ(ZELTest::FirstOf<ZELKinTowCourse>(target)->GetCommand(0), loaded);
}

INSTANTIATE_TEST_SUITE_P(Types, ZELKinTowCommandType,
                         ::testing::Values(ZELKinTowCommand::Add, ZELKinTowCommand::Cut, ZELKinTowCommand::Force,
                                           ZELKinTowCommand::Release),
                         [](const ::testing::TestParamInfo<ZELKinTowCommand::CommandType>& info) {
                             return std::string(QMetaEnum::fromType<ZELKinTowCommand::CommandType>().valueToKey(
                                 info.param));
                         });

TEST(ZELKinTowCommand, LoadKeepsATypeThatHasNoName)
{
    RollLayupFixture f;
    ZELKinTowCommand loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(TowCommandRecord(ZELGeoGeometryRef(), Tows({4}), 7), &f.container);
    loaded.Load(stream);
    EXPECT_EQ(int(loaded.GetType()), 7);
    EXPECT_TRUE(loaded.GetTowMask() == Tows({4}));
}

TEST(ZELKinTowCommand, UnresolvableScriptThrowsNotFound)
{
    RollLayupFixture f;
    ZELKinTowCommand loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(TowCommandRecord(f.machine->GetReference(), Tows({4}), 0), &f.container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinScript with reference %1")
                             .arg(f.machine->GetReference().GetIdentity()));
}
