#include "zeltptestsupport.h"

#include <zeltpoffpartpoint.h>
#include <zeltpprobingprocedure.h>
#include <zeltptrajectory.h>

#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

namespace {

// Two targets: trajectory 0 leads to the first, 1 from the first to the
// second, 2 away from the second.
struct TwoTargets
{
    ZELGeoContainer container;
    ZELTPProbingProcedure* procedure = new ZELTPProbingProcedure(&container, QStringLiteral("probe"));
    QList<ZELTPPoint*> p;

    TwoTargets()
    {
        for (int i = 0; i < 5; ++i)
            p.append(new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(100.0 * i, 50.0, 20.0)));
        Add(800.0, {p[0], p[1]});
        Add(1200.0, {p[1], p[2], p[3]});
        Add(800.0, {p[3], p[4]});
        procedure->AddProbingPoint(ZELTPProbingPoint(25.4));
        procedure->AddProbingPoint(ZELTPProbingPoint(38.1));
    }

    void Add(double feedrate, std::initializer_list<ZELTPPoint*> points)
    {
        auto* trajectory = new ZELTPTrajectory(feedrate);
        for (ZELTPPoint* point : points)
            trajectory->AddPoint(point);
        procedure->AddTrajectory(trajectory);
    }
};

} // namespace

TEST(ZELTPProbingProcedure, IsAProcedure)
{
    const ZELTPProbingProcedure procedure(nullptr, QStringLiteral("probe"));
    EXPECT_NE(qobject_cast<const ZELTPProcedure*>(&procedure), nullptr);
}

TEST(ZELTPProbingProcedure, StartsWithoutTrajectoriesOrProbingPoints)
{
    const ZELTPProbingProcedure loading(nullptr, ZELGeoGeometryRef());
    const ZELTPProbingProcedure creating(nullptr, QStringLiteral("probe"));
    for (const ZELTPProbingProcedure* procedure : {&loading, &creating}) {
        EXPECT_EQ(procedure->GetNumTrajectories(), 0);
        EXPECT_EQ(procedure->GetNumProbingPoints(), 0);
    }
}

TEST(ZELTPProbingProcedure, TrajectoriesAndProbingPointsAreKeptInOrder)
{
    TwoTargets t;
    ASSERT_EQ(t.procedure->GetNumTrajectories(), 3);
    ASSERT_EQ(t.procedure->GetNumProbingPoints(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(1200.0, t.procedure->GetTrajectory(1)->GetFeedrate(), ZELTest::kExact));
    EXPECT_EQ(t.procedure->GetTrajectory(1)->GetOwner(), t.procedure);
    EXPECT_TRUE(ZELTest::SameDouble(25.4, t.procedure->GetProbingPoint(0).GetDiameter(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(38.1, t.procedure->GetProbingPoint(1).GetDiameter(), ZELTest::kExact));
}

TEST(ZELTPProbingProcedure, ProbingPointIIsMeasuredAtTheLastPointOfTrajectoryI)
{
    TwoTargets t;
    for (int i = 0; i < t.procedure->GetNumProbingPoints(); ++i) {
        const ZELTPTrajectory* toTarget = t.procedure->GetTrajectory(i);
        const ZELTPTrajectory* fromTarget = t.procedure->GetTrajectory(i + 1);
        EXPECT_EQ(toTarget->GetPoints().last(), fromTarget->GetPoints().first()) << i;
    }
}

TEST(ZELTPProbingProcedure, AddingMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* procedure = new ZELTPProbingProcedure(&container, QStringLiteral("probe"));
    container.SetModified(false);
    procedure->AddTrajectory(new ZELTPTrajectory(800.0));
    EXPECT_TRUE(container.IsModified());
    container.SetModified(false);
    procedure->AddProbingPoint(ZELTPProbingPoint(25.4));
    EXPECT_TRUE(container.IsModified());
}

TEST(ZELTPProbingProcedure, IndexGettersOutsideTheirListsThrow)
{
    TwoTargets t;
    EXPECT_THROW_MESSAGE(t.procedure->GetTrajectory(3), ZELSysOutOfBoundsException,
                         "value 3 is out of bounds [0, 2]");
    EXPECT_THROW_MESSAGE(t.procedure->GetTrajectory(-1), ZELSysOutOfBoundsException,
                         "value -1 is out of bounds [0, 2]");
    EXPECT_THROW_MESSAGE(t.procedure->GetProbingPoint(2), ZELSysOutOfBoundsException,
                         "value 2 is out of bounds [0, 1]");
    EXPECT_THROW_MESSAGE(t.procedure->GetProbingPoint(-1), ZELSysOutOfBoundsException,
                         "value -1 is out of bounds [0, 1]");
}

TEST(ZELTPProbingProcedure, AddingANullOrOwnedTrajectoryThrowsAndChangesNothing)
{
    TwoTargets t;
    EXPECT_THROW_MESSAGE(t.procedure->AddTrajectory(nullptr), ZELSysException, "cannot add a null trajectory");
    EXPECT_THROW_MESSAGE(t.procedure->AddTrajectory(t.procedure->GetTrajectory(0)), ZELSysException,
                         "trajectory already has an owner");
    EXPECT_EQ(t.procedure->GetNumTrajectories(), 3);
}

TEST(ZELTPProbingProcedure, RecordIsTheProceduresThenTrajectoriesAndProbingPoints)
{
    TwoTargets t;
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("probe") << ZELMathPlane() << qint32(3);
        s << qint32(0) << 800.0 << qint32(2) << t.p[0]->GetReference() << t.p[1]->GetReference();
        s << qint32(0) << 1200.0 << qint32(3) << t.p[1]->GetReference() << t.p[2]->GetReference()
          << t.p[3]->GetReference();
        s << qint32(0) << 800.0 << qint32(2) << t.p[3]->GetReference() << t.p[4]->GetReference();
        s << qint32(2) << 25.4 << 38.1;
    });
    EXPECT_EQ(t.procedure->GetCurrentState(), expected);
}

TEST(ZELTPProbingProcedure, SurvivesSaveAndLoadWithItsTrajectoriesAndTargets)
{
    TwoTargets t;
    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(t.container, target);
    const QList<ZELTPProbingProcedure*> procedures = ZELTPTest::AllOf<ZELTPProbingProcedure>(loaded);
    const QList<ZELTPPoint*> p = ZELTPTest::AllOf<ZELTPPoint>(loaded);
    ASSERT_EQ(procedures.size(), 1);
    ASSERT_EQ(p.size(), 5);
    const ZELTPProbingProcedure* copy = procedures.first();
    ASSERT_EQ(copy->GetNumTrajectories(), 3);
    EXPECT_EQ(copy->GetTrajectory(0)->GetPoints(), QList<ZELTPPoint*>({p[0], p[1]}));
    EXPECT_EQ(copy->GetTrajectory(1)->GetPoints(), QList<ZELTPPoint*>({p[1], p[2], p[3]}));
    EXPECT_EQ(copy->GetTrajectory(2)->GetPoints(), QList<ZELTPPoint*>({p[3], p[4]}));
    ASSERT_EQ(copy->GetNumProbingPoints(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(38.1, copy->GetProbingPoint(1).GetDiameter(), ZELTest::kExact));
}

TEST(ZELTPProbingProcedure, EveryTruncationOfItsRecordLoadsWithoutCrashing)
{
    TwoTargets t;
    const QByteArray whole = t.procedure->GetCurrentState();
    auto* reader = new ZELTPProbingProcedure(&t.container, QString());
    for (qsizetype length = 0; length < whole.size(); ++length) {
        reader->SetCurrentState(whole.left(length));
        EXPECT_LE(reader->GetNumTrajectories(), 3) << length;
        EXPECT_LE(reader->GetNumProbingPoints(), 2) << length;
    }
    reader->SetCurrentState(whole);
    EXPECT_EQ(reader->GetNumTrajectories(), 3);
    EXPECT_EQ(reader->GetNumProbingPoints(), 2);
}
