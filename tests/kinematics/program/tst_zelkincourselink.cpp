#include "zelkintestcommand.h"
#include "zelkintestprograms.h"
#include "zelkintestrolllayup.h"

#include <zelkinscript_p.h>

#include <zeltpcourselink.h>
#include <zeltppoint.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

using ZELTest::RollLayupFixture;

namespace {

// A link record as ZELKinCourseLink::Save lays it out.
QByteArray LinkRecord(const ZELGeoGeometryRef& procedure, const QList<ZELGeoGeometryRef>& commands, qint32 index)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << procedure << qint32(commands.size());
    for (const ZELGeoGeometryRef& command : commands)
        out << command;
    out << index;
    return record;
}

} // namespace

TEST(ZELKinCourseLink, CreationLinksAndJoinsTheProcedureAndKeepsTheIndex)
{
    RollLayupFixture f;
    ZELKinCourseLink* first = ZELKinTestAccess::CreateCourseLink(f.procedure);
    ZELKinCourseLink* second = ZELKinTestAccess::CreateCourseLink(f.procedure);
    EXPECT_EQ(second->GetProcedure(), f.procedure);
    EXPECT_EQ(second->GetProgram(), f.program);
    EXPECT_EQ(second->GetContainer(), &f.container);
    EXPECT_EQ(first->GetIndex(), 0);
    EXPECT_EQ(second->GetIndex(), 1);
    EXPECT_EQ(second->GetNumCommands(), 0);
    EXPECT_EQ(second->GetToolPathCourseLink(), nullptr);
    EXPECT_EQ(f.procedure->GetCourseLinks(), QList<ZELKinCourseLink*>({first, second}));
}

TEST(ZELKinCourseLink, LoadingConstructionHasNoProcedureCommandsOrCourses)
{
    const ZELKinCourseLink link(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(link.GetProcedure(), nullptr);
    EXPECT_EQ(link.GetProgram(), nullptr);
    EXPECT_EQ(link.GetIndex(), 0);
    EXPECT_EQ(link.GetNumCommands(), 0);
    EXPECT_EQ(link.GetFromCourse(), nullptr);
    EXPECT_EQ(link.GetToCourse(), nullptr);
}

TEST(ZELKinCourseLink, WithoutAProcedureStandsOutsideAnyContainer)
{
    const ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(nullptr);
    EXPECT_EQ(link->GetContainer(), nullptr);
    EXPECT_EQ(link->GetProcedure(), nullptr);
    EXPECT_EQ(link->GetIndex(), 0);
    delete link;
}

TEST(ZELKinCourseLink, FirstLinkHasNoFromCourseAndTheLastOfACompleteProcedureNoToCourse)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 0, 0}, {0, 0});
    const QList<ZELKinCourse*> courses = f.procedure->GetCourses();
    const QList<ZELKinCourseLink*> links = f.procedure->GetCourseLinks();
    EXPECT_EQ(links[0]->GetFromCourse(), nullptr);
    EXPECT_EQ(links[0]->GetToCourse(), courses[0]);
    EXPECT_EQ(links[1]->GetFromCourse(), courses[0]);
    EXPECT_EQ(links[1]->GetToCourse(), courses[1]);
    EXPECT_EQ(links[2]->GetFromCourse(), courses[1]);
    EXPECT_EQ(links[2]->GetToCourse(), nullptr);
}

TEST(ZELKinCourseLink, FromCourseOfTheSecondOfTwoLinksInARowIsOutOfBounds)
{
    // Not a complete procedure: link 2 follows link 1 without a course between.
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 0, 0}, {0});
    EXPECT_EQ(f.procedure->GetCourseLink(1)->GetToCourse(), nullptr);
    EXPECT_THROW_MESSAGE(f.procedure->GetCourseLink(2)->GetFromCourse(), ZELSysOutOfBoundsException,
                         "value 1 is out of bounds [0, 0]");
}

TEST(ZELKinCourseLink, CoursesThatAreGoneReadNull)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 0}, {0});
    f.container.DeleteGeometry(f.procedure->GetCourse(0));
    EXPECT_EQ(f.procedure->GetCourseLink(0)->GetToCourse(), nullptr);
    EXPECT_EQ(f.procedure->GetCourseLink(1)->GetFromCourse(), nullptr);
}

TEST(ZELKinCourseLink, IsNeverARollerChangeEvenWithAToolChange)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 1);
    EXPECT_FALSE(link->IsRollerChange());
    ZELKinTestAccess::CreateToolChange(link, QStringLiteral("R2"), QStringLiteral("H1"));
    EXPECT_FALSE(link->IsRollerChange());
}

class ZELKinCourseLinkInsert : public ::testing::TestWithParam<ZELTest::InsertCase>
{
};

TEST_P(ZELKinCourseLinkInsert, FollowsTheCommonRule)
{
    const ZELTest::InsertCase& c = GetParam();
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 2);
    const QList<ZELKinCommand*> before = ZELTest::CommandsByIndex(*link);
    ZELKinCommand* inserted = nullptr;
    if (c.expectedIndex < 0) {
        EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreatePosition(link, c.index), ZELSysOutOfBoundsException, c.message);
    } else {
        inserted = ZELKinTestAccess::CreatePosition(link, c.index);
        EXPECT_EQ(inserted->GetIndex(), c.expectedIndex);
        EXPECT_EQ(inserted->GetScript(), link);
    }
    EXPECT_EQ(ZELTest::CommandsByIndex(*link), ZELTest::ExpectedOrder(before, inserted, c));
}

INSTANTIATE_TEST_SUITE_P(
    Indices, ZELKinCourseLinkInsert,
    ::testing::Values(ZELTest::InsertCase{"MinusOneAppends", -1, 2, "", {0, 1, 2}},
                      ZELTest::InsertCase{"AnyNegativeIndexAppends", -7, 2, "", {0, 1, 2}},
                      ZELTest::InsertCase{"ZeroInsertsFirst", 0, 0, "", {2, 0, 1}},
                      ZELTest::InsertCase{"LastIndexInsertsBeforeTheLast", 1, 1, "", {0, 2, 1}},
                      ZELTest::InsertCase{"TheCountIsRefused", 2, -1, "value 2 is out of bounds [-1, 1]", {0, 1}},
                      ZELTest::InsertCase{"BeyondTheCountIsRefused", 5, -1, "value 5 is out of bounds [-1, 1]", {0, 1}}),
    [](const ::testing::TestParamInfo<ZELTest::InsertCase>& info) { return std::string(info.param.name); });

TEST(ZELKinCourseLink, InsertingIntoAnEmptyLinkAtZeroIsRefused)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 0);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreatePosition(link, 0), ZELSysOutOfBoundsException,
                         "value 0 is out of bounds [-1, -1]");
    EXPECT_EQ(link->GetNumCommands(), 0);
}

TEST(ZELKinCourseLink, TakesCommandsOfAnyKind)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 1);
    ZELKinCommand* position = link->GetCommand(0);
    ZELKinToolChange* change = ZELKinTestAccess::CreateToolChange(link, QStringLiteral("R2"), QStringLiteral("H1"));
    auto* other = new ZELKinTestCommand(link, 0);
    EXPECT_EQ(ZELTest::CommandsByIndex(*link), QList<ZELKinCommand*>({other, position, change}));
    EXPECT_EQ(change->GetIndex(), 1);
    EXPECT_EQ(other->GetIndex(), 0);
}

TEST(ZELKinCourseLink, IndexOfCommandScansTheListAndGivesMinusOneWhenAbsent)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 3);
    ZELKinCourseLink* other = ZELTest::AddLink(f.procedure, 1);
    ZELKinScriptPrivate* d = ZELKinScriptPrivate::get(link);
    EXPECT_EQ(d->IndexOfCommand(link->GetCommand(2)), 2);
    EXPECT_EQ(d->IndexOfCommand(other->GetCommand(0)), -1);
    EXPECT_EQ(d->IndexOfCommand(nullptr), -1);
    EXPECT_EQ(ZELKinScriptPrivate::get(ZELTest::AddLink(f.procedure, 0))->IndexOfCommand(link->GetCommand(0)), -1);
}

TEST(ZELKinCourseLink, GetCommandDoesNotCheckTheIndexAndReadsNullOutsideTheList)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 2);
    EXPECT_NE(link->GetCommand(1), nullptr);
    EXPECT_EQ(link->GetCommand(2), nullptr);
    EXPECT_EQ(link->GetCommand(-1), nullptr);
}

TEST(ZELKinCourseLink, HoldsOneReferenceOnEachCommandAndADestroyedOneReadsNull)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 2);
    ZELKinCommand* first = link->GetCommand(0);
    EXPECT_EQ(first->GetReferenceCount(), 1);
    EXPECT_EQ(link->GetReferenceCount(), 1 + 2); // the procedure's list and each command's script
    f.container.DeleteGeometry(first);
    EXPECT_EQ(link->GetNumCommands(), 2);
    EXPECT_EQ(link->GetCommand(0), nullptr);
    EXPECT_EQ(link->GetReferenceCount(), 1 + 1);
}

TEST(ZELKinCourseLink, ToolPathCourseLinkIsACountedLinkThatReadsNullOnceItIsGone)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 0);
    ZELTPCourseLink* source = new ZELTPCourseLink(&f.container, QStringLiteral("approach"));
    f.container.SetModified(false);
    link->SetToolPathCourseLink(source);
    EXPECT_TRUE(f.container.IsModified());
    EXPECT_EQ(link->GetToolPathCourseLink(), source);
    EXPECT_EQ(source->GetReferenceCount(), 1);
    link->SetToolPathCourseLink(nullptr);
    EXPECT_EQ(source->GetReferenceCount(), 0);
    link->SetToolPathCourseLink(source);
    f.container.DeleteGeometry(source);
    EXPECT_EQ(link->GetToolPathCourseLink(), nullptr);
}

TEST(ZELKinCourseLink, InsertingMarksTheContainerModified)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 0);
    f.container.SetModified(false);
    ZELKinTestAccess::CreatePosition(link);
    EXPECT_TRUE(f.container.IsModified());
}

TEST(ZELKinCourseLink, RecordHoldsProcedureCommandsAndIndex)
{
    RollLayupFixture f;
    ZELTest::AddLink(f.procedure, 0);
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 1);
    const ZELKinToolChange* change =
        ZELKinTestAccess::CreateToolChange(link, QStringLiteral("R2"), QStringLiteral("H1"));
    link->SetToolPathCourseLink(new ZELTPCourseLink(&f.container, QStringLiteral("transfer")));
    EXPECT_EQ(link->GetCurrentState(),
              LinkRecord(f.procedure->GetReference(), {link->GetCommand(0)->GetReference(), change->GetReference()},
                         1));
}

TEST(ZELKinCourseLink, GoneProcedureAndCommandAreSavedEmptyAndLoadAsNull)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 2);
    const ZELGeoGeometryRef kept = link->GetCommand(1)->GetReference();
    f.container.DeleteGeometry(link->GetCommand(0));
    f.container.DeleteGeometry(f.procedure);
    EXPECT_EQ(link->GetCurrentState(), LinkRecord(ZELGeoGeometryRef(), {ZELGeoGeometryRef(), kept}, 0));

    ZELGeoContainer target;
    ASSERT_NO_THROW(ZELTest::CopyContainer(f.container, target));
    const ZELKinCourseLink* loaded = ZELTest::FirstOf<ZELKinCourseLink>(target);
    EXPECT_EQ(loaded->GetProcedure(), nullptr);
    ASSERT_EQ(loaded->GetNumCommands(), 2);
    EXPECT_EQ(loaded->GetCommand(0), nullptr);
    EXPECT_EQ(loaded->GetCommand(1), ZELTest::FirstOf<ZELKinPosition>(target));
}

TEST(ZELKinCourseLink, SaveAndLoadKeepProcedureIndexAndCommandsButNotTheToolPathLink)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 1}, {0});
    ZELKinCourseLink* saved = f.procedure->GetCourseLink(1);
    ZELKinTestAccess::CreateToolChange(saved, QStringLiteral("R2"), QStringLiteral("H1"));
    saved->SetToolPathCourseLink(new ZELTPCourseLink(&f.container, QStringLiteral("retract")));

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const auto* procedure = ZELTest::FirstOf<ZELKinRollLayupProcedure>(target);
    const ZELKinCourseLink* loaded = procedure->GetCourseLink(1);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetProcedure(), procedure);
    EXPECT_EQ(loaded->GetProgram(), ZELTest::FirstOf<ZELKinProgram>(target));
    EXPECT_EQ(loaded->GetIndex(), 1);
    EXPECT_EQ(loaded->GetFromCourse(), procedure->GetCourse(0));
    EXPECT_EQ(loaded->GetToCourse(), nullptr);
    EXPECT_EQ(loaded->GetToolPathCourseLink(), nullptr);
    ASSERT_EQ(loaded->GetNumCommands(), 2);
    EXPECT_EQ(loaded->GetCommand(0)->GetScript(), loaded);
    EXPECT_EQ(loaded->GetCommand(1), ZELTest::FirstOf<ZELKinToolChange>(target));
}

struct UnresolvedCase
{
    const char* name;
    bool inCommands; // else the procedure
    bool wrongClass;
    const char* expectedClass;
};
ZELTEST_PRINT_CASE_BY_NAME(UnresolvedCase);

class ZELKinCourseLinkUnresolved : public ::testing::TestWithParam<UnresolvedCase>
{
};

TEST_P(ZELKinCourseLinkUnresolved, ReferenceThrowsNotFound)
{
    const UnresolvedCase& c = GetParam();
    RollLayupFixture f;
    const ZELGeoGeometryRef bad = c.wrongClass ? f.program->GetReference() : ZELGeoGeometryRef(55555);
    ZELKinCourseLink loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(LinkRecord(c.inCommands ? f.procedure->GetReference() : bad,
                                   c.inCommands ? QList<ZELGeoGeometryRef>{bad} : QList<ZELGeoGeometryRef>{}, 0),
                        &f.container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class %1 with reference %2")
                             .arg(QString::fromLatin1(c.expectedClass))
                             .arg(bad.GetIdentity()));
}

INSTANTIATE_TEST_SUITE_P(
    References, ZELKinCourseLinkUnresolved,
    ::testing::Values(UnresolvedCase{"ProcedureOfNoObject", false, false, "ZELKinRollLayupProcedure"},
                      UnresolvedCase{"ProcedureOfAnotherClass", false, true, "ZELKinRollLayupProcedure"},
                      UnresolvedCase{"CommandOfNoObject", true, false, "ZELKinCommand"},
                      UnresolvedCase{"CommandOfAnotherClass", true, true, "ZELKinCommand"}),
    [](const ::testing::TestParamInfo<UnresolvedCase>& info) { return std::string(info.param.name); });
