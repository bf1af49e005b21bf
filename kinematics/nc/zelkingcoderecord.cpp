#include "zelkingcoderecord.h"
#include "zelkingcoderecord_p.h"

#include <QStringView>

namespace {

const QString GName = QStringLiteral("G");
const QString MName = QStringLiteral("M");

bool IsNameChar(QChar unit)
{
    const char16_t c = unit.unicode();
    return (c >= u'A' && c <= u'Z') || c == u'_';
}

// ASCII digits only: other scripts' digits are no part of a number.
bool IsDigit(QChar unit)
{
    const char16_t c = unit.unicode();
    return c >= u'0' && c <= u'9';
}

bool IsAt(QStringView code, qsizetype at, char16_t c)
{
    return at < code.size() && code[at] == c;
}

qsizetype SkipDigits(QStringView code, qsizetype at)
{
    while (at < code.size() && IsDigit(code[at]))
        ++at;
    return at;
}

// Where the next double quote, carriage return or line feed stands in the
// code part, asked for positions that only grow. Each answer holds until the
// position passes it, so that a line of many words is scanned for them once
// in all, not once a word.
class QuotedTextEnd
{
public:
    explicit QuotedTextEnd(QStringView code)
        : m_code(code)
    {
    }

    qsizetype From(qsizetype at)
    {
        if (m_end < at) {
            m_end = at;
            while (m_end < m_code.size() && m_code[m_end] != u'"' && m_code[m_end] != u'\r' && m_code[m_end] != u'\n')
                ++m_end;
        }
        return m_end;
    }

private:
    const QStringView m_code;
    qsizetype m_end = -1;
};

// The end of the value that starts at `at`, or `at` when there is none.
// Quoted text wins: a run without quote, carriage return or line feed counts
// only when a quote ends it. Otherwise a number: an optional minus sign,
// digits, and a point only together with the digits after it.
qsizetype ValueEnd(QStringView code, qsizetype at, QuotedTextEnd& quotedTextEnd)
{
    const qsizetype end = quotedTextEnd.From(at);
    if (end > at && IsAt(code, end, u'"'))
        return end;

    const qsizetype digits = IsAt(code, at, u'-') ? at + 1 : at;
    const qsizetype integerEnd = SkipDigits(code, digits);
    if (integerEnd == digits)
        return at;
    if (IsAt(code, integerEnd, u'.')) {
        const qsizetype fractionEnd = SkipDigits(code, integerEnd + 1);
        if (fractionEnd > integerEnd + 1)
            return fractionEnd;
    }
    return integerEnd;
}

// Scans `code`, the start of the line, for words, left to right: a word
// starts at the next capital or underscore, and anything else between words
// is skipped.
ZELKinGCodeRecordPrivate::Words ScanWords(QStringView code)
{
    ZELKinGCodeRecordPrivate::Words words;
    QuotedTextEnd quotedTextEnd(code);
    qsizetype at = 0;
    while (at < code.size()) {
        if (!IsNameChar(code[at])) {
            ++at;
            continue;
        }
        ZELKinGCodeRecordPrivate::Word word;
        word.nameBegin = at;
        while (at < code.size() && IsNameChar(code[at]))
            ++at;
        // One digit joins the name only when "=" follows it ("R1=16").
        if (at < code.size() && IsDigit(code[at]) && IsAt(code, at + 1, u'='))
            ++at;
        word.nameLength = at - word.nameBegin;
        for (const char16_t optional : {u'=', u'(', u'"'}) {
            if (IsAt(code, at, optional))
                ++at;
        }
        const qsizetype valueEnd = ValueEnd(code, at, quotedTextEnd);
        word.valueBegin = at;
        word.valueLength = valueEnd - at;
        at = valueEnd;
        words.append(word);
    }
    return words;
}

// The values of `name`, the latest first, as unsigned decimal numbers.
QList<unsigned> GetCodes(const ZELKinGCodeRecordPrivate& d, const QString& name)
{
    QList<unsigned> codes;
    for (auto it = d.words.crbegin(); it != d.words.crend(); ++it) {
        if (d.NameOf(*it) == name)
            codes.append(d.ValueOf(*it).toUInt(nullptr, 10));
    }
    return codes;
}

} // namespace

ZELKinGCodeRecordPrivate* ZELKinGCodeRecordPrivate::SharedEmpty()
{
    // The extra reference keeps the count above zero for good.
    static ZELKinGCodeRecordPrivate* const empty = [] {
        auto* body = new ZELKinGCodeRecordPrivate;
        body->ref.ref();
        return body;
    }();
    return empty;
}

void ZELKinGCodeRecordPrivate::Parse(const QString& text)
{
    line = text;
    const qsizetype semicolon = text.indexOf(QLatin1Char(';'));
    // Without a semicolon the whole line is both the code and the comment.
    const QStringView code = semicolon < 0 ? QStringView(text) : QStringView(text).left(semicolon);
    comment = semicolon < 0 ? text : text.mid(semicolon + 1);
    words = ScanWords(code);
}

ZELKinGCodeRecord::ZELKinGCodeRecord()
    : d_ptr(ZELKinGCodeRecordPrivate::SharedEmpty())
{
}

ZELKinGCodeRecord::ZELKinGCodeRecord(unsigned lineNumber, const QString& text)
    : ZELKinGCodeRecord()
{
    // Off the shared empty body before the first write.
    d_ptr.detach();
    Q_D(ZELKinGCodeRecord);
    d->lineNumber = lineNumber;
    d->Parse(text);
}

ZELKinGCodeRecord::ZELKinGCodeRecord(const ZELKinGCodeRecord& other) = default;

ZELKinGCodeRecord& ZELKinGCodeRecord::operator=(const ZELKinGCodeRecord& other) = default;

ZELKinGCodeRecord::~ZELKinGCodeRecord() = default;

unsigned ZELKinGCodeRecord::GetLineNumber() const
{
    Q_D(const ZELKinGCodeRecord);
    return d->lineNumber;
}

QString ZELKinGCodeRecord::GetComment() const
{
    Q_D(const ZELKinGCodeRecord);
    return d->comment;
}

QList<unsigned> ZELKinGCodeRecord::GetGCodes() const
{
    Q_D(const ZELKinGCodeRecord);
    return GetCodes(*d, GName);
}

QList<unsigned> ZELKinGCodeRecord::GetMCodes() const
{
    Q_D(const ZELKinGCodeRecord);
    return GetCodes(*d, MName);
}

QStringList ZELKinGCodeRecord::GetVariables() const
{
    Q_D(const ZELKinGCodeRecord);
    QStringList names;
    for (const ZELKinGCodeRecordPrivate::Word& word : d->words) {
        const QStringView name = d->NameOf(word);
        if (name != GName && name != MName)
            names.append(name.toString());
    }
    return names;
}

QString ZELKinGCodeRecord::GetVariableValue(const QString& name) const
{
    Q_D(const ZELKinGCodeRecord);
    for (auto it = d->words.crbegin(); it != d->words.crend(); ++it) {
        if (d->NameOf(*it) == name)
            return d->ValueOf(*it).toString();
    }
    return QString();
}

QStringList ZELKinGCodeRecord::GetVariableValues(const QString& name) const
{
    Q_D(const ZELKinGCodeRecord);
    QStringList values;
    for (const ZELKinGCodeRecordPrivate::Word& word : d->words) {
        if (d->NameOf(word) == name)
            values.append(d->ValueOf(word).toString());
    }
    return values;
}

QList<QPair<QString, QString>> ZELKinGCodeRecord::GetWords() const
{
    Q_D(const ZELKinGCodeRecord);
    QList<QPair<QString, QString>> words;
    words.reserve(d->words.size());
    for (const ZELKinGCodeRecordPrivate::Word& word : d->words)
        words.append({d->NameOf(word).toString(), d->ValueOf(word).toString()});
    return words;
}

bool ZELKinGCodeRecord::IsVariable(const QString& name) const
{
    Q_D(const ZELKinGCodeRecord);
    for (const ZELKinGCodeRecordPrivate::Word& word : d->words) {
        if (d->NameOf(word) == name)
            return true;
    }
    return false;
}
