#ifndef ZELTPCOURSELINK_P_H
#define ZELTPCOURSELINK_P_H

#include "zeltpcourselink.h"
#include "zeltpobject_p.h"

#include "zeltpcourse.h"
#include "zeltplink_p.h"
#include "zeltptrajectorylist_p.h"

class ZELTPCourseLinkPrivate : public ZELTPObjectPrivate
{
    Q_DECLARE_PUBLIC(ZELTPCourseLink)

public:
    explicit ZELTPCourseLinkPrivate(ZELTPCourseLink* q)
        : ZELTPObjectPrivate(q)
        , trajectories(q)
    {
    }

    ZELTPCourseLink::PointsDetail pointsDetail = ZELTPCourseLink::PointsDetailFull;
    ZELTPTrajectoryList trajectories;
    ZELTPLink<ZELTPCourse> toCourse;
};

#endif // ZELTPCOURSELINK_P_H
