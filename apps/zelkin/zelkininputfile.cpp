#include "zelkininputfile.h"

#include <zelsysprogress.h>
#include <zeltpprogramreader.h>
#include <zeltpprogramstream.h>

#include <QFileInfo>

namespace {

const QString StandardInputArgument = QStringLiteral("-");
const QString StandardInputPath = QStringLiteral("/dev/stdin");

} // namespace

QString ZELKinInputFile::GetStandardInputArgument()
{
    return StandardInputArgument;
}

QString ZELKinInputFile::GetPath(const QString& argument)
{
    return argument == StandardInputArgument ? StandardInputPath : argument;
}

QString ZELKinInputFile::GetName(const QString& path)
{
    return path == StandardInputPath ? QStringLiteral("standard input") : path;
}

bool ZELKinInputFile::CanBeReadAgain(const QString& path)
{
    const QFileInfo info(path);
    return info.isFile() || info.isDir();
}

ZELTPProgram* ZELKinInputFile::ReadToolpath(ZELGeoContainer* container, const QString& path, qint64 maximumBytes)
{
    const ZELSysProgress reading(QStringLiteral("Reading the toolpath"), QString(), 0);
    return NamingTheFile([&] { return ZELTPProgramReader(container).Read(path, maximumBytes); });
}

void ZELKinInputFile::OpenToolpath(ZELTPProgramStream& stream, const QString& path)
{
    const ZELSysProgress reading(QStringLiteral("Reading the toolpath"), QString(), 0);
    NamingTheFile([&] { stream.Open(path); });
}
