#ifndef ZELTPCOURSELINK_P_H
#define ZELTPCOURSELINK_P_H

#include "zeltpcourselink.h"
#include "zeltpobject_p.h"

class ZELTPCourseLinkPrivate : public ZELTPObjectPrivate
{
    Q_DECLARE_PUBLIC(ZELTPCourseLink)

public:
    explicit ZELTPCourseLinkPrivate(ZELTPCourseLink* q)
        : ZELTPObjectPrivate(q)
    {
    }

    ZELTPCourseLink::PointsDetail pointsDetail = ZELTPCourseLink::PointsDetailFull;
};

#endif // ZELTPCOURSELINK_P_H
