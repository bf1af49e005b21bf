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
#include <functional>
#include <future>
#include <vector>

namespace {

const QString kProgramSetSuffix = QLatin1String(ZELKinAFPGCodeTexts::ProgramSetSuffix);
const QString kBundleSuffix = QLatin1String(ZELKinAFPGCodeTexts::BundleSuffix);
const QString kSourceSuffix = QLatin1String(ZELKinAFPGCodeTexts::SourceSuffix);

void OpenToRead(QFile& file)
{
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString()));
}

// The characters of the posted lines that are held, refused once they are
// more than a bound.
class PostedLength
{
public:
    explicit PostedLength(qint64 maximumLength)
        : m_maximumLength(maximumLength)
    {
    }

    void Count(const QString& path, const QString& line)
    {
        m_length += line.size();
        if (m_length > m_maximumLength)
            throw ZELSysException(QStringLiteral("cannot read %1: the posted NC is longer than %2 characters, "
                                                 "the most that is read")
                                      .arg(path, QString::number(m_maximumLength)));
    }

private:
    const qint64 m_maximumLength;
    qint64 m_length = 0;
};

// Calls `use` with each line of the file at `path` and its number, from 1.
template <typename Use> void ForEachLine(const QString& path, const Use& use)
{
    QFile file(path);
    OpenToRead(file);
    ZELKinNCLineReader reader(file, path);
    QString line;
    while (reader.ReadLine(line))
        use(reader.GetLineNumber(), line);
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

bool IsProgramSet(const QString& name)
{
    return name.endsWith(kProgramSetSuffix);
}

bool IsSectionEnd(const QString& line)
{
    return line == QLatin1String(ZELKinAFPGCodeTexts::SectionEnd);
}

QString BundleOf(const QString& path)
{
    const QFileInfo info(path);
    return info.suffix() == kSourceSuffix
        ? info.dir().filePath(info.completeBaseName() + QLatin1Char('.') + kBundleSuffix)
        : path;
}

using Section = ZELKinNCReplayPrivate::Section;

// A bundle's lines, handed in one by one, cut into its sections: a section
// runs from its start line to its end line or the next start. `keep` says
// of a section whether its lines are kept.
class BundleSplit
{
public:
    using Keep = std::function<bool(const QList<Section>& sections)>;

    BundleSplit(const QString& bundle, const Keep& keep)
        : m_bundle(bundle)
        , m_keep(keep)
    {
    }

    void Add(unsigned number, const QString& line)
    {
        const QRegularExpressionMatch start = kSectionStart.match(line);
        if (start.hasMatch()) {
            m_sections.append(Section{m_bundle, start.captured(1), number, {}});
            m_inSection = true;
            m_keepSection = m_keep(m_sections);
        } else if (IsSectionEnd(line)) {
            m_inSection = false;
        } else if (m_inSection && m_keepSection) {
            m_sections.last().lines.append(line);
        }
    }

    const QList<Section>& GetSections() const { return m_sections; }

private:
    const QString m_bundle;
    const Keep m_keep;
    QList<Section> m_sections;
    bool m_inSection = false;
    bool m_keepSection = false;
};

// Of the sections so far, whether the last is the first program-set file:
// the one whose list of plies counts.
bool IsFirstProgramSet(const QList<Section>& sections)
{
    for (const Section& section : sections) {
        if (IsProgramSet(section.name))
            return &section == &sections.last();
    }
    return false;
}

// Reads `reader` through line `number`, the last line before those wanted.
void SkipTo(ZELKinNCLineReader& reader, unsigned number, QString& line)
{
    while (reader.GetLineNumber() < number && reader.ReadLine(line))
        continue;
}

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

QList<Section> ZELKinNCReplayPrivate::ReadSections(const QString& path) const
{
    PostedLength length(maximumLength);
    if (QFileInfo(path).isDir()) {
        const QDir folder = ProgramFolder(path);
        QList<Section> sections;
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
            Section section{folder.filePath(name), name, 0, {}};
            ForEachLine(section.path, [&](unsigned, const QString& line) {
                length.Count(section.path, line);
                section.lines.append(line);
            });
            sections.append(section);
        }
        return sections;
    }
    const QString bundle = BundleOf(path);
    BundleSplit split(bundle, [](const QList<Section>&) { return true; });
    ForEachLine(bundle, [&](unsigned number, const QString& line) {
        length.Count(bundle, line);
        split.Add(number, line);
    });
    return split.GetSections();
}

QList<Section> ZELKinNCReplayPrivate::ReadSectionHeads(const QString& path) const
{
    if (QFileInfo(path).isDir()) {
        const QDir folder = ProgramFolder(path);
        QList<Section> sections;
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
            sections.append(Section{folder.filePath(name), name, 0, {}});
            if (IsFirstProgramSet(sections))
                ForEachLine(sections.last().path,
                            [&](unsigned, const QString& line) { sections.last().lines.append(line); });
        }
        return sections;
    }
    const QString bundle = BundleOf(path);
    BundleSplit split(bundle, IsFirstProgramSet);
    ForEachLine(bundle, [&](unsigned number, const QString& line) { split.Add(number, line); });
    return split.GetSections();
}

ZELKinNCPlySet ZELKinNCReplayPrivate::ListPlies(const QString& path, const QList<Section>& sections) const
{
    QList<const Section*> programSets;
    for (const Section& section : sections) {
        if (IsProgramSet(section.name))
            programSets.append(&section);
    }
    if (programSets.isEmpty())
        throw ZELSysException(
            QStringLiteral("no posted program in %1: no program-set file (%2)").arg(path, kProgramSetSuffix));

    ZELKinNCPlySet set;
    // A controller that is handed the folder may run either program set.
    for (const Section* other : programSets.mid(1))
        set.irregularities.append(ZELKinNCIrregularity{QStringLiteral("program"), other->path, other->firstLine, 0,
                                                       other->name,
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
        if (procedures.contains(number.captured(1))) {
            set.plies.append(ZELKinNCPlyListing{section.path, section.name, number.captured(1),
                                                procedures.value(number.captured(1)), section.firstLine});
            continue;
        }
        set.irregularities.append(ZELKinNCIrregularity{
            QStringLiteral("program"), section.path, section.firstLine, 0, section.name,
            QStringLiteral("the program-set file does not list ply %1 (%2)").arg(number.captured(1), section.name)});
    }
    std::sort(set.plies.begin(), set.plies.end(),
              [](const ZELKinNCPlyListing& a, const ZELKinNCPlyListing& b) { return a.plyNumber < b.plyNumber; });
    return set;
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
    const QList<Section> sections = [&] {
        const ZELSysProgress reading(QStringLiteral("Reading the NC"), QString(), 0);
        return d->ReadSections(path);
    }();
    const ZELKinNCPlySet set = d->ListPlies(path, sections);
    QList<const Section*> plySections;
    for (const ZELKinNCPlyListing& listed : set.plies) {
        const auto section = std::find_if(sections.cbegin(), sections.cend(), [&](const Section& candidate) {
            return candidate.name == listed.name && candidate.firstLine == listed.firstLine;
        });
        plySections.append(&*section);
    }
    ZELKinNCProgram program;
    program.irregularities = set.irregularities;
    program.plies = d->ReplayPlies(plySections);
    for (qsizetype i = 0; i < program.plies.size(); ++i) {
        program.plies[i].plyNumber = set.plies.at(i).plyNumber;
        program.plies[i].procedure = set.plies.at(i).procedure;
    }
    return program;
}

ZELKinNCPlySet ZELKinNCReplay::ReadPlySet(const QString& path) const
{
    Q_D(const ZELKinNCReplay);
    const ZELSysProgress reading(QStringLiteral("Reading the NC's list of plies"), QString(), 0);
    return d->ListPlies(path, d->ReadSectionHeads(path));
}

ZELKinNCPlyFile ZELKinNCReplay::ReadPly(const ZELKinNCPlyListing& listed) const
{
    Q_D(const ZELKinNCReplay);
    ZELKinNCPlyFile ply;
    ply.path = listed.path;
    ply.name = listed.name;
    ply.plyNumber = listed.plyNumber;
    ply.procedure = listed.procedure;
    ZELSysProgress progress(QStringLiteral("Replaying the NC"), QStringLiteral("lines"), 0);
    progress.SetItem(listed.name);
    PostedLength length(d->maximumLength);
    ZELKinNCPlyRun run(ply, d->labels, d->scales);
    QFile file(listed.path);
    OpenToRead(file);
    ZELKinNCLineReader reader(file, listed.path);
    QString line;
    SkipTo(reader, listed.firstLine, line);
    const bool inBundle = listed.firstLine > 0;
    qint64 uncounted = 0;
    while (reader.ReadLine(line)) {
        if (inBundle && (IsSectionEnd(line) || kSectionStart.match(line).hasMatch()))
            break;
        length.Count(listed.path, line);
        run.Run(reader.GetLineNumber(), line);
        if (++uncounted == kLinesCountedAtOnce) {
            progress.Advance(uncounted);
            uncounted = 0;
        }
    }
    progress.Advance(uncounted);
    run.Finish();
    return ply;
}
