#include "zeltpjsonvalue_p.h"

#include "zeltpprogramreader.h"
#include "zeltptext.h"

#include <cstddef>

namespace ZELTPReading {

namespace {

// simdjson's count of an array's entries stops here.
constexpr std::size_t SaturatedCount = 0xFFFFFF;

} // namespace

QString Printable(const QString& text)
{
    QString printable;
    printable.reserve(text.size());
    for (const QChar character : text) {
        if (character != QLatin1Char('"') && !ZELTPText::DescribeUnfitCharacter(character).isEmpty())
            printable += QStringLiteral("\\u")
                + QString::number(character.unicode(), 16).toUpper().rightJustified(4, QLatin1Char('0'));
        else
            printable += character;
    }
    return printable;
}

QString Quoted(std::string_view text)
{
    QString string = QString::fromUtf8(text.data(), qsizetype(text.size()));
    if (string.size() > QuotedLength)
        string = string.left(QuotedLength) + QStringLiteral("...");
    return QLatin1Char('\'') + Printable(string) + QLatin1Char('\'');
}

QString Number(double value)
{
    return QString::number(value, 'g', 6);
}

QString TypeName(const simdjson::dom::element& element)
{
    switch (element.type()) {
    case simdjson::dom::element_type::ARRAY:
        return ZELTPProgramReader::tr("an array");
    case simdjson::dom::element_type::OBJECT:
        return ZELTPProgramReader::tr("an object");
    case simdjson::dom::element_type::STRING:
        return ZELTPProgramReader::tr("a string");
    case simdjson::dom::element_type::BOOL:
        return ZELTPProgramReader::tr("a boolean");
    case simdjson::dom::element_type::NULL_VALUE:
        return ZELTPProgramReader::tr("null");
    case simdjson::dom::element_type::INT64:
    case simdjson::dom::element_type::UINT64:
    case simdjson::dom::element_type::DOUBLE:
        break;
    }
    return ZELTPProgramReader::tr("a number");
}

QString Location::ToString() const
{
    if (!m_parent)
        return QStringLiteral("$");
    if (m_key)
        return m_parent->ToString() + QLatin1Char('.') + QLatin1String(m_key);
    return m_parent->ToString() + QLatin1Char('[') + QString::number(m_index) + QLatin1Char(']');
}

void Value::Fail(const QString& problem) const
{
    throw Problem{m_location.ToString(), problem};
}

Value Value::GetMember(const char* key) const&
{
    simdjson::dom::element member;
    if (GetObject().at_key(key).get(member))
        Fail(ZELTPProgramReader::tr("missing field '%1'").arg(QLatin1String(key)));
    return Value(member, m_location.Member(key));
}

std::optional<Value> Value::FindMember(const char* key) const&
{
    simdjson::dom::element member;
    if (GetObject().at_key(key).get(member))
        return std::nullopt;
    return Value(member, m_location.Member(key));
}

simdjson::dom::array Value::GetArray() const
{
    simdjson::dom::array array;
    if (m_element.get_array().get(array))
        FailType(ZELTPProgramReader::tr("an array"));
    return array;
}

std::string_view Value::GetText() const
{
    std::string_view text;
    if (m_element.get_string().get(text))
        FailType(ZELTPProgramReader::tr("a string"));
    return text;
}

QString Value::GetString() const
{
    const std::string_view text = GetText();
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

double Value::GetNumber() const
{
    double number = 0.0;
    if (m_element.get_double().get(number))
        FailType(ZELTPProgramReader::tr("a number"));
    return number;
}

qint64 Value::GetInteger() const
{
    if (m_element.is_int64())
        return m_element.get_int64().value_unsafe();
    if (m_element.is_uint64())
        Fail(ZELTPProgramReader::tr("integer %1 is too large").arg(m_element.get_uint64().value_unsafe()));
    if (m_element.is_double())
        Fail(ZELTPProgramReader::tr("expected an integer, found %1").arg(Number(GetNumber())));
    FailType(ZELTPProgramReader::tr("an integer"));
}

simdjson::dom::object Value::GetObject() const
{
    simdjson::dom::object object;
    if (m_element.get_object().get(object))
        FailType(ZELTPProgramReader::tr("an object"));
    return object;
}

void Value::FailType(const QString& expected) const
{
    Fail(ZELTPProgramReader::tr("expected %1, found %2").arg(expected, TypeName(m_element)));
}

qsizetype CountEntries(const simdjson::dom::array& array)
{
    const std::size_t count = array.size();
    if (count < SaturatedCount)
        return qsizetype(count);
    qsizetype counted = 0;
    for (auto entry = array.begin(); entry != array.end(); ++entry)
        ++counted;
    return counted;
}

} // namespace ZELTPReading
