// The staging folder: a folder written under a hidden name beside its
// target that takes the target's place whole, and the staging folders of
// ended processes removed.

#include <zelkinstagingfolder_p.h>

#include <zeltestsupport.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QString kName = QStringLiteral("PART");

QStringList EntriesOf(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
}

void WriteText(const QString& path, const QByteArray& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(text), text.size());
}

QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

// Every file of `directory` with its bytes.
QMap<QString, QByteArray> ContentsOf(const QString& directory)
{
    QMap<QString, QByteArray> contents;
    for (const QString& name : EntriesOf(directory))
        contents.insert(name, ReadBytes(QDir(directory).filePath(name)));
    return contents;
}

// The pid of a child that has already ended and been reaped.
pid_t EndedProcess()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    int status = 0;
    ::waitpid(child, &status, 0);
    return child;
}

// A staging folder as a post of the process `pid` names it, with a file in it.
QString MakeStagingFolderOf(const QString& parent, qint64 pid, const QString& suffix)
{
    const QString path = QDir(parent).filePath(QStringLiteral(".zelkin-post-%1-%2").arg(pid).arg(suffix));
    EXPECT_TRUE(QDir().mkpath(path)) << path.toStdString();
    WriteText(QDir(path).filePath(QStringLiteral("PART#0101.PPF")), "N1G1X1.0000\n");
    return path;
}

class ZELKinStagingFolderTest : public ::testing::Test
{
protected:
    QString Parent() const { return directory.path(); }
    QString Target() const { return QDir(directory.path()).filePath(kName); }

    QTemporaryDir directory;
};

} // namespace

TEST_F(ZELKinStagingFolderTest, IsAHiddenFolderOfThisProcessBesideTheTarget)
{
    ZELKinStagingFolder staging(Parent(), kName);
    ASSERT_TRUE(staging.Create()) << staging.GetErrorString().toStdString();

    const QFileInfo info(staging.GetPath());
    EXPECT_TRUE(info.isDir());
    EXPECT_EQ(info.absolutePath(), QFileInfo(Parent()).absoluteFilePath());
    EXPECT_TRUE(info.fileName().startsWith(QStringLiteral(".zelkin-post-%1-").arg(::getpid())))
        << info.fileName().toStdString();
    EXPECT_FALSE(QFileInfo::exists(Target()));
}

TEST_F(ZELKinStagingFolderTest, ANewTargetGetsTheStagedFilesAndNothingElseIsLeft)
{
    ZELKinStagingFolder staging(Parent(), kName);
    ASSERT_TRUE(staging.Create());
    WriteText(QDir(staging.GetPath()).filePath(QStringLiteral("PART.PPSF")), "set\n");
    WriteText(QDir(staging.GetPath()).filePath(QStringLiteral("PART#0101.PPF")), "ply 1\n");

    ASSERT_TRUE(staging.Publish()) << staging.GetErrorString().toStdString();

    EXPECT_EQ(ContentsOf(Target()),
              (QMap<QString, QByteArray>{{QStringLiteral("PART#0101.PPF"), "ply 1\n"},
                                         {QStringLiteral("PART.PPSF"), "set\n"}}));
    EXPECT_EQ(EntriesOf(Parent()), QStringList({kName}));
}

TEST_F(ZELKinStagingFolderTest, AnExistingTargetWithMoreFilesIsSwappedOutWhole)
{
    ASSERT_TRUE(QDir().mkpath(Target()));
    WriteText(QDir(Target()).filePath(QStringLiteral("PART.PPSF")), "old set\n");
    WriteText(QDir(Target()).filePath(QStringLiteral("PART#0101.PPF")), "old ply 1\n");
    WriteText(QDir(Target()).filePath(QStringLiteral("PART#0102.PPF")), "old ply 2\n");
    ZELKinStagingFolder staging(Parent(), kName);
    ASSERT_TRUE(staging.Create());
    WriteText(QDir(staging.GetPath()).filePath(QStringLiteral("PART.PPSF")), "new set\n");
    WriteText(QDir(staging.GetPath()).filePath(QStringLiteral("PART#0101.PPF")), "new ply 1\n");

    ASSERT_TRUE(staging.Publish()) << staging.GetErrorString().toStdString();

    EXPECT_EQ(ContentsOf(Target()),
              (QMap<QString, QByteArray>{{QStringLiteral("PART#0101.PPF"), "new ply 1\n"},
                                         {QStringLiteral("PART.PPSF"), "new set\n"}}));
    EXPECT_EQ(EntriesOf(Parent()), QStringList({kName}));
}

TEST_F(ZELKinStagingFolderTest, AStagingFolderOfAnEndedProcessIsRemoved)
{
    const QString abandoned = MakeStagingFolderOf(Parent(), EndedProcess(), QStringLiteral("k1ll3d"));
    ZELKinStagingFolder staging(Parent(), kName);
    ASSERT_TRUE(staging.Create());
    EXPECT_FALSE(QFileInfo::exists(abandoned));
    EXPECT_EQ(EntriesOf(Parent()), QStringList({QFileInfo(staging.GetPath()).fileName()}));
}

TEST_F(ZELKinStagingFolderTest, AStagingFolderOfALiveProcessIsKept)
{
    // This process is alive; the parent of the test runner too.
    const QString own = MakeStagingFolderOf(Parent(), ::getpid(), QStringLiteral("b0sy"));
    const QString parents = MakeStagingFolderOf(Parent(), ::getppid(), QStringLiteral("w0rk1ng"));
    ZELKinStagingFolder staging(Parent(), kName);
    ASSERT_TRUE(staging.Create());
    EXPECT_TRUE(QFileInfo::exists(QDir(own).filePath(QStringLiteral("PART#0101.PPF"))));
    EXPECT_TRUE(QFileInfo::exists(QDir(parents).filePath(QStringLiteral("PART#0101.PPF"))));
}

TEST_F(ZELKinStagingFolderTest, AFolderThatOnlyLooksLikeAStagingFolderIsKept)
{
    const pid_t ended = EndedProcess();
    const QStringList names{QStringLiteral(".zelkin-post-%1").arg(ended), QStringLiteral(".zelkin-post-0-abc"),
                            QStringLiteral(".zelkin-post-%1-ABC").arg(ended),
                            QStringLiteral("zelkin-post-%1-abc").arg(ended)};
    for (const QString& name : names)
        ASSERT_TRUE(QDir(Parent()).mkdir(name));
    ZELKinStagingFolder staging(Parent(), kName);
    ASSERT_TRUE(staging.Create());
    for (const QString& name : names)
        EXPECT_TRUE(QFileInfo::exists(QDir(Parent()).filePath(name))) << name.toStdString();
}

TEST_F(ZELKinStagingFolderTest, AnUnpublishedStagingFolderIsRemovedWithItsFilesAndTheTargetStaysAsItWas)
{
    ASSERT_TRUE(QDir().mkpath(Target()));
    WriteText(QDir(Target()).filePath(QStringLiteral("PART.PPSF")), "old set\n");
    {
        ZELKinStagingFolder staging(Parent(), kName);
        ASSERT_TRUE(staging.Create());
        WriteText(QDir(staging.GetPath()).filePath(QStringLiteral("PART.PPSF")), "half a new set");
    }
    EXPECT_EQ(EntriesOf(Parent()), QStringList({kName}));
    EXPECT_EQ(ContentsOf(Target()), (QMap<QString, QByteArray>{{QStringLiteral("PART.PPSF"), "old set\n"}}));
}

TEST_F(ZELKinStagingFolderTest, ATargetThatIsAFileIsRefusedAndKept)
{
    WriteText(Target(), "not a folder\n");
    ZELKinStagingFolder staging(Parent(), kName);
    EXPECT_FALSE(staging.Create());
    EXPECT_EQ(staging.GetErrorString(), QStringLiteral("Not a directory"));
    EXPECT_EQ(EntriesOf(Parent()), QStringList({kName}));
    EXPECT_EQ(ReadBytes(Target()), QByteArray("not a folder\n"));
}

TEST_F(ZELKinStagingFolderTest, ATargetThatIsASymbolicLinkIsRefusedAndTheLinkedFolderKept)
{
    const QString elsewhere = QDir(Parent()).filePath(QStringLiteral("elsewhere"));
    ASSERT_TRUE(QDir().mkpath(elsewhere));
    WriteText(QDir(elsewhere).filePath(QStringLiteral("PART.PPSF")), "old set\n");
    ASSERT_TRUE(QFile::link(elsewhere, Target()));
    ZELKinStagingFolder staging(Parent(), kName);
    EXPECT_FALSE(staging.Create());
    EXPECT_EQ(staging.GetErrorString(), QStringLiteral("Not a directory"));
    EXPECT_TRUE(QFileInfo(Target()).isSymLink());
    EXPECT_EQ(ContentsOf(elsewhere), (QMap<QString, QByteArray>{{QStringLiteral("PART.PPSF"), "old set\n"}}));
}

TEST_F(ZELKinStagingFolderTest, ATargetNameLongerThanAFileNameMayBeIsRefusedWithTheSystemsReason)
{
    ZELKinStagingFolder staging(Parent(), QString(256, QLatin1Char('P')));
    EXPECT_FALSE(staging.Create());
    EXPECT_EQ(staging.GetErrorString(), QStringLiteral("File name too long"));
    EXPECT_EQ(EntriesOf(Parent()), QStringList());
}

TEST_F(ZELKinStagingFolderTest, AParentThatIsMissingIsTheSystemsReason)
{
    ZELKinStagingFolder staging(QDir(Parent()).filePath(QStringLiteral("missing")), kName);
    EXPECT_FALSE(staging.Create());
    EXPECT_EQ(staging.GetErrorString(), QStringLiteral("No such file or directory"));
    EXPECT_EQ(EntriesOf(Parent()), QStringList());
}

TEST_F(ZELKinStagingFolderTest, ATargetReplacedByAFileBeforePublishingIsGivenBackAndTheStagingFolderRemoved)
{
    {
        ZELKinStagingFolder staging(Parent(), kName);
        ASSERT_TRUE(staging.Create());
        WriteText(QDir(staging.GetPath()).filePath(QStringLiteral("PART.PPSF")), "new set\n");
        // Another program puts a file at the target while the set is written.
        WriteText(Target(), "not a folder\n");

        EXPECT_FALSE(staging.Publish());
        EXPECT_EQ(staging.GetErrorString(), QStringLiteral("Not a directory"));
        EXPECT_EQ(ReadBytes(Target()), QByteArray("not a folder\n"));
    }
    EXPECT_EQ(EntriesOf(Parent()), QStringList({kName}));
}

TEST_F(ZELKinStagingFolderTest, TwoStagingFoldersOfOneTargetPublishedInTurnLeaveTheLastOnesFilesOnly)
{
    ZELKinStagingFolder first(Parent(), kName);
    ZELKinStagingFolder second(Parent(), kName);
    ASSERT_TRUE(first.Create());
    ASSERT_TRUE(second.Create());
    WriteText(QDir(first.GetPath()).filePath(QStringLiteral("PART#0101.PPF")), "first ply 1\n");
    WriteText(QDir(first.GetPath()).filePath(QStringLiteral("PART#0102.PPF")), "first ply 2\n");
    WriteText(QDir(second.GetPath()).filePath(QStringLiteral("PART#0101.PPF")), "second ply 1\n");

    ASSERT_TRUE(first.Publish()) << first.GetErrorString().toStdString();
    ASSERT_TRUE(second.Publish()) << second.GetErrorString().toStdString();

    EXPECT_EQ(ContentsOf(Target()), (QMap<QString, QByteArray>{{QStringLiteral("PART#0101.PPF"), "second ply 1\n"}}));
    EXPECT_EQ(EntriesOf(Parent()), QStringList({kName}));
}
