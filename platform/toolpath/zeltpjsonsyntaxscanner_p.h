#ifndef ZELTPJSONSYNTAXSCANNER_P_H
#define ZELTPJSONSYNTAXSCANNER_P_H

#include "zeltpjsonvalue_p.h"

#include <QString>
#include <QtGlobal>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace ZELTPReading {

/*
    Finds where a document that simdjson refused stops being JSON, and the
    JSON path to that place. It runs only after a failed parse, so it keeps
    to plain code; it nests no deeper than the parser and keeps one level
    per open array or object.

    simdjson cannot tell this itself. Its DOM parser answers a broken
    document with an error code alone: no byte offset, no path, not even
    which number was out of range. Its On-Demand parser refuses invalid
    UTF-8, unescaped control characters and unclosed strings in its first
    stage, before there is any location; past that, current_location()
    points at the structural character that iteration reached, never into a
    string at a bad escape, and neither parser keeps the keys and indices of
    the path that leads there.
*/
class SyntaxScanner
{
public:
    explicit SyntaxScanner(std::string_view text)
        : m_text(text)
    {
    }

    //! The first syntax error from byte `start` on; none when the scanner
    //! finds the document sound.
    std::optional<Problem> FindError(std::size_t start);

private:
    // An open array or object, and the entry being scanned in it.
    struct Level
    {
        bool isObject = false;
        qsizetype index = 0;
        std::string_view key;
        bool hasEntry = false;
    };

    bool AtEnd() const { return m_position >= m_text.size(); }
    char Next() const { return m_text[m_position]; }

    void SkipWhitespace();
    void ExpectMore() const;
    void ExpectMoreOfString() const;
    // Scans the value that starts here: true when it is complete, false when
    // it opened an array or object whose first entry comes next.
    bool ScanValue();
    bool Open(bool isObject);
    // After an entry of the innermost array or object: true when another
    // entry follows, false when the array or object closed.
    bool ScanAfterEntry();
    void ScanKey();
    // Scans a string and returns its text as written, escapes undecoded.
    std::string_view ScanString();
    void ScanEscape();
    // Scans the "u" and four hexadecimal digits of the escape at `start`.
    unsigned ScanUnicodeEscape(std::size_t start);
    void ScanNumber();
    // Requires a digit next in the number that starts at `start`.
    void ScanDigits(std::size_t start) const;
    void SkipDigits();
    void ScanLiteral();

    std::string_view WordAt(std::size_t start) const;
    QString DescribeNext() const;
    QString Path() const;

    [[noreturn]] void Fail(const QString& what) const { FailAt(m_position, what); }
    [[noreturn]] void FailAt(std::size_t offset, const QString& what) const;

    const std::string_view m_text;
    std::size_t m_position = 0;
    std::vector<Level> m_levels;
};

} // namespace ZELTPReading

#endif // ZELTPJSONSYNTAXSCANNER_P_H
