#include "zelmathvector.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELMathVector& vector)
{
    return stream << vector.GetX() << vector.GetY() << vector.GetZ();
}

QDataStream& operator>>(QDataStream& stream, ZELMathVector& vector)
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    stream >> x >> y >> z;
    vector = ZELMathVector(x, y, z);
    return stream;
}
