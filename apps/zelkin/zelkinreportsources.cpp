#include "zelkinreportsources.h"

#include "zelkininputfile.h"

#include <zelkinverification.h>
#include <zelsysexception.h>
#include <zelsysprogress.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <functional>

namespace {

// Large inputs (a toolpath of a million positions is some 200 MB) take
// about a second to hash: the work is counted in megabytes.
constexpr qint64 kBytesPerUnit = 1000 * 1000;
constexpr qint64 kChunkBytes = 1 << 20;

// What a post writes in a program's folder.
const QStringList kPostedFiles{QStringLiteral("*.PPSF"), QStringLiteral("*.PPF"), QStringLiteral("*.PTPF")};

// Standard input, a pipe or a device would not give the checked bytes again.
bool IsHashed(const QString& path)
{
    return ZELKinInputFile::GetName(path) == path && QFileInfo(path).isFile();
}

// The NC files of the plies the checks read: every file the post writes
// in the folder of a ply file, or the bundle that holds the plies.
QStringList NCFilesOf(const ZELKinVerification& verification)
{
    QStringList files;
    for (const ZELKinVerifiedPly& ply : verification.plies) {
        const QFileInfo info(ply.file);
        QStringList found{ply.file};
        if (info.suffix() == QLatin1String("PPF")) {
            found.clear();
            const QDir folder = info.dir();
            for (const QString& name : folder.entryList(kPostedFiles, QDir::Files, QDir::Name))
                found.append(folder.filePath(name));
        }
        for (const QString& file : std::as_const(found)) {
            if (!files.contains(file))
                files.append(file);
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// A bundle's first line names the program's set: "SetId|NAME|".
QString SetNameOf(const QString& bundle)
{
    static const QRegularExpression setId(QStringLiteral("^SetId\\|(.*)\\|$"));
    QFile file(bundle);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return setId.match(QString::fromUtf8(file.readLine()).trimmed()).captured(1);
}

QString ProgramNameOf(const QStringList& ncFiles)
{
    for (const QString& file : ncFiles) {
        if (file.endsWith(QLatin1String(".PPSF")))
            return QFileInfo(file).completeBaseName();
    }
    return ncFiles.size() == 1 ? SetNameOf(ncFiles.first()) : QString();
}

// Feeds `path` to `hash` a chunk at a time, telling `read` of each chunk's size.
void HashFile(const QString& path, QCryptographicHash& hash, const std::function<void(qint64)>& read)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ZELSysException(QStringLiteral("cannot read %1 to hash it: %2").arg(path, file.errorString()));
    QByteArray chunk;
    do {
        chunk = file.read(kChunkBytes);
        hash.addData(chunk);
        read(chunk.size());
    } while (!chunk.isEmpty());
    if (file.error() != QFileDevice::NoError)
        throw ZELSysException(QStringLiteral("cannot read %1 to hash it: %2").arg(path, file.errorString()));
}

class Hasher
{
public:
    explicit Hasher(const QStringList& paths)
        : m_progress(QStringLiteral("Hashing the inputs"), QStringLiteral("MB"), UnitsOf(TotalBytes(paths)))
    {
    }

    ZELKinReportSources::File Hash(const QString& path)
    {
        ZELKinReportSources::File file{ZELKinInputFile::GetName(path), -1, QString()};
        if (!IsHashed(path))
            return file;
        QCryptographicHash hash(QCryptographicHash::Sha256);
        file.size = 0;
        HashFile(path, hash, [&](qint64 bytes) {
            file.size += bytes;
            Count(bytes);
        });
        file.sha256 = QString::fromLatin1(hash.result().toHex());
        return file;
    }

private:
    static qint64 TotalBytes(const QStringList& paths)
    {
        qint64 bytes = 0;
        for (const QString& path : paths)
            bytes += IsHashed(path) ? QFileInfo(path).size() : 0;
        return bytes;
    }

    static qint64 UnitsOf(qint64 bytes) { return (bytes + kBytesPerUnit - 1) / kBytesPerUnit; }

    void Count(qint64 bytes)
    {
        m_bytes += bytes;
        const qint64 units = m_bytes / kBytesPerUnit;
        if (units == m_units)
            return;
        m_progress.Advance(units - m_units);
        m_units = units;
    }

    ZELSysProgress m_progress;
    qint64 m_bytes = 0;
    qint64 m_units = 0;
};

} // namespace

ZELKinReportSources::ZELKinReportSources(const QString& machinePath, const QString& toolpathPath, const QString& ncPath,
                                         const ZELKinVerification& verification)
    : m_ncPath(ncPath)
{
    const QStringList ncFiles = NCFilesOf(verification);
    Hasher hasher(QStringList{machinePath, toolpathPath} + ncFiles);
    m_machine = hasher.Hash(machinePath);
    m_toolpath = hasher.Hash(toolpathPath);
    for (const QString& file : ncFiles)
        m_ncFiles.append(hasher.Hash(file));
    m_programName = ProgramNameOf(ncFiles);
}
