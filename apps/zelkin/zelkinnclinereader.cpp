#include "zelkinnclinereader.h"

#include <zelsysexception.h>

#include <QFileDevice>

#include <array>
#include <optional>

namespace {

constexpr qint64 kBlockBytes = 64 * 1024;

} // namespace

ZELKinNCLineReader::ZELKinNCLineReader(QFileDevice& file, const QString& name)
    : m_file(file)
    , m_name(name)
    , m_decoder(QStringConverter::Utf8)
    , m_isStream(file.isSequential())
{
}

bool ZELKinNCLineReader::ReadLine(QString& line)
{
    for (;;) {
        const qsizetype end = m_text.indexOf(QLatin1Char('\n'), m_scanned);
        if (end >= 0) {
            TakeLine(line, end, end + 1);
            return true;
        }
        m_scanned = m_text.size();
        // One character more than the largest length may be the carriage
        // return of a line end still to come.
        if (m_scanned - m_start > MaximumLineLength + 1)
            ThrowLineTooLong(m_lineNumber + 1);
        if (!ReadMoreText())
            break;
    }
    if (m_start == m_text.size())
        return false;
    TakeLine(line, m_text.size(), m_text.size());
    return true;
}

bool ZELKinNCLineReader::ReadMoreText()
{
    std::array<char, kBlockBytes> block;
    const qint64 count = m_file.read(block.data(), kBlockBytes);
    // A read that fails half-way must not pass for the end of the text.
    if (count < 0)
        throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(m_name, m_file.errorString()));
    if (count == 0)
        return false;
    const QByteArrayView bytes(block.data(), count);
    if (!m_isEncodingChosen) {
        m_isEncodingChosen = true;
        if (const std::optional<QStringConverter::Encoding> encoding = QStringConverter::encodingForData(bytes))
            m_decoder = QStringDecoder(*encoding);
    }
    // Handing out lines leaves their text behind; it goes once it is half
    // of what is held, so that each character is moved at most once more.
    if (m_start > m_text.size() / 2) {
        m_text.remove(0, m_start);
        m_scanned -= m_start;
        m_start = 0;
    }
    m_text.append(m_decoder(bytes));
    return true;
}

void ZELKinNCLineReader::TakeLine(QString& line, qsizetype end, qsizetype next)
{
    ++m_lineNumber;
    qsizetype length = end - m_start;
    if (length > 0 && m_text.at(end - 1) == QLatin1Char('\r'))
        --length;
    if (length > MaximumLineLength)
        ThrowLineTooLong(m_lineNumber);
    line = m_text.mid(m_start, length);
    m_start = next;
    m_scanned = next;
    if (m_isStream && line.contains(QChar(0)))
        throw ZELSysException(QStringLiteral("cannot read %1: line %2 holds a NUL character, which no NC text holds")
                                  .arg(m_name, QString::number(m_lineNumber)));
}

void ZELKinNCLineReader::ThrowLineTooLong(unsigned lineNumber) const
{
    throw ZELSysException(QStringLiteral("cannot read %1: line %2 is longer than %3 characters, which no NC "
                                         "program has")
                              .arg(m_name, QString::number(lineNumber), QString::number(MaximumLineLength)));
}
