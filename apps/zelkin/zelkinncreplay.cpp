#include "zelkinncreplay.h"

#include "zelkinnclinereader.h"

#include <zelkinafpmachine.h>
#include <zelkinvariable.h>
#include <zelsysexception.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kRadiansPerDegree = 0.017453292519943295;

const QString kProgramSetSuffix = QStringLiteral(".PPSF");
const QString kBundleSuffix = QStringLiteral("bun");
const QString kSourceSuffix = QStringLiteral("aptsource");

// The lines of the posted files, read one file after the other and refused
// once they hold more characters in all than a bound.
class PostedText
{
public:
    explicit PostedText(qint64 maximumLength)
        : m_maximumLength(maximumLength)
    {
    }

    QStringList ReadLines(const QString& path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
        ZELKinNCLineReader reader(file, path);
        QStringList lines;
        QString line;
        while (reader.ReadLine(line)) {
            m_length += line.size();
            if (m_length > m_maximumLength)
                throw ZELSysException(QStringLiteral("cannot read %1: the posted NC is longer than %2 characters, "
                                                     "the most that is read")
                                          .arg(path, QString::number(m_maximumLength)));
            lines.append(line);
        }
        return lines;
    }

private:
    const qint64 m_maximumLength;
    qint64 m_length = 0;
};

bool HoldsProgramSet(const QDir& folder)
{
    return !folder.entryList({QLatin1Char('*') + kProgramSetSuffix}, QDir::Files).isEmpty();
}

// The folder "zelkin post" wrote the files to: the one given, or the one
// program folder inside it.
QDir ProgramFolder(const QString& path)
{
    const QDir given(path);
    if (HoldsProgramSet(given))
        return given;
    QList<QDir> programs;
    for (const QString& name : given.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QDir folder(given.filePath(name));
        if (HoldsProgramSet(folder))
            programs.append(folder);
    }
    if (programs.isEmpty())
        throw ZELSysException(QStringLiteral("no posted program in %1: no program-set file (%2) there or in a folder "
                                             "inside it")
                                  .arg(path, kProgramSetSuffix));
    if (programs.size() > 1)
        throw ZELSysException(
            QStringLiteral("%1 holds %2 posted programs; give the folder of one of them")
                .arg(path, QString::number(programs.size())));
    return programs.first();
}

// ";[COURSE] CourseNumber=3,..."
const QRegularExpression kCourseRecord(QStringLiteral("^;\\[COURSE\\] CourseNumber=(\\d+)"));
// "; 0101, Ply 1 0" in the program-set file's list of ply programs.
const QRegularExpression kPlyProgram(QStringLiteral("^; (\\d{4}), (.*)$"));
// "NAME#0101.PPF"
const QRegularExpression kPlyFileName(QStringLiteral("#(\\d{4})\\.PPF$"));

// The codes the post writes between a ply's first and last motion line:
// feed moves, exact stop, the U preset and blending; the course's macros
// (spindle of the tows, heater, handshakes, feed changes).
const QList<unsigned> kMotionGCodes{1, 9, 92, 641, 642};
const QList<unsigned> kMotionMCodes{4, 5, 18, 19, 26, 64, 69};
// Codes that halt the controller, or end the program, where they stand.
const QList<unsigned> kProgramStops{0, 1, 2, 30};

struct Word
{
    QString name;
    //! Empty for a word without a number.
    QString number;
};

// The scanners below read a line once from its start to its end, whatever it
// holds: a line of millions of words reads in time in proportion to it.

bool IsAddressCharacter(QChar c)
{
    return (c >= u'A' && c <= u'Z') || c == u'_';
}

bool IsDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool IsAt(QStringView text, qsizetype at, char16_t c)
{
    return at < text.size() && text[at] == c;
}

bool IsSignAt(QStringView text, qsizetype at)
{
    return IsAt(text, at, u'-') || IsAt(text, at, u'+');
}

qsizetype SkipDigits(QStringView text, qsizetype at)
{
    while (at < text.size() && IsDigit(text[at]))
        ++at;
    return at;
}

// The end of the number that starts at `at`, or `at` when none does. A
// number as a controller reads it: a sign, digits with an optional point and
// more digits (or a point and digits), and an exponent with its own sign.
qsizetype NumberEnd(QStringView text, qsizetype at)
{
    const qsizetype mantissa = IsSignAt(text, at) ? at + 1 : at;
    qsizetype end = SkipDigits(text, mantissa);
    if (IsAt(text, end, u'.')) {
        const qsizetype fractionEnd = SkipDigits(text, end + 1);
        // "5." is a number, a point alone is none.
        if (end > mantissa || fractionEnd > end + 1)
            end = fractionEnd;
    }
    if (end == mantissa)
        return at;
    if (IsAt(text, end, u'e') || IsAt(text, end, u'E')) {
        const qsizetype exponent = IsSignAt(text, end + 1) ? end + 2 : end + 1;
        const qsizetype exponentEnd = SkipDigits(text, exponent);
        if (exponentEnd > exponent)
            end = exponentEnd;
    }
    return end;
}

// The words of `code`: an address (capital letters and underscores, with one
// digit when "=" follows it), then an optional "=", "(" and double quote,
// then its value: a number, read whole, or a text up to the next double
// quote, with no carriage return or line feed in it. Anything else between
// words is skipped.
QList<Word> WordsOf(QStringView code)
{
    QList<Word> words;
    // Where the text that starts at a word's value ends: the next quote,
    // carriage return or line feed from there. Found once for all the words
    // before it.
    qsizetype textEnd = -1;
    qsizetype at = 0;
    while (at < code.size()) {
        if (!IsAddressCharacter(code[at])) {
            ++at;
            continue;
        }
        const qsizetype nameBegin = at;
        while (at < code.size() && IsAddressCharacter(code[at]))
            ++at;
        if (at < code.size() && IsDigit(code[at]) && IsAt(code, at + 1, u'='))
            ++at;
        Word word{code.mid(nameBegin, at - nameBegin).toString(), QString()};
        for (const char16_t optional : {u'=', u'(', u'"'}) {
            if (IsAt(code, at, optional))
                ++at;
        }
        const qsizetype numberEnd = NumberEnd(code, at);
        if (numberEnd > at) {
            word.number = code.mid(at, numberEnd - at).toString();
            at = numberEnd;
        } else {
            if (textEnd < at) {
                textEnd = at;
                while (textEnd < code.size() && code[textEnd] != u'"' && code[textEnd] != u'\r'
                       && code[textEnd] != u'\n')
                    ++textEnd;
            }
            if (textEnd > at && IsAt(code, textEnd, u'"'))
                at = textEnd;
        }
        words.append(word);
    }
    return words;
}

// "G92(U,0.0000)", anywhere on the line: the first preset's axis and number.
struct PresetText
{
    QStringView axis;
    QStringView number;
};

bool IsWordCharacter(QChar c)
{
    return IsAddressCharacter(c) || IsDigit(c) || (c >= u'a' && c <= u'z');
}

std::optional<PresetText> FindPreset(QStringView line)
{
    static const QString open = QStringLiteral("G92(");
    for (qsizetype at = line.indexOf(open); at >= 0; at = line.indexOf(open, at + 1)) {
        const qsizetype axis = at + open.size();
        qsizetype axisEnd = axis;
        while (axisEnd < line.size() && IsWordCharacter(line[axisEnd]))
            ++axisEnd;
        if (axisEnd == axis || !IsAt(line, axisEnd, u','))
            continue;
        const qsizetype numberEnd = NumberEnd(line, axisEnd + 1);
        if (numberEnd > axisEnd + 1 && IsAt(line, numberEnd, u')'))
            return PresetText{line.mid(axis, axisEnd - axis), line.mid(axisEnd + 1, numberEnd - axisEnd - 1)};
    }
    return std::nullopt;
}

// ";PMAC1: G500U117.703A/B[FFFF]": material, event code and tows, as text.
struct TowEventText
{
    QStringView u;
    QStringView code;
    QStringView tows;
};

bool IsCapital(QStringView text, qsizetype at)
{
    return at < text.size() && text[at] >= u'A' && text[at] <= u'Z';
}

bool IsHexDigit(QChar c)
{
    return IsDigit(c) || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

std::optional<TowEventText> ParseTowEvent(QStringView line)
{
    static const QString head = QStringLiteral(";PMAC1: G500U");
    if (!line.startsWith(head))
        return std::nullopt;
    const qsizetype u = head.size();
    const qsizetype code = NumberEnd(line, u);
    if (code == u || !IsCapital(line, code) || !IsAt(line, code + 1, u'/') || !IsCapital(line, code + 2)
        || !IsAt(line, code + 3, u'['))
        return std::nullopt;
    const qsizetype tows = code + 4;
    qsizetype towsEnd = tows;
    while (towsEnd < line.size() && IsHexDigit(line[towsEnd]))
        ++towsEnd;
    if (towsEnd == tows || !IsAt(line, towsEnd, u']'))
        return std::nullopt;
    return TowEventText{line.mid(u, code - u), line.mid(code, 3), line.mid(tows, towsEnd - tows)};
}

// The post writes plain decimals only; a controller reads "2e+05" as 200000
// where a person, or a reader that stops at the "e", sees 2.
bool IsInExponentNotation(const QString& number)
{
    return number.contains(QLatin1Char('e'), Qt::CaseInsensitive);
}

// The state a controller keeps while it runs one ply file.
class PlyRun
{
public:
    PlyRun(ZELKinNCPlyFile& ply, const QStringList& labels, const QVector<double>& scales)
        : m_ply(ply)
        , m_labels(labels)
        , m_scales(scales)
        , m_values(labels.size(), std::numeric_limits<double>::quiet_NaN())
    {
    }

    void Run(unsigned lineNumber, const QString& text)
    {
        const QString line = text.trimmed();
        if (line.startsWith(QLatin1Char(';')))
            ReadComment(lineNumber, line);
        else if (line == QLatin1String("COURSE_MODE"))
            m_alongCourse = true;
        else if (line == QLatin1String("OFF_COURSE_MODE"))
            LeaveCourseMode();
        else if (!Preset(lineNumber, line))
            Move(lineNumber, line);
    }

    //! A stop or a strange code counts only from the first motion line to
    //! the last: the start-up and the end of the ply stop the program by
    //! design.
    void Finish()
    {
        if (m_ply.motions.isEmpty())
            return;
        const unsigned first = m_ply.motions.first().line;
        const unsigned last = m_ply.motions.last().line;
        for (const ZELKinNCIrregularity& code : std::as_const(m_codes)) {
            if (code.line >= first && code.line <= last)
                m_ply.irregularities.append(code);
        }
    }

private:
    void ReadComment(unsigned lineNumber, const QString& line)
    {
        const QRegularExpressionMatch course = kCourseRecord.match(line);
        if (course.hasMatch()) {
            m_course = course.captured(1).toInt();
            m_ply.courseRecords.insert(m_course, lineNumber);
            m_alongCourse = false;
            m_offPartPointToCome = false;
            m_courseLeft = false;
            return;
        }
        const std::optional<TowEventText> event = ParseTowEvent(line);
        if (!event)
            return;
        const QString u = event->u.toString();
        CheckNotation(lineNumber, QStringLiteral("G500U"), u);
        m_ply.towEvents.append(ZELKinNCTowEvent{lineNumber, m_course, u.toDouble(), event->code.toString(),
                                                event->tows.toULongLong(nullptr, 16)});
    }

    // The course's last position, the first off-part point, follows
    // OFF_COURSE_MODE and still belongs to the course.
    void LeaveCourseMode()
    {
        m_alongCourse = false;
        m_offPartPointToCome = true;
    }

    bool Preset(unsigned lineNumber, const QString& line)
    {
        const std::optional<PresetText> preset = FindPreset(line);
        if (!preset)
            return false;
        const QString number = preset->number.toString();
        CheckNotation(lineNumber, QStringLiteral("G92"), number);
        const int axis = int(m_labels.indexOf(preset->axis));
        if (axis >= 0)
            m_values[axis] = number.toDouble() * m_scales.at(axis);
        return true;
    }

    void Move(unsigned lineNumber, const QString& line)
    {
        const QList<Word> words = WordsOf(QStringView(line).left(line.indexOf(QLatin1Char(';'))));
        const QVector<double> starts = m_values;
        QVector<bool> written(m_labels.size(), false);
        for (const Word& word : words) {
            CheckNotation(lineNumber, word.name, word.number);
            if (word.name == QLatin1String("G") || word.name == QLatin1String("M"))
                ReadCode(lineNumber, word);
            else if (word.name == QLatin1String("F"))
                ReadFeed(lineNumber, word);
            else if (const int axis = int(m_labels.indexOf(word.name)); axis >= 0)
                written[axis] = ReadAxis(lineNumber, word, axis);
        }
        if (!written.contains(true))
            return;
        const bool alongCourse = m_alongCourse || m_offPartPointToCome;
        m_ply.motions.append(ZELKinNCMotion{lineNumber, m_course, alongCourse, m_rapid, m_values, starts, written,
                                            m_feedrate, alongCourse ? -1 : LinkIndex()});
        m_courseLeft = m_courseLeft || m_offPartPointToCome;
        m_offPartPointToCome = false;
    }

    void ReadCode(unsigned lineNumber, const Word& word)
    {
        bool isNumber = false;
        const unsigned code = word.number.toUInt(&isNumber);
        if (isNumber && word.name == QLatin1String("G") && (code == 0u || code == 1u))
            m_rapid = code == 0u;
        const QString text = word.name + word.number;
        if (isNumber && word.name == QLatin1String("M") && kProgramStops.contains(code))
            m_codes.append(
                Irregularity(QStringLiteral("code"), lineNumber, text,
                             QStringLiteral("%1 stops the program between the ply's motion lines").arg(text)));
        else if (!isNumber || !(word.name == QLatin1String("G") ? kMotionGCodes : kMotionMCodes).contains(code))
            m_codes.append(Irregularity(QStringLiteral("code"), lineNumber, text,
                                        QStringLiteral("%1 is not a code the post writes between motion lines")
                                            .arg(text)));
    }

    void ReadFeed(unsigned lineNumber, const Word& word)
    {
        if (RequireNumber(lineNumber, word))
            m_feedrate = word.number.toDouble() * kMillimetresPerInch;
    }

    bool ReadAxis(unsigned lineNumber, const Word& word, int axis)
    {
        if (!RequireNumber(lineNumber, word))
            return false;
        m_values[axis] = word.number.toDouble() * m_scales.at(axis);
        return true;
    }

    // A word without a number leaves the value the controller holds.
    bool RequireNumber(unsigned lineNumber, const Word& word)
    {
        if (!word.number.isEmpty())
            return true;
        m_ply.irregularities.append(Irregularity(QStringLiteral("number"), lineNumber, word.name,
                                                 QStringLiteral("the %1 word has no number").arg(word.name)));
        return false;
    }

    void CheckNotation(unsigned lineNumber, const QString& name, const QString& number)
    {
        if (IsInExponentNotation(number))
            m_ply.irregularities.append(
                Irregularity(QStringLiteral("number"), lineNumber, name,
                             QStringLiteral("the %1 word is written in exponent notation, %2, which reads as %3")
                                 .arg(name, number, QString::number(number.toDouble(), 'f', 4))));
    }

    ZELKinNCIrregularity Irregularity(const QString& check, unsigned lineNumber, const QString& subject,
                                      const QString& message) const
    {
        return ZELKinNCIrregularity{check, m_ply.path, lineNumber, m_course, subject, message};
    }

    // Lines between a course record and the course itself approach it;
    // lines after its off-part point retract from it.
    int LinkIndex() const
    {
        if (m_course <= 0)
            return -1;
        return m_courseLeft ? m_course : m_course - 1;
    }

    ZELKinNCPlyFile& m_ply;
    const QStringList& m_labels;
    const QVector<double>& m_scales;
    QVector<double> m_values;
    //! Codes that would be irregular between motion lines.
    QList<ZELKinNCIrregularity> m_codes;
    double m_feedrate = std::numeric_limits<double>::quiet_NaN();
    int m_course = 0;
    bool m_rapid = false;
    bool m_alongCourse = false;
    bool m_offPartPointToCome = false;
    bool m_courseLeft = false;
};

} // namespace

ZELKinNCReplay::ZELKinNCReplay(const ZELKinAFPMachine& machine)
{
    const ZELKinVariable* material = machine.GetMaterialVariable();
    for (const ZELKinVariable* variable : machine.GetVariables()) {
        m_labels.append(variable ? variable->GetLabel() : QString());
        if (variable && variable->GetType() == ZELKinVariable::Rotary)
            m_scales.append(kRadiansPerDegree);
        else
            m_scales.append(variable == material ? 1.0 : kMillimetresPerInch);
    }
}

void ZELKinNCReplay::SetMaximumLength(qint64 characters)
{
    m_maximumLength = characters;
}

QList<ZELKinNCReplay::Section> ZELKinNCReplay::ReadSections(const QString& path) const
{
    PostedText text(m_maximumLength);
    const QFileInfo info(path);
    if (info.isDir()) {
        const QDir folder = ProgramFolder(path);
        QList<Section> sections;
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name))
            sections.append(Section{folder.filePath(name), name, 0, text.ReadLines(folder.filePath(name))});
        return sections;
    }
    const QString bundle = info.suffix() == kSourceSuffix
        ? info.dir().filePath(info.completeBaseName() + QLatin1Char('.') + kBundleSuffix)
        : path;
    const QStringList lines = text.ReadLines(bundle);
    static const QRegularExpression marker(QStringLiteral("^>>>>> Filename\\|(.*)\\| <<<<<$"));
    QList<Section> sections;
    bool inSection = false;
    for (int i = 0; i < lines.size(); ++i) {
        const QRegularExpressionMatch start = marker.match(lines.at(i));
        if (start.hasMatch()) {
            sections.append(Section{bundle, start.captured(1), unsigned(i + 1), {}});
            inSection = true;
        } else if (lines.at(i) == QLatin1String(">>>>> End of File <<<<<")) {
            inSection = false;
        } else if (inSection) {
            sections.last().lines.append(lines.at(i));
        }
    }
    return sections;
}

ZELKinNCProgram ZELKinNCReplay::Read(const QString& path) const
{
    const QList<Section> sections = ReadSections(path);
    QList<const Section*> programSets;
    for (const Section& section : sections) {
        if (section.name.endsWith(kProgramSetSuffix))
            programSets.append(&section);
    }
    if (programSets.isEmpty())
        throw ZELSysException(
            QStringLiteral("no posted program in %1: no program-set file (%2)").arg(path, kProgramSetSuffix));

    ZELKinNCProgram program;
    // A controller that is handed the folder may run either program set.
    for (const Section* other : programSets.mid(1))
        program.irregularities.append(
            ZELKinNCIrregularity{QStringLiteral("program"), other->path, other->firstLine, 0, other->name,
                                 QStringLiteral("a second program-set file, %1, stands beside %2")
                                     .arg(other->name, programSets.first()->name)});

    QMap<QString, QString> procedures;
    for (const QString& line : programSets.first()->lines) {
        const QRegularExpressionMatch ply = kPlyProgram.match(line);
        if (ply.hasMatch())
            procedures.insert(ply.captured(1), ply.captured(2));
    }

    for (const Section& section : sections) {
        const QRegularExpressionMatch number = kPlyFileName.match(section.name);
        if (!number.hasMatch())
            continue;
        if (!procedures.contains(number.captured(1))) {
            program.irregularities.append(
                ZELKinNCIrregularity{QStringLiteral("program"), section.path, section.firstLine, 0, section.name,
                                     QStringLiteral("the program-set file does not list ply %1 (%2)")
                                         .arg(number.captured(1), section.name)});
            continue;
        }
        ZELKinNCPlyFile ply = ReplayPly(section);
        ply.plyNumber = number.captured(1);
        ply.procedure = procedures.value(ply.plyNumber);
        program.plies.append(ply);
    }
    std::sort(program.plies.begin(), program.plies.end(),
              [](const ZELKinNCPlyFile& a, const ZELKinNCPlyFile& b) { return a.plyNumber < b.plyNumber; });
    return program;
}

ZELKinNCPlyFile ZELKinNCReplay::ReplayPly(const Section& section) const
{
    ZELKinNCPlyFile ply;
    ply.path = section.path;
    ply.name = section.name;
    PlyRun run(ply, m_labels, m_scales);
    for (int i = 0; i < section.lines.size(); ++i)
        run.Run(section.firstLine + unsigned(i + 1), section.lines.at(i));
    run.Finish();
    return ply;
}
