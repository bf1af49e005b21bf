// What ZELKinMachineDescriptionCheck refuses in a machine description that
// the loader would build, and what it leaves to the loader.

#include <zelkinmachinedescriptioncheck.h>
#include <zelkinmachineloader.h>

#include <zelsysexception.h>

#include <zeltestsupport.h>

#include <QDir>
#include <QFile>
#include <QStringList>

#include <vector>

namespace {

// A small AFP machine, one element a line, so that the line numbers in the
// expected messages can be read off here.
const QStringList kMachineLines{
    /* 1 */ R"(<machine type="AFP" solver="RBR" roller-radius="30" tow-width="6.35" add-distance="50.8" )"
            R"(add-pinch="12.7" cut-distance="76.2" head-travel="101.6" material-axis="U">)",
    /* 2 */ R"(  <mask numTows="16">FFFF</mask>)",
    /* 3 */ R"(  <variables>)",
    /* 4 */ R"(    <variable name="X" minimum="0" maximum="24384" max-speed="40" max-accel="2"/>)",
    /* 5 */ R"(    <variable name="Y" minimum="1150" maximum="8000" max-speed="40" max-accel="2"/>)",
    /* 6 */
    R"(    <variable name="C" type="rotary" minimum="-200.5" maximum="200.5" max-speed="7200" max-accel="720"/>)",
    /* 7 */ R"(    <variable name="U" max-speed="60" max-accel="5"/>)",
    /* 8 */ R"(  </variables>)",
    /* 9 */ R"(  <joints>)",
    /* 10 */ R"(    <joint name="X" type="translation" vector="1,0,0" variables="X"/>)",
    /* 11 */ R"(    <joint name="Y" type="translation" vector="0,1,0" variables="Y" parent="X"/>)",
    /* 12 */ R"(    <joint name="C" type="rotation" vector="1,0,0" pivot="0,0,-150" variables="C" parent="Y"/>)",
    /* 13 */ R"(  </joints>)",
    /* 14 */ R"(</machine>)",
};

QByteArray Join(const QStringList& lines)
{
    return lines.join(QLatin1Char('\n')).toUtf8();
}

// The machine with the attribute `attribute` of the element on line `line`
// (from 1) set to `value`, added when missing.
QByteArray WithAttribute(int line, const QString& attribute, const QString& value)
{
    QStringList lines = kMachineLines;
    QString& text = lines[line - 1];
    const QString written = QStringLiteral(" %1=\"").arg(attribute);
    const qsizetype at = text.indexOf(written);
    if (at < 0) {
        const qsizetype end = text.lastIndexOf(text.endsWith(QLatin1String("/>")) ? QLatin1String("/>")
                                                                                  : QLatin1String(">"));
        text.insert(end, QStringLiteral(" %1=\"%2\"").arg(attribute, value));
    } else {
        const qsizetype from = at + written.size();
        text.replace(from, text.indexOf(QLatin1Char('"'), from) - from, value);
    }
    return Join(lines);
}

void Check(const QByteArray& description)
{
    ZELKinMachineDescriptionCheck().Check(description);
}

struct RefusedCase
{
    std::string name;
    int line;
    QString attribute;
    QString value;
    QString message;
};
ZELTEST_PRINT_CASE_BY_NAME(RefusedCase);

class ZELKinMachineDescriptionCheckRefuses : public ::testing::TestWithParam<RefusedCase>
{
};

const std::vector<RefusedCase> kRefusedCases{
    {"TowWidthWithItsUnit", 1, "tow-width", "6.35 mm",
     "machine description line 1: <machine>: tow-width '6.35 mm' is not a number"},
    {"RollerRadiusNaN", 1, "roller-radius", "nan",
     "machine description line 1: <machine>: roller-radius 'nan' is not a finite number"},
    {"HeadTravelInfinite", 1, "head-travel", "inf",
     "machine description line 1: <machine>: head-travel 'inf' is not a finite number"},
    {"AddPinchBeyondADouble", 1, "add-pinch", "1e999",
     "machine description line 1: <machine>: add-pinch '1e999' is not a finite number"},
    {"AddDistanceEmpty", 1, "add-distance", "",
     "machine description line 1: <machine>: add-distance '' is not a number"},
    {"CutDistanceWithAComma", 1, "cut-distance", "76,2",
     "machine description line 1: <machine>: cut-distance '76,2' is not a number"},
    {"MaximumWithItsUnit", 4, "maximum", "24384 mm",
     "machine description line 4: <variable name='X'>: maximum '24384 mm' is not a number"},
    {"MinimumPlusInfinity", 5, "minimum", "inf",
     "machine description line 5: <variable name='Y'>: minimum 'inf' is neither a finite number nor -inf (no limit)"},
    {"MaximumMinusInfinity", 5, "maximum", "-inf",
     "machine description line 5: <variable name='Y'>: maximum '-inf' is neither a finite number nor inf (no limit)"},
    {"MinimumNaN", 6, "minimum", "nan",
     "machine description line 6: <variable name='C'>: minimum 'nan' is neither a finite number nor -inf (no limit)"},
    {"MinimumBeyondADouble", 4, "minimum", "1e999",
     "machine description line 4: <variable name='X'>: minimum '1e999' is neither a finite number nor -inf (no limit)"},
    {"MaxSpeedNotANumber", 5, "max-speed", "abc",
     "machine description line 5: <variable name='Y'>: max-speed 'abc' is not a number"},
    {"MaxSpeedZero", 6, "max-speed", "0",
     "machine description line 6: <variable name='C'>: max-speed '0' is not greater than 0"},
    {"MaxSpeedNegative", 4, "max-speed", "-40",
     "machine description line 4: <variable name='X'>: max-speed '-40' is not greater than 0"},
    {"MaxAccelNegative", 7, "max-accel", "-5",
     "machine description line 7: <variable name='U'>: max-accel '-5' is not greater than 0"},
    {"MaxAccelNaN", 7, "max-accel", "nan",
     "machine description line 7: <variable name='U'>: max-accel 'nan' is not a finite number"},
    {"VectorOfZeroLength", 12, "vector", "0,0,0",
     "machine description line 12: <joint name='C'>: vector '0,0,0' has length 0"},
    {"VectorOfMinusZeros", 10, "vector", "-0, -0.0, 0e5",
     "machine description line 10: <joint name='X'>: vector '-0, -0.0, 0e5' has length 0"},
    {"VectorWithInfinity", 11, "vector", "0,inf,0",
     "machine description line 11: <joint name='Y'>: vector '0,inf,0': 'inf' is not a finite number"},
    {"VectorWithAnEmptyPart", 11, "vector", "0,,1",
     "machine description line 11: <joint name='Y'>: vector '0,,1': '' is not a number"},
    {"VectorWithAWord", 10, "vector", "1,0,z",
     "machine description line 10: <joint name='X'>: vector '1,0,z': 'z' is not a number"},
    {"PivotNaN", 12, "pivot", "0,0,nan",
     "machine description line 12: <joint name='C'>: pivot '0,0,nan': 'nan' is not a finite number"},
    {"PivotWithItsUnit", 12, "pivot", "0,0,-150mm",
     "machine description line 12: <joint name='C'>: pivot '0,0,-150mm': '-150mm' is not a number"},
    {"PivotOfATranslationJoint", 10, "pivot", "x,0,0",
     "machine description line 10: <joint name='X'>: pivot 'x,0,0': 'x' is not a number"},
    {"TwoVariablesOfOneName", 5, "name", "X",
     "machine description line 5: <variable name='X'>: name 'X' is taken by the variable on line 4"},
    {"TwoJointsOfOneName", 12, "name", "X",
     "machine description line 12: <joint name='X'>: name 'X' is taken by the joint on line 10"},
    {"ValueWithALineEnd", 5, "max-speed", "4&#10;0",
     "machine description line 5: <variable name='Y'>: max-speed '4\\u000A0' is not a number"},
};

} // namespace

TEST_P(ZELKinMachineDescriptionCheckRefuses, NamesTheLineTheElementAndTheAttribute)
{
    const RefusedCase& c = GetParam();
    EXPECT_THROW_MESSAGE(Check(WithAttribute(c.line, c.attribute, c.value)), ZELSysException, c.message);
}

INSTANTIATE_TEST_SUITE_P(Table, ZELKinMachineDescriptionCheckRefuses, ::testing::ValuesIn(kRefusedCases),
                         [](const auto& info) { return info.param.name; });

TEST(ZELKinMachineDescriptionCheck, TheTestMachinePasses)
{
    EXPECT_NO_THROW(Check(Join(kMachineLines)));
}

TEST(ZELKinMachineDescriptionCheck, EveryShippedMachinePasses)
{
    QStringList paths;
    for (const char* folder : {ZELKIN_EXAMPLES_DIR "/machines", ZELKIN_TEST_MACHINES_DIR}) {
        const QDir dir(QString::fromUtf8(folder));
        for (const QString& name : dir.entryList({QStringLiteral("*.xml")}, QDir::Files))
            paths.append(dir.filePath(name));
    }
    ASSERT_GE(paths.size(), 4);
    for (const QString& path : paths) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        EXPECT_NO_THROW(Check(file.readAll())) << path.toStdString();
    }
}

TEST(ZELKinMachineDescriptionCheck, NumbersWithBlanksAroundThemAndAVectorOfFourPartsPass)
{
    QStringList lines = kMachineLines;
    lines[3] = R"(    <variable name="X" minimum=" 0 " maximum="2.4384e4" max-speed=" 40" max-accel="2 "/>)";
    lines[9] = R"(    <joint name="X" type="translation" vector="1,0,0,5" variables="X"/>)";
    EXPECT_NO_THROW(Check(Join(lines)));
}

TEST(ZELKinMachineDescriptionCheck, InfiniteLimitsOnTheirOwnSidesLimitNothingAndPass)
{
    QStringList lines = kMachineLines;
    lines[3] = R"(    <variable name="X" minimum="-inf" maximum="+inf" max-speed="40" max-accel="2"/>)";
    lines[5]
        = R"(    <variable name="C" type="rotary" minimum="-INF" maximum="Inf" max-speed="7200" max-accel="720"/>)";
    EXPECT_NO_THROW(Check(Join(lines)));
}

TEST(ZELKinMachineDescriptionCheck, AnyVectorLongerThanZeroPasses)
{
    EXPECT_NO_THROW(Check(WithAttribute(12, QStringLiteral("vector"), QStringLiteral("1e-300,0,0"))));
}

TEST(ZELKinMachineDescriptionCheck, RootTagSpanningLinesIsNamedByTheLineItBeginsOn)
{
    QStringList lines = kMachineLines;
    lines[0].replace(QLatin1String(" tow-width=\"6.35\""), QLatin1String("\n     tow-width=\"6.35 mm\"\n    "));
    const QByteArray description = "<?xml version=\"1.0\"?>\n<!-- a comment\n     of two lines -->\n\n" + Join(lines);
    EXPECT_THROW_MESSAGE(Check(description), ZELSysException,
                         "machine description line 5: <machine>: tow-width '6.35 mm' is not a number");
}

TEST(ZELKinMachineDescriptionCheck, LinesAreCountedInADocumentOfCarriageReturns)
{
    QByteArray description = WithAttribute(5, QStringLiteral("max-speed"), QStringLiteral("abc"));
    description.replace('\n', "\r\n");
    EXPECT_THROW_MESSAGE(Check(description), ZELSysException,
                         "machine description line 5: <variable name='Y'>: max-speed 'abc' is not a number");
}

TEST(ZELKinMachineDescriptionCheck, FirstProblemInDocumentOrderIsTheOneNamed)
{
    QStringList lines = kMachineLines;
    lines[4].replace(QLatin1String("name=\"Y\""), QLatin1String("name=\"X\""));
    lines[6].replace(QLatin1String("max-speed=\"60\""), QLatin1String("max-speed=\"fast\""));
    EXPECT_THROW_MESSAGE(
        Check(Join(lines)), ZELSysException,
        "machine description line 5: <variable name='X'>: name 'X' is taken by the variable on line 4");
}

TEST(ZELKinMachineDescriptionCheck, VariablesNestedDeeperAreCheckedAsTheLoaderFindsThem)
{
    QStringList lines = kMachineLines;
    lines[4] = R"(    <group><variable name="Y" max-speed="40" max-accel="0"/></group>)";
    EXPECT_THROW_MESSAGE(Check(Join(lines)), ZELSysException,
                         "machine description line 5: <variable name='Y'>: max-accel '0' is not greater than 0");
}

TEST(ZELKinMachineDescriptionCheck, ElementWithoutANameIsNamedByItsTag)
{
    QStringList lines = kMachineLines;
    lines[6] = R"(    <variable max-speed="60" max-accel="five"/>)";
    EXPECT_THROW_MESSAGE(Check(Join(lines)), ZELSysException,
                         "machine description line 7: <variable>: max-accel 'five' is not a number");
}

// The loader reports these itself; the check must not change its message.
TEST(ZELKinMachineDescriptionCheck, MissingAttributesAndShortTriplesAreLeftToTheLoader)
{
    QStringList lines = kMachineLines;
    lines[4] = R"(    <variable name="Y"/>)";
    lines[10] = R"(    <joint name="Y" type="translation" vector="0,1" pivot="1" variables="Y" parent="X"/>)";
    EXPECT_NO_THROW(Check(Join(lines)));
}

TEST(ZELKinMachineDescriptionCheck, DescriptionOfAnotherKindIsLeftToTheLoader)
{
    QStringList lines = kMachineLines;
    lines[0].replace(QLatin1String("type=\"AFP\""), QLatin1String("type=\"CNC\" tow-width=\"x\""));
    lines[3].replace(QLatin1String("max-speed=\"40\""), QLatin1String("max-speed=\"x\""));
    EXPECT_NO_THROW(Check(Join(lines)));
}

TEST(ZELKinMachineDescriptionCheck, VariablesOfADescriptionWithTwoListsAreLeftToTheLoader)
{
    QStringList lines = kMachineLines;
    lines[3].replace(QLatin1String("max-speed=\"40\""), QLatin1String("max-speed=\"x\""));
    lines[7] = QStringLiteral("  </variables><variables>");
    EXPECT_NO_THROW(Check(Join(lines)));
}

TEST(ZELKinMachineDescriptionCheck, JointsOfADescriptionWithoutAJointListAreLeftToTheLoader)
{
    QStringList lines = kMachineLines;
    lines[8] = QStringLiteral("  <joint-list>");
    lines[11].replace(QLatin1String("vector=\"1,0,0\""), QLatin1String("vector=\"0,0,0\""));
    lines[12] = QStringLiteral("  </joint-list>");
    EXPECT_NO_THROW(Check(Join(lines)));
}

TEST(ZELKinMachineDescriptionCheck, DocumentThatDoesNotParseIsLeftToTheLoader)
{
    QStringList lines = kMachineLines;
    lines[4].replace(QLatin1String("max-speed=\"40\""), QLatin1String("max-speed=\"x\""));
    lines.removeLast();
    EXPECT_NO_THROW(Check(Join(lines)));
}

TEST(ZELKinMachineDescriptionCheck, DescriptionOverTheLoadersSizeGetsTheLoadersMessage)
{
    const QByteArray description = "<machine type=\"AFP\"><!--"
        + QByteArray(ZELKinMachineLoader::MaximumDescriptionBytes, 'x') + "--></machine>";
    EXPECT_THROW_MESSAGE(Check(description), ZELSysException, "The machine description is larger than 4194304 bytes");
}
