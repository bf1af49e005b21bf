#include "zelkintowwidthwarning.h"

#include <zeltpcourselink.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptowcourse.h>

#include <QSet>
#include <QtDebug>

#include <cmath>

namespace {

constexpr double kTowWidthTolerance = 0.001; // mm

} // namespace

ZELKinTowWidthWarning::ZELKinTowWidthWarning(double machineWidth)
    : m_machineWidth(machineWidth)
{
}

void ZELKinTowWidthWarning::Inspect(int index, const ZELTPProcedure* procedure)
{
    const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(procedure);
    if (!layup)
        return;
    QSet<const ZELTPCourseLink*> walked;
    const ZELTPCourseLink* link = layup->GetApproachLink();
    for (int course = 0; link && link->GetToCourse() && !walked.contains(link); ++course) {
        walked.insert(link);
        const auto* towCourse = qobject_cast<const ZELTPTowCourse*>(link->GetToCourse());
        link = link->GetToCourse()->GetRetractLink();
        const double width = towCourse ? towCourse->GetMachineConfiguration().GetHead().GetTowWidth() : m_machineWidth;
        if (std::abs(width - m_machineWidth) <= kTowWidthTolerance)
            continue;
        if (m_count == 0) {
            m_firstPath = QStringLiteral("$.program.procedures[%1].courses[%2].machineConfiguration.head.towWidth")
                              .arg(index)
                              .arg(course);
            m_firstWidth = width;
        }
        ++m_count;
    }
}

void ZELKinTowWidthWarning::Inspect(const ZELTPProgram& toolpath)
{
    for (int i = 0; i < toolpath.GetNumProcedures(); ++i)
        Inspect(i, toolpath.GetProcedure(i));
}

void ZELKinTowWidthWarning::Warn() const
{
    if (m_count == 0)
        return;
    const QString count = m_count > 1 ? QStringLiteral("; %1 courses differ in all").arg(m_count) : QString();
    qWarning().noquote() << QStringLiteral("the toolpath's tow width %1 mm at %2 differs from the machine's %3 mm (the "
                                           "tow-width attribute of the machine description's root element)%4")
                                .arg(QString::number(m_firstWidth), m_firstPath, QString::number(m_machineWidth),
                                     count);
}
