#include <zelkintranslator.h>

#include "zelkintranslationtestsolver.h"
#include "zelkintranslationtesttoolpath.h"

#include <zelkinafpmachine.h>
#include <zelkincourselink.h>
#include <zelkinmachine_p.h>
#include <zelkinmachineloader.h>
#include <zelkinposition.h>
#include <zelkinprobecommand.h>
#include <zelkinprobeprocedure.h>
#include <zelkinprogram.h>
#include <zelkinrolllayupposition.h>
#include <zelkinrolllayupprocedure.h>
#include <zelkinsolver.h>
#include <zelkintoolchange.h>
#include <zelkintowcommand.h>
#include <zelkintowcourse.h>
#include <zelkintowfeedcommand.h>
#include <zelkinvariable.h>
#include <zelkintestaccess.h>

#include <zelgeocontainer.h>
#include <zelsysexception.h>

#include <zeltestsupport.h>

#include <QFile>
#include <QSet>
#include <QStringList>

#include <limits>
#include <memory>
#include <optional>

using namespace ZELKinTranslationTest;

namespace {

// Positions lie on their toolpath points to a fraction of a micrometre.
constexpr double kTip = 1e-6;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const QDateTime kDate(QDate(2024, 5, 17), QTime(8, 30, 15));

// Test names after the cases' own names.
template <typename Case> std::string CaseName(const ::testing::TestParamInfo<Case>& info)
{
    return info.param.name;
}

ZELKinAFPMachine* LoadExampleMachine(ZELGeoContainer* container)
{
    QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    return qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(container).LoadFromXML(&file));
}

// A command as the tests write it by hand: a position by the X (mm) of its
// toolpath point, a tow command by its kind and mask, and so on.
QString Describe(const ZELKinCommand* command)
{
    if (const auto* tow = qobject_cast<const ZELKinTowCommand*>(command)) {
        static const QStringList kinds{QStringLiteral("Add"), QStringLiteral("Cut"), QStringLiteral("Force"),
                                       QStringLiteral("Release")};
        return kinds.value(int(tow->GetType())) + QLatin1Char(' ') + tow->GetTowMask().GetHexadecimalString();
    }
    if (qobject_cast<const ZELKinTowFeedCommand*>(command))
        return QStringLiteral("Feed");
    if (const auto* change = qobject_cast<const ZELKinToolChange*>(command))
        return QStringLiteral("Change roller '%1' head '%2'").arg(change->GetNewRoller(), change->GetNewHead());
    if (const auto* probe = qobject_cast<const ZELKinProbeCommand*>(command))
        return QStringLiteral("Probe %1").arg(probe->GetDiameter());
    if (const auto* position = qobject_cast<const ZELKinPosition*>(command)) {
        const ZELTPPoint* point = position->GetToolPathPoint();
        return point ? QStringLiteral("X%1").arg(point->GetTipCoordinates().GetX()) : QStringLiteral("X?");
    }
    return QStringLiteral("?");
}

QStringList Describe(const ZELKinScript* script)
{
    QStringList commands;
    for (int i = 0; i < script->GetNumCommands(); ++i)
        commands.append(Describe(script->GetCommand(i)));
    return commands;
}

QStringList PositionXs(std::initializer_list<int> xs)
{
    QStringList positions;
    for (const int x : xs)
        positions.append(QStringLiteral("X%1").arg(x));
    return positions;
}

// Rates are copied as they are given.
::testing::AssertionResult SameRates(const QList<double>& expected, const QList<double>& actual)
{
    if (expected.size() != actual.size())
        return ::testing::AssertionFailure() << "expected " << expected.size() << " rates, got " << actual.size();
    for (qsizetype tow = 0; tow < expected.size(); ++tow) {
        const ::testing::AssertionResult same = ZELTest::SameDouble(expected.at(tow), actual.at(tow), ZELTest::kExact);
        if (!same)
            return ::testing::AssertionFailure() << "tow " << tow + 1 << ": " << same.message();
    }
    return ::testing::AssertionSuccess();
}

// The scripts of `layup` as its flat command index walks them.
QList<const ZELKinScript*> ScriptsInCommandOrder(const ZELKinRollLayupProcedure* layup)
{
    QList<const ZELKinScript*> scripts;
    for (int i = 0; i < layup->GetNumCommands(); ++i) {
        const ZELKinScript* script = layup->GetCommand(i)->GetScript();
        if (scripts.isEmpty() || scripts.last() != script)
            scripts.append(script);
    }
    return scripts;
}

QList<ZELKinPosition*> PositionsOf(const ZELKinScript* script)
{
    QList<ZELKinPosition*> positions;
    for (int i = 0; i < script->GetNumCommands(); ++i) {
        if (auto* position = qobject_cast<ZELKinPosition*>(script->GetCommand(i)))
            positions.append(position);
    }
    return positions;
}

// Sets an environment variable, or unsets it for no value, for the life of
// the guard, and then puts back what was there.
class EnvironmentGuard
{
public:
    EnvironmentGuard(const char* name, const std::optional<QByteArray>& value)
        : m_name(name)
    {
        if (qEnvironmentVariableIsSet(name))
            m_saved = qgetenv(name);
        Set(value);
    }
    ~EnvironmentGuard() { Set(m_saved); }

private:
    void Set(const std::optional<QByteArray>& value)
    {
        if (value)
            qputenv(m_name, *value);
        else
            qunsetenv(m_name);
    }

    const char* m_name;
    std::optional<QByteArray> m_saved;
};

class ZELKinTranslatorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        machine = LoadExampleMachine(&container);
        ASSERT_NE(machine, nullptr);
        solver.reset(machine->CreateSolver());
        ASSERT_NE(solver, nullptr);
    }

    // Translates the builder's program, stamped with kDate, and keeps what
    // was printed in `output`.
    ZELKinProgram* Translate()
    {
        ZELKinTranslator translator(solver.get());
        translator.SetCurrentDateTime(kDate);
        return TranslateWith(translator);
    }

    ZELKinProgram* TranslateWith(const ZELKinTranslator& translator)
    {
        ::testing::internal::CaptureStdout();
        try {
            ZELKinProgram* program = translator.Translate(builder.GetProgram());
            output = QString::fromStdString(::testing::internal::GetCapturedStdout());
            return program;
        } catch (...) {
            output = QString::fromStdString(::testing::internal::GetCapturedStdout());
            throw;
        }
    }

    //! The one roll layup procedure of a translated program.
    ZELKinRollLayupProcedure* TranslateLayup()
    {
        ZELKinProgram* program = Translate();
        return program->GetNumProcedures() == 1 ? qobject_cast<ZELKinRollLayupProcedure*>(program->GetProcedure(0))
                                                : nullptr;
    }

    //! The one tow course of a layup of `shape` alone.
    ZELKinTowCourse* TranslateCourse(const Shape& shape = Shape())
    {
        builder.AddFlatLayup(QStringLiteral("ply one"), {shape});
        ZELKinRollLayupProcedure* layup = TranslateLayup();
        return layup && layup->GetNumCourses() == 1 ? qobject_cast<ZELKinTowCourse*>(layup->GetCourse(0)) : nullptr;
    }

    ZELKinVariable* Axis(const char* label) const { return machine->GetVariable(QString::fromLatin1(label)); }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine = nullptr;
    std::unique_ptr<ZELKinSolver> solver;
    ToolpathBuilder builder{&container};
    QString output;
};

} // namespace

// The panel of the tests lies within the gantry's reach.

TEST_F(ZELKinTranslatorTest, ExampleMachineReachesTheCornersOfThePanel)
{
    for (const double x : {3000.0, 4000.0}) {
        for (const double y : {3000.0, 4000.0}) {
            for (const double z : {kPartZ, kPartZ + kLinkLift}) {
                SCOPED_TRACE(QStringLiteral("%1, %2, %3").arg(x).arg(y).arg(z).toStdString());
                EXPECT_FALSE(solver->Solve(FlatFrame(x, y, z), false).isEmpty());
            }
        }
    }
}

// Progress, author and date.

TEST_F(ZELKinTranslatorTest, PrintsItsProgressInOrderWithTheSolversLines)
{
    builder.AddFlatLayup(QStringLiteral("ply one"));
    builder.AddProbing(QStringLiteral("probe"), {{ZELMathPoint(3100, 3500, -1300)}}, {5080.0}, {});
    builder.AddFlatLayup(QStringLiteral("ply two"), {Shape{}});
    Translate();
    EXPECT_EQ(output,
              QStringLiteral("Translating the program\n"
                             "Solving kinematics\n"
                             "  Processing ply one\n"
                             "  Processing ply two\n"));
}

namespace {

struct AuthorCase
{
    const char* name;
    std::optional<QByteArray> user;
    std::optional<QByteArray> userName;
    QString author;
};
ZELTEST_PRINT_CASE_BY_NAME(AuthorCase);

class ZELKinTranslatorAuthor : public ZELKinTranslatorTest, public ::testing::WithParamInterface<AuthorCase>
{
};

} // namespace

TEST_P(ZELKinTranslatorAuthor, ComesFromUserThenUsername)
{
    const EnvironmentGuard user("USER", GetParam().user);
    const EnvironmentGuard userName("USERNAME", GetParam().userName);
    EXPECT_EQ(Translate()->GetAuthor(), GetParam().author);
}

INSTANTIATE_TEST_SUITE_P(
    Environment, ZELKinTranslatorAuthor,
    ::testing::Values(AuthorCase{"UserBeforeUsername", QByteArray("ada"), QByteArray("grace"), QStringLiteral("ada")},
                      AuthorCase{"UserAlone", QByteArray("ada"), std::nullopt, QStringLiteral("ada")},
                      AuthorCase{"EmptyUser", QByteArray(""), QByteArray("grace"), QStringLiteral("grace")},
                      AuthorCase{"NoUser", std::nullopt, QByteArray("grace"), QStringLiteral("grace")},
                      AuthorCase{"Neither", std::nullopt, std::nullopt, QString()}),
    CaseName<AuthorCase>);

namespace {

struct RefusedAuthorCase
{
    const char* name;
    std::optional<QByteArray> user;
    std::optional<QByteArray> userName;
    QString message;
};
ZELTEST_PRINT_CASE_BY_NAME(RefusedAuthorCase);

class ZELKinTranslatorRefusedAuthor : public ZELKinTranslatorTest,
                                      public ::testing::WithParamInterface<RefusedAuthorCase>
{
};

} // namespace

TEST_P(ZELKinTranslatorRefusedAuthor, NamesTheVariableToFixBeforeAnythingIsPrinted)
{
    const EnvironmentGuard user("USER", GetParam().user);
    const EnvironmentGuard userName("USERNAME", GetParam().userName);
    builder.AddFlatLayup(QStringLiteral("ply one"));
    EXPECT_THROW_MESSAGE(Translate(), ZELSysException, GetParam().message);
    EXPECT_EQ(output, QString());
}

INSTANTIATE_TEST_SUITE_P(
    Environment, ZELKinTranslatorRefusedAuthor,
    ::testing::Values(
        RefusedAuthorCase{"LineFeedInUser", QByteArray("ada\nM30"), QByteArray("grace"),
                          QStringLiteral("the author's name from the environment variable USER contains the line end "
                                         "U+000A; set USER to a name without control characters or double quotes")},
        RefusedAuthorCase{"CarriageReturnInUsername", QByteArray(""), QByteArray("grace\r"),
                          QStringLiteral("the author's name from the environment variable USERNAME contains the line "
                                         "end U+000D; set USERNAME to a name without control characters or double "
                                         "quotes")},
        RefusedAuthorCase{"EscapeInUser", QByteArray("a\x1b[2Jda"), std::nullopt,
                          QStringLiteral("the author's name from the environment variable USER contains the control "
                                         "character U+001B; set USER to a name without control characters or double "
                                         "quotes")},
        RefusedAuthorCase{"DoubleQuoteInUsername", std::nullopt, QByteArray("gr\"ace"),
                          QStringLiteral("the author's name from the environment variable USERNAME contains a double "
                                         "quote; set USERNAME to a name without control characters or double "
                                         "quotes")},
        RefusedAuthorCase{"LineSeparatorInUser", QByteArray("ada\xe2\x80\xa8"), std::nullopt,
                          QStringLiteral("the author's name from the environment variable USER contains the line end "
                                         "U+2028; set USER to a name without control characters or double quotes")}),
    CaseName<RefusedAuthorCase>);

TEST_F(ZELKinTranslatorTest, AnAuthorOfOtherLettersAndPunctuationIsKept)
{
    const EnvironmentGuard user("USER", QByteArray("j\xc3\xb6rg.o'neil-2"));
    EXPECT_EQ(Translate()->GetAuthor(), QStringLiteral("j\u00f6rg.o'neil-2"));
}

TEST_F(ZELKinTranslatorTest, StampsTheProgramWithTheDateGiven)
{
    EXPECT_EQ(Translate()->GetDate(), kDate);
}

TEST_F(ZELKinTranslatorTest, StampsTheProgramWithTheCurrentDateWhenNoneIsGiven)
{
    const ZELKinTranslator translator(solver.get());
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime date = TranslateWith(translator)->GetDate();
    const QDateTime after = QDateTime::currentDateTime();
    EXPECT_LE(before, date);
    EXPECT_LE(date, after);
}

// Program and procedures.

TEST_F(ZELKinTranslatorTest, CreatesTheProgramForTheSolversMachineInItsContainer)
{
    ZELKinProgram* program = Translate();
    EXPECT_EQ(program->GetMachine(), machine);
    EXPECT_EQ(program->GetContainer(), &container);
    EXPECT_EQ(program->GetNumProcedures(), 0);
    EXPECT_EQ(output, QStringLiteral("Translating the program\nSolving kinematics\n"));
}

TEST_F(ZELKinTranslatorTest, GivesAnEmptyProgramForNoToolpathProgram)
{
    ZELKinTranslator translator(solver.get());
    ::testing::internal::CaptureStdout();
    ZELKinProgram* program = translator.Translate(nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Translating the program\nSolving kinematics\n");
    EXPECT_EQ(program->GetNumProcedures(), 0);
    EXPECT_EQ(program->GetMachine(), machine);
}

TEST_F(ZELKinTranslatorTest, MakesOneProcedurePerLayupOrProbingInToolpathOrder)
{
    ZELTPRollLayupProcedure* first = builder.AddFlatLayup(QStringLiteral("ply one"));
    ZELTPProbingProcedure* probing
        = builder.AddProbing(QStringLiteral("probe"), {{ZELMathPoint(3100, 3500, -1300)}}, {5080.0}, {});
    builder.GetProgram()->AddProcedure(new ZELTPProcedure(&container, QStringLiteral("other")));
    Shape second;
    second.y = 3700.0;
    ZELTPRollLayupProcedure* last = builder.AddFlatLayup(QStringLiteral("ply two"), {second});

    ZELKinProgram* program = Translate();
    ASSERT_EQ(program->GetNumProcedures(), 3);
    auto* firstLayup = qobject_cast<ZELKinRollLayupProcedure*>(program->GetProcedure(0));
    auto* probe = qobject_cast<ZELKinProbeProcedure*>(program->GetProcedure(1));
    auto* lastLayup = qobject_cast<ZELKinRollLayupProcedure*>(program->GetProcedure(2));
    ASSERT_NE(firstLayup, nullptr);
    ASSERT_NE(probe, nullptr);
    ASSERT_NE(lastLayup, nullptr);
    EXPECT_EQ(firstLayup->GetToolPathProcedure(), first);
    EXPECT_EQ(probe->GetToolPathProcedure(), probing);
    EXPECT_EQ(lastLayup->GetToolPathProcedure(), last);
    for (ZELKinProcedure* procedure : program->GetProcedures())
        EXPECT_EQ(procedure->GetProgram(), program);
}

TEST_F(ZELKinTranslatorTest, GivesALayupItsFeedratesSafetyPlaneAndName)
{
    ZELTPRollLayupProcedure* source = builder.AddFlatLayup(QStringLiteral("ply one"));
    source->SetAddingFeedrate(2000.0);
    source->SetCuttingFeedrate(1500.0);
    source->SetSafetyPlane(ZELMathPlane(ZELMathPoint(1, 2, -800), ZELMathVector(0, 0, 1)));

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(2000.0, layup->GetAddFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1500.0, layup->GetCutFeedrate(), ZELTest::kExact));
    EXPECT_EQ(layup->objectName(), QStringLiteral("ply one"));
    const ZELMathPoint origin = layup->GetSafetyPlane().GetOrigin();
    EXPECT_TRUE(ZELTest::SameDouble(1.0, origin.GetX(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(2.0, origin.GetY(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-800.0, origin.GetZ(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1.0, layup->GetSafetyPlane().GetNormal().GetZ(), ZELTest::kExact));
}

TEST_F(ZELKinTranslatorTest, GivesEachPlyTheProcedureMaterialAndTheLaidArea)
{
    builder.AddFlatLayup(QStringLiteral("ply one"));
    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    ASSERT_EQ(layup->GetNumPlies(), 2);
    const ZELKinPlyDescription first = layup->GetPlyDefinition(0);
    const ZELKinPlyDescription second = layup->GetPlyDefinition(1);
    EXPECT_EQ(first.GetName(), QStringLiteral("P0"));
    EXPECT_EQ(second.GetName(), QStringLiteral("P45"));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, first.GetAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.785, second.GetAngle(), ZELTest::kExact));
    EXPECT_EQ(first.GetMethod(), ZELCompStrategy::Angle);
    EXPECT_EQ(second.GetMethod(), ZELCompStrategy::GeodesicOffset);
    // 1440 mm of material laid by tows 6.35 mm wide.
    for (const ZELKinPlyDescription& ply : {first, second}) {
        EXPECT_EQ(ply.GetMaterial(), QStringLiteral("T35-E120"));
        EXPECT_TRUE(ZELTest::SameDouble(9144.0, ply.GetArea(), ZELTest::kTight));
    }
}

namespace {

// A machine without a fibre placement head, with the one axis X.
class PlainMachine : public ZELKinMachine
{
public:
    explicit PlainMachine(ZELGeoContainer* container)
        : ZELKinMachine(new ZELKinMachinePrivate(this), container, QStringLiteral("plain"), QString(), QString(),
                        QString(), QString())
    {
    }
};

} // namespace

TEST_F(ZELKinTranslatorTest, GivesPliesNoAreaOnAMachineWithoutAFibrePlacementHead)
{
    auto* plain = new PlainMachine(&container);
    ZELKinTestAccess::CreateVariable(plain, QStringLiteral("X"), ZELKinVariable::Linear, 0.0, 10000.0);
    ZELTPRollLayupProcedure* source = builder.AddLayup(QStringLiteral("ply one"));
    source->SetApproachLink(builder.LiftedLink(QStringLiteral("approach"), 3100.0, 3500.0));
    XOnlySolver plainSolver(plain, [](const ZELMathAxis& frame) { return frame.GetOrigin().GetX(); });

    ZELKinTranslator translator(&plainSolver);
    ZELKinProgram* program = TranslateWith(translator);
    ASSERT_EQ(program->GetNumProcedures(), 1);
    auto* layup = qobject_cast<ZELKinRollLayupProcedure*>(program->GetProcedure(0));
    ASSERT_NE(layup, nullptr);
    ASSERT_EQ(layup->GetNumPlies(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(0.0, layup->GetPlyDefinition(0).GetArea(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, layup->GetPlyDefinition(1).GetArea(), ZELTest::kExact));
    EXPECT_EQ(layup->GetPlyDefinition(0).GetMaterial(), QStringLiteral("T35-E120"));
}

// Scripts in path order.

TEST_F(ZELKinTranslatorTest, LaysOutLinksAndCoursesAlongThePath)
{
    Shape second;
    second.y = 3600.0;
    ZELTPRollLayupProcedure* source = builder.AddFlatLayup(QStringLiteral("ply one"), {Shape(), second});
    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    ASSERT_EQ(layup->GetNumCourseLinks(), 3);
    ASSERT_EQ(layup->GetNumCourses(), 2);

    const ZELTPCourseLink* approach = source->GetApproachLink();
    const ZELTPCourse* firstCourse = approach->GetToCourse();
    const ZELTPCourseLink* between = firstCourse->GetRetractLink();
    const ZELTPCourse* secondCourse = between->GetToCourse();
    EXPECT_EQ(layup->GetCourseLink(0)->GetToolPathCourseLink(), approach);
    EXPECT_EQ(layup->GetCourse(0)->GetToolPathCourse(), firstCourse);
    EXPECT_EQ(layup->GetCourseLink(1)->GetToolPathCourseLink(), between);
    EXPECT_EQ(layup->GetCourse(1)->GetToolPathCourse(), secondCourse);
    EXPECT_EQ(layup->GetCourseLink(2)->GetToolPathCourseLink(), secondCourse->GetRetractLink());

    // The flat view walks them link, course, link, course, link.
    EXPECT_EQ(ScriptsInCommandOrder(layup),
              (QList<const ZELKinScript*>{layup->GetCourseLink(0), layup->GetCourse(0), layup->GetCourseLink(1),
                                          layup->GetCourse(1), layup->GetCourseLink(2)}));
}

TEST_F(ZELKinTranslatorTest, PassesOverACourseThatIsNotATowCourseWithTheLinkIntoIt)
{
    ZELTPRollLayupProcedure* source = builder.AddLayup(QStringLiteral("ply one"));
    ZELTPCourseLink* approach = builder.LiftedLink(QStringLiteral("approach"), 3100.0, 3500.0);
    auto* plainCourse = new ZELTPCourse(&container, QStringLiteral("plain"));
    ZELTPCourseLink* between = builder.LiftedLink(QStringLiteral("between"), 3150.0, 3500.0);
    ZELTPTowCourse* towCourse = builder.AddCourse(QStringLiteral("tows"), Shape());
    ZELTPCourseLink* retract = builder.LiftedLink(QStringLiteral("retract"), 3400.0, 3500.0);
    source->SetApproachLink(approach);
    approach->SetToCourse(plainCourse);
    plainCourse->SetRetractLink(between);
    between->SetToCourse(towCourse);
    towCourse->SetRetractLink(retract);

    // The approach leads into the plain course only: the path goes on
    // with the link that leaves it, which leads into the tow course.
    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    ASSERT_EQ(layup->GetNumCourseLinks(), 2);
    ASSERT_EQ(layup->GetNumCourses(), 1);
    EXPECT_EQ(layup->GetCourseLink(0)->GetToolPathCourseLink(), between);
    EXPECT_EQ(layup->GetCourse(0)->GetToolPathCourse(), towCourse);
    EXPECT_EQ(layup->GetCourseLink(1)->GetToolPathCourseLink(), retract);
    EXPECT_EQ(layup->GetCourse(0)->GetIndex(), 0);
}

TEST_F(ZELKinTranslatorTest, KeepsEachLinkBeforeItsCourseWhenACourseBetweenIsNotATowCourse)
{
    ZELTPRollLayupProcedure* source = builder.AddLayup(QStringLiteral("ply one"));
    ZELTPCourseLink* approach = builder.LiftedLink(QStringLiteral("approach"), 3100.0, 3500.0);
    ZELTPTowCourse* first = builder.AddCourse(QStringLiteral("first"), Shape());
    ZELTPCourseLink* intoPlain = builder.LiftedLink(QStringLiteral("into plain"), 3400.0, 3500.0);
    auto* plainCourse = new ZELTPCourse(&container, QStringLiteral("plain"));
    ZELTPCourseLink* outOfPlain = builder.LiftedLink(QStringLiteral("out of plain"), 3450.0, 3600.0);
    Shape secondShape;
    secondShape.y = 3600.0;
    ZELTPTowCourse* second = builder.AddCourse(QStringLiteral("second"), secondShape);
    ZELTPCourseLink* retract = builder.LiftedLink(QStringLiteral("retract"), 3400.0, 3600.0);
    source->SetApproachLink(approach);
    approach->SetToCourse(first);
    first->SetRetractLink(intoPlain);
    intoPlain->SetToCourse(plainCourse);
    plainCourse->SetRetractLink(outOfPlain);
    outOfPlain->SetToCourse(second);
    second->SetRetractLink(retract);

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    ASSERT_EQ(layup->GetNumCourses(), 2);
    ASSERT_EQ(layup->GetNumCourseLinks(), 3);
    // Link i leads into course i: the writer takes a course's approach
    // from the link of its own index.
    EXPECT_EQ(layup->GetCourseLink(0)->GetToolPathCourseLink(), approach);
    EXPECT_EQ(layup->GetCourse(0)->GetToolPathCourse(), first);
    EXPECT_EQ(layup->GetCourseLink(1)->GetToolPathCourseLink(), outOfPlain);
    EXPECT_EQ(layup->GetCourse(1)->GetToolPathCourse(), second);
    EXPECT_EQ(layup->GetCourseLink(2)->GetToolPathCourseLink(), retract);
    EXPECT_EQ(ScriptsInCommandOrder(layup),
              (QList<const ZELKinScript*>{layup->GetCourseLink(0), layup->GetCourse(0), layup->GetCourseLink(1),
                                          layup->GetCourse(1), layup->GetCourseLink(2)}));
}

TEST_F(ZELKinTranslatorTest, EndsAPathThatComesBackToALinkAlreadyWalked)
{
    ZELTPRollLayupProcedure* source = builder.AddLayup(QStringLiteral("ply one"));
    ZELTPCourseLink* approach = builder.LiftedLink(QStringLiteral("approach"), 3100.0, 3500.0);
    ZELTPTowCourse* course = builder.AddCourse(QStringLiteral("course"), Shape());
    source->SetApproachLink(approach);
    approach->SetToCourse(course);
    course->SetRetractLink(approach);

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    EXPECT_EQ(layup->GetNumCourseLinks(), 1);
    EXPECT_EQ(layup->GetNumCourses(), 1);
}

TEST_F(ZELKinTranslatorTest, LeavesALayupWithoutApproachLinkEmptyAndDropsIt)
{
    builder.AddLayup(QStringLiteral("bare"));
    ZELKinProgram* program = Translate();
    EXPECT_EQ(program->GetNumProcedures(), 0);
    EXPECT_TRUE(output.endsWith(QStringLiteral("      Could not successfully find a kinematics solution for procedure "
                                               "bare. It will be omitted from the program.\n")));
}

// Course links.

TEST_F(ZELKinTranslatorTest, GivesEachLinkPointAPositionWithItsTrajectorysFeedrate)
{
    ZELTPRollLayupProcedure* source = builder.AddFlatLayup(QStringLiteral("ply one"));
    ZELTPCourseLink* approach = source->GetApproachLink();
    approach->AddTrajectory(ToolpathBuilder::Trajectory(
        8000.0, {builder.OffPartPoint(3130.0, 3500.0, 200.0), builder.OffPartPoint(3160.0, 3500.0, 150.0)}));

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    const ZELKinCourseLink* link = layup->GetCourseLink(0);
    EXPECT_EQ(Describe(link), PositionXs({3100, 3130, 3160}));
    const QList<ZELKinPosition*> positions = PositionsOf(link);
    ASSERT_EQ(positions.size(), 3);
    const QList<ZELTPPoint*> points = approach->GetPoints();
    const double feedrates[] = {kLinkFeedrate, 8000.0, 8000.0};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(positions.at(i)->GetToolPathPoint(), points.at(i));
        EXPECT_TRUE(ZELTest::SameDouble(feedrates[i], positions.at(i)->GetFeedrate(), ZELTest::kExact));
        EXPECT_EQ(qobject_cast<ZELKinRollLayupPosition*>(positions.at(i)), nullptr);
    }
}

namespace {

struct ToolChangeCase
{
    const char* name;
    QString previousHead;
    QString nextHead;
    QString expected;
};
ZELTEST_PRINT_CASE_BY_NAME(ToolChangeCase);

class ZELKinTranslatorToolChange : public ZELKinTranslatorTest, public ::testing::WithParamInterface<ToolChangeCase>
{
protected:
    // A tool change link between two courses, whose first trajectory runs
    // through 3350, 3360 (the tool-remove point) and 3370 at 11000 mm/min,
    // and whose second holds 3380 at 12000 mm/min.
    ZELTPToolChangeLink* AddToolChangeLayup()
    {
        Shape second;
        second.startX = 3500.0;
        ZELTPRollLayupProcedure* source = builder.AddFlatLayup(QStringLiteral("ply one"), {Shape(), second});
        ZELTPCourse* firstCourse = source->GetApproachLink()->GetToCourse();
        auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("change"));
        link->SetPointsDetail(ZELTPCourseLink::PointsDetailLow);
        ZELTPOffPartPoint* remove = builder.OffPartPoint(3360.0, 3500.0, kLinkLift);
        link->AddTrajectory(ToolpathBuilder::Trajectory(11000.0,
                                                        {builder.OffPartPoint(3350.0, 3500.0, kLinkLift), remove,
                                                         builder.OffPartPoint(3370.0, 3500.0, kLinkLift)}));
        link->AddTrajectory(ToolpathBuilder::Trajectory(12000.0, {builder.OffPartPoint(3380.0, 3500.0, kLinkLift)}));
        link->SetToolRemovePoint(remove);
        link->SetPreviousMachineConfiguration(ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R16"), 101.6),
                                                                        ZELTPAFPHead(GetParam().previousHead, 6.35)));
        link->SetNextMachineConfiguration(ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R8"), 50.8),
                                                                    ZELTPAFPHead(GetParam().nextHead, 6.35)));
        link->SetToCourse(firstCourse->GetRetractLink()->GetToCourse());
        firstCourse->SetRetractLink(link);
        return link;
    }
};

} // namespace

TEST_P(ZELKinTranslatorToolChange, FollowsTheToolRemovePointWithTheNextRollerAndAChangedHead)
{
    ZELTPToolChangeLink* source = AddToolChangeLayup();
    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    ASSERT_EQ(layup->GetNumCourseLinks(), 3);
    const ZELKinCourseLink* link = layup->GetCourseLink(1);
    EXPECT_EQ(link->GetToolPathCourseLink(), source);
    EXPECT_EQ(Describe(link),
              (QStringList{QStringLiteral("X3350"), QStringLiteral("X3360"), GetParam().expected,
                           QStringLiteral("X3370"), QStringLiteral("X3380")}));
    const QList<ZELKinPosition*> positions = PositionsOf(link);
    ASSERT_EQ(positions.size(), 4);
    const double feedrates[] = {11000.0, 11000.0, 11000.0, 12000.0};
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(ZELTest::SameDouble(feedrates[i], positions.at(i)->GetFeedrate(), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(Heads, ZELKinTranslatorToolChange,
                         ::testing::Values(ToolChangeCase{"NewHead", QStringLiteral("H1"), QStringLiteral("H2"),
                                                          QStringLiteral("Change roller 'R8' head 'H2'")},
                                           ToolChangeCase{"SameHead", QStringLiteral("H1"), QStringLiteral("H1"),
                                                          QStringLiteral("Change roller 'R8' head ''")}),
                         CaseName<ToolChangeCase>);

TEST_F(ZELKinTranslatorTest, HandsTheToolChangeTheRollerFirstAndTheHeadSecond)
{
    ZELTPRollLayupProcedure* source = builder.AddFlatLayup(QStringLiteral("ply one"));
    ZELTPCourseLink* approach = source->GetApproachLink();
    auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("change"));
    ZELTPOffPartPoint* remove = builder.OffPartPoint(3100.0, 3500.0, kLinkLift);
    link->AddTrajectory(ToolpathBuilder::Trajectory(kLinkFeedrate, {remove}));
    link->SetToolRemovePoint(remove);
    link->SetPreviousMachineConfiguration(
        ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R16"), 101.6), ZELTPAFPHead(QStringLiteral("H1"), 6.35)));
    link->SetNextMachineConfiguration(
        ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R2"), 50.8), ZELTPAFPHead(QStringLiteral("H7"), 6.35)));
    link->SetToCourse(approach->GetToCourse());
    source->SetApproachLink(link);

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    const ZELKinCourseLink* translated = layup->GetCourseLink(0);
    ASSERT_EQ(translated->GetNumCommands(), 2);
    const auto* change = qobject_cast<const ZELKinToolChange*>(translated->GetCommand(1));
    ASSERT_NE(change, nullptr);
    EXPECT_EQ(change->GetNewRoller(), QStringLiteral("R2"));
    EXPECT_EQ(change->GetNewHead(), QStringLiteral("H7"));
}

TEST_F(ZELKinTranslatorTest, ChangesTheToolOnceWhereTwoTrajectoriesShareTheToolRemovePoint)
{
    ZELTPRollLayupProcedure* source = builder.AddFlatLayup(QStringLiteral("ply one"));
    auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("change"));
    ZELTPOffPartPoint* remove = builder.OffPartPoint(3120.0, 3500.0, kLinkLift);
    link->AddTrajectory(
        ToolpathBuilder::Trajectory(kLinkFeedrate, {builder.OffPartPoint(3100.0, 3500.0, kLinkLift), remove}));
    link->AddTrajectory(
        ToolpathBuilder::Trajectory(kLinkFeedrate, {remove, builder.OffPartPoint(3140.0, 3500.0, kLinkLift)}));
    link->SetToolRemovePoint(remove);
    link->SetNextMachineConfiguration(
        ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R8"), 50.8), ZELTPAFPHead(QStringLiteral("H1"), 6.35)));
    link->SetPreviousMachineConfiguration(
        ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R16"), 101.6), ZELTPAFPHead(QStringLiteral("H1"), 6.35)));
    link->SetToCourse(source->GetApproachLink()->GetToCourse());
    source->SetApproachLink(link);

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    EXPECT_EQ(
        Describe(layup->GetCourseLink(0)),
        (QStringList{QStringLiteral("X3100"), QStringLiteral("X3120"), QStringLiteral("Change roller 'R8' head ''"),
                     QStringLiteral("X3120"), QStringLiteral("X3140")}));
}

TEST_F(ZELKinTranslatorTest, ChangesNoToolOnAToolChangeLinkWithoutToolRemovePoint)
{
    ZELTPRollLayupProcedure* source = builder.AddFlatLayup(QStringLiteral("ply one"));
    auto* link = new ZELTPToolChangeLink(&container, QStringLiteral("change"));
    link->AddTrajectory(ToolpathBuilder::Trajectory(kLinkFeedrate, {builder.OffPartPoint(3100.0, 3500.0, kLinkLift)}));
    link->SetToCourse(source->GetApproachLink()->GetToCourse());
    source->SetApproachLink(link);

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    EXPECT_EQ(Describe(layup->GetCourseLink(0)), PositionXs({3100}));
}

// Tow courses.

TEST_F(ZELKinTranslatorTest, GivesATowCourseItsMaskRollerAndToolpathCourse)
{
    Shape shape;
    shape.used = Tows(1, 12);
    shape.configuration
        = ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R12"), 76.2), ZELTPAFPHead(QStringLiteral("H1"), 6.35));
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(course->GetTowMask(), Tows(1, 12));
    EXPECT_EQ(course->GetRoller(), QStringLiteral("R12"));
    EXPECT_EQ(course->GetRollerTows(), 12);
    EXPECT_NE(qobject_cast<const ZELTPTowCourse*>(course->GetToolPathCourse()), nullptr);
}

TEST_F(ZELKinTranslatorTest, TakesTheTowLengthsOfTheTowsTheCourseUses)
{
    Shape shape;
    shape.used = Tows(3, 12);
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    // The toolpath gives tow t (from 0) a length of 100 + t mm.
    for (int tow = 0; tow < kTows; ++tow) {
        SCOPED_TRACE(tow);
        const double expected = tow >= 2 && tow <= 11 ? 100.0 + tow : 0.0;
        EXPECT_TRUE(ZELTest::SameDouble(expected, course->GetTowLength(tow), ZELTest::kExact));
    }
}

namespace {

struct RollerCase
{
    const char* name;
    double rollerWidth;
    double towWidth;
    int rollerTows;
};
ZELTEST_PRINT_CASE_BY_NAME(RollerCase);

class ZELKinTranslatorRollerTows : public ZELKinTranslatorTest, public ::testing::WithParamInterface<RollerCase>
{
};

} // namespace

TEST_P(ZELKinTranslatorRollerTows, CountsTheWholeTowsAcrossTheRoller)
{
    Shape shape;
    shape.configuration = ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R"), GetParam().rollerWidth),
                                                    ZELTPAFPHead(QStringLiteral("H"), GetParam().towWidth));
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(course->GetRollerTows(), GetParam().rollerTows);
}

INSTANTIATE_TEST_SUITE_P(Widths, ZELKinTranslatorRollerTows,
                         ::testing::Values(RollerCase{"SixteenTowsWide", 101.6, 6.35, 16},
                                           RollerCase{"EightTowsWide", 50.8, 6.35, 8},
                                           RollerCase{"TwelveTowsWide", 76.2, 6.35, 12},
                                           RollerCase{"WithinTheAllowanceBelowEightTows", 50.7995, 6.35, 8},
                                           RollerCase{"BeyondTheAllowanceBelowEightTows", 50.79, 6.35, 7},
                                           RollerCase{"HeadWithoutTowWidth", 50.8, 0.0, 0},
                                           RollerCase{"TowWidthNotANumber", 50.8, ZELTest::kNaN, 0},
                                           RollerCase{"RollerOfInfiniteWidth", kInfinity, 6.35, 0}),
                         CaseName<RollerCase>);

// Course positions.

namespace {

struct SegmentCase
{
    const char* name;
    void (*shape)(Shape&);
    QStringList positions;
};
ZELTEST_PRINT_CASE_BY_NAME(SegmentCase);

class ZELKinTranslatorSegments : public ZELKinTranslatorTest, public ::testing::WithParamInterface<SegmentCase>
{
};

} // namespace

TEST_P(ZELKinTranslatorSegments, TakeTheirPointRangesAlongTheChain)
{
    Shape shape;
    GetParam().shape(shape);
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    QStringList positions;
    for (const ZELKinPosition* position : PositionsOf(course))
        positions.append(Describe(position));
    EXPECT_EQ(positions, GetParam().positions);
}

// The X of each point is given in the shape's table (see the fixture); a
// trajectory's last point is the next one's first. The default chain:
// approach 3200, 3210; roll-in 3210, 3220, 3230; tow runs 3230 to 3250 and
// 3250 to 3270; roll-out 3270, 3280, 3290; retract 3290, 3300. Every point
// is a position, each shared one once.
INSTANTIATE_TEST_SUITE_P(
    Shapes, ZELKinTranslatorSegments,
    ::testing::
        Values(SegmentCase{"DefaultShape", [](Shape&) {},
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300})},
               SegmentCase{"RollInAtTheRollInsFirstPoint", [](Shape& s) { s.rollInPointIndex = 0; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300})},
               SegmentCase{"RollInAtTheRollInsLastPoint", [](Shape& s) { s.rollInPointIndex = 2; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300})},
               SegmentCase{"NoRollInPoint", [](Shape& s) { s.rollInPointIndex = -1; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300})},
               SegmentCase{"RollOutAtTheRollOutsFirstPoint", [](Shape& s) { s.rollOutPointIndex = 0; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300})},
               SegmentCase{"NoRollOutPoint", [](Shape& s) { s.rollOutPointIndex = -1; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300})},
               SegmentCase{
                   "LongRollOut",
                   [](Shape& s) {
                       s.rollOutPoints = 5;
                       s.rollOutPointIndex = 3;
                   },
                   PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300, 3310, 3320})},
               SegmentCase{"LongApproach", [](Shape& s) { s.approachPoints = 4; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300, 3310,
                                       3320})},
               SegmentCase{"ApproachOfOnePoint", [](Shape& s) { s.approachPoints = 1; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290})},
               SegmentCase{"LongRetract", [](Shape& s) { s.retractPoints = 4; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300, 3310,
                                       3320})},
               SegmentCase{"LongTowRun", [](Shape& s) { s.runs[0].numPoints = 5; },
                           PositionXs({3200, 3210, 3220, 3230, 3240, 3250, 3260, 3270, 3280, 3290, 3300, 3310,
                                       3320})}),
    CaseName<SegmentCase>);

namespace {

struct PositionCase
{
    const char* name;
    int x;
    int nIndex;
    Tilts tilts;
    double feedrate;
};
ZELTEST_PRINT_CASE_BY_NAME(PositionCase);

class ZELKinTranslatorCoursePosition : public ZELKinTranslatorTest, public ::testing::WithParamInterface<PositionCase>
{
};

const Tilts kRollIn{0.10, 0.01, 0.20};
const Tilts kFirstRun{0.11, 0.02, 0.21};
const Tilts kSecondRun{0.12, 0.03, 0.22};
const Tilts kRollOut{0.13, 0.04, 0.23};

} // namespace

TEST_P(ZELKinTranslatorCoursePosition, CarriesItsTrajectorysTiltsFeedrateAndNIndex)
{
    ZELKinTowCourse* course = TranslateCourse();
    ASSERT_NE(course, nullptr);
    const ZELKinRollLayupPosition* found = nullptr;
    for (ZELKinPosition* position : PositionsOf(course)) {
        if (Describe(position) == QStringLiteral("X%1").arg(GetParam().x))
            found = qobject_cast<const ZELKinRollLayupPosition*>(position);
    }
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->GetCourse(), course);
    EXPECT_EQ(found->GetNIndex(), GetParam().nIndex);
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().tilts.forward, found->GetPAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().tilts.side, found->GetQAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().tilts.smoothing, found->GetSmoothAngle(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().feedrate, found->GetFeedrate(), ZELTest::kExact));
}

// The course counts 9 on-part points (indices 0 to 8), so its off-part
// points, the lifted 3200 and 3300, are numbered 9 + 2.
INSTANTIATE_TEST_SUITE_P(DefaultShape, ZELKinTranslatorCoursePosition,
                         ::testing::Values(PositionCase{"LiftedApproachPoint", 3200, 11, kRollIn, 10000.0},
                                           PositionCase{"ApproachOnPartPoint", 3210, 1, kRollIn, 10000.0},
                                           PositionCase{"RollInPoint", 3220, 2, kRollIn, 6000.0},
                                           PositionCase{"FirstRunStart", 3230, 3, kFirstRun, 5000.0},
                                           PositionCase{"FirstRunMiddle", 3240, 4, kFirstRun, 5000.0},
                                           PositionCase{"SecondRunStart", 3250, 5, kSecondRun, 5500.0},
                                           PositionCase{"SecondRunMiddle", 3260, 6, kSecondRun, 5500.0},
                                           PositionCase{"RollOutStart", 3270, 7, kRollOut, 4000.0},
                                           PositionCase{"BeforeTheRollOutPoint", 3280, 8, kRollOut, 4000.0},
                                           PositionCase{"TheRollOutPoint", 3290, 9, kRollOut, 4000.0},
                                           PositionCase{"LiftedRetractPoint", 3300, 11, kRollOut, 9000.0}),
                         CaseName<PositionCase>);

TEST_F(ZELKinTranslatorTest, NumbersAnOnPartPointWithoutIndexAsTheFirst)
{
    Shape shape;
    builder.AddFlatLayup(QStringLiteral("ply one"), {shape});
    auto* source
        = qobject_cast<ZELTPTowCourse*>(qobject_cast<ZELTPRollLayupProcedure*>(builder.GetProgram()->GetProcedure(0))
                                            ->GetApproachLink()
                                            ->GetToCourse());
    ASSERT_NE(source, nullptr);
    source->GetRollInPoint()->SetIndex(-1);

    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    const QList<ZELKinPosition*> positions = PositionsOf(layup->GetCourse(0));
    ASSERT_GE(positions.size(), 3);
    EXPECT_EQ(Describe(positions.at(2)), QStringLiteral("X3220"));
    EXPECT_EQ(qobject_cast<ZELKinRollLayupPosition*>(positions.at(2))->GetNIndex(), 1);
    // The course now counts 8 on-part points.
    EXPECT_EQ(qobject_cast<ZELKinRollLayupPosition*>(positions.at(0))->GetNIndex(), 10);
}

// Tow commands.

TEST_F(ZELKinTranslatorTest, PutsTowCommandsAfterTheFirstPositionOfEachRunLaterOnesFirst)
{
    // Run 1 lays tows 1-12 and forces 1-4; run 2 lays 5-16 and forces 5-8
    // (its forced mask 1-8 within the tows it lays): it adds 13-16, cuts
    // 1-4, forces 5-8, releases 1-4 and changes the rates.
    ZELKinTowCourse* course = TranslateCourse();
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(Describe(course),
              (QStringList{QStringLiteral("X3200"),    QStringLiteral("X3210"),        QStringLiteral("X3220"),
                           QStringLiteral("X3230"),    QStringLiteral("Feed"),         QStringLiteral("Force 000F"),
                           QStringLiteral("Add 0FFF"), QStringLiteral("X3240"),        QStringLiteral("X3250"),
                           QStringLiteral("Feed"),     QStringLiteral("Release 000F"), QStringLiteral("Force 00F0"),
                           QStringLiteral("Cut 000F"), QStringLiteral("Add F000"),     QStringLiteral("X3260"),
                           QStringLiteral("X3270"),    QStringLiteral("Cut FFF0"),     QStringLiteral("Release 00F0"),
                           QStringLiteral("X3280"),    QStringLiteral("X3290"),      QStringLiteral("X3300")}));
    const auto* firstFeed = qobject_cast<const ZELKinTowFeedCommand*>(course->GetCommand(4));
    const auto* secondFeed = qobject_cast<const ZELKinTowFeedCommand*>(course->GetCommand(9));
    ASSERT_NE(firstFeed, nullptr);
    ASSERT_NE(secondFeed, nullptr);
    EXPECT_TRUE(SameRates(Rates(1, 4, 0.5), firstFeed->GetRates()));
    EXPECT_TRUE(SameRates(Rates(5, 8, 0.7), secondFeed->GetRates()));
}

TEST_F(ZELKinTranslatorTest, GivesNoTowCommandsWhereTheTowsStayAsTheyWere)
{
    Shape shape;
    shape.runs[1] = shape.runs[0];
    shape.runs[1].feedrate = 4500.0;
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(Describe(course),
              (QStringList{QStringLiteral("X3200"), QStringLiteral("X3210"), QStringLiteral("X3220"),
                           QStringLiteral("X3230"), QStringLiteral("Feed"), QStringLiteral("Force 000F"),
                           QStringLiteral("Add 0FFF"), QStringLiteral("X3240"), QStringLiteral("X3250"),
                           QStringLiteral("X3260"), QStringLiteral("X3270"), QStringLiteral("Cut 0FFF"),
                           QStringLiteral("Release 000F"), QStringLiteral("X3280"), QStringLiteral("X3290"), QStringLiteral("X3300")}));
}

TEST_F(ZELKinTranslatorTest, LaysAndCutsUnforcedTowsWithoutForceOrFeedCommands)
{
    Shape shape;
    const ZELCompTowMask none(kTows, false);
    shape.runs = {{Tows(1, 16), none, {}, 5000.0, kFirstRun, 3}, {Tows(1, 8), none, {}, 5000.0, kSecondRun, 3}};
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(
        Describe(course),
        (QStringList{QStringLiteral("X3200"), QStringLiteral("X3210"), QStringLiteral("X3220"), QStringLiteral("X3230"),
                     QStringLiteral("Add FFFF"), QStringLiteral("X3240"), QStringLiteral("X3250"),
                     QStringLiteral("Cut FF00"), QStringLiteral("X3260"), QStringLiteral("X3270"),
                     QStringLiteral("Cut 00FF"), QStringLiteral("X3280"), QStringLiteral("X3290"), QStringLiteral("X3300")}));
}

namespace {

struct RateCase
{
    const char* name;
    double secondRate;
    bool feeds;
};
ZELTEST_PRINT_CASE_BY_NAME(RateCase);

class ZELKinTranslatorForcedRates : public ZELKinTranslatorTest, public ::testing::WithParamInterface<RateCase>
{
};

} // namespace

TEST_P(ZELKinTranslatorForcedRates, GiveAFeedCommandWhenOneChangesByMoreThanAThousandth)
{
    Shape shape;
    shape.runs[1] = shape.runs[0];
    shape.runs[1].rates[2] = GetParam().secondRate;
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    // The second run's first position is X3250, at command index 8.
    ASSERT_EQ(Describe(course->GetCommand(8)), QStringLiteral("X3250"));
    const auto* feed = qobject_cast<const ZELKinTowFeedCommand*>(course->GetCommand(9));
    ASSERT_EQ(feed != nullptr, GetParam().feeds);
    if (GetParam().feeds) {
        EXPECT_TRUE(SameRates(shape.runs[1].rates, feed->GetRates()));
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, ZELKinTranslatorForcedRates,
                         ::testing::Values(RateCase{"Unchanged", 0.5, false},
                                           RateCase{"WithinAThousandth", 0.5009, false},
                                           RateCase{"BeyondAThousandth", 0.502, true},
                                           RateCase{"DownBeyondAThousandth", 0.498, true}),
                         CaseName<RateCase>);

TEST_F(ZELKinTranslatorTest, FeedsATowThatARunGivesARateWhenTheRunBeforeGaveNone)
{
    Shape shape;
    shape.runs[0].rates.clear();
    shape.runs[0].forced = ZELCompTowMask(kTows, false);
    shape.runs[1] = shape.runs[0];
    shape.runs[1].rates = {0.0, 0.0, 0.3};
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(
        Describe(course),
        (QStringList{QStringLiteral("X3200"), QStringLiteral("X3210"), QStringLiteral("X3220"), QStringLiteral("X3230"),
                     QStringLiteral("Add 0FFF"), QStringLiteral("X3240"), QStringLiteral("X3250"),
                     QStringLiteral("Feed"), QStringLiteral("X3260"), QStringLiteral("X3270"),
                     QStringLiteral("Cut 0FFF"), QStringLiteral("X3280"), QStringLiteral("X3290"), QStringLiteral("X3300")}));
}

TEST_F(ZELKinTranslatorTest, PutsTheTowCommandsOfARunWithoutPositionsAtTheEndOfTheCourse)
{
    // A run of one point shares it with the next run and gives no position.
    Shape shape;
    shape.runs[0].numPoints = 1;
    ZELKinTowCourse* course = TranslateCourse(shape);
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(Describe(course),
              (QStringList{QStringLiteral("X3200"), QStringLiteral("X3210"), QStringLiteral("X3220"),
                           QStringLiteral("Feed"), QStringLiteral("Force 000F"), QStringLiteral("Add 0FFF"),
                           QStringLiteral("X3230"), QStringLiteral("Feed"), QStringLiteral("Release 000F"),
                           QStringLiteral("Force 00F0"), QStringLiteral("Cut 000F"), QStringLiteral("Add F000"),
                           QStringLiteral("X3240"), QStringLiteral("X3250"), QStringLiteral("Cut FFF0"),
                           QStringLiteral("Release 00F0"), QStringLiteral("X3260"), QStringLiteral("X3270"),
                           QStringLiteral("X3280")}));
}

namespace {

ZELTPTrajectory* OnPartTrajectory()
{
    return new ZELTPOnPartTrajectory(5000.0, 0.1, 0.0, 0.2);
}

ZELTPTrajectory* OffPartTrajectory()
{
    return new ZELTPTrajectory(5000.0);
}

struct NotTowCase
{
    const char* name;
    ZELTPTrajectory* (*trajectory)();
};
ZELTEST_PRINT_CASE_BY_NAME(NotTowCase);

class ZELKinTranslatorNotTow : public ZELKinTranslatorTest, public ::testing::WithParamInterface<NotTowCase>
{
};

} // namespace

TEST_P(ZELKinTranslatorNotTow, BetweenRollInAndRollOutAbortsTheTranslation)
{
    // Approach 3200-3210, roll-in 3210-3230, one tow run 3230-3250, the odd
    // trajectory 3250-3260, roll-out 3260-3280, retract 3280-3290.
    const double y = 3500.0;
    QList<ZELTPPoint*> onPart;
    for (int i = 0; i < 7; ++i)
        onPart.append(builder.OnPartPoint(3210.0 + kSpacing * i, y, i));
    const auto run = [&](auto* trajectory, int first, int last) {
        for (int i = first; i <= last; ++i)
            trajectory->AddPoint(onPart.at(i));
        return trajectory;
    };
    auto* course = new ZELTPTowCourse(&container, QStringLiteral("odd"));
    course->SetUsedTowMask(Tows(1, 16));
    course->SetMachineConfiguration(Shape().configuration);
    course->AddTrajectory(ToolpathBuilder::Trajectory(10000.0, {builder.OffPartPoint(3200.0, y, kLift), onPart.at(0)}));
    course->AddTrajectory(run(new ZELTPOnPartTrajectory(6000.0, 0.1, 0.0, 0.2), 0, 2));
    course->AddTrajectory(run(new ZELTPTowTrajectory(5000.0, 0.1, 0.0, 0.2, Tows(1, 16), Tows(1, 16), {}), 2, 4));
    course->AddTrajectory(run(GetParam().trajectory(), 4, 5));
    course->AddTrajectory(run(new ZELTPOnPartTrajectory(4000.0, 0.1, 0.0, 0.2), 5, 6));
    course->AddTrajectory(ToolpathBuilder::Trajectory(9000.0, {onPart.at(6), builder.OffPartPoint(3290.0, y, kLift)}));
    course->SetRollInPoint(onPart.at(1));
    course->SetRollOutPoint(onPart.at(6));
    ZELTPRollLayupProcedure* source = builder.AddLayup(QStringLiteral("ply one"));
    source->SetApproachLink(builder.LiftedLink(QStringLiteral("approach"), 3100.0, y));
    source->GetApproachLink()->SetToCourse(course);
    course->SetRetractLink(builder.LiftedLink(QStringLiteral("retract"), 3400.0, y));

    EXPECT_THROW_MESSAGE(Translate(), ZELSysException,
                         "$.program.procedures[0].courses[0]: procedure 'ply one', course 1: not a tow trajectory");
    EXPECT_EQ(output, QStringLiteral("Translating the program\n"));
}

INSTANTIATE_TEST_SUITE_P(Trajectories, ZELKinTranslatorNotTow,
                         ::testing::Values(NotTowCase{"OnPart", OnPartTrajectory},
                                           NotTowCase{"OffPart", OffPartTrajectory}),
                         CaseName<NotTowCase>);

// Where a course that does not fit the machine stands.

TEST_F(ZELKinTranslatorTest, NamesTheToolpathPathProcedureAndNumberOfACourseWhoseMaskIsWiderThanTheMachines)
{
    // A probing procedure first: procedures count whatever their kind.
    builder.AddProbing(QStringLiteral("probe"), {{ZELMathPoint(3100, 3500, -1300)}}, {5080.0}, {});
    Shape wide;
    wide.y = 3600.0;
    wide.used = ZELCompTowMask(32, true);
    builder.AddFlatLayup(QStringLiteral("ply one"), {Shape(), wide});

    EXPECT_THROW_MESSAGE(Translate(), ZELSysException,
                         "$.program.procedures[1].courses[1]: procedure 'ply one', course 2: tow mask size does not "
                         "match machine tow mask size");
}

TEST_F(ZELKinTranslatorTest, NumbersACourseAmongAllTheCoursesOfItsProcedure)
{
    // The plain course is not translated, but the toolpath still counts it.
    ZELTPRollLayupProcedure* source = builder.AddLayup(QStringLiteral("ply one"));
    ZELTPCourseLink* approach = builder.LiftedLink(QStringLiteral("approach"), 3100.0, 3500.0);
    auto* plainCourse = new ZELTPCourse(&container, QStringLiteral("plain"));
    ZELTPCourseLink* between = builder.LiftedLink(QStringLiteral("between"), 3150.0, 3500.0);
    Shape narrow;
    narrow.used = ZELCompTowMask(8, true);
    ZELTPTowCourse* towCourse = builder.AddCourse(QStringLiteral("tows"), narrow);
    source->SetApproachLink(approach);
    approach->SetToCourse(plainCourse);
    plainCourse->SetRetractLink(between);
    between->SetToCourse(towCourse);
    towCourse->SetRetractLink(builder.LiftedLink(QStringLiteral("retract"), 3400.0, 3500.0));

    EXPECT_THROW_MESSAGE(Translate(), ZELSysException,
                         "$.program.procedures[0].courses[1]: procedure 'ply one', course 2: tow mask size does not "
                         "match machine tow mask size");
}

// Probing.

TEST_F(ZELKinTranslatorTest, GivesAProbeProcedureItsPositionsAndProbeCommandsInTurn)
{
    ZELTPProbingProcedure* source = builder.AddProbing(
        QStringLiteral("probe"),
        {{ZELMathPoint(3100, 3500, -1300), ZELMathPoint(3110, 3500, -1490)},
         {ZELMathPoint(3120, 3500, -1300), ZELMathPoint(3600, 3700, -1300), ZELMathPoint(3610, 3700, -1490)},
         {ZELMathPoint(3620, 3700, -1200)}},
        {5080.0, 4000.0, 3000.0}, {12.7, 25.4});

    ZELKinProgram* program = Translate();
    ASSERT_EQ(program->GetNumProcedures(), 1);
    auto* probe = qobject_cast<ZELKinProbeProcedure*>(program->GetProcedure(0));
    ASSERT_NE(probe, nullptr);
    EXPECT_EQ(probe->GetToolPathProcedure(), source);
    EXPECT_TRUE(ZELTest::SameDouble(-900.0, probe->GetSafetyPlane().GetOrigin().GetZ(), ZELTest::kExact));
    EXPECT_EQ(Describe(probe),
              (QStringList{QStringLiteral("X3100"), QStringLiteral("X3110"), QStringLiteral("Probe 12.7"),
                           QStringLiteral("X3120"), QStringLiteral("X3600"), QStringLiteral("X3610"),
                           QStringLiteral("Probe 25.4"), QStringLiteral("X3620")}));
    for (const int index : {2, 6}) {
        const auto* command = qobject_cast<const ZELKinProbeCommand*>(probe->GetCommand(index));
        ASSERT_NE(command, nullptr);
        EXPECT_EQ(command->GetTargetShape(), ZELKinProbeCommand::Sphere);
    }
    EXPECT_EQ(output, QStringLiteral("Translating the program\nSolving kinematics\n"));
}

TEST_F(ZELKinTranslatorTest, SetsTheTipCoordinatesAndFeedrateOfEachProbePositionWithoutSolvingIt)
{
    ZELTPProbingProcedure* source = builder.AddProbing(
        QStringLiteral("probe"), {{ZELMathPoint(3100, 3500, -1300)}, {ZELMathPoint(3600.5, 3700.25, -1490.75)}},
        {5080.0, 4000.0}, {12.7});
    ZELKinProgram* program = Translate();
    ASSERT_EQ(program->GetNumProcedures(), 1);
    const QList<ZELKinPosition*> positions = PositionsOf(program->GetProcedure(0));
    ASSERT_EQ(positions.size(), 2);
    const double feedrates[] = {5080.0, 4000.0};
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        const ZELKinPosition* position = positions.at(i);
        const ZELTPPoint* point = source->GetTrajectory(i)->GetPoint(0);
        EXPECT_EQ(position->GetToolPathPoint(), point);
        EXPECT_TRUE(ZELTest::SameDouble(feedrates[i], position->GetFeedrate(), ZELTest::kExact));
        const ZELMathPoint tip = point->GetTipCoordinates();
        EXPECT_TRUE(ZELTest::SameDouble(tip.GetX(), position->GetVariableValue(Axis("X")), ZELTest::kExact));
        EXPECT_TRUE(ZELTest::SameDouble(tip.GetY(), position->GetVariableValue(Axis("Y")), ZELTest::kExact));
        EXPECT_TRUE(ZELTest::SameDouble(tip.GetZ(), position->GetVariableValue(Axis("Z")), ZELTest::kExact));
        for (const char* axis : {"C", "A", "C1", "U"})
            EXPECT_FALSE(position->IsVariableDefined(Axis(axis))) << axis;
    }
}

TEST_F(ZELKinTranslatorTest, GivesAProbingWithoutTrajectoriesItsProbeCommandsAlone)
{
    builder.AddProbing(QStringLiteral("probe"), {}, {}, {10.0, 20.0});
    ZELKinProgram* program = Translate();
    ASSERT_EQ(program->GetNumProcedures(), 1);
    EXPECT_EQ(Describe(program->GetProcedure(0)),
              (QStringList{QStringLiteral("Probe 10"), QStringLiteral("Probe 20")}));
}

// Solving.

TEST_F(ZELKinTranslatorTest, WritesTheSolvedSeriesIntoTheLayupPositionsInPathOrder)
{
    Shape second;
    second.y = 3600.0;
    builder.AddFlatLayup(QStringLiteral("ply one"), {Shape(), second});
    ZELKinRollLayupProcedure* layup = TranslateLayup();
    ASSERT_NE(layup, nullptr);
    const QList<ZELKinPosition*> positions = PositionsOf(layup);
    // Eleven positions on each course and one on each of the three links.
    ASSERT_EQ(positions.size(), 25);

    ::testing::internal::CaptureStdout();
    const ZELKinSolutionSeries series = solver->Solve(layup);
    ::testing::internal::GetCapturedStdout();
    ASSERT_EQ(series.GetCount(), 25);
    for (int i = 0; i < 25; ++i) {
        SCOPED_TRACE(Describe(positions.at(i)).toStdString());
        EXPECT_EQ(series.GetCommand(i), positions.at(i));
        for (const char* axis : {"X", "Y", "Z", "C", "A", "C1"})
            EXPECT_TRUE(positions.at(i)->IsVariableDefined(Axis(axis))) << axis;
        EXPECT_TRUE(ZELKinSolution(positions.at(i)) == series.GetSolution(i));
    }
}

TEST_F(ZELKinTranslatorTest, SolvesEachCoursePositionWithTheRollerCentreAboveItsPoint)
{
    ZELKinTowCourse* course = TranslateCourse();
    ASSERT_NE(course, nullptr);
    for (const ZELKinPosition* position : PositionsOf(course)) {
        SCOPED_TRACE(Describe(position).toStdString());
        const ZELMathPoint point = position->GetToolPathPoint()->GetTipCoordinates();
        EXPECT_TRUE(ZELTest::SameDouble(point.GetX(), position->GetVariableValue(Axis("X")), kTip));
        EXPECT_TRUE(ZELTest::SameDouble(point.GetY(), position->GetVariableValue(Axis("Y")), kTip));
        EXPECT_TRUE(ZELTest::SameDouble(point.GetZ() + machine->GetRollerRadius(),
                                        position->GetVariableValue(Axis("Z")), kTip));
        // The panel faces the head with its wrist unbent.
        EXPECT_TRUE(ZELTest::SameDouble(0.0, position->GetVariableValue(Axis("A")), kTip));
    }
}

TEST_F(ZELKinTranslatorTest, DropsALayupThatCannotBeSolvedWithItsMessageAndKeepsTheOthers)
{
    ZELTPRollLayupProcedure* near = builder.AddFlatLayup(QStringLiteral("ply one"));
    Shape turning;
    turning.halfTurnIndex = 4;
    builder.AddFlatLayup(QStringLiteral("half turn"), {turning});
    ZELTPProbingProcedure* probing
        = builder.AddProbing(QStringLiteral("probe"), {{ZELMathPoint(3100, 3500, -1300)}}, {5080.0}, {});

    ZELKinProgram* program = Translate();
    ASSERT_EQ(program->GetNumProcedures(), 2);
    EXPECT_EQ(program->GetProcedure(0)->GetToolPathProcedure(), near);
    EXPECT_EQ(program->GetProcedure(1)->GetToolPathProcedure(), probing);
    const QString message = QStringLiteral("      Could not successfully find a kinematics solution for procedure "
                                           "half turn. It will be omitted from the program.\n");
    EXPECT_TRUE(output.startsWith(QStringLiteral("Translating the program\nSolving kinematics\n  Processing ply one\n"
                                                 "  Processing half turn\n")))
        << output.toStdString();
    EXPECT_TRUE(output.endsWith(message)) << output.toStdString();
    EXPECT_EQ(output.count(message), 1);
}

TEST_F(ZELKinTranslatorTest, SolvingLayupsSideBySideGivesTheProgramAndLinesOfSolvingThemOneByOne)
{
    Shape second;
    second.y = 3600.0;
    Shape turning;
    turning.halfTurnIndex = 4;
    builder.AddFlatLayup(QStringLiteral("ply one"), {Shape(), second});
    builder.AddFlatLayup(QStringLiteral("half turn"), {turning});
    builder.AddFlatLayup(QStringLiteral("ply three"), {second});
    builder.AddFlatLayup(QStringLiteral("ply four"), {Shape(), second});

    const ZELKinProgram* oneByOne = Translate();
    const QString oneByOneOutput = output;
    ZELKinTranslator translator(solver.get());
    translator.SetCurrentDateTime(kDate);
    translator.SetThreadCount(3);
    const ZELKinProgram* sideBySide = TranslateWith(translator);

    EXPECT_EQ(output, oneByOneOutput);
    EXPECT_TRUE(output.contains(QStringLiteral("  Processing half turn\n    Kinematics solving failed for course 1 at "
                                               "point")))
        << output.toStdString();
    EXPECT_EQ(output.count(QStringLiteral("It will be omitted from the program.")), 1);
    ASSERT_EQ(sideBySide->GetNumProcedures(), 3);
    ASSERT_EQ(oneByOne->GetNumProcedures(), 3);
    for (int p = 0; p < 3; ++p) {
        const QList<ZELKinPosition*> expected = PositionsOf(oneByOne->GetProcedure(p));
        const QList<ZELKinPosition*> actual = PositionsOf(sideBySide->GetProcedure(p));
        ASSERT_EQ(actual.size(), expected.size());
        for (qsizetype i = 0; i < actual.size(); ++i) {
            for (const char* axis : {"X", "Y", "Z", "C", "A", "C1"}) {
                SCOPED_TRACE(QStringLiteral("procedure %1 position %2 %3").arg(p).arg(i).arg(QLatin1String(axis))
                                 .toStdString());
                EXPECT_TRUE(ZELTest::SameDouble(expected.at(i)->GetVariableValue(Axis(axis)),
                                                actual.at(i)->GetVariableValue(Axis(axis)), ZELTest::kExact));
            }
        }
    }
}

TEST_F(ZELKinTranslatorTest, AThreadCountBelowOneSolvesOneByOne)
{
    builder.AddFlatLayup(QStringLiteral("ply one"));
    ZELKinTranslator translator(solver.get());
    translator.SetCurrentDateTime(kDate);
    translator.SetThreadCount(0);
    const ZELKinProgram* program = TranslateWith(translator);
    ASSERT_EQ(program->GetNumProcedures(), 1);
    EXPECT_EQ(output, QStringLiteral("Translating the program\nSolving kinematics\n  Processing ply one\n"));
}

TEST_F(ZELKinTranslatorTest, LeavesADroppedLayupUnsolvedInTheContainer)
{
    Shape turning;
    turning.halfTurnIndex = 4;
    builder.AddFlatLayup(QStringLiteral("half turn"), {turning});
    ZELKinProgram* program = Translate();
    EXPECT_EQ(program->GetNumProcedures(), 0);
    ZELKinRollLayupProcedure* dropped = nullptr;
    for (ZELGeoGeometry* geometry : container.GetGeometries()) {
        if (auto* layup = qobject_cast<ZELKinRollLayupProcedure*>(geometry))
            dropped = layup;
    }
    ASSERT_NE(dropped, nullptr);
    EXPECT_EQ(dropped->GetProgram(), program);
    for (const ZELKinPosition* position : PositionsOf(dropped))
        EXPECT_FALSE(position->IsVariableDefined(Axis("X")));
}

// Initialisation.

TEST_F(ZELKinTranslatorTest, InitializesEveryObjectItCreates)
{
    Shape second;
    second.y = 3600.0;
    builder.AddFlatLayup(QStringLiteral("ply one"), {Shape(), second});
    builder.AddProbing(QStringLiteral("probe"), {{ZELMathPoint(3100, 3500, -1300)}, {ZELMathPoint(3200, 3500, -1300)}},
                       {5080.0, 4000.0}, {12.7});
    ZELTPCourseLink* approach = builder.AddFlatLayup(QStringLiteral("ply two"))->GetApproachLink();
    auto* change = new ZELTPToolChangeLink(&container, QStringLiteral("change"));
    ZELTPOffPartPoint* remove = builder.OffPartPoint(3100.0, 3500.0, kLinkLift);
    change->AddTrajectory(ToolpathBuilder::Trajectory(kLinkFeedrate, {remove}));
    change->SetToolRemovePoint(remove);
    change->SetToCourse(approach->GetToCourse());
    qobject_cast<ZELTPRollLayupProcedure*>(builder.GetProgram()->GetProcedure(2))->SetApproachLink(change);

    const QList<ZELGeoGeometry*> before = container.GetGeometries();
    Translate();
    QSet<QByteArray> classes;
    for (ZELGeoGeometry* geometry : container.GetGeometries()) {
        if (before.contains(geometry))
            continue;
        classes.insert(geometry->metaObject()->className());
        EXPECT_TRUE(geometry->IsInitialized()) << geometry->metaObject()->className();
    }
    EXPECT_EQ(
        classes,
        (QSet<QByteArray>{"ZELKinProgram", "ZELKinRollLayupProcedure", "ZELKinCourseLink", "ZELKinPosition",
                          "ZELKinTowCourse", "ZELKinRollLayupPosition", "ZELKinTowCommand", "ZELKinTowFeedCommand",
                          "ZELKinToolChange", "ZELKinProbeProcedure", "ZELKinProbeCommand"}));
}
