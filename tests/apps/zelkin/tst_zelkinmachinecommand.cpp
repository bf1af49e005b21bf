#include "zelkintoolrun.h"

#include <zeltestsupport.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadiansPerDegree = kPi / 180.0;

// The description states linear speeds in m/min and accelerations in m/s^2,
// rotary speeds in deg/min and accelerations in deg/s^2; the model keeps mm,
// rad and seconds.
double LinearSpeed(double metresPerMinute)
{
    return metresPerMinute * 1000.0 / 60.0;
}

double LinearAcceleration(double metresPerSecondSquared)
{
    return metresPerSecondSquared * 1000.0;
}

double Angle(double degrees)
{
    return degrees * kRadiansPerDegree;
}

double RotarySpeed(double degreesPerMinute)
{
    return degreesPerMinute * kRadiansPerDegree / 60.0;
}

double RotaryAcceleration(double degreesPerSecondSquared)
{
    return degreesPerSecondSquared * kRadiansPerDegree;
}

QJsonObject ParseObject(const QString& json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    EXPECT_TRUE(document.isObject());
    return document.object();
}

QJsonObject FindByName(const QJsonArray& array, const QString& name)
{
    for (const QJsonValue& value : array) {
        if (value.toObject().value(QStringLiteral("name")).toString() == name)
            return value.toObject();
    }
    ADD_FAILURE() << "no entry named " << name.toStdString();
    return QJsonObject();
}

QStringList ToStrings(const QJsonValue& value)
{
    QStringList strings;
    for (const QJsonValue& entry : value.toArray())
        strings.append(entry.toString());
    return strings;
}

::testing::AssertionResult IsTriple(const QJsonValue& value, double x, double y, double z)
{
    const QJsonArray array = value.toArray();
    if (array.size() != 3)
        return ::testing::AssertionFailure() << "not three numbers";
    for (const auto& [index, expected] : {std::pair{0, x}, std::pair{1, y}, std::pair{2, z}}) {
        ::testing::AssertionResult same = ZELTest::SameDouble(expected, array.at(index).toDouble(), ZELTest::kTight);
        if (!same)
            return same << " at index " << index;
    }
    return ::testing::AssertionSuccess();
}

// The lines of a summary section below its title, each as its indent
// followed by its cells joined with " | " (cells are set two or more blanks
// apart), so that expectations need not know the column widths.
std::vector<std::string> GetSectionRows(const QString& summary, const QString& title)
{
    const QStringList lines = summary.split(QLatin1Char('\n'));
    const qsizetype titleLine = lines.indexOf(title);
    if (titleLine < 0) {
        ADD_FAILURE() << "no section " << title.toStdString() << " in:\n" << summary.toStdString();
        return {};
    }
    static const QRegularExpression columnGap(QStringLiteral(" {2,}"));
    std::vector<std::string> rows;
    for (qsizetype i = titleLine + 1; i < lines.size() && !lines.at(i).isEmpty(); ++i) {
        const QString line = lines.at(i);
        const QString cells = line.trimmed();
        const QString indent = line.left(line.indexOf(cells));
        rows.push_back((indent + QString(cells).replace(columnGap, QStringLiteral(" | "))).toStdString());
    }
    return rows;
}

// A small AFP machine: a linear X carrying a rotary C, and the material axis U.
QString SmallMachine(const QString& variables, const QString& joints)
{
    return QStringLiteral("<machine type=\"AFP\" roller-radius=\"25\" tow-width=\"3.175\" add-distance=\"40\"\n"
                          "         add-pinch=\"0\" cut-distance=\"60\" head-travel=\"80\" material-axis=\"U\">\n"
                          "    <mask numTows=\"8\">FF</mask>\n")
        + variables + joints + QStringLiteral("</machine>\n");
}

const QString SmallVariables =
    QStringLiteral("    <variables>\n"
                   "        <variable name=\"X\" minimum=\"0\" maximum=\"5000\" max-speed=\"30\" max-accel=\"1\"/>\n"
                   "        <variable name=\"C\" type=\"rotary\" minimum=\"-90\" maximum=\"90\" max-speed=\"600\" "
                   "max-accel=\"90\"/>\n"
                   "        <variable name=\"U\" max-speed=\"30\" max-accel=\"1\"/>\n"
                   "    </variables>\n");

QString SmallJoints(const QString& cAttributes)
{
    return QStringLiteral("    <joints>\n"
                          "        <joint name=\"X\" type=\"translation\" vector=\"1,0,0\" variables=\"X\"/>\n"
                          "        <joint name=\"C\" type=\"rotation\" vector=\"0,0,1\" pivot=\"0,0,0\" variables=\"C\" ")
        + cAttributes + QStringLiteral("/>\n    </joints>\n");
}

const QString SmallJointsUnderX = SmallJoints(QStringLiteral("parent=\"X\""));

class ZELKinToolMachineExample : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), GetExampleMachinePath(), QStringLiteral("--json")});
        EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
        machine = new QJsonObject(ParseObject(run.standardOutput));
    }

    static void TearDownTestSuite()
    {
        delete machine;
        machine = nullptr;
    }

    static QJsonObject GetVariable(const QString& name)
    {
        return FindByName(machine->value(QStringLiteral("variables")).toArray(), name);
    }

    static QJsonObject GetJoint(const QString& name)
    {
        return FindByName(machine->value(QStringLiteral("joints")).toArray(), name);
    }

    static ::testing::AssertionResult HasLimits(const QString& name, double minimum, double maximum,
                                                double maxVelocity, double maxAcceleration)
    {
        const QJsonObject variable = GetVariable(name);
        for (const auto& [field, expected] :
             {std::pair{"minimum", minimum}, std::pair{"maximum", maximum}, std::pair{"maxVelocity", maxVelocity},
              std::pair{"maxAcceleration", maxAcceleration}}) {
            // Relative, since the values run from a few radians to tens of metres.
            const double actual = variable.value(QLatin1String(field)).toDouble();
            ::testing::AssertionResult same =
                ZELTest::SameDouble(expected, actual, ZELTest::kTight * std::max(1.0, std::abs(expected)));
            if (!same)
                return same << " for " << field << " of " << name.toStdString();
        }
        return ::testing::AssertionSuccess();
    }

    static inline QJsonObject* machine = nullptr;
};

} // namespace

TEST_F(ZELKinToolMachineExample, LoadsWithoutAnyDiagnostic)
{
    for (const QStringList& arguments : {QStringList{QStringLiteral("machine"), GetExampleMachinePath()},
                                         QStringList{QStringLiteral("machine"), GetExampleMachinePath(),
                                                     QStringLiteral("--json")}}) {
        const ZELKinToolRun run = RunZelkin(arguments);
        EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.standardError, QString());
        EXPECT_FALSE(run.standardOutput.isEmpty());
    }
}

TEST_F(ZELKinToolMachineExample, SolverAndNcSettings)
{
    EXPECT_EQ(machine->value(QStringLiteral("label")), QJsonValue(QString()));
    EXPECT_EQ(machine->value(QStringLiteral("ncFormat")), QJsonValue(QStringLiteral("AFPGCode")));
    EXPECT_EQ(machine->value(QStringLiteral("ncConfig")), QJsonValue(QString()));
    EXPECT_EQ(machine->value(QStringLiteral("solver")), QJsonValue(QStringLiteral("RBR")));
    EXPECT_EQ(machine->value(QStringLiteral("solverConfig")),
              QJsonValue(QStringLiteral("first-roll-reference: 0,1,0; bend-reference: 0,0,-1; "
                                        "second-roll-reference: 1,0,0; tip-point: 0,0,-330")));
}

TEST_F(ZELKinToolMachineExample, HeadValuesInMillimetres)
{
    const QJsonObject mask = machine->value(QStringLiteral("maximumMask")).toObject();
    EXPECT_EQ(mask.value(QStringLiteral("numTows")), QJsonValue(16));
    EXPECT_EQ(mask.value(QStringLiteral("hex")), QJsonValue(QStringLiteral("FFFF")));
    EXPECT_TRUE(ZELTest::SameDouble(30.0, machine->value(QStringLiteral("rollerRadius")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, machine->value(QStringLiteral("towWidth")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, machine->value(QStringLiteral("addDistance")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(12.7, machine->value(QStringLiteral("pinchDistance")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(76.2, machine->value(QStringLiteral("cutDistance")).toDouble(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(101.6, machine->value(QStringLiteral("headTravel")).toDouble(), ZELTest::kTight));
    EXPECT_EQ(machine->value(QStringLiteral("materialVariable")), QJsonValue(QStringLiteral("U")));
}

TEST_F(ZELKinToolMachineExample, VariablesInDescriptionOrderWithTheirTypes)
{
    QStringList names;
    QStringList types;
    for (const QJsonValue& variable : machine->value(QStringLiteral("variables")).toArray()) {
        names.append(variable.toObject().value(QStringLiteral("name")).toString());
        types.append(variable.toObject().value(QStringLiteral("type")).toString());
    }
    EXPECT_EQ(names, QStringList({"X", "Y", "Z", "C", "A", "C1", "U"}));
    EXPECT_EQ(types, QStringList({"linear", "linear", "linear", "rotary", "rotary", "rotary", "linear"}));
}

TEST_F(ZELKinToolMachineExample, LinearVariablesInMillimetresAndSeconds)
{
    EXPECT_TRUE(HasLimits(QStringLiteral("X"), 0.0, 24384.0, LinearSpeed(40.0), LinearAcceleration(2.0)));
    EXPECT_TRUE(HasLimits(QStringLiteral("Y"), 1150.0, 8000.0, LinearSpeed(40.0), LinearAcceleration(2.0)));
    EXPECT_TRUE(HasLimits(QStringLiteral("Z"), -3000.0, 0.0, LinearSpeed(20.0), LinearAcceleration(3.0)));
}

TEST_F(ZELKinToolMachineExample, RotaryVariablesInRadiansAndSeconds)
{
    EXPECT_TRUE(HasLimits(QStringLiteral("C"), Angle(-200.5), Angle(200.5), RotarySpeed(7200.0), RotaryAcceleration(720.0)));
    EXPECT_TRUE(HasLimits(QStringLiteral("A"), Angle(-95.0), Angle(95.0), RotarySpeed(5400.0), RotaryAcceleration(360.0)));
    EXPECT_TRUE(HasLimits(QStringLiteral("C1"), Angle(-185.5), Angle(185.5), RotarySpeed(7200.0), RotaryAcceleration(720.0)));
}

TEST_F(ZELKinToolMachineExample, MaterialAxisHasNoLimitsWrittenAsNull)
{
    const QJsonObject u = GetVariable(QStringLiteral("U"));
    EXPECT_TRUE(u.value(QStringLiteral("minimum")).isNull());
    EXPECT_TRUE(u.value(QStringLiteral("maximum")).isNull());
    EXPECT_TRUE(ZELTest::SameDouble(LinearSpeed(60.0), u.value(QStringLiteral("maxVelocity")).toDouble(), 1e-9));
    EXPECT_TRUE(ZELTest::SameDouble(LinearAcceleration(5.0), u.value(QStringLiteral("maxAcceleration")).toDouble(), 1e-9));
}

TEST_F(ZELKinToolMachineExample, JointTreeIsOneChainFromX)
{
    EXPECT_EQ(ToStrings(machine->value(QStringLiteral("rootJoints"))), QStringList({"X"}));
    const QStringList chain{"X", "Y", "Z", "C", "A", "C1"};
    for (qsizetype i = 0; i < chain.size(); ++i) {
        const QJsonObject joint = GetJoint(chain.at(i));
        const QJsonValue parent = joint.value(QStringLiteral("parent"));
        if (i == 0)
            EXPECT_TRUE(parent.isNull());
        else
            EXPECT_EQ(parent, QJsonValue(chain.at(i - 1))) << chain.at(i).toStdString();
        const QStringList children = i + 1 < chain.size() ? QStringList{chain.at(i + 1)} : QStringList{};
        EXPECT_EQ(ToStrings(joint.value(QStringLiteral("children"))), children) << chain.at(i).toStdString();
        EXPECT_EQ(ToStrings(joint.value(QStringLiteral("variables"))), QStringList{chain.at(i)});
    }
}

TEST_F(ZELKinToolMachineExample, GantryJointsAreHighPriorityTranslations)
{
    const std::vector<std::tuple<QString, double, double, double>> gantry{
        {QStringLiteral("X"), 1.0, 0.0, 0.0}, {QStringLiteral("Y"), 0.0, 1.0, 0.0}, {QStringLiteral("Z"), 0.0, 0.0, 1.0}};
    for (const auto& [name, x, y, z] : gantry) {
        const QJsonObject joint = GetJoint(name);
        EXPECT_EQ(joint.value(QStringLiteral("type")), QJsonValue(QStringLiteral("translation"))) << name.toStdString();
        EXPECT_EQ(joint.value(QStringLiteral("priority")), QJsonValue(QStringLiteral("high"))) << name.toStdString();
        EXPECT_TRUE(IsTriple(joint.value(QStringLiteral("vector")), x, y, z)) << name.toStdString();
        EXPECT_FALSE(joint.contains(QStringLiteral("pivot"))) << name.toStdString();
    }
}

TEST_F(ZELKinToolMachineExample, WristJointsAreMediumPriorityRotariesWithPivots)
{
    const QJsonObject c = GetJoint(QStringLiteral("C"));
    EXPECT_EQ(c.value(QStringLiteral("type")), QJsonValue(QStringLiteral("rotary")));
    EXPECT_EQ(c.value(QStringLiteral("priority")), QJsonValue(QStringLiteral("medium")));
    EXPECT_TRUE(IsTriple(c.value(QStringLiteral("vector")), 1.0, 0.0, 0.0));
    EXPECT_TRUE(IsTriple(c.value(QStringLiteral("pivot")), 0.0, 0.0, 0.0));

    const QJsonObject a = GetJoint(QStringLiteral("A"));
    EXPECT_EQ(a.value(QStringLiteral("type")), QJsonValue(QStringLiteral("rotary")));
    EXPECT_EQ(a.value(QStringLiteral("priority")), QJsonValue(QStringLiteral("medium")));
    EXPECT_TRUE(IsTriple(a.value(QStringLiteral("vector")), 0.0, 1.0, 0.0));
    EXPECT_TRUE(IsTriple(a.value(QStringLiteral("pivot")), 0.0, 0.0, -150.0));

    const QJsonObject c1 = GetJoint(QStringLiteral("C1"));
    EXPECT_EQ(c1.value(QStringLiteral("type")), QJsonValue(QStringLiteral("rotary")));
    EXPECT_EQ(c1.value(QStringLiteral("priority")), QJsonValue(QStringLiteral("medium")));
    EXPECT_TRUE(IsTriple(c1.value(QStringLiteral("vector")), 0.0, 0.0, 1.0));
    EXPECT_TRUE(IsTriple(c1.value(QStringLiteral("pivot")), 0.0, 0.0, -300.0));
}

TEST(ZELKinToolMachineSummary, ShowsSolverAndNcSettings)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), GetExampleMachinePath()});
    EXPECT_EQ(GetSectionRows(run.standardOutput, QStringLiteral("AFP machine")),
              std::vector<std::string>({
                  "  Label: | (none)",
                  "  Solver: | RBR",
                  "  Solver config: | first-roll-reference: 0,1,0; bend-reference: 0,0,-1; "
                  "second-roll-reference: 1,0,0; tip-point: 0,0,-330",
                  "  NC format: | AFPGCode",
                  "  NC config: | (none)",
              }));
}

TEST(ZELKinToolMachineSummary, ShowsHeadValuesInMillimetres)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), GetExampleMachinePath()});
    EXPECT_EQ(GetSectionRows(run.standardOutput, QStringLiteral("Head")),
              std::vector<std::string>({
                  "  Maximum mask: | 16 tows, FFFF",
                  "  Roller radius: | 30 mm",
                  "  Tow width: | 6.35 mm",
                  "  Add distance: | 50.8 mm",
                  "  Add pinch: | 12.7 mm",
                  "  Cut distance: | 76.2 mm",
                  "  Head travel: | 101.6 mm",
                  "  Material variable: | U",
              }));
}

TEST(ZELKinToolMachineSummary, ShowsVariablesInTheUnitsOfTheDescription)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), GetExampleMachinePath()});
    EXPECT_EQ(GetSectionRows(run.standardOutput, QStringLiteral("Variables (7)")),
              std::vector<std::string>({
                  "  Name | Type | Minimum | Maximum | Max speed | Max acceleration",
                  "  X | linear | 0 mm | 24384 mm | 40 m/min | 2 m/s^2",
                  "  Y | linear | 1150 mm | 8000 mm | 40 m/min | 2 m/s^2",
                  "  Z | linear | -3000 mm | 0 mm | 20 m/min | 3 m/s^2",
                  "  C | rotary | -200.5 deg | 200.5 deg | 7200 deg/min | 720 deg/s^2",
                  "  A | rotary | -95 deg | 95 deg | 5400 deg/min | 360 deg/s^2",
                  "  C1 | rotary | -185.5 deg | 185.5 deg | 7200 deg/min | 720 deg/s^2",
                  "  U | linear | none | none | 60 m/min | 5 m/s^2",
              }));
}

TEST(ZELKinToolMachineSummary, ShowsEachJointIndentedUnderItsParent)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), GetExampleMachinePath()});
    EXPECT_EQ(GetSectionRows(run.standardOutput, QStringLiteral("Joints (6)")),
              std::vector<std::string>({
                  "  Name | Type | Variable | Priority | Vector | Pivot",
                  "  X | translation | X | high | (1, 0, 0)",
                  "    Y | translation | Y | high | (0, 1, 0)",
                  "      Z | translation | Z | high | (0, 0, 1)",
                  "        C | rotary | C | medium | (1, 0, 0) | (0, 0, 0)",
                  "          A | rotary | A | medium | (0, 1, 0) | (0, 0, -150)",
                  "            C1 | rotary | C1 | medium | (0, 0, 1) | (0, 0, -300)",
              }));
}

TEST(ZELKinToolMachineSummary, SecondRootJointStartsAgainAtTheLeft)
{
    const QTemporaryDir directory;
    const QString joints =
        QStringLiteral("    <joints>\n"
                       "        <joint name=\"X\" type=\"translation\" vector=\"1,0,0\" variables=\"X\"/>\n"
                       "        <joint name=\"C\" type=\"rotation\" vector=\"0,0,1\" pivot=\"0,0,0\" variables=\"C\" "
                       "parent=\"X\" priority=\"low\"/>\n"
                       "        <joint name=\"U\" type=\"translation\" vector=\"0,1,0\" variables=\"U\"/>\n"
                       "    </joints>\n");
    const QString path = WriteFile(directory, QStringLiteral("two-roots.xml"), SmallMachine(SmallVariables, joints));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), path});
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(GetSectionRows(run.standardOutput, QStringLiteral("Joints (3)")),
              std::vector<std::string>({
                  "  Name | Type | Variable | Priority | Vector | Pivot",
                  "  X | translation | X | medium | (1, 0, 0)",
                  "    C | rotary | C | low | (0, 0, 1) | (0, 0, 0)",
                  "  U | translation | U | medium | (0, 1, 0)",
              }));

    const ZELKinToolRun json = RunZelkin({QStringLiteral("machine"), path, QStringLiteral("--json")});
    EXPECT_EQ(ToStrings(ParseObject(json.standardOutput).value(QStringLiteral("rootJoints"))), QStringList({"X", "U"}));
}

TEST(ZELKinToolMachineSummary, MaterialAxisThatNamesNoVariableIsPointedOut)
{
    const QTemporaryDir directory;
    const QString description = SmallMachine(SmallVariables, SmallJointsUnderX)
                                    .replace(QStringLiteral("material-axis=\"U\""), QStringLiteral("material-axis=\"W\""));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), WriteFile(directory, QStringLiteral("w.xml"), description)});
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    const std::vector<std::string> head = GetSectionRows(run.standardOutput, QStringLiteral("Head"));
    ASSERT_FALSE(head.empty());
    EXPECT_EQ(head.back(), "  Material variable: | W (no variable of that name)");
}

TEST(ZELKinToolMachineJson, InfiniteLimitIsNull)
{
    const QTemporaryDir directory;
    const QString variables =
        QStringLiteral("    <variables>\n"
                       "        <variable name=\"X\" minimum=\"-inf\" maximum=\"5000\" max-speed=\"30\" max-accel=\"1\"/>\n"
                       "        <variable name=\"C\" type=\"rotary\" max-speed=\"600\" max-accel=\"90\"/>\n"
                       "        <variable name=\"U\" max-speed=\"30\" max-accel=\"1\"/>\n"
                       "    </variables>\n");
    const QString path = WriteFile(directory, QStringLiteral("endless.xml"), SmallMachine(variables, SmallJointsUnderX));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), path, QStringLiteral("--json")});
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    const QJsonArray json = ParseObject(run.standardOutput).value(QStringLiteral("variables")).toArray();
    const QJsonObject x = FindByName(json, QStringLiteral("X"));
    EXPECT_TRUE(x.value(QStringLiteral("minimum")).isNull());
    EXPECT_TRUE(ZELTest::SameDouble(5000.0, x.value(QStringLiteral("maximum")).toDouble(), ZELTest::kTight));
    const QJsonObject c = FindByName(json, QStringLiteral("C"));
    EXPECT_TRUE(c.value(QStringLiteral("minimum")).isNull());
    EXPECT_TRUE(c.value(QStringLiteral("maximum")).isNull());
    EXPECT_TRUE(ZELTest::SameDouble(RotarySpeed(600.0), c.value(QStringLiteral("maxVelocity")).toDouble(), ZELTest::kTight));
}

TEST(ZELKinToolMachineDiagnostics, InvalidPriorityWarnsAndTheCommandGoesOn)
{
    const QTemporaryDir directory;
    const QString path = WriteFile(directory, QStringLiteral("urgent.xml"),
                                   SmallMachine(SmallVariables, SmallJoints(QStringLiteral("parent=\"X\" priority=\"urgent\""))));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("machine"), path, QStringLiteral("--json")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: warning: joint C specifies an invalid priority of urgent. "
                                          "Using 'medium' instead.")}));
    // The warning stays off stdout, which still holds the whole machine.
    const QJsonObject c = FindByName(ParseObject(run.standardOutput).value(QStringLiteral("joints")).toArray(),
                                     QStringLiteral("C"));
    EXPECT_EQ(c.value(QStringLiteral("priority")), QJsonValue(QStringLiteral("medium")));
}

namespace {

// A failed command prints nothing on stdout and exactly one error line, and
// ends with status 1 of its own accord: no abort, no core dump.
void ExpectFailure(const QStringList& arguments, const QString& errorLine)
{
    const ZELKinToolRun run = RunZelkin(arguments);
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(), QStringList({errorLine}));
}

void ExpectDescriptionFailure(const QString& description, const QString& errorLine)
{
    const QTemporaryDir directory;
    const QString path = WriteFile(directory, QStringLiteral("broken.xml"), description);
    ExpectFailure({QStringLiteral("machine"), path}, errorLine);
    ExpectFailure({QStringLiteral("machine"), path, QStringLiteral("--json")}, errorLine);
}

} // namespace

TEST(ZELKinToolMachineDiagnostics, MissingJointsElementIsFatalButEndsWithOneErrorLine)
{
    ExpectDescriptionFailure(SmallMachine(SmallVariables, QString()),
                             QStringLiteral("zelkin: error: Machine does not specify the <joints> element"));
}

TEST(ZELKinToolMachineDiagnostics, VariableWithoutMaxAccelIsFatalButEndsWithOneErrorLine)
{
    const QString variables = QStringLiteral("    <variables>\n"
                                             "        <variable name=\"X\" max-speed=\"30\"/>\n"
                                             "    </variables>\n");
    ExpectDescriptionFailure(SmallMachine(variables, SmallJointsUnderX),
                             QStringLiteral("zelkin: error: No 'max-accel' attribute specified on machine variable."));
}

TEST(ZELKinToolMachineDiagnostics, UnknownParentIsAnError)
{
    ExpectDescriptionFailure(SmallMachine(SmallVariables, SmallJoints(QStringLiteral("parent=\"Q\""))),
                             QStringLiteral("zelkin: error: Could not find parent 'parentLabel' for joint 'C'"));
}

TEST(ZELKinToolMachineDiagnostics, HeadValueOutOfRangeIsAnError)
{
    ExpectDescriptionFailure(SmallMachine(SmallVariables, SmallJointsUnderX)
                                 .replace(QStringLiteral("tow-width=\"3.175\""), QStringLiteral("tow-width=\"0\"")),
                             QStringLiteral("zelkin: error: tow width must be greater than zero"));
}

TEST(ZELKinToolMachineDiagnostics, RootOfAnotherTypeIsNotAnAfpMachine)
{
    ExpectDescriptionFailure(SmallMachine(SmallVariables, SmallJointsUnderX)
                                 .replace(QStringLiteral("type=\"AFP\""), QStringLiteral("type=\"CNC\"")),
                             QStringLiteral("zelkin: error: not an AFP machine description"));
}

TEST(ZELKinToolMachineDiagnostics, MalformedXmlNamesFileLineAndColumn)
{
    const QTemporaryDir directory;
    // The <mask> element is never closed: the parser stops at the end of the
    // closing tag on line 3, after its ten characters.
    const QString path = WriteFile(directory, QStringLiteral("unclosed.xml"),
                                   QStringLiteral("<machine type=\"AFP\">\n"
                                                  "    <mask numTows=\"8\">FF\n"
                                                  "</machine>\n"));
    ExpectFailure({QStringLiteral("machine"), path},
                  QStringLiteral("zelkin: error: %1:3:10: Opening and ending tag mismatch.").arg(path));
}

TEST(ZELKinToolMachineDiagnostics, EmptyFileIsMalformedXml)
{
    const QTemporaryDir directory;
    const QString path = WriteFile(directory, QStringLiteral("empty.xml"), QString());
    ExpectFailure({QStringLiteral("machine"), path},
                  QStringLiteral("zelkin: error: %1:1:0: Premature end of document.").arg(path));
}

TEST(ZELKinToolMachineDiagnostics, MissingFileIsAnErrorNamingTheFile)
{
    const QTemporaryDir directory;
    const QString path = QDir(directory.path()).filePath(QStringLiteral("no-such-machine.xml"));
    ExpectFailure({QStringLiteral("machine"), path},
                  QStringLiteral("zelkin: error: cannot read %1: No such file or directory").arg(path));
}
