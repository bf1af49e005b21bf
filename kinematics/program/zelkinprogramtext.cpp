#include "zelkinprogramtext_p.h"

namespace {

// The controller reads each of these as the end of a line.
bool IsLineEnd(QChar c)
{
    const char16_t code = c.unicode();
    return (code >= 0x000A && code <= 0x000D) || code == 0x0085 || code == 0x2028 || code == 0x2029;
}

QString CodePoint(QChar c)
{
    return QStringLiteral("U+%1").arg(QString::number(c.unicode(), 16).toUpper().rightJustified(4, u'0'));
}

} // namespace

QString ZELKinProgramText::GetProblem(const QString& text)
{
    for (const QChar c : text) {
        if (IsLineEnd(c))
            return QStringLiteral("the line end %1").arg(CodePoint(c));
        if (c.category() == QChar::Other_Control)
            return QStringLiteral("the control character %1").arg(CodePoint(c));
        // It would end the quoted strings (GUD_EID="...") early.
        if (c == QLatin1Char('"'))
            return QStringLiteral("a double quote");
    }
    return QString();
}
