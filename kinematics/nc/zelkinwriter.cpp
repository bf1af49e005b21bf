#include "zelkinwriter.h"
#include "zelkinwriter_p.h"

#include "zelkinafpgcodewriter_p.h"
#include "zelkinprogram.h"

#include <zelsysexception.h>
#include <zeltpfilename.h>

ZELKinWriter::ZELKinWriter(ZELKinWriterPrivate* d)
    : d_ptr(d)
{
}

ZELKinWriter::ZELKinWriter(ZELKinProgram* program)
    : ZELKinWriter(new ZELKinWriterPrivate(this, program))
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

void ZELKinWriter::Write(const QString& path, const QString& format, const QString& options)
{
    Q_D(ZELKinWriter);
    if (format != QLatin1String("AFPGCode") || !d->program)
        return;
    // The name becomes a folder and the base of every file name: one that
    // could step out of `path` is refused before anything is written.
    const QString name = d->program->GetOriginalFileName();
    const QString problem = ZELTPFileName::GetProblem(name);
    if (!problem.isEmpty())
        throw ZELSysException(
            QStringLiteral("cannot write the NC files of the program '%1': its %2").arg(name, problem));
    ZELKinAFPGCodeWriter writer(path);
    writer.SetOptions(options);
    if (!d->plyToProcess.isEmpty())
        writer.SetPlyToProcess(d->plyToProcess);
    if (!d->currentDateTime.isNull())
        writer.SetCurrentDateTime(d->currentDateTime);
    writer.SetLineTrace(d->lineTrace);
    writer.Write(d->program);
}
