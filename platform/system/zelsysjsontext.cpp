#include "zelsysjsontext.h"

namespace {

QLatin1String ShortEscapeOf(char16_t c)
{
    switch (c) {
    case u'"':
        return QLatin1String("\\\"");
    case u'\\':
        return QLatin1String("\\\\");
    case u'\b':
        return QLatin1String("\\b");
    case u'\f':
        return QLatin1String("\\f");
    case u'\n':
        return QLatin1String("\\n");
    case u'\r':
        return QLatin1String("\\r");
    case u'\t':
        return QLatin1String("\\t");
    default:
        return QLatin1String();
    }
}

bool NeedsUnicodeEscape(char16_t c, ZELSysJsonText::Embedding embedding)
{
    if (c < 0x20)
        return true;
    return embedding == ZELSysJsonText::Embedding::HtmlScript && (c == u'<' || c == 0x2028 || c == 0x2029);
}

} // namespace

void ZELSysJsonText::AppendString(QString& json, QStringView text, Embedding embedding)
{
    json += QLatin1Char('"');
    for (const QChar character : text) {
        const char16_t c = character.unicode();
        const QLatin1String shortEscape = ShortEscapeOf(c);
        if (!shortEscape.isEmpty())
            json += shortEscape;
        else if (NeedsUnicodeEscape(c, embedding))
            json += QStringLiteral("\\u%1").arg(uint(c), 4, 16, QLatin1Char('0'));
        else
            json += character;
    }
    json += QLatin1Char('"');
}

QString ZELSysJsonText::Quoted(QStringView text, Embedding embedding)
{
    QString json;
    json.reserve(text.size() + 2);
    AppendString(json, text, embedding);
    return json;
}
