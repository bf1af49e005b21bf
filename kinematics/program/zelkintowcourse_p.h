#ifndef ZELKINTOWCOURSE_P_H
#define ZELKINTOWCOURSE_P_H

#include "zelkintowcourse.h"
#include "zelkincourse_p.h"

#include "zelkincommand.h"
#include "zelkincountedlinklist_p.h"

#include <QList>

class ZELKinAFPMachine;

class ZELKINEMATICS_EXPORT ZELKinTowCoursePrivate : public ZELKinCoursePrivate
{
    Q_DECLARE_PUBLIC(ZELKinTowCourse)

public:
    explicit ZELKinTowCoursePrivate(ZELKinTowCourse* q)
        : ZELKinCoursePrivate(q)
    {
    }

    //! The tow course's own rule (see ZELKinTowCourse).
    int InsertCommand(ZELKinCommand* command, int index) override;
    int IndexOfCommand(ZELKinCommand* command) const override;

    //! The fibre placement machine of the course's program; null when the
    //! course has no procedure, program or machine, or its machine is of
    //! another kind.
    static ZELKinAFPMachine* MachineOf(const ZELKinCourse* course);

    ZELKinCountedLinkList<ZELKinCommand> commands;
    ZELCompTowMask towMask;
    QList<double> towLengths;
    int rollerTows = 0;
};

#endif // ZELKINTOWCOURSE_P_H
