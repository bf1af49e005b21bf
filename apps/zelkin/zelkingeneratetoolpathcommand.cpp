#include "zelkingeneratetoolpathcommand.h"

#include "zelkinarguments.h"
#include "zelkinconsole.h"
#include "zelkinoutputfile.h"
#include "zelkinprogressdisplay.h"
#include "zelkinunits.h"

#include <zelgenpart.h>
#include <zelgentoolpathgenerator.h>
#include <zelsysexception.h>
#include <zeltpdocumentwriter.h>
#include <zeltpfilename.h>

#include <QFileInfo>

#include <memory>

namespace {

const QString PartOption = QStringLiteral("part");
const QString PliesOption = QStringLiteral("plies");
const QString CoursesOption = QStringLiteral("courses");
const QString PointsOption = QStringLiteral("points-per-course");
const QString NameOption = QStringLiteral("name");
const QString OutputOption = QStringLiteral("o");

constexpr double kSteepestPly = 90.0;
constexpr int kMostCourses = 1000000;
constexpr int kMostPoints = 10000000;

// The command's options read and checked, each refused with a usage error
// that says what was expected.
class OptionReader
{
public:
    OptionReader(const QString& command, const QStringList& arguments, const QList<ZELKinOption>& options)
        : m_command(command)
        , m_parsed(command, arguments, options)
    {
        m_parsed.RequireAtMostPositionals(0);
        m_parsed.RequirePaths({OutputOption});
    }

    bool IsQuiet() const { return m_parsed.IsSet(ZELKinProgressDisplay::QuietOption); }

    QString GetRequired(const QString& option, const QString& what) const
    {
        if (!m_parsed.IsSet(option))
            throw ZELKinUsageError(QStringLiteral("missing the %1").arg(what), m_command);
        return m_parsed.GetValue(option);
    }

    std::unique_ptr<ZELGenPart> GetPart() const
    {
        const QString kind = GetRequired(PartOption, QStringLiteral("part (--part flat|cylinder|dome)"));
        std::unique_ptr<ZELGenPart> part = ZELGenPart::Create(kind);
        if (!part)
            throw ZELKinUsageError(QStringLiteral("unknown part '%1': expected flat, cylinder or dome").arg(kind),
                                   m_command);
        return part;
    }

    QList<double> GetPlyAngles() const
    {
        const QString list = GetRequired(PliesOption, QStringLiteral("ply angles (--plies)"));
        QList<double> angles;
        for (const QString& item : list.split(QLatin1Char(','))) {
            bool ok = false;
            const double angle = item.toDouble(&ok);
            // Written so that NaN fails it.
            if (!ok || !(angle >= -kSteepestPly && angle <= kSteepestPly))
                throw ZELKinUsageError(QStringLiteral("invalid ply angle '%1' in '%2': expected angles in degrees "
                                                      "from -90 to 90, separated by commas")
                                           .arg(item, list),
                                       m_command);
            angles.append(angle);
        }
        return angles;
    }

    int GetCount(const QString& option, const QString& what, int fallback, int least, int most) const
    {
        if (!m_parsed.IsSet(option))
            return fallback;
        const QString text = m_parsed.GetValue(option);
        bool ok = false;
        const int count = text.toInt(&ok);
        if (!ok || count < least || count > most)
            throw ZELKinUsageError(QStringLiteral("invalid %1 '%2': expected a whole number from %3 to %4")
                                       .arg(what, text, QString::number(least), QString::number(most)),
                                   m_command);
        return count;
    }

    QString GetName(const QString& fallback) const
    {
        if (!m_parsed.IsSet(NameOption))
            return fallback;
        const QString name = m_parsed.GetValue(NameOption);
        if (!ZELTPFileName::IsValid(name))
            throw ZELKinUsageError(QStringLiteral("invalid program name '%1': it must not be empty or hold '/', "
                                                  "'\\', '..', '\"' or control characters")
                                       .arg(name),
                                   m_command);
        return name;
    }

private:
    QString m_command;
    ZELKinArguments m_parsed;
};

// "Wrote T.json: 3 procedures, 16 courses, 14 links, 1 234 points, 456 789 bytes".
QString DescribeWritten(const QString& path, const ZELTPDocumentWriter::Counts& counts)
{
    using ZELKinUnits::Grouped;
    // One arg() call: a path that holds "%2" stays as it is.
    return QStringLiteral("Wrote %1: %2 procedures, %3 courses, %4 links, %5 points, %6 bytes\n")
        .arg(path, QString::number(counts.procedures), Grouped(counts.courses), Grouped(counts.links),
             Grouped(counts.points), Grouped(QFileInfo(path).size()));
}

} // namespace

QString ZELKinGenerateToolpathCommand::GetName() const
{
    return QStringLiteral("generate-toolpath");
}

QString ZELKinGenerateToolpathCommand::GetSummary() const
{
    return QStringLiteral("Write an example toolpath for a part on the example gantry");
}

QString ZELKinGenerateToolpathCommand::GetSynopsis() const
{
    return QStringLiteral("--part flat|cylinder|dome --plies A,B,... [--courses N] [--points-per-course M]\n"
                          "       [--name NAME] [--quiet] -o FILE.json");
}

QString ZELKinGenerateToolpathCommand::GetDescription() const
{
    return QStringLiteral(
        "Writes a toolpath program (a \"zelkin-toolpath\" document, version 1) for a\n"
        "part placed on the bed of examples/machines/gantry-rbr.xml, within its travel\n"
        "and its wrist's reach: one roll layup procedure per ply angle, each with N\n"
        "courses side by side across the middle of the part, tows added and cut in\n"
        "groups of four where they cross the part's edge, links between the courses,\n"
        "and a probing procedure with three sphere targets around the part. The last\n"
        "course of the first ply is laid with an 8-tow roller, so the program holds\n"
        "tool changes. The same arguments give the same file, byte for byte.\n"
        "\n"
        "Options:\n"
        "  --part PART                flat: a flat panel, 3000 x 1500 mm;\n"
        "                             cylinder: a convex cylinder section, radius\n"
        "                             1500 mm, 35 deg either side, 3000 mm long along X;\n"
        "                             dome: a spherical cap, radius 2500 mm, 30 deg.\n"
        "  --plies A,B,...            one ply per angle, in degrees from -90 to 90,\n"
        "                             measured from X towards Y.\n"
        "  --courses N                courses per ply (default 8).\n"
        "  --points-per-course M      points spread along the laid stretch of each\n"
        "                             course (default 50); the adds and cuts come on top.\n"
        "  --name NAME                the program's name (default: the part's name,\n"
        "                             flat-panel, cylinder-section or dome).\n"
        "  -o, --output FILE.json     the file to write; it is replaced only once the\n"
        "                             new one is complete.\n"
        "  --quiet                    Show no progress.\n"
        "\n"
        "Ends with one line on standard output: the file, its procedures, courses,\n"
        "links, points and bytes.\n");
}

QList<ZELKinOption> ZELKinGenerateToolpathCommand::GetOptions() const
{
    return {ZELKinOption(PartOption, ZELKinOption::Value::Text),
            ZELKinOption(PliesOption, ZELKinOption::Value::Text),
            ZELKinOption(CoursesOption, ZELKinOption::Value::Text),
            ZELKinOption(PointsOption, ZELKinOption::Value::Text),
            ZELKinOption(NameOption, ZELKinOption::Value::Text),
            ZELKinOption({OutputOption, QStringLiteral("output")}, ZELKinOption::Value::Path),
            ZELKinOption(ZELKinProgressDisplay::QuietOption, ZELKinOption::Value::None)};
}

int ZELKinGenerateToolpathCommand::Run(const QStringList& arguments)
{
    const OptionReader reader(GetName(), arguments, GetOptions());
    const std::unique_ptr<ZELGenPart> part = reader.GetPart();
    ZELGenToolpathGenerator::Settings settings;
    settings.plyAngles = reader.GetPlyAngles();
    settings.courses =
        reader.GetCount(CoursesOption, QStringLiteral("course count"), settings.courses, 1, kMostCourses);
    settings.pointsPerCourse = reader.GetCount(PointsOption, QStringLiteral("point count"), settings.pointsPerCourse,
                                               2, kMostPoints);
    settings.name = reader.GetName(part->GetName());
    const QString path = reader.GetRequired(OutputOption, QStringLiteral("output file (-o FILE.json)"));

    const ZELKinProgressDisplay display(ZELKinProgressDisplay::ChooseMode(reader.IsQuiet()));
    ZELKinOutputFile file(path);
    ZELTPDocumentWriter writer(file.GetDevice(), path);
    ZELGenToolpathGenerator(*part, settings).Write(writer);
    file.Commit();
    ZELKinConsole::Print(DescribeWritten(path, writer.GetCounts()));
    return ZELKinExitStatus::Success;
}
