#ifndef ZELKINCOURSE_P_H
#define ZELKINCOURSE_P_H

#include "zelkincourse.h"
#include "zelkinscript_p.h"

#include "zelkincountedlink_p.h"
#include "zelkinrolllayupprocedure.h"

#include <zeltpcourse.h>

// Leaves InsertCommand and IndexOfCommand to the concrete kinds of course,
// which keep the commands.
class ZELKINEMATICS_EXPORT ZELKinCoursePrivate : public ZELKinScriptPrivate
{
    Q_DECLARE_PUBLIC(ZELKinCourse)

public:
    explicit ZELKinCoursePrivate(ZELKinCourse* q)
        : ZELKinScriptPrivate(q)
    {
    }

    ZELKinCountedLink<ZELKinRollLayupProcedure> procedure;
    int index = 0;
    QString roller;
    QString material;
    ZELKinCountedLink<const ZELTPCourse> toolPathCourse;
};

#endif // ZELKINCOURSE_P_H
