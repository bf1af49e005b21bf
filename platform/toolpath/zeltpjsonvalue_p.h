#ifndef ZELTPJSONVALUE_P_H
#define ZELTPJSONVALUE_P_H

#include <QString>
#include <QtGlobal>

#include <simdjson.h>

#include <optional>
#include <string_view>

/*
    The toolpath document reader's access to the parsed JSON: each value
    knows its JSON path, so that any rule the document breaks is reported
    where it is broken.
*/
namespace ZELTPReading {

// Document text quoted in a message is cut to this many characters.
constexpr qsizetype QuotedLength = 40;

// A rule the document breaks: where, and what was expected there. The
// reader adds the document's name when it reports it.
struct Problem
{
    QString location;
    QString text;
};

// A character that would break the message's one line, as an escape.
QString Printable(const QString& text);
// Document text in single quotes, cut to QuotedLength characters.
QString Quoted(std::string_view text);
// A number as a message shows it: six significant digits.
QString Number(double value);
// What a message calls the kind of `element`: "an array", "a number"...
QString TypeName(const simdjson::dom::element& element);

/*
    One step of the JSON path to a value. The steps live on the stack of the
    functions that descend into the document, each pointing at its parent,
    so a path costs nothing until an error spells it out.
*/
class Location
{
public:
    static Location Root() { return Location(nullptr, nullptr, 0); }

    Location Member(const char* key) const { return Location(this, key, 0); }
    Location Entry(qsizetype index) const { return Location(this, nullptr, index); }

    QString ToString() const;

private:
    Location(const Location* parent, const char* key, qsizetype index)
        : m_parent(parent)
        , m_key(key)
        , m_index(index)
    {
    }

    const Location* m_parent;
    const char* m_key;
    qsizetype m_index;
};

/*
    A JSON value and where it is. A child value points at its parent's
    location, so a child must not outlive the value it was taken from: the
    calls that make children take only named values (lvalues).
*/
class Value
{
public:
    Value(const simdjson::dom::element& element, const Location& location)
        : m_element(element)
        , m_location(location)
    {
    }

    [[noreturn]] void Fail(const QString& problem) const;

    //! The member `key` of this object; fails when it is missing.
    Value GetMember(const char* key) const&;
    Value GetMember(const char* key) const&& = delete;

    std::optional<Value> FindMember(const char* key) const&;
    std::optional<Value> FindMember(const char* key) const&& = delete;

    //! Entry `index` of this array, found at `element` by iterating it.
    Value GetEntry(const simdjson::dom::element& element, qsizetype index) const&
    {
        return Value(element, m_location.Entry(index));
    }
    Value GetEntry(const simdjson::dom::element& element, qsizetype index) const&& = delete;

    simdjson::dom::array GetArray() const;
    std::string_view GetText() const;
    QString GetString() const;
    double GetNumber() const;
    qint64 GetInteger() const;

private:
    simdjson::dom::object GetObject() const;
    [[noreturn]] void FailType(const QString& expected) const;

    simdjson::dom::element m_element;
    Location m_location;
};

// The entries of `array`, counted one by one where simdjson's count stops.
qsizetype CountEntries(const simdjson::dom::array& array);

template <typename Function> void ForEachEntry(const Value& array, Function&& function)
{
    qsizetype index = 0;
    for (const simdjson::dom::element element : array.GetArray())
        function(array.GetEntry(element, index++));
}

} // namespace ZELTPReading

#endif // ZELTPJSONVALUE_P_H
