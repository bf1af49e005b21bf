#include "zelkinnclinereader.h"

#include <zelsysexception.h>

#include <QFileDevice>

namespace {

// A line of exactly the largest length may still end in "\r\n", which the
// text stream counts before it takes it off; a line it returns longer than
// the largest length is one that is too long.
constexpr qint64 kLengthToRead = ZELKinNCLineReader::MaximumLineLength + 2;

} // namespace

ZELKinNCLineReader::ZELKinNCLineReader(QFileDevice& file, const QString& name)
    : m_file(file)
    , m_name(name)
    , m_text(&file)
    , m_isStream(file.isSequential())
{
}

bool ZELKinNCLineReader::ReadLine(QString& line)
{
    if (!m_text.readLineInto(&line, kLengthToRead)) {
        // A read that fails half-way must not pass for the end of the text.
        if (m_file.error() != QFileDevice::NoError)
            throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(m_name, m_file.errorString()));
        return false;
    }
    ++m_lineNumber;
    if (line.size() > MaximumLineLength)
        throw ZELSysException(QStringLiteral("cannot read %1: line %2 is longer than %3 characters, which no NC "
                                             "program has")
                                  .arg(m_name, QString::number(m_lineNumber), QString::number(MaximumLineLength)));
    if (m_isStream && line.contains(QChar(0)))
        throw ZELSysException(QStringLiteral("cannot read %1: line %2 holds a NUL character, which no NC text holds")
                                  .arg(m_name, QString::number(m_lineNumber)));
    return true;
}
