#include "zelkinnclinereader.h"
#include "zelkinnclinereader_p.h"

#include <zelsysexception.h>

#include <QFileDevice>

#include <array>
#include <optional>

namespace {

constexpr qint64 kBlockBytes = 64 * 1024;

} // namespace

ZELKinNCLineReaderPrivate::ZELKinNCLineReaderPrivate(ZELKinNCLineReader* q, QFileDevice& file, const QString& name)
    : q_ptr(q)
    , file(file)
    , name(name)
    , decoder(QStringConverter::Utf8)
    , isStream(file.isSequential())
{
}

bool ZELKinNCLineReaderPrivate::ReadMoreText()
{
    std::array<char, kBlockBytes> block;
    const qint64 count = file.read(block.data(), kBlockBytes);
    // A read that fails half-way must not pass for the end of the text.
    if (count < 0)
        throw ZELSysException(QStringLiteral("cannot read %1: %2").arg(name, file.errorString()));
    if (count == 0)
        return false;
    const QByteArrayView bytes(block.data(), count);
    if (!isEncodingChosen) {
        isEncodingChosen = true;
        if (const std::optional<QStringConverter::Encoding> encoding = QStringConverter::encodingForData(bytes))
            decoder = QStringDecoder(*encoding);
    }
    // Handing out lines leaves their text behind; it goes once it is half
    // of what is held, so that each character is moved at most once more.
    if (start > text.size() / 2) {
        text.remove(0, start);
        scanned -= start;
        start = 0;
    }
    text.append(decoder(bytes));
    return true;
}

void ZELKinNCLineReaderPrivate::TakeLine(QString& line, qsizetype end, qsizetype next)
{
    ++lineNumber;
    qsizetype length = end - start;
    if (length > 0 && text.at(end - 1) == QLatin1Char('\r'))
        --length;
    if (length > ZELKinNCLineReader::MaximumLineLength)
        ThrowLineTooLong(lineNumber);
    line = text.mid(start, length);
    start = next;
    scanned = next;
    if (isStream && line.contains(QChar(0)))
        throw ZELSysException(QStringLiteral("cannot read %1: line %2 holds a NUL character, which no NC text holds")
                                  .arg(name, QString::number(lineNumber)));
}

void ZELKinNCLineReaderPrivate::ThrowLineTooLong(unsigned number) const
{
    throw ZELSysException(
        QStringLiteral("cannot read %1: line %2 is longer than %3 characters, which no NC program has")
            .arg(name, QString::number(number), QString::number(ZELKinNCLineReader::MaximumLineLength)));
}

ZELKinNCLineReader::ZELKinNCLineReader(QFileDevice& file, const QString& name)
    : ZELKinNCLineReader(new ZELKinNCLineReaderPrivate(this, file, name))
{
}

ZELKinNCLineReader::ZELKinNCLineReader(ZELKinNCLineReaderPrivate* d)
    : d_ptr(d)
{
}

ZELKinNCLineReader::~ZELKinNCLineReader() = default;

bool ZELKinNCLineReader::ReadLine(QString& line)
{
    Q_D(ZELKinNCLineReader);
    for (;;) {
        const qsizetype end = d->text.indexOf(QLatin1Char('\n'), d->scanned);
        if (end >= 0) {
            d->TakeLine(line, end, end + 1);
            return true;
        }
        d->scanned = d->text.size();
        // One character more than the largest length may be the carriage
        // return of a line end still to come.
        if (d->scanned - d->start > MaximumLineLength + 1)
            d->ThrowLineTooLong(d->lineNumber + 1);
        if (!d->ReadMoreText())
            break;
    }
    if (d->start == d->text.size())
        return false;
    d->TakeLine(line, d->text.size(), d->text.size());
    return true;
}

unsigned ZELKinNCLineReader::GetLineNumber() const
{
    Q_D(const ZELKinNCLineReader);
    return d->lineNumber;
}
