#include "zelkingcodecommand.h"

#include "zelkinarguments.h"
#include "zelkinconsole.h"

#include <zelkingcoderecord.h>
#include <zelkinnclinereader.h>
#include <zelsysexception.h>
#include <zelsysjsontext.h>

#include <QFile>
#include <QMap>

#include <cstdio>

namespace {

const QString StandardInput = QStringLiteral("-");
const QString GName = QStringLiteral("G");
const QString MName = QStringLiteral("M");

// The name errors give the input: the path as it was written, or "standard input".
QString NameOf(const QString& path)
{
    return path == StandardInput ? QStringLiteral("standard input") : path;
}

void OpenForReading(QFile& file, const QString& path)
{
    bool opened = false;
    if (path == StandardInput) {
        opened = file.open(stdin, QIODevice::ReadOnly);
    } else {
        file.setFileName(path);
        opened = file.open(QIODevice::ReadOnly);
    }
    if (!opened)
        throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(NameOf(path), file.errorString()));
}

void AppendJsonNumbers(QString& json, const QList<unsigned>& numbers)
{
    json += QLatin1Char('[');
    for (qsizetype i = 0; i < numbers.size(); ++i) {
        if (i > 0)
            json += QLatin1Char(',');
        json += QString::number(numbers.at(i));
    }
    json += QLatin1Char(']');
}

// Each name once, its values in the order of the line. Names are sorted so
// that equal lines give equal output. The words are grouped in one pass over
// the line: a line may hold millions of them.
void AppendJsonWords(QString& json, const ZELKinGCodeRecord& record)
{
    QMap<QString, QStringList> valuesByName;
    for (const auto& [name, value] : record.GetWords()) {
        if (name != GName && name != MName)
            valuesByName[name].append(value);
    }

    json += QLatin1Char('{');
    for (auto it = valuesByName.cbegin(); it != valuesByName.cend(); ++it) {
        if (it != valuesByName.cbegin())
            json += QLatin1Char(',');
        ZELSysJsonText::AppendString(json, it.key());
        json += QLatin1String(":[");
        const QStringList& values = it.value();
        for (qsizetype j = 0; j < values.size(); ++j) {
            if (j > 0)
                json += QLatin1Char(',');
            ZELSysJsonText::AppendString(json, values.at(j));
        }
        json += QLatin1Char(']');
    }
    json += QLatin1Char('}');
}

// One line of JSON Lines; the keys in a fixed order, for readers and diffs.
QString ToJsonLine(const ZELKinGCodeRecord& record)
{
    QString json = QStringLiteral("{\"line\":%1,\"comment\":").arg(record.GetLineNumber());
    ZELSysJsonText::AppendString(json, record.GetComment());
    json += QLatin1String(",\"g\":");
    AppendJsonNumbers(json, record.GetGCodes());
    json += QLatin1String(",\"m\":");
    AppendJsonNumbers(json, record.GetMCodes());
    json += QLatin1String(",\"words\":");
    AppendJsonWords(json, record);
    json += QLatin1String("}\n");
    return json;
}

} // namespace

QString ZELKinGCodeCommand::GetName() const
{
    return QStringLiteral("gcode");
}

QString ZELKinGCodeCommand::GetSummary() const
{
    return QStringLiteral("Take NC text apart into its words, one JSON line per line");
}

QString ZELKinGCodeCommand::GetSynopsis() const
{
    return QStringLiteral("FILE|-");
}

QString ZELKinGCodeCommand::GetDescription() const
{
    return QStringLiteral("Reads the NC text in FILE, or on standard input for \"-\", and prints every\n"
                          "line taken apart into its words as the library's G-code record reads it:\n"
                          "one JSON object a line (JSON Lines), with the keys\n"
                          "  line     the line's number, counted from 1\n"
                          "  comment  the text after the first semicolon; the whole line if it has none\n"
                          "  g, m     the values of the G and M words as numbers, the last on the line\n"
                          "           first; a value that is not an unsigned whole number reads 0\n"
                          "  words    every other word: its name and its values as text, in the order\n"
                          "           of the line; names sorted\n"
                          "A word is an upper-case name (letters and underscores, and one digit more\n"
                          "right before an \"=\") followed by a number or a text in double quotes.\n"
                          "Bytes that are not UTF-8 read as U+FFFD. A line longer than 67108864\n"
                          "characters, or one that holds a NUL character, is no NC text: the command\n"
                          "ends there with an error.\n");
}

QList<ZELKinOption> ZELKinGCodeCommand::GetOptions() const
{
    return {};
}

ZELKinOption ZELKinGCodeCommand::GetPositional() const
{
    return ZELKinOption::Positional(ZELKinOption::Value::Input);
}

int ZELKinGCodeCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    const QString path = parsed.GetSinglePositional(QStringLiteral("NC file"));

    QFile file;
    OpenForReading(file, path);
    ZELKinNCLineReader reader(file, NameOf(path));
    QString line;
    while (reader.ReadLine(line))
        ZELKinConsole::Print(ToJsonLine(ZELKinGCodeRecord(reader.GetLineNumber(), line)));
    return ZELKinExitStatus::Success;
}
