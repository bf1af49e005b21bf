#ifndef ZELTPROLLLAYUPPROCEDURE_P_H
#define ZELTPROLLLAYUPPROCEDURE_P_H

#include "zeltprolllayupprocedure.h"
#include "zeltpprocedure_p.h"

#include "zeltpcourselink.h"
#include "zeltplink_p.h"

#include <limits>

class ZELTPRollLayupProcedurePrivate : public ZELTPProcedurePrivate
{
    Q_DECLARE_PUBLIC(ZELTPRollLayupProcedure)

public:
    explicit ZELTPRollLayupProcedurePrivate(ZELTPRollLayupProcedure* q)
        : ZELTPProcedurePrivate(q)
    {
    }

    double addingFeedrate = std::numeric_limits<double>::quiet_NaN();
    double cuttingFeedrate = std::numeric_limits<double>::quiet_NaN();
    ZELTPMaterialDescription material;
    double totalMaterialLength = 0.0;
    QList<ZELTPPlyDescription> plies;
    ZELTPLink<ZELTPCourseLink> approachLink;
};

#endif // ZELTPROLLLAYUPPROCEDURE_P_H
