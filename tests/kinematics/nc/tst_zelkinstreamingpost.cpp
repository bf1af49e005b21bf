// A program posted one procedure at a time against the same program
// translated, checked and written whole: the same files, byte for byte,
// and the same findings, whatever the number of procedures held at once.

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinprocedure.h>
#include <zelkinprogram.h>
#include <zelkinprogramcheck.h>
#include <zelkinsolver.h>
#include <zelkinstreamingpost.h>
#include <zelkintranslator.h>
#include <zelkinwriter.h>
#include <zelsysexception.h>
#include <zeltpprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltpprogramstream.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

#include <memory>

namespace {

const QDateTime kNow(QDate(2026, 11, 24), QTime(8, 30, 15));
const QString kFormat = QStringLiteral("AFPGCode");

QString Example(const QString& relative)
{
    return QStringLiteral(ZELKIN_EXAMPLES_DIR "/%1").arg(relative);
}

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The example machine, its second roll's limits narrowed to `c1Limit`
// degrees when given: at +-40 deg only the 0 deg ply of a cylinder can be
// laid.
ZELKinAFPMachine* LoadMachine(ZELGeoContainer* container, const QString& c1Limit)
{
    QByteArray description = ReadAll(Example(QStringLiteral("machines/gantry-rbr.xml")));
    if (!c1Limit.isEmpty())
        description.replace(
            R"(name="C1" type="rotary" minimum="-185.5" maximum="185.5")",
            QStringLiteral(R"(name="C1" type="rotary" minimum="-%1" maximum="%1")").arg(c1Limit).toUtf8());
    QBuffer buffer(&description);
    buffer.open(QIODevice::ReadOnly);
    return qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(container).LoadFromXML(&buffer));
}

QMap<QString, QByteArray> ContentsBelow(const QString& folder)
{
    QMap<QString, QByteArray> contents;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        contents.insert(QDir(folder).relativeFilePath(path), ReadAll(path));
    }
    return contents;
}

struct Posted
{
    ZELKinProgramCheck::Findings findings;
    QMap<QString, QByteArray> files;
};

// The whole program at once, as a host without the stream posts it: with
// problems, their procedures leave the program when `keepGoing`, else
// nothing is written.
Posted PostWhole(const QString& toolpathPath, const QString& c1Limit, const QString& output, bool keepGoing)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = LoadMachine(&container, c1Limit);
    const ZELTPProgram* toolpath = ZELTPProgramReader(&container).Read(toolpathPath);
    const std::unique_ptr<ZELKinSolver> solver(machine->CreateSolver());
    ZELKinTranslator translator(solver.get());
    translator.SetCurrentDateTime(kNow);
    ZELKinProgram* program = translator.Translate(toolpath);
    program->SetOriginalFileName(toolpath->GetName());
    program->SetRevisionNumber(toolpath->GetRevision());
    Posted posted{ZELKinProgramCheck(solver.get()).Check(program, translator.GetOmissions()), {}};
    if (!posted.findings.IsClean() && !keepGoing)
        return posted;
    for (ZELKinProcedure* procedure : program->GetProcedures()) {
        if (posted.findings.procedures.contains(procedure->GetToolPathProcedure()->GetName()))
            program->RemoveProcedure(procedure);
    }
    ZELKinWriter writer(program);
    writer.SetCurrentDateTime(kNow);
    writer.SetFileErrorMode(ZELKinWriter::FileErrorThrows);
    writer.Write(output, kFormat, QString());
    posted.files = ContentsBelow(QFileInfo(output).absolutePath());
    return posted;
}

Posted PostByProcedure(const QString& toolpathPath, const QString& c1Limit, const QString& output, bool keepGoing,
                       int threads)
{
    ZELTPProgramStream toolpath;
    toolpath.Open(toolpathPath);
    ZELKinStreamingPost post([c1Limit](ZELGeoContainer* container) { return LoadMachine(container, c1Limit); },
                             &toolpath);
    post.SetCurrentDateTime(kNow);
    post.SetThreadCount(threads);
    post.SetKeepGoing(keepGoing);
    ZELKinWriter writer;
    writer.SetCurrentDateTime(kNow);
    writer.SetFileErrorMode(ZELKinWriter::FileErrorThrows);
    Posted posted{post.Post(writer, output, kFormat, QString()), {}};
    posted.files = ContentsBelow(QFileInfo(output).absolutePath());
    return posted;
}

QStringList Texts(const ZELKinProgramCheck::Findings& findings)
{
    QStringList texts;
    for (const ZELKinProgramCheck::Problem& problem : findings.first)
        texts.append(problem.GetText());
    return texts;
}

struct StreamCase
{
    const char* name;
    const char* toolpath;
    const char* output;
    const char* c1Limit;
    bool keepGoing;
    int threads;
    //! How many procedures the check finds problems in.
    int procedures;
};
ZELTEST_PRINT_CASE_BY_NAME(StreamCase);

class ZELKinStreamingPostCase : public ::testing::TestWithParam<StreamCase>
{
};

TEST_P(ZELKinStreamingPostCase, WritesAndFindsWhatTheWholeProgramWritesAndFinds)
{
    const StreamCase& c = GetParam();
    const QString toolpath = Example(QStringLiteral("toolpaths/%1").arg(QLatin1String(c.toolpath)));
    QTemporaryDir whole;
    QTemporaryDir streamed;
    const Posted expected = PostWhole(toolpath, QLatin1String(c.c1Limit), whole.filePath(QLatin1String(c.output)),
                                      c.keepGoing);
    const Posted actual = PostByProcedure(toolpath, QLatin1String(c.c1Limit),
                                          streamed.filePath(QLatin1String(c.output)), c.keepGoing, c.threads);

    EXPECT_EQ(expected.findings.procedures.size(), c.procedures);
    EXPECT_EQ(actual.findings.count, expected.findings.count);
    EXPECT_EQ(Texts(actual.findings), Texts(expected.findings));
    EXPECT_EQ(actual.findings.procedures, expected.findings.procedures);
    EXPECT_EQ(actual.files, expected.files);
    EXPECT_EQ(actual.files.isEmpty(), !expected.findings.IsClean() && !c.keepGoing);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELKinStreamingPostCase,
    ::testing::Values(
        StreamCase{"DomeInAFolderOneAtATime", "dome.json", "out/nc", "", false, 1, 0},
        StreamCase{"DomeInAFolderTwoAtATime", "dome.json", "out/nc", "", false, 2, 0},
        StreamCase{"CylinderInABundleThreeAtATime", "cylinder-section.json", "out/part.bun", "", false, 3, 0},
        StreamCase{"NarrowWristFindsThreePliesAndWritesNothing", "cylinder-section.json", "out/nc", "40", false, 2, 3},
        StreamCase{"NarrowWristKeepingGoingWritesTheOnePlyItCan", "cylinder-section.json", "out/nc", "40", true, 2, 3},
        StreamCase{"NarrowWristKeepingGoingInABundle", "cylinder-section.json", "out/part.bun", "40", true, 1, 3}),
    [](const ::testing::TestParamInfo<StreamCase>& info) { return std::string(info.param.name); });

TEST(ZELKinStreamingPost, ACourseThatCannotBeTranslatedPutsNothingInPlace)
{
    QTemporaryDir directory;
    QByteArray document = ReadAll(Example(QStringLiteral("toolpaths/cylinder-section.json")));
    // The third procedure's first run of tows no longer lays tows.
    qsizetype third = -1;
    for (int i = 0; i < 3; ++i)
        third = document.indexOf(R"("kind": "rollLayup")", third + 1);
    ASSERT_GT(third, 0);
    const qsizetype tow = document.indexOf(R"("kind": "tow")", third);
    ASSERT_GT(tow, 0);
    document.replace(tow, 13, R"("kind":"onPart")");
    const QString toolpath = directory.filePath(QStringLiteral("broken.json"));
    QFile file(toolpath);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(document) == document.size());
    file.close();

    const QString output = directory.filePath(QStringLiteral("out/nc"));
    EXPECT_THROW(PostByProcedure(toolpath, QString(), output, false, 2), ZELSysException);
    EXPECT_FALSE(QFileInfo::exists(directory.filePath(QStringLiteral("out"))));
}

} // namespace
