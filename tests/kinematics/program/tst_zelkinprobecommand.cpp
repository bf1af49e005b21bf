#include <zelkintestaccess.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <QMetaEnum>
#include <QMetaMethod>

#include <cmath>

using ZELTest::kNaN;

namespace {

struct ProbeFixture
{
    ZELGeoContainer container;
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(ZELKinTestAccess::CreateMachine(&container));
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(program);
};

// A probe command record as ZELKinProbeCommand::Save lays it out: the
// command's script reference, then shape and diameter.
QByteArray ProbeCommandRecord(const ZELGeoGeometryRef& script, qint32 shape, double diameter)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script << shape << diameter;
    return record;
}

} // namespace

TEST(ZELKinProbeCommand, CreationAppendsToTheProcedureAndKeepsShapeAndDiameter)
{
    ProbeFixture f;
    ZELKinTestAccess::CreatePosition(f.procedure);
    f.container.SetModified(false);
    const ZELKinProbeCommand* probe =
        ZELKinTestAccess::CreateProbeCommand(f.procedure, ZELKinProbeCommand::Sphere, 12.7);
    EXPECT_EQ(probe->GetScript(), f.procedure);
    EXPECT_EQ(probe->GetContainer(), &f.container);
    EXPECT_EQ(probe->GetIndex(), 1);
    EXPECT_EQ(f.procedure->GetCommand(1), probe);
    EXPECT_EQ(probe->GetTargetShape(), ZELKinProbeCommand::Sphere);
    EXPECT_TRUE(ZELTest::SameDouble(12.7, probe->GetDiameter(), ZELTest::kExact));
    EXPECT_TRUE(f.container.IsModified());
}

TEST(ZELKinProbeCommand, LoadingConstructionGivesShapeZeroAndNaNDiameter)
{
    const ZELKinProbeCommand probe(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(qint32(probe.GetTargetShape()), 0);
    EXPECT_TRUE(std::isnan(probe.GetDiameter()));
    EXPECT_EQ(probe.GetScript(), nullptr);
}

TEST(ZELKinProbeCommand, NaNDiameterIsKept)
{
    ProbeFixture f;
    const ZELKinProbeCommand* probe =
        ZELKinTestAccess::CreateProbeCommand(f.procedure, ZELKinProbeCommand::Sphere, kNaN);
    EXPECT_TRUE(std::isnan(probe->GetDiameter()));
    EXPECT_EQ(qint32(probe->GetTargetShape()), 0);
}

TEST(ZELKinProbeCommand, SphereIsShapeZeroAndTheOnlyNamedShape)
{
    const QMetaEnum shapes = QMetaEnum::fromType<ZELKinProbeCommand::TargetShape>();
    ASSERT_EQ(shapes.keyCount(), 1);
    EXPECT_STREQ(shapes.key(0), "Sphere");
    EXPECT_EQ(shapes.value(0), 0);
}

TEST(ZELKinProbeCommand, WithoutAProcedureStandsOutsideAnyContainer)
{
    const ZELKinProbeCommand* probe = ZELKinTestAccess::CreateProbeCommand(nullptr, ZELKinProbeCommand::Sphere, 6.35);
    EXPECT_EQ(probe->GetScript(), nullptr);
    EXPECT_EQ(probe->GetContainer(), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(6.35, probe->GetDiameter(), ZELTest::kExact));
    delete probe;
}

TEST(ZELKinProbeCommand, IsCreatedByTheContainerFromItsClassNameThroughConstructorZero)
{
    const QMetaObject* metaObject = &ZELKinProbeCommand::staticMetaObject;
    EXPECT_EQ(metaObject->superClass(), &ZELKinCommand::staticMetaObject);
    ASSERT_EQ(metaObject->constructorCount(), 1);
    EXPECT_EQ(metaObject->constructor(0).parameterTypes(),
              QList<QByteArray>({"ZELGeoContainer*", "ZELGeoGeometryRef"}));
    EXPECT_EQ(metaObject->constructor(0).parameterNames(), QList<QByteArray>({"container", "reference"}));
    EXPECT_EQ(ZELGeoContainer::FindClass("ZELKinProbeCommand"), metaObject);
}

struct RecordCase
{
    const char* name;
    double diameter;
};
ZELTEST_PRINT_CASE_BY_NAME(RecordCase);

class ZELKinProbeCommandRecord : public ::testing::TestWithParam<RecordCase>
{
};

TEST_P(ZELKinProbeCommandRecord, HoldsShapeThenDiameterAfterTheScript)
{
    ProbeFixture f;
    const ZELKinProbeCommand* probe =
        ZELKinTestAccess::CreateProbeCommand(f.procedure, ZELKinProbeCommand::Sphere, GetParam().diameter);
    EXPECT_EQ(probe->GetCurrentState(), ProbeCommandRecord(f.procedure->GetReference(), 0, GetParam().diameter));
}

TEST_P(ZELKinProbeCommandRecord, SaveAndLoadKeepShapeAndDiameter)
{
    ProbeFixture f;
    ZELKinTestAccess::CreateProbeCommand(f.procedure, ZELKinProbeCommand::Sphere, GetParam().diameter);

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinProbeCommand* loaded = ZELTest::FirstOf<ZELKinProbeCommand>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetScript(), ZELTest::FirstOf<ZELKinProbeProcedure>(target));
    EXPECT_EQ(loaded->GetTargetShape(), ZELKinProbeCommand::Sphere);
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().diameter, loaded->GetDiameter(), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(Diameters, ZELKinProbeCommandRecord,
                         ::testing::Values(RecordCase{"HalfInchBall", 12.7}, RecordCase{"Zero", 0.0},
                                           RecordCase{"NaN", kNaN}),
                         [](const ::testing::TestParamInfo<RecordCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinProbeCommand, LoadReadsTheScriptThenShapeThenDiameter)
{
    ProbeFixture f;
    ZELKinProbeCommand probe(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ProbeCommandRecord(f.procedure->GetReference(), 0, 25.4), &f.container);
    probe.Load(stream);
    EXPECT_EQ(probe.GetScript(), f.procedure);
    EXPECT_EQ(probe.GetTargetShape(), ZELKinProbeCommand::Sphere);
    EXPECT_TRUE(ZELTest::SameDouble(25.4, probe.GetDiameter(), ZELTest::kExact));
    EXPECT_EQ(f.procedure->GetNumCommands(), 0); // loading does not insert it
}

TEST(ZELKinProbeCommand, SavedShapeWithoutANameIsKeptAsItsNumber)
{
    ProbeFixture f;
    ZELKinProbeCommand probe(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ProbeCommandRecord(ZELGeoGeometryRef(), 7, 3.0), &f.container);
    probe.Load(stream);
    EXPECT_EQ(qint32(probe.GetTargetShape()), 7);
    EXPECT_TRUE(ZELTest::SameDouble(3.0, probe.GetDiameter(), ZELTest::kExact));
    EXPECT_EQ(probe.GetCurrentState(), ProbeCommandRecord(ZELGeoGeometryRef(), 7, 3.0));
}

TEST(ZELKinProbeCommand, UnresolvedScriptThrowsNotFound)
{
    ProbeFixture f;
    const ZELGeoGeometryRef bad(31337);
    ZELKinProbeCommand probe(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ProbeCommandRecord(bad, 0, 3.0), &f.container);
    EXPECT_THROW_MESSAGE(probe.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinScript with reference %1").arg(bad.GetIdentity()));
    EXPECT_EQ(probe.GetScript(), nullptr);
}
