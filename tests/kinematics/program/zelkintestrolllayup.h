#ifndef ZELKINTESTROLLLAYUP_H
#define ZELKINTESTROLLLAYUP_H

#include <zelkintestaccess.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <QDataStream>
#include <QList>

#include <algorithm>
#include <initializer_list>

namespace ZELTest {

//! A 16-tow fibre placement machine with a program and an empty roll layup
//! procedure in it.
struct RollLayupFixture
{
    explicit RollLayupFixture(const ZELKinTestHead& head = ZELKinTestHead())
        : machine(ZELKinTestAccess::CreateMachine(&container, head))
        , program(ZELKinTestAccess::CreateProgram(machine))
        , procedure(ZELKinTestAccess::CreateRollLayupProcedure(program, 2540.0, 1270.0))
    {
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    ZELKinProgram* program;
    ZELKinRollLayupProcedure* procedure;
};

//! A new link at the end of the procedure's links, holding `positions`
//! positions.
inline ZELKinCourseLink* AddLink(ZELKinRollLayupProcedure* procedure, int positions)
{
    ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(procedure);
    for (int i = 0; i < positions; ++i)
        ZELKinTestAccess::CreatePosition(link);
    return link;
}

//! A new tow course at the end of the procedure's courses, with the
//! machine's maximum mask, holding `positions` roll layup positions.
inline ZELKinTowCourse* AddCourse(ZELKinRollLayupProcedure* procedure, int positions)
{
    const auto* machine = qobject_cast<const ZELKinAFPMachine*>(procedure->GetProgram()->GetMachine());
    ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(procedure, machine->GetMaximumMask());
    for (int i = 0; i < positions; ++i)
        ZELKinTestAccess::CreateRollLayupPosition(course);
    return course;
}

//! Links and courses made in laying order (link 0, course 0, link 1, ...),
//! each holding as many positions as its entry says; links left over after
//! the last course come at the end.
inline void AddLinksAndCourses(ZELKinRollLayupProcedure* procedure, std::initializer_list<int> linkSizes,
                               std::initializer_list<int> courseSizes)
{
    const QList<int> links(linkSizes);
    const QList<int> courses(courseSizes);
    for (int i = 0; i < std::max(links.size(), courses.size()); ++i) {
        if (i < links.size())
            AddLink(procedure, links.at(i));
        if (i < courses.size())
            AddCourse(procedure, courses.at(i));
    }
}

//! The first fields a roll layup position reads when it is loaded from
//! `record`: two doubles and a 32-bit integer from the start of the record.
struct RecordHead
{
    double pAngle;
    double qAngle;
    qint32 nIndex;
};

inline RecordHead ReadRecordHead(const QByteArray& record)
{
    QDataStream in(record);
    in.setVersion(ZELGeoStream::DataStreamVersion);
    RecordHead head{};
    in >> head.pAngle >> head.qAngle >> head.nIndex;
    return head;
}

//! One row of an insertion table: a script holding commands 0 and 1 gets a
//! new command (2) at `index`.
struct InsertCase
{
    const char* name;
    int index;
    int expectedIndex;        // the new command's index, or -1 when it throws
    const char* message;      // the exception's, when it throws
    QList<int> expectedOrder; // commands 0, 1 and 2 in the script's order afterwards
};
ZELTEST_PRINT_CASE_BY_NAME(InsertCase);

//! The commands of `before`, followed by `inserted` when there is one, in
//! the order that `insertCase` expects of the script afterwards.
inline QList<ZELKinCommand*> ExpectedOrder(QList<ZELKinCommand*> before, ZELKinCommand* inserted,
                                           const InsertCase& insertCase)
{
    if (inserted)
        before.append(inserted);
    QList<ZELKinCommand*> expected;
    for (const int which : insertCase.expectedOrder)
        expected.append(before.at(which));
    return expected;
}

} // namespace ZELTest

#endif // ZELKINTESTROLLLAYUP_H
