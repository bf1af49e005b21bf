// The toolpath read one procedure at a time: every procedure built as the
// whole-document reader builds it, the same exact message for every
// malformed document, and what it refuses that the reader takes.

#include "zeltpmalformeddocuments.h"
#include "zeltptestsupport.h"

#include <zeltpformatexception.h>
#include <zeltppoint.h>
#include <zeltpprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltpprogramstream.h>
#include <zeltptrajectory.h>

#include <zelgeocontainer.h>

#include <zeltestnamedpipe.h>
#include <zeltestsupport.h>

#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <vector>

namespace {

QString ExampleFile(const QString& name)
{
    return QStringLiteral(ZELTP_EXAMPLE_TOOLPATH_DIR "/%1").arg(name);
}

QString WriteFile(const QTemporaryDir& folder, const QString& name, const QByteArray& bytes)
{
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return QString();
    return path;
}

// What a point is made of, as the NC depends on it: its frame, its number
// along its course and its trajectory's feed.
std::vector<double> PointFingerprint(const ZELTPPoint* point)
{
    std::vector<double> values = ZELTPTest::Components(point->GetToolFrame());
    values.push_back(point->GetIndex());
    values.push_back(point->GetTrajectory() ? point->GetTrajectory()->GetFeedrate() : -1.0);
    return values;
}

std::vector<std::vector<double>> PointsOf(const ZELGeoContainer& container)
{
    std::vector<std::vector<double>> points;
    for (const ZELTPPoint* point : ZELTPTest::AllOf<ZELTPPoint>(container.GetGeometries()))
        points.push_back(PointFingerprint(point));
    return points;
}

// Opens `path` and reads every procedure, each into a container of its own.
struct StreamedDocument
{
    ZELTPProgramStream stream;
    std::vector<std::unique_ptr<ZELGeoContainer>> containers;
    std::vector<const ZELTPProgram*> programs;

    explicit StreamedDocument(const QString& path)
    {
        stream.Open(path);
        for (int i = 0; i < stream.GetNumProcedures(); ++i) {
            containers.push_back(std::make_unique<ZELGeoContainer>());
            programs.push_back(stream.ReadProcedure(i, containers.back().get()));
        }
    }
};

// `document` read one procedure at a time from a file against the same
// bytes read whole: as many procedures, and the same points.
::testing::AssertionResult StreamsAsTheWholeDocumentReads(const QByteArray& document)
{
    QTemporaryDir folder;
    const QString path = WriteFile(folder, QStringLiteral("document.json"), document);
    ZELGeoContainer whole;
    const ZELTPProgram* program = ZELTPProgramReader(&whole).ReadData(document, QStringLiteral("bytes"));
    const StreamedDocument streamed(path);
    if (streamed.stream.GetNumProcedures() != program->GetNumProcedures())
        return ::testing::AssertionFailure() << streamed.stream.GetNumProcedures() << " procedures streamed, "
                                             << program->GetNumProcedures() << " read whole";
    std::vector<std::vector<double>> points;
    for (const auto& container : streamed.containers) {
        const auto procedurePoints = PointsOf(*container);
        points.insert(points.end(), procedurePoints.begin(), procedurePoints.end());
    }
    if (points != PointsOf(whole))
        return ::testing::AssertionFailure() << "the streamed points differ from the whole read's";
    return ::testing::AssertionSuccess();
}

class ZELTPProgramStreamExample : public ::testing::TestWithParam<const char*>
{
};

TEST_P(ZELTPProgramStreamExample, EachProcedureIsBuiltAsTheWholeDocumentBuildsIt)
{
    const QString path = ExampleFile(QLatin1String(GetParam()));
    ZELGeoContainer whole;
    const ZELTPProgram* program = ZELTPProgramReader(&whole).Read(path);
    const StreamedDocument streamed(path);

    EXPECT_EQ(streamed.stream.GetName(), program->GetName());
    EXPECT_EQ(streamed.stream.GetRevision(), program->GetRevision());
    ASSERT_EQ(streamed.stream.GetNumProcedures(), program->GetNumProcedures());
    int geometries = 1;
    std::vector<std::vector<double>> points;
    for (int i = 0; i < program->GetNumProcedures(); ++i) {
        const ZELTPProgram* alone = streamed.programs.at(std::size_t(i));
        EXPECT_EQ(alone->GetName(), program->GetName());
        EXPECT_EQ(alone->GetRevision(), program->GetRevision());
        ASSERT_EQ(alone->GetNumProcedures(), 1);
        EXPECT_EQ(alone->GetProcedure(0)->GetName(), program->GetProcedure(i)->GetName());
        EXPECT_STREQ(alone->GetProcedure(0)->metaObject()->className(),
                     program->GetProcedure(i)->metaObject()->className());
        EXPECT_GT(streamed.stream.GetProcedureBytes(i), 0);
        const ZELGeoContainer& container = *streamed.containers.at(std::size_t(i));
        geometries += container.GetNumGeometries() - 1;
        const std::vector<std::vector<double>> procedurePoints = PointsOf(container);
        points.insert(points.end(), procedurePoints.begin(), procedurePoints.end());
    }
    EXPECT_EQ(geometries, whole.GetNumGeometries());
    EXPECT_TRUE(points == PointsOf(whole));
}

INSTANTIATE_TEST_SUITE_P(Examples, ZELTPProgramStreamExample,
                         ::testing::Values("minimal.json", "cylinder-section.json", "dome.json", "flat-panel.json"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             QString name = QString::fromLatin1(info.param);
                             return name.left(name.indexOf(QLatin1Char('.'))).remove(QLatin1Char('-')).toStdString();
                         });

TEST(ZELTPProgramStream, LargestProcedureIsTheEntryWithTheMostBytes)
{
    const StreamedDocument streamed(ExampleFile(QStringLiteral("cylinder-section.json")));
    const int largest = streamed.stream.GetLargestProcedure();
    ASSERT_GE(largest, 0);
    for (int i = 0; i < streamed.stream.GetNumProcedures(); ++i)
        EXPECT_LE(streamed.stream.GetProcedureBytes(i), streamed.stream.GetProcedureBytes(largest));
    EXPECT_LT(streamed.stream.GetProcedureBytes(largest), streamed.stream.GetFileBytes());
}

TEST(ZELTPProgramStream, DocumentWithoutProceduresHasNoLargestProcedure)
{
    QTemporaryDir folder;
    const QString path = WriteFile(folder, QStringLiteral("empty.json"),
                                   R"({"format": "zelkin-toolpath", "version": 1,
                                       "program": {"name": "p", "procedures": []}})");
    ZELTPProgramStream stream;
    stream.Open(path);
    EXPECT_EQ(stream.GetNumProcedures(), 0);
    EXPECT_EQ(stream.GetLargestProcedure(), -1);
    EXPECT_EQ(stream.GetRevision(), QStringLiteral("0"));
}

// Keys spelt with escapes, members in another order, a second "procedures"
// that the parser's look-up passes over and strings that hold brackets.
TEST(ZELTPProgramStream, ProceduresAreFoundWhereverTheDocumentPutsThemAndHoweverItSpellsTheirKeys)
{
    QByteArray compact = QJsonDocument::fromJson(kValid).toJson(QJsonDocument::Compact);
    const QByteArray procedures = compact.mid(compact.indexOf("\"procedures\":") + 13);
    const QByteArray array = procedures.left(procedures.lastIndexOf(']', procedures.lastIndexOf('}') - 1) + 1);
    const QByteArray document = R"({"version": 1, "x-note": "{[\"program\": ]}", "program": {"pro\u0063edures": )"
        + array + R"(, "name": "reordered", "procedures": 7}, "format": "zelkin-toolpath"})";
    ZELGeoContainer whole;
    EXPECT_EQ(ZELTPProgramReader(&whole).ReadData(document, QStringLiteral("bytes"))->GetName(),
              QStringLiteral("reordered"));
    EXPECT_TRUE(StreamsAsTheWholeDocumentReads(document));
}

// Deep inside a procedure the file is passed over quickly; brackets,
// braces and escapes in a string there are still text, and a string that
// ends in an escaped backslash still ends at its quote.
TEST(ZELTPProgramStream, BracketsAndEscapesInAProceduresStringsStayText)
{
    QByteArray document(kValid);
    document.replace(R"("name": "R16")", R"("name": "R]}\/16[{\\")");
    EXPECT_TRUE(StreamsAsTheWholeDocumentReads(document));
}

// `document` refused from a file one procedure at a time with the message
// the whole-document reader gives for the same file.
::testing::AssertionResult RefusedAsTheReaderRefuses(const QByteArray& document)
{
    QTemporaryDir folder;
    const QString path = WriteFile(folder, QStringLiteral("refused.json"), document);
    std::optional<QString> expected;
    try {
        ZELGeoContainer whole;
        ZELTPProgramReader(&whole).Read(path);
    } catch (const ZELTPFormatException& error) {
        expected = error.GetMessage();
    }
    if (!expected)
        return ::testing::AssertionFailure() << "the whole-document reader took it";
    try {
        const StreamedDocument streamed(path);
    } catch (const ZELTPFormatException& error) {
        if (error.GetMessage() == *expected)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
            << "refused with \"" << error.GetMessage().toStdString() << "\", not \"" << expected->toStdString() << "\"";
    }
    return ::testing::AssertionFailure() << "the stream took it";
}

// A control byte among a procedure's numbers ends the reading, with the
// message the whole-document reader gives.
TEST(ZELTPProgramStream, ControlByteDeepInAProcedureIsRefusedAsTheReaderRefusesIt)
{
    QByteArray document(kValid);
    document.replace(R"("origin": [5, 0, 0])", "\"origin\": [5,\x01 0, 0]");
    EXPECT_TRUE(RefusedAsTheReaderRefuses(document));
}

// Each course is parsed on its own; a syntax error in one still comes
// before any rule the procedure breaks, and before a course member that
// the procedure's kind never reads is passed over.
TEST(ZELTPProgramStream, SyntaxErrorInACourseComesBeforeAnyRuleAsInTheWholeDocument)
{
    QByteArray broken(kValid);
    broken.replace(R"("origin": [5, 0, 0])", R"("origin": [5, 0 0])");
    QByteArray ruleBrokenFirst(broken);
    ruleBrokenFirst.replace(R"("addingFeedrate": 2540)", R"("addingFeedrate": -2540)");
    EXPECT_TRUE(RefusedAsTheReaderRefuses(ruleBrokenFirst));

    QByteArray probingWithCourses(kValid);
    probingWithCourses.replace(R"("kind": "probing",)", R"("kind": "probing", "courses": [{"a": 1 2}],)");
    EXPECT_TRUE(RefusedAsTheReaderRefuses(probingWithCourses));
}

// The courses of a procedure are the first "courses" member of its own
// object, however it spells the key; one nested deeper or a second one is
// not read.
TEST(ZELTPProgramStream, CoursesAreTheFirstMemberOfThatNameInTheProcedureHoweverItIsSpelt)
{
    QByteArray document(kValid);
    document.replace(R"("courses": [)", R"("x-note": {"courses": 5}, "cour\u0073es": [)");
    document.replace("\"rollOutPoint\": 1\n          }\n        ]",
                     "\"rollOutPoint\": 1\n          }\n        ], \"courses\": 7");
    ASSERT_TRUE(document.contains(R"("courses": 7)"));
    EXPECT_TRUE(StreamsAsTheWholeDocumentReads(document));
}

// A procedure larger than the pieces the file is read in: a course that
// begins in one piece and ends in another, and one that begins after a
// piece's end.
TEST(ZELTPProgramStream, CourseAcrossThePiecesTheFileIsReadInIsReadWhole)
{
    const QByteArray blank(9 << 20, ' ');
    QByteArray inside(kValid);
    inside.replace(R"("rollInPoint": 0,)", R"("rollInPoint": 0,)" + blank);
    EXPECT_TRUE(StreamsAsTheWholeDocumentReads(inside));
    QByteArray before(kValid);
    before.replace(R"("courses": [)", R"("courses": [)" + blank);
    EXPECT_TRUE(StreamsAsTheWholeDocumentReads(before));
}

class ZELTPProgramStreamMalformed : public ::testing::TestWithParam<MalformedCase>
{
};

// The reader names its document "case.json"; the stream names the file.
TEST_P(ZELTPProgramStreamMalformed, RefusedWithTheReadersMessageAndNothingLeftInTheContainer)
{
    const MalformedCase& malformed = GetParam();
    QTemporaryDir folder;
    const QString path = WriteFile(folder, QStringLiteral("case.json"), malformed.document());
    ASSERT_FALSE(path.isEmpty());
    const QString expected = QString(malformed.message).replace(0, 9, path);
    // Each procedure has a container of its own: the one that failed is
    // left empty.
    std::unique_ptr<ZELGeoContainer> container;
    std::optional<QString> message;
    try {
        ZELTPProgramStream stream;
        stream.Open(path);
        for (int i = 0; i < stream.GetNumProcedures(); ++i) {
            container = std::make_unique<ZELGeoContainer>();
            stream.ReadProcedure(i, container.get());
        }
    } catch (const ZELTPFormatException& error) {
        message = error.GetMessage();
    }
    ASSERT_TRUE(message.has_value());
    EXPECT_EQ(*message, expected);
    if (container) {
        EXPECT_EQ(container->GetNumGeometries(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, ZELTPProgramStreamMalformed, ::testing::ValuesIn(kMalformed),
                         [](const ::testing::TestParamInfo<MalformedCase>& info) { return info.param.name; });

TEST(ZELTPProgramStream, PipeIsRefusedForItCannotBeReadTwice)
{
    QTemporaryDir folder;
    // Less than a pipe holds, so that the writer never waits for a reader.
    const ZELTest::NamedPipe pipe(folder.path(), QStringLiteral("toolpath"), QByteArray(kValid));
    ASSERT_TRUE(pipe.IsCreated());
    ZELTPProgramStream stream;
    EXPECT_THROW_MESSAGE(stream.Open(pipe.GetPath()), ZELTPFormatException,
                         pipe.GetPath() + QStringLiteral(": a pipe or a device cannot be read one procedure at a "
                                                         "time; give a file"));
}

TEST(ZELTPProgramStream, FileThatChangedSinceItWasOpenedIsNotReadOn)
{
    QTemporaryDir folder;
    const QString path = WriteFile(folder, QStringLiteral("changing.json"), QByteArray(kValid));
    ZELTPProgramStream stream;
    stream.Open(path);
    ASSERT_FALSE(WriteFile(folder, QStringLiteral("changing.json"), QByteArray(kValid) + "\n").isEmpty());
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(stream.ReadProcedure(0, &container), ZELTPFormatException,
                         path + QStringLiteral(": the file changed while it was read"));
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELTPProgramStream, FileThatCannotBeOpenedNamesTheFileAndTheReason)
{
    ZELTPProgramStream stream;
    EXPECT_THROW_MESSAGE(stream.Open(QStringLiteral("/nonexistent/t.json")), ZELTPFormatException,
                         QStringLiteral("/nonexistent/t.json: cannot open the file: No such file or directory"));
}

} // namespace
