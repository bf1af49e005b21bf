#include "zeltpjsonsyntaxscanner_p.h"

#include "zeltpprogramreader.h"

#include <simdjson.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace ZELTPReading {

namespace {

// simdjson refuses deeper nesting; the syntax scan refuses it at the same depth.
constexpr std::size_t MaximumDepth = simdjson::DEFAULT_MAX_DEPTH;

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool IsWordCharacter(char character)
{
    return IsDigit(character) || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
        || character == '_' || character == '.' || character == '+' || character == '-';
}

bool IsIdentifier(std::string_view key)
{
    return !key.empty() && !IsDigit(key.front()) && std::all_of(key.begin(), key.end(), [](char character) {
        return IsWordCharacter(character) && character != '.' && character != '+' && character != '-';
    });
}

// The length of the UTF-8 sequence that opens `text`; 0 when it is not
// valid UTF-8 (overlong forms, surrogates and code points past U+10FFFF
// included).
std::size_t Utf8SequenceLength(std::string_view text)
{
    const auto byte = [&text](std::size_t index) { return index < text.size() ? quint8(text[index]) : 0u; };
    const auto continues = [&](std::size_t index, unsigned low, unsigned high) {
        return byte(index) >= low && byte(index) <= high;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return continues(1, 0x80, 0xBF) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return continues(1, low, high) && continues(2, 0x80, 0xBF) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return continues(1, low, high) && continues(2, 0x80, 0xBF) && continues(3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}

// Whether a number that the grammar accepts and that a double cannot hold is
// too large rather than too small: whether the power of ten of its first
// significant digit is positive. Past the range of doubles the sign of that
// power tells the two apart.
bool IsTooLarge(std::string_view token)
{
    std::size_t at = token.front() == '-' ? 1 : 0;
    const std::size_t integerStart = at;
    while (at < token.size() && IsDigit(token[at]))
        ++at;
    const std::string_view integerPart = token.substr(integerStart, at - integerStart);
    qint64 power = 0;
    const std::size_t significant = integerPart.find_first_not_of('0');
    if (significant != std::string_view::npos) {
        power = qint64(integerPart.size() - significant) - 1;
    } else {
        if (at < token.size() && token[at] == '.')
            ++at;
        const std::size_t fractionStart = at;
        while (at < token.size() && token[at] == '0')
            ++at;
        if (at == token.size() || !IsDigit(token[at]))
            return false;
        power = -qint64(at - fractionStart) - 1;
    }
    const std::size_t exponentAt = token.find_first_of("eE");
    if (exponentAt == std::string_view::npos)
        return power > 0;
    std::size_t digit = exponentAt + 1;
    const bool negative = digit < token.size() && token[digit] == '-';
    if (digit < token.size() && (token[digit] == '-' || token[digit] == '+'))
        ++digit;
    // Saturated far beyond any exponent a double reaches.
    constexpr qint64 ExponentLimit = 1000000000;
    qint64 exponent = 0;
    for (; digit < token.size(); ++digit)
        exponent = std::min(exponent * 10 + (token[digit] - '0'), ExponentLimit);
    return power + (negative ? -exponent : exponent) > 0;
}

// Whether a number that the grammar accepts is one simdjson takes: integers
// within 64 bits, other numbers finite (too small ones read as zero).
bool IsNumberInRange(std::string_view token, bool integer)
{
    const char* const first = token.data();
    const char* const last = first + token.size();
    if (!integer) {
        double value = 0.0;
        return std::from_chars(first, last, value).ec != std::errc::result_out_of_range || !IsTooLarge(token);
    }
    if (token.front() == '-') {
        std::int64_t value = 0;
        return std::from_chars(first, last, value).ec == std::errc();
    }
    std::uint64_t value = 0;
    return std::from_chars(first, last, value).ec == std::errc();
}

QString Hex(quint8 byte)
{
    return QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
}

} // namespace

std::optional<Problem> SyntaxScanner::FindError(std::size_t start)
{
    m_position = start;
    try {
        SkipWhitespace();
        if (AtEnd())
            Fail(ZELTPProgramReader::tr("the document is empty"));
        bool valueNext = true;
        for (;;) {
            if (valueNext)
                valueNext = !ScanValue();
            else if (!m_levels.empty())
                valueNext = ScanAfterEntry();
            else
                break;
        }
        SkipWhitespace();
        if (!AtEnd())
            Fail(ZELTPProgramReader::tr("expected the end of the document, found %1").arg(DescribeNext()));
    } catch (const Problem& problem) {
        return problem;
    }
    return std::nullopt;
}

void SyntaxScanner::SkipWhitespace()
{
    while (!AtEnd() && (Next() == ' ' || Next() == '\t' || Next() == '\n' || Next() == '\r'))
        ++m_position;
}

void SyntaxScanner::ExpectMore() const
{
    if (AtEnd())
        Fail(ZELTPProgramReader::tr("unexpected end of the document"));
}

void SyntaxScanner::ExpectMoreOfString() const
{
    if (AtEnd())
        Fail(ZELTPProgramReader::tr("unexpected end of the document in a string"));
}

bool SyntaxScanner::ScanValue()
{
    SkipWhitespace();
    ExpectMore();
    const char first = Next();
    if (first == '[' || first == '{')
        return Open(first == '{');
    if (first == '"')
        ScanString();
    else if (first == '-' || IsDigit(first))
        ScanNumber();
    else
        ScanLiteral();
    return true;
}

bool SyntaxScanner::Open(bool isObject)
{
    if (m_levels.size() >= MaximumDepth)
        Fail(ZELTPProgramReader::tr("nested deeper than %1 levels").arg(MaximumDepth));
    ++m_position;
    m_levels.push_back(Level{isObject, 0, std::string_view(), !isObject});
    SkipWhitespace();
    ExpectMore();
    if (Next() == (isObject ? '}' : ']')) {
        ++m_position;
        m_levels.pop_back();
        return true;
    }
    if (isObject)
        ScanKey();
    return false;
}

bool SyntaxScanner::ScanAfterEntry()
{
    SkipWhitespace();
    ExpectMore();
    Level& level = m_levels.back();
    const char closing = level.isObject ? '}' : ']';
    if (Next() == ',') {
        ++m_position;
        ++level.index;
        if (level.isObject)
            ScanKey();
        return true;
    }
    if (Next() != closing)
        Fail(ZELTPProgramReader::tr("expected ',' or '%1', found %2").arg(QLatin1Char(closing)).arg(DescribeNext()));
    ++m_position;
    m_levels.pop_back();
    return false;
}

void SyntaxScanner::ScanKey()
{
    Level& level = m_levels.back();
    level.hasEntry = false;
    SkipWhitespace();
    ExpectMore();
    if (Next() != '"')
        Fail(ZELTPProgramReader::tr("expected a string key, found %1").arg(DescribeNext()));
    level.key = ScanString();
    level.hasEntry = true;
    SkipWhitespace();
    ExpectMore();
    if (Next() != ':')
        Fail(ZELTPProgramReader::tr("expected ':', found %1").arg(DescribeNext()));
    ++m_position;
}

std::string_view SyntaxScanner::ScanString()
{
    const std::size_t start = ++m_position;
    for (;;) {
        ExpectMoreOfString();
        const quint8 byte = quint8(Next());
        if (byte == '"')
            break;
        if (byte == '\\') {
            ScanEscape();
            continue;
        }
        if (byte < 0x20)
            Fail(ZELTPProgramReader::tr("unescaped control character 0x%1 in a string").arg(Hex(byte)));
        const std::size_t length = Utf8SequenceLength(m_text.substr(m_position));
        if (length == 0)
            Fail(ZELTPProgramReader::tr("invalid UTF-8 in a string"));
        m_position += length;
    }
    const std::string_view text = m_text.substr(start, m_position - start);
    ++m_position;
    return text;
}

void SyntaxScanner::ScanEscape()
{
    const std::size_t start = m_position++;
    ExpectMoreOfString();
    constexpr std::string_view SimpleEscapes = "\"\\/bfnrt";
    if (SimpleEscapes.find(Next()) != std::string_view::npos) {
        ++m_position;
        return;
    }
    const unsigned code = ScanUnicodeEscape(start);
    if (code >= 0xDC00 && code <= 0xDFFF)
        FailAt(start, ZELTPProgramReader::tr("unpaired surrogate in a string"));
    if (code >= 0xD800 && code <= 0xDBFF) {
        const std::size_t low = m_position;
        if (m_text.substr(low, 2) != "\\u")
            FailAt(start, ZELTPProgramReader::tr("unpaired surrogate in a string"));
        ++m_position;
        const unsigned second = ScanUnicodeEscape(low);
        if (second < 0xDC00 || second > 0xDFFF)
            FailAt(start, ZELTPProgramReader::tr("unpaired surrogate in a string"));
    }
}

unsigned SyntaxScanner::ScanUnicodeEscape(std::size_t start)
{
    unsigned code = 0;
    const auto [end, error] = std::from_chars(m_text.data() + m_position + 1,
                                              m_text.data() + std::min(m_position + 5, m_text.size()), code, 16);
    if (Next() != 'u' || error != std::errc() || end != m_text.data() + m_position + 5)
        FailAt(start,
               ZELTPProgramReader::tr("invalid escape %1 in a string")
                   .arg(Quoted(m_text.substr(start, Next() == 'u' ? 6 : 2))));
    m_position += 5;
    return code;
}

void SyntaxScanner::ScanNumber()
{
    const std::size_t start = m_position;
    if (Next() == '-')
        ++m_position;
    bool integer = true;
    ScanDigits(start);
    if (Next() == '0')
        ++m_position;
    else
        SkipDigits();
    if (!AtEnd() && Next() == '.') {
        integer = false;
        ++m_position;
        ScanDigits(start);
        SkipDigits();
    }
    if (!AtEnd() && (Next() == 'e' || Next() == 'E')) {
        integer = false;
        ++m_position;
        if (!AtEnd() && (Next() == '+' || Next() == '-'))
            ++m_position;
        ScanDigits(start);
        SkipDigits();
    }
    const std::string_view token = m_text.substr(start, m_position - start);
    if (!IsNumberInRange(token, integer))
        FailAt(start, ZELTPProgramReader::tr("number %1 is out of range").arg(Quoted(token)));
}

void SyntaxScanner::ScanDigits(std::size_t start) const
{
    if (AtEnd() || !IsDigit(Next()))
        FailAt(start, ZELTPProgramReader::tr("invalid number %1").arg(Quoted(WordAt(start))));
}

void SyntaxScanner::SkipDigits()
{
    while (!AtEnd() && IsDigit(Next()))
        ++m_position;
}

void SyntaxScanner::ScanLiteral()
{
    for (const std::string_view literal : {"true", "false", "null"}) {
        const std::size_t end = m_position + literal.size();
        if (m_text.substr(m_position, literal.size()) == literal
            && (end >= m_text.size() || !IsWordCharacter(m_text[end]))) {
            m_position = end;
            return;
        }
    }
    Fail(ZELTPProgramReader::tr("expected a value, found %1").arg(DescribeNext()));
}

std::string_view SyntaxScanner::WordAt(std::size_t start) const
{
    std::size_t end = start;
    while (end < m_text.size() && end - start < std::size_t(QuotedLength) && IsWordCharacter(m_text[end]))
        ++end;
    return m_text.substr(start, std::max<std::size_t>(end - start, 1));
}

QString SyntaxScanner::DescribeNext() const
{
    if (AtEnd())
        return ZELTPProgramReader::tr("the end of the document");
    const char next = Next();
    if (IsWordCharacter(next))
        return Quoted(WordAt(m_position));
    if (next > 0x20 && next < 0x7F)
        return QStringLiteral("'%1'").arg(QLatin1Char(next));
    return ZELTPProgramReader::tr("byte 0x%1").arg(Hex(quint8(next)));
}

QString SyntaxScanner::Path() const
{
    QString path = QStringLiteral("$");
    for (const Level& level : m_levels) {
        if (!level.hasEntry)
            break;
        if (!level.isObject)
            path += QLatin1Char('[') + QString::number(level.index) + QLatin1Char(']');
        else if (IsIdentifier(level.key) && level.key.size() <= std::size_t(QuotedLength))
            path += QLatin1Char('.') + QString::fromUtf8(level.key.data(), qsizetype(level.key.size()));
        else
            path += QStringLiteral("[%1]").arg(Quoted(level.key));
    }
    return path;
}

void SyntaxScanner::FailAt(std::size_t offset, const QString& what) const
{
    throw Problem{Path(), ZELTPProgramReader::tr("invalid JSON at byte %1: %2").arg(offset).arg(what)};
}

} // namespace ZELTPReading
