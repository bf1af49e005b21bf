#include "zeltpfilename.h"

#include <QCoreApplication>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZELTPFileName", text);
}

QString CodePoint(QChar character)
{
    return QString::number(character.unicode(), 16).toUpper().rightJustified(4, QLatin1Char('0'));
}

} // namespace

QString ZELTPFileName::GetProblem(const QString& name)
{
    if (name.isEmpty())
        return Tr("name is empty");
    for (const QChar character : name) {
        if (character.unicode() == 0)
            return Tr("name contains a NUL character");
        if (character.category() == QChar::Other_Control)
            return Tr("name contains the control character U+%1").arg(CodePoint(character));
        if (character == QLatin1Char('/') || character == QLatin1Char('\\'))
            return Tr("name contains the path separator '%1'").arg(character);
    }
    if (name.contains(QLatin1String("..")))
        return Tr("name contains '..'");
    return QString();
}
