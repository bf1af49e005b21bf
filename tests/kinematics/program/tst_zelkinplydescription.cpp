#include <zelkinplydescription.h>

#include <zelkintestaccess.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QDataStream>

#include <cmath>
#include <functional>

namespace {

ZELKinPlyDescription MakePly()
{
    ZELKinPlyDescription ply;
    ply.SetName(QStringLiteral("P045"));
    ply.SetMaterial(QStringLiteral("T35/E120"));
    ply.SetAngle(0.7853981633974483);
    ply.SetMethod(ZELCompStrategy::GeodesicOffset);
    ply.SetArea(1.25e6);
    return ply;
}

QByteArray Written(const std::function<void(QDataStream&)>& write)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    write(out);
    return bytes;
}

ZELKinPlyDescription Read(const QByteArray& bytes)
{
    QDataStream in(bytes);
    ZELKinPlyDescription ply;
    in >> ply;
    return ply;
}

void ExpectSame(const ZELKinPlyDescription& expected, const ZELKinPlyDescription& actual)
{
    EXPECT_EQ(actual.GetName(), expected.GetName());
    EXPECT_EQ(actual.GetMaterial(), expected.GetMaterial());
    EXPECT_TRUE(ZELTest::SameDouble(expected.GetAngle(), actual.GetAngle(), ZELTest::kExact));
    EXPECT_EQ(actual.GetMethod(), expected.GetMethod());
    EXPECT_TRUE(ZELTest::SameDouble(expected.GetArea(), actual.GetArea(), ZELTest::kExact));
}

} // namespace

TEST(ZELKinPlyDescription, DefaultIsNotValidWithEmptyTextsNaNNumbersAndTheFirstMethod)
{
    const ZELKinPlyDescription ply;
    EXPECT_FALSE(ply.IsValid());
    EXPECT_TRUE(ply.GetName().isEmpty());
    EXPECT_TRUE(ply.GetMaterial().isEmpty());
    EXPECT_TRUE(std::isnan(ply.GetAngle()));
    EXPECT_EQ(int(ply.GetMethod()), 0);
    EXPECT_TRUE(std::isnan(ply.GetArea()));
}

TEST(ZELKinPlyDescription, SettingANameMakesItValidAndClearingItMakesItInvalidAgain)
{
    ZELKinPlyDescription ply;
    ply.SetMaterial(QStringLiteral("T35/E120"));
    ply.SetAngle(0.0);
    EXPECT_FALSE(ply.IsValid());
    ply.SetName(QStringLiteral("P1"));
    EXPECT_TRUE(ply.IsValid());
    ply.SetName(QString());
    EXPECT_FALSE(ply.IsValid());
}

TEST(ZELKinPlyDescription, EveryFieldKeepsWhatIsSet)
{
    const ZELKinPlyDescription ply = MakePly();
    EXPECT_EQ(ply.GetName(), QStringLiteral("P045"));
    EXPECT_EQ(ply.GetMaterial(), QStringLiteral("T35/E120"));
    EXPECT_TRUE(ZELTest::SameDouble(0.7853981633974483, ply.GetAngle(), ZELTest::kExact));
    EXPECT_EQ(ply.GetMethod(), ZELCompStrategy::GeodesicOffset);
    EXPECT_TRUE(ZELTest::SameDouble(1.25e6, ply.GetArea(), ZELTest::kExact));
}

TEST(ZELKinPlyDescription, CopyConstructionAndAssignmentShareTheBody)
{
    const ZELKinPlyDescription original = MakePly();
    const ZELKinPlyDescription copy(original);
    ZELKinPlyDescription assigned;
    assigned = original;
    EXPECT_EQ(ZELKinTestAccess::SharedBodyOf(copy), ZELKinTestAccess::SharedBodyOf(original));
    EXPECT_EQ(ZELKinTestAccess::SharedBodyOf(assigned), ZELKinTestAccess::SharedBodyOf(original));
    ExpectSame(original, assigned);
}

TEST(ZELKinPlyDescription, ReadingDoesNotDetach)
{
    const ZELKinPlyDescription original = MakePly();
    ZELKinPlyDescription copy(original);
    EXPECT_TRUE(copy.IsValid());
    EXPECT_EQ(copy.GetName(), QStringLiteral("P045"));
    EXPECT_EQ(ZELKinTestAccess::SharedBodyOf(copy), ZELKinTestAccess::SharedBodyOf(original));
}

struct SetterCase
{
    const char* name;
    std::function<void(ZELKinPlyDescription&)> set;
};
ZELTEST_PRINT_CASE_BY_NAME(SetterCase);

class ZELKinPlyDescriptionSetter : public ::testing::TestWithParam<SetterCase>
{
};

TEST_P(ZELKinPlyDescriptionSetter, ChangesOnlyTheCopyItIsCalledOn)
{
    const ZELKinPlyDescription original = MakePly();
    ZELKinPlyDescription copy(original);
    GetParam().set(copy);
    EXPECT_NE(ZELKinTestAccess::SharedBodyOf(copy), ZELKinTestAccess::SharedBodyOf(original));
    ExpectSame(MakePly(), original);
}

INSTANTIATE_TEST_SUITE_P(
    Setters, ZELKinPlyDescriptionSetter,
    ::testing::Values(SetterCase{"Name", [](ZELKinPlyDescription& p) { p.SetName(QStringLiteral("P090")); }},
                      SetterCase{"Material", [](ZELKinPlyDescription& p) { p.SetMaterial(QStringLiteral("AS4")); }},
                      SetterCase{"Angle", [](ZELKinPlyDescription& p) { p.SetAngle(1.5); }},
                      SetterCase{"Method", [](ZELKinPlyDescription& p) { p.SetMethod(ZELCompStrategy::Parallel); }},
                      SetterCase{"Area", [](ZELKinPlyDescription& p) { p.SetArea(2.0); }}),
    [](const ::testing::TestParamInfo<SetterCase>& info) { return std::string(info.param.name); });

TEST(ZELKinPlyDescription, StreamFormIsNameMaterialAngleMethodAsInt32AndArea)
{
    const ZELKinPlyDescription ply = MakePly();
    const QByteArray expected = Written([](QDataStream& out) {
        out << QStringLiteral("P045") << QStringLiteral("T35/E120") << 0.7853981633974483
            << qint32(ZELCompStrategy::GeodesicOffset) << 1.25e6;
    });
    EXPECT_EQ(Written([&](QDataStream& out) { out << ply; }), expected);
}

TEST(ZELKinPlyDescription, StreamRoundTripKeepsEveryFieldNonAsciiAndNaNIncluded)
{
    ZELKinPlyDescription ply = MakePly();
    ply.SetName(QStringLiteral("Lage 3 – Ø 45°"));
    ply.SetArea(ZELTest::kNaN);
    ply.SetMethod(ZELCompStrategy::UserDefined);
    ExpectSame(ply, Read(Written([&](QDataStream& out) { out << ply; })));

    const ZELKinPlyDescription empty;
    ExpectSame(empty, Read(Written([&](QDataStream& out) { out << empty; })));
}

TEST(ZELKinPlyDescription, ReadingReplacesTheFieldsOfThatCopyOnly)
{
    ZELKinPlyDescription target;
    const ZELKinPlyDescription sharer(target);
    QDataStream in(Written([](QDataStream& out) { out << MakePly(); }));
    in >> target;
    ExpectSame(MakePly(), target);
    EXPECT_FALSE(sharer.IsValid());
}

struct MethodCase
{
    const char* name;
    qint32 stored;
    int method;
};
ZELTEST_PRINT_CASE_BY_NAME(MethodCase);

class ZELKinPlyDescriptionMethod : public ::testing::TestWithParam<MethodCase>
{
};

TEST_P(ZELKinPlyDescriptionMethod, ReadsTheInt32IntoTheOneByteEnumeration)
{
    const MethodCase& c = GetParam();
    const ZELKinPlyDescription ply = Read(Written([&](QDataStream& out) {
        out << QStringLiteral("P") << QString() << 0.0 << c.stored << 0.0;
    }));
    EXPECT_EQ(int(ply.GetMethod()), c.method);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, ply.GetArea(), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(Methods, ZELKinPlyDescriptionMethod,
                         ::testing::Values(MethodCase{"Angle", 0, 0}, MethodCase{"Geodesic", 4, 4},
                                           MethodCase{"UserDefined", 5, 5},
                                           MethodCase{"UnnamedValueIsKept", 200, 200},
                                           MethodCase{"HighBytesAreDropped", 0x104, 4}),
                         [](const ::testing::TestParamInfo<MethodCase>& info) {
                             return std::string(info.param.name);
                         });
