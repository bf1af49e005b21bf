#include "zelkinncstream_p.h"

#include "zelkinncformat_p.h"

#include <zelsysexception.h>

#include <QIODevice>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>

namespace {

// The most chars of a 64-bit integer in decimal, its sign included.
constexpr qsizetype kIntegerSize = std::numeric_limits<quint64>::digits10 + 2;
// How much of a line handed on is kept to name a word in it: more than
// any address and the text before a number in the dialect's lines.
constexpr qsizetype kKeptLineTail = 80;

bool IsLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Where the line that `end` lies in begins, within [first, end).
const char* LineStart(const char* first, const char* end)
{
    return std::find(std::make_reverse_iterator(end), std::make_reverse_iterator(first), '\n').base();
}

/*
    The word that a number written after `line` belongs to: the name before
    a closing "=", letters and underscores and then any digits ("C1=",
    "RetractFeedrate=", "AVERAGE_ADD_DISTANCE="), else the letters just
    before the number (the "F" of "G1F"; a label of more than one letter
    always has its "="). Empty when neither stands there.
*/
QString WordBefore(const QByteArray& line)
{
    qsizetype end = line.size();
    const bool named = end > 0 && line.at(end - 1) == '=';
    if (named)
        --end;
    qsizetype begin = end;
    while (named && begin > 0 && IsDigit(line.at(begin - 1)))
        --begin;
    const qsizetype digits = end - begin;
    while (begin > 0 && (IsLetter(line.at(begin - 1)) || (named && line.at(begin - 1) == '_')))
        --begin;
    if (end - begin == digits)
        return QString();
    return QString::fromLatin1(line.mid(begin, end - begin));
}

} // namespace

ZELKinNCStream::ZELKinNCStream(QIODevice* device, qsizetype blockSize)
    : device(device)
    , buffer(blockSize, Qt::Uninitialized)
    , data(buffer.data())
    , toUtf8(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless)
{
}

ZELKinNCStream::~ZELKinNCStream()
{
    Flush();
}

ZELKinNCStream& ZELKinNCStream::operator<<(const char* text)
{
    return *this << QByteArrayView(text, qsizetype(std::strlen(text)));
}

ZELKinNCStream& ZELKinNCStream::operator<<(QByteArrayView text)
{
    char* out = Reserve(text.size());
    std::memcpy(out, text.data(), std::size_t(text.size()));
    Commit(out + text.size());
    return *this;
}

ZELKinNCStream& ZELKinNCStream::operator<<(char c)
{
    char* out = Reserve(1);
    *out = c;
    Commit(out + 1);
    return *this;
}

ZELKinNCStream& ZELKinNCStream::operator<<(const QString& text)
{
    char* out = Reserve(toUtf8.requiredSpace(text.size()));
    Commit(toUtf8.appendToBuffer(out, text));
    return *this;
}

ZELKinNCStream& ZELKinNCStream::operator<<(int value)
{
    return WriteInteger(value);
}

ZELKinNCStream& ZELKinNCStream::operator<<(qint64 value)
{
    return WriteInteger(value);
}

ZELKinNCStream& ZELKinNCStream::operator<<(quint64 value)
{
    return WriteInteger(value);
}

ZELKinNCStream& ZELKinNCStream::operator<<(double value)
{
    CheckFinite(value);
    char* out = Reserve(ZELKinNCFormat::BufferSize);
    Commit(out + ZELKinNCFormat::WriteGeneral(out, value));
    return *this;
}

ZELKinNCStream& ZELKinNCStream::operator<<(Fixed number)
{
    CheckFinite(number.value);
    char* out = Reserve(std::max<qsizetype>(ZELKinNCFormat::BufferSize, number.width));
    const int length = ZELKinNCFormat::WriteFixed(out, number.value, number.decimals);
    const int padding = std::max(number.width - length, 0);
    std::memmove(out + padding, out, std::size_t(length));
    std::memset(out, ' ', std::size_t(padding));
    Commit(out + padding + length);
    return *this;
}

void ZELKinNCStream::Flush()
{
    GetLineNumber();
    if (used > 0) {
        KeepHandedLineTail();
        device->write(buffer.constData(), used);
    }
    used = 0;
    counted = 0;
}

qint64 ZELKinNCStream::GetLineNumber()
{
    // The C library's memchr skips a line's tens of bytes at vector speed.
    const char* const end = data + used;
    for (const char* at = data + counted; at < end; ++at) {
        at = static_cast<const char*>(std::memchr(at, '\n', std::size_t(end - at)));
        if (!at)
            break;
        ++lineEnds;
    }
    counted = used;
    return lineEnds + 1;
}

void ZELKinNCStream::MakeRoom(qsizetype size)
{
    Flush();
    if (size > buffer.size()) {
        buffer.resize(size);
        data = buffer.data();
    }
}

template <typename Integer>
ZELKinNCStream& ZELKinNCStream::WriteInteger(Integer value)
{
    char* out = Reserve(kIntegerSize);
    Commit(std::to_chars(out, out + kIntegerSize, value).ptr);
    return *this;
}

void ZELKinNCStream::ThrowNonFinite(double value)
{
    char text[ZELKinNCFormat::BufferSize];
    const QString number = QString::fromLatin1(text, ZELKinNCFormat::WriteGeneral(text, value));
    const QByteArray line = LineSoFar().right(kKeptLineTail);
    const QString word = WordBefore(line);
    const QString lineNumber = QString::number(GetLineNumber());
    if (!word.isEmpty())
        throw ZELSysException(
            QStringLiteral("the %1 of line %2 is %3, not a finite number").arg(word, lineNumber, number));
    throw ZELSysException(QStringLiteral("the number after \"%1\" on line %2 is %3, not a finite number")
                              .arg(QString::fromUtf8(line), lineNumber, number));
}

void ZELKinNCStream::KeepHandedLineTail()
{
    const char* const end = data + used;
    const char* const lineStart = LineStart(data, end);
    if (lineStart != data)
        handedLineTail.clear();
    handedLineTail.append(lineStart, end - lineStart);
    if (handedLineTail.size() > kKeptLineTail)
        handedLineTail.remove(0, handedLineTail.size() - kKeptLineTail);
}

QByteArray ZELKinNCStream::LineSoFar() const
{
    const char* const end = data + used;
    const char* const lineStart = LineStart(data, end);
    if (lineStart != data)
        return QByteArray(lineStart, end - lineStart);
    return handedLineTail + QByteArray(data, used);
}
