#include "zeltptestsupport.h"

#include <zeltpcourse.h>
#include <zeltpcourselink.h>
#include <zeltprolllayupprocedure.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <cmath>
#include <functional>

namespace {

const ZELTPPlyDescription kPlies[] = {
    ZELTPPlyDescription(QStringLiteral("0"), 0.0, ZELCompStrategy::Angle),
    ZELTPPlyDescription(QStringLiteral("+45"), M_PI / 4.0, ZELCompStrategy::GeodesicOffset),
    ZELTPPlyDescription(QStringLiteral("90"), M_PI / 2.0, ZELCompStrategy::Parallel),
};

::testing::AssertionResult SamePly(const ZELTPPlyDescription& expected, const ZELTPPlyDescription& actual)
{
    if (expected.GetName() != actual.GetName())
        return ::testing::AssertionFailure() << "name " << actual.GetName().toStdString();
    if (expected.GetPropagationMode() != actual.GetPropagationMode())
        return ::testing::AssertionFailure() << "mode " << int(actual.GetPropagationMode());
    return ZELTest::SameDouble(expected.GetOrientation(), actual.GetOrientation(), ZELTest::kExact);
}

struct SetterCase
{
    const char* name;
    std::function<void(ZELTPRollLayupProcedure&, ZELGeoContainer&)> set;
};
ZELTEST_PRINT_CASE_BY_NAME(SetterCase);

const SetterCase kSetters[] = {
    {"AddingFeedrate", [](ZELTPRollLayupProcedure& p, ZELGeoContainer&) { p.SetAddingFeedrate(1.0); }},
    {"CuttingFeedrate", [](ZELTPRollLayupProcedure& p, ZELGeoContainer&) { p.SetCuttingFeedrate(1.0); }},
    {"MaterialDescription",
     [](ZELTPRollLayupProcedure& p, ZELGeoContainer&) { p.SetMaterialDescription(ZELTPMaterialDescription()); }},
    {"TotalMaterialLength", [](ZELTPRollLayupProcedure& p, ZELGeoContainer&) { p.SetTotalMaterialLength(1.0); }},
    {"PlyDescription", [](ZELTPRollLayupProcedure& p, ZELGeoContainer&) { p.AddPlyDescription(kPlies[0]); }},
    {"ApproachLink",
     [](ZELTPRollLayupProcedure& p, ZELGeoContainer& c) { p.SetApproachLink(new ZELTPCourseLink(&c, QString())); }},
    {"SafetyPlane", [](ZELTPRollLayupProcedure& p, ZELGeoContainer&) { p.SetSafetyPlane(ZELTPTest::TiltedPlane()); }},
};

class ZELTPRollLayupProcedureSetter : public ::testing::TestWithParam<SetterCase>
{
};

} // namespace

TEST(ZELTPRollLayupProcedure, IsAProcedure)
{
    const ZELTPRollLayupProcedure procedure(nullptr, QStringLiteral("ply 1"));
    EXPECT_NE(qobject_cast<const ZELTPProcedure*>(&procedure), nullptr);
}

TEST(ZELTPRollLayupProcedure, StartsWithNaNFeedratesAndNoMaterialPliesOrApproach)
{
    const ZELTPRollLayupProcedure loading(nullptr, ZELGeoGeometryRef());
    const ZELTPRollLayupProcedure creating(nullptr, QStringLiteral("ply 1"));
    for (const ZELTPRollLayupProcedure* procedure : {&loading, &creating}) {
        EXPECT_TRUE(std::isnan(procedure->GetAddingFeedrate()));
        EXPECT_TRUE(std::isnan(procedure->GetCuttingFeedrate()));
        EXPECT_TRUE(procedure->GetMaterialDescription().GetId().isEmpty());
        EXPECT_TRUE(procedure->GetMaterialDescription().GetName().isEmpty());
        EXPECT_TRUE(ZELTest::SameDouble(0.0, procedure->GetTotalMaterialLength(), ZELTest::kExact));
        EXPECT_EQ(procedure->GetNumPlyDescriptions(), 0);
        EXPECT_TRUE(procedure->GetPlyDescriptions().isEmpty());
        EXPECT_EQ(procedure->GetApproachLink(), nullptr);
        EXPECT_TRUE(ZELTPTest::Same(ZELMathPlane(), procedure->GetSafetyPlane()));
    }
}

TEST_P(ZELTPRollLayupProcedureSetter, MarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* procedure = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    container.SetModified(false);
    GetParam().set(*procedure, container);
    EXPECT_TRUE(container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(Setters, ZELTPRollLayupProcedureSetter, ::testing::ValuesIn(kSetters));

TEST(ZELTPRollLayupProcedure, KeepsFeedratesMaterialAndLength)
{
    ZELTPRollLayupProcedure procedure(nullptr, QStringLiteral("ply 1"));
    procedure.SetAddingFeedrate(2540.0);
    procedure.SetCuttingFeedrate(1270.0);
    procedure.SetMaterialDescription(ZELTPMaterialDescription(QStringLiteral("T35"), QStringLiteral("T35/E120")));
    procedure.SetTotalMaterialLength(125400.5);
    EXPECT_TRUE(ZELTest::SameDouble(2540.0, procedure.GetAddingFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1270.0, procedure.GetCuttingFeedrate(), ZELTest::kExact));
    EXPECT_EQ(procedure.GetMaterialDescription().GetId(), QStringLiteral("T35"));
    EXPECT_EQ(procedure.GetMaterialDescription().GetName(), QStringLiteral("T35/E120"));
    EXPECT_TRUE(ZELTest::SameDouble(125400.5, procedure.GetTotalMaterialLength(), ZELTest::kExact));
}

TEST(ZELTPRollLayupProcedure, PliesAreKeptInOrder)
{
    ZELTPRollLayupProcedure procedure(nullptr, QStringLiteral("ply 1"));
    for (const ZELTPPlyDescription& ply : kPlies)
        procedure.AddPlyDescription(ply);
    ASSERT_EQ(procedure.GetNumPlyDescriptions(), 3);
    ASSERT_EQ(procedure.GetPlyDescriptions().size(), 3);
    for (int index = 0; index < 3; ++index) {
        EXPECT_TRUE(SamePly(kPlies[index], procedure.GetPlyDescription(index))) << index;
        EXPECT_TRUE(SamePly(kPlies[index], procedure.GetPlyDescriptions().at(index))) << index;
    }
}

TEST(ZELTPRollLayupProcedure, GetPlyDescriptionOutsideThePliesThrows)
{
    ZELTPRollLayupProcedure procedure(nullptr, QStringLiteral("ply 1"));
    EXPECT_THROW_MESSAGE(procedure.GetPlyDescription(0), ZELSysOutOfBoundsException,
                         "value 0 is out of bounds [0, -1]");
    procedure.AddPlyDescription(kPlies[1]);
    EXPECT_THROW_MESSAGE(procedure.GetPlyDescription(1), ZELSysOutOfBoundsException,
                         "value 1 is out of bounds [0, 0]");
    EXPECT_THROW_MESSAGE(procedure.GetPlyDescription(-1), ZELSysOutOfBoundsException,
                         "value -1 is out of bounds [0, 0]");
}

TEST(ZELTPRollLayupProcedure, ApproachLinkIsKeptAndReadsNullOnceDestroyed)
{
    ZELGeoContainer container;
    auto* procedure = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    auto* approach = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    procedure->SetApproachLink(approach);
    EXPECT_EQ(procedure->GetApproachLink(), approach);
    container.DeleteGeometry(approach);
    EXPECT_EQ(procedure->GetApproachLink(), nullptr);
}

TEST(ZELTPRollLayupProcedure, TheApproachLinkLeadsThroughEveryCourseToTheLastRetract)
{
    ZELGeoContainer container;
    auto* procedure = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    auto* approach = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    auto* first = new ZELTPCourse(&container, QStringLiteral("course 1"));
    auto* transfer = new ZELTPCourseLink(&container, QStringLiteral("transfer"));
    auto* second = new ZELTPCourse(&container, QStringLiteral("course 2"));
    auto* retract = new ZELTPCourseLink(&container, QStringLiteral("retract"));
    procedure->SetApproachLink(approach);
    approach->SetToCourse(first);
    first->SetRetractLink(transfer);
    transfer->SetToCourse(second);
    second->SetRetractLink(retract);

    QStringList path;
    for (const ZELTPCourseLink* link = procedure->GetApproachLink(); link;) {
        path.append(link->GetName());
        const ZELTPCourse* course = link->GetToCourse();
        if (!course)
            break;
        path.append(course->GetName());
        link = course->GetRetractLink();
    }
    EXPECT_EQ(path, QStringList({"approach", "course 1", "transfer", "course 2", "retract"}));
}

TEST(ZELTPRollLayupProcedure, RecordIsTheProceduresThenFeedratesMaterialLengthPliesAndApproach)
{
    ZELGeoContainer container;
    auto* procedure = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    auto* approach = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    procedure->SetSafetyPlane(ZELTPTest::TiltedPlane());
    procedure->SetAddingFeedrate(2540.0);
    procedure->SetCuttingFeedrate(1270.0);
    procedure->SetMaterialDescription(ZELTPMaterialDescription(QStringLiteral("T35"), QStringLiteral("T35/E120")));
    procedure->SetTotalMaterialLength(9876.5);
    procedure->AddPlyDescription(kPlies[1]);
    procedure->AddPlyDescription(kPlies[2]);
    procedure->SetApproachLink(approach);
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("ply 1") << ZELTPTest::TiltedPlane() << 2540.0 << 1270.0 << QStringLiteral("T35")
          << QStringLiteral("T35/E120") << 9876.5 << qint32(2);
        s << QStringLiteral("+45") << M_PI / 4.0 << qint32(2) << QStringLiteral("90") << M_PI / 2.0 << qint32(3);
        s << approach->GetReference();
    });
    EXPECT_EQ(procedure->GetCurrentState(), expected);
}

TEST(ZELTPRollLayupProcedure, SurvivesSaveAndLoadWithEveryField)
{
    ZELGeoContainer source;
    auto* procedure = new ZELTPRollLayupProcedure(&source, QStringLiteral("ply 1"));
    procedure->SetSafetyPlane(ZELTPTest::TiltedPlane());
    procedure->SetAddingFeedrate(2540.0);
    procedure->SetMaterialDescription(ZELTPMaterialDescription(QStringLiteral("T35"), QStringLiteral("T35/E120")));
    procedure->SetTotalMaterialLength(9876.5);
    for (const ZELTPPlyDescription& ply : kPlies)
        procedure->AddPlyDescription(ply);
    procedure->SetApproachLink(new ZELTPCourseLink(&source, QStringLiteral("approach")));

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    const QList<ZELTPRollLayupProcedure*> procedures = ZELTPTest::AllOf<ZELTPRollLayupProcedure>(loaded);
    ASSERT_EQ(procedures.size(), 1);
    const ZELTPRollLayupProcedure* copy = procedures.first();
    EXPECT_EQ(copy->GetName(), QStringLiteral("ply 1"));
    EXPECT_TRUE(ZELTPTest::Same(ZELTPTest::TiltedPlane(), copy->GetSafetyPlane()));
    EXPECT_TRUE(ZELTest::SameDouble(2540.0, copy->GetAddingFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(std::isnan(copy->GetCuttingFeedrate()));
    EXPECT_EQ(copy->GetMaterialDescription().GetId(), QStringLiteral("T35"));
    EXPECT_EQ(copy->GetMaterialDescription().GetName(), QStringLiteral("T35/E120"));
    EXPECT_TRUE(ZELTest::SameDouble(9876.5, copy->GetTotalMaterialLength(), ZELTest::kExact));
    ASSERT_EQ(copy->GetNumPlyDescriptions(), 3);
    for (int index = 0; index < 3; ++index)
        EXPECT_TRUE(SamePly(kPlies[index], copy->GetPlyDescription(index))) << index;
    EXPECT_EQ(copy->GetApproachLink(), ZELTPTest::AllOf<ZELTPCourseLink>(loaded).first());
}

TEST(ZELTPRollLayupProcedure, APlyCountBeyondTheRecordStopsAtItsEnd)
{
    ZELTPRollLayupProcedure procedure(nullptr, QStringLiteral("old"));
    procedure.SetCurrentState(ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("ply 1") << ZELMathPlane() << 1.0 << 2.0 << ZELTPMaterialDescription() << 3.0
          << qint32(0x7fffffff) << kPlies[2];
    }));
    ASSERT_EQ(procedure.GetNumPlyDescriptions(), 1);
    EXPECT_TRUE(SamePly(kPlies[2], procedure.GetPlyDescription(0)));
    EXPECT_EQ(procedure.GetApproachLink(), nullptr);
}

TEST(ZELTPRollLayupProcedure, AnApproachLinkThatNamesNothingThrowsNotFound)
{
    ZELGeoContainer container;
    auto* procedure = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    const QByteArray record = ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("ply 1") << ZELMathPlane() << 1.0 << 2.0 << ZELTPMaterialDescription() << 3.0
          << qint32(0) << ZELGeoGeometryRef(12);
    });
    EXPECT_THROW_MESSAGE(procedure->SetCurrentState(record), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELTPCourseLink with reference 12");
}
