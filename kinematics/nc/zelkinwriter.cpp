#include "zelkinwriter.h"
#include "zelkinwriter_p.h"

#include "zelkinafpgcodewriter_p.h"
#include "zelkinprogram.h"

#include <zelsysexception.h>
#include <zeltpfilename.h>

#include <QSet>
#include <QStringList>

#include <cmath>

namespace {

// What the options text may give: each key with the lengths it takes (mm).
struct OptionRange
{
    const char* key;
    bool zeroAllowed;
    double maximum;
};

// Splitting a pinch takes both lengths; one without the other does nothing.
constexpr const char* kPinchMaxLength = "pinch-max-length";
constexpr const char* kPinchReleaseLength = "pinch-release-length";

// The probe's retract stays within a machine's reach, and a pinch is split
// along stretches no longer than a course.
constexpr OptionRange kOptions[] = {
    {"tooling-retract", true, 1000.0},
    {kPinchMaxLength, false, 100000.0},
    {kPinchReleaseLength, false, 100000.0},
};

const OptionRange* FindOption(const QString& key)
{
    for (const OptionRange& option : kOptions) {
        if (key == QLatin1String(option.key))
            return &option;
    }
    return nullptr;
}

QString KnownOptions()
{
    QStringList keys;
    for (const OptionRange& option : kOptions)
        keys.append(QLatin1String(option.key));
    return keys.join(QStringLiteral(", "));
}

ZELSysException OptionError(const QString& key, const QString& problem)
{
    return ZELSysException(QStringLiteral("writer option '%1'%2").arg(key, problem));
}

void CheckOptionValue(const OptionRange& option, const QString& text)
{
    const QString key = QLatin1String(option.key);
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber && !std::isinf(value))
        throw OptionError(key, QStringLiteral(": '%1' is not a number").arg(text));
    if (!std::isfinite(value))
        throw OptionError(key, QStringLiteral(": '%1' is not a finite number").arg(text));
    const bool aboveMinimum = option.zeroAllowed ? value >= 0.0 : value > 0.0;
    if (!aboveMinimum || value > option.maximum)
        throw OptionError(key,
                          QStringLiteral(": '%1' is outside the range 0 %2 length <= %3 mm")
                              .arg(text, option.zeroAllowed ? QStringLiteral("<=") : QStringLiteral("<"),
                                   QString::number(option.maximum)));
}

void RequireBoth(const QSet<QString>& given, const QString& one, const QString& other)
{
    if (given.contains(one) && !given.contains(other))
        throw OptionError(one, QStringLiteral(" does nothing without '%1'").arg(other));
}

} // namespace

void ZELKinWriter::CheckOptions(const QString& options)
{
    QSet<QString> given;
    for (const QString& item : options.split(QLatin1Char(';'))) {
        if (item.simplified().isEmpty())
            continue;
        const qsizetype colon = item.indexOf(QLatin1Char(':'));
        const QString key = item.left(colon).simplified();
        const OptionRange* option = FindOption(key);
        if (!option)
            throw ZELSysException(QStringLiteral("unknown writer option '%1' (known: %2)").arg(key, KnownOptions()));
        if (colon < 0)
            throw OptionError(key, QStringLiteral(" has no value"));
        CheckOptionValue(*option, item.mid(colon + 1).simplified());
        if (given.contains(key))
            throw OptionError(key, QStringLiteral(" is given twice"));
        given.insert(key);
    }
    RequireBoth(given, QLatin1String(kPinchMaxLength), QLatin1String(kPinchReleaseLength));
    RequireBoth(given, QLatin1String(kPinchReleaseLength), QLatin1String(kPinchMaxLength));
}

ZELKinWriter::ZELKinWriter(ZELKinWriterPrivate* d)
    : d_ptr(d)
{
}

ZELKinWriter::ZELKinWriter(ZELKinProgram* program)
    : ZELKinWriter(new ZELKinWriterPrivate(this, program))
{
}

ZELKinWriter::ZELKinWriter()
    : ZELKinWriter(static_cast<ZELKinProgram*>(nullptr))
{
}

ZELKinWriter::~ZELKinWriter() = default;

void ZELKinWriter::SetPlyToProcess(QString& ply)
{
    Q_D(ZELKinWriter);
    d->plyToProcess = ply;
}

void ZELKinWriter::SetCurrentDateTime(const QDateTime& now)
{
    Q_D(ZELKinWriter);
    d->currentDateTime = now;
}

void ZELKinWriter::SetLineTrace(LineTrace trace)
{
    Q_D(ZELKinWriter);
    d->lineTrace = std::move(trace);
}

void ZELKinWriter::SetFileErrorMode(FileErrorMode mode)
{
    Q_D(ZELKinWriter);
    d->fileErrorMode = mode;
}

ZELKinWriterPrivate::~ZELKinWriterPrivate() = default;

std::unique_ptr<ZELKinAFPGCodeWriter>
ZELKinWriterPrivate::CreateDialectWriter(const QString& path, const QString& options, const QString& name) const
{
    // The name becomes a folder and the base of every file name: one that
    // could step out of `path` is refused before anything is written.
    const QString problem = ZELTPFileName::GetProblem(name);
    if (!problem.isEmpty())
        throw ZELSysException(
            QStringLiteral("cannot write the NC files of the program '%1': its %2").arg(name, problem));
    auto writer = std::make_unique<ZELKinAFPGCodeWriter>(path);
    writer->SetOptions(options);
    if (!plyToProcess.isEmpty())
        writer->SetPlyToProcess(plyToProcess);
    if (!currentDateTime.isNull())
        writer->SetCurrentDateTime(currentDateTime);
    writer->SetLineTrace(lineTrace);
    writer->SetFileErrorMode(fileErrorMode);
    return writer;
}

void ZELKinWriter::Write(const QString& path, const QString& format, const QString& options)
{
    Q_D(ZELKinWriter);
    d->chosenPlyMissing = false;
    if (format != QLatin1String("AFPGCode") || !d->program)
        return;
    const std::unique_ptr<ZELKinAFPGCodeWriter> writer = d->CreateDialectWriter(path, options,
                                                                                d->program->GetOriginalFileName());
    writer->Write(d->program);
    d->chosenPlyMissing = writer->IsChosenPlyMissing();
}

void ZELKinWriter::Begin(const QString& path, const QString& format, const QString& options,
                         const ZELKinProgram* identification)
{
    Q_D(ZELKinWriter);
    d->chosenPlyMissing = false;
    d->streaming.reset();
    if (format != QLatin1String("AFPGCode") || !identification)
        return;
    std::unique_ptr<ZELKinAFPGCodeWriter> writer = d->CreateDialectWriter(path, options,
                                                                          identification->GetOriginalFileName());
    writer->SetLineTrace(LineTrace());
    writer->Begin(identification);
    d->streaming = std::move(writer);
}

void ZELKinWriter::Add(ZELKinProgram* part)
{
    Q_D(ZELKinWriter);
    if (!d->streaming || !part)
        return;
    try {
        d->streaming->Add(part);
    } catch (...) {
        d->streaming.reset();
        throw;
    }
}

void ZELKinWriter::Abandon()
{
    Q_D(ZELKinWriter);
    d->streaming.reset();
}

void ZELKinWriter::Finish()
{
    Q_D(ZELKinWriter);
    if (!d->streaming)
        return;
    const std::unique_ptr<ZELKinAFPGCodeWriter> writer = std::move(d->streaming);
    writer->Finish();
    d->chosenPlyMissing = writer->IsChosenPlyMissing();
}

bool ZELKinWriter::IsChosenPlyMissing() const
{
    Q_D(const ZELKinWriter);
    return d->chosenPlyMissing;
}
