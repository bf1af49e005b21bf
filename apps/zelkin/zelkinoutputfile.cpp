#include "zelkinoutputfile.h"

#include <zelsysexception.h>

ZELKinOutputFile::ZELKinOutputFile(const QString& path)
    : m_file(path)
{
    if (!m_file.open(QIODevice::WriteOnly))
        ThrowWriteError();
}

void ZELKinOutputFile::Commit()
{
    if (!m_file.commit())
        ThrowWriteError();
}

void ZELKinOutputFile::ThrowWriteError() const
{
    throw ZELSysException(QStringLiteral("cannot write %1: %2").arg(m_file.fileName(), m_file.errorString()));
}
