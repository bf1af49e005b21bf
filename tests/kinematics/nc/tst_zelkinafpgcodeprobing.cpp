// The probing file (.PTPF) of the AFP G-code dialect.

#include "zelkinnctestprograms.h"

using ZELTest::NCFixture;

namespace {

QString Probing(NCFixture& f, const QString& options = QString())
{
    return f.WriteAndRead(QStringLiteral("PART.PTPF"), options);
}

} // namespace

TEST(ZELKinAFPGCodeProbing, TheProbingFileIsWrittenLineByLine)
{
    NCFixture f;
    f.BuildPart();
    EXPECT_TRUE(ZELTest::SameText(ZELTest::Golden(QStringLiteral("PART.PTPF")), Probing(f, ZELTest::kGoldenOptions)));
}

TEST(ZELKinAFPGCodeProbing, WithoutProbeCommandsOnlyThePointsAndLocatingBlocksAreLeftOut)
{
    NCFixture f;
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    probing->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0, 0, 304.8), ZELMathVector(0, 0, 1)));
    f.AddProbePosition(probing, {254.0, 127.0, 50.8}, 2540.0);
    f.AddProbePosition(probing, {254.0, 177.8, 254.0}, 5080.0);
    // The golden probing file without its two theoretical points and its
    // two locating blocks; a zero diameter.
    const QString golden = ZELTest::Golden(QStringLiteral("PART.PTPF"));
    QStringList expected = golden.left(golden.indexOf(QStringLiteral(";Start of Locating"))).split(QLatin1Char('\n'));
    expected.removeIf([](const QString& line) { return line.startsWith(QStringLiteral(";[THEORETICAL POINT")); });
    expected.replaceInStrings(QStringLiteral("Diameter=1.0000"), QStringLiteral("Diameter=0.0000"));
    expected.removeLast();
    expected.append(QStringLiteral("M02\n"));
    EXPECT_EQ(Probing(f, ZELTest::kGoldenOptions), expected.join(QLatin1Char('\n')));
}

TEST(ZELKinAFPGCodeProbing, TwoTargetsOfOneXMoveInYOnly)
{
    NCFixture f;
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    f.AddProbePosition(probing, {254.0, 127.0, 50.8}, 1270.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 10.0);
    f.AddProbePosition(probing, {254.0005, 63.5, 76.2}, 1270.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 10.0);
    EXPECT_EQ(ZELTest::LinesStartingWith(Probing(f), QStringLiteral("G1")),
              QStringList({QStringLiteral("G1Y-2.5F50; Position Axes For Next Tooling Point")}));
}

TEST(ZELKinAFPGCodeProbing, MovesBetweenTargetsAreIncrementalInXAndYWithSixSignificantDigitsInPlainNotation)
{
    NCFixture f;
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    const double targets[][2] = {{0.0, 0.0}, {1.0, 2540.0}, {1.0011, 2540.0}, {-25400000.0, 2539.9995}};
    for (const auto& target : targets) {
        f.AddProbePosition(probing, {target[0], target[1], 0.0}, 1000.0);
        ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 10.0);
    }
    EXPECT_EQ(ZELTest::LinesStartingWith(Probing(f), QStringLiteral("G1")),
              QStringList({QStringLiteral("G1X0.0393701Y100F39.3701; Position Axes For Next Tooling Point"),
                           QStringLiteral("G1X0.0000433071F39.3701; Position Axes For Next Tooling Point"),
                           QStringLiteral("G1X-1000000F39.3701; Position Axes For Next Tooling Point")}));
}

TEST(ZELKinAFPGCodeProbing, AnInchOfToolingRetractIsWrittenWithTwoAndWithFourDecimals)
{
    NCFixture f;
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    f.AddProbePosition(probing, {0.0, 0.0, 0.0}, 1270.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 6.35);
    const QString text = Probing(f, QStringLiteral("tooling-retract: 25.4"));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("MSG(\"Move")),
              QStringList({QStringLiteral("MSG(\"Move probe to within 1.00 inches of target #1.  Adjust X,Y,Z (ONLY) "
                                          "in manual mode.\")")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("PRB_SPH")),
              QStringList({QStringLiteral(
                  "PRB_SPH (GUD_PROBED_X, GUD_PROBED_Y, GUD_PROBED_Z, 1.0000, 0.1250); Initiate Probe Cycle")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";[RETRACT VALUE]")),
              QStringList({QStringLiteral(";[RETRACT VALUE] Retract=1.0000")}));
}

TEST(ZELKinAFPGCodeProbing, AnInchOfDiameterIsAHalfInchRadiusInTheProbeCycle)
{
    NCFixture f;
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    f.AddProbePosition(probing, {0.0, 0.0, 0.0}, 1270.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 25.4);
    const QString text = Probing(f);
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";[TARGET DIAMETER]")),
              QStringList({QStringLiteral(";[TARGET DIAMETER] Diameter=1.0000")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("PRB_SPH")),
              QStringList({QStringLiteral(
                  "PRB_SPH (GUD_PROBED_X, GUD_PROBED_Y, GUD_PROBED_Z, 0.0000, 0.5000); Initiate Probe Cycle")}));
}

TEST(ZELKinAFPGCodeProbing, AProbeCommandBeforeAnyPositionTargetsTheOrigin)
{
    NCFixture f;
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 10.0);
    f.AddProbePosition(probing, {25.4, 50.8, 76.2}, 1270.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 20.0);
    EXPECT_EQ(ZELTest::LinesStartingWith(Probing(f), QStringLiteral(";[THEORETICAL POINT")),
              QStringList({QStringLiteral(";[THEORETICAL POINT 1] X=0.0000 Y=0.0000 Z=0.0000"),
                           QStringLiteral(";[THEORETICAL POINT 2] X=1.0000 Y=2.0000 Z=3.0000")}));
}

TEST(ZELKinAFPGCodeProbing, TheLastFeedAndDiameterGivenAreUsedThroughout)
{
    NCFixture f;
    ZELKinProbeProcedure* probing = f.AddProbing(QStringLiteral("probe"));
    f.AddProbePosition(probing, {0.0, 0.0, 0.0}, 1270.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 50.8);
    f.AddProbePosition(probing, {25.4, 0.0, 0.0}, 2540.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 12.7);
    f.AddProbePosition(probing, {0.0, 0.0, 0.0}, 3810.0);
    const QString text = Probing(f);
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";[RETRACT MODEL]")),
              QStringList({QStringLiteral(
                  ";[RETRACT MODEL] OPMM=SPECIFIED,RetractAxis=Z,RetractValue=0.000000,RetractFeedrate=150.0000")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral(";[TARGET DIAMETER]")),
              QStringList({QStringLiteral(";[TARGET DIAMETER] Diameter=0.5000")}));
    EXPECT_EQ(ZELTest::LinesStartingWith(text, QStringLiteral("G1")),
              QStringList({QStringLiteral("G1X1F150; Position Axes For Next Tooling Point")}));
    EXPECT_EQ(text.count(QStringLiteral(", 0.0000, 0.2500); Initiate Probe Cycle")), 2);
}

TEST(ZELKinAFPGCodeProbing, TheHeadExtensionIsTheMachinesHeadTravel)
{
    ZELKinTestHead head;
    head.headTravel = 12.7;
    NCFixture f(head);
    f.AddProbing(QStringLiteral("probe"));
    EXPECT_EQ(ZELTest::LinesStartingWith(Probing(f), QStringLiteral(";{G0R")),
              QStringList({QStringLiteral(";{G0R0.5000}; Head Extension Distance")}));
}

namespace {

struct MissingAxisCase
{
    const char* name;
    const char* axes[3];
};
ZELTEST_PRINT_CASE_BY_NAME(MissingAxisCase);

class ZELKinAFPGCodeProbingMissingAxisTest : public ::testing::TestWithParam<MissingAxisCase>
{
};

const MissingAxisCase kMissingAxisCases[] = {
    {"NoX", {"Y", "Z", "U"}},
    {"NoY", {"X", "Z", "U"}},
    {"NoZ", {"X", "Y", "U"}},
    {"LowerCaseNames", {"x", "y", "z"}},
};

} // namespace

TEST_P(ZELKinAFPGCodeProbingMissingAxisTest, AMachineWithoutAnXYOrZAxisGetsAnEmptyProbingFile)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    for (const char* axis : GetParam().axes)
        ZELKinTestAccess::CreateVariable(machine, QString::fromLatin1(axis));
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(machine);
    program->SetOriginalFileName(QStringLiteral("PART"));
    ZELKinProbeProcedure* probing = ZELKinTestAccess::CreateProbeProcedure(program);
    ZELKinTestAccess::CreatePosition(probing)->SetFeedrate(1270.0);
    ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 10.0);
    QTemporaryDir output;
    ZELKinWriter(program).Write(output.path(), QStringLiteral("AFPGCode"), QString());
    const QString path = QDir(output.path()).filePath(QStringLiteral("PART/PART.PTPF"));
    ASSERT_TRUE(QFileInfo::exists(path));
    EXPECT_EQ(NCFixture::ReadText(path), QString());
}

INSTANTIATE_TEST_SUITE_P(Machines, ZELKinAFPGCodeProbingMissingAxisTest, ::testing::ValuesIn(kMissingAxisCases));
