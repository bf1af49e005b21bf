#include "zelkingcoderecord.h"
#include "zelkingcoderecord_p.h"

#include <QRegularExpression>
#include <QStringView>

#include <algorithm>

namespace {

const QString GName = QStringLiteral("G");
const QString MName = QStringLiteral("M");

// One word: the name, then "=", "(" and a double quote, each optional, then
// the value, either quoted text or a number. Compiled once, on first use;
// a compiled expression may be matched from several threads.
const QRegularExpression& WordPattern()
{
    static const QRegularExpression pattern = [] {
        QRegularExpression expression(
            QStringLiteral(R"re(([A-Z_]+(?:\d(?=\=))?)\=?\(?\"?((?:[^\"\r\n]+(?=\"))|(?:-?\d+(?:\.\d+)?))?)re"));
        expression.optimize();
        return expression;
    }();
    return pattern;
}

QRegularExpressionMatchIterator MatchWords(QStringView code)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    return WordPattern().globalMatchView(code);
#else
    return WordPattern().globalMatch(code);
#endif
}

// The values of `name`, the latest first, as unsigned decimal numbers.
QList<unsigned> GetCodes(const ZELKinGCodeRecordPrivate::Words& words, const QString& name)
{
    QList<unsigned> codes;
    for (auto [it, end] = words.equal_range(name); it != end; ++it)
        codes.append(it->toUInt(nullptr, 10));
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
    const qsizetype semicolon = text.indexOf(QLatin1Char(';'));
    // Without a semicolon the whole line is both the code and the comment.
    const QStringView code = semicolon < 0 ? QStringView(text) : QStringView(text).left(semicolon);
    comment = semicolon < 0 ? text : text.mid(semicolon + 1);

    QRegularExpressionMatchIterator matches = MatchWords(code);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        words.insert(match.capturedView(1).toString(), match.capturedView(2).toString());
    }
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
    return GetCodes(d->words, GName);
}

QList<unsigned> ZELKinGCodeRecord::GetMCodes() const
{
    Q_D(const ZELKinGCodeRecord);
    return GetCodes(d->words, MName);
}

QStringList ZELKinGCodeRecord::GetVariables() const
{
    Q_D(const ZELKinGCodeRecord);
    QStringList names = d->words.keys();
    names.removeAll(GName);
    names.removeAll(MName);
    return names;
}

QString ZELKinGCodeRecord::GetVariableValue(const QString& name) const
{
    Q_D(const ZELKinGCodeRecord);
    return d->words.value(name);
}

QStringList ZELKinGCodeRecord::GetVariableValues(const QString& name) const
{
    Q_D(const ZELKinGCodeRecord);
    QStringList values = d->words.values(name);
    std::reverse(values.begin(), values.end());
    return values;
}

bool ZELKinGCodeRecord::IsVariable(const QString& name) const
{
    Q_D(const ZELKinGCodeRecord);
    return d->words.contains(name);
}
