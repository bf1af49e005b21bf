#include "zeltpformatexception.h"

namespace {

QString FormatMessage(const QString& sourceName, const QString& location, const QString& problem)
{
    if (location.isEmpty())
        return QStringLiteral("%1: %2").arg(sourceName, problem);
    return QStringLiteral("%1: %2: %3").arg(sourceName, location, problem);
}

} // namespace

ZELTPFormatException::ZELTPFormatException(const QString& sourceName, const QString& location,
                                           const QString& problem)
    : ZELSysException(FormatMessage(sourceName, location, problem))
    , m_sourceName(sourceName)
    , m_location(location)
    , m_problem(problem)
{
}

// Out of line, so that the vtable and type information live in this library.
ZELTPFormatException::~ZELTPFormatException() = default;

QString ZELTPFormatException::GetSourceName() const
{
    return m_sourceName;
}

QString ZELTPFormatException::GetLocation() const
{
    return m_location;
}

QString ZELTPFormatException::GetProblem() const
{
    return m_problem;
}
