#include <zeltpplydescription.h>

#include <zeltestsupport.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

#include <cmath>

namespace {

struct ModeCase
{
    const char* name;
    ZELCompStrategy::PropagationMode mode;
};
ZELTEST_PRINT_CASE_BY_NAME(ModeCase);

const ModeCase kModes[] = {
    {"Angle", ZELCompStrategy::Angle},
    {"Offset", ZELCompStrategy::Offset},
    {"GeodesicOffset", ZELCompStrategy::GeodesicOffset},
    {"Parallel", ZELCompStrategy::Parallel},
    {"Geodesic", ZELCompStrategy::Geodesic},
    {"UserDefined", ZELCompStrategy::UserDefined},
};

class ZELTPPlyDescriptionMode : public ::testing::TestWithParam<ModeCase>
{
};

} // namespace

TEST(ZELTPPlyDescription, DefaultIsAnUnnamedPlyAtZeroPropagatedByAngle)
{
    const ZELTPPlyDescription ply;
    EXPECT_TRUE(ply.GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, ply.GetOrientation(), ZELTest::kExact));
    EXPECT_EQ(ply.GetPropagationMode(), ZELCompStrategy::Angle);
}

TEST_P(ZELTPPlyDescriptionMode, KeepsNameOrientationAndMode)
{
    const ZELTPPlyDescription ply(QStringLiteral("Ply 3"), M_PI / 4.0, GetParam().mode);
    EXPECT_EQ(ply.GetName(), QStringLiteral("Ply 3"));
    EXPECT_TRUE(ZELTest::SameDouble(M_PI / 4.0, ply.GetOrientation(), ZELTest::kExact));
    EXPECT_EQ(ply.GetPropagationMode(), GetParam().mode);
}

TEST_P(ZELTPPlyDescriptionMode, StreamFormIsNameOrientationAndModeAs32Bits)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPPlyDescription(QStringLiteral("Ply -45"), -M_PI / 4.0, GetParam().mode);
    QDataStream in(bytes);
    QString name;
    double orientation = 0.0;
    qint32 mode = -1;
    in >> name >> orientation >> mode;
    EXPECT_EQ(name, QStringLiteral("Ply -45"));
    EXPECT_TRUE(ZELTest::SameDouble(-M_PI / 4.0, orientation, ZELTest::kExact));
    EXPECT_EQ(mode, qint32(GetParam().mode));
    EXPECT_TRUE(in.atEnd());
}

TEST_P(ZELTPPlyDescriptionMode, SurvivesTheStream)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPPlyDescription(QStringLiteral("Lage 90"), M_PI / 2.0, GetParam().mode);
    QDataStream in(bytes);
    ZELTPPlyDescription ply;
    in >> ply;
    EXPECT_EQ(ply.GetName(), QStringLiteral("Lage 90"));
    EXPECT_TRUE(ZELTest::SameDouble(M_PI / 2.0, ply.GetOrientation(), ZELTest::kExact));
    EXPECT_EQ(ply.GetPropagationMode(), GetParam().mode);
}

INSTANTIATE_TEST_SUITE_P(Modes, ZELTPPlyDescriptionMode, ::testing::ValuesIn(kModes));

TEST(ZELTPPlyDescription, AModeOutsideTheEnumerationKeepsItsLowByte)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QStringLiteral("odd") << 0.5 << qint32(0x0107);
    QDataStream in(bytes);
    ZELTPPlyDescription ply;
    in >> ply;
    EXPECT_EQ(int(ply.GetPropagationMode()), 7);
}

TEST(ZELTPPlyDescription, ReadsEmptyZeroAndAnglePastTheEndOfTheData)
{
    QDataStream in(QByteArray{});
    ZELTPPlyDescription ply(QStringLiteral("old"), 1.0, ZELCompStrategy::Geodesic);
    in >> ply;
    EXPECT_TRUE(ply.GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, ply.GetOrientation(), ZELTest::kExact));
    EXPECT_EQ(ply.GetPropagationMode(), ZELCompStrategy::Angle);
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
}
