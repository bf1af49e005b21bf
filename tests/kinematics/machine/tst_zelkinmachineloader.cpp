#include <zelkinmachineloader.h>

#include <zelkintestaccess.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QMap>

#include <cstring>
#include <functional>
#include <ostream>

using ZELTest::kNaN;

namespace {

constexpr double kPi = 3.14159265358979323846;

// Builds whatever `xml` describes in `container`.
ZELKinMachine* Load(ZELGeoContainer& container, const QByteArray& xml)
{
    QBuffer buffer;
    buffer.setData(xml);
    buffer.open(QIODevice::ReadOnly);
    return ZELKinMachineLoader(&container).LoadFromXML(&buffer);
}

// Records every Qt log message while it lives and puts the previous handler
// back when it goes.
class MessageLog
{
public:
    struct Entry
    {
        QtMsgType type;
        QString text;
    };

    MessageLog()
        : m_previous(qInstallMessageHandler(&MessageLog::Record))
    {
        s_active = this;
    }

    ~MessageLog()
    {
        s_active = nullptr;
        qInstallMessageHandler(m_previous);
    }

    QList<Entry> entries;

private:
    static void Record(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        if (s_active)
            s_active->entries.append(Entry{type, text});
    }

    static inline MessageLog* s_active = nullptr;
    const QtMessageHandler m_previous;
};

::testing::AssertionResult SameVector(const ZELMathVector& expected, const ZELMathVector& actual, double tolerance)
{
    if (actual.IsEqual(expected, tolerance))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "expected (" << expected.GetX() << ", " << expected.GetY() << ", "
                                         << expected.GetZ() << "), got (" << actual.GetX() << ", " << actual.GetY()
                                         << ", " << actual.GetZ() << ")";
}

::testing::AssertionResult SamePoint(const ZELMathPoint& expected, const ZELMathPoint& actual, double tolerance)
{
    return SameVector(expected - ZELMathPoint(), actual - ZELMathPoint(), tolerance);
}

// A valid AFP description whose parts the tests replace one at a time.
struct Description
{
    QMap<QString, QString> root{
        {QStringLiteral("type"), QStringLiteral("AFP")},
        {QStringLiteral("ncformat"), QStringLiteral("AFPGCode")},
        {QStringLiteral("head-travel"), QStringLiteral("101.6")},
        {QStringLiteral("cut-distance"), QStringLiteral("76.2")},
        {QStringLiteral("add-pinch"), QStringLiteral("12.7")},
        {QStringLiteral("add-distance"), QStringLiteral("50.8")},
        {QStringLiteral("tow-width"), QStringLiteral("6.35")},
        {QStringLiteral("material-axis"), QStringLiteral("U")},
        {QStringLiteral("roller-radius"), QStringLiteral("30")},
        {QStringLiteral("solver"), QStringLiteral("RBR")},
        {QStringLiteral("solver-config"), QStringLiteral("tip-point: 0,0,-330")},
        {QStringLiteral("nc-config"), QStringLiteral("first-ply: 101")},
    };
    QString mask = QStringLiteral(R"(<mask numTows="16">FFFF</mask>)");
    QString variables;
    QString joints;

    QByteArray ToXml() const
    {
        QString xml = QStringLiteral("<machine");
        for (auto it = root.cbegin(); it != root.cend(); ++it)
            xml += QStringLiteral(" %1=\"%2\"").arg(it.key(), it.value());
        xml += QStringLiteral(">") + mask + QStringLiteral("<variables>") + variables
            + QStringLiteral("</variables><joints>") + joints + QStringLiteral("</joints></machine>");
        return xml.toUtf8();
    }
};

// The name generator shared by every table.
template <typename Case>
std::string CaseName(const ::testing::TestParamInfo<Case>& info)
{
    return info.param.name;
}

// A five-axis gantry: X -> Y -> Z carries the wrist C -> A and the material
// feed, which is mounted on Z after C.
constexpr const char* kGantry = R"(<?xml version="1.0"?>
<machine type="AFP" ncformat="AFPGCode" nc-config="first-ply: 101; units: inch"
         solver="RBR" solver-config="tip-point: 0, 0, -330; wrist: C-A"
         head-travel="101.6" cut-distance="76.2" add-pinch="12.7" add-distance="50.8"
         tow-width="6.35" material-axis="U" roller-radius="30">
  <mask numTows="16">00FF</mask>
  <variables>
    <variable name="X" minimum="-100" maximum="12000" max-speed="60" max-accel="2"/>
    <variable name="Y" minimum="0" maximum="4000" max-speed="30" max-accel="1.5"/>
    <variable name="Z" minimum="-1500" maximum="0" max-speed="24" max-accel="1"/>
    <variable name="C" type="rotary" max-speed="3600" max-accel="180"/>
    <variable name="A" type="rotary" minimum="-90" maximum="90" max-speed="600" max-accel="90"/>
    <variable name="U" max-speed="60" max-accel="2"/>
  </variables>
  <joints>
    <joint name="X" type="translation" vector="1,0,0" variables="X" priority="high"/>
    <joint name="Y" type="translation" vector="0,2,0" variables="Y" parent="X" priority="low"/>
    <joint name="Z" type="translation" vector="0,0,-1" variables="Z" parent="Y"/>
    <joint name="C" type="rotation" vector="0,0,3" pivot="0,0,-330" variables="C" parent="Z" priority="medium"/>
    <joint name="A" type="rotation" vector="1,0,1" pivot="10,-20.5,-400" variables="A" parent="C"/>
    <joint name="Feed" type="translation" vector="0,0.5,0" variables="U" parent="Z"/>
  </joints>
</machine>
)";

class ZELKinMachineLoaderGantry : public ::testing::Test
{
protected:
    void SetUp() override
    {
        MessageLog log;
        machine = qobject_cast<ZELKinAFPMachine*>(Load(container, kGantry));
        messages = log.entries;
        ASSERT_NE(machine, nullptr);
        ASSERT_EQ(machine->GetNumVariables(), 6);
        ASSERT_EQ(machine->GetNumJoints(), 6);
    }

    ZELKinVariable* Variable(const char* name) const { return machine->GetVariable(QString::fromLatin1(name)); }

    ZELKinJoint* Joint(int index) const { return machine->GetJoint(index); }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine = nullptr;
    QList<MessageLog::Entry> messages;
};

} // namespace

TEST_F(ZELKinMachineLoaderGantry, WellFormedDescriptionLogsNothing)
{
    EXPECT_TRUE(messages.isEmpty()) << messages.first().text.toStdString();
}

TEST_F(ZELKinMachineLoaderGantry, MachineHasAnEmptyLabelAndTheHeadParametersAsWritten)
{
    EXPECT_TRUE(machine->GetLabel().isEmpty());
    EXPECT_EQ(machine->GetContainer(), &container);
    EXPECT_TRUE(ZELTest::SameDouble(30.0, machine->GetRollerRadius(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, machine->GetTowWidth(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, machine->GetAddDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(12.7, machine->GetPinchDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(76.2, machine->GetCutDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(101.6, machine->GetHeadTravel(), ZELTest::kExact));
    EXPECT_EQ(machine->GetMaterialVariableName(), QStringLiteral("U"));
    EXPECT_EQ(machine->GetMaterialVariable(), Variable("U"));
}

TEST_F(ZELKinMachineLoaderGantry, MaskHasTheTowCountOfNumTowsAndTheTowsOfItsText)
{
    ZELCompTowMask expected(16, false);
    for (int tow = 1; tow <= 8; ++tow)
        expected.SetTowEnabled(tow, true);
    EXPECT_EQ(machine->GetMaximumMask(), expected);
    EXPECT_EQ(machine->GetMaximumMask().GetHexadecimalString(), QStringLiteral("00FF"));
}

TEST_F(ZELKinMachineLoaderGantry, SolverAndNcSettingsAreKeptAsWritten)
{
    EXPECT_EQ(machine->GetSolverName(), QStringLiteral("RBR"));
    EXPECT_EQ(machine->GetSolverConfig(), QStringLiteral("tip-point: 0, 0, -330; wrist: C-A"));
    EXPECT_EQ(machine->GetNCCodeFormat(), QStringLiteral("AFPGCode"));
    EXPECT_EQ(machine->GetNCCodeConfig(), QStringLiteral("first-ply: 101; units: inch"));
}

TEST_F(ZELKinMachineLoaderGantry, VariablesKeepDocumentOrderAndBelongToTheMachine)
{
    QStringList labels;
    for (const ZELKinVariable* variable : machine->GetVariables()) {
        ASSERT_NE(variable, nullptr);
        labels.append(variable->GetLabel());
        EXPECT_EQ(variable->GetMachine(), machine);
    }
    EXPECT_EQ(labels, QStringList({"X", "Y", "Z", "C", "A", "U"}));
    EXPECT_EQ(Variable("X")->GetType(), ZELKinVariable::Linear);
    EXPECT_EQ(Variable("C")->GetType(), ZELKinVariable::Rotary);
    EXPECT_TRUE(Variable("C")->IsInfinite());
    EXPECT_FALSE(Variable("A")->IsInfinite());
    EXPECT_TRUE(ZELTest::SameDouble(1.5 * 1000.0, Variable("Y")->GetMaxAcceleration(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(180.0 * kPi / 180.0, Variable("C")->GetMaxAcceleration(), ZELTest::kTight));
}

TEST_F(ZELKinMachineLoaderGantry, JointsKeepDocumentOrderKindAndVariable)
{
    const QStringList labels{"X", "Y", "Z", "C", "A", "Feed"};
    const QStringList variables{"X", "Y", "Z", "C", "A", "U"};
    for (int i = 0; i < labels.size(); ++i) {
        const ZELKinJoint* joint = Joint(i);
        ASSERT_NE(joint, nullptr);
        EXPECT_EQ(joint->GetLabel(), labels.at(i));
        EXPECT_EQ(joint->GetMachine(), machine);
        EXPECT_EQ(joint->GetDegreesOfFreedom(), 1);
        EXPECT_EQ(joint->GetVariable(0), machine->GetVariable(variables.at(i)));
    }
    for (int i : {0, 1, 2, 5})
        EXPECT_NE(qobject_cast<ZELKinTranslationJoint*>(Joint(i)), nullptr) << labels.at(i).toStdString();
    for (int i : {3, 4})
        EXPECT_NE(qobject_cast<ZELKinRotaryJoint*>(Joint(i)), nullptr) << labels.at(i).toStdString();
}

TEST_F(ZELKinMachineLoaderGantry, ParentsAndChildrenFollowTheParentAttribute)
{
    ZELKinJoint *x = Joint(0), *y = Joint(1), *z = Joint(2), *c = Joint(3), *a = Joint(4), *feed = Joint(5);
    EXPECT_EQ(x->GetParent(), nullptr);
    EXPECT_EQ(y->GetParent(), x);
    EXPECT_EQ(z->GetParent(), y);
    EXPECT_EQ(c->GetParent(), z);
    EXPECT_EQ(a->GetParent(), c);
    EXPECT_EQ(feed->GetParent(), z);
    EXPECT_EQ(x->GetChildJoints(), QList<ZELKinJoint*>({y}));
    EXPECT_EQ(z->GetChildJoints(), QList<ZELKinJoint*>({c, feed}));
    EXPECT_TRUE(a->GetChildJoints().isEmpty());
    EXPECT_EQ(machine->GetRootJoints(), QList<ZELKinJoint*>({x}));
}

TEST_F(ZELKinMachineLoaderGantry, PrioritiesAreReadAndDefaultToMedium)
{
    EXPECT_EQ(Joint(0)->GetPriority(), ZELKinJoint::High);
    EXPECT_EQ(Joint(1)->GetPriority(), ZELKinJoint::Low);
    EXPECT_EQ(Joint(2)->GetPriority(), ZELKinJoint::Medium);
    EXPECT_EQ(Joint(3)->GetPriority(), ZELKinJoint::Medium);
}

TEST_F(ZELKinMachineLoaderGantry, VectorsAndPivotsAreStoredUnnormalised)
{
    const auto* y = qobject_cast<ZELKinTranslationJoint*>(Joint(1));
    const auto* c = qobject_cast<ZELKinRotaryJoint*>(Joint(3));
    const auto* a = qobject_cast<ZELKinRotaryJoint*>(Joint(4));
    const auto* feed = qobject_cast<ZELKinTranslationJoint*>(Joint(5));
    ASSERT_TRUE(y && c && a && feed);
    EXPECT_TRUE(SameVector(ZELMathVector(0, 2, 0), y->GetVector(), ZELTest::kExact));
    EXPECT_TRUE(SameVector(ZELMathVector(0, 0, 3), c->GetVector(), ZELTest::kExact));
    EXPECT_TRUE(SamePoint(ZELMathPoint(0, 0, -330), c->GetPivot(), ZELTest::kExact));
    EXPECT_TRUE(SameVector(ZELMathVector(1, 0, 1), a->GetVector(), ZELTest::kExact));
    EXPECT_TRUE(SamePoint(ZELMathPoint(10, -20.5, -400), a->GetPivot(), ZELTest::kExact));
    EXPECT_TRUE(SameVector(ZELMathVector(0, 0.5, 0), feed->GetVector(), ZELTest::kExact));
}

TEST_F(ZELKinMachineLoaderGantry, ContainerHoldsMachineThenVariablesThenJointsAllInitialised)
{
    QList<ZELGeoGeometry*> expected{machine};
    for (ZELKinVariable* variable : machine->GetVariables())
        expected.append(variable);
    for (ZELKinJoint* joint : machine->GetJoints())
        expected.append(joint);
    EXPECT_EQ(container.GetGeometries(), expected);
    for (const ZELGeoGeometry* geometry : container.GetGeometries())
        EXPECT_TRUE(geometry->IsInitialized()) << geometry->metaObject()->className();
}

// Unit conversions of one variable, from the description's units to the model's.

namespace {

struct VariableCase
{
    const char* name;
    const char* attributes; // of a variable named "V"
    ZELKinVariable::VariableType type;
    double minimum, maximum, maxVelocity, maxAcceleration;
    double tolerance;
};

ZELTEST_PRINT_CASE_BY_NAME(VariableCase);

class ZELKinMachineLoaderVariable : public ::testing::TestWithParam<VariableCase>
{
};

} // namespace

TEST_P(ZELKinMachineLoaderVariable, IsStoredInInternalUnits)
{
    const VariableCase& c = GetParam();
    Description description;
    description.variables = QStringLiteral(R"(<variable name="V" %1/>)").arg(QString::fromLatin1(c.attributes));
    ZELGeoContainer container;
    MessageLog log;
    const ZELKinMachine* machine = Load(container, description.ToXml());
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumVariables(), 1);
    const ZELKinVariable* variable = machine->GetVariable(0);
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(variable->GetLabel(), QStringLiteral("V"));
    EXPECT_EQ(variable->GetType(), c.type);
    EXPECT_TRUE(ZELTest::SameDouble(c.minimum, variable->GetMinimum(), c.tolerance));
    EXPECT_TRUE(ZELTest::SameDouble(c.maximum, variable->GetMaximum(), c.tolerance));
    EXPECT_TRUE(ZELTest::SameDouble(c.maxVelocity, variable->GetMaxVelocity(), c.tolerance));
    EXPECT_TRUE(ZELTest::SameDouble(c.maxAcceleration, variable->GetMaxAcceleration(), c.tolerance));
    EXPECT_TRUE(log.entries.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Units, ZELKinMachineLoaderVariable,
    ::testing::Values(
        VariableCase{"RotaryLimitsFromDegreesToRadians",
                     R"(type="rotary" minimum="-90" maximum="90" max-speed="600" max-accel="90")",
                     ZELKinVariable::Rotary, -kPi / 2.0, kPi / 2.0, 600.0 * kPi / 180.0 / 60.0, kPi / 2.0,
                     ZELTest::kTight},
        VariableCase{"RotaryValuesToTheQuotedDigits",
                     R"(type="rotary" minimum="-90" maximum="90" max-speed="600" max-accel="90")",
                     ZELKinVariable::Rotary, -1.5708, 1.5708, 0.17453, 1.5708, ZELTest::kQuoted},
        VariableCase{"RotarySpeedFromDegreesPerMinuteToRadiansPerSecond",
                     R"(type="rotary" max-speed="10800" max-accel="360")", ZELKinVariable::Rotary, kNaN, kNaN,
                     kPi, 2.0 * kPi, ZELTest::kTight},
        VariableCase{"LinearSpeedFromMetresPerMinuteAndAccelerationFromMetresPerSecondSquared",
                     R"(minimum="-250.5" maximum="1200" max-speed="60" max-accel="2")", ZELKinVariable::Linear,
                     -250.5, 1200.0, 1000.0, 2000.0, ZELTest::kTight},
        VariableCase{"LinearFractionalValues", R"(max-speed="1.5" max-accel="0.25")", ZELKinVariable::Linear, kNaN,
                     kNaN, 25.0, 250.0, ZELTest::kTight},
        VariableCase{"TypeRotaryWithCapitalIsLinear",
                     R"(type="Rotary" minimum="-90" maximum="90" max-speed="60" max-accel="2")",
                     ZELKinVariable::Linear, -90.0, 90.0, 1000.0, 2000.0, ZELTest::kTight},
        VariableCase{"ExplicitLinearType", R"(type="linear" minimum="5" maximum="5" max-speed="6" max-accel="1")",
                     ZELKinVariable::Linear, 5.0, 5.0, 100.0, 1000.0, ZELTest::kTight},
        VariableCase{"UnknownTypeIsLinear", R"(type="angular" max-speed="6" max-accel="1")", ZELKinVariable::Linear,
                     kNaN, kNaN, 100.0, 1000.0, ZELTest::kTight},
        VariableCase{"MissingLimitsStayNaN", R"(type="rotary" max-speed="60" max-accel="1")",
                     ZELKinVariable::Rotary, kNaN, kNaN, kPi / 180.0, kPi / 180.0, ZELTest::kTight},
        VariableCase{"OneLimitAlone", R"(type="rotary" minimum="-180" max-speed="60" max-accel="1")",
                     ZELKinVariable::Rotary, -kPi, kNaN, kPi / 180.0, kPi / 180.0, ZELTest::kTight},
        VariableCase{"NumbersMayHaveSurroundingBlanks",
                     R"(minimum="  -5" maximum="5  " max-speed=" 6 " max-accel=" 1 ")", ZELKinVariable::Linear, -5.0,
                     5.0, 100.0, 1000.0, ZELTest::kTight},
        VariableCase{"ExponentNotation", R"(minimum="-1e3" max-speed="6e1" max-accel="2E0")",
                     ZELKinVariable::Linear, -1000.0, kNaN, 1000.0, 2000.0, ZELTest::kTight},
        VariableCase{"TextThatIsNotANumberReadsAsZero",
                     R"(minimum="low" maximum="high" max-speed="fast" max-accel="")", ZELKinVariable::Linear, 0.0,
                     0.0, 0.0, 0.0, ZELTest::kExact},
        VariableCase{"DecimalCommaIsNotANumber", R"(max-speed="1,5" max-accel="2,0")", ZELKinVariable::Linear, kNaN,
                     kNaN, 0.0, 0.0, ZELTest::kExact}),
    CaseName<VariableCase>);

// Joint priorities and the warning for a word the loader does not know.

namespace {

struct PriorityCase
{
    const char* name;
    const char* attribute; // the priority attribute of joint "X axis", or nothing
    ZELKinJoint::Priority priority;
    const char* warning; // empty when none is expected
};

ZELTEST_PRINT_CASE_BY_NAME(PriorityCase);

class ZELKinMachineLoaderPriority : public ::testing::TestWithParam<PriorityCase>
{
};

} // namespace

TEST_P(ZELKinMachineLoaderPriority, IsReadFromItsWord)
{
    const PriorityCase& c = GetParam();
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>)");
    description.joints = QStringLiteral(R"(<joint name="X axis" type="translation" vector="1,0,0" variables="X" %1/>)")
                             .arg(QString::fromLatin1(c.attribute));
    ZELGeoContainer container;
    MessageLog log;
    const ZELKinMachine* machine = Load(container, description.ToXml());
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumJoints(), 1);
    ASSERT_NE(machine->GetJoint(0), nullptr);
    EXPECT_EQ(machine->GetJoint(0)->GetPriority(), c.priority);

    const QString warning = QString::fromUtf8(c.warning);
    if (warning.isEmpty()) {
        EXPECT_TRUE(log.entries.isEmpty());
    } else {
        ASSERT_EQ(log.entries.size(), 1);
        EXPECT_EQ(log.entries.first().type, QtWarningMsg);
        // Exactly the text: no quotes around the values, no blanks between the items.
        EXPECT_EQ(log.entries.first().text, warning);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Words, ZELKinMachineLoaderPriority,
    ::testing::Values(
        PriorityCase{"High", R"(priority="high")", ZELKinJoint::High, ""},
        PriorityCase{"Medium", R"(priority="medium")", ZELKinJoint::Medium, ""},
        PriorityCase{"Low", R"(priority="low")", ZELKinJoint::Low, ""},
        PriorityCase{"AbsentIsMediumWithoutWarning", "", ZELKinJoint::Medium, ""},
        PriorityCase{"UnknownWordIsMediumWithWarning", R"(priority="urgent")", ZELKinJoint::Medium,
                     "joint X axis specifies an invalid priority of urgent. Using 'medium' instead."},
        PriorityCase{"WordsAreCaseSensitive", R"(priority="High")", ZELKinJoint::Medium,
                     "joint X axis specifies an invalid priority of High. Using 'medium' instead."},
        PriorityCase{"EmptyWordIsMediumWithWarning", R"(priority="")", ZELKinJoint::Medium,
                     "joint X axis specifies an invalid priority of . Using 'medium' instead."}),
    CaseName<PriorityCase>);

// The three numbers of a joint's vector and of its pivot.

namespace {

struct TripleCase
{
    const char* name;
    const char* text;
    double x, y, z;
};

ZELTEST_PRINT_CASE_BY_NAME(TripleCase);

class ZELKinMachineLoaderTriple : public ::testing::TestWithParam<TripleCase>
{
};

} // namespace

TEST_P(ZELKinMachineLoaderTriple, GivesVectorAndPivotAsWritten)
{
    const TripleCase& c = GetParam();
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>
                                              <variable name="C" type="rotary" max-speed="3600" max-accel="180"/>)");
    description.joints = QStringLiteral(R"(<joint name="X" type="translation" vector="%1" variables="X"/>
                                           <joint name="C" type="rotation" vector="0,0,1" pivot="%1" variables="C"/>)")
                             .arg(QString::fromLatin1(c.text));
    ZELGeoContainer container;
    const ZELKinMachine* machine = Load(container, description.ToXml());
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumJoints(), 2);
    const auto* x = qobject_cast<ZELKinTranslationJoint*>(machine->GetJoint(0));
    const auto* rotary = qobject_cast<ZELKinRotaryJoint*>(machine->GetJoint(1));
    ASSERT_TRUE(x && rotary);
    EXPECT_TRUE(SameVector(ZELMathVector(c.x, c.y, c.z), x->GetVector(), ZELTest::kExact));
    EXPECT_TRUE(SamePoint(ZELMathPoint(c.x, c.y, c.z), rotary->GetPivot(), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(Texts, ZELKinMachineLoaderTriple,
                         ::testing::Values(TripleCase{"ThreeNumbers", "0,0,1", 0, 0, 1},
                                           TripleCase{"NotNormalised", "3,4,12", 3, 4, 12},
                                           TripleCase{"PartsBeyondTheThirdAreIgnored", "0,0,1,5", 0, 0, 1},
                                           TripleCase{"EmptyMiddlePartReadsAsZero", "0,,1", 0, 0, 1},
                                           TripleCase{"BlanksAroundTheNumbers", " 1 , -2.5 , 1e3 ", 1, -2.5, 1000},
                                           TripleCase{"TextThatIsNotANumberReadsAsZero", "x,1,y", 0, 1, 0}),
                         CaseName<TripleCase>);

// Head parameters that the machine refuses; nothing else is read then.

namespace {

struct HeadCase
{
    const char* name;
    std::function<void(Description&)> change;
    const char* message;
};

ZELTEST_PRINT_CASE_BY_NAME(HeadCase);

class ZELKinMachineLoaderHead : public ::testing::TestWithParam<HeadCase>
{
};

void Drop(Description& description, const char* attribute)
{
    description.root.remove(QString::fromLatin1(attribute));
}

void Set(Description& description, const char* attribute, const char* value)
{
    description.root.insert(QString::fromLatin1(attribute), QString::fromLatin1(value));
}

} // namespace

TEST_P(ZELKinMachineLoaderHead, IsRejectedBeforeAnythingIsCreated)
{
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>)");
    description.joints = QStringLiteral(R"(<joint name="X" type="translation" vector="1,0,0" variables="X"/>)");
    GetParam().change(description);
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(Load(container, description.ToXml()), ZELSysException, GetParam().message);
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Parameters, ZELKinMachineLoaderHead,
    ::testing::Values(
        HeadCase{"MissingRollerRadiusReadsAsZero", [](Description& d) { Drop(d, "roller-radius"); },
                 "roller radius must be greater than zero"},
        HeadCase{"RollerRadiusThatIsNotANumberReadsAsZero", [](Description& d) { Set(d, "roller-radius", "thirty"); },
                 "roller radius must be greater than zero"},
        HeadCase{"MissingMaterialAxis", [](Description& d) { Drop(d, "material-axis"); },
                 "material variable is not defined"},
        HeadCase{"MissingTowWidth", [](Description& d) { Drop(d, "tow-width"); },
                 "tow width must be greater than zero"},
        HeadCase{"MissingAddDistance", [](Description& d) { Drop(d, "add-distance"); },
                 "add distance must be greater than zero"},
        HeadCase{"NegativeAddPinch", [](Description& d) { Set(d, "add-pinch", "-1"); },
                 "add pinch distance must not be negative"},
        HeadCase{"MissingCutDistance", [](Description& d) { Drop(d, "cut-distance"); },
                 "cut distance must be greater than zero"},
        HeadCase{"MissingHeadTravel", [](Description& d) { Drop(d, "head-travel"); },
                 "head travel must be greater than zero"},
        HeadCase{"TowCountBeyondTheWidestHead",
                 [](Description& d) { d.mask = QStringLiteral(R"(<mask numTows="65">FFFF</mask>)"); },
                 "maximum mask is invalid"},
        HeadCase{"MaskTextThatIsNotHexadecimal",
                 [](Description& d) { d.mask = QStringLiteral(R"(<mask numTows="16">tows</mask>)"); },
                 "tow mask text 'tows' is not hexadecimal"},
        HeadCase{"MaskTextBeyondTheTowCount",
                 [](Description& d) { d.mask = QStringLiteral(R"(<mask numTows="8">1FF</mask>)"); },
                 "tow mask text '1FF' enables tows beyond tow 8"},
        HeadCase{"NumTowsThatIsNotANumberReadsAsZero",
                 [](Description& d) { d.mask = QStringLiteral(R"(<mask numTows="0x10">1</mask>)"); },
                 "tow mask text '1' enables tows beyond tow 0"},
        HeadCase{"NoMaskElementGivesAnEmptyMaskText", [](Description& d) { d.mask.clear(); },
                 "tow mask text '' is not hexadecimal"}),
    CaseName<HeadCase>);

TEST(ZELKinMachineLoader, AbsentOptionalMachineAttributesTakeTheirDefaults)
{
    Description description;
    for (const char* attribute : {"add-pinch", "ncformat", "nc-config", "solver", "solver-config"})
        Drop(description, attribute);
    ZELGeoContainer container;
    const auto* machine = qobject_cast<ZELKinAFPMachine*>(Load(container, description.ToXml()));
    ASSERT_NE(machine, nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, machine->GetPinchDistance(), ZELTest::kExact));
    EXPECT_TRUE(machine->GetNCCodeFormat().isEmpty());
    EXPECT_TRUE(machine->GetNCCodeConfig().isEmpty());
    EXPECT_TRUE(machine->GetSolverName().isEmpty());
    EXPECT_TRUE(machine->GetSolverConfig().isEmpty());
    EXPECT_EQ(machine->CreateSolver(), nullptr);
}

TEST(ZELKinMachineLoader, NumTowsIsReadInBaseTenAndMaskTextMayHaveBlanks)
{
    Description description;
    description.mask = QStringLiteral(R"(<mask numTows="010">  3ff
                                         </mask>)");
    ZELGeoContainer container;
    const auto* machine = qobject_cast<ZELKinAFPMachine*>(Load(container, description.ToXml()));
    ASSERT_NE(machine, nullptr);
    EXPECT_EQ(machine->GetMaximumMask(), ZELCompTowMask(10, true));
}

TEST(ZELKinMachineLoader, OnlyTheFirstMaskIsRead)
{
    Description description;
    description.mask = QStringLiteral(R"(<mask numTows="12">00F</mask><mask numTows="16">FFFF</mask>)");
    ZELGeoContainer container;
    const auto* machine = qobject_cast<ZELKinAFPMachine*>(Load(container, description.ToXml()));
    ASSERT_NE(machine, nullptr);
    EXPECT_EQ(machine->GetMaximumMask().GetNumTows(), 12);
    EXPECT_EQ(machine->GetMaximumMask().GetHexadecimalString(), QStringLiteral("00F"));
}

// A root that is not an AFP machine, or no root at all since a document that
// does not parse reads as an empty one: no machine and no variable or joint.

namespace {

struct RootCase
{
    const char* name;
    const char* xml;
};

ZELTEST_PRINT_CASE_BY_NAME(RootCase);

class ZELKinMachineLoaderRoot : public ::testing::TestWithParam<RootCase>
{
};

} // namespace

TEST_P(ZELKinMachineLoaderRoot, BuildsNothing)
{
    ZELGeoContainer container;
    MessageLog log;
    EXPECT_EQ(Load(container, GetParam().xml), nullptr);
    EXPECT_EQ(container.GetNumGeometries(), 0);
    EXPECT_TRUE(log.entries.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Descriptions, ZELKinMachineLoaderRoot,
    ::testing::Values(
        RootCase{"AnotherMachineType", R"(
<machine type="CNC" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <variables><variable name="X" max-speed="60" max-accel="2"/></variables>
  <joints><joint name="X" type="translation" vector="1,0,0" variables="X"/></joints>
</machine>)"},
        RootCase{"TypeInLowerCase", R"(
<machine type="afp" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <variables><variable name="X" max-speed="60" max-accel="2"/></variables>
  <joints><joint name="X" type="translation" vector="1,0,0" variables="X"/></joints>
</machine>)"},
        RootCase{"NoType", R"(
<machine>
  <variables><variable name="X" max-speed="60" max-accel="2"/></variables>
  <joints><joint name="X" type="translation" vector="1,0,0" variables="X"/></joints>
</machine>)"},
        RootCase{"AnotherTypeWithBrokenVariablesAndJoints", R"(
<machine type="CNC">
  <variables><variable name="X"/></variables>
  <variables/>
  <joint name="X" type="rotation" vector="1" variables="W"/>
</machine>)"},
        RootCase{"MismatchedTags", R"(<machine type="AFP"><variables></machine>)"},
        RootCase{"DescriptionCutShortBeforeItsEnd", R"(
<machine type="AFP" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <variables><variable name="X" max-speed="60" max-accel="2"/></variables>
  <joints><joint name="X" type="translation" vector="1,0,0" variables="X"/></joints>)"},
        RootCase{"TextThatIsNotXml", "type=AFP"},
        RootCase{"EmptyDocument", ""}),
    CaseName<RootCase>);

// Descriptions that break a rule of a variable or a joint. Every case starts
// with variables X (linear) and C (rotary) and joint X, which stay in the
// container when the load stops.

namespace {

struct RejectCase
{
    const char* name;
    const char* variables; // after variables X and C
    const char* joints;    // after joint X
    const char* message;
    int numVariables; // the machine's list sizes afterwards, entries of objects
    int numJoints;    // that have gone included
    int numGeometries;
};

ZELTEST_PRINT_CASE_BY_NAME(RejectCase);

class ZELKinMachineLoaderReject : public ::testing::TestWithParam<RejectCase>
{
};

} // namespace

TEST_P(ZELKinMachineLoaderReject, ThrowsAndKeepsWhatWasBuilt)
{
    const RejectCase& c = GetParam();
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>
                                              <variable name="C" type="rotary" max-speed="3600" max-accel="180"/>)")
        + QString::fromLatin1(c.variables);
    description.joints = QStringLiteral(R"(<joint name="X" type="translation" vector="1,0,0" variables="X"/>)")
        + QString::fromLatin1(c.joints);
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(Load(container, description.ToXml()), ZELSysException, c.message);

    const ZELKinAFPMachine* machine = ZELTest::FirstOf<ZELKinAFPMachine>(container);
    ASSERT_NE(machine, nullptr);
    EXPECT_TRUE(machine->IsInitialized());
    EXPECT_EQ(machine->GetNumVariables(), c.numVariables);
    EXPECT_EQ(machine->GetNumJoints(), c.numJoints);
    EXPECT_EQ(container.GetNumGeometries(), c.numGeometries);
    ASSERT_GE(machine->GetNumVariables(), 2);
    EXPECT_EQ(machine->GetVariable(0)->GetLabel(), QStringLiteral("X"));
    EXPECT_EQ(machine->GetVariable(1)->GetLabel(), QStringLiteral("C"));
    if (c.numJoints > 0) {
        ASSERT_NE(machine->GetJoint(0), nullptr);
        EXPECT_EQ(machine->GetJoint(0)->GetLabel(), QStringLiteral("X"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ZELKinMachineLoaderReject,
    ::testing::Values(
        RejectCase{"VariableWithoutMaxSpeed", R"(<variable name="Y" max-accel="2"/>)", "",
                   "No 'max-speed' attribute specified on machine variable 'Y'.", 2, 0, 3},
        RejectCase{"MissingMaxSpeedIsReportedBeforeMissingMaxAccel", R"(<variable name="Y"/>)", "",
                   "No 'max-speed' attribute specified on machine variable 'Y'.", 2, 0, 3},
        RejectCase{"LinearMinimumAboveMaximum",
                   R"(<variable name="Z" minimum="5" maximum="4" max-speed="1" max-accel="1"/>)", "",
                   "variable minimum is greater than maximum for 'Z'", 3, 0, 3},
        RejectCase{"RotaryMinimumAboveMaximum",
                   R"(<variable name="A" type="rotary" minimum="90" maximum="-90" max-speed="1" max-accel="1"/>)", "",
                   "variable minimum is greater than maximum for 'A'", 3, 0, 3},
        RejectCase{"VectorOfTwoNumbers", "", R"(<joint name="Y" type="translation" vector="0,1" variables="X"/>)",
                   "Vector length does not match", 2, 1, 4},
        RejectCase{"NoVector", "", R"(<joint name="Y" type="translation" variables="X"/>)",
                   "Vector length does not match", 2, 1, 4},
        RejectCase{"UnknownVariable", "", R"(<joint name="Y" type="translation" vector="0,1,0" variables="W"/>)",
                   "Could not find variable 'W' for joint 'Y'", 2, 1, 4},
        RejectCase{"VariableLabelsAreCaseSensitive", "",
                   R"(<joint name="Y" type="translation" vector="0,1,0" variables="x"/>)",
                   "Could not find variable 'x' for joint 'Y'", 2, 1, 4},
        // Each placeholder is filled by its own QString::arg, so a label that
        // itself holds a placeholder is filled by the next one.
        RejectCase{"PlaceholdersAreFilledOneAfterTheOther", "",
                   R"(<joint name="Y" type="translation" vector="0,1,0" variables="%2"/>)",
                   "Could not find variable 'Y' for joint 'Y'", 2, 1, 4},
        RejectCase{"NoVariablesAttributeAndNoUnnamedVariable", "",
                   R"(<joint name="Y" type="translation" vector="0,1,0"/>)",
                   "Could not find variable '' for joint 'Y'", 2, 1, 4},
        RejectCase{"UnknownParent", "",
                   R"(<joint name="Y" type="translation" vector="0,1,0" variables="X" parent="Gantry"/>)",
                   "Could not find parent 'parentLabel' for joint 'Y'", 2, 1, 4},
        RejectCase{"ParentDefinedAfterItsChild", "",
                   R"(<joint name="C" type="rotation" vector="0,0,1" pivot="0,0,0" variables="C" parent="Z"/>
                      <joint name="Z" type="translation" vector="0,0,1" variables="X"/>)",
                   "Could not find parent 'parentLabel' for joint 'C'", 2, 1, 4},
        RejectCase{"ParentLabelsAreCaseSensitive", "",
                   R"(<joint name="Y" type="translation" vector="0,1,0" variables="X" parent="x"/>)",
                   "Could not find parent 'parentLabel' for joint 'Y'", 2, 1, 4},
        RejectCase{"PivotOfTwoNumbers", "",
                   R"(<joint name="C" type="rotation" vector="0,0,1" pivot="0,0" variables="C"/>)",
                   "Joint 'C' does not properly define the pivot point", 2, 1, 4},
        RejectCase{"MalformedPivotOfATranslationJoint", "",
                   R"(<joint name="Y" type="translation" vector="0,1,0" pivot="7" variables="X"/>)",
                   "Joint 'Y' does not properly define the pivot point", 2, 1, 4},
        RejectCase{"MalformedPivotIsReportedBeforeAnUnknownType", "",
                   R"(<joint name="Y" type="spherical" vector="0,1,0" pivot="" variables="X"/>)",
                   "Joint 'Y' does not properly define the pivot point", 2, 1, 4},
        RejectCase{"RotationWithoutPivot", "", R"(<joint name="C" type="rotation" vector="0,0,1" variables="C"/>)",
                   "Joint 'C' does not have a pivot defined", 2, 1, 4},
        RejectCase{"UnknownJointType", "",
                   R"(<joint name="C" type="rotary" vector="0,0,1" pivot="0,0,0" variables="C"/>)",
                   "Unknown joint type 'rotary'", 2, 1, 4},
        RejectCase{"NoJointType", "", R"(<joint name="Y" vector="0,1,0" variables="X"/>)", "Unknown joint type ''", 2,
                   1, 4},
        RejectCase{"RotationDrivenByALinearVariable", "",
                   R"(<joint name="B" type="rotation" vector="0,1,0" pivot="0,0,0" variables="X" parent="X"/>)",
                   "Rotary joint requires rotary variable.", 2, 2, 4},
        RejectCase{"TranslationDrivenByARotaryVariable", "",
                   R"(<joint name="W" type="translation" vector="0,0,1" variables="C"/>)",
                   "Translation joint requires linear variable", 2, 2, 4}),
    CaseName<RejectCase>);

TEST(ZELKinMachineLoader, JointWhoseKindRefusesItsVariableLeavesANullEntry)
{
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>)");
    description.joints = QStringLiteral(R"(<joint name="X" type="translation" vector="1,0,0" variables="X"/>
                                           <joint name="B" type="rotation" vector="0,1,0" pivot="0,0,0" variables="X"
                                                  parent="X"/>)");
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(Load(container, description.ToXml()), ZELSysException,
                         "Rotary joint requires rotary variable.");
    const ZELKinAFPMachine* machine = ZELTest::FirstOf<ZELKinAFPMachine>(container);
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumJoints(), 2);
    EXPECT_EQ(machine->GetJoint(1), nullptr);
    ASSERT_NE(machine->GetJoint(0), nullptr);
    EXPECT_EQ(machine->GetJoint(0)->GetChildJoints(), QList<ZELKinJoint*>({nullptr}));
}

TEST(ZELKinMachineLoader, TranslationJointIgnoresAWellFormedPivot)
{
    Description description;
    description.variables = QStringLiteral(R"(<variable name="Y" max-speed="60" max-accel="2"/>)");
    description.joints =
        QStringLiteral(R"(<joint name="Y" type="translation" vector="0,1,0" pivot="1,2,3" variables="Y"/>)");
    ZELGeoContainer container;
    const ZELKinMachine* machine = Load(container, description.ToXml());
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumJoints(), 1);
    EXPECT_EQ(qobject_cast<ZELKinRotaryJoint*>(machine->GetJoint(0)), nullptr);
    const auto* y = qobject_cast<ZELKinTranslationJoint*>(machine->GetJoint(0));
    ASSERT_NE(y, nullptr);
    EXPECT_TRUE(SameVector(ZELMathVector(0, 1, 0), y->GetVector(), ZELTest::kExact));
}

TEST(ZELKinMachineLoader, JointWithoutVariablesAttributeTakesTheFirstUnnamedVariable)
{
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>
                                              <variable max-speed="30" max-accel="1"/>
                                              <variable max-speed="12" max-accel="1"/>)");
    description.joints = QStringLiteral(R"(<joint name="Feed" type="translation" vector="0,0,1"/>)");
    ZELGeoContainer container;
    const ZELKinMachine* machine = Load(container, description.ToXml());
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumVariables(), 3);
    ASSERT_EQ(machine->GetNumJoints(), 1);
    EXPECT_TRUE(machine->GetVariable(1)->GetLabel().isEmpty());
    EXPECT_EQ(machine->GetJoint(0)->GetVariable(0), machine->GetVariable(1));
}

TEST(ZELKinMachineLoader, LabelsSharedByTwoObjectsResolveToTheFirst)
{
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>
                                              <variable name="X" max-speed="30" max-accel="1"/>)");
    description.joints = QStringLiteral(R"(<joint name="B" type="translation" vector="1,0,0" variables="X"/>
                                           <joint name="B" type="translation" vector="0,1,0" variables="X"/>
                                           <joint name="Child" type="translation" vector="0,0,1" variables="X"
                                                  parent="B"/>)");
    ZELGeoContainer container;
    const ZELKinMachine* machine = Load(container, description.ToXml());
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumJoints(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(machine->GetJoint(i)->GetVariable(0), machine->GetVariable(0));
    EXPECT_EQ(machine->GetJoint(2)->GetParent(), machine->GetJoint(0));
    EXPECT_EQ(machine->GetJoint(0)->GetChildJoints(), QList<ZELKinJoint*>({machine->GetJoint(2)}));
    EXPECT_TRUE(machine->GetJoint(1)->GetChildJoints().isEmpty());
}

TEST(ZELKinMachineLoader, JointsWithoutParentAreRootsInDocumentOrder)
{
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>)");
    description.joints = QStringLiteral(R"(<joint name="A" type="translation" vector="1,0,0" variables="X"/>
                                           <joint name="B" type="translation" vector="0,1,0" variables="X" parent="A"/>
                                           <joint name="C" type="translation" vector="0,0,1" variables="X"/>)");
    ZELGeoContainer container;
    const ZELKinMachine* machine = Load(container, description.ToXml());
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumJoints(), 3);
    EXPECT_EQ(machine->GetRootJoints(), QList<ZELKinJoint*>({machine->GetJoint(0), machine->GetJoint(2)}));
    EXPECT_EQ(machine->GetJoint(2)->GetParent(), nullptr);
}

TEST(ZELKinMachineLoader, VariablesAndJointsAreFoundAtAnyDepthBelowTheirElementOnly)
{
    ZELGeoContainer container;
    const ZELKinMachine* machine = Load(container, R"(
<machine type="AFP" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <head><mask numTows="16">FFFF</mask></head>
  <variable name="Loose" max-speed="60" max-accel="2"/>
  <kinematics>
    <variables>
      <linear><variable name="X" max-speed="60" max-accel="2"/></linear>
      <joint name="Stray" type="translation" vector="1,0,0" variables="X"/>
      <variable name="U" max-speed="60" max-accel="2"/>
    </variables>
    <joints>
      <variable name="Stray" max-speed="60" max-accel="2"/>
      <chain><joint name="X" type="translation" vector="1,0,0" variables="X"/></chain>
    </joints>
  </kinematics>
  <joint name="Loose" type="translation" vector="1,0,0" variables="X"/>
</machine>)");
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->GetNumVariables(), 2);
    EXPECT_EQ(machine->GetVariable(0)->GetLabel(), QStringLiteral("X"));
    EXPECT_EQ(machine->GetVariable(1)->GetLabel(), QStringLiteral("U"));
    ASSERT_EQ(machine->GetNumJoints(), 1);
    EXPECT_EQ(machine->GetJoint(0)->GetLabel(), QStringLiteral("X"));
    EXPECT_EQ(container.GetNumGeometries(), 4);
}

TEST(ZELKinMachineLoader, EachLoadBuildsANewMachine)
{
    Description description;
    description.variables = QStringLiteral(R"(<variable name="X" max-speed="60" max-accel="2"/>)");
    ZELGeoContainer container;
    const ZELKinMachineLoader loader(&container);
    QBuffer first, second;
    first.setData(description.ToXml());
    second.setData(description.ToXml());
    first.open(QIODevice::ReadOnly);
    second.open(QIODevice::ReadOnly);
    const ZELKinMachine* one = loader.LoadFromXML(&first);
    const ZELKinMachine* two = loader.LoadFromXML(&second);
    ASSERT_TRUE(one && two);
    EXPECT_NE(one, two);
    EXPECT_EQ(one->GetNumVariables(), 1);
    EXPECT_EQ(two->GetNumVariables(), 1);
    EXPECT_EQ(container.GetNumGeometries(), 4);
}

// Descriptions whose structure is broken end the process.

namespace {

struct FatalCase
{
    const char* name;
    const char* xml;
    const char* message;
};

ZELTEST_PRINT_CASE_BY_NAME(FatalCase);

class ZELKinMachineLoaderDeathTest : public ::testing::TestWithParam<FatalCase>
{
};

} // namespace

TEST_P(ZELKinMachineLoaderDeathTest, EndsTheProcessWithAFatalMessage)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ZELGeoContainer container;
    EXPECT_DEATH(Load(container, GetParam().xml), ZELTest::Literally(QString::fromUtf8(GetParam().message)));
}

INSTANTIATE_TEST_SUITE_P(
    Structure, ZELKinMachineLoaderDeathTest,
    ::testing::Values(
        FatalCase{"NoVariablesElement", R"(
<machine type="AFP" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <joints/>
</machine>)",
                  "Machine does not specify the <variables> element"},
        FatalCase{"SecondVariablesElementEvenIfEmpty", R"(
<machine type="AFP" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <variables><variable name="X" max-speed="60" max-accel="2"/></variables>
  <variables/>
  <joints/>
</machine>)",
                  "Machine does not specify the <variables> element"},
        FatalCase{"NoJointsElement", R"(
<machine type="AFP" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <variables><variable name="X" max-speed="60" max-accel="2"/></variables>
</machine>)",
                  "Machine does not specify the <joints> element"},
        FatalCase{"TwoJointsElements", R"(
<machine type="AFP" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <variables><variable name="X" max-speed="60" max-accel="2"/></variables>
  <joints><joint name="X" type="translation" vector="1,0,0" variables="X"/></joints>
  <joints/>
</machine>)",
                  "Machine does not specify the <joints> element"},
        FatalCase{"VariableWithoutMaxAccel", R"(
<machine type="AFP" material-axis="U" roller-radius="30" tow-width="6.35" add-distance="50.8"
         cut-distance="76.2" head-travel="101.6">
  <mask numTows="16">FFFF</mask>
  <variables><variable name="X" max-speed="60"/></variables>
  <joints/>
</machine>)",
                  "No 'max-accel' attribute specified on machine variable."}),
    CaseName<FatalCase>);

// Bounds on what reaches the DOM parser.

namespace {

// The gantry with `levels` levels of unknown elements nested in its root,
// which the loader passes over.
QByteArray GantryWithNesting(int levels)
{
    QByteArray xml(kGantry);
    const QByteArray nested = QByteArray("<n>").repeated(levels) + QByteArray("</n>").repeated(levels);
    xml.replace("</machine>", nested + "</machine>");
    return xml;
}

} // namespace

TEST(ZELKinMachineLoaderBounds, ElementsNestedSixtyFourLevelsDeepLoad)
{
    ZELGeoContainer container;
    // The root is the first level.
    EXPECT_NE(Load(container, GantryWithNesting(63)), nullptr);
}

TEST(ZELKinMachineLoaderBounds, ElementsNestedDeeperThanSixtyFourLevelsAreRefusedBeforeParsing)
{
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(Load(container, GantryWithNesting(64)), ZELSysException,
                         "The machine description nests elements deeper than 64 levels");
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELKinMachineLoaderBounds, HalfAMillionNestedElementsEndInTheSameErrorAtOnce)
{
    ZELGeoContainer container;
    const QByteArray hostile = "<machine type=\"AFP\">" + QByteArray("<a>").repeated(500000)
        + QByteArray("</a>").repeated(500000) + "</machine>";
    EXPECT_THROW_MESSAGE(Load(container, hostile), ZELSysException,
                         "The machine description nests elements deeper than 64 levels");
}

TEST(ZELKinMachineLoaderBounds, ADescriptionLargerThanFourMebibytesIsRefusedBeforeParsing)
{
    ZELGeoContainer container;
    QByteArray xml(kGantry);
    xml.replace("<machine ", "<!-- " + QByteArray(4 << 20, 'x') + " -->\n<machine ");
    EXPECT_THROW_MESSAGE(Load(container, xml), ZELSysException,
                         "The machine description is larger than 4194304 bytes");
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELKinMachineLoaderBounds, ADescriptionOfExactlyFourMebibytesIsRead)
{
    ZELGeoContainer container;
    QByteArray xml(kGantry);
    const qsizetype padding = (qsizetype(4) << 20) - xml.size() - qsizetype(std::strlen("<!--  -->\n"));
    xml.replace("<machine ", "<!-- " + QByteArray(padding, 'x') + " -->\n<machine ");
    ASSERT_EQ(xml.size(), qsizetype(4) << 20);
    EXPECT_NE(Load(container, xml), nullptr);
}

TEST(ZELKinMachineLoaderBounds, CheckBoundsPassesADescriptionWithinBothBoundsEvenIfItDoesNotParse)
{
    EXPECT_NO_THROW(ZELKinMachineLoader::CheckBounds(GantryWithNesting(63)));
    EXPECT_NO_THROW(ZELKinMachineLoader::CheckBounds("<machine><unclosed>"));
}

TEST(ZELKinMachineLoaderBounds, CheckBoundsRefusesWhatTheLoaderRefusesWithTheSameMessages)
{
    EXPECT_THROW_MESSAGE(ZELKinMachineLoader::CheckBounds(GantryWithNesting(64)), ZELSysException,
                         "The machine description nests elements deeper than 64 levels");
    EXPECT_THROW_MESSAGE(ZELKinMachineLoader::CheckBounds(QByteArray((4 << 20) + 1, ' ')), ZELSysException,
                         "The machine description is larger than 4194304 bytes");
}
