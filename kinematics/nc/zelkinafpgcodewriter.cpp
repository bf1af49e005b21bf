#include "zelkinafpgcodewriter_p.h"

#include "zelkinafpgcodeplies_p.h"
#include "zelkinafpgcodeply_p.h"
#include "zelkinafpgcodeprobing_p.h"
#include "zelkinafpgcodeprogramset_p.h"
#include "zelkinafpgcodetexts_p.h"
#include "zelkinncstream_p.h"
#include "zelkinnctextcheck_p.h"
#include "zelkinprobeprocedure.h"
#include "zelkinprogram.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkinstagingfolder_p.h"

#include <zelsysexception.h>
#include <zelsysprogress.h>
#include <zeltpprocedure.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QScopedValueRollback>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTextStream>
#include <QtDebug>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

namespace {

const QString kBundleSuffix = QLatin1String(ZELKinAFPGCodeTexts::BundleSuffix);
const QString kSourceSuffix = QLatin1String(ZELKinAFPGCodeTexts::SourceSuffix);
const QString kSinglePly = QStringLiteral("ONEPLY");
const QString kSinglePlyFolderSuffix = QStringLiteral("_procedures");
const QString kEndOfFile = QLatin1String(ZELKinAFPGCodeTexts::SectionEnd);

// Messages name files in Latin-1: characters outside it read "?".
QString InLatin1(const QString& text)
{
    return QString::fromLatin1(text.toLatin1());
}

[[noreturn]] void Fatal(const QString& message)
{
    qFatal("%s", qUtf8Printable(message));
}

// A folder or file that cannot be made or written. Write() ends the process
// with its message once the stack, and with it any staging folder, is gone.
struct WriteFailure
{
    QString message;
};

[[noreturn]] void Fail(const QString& message)
{
    throw WriteFailure{message};
}

QString WithReason(const QString& message, const QString& reason)
{
    return message + QStringLiteral(": ") + reason;
}

std::filesystem::path NativePath(const QString& path)
{
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

void PrintTo(FILE* stream, const QString& text)
{
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

QString ReadLineFromStandardInput()
{
    std::string line;
    std::getline(std::cin, line);
    return QString::fromLocal8Bit(line.c_str()).trimmed();
}

QString ProgramSetFileName(const QString& name)
{
    return name + QLatin1String(ZELKinAFPGCodeTexts::ProgramSetSuffix);
}

QString PlyFileName(const QString& name, const QString& paddedPlyNumber)
{
    return name + QLatin1Char(ZELKinAFPGCodeTexts::PlyNumberMark) + paddedPlyNumber
        + QLatin1String(ZELKinAFPGCodeTexts::PlyFileSuffix);
}

QString PlyFileName(const QString& name, const ZELKinProcedure* procedure)
{
    return PlyFileName(name, ZELKinAFPGCodePlies::PaddedPlyNumberOf(procedure));
}

QString ProbingFileName(const QString& name)
{
    return name + QLatin1String(ZELKinAFPGCodeTexts::ProbingSuffix);
}

QString SectionMarker(const QString& fileName)
{
    return QLatin1String(ZELKinAFPGCodeTexts::SectionStart) + fileName
        + QLatin1String(ZELKinAFPGCodeTexts::SectionNameEnd) + QLatin1Char('\n');
}

// The procedures that are still there, in program order.
qint64 PositionsToWrite(const ZELKinProgram* program)
{
    qint64 positions = 0;
    for (const ZELKinRollLayupProcedure* procedure : ZELKinAFPGCodePlies::RollLayupProceduresOf(program))
        positions += ZELKinAFPGCodePly::CountCoursePositions(procedure);
    return positions;
}

QList<const ZELKinProcedure*> LiveProceduresOf(const ZELKinProgram* program)
{
    QList<const ZELKinProcedure*> procedures;
    for (const ZELKinProcedure* procedure : program->GetProcedures()) {
        if (procedure)
            procedures.append(procedure);
    }
    return procedures;
}

// A file's bytes, from where the device stands, on to `out`.
constexpr qint64 kCopyBlock = qint64(1) << 20;

bool CopyTo(QIODevice& device, ZELKinNCStream& out)
{
    QByteArray block(kCopyBlock, Qt::Uninitialized);
    for (;;) {
        const qint64 read = device.read(block.data(), kCopyBlock);
        if (read <= 0)
            return read == 0;
        out << QByteArrayView(block.constData(), read);
    }
}

// The folders on the way to `directory` that do not exist yet, outermost
// first.
QStringList MissingFolders(const QString& directory)
{
    QStringList missing;
    for (QDir folder(QFileInfo(directory).absoluteFilePath()); !folder.exists();
         folder.setPath(QFileInfo(folder.path()).path())) {
        missing.prepend(folder.path());
        if (folder.isRoot())
            break;
    }
    return missing;
}

} // namespace

// What writing one procedure at a time keeps from Begin to Finish: the
// program-set file's contents and where the files wait for it. Ended
// before Finish, it takes away what it made: the staging folder, the
// temporary files and the folders it made for them, when they are empty.
struct ZELKinAFPGCodeWriter::Streaming
{
    ~Streaming()
    {
        sectionStream.reset();
        sections.reset();
        staging.reset();
        plies.reset();
        if (finished)
            return;
        std::for_each(madeFolders.crbegin(), madeFolders.crend(), [](const QString& folder) { QDir().rmdir(folder); });
    }

    bool finished = false;
    QStringList madeFolders;
    ZELKinAFPGCodeProgramSet::Contents contents;
    int nextPlyNumber = ZELKinAFPGCodePlies::FirstPlyNumber;
    //! The folder layout.
    std::unique_ptr<ZELKinStagingFolder> staging;
    //! The bundle: its sections after the program-set file's.
    std::unique_ptr<QTemporaryFile> sections;
    std::unique_ptr<ZELKinNCStream> sectionStream;
    //! "ONEPLY": every ply file, until one is chosen.
    std::unique_ptr<QTemporaryDir> plies;
    ZELSysProgress counting{ZELKinAFPGCodeWriter::tr("Writing the NC"), ZELKinAFPGCodeWriter::tr("positions"), 0};
};

ZELKinAFPGCodeWriter::~ZELKinAFPGCodeWriter() = default;

ZELKinAFPGCodeWriter::ZELKinAFPGCodeWriter(const QString& path)
    : outputPath(QFileInfo(path).suffix() == kSourceSuffix
                     ? path.left(path.lastIndexOf(QLatin1Char('.'))) + QLatin1Char('.') + kBundleSuffix
                     : path)
    , now(QDateTime::currentDateTime())
{
}

void ZELKinAFPGCodeWriter::SetOptions(const QString& options)
{
    for (const QString& item : options.split(QLatin1Char(';'))) {
        const QStringList parts = item.split(QLatin1Char(':'));
        const QString key = parts.at(0).simplified();
        const double value = parts.value(1).simplified().toDouble();
        if (key == QLatin1String("tooling-retract"))
            toolingRetract = value;
        else if (key == QLatin1String("pinch-max-length"))
            splitting.maximumLength = value;
        else if (key == QLatin1String("pinch-release-length"))
            splitting.releaseLength = value;
    }
}

void ZELKinAFPGCodeWriter::SetPlyToProcess(const QString& ply)
{
    plyToProcess = ply;
}

void ZELKinAFPGCodeWriter::SetCurrentDateTime(const QDateTime& now)
{
    this->now = now;
}

void ZELKinAFPGCodeWriter::SetLineTrace(ZELKinWriter::LineTrace trace)
{
    lineTrace = std::move(trace);
}

void ZELKinAFPGCodeWriter::Write(ZELKinProgram* program) const
{
    ZELKinNCTextCheck::Check(program);
    ZELKinAFPGCodePlies::Number(program);
    // Which ply the single-ply mode writes is not known yet: its count
    // has no total.
    ZELSysProgress counting(tr("Writing the NC"), tr("positions"),
                            plyToProcess == kSinglePly ? 0 : PositionsToWrite(program));
    const QScopedValueRollback<ZELSysProgress*> counted(progress, &counting);
    ReportingFileErrors([&] {
        if (plyToProcess == kSinglePly)
            WriteSinglePly(program);
        else if (IsBundle())
            WriteBundle(program);
        else
            WriteDirectory(program);
    });
}

void ZELKinAFPGCodeWriter::ReportingFileErrors(const std::function<void()>& work) const
{
    try {
        work();
    } catch (const WriteFailure& failure) {
        if (fileErrorMode == ZELKinWriter::FileErrorThrows)
            throw ZELSysException(failure.message);
        Fatal(failure.message);
    }
}

// What a failure leaves of a write begun goes before the process may end.
void ZELKinAFPGCodeWriter::WritingStreamed(const std::function<void()>& work)
{
    ReportingFileErrors([&] {
        try {
            work();
        } catch (...) {
            progress = nullptr;
            streaming.reset();
            throw;
        }
    });
}

void ZELKinAFPGCodeWriter::Begin(const ZELKinProgram* identification)
{
    ZELKinNCTextCheck::Check(identification);
    streaming = std::make_unique<Streaming>();
    streaming->contents = ZELKinAFPGCodeProgramSet::Describe(identification);
    progress = &streaming->counting;
    const QString name = streaming->contents.name;
    WritingStreamed([&] {
        if (plyToProcess == kSinglePly) {
            streaming->plies = std::make_unique<QTemporaryDir>();
            if (!streaming->plies->isValid())
                Fail(
                    WithReason(tr("Could not create the output directory '%1'").arg(InLatin1(streaming->plies->path())),
                               streaming->plies->errorString()));
        } else if (IsBundle()) {
            const QFileInfo bundle(outputPath);
            streaming->madeFolders = MissingFolders(bundle.absolutePath());
            MakeOutputDirectory(bundle.absolutePath());
            streaming->sections
                = std::make_unique<QTemporaryFile>(bundle.absoluteFilePath() + QStringLiteral(".XXXXXX"));
            if (!streaming->sections->open())
                Fail(WithReason(tr("Could not open the bundle file for writing at: '%1'").arg(InLatin1(outputPath)),
                                streaming->sections->errorString()));
            streaming->sectionStream = std::make_unique<ZELKinNCStream>(streaming->sections.get());
        } else {
            streaming->madeFolders = MissingFolders(outputPath);
            streaming->staging = CreateStaging(name);
        }
    });
}

void ZELKinAFPGCodeWriter::Add(ZELKinProgram* part)
{
    ZELKinNCTextCheck::Check(part);
    streaming->nextPlyNumber = ZELKinAFPGCodePlies::Number(part, streaming->nextPlyNumber);
    ZELKinAFPGCodeProgramSet::AddPlyPrograms(streaming->contents, part);
    const QString name = streaming->contents.name;
    WritingStreamed([&] {
        if (streaming->plies) {
            const QDir folder(streaming->plies->path());
            for (const ZELKinRollLayupProcedure* procedure : ZELKinAFPGCodePlies::RollLayupProceduresOf(part))
                WriteFile(InPlace(folder.filePath(PlyFileName(name, procedure))),
                          tr("Could not open the PPF file for writing at: '%1'"), PlyText(procedure));
        } else if (streaming->sectionStream) {
            try {
                WriteSections(*streaming->sectionStream, part);
            } catch (const ZELSysException& error) {
                throw ZELSysException(
                    QStringLiteral("cannot write the NC file '%1': %2").arg(outputPath, error.GetMessage()));
            }
        } else {
            WriteProcedureFiles(part, streaming->staging->GetPath());
        }
    });
}

void ZELKinAFPGCodeWriter::Finish()
{
    const QString name = streaming->contents.name;
    WritingStreamed([&] {
        if (streaming->plies) {
            FinishSinglePly(name);
        } else if (streaming->sectionStream) {
            FinishBundle(name);
        } else {
            WriteStagedProgramSet(name, *streaming->staging, ProgramSetText(streaming->contents));
            Publish(name, *streaming->staging);
        }
    });
    streaming->finished = true;
    progress = nullptr;
    streaming.reset();
}

void ZELKinAFPGCodeWriter::FinishBundle(const QString& name) const
{
    QTemporaryFile& sections = *streaming->sections;
    streaming->sectionStream->Flush();
    streaming->sectionStream.reset();
    const QString failure = tr("Could not open the bundle file for writing at: '%1'");
    if (sections.error() != QFileDevice::NoError || !sections.seek(0))
        Fail(WithReason(failure.arg(InLatin1(outputPath)), sections.errorString()));
    WriteFile(InPlace(outputPath), failure, [&](ZELKinNCStream& out) {
        WriteBundleHead(out, name, ProgramSetText(streaming->contents));
        if (!CopyTo(sections, out))
            Fail(WithReason(failure.arg(InLatin1(outputPath)), sections.errorString()));
    });
}

void ZELKinAFPGCodeWriter::FinishSinglePly(const QString& name) const
{
    QStringList numbers;
    for (const ZELKinAFPGCodeProgramSet::PlyProgram& ply : streaming->contents.plyPrograms)
        numbers.append(ply.number);
    const qsizetype chosen = ChoosePly(numbers);
    if (chosen < 0)
        return;
    const QString written = QDir(streaming->plies->path()).filePath(PlyFileName(name, numbers.at(chosen)));
    WriteChosenPly(name, numbers.at(chosen), [&written](ZELKinNCStream& out) {
        QFile file(written);
        if (!file.open(QIODevice::ReadOnly) || !CopyTo(file, out))
            Fail(WithReason(tr("Could not open the procedure file for reading: '%1'").arg(InLatin1(written)),
                            file.errorString()));
    });
}

bool ZELKinAFPGCodeWriter::IsBundle() const
{
    return QFileInfo(outputPath).suffix() == kBundleSuffix;
}

// The files go to a staging folder, which then takes the part folder's
// place whole: a reader, a kill or a second post of the program never
// finds a mix of two posts' files, nor a ply file of an earlier post with
// more plies.
void ZELKinAFPGCodeWriter::WriteDirectory(ZELKinProgram* program) const
{
    const QString name = program->GetOriginalFileName();
    const std::unique_ptr<ZELKinStagingFolder> staging = CreateStaging(name);
    WriteStagedProgramSet(name, *staging, ProgramSetText(program));
    WriteProcedureFiles(program, staging->GetPath());
    Publish(name, *staging);
}

std::unique_ptr<ZELKinStagingFolder> ZELKinAFPGCodeWriter::CreateStaging(const QString& name) const
{
    MakeOutputDirectory(outputPath);
    auto staging = std::make_unique<ZELKinStagingFolder>(outputPath, name);
    if (!staging->Create())
        FailPartFolder(name, staging->GetErrorString());
    return staging;
}

void ZELKinAFPGCodeWriter::WriteStagedProgramSet(const QString& name, const ZELKinStagingFolder& staging,
                                                 const TextWriter& programSet) const
{
    const QString fileName = ProgramSetFileName(name);
    WriteFile(OutputFile{QDir(QDir(outputPath).filePath(name)).filePath(fileName),
                         QDir(staging.GetPath()).filePath(fileName)},
              tr("Could not open the PPSF file for writing at: '%1'"), programSet);
}

void ZELKinAFPGCodeWriter::Publish(const QString& name, ZELKinStagingFolder& staging) const
{
    if (!staging.Publish())
        FailPartFolder(name, staging.GetErrorString());
}

// Messages name the files where they will stand once the staging folder
// takes the part folder's place.
void ZELKinAFPGCodeWriter::WriteProcedureFiles(const ZELKinProgram* program, const QString& stagingPath) const
{
    const QString name = program->GetOriginalFileName();
    const QDir target(QDir(outputPath).filePath(name));
    const QDir stagingFolder(stagingPath);
    const auto staged = [&](const QString& fileName) {
        return OutputFile{target.filePath(fileName), stagingFolder.filePath(fileName)};
    };
    for (const ZELKinProcedure* procedure : LiveProceduresOf(program)) {
        PrintProgress(procedure);
        if (const auto* rollLayup = qobject_cast<const ZELKinRollLayupProcedure*>(procedure))
            WriteFile(staged(PlyFileName(name, rollLayup)), tr("Could not open the PPF file for writing at: '%1'"),
                      PlyText(rollLayup));
        else if (const auto* probe = qobject_cast<const ZELKinProbeProcedure*>(procedure))
            WriteFile(staged(ProbingFileName(name)), tr("Could not open the PTPF file for writing at: '%1'"),
                      ProbingText(probe));
    }
}

void ZELKinAFPGCodeWriter::WriteBundle(ZELKinProgram* program) const
{
    MakeOutputDirectory(QFileInfo(outputPath).absolutePath());
    const QString name = program->GetOriginalFileName();
    WriteFile(InPlace(outputPath), tr("Could not open the bundle file for writing at: '%1'"), [&](ZELKinNCStream& out) {
        WriteBundleHead(out, name, ProgramSetText(program));
        WriteSections(out, program);
    });
}

void ZELKinAFPGCodeWriter::WriteBundleHead(ZELKinNCStream& out, const QString& name, const TextWriter& programSet)
{
    out << "SetId|" << name << "|\n\n\n\n";
    out << SectionMarker(ProgramSetFileName(name)) << '\n';
    programSet(out);
    out << kEndOfFile << '\n';
}

// A procedure of another kind has no file, and so no section.
void ZELKinAFPGCodeWriter::WriteSections(ZELKinNCStream& out, const ZELKinProgram* program) const
{
    const QString name = program->GetOriginalFileName();
    for (const ZELKinProcedure* procedure : LiveProceduresOf(program)) {
        PrintProgress(procedure);
        if (const auto* rollLayup = qobject_cast<const ZELKinRollLayupProcedure*>(procedure)) {
            out << SectionMarker(PlyFileName(name, rollLayup));
            PlyText(rollLayup)(out);
            out << kEndOfFile << '\n';
        } else if (const auto* probe = qobject_cast<const ZELKinProbeProcedure*>(procedure)) {
            out << SectionMarker(ProbingFileName(name));
            ProbingText(probe)(out);
            out << kEndOfFile << '\n';
        }
    }
}

void ZELKinAFPGCodeWriter::WriteSinglePly(ZELKinProgram* program) const
{
    const QList<const ZELKinRollLayupProcedure*> procedures = ZELKinAFPGCodePlies::RollLayupProceduresOf(program);
    QStringList numbers;
    for (const ZELKinRollLayupProcedure* procedure : procedures)
        numbers.append(ZELKinAFPGCodePlies::PaddedPlyNumberOf(procedure));
    const qsizetype chosen = ChoosePly(numbers);
    if (chosen < 0)
        return;
    PrintProgress(procedures.at(chosen));
    WriteChosenPly(program->GetOriginalFileName(), numbers.at(chosen), PlyText(procedures.at(chosen)));
}

qsizetype ZELKinAFPGCodeWriter::ChoosePly(const QStringList& numbers) const
{
    QString list = QStringLiteral("\n Program has these procedures:\n");
    for (const QString& number : numbers)
        list += number + QLatin1Char('\n');
    PrintTo(stderr, list + QStringLiteral(" Enter PROCEDURE to process: "));
    const QString chosen = ReadLineFromStandardInput();
    const qsizetype index = numbers.indexOf(chosen);
    if (index < 0) {
        qCritical("%s", qUtf8Printable(tr("Could not process %1: procedure not found").arg(InLatin1(chosen))));
        chosenPlyMissing = true;
    }
    return index;
}

void ZELKinAFPGCodeWriter::WriteChosenPly(const QString& name, const QString& number, const TextWriter& text) const
{
    const QDir folder(MakePartFolder(outputPath + kSinglePlyFolderSuffix, name));
    const QString plyFile = folder.filePath(PlyFileName(name, number));
    WriteFile(InPlace(plyFile), tr("Could not open the PPF file for writing at: '%1'"), text);
    if (IsBundle())
        ReplaceBundleSection(number, plyFile);
}

void ZELKinAFPGCodeWriter::ReplaceBundleSection(const QString& plyNumber, const QString& plyFile) const
{
    QFile oldBundle(outputPath);
    if (!oldBundle.open(QIODevice::ReadOnly | QIODevice::Text))
        Fail(WithReason(tr("Could not open the old bundle file for reading: '%1'").arg(InLatin1(outputPath)),
                        oldBundle.errorString()));
    QFile ply(plyFile);
    if (!ply.open(QIODevice::ReadOnly | QIODevice::Text))
        Fail(WithReason(tr("Could not open the procedure file for reading: '%1'").arg(InLatin1(plyFile)),
                        ply.errorString()));

    // The section is found before anything is written, so that a bundle
    // without it is left as it is.
    const QString marker = QLatin1Char(ZELKinAFPGCodeTexts::PlyNumberMark) + plyNumber
        + QLatin1String(ZELKinAFPGCodeTexts::PlyFileSuffix) + QLatin1String(ZELKinAFPGCodeTexts::SectionNameEnd);
    QTextStream oldLines(&oldBundle);
    QString line;
    qint64 markerLine = 0;
    bool found = false;
    while (!found && oldLines.readLineInto(&line)) {
        found = line.contains(marker);
        ++markerLine;
    }
    if (!found)
        Fail(tr("Could not find old procedure '%1' in file: '%2'").arg(InLatin1(plyNumber), InLatin1(outputPath)));

    oldLines.seek(0);
    WriteFile(InPlace(outputPath), tr("Could not open the new bundle file for writing: '%1'"),
              [&](ZELKinNCStream& out) {
                  for (qint64 i = 0; i < markerLine && oldLines.readLineInto(&line); ++i)
                      out << line << '\n';
                  QTextStream plyLines(&ply);
                  while (plyLines.readLineInto(&line))
                      out << line << '\n';
                  // The old section's lines go, up to its end-of-file marker, which stays.
                  bool inOldSection = true;
                  while (oldLines.readLineInto(&line)) {
                      inOldSection = inOldSection && !line.contains(kEndOfFile);
                      if (!inOldSection)
                          out << line << '\n';
                  }
              });
}

void ZELKinAFPGCodeWriter::MakeOutputDirectory(const QString& directory)
{
    std::error_code error;
    std::filesystem::create_directories(NativePath(directory), error);
    if (error)
        Fail(WithReason(tr("Could not create the output directory '%1'").arg(InLatin1(directory)),
                        qt_error_string(error.value())));
}

QString ZELKinAFPGCodeWriter::MakePartFolder(const QString& directory, const QString& name)
{
    MakeOutputDirectory(directory);
    const QString folder = QDir(directory).filePath(name);
    std::error_code error;
    std::filesystem::create_directory(NativePath(folder), error);
    if (error)
        FailPartFolder(name, qt_error_string(error.value()));
    return folder;
}

void ZELKinAFPGCodeWriter::FailPartFolder(const QString& name, const QString& reason)
{
    Fail(WithReason(tr("Could not create the part output directory '%1'").arg(InLatin1(name)), reason));
}

ZELKinAFPGCodeWriter::OutputFile ZELKinAFPGCodeWriter::InPlace(const QString& fileName)
{
    return OutputFile{fileName, fileName};
}

void ZELKinAFPGCodeWriter::WriteFile(const OutputFile& target, const QString& failure, const TextWriter& write) const
{
    const QString& fileName = target.fileName;
    QSaveFile file(target.writtenAt);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        Fail(WithReason(failure.arg(InLatin1(fileName)), file.errorString()));
    try {
        ZELKinNCStream out(&file);
        if (lineTrace)
            out.SetPositionTrace([this, &fileName](qint64 line, const ZELKinPosition* position) {
                lineTrace(fileName, line, position);
            });
        write(out);
        out.Flush();
    } catch (const ZELSysException& error) {
        // What stood at the path stays as it was.
        file.cancelWriting();
        throw ZELSysException(QStringLiteral("cannot write the NC file '%1': %2").arg(fileName, error.GetMessage()));
    }
    if (!file.commit())
        Fail(WithReason(failure.arg(InLatin1(fileName)), file.errorString()));
}

void ZELKinAFPGCodeWriter::PrintProgress(const ZELKinProcedure* procedure) const
{
    const ZELTPProcedure* source = procedure->GetToolPathProcedure();
    const QString name = source ? source->GetName() : QString();
    ZELSysProgress::WriteLine(QStringLiteral("  Writing ") + name);
    if (progress)
        progress->SetItem(name);
}

ZELKinAFPGCodeWriter::TextWriter ZELKinAFPGCodeWriter::ProgramSetText(const ZELKinProgram* program) const
{
    return [this, program](ZELKinNCStream& out) { ZELKinAFPGCodeProgramSet(program, now).Write(out); };
}

ZELKinAFPGCodeWriter::TextWriter
ZELKinAFPGCodeWriter::ProgramSetText(const ZELKinAFPGCodeProgramSet::Contents& contents) const
{
    return [this, &contents](ZELKinNCStream& out) { ZELKinAFPGCodeProgramSet(contents, now).Write(out); };
}

ZELKinAFPGCodeWriter::TextWriter ZELKinAFPGCodeWriter::PlyText(const ZELKinRollLayupProcedure* procedure) const
{
    return [this, procedure](ZELKinNCStream& out) { ZELKinAFPGCodePly(procedure, splitting, progress).Write(out); };
}

ZELKinAFPGCodeWriter::TextWriter ZELKinAFPGCodeWriter::ProbingText(const ZELKinProbeProcedure* probe) const
{
    return [this, probe](ZELKinNCStream& out) { ZELKinAFPGCodeProbing(probe, toolingRetract, now).Write(out); };
}
