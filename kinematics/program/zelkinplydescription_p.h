#ifndef ZELKINPLYDESCRIPTION_P_H
#define ZELKINPLYDESCRIPTION_P_H

#include "zelkinplydescription.h"

#include <QSharedData>

#include <limits>

//! The shared body of ZELKinPlyDescription.
class ZELKinPlyDescriptionPrivate : public QSharedData
{
public:
    QString name;
    QString material;
    double angle = std::numeric_limits<double>::quiet_NaN();
    ZELCompStrategy::PropagationMode method = ZELCompStrategy::PropagationMode(0);
    double area = std::numeric_limits<double>::quiet_NaN();
};

#endif // ZELKINPLYDESCRIPTION_P_H
