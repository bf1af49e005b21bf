// The program folder a post puts in place: whatever a kill or a second post
// of the same program at the same time does, the folder holds one post's
// complete set of files, byte for byte, and no staging folder is left for
// long.

#include "zelkinpostednc.h"
#include "zelkintoolrun.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <iostream>
#include <random>
#include <string>

#include <unistd.h>

namespace {

const QString kProgram = QStringLiteral("KILL");

// Every entry of `folder`, hidden ones among them, with its bytes.
QMap<QString, QByteArray> ContentsOf(const QString& folder)
{
    QMap<QString, QByteArray> contents;
    const QDir directory(folder);
    for (const QString& name : directory.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        QFile file(directory.filePath(name));
        contents.insert(name, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not a readable file)"));
    }
    return contents;
}

QStringList HiddenEntriesOf(const QString& folder)
{
    return QDir(folder)
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
        .filter(QRegularExpression(QStringLiteral("^\\.")));
}

QString Describe(const QMap<QString, QByteArray>& contents)
{
    QStringList names = contents.keys();
    return names.join(QLatin1Char(' '));
}

/*!
    Two toolpaths of the program KILL on the cylinder, with the NC sets
    each post writes: the old one of four plies, the new one of two.
*/
struct Programs
{
    QString oldToolpath;
    QString newToolpath;
    QMap<QString, QByteArray> oldSet;
    QMap<QString, QByteArray> newSet;
};

class ZELKinPostFolder : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        folder = new QTemporaryDir;
        // Long enough to post that kills land in every part of the work.
        large = MakePrograms(QStringLiteral("large"), QStringLiteral("10"), QStringLiteral("1500"));
        // Short, so that two posts end close together.
        small = MakePrograms(QStringLiteral("small"), QStringLiteral("4"), QStringLiteral("100"));
    }

    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }

    static Programs MakePrograms(const QString& size, const QString& courses, const QString& points)
    {
        Programs programs;
        programs.oldToolpath = Generate(QStringLiteral("0,45,-45,90"), courses, points, size + QStringLiteral("-old"));
        programs.newToolpath = Generate(QStringLiteral("0,90"), courses, points, size + QStringLiteral("-new"));
        programs.oldSet = PostedSet(programs.oldToolpath, size + QStringLiteral("-old-nc"));
        programs.newSet = PostedSet(programs.newToolpath, size + QStringLiteral("-new-nc"));
        return programs;
    }

    static QString Generate(const QString& plies, const QString& courses, const QString& points, const QString& name)
    {
        const QString path = folder->filePath(name + QStringLiteral(".json"));
        const ZELKinToolRun run = RunZelkin({QStringLiteral("generate-toolpath"), QStringLiteral("--part"),
                                             QStringLiteral("cylinder"), QStringLiteral("--plies"), plies,
                                             QStringLiteral("--courses"), courses,
                                             QStringLiteral("--points-per-course"), points, QStringLiteral("--name"),
                                             kProgram, QStringLiteral("-o"), path});
        EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
        return path;
    }

    static QStringList PostArguments(const QString& toolpath, const QString& output)
    {
        return {QStringLiteral("post"),
                QStringLiteral("--machine"),
                GetExampleMachinePath(),
                QStringLiteral("--toolpath"),
                toolpath,
                QStringLiteral("--output"),
                output};
    }

    static QMap<QString, QByteArray> PostedSet(const QString& toolpath, const QString& output)
    {
        const ZELKinToolRun run = RunZelkin(PostArguments(toolpath, folder->filePath(output)),
                                            ReproducibleEnvironment());
        EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
        return ContentsOf(QDir(folder->filePath(output)).filePath(kProgram));
    }

    // The set, written in place as its post left it.
    static void PutSetAt(const QString& output, const QMap<QString, QByteArray>& set)
    {
        QDir program(QDir(output).filePath(kProgram));
        ASSERT_TRUE(program.removeRecursively());
        ASSERT_TRUE(QDir().mkpath(program.path()));
        for (auto file = set.cbegin(); file != set.cend(); ++file) {
            QFile copy(program.filePath(file.key()));
            ASSERT_TRUE(copy.open(QIODevice::WriteOnly));
            ASSERT_EQ(copy.write(file.value()), file.value().size());
        }
    }

    // Whether `output` holds exactly one of the two sets; says which in `which`.
    static ::testing::AssertionResult HoldsOneCompleteSet(const QString& output, const Programs& programs,
                                                          QString* which = nullptr)
    {
        const QMap<QString, QByteArray> found = ContentsOf(QDir(output).filePath(kProgram));
        if (found != programs.oldSet && found != programs.newSet)
            return ::testing::AssertionFailure()
                << "the program folder holds neither set whole: " << Describe(found).toStdString();
        if (which)
            *which = found == programs.oldSet ? QStringLiteral("old") : QStringLiteral("new");
        return ::testing::AssertionSuccess();
    }

    static inline QTemporaryDir* folder = nullptr;
    static inline Programs large;
    static inline Programs small;
};

} // namespace

TEST_F(ZELKinPostFolder, TheTwoSetsDifferInTheirPlyFiles)
{
    for (const Programs* programs : {&large, &small}) {
        EXPECT_EQ(programs->oldSet.size(), 6) << Describe(programs->oldSet).toStdString();
        EXPECT_EQ(programs->newSet.size(), 4) << Describe(programs->newSet).toStdString();
        EXPECT_TRUE(programs->oldSet.contains(QStringLiteral("KILL#0104.PPF")));
        EXPECT_NE(programs->oldSet.value(QStringLiteral("KILL#0102.PPF")),
                  programs->newSet.value(QStringLiteral("KILL#0102.PPF")));
    }
}

TEST_F(ZELKinPostFolder, APostKilledAtAnyMomentLeavesTheOldSetOrTheNewSetWhole)
{
    const QString output = folder->filePath(QStringLiteral("killed"));
    PutSetAt(output, large.oldSet);
    // How long a whole post takes here, over the old set.
    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(RunZelkin(PostArguments(large.newToolpath, output), ReproducibleEnvironment()).exitCode, 0);
    const qint64 duration = clock.elapsed();
    ASSERT_TRUE(HoldsOneCompleteSet(output, large));

    constexpr unsigned kSeed = 20260117;
    constexpr int kKills = 20;
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<qint64> moment(0, duration);
    std::cout << "kill moments drawn with seed " << kSeed << " over " << duration << " ms\n";
    QMap<QString, int> left;
    for (int kill = 0; kill < kKills; ++kill) {
        PutSetAt(output, large.oldSet);
        const QStringList staged = HiddenEntriesOf(output);
        const qint64 at = moment(random);
        QProcess post;
        post.setProcessEnvironment(ReproducibleEnvironment());
        post.setStandardOutputFile(QProcess::nullDevice());
        post.start(QStringLiteral(ZELKIN_EXECUTABLE), PostArguments(large.newToolpath, output));
        ASSERT_TRUE(post.waitForStarted());
        if (!post.waitForFinished(int(at))) {
            post.kill();
            ASSERT_TRUE(post.waitForFinished(60000));
        }
        QString which;
        EXPECT_TRUE(HoldsOneCompleteSet(output, large, &which)) << "killed at " << at << " ms";
        left[which] += 1;
        // A kill while the files were written leaves its staging folder.
        for (const QString& entry : HiddenEntriesOf(output))
            left[QStringLiteral("staging")] += staged.contains(entry) ? 0 : 1;
    }
    std::cout << "left the old set " << left.value(QStringLiteral("old")) << " times, the new set "
              << left.value(QStringLiteral("new")) << " times, its staging folder "
              << left.value(QStringLiteral("staging")) << " times\n";

    // The staging folders the kills left go with the next post.
    ASSERT_EQ(RunZelkin(PostArguments(large.newToolpath, output), ReproducibleEnvironment()).exitCode, 0);
    EXPECT_EQ(ContentsOf(QDir(output).filePath(kProgram)), large.newSet);
    EXPECT_EQ(HiddenEntriesOf(output), QStringList());
}

TEST_F(ZELKinPostFolder, TwoPostsOfOneProgramAtOnceLeaveOneCompleteSetAndNoStagingFolder)
{
    const QString output = folder->filePath(QStringLiteral("concurrent"));
    for (int round = 0; round < 8; ++round) {
        QProcess first;
        QProcess second;
        for (QProcess* post : {&first, &second}) {
            post->setProcessEnvironment(ReproducibleEnvironment());
            post->setStandardOutputFile(QProcess::nullDevice());
        }
        first.start(QStringLiteral(ZELKIN_EXECUTABLE), PostArguments(small.oldToolpath, output));
        second.start(QStringLiteral(ZELKIN_EXECUTABLE), PostArguments(small.newToolpath, output));
        for (QProcess* post : {&first, &second}) {
            ASSERT_TRUE(post->waitForFinished(60000));
            EXPECT_EQ(post->exitStatus(), QProcess::NormalExit);
            EXPECT_EQ(post->exitCode(), 0) << post->readAllStandardError().toStdString();
        }
        EXPECT_TRUE(HoldsOneCompleteSet(output, small)) << "round " << round;
        EXPECT_EQ(QDir(output).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                  QStringList({kProgram}))
            << "round " << round;
    }
}

TEST_F(ZELKinPostFolder, AToolpathKeptInsideTheProgramFolderIsRefusedAndTheFolderKept)
{
    const QString output = folder->filePath(QStringLiteral("inside"));
    PutSetAt(output, small.oldSet);
    const QString toolpath = QDir(output).filePath(kProgram + QStringLiteral("/toolpath.json"));
    ASSERT_TRUE(QFile::copy(small.newToolpath, toolpath));
    QMap<QString, QByteArray> before = small.oldSet;
    before.insert(QStringLiteral("toolpath.json"),
                  ContentsOf(QDir(output).filePath(kProgram)).value(QStringLiteral("toolpath.json")));

    const ZELKinToolRun run = RunZelkin(PostArguments(toolpath, output), ReproducibleEnvironment());

    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.GetDiagnosticLines().first(),
              QStringLiteral("zelkin: error: --toolpath reads a file inside '%1', which --output replaces")
                  .arg(QDir(output).filePath(kProgram)));
    EXPECT_EQ(ContentsOf(QDir(output).filePath(kProgram)), before);
    EXPECT_EQ(HiddenEntriesOf(output), QStringList());
}

namespace {

struct OtherNameCase
{
    const char* name;
    bool (*make)(const QString& file, const QString& otherName);
};

void PrintTo(const OtherNameCase& c, std::ostream* out)
{
    *out << c.name;
}

class ZELKinPostOntoTheToolpath : public ::testing::TestWithParam<OtherNameCase>
{
};

} // namespace

TEST_P(ZELKinPostOntoTheToolpath, IsRefusedBeforeAnythingIsReadAndTheToolpathKept)
{
    QTemporaryDir directory;
    const QString toolpath = directory.filePath(QStringLiteral("wing.json"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/minimal.json"), toolpath));
    const QString bundle = directory.filePath(QStringLiteral("wing.bun"));
    ASSERT_TRUE(GetParam().make(toolpath, bundle));
    const QMap<QString, QByteArray> before = ContentsOf(directory.path());

    const ZELKinToolRun run = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                         QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), bundle});

    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.standardOutput, QString()) << "the toolpath was read";
    EXPECT_EQ(
        run.GetDiagnosticLines().first(),
        QStringLiteral("zelkin: error: --output would overwrite the file that --toolpath reads: '%1'").arg(bundle));
    EXPECT_EQ(ContentsOf(directory.path()), before);
}

INSTANTIATE_TEST_SUITE_P(Names, ZELKinPostOntoTheToolpath,
                         ::testing::Values(OtherNameCase{"HardLink",
                                                         [](const QString& file, const QString& otherName) {
                                                             return ::link(QFile::encodeName(file).constData(),
                                                                           QFile::encodeName(otherName).constData())
                                                                 == 0;
                                                         }},
                                           OtherNameCase{"SymbolicLink",
                                                         [](const QString& file, const QString& otherName) {
                                                             return QFile::link(file, otherName);
                                                         }}),
                         [](const ::testing::TestParamInfo<OtherNameCase>& info) {
                             return std::string(info.param.name);
                         });
