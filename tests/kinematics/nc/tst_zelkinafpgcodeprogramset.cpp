// The program-set file (.PPSF) of the AFP G-code dialect.

#include "zelkinnctestprograms.h"

using ZELTest::NCFixture;

namespace {

QString PlyTableLine(NCFixture& f)
{
    const QStringList lines = ZELTest::LinesStartingWith(f.WriteAndRead(QStringLiteral("PART.PPSF")),
                                                         QStringLiteral(" 0101, "));
    return lines.size() == 1 ? lines.first() : QStringLiteral("<%1 ply table lines>").arg(lines.size());
}

} // namespace

TEST(ZELKinAFPGCodeProgramSet, TheProgramSetFileIsWrittenLineByLine)
{
    NCFixture f;
    f.BuildPart();
    EXPECT_TRUE(ZELTest::SameText(ZELTest::Golden(QStringLiteral("PART.PPSF")),
                                  f.WriteAndRead(QStringLiteral("PART.PPSF"), ZELTest::kGoldenOptions)));
}

TEST(ZELKinAFPGCodeProgramSet, WithoutRollLayupProceduresEveryFixedLineStaysAndThePlyListsAreEmpty)
{
    NCFixture f;
    f.BuildProbing();
    // The golden program-set file without its two ply programs and its three
    // ply table rows.
    QStringList expected = ZELTest::Golden(QStringLiteral("PART.PPSF")).split(QLatin1Char('\n'));
    expected.removeIf([](const QString& line) {
        return line.startsWith(QStringLiteral("; 010")) || line.startsWith(QStringLiteral(" 010"));
    });
    const QString text = f.WriteAndRead(QStringLiteral("PART.PPSF"));
    EXPECT_EQ(text, expected.join(QLatin1Char('\n')));
    EXPECT_TRUE(text.endsWith(QStringLiteral(" ENHANCED_OFF_PART_MOTION=ON\n; NC_NUM, VelTRACK Name\n\n#PLY TABLE\n"
                                             "; SEQ  PLY           MATERIAL     ANGLE   METHOD\n\n")));
}

namespace {

struct DistanceCase
{
    const char* name;
    double addDistance;
    double cutDistance;
    double headTravel;
    const char* lines;
};
ZELTEST_PRINT_CASE_BY_NAME(DistanceCase);

class ZELKinAFPGCodeProgramSetDistanceTest : public ::testing::TestWithParam<DistanceCase>
{
};

const DistanceCase kDistanceCases[] = {
    {"TwoInchesAddDistance", 50.8, 76.2, 101.6,
     " AVERAGE_ADD_DISTANCE=2.000\n AVERAGE_CUT_DISTANCE=3.000\n HEAD_SLIDE_TRAVEL=4.000"},
    {"FractionsRoundToThreeDecimals", 1.27, 0.0254, 12.7,
     " AVERAGE_ADD_DISTANCE=0.050\n AVERAGE_CUT_DISTANCE=0.001\n HEAD_SLIDE_TRAVEL=0.500"},
    {"LongDistances", 2540.0, 1000.0, 635.0,
     " AVERAGE_ADD_DISTANCE=100.000\n AVERAGE_CUT_DISTANCE=39.370\n HEAD_SLIDE_TRAVEL=25.000"},
};

} // namespace

TEST_P(ZELKinAFPGCodeProgramSetDistanceTest, TheMachineDistancesAreWrittenInInchesWithThreeDecimals)
{
    ZELKinTestHead head;
    head.addDistance = GetParam().addDistance;
    head.cutDistance = GetParam().cutDistance;
    head.headTravel = GetParam().headTravel;
    NCFixture f(head);
    const QString text = f.WriteAndRead(QStringLiteral("PART.PPSF"));
    const QStringList lines = ZELTest::LinesStartingWith(text, QStringLiteral(" AVERAGE_")) +
        ZELTest::LinesStartingWith(text, QStringLiteral(" HEAD_SLIDE_TRAVEL="));
    EXPECT_EQ(lines.join(QLatin1Char('\n')), QString::fromUtf8(GetParam().lines));
}

INSTANTIATE_TEST_SUITE_P(Distances, ZELKinAFPGCodeProgramSetDistanceTest, ::testing::ValuesIn(kDistanceCases));

namespace {

struct PlyRowCase
{
    const char* name;
    const char* plyName;
    const char* material;
    double degrees;
    int method;
    const char* line;
};
ZELTEST_PRINT_CASE_BY_NAME(PlyRowCase);

class ZELKinAFPGCodeProgramSetPlyRowTest : public ::testing::TestWithParam<PlyRowCase>
{
};

const PlyRowCase kPlyRowCases[] = {
    {"MinusFortyFive", "P", "M", -45.0, 0, " 0101, P            ,M       ,  -45.000,A-ANGLE"},
    {"Ninety", "P", "M", 90.0, 0, " 0101, P            ,M       ,   90.000,A-ANGLE"},
    {"AngleRoundsToThreeDecimals", "P", "M", 12.3456, 0, " 0101, P            ,M       ,   12.346,A-ANGLE"},
    {"WideAngleFillsTheField", "P", "M", -1000.5, 0, " 0101, P            ,M       ,-1000.500,A-ANGLE"},
    {"NameOfThirteenFillsItsColumn", "ABCDEFGHIJKLM", "T35", 0.0, 0, " 0101, ABCDEFGHIJKLM,T35     ,    0.000,A-ANGLE"},
    {"LongerNameIsWrittenWholeAndShiftsTheRest", "ABCDEFGHIJKLMNOP", "T35", 0.0, 0,
     " 0101, ABCDEFGHIJKLMNOP,T35     ,    0.000,A-ANGLE"},
    {"LongerMaterialIsWrittenWhole", "P", "T35-12K-HS", 0.0, 0, " 0101, P            ,T35-12K-HS,    0.000,A-ANGLE"},
    {"Offset", "P", "M", 0.0, 1, " 0101, P            ,M       ,    0.000,A-OFFSET"},
    {"GeodesicOffset", "P", "M", 0.0, 2, " 0101, P            ,M       ,    0.000,G-OFFSET"},
    {"Parallel", "P", "M", 0.0, 3, " 0101, P            ,M       ,    0.000,Parallel"},
    {"Geodesic", "P", "M", 0.0, 4, " 0101, P            ,M       ,    0.000,Geodesic"},
    {"UserDefined", "P", "M", 0.0, 5, " 0101, P            ,M       ,    0.000,User Defined"},
    {"UnknownMode", "P", "M", 0.0, 9, " 0101, P            ,M       ,    0.000,Unknown (9)"},
};

} // namespace

TEST_P(ZELKinAFPGCodeProgramSetPlyRowTest, APlyRowHasItsColumnsPaddedAndItsMethodLabelled)
{
    NCFixture f;
    ZELKinRollLayupProcedure* procedure = f.AddLayup(QStringLiteral("Ply"), QStringLiteral("Ply"));
    procedure->AddPlyDefinition(
        NCFixture::Ply(QString::fromUtf8(GetParam().plyName), QString::fromUtf8(GetParam().material),
                       ZELTest::Radians(GetParam().degrees), ZELCompStrategy::PropagationMode(GetParam().method), 1.0));
    f.AddShortCourse(procedure);
    EXPECT_EQ(PlyTableLine(f), QString::fromUtf8(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(Rows, ZELKinAFPGCodeProgramSetPlyRowTest, ::testing::ValuesIn(kPlyRowCases));

TEST(ZELKinAFPGCodeProgramSet, PliesAreListedProcedureByProcedureInProgramOrder)
{
    NCFixture f;
    ZELKinRollLayupProcedure* first = f.AddLayup(QStringLiteral("First layup"), QStringLiteral("one"));
    f.AddProbing(QStringLiteral("probe"));
    ZELKinRollLayupProcedure* second = f.AddLayup(QStringLiteral("Second layup"), QStringLiteral("two"));
    second->AddPlyDefinition(
        NCFixture::Ply(QStringLiteral("S1"), QStringLiteral("M"), 0.0, ZELCompStrategy::Angle, 1.0));
    first->AddPlyDefinition(
        NCFixture::Ply(QStringLiteral("F1"), QStringLiteral("M"), 0.0, ZELCompStrategy::Angle, 1.0));
    first->AddPlyDefinition(
        NCFixture::Ply(QStringLiteral("F2"), QStringLiteral("M"), 0.0, ZELCompStrategy::Angle, 1.0));
    f.AddShortCourse(first);
    f.AddShortCourse(second);
    const QString text = f.WriteAndRead(QStringLiteral("PART.PPSF"));
    EXPECT_EQ(ZELTest::LinesBetween(text, QStringLiteral("; NC_NUM"), QStringLiteral(" 0102")),
              QStringList({QStringLiteral("; NC_NUM, VelTRACK Name"), QStringLiteral("; 0101, First layup"),
                           QStringLiteral("; 0102, Second layup"), QString(), QStringLiteral("#PLY TABLE"),
                           QStringLiteral("; SEQ  PLY           MATERIAL     ANGLE   METHOD"),
                           QStringLiteral(" 0101, F1           ,M       ,    0.000,A-ANGLE"),
                           QStringLiteral(" 0101, F2           ,M       ,    0.000,A-ANGLE"),
                           QStringLiteral(" 0102, S1           ,M       ,    0.000,A-ANGLE")}));
}
