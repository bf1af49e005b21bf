#include "zelmathpoint.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELMathPoint& point)
{
    return stream << point.m_fromOrigin;
}

QDataStream& operator>>(QDataStream& stream, ZELMathPoint& point)
{
    return stream >> point.m_fromOrigin;
}
