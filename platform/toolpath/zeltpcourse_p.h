#ifndef ZELTPCOURSE_P_H
#define ZELTPCOURSE_P_H

#include "zeltpcourse.h"
#include "zeltpobject_p.h"

class ZELTPCoursePrivate : public ZELTPObjectPrivate
{
    Q_DECLARE_PUBLIC(ZELTPCourse)

public:
    explicit ZELTPCoursePrivate(ZELTPCourse* q)
        : ZELTPObjectPrivate(q)
    {
    }
};

#endif // ZELTPCOURSE_P_H
