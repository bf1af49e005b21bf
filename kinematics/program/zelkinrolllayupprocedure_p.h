#ifndef ZELKINROLLLAYUPPROCEDURE_P_H
#define ZELKINROLLLAYUPPROCEDURE_P_H

#include "zelkinrolllayupprocedure.h"
#include "zelkinprocedure_p.h"

#include "zelkincourse.h"
#include "zelkincourselink.h"
#include "zelkincountedlinklist_p.h"

#include <limits>

class ZELKINEMATICS_EXPORT ZELKinRollLayupProcedurePrivate : public ZELKinProcedurePrivate
{
    Q_DECLARE_PUBLIC(ZELKinRollLayupProcedure)

public:
    explicit ZELKinRollLayupProcedurePrivate(ZELKinRollLayupProcedure* q)
        : ZELKinProcedurePrivate(q)
    {
    }

    static ZELKinRollLayupProcedurePrivate* get(ZELKinRollLayupProcedure* procedure)
    {
        return procedure->d_func();
    }

    //! Appends a course that its constructor has linked to this procedure
    //! and returns its index.
    int AppendCourse(ZELKinCourse* course);
    //! Appends a link that its constructor has linked to this procedure and
    //! returns its index.
    int AppendCourseLink(ZELKinCourseLink* link);

    //! The children in flat command order: link 0, course 0, link 1, ...
    //! A course without a link before it is preceded by a null entry.
    QList<ZELKinScript*> GetChildrenInCommandOrder() const;

    ZELKinCountedLinkList<ZELKinCourse> courses;
    ZELKinCountedLinkList<ZELKinCourseLink> courseLinks;
    QList<ZELKinPlyDescription> plies;
    double addFeedrate = std::numeric_limits<double>::quiet_NaN();
    double cutFeedrate = std::numeric_limits<double>::quiet_NaN();
};

#endif // ZELKINROLLLAYUPPROCEDURE_P_H
