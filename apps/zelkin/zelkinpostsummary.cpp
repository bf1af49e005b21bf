#include "zelkinpostsummary.h"

#include "zelkinruntimetext.h"
#include "zelkintexttable.h"
#include "zelkinunits.h"

#include <zelkinafpmachine.h>
#include <zelkinncreplay.h>
#include <zelkinprogram.h>
#include <zelkinruntimeestimator.h>
#include <zelkinvariable.h>

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cmath>
#include <functional>
#include <future>

namespace {

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

// What the summary tells of one ply, read back from its file; the run
// time names the ply and its procedure.
struct PlyFigures
{
    qint64 courses;
    //! mm, NaN when the machine has no material axis.
    double laid;
    ZELKinPlyRunTime time;
};

QString Metres(double millimetres)
{
    return std::isfinite(millimetres) ? QStringLiteral("%1 m").arg(millimetres / 1000.0, 0, 'f', 2)
                                      : QStringLiteral("-");
}

} // namespace

ZELKinPostSummary::ZELKinPostSummary(const ZELKinAFPMachine& machine, const ZELKinProgram& program)
    : ZELKinPostSummary(machine, program.GetPositionsByProcedure())
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
    const ZELKinNCReplay replay(m_machine);
    const ZELKinNCPlySet plySet = replay.ReadPlySet(posted);
    const int materialIndex = m_machine.GetVariables().indexOf(m_machine.GetMaterialVariable());
    const ZELKinRunTimeEstimator estimator(m_machine);
    const auto figure = [&](const ZELKinNCPlyListing& listed) {
        const ZELKinNCPlyFile ply = replay.ReadPly(listed);
        return PlyFigures{ply.courseRecords.size(), LaidLength(ply, materialIndex), estimator.Estimate(ply)};
    };
    ZELKinTextTable table;
    table.AddRow({QStringLiteral("ply"), QStringLiteral("procedure"), QStringLiteral("courses"),
                  QStringLiteral("positions"), QStringLiteral("laid length"), QStringLiteral("estimated run time")});
    ZELKinRunTime allTime;
    qint64 allCourses = 0;
    qint64 allPositions = 0;
    double allLaid = 0.0;
    const auto addRow = [&](const PlyFigures& ply) {
        const qint64 positions = m_positions.value(ply.time.procedure);
        table.AddRow({ply.time.plyNumber, ply.time.procedure, ZELKinUnits::Grouped(ply.courses),
                      ZELKinUnits::Grouped(positions), Metres(ply.laid), ZELKinRunTimeText::Clock(ply.time)});
        allTime.Add(ply.time);
        allCourses += ply.courses;
        allPositions += positions;
        allLaid += ply.laid;
    };
    // Plies are read back two at a time, the second on a thread of its own:
    // no more than two are held, as the files of a large program would not
    // fit at once.
    const QList<ZELKinNCPlyListing>& plies = plySet.plies;
    for (qsizetype i = 0; i < plies.size(); i += 2) {
        std::future<PlyFigures> second;
        if (i + 1 < plies.size())
            second = std::async(std::launch::async, figure, std::cref(plies.at(i + 1)));
        addRow(figure(plies.at(i)));
        if (second.valid())
            addRow(second.get());
    }
    table.AddRow({QStringLiteral("all"), QString(), ZELKinUnits::Grouped(allCourses),
                  ZELKinUnits::Grouped(allPositions), Metres(allLaid), ZELKinRunTimeText::Clock(allTime)});
    return table.ToText(0);
}
