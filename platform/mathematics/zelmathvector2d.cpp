#include "zelmathvector2d.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELMathVector2D& vector)
{
    return stream << vector.GetX() << vector.GetY();
}

QDataStream& operator>>(QDataStream& stream, ZELMathVector2D& vector)
{
    double x = 0.0;
    double y = 0.0;
    stream >> x >> y;
    vector = ZELMathVector2D(x, y);
    return stream;
}
