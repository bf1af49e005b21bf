// Posted NC read back as the controller runs it: the hand-written golden
// files of the writer's tests, in a folder and in a bundle, and what the
// post never writes.

#include "zelkinnctestprograms.h"

#include <zelkinncreplay.h>

#include <zelsysexception.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <limits>

using ZELTest::NCFixture;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInch = 25.4;
constexpr double kPi = 3.14159265358979323846;

const QString kPlyFile = QStringLiteral("PART#0101.PPF");
const QString kProgramSetFile = QStringLiteral("PART.PPSF");

// The machine variables of NCFixture, in its order.
enum Axis { X, Y, Z, A, C1, U };

// The number, from 1, of the first line of `text` that starts with `start`.
unsigned LineOf(const QString& text, const QString& start)
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        if (lines.at(i).startsWith(start))
            return unsigned(i + 1);
    }
    ADD_FAILURE() << "no line starts with " << start.toStdString();
    return 0;
}

void WriteText(const QString& path, const QString& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(text.toUtf8());
}

class ZELKinNCReplayTest : public ::testing::Test
{
protected:
    // A posted program's folder, PART, inside the test's folder, holding
    // the golden program-set file and the ply file `plyText`.
    QString PostFolder(const QString& plyText = ZELTest::Golden(kPlyFile))
    {
        const QString folder = QDir(m_folder.path()).filePath(QStringLiteral("PART"));
        EXPECT_TRUE(QDir().mkpath(folder));
        WriteText(QDir(folder).filePath(kProgramSetFile), ZELTest::Golden(kProgramSetFile));
        WriteText(QDir(folder).filePath(kPlyFile), plyText);
        return folder;
    }

    ZELKinNCPlyFile ReadOnePly(const QString& plyText)
    {
        const ZELKinNCProgram program = ZELKinNCReplay(*f.machine).Read(PostFolder(plyText));
        EXPECT_EQ(program.plies.size(), 1);
        return program.plies.value(0);
    }

    // The motion of the line `line`; fails the test when there is none.
    static ZELKinNCMotion MotionOf(const ZELKinNCPlyFile& ply, unsigned line)
    {
        for (const ZELKinNCMotion& motion : ply.motions) {
            if (motion.line == line)
                return motion;
        }
        ADD_FAILURE() << "no motion on line " << line;
        return ZELKinNCMotion();
    }

    static void ExpectValues(const QVector<double>& expected, const QVector<double>& actual)
    {
        ASSERT_EQ(actual.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i)
            EXPECT_TRUE(ZELTest::SameDouble(expected.at(i), actual.at(i), ZELTest::kTight)) << "axis " << i;
    }

    // The same ply, read whole or alone: every motion, tow event, course
    // record and irregularity alike.
    static void ExpectSamePly(const ZELKinNCPlyFile& expected, const ZELKinNCPlyFile& actual)
    {
        EXPECT_EQ(actual.path, expected.path);
        EXPECT_EQ(actual.name, expected.name);
        EXPECT_EQ(actual.plyNumber, expected.plyNumber);
        EXPECT_EQ(actual.procedure, expected.procedure);
        ASSERT_EQ(actual.motions.size(), expected.motions.size());
        for (int i = 0; i < expected.motions.size(); ++i) {
            const ZELKinNCMotion& wanted = expected.motions.at(i);
            const ZELKinNCMotion& got = actual.motions.at(i);
            EXPECT_EQ(got.line, wanted.line);
            EXPECT_EQ(got.course, wanted.course) << "line " << wanted.line;
            EXPECT_EQ(got.alongCourse, wanted.alongCourse) << "line " << wanted.line;
            EXPECT_EQ(got.rapid, wanted.rapid) << "line " << wanted.line;
            EXPECT_EQ(got.written, wanted.written) << "line " << wanted.line;
            EXPECT_EQ(got.link, wanted.link) << "line " << wanted.line;
            EXPECT_TRUE(ZELTest::SameDouble(wanted.feedrate, got.feedrate, ZELTest::kExact)) << "line " << wanted.line;
            ExpectValues(wanted.values, got.values);
            ExpectValues(wanted.starts, got.starts);
        }
        ASSERT_EQ(actual.towEvents.size(), expected.towEvents.size());
        for (int i = 0; i < expected.towEvents.size(); ++i) {
            EXPECT_EQ(actual.towEvents.at(i).line, expected.towEvents.at(i).line);
            EXPECT_EQ(actual.towEvents.at(i).code, expected.towEvents.at(i).code);
            EXPECT_EQ(actual.towEvents.at(i).tows, expected.towEvents.at(i).tows);
            EXPECT_TRUE(ZELTest::SameDouble(expected.towEvents.at(i).u, actual.towEvents.at(i).u, ZELTest::kExact));
        }
        EXPECT_EQ(actual.courseRecords, expected.courseRecords);
        ExpectSameIrregularities(expected.irregularities, actual.irregularities);
    }

    static void ExpectSameIrregularities(const QList<ZELKinNCIrregularity>& expected,
                                         const QList<ZELKinNCIrregularity>& actual)
    {
        ASSERT_EQ(actual.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(actual.at(i).check, expected.at(i).check);
            EXPECT_EQ(actual.at(i).file, expected.at(i).file);
            EXPECT_EQ(actual.at(i).line, expected.at(i).line);
            EXPECT_EQ(actual.at(i).course, expected.at(i).course);
            EXPECT_EQ(actual.at(i).subject, expected.at(i).subject);
            EXPECT_EQ(actual.at(i).message, expected.at(i).message);
        }
    }

    // Each ply of the program at `path` read alone against the same ply of
    // the whole read, and the list of plies against the whole read's.
    void ExpectEachPlyReadAloneAsWhole(const QString& path, int plies)
    {
        const ZELKinNCReplay replay(*f.machine);
        const ZELKinNCProgram whole = replay.Read(path);
        const ZELKinNCPlySet plySet = replay.ReadPlySet(path);
        ExpectSameIrregularities(whole.irregularities, plySet.irregularities);
        ASSERT_EQ(whole.plies.size(), plies);
        ASSERT_EQ(plySet.plies.size(), plies);
        for (int i = 0; i < plies; ++i) {
            EXPECT_EQ(plySet.plies.at(i).plyNumber, whole.plies.at(i).plyNumber);
            EXPECT_EQ(plySet.plies.at(i).procedure, whole.plies.at(i).procedure);
            ExpectSamePly(whole.plies.at(i), replay.ReadPly(plySet.plies.at(i)));
        }
    }

    NCFixture f;
    QTemporaryDir m_folder;
};

TEST_F(ZELKinNCReplayTest, TheFolderAroundTheProgramFolderGivesItsListedPlyWithTheProcedureName)
{
    PostFolder();
    const ZELKinNCProgram program = ZELKinNCReplay(*f.machine).Read(m_folder.path());
    EXPECT_TRUE(program.irregularities.isEmpty());
    ASSERT_EQ(program.plies.size(), 1);
    const ZELKinNCPlyFile& ply = program.plies.first();
    EXPECT_EQ(ply.plyNumber, QStringLiteral("0101"));
    EXPECT_EQ(ply.procedure, QStringLiteral("Ply A"));
    EXPECT_EQ(ply.name, kPlyFile);
    EXPECT_EQ(ply.path, QDir(m_folder.path()).filePath(QStringLiteral("PART/") + kPlyFile));
}

TEST_F(ZELKinNCReplayTest, EachCourseRecordIsKeptWithItsLine)
{
    const QString text = ZELTest::Golden(kPlyFile);
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    EXPECT_EQ(ply.courseRecords.keys(), QList<int>({1, 2}));
    EXPECT_EQ(ply.courseRecords.value(1), LineOf(text, QStringLiteral(";[COURSE] CourseNumber=1,")));
    EXPECT_EQ(ply.courseRecords.value(2), LineOf(text, QStringLiteral(";[COURSE] CourseNumber=2,")));
}

TEST_F(ZELKinNCReplayTest, TowEventsKeepTheirMaterialCodeTowsAndCourse)
{
    const QString text = ZELTest::Golden(kPlyFile);
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    ASSERT_EQ(ply.towEvents.size(), 11);
    const ZELKinNCTowEvent& first = ply.towEvents.first();
    EXPECT_EQ(first.line, LineOf(text, QStringLiteral(";PMAC1: G500U25.400A/B[000F]")));
    EXPECT_EQ(first.course, 1);
    EXPECT_TRUE(ZELTest::SameDouble(25.4, first.u, ZELTest::kTight));
    EXPECT_EQ(first.code, QStringLiteral("A/B"));
    EXPECT_EQ(first.tows, quint64(0xF));
    const ZELKinNCTowEvent& partial = ply.towEvents.at(3);
    EXPECT_EQ(partial.code, QStringLiteral("C/B"));
    EXPECT_EQ(partial.tows, quint64(0xC));
    const ZELKinNCTowEvent& last = ply.towEvents.last();
    EXPECT_EQ(last.course, 2);
    EXPECT_TRUE(ZELTest::SameDouble(38.1, last.u, ZELTest::kTight));
    EXPECT_EQ(last.code, QStringLiteral("A/E"));
    EXPECT_EQ(last.tows, quint64(0x30));
}

// Lines with an axis word are motions; a feed alone, a preset and the
// commented lines of the conditional blocks are none.
TEST_F(ZELKinNCReplayTest, EveryLineWithAnAxisWordIsAMotionInTheOrderOfTheFile)
{
    const QString text = ZELTest::Golden(kPlyFile);
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    QList<unsigned> lines;
    for (const ZELKinNCMotion& motion : ply.motions)
        lines.append(motion.line);
    const QStringList starts{QStringLiteral("N1G641 ADIS=OFF_PART X10"), QStringLiteral("N1G1G9Z1.0000F100"),
                             QStringLiteral("N2M69G1X11"), QStringLiteral("N3M69G1X12"), QStringLiteral("N5M69G1X13"),
                             QStringLiteral("N6G1G642"), QStringLiteral("N7G1G641"), QStringLiteral("N10G1G642"),
                             QStringLiteral("N12G1G642"), QStringLiteral("N1G641 ADIS=OFF_PART X16"),
                             QStringLiteral("N1G1G9Z1.0000U10"), QStringLiteral("N2G1X17"), QStringLiteral("N3G1G641"),
                             // The retract's lift off the part, the link's first move.
                             QStringLiteral("N3G1G641 ADIS=OFF_PART M5M18Z5"),
                             QStringLiteral("N4G1G642 ADIS=OFF_PART Z10")};
    QList<unsigned> expected;
    for (const QString& start : starts)
        expected.append(LineOf(text, start));
    EXPECT_EQ(lines, expected);
}

// Inches and degrees back to mm and rad; the feed in mm/min; what no line
// has set yet is NaN.
TEST_F(ZELKinNCReplayTest, AMotionStandsAtItsWordsInModelUnits)
{
    const QString text = ZELTest::Golden(kPlyFile);
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    const ZELKinNCMotion motion = MotionOf(ply, LineOf(text, QStringLiteral("N1G641 ADIS=OFF_PART X10")));
    ExpectValues({10 * kInch, 5 * kInch, 2 * kInch, 0.0, kPi / 2, kNaN}, motion.values);
    ExpectValues(QVector<double>(6, kNaN), motion.starts);
    EXPECT_EQ(motion.written, QVector<bool>({true, true, true, true, true, false}));
    EXPECT_TRUE(ZELTest::SameDouble(200 * kInch, motion.feedrate, ZELTest::kTight));
    EXPECT_EQ(motion.course, 1);
    EXPECT_FALSE(motion.alongCourse);
    EXPECT_FALSE(motion.rapid);
}

// The material axis is written in mm of material and preset to 0 before
// each course; the other words a line leaves out keep their values.
TEST_F(ZELKinNCReplayTest, TheMaterialAxisIsInMillimetresFromItsPresetAndWordsLeftOutKeepTheirValues)
{
    const QString text = ZELTest::Golden(kPlyFile);
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    const ZELKinNCMotion first = MotionOf(ply, LineOf(text, QStringLiteral("N1G1G9Z1.0000F100")));
    ExpectValues({10 * kInch, 5 * kInch, 2 * kInch, 0.0, kPi / 2, 0.0}, first.starts);
    ExpectValues({10 * kInch, 5 * kInch, 1 * kInch, 0.0, kPi / 2, 0.0}, first.values);
    const ZELKinNCMotion second = MotionOf(ply, LineOf(text, QStringLiteral("N2M69G1X11")));
    ExpectValues({11 * kInch, 5 * kInch, 1 * kInch, 0.0, kPi / 2, 25.4}, second.values);
    EXPECT_EQ(second.written, QVector<bool>({true, false, false, false, false, true}));
    EXPECT_TRUE(ZELTest::SameDouble(50 * kInch, second.feedrate, ZELTest::kTight));
}

// The approach into course n is link n - 1 and the retract after it link
// n; the first off-part point still belongs to the course.
TEST_F(ZELKinNCReplayTest, LinesBelongToTheCourseUpToItsFirstOffPartPointAndToTheLinksAroundIt)
{
    const QString text = ZELTest::Golden(kPlyFile);
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    struct Expected
    {
        const char* start;
        int course;
        bool alongCourse;
        int link;
    };
    for (const Expected& expected :
         {Expected{"N1G641 ADIS=OFF_PART X10", 1, false, 0}, Expected{"N6G1G642", 1, true, -1},
          Expected{"N7G1G641", 1, true, -1}, Expected{"N10G1G642", 1, false, 1},
          Expected{"N1G641 ADIS=OFF_PART X16", 2, false, 1}, Expected{"N3G1G641", 2, true, -1},
          Expected{"N4G1G642 ADIS=OFF_PART Z10", 2, false, 2}}) {
        const ZELKinNCMotion motion = MotionOf(ply, LineOf(text, QString::fromLatin1(expected.start)));
        EXPECT_EQ(motion.course, expected.course) << expected.start;
        EXPECT_EQ(motion.alongCourse, expected.alongCourse) << expected.start;
        EXPECT_EQ(motion.link, expected.link) << expected.start;
    }
}

TEST_F(ZELKinNCReplayTest, APostedPlyFileHasNoIrregularity)
{
    EXPECT_TRUE(ReadOnePly(ZELTest::Golden(kPlyFile)).irregularities.isEmpty());
}

// A controller reads "1.2e+01" as 12; a person, or a reader that stops at
// the "e", reads 1.2.
TEST_F(ZELKinNCReplayTest, AnAxisWordInExponentNotationIsReadWholeAndIsAnIrregularity)
{
    QString text = ZELTest::Golden(kPlyFile);
    text.replace(QStringLiteral("N3M69G1X12.0000U50.8000F100"), QStringLiteral("N3M69G1X1.2e+01U50.8000F100"));
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    const unsigned line = LineOf(text, QStringLiteral("N3M69G1X1.2e+01"));
    EXPECT_TRUE(ZELTest::SameDouble(12 * kInch, MotionOf(ply, line).values.at(X), ZELTest::kTight));
    ASSERT_EQ(ply.irregularities.size(), 1);
    const ZELKinNCIrregularity& irregularity = ply.irregularities.first();
    EXPECT_EQ(irregularity.check, QStringLiteral("number"));
    EXPECT_EQ(irregularity.file, ply.path);
    EXPECT_EQ(irregularity.line, line);
    EXPECT_EQ(irregularity.course, 1);
    EXPECT_EQ(irregularity.subject, QStringLiteral("X"));
    EXPECT_EQ(irregularity.message,
              QStringLiteral("the X word is written in exponent notation, 1.2e+01, which reads as 12.0000"));
}

// Every form of number a controller reads: signs, a point at either end,
// leading zeros, and more digits than a double holds.
struct NumberForm
{
    const char* word;
    double inches;
};

class ZELKinNCReplayNumberTest : public ZELKinNCReplayTest, public ::testing::WithParamInterface<NumberForm>
{
};

TEST_P(ZELKinNCReplayNumberTest, AnAxisWordReadsAsTheNearestDoubleToItsNumber)
{
    const QString word = QString::fromLatin1(GetParam().word);
    QString text = ZELTest::Golden(kPlyFile);
    text.replace(QStringLiteral("N3M69G1X12.0000U50.8000F100"), QStringLiteral("N3M69G1X%1U50.8000F100").arg(word));
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    const double x = MotionOf(ply, LineOf(text, QStringLiteral("N3M69G1X") + word)).values.at(X);
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().inches * kInch, x, ZELTest::kExact));
    EXPECT_TRUE(ply.irregularities.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ZELKinNCReplayNumberTest,
    ::testing::Values(NumberForm{"12.5000", 12.5}, NumberForm{"+12.5", 12.5}, NumberForm{"-12.5", -12.5},
                      NumberForm{"12.", 12.0}, NumberForm{".5", 0.5}, NumberForm{"-.5", -0.5},
                      NumberForm{"0012.2500", 12.25}, NumberForm{"-0", 0.0},
                      NumberForm{"12.0000000000000000000000000000000000000000000000000000000000000000000000000001",
                                 12.0},
                      NumberForm{"1234567.8901234", 1234567.8901234}));

TEST_F(ZELKinNCReplayTest, AnAxisWordWithoutANumberKeepsTheValueAndIsAnIrregularity)
{
    QString text = ZELTest::Golden(kPlyFile);
    text.replace(QStringLiteral("N3M69G1X12.0000U50.8000F100"), QStringLiteral("N3M69G1X U50.8000F100"));
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    const unsigned line = LineOf(text, QStringLiteral("N3M69G1X U"));
    EXPECT_TRUE(ZELTest::SameDouble(11 * kInch, MotionOf(ply, line).values.at(X), ZELTest::kTight));
    ASSERT_EQ(ply.irregularities.size(), 1);
    EXPECT_EQ(ply.irregularities.first().check, QStringLiteral("number"));
    EXPECT_EQ(ply.irregularities.first().message, QStringLiteral("the X word has no number"));
}

// The start-up and the end of the ply stop the program by design; between
// the first motion line and the last, a stop or a code the post does not
// write there is an irregularity.
TEST_F(ZELKinNCReplayTest, CodesBetweenTheFirstAndLastMotionLinesAreIrregularitiesAndNoneOutside)
{
    QString text = ZELTest::Golden(kPlyFile);
    text.replace(QStringLiteral("N4M69G1F75;"), QStringLiteral("M0 ;inserted\nG4 F75;"));
    const ZELKinNCPlyFile ply = ReadOnePly(text);
    ASSERT_EQ(ply.irregularities.size(), 2);
    EXPECT_EQ(ply.irregularities.at(0).check, QStringLiteral("code"));
    EXPECT_EQ(ply.irregularities.at(0).line, LineOf(text, QStringLiteral("M0 ;inserted")));
    EXPECT_EQ(ply.irregularities.at(0).subject, QStringLiteral("M0"));
    EXPECT_EQ(ply.irregularities.at(0).message, QStringLiteral("M0 stops the program between the ply's motion lines"));
    EXPECT_EQ(ply.irregularities.at(1).subject, QStringLiteral("G4"));
    EXPECT_EQ(ply.irregularities.at(1).message,
              QStringLiteral("G4 is not a code the post writes between motion lines"));
}

TEST_F(ZELKinNCReplayTest, ABundleIsReadSectionBySectionWithTheLinesOfTheBundle)
{
    const QString text = ZELTest::Golden(QStringLiteral("KIT.bun"));
    const QString bundle = QDir(m_folder.path()).filePath(QStringLiteral("KIT.bun"));
    WriteText(bundle, text);
    for (const QString& path : {bundle, QDir(m_folder.path()).filePath(QStringLiteral("KIT.aptsource"))}) {
        const ZELKinNCProgram program = ZELKinNCReplay(*f.machine).Read(path);
        ASSERT_EQ(program.plies.size(), 1);
        const ZELKinNCPlyFile& ply = program.plies.first();
        EXPECT_EQ(ply.path, bundle);
        EXPECT_EQ(ply.name, QStringLiteral("KIT#0101.PPF"));
        EXPECT_EQ(ply.procedure, QStringLiteral("Ply K"));
        EXPECT_EQ(ply.courseRecords.value(1), LineOf(text, QStringLiteral(";[COURSE] CourseNumber=1,")));
        ASSERT_FALSE(ply.motions.isEmpty());
        EXPECT_EQ(ply.motions.first().line, LineOf(text, QStringLiteral("N1G641 ADIS=OFF_PART X0.0000")));
    }
}

TEST_F(ZELKinNCReplayTest, ASecondProgramSetFileAndAPlyFileItDoesNotListAreProgramIrregularities)
{
    const QString folder = PostFolder();
    WriteText(QDir(folder).filePath(QStringLiteral("OTHER.PPSF")), ZELTest::Golden(kProgramSetFile));
    WriteText(QDir(folder).filePath(QStringLiteral("PART#0103.PPF")), ZELTest::Golden(kPlyFile));
    const ZELKinNCProgram program = ZELKinNCReplay(*f.machine).Read(folder);
    EXPECT_EQ(program.plies.size(), 1);
    ASSERT_EQ(program.irregularities.size(), 2);
    EXPECT_EQ(program.irregularities.at(0).check, QStringLiteral("program"));
    EXPECT_EQ(program.irregularities.at(0).message,
              QStringLiteral("a second program-set file, PART.PPSF, stands beside OTHER.PPSF"));
    EXPECT_EQ(program.irregularities.at(1).subject, QStringLiteral("PART#0103.PPF"));
    EXPECT_EQ(program.irregularities.at(1).message,
              QStringLiteral("the program-set file does not list ply 0103 (PART#0103.PPF)"));
}

TEST_F(ZELKinNCReplayTest, AFolderWithoutAProgramSetFileIsRefusedNamingIt)
{
    EXPECT_THROW_MESSAGE(ZELKinNCReplay(*f.machine).Read(m_folder.path()), ZELSysException,
                         QStringLiteral("no posted program in %1: no program-set file (.PPSF) there or in a folder "
                                        "inside it")
                             .arg(m_folder.path()));
}

TEST_F(ZELKinNCReplayTest, AFolderOfTwoProgramFoldersIsRefused)
{
    PostFolder();
    const QString second = QDir(m_folder.path()).filePath(QStringLiteral("SECOND"));
    ASSERT_TRUE(QDir().mkpath(second));
    WriteText(QDir(second).filePath(QStringLiteral("SECOND.PPSF")), ZELTest::Golden(kProgramSetFile));
    EXPECT_THROW_MESSAGE(
        ZELKinNCReplay(*f.machine).Read(m_folder.path()), ZELSysException,
        QStringLiteral("%1 holds 2 posted programs; give the folder of one of them").arg(m_folder.path()));
}

TEST_F(ZELKinNCReplayTest, ABundleWithoutAProgramSetSectionIsRefused)
{
    const QString bundle = QDir(m_folder.path()).filePath(QStringLiteral("EMPTY.bun"));
    WriteText(bundle, QStringLiteral("SetId|EMPTY|\n"));
    EXPECT_THROW_MESSAGE(ZELKinNCReplay(*f.machine).Read(bundle), ZELSysException,
                         QStringLiteral("no posted program in %1: no program-set file (.PPSF)").arg(bundle));
}

TEST_F(ZELKinNCReplayTest, PostedTextLongerThanTheBoundIsRefusedNamingTheFileThatCrossedIt)
{
    const QString folder = PostFolder();
    ZELKinNCReplay replay(*f.machine);
    replay.SetMaximumLength(100);
    EXPECT_THROW_MESSAGE(replay.Read(folder), ZELSysException,
                         QStringLiteral("cannot read %1: the posted NC is longer than 100 characters, the most that "
                                        "is read")
                             .arg(QDir(folder).filePath(kPlyFile)));
}

TEST_F(ZELKinNCReplayTest, APlyOfAFolderReadAloneIsTheSamePlyTheWholeReadGives)
{
    const QString folder = PostFolder();
    QString second = ZELTest::Golden(kPlyFile);
    second.replace(QStringLiteral("Z1.0000"), QStringLiteral("Z2.0000"));
    WriteText(QDir(folder).filePath(QStringLiteral("PART#0102.PPF")), second);
    WriteText(QDir(folder).filePath(QStringLiteral("PART#0103.PPF")), ZELTest::Golden(kPlyFile));
    WriteText(QDir(folder).filePath(QStringLiteral("OTHER.PPSF")), ZELTest::Golden(kProgramSetFile));
    QString programSet = ZELTest::Golden(kProgramSetFile);
    programSet.replace(QStringLiteral("; 0101, Ply A\n"), QStringLiteral("; 0101, Ply A\n; 0102, Ply B\n"));
    WriteText(QDir(folder).filePath(QStringLiteral("A.PPSF")), programSet);
    // A.PPSF lists 0101 and 0102; 0103 and the second program set do not belong.
    ExpectEachPlyReadAloneAsWhole(folder, 2);
    EXPECT_EQ(ZELKinNCReplay(*f.machine).ReadPlySet(folder).irregularities.size(), 3);
}

TEST_F(ZELKinNCReplayTest, APlyOfABundleReadAloneIsTheSamePlyTheWholeReadGives)
{
    QString text = ZELTest::Golden(QStringLiteral("KIT.bun"));
    const qsizetype plyStart = text.indexOf(QStringLiteral(">>>>> Filename|KIT#0101.PPF|"));
    const qsizetype plyEnd = text.indexOf(QStringLiteral("\n"),
                                          text.indexOf(QStringLiteral(">>>>> End of File <<<<<"), plyStart));
    ASSERT_GE(plyStart, 0);
    ASSERT_GE(plyEnd, 0);
    // A second ply section, its lines those of the first with other numbers.
    QString second = text.mid(plyStart, plyEnd + 1 - plyStart);
    second.replace(QStringLiteral("KIT#0101.PPF"), QStringLiteral("KIT#0102.PPF"));
    second.replace(QStringLiteral("Z1.0000"), QStringLiteral("Z2.0000"));
    text.insert(plyEnd + 1, second);
    text.replace(QStringLiteral("; 0101, Ply K\n"), QStringLiteral("; 0101, Ply K\n; 0102, Ply L\n"));
    const QString bundle = QDir(m_folder.path()).filePath(QStringLiteral("KIT.bun"));
    WriteText(bundle, text);
    ExpectEachPlyReadAloneAsWhole(bundle, 2);
}

TEST_F(ZELKinNCReplayTest, TheListOfPliesReadsNoPlyFileAndEachPlyIsBoundOnItsOwn)
{
    const QString folder = PostFolder();
    ZELKinNCReplay replay(*f.machine);
    replay.SetMaximumLength(100);
    const ZELKinNCPlySet plySet = replay.ReadPlySet(folder);
    ASSERT_EQ(plySet.plies.size(), 1);
    EXPECT_EQ(plySet.plies.first().path, QDir(folder).filePath(kPlyFile));
    EXPECT_EQ(plySet.plies.first().firstLine, 0u);
    EXPECT_THROW_MESSAGE(replay.ReadPly(plySet.plies.first()), ZELSysException,
                         QStringLiteral("cannot read %1: the posted NC is longer than 100 characters, the most that "
                                        "is read")
                             .arg(QDir(folder).filePath(kPlyFile)));
}

} // namespace
