#include "zelkinncformat_p.h"

QString ZELKinNCFormat::Fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

QString ZELKinNCFormat::General(double value)
{
    return QString::number(value, 'g', 6);
}
