#include "zeltproller.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELTPRoller& roller)
{
    return stream << roller.GetName() << roller.GetWidth();
}

QDataStream& operator>>(QDataStream& stream, ZELTPRoller& roller)
{
    QString name;
    double width = 0.0;
    stream >> name >> width;
    roller = ZELTPRoller(name, width);
    return stream;
}
