#include "zeltptext.h"

#include <QCoreApplication>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZELTPText", text);
}

QString CodePoint(QChar character)
{
    return QString::number(character.unicode(), 16).toUpper().rightJustified(4, QLatin1Char('0'));
}

// Where some editor or controller starts a new line: an NC block ends there.
bool IsLineEnd(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= 0x000A && code <= 0x000D) || code == 0x0085 || code == 0x2028 || code == 0x2029;
}

} // namespace

QString ZELTPText::DescribeUnfitCharacter(QChar character)
{
    if (character.unicode() == 0)
        return Tr("a NUL character");
    if (IsLineEnd(character))
        return Tr("the line end U+%1").arg(CodePoint(character));
    if (character.category() == QChar::Other_Control)
        return Tr("the control character U+%1").arg(CodePoint(character));
    if (character == QLatin1Char('"'))
        return Tr("a double quote");
    return QString();
}

QString ZELTPText::DescribeFirstUnfitCharacter(const QString& text)
{
    for (const QChar character : text) {
        QString unfit = DescribeUnfitCharacter(character);
        if (!unfit.isEmpty())
            return unfit;
    }
    return QString();
}

QString ZELTPText::GetProblem(const QString& text)
{
    const QString unfit = DescribeFirstUnfitCharacter(text);
    return unfit.isEmpty() ? QString() : Tr("text contains %1").arg(unfit);
}
