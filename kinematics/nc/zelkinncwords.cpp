#include "zelkinncwords_p.h"

#include "zelkinafpgcodetexts_p.h"

#include <algorithm>
#include <charconv>

namespace {

bool IsAddressCharacter(QChar c)
{
    return (c >= u'A' && c <= u'Z') || c == u'_';
}

bool IsDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool IsAt(QStringView text, qsizetype at, char16_t c)
{
    return at < text.size() && text[at] == c;
}

bool IsSignAt(QStringView text, qsizetype at)
{
    return IsAt(text, at, u'-') || IsAt(text, at, u'+');
}

qsizetype SkipDigits(QStringView text, qsizetype at)
{
    while (at < text.size() && IsDigit(text[at]))
        ++at;
    return at;
}

bool IsWordCharacter(QChar c)
{
    return IsAddressCharacter(c) || IsDigit(c) || (c >= u'a' && c <= u'z');
}

bool IsCapital(QStringView text, qsizetype at)
{
    return at < text.size() && text[at] >= u'A' && text[at] <= u'Z';
}

bool IsHexDigit(QChar c)
{
    return IsDigit(c) || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

} // namespace

qsizetype ZELKinNCWords::NumberEnd(QStringView text, qsizetype at)
{
    const qsizetype mantissa = IsSignAt(text, at) ? at + 1 : at;
    qsizetype end = SkipDigits(text, mantissa);
    if (IsAt(text, end, u'.')) {
        const qsizetype fractionEnd = SkipDigits(text, end + 1);
        // "5." is a number, a point alone is none.
        if (end > mantissa || fractionEnd > end + 1)
            end = fractionEnd;
    }
    if (end == mantissa)
        return at;
    if (IsAt(text, end, u'e') || IsAt(text, end, u'E')) {
        const qsizetype exponent = IsSignAt(text, end + 1) ? end + 2 : end + 1;
        const qsizetype exponentEnd = SkipDigits(text, exponent);
        if (exponentEnd > exponent)
            end = exponentEnd;
    }
    return end;
}

// Reading a ply back parses every axis word of every line: std::from_chars
// on the word's bytes does it at a fraction of the cost of QString's
// locale-aware parser, with the same correctly rounded result.
double ZELKinNCWords::NumberValue(QStringView number)
{
    // from_chars reads a minus sign only; "+-5" is no number to either.
    const bool plus = number.startsWith(u'+') && !number.mid(1).startsWith(u'-');
    const QStringView text = plus ? number.mid(1) : number;
    char bytes[64];
    if (text.size() > qsizetype(sizeof bytes))
        return number.toDouble();
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].unicode() > 0x7f)
            return number.toDouble();
        bytes[i] = char(text[i].unicode());
    }
    double value = 0.0;
    const char* end = bytes + text.size();
    const std::from_chars_result read = std::from_chars(bytes, end, value);
    return read.ec == std::errc() && read.ptr == end ? value : number.toDouble();
}

QList<ZELKinNCWords::Word> ZELKinNCWords::WordsOf(QStringView code)
{
    QList<Word> words;
    // A posted motion line has a handful of words.
    words.reserve(8);
    // Where the text that starts at a word's value ends: the next quote,
    // carriage return or line feed from there. Found once for all the words
    // before it.
    qsizetype textEnd = -1;
    qsizetype at = 0;
    while (at < code.size()) {
        if (!IsAddressCharacter(code[at])) {
            ++at;
            continue;
        }
        const qsizetype nameBegin = at;
        while (at < code.size() && IsAddressCharacter(code[at]))
            ++at;
        if (at < code.size() && IsDigit(code[at]) && IsAt(code, at + 1, u'='))
            ++at;
        Word word{code.mid(nameBegin, at - nameBegin), QStringView()};
        for (const char16_t optional : {u'=', u'(', u'"'}) {
            if (IsAt(code, at, optional))
                ++at;
        }
        const qsizetype numberEnd = NumberEnd(code, at);
        if (numberEnd > at) {
            word.number = code.mid(at, numberEnd - at);
            at = numberEnd;
        } else {
            if (textEnd < at) {
                textEnd = at;
                while (textEnd < code.size() && code[textEnd] != u'"' && code[textEnd] != u'\r'
                       && code[textEnd] != u'\n')
                    ++textEnd;
            }
            if (textEnd > at && IsAt(code, textEnd, u'"'))
                at = textEnd;
        }
        words.append(word);
    }
    return words;
}

std::optional<ZELKinNCWords::PresetText> ZELKinNCWords::FindPreset(QStringView line)
{
    static const QString open = QStringLiteral("G92(");
    // Nearly every line is a motion line without a bracket: a scan for one
    // character rules those out at a fraction of a text search's cost.
    if (!line.contains(u'('))
        return std::nullopt;
    for (qsizetype at = line.indexOf(open); at >= 0; at = line.indexOf(open, at + 1)) {
        const qsizetype axis = at + open.size();
        qsizetype axisEnd = axis;
        while (axisEnd < line.size() && IsWordCharacter(line[axisEnd]))
            ++axisEnd;
        if (axisEnd == axis || !IsAt(line, axisEnd, u','))
            continue;
        const qsizetype numberEnd = NumberEnd(line, axisEnd + 1);
        if (numberEnd > axisEnd + 1 && IsAt(line, numberEnd, u')'))
            return PresetText{line.mid(axis, axisEnd - axis), line.mid(axisEnd + 1, numberEnd - axisEnd - 1)};
    }
    return std::nullopt;
}

std::optional<ZELKinNCWords::TowEventText> ZELKinNCWords::ParseTowEvent(QStringView line)
{
    static const QString head = QLatin1String(ZELKinAFPGCodeTexts::TowEvent);
    if (!line.startsWith(head))
        return std::nullopt;
    const qsizetype u = head.size();
    const qsizetype code = NumberEnd(line, u);
    if (code == u || !IsCapital(line, code) || !IsAt(line, code + 1, u'/') || !IsCapital(line, code + 2)
        || !IsAt(line, code + 3, u'['))
        return std::nullopt;
    const qsizetype tows = code + 4;
    qsizetype towsEnd = tows;
    while (towsEnd < line.size() && IsHexDigit(line[towsEnd]))
        ++towsEnd;
    if (towsEnd == tows || !IsAt(line, towsEnd, u']'))
        return std::nullopt;
    return TowEventText{line.mid(u, code - u), line.mid(code, 3), line.mid(tows, towsEnd - tows)};
}

bool ZELKinNCWords::IsInExponentNotation(QStringView number)
{
    return std::any_of(number.begin(), number.end(), [](QChar c) { return c == u'e' || c == u'E'; });
}
