#include "zelkininputfile.h"

#include <zelsysprogress.h>
#include <zeltpformatexception.h>
#include <zeltpprogramreader.h>

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

ZELTPProgram* ZELKinInputFile::ReadToolpath(ZELGeoContainer* container, const QString& path, qint64 maximumBytes)
{
    const ZELSysProgress reading(QStringLiteral("Reading the toolpath"), QString(), 0);
    try {
        return ZELTPProgramReader(container).Read(path, maximumBytes);
    } catch (const ZELTPFormatException& error) {
        const QString name = GetName(error.GetSourceName());
        if (name == error.GetSourceName())
            throw;
        throw ZELTPFormatException(name, error.GetLocation(), error.GetProblem());
    }
}
