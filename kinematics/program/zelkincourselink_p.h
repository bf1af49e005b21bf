#ifndef ZELKINCOURSELINK_P_H
#define ZELKINCOURSELINK_P_H

#include "zelkincourselink.h"
#include "zelkinscript_p.h"

#include "zelkincommand.h"
#include "zelkincountedlink_p.h"
#include "zelkincountedlinklist_p.h"
#include "zelkinrolllayupprocedure.h"

#include <zeltpcourselink.h>

class ZELKINEMATICS_EXPORT ZELKinCourseLinkPrivate : public ZELKinScriptPrivate
{
    Q_DECLARE_PUBLIC(ZELKinCourseLink)

public:
    explicit ZELKinCourseLinkPrivate(ZELKinCourseLink* q)
        : ZELKinScriptPrivate(q)
    {
    }

    //! The common insertion rule.
    int InsertCommand(ZELKinCommand* command, int index) override;
    int IndexOfCommand(ZELKinCommand* command) const override;

    ZELKinCountedLink<ZELKinRollLayupProcedure> procedure;
    int index = 0;
    ZELKinCountedLinkList<ZELKinCommand> commands;
    ZELKinCountedLink<const ZELTPCourseLink> toolPathCourseLink;
};

#endif // ZELKINCOURSELINK_P_H
