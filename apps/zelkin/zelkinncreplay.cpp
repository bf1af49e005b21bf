#include "zelkinncreplay.h"

#include <zelkinafpmachine.h>
#include <zelkingcoderecord.h>
#include <zelkinvariable.h>
#include <zelsysexception.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kRadiansPerDegree = 0.017453292519943295;

const QString kProgramSetSuffix = QStringLiteral(".PPSF");
const QString kBundleSuffix = QStringLiteral("bun");
const QString kSourceSuffix = QStringLiteral("aptsource");

QStringList ReadLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    QTextStream in(&file);
    QStringList lines;
    QString line;
    while (in.readLineInto(&line))
        lines.append(line);
    if (file.error() != QFileDevice::NoError)
        throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    return lines;
}

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
// ";PMAC1: G500U117.703A/B[FFFF]"
const QRegularExpression kTowEvent(QStringLiteral("^;PMAC1: G500U(-?\\d+(?:\\.\\d*)?)([A-Z]/[A-Z])\\[([0-9A-Fa-f]+)\\]"));
// "G92(U,0.0000); Preset U-Axis"
const QRegularExpression kPreset(QStringLiteral("G92\\((\\w+),(-?\\d+(?:\\.\\d*)?)\\)"));
// "; 0101, Ply 1 0" in the program-set file's list of ply programs.
const QRegularExpression kPlyProgram(QStringLiteral("^; (\\d{4}), (.*)$"));
// "NAME#0101.PPF"
const QRegularExpression kPlyFileName(QStringLiteral("#(\\d{4})\\.PPF$"));

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
        else if (!Preset(line))
            Move(lineNumber, line);
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
        const QRegularExpressionMatch event = kTowEvent.match(line);
        if (event.hasMatch())
            m_ply.towEvents.append(ZELKinNCTowEvent{lineNumber, m_course, event.captured(1).toDouble(),
                                                    event.captured(2), event.captured(3).toULongLong(nullptr, 16)});
    }

    // The course's last position, the first off-part point, follows
    // OFF_COURSE_MODE and still belongs to the course.
    void LeaveCourseMode()
    {
        m_alongCourse = false;
        m_offPartPointToCome = true;
    }

    bool Preset(const QString& line)
    {
        const QRegularExpressionMatch preset = kPreset.match(line);
        if (!preset.hasMatch())
            return false;
        const int axis = m_labels.indexOf(preset.captured(1));
        if (axis >= 0)
            m_values[axis] = preset.captured(2).toDouble() * m_scales.at(axis);
        return true;
    }

    void Move(unsigned lineNumber, const QString& line)
    {
        const ZELKinGCodeRecord record(lineNumber, line);
        const QList<unsigned> gCodes = record.GetGCodes();
        if (gCodes.contains(0u))
            m_rapid = true;
        else if (gCodes.contains(1u))
            m_rapid = false;
        const QString feed = record.GetVariableValue(QStringLiteral("F"));
        if (!feed.isEmpty())
            m_feedrate = feed.toDouble() * kMillimetresPerInch;
        const QVector<double> starts = m_values;
        bool moves = false;
        for (int axis = 0; axis < m_labels.size(); ++axis) {
            const QString value = record.GetVariableValue(m_labels.at(axis));
            if (value.isEmpty())
                continue;
            m_values[axis] = value.toDouble() * m_scales.at(axis);
            moves = true;
        }
        if (!moves)
            return;
        const bool alongCourse = m_alongCourse || m_offPartPointToCome;
        m_ply.motions.append(ZELKinNCMotion{lineNumber, m_course, alongCourse, m_rapid, m_values, starts, m_feedrate,
                                            alongCourse ? -1 : LinkIndex()});
        m_courseLeft = m_courseLeft || m_offPartPointToCome;
        m_offPartPointToCome = false;
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

QList<ZELKinNCReplay::Section> ZELKinNCReplay::ReadSections(const QString& path) const
{
    const QFileInfo info(path);
    if (info.isDir()) {
        const QDir folder = ProgramFolder(path);
        QList<Section> sections;
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name))
            sections.append(Section{folder.filePath(name), name, 0, ReadLines(folder.filePath(name))});
        return sections;
    }
    const QString bundle = info.suffix() == kSourceSuffix
        ? info.dir().filePath(info.completeBaseName() + QLatin1Char('.') + kBundleSuffix)
        : path;
    const QStringList lines = ReadLines(bundle);
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

QList<ZELKinNCPlyFile> ZELKinNCReplay::Read(const QString& path) const
{
    const QList<Section> sections = ReadSections(path);
    const auto programSet = std::find_if(sections.cbegin(), sections.cend(), [](const Section& section) {
        return section.name.endsWith(kProgramSetSuffix);
    });
    if (programSet == sections.cend())
        throw ZELSysException(QStringLiteral("no posted program in %1: no program-set file (%2)").arg(path, kProgramSetSuffix));

    QMap<QString, QString> procedures;
    for (const QString& line : programSet->lines) {
        const QRegularExpressionMatch ply = kPlyProgram.match(line);
        if (ply.hasMatch())
            procedures.insert(ply.captured(1), ply.captured(2));
    }

    QList<ZELKinNCPlyFile> plies;
    for (const Section& section : sections) {
        const QRegularExpressionMatch number = kPlyFileName.match(section.name);
        if (!number.hasMatch())
            continue;
        if (!procedures.contains(number.captured(1)))
            throw ZELSysException(QStringLiteral("the program-set file does not list ply %1 (%2)")
                                      .arg(number.captured(1), section.name));
        ZELKinNCPlyFile ply = ReplayPly(section);
        ply.plyNumber = number.captured(1);
        ply.procedure = procedures.value(ply.plyNumber);
        plies.append(ply);
    }
    std::sort(plies.begin(), plies.end(),
              [](const ZELKinNCPlyFile& a, const ZELKinNCPlyFile& b) { return a.plyNumber < b.plyNumber; });
    return plies;
}

ZELKinNCPlyFile ZELKinNCReplay::ReplayPly(const Section& section) const
{
    ZELKinNCPlyFile ply;
    ply.path = section.path;
    ply.name = section.name;
    PlyRun run(ply, m_labels, m_scales);
    for (int i = 0; i < section.lines.size(); ++i)
        run.Run(section.firstLine + unsigned(i + 1), section.lines.at(i));
    return ply;
}
