// A procedure's own field beside its name: the safety plane. The name is
// tested with the other named objects in tst_zeltpobject.cpp.

#include "zeltptestsupport.h"

#include <zeltpprocedure.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

using ZELTPTest::Same;
using ZELTPTest::TiltedPlane;

TEST(ZELTPProcedure, SafetyPlaneIsTheDefaultPlaneAfterEitherConstruction)
{
    const ZELTPProcedure loading(nullptr, ZELGeoGeometryRef());
    const ZELTPProcedure creating(nullptr, QStringLiteral("ply 1"));
    EXPECT_TRUE(Same(ZELMathPlane(), loading.GetSafetyPlane()));
    EXPECT_TRUE(Same(ZELMathPlane(), creating.GetSafetyPlane()));
}

TEST(ZELTPProcedure, SetSafetyPlaneKeepsThePlaneAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* procedure = new ZELTPProcedure(&container, QStringLiteral("ply 1"));
    container.SetModified(false);
    procedure->SetSafetyPlane(TiltedPlane());
    EXPECT_TRUE(Same(TiltedPlane(), procedure->GetSafetyPlane()));
    EXPECT_TRUE(container.IsModified());
}

TEST(ZELTPProcedure, RecordIsTheNameThenTheSafetyPlane)
{
    ZELTPProcedure procedure(nullptr, QStringLiteral("ply 1"));
    procedure.SetSafetyPlane(TiltedPlane());
    const QByteArray expected =
        ZELTPTest::Record([](ZELGeoStream& s) { s << QStringLiteral("ply 1") << TiltedPlane(); });
    EXPECT_EQ(procedure.GetCurrentState(), expected);
}

TEST(ZELTPProcedure, SafetyPlaneSurvivesSaveAndLoadBitForBit)
{
    ZELGeoContainer source;
    (new ZELTPProcedure(&source, QStringLiteral("ply 1")))->SetSafetyPlane(TiltedPlane());

    ZELGeoContainer target;
    const QList<ZELTPProcedure*> procedures =
        ZELTPTest::AllOf<ZELTPProcedure>(ZELTPTest::CopyContainer(source, target));
    ASSERT_EQ(procedures.size(), 1);
    EXPECT_TRUE(Same(TiltedPlane(), procedures.first()->GetSafetyPlane()));
}
