#include "zelkintestprograms.h"

#include <zeltpprocedure.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

namespace {

struct ProgramFixture
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(machine);
};

// A test procedure's record: the procedure's program reference, then its
// own script list.
QByteArray ProcedureRecord(const ZELGeoGeometryRef& program)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << program << qint32(0);
    return record;
}

std::vector<double> Components(const ZELMathPlane& plane)
{
    std::vector<double> components;
    for (const ZELMathVector& v : {plane.GetOrigin() - ZELMathPoint(), plane.GetNormal(), plane.GetXDirection(),
                                   plane.GetYDirection()})
        components.insert(components.end(), {v.GetX(), v.GetY(), v.GetZ()});
    return components;
}

::testing::AssertionResult SamePlane(const ZELMathPlane& expected, const ZELMathPlane& actual)
{
    const std::vector<double> e = Components(expected);
    const std::vector<double> a = Components(actual);
    for (std::size_t i = 0; i < e.size(); ++i) {
        ::testing::AssertionResult same = ZELTest::SameDouble(e[i], a[i], ZELTest::kExact);
        if (!same)
            return same << " at component " << i;
    }
    return ::testing::AssertionSuccess();
}

const ZELMathPlane kRetractPlane(ZELMathPoint(10.0, -20.0, 650.0), ZELMathVector(0.0, 1.0, 1.0),
                                 ZELMathVector(1.0, 0.0, 0.0));

} // namespace

TEST(ZELKinProcedure, CreationLinksTheProgramInItsContainerAndAppendsToIt)
{
    ProgramFixture f;
    const int programReferences = f.program->GetReferenceCount();
    f.container.SetModified(false);
    ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    EXPECT_EQ(procedure->GetProgram(), f.program);
    EXPECT_EQ(procedure->GetContainer(), &f.container);
    EXPECT_EQ(f.program->GetProcedures(), QList<ZELKinProcedure*>({procedure}));
    EXPECT_EQ(f.program->GetReferenceCount(), programReferences + 1);
    EXPECT_EQ(procedure->GetReferenceCount(), 1);
    EXPECT_TRUE(f.container.IsModified());
}

TEST(ZELKinProcedure, WithoutAProgramStandsOutsideAnyContainer)
{
    const ZELKinTestProcedure procedure(static_cast<ZELKinProgram*>(nullptr));
    EXPECT_EQ(procedure.GetProgram(), nullptr);
    EXPECT_EQ(procedure.GetContainer(), nullptr);
}

TEST(ZELKinProcedure, StartsWithTheDefaultSafetyPlaneAndNoToolPathProcedure)
{
    ProgramFixture f;
    const ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    EXPECT_TRUE(SamePlane(ZELMathPlane(), procedure->GetSafetyPlane()));
    EXPECT_EQ(procedure->GetToolPathProcedure(), nullptr);
}

TEST(ZELKinProcedure, SafetyPlaneIsCopiedInAndOut)
{
    ProgramFixture f;
    ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    f.container.SetModified(false);
    procedure->SetSafetyPlane(kRetractPlane);
    EXPECT_TRUE(SamePlane(kRetractPlane, procedure->GetSafetyPlane()));
    EXPECT_TRUE(f.container.IsModified());
}

TEST(ZELKinProcedure, ToolPathProcedureIsACountedLinkThatReadsNullOnceItIsGone)
{
    ProgramFixture f;
    ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    ZELTPProcedure* source = new ZELTPProcedure(&f.container, QStringLiteral("ply 1"));
    f.container.SetModified(false);
    procedure->SetToolPathProcedure(source);
    EXPECT_TRUE(f.container.IsModified());
    EXPECT_EQ(procedure->GetToolPathProcedure(), source);
    EXPECT_EQ(source->GetReferenceCount(), 1);

    procedure->SetToolPathProcedure(nullptr);
    EXPECT_EQ(procedure->GetToolPathProcedure(), nullptr);
    EXPECT_EQ(source->GetReferenceCount(), 0);

    procedure->SetToolPathProcedure(source);
    f.container.DeleteGeometry(source);
    EXPECT_EQ(procedure->GetToolPathProcedure(), nullptr);
}

TEST(ZELKinProcedure, ProgramReadsNullOnceItIsGone)
{
    ProgramFixture f;
    const ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    f.container.DeleteGeometry(f.program);
    EXPECT_EQ(procedure->GetProgram(), nullptr);
}

TEST(ZELKinProcedure, RecordStartsWithTheProgramAndLeavesOutPlaneAndToolPathProcedure)
{
    ProgramFixture f;
    ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    procedure->SetSafetyPlane(kRetractPlane);
    procedure->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("ply 1")));
    EXPECT_EQ(procedure->GetCurrentState(), ProcedureRecord(f.program->GetReference()));
}

TEST(ZELKinProcedure, SaveAndLoadResolveTheProgramButNotPlaneOrToolPathProcedure)
{
    ProgramFixture f;
    ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    procedure->SetSafetyPlane(kRetractPlane);
    procedure->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("ply 1")));

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinTestProcedure* loaded = ZELTest::FirstOf<ZELKinTestProcedure>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetProgram(), ZELTest::FirstOf<ZELKinProgram>(target));
    EXPECT_TRUE(SamePlane(ZELMathPlane(), loaded->GetSafetyPlane()));
    EXPECT_EQ(loaded->GetToolPathProcedure(), nullptr);
    EXPECT_NE(ZELTest::FirstOf<ZELTPProcedure>(target), nullptr);
}

TEST(ZELKinProcedure, ProgramGoneBeforeSavingIsWrittenEmptyAndLoadsSilentlyAsNone)
{
    ProgramFixture f;
    const ZELKinProcedure* procedure = new ZELKinTestProcedure(f.program);
    f.container.DeleteGeometry(f.program);
    EXPECT_EQ(procedure->GetCurrentState(), ProcedureRecord(ZELGeoGeometryRef()));

    ZELGeoContainer target;
    ASSERT_NO_THROW(ZELTest::CopyContainer(f.container, target));
    EXPECT_EQ(ZELTest::FirstOf<ZELKinTestProcedure>(target)->GetProgram(), nullptr);
}

struct UnresolvedCase
{
    const char* name;
    bool wrongClass;
};
ZELTEST_PRINT_CASE_BY_NAME(UnresolvedCase);

class ZELKinProcedureUnresolvedProgram : public ::testing::TestWithParam<UnresolvedCase>
{
};

TEST_P(ZELKinProcedureUnresolvedProgram, ThrowsNotFoundAndLeavesNoProgram)
{
    ProgramFixture f;
    const ZELGeoGeometryRef bad = GetParam().wrongClass ? f.machine->GetReference() : ZELGeoGeometryRef(8080);
    ZELKinTestProcedure procedure(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ProcedureRecord(bad), &f.container);
    EXPECT_THROW_MESSAGE(procedure.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinProgram with reference %1").arg(bad.GetIdentity()));
    EXPECT_EQ(procedure.GetProgram(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(References, ZELKinProcedureUnresolvedProgram,
                         ::testing::Values(UnresolvedCase{"NoSuchObject", false},
                                           UnresolvedCase{"AMachineInsteadOfAProgram", true}),
                         [](const ::testing::TestParamInfo<UnresolvedCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinProcedure, LoadingDoesNotAppendTheProcedureToItsProgram)
{
    ProgramFixture f;
    ZELKinTestProcedure procedure(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ProcedureRecord(f.program->GetReference()), &f.container);
    procedure.Load(stream);
    EXPECT_EQ(procedure.GetProgram(), f.program);
    EXPECT_EQ(f.program->GetNumProcedures(), 0);
}
