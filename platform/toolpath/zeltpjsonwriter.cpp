#include "zeltpjsonwriter_p.h"

#include <zelsysexception.h>
#include <zelsysjsontext.h>

#include <QIODevice>

#include <array>
#include <charconv>
#include <cmath>

namespace {

// Large enough that each write to the device is cheap, small enough not to matter.
constexpr std::size_t kFlushSize = 1 << 20;

} // namespace

ZELTPJsonWriter::ZELTPJsonWriter(QIODevice* device, const QString& name)
    : m_device(device)
    , m_name(name)
{
    m_buffer.reserve(kFlushSize + 4096);
}

void ZELTPJsonWriter::BeginObject(Layout layout)
{
    Open('{', layout);
}

void ZELTPJsonWriter::EndObject()
{
    Close('}');
}

void ZELTPJsonWriter::BeginArray(Layout layout)
{
    Open('[', layout);
}

void ZELTPJsonWriter::EndArray()
{
    Close(']');
}

void ZELTPJsonWriter::WriteKey(const char* key)
{
    BeginValue();
    m_buffer += '"';
    m_buffer += key;
    m_buffer += "\": ";
    m_afterKey = true;
}

void ZELTPJsonWriter::WriteString(const QString& text)
{
    BeginValue();
    m_buffer += ZELSysJsonText::Quoted(text).toStdString();
    FlushWhenFull();
}

void ZELTPJsonWriter::WriteNumber(double value)
{
    if (!std::isfinite(value))
        throw ZELSysException(QStringLiteral("cannot write a number that is not finite: %1").arg(value));
    BeginValue();
    std::array<char, 32> text{};
    // Adding zero turns -0 into 0, which reads the same and looks less odd.
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), value + 0.0);
    m_buffer.append(text.data(), end.ptr);
    FlushWhenFull();
}

void ZELTPJsonWriter::WriteInteger(long long value)
{
    BeginValue();
    std::array<char, 24> text{};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), value);
    m_buffer.append(text.data(), end.ptr);
}

void ZELTPJsonWriter::Finish()
{
    m_buffer += '\n';
    Flush();
}

void ZELTPJsonWriter::Open(char bracket, Layout layout)
{
    BeginValue();
    m_buffer += bracket;
    // Nothing inside a line breaks it.
    const bool inLine = !m_containers.empty() && m_containers.back().layout == Layout::Line;
    m_containers.push_back({inLine ? Layout::Line : layout, 0});
}

void ZELTPJsonWriter::Close(char bracket)
{
    const Container closed = m_containers.back();
    m_containers.pop_back();
    if (closed.layout == Layout::Block && closed.entries > 0)
        BreakLine(m_containers.size());
    m_buffer += bracket;
    FlushWhenFull();
}

void ZELTPJsonWriter::BeginValue()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_containers.empty())
        return;
    Container& container = m_containers.back();
    if (container.entries++ > 0)
        m_buffer += ',';
    if (container.layout == Layout::Block)
        BreakLine(m_containers.size());
    else if (container.entries > 1)
        m_buffer += ' ';
}

void ZELTPJsonWriter::BreakLine(std::size_t depth)
{
    m_buffer += '\n';
    m_buffer.append(2 * depth, ' ');
}

void ZELTPJsonWriter::FlushWhenFull()
{
    if (m_buffer.size() >= kFlushSize)
        Flush();
}

void ZELTPJsonWriter::Flush()
{
    const char* data = m_buffer.data();
    auto remaining = static_cast<qint64>(m_buffer.size());
    // A file that takes part of the text (a disk filling up) says why only
    // when asked to take the rest.
    while (remaining > 0) {
        const qint64 written = m_device->write(data, remaining);
        if (written <= 0)
            throw ZELSysException(QStringLiteral("cannot write %1: %2").arg(m_name, m_device->errorString()));
        data += written;
        remaining -= written;
    }
    m_buffer.clear();
}
