#include "zelkintestrolllayup.h"

#include <zelkincourse_p.h>

#include <zeltpcourse.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <functional>
#include <type_traits>

using ZELTest::RollLayupFixture;

namespace {

// The fields ZELKinCourse::Save writes, which open the record of every kind
// of course.
QByteArray CourseRecord(const ZELGeoGeometryRef& procedure, qint32 index, const QString& roller,
                        const QString& material)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << procedure << index << roller << material;
    return record;
}

} // namespace

TEST(ZELKinCourse, IsAbstractAndLeavesInsertionToItsKinds)
{
    EXPECT_TRUE(std::is_abstract_v<ZELKinCourse>);
    EXPECT_TRUE(std::is_abstract_v<ZELKinCoursePrivate>);
    EXPECT_FALSE(std::is_abstract_v<ZELKinTowCourse>);
}

TEST(ZELKinCourse, CreationLinksAndJoinsTheProcedureAndKeepsTheIndex)
{
    RollLayupFixture f;
    ZELKinCourse* first = ZELTest::AddCourse(f.procedure, 0);
    ZELKinCourse* second = ZELTest::AddCourse(f.procedure, 0);
    EXPECT_EQ(second->GetProcedure(), f.procedure);
    EXPECT_EQ(second->GetProgram(), f.program);
    EXPECT_EQ(second->GetContainer(), &f.container);
    EXPECT_EQ(first->GetIndex(), 0);
    EXPECT_EQ(second->GetIndex(), 1);
    EXPECT_EQ(f.procedure->GetCourses(), QList<ZELKinCourse*>({first, second}));
    EXPECT_TRUE(second->GetRoller().isEmpty());
    EXPECT_TRUE(second->GetMaterial().isEmpty());
    EXPECT_EQ(second->GetToolPathCourse(), nullptr);
}

TEST(ZELKinCourse, HoldsOneReferenceOnItsProcedure)
{
    RollLayupFixture f;
    const int before = f.procedure->GetReferenceCount();
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    EXPECT_EQ(f.procedure->GetReferenceCount(), before + 1);
    f.container.DeleteGeometry(course);
    EXPECT_EQ(f.procedure->GetReferenceCount(), before);
}

TEST(ZELKinCourse, LoadingConstructionHasNoProcedureProgramOrLinks)
{
    const ZELKinTowCourse course(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(course.GetProcedure(), nullptr);
    EXPECT_EQ(course.GetProgram(), nullptr);
    EXPECT_EQ(course.GetIndex(), 0);
    EXPECT_EQ(course.GetApproachLink(), nullptr);
    EXPECT_EQ(course.GetRetractLink(), nullptr);
}

TEST(ZELKinCourse, ApproachAndRetractLinksAreTheLinksOfItsIndexAndTheNext)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 0, 0}, {0, 0});
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        const ZELKinCourse* course = f.procedure->GetCourse(i);
        EXPECT_EQ(course->GetApproachLink(), f.procedure->GetCourseLink(i));
        EXPECT_EQ(course->GetRetractLink(), f.procedure->GetCourseLink(i + 1));
    }
}

TEST(ZELKinCourse, RetractLinkOfTheLastCourseBeforeItsLinkIsMadeIsOutOfBounds)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 0}, {0, 0});
    const ZELKinCourse* last = f.procedure->GetCourse(1);
    EXPECT_EQ(last->GetApproachLink(), f.procedure->GetCourseLink(1));
    EXPECT_THROW_MESSAGE(last->GetRetractLink(), ZELSysOutOfBoundsException, "value 2 is out of bounds [0, 1]");
}

TEST(ZELKinCourse, ApproachLinkOfACourseWithoutLinksIsOutOfBounds)
{
    RollLayupFixture f;
    const ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    EXPECT_THROW_MESSAGE(course->GetApproachLink(), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
}

TEST(ZELKinCourse, RollerAndMaterialKeepWhatIsSet)
{
    RollLayupFixture f;
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    course->SetRoller(QStringLiteral("R-76"));
    course->SetMaterial(QStringLiteral("T35/E120 ⅛\""));
    EXPECT_EQ(course->GetRoller(), QStringLiteral("R-76"));
    EXPECT_EQ(course->GetMaterial(), QStringLiteral("T35/E120 ⅛\""));
}

TEST(ZELKinCourse, ToolPathCourseIsACountedLinkThatReadsNullOnceTheCourseIsGone)
{
    RollLayupFixture f;
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    ZELTPCourse* first = new ZELTPCourse(&f.container, QStringLiteral("c1"));
    const ZELTPCourse* second = new ZELTPCourse(&f.container, QStringLiteral("c2"));
    course->SetToolPathCourse(first);
    EXPECT_EQ(course->GetToolPathCourse(), first);
    EXPECT_EQ(first->GetReferenceCount(), 1);
    course->SetToolPathCourse(second);
    EXPECT_EQ(first->GetReferenceCount(), 0);
    EXPECT_EQ(second->GetReferenceCount(), 1);
    course->SetToolPathCourse(first);
    f.container.DeleteGeometry(first);
    EXPECT_EQ(course->GetToolPathCourse(), nullptr);
    course->SetToolPathCourse(nullptr);
    EXPECT_EQ(second->GetReferenceCount(), 0);
}

struct SetterCase
{
    const char* name;
    std::function<void(ZELKinCourse*)> set;
};
ZELTEST_PRINT_CASE_BY_NAME(SetterCase);

class ZELKinCourseSetter : public ::testing::TestWithParam<SetterCase>
{
};

TEST_P(ZELKinCourseSetter, MarksTheContainerModified)
{
    RollLayupFixture f;
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    f.container.SetModified(false);
    GetParam().set(course);
    EXPECT_TRUE(f.container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(
    Setters, ZELKinCourseSetter,
    ::testing::Values(SetterCase{"Roller", [](ZELKinCourse* c) { c->SetRoller(QStringLiteral("R")); }},
                      SetterCase{"Material", [](ZELKinCourse* c) { c->SetMaterial(QStringLiteral("M")); }},
                      SetterCase{"ToolPathCourse", [](ZELKinCourse* c) { c->SetToolPathCourse(nullptr); }}),
    [](const ::testing::TestParamInfo<SetterCase>& info) { return std::string(info.param.name); });

TEST(ZELKinCourse, RecordOpensWithProcedureIndexRollerAndMaterial)
{
    RollLayupFixture f;
    ZELTest::AddCourse(f.procedure, 0);
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    course->SetRoller(QStringLiteral("R1"));
    course->SetMaterial(QStringLiteral("AS4"));
    course->SetToolPathCourse(new ZELTPCourse(&f.container, QStringLiteral("c2")));
    const QByteArray expected =
        CourseRecord(f.procedure->GetReference(), 1, QStringLiteral("R1"), QStringLiteral("AS4"));
    const QByteArray record = course->GetCurrentState();
    EXPECT_TRUE(record.startsWith(expected));
    // What follows is the tow course's own: an empty command list first.
    QDataStream rest(record.mid(expected.size()));
    qint32 commands = -1;
    rest >> commands;
    EXPECT_EQ(commands, 0);
}

TEST(ZELKinCourse, RecordOfACourseWhoseProcedureIsGoneHoldsAnEmptyReference)
{
    RollLayupFixture f;
    ZELKinCourse* course = ZELTest::AddCourse(f.procedure, 0);
    f.container.DeleteGeometry(f.procedure);
    EXPECT_EQ(course->GetProcedure(), nullptr);
    EXPECT_EQ(course->GetProgram(), nullptr);
    EXPECT_TRUE(course->GetCurrentState().startsWith(CourseRecord(ZELGeoGeometryRef(), 0, QString(), QString())));
}

TEST(ZELKinCourse, SaveAndLoadKeepProcedureIndexRollerAndMaterialButNotTheToolPathCourse)
{
    RollLayupFixture f;
    ZELTest::AddLinksAndCourses(f.procedure, {0, 0}, {0, 0});
    ZELKinCourse* saved = f.procedure->GetCourse(1);
    saved->SetRoller(QStringLiteral("R2"));
    saved->SetMaterial(QStringLiteral("T35"));
    saved->SetToolPathCourse(new ZELTPCourse(&f.container, QStringLiteral("c2")));

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const auto* procedure = ZELTest::FirstOf<ZELKinRollLayupProcedure>(target);
    const ZELKinCourse* loaded = procedure->GetCourse(1);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetProcedure(), procedure);
    EXPECT_EQ(loaded->GetProgram(), ZELTest::FirstOf<ZELKinProgram>(target));
    EXPECT_EQ(loaded->GetIndex(), 1);
    EXPECT_EQ(loaded->GetRoller(), QStringLiteral("R2"));
    EXPECT_EQ(loaded->GetMaterial(), QStringLiteral("T35"));
    EXPECT_EQ(loaded->GetToolPathCourse(), nullptr);
    EXPECT_NE(ZELTest::FirstOf<ZELTPCourse>(target), nullptr);
    EXPECT_EQ(loaded->GetApproachLink(), procedure->GetCourseLink(1));
}

struct UnresolvedCase
{
    const char* name;
    bool wrongClass;
};
ZELTEST_PRINT_CASE_BY_NAME(UnresolvedCase);

class ZELKinCourseUnresolved : public ::testing::TestWithParam<UnresolvedCase>
{
};

TEST_P(ZELKinCourseUnresolved, ProcedureReferenceThrowsNotFound)
{
    RollLayupFixture f;
    const ZELGeoGeometryRef bad = GetParam().wrongClass ? f.program->GetReference() : ZELGeoGeometryRef(77777);
    ZELKinTowCourse loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(CourseRecord(bad, 3, QStringLiteral("R"), QStringLiteral("M")), &f.container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinRollLayupProcedure with reference %1")
                             .arg(bad.GetIdentity()));
    EXPECT_EQ(loaded.GetProcedure(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(References, ZELKinCourseUnresolved,
                         ::testing::Values(UnresolvedCase{"OfNoObject", false}, UnresolvedCase{"OfAnotherClass", true}),
                         [](const ::testing::TestParamInfo<UnresolvedCase>& info) {
                             return std::string(info.param.name);
                         });
