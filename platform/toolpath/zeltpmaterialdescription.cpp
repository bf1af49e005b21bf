#include "zeltpmaterialdescription.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELTPMaterialDescription& material)
{
    return stream << material.GetId() << material.GetName();
}

QDataStream& operator>>(QDataStream& stream, ZELTPMaterialDescription& material)
{
    QString id;
    QString name;
    stream >> id >> name;
    material = ZELTPMaterialDescription(id, name);
    return stream;
}
