#include "zelkintoolrun.h"

#include <zeltestsupport.h>

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

const QString GCodeUsageHint = QStringLiteral("zelkin: hint: run 'zelkin help gcode' for its usage");

// A short program with the kinds of line a reader meets: a motion line with
// a comment, an assignment, a message, a comment line, a blank line,
// repeated words, and lower-case text that is no word. Windows line ends on
// the first line, none after the last.
const QByteArray SmallProgram = "N10 G1 G64 X-12.5 Y3 F2000 ;move\r\n"
                                "R1=16\n"
                                "MSG(\"PLY 101\")\n"
                                "; only a comment\n"
                                "\n"
                                "M3 M30 X1 X2\n"
                                "g1 x5";

const QString SmallProgramJson =
    QStringLiteral("{\"line\":1,\"comment\":\"move\",\"g\":[64,1],\"m\":[],"
                   "\"words\":{\"F\":[\"2000\"],\"N\":[\"10\"],\"X\":[\"-12.5\"],\"Y\":[\"3\"]}}\n"
                   "{\"line\":2,\"comment\":\"R1=16\",\"g\":[],\"m\":[],\"words\":{\"R1\":[\"16\"]}}\n"
                   "{\"line\":3,\"comment\":\"MSG(\\\"PLY 101\\\")\",\"g\":[],\"m\":[],"
                   "\"words\":{\"MSG\":[\"PLY 101\"]}}\n"
                   "{\"line\":4,\"comment\":\" only a comment\",\"g\":[],\"m\":[],\"words\":{}}\n"
                   "{\"line\":5,\"comment\":\"\",\"g\":[],\"m\":[],\"words\":{}}\n"
                   "{\"line\":6,\"comment\":\"M3 M30 X1 X2\",\"g\":[],\"m\":[30,3],\"words\":{\"X\":[\"1\",\"2\"]}}\n"
                   "{\"line\":7,\"comment\":\"g1 x5\",\"g\":[],\"m\":[],\"words\":{}}\n");

QString WriteBytes(const QTemporaryDir& directory, const QString& name, const QByteArray& bytes)
{
    const QString path = QDir(directory.path()).filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        ADD_FAILURE() << "cannot write " << path.toStdString();
    return path;
}

// Runs "zelkin gcode <file>" on `bytes` written to a file.
ZELKinToolRun RunOnFile(const QByteArray& bytes)
{
    const QTemporaryDir directory;
    return RunZelkin({QStringLiteral("gcode"), WriteBytes(directory, QStringLiteral("program.nc"), bytes)});
}

// Runs "zelkin gcode -" with `bytes` on its standard input.
ZELKinToolRun RunOnStandardInput(const QByteArray& bytes)
{
    return RunZelkin({QStringLiteral("gcode"), QStringLiteral("-")}, QProcessEnvironment::systemEnvironment(), bytes);
}

::testing::AssertionResult Succeeded(const ZELKinToolRun& run)
{
    if (run.exitStatus != QProcess::NormalExit || run.exitCode != 0 || !run.standardError.isEmpty())
        return ::testing::AssertionFailure() << "exit code " << run.exitCode << ", stderr: "
                                             << run.standardError.toStdString();
    return ::testing::AssertionSuccess();
}

// A failed command prints nothing on stdout and exactly the given lines on
// stderr, and ends with `exitCode` of its own accord.
void ExpectFailure(const ZELKinToolRun& run, int exitCode, const QStringList& errorLines)
{
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, exitCode);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(), errorLines);
}

// Four capital letters from `n`, the first letter changing slowest.
QByteArray FourLetterName(int n)
{
    QByteArray name(4, 'A');
    for (int i = 3; i >= 0; --i, n /= 26)
        name[i] = char('A' + n % 26);
    return name;
}

} // namespace

TEST(ZELKinToolGCode, PrintsOneJsonLinePerLineOfTheFile)
{
    const ZELKinToolRun run = RunOnFile(SmallProgram);
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput, SmallProgramJson);
}

TEST(ZELKinToolGCode, DashReadsStandardInput)
{
    const ZELKinToolRun run = RunOnStandardInput(SmallProgram);
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput, SmallProgramJson);
}

TEST(ZELKinToolGCode, EveryLineIsOneJsonObject)
{
    const ZELKinToolRun run = RunOnFile(SmallProgram);
    QStringList lines = run.standardOutput.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.takeLast(), QString());
    ASSERT_EQ(lines.size(), 7);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(lines.at(i).toUtf8(), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
        EXPECT_EQ(document.object().value(QStringLiteral("line")).toInt(), i + 1);
    }
}

TEST(ZELKinToolGCode, WordNamesAreSortedAndRepeatedValuesKeepTheirOrder)
{
    const ZELKinToolRun run = RunOnFile("_A1=1 Z2 B3 R1=4 R5 Z-6 G0 M5\n");
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput,
              QStringLiteral("{\"line\":1,\"comment\":\"_A1=1 Z2 B3 R1=4 R5 Z-6 G0 M5\",\"g\":[0],\"m\":[5],"
                             "\"words\":{\"B\":[\"3\"],\"R\":[\"5\"],\"R1\":[\"4\"],\"Z\":[\"2\",\"-6\"],"
                             "\"_A1\":[\"1\"]}}\n"));
}

TEST(ZELKinToolGCode, WordsWithoutValueAndCodesThatDoNotConvert)
{
    const ZELKinToolRun run = RunOnFile("G G1.5 G01 X M-3\n");
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput, QStringLiteral("{\"line\":1,\"comment\":\"G G1.5 G01 X M-3\",\"g\":[1,0,0],"
                                                 "\"m\":[0],\"words\":{\"X\":[\"\"]}}\n"));
}

TEST(ZELKinToolGCode, QuotesBackslashesAndControlCharactersAreEscaped)
{
    const ZELKinToolRun run = RunOnFile("X1 ;say \"hi\" \\ tab\there\x01\n");
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput, QStringLiteral("{\"line\":1,\"comment\":\"say \\\"hi\\\" \\\\ tab\\there\\u0001\","
                                                 "\"g\":[],\"m\":[],\"words\":{\"X\":[\"1\"]}}\n"));
}

// How bytes become lines of text: the encoding, its byte order mark, bytes
// it cannot decode and the carriage returns around line ends.
struct TextCase
{
    const char* name;
    QByteArray input;
    QString output;
};

void PrintTo(const TextCase& c, std::ostream* os)
{
    *os << c.name;
}

class ZELKinToolGCodeText : public ::testing::TestWithParam<TextCase>
{
};

TEST_P(ZELKinToolGCodeText, IsReadIntoLinesAsTheRulesSay)
{
    const ZELKinToolRun run = RunOnFile(GetParam().input);
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput, GetParam().output);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ZELKinToolGCodeText,
    ::testing::Values(
        TextCase{"BytesThatAreNotUtf8ReadAsReplacementCharacters", "X1 ;caf\xe9\n\xff\xfeG2\n",
                 QStringLiteral("{\"line\":1,\"comment\":\"caf\ufffd\",\"g\":[],\"m\":[],\"words\":{\"X\":[\"1\"]}}\n"
                                "{\"line\":2,\"comment\":\"\ufffd\ufffdG2\",\"g\":[2],\"m\":[],\"words\":{}}\n")},
        TextCase{"Utf8ByteOrderMarkIsNotPartOfTheFirstLine", "\xef\xbb\xbfG1 ;\xc3\xa4\n",
                 QStringLiteral("{\"line\":1,\"comment\":\"\u00e4\",\"g\":[1],\"m\":[],\"words\":{}}\n")},
        // One carriage return goes with the line end after it, or with the
        // end of the text; any other is part of the line.
        TextCase{"OneCarriageReturnBeforeALineEndOrTheEndOfTheTextIsNotPartOfTheLine", "G1\rX2\r\r\nX3\r\n\r",
                 QStringLiteral(
                     "{\"line\":1,\"comment\":\"G1\\rX2\\r\",\"g\":[1],\"m\":[],\"words\":{\"X\":[\"2\"]}}\n"
                     "{\"line\":2,\"comment\":\"X3\",\"g\":[],\"m\":[],\"words\":{\"X\":[\"3\"]}}\n"
                     "{\"line\":3,\"comment\":\"\",\"g\":[],\"m\":[],\"words\":{}}\n")},
        TextCase{"Utf16ByteOrderMarkChoosesUtf16", QByteArray("\xff\xfeG\0001\000\n\000X\0002\000", 12),
                 QStringLiteral("{\"line\":1,\"comment\":\"G1\",\"g\":[1],\"m\":[],\"words\":{}}\n"
                                "{\"line\":2,\"comment\":\"X2\",\"g\":[],\"m\":[],\"words\":{\"X\":[\"2\"]}}\n")}),
    [](const ::testing::TestParamInfo<TextCase>& info) { return std::string(info.param.name); });

// The text is read in blocks; a character whose bytes two blocks share is
// read whole, wherever the blocks end.
TEST(ZELKinToolGCode, CharactersAcrossTheBlocksOfALongLineAreReadWhole)
{
    QByteArray line("G1 ;");
    for (int i = 0; i < 100000; ++i)
        line += "\xe2\x82\xac";
    const ZELKinToolRun run = RunOnFile(line + "\nX1\n");
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput,
              QStringLiteral("{\"line\":1,\"comment\":\"%1\",\"g\":[1],\"m\":[],\"words\":{}}\n"
                             "{\"line\":2,\"comment\":\"X1\",\"g\":[],\"m\":[],\"words\":{\"X\":[\"1\"]}}\n")
                  .arg(QString(100000, QChar(0x20ac))));
}

TEST(ZELKinToolGCode, EmptyInputPrintsNothing)
{
    for (const ZELKinToolRun& run : {RunOnFile(QByteArray()), RunOnStandardInput(QByteArray())}) {
        EXPECT_TRUE(Succeeded(run));
        EXPECT_EQ(run.standardOutput, QString());
    }
}

TEST(ZELKinToolGCode, LongProgramIsReadToItsLastLine)
{
    constexpr int kLines = 20000;
    QByteArray program;
    for (int i = 1; i <= kLines; ++i)
        program += "N" + QByteArray::number(i) + " G1 X" + QByteArray::number(i % 97) + "\n";
    const ZELKinToolRun run = RunOnFile(program);
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput.count(QLatin1Char('\n')), kLines);
    EXPECT_TRUE(run.standardOutput.endsWith(QStringLiteral("{\"line\":20000,\"comment\":\"N20000 G1 X18\",\"g\":[1],"
                                                           "\"m\":[],\"words\":{\"N\":[\"20000\"],\"X\":[\"18\"]}}\n")))
        << run.standardOutput.right(200).toStdString();
}

// Grouping the words name by name, each name looked for along the whole
// line, would take many minutes here.
TEST(ZELKinToolGCode, LineOfManyDistinctNamesListsEachNameOnceInOrder)
{
    constexpr int kNames = 200000;
    QByteArray line;
    for (int n = kNames - 1; n >= 0; --n)
        line += FourLetterName(n) + QByteArray::number(n % 10) + ' ';
    line += "G1 X5 X6\n";

    // Every name made here sorts before X.
    QString words;
    for (int n = 0; n < kNames; ++n)
        words += QStringLiteral("\"%1\":[\"%2\"],").arg(QString::fromLatin1(FourLetterName(n))).arg(n % 10);
    words += QStringLiteral("\"X\":[\"5\",\"6\"]");
    const ZELKinToolRun run = RunOnFile(line);
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput,
              QStringLiteral("{\"line\":1,\"comment\":\"%1\",\"g\":[1],\"m\":[],\"words\":{%2}}\n")
                  .arg(QString::fromLatin1(line.chopped(1)), words));
}

// NC text holds no NUL character. A pipe that gives one is no NC program (a
// device such as /dev/urandom may never end), and the lines before it are
// all it has; a file has an end and is read as text whatever it holds.
TEST(ZELKinToolGCode, NulCharacterFromAPipeEndsTheCommandAfterTheLinesBeforeIt)
{
    const ZELKinToolRun run = RunOnStandardInput(QByteArray("G1 X1\nX2") + '\0' + "Y3\nG2\n");
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardOutput,
              QStringLiteral("{\"line\":1,\"comment\":\"G1 X1\",\"g\":[1],\"m\":[],\"words\":{\"X\":[\"1\"]}}\n"));
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: cannot read standard input: line 2 "
                                          "holds a NUL character, which no NC text holds")}));
}

TEST(ZELKinToolGCode, NulCharacterInAFileIsReadAsAControlCharacter)
{
    const ZELKinToolRun run = RunOnFile(QByteArray("X2") + '\0' + "Y3\n");
    EXPECT_TRUE(Succeeded(run));
    EXPECT_EQ(run.standardOutput,
              QStringLiteral("{\"line\":1,\"comment\":\"X2\\u0000Y3\",\"g\":[],\"m\":[],"
                             "\"words\":{\"X\":[\"2\"],\"Y\":[\"3\"]}}\n"));
}

// A line may be 67108864 characters long, its line end not counted; one
// character more is an error, whatever follows (/dev/zero has no line end).
TEST(ZELKinToolGCode, LineOfTheLargestLengthIsReadAndALongerOneIsAnError)
{
    constexpr qsizetype kLargest = qsizetype(1) << 26;
    const QByteArray largest = QByteArray(kLargest - 2, 'x').prepend("G1").append("\r\n");
    const QTemporaryDir directory;
    const QString path = WriteBytes(directory, QStringLiteral("long.nc"), largest + QByteArray(kLargest + 1, 'x'));
    const ZELKinToolRun run = RunZelkin({QStringLiteral("gcode"), path});
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.standardOutput.startsWith(QStringLiteral("{\"line\":1,\"comment\":\"G1xxx")));
    EXPECT_TRUE(run.standardOutput.endsWith(QStringLiteral("xxx\",\"g\":[1],\"m\":[],\"words\":{}}\n")));
    EXPECT_EQ(run.standardOutput.size(), kLargest + 50);
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: cannot read %1: line 2 is longer than 67108864 "
                                          "characters, which no NC program has")
                               .arg(path)}));
}

TEST(ZELKinToolGCode, MissingFileIsAnErrorNamingTheFile)
{
    const QTemporaryDir directory;
    const QString path = QDir(directory.path()).filePath(QStringLiteral("no-such-program.nc"));
    ExpectFailure(RunZelkin({QStringLiteral("gcode"), path}), 1,
                  {QStringLiteral("zelkin: error: cannot read %1: No such file or directory").arg(path)});
}

TEST(ZELKinToolGCode, DirectoryIsAnErrorNamingIt)
{
    const QTemporaryDir directory;
    const ZELKinToolRun run = RunZelkin({QStringLiteral("gcode"), directory.path()});
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardOutput, QString());
    const QStringList errors = run.GetErrorLines();
    ASSERT_EQ(errors.size(), 1);
    const QString prefix = QStringLiteral("zelkin: error: cannot read %1: ").arg(directory.path());
    EXPECT_TRUE(errors.first().startsWith(prefix)) << errors.first().toStdString();
    EXPECT_GT(errors.first().size(), prefix.size());
}

TEST(ZELKinToolGCode, MissingFileArgumentIsAUsageError)
{
    ExpectFailure(RunZelkin({QStringLiteral("gcode")}), 2,
                  {QStringLiteral("zelkin: error: missing the NC file"), GCodeUsageHint});
}

TEST(ZELKinToolGCode, SecondFileIsAUsageError)
{
    ExpectFailure(RunZelkin({QStringLiteral("gcode"), QStringLiteral("a.nc"), QStringLiteral("b.nc")}), 2,
                  {QStringLiteral("zelkin: error: unexpected argument 'b.nc'"), GCodeUsageHint});
}

TEST(ZELKinToolGCode, UnknownOptionIsAUsageError)
{
    ExpectFailure(RunZelkin({QStringLiteral("gcode"), QStringLiteral("--json"), QStringLiteral("a.nc")}), 2,
                  {QStringLiteral("zelkin: error: unknown option '--json'"), GCodeUsageHint});
}

TEST(ZELKinToolGCode, HelpShowsTheUsage)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help"), QStringLiteral("gcode")});
    EXPECT_TRUE(Succeeded(run));
    EXPECT_TRUE(run.standardOutput.startsWith(QStringLiteral("Usage: zelkin gcode FILE|-\n\n")))
        << run.standardOutput.toStdString();
}

TEST(ZELKinToolGCode, IsListedAmongTheCommands)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help")});
    EXPECT_TRUE(Succeeded(run));
    const QRegularExpression entry(
        QStringLiteral("^  gcode +Take NC text apart into its words, one JSON line per line$"),
        QRegularExpression::MultilineOption);
    EXPECT_TRUE(entry.match(run.standardOutput).hasMatch()) << run.standardOutput.toStdString();
}
