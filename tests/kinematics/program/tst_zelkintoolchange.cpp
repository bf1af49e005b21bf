#include "zelkintestrolllayup.h"

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

using ZELTest::RollLayupFixture;

namespace {

// A tool change record as ZELKinToolChange::Save lays it out.
QByteArray ToolChangeRecord(const ZELGeoGeometryRef& script, const QString& head, const QString& roller)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script << head << roller;
    return record;
}

} // namespace

TEST(ZELKinToolChange, TakesTheRollerFirstAndTheHeadSecond)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 0);
    const ZELKinToolChange* change =
        ZELKinTestAccess::CreateToolChange(link, QStringLiteral("R2"), QStringLiteral("H1"));
    EXPECT_EQ(change->GetNewHead(), QStringLiteral("H1"));
    EXPECT_EQ(change->GetNewRoller(), QStringLiteral("R2"));
}

TEST(ZELKinToolChange, IsAppendedToTheLinkAfterItsCommands)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 2);
    const ZELKinToolChange* change =
        ZELKinTestAccess::CreateToolChange(link, QStringLiteral("R2"), QStringLiteral("H1"));
    EXPECT_EQ(change->GetScript(), link);
    EXPECT_EQ(change->GetIndex(), 2);
    EXPECT_EQ(link->GetCommand(2), change);
    EXPECT_EQ(change->GetContainer(), &f.container);
    EXPECT_EQ(link->GetLastPosition(), link->GetCommand(1)); // a tool change is not a position
}

TEST(ZELKinToolChange, WithoutALinkStandsOutsideAnyContainer)
{
    const ZELKinToolChange* change =
        ZELKinTestAccess::CreateToolChange(nullptr, QStringLiteral("R"), QStringLiteral("H"));
    EXPECT_EQ(change->GetContainer(), nullptr);
    EXPECT_EQ(change->GetScript(), nullptr);
    EXPECT_EQ(change->GetNewHead(), QStringLiteral("H"));
    delete change;
}

TEST(ZELKinToolChange, LoadingConstructionHasEmptyHeadAndRoller)
{
    const ZELKinToolChange change(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(change.GetNewHead().isEmpty());
    EXPECT_TRUE(change.GetNewRoller().isEmpty());
    EXPECT_EQ(change.GetScript(), nullptr);
}

TEST(ZELKinToolChange, RecordHoldsTheScriptThenHeadThenRoller)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 0);
    const ZELKinToolChange* change =
        ZELKinTestAccess::CreateToolChange(link, QStringLiteral("R2"), QStringLiteral("H1"));
    EXPECT_EQ(change->GetCurrentState(),
              ToolChangeRecord(link->GetReference(), QStringLiteral("H1"), QStringLiteral("R2")));
}

TEST(ZELKinToolChange, SaveAndLoadKeepScriptHeadAndRoller)
{
    RollLayupFixture f;
    ZELKinCourseLink* link = ZELTest::AddLink(f.procedure, 1);
    ZELKinTestAccess::CreateToolChange(link, QStringLiteral("Rolle Ø76"), QStringLiteral("H1"));

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinToolChange* loaded = ZELTest::FirstOf<ZELKinToolChange>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetNewHead(), QStringLiteral("H1"));
    EXPECT_EQ(loaded->GetNewRoller(), QStringLiteral("Rolle Ø76"));
    EXPECT_EQ(loaded->GetScript(), ZELTest::FirstOf<ZELKinCourseLink>(target));
    EXPECT_EQ(ZELTest::FirstOf<ZELKinCourseLink>(target)->GetCommand(1), loaded);
}

TEST(ZELKinToolChange, UnresolvableScriptThrowsNotFound)
{
    RollLayupFixture f;
    ZELKinToolChange loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ToolChangeRecord(ZELGeoGeometryRef(8080), QStringLiteral("H"), QStringLiteral("R")),
                        &f.container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELKinScript with reference 8080");
}
