#include "zelkintestcommand.h"
#include "zelkintestprograms.h"
#include "zelkintestrolllayup.h"

#include <zelkinprobecommand.h>
#include <zelkinprobeprocedure.h>

#include <zelkinscript_p.h>

#include <zeltpcourse.h>
#include <zeltpcourselink.h>
#include <zeltppoint.h>
#include <zeltpprocedure.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysnotimplementedexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QRandomGenerator>

#include <cmath>
#include <functional>

using ZELTest::kNaN;
using ZELTest::RollLayupFixture;

namespace {

ZELKinPlyDescription Ply(const QString& name, const QString& material = QString(), double angle = kNaN)
{
    ZELKinPlyDescription ply;
    ply.SetName(name);
    ply.SetMaterial(material);
    ply.SetAngle(angle);
    return ply;
}

// A procedure record as ZELKinRollLayupProcedure::Save lays it out. `plyCount`
// is written as given, so that it may disagree with the plies that follow.
QByteArray ProcedureRecord(const ZELGeoGeometryRef& program, const QList<ZELGeoGeometryRef>& courses,
                           const QList<ZELGeoGeometryRef>& links, qint32 plyCount,
                           const QList<ZELKinPlyDescription>& plies)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << program << qint32(courses.size());
    for (const ZELGeoGeometryRef& course : courses)
        out << course;
    out << qint32(links.size());
    for (const ZELGeoGeometryRef& link : links)
        out << link;
    out << plyCount;
    for (const ZELKinPlyDescription& ply : plies)
        out << ply;
    return record;
}

QList<ZELGeoGeometryRef> ReferencesOf(const QList<ZELKinScript*>& scripts)
{
    QList<ZELGeoGeometryRef> references;
    for (const ZELKinScript* script : scripts)
        references.append(script->GetReference());
    return references;
}

template <typename T>
QList<ZELKinScript*> Scripts(const QList<T*>& children)
{
    return QList<ZELKinScript*>(children.cbegin(), children.cend());
}

void ExpectSamePly(const ZELKinPlyDescription& expected, const ZELKinPlyDescription& actual)
{
    EXPECT_EQ(actual.GetName(), expected.GetName());
    EXPECT_EQ(actual.GetMaterial(), expected.GetMaterial());
    EXPECT_TRUE(ZELTest::SameDouble(expected.GetAngle(), actual.GetAngle(), ZELTest::kExact));
    EXPECT_EQ(actual.GetMethod(), expected.GetMethod());
    EXPECT_TRUE(ZELTest::SameDouble(expected.GetArea(), actual.GetArea(), ZELTest::kExact));
}

} // namespace

TEST(ZELKinRollLayupProcedure, CreationAppendsItToTheProgramWithItsFeedratesAndNothingElse)
{
    RollLayupFixture f;
    EXPECT_EQ(f.procedure->GetProgram(), f.program);
    EXPECT_EQ(f.procedure->GetContainer(), &f.container);
    EXPECT_EQ(f.program->GetProcedures(), QList<ZELKinProcedure*>({f.procedure}));
    EXPECT_TRUE(ZELTest::SameDouble(2540.0, f.procedure->GetAddFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1270.0, f.procedure->GetCutFeedrate(), ZELTest::kExact));
    EXPECT_EQ(f.procedure->GetNumCourses(), 0);
    EXPECT_EQ(f.procedure->GetNumCourseLinks(), 0);
    EXPECT_EQ(f.procedure->GetNumPlies(), 0);
    EXPECT_EQ(f.procedure->GetNumCommands(), 0);
    EXPECT_TRUE(f.procedure->GetCourses().isEmpty());
    EXPECT_TRUE(f.procedure->GetCourseLinks().isEmpty());
}

TEST(ZELKinRollLayupProcedure, LoadingConstructionHasNaNFeedratesAndNoProgramChildrenOrPlies)
{
    const ZELKinRollLayupProcedure procedure(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(procedure.GetProgram(), nullptr);
    EXPECT_TRUE(std::isnan(procedure.GetAddFeedrate()));
    EXPECT_TRUE(std::isnan(procedure.GetCutFeedrate()));
    EXPECT_EQ(procedure.GetNumCourses(), 0);
    EXPECT_EQ(procedure.GetNumCourseLinks(), 0);
    EXPECT_EQ(procedure.GetNumPlies(), 0);
}

TEST(ZELKinRollLayupProcedure, WithoutAProgramStandsOutsideAnyContainer)
{
    const ZELKinRollLayupProcedure* procedure = ZELKinTestAccess::CreateRollLayupProcedure(nullptr, 1.0, 2.0);
    EXPECT_EQ(procedure->GetProgram(), nullptr);
    EXPECT_EQ(procedure->GetContainer(), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(1.0, procedure->GetAddFeedrate(), ZELTest::kExact));
    delete procedure;
}

TEST(ZELKinRollLayupProcedure, LinksAndCoursesJoinTheirOwnListsInOrderOfCreation)
{
    RollLayupFixture f;
    ZELKinCourseLink* link0 = ZELTest::AddLink(f.procedure, 0);
    ZELKinTowCourse* course0 = ZELTest::AddCourse(f.procedure, 0);
    ZELKinCourseLink* link1 = ZELTest::AddLink(f.procedure, 0);
    ZELKinTowCourse* course1 = ZELTest::AddCourse(f.procedure, 0);
    ZELKinCourseLink* link2 = ZELTest::AddLink(f.procedure, 0);
    EXPECT_EQ(f.procedure->GetCourses(), QList<ZELKinCourse*>({course0, course1}));
    EXPECT_EQ(f.procedure->GetCourseLinks(), QList<ZELKinCourseLink*>({link0, link1, link2}));
    EXPECT_EQ(f.procedure->GetCourse(1), course1);
    EXPECT_EQ(f.procedure->GetCourseLink(2), link2);
    EXPECT_EQ(course1->GetIndex(), 1);
    EXPECT_EQ(link2->GetIndex(), 2);
    EXPECT_EQ(course0->GetReferenceCount(), 1); // the procedure's list only
    EXPECT_EQ(link0->GetReferenceCount(), 1);
}

TEST(ZELKinRollLayupProcedure, DestroyedChildKeepsItsPlaceAsNullAndHoldsNoCommands)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1, 2}, {3});
    f.container.DeleteGeometry(f.procedure->GetCourse(0));
    EXPECT_EQ(f.procedure->GetCourse(0), nullptr);
    EXPECT_EQ(f.procedure->GetCourses(), QList<ZELKinCourse*>({nullptr}));
    EXPECT_EQ(f.procedure->GetNumCommands(), 3);
    EXPECT_EQ(f.procedure->GetCommand(1), f.procedure->GetCourseLink(1)->GetCommand(0));
}

struct ListIndexCase
{
    const char* name;
    std::function<void(const ZELKinRollLayupProcedure&)> get;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(ListIndexCase);

class ZELKinRollLayupProcedureListIndex : public ::testing::TestWithParam<ListIndexCase>
{
};

TEST_P(ZELKinRollLayupProcedureListIndex, OutsideTheListThrowsWithInclusiveBounds)
{
    // Two links, one course and two plies.
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 0}, {0});
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P1")));
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P2")));
    EXPECT_THROW_MESSAGE(GetParam().get(*f.procedure), ZELSysOutOfBoundsException, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, ZELKinRollLayupProcedureListIndex,
    ::testing::Values(
        ListIndexCase{"CourseOneBeyondTheEnd", [](const ZELKinRollLayupProcedure& p) { p.GetCourse(1); },
                      "value 1 is out of bounds [0, 0]"},
        ListIndexCase{"CourseMinusOne", [](const ZELKinRollLayupProcedure& p) { p.GetCourse(-1); },
                      "value -1 is out of bounds [0, 0]"},
        ListIndexCase{"LinkOneBeyondTheEnd", [](const ZELKinRollLayupProcedure& p) { p.GetCourseLink(2); },
                      "value 2 is out of bounds [0, 1]"},
        ListIndexCase{"LinkMinusOne", [](const ZELKinRollLayupProcedure& p) { p.GetCourseLink(-1); },
                      "value -1 is out of bounds [0, 1]"},
        ListIndexCase{"PlyOneBeyondTheEnd", [](const ZELKinRollLayupProcedure& p) { p.GetPlyDefinition(2); },
                      "value 2 is out of bounds [0, 1]"},
        ListIndexCase{"PlyMinusOne", [](const ZELKinRollLayupProcedure& p) { p.GetPlyDefinition(-1); },
                      "value -1 is out of bounds [0, 1]"}),
    [](const ::testing::TestParamInfo<ListIndexCase>& info) { return std::string(info.param.name); });

TEST(ZELKinRollLayupProcedure, ListsOfANewProcedureAreEmptyAndIndexZeroIsOutOfBounds)
{
    RollLayupFixture f;
    EXPECT_THROW_MESSAGE(f.procedure->GetCourse(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
    EXPECT_THROW_MESSAGE(f.procedure->GetCourseLink(0), ZELSysOutOfBoundsException,
                         "value 0 is out of bounds [0, -1]");
    EXPECT_THROW_MESSAGE(f.procedure->GetPlyDefinition(0), ZELSysOutOfBoundsException,
                         "value 0 is out of bounds [0, -1]");
}

TEST(ZELKinRollLayupProcedure, ElevenCommandsInterleaveLinksAndCoursesLinkFirst)
{
    // Courses of 3 and 4 commands, links of 1, 2 and 1.
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1, 2, 1}, {3, 4});
    const QList<ZELKinCourseLink*> links = f.procedure->GetCourseLinks();
    const QList<ZELKinCourse*> courses = f.procedure->GetCourses();
    const QList<ZELKinCommand*> expected = {
        // 0: link 0
        links[0]->GetCommand(0),
        // 1 to 3: course 0
        courses[0]->GetCommand(0), courses[0]->GetCommand(1), courses[0]->GetCommand(2),
        // 4 and 5: link 1
        links[1]->GetCommand(0), links[1]->GetCommand(1),
        // 6 to 9: course 1
        courses[1]->GetCommand(0), courses[1]->GetCommand(1), courses[1]->GetCommand(2), courses[1]->GetCommand(3),
        // 10: link 2
        links[2]->GetCommand(0)};
    EXPECT_EQ(f.procedure->GetNumCommands(), 11);
    EXPECT_EQ(ZELTest::CommandsByIndex(*f.procedure), expected);
}

TEST(ZELKinRollLayupProcedure, CountsItsPositionsAndNotItsOtherCommands)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1, 2, 0}, {3, 4});
    ZELKinTestAccess::CreateToolChange(f.procedure->GetCourseLink(2), QStringLiteral("R1"), QStringLiteral("H1"));
    // Links 1 + 2 + 0 and courses 3 + 4 positions; the tool change is the
    // eleventh command.
    EXPECT_EQ(f.procedure->GetNumCommands(), 11);
    EXPECT_EQ(f.procedure->GetNumPositions(), 10);
    EXPECT_EQ(f.procedure->GetCourse(1)->GetNumPositions(), 4);
    EXPECT_EQ(f.procedure->GetCourseLink(2)->GetNumPositions(), 0);
}

TEST(ZELKinRollLayupProcedure, WalksFollowTheInterleavedOrderBothWays)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1, 2, 0}, {3, 4});
    // The last link holds only a tool change, so the last position is the
    // last course's last command.
    ZELKinTestAccess::CreateToolChange(f.procedure->GetCourseLink(2), QStringLiteral("R1"), QStringLiteral("H1"));
    const QList<ZELKinCommand*> commands = ZELTest::CommandsByIndex(*f.procedure);
    ASSERT_EQ(commands.size(), 11);
    EXPECT_EQ(f.procedure->GetFirstPosition(), f.procedure->GetCourseLink(0)->GetCommand(0));
    EXPECT_EQ(f.procedure->GetLastPosition(), f.procedure->GetCourse(1)->GetCommand(3));
    for (int i = 0; i < commands.size(); ++i) {
        auto* position = qobject_cast<ZELKinPosition*>(commands.at(i));
        if (position)
            position->SetToolPathPoint(new ZELTPPoint(&f.container, ZELMathAxis()));
    }
    for (int i = 0; i < commands.size(); ++i) {
        SCOPED_TRACE(i);
        const auto* position = qobject_cast<const ZELKinPosition*>(commands.at(i));
        if (!position)
            continue;
        int index = -1;
        EXPECT_EQ(f.program->GetCorrespondingPosition(position->GetToolPathPoint(), &index), position);
        EXPECT_EQ(index, i);
    }
}

TEST(ZELKinRollLayupProcedure, WithLinksButNoCoursesListsTheLinksCommandsInLinkOrder)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {2, 0, 1}, {});
    const QList<ZELKinCourseLink*> links = f.procedure->GetCourseLinks();
    EXPECT_EQ(f.procedure->GetNumCommands(), 3);
    EXPECT_EQ(ZELTest::CommandsByIndex(*f.procedure),
              QList<ZELKinCommand*>({links[0]->GetCommand(0), links[0]->GetCommand(1), links[2]->GetCommand(0)}));
}

TEST(ZELKinRollLayupProcedure, CourseWithoutALinkBeforeItFollowsThePreviousCourse)
{
    // Not a complete procedure: the second course has no approach link.
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 1);
    ZELKinCourse* first = ZELTest::AddCourse(f.procedure, 2);
    ZELKinCourse* second = ZELTest::AddCourse(f.procedure, 1);
    EXPECT_EQ(f.procedure->GetNumCommands(), 4);
    EXPECT_EQ(ZELTest::CommandsByIndex(*f.procedure),
              QList<ZELKinCommand*>(
                  {link->GetCommand(0), first->GetCommand(0), first->GetCommand(1), second->GetCommand(0)}));
    EXPECT_EQ(f.procedure->GetLastPosition(), second->GetCommand(0));
}

struct CommandIndexCase
{
    const char* name;
    int index;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(CommandIndexCase);

class ZELKinRollLayupProcedureCommandIndex : public ::testing::TestWithParam<CommandIndexCase>
{
};

TEST_P(ZELKinRollLayupProcedureCommandIndex, OutsideTheCommandsThrowsTheResidualWithTheTotalAsUpperBound)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1, 2, 1}, {3, 4});
    EXPECT_THROW_MESSAGE(f.procedure->GetCommand(GetParam().index), ZELSysOutOfBoundsException, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinRollLayupProcedureCommandIndex,
                         ::testing::Values(CommandIndexCase{"ElevenOfElevenReportsZero", 11,
                                                            "value 0 is out of bounds [0, 11]"},
                                           CommandIndexCase{"FourteenOfElevenReportsThree", 14,
                                                            "value 3 is out of bounds [0, 11]"},
                                           CommandIndexCase{"NegativeReportsTheIndex", -1,
                                                            "value -1 is out of bounds [0, 11]"}),
                         [](const ::testing::TestParamInfo<CommandIndexCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinRollLayupProcedure, WithoutChildrenHasNoCommandsAndCommandZeroIsOutOfBounds)
{
    RollLayupFixture f;
    EXPECT_EQ(f.procedure->GetNumCommands(), 0);
    EXPECT_THROW_MESSAGE(f.procedure->GetCommand(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, 0]");
    EXPECT_EQ(f.procedure->GetFirstPosition(), nullptr);
}

TEST(ZELKinRollLayupProcedure, InsertingACommandIntoTheProcedureItselfIsNotImplemented)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1}, {});
    EXPECT_THROW_MESSAGE(new ZELKinTestCommand(f.procedure), ZELSysNotImplementedException,
                         "'InsertCommand' is not implemented");
    EXPECT_THROW_MESSAGE(ZELKinScriptPrivate::get(f.procedure)->IndexOfCommand(f.procedure->GetCommand(0)),
                         ZELSysNotImplementedException, "'IndexOfCommand' is not implemented");
    EXPECT_EQ(f.procedure->GetNumCommands(), 1);
}

TEST(ZELKinRollLayupProcedure, AddPlyDefinitionAppendsWithoutCheckingValidityOrDuplicates)
{
    RollLayupFixture f;
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P1"), QStringLiteral("T35"), 0.5));
    f.procedure->AddPlyDefinition(ZELKinPlyDescription());
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P1")));
    ASSERT_EQ(f.procedure->GetNumPlies(), 3);
    ExpectSamePly(Ply(QStringLiteral("P1"), QStringLiteral("T35"), 0.5), f.procedure->GetPlyDefinition(0));
    EXPECT_FALSE(f.procedure->GetPlyDefinition(1).IsValid());
    EXPECT_EQ(f.procedure->GetPlyDefinition(2).GetName(), QStringLiteral("P1"));
}

TEST(ZELKinRollLayupProcedure, PlyDefinitionsAreCopiedInAndOut)
{
    RollLayupFixture f;
    ZELKinPlyDescription ply = Ply(QStringLiteral("P1"));
    f.procedure->AddPlyDefinition(ply);
    ply.SetName(QStringLiteral("changed outside"));
    ZELKinPlyDescription copy = f.procedure->GetPlyDefinition(0);
    copy.SetMaterial(QStringLiteral("changed outside"));
    EXPECT_EQ(f.procedure->GetPlyDefinition(0).GetName(), QStringLiteral("P1"));
    EXPECT_TRUE(f.procedure->GetPlyDefinition(0).GetMaterial().isEmpty());
}

TEST(ZELKinRollLayupProcedure, SetPlyDefinitionReplacesTheEntry)
{
    RollLayupFixture f;
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P1")));
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P2")));
    f.procedure->SetPlyDefinition(1, Ply(QStringLiteral("P2b"), QStringLiteral("AS4"), 1.5));
    ASSERT_EQ(f.procedure->GetNumPlies(), 2);
    EXPECT_EQ(f.procedure->GetPlyDefinition(0).GetName(), QStringLiteral("P1"));
    ExpectSamePly(Ply(QStringLiteral("P2b"), QStringLiteral("AS4"), 1.5), f.procedure->GetPlyDefinition(1));
}

TEST(ZELKinRollLayupProcedure, SetPlyDefinitionOutsideTheListThrowsAndChangesNothing)
{
    RollLayupFixture f;
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P1")));
    f.container.SetModified(false);
    EXPECT_THROW_MESSAGE(f.procedure->SetPlyDefinition(1, Ply(QStringLiteral("X"))), ZELSysOutOfBoundsException,
                         "value 1 is out of bounds [0, 0]");
    EXPECT_THROW_MESSAGE(f.procedure->SetPlyDefinition(-1, Ply(QStringLiteral("X"))), ZELSysOutOfBoundsException,
                         "value -1 is out of bounds [0, 0]");
    EXPECT_EQ(f.procedure->GetNumPlies(), 1);
    EXPECT_EQ(f.procedure->GetPlyDefinition(0).GetName(), QStringLiteral("P1"));
    EXPECT_FALSE(f.container.IsModified());
}

struct PlyIndexCase
{
    const char* name;
    QStringList plies;
    const char* wanted;
    int index;
};
ZELTEST_PRINT_CASE_BY_NAME(PlyIndexCase);

class ZELKinRollLayupProcedurePlyIndex : public ::testing::TestWithParam<PlyIndexCase>
{
};

TEST_P(ZELKinRollLayupProcedurePlyIndex, FindsTheFirstExactCaseSensitiveMatch)
{
    const PlyIndexCase& c = GetParam();
    RollLayupFixture f;
    for (const QString& name : c.plies)
        f.procedure->AddPlyDefinition(Ply(name));
    EXPECT_EQ(f.procedure->GetPlyIndex(QString::fromUtf8(c.wanted)), c.index);
}

INSTANTIATE_TEST_SUITE_P(
    Names, ZELKinRollLayupProcedurePlyIndex,
    ::testing::Values(PlyIndexCase{"UpperCaseAfterLowerCase", {"a", "A"}, "A", 1},
                      PlyIndexCase{"LowerCaseBeforeUpperCase", {"a", "A"}, "a", 0},
                      PlyIndexCase{"TwoOfTheSameNameGiveTheFirst", {"B", "A", "A"}, "A", 1},
                      PlyIndexCase{"UnknownName", {"a", "A"}, "b", -1},
                      PlyIndexCase{"WholeNameOnly", {"A1", "A "}, "A", -1},
                      PlyIndexCase{"EmptyList", {}, "A", -1},
                      PlyIndexCase{"EmptyNameFindsAnInvalidPly", {"A", ""}, "", 1}),
    [](const ::testing::TestParamInfo<PlyIndexCase>& info) { return std::string(info.param.name); });

struct ChangeCase
{
    const char* name;
    std::function<void(RollLayupFixture&)> change;
};
ZELTEST_PRINT_CASE_BY_NAME(ChangeCase);

class ZELKinRollLayupProcedureChange : public ::testing::TestWithParam<ChangeCase>
{
};

TEST_P(ZELKinRollLayupProcedureChange, MarksTheContainerModified)
{
    RollLayupFixture f;
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P1")));
    f.container.SetModified(false);
    GetParam().change(f);
    EXPECT_TRUE(f.container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(
    Changes, ZELKinRollLayupProcedureChange,
    ::testing::Values(
        ChangeCase{"AddPlyDefinition",
                   [](RollLayupFixture& f) { f.procedure->AddPlyDefinition(Ply(QStringLiteral("P2"))); }},
        ChangeCase{"SetPlyDefinition",
                   [](RollLayupFixture& f) { f.procedure->SetPlyDefinition(0, Ply(QStringLiteral("P2"))); }},
        // Registering a new object in the container does not mark it; the
        // procedure taking it into its list does.
        ChangeCase{"AppendingACourseLink",
                   [](RollLayupFixture& f) { ZELKinTestAccess::CreateCourseLink(f.procedure); }},
        ChangeCase{"AppendingACourse", [](RollLayupFixture& f) { ZELTest::AddCourse(f.procedure, 0); }}),
    [](const ::testing::TestParamInfo<ChangeCase>& info) { return std::string(info.param.name); });

TEST(ZELKinRollLayupProcedure, RecordHoldsProgramCoursesLinksAndPliesButNoFeedrates)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1, 0, 2}, {1, 1});
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P1"), QStringLiteral("T35"), 0.25));
    f.procedure->AddPlyDefinition(Ply(QStringLiteral("P2")));
    EXPECT_EQ(f.procedure->GetCurrentState(),
              ProcedureRecord(f.program->GetReference(), ReferencesOf(Scripts(f.procedure->GetCourses())),
                              ReferencesOf(Scripts(f.procedure->GetCourseLinks())), 2,
                              {Ply(QStringLiteral("P1"), QStringLiteral("T35"), 0.25), Ply(QStringLiteral("P2"))}));
}

TEST(ZELKinRollLayupProcedure, AfterSaveAndLoadFeedratesAreNaNAndTheRestSurvives)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {1, 2}, {3});
    ZELKinPlyDescription ply = Ply(QStringLiteral("P045"), QStringLiteral("T35/E120"), 0.785);
    ply.SetMethod(ZELCompStrategy::Geodesic);
    ply.SetArea(2.5e5);
    f.procedure->AddPlyDefinition(ply);

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinRollLayupProcedure* loaded = ZELTest::FirstOf<ZELKinRollLayupProcedure>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_TRUE(std::isnan(loaded->GetAddFeedrate()));
    EXPECT_TRUE(std::isnan(loaded->GetCutFeedrate()));
    EXPECT_EQ(loaded->GetProgram(), ZELTest::FirstOf<ZELKinProgram>(target));
    ASSERT_EQ(loaded->GetNumPlies(), 1);
    ExpectSamePly(ply, loaded->GetPlyDefinition(0));
    EXPECT_EQ(loaded->GetCourses(), QList<ZELKinCourse*>({ZELTest::FirstOf<ZELKinTowCourse>(target)}));
    ASSERT_EQ(loaded->GetNumCourseLinks(), 2);
    EXPECT_EQ(loaded->GetNumCommands(), 6);
}

TEST(ZELKinRollLayupProcedure, PlyCountLargerThanThePliesPresentStopsAtTheEndOfTheRecord)
{
    RollLayupFixture f;
    ZELKinRollLayupProcedure loaded(&f.container, ZELGeoGeometryRef());
    loaded.AddPlyDefinition(Ply(QStringLiteral("old")));
    ZELGeoStream stream(ProcedureRecord(ZELGeoGeometryRef(), {}, {}, 1000000, {Ply(QStringLiteral("P1"))}),
                        &f.container);
    EXPECT_NO_THROW(loaded.Load(stream));
    ASSERT_EQ(loaded.GetNumPlies(), 1);
    EXPECT_EQ(loaded.GetPlyDefinition(0).GetName(), QStringLiteral("P1"));
}

struct UnresolvedCase
{
    const char* name;
    bool inCourses; // else in the links
    bool wrongClass;
    const char* expectedClass;
};
ZELTEST_PRINT_CASE_BY_NAME(UnresolvedCase);

class ZELKinRollLayupProcedureUnresolved : public ::testing::TestWithParam<UnresolvedCase>
{
};

TEST_P(ZELKinRollLayupProcedureUnresolved, ReferenceThrowsNotFound)
{
    const UnresolvedCase& c = GetParam();
    RollLayupFixture f;
    // A link stands where a course is expected, a course where a link is.
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 0);
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    const ZELGeoGeometryRef bad = !c.wrongClass ? ZELGeoGeometryRef(424242)
                                  : c.inCourses ? link->GetReference()
                                                : course->GetReference();
    ZELKinRollLayupProcedure loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ProcedureRecord(f.program->GetReference(), c.inCourses ? QList<ZELGeoGeometryRef>{bad}
                                                                               : QList<ZELGeoGeometryRef>{},
                                        c.inCourses ? QList<ZELGeoGeometryRef>{} : QList<ZELGeoGeometryRef>{bad},
                                        0, {}),
                        &f.container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class %1 with reference %2")
                             .arg(QString::fromLatin1(c.expectedClass))
                             .arg(bad.GetIdentity()));
}

INSTANTIATE_TEST_SUITE_P(References, ZELKinRollLayupProcedureUnresolved,
                         ::testing::Values(UnresolvedCase{"CourseOfNoObject", true, false, "ZELKinCourse"},
                                           UnresolvedCase{"CourseOfAnotherClass", true, true, "ZELKinCourse"},
                                           UnresolvedCase{"LinkOfNoObject", false, false, "ZELKinCourseLink"},
                                           UnresolvedCase{"LinkOfAnotherClass", false, true, "ZELKinCourseLink"}),
                         [](const ::testing::TestParamInfo<UnresolvedCase>& info) {
                             return std::string(info.param.name);
                         });

namespace {

// The machine, program and procedure of a whole roll layup program, built
// the way the translator builds one: plies, then links and courses in
// laying order, each with its commands and its toolpath object.
struct WholeProgram : RollLayupFixture
{
    WholeProgram()
    {
        x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
        u = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("U"));
        c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary);
        program->SetAuthor(QStringLiteral("jdoe"));
        procedure->SetToolPathProcedure(new ZELTPProcedure(&container, QStringLiteral("ply 101")));
        ZELKinPlyDescription ply = Ply(QStringLiteral("P045"), QStringLiteral("T35/E120"), 0.785);
        ply.SetMethod(ZELCompStrategy::Parallel);
        ply.SetArea(1.5e5);
        procedure->AddPlyDefinition(ply);
        procedure->AddPlyDefinition(Ply(QStringLiteral("P090"), QStringLiteral("AS4"), 1.571));

        AddLink(QStringLiteral("approach"), true);
        AddCourse(QStringLiteral("course 1"), 3);
        AddLink(QStringLiteral("transfer"), false);
        AddCourse(QStringLiteral("course 2"), 2);
        AddLink(QStringLiteral("retract"), false);

        // A probing procedure after the layup, as a program measures the laid ply.
        probe = ZELKinTestAccess::CreateProbeProcedure(program);
        ZELKinPosition* touch = ZELKinTestAccess::CreatePosition(probe);
        touch->SetVariableValue(x, 1234.5);
        touch->SetFeedrate(800.0);
        ZELKinTestAccess::CreateProbeCommand(probe, ZELKinProbeCommand::Sphere, 25.4);
    }

    ZELTPPoint* Point(double along)
    {
        ZELMathAxis frame;
        frame.SetOrigin(ZELMathPoint(along, 2.0 * along, -along));
        return new ZELTPPoint(&container, frame);
    }

    void AddLink(const QString& name, bool withToolChange)
    {
        ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(procedure);
        link->SetToolPathCourseLink(new ZELTPCourseLink(&container, name));
        ZELKinPosition* off = ZELKinTestAccess::CreatePosition(link);
        off->SetVariableValue(x, 10.0 * ++step);
        off->SetVariableValue(c, 0.125 * step);
        off->SetFeedrate(5000.0 + step);
        off->SetTraori(false);
        if (withToolChange)
            ZELKinTestAccess::CreateToolChange(link, QStringLiteral("R2"), QStringLiteral("H1"));
        ZELKinPosition* on = ZELKinTestAccess::CreatePosition(link);
        on->SetVariableValue(x, 10.0 * ++step);
        on->SetToolPathPoint(Point(step));
        on->SetLateralPositionAdjustment(-0.5 * step);
    }

    void AddCourse(const QString& name, int positions)
    {
        ZELCompTowMask mask(16, false);
        for (int tow = 1; tow <= 8 + positions; ++tow)
            mask.SetTowEnabled(tow, true);
        ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(procedure, mask);
        course->SetToolPathCourse(new ZELTPCourse(&container, name));
        course->SetRoller(QStringLiteral("R%1").arg(positions));
        course->SetMaterial(QStringLiteral("T35/E120"));
        course->SetRollerTows(8);
        for (int tow = 0; tow < 16; ++tow)
            course->SetTowLength(tow, 100.0 * positions + tow);
        ZELKinTestAccess::CreateTowFeedCommand(course, {1.0, 1.5, kNaN, 0.5});
        for (int i = 0; i < positions; ++i) {
            ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(course);
            position->SetVariableValue(x, 10.0 * ++step);
            position->SetVariableValue(u, 2.5 * step);
            position->SetFeedrate(i == 0 ? kNaN : 3000.0 + step);
            position->SetToolPathPoint(Point(step));
            position->SetPAngle(0.01 * step);
            position->SetQAngle(-0.02 * step);
            position->SetSmoothAngle(0.03 * step);
            position->SetNIndex(i);
            position->SetLateralPositionAdjustment(0.25);
            if (i == 0)
                ZELKinTestAccess::CreateTowCommand(course, mask, ZELKinTowCommand::Add);
        }
        // Inserted before the last position, as the translator places a cut
        // ahead of the point where the tows end.
        ZELKinTestAccess::CreateTowCommand(course, mask, ZELKinTowCommand::Cut, course->GetNumCommands() - 1);
    }

    ZELKinVariable* x = nullptr;
    ZELKinVariable* u = nullptr;
    ZELKinVariable* c = nullptr;
    ZELKinProbeProcedure* probe = nullptr;
    int step = 0;
};

bool SameFrameOrigin(const ZELTPPoint* expected, const ZELTPPoint* actual)
{
    if (!expected || !actual)
        return expected == actual;
    const ZELMathPoint e = expected->GetToolFrame().GetOrigin();
    const ZELMathPoint a = actual->GetToolFrame().GetOrigin();
    return ZELTest::SameDouble(e.GetX(), a.GetX(), ZELTest::kExact) &&
           ZELTest::SameDouble(e.GetY(), a.GetY(), ZELTest::kExact) &&
           ZELTest::SameDouble(e.GetZ(), a.GetZ(), ZELTest::kExact);
}

} // namespace

TEST(ZELKinRollLayupProcedure, WholeRollLayupProgramSurvivesSaveAndLoadExceptWhatIsNotSaved)
{
    WholeProgram w;
    ZELGeoContainer target;
    ZELTest::CopyContainer(w.container, target);
    ASSERT_EQ(target.GetNumGeometries(), w.container.GetNumGeometries());

    const ZELKinProgram* program = ZELTest::FirstOf<ZELKinProgram>(target);
    const ZELKinAFPMachine* machine = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetMachine(), machine);
    EXPECT_EQ(program->GetAuthor(), QStringLiteral("jdoe"));
    ASSERT_EQ(program->GetNumProcedures(), 2);
    const auto* procedure = qobject_cast<const ZELKinRollLayupProcedure*>(program->GetProcedure(0));
    ASSERT_NE(procedure, nullptr);

    // The procedure: plies and lists survive; feedrates and the toolpath
    // procedure do not.
    EXPECT_EQ(procedure->GetProgram(), program);
    EXPECT_TRUE(std::isnan(procedure->GetAddFeedrate()));
    EXPECT_TRUE(std::isnan(procedure->GetCutFeedrate()));
    EXPECT_EQ(procedure->GetToolPathProcedure(), nullptr);
    ASSERT_EQ(procedure->GetNumPlies(), 2);
    for (int i = 0; i < 2; ++i)
        ExpectSamePly(w.procedure->GetPlyDefinition(i), procedure->GetPlyDefinition(i));
    ASSERT_EQ(procedure->GetNumCourses(), 2);
    ASSERT_EQ(procedure->GetNumCourseLinks(), 3);
    ASSERT_EQ(procedure->GetNumCommands(), w.procedure->GetNumCommands());

    // Links: procedure, index and commands survive; the toolpath link does not.
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const ZELKinCourseLink* saved = w.procedure->GetCourseLink(i);
        const ZELKinCourseLink* loaded = procedure->GetCourseLink(i);
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(loaded->GetProcedure(), procedure);
        EXPECT_EQ(loaded->GetIndex(), i);
        EXPECT_EQ(loaded->GetNumCommands(), saved->GetNumCommands());
        EXPECT_NE(saved->GetToolPathCourseLink(), nullptr);
        EXPECT_EQ(loaded->GetToolPathCourseLink(), nullptr);
        EXPECT_FALSE(loaded->IsRollerChange());
    }

    // Courses: all but the toolpath course and the roller tows survive.
    const ZELKinVariable* x = machine->GetVariable(QStringLiteral("X"));
    const ZELKinVariable* c = machine->GetVariable(QStringLiteral("C"));
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        const auto* saved = qobject_cast<const ZELKinTowCourse*>(w.procedure->GetCourse(i));
        const auto* loaded = qobject_cast<const ZELKinTowCourse*>(procedure->GetCourse(i));
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(loaded->GetProcedure(), procedure);
        EXPECT_EQ(loaded->GetProgram(), program);
        EXPECT_EQ(loaded->GetIndex(), i);
        EXPECT_EQ(loaded->GetApproachLink(), procedure->GetCourseLink(i));
        EXPECT_EQ(loaded->GetRetractLink(), procedure->GetCourseLink(i + 1));
        EXPECT_EQ(loaded->GetRoller(), saved->GetRoller());
        EXPECT_EQ(loaded->GetMaterial(), saved->GetMaterial());
        EXPECT_TRUE(loaded->GetTowMask() == saved->GetTowMask());
        for (int tow = 0; tow < 16; ++tow)
            EXPECT_TRUE(ZELTest::SameDouble(saved->GetTowLength(tow), loaded->GetTowLength(tow), ZELTest::kExact));
        EXPECT_THROW(loaded->GetTowLength(16), ZELSysOutOfBoundsException);
        EXPECT_EQ(saved->GetRollerTows(), 8);
        EXPECT_EQ(loaded->GetRollerTows(), 0);
        EXPECT_NE(saved->GetToolPathCourse(), nullptr);
        EXPECT_EQ(loaded->GetToolPathCourse(), nullptr);
        EXPECT_EQ(loaded->GetNumCommands(), saved->GetNumCommands());
    }

    // Commands, in flat order.
    for (int i = 0; i < w.procedure->GetNumCommands(); ++i) {
        SCOPED_TRACE(i);
        const ZELKinCommand* savedCommand = w.procedure->GetCommand(i);
        const ZELKinCommand* loadedCommand = procedure->GetCommand(i);
        ASSERT_NE(loadedCommand, nullptr);
        ASSERT_STREQ(loadedCommand->metaObject()->className(), savedCommand->metaObject()->className());

        if (const auto* saved = qobject_cast<const ZELKinRollLayupPosition*>(savedCommand)) {
            // Loading reads nothing of the position's own fields, and reads
            // P, Q and N from the start of the record.
            const auto* loaded = qobject_cast<const ZELKinRollLayupPosition*>(loadedCommand);
            EXPECT_EQ(loaded->GetScript(), nullptr);
            EXPECT_EQ(loaded->GetCourse(), nullptr);
            EXPECT_TRUE(std::isnan(loaded->GetFeedrate()));
            EXPECT_FALSE(loaded->IsVariableDefined(x));
            EXPECT_EQ(loaded->GetToolPathPoint(), nullptr);
            EXPECT_TRUE(ZELTest::SameDouble(0.0, loaded->GetLateralPositionAdjustment(), ZELTest::kExact));
            EXPECT_TRUE(loaded->IsTraori());
            const ZELTest::RecordHead head = ZELTest::ReadRecordHead(saved->GetCurrentState());
            EXPECT_TRUE(ZELTest::SameDouble(head.pAngle, loaded->GetPAngle(), ZELTest::kExact));
            EXPECT_TRUE(ZELTest::SameDouble(head.qAngle, loaded->GetQAngle(), ZELTest::kExact));
            EXPECT_TRUE(ZELTest::SameDouble(saved->GetFeedrate(), loaded->GetQAngle(), ZELTest::kExact));
            EXPECT_EQ(loaded->GetNIndex(), head.nIndex);
            EXPECT_EQ(loaded->GetNIndex(), 2); // the number of variable values
            EXPECT_TRUE(std::isnan(loaded->GetSmoothAngle()));
            EXPECT_FALSE(std::isnan(saved->GetSmoothAngle()));
            continue;
        }
        EXPECT_EQ(loadedCommand->GetScript()->GetProgram(), program);
        if (const auto* saved = qobject_cast<const ZELKinPosition*>(savedCommand)) {
            const auto* loaded = qobject_cast<const ZELKinPosition*>(loadedCommand);
            EXPECT_TRUE(ZELTest::SameDouble(saved->GetVariableValue(w.x), loaded->GetVariableValue(x),
                                            ZELTest::kExact));
            EXPECT_EQ(loaded->IsVariableDefined(c), saved->IsVariableDefined(w.c));
            EXPECT_TRUE(ZELTest::SameDouble(saved->GetVariableValue(w.c), loaded->GetVariableValue(c),
                                            ZELTest::kExact));
            EXPECT_TRUE(ZELTest::SameDouble(saved->GetFeedrate(), loaded->GetFeedrate(), ZELTest::kExact));
            EXPECT_TRUE(ZELTest::SameDouble(saved->GetLateralPositionAdjustment(),
                                            loaded->GetLateralPositionAdjustment(), ZELTest::kExact));
            EXPECT_TRUE(SameFrameOrigin(saved->GetToolPathPoint(), loaded->GetToolPathPoint()));
            EXPECT_TRUE(loaded->IsTraori());
        } else if (const auto* saved = qobject_cast<const ZELKinToolChange*>(savedCommand)) {
            const auto* loaded = qobject_cast<const ZELKinToolChange*>(loadedCommand);
            EXPECT_EQ(loaded->GetNewHead(), QStringLiteral("H1"));
            EXPECT_EQ(loaded->GetNewRoller(), QStringLiteral("R2"));
            EXPECT_EQ(loaded->GetNewHead(), saved->GetNewHead());
        } else if (const auto* saved = qobject_cast<const ZELKinTowCommand*>(savedCommand)) {
            const auto* loaded = qobject_cast<const ZELKinTowCommand*>(loadedCommand);
            EXPECT_TRUE(loaded->GetTowMask() == saved->GetTowMask());
            EXPECT_EQ(loaded->GetType(), saved->GetType());
        } else if (const auto* saved = qobject_cast<const ZELKinTowFeedCommand*>(savedCommand)) {
            const auto* loaded = qobject_cast<const ZELKinTowFeedCommand*>(loadedCommand);
            const QList<double> rates = loaded->GetRates();
            ASSERT_EQ(rates.size(), saved->GetRates().size());
            for (int r = 0; r < rates.size(); ++r)
                EXPECT_TRUE(ZELTest::SameDouble(saved->GetRates().at(r), rates.at(r), ZELTest::kExact));
        } else {
            ADD_FAILURE() << "unexpected command " << savedCommand->metaObject()->className();
        }
    }

    // The probe procedure comes back linked to the program but without its
    // command list, which is not part of its record; its commands still name it.
    const auto* probe = qobject_cast<const ZELKinProbeProcedure*>(program->GetProcedure(1));
    ASSERT_NE(probe, nullptr);
    EXPECT_EQ(probe->GetProgram(), program);
    EXPECT_EQ(probe->GetNumCommands(), 0);
    const ZELKinProbeCommand* probeCommand = ZELTest::FirstOf<ZELKinProbeCommand>(target);
    ASSERT_NE(probeCommand, nullptr);
    EXPECT_EQ(probeCommand->GetScript(), probe);
    EXPECT_EQ(probeCommand->GetTargetShape(), ZELKinProbeCommand::Sphere);
    EXPECT_TRUE(ZELTest::SameDouble(25.4, probeCommand->GetDiameter(), ZELTest::kExact));
    int probePositions = 0;
    for (ZELGeoGeometry* geometry : target.GetGeometries()) {
        const auto* touch = qobject_cast<const ZELKinPosition*>(geometry);
        if (!touch || touch->GetScript() != probe)
            continue;
        ++probePositions;
        EXPECT_TRUE(ZELTest::SameDouble(1234.5, touch->GetVariableValue(x), ZELTest::kExact));
        EXPECT_TRUE(ZELTest::SameDouble(800.0, touch->GetFeedrate(), ZELTest::kExact));
    }
    EXPECT_EQ(probePositions, 1);
}

TEST(ZELKinRollLayupProcedure, WholeRollLayupProgramHoldsEveryKindOfCommandInLayingOrder)
{
    // Guards the round trip above against a program that lost a kind.
    WholeProgram w;
    QStringList kinds;
    for (const ZELKinCommand* command : ZELTest::CommandsByIndex(*w.program))
        kinds.append(QString::fromLatin1(command->metaObject()->className()));
    EXPECT_EQ(kinds, QStringList({"ZELKinPosition",          "ZELKinToolChange",        "ZELKinPosition",
                                  "ZELKinTowFeedCommand",    "ZELKinRollLayupPosition", "ZELKinTowCommand",
                                  "ZELKinRollLayupPosition", "ZELKinTowCommand",        "ZELKinRollLayupPosition",
                                  "ZELKinPosition",          "ZELKinPosition",          "ZELKinTowFeedCommand",
                                  "ZELKinRollLayupPosition", "ZELKinTowCommand",        "ZELKinTowCommand",
                                  "ZELKinRollLayupPosition", "ZELKinPosition",          "ZELKinPosition",
                                  "ZELKinPosition",          "ZELKinProbeCommand"}));
}

// A damaged session file must end in an exception or in objects that can be
// walked, never in a crash: record bodies are read through bounded streams
// and every count is checked against what is left.
TEST(ZELKinRollLayupProcedure, DamagedWholeProgramLoadsOrThrowsAndCanBeWalked)
{
    WholeProgram w;
    QBuffer saved;
    saved.open(QIODevice::WriteOnly);
    w.container.Save(&saved);
    const QByteArray original = saved.data();

    QRandomGenerator random(20261122);
    int loaded = 0;
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes = original;
        const int flips = 1 + int(random.bounded(4));
        for (int flip = 0; flip < flips; ++flip)
            bytes[int(random.bounded(bytes.size()))] = char(random.bounded(256));
        ZELGeoContainer target;
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        try {
            target.Load(&device);
        } catch (const std::exception&) {
            EXPECT_EQ(target.GetNumGeometries(), 0) << "round " << round;
            continue;
        }
        ++loaded;
        for (ZELGeoGeometry* geometry : target.GetGeometries()) {
            const auto* script = qobject_cast<const ZELKinScript*>(geometry);
            if (!script)
                continue;
            try {
                const int count = script->GetNumCommands();
                for (int i = 0; i < count; ++i)
                    script->GetCommand(i);
                script->GetLastPosition();
            } catch (const std::exception&) {
                // A damaged record may well describe an inconsistent script;
                // reporting that is fine, crashing is not.
            }
        }
    }
    // Most damage lands in values rather than in the frame, so many rounds load.
    EXPECT_GT(loaded, 0);
}
