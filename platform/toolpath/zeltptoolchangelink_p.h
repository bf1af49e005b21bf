#ifndef ZELTPTOOLCHANGELINK_P_H
#define ZELTPTOOLCHANGELINK_P_H

#include "zeltptoolchangelink.h"
#include "zeltpcourselink_p.h"

#include "zeltppoint.h"

class ZELTPToolChangeLinkPrivate : public ZELTPCourseLinkPrivate
{
    Q_DECLARE_PUBLIC(ZELTPToolChangeLink)

public:
    explicit ZELTPToolChangeLinkPrivate(ZELTPToolChangeLink* q)
        : ZELTPCourseLinkPrivate(q)
    {
    }

    ZELTPLink<ZELTPPoint> toolRemovePoint;
    ZELTPMachineConfiguration previousConfiguration;
    ZELTPMachineConfiguration nextConfiguration;
};

#endif // ZELTPTOOLCHANGELINK_P_H
