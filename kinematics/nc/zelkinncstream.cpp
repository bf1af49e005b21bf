#include "zelkinncstream_p.h"

#include "zelkinncformat_p.h"

#include <QIODevice>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

namespace {

// The most chars of a 64-bit integer in decimal, its sign included.
constexpr qsizetype kIntegerSize = std::numeric_limits<quint64>::digits10 + 2;

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
    const auto size = qsizetype(std::strlen(text));
    char* out = Reserve(size);
    std::memcpy(out, text, std::size_t(size));
    Commit(out + size);
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
    char* out = Reserve(ZELKinNCFormat::BufferSize);
    Commit(out + ZELKinNCFormat::WriteGeneral(out, value));
    return *this;
}

ZELKinNCStream& ZELKinNCStream::operator<<(Fixed number)
{
    char* out = Reserve(ZELKinNCFormat::BufferSize);
    Commit(out + ZELKinNCFormat::WriteFixed(out, number.value, number.decimals));
    return *this;
}

void ZELKinNCStream::Flush()
{
    GetLineNumber();
    if (used > 0)
        device->write(buffer.constData(), used);
    used = 0;
    counted = 0;
}

qint64 ZELKinNCStream::GetLineNumber()
{
    lineEnds += std::count(data + counted, data + used, '\n');
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
