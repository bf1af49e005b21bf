#include "zelkinncplyrun_p.h"

#include "zelkinafpgcodetexts_p.h"
#include "zelkinncwords_p.h"

#include <QRegularExpression>

#include <optional>

namespace {

// ";[COURSE] CourseNumber=3,..."
const QRegularExpression kCourseRecord(QLatin1Char('^')
                                       + QRegularExpression::escape(QLatin1String(ZELKinAFPGCodeTexts::CourseRecord))
                                       + QStringLiteral("(\\d+)"));
// The word a tow event's material is named by in a message.
const QString kTowEventWord = QStringLiteral("G500U");

// The codes the post writes between a ply's first and last motion line:
// feed moves, exact stop, the U preset and blending; the course's macros
// (spindle of the tows, heater, handshakes, feed changes).
const QList<unsigned> kMotionGCodes{1, 9, 92, 641, 642};
const QList<unsigned> kMotionMCodes{4, 5, 18, 19, 26, 64, 69};
// Codes that halt the controller, or end the program, where they stand.
const QList<unsigned> kProgramStops{0, 1, 2, 30};

} // namespace

ZELKinNCPlyRun::ZELKinNCPlyRun(ZELKinNCPlyFile& ply, const QStringList& labels, const QVector<double>& scales)
    : m_ply(ply)
    , m_labels(labels)
    , m_scales(scales)
    , m_values(labels.size(), std::numeric_limits<double>::quiet_NaN())
{
}

void ZELKinNCPlyRun::Run(unsigned lineNumber, const QString& text)
{
    const QString line = text.trimmed();
    if (line.startsWith(QLatin1Char(';')))
        ReadComment(lineNumber, line);
    else if (line == QLatin1String(ZELKinAFPGCodeTexts::CourseMode))
        m_alongCourse = true;
    else if (line == QLatin1String(ZELKinAFPGCodeTexts::OffCourseMode))
        LeaveCourseMode();
    else if (!Preset(lineNumber, line))
        Move(lineNumber, line);
}

void ZELKinNCPlyRun::Finish()
{
    if (m_ply.motions.isEmpty())
        return;
    // The list grew a line at a time; a ply of millions of lines is held
    // while it is checked.
    m_ply.motions.squeeze();
    const unsigned first = m_ply.motions.first().line;
    const unsigned last = m_ply.motions.last().line;
    for (const ZELKinNCIrregularity& code : std::as_const(m_codes)) {
        if (code.line >= first && code.line <= last)
            m_ply.irregularities.append(code);
    }
}

void ZELKinNCPlyRun::ReadComment(unsigned lineNumber, const QString& line)
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
    const std::optional<ZELKinNCWords::TowEventText> event = ZELKinNCWords::ParseTowEvent(line);
    if (!event)
        return;
    const QString u = event->u.toString();
    CheckNotation(lineNumber, kTowEventWord, u);
    m_ply.towEvents.append(ZELKinNCTowEvent{lineNumber, m_course, ZELKinNCWords::NumberValue(u), event->code.toString(),
                                            event->tows.toULongLong(nullptr, 16)});
}

// The course's last position, the first off-part point, follows
// OFF_COURSE_MODE and still belongs to the course.
void ZELKinNCPlyRun::LeaveCourseMode()
{
    m_alongCourse = false;
    m_offPartPointToCome = true;
}

bool ZELKinNCPlyRun::Preset(unsigned lineNumber, const QString& line)
{
    const std::optional<ZELKinNCWords::PresetText> preset = ZELKinNCWords::FindPreset(line);
    if (!preset)
        return false;
    const QString number = preset->number.toString();
    CheckNotation(lineNumber, QStringLiteral("G92"), number);
    const int axis = int(m_labels.indexOf(preset->axis));
    if (axis >= 0)
        m_values[axis] = ZELKinNCWords::NumberValue(number) * m_scales.at(axis);
    return true;
}

void ZELKinNCPlyRun::Move(unsigned lineNumber, const QString& line)
{
    const QList<ZELKinNCWords::Word> words
        = ZELKinNCWords::WordsOf(QStringView(line).left(line.indexOf(QLatin1Char(';'))));
    const QVector<double> starts = m_values;
    QVector<bool> written(m_labels.size(), false);
    for (const ZELKinNCWords::Word& word : words) {
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

void ZELKinNCPlyRun::ReadCode(unsigned lineNumber, const ZELKinNCWords::Word& word)
{
    bool isNumber = false;
    const unsigned code = word.number.toUInt(&isNumber);
    if (isNumber && word.name == QLatin1String("G") && (code == 0u || code == 1u))
        m_rapid = code == 0u;
    QString text = word.name.toString();
    text += word.number;
    if (isNumber && word.name == QLatin1String("M") && kProgramStops.contains(code))
        m_codes.append(Irregularity(QStringLiteral("code"), lineNumber, text,
                                    QStringLiteral("%1 stops the program between the ply's motion lines").arg(text)));
    else if (!isNumber || !(word.name == QLatin1String("G") ? kMotionGCodes : kMotionMCodes).contains(code))
        m_codes.append(Irregularity(QStringLiteral("code"), lineNumber, text,
                                    QStringLiteral("%1 is not a code the post writes between motion lines").arg(text)));
}

void ZELKinNCPlyRun::ReadFeed(unsigned lineNumber, const ZELKinNCWords::Word& word)
{
    if (RequireNumber(lineNumber, word))
        m_feedrate = ZELKinNCWords::NumberValue(word.number) * MillimetresPerInch;
}

bool ZELKinNCPlyRun::ReadAxis(unsigned lineNumber, const ZELKinNCWords::Word& word, int axis)
{
    if (!RequireNumber(lineNumber, word))
        return false;
    m_values[axis] = ZELKinNCWords::NumberValue(word.number) * m_scales.at(axis);
    return true;
}

// A word without a number leaves the value the controller holds.
bool ZELKinNCPlyRun::RequireNumber(unsigned lineNumber, const ZELKinNCWords::Word& word)
{
    if (!word.number.isEmpty())
        return true;
    m_ply.irregularities.append(Irregularity(QStringLiteral("number"), lineNumber, word.name.toString(),
                                             QStringLiteral("the %1 word has no number").arg(word.name)));
    return false;
}

void ZELKinNCPlyRun::CheckNotation(unsigned lineNumber, QStringView name, QStringView number)
{
    if (ZELKinNCWords::IsInExponentNotation(number))
        m_ply.irregularities.append(
            Irregularity(QStringLiteral("number"), lineNumber, name.toString(),
                         QStringLiteral("the %1 word is written in exponent notation, %2, which reads as %3")
                             .arg(name, number, QString::number(ZELKinNCWords::NumberValue(number), 'f', 4))));
}

ZELKinNCIrregularity ZELKinNCPlyRun::Irregularity(const QString& check, unsigned lineNumber, const QString& subject,
                                                  const QString& message) const
{
    return ZELKinNCIrregularity{check, m_ply.path, lineNumber, m_course, subject, message};
}

// Lines between a course record and the course itself approach it;
// lines after its off-part point retract from it.
int ZELKinNCPlyRun::LinkIndex() const
{
    if (m_course <= 0)
        return -1;
    return m_courseLeft ? m_course : m_course - 1;
}
