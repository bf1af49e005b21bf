#include <zelgenpart.h>
#include <zelgentoolpathgenerator.h>

#include <zelgeocontainer.h>
#include <zelsysexception.h>
#include <zeltpcourselink.h>
#include <zeltpdocumentwriter.h>
#include <zeltpprobingprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptoolchangelink.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QtMath>

namespace {

constexpr double kAngleTolerance = 1e-12;

QByteArray Generate(const ZELGenPart& part, const ZELGenToolpathGenerator::Settings& settings)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ZELTPDocumentWriter writer(&buffer, QStringLiteral("generated.json"));
    ZELGenToolpathGenerator(part, settings).Write(writer);
    return buffer.data();
}

ZELGenToolpathGenerator::Settings SettingsOf(const QList<double>& plies, int courses, int points)
{
    ZELGenToolpathGenerator::Settings settings;
    settings.name = QStringLiteral("generated");
    settings.plyAngles = plies;
    settings.courses = courses;
    settings.pointsPerCourse = points;
    return settings;
}

// The courses of a layup in laying order, from its approach link on.
QList<const ZELTPTowCourse*> CoursesOf(const ZELTPRollLayupProcedure& layup)
{
    QList<const ZELTPTowCourse*> courses;
    for (const ZELTPCourseLink* link = layup.GetApproachLink(); link && link->GetToCourse();) {
        const auto* course = qobject_cast<const ZELTPTowCourse*>(link->GetToCourse());
        if (!course)
            break;
        courses.append(course);
        link = course->GetRetractLink();
    }
    return courses;
}

struct GeneratedCase
{
    const char* name;
    const char* part;
    int pointsPerCourse;
};
ZELTEST_PRINT_CASE_BY_NAME(GeneratedCase);

const GeneratedCase kGenerated[] = {
    {"Flat50", "flat", 50},         {"Flat2500", "flat", 2500},
    {"Cylinder50", "cylinder", 50}, {"Cylinder2500", "cylinder", 2500},
    {"Dome50", "dome", 50},         {"Dome2500", "dome", 2500},
};

class ZELGenToolpathGeneratorRead : public ::testing::TestWithParam<GeneratedCase>
{
protected:
    void SetUp() override
    {
        m_part = ZELGenPart::Create(QLatin1String(GetParam().part));
        ASSERT_NE(m_part, nullptr);
        const QByteArray document = Generate(*m_part,
                                             SettingsOf({0.0, 45.0, -45.0, 90.0}, 3, GetParam().pointsPerCourse));
        m_program = ZELTPProgramReader(&m_container).ReadData(document, QStringLiteral("generated.json"));
        ASSERT_NE(m_program, nullptr);
    }

    std::unique_ptr<ZELGenPart> m_part;
    ZELGeoContainer m_container;
    ZELTPProgram* m_program = nullptr;
};

} // namespace

TEST_P(ZELGenToolpathGeneratorRead, HoldsALayupPerPlyAngleThenTheProbing)
{
    ASSERT_EQ(m_program->GetNumProcedures(), 5);
    const QStringList names{QStringLiteral("Ply 1 0"), QStringLiteral("Ply 2 +45"), QStringLiteral("Ply 3 -45"),
                            QStringLiteral("Ply 4 +90"), QStringLiteral("probe tool")};
    const QList<double> angles{0.0, 45.0, -45.0, 90.0};
    for (int i = 0; i < 4; ++i) {
        const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(m_program->GetProcedure(i));
        ASSERT_NE(layup, nullptr) << i;
        EXPECT_EQ(layup->GetName(), names.at(i));
        ASSERT_EQ(layup->GetNumPlyDescriptions(), 1);
        EXPECT_NEAR(layup->GetPlyDescription(0).GetOrientation(), qDegreesToRadians(angles.at(i)), kAngleTolerance);
        EXPECT_EQ(CoursesOf(*layup).size(), 3) << i;
    }
    const auto* probing = qobject_cast<const ZELTPProbingProcedure*>(m_program->GetProcedure(4));
    ASSERT_NE(probing, nullptr);
    EXPECT_EQ(probing->GetName(), names.at(4));
    EXPECT_EQ(probing->GetNumProbingPoints(), 3);
}

// The last course of the first ply takes the 8-tow roller: the link into it
// changes the roller, and so does the first link after it.
TEST_P(ZELGenToolpathGeneratorRead, TheNarrowRollerComesOnForTheLastCourseOfTheFirstPlyAndOffAfterIt)
{
    const auto* first = qobject_cast<const ZELTPRollLayupProcedure*>(m_program->GetProcedure(0));
    const auto* second = qobject_cast<const ZELTPRollLayupProcedure*>(m_program->GetProcedure(1));
    ASSERT_TRUE(first && second);
    const QList<const ZELTPTowCourse*> courses = CoursesOf(*first);
    ASSERT_EQ(courses.size(), 3);
    EXPECT_EQ(courses.at(2)->GetMachineConfiguration().GetTool().GetName(), QStringLiteral("R8-2in"));
    EXPECT_EQ(courses.at(1)->GetMachineConfiguration().GetTool().GetName(), QStringLiteral("R16-4in"));

    const auto* into = qobject_cast<const ZELTPToolChangeLink*>(courses.at(1)->GetRetractLink());
    ASSERT_NE(into, nullptr);
    EXPECT_EQ(into->GetNextMachineConfiguration().GetTool().GetName(), QStringLiteral("R8-2in"));
    EXPECT_EQ(qobject_cast<const ZELTPToolChangeLink*>(courses.at(2)->GetRetractLink()), nullptr);
    const auto* back = qobject_cast<const ZELTPToolChangeLink*>(second->GetApproachLink());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->GetNextMachineConfiguration().GetTool().GetName(), QStringLiteral("R16-4in"));
}

// Each course lays at least the points asked for along its laid stretch
// (more where tows are added or cut between them), plus its lead points.
TEST_P(ZELGenToolpathGeneratorRead, EachCourseHasThePointsAskedForAlongItsLaidStretch)
{
    for (int i = 0; i < 4; ++i) {
        const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(m_program->GetProcedure(i));
        for (const ZELTPTowCourse* course : CoursesOf(*layup)) {
            int towPoints = 0;
            for (int t = 0; t < course->GetNumTrajectories(); ++t) {
                if (const auto* tow = dynamic_cast<const ZELTPTowTrajectory*>(course->GetTrajectory(t)))
                    towPoints += tow->GetNumPoints() - 1;
            }
            EXPECT_GE(towPoints + 1, GetParam().pointsPerCourse) << course->GetName().toStdString();
            EXPECT_LE(towPoints + 1, GetParam().pointsPerCourse + 16) << course->GetName().toStdString();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryShape, ZELGenToolpathGeneratorRead, ::testing::ValuesIn(kGenerated));

TEST(ZELGenToolpathGenerator, TheSameSettingsGiveTheSameBytes)
{
    const std::unique_ptr<ZELGenPart> dome = ZELGenPart::Create(QStringLiteral("dome"));
    const ZELGenToolpathGenerator::Settings settings = SettingsOf({17.5, -60.0}, 5, 77);
    const QByteArray first = Generate(*dome, settings);
    EXPECT_FALSE(first.isEmpty());
    EXPECT_EQ(Generate(*dome, settings), first);
}

TEST(ZELGenToolpathGenerator, TheProgramIsNamedAsTheSettingsSay)
{
    const std::unique_ptr<ZELGenPart> panel = ZELGenPart::Create(QStringLiteral("flat"));
    ZELGenToolpathGenerator::Settings settings = SettingsOf({0.0}, 1, 2);
    settings.name = QStringLiteral("Fl\u00fcgel-7");
    ZELGeoContainer container;
    const ZELTPProgram* program
        = ZELTPProgramReader(&container).ReadData(Generate(*panel, settings), QStringLiteral("named.json"));
    EXPECT_EQ(program->GetName(), QStringLiteral("Fl\u00fcgel-7"));
    EXPECT_EQ(program->GetRevision(), QStringLiteral("A"));
}
