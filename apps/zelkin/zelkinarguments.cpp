#include "zelkinarguments.h"

#include "zelkincommand.h"
#include "zelkininputfile.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace {

const QString EndOfOptions = QStringLiteral("--");

// The parser's messages are sentences ("Missing value after '--x'."); the
// tool's diagnostics are phrases, as in "zelkin: error: missing value after '--x'".
QString AsPhrase(const QString& sentence)
{
    QString phrase = sentence;
    if (phrase.endsWith(QLatin1Char('.')))
        phrase.chop(1);
    if (!phrase.isEmpty())
        phrase[0] = phrase.at(0).toLower();
    return phrase;
}

QString NeedsAPath(const QString& what)
{
    return QStringLiteral("%1 needs a path, not an empty text").arg(what);
}

// One file, however it is named: through links, "..", or another hard link.
bool IsSameFile(const QString& path, const QString& other)
{
    struct stat first;
    struct stat second;
    return ::stat(QFile::encodeName(path).constData(), &first) == 0
        && ::stat(QFile::encodeName(other).constData(), &second) == 0 && S_ISREG(first.st_mode)
        && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool IsInside(const QString& path, const QString& folder)
{
    const QString canonicalFolder = QFileInfo(folder).canonicalFilePath();
    return !canonicalFolder.isEmpty()
        && QFileInfo(path).canonicalFilePath().startsWith(canonicalFolder + QLatin1Char('/'));
}

} // namespace

ZELKinArguments::ZELKinArguments(const QString& command, const QStringList& arguments,
                                 const QList<ZELKinOption>& options)
    : m_command(command)
    , m_options(options)
{
    for (const ZELKinOption& option : options)
        m_parser.addOption(option.GetParserOption());
    // The parser skips the first entry, where it expects the program name.
    if (!m_parser.parse(QStringList(QStringLiteral("zelkin")) + arguments))
        throw ZELKinUsageError(DescribeParseError(), m_command);
    RequireEachOnce();
    RequireOneStandardInput();
}

bool ZELKinArguments::IsSet(const QString& option) const
{
    return m_parser.isSet(option);
}

QString ZELKinArguments::GetValue(const QString& option) const
{
    const ZELKinOption* known = Find(option);
    const QString value = m_parser.value(option);
    return known && known->GetValue() == ZELKinOption::Value::Input ? ZELKinInputFile::GetPath(value) : value;
}

QString ZELKinArguments::GetRequiredValue(const QString& option) const
{
    if (!IsSet(option))
        throw ZELKinUsageError(QStringLiteral("missing the option --%1").arg(option), m_command);
    return GetValue(option);
}

QStringList ZELKinArguments::GetPositionals() const
{
    return m_parser.positionalArguments();
}

QString ZELKinArguments::GetSinglePositional(const QString& what) const
{
    RequireAtMostPositionals(1);
    const QStringList positionals = GetPositionals();
    if (positionals.isEmpty())
        throw ZELKinUsageError(QStringLiteral("missing the %1").arg(what), m_command);
    if (positionals.first().isEmpty())
        throw ZELKinUsageError(NeedsAPath(QStringLiteral("the ") + what), m_command);
    return positionals.first();
}

QString ZELKinArguments::GetSingleInput(const QString& what) const
{
    return ZELKinInputFile::GetPath(GetSinglePositional(what));
}

void ZELKinArguments::RequireAtMostPositionals(int count) const
{
    const QStringList positionals = GetPositionals();
    if (positionals.size() > count)
        throw ZELKinUsageError(QStringLiteral("unexpected argument '%1'").arg(positionals.at(count)), m_command);
}

void ZELKinArguments::RequirePaths(const QStringList& options) const
{
    for (const QString& option : options) {
        if (IsSet(option) && GetValue(option).isEmpty())
            throw ZELKinUsageError(NeedsAPath(QStringLiteral("the option ") + ZELKinOption::AsTyped(option)),
                                   m_command);
    }
}

void ZELKinArguments::RequireNotAnInput(const QString& output, const QString& path, const QStringList& inputs) const
{
    for (const QString& input : inputs) {
        if (IsSet(input) && IsSameFile(path, GetValue(input)))
            throw ZELKinUsageError(QStringLiteral("%1 would overwrite the file that %2 reads: '%3'")
                                       .arg(ZELKinOption::AsTyped(output), ZELKinOption::AsTyped(input), path),
                                   m_command);
    }
}

void ZELKinArguments::RequireOutside(const QString& output, const QString& folder, const QStringList& inputs) const
{
    for (const QString& input : inputs) {
        if (IsSet(input) && IsInside(GetValue(input), folder))
            throw ZELKinUsageError(QStringLiteral("%1 reads a file inside '%2', which %3 replaces")
                                       .arg(ZELKinOption::AsTyped(input), folder, ZELKinOption::AsTyped(output)),
                                   m_command);
    }
}

bool ZELKinArguments::AsksForHelp(const QStringList& arguments)
{
    const QStringList options = arguments.mid(0, arguments.indexOf(EndOfOptions));
    return options.contains(QStringLiteral("--help")) || options.contains(QStringLiteral("-h"));
}

QString ZELKinArguments::DescribeParseError() const
{
    // One unknown option is enough to name: the user fixes one at a time.
    const QStringList unknown = m_parser.unknownOptionNames();
    if (!unknown.isEmpty())
        return QStringLiteral("unknown option '%1'").arg(ZELKinOption::AsTyped(unknown.first()));
    return AsPhrase(m_parser.errorText());
}

// The last value would win without a word, and the first may be the one
// meant: a toolpath or an output path given twice is a slip to point out.
void ZELKinArguments::RequireEachOnce() const
{
    QList<const ZELKinOption*> given;
    for (const QString& name : m_parser.optionNames()) {
        const ZELKinOption* option = Find(name);
        if (given.contains(option))
            throw ZELKinUsageError(QStringLiteral("the option %1 is given twice").arg(ZELKinOption::AsTyped(name)),
                                   m_command);
        given.append(option);
    }
}

// The standard input is read once, to its end: a second reader would find
// nothing, or, where it is a file, read it again from its start.
void ZELKinArguments::RequireOneStandardInput() const
{
    const QStringList readers = GetStandardInputReaders();
    if (readers.size() > 1)
        throw TwoStandardInputReaders(readers.at(0), readers.at(1));
}

void ZELKinArguments::RequireStandardInputFor(const QString& reader) const
{
    const QStringList readers = GetStandardInputReaders();
    if (!readers.isEmpty())
        throw TwoStandardInputReaders(readers.first(), reader);
}

QStringList ZELKinArguments::GetStandardInputReaders() const
{
    QStringList readers;
    for (const ZELKinOption& option : m_options) {
        if (ReadsStandardInput(option))
            readers.append(ZELKinOption::AsTyped(option.GetNames().first()));
    }
    return readers;
}

ZELKinUsageError ZELKinArguments::TwoStandardInputReaders(const QString& first, const QString& second) const
{
    return ZELKinUsageError(QStringLiteral("%1 and %2 cannot both read standard input ('%3')")
                                .arg(first, second, ZELKinInputFile::GetStandardInputArgument()),
                            m_command);
}

const ZELKinOption* ZELKinArguments::Find(const QString& name) const
{
    for (const ZELKinOption& option : m_options) {
        if (option.GetNames().contains(name))
            return &option;
    }
    return nullptr;
}

bool ZELKinArguments::ReadsStandardInput(const ZELKinOption& option) const
{
    const QString name = option.GetNames().first();
    return option.GetValue() == ZELKinOption::Value::Input && m_parser.isSet(name)
        && m_parser.value(name) == ZELKinInputFile::GetStandardInputArgument();
}
