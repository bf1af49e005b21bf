#include "zelkinpostsummary.h"

#include "zelkinruntimetext.h"
#include "zelkintexttable.h"
#include "zelkinunits.h"

#include <zelkinafpmachine.h>
#include <zelkinncreplay.h>
#include <zelkinprogram.h>
#include <zelkinrolllayupprocedure.h>
#include <zelkinruntimeestimator.h>
#include <zelkinvariable.h>
#include <zeltpprocedure.h>

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cmath>

namespace {

// The positions of each roll layup procedure, by its toolpath procedure's name.
QHash<QString, qint64> PositionsByProcedure(const ZELKinProgram& program)
{
    QHash<QString, qint64> positions;
    for (const ZELKinProcedure* procedure : program.GetProcedures()) {
        const auto* layup = qobject_cast<const ZELKinRollLayupProcedure*>(procedure);
        const ZELTPProcedure* source = procedure ? procedure->GetToolPathProcedure() : nullptr;
        if (layup && source)
            positions.insert(source->GetName(), layup->GetNumPositions());
    }
    return positions;
}

// Material laid by the ply: each course's material axis where the course
// ends, the axis counting from the course's start (mm).
double LaidLength(const ZELKinNCPlyFile& ply, int materialIndex)
{
    if (materialIndex < 0)
        return std::nan("");
    QHash<int, double> courseEnds;
    for (const ZELKinNCMotion& motion : ply.motions) {
        const double material = motion.values.value(materialIndex, std::nan(""));
        if (motion.alongCourse && std::isfinite(material))
            courseEnds[motion.course] = std::max(courseEnds.value(motion.course, 0.0), material);
    }
    double length = 0.0;
    for (const double end : std::as_const(courseEnds))
        length += end;
    return length;
}

QString Metres(double millimetres)
{
    return std::isfinite(millimetres) ? QStringLiteral("%1 m").arg(millimetres / 1000.0, 0, 'f', 2)
                                      : QStringLiteral("-");
}

} // namespace

ZELKinPostSummary::ZELKinPostSummary(const ZELKinAFPMachine& machine, const ZELKinProgram& program)
    : ZELKinPostSummary(machine, PositionsByProcedure(program))
{
}

ZELKinPostSummary::ZELKinPostSummary(const ZELKinAFPMachine& machine,
                                     const QHash<QString, qint64>& positionsByProcedure)
    : m_machine(machine)
    , m_positions(positionsByProcedure)
{
}

QString ZELKinPostSummary::Describe(const QStringList& files, const QString& posted) const
{
    return DescribeFiles(files) + QLatin1Char('\n') + DescribePlies(posted);
}

QString ZELKinPostSummary::DescribeFiles(const QStringList& files) const
{
    qint64 total = 0;
    ZELKinTextTable table;
    for (const QString& file : files) {
        const qint64 size = QFileInfo(file).size();
        total += size;
        table.AddRow({file, ZELKinUnits::Size(size)});
    }
    const QString count = files.size() == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(files.size());
    return QStringLiteral("Wrote %1, %2:\n").arg(count, ZELKinUnits::Size(total)) + table.ToText(2);
}

QString ZELKinPostSummary::DescribePlies(const QString& posted) const
{
    // One ply is held at a time: the files of a large program would not fit.
    const ZELKinNCReplay replay(m_machine);
    const ZELKinNCPlySet plySet = replay.ReadPlySet(posted);
    const QHash<QString, qint64>& positions = m_positions;
    const int materialIndex = m_machine.GetVariables().indexOf(m_machine.GetMaterialVariable());
    ZELKinTextTable table;
    const ZELKinRunTimeEstimator estimator(m_machine);
    table.AddRow({QStringLiteral("ply"), QStringLiteral("procedure"), QStringLiteral("courses"),
                  QStringLiteral("positions"), QStringLiteral("laid length"), QStringLiteral("estimated run time")});
    ZELKinRunTime allTime;
    qint64 allCourses = 0;
    qint64 allPositions = 0;
    double allLaid = 0.0;
    for (const ZELKinNCPlyListing& listed : plySet.plies) {
        const ZELKinNCPlyFile ply = replay.ReadPly(listed);
        const qint64 courses = ply.courseRecords.size();
        const qint64 plyPositions = positions.value(ply.procedure);
        const double laid = LaidLength(ply, materialIndex);
        const ZELKinPlyRunTime time = estimator.Estimate(ply);
        table.AddRow({ply.plyNumber, ply.procedure, ZELKinUnits::Grouped(courses), ZELKinUnits::Grouped(plyPositions),
                      Metres(laid), ZELKinRunTimeText::Clock(time)});
        allTime.Add(time);
        allCourses += courses;
        allPositions += plyPositions;
        allLaid += laid;
    }
    table.AddRow({QStringLiteral("all"), QString(), ZELKinUnits::Grouped(allCourses),
                  ZELKinUnits::Grouped(allPositions), Metres(allLaid), ZELKinRunTimeText::Clock(allTime)});
    return table.ToText(0);
}
