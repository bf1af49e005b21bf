#include "zeltpplydescription.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELTPPlyDescription& ply)
{
    return stream << ply.GetName() << ply.GetOrientation() << qint32(ply.GetPropagationMode());
}

QDataStream& operator>>(QDataStream& stream, ZELTPPlyDescription& ply)
{
    QString name;
    double orientation = 0.0;
    qint32 mode = 0;
    stream >> name >> orientation >> mode;
    ply = ZELTPPlyDescription(name, orientation, ZELCompStrategy::PropagationMode(quint8(mode)));
    return stream;
}
