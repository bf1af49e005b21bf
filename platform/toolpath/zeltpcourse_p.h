#ifndef ZELTPCOURSE_P_H
#define ZELTPCOURSE_P_H

#include "zeltpcourse.h"
#include "zeltpobject_p.h"

#include "zeltpcourselink.h"
#include "zeltplink_p.h"

class ZELTPCoursePrivate : public ZELTPObjectPrivate
{
    Q_DECLARE_PUBLIC(ZELTPCourse)

public:
    explicit ZELTPCoursePrivate(ZELTPCourse* q)
        : ZELTPObjectPrivate(q)
    {
    }

    ZELTPLink<ZELTPCourseLink> retractLink;
};

#endif // ZELTPCOURSE_P_H
