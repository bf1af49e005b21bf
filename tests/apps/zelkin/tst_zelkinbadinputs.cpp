// Every case of the tests/bad-inputs/cases*.txt files: zelkin refuses the input with
// the case's exit status and one "zelkin: error:" line that names the
// problem, never crashes, and leaves nothing in the case's output folder.

#include "zelkintoolrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <string>
#include <vector>

#include <unistd.h>

namespace {

const QString kErrorPrefix = QStringLiteral("zelkin: error: ");

struct BadInputCase
{
    std::string name;
    int exitCode = 0;
    QString expected;
    QStringList arguments;
};

void PrintTo(const BadInputCase& c, std::ostream* out)
{
    *out << c.name;
}

QString CorpusPath(const QString& relative)
{
    return QDir(QStringLiteral(ZELKIN_BAD_INPUTS_DIR)).filePath(relative);
}

// Each theme has a file of its own; the cases of all of them run as one
// table, file by file in name order.
QStringList CaseLines()
{
    QStringList lines;
    const QDir folder(QStringLiteral(ZELKIN_BAD_INPUTS_DIR));
    for (const QString& name : folder.entryList({QStringLiteral("cases*.txt")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly | QIODevice::Text))
            lines += QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    }
    return lines;
}

std::vector<BadInputCase> ReadCases()
{
    std::vector<BadInputCase> cases;
    for (const QString& line : CaseLines()) {
        if (line.trimmed().isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList fields = line.split(QLatin1Char('|'));
        BadInputCase c;
        c.name = fields.value(0).trimmed().replace(QLatin1Char('-'), QLatin1Char('_')).toStdString();
        c.exitCode = fields.value(1).trimmed().toInt();
        c.expected = fields.value(2).trimmed();
        c.arguments = fields.value(3).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        cases.push_back(c);
    }
    return cases;
}

// The large inputs are made when a case needs them, in its own folder.
QString WriteRepeated(const QString& path, const QByteArray& head, const QByteArray& open, const QByteArray& close,
                      int count, const QByteArray& tail)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return path;
    file.write(head);
    file.write(open.repeated(count));
    file.write(close.repeated(count));
    file.write(tail);
    return path;
}

// A file of `size` bytes that takes no room on disk.
QString WriteSparse(const QString& path, qint64 size)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.resize(size);
    return path;
}

qint64 PhysicalMemory()
{
    return qint64(sysconf(_SC_PHYS_PAGES)) * qint64(sysconf(_SC_PAGESIZE));
}

QString Substitute(const QString& argument, const QTemporaryDir& scratch, const QString& out)
{
    if (argument == QLatin1String("@machine"))
        return GetExampleMachinePath();
    if (argument == QLatin1String("@toolpath"))
        return QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/minimal.json");
    if (argument == QLatin1String("@nested-json"))
        return WriteRepeated(scratch.filePath(QStringLiteral("nested.json")), QByteArray(), "[", "]", 50000000,
                             QByteArray());
    if (argument == QLatin1String("@nested-xml"))
        return WriteRepeated(scratch.filePath(QStringLiteral("nested.xml")), "<machine type=\"AFP\">", "<a>", "</a>",
                             400000, "</machine>");
    if (argument == QLatin1String("@huge-xml"))
        return WriteRepeated(scratch.filePath(QStringLiteral("huge.xml")), "<machine type=\"AFP\"><!--", "x", "",
                             5 << 20, "--></machine>");
    if (argument == QLatin1String("@oversized-json"))
        return WriteSparse(scratch.filePath(QStringLiteral("oversized.json")), PhysicalMemory() / 4);
    if (argument == QLatin1String("@empty"))
        return QString();
    if (argument.startsWith(QLatin1String("@in/")))
        return CorpusPath(argument.mid(4));
    QString substituted = argument;
    return substituted.replace(QLatin1String("@out"), out);
}

QStringList ErrorLines(const ZELKinToolRun& run)
{
    QStringList errors;
    for (const QString& line : run.GetErrorLines()) {
        if (line.startsWith(kErrorPrefix))
            errors.append(line.mid(kErrorPrefix.size()));
    }
    return errors;
}

bool IsCharacterDevice(const char* path)
{
    const QFileInfo info(QString::fromLatin1(path));
    return info.exists() && !info.isFile() && !info.isDir();
}

class ZELKinBadInput : public ::testing::TestWithParam<BadInputCase>
{
};

} // namespace

TEST(ZELKinBadInputs, TheCorpusHoldsAtLeastSixtyCases)
{
    EXPECT_GE(ReadCases().size(), 60u);
}

TEST_P(ZELKinBadInput, EndsInOneClearErrorAndLeavesNothingBehind)
{
    const BadInputCase& c = GetParam();
    QTemporaryDir scratch;
    ASSERT_TRUE(scratch.isValid());
    const QString out = scratch.filePath(QStringLiteral("out"));
    ASSERT_TRUE(QDir().mkpath(out));
    QStringList arguments;
    for (const QString& argument : c.arguments)
        arguments.append(Substitute(argument, scratch, out));

    const ZELKinToolRun run = RunZelkin(arguments);

    EXPECT_EQ(run.exitStatus, QProcess::NormalExit) << "zelkin crashed";
    EXPECT_EQ(run.exitCode, c.exitCode) << run.standardError.toStdString();
    const QStringList errors = ErrorLines(run);
    ASSERT_EQ(errors.size(), 1) << run.standardError.toStdString();
    if (c.expected.startsWith(QLatin1Char('=')))
        EXPECT_EQ(errors.first(), c.expected.mid(1));
    else
        EXPECT_TRUE(errors.first().contains(c.expected))
            << errors.first().toStdString() << "\ndoes not hold\n" << c.expected.toStdString();
    EXPECT_EQ(QDir(out).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList())
        << "left behind in the output folder";
    // Writing in place of a device must never replace the device.
    EXPECT_TRUE(IsCharacterDevice("/dev/full"));
    EXPECT_TRUE(IsCharacterDevice("/dev/null"));
}

INSTANTIATE_TEST_SUITE_P(Corpus, ZELKinBadInput, ::testing::ValuesIn(ReadCases()),
                         [](const ::testing::TestParamInfo<BadInputCase>& info) { return info.param.name; });
