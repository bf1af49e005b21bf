// Weak links (a variable's or joint's machine, a joint's parent), seen through
// the classes that hold them.

#include <zelkintestaccess.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

namespace {

QByteArray VariableRecord(const QString& label, const ZELGeoGeometryRef& machine)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << label << machine << qint32(ZELKinVariable::Linear) << 0.0 << 1.0 << 2.0 << 3.0;
    return record;
}

} // namespace

TEST(ZELKinWeakLink, ReadsNullOnceItsTargetIsDestroyed)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    const ZELKinVariable* variable = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    EXPECT_EQ(variable->GetMachine(), machine);
    container.DeleteGeometry(machine);
    EXPECT_EQ(variable->GetMachine(), nullptr);
}

TEST(ZELKinWeakLink, ToADestroyedTargetIsSavedEmptyAndLoadsAsNullWithoutError)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    const ZELKinVariable* variable = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    source.DeleteGeometry(machine);

    ZELGeoStream record(variable->GetCurrentState(), nullptr);
    QString label;
    ZELGeoGeometryRef savedMachine(99);
    record >> label >> savedMachine;
    EXPECT_FALSE(savedMachine.IsValid());

    ZELGeoContainer target;
    ASSERT_NO_THROW(ZELTest::CopyContainer(source, target));
    const ZELKinVariable* loaded = ZELTest::FirstOf<ZELKinVariable>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetMachine(), nullptr);
}

TEST(ZELKinWeakLink, ResolvesToTheLoadedTarget)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    EXPECT_EQ(ZELTest::FirstOf<ZELKinVariable>(target)->GetMachine(), ZELTest::FirstOf<ZELKinAFPMachine>(target));
}

TEST(ZELKinWeakLink, ToAnObjectOfTheWrongClassThrowsNotFound)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    const ZELKinVariable* other = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    ZELKinVariable variable(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(VariableRecord(QStringLiteral("X"), other->GetReference()), &container);
    EXPECT_THROW_MESSAGE(variable.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinMachine with reference %1")
                             .arg(other->GetReference().GetIdentity()));
}

TEST(ZELKinWeakLink, ToANonexistentObjectThrowsNotFound)
{
    ZELGeoContainer container;
    ZELKinVariable variable(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(VariableRecord(QStringLiteral("X"), ZELGeoGeometryRef(4711)), &container);
    EXPECT_THROW_MESSAGE(variable.Load(stream), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELKinMachine with reference 4711");
}

TEST(ZELKinWeakLink, EmptyReferenceLoadsSilentlyAsNull)
{
    ZELGeoContainer container;
    ZELKinVariable variable(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(VariableRecord(QStringLiteral("X"), ZELGeoGeometryRef()), &container);
    EXPECT_NO_THROW(variable.Load(stream));
    EXPECT_EQ(variable.GetMachine(), nullptr);
    EXPECT_EQ(variable.GetLabel(), QStringLiteral("X"));
}
