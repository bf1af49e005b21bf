#include "zeltpafphead.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELTPAFPHead& head)
{
    return stream << head.GetName() << head.GetTowWidth();
}

QDataStream& operator>>(QDataStream& stream, ZELTPAFPHead& head)
{
    QString name;
    double towWidth = 0.0;
    stream >> name >> towWidth;
    head = ZELTPAFPHead(name, towWidth);
    return stream;
}
