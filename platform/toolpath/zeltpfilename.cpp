#include "zeltpfilename.h"

#include "zeltptext.h"

#include <QCoreApplication>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZELTPFileName", text);
}

} // namespace

QString ZELTPFileName::GetProblem(const QString& name)
{
    if (name.isEmpty())
        return Tr("name is empty");
    for (const QChar character : name) {
        const QString unfit = ZELTPText::DescribeUnfitCharacter(character);
        if (!unfit.isEmpty())
            return Tr("name contains %1").arg(unfit);
        if (character == QLatin1Char('/') || character == QLatin1Char('\\'))
            return Tr("name contains the path separator '%1'").arg(character);
    }
    if (name.contains(QLatin1String("..")))
        return Tr("name contains '..'");
    return QString();
}
