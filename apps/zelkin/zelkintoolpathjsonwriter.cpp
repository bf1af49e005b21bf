#include "zelkintoolpathjsonwriter.h"

#include <zelsysexception.h>

#include <QIODevice>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

// Large enough that each write to the device is cheap, small enough not to matter.
constexpr std::size_t kFlushSize = 1 << 20;

void AppendEscaped(std::string& buffer, const QByteArray& utf8)
{
    for (const char c : utf8) {
        switch (c) {
        case '"':
            buffer += "\\\"";
            break;
        case '\\':
            buffer += "\\\\";
            break;
        case '\n':
            buffer += "\\n";
            break;
        case '\t':
            buffer += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                std::array<char, 8> escape{};
                std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
                buffer += escape.data();
            } else {
                buffer += c;
            }
        }
    }
}

} // namespace

ZELKinToolpathJsonWriter::ZELKinToolpathJsonWriter(QIODevice* device, const QString& name)
    : m_device(device)
    , m_name(name)
{
    m_buffer.reserve(kFlushSize + 4096);
}

void ZELKinToolpathJsonWriter::BeginObject(Layout layout)
{
    Open('{', layout);
}

void ZELKinToolpathJsonWriter::EndObject()
{
    Close('}');
}

void ZELKinToolpathJsonWriter::BeginArray(Layout layout)
{
    Open('[', layout);
}

void ZELKinToolpathJsonWriter::EndArray()
{
    Close(']');
}

void ZELKinToolpathJsonWriter::WriteKey(const char* key)
{
    BeginValue();
    m_buffer += '"';
    m_buffer += key;
    m_buffer += "\": ";
    m_afterKey = true;
}

void ZELKinToolpathJsonWriter::WriteString(const QString& text)
{
    BeginValue();
    m_buffer += '"';
    AppendEscaped(m_buffer, text.toUtf8());
    m_buffer += '"';
    FlushWhenFull();
}

void ZELKinToolpathJsonWriter::WriteNumber(double value)
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

void ZELKinToolpathJsonWriter::WriteInteger(long long value)
{
    BeginValue();
    std::array<char, 24> text{};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), value);
    m_buffer.append(text.data(), end.ptr);
}

void ZELKinToolpathJsonWriter::Finish()
{
    m_buffer += '\n';
    Flush();
}

void ZELKinToolpathJsonWriter::Open(char bracket, Layout layout)
{
    BeginValue();
    m_buffer += bracket;
    // Nothing inside a line breaks it.
    const bool inLine = !m_containers.empty() && m_containers.back().layout == Layout::Line;
    m_containers.push_back({inLine ? Layout::Line : layout, 0});
}

void ZELKinToolpathJsonWriter::Close(char bracket)
{
    const Container closed = m_containers.back();
    m_containers.pop_back();
    if (closed.layout == Layout::Block && closed.entries > 0)
        BreakLine(m_containers.size());
    m_buffer += bracket;
    FlushWhenFull();
}

void ZELKinToolpathJsonWriter::BeginValue()
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

void ZELKinToolpathJsonWriter::BreakLine(std::size_t depth)
{
    m_buffer += '\n';
    m_buffer.append(2 * depth, ' ');
}

void ZELKinToolpathJsonWriter::FlushWhenFull()
{
    if (m_buffer.size() >= kFlushSize)
        Flush();
}

void ZELKinToolpathJsonWriter::Flush()
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
