#ifndef ZELKINROLLLAYUPPOSITION_P_H
#define ZELKINROLLLAYUPPOSITION_P_H

#include "zelkinrolllayupposition.h"
#include "zelkinposition_p.h"

#include <limits>

class ZELKINEMATICS_EXPORT ZELKinRollLayupPositionPrivate : public ZELKinPositionPrivate
{
    Q_DECLARE_PUBLIC(ZELKinRollLayupPosition)

public:
    explicit ZELKinRollLayupPositionPrivate(ZELKinRollLayupPosition* q)
        : ZELKinPositionPrivate(q)
    {
    }

    double pAngle = std::numeric_limits<double>::quiet_NaN();
    double qAngle = std::numeric_limits<double>::quiet_NaN();
    double smoothAngle = std::numeric_limits<double>::quiet_NaN();
    int nIndex = 0;
};

#endif // ZELKINROLLLAYUPPOSITION_P_H
