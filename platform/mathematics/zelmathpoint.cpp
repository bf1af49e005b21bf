#include "zelmathpoint.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELMathPoint& point)
{
    return stream << point.GetX() << point.GetY() << point.GetZ();
}

QDataStream& operator>>(QDataStream& stream, ZELMathPoint& point)
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    stream >> x >> y >> z;
    point = ZELMathPoint(x, y, z);
    return stream;
}
