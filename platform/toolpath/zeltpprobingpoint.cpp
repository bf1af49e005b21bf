#include "zeltpprobingpoint.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELTPProbingPoint& point)
{
    return stream << point.GetDiameter();
}

QDataStream& operator>>(QDataStream& stream, ZELTPProbingPoint& point)
{
    double diameter = 0.0;
    stream >> diameter;
    point = ZELTPProbingPoint(diameter);
    return stream;
}
