#include "zelkinncreplay.h"
#include "zelkinncreplay_p.h"

#include "zelkinafpgcodetexts_p.h"
#include "zelkinnclinereader.h"
#include "zelkinncplyrun_p.h"

#include <zelkinafpmachine.h>
#include <zelkinvariable.h>
#include <zelsysexception.h>
#include <zelsysprogress.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>
#include <QtMath>

#include <algorithm>
#include <atomic>
#include <future>
#include <vector>

namespace {

const QString kProgramSetSuffix = QLatin1String(ZELKinAFPGCodeTexts::ProgramSetSuffix);
const QString kBundleSuffix = QLatin1String(ZELKinAFPGCodeTexts::BundleSuffix);
const QString kSourceSuffix = QLatin1String(ZELKinAFPGCodeTexts::SourceSuffix);

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
        throw ZELSysException(QStringLiteral("%1 holds %2 posted programs; give the folder of one of them")
                                  .arg(path, QString::number(programs.size())));
    return programs.first();
}

// "; 0101, Ply 1 0" in the program-set file's list of ply programs.
const QRegularExpression kPlyProgram(QStringLiteral("^; (\\d{4}), (.*)$"));
// "NAME#0101.PPF"
const QRegularExpression kPlyFileName(QLatin1Char(ZELKinAFPGCodeTexts::PlyNumberMark) + QStringLiteral("(\\d{4})")
                                      + QRegularExpression::escape(QLatin1String(ZELKinAFPGCodeTexts::PlyFileSuffix))
                                      + QLatin1Char('$'));
// ">>>>> Filename|NAME.PPF| <<<<<"
const QRegularExpression
    kSectionStart(QLatin1Char('^') + QRegularExpression::escape(QLatin1String(ZELKinAFPGCodeTexts::SectionStart))
                  + QStringLiteral("(.*)")
                  + QRegularExpression::escape(QLatin1String(ZELKinAFPGCodeTexts::SectionNameEnd)) + QLatin1Char('$'));

// Lines are counted for the progress in chunks, not one by one.
constexpr int kLinesCountedAtOnce = 8192;

} // namespace

ZELKinNCReplayPrivate::ZELKinNCReplayPrivate(ZELKinNCReplay* q, const ZELKinAFPMachine& machine)
    : q_ptr(q)
{
    const ZELKinVariable* material = machine.GetMaterialVariable();
    for (const ZELKinVariable* variable : machine.GetVariables()) {
        labels.append(variable ? variable->GetLabel() : QString());
        if (variable && variable->GetType() == ZELKinVariable::Rotary)
            scales.append(qDegreesToRadians(1.0));
        else
            scales.append(variable == material ? 1.0 : ZELKinNCPlyRun::MillimetresPerInch);
    }
}

QList<ZELKinNCReplayPrivate::Section> ZELKinNCReplayPrivate::ReadSections(const QString& path) const
{
    PostedText text(maximumLength);
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
    QList<Section> sections;
    bool inSection = false;
    for (int i = 0; i < lines.size(); ++i) {
        const QRegularExpressionMatch start = kSectionStart.match(lines.at(i));
        if (start.hasMatch()) {
            sections.append(Section{bundle, start.captured(1), unsigned(i + 1), {}});
            inSection = true;
        } else if (lines.at(i) == QLatin1String(ZELKinAFPGCodeTexts::SectionEnd)) {
            inSection = false;
        } else if (inSection) {
            sections.last().lines.append(lines.at(i));
        }
    }
    return sections;
}

// Plies are independent: each is replayed on a thread of its own, as many
// at once as the machine has cores.
QList<ZELKinNCPlyFile> ZELKinNCReplayPrivate::ReplayPlies(const QList<const Section*>& sections) const
{
    qint64 lines = 0;
    for (const Section* section : sections)
        lines += section->lines.size();
    ZELSysProgress progress(QStringLiteral("Replaying the NC"), QStringLiteral("lines"), lines);
    QList<ZELKinNCPlyFile> plies(sections.size());
    std::atomic<qsizetype> next{0};
    const auto replayNext = [&] {
        for (qsizetype i = next++; i < sections.size(); i = next++)
            plies[i] = ReplayPly(*sections.at(i), progress);
    };
    const int threads = int(std::min<qsizetype>(std::max(1, QThread::idealThreadCount()), sections.size()));
    std::vector<std::future<void>> running;
    for (int t = 1; t < threads; ++t)
        running.push_back(std::async(std::launch::async, replayNext));
    replayNext();
    for (std::future<void>& thread : running)
        thread.get();
    return plies;
}

ZELKinNCPlyFile ZELKinNCReplayPrivate::ReplayPly(const Section& section, ZELSysProgress& progress) const
{
    ZELKinNCPlyFile ply;
    ply.path = section.path;
    ply.name = section.name;
    progress.SetItem(section.name);
    ZELKinNCPlyRun run(ply, labels, scales);
    for (int i = 0; i < section.lines.size(); ++i) {
        run.Run(section.firstLine + unsigned(i + 1), section.lines.at(i));
        if ((i + 1) % kLinesCountedAtOnce == 0)
            progress.Advance(kLinesCountedAtOnce);
    }
    progress.Advance(section.lines.size() % kLinesCountedAtOnce);
    run.Finish();
    return ply;
}

ZELKinNCReplay::ZELKinNCReplay(const ZELKinAFPMachine& machine)
    : ZELKinNCReplay(new ZELKinNCReplayPrivate(this, machine))
{
}

ZELKinNCReplay::ZELKinNCReplay(ZELKinNCReplayPrivate* d)
    : d_ptr(d)
{
}

ZELKinNCReplay::~ZELKinNCReplay() = default;

void ZELKinNCReplay::SetMaximumLength(qint64 characters)
{
    Q_D(ZELKinNCReplay);
    d->maximumLength = characters;
}

ZELKinNCProgram ZELKinNCReplay::Read(const QString& path) const
{
    Q_D(const ZELKinNCReplay);
    using Section = ZELKinNCReplayPrivate::Section;
    const QList<Section> sections = [&] {
        const ZELSysProgress reading(QStringLiteral("Reading the NC"), QString(), 0);
        return d->ReadSections(path);
    }();
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

    QList<const Section*> plySections;
    for (const Section& section : sections) {
        const QRegularExpressionMatch number = kPlyFileName.match(section.name);
        if (!number.hasMatch())
            continue;
        if (procedures.contains(number.captured(1))) {
            plySections.append(&section);
            continue;
        }
        program.irregularities.append(ZELKinNCIrregularity{
            QStringLiteral("program"), section.path, section.firstLine, 0, section.name,
            QStringLiteral("the program-set file does not list ply %1 (%2)").arg(number.captured(1), section.name)});
    }
    program.plies = d->ReplayPlies(plySections);
    for (ZELKinNCPlyFile& ply : program.plies) {
        ply.plyNumber = kPlyFileName.match(ply.name).captured(1);
        ply.procedure = procedures.value(ply.plyNumber);
    }
    std::sort(program.plies.begin(), program.plies.end(),
              [](const ZELKinNCPlyFile& a, const ZELKinNCPlyFile& b) { return a.plyNumber < b.plyNumber; });
    return program;
}
