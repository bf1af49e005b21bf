#include "zelkinoutputfile.h"

#include <zelsysexception.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

bool IsSpecialFile(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

} // namespace

ZELKinOutputFile::ZELKinOutputFile(const QString& path)
{
    if (IsSpecialFile(path))
        m_file = std::make_unique<QFile>(path);
    else
        m_file = std::make_unique<QSaveFile>(path);
    if (!m_file->open(QIODevice::WriteOnly))
        ThrowWriteError();
}

ZELKinOutputFile::~ZELKinOutputFile() = default;

void ZELKinOutputFile::Commit()
{
    // The last buffered write may fail only now: flush first, so that a
    // full disk is never reported as success.
    if (!m_file->flush())
        ThrowWriteError();
    if (auto* saveFile = qobject_cast<QSaveFile*>(m_file.get())) {
        if (!saveFile->commit())
            ThrowWriteError();
        return;
    }
    m_file->close();
    if (m_file->error() != QFileDevice::NoError)
        ThrowWriteError();
}

void ZELKinOutputFile::ThrowWriteError() const
{
    throw ZELSysException(QStringLiteral("cannot write %1: %2").arg(m_file->fileName(), m_file->errorString()));
}
