#ifndef ZELKINNCTESTPROGRAMS_H
#define ZELKINNCTESTPROGRAMS_H

#include <zelkinwriter.h>

#include <zelkintestaccess.h>
#include <zelkintestsixaxismachine.h>

#include <zelmathplane.h>

#include <zeltppoint.h>
#include <zeltpprocedure.h>

#include <zeltestsupport.h>

#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QTime>

#include <algorithm>
#include <cmath>
#include <ostream>

//! Failures print texts as text.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace ZELTest {

constexpr double kPi = 3.14159265358979323846;

//! Degrees in the model's unit.
constexpr double Radians(double degrees)
{
    return degrees * kPi / 180.0;
}

//! The values of a position, in the model's units (mm, rad). A NaN leaves
//! the axis undefined.
struct Axes
{
    double x = kNaN;
    double y = kNaN;
    double z = kNaN;
    double a = kNaN;
    double c1 = kNaN;
    double u = kNaN;
};

//! The head angles of a roll layup position (rad; NaN for none).
struct HeadAngles
{
    double p = kNaN;
    double q = kNaN;
    double smooth = kNaN;
};

/*!
    The 16-tow six-axis machine of ZELKinTestSixAxisMachine (its rotary
    axes turning at `rotarySpeed` rad/s at the most) and a program for it
    whose header the NC files print: original file name "PART", revision
    "B", author "jdoe", made on 2024-03-05 at 14:07:09. Tests give the
    writer the time 2024-03-06 08:09:10 as the current one.
*/
struct NCFixture : ZELKinTestSixAxisMachine
{
    explicit NCFixture(const ZELKinTestHead& head = ZELKinTestHead(), double rotarySpeed = 500.0)
        : ZELKinTestSixAxisMachine(head, 1000.0, rotarySpeed)
    {
        program->SetOriginalFileName(QStringLiteral("PART"));
        program->SetRevisionNumber(QStringLiteral("B"));
        program->SetAuthor(QStringLiteral("jdoe"));
        program->SetDate(QDateTime(QDate(2024, 3, 5), QTime(14, 7, 9)));
    }

    static QDateTime Now() { return QDateTime(QDate(2024, 3, 6), QTime(8, 9, 10)); }

    //! A roll layup procedure named `name` (object name) translated from a
    //! toolpath procedure named `toolpathName`.
    ZELKinRollLayupProcedure* AddLayup(const QString& name, const QString& toolpathName, double addFeedrate = 1270.0,
                                       double cutFeedrate = 1905.0)
    {
        ZELKinRollLayupProcedure* procedure = ZELKinTestAccess::CreateRollLayupProcedure(program, addFeedrate,
                                                                                         cutFeedrate);
        procedure->setObjectName(name);
        procedure->SetToolPathProcedure(new ZELTPProcedure(&container, toolpathName));
        return procedure;
    }

    ZELKinProbeProcedure* AddProbing(const QString& toolpathName)
    {
        ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(program);
        procedure->SetToolPathProcedure(new ZELTPProcedure(&container, toolpathName));
        return procedure;
    }

    void SetAxes(ZELKinPosition* position, const Axes& axes, double feedrate) const
    {
        position->SetVariableValue(x, axes.x);
        position->SetVariableValue(y, axes.y);
        position->SetVariableValue(z, axes.z);
        position->SetVariableValue(a, axes.a);
        position->SetVariableValue(c1, axes.c1);
        position->SetVariableValue(u, axes.u);
        position->SetFeedrate(feedrate);
    }

    ZELKinPosition* AddLinkPosition(ZELKinCourseLink* link, const Axes& axes, double feedrate) const
    {
        ZELKinPosition* position = ZELKinTestAccess::CreatePosition(link);
        SetAxes(position, axes, feedrate);
        return position;
    }

    ZELKinPosition* AddProbePosition(ZELKinProbeProcedure* procedure, const Axes& axes, double feedrate) const
    {
        ZELKinPosition* position = ZELKinTestAccess::CreatePosition(procedure);
        SetAxes(position, axes, feedrate);
        return position;
    }

    //! A tow course with the tows `tows` of the machine's 16 and a roller
    //! of `rollerTows` tows.
    ZELKinTowCourse* AddCourse(ZELKinRollLayupProcedure* procedure, quint64 tows, int rollerTows) const
    {
        ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(procedure, Mask(tows));
        course->SetRollerTows(rollerTows);
        return course;
    }

    //! A roll layup position with N index `n`; with a toolpath point whose
    //! tool frame stands at `tip` when one is given.
    ZELKinRollLayupPosition* AddCoursePosition(ZELKinTowCourse* course, int n, const Axes& axes, double feedrate,
                                               const HeadAngles& angles = HeadAngles(),
                                               const ZELMathPoint* tip = nullptr)
    {
        ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(course);
        SetAxes(position, axes, feedrate);
        position->SetNIndex(n);
        position->SetPAngle(angles.p);
        position->SetQAngle(angles.q);
        position->SetSmoothAngle(angles.smooth);
        if (tip) {
            position->SetToolPathPoint(new ZELTPPoint(&container,
                                                      ZELMathAxis(*tip, ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                                                  ZELMathVector(0, 0, 1))));
        }
        return position;
    }

    /*!
        A course of tow 1 with one position at the origin, at 2540 mm/min,
        between two links that end an inch above it: the least that lets a
        procedure be written, as a ply file needs the feed of its first
        course's last position.
    */
    void AddShortCourse(ZELKinRollLayupProcedure* procedure)
    {
        AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 25.4}, 2540.0);
        AddCoursePosition(AddCourse(procedure, 0x1, 16), 1, {0.0, 0.0, 0.0}, 2540.0);
        AddLinkPosition(ZELKinTestAccess::CreateCourseLink(procedure), {0.0, 0.0, 25.4}, 2540.0);
    }

    ZELKinTowCommand* AddTowCommand(ZELKinTowCourse* course, ZELKinTowCommand::CommandType type, quint64 tows) const
    {
        return ZELKinTestAccess::CreateTowCommand(course, Mask(tows), type);
    }

    //! A mask of the machine's 16 tows with the tows of `bits` (bit 0 is
    //! tow 1).
    static ZELCompTowMask Mask(quint64 bits)
    {
        ZELCompTowMask mask(16, false);
        for (int tow = 1; tow <= 16; ++tow)
            mask.SetTowEnabled(tow, (bits >> (tow - 1)) & 1U);
        return mask;
    }

    static ZELKinPlyDescription Ply(const QString& name, const QString& material, double angle,
                                    ZELCompStrategy::PropagationMode method, double area)
    {
        ZELKinPlyDescription ply;
        ply.SetName(name);
        ply.SetMaterial(material);
        ply.SetAngle(angle);
        ply.SetMethod(method);
        ply.SetArea(area);
        return ply;
    }

    /*!
        Writes the program with the fixed current time and returns the text
        of the file `fileName` of the directory layout (in the folder
        "PART" of a temporary output directory).
    */
    QString WriteAndRead(const QString& fileName, const QString& options = QString())
    {
        ZELKinWriter writer(program);
        writer.SetCurrentDateTime(Now());
        writer.Write(output.path(), QStringLiteral("AFPGCode"), options);
        return ReadText(QDir(output.path()).filePath(QStringLiteral("PART/") + fileName));
    }

    /*!
        The program of the golden files PART.PPSF, PART#0101.PPF and
        PART.PTPF: "Ply A" (ply 0101, two courses), a probe procedure with
        two targets, and "Ply B" (ply 0102, a short course), in that
        order. The golden files were written for the options
        kGoldenOptions.
    */
    void BuildPart()
    {
        BuildPlyA();
        BuildProbing();
        ZELKinRollLayupProcedure* plyB = AddLayup(QStringLiteral("Ply B"), QStringLiteral("Layup B"));
        plyB->AddPlyDefinition(Ply(QStringLiteral("Q1"), QStringLiteral("T800"), 0.0, ZELCompStrategy::Parallel, 0.75));
        AddShortCourse(plyB);
    }

    /*!
        Ply A: plies P1 (T35, 45 degrees) and P2-LONG-NAME-X (AS4, -90
        degrees); an approach link, course 0 (tows 1-4 on an 8-tow roller,
        with a feed command, an add, a force, a cut and a release, a position
        that repeats the one before and a Y change within the modal
        tolerance, its cut lowering the feed), a link with a tool change,
        course 1 (tows 5-8 on a 16-tow roller, with U values of its own and
        an add), and the last retract link. Neither link into a course ends
        on the course's approach point.
    */
    ZELKinRollLayupProcedure* BuildPlyA()
    {
        ZELKinRollLayupProcedure* procedure = AddLayup(QStringLiteral("Ply A"), QStringLiteral("Layup A"));
        procedure->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0, 0, 508.0), ZELMathVector(0, 0, 1)));
        procedure->AddPlyDefinition(
            Ply(QStringLiteral("P1"), QStringLiteral("T35"), Radians(45), ZELCompStrategy::Angle, 1.5));
        procedure->AddPlyDefinition(Ply(QStringLiteral("P2-LONG-NAME-X"), QStringLiteral("AS4"), Radians(-90),
                                        ZELCompStrategy::GeodesicOffset, 2.25));
        const double right = Radians(90);

        ZELKinCourseLink* approach = ZELKinTestAccess::CreateCourseLink(procedure);
        AddLinkPosition(approach, {254.0, 127.0, 127.0, 0.0, right}, 5080.0);
        AddLinkPosition(approach, {254.0, 127.0, 50.8, 0.0, right}, 5080.0);

        ZELKinTowCourse* first = AddCourse(procedure, 0xF, 8);
        first->SetTowLength(0, 100.0);
        first->SetTowLength(1, 200.5);
        first->SetTowLength(2, 300.25);
        first->SetTowLength(3, 400.0);
        const HeadAngles tilted{Radians(5), Radians(-10)};
        const HeadAngles smoothed{Radians(5), Radians(-10), Radians(2)};
        AddTippedPosition(first, 1, {254.0, 127.0, 25.4, 0.0, right}, 2540.0, HeadAngles(), 0.0);
        AddTippedPosition(first, 2, {279.4, 127.0, 25.4, 0.0, right}, 2540.0, tilted, 25.4);
        ZELKinTestAccess::CreateTowFeedCommand(first, {2.0, 1.5});
        AddTowCommand(first, ZELKinTowCommand::Add, 0xF);
        AddTippedPosition(first, 3, {304.8, 127.0, 25.4, 0.0, right}, 2540.0, tilted, 50.8);
        AddTowCommand(first, ZELKinTowCommand::Force, 0x2);
        AddTippedPosition(first, 4, {304.8005, 127.0, 25.4, 0.0, right}, 2540.0, tilted, 50.8);
        AddTowCommand(first, ZELKinTowCommand::Cut, 0xC);
        AddTippedPosition(first, 5, {330.2, 127.0004, 25.4, 0.0, right}, 3810.0, smoothed, 76.2);
        AddTowCommand(first, ZELKinTowCommand::Release, 0x2);
        AddTippedPosition(first, 6, {355.6, 127.0, 25.4, 0.0, right}, 3810.0, HeadAngles(), 101.6);
        AddTippedPosition(first, 7, {381.0, 127.0, 50.8, 0.0, right}, 3810.0, HeadAngles(), 127.0);

        ZELKinCourseLink* between = ZELKinTestAccess::CreateCourseLink(procedure);
        AddLinkPosition(between, {381.0, 127.0, 50.8, 0.0, right}, 5080.0);
        AddLinkPosition(between, {381.0, 127.0, 50.8, 0.0, right}, 5080.0);
        ZELKinTestAccess::CreateToolChange(between, QStringLiteral("R16"), QStringLiteral("H2"));
        AddLinkPosition(between, {381.0, 127.0, 127.0, 0.0, right}, 5080.0);
        AddLinkPosition(between, {381.0, 127.0, 127.0, 0.0, right}, 5080.0);
        AddLinkPosition(between, {406.4, 152.4, 127.0, 0.0, right}, 5080.0);

        ZELKinTowCourse* second = AddCourse(procedure, 0xF0, 16);
        for (int tow = 4; tow < 8; ++tow)
            second->SetTowLength(tow, 10.0 * (tow + 1));
        AddCoursePosition(second, 1, {406.4, 152.4, 25.4, 0.0, right, 10.0}, 2540.0);
        AddCoursePosition(second, 2, {431.8, 152.4, 25.4, Radians(45), right, 35.4}, 2540.0);
        AddTowCommand(second, ZELKinTowCommand::Add, 0x30);
        AddCoursePosition(second, 3, {457.2, 152.4, 25.4, Radians(45), right, 60.8}, 2540.0);

        ZELKinCourseLink* retract = ZELKinTestAccess::CreateCourseLink(procedure);
        AddLinkPosition(retract, {457.2, 152.4, 127.0, Radians(45), right}, 5080.0);
        AddLinkPosition(retract, {457.2, 152.4, 254.0, Radians(45), right}, 5080.0);
        return procedure;
    }

    //! Targets at (10, 5, 2) and (10, 7, 2) inches, of diameters 0.5 and 1
    //! inch, and a last position after them.
    ZELKinProbeProcedure* BuildProbing()
    {
        ZELKinProbeProcedure* probing = AddProbing(QStringLiteral("Probe targets"));
        probing->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0, 0, 304.8), ZELMathVector(0, 0, 1)));
        AddProbePosition(probing, {254.0, 127.0, 50.8}, 2540.0);
        ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 12.7);
        AddProbePosition(probing, {254.0, 177.8, 50.8}, 3810.0);
        ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 25.4);
        AddProbePosition(probing, {254.0, 177.8, 254.0}, 5080.0);
        return probing;
    }

    //! A course position whose toolpath point's tip lies `tipX` mm along X.
    ZELKinRollLayupPosition* AddTippedPosition(ZELKinTowCourse* course, int n, const Axes& axes, double feedrate,
                                               const HeadAngles& angles, double tipX)
    {
        const ZELMathPoint tip(tipX, 0.0, 0.0);
        return AddCoursePosition(course, n, axes, feedrate, angles, &tip);
    }

    static QString ReadText(const QString& path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return QStringLiteral("<cannot read %1>").arg(path);
        return QString::fromUtf8(file.readAll());
    }

    QTemporaryDir output;
};

//! The options that the golden files of BuildPart were written with.
const QString kGoldenOptions = QStringLiteral("tooling-retract: 38.1; pinch-max-length: 5; pinch-release-length: 2");

//! The text of the expected file `name` in the golden folder.
inline QString Golden(const QString& name)
{
    return NCFixture::ReadText(QDir(QStringLiteral(ZELKIN_NC_GOLDEN_DIR)).filePath(name));
}

//! Equal texts; otherwise names the first line that differs.
inline ::testing::AssertionResult SameText(const QString& expected, const QString& actual)
{
    if (expected == actual)
        return ::testing::AssertionSuccess();
    const QStringList expectedLines = expected.split(QLatin1Char('\n'));
    const QStringList actualLines = actual.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < std::min(expectedLines.size(), actualLines.size()); ++i) {
        if (expectedLines.at(i) != actualLines.at(i))
            return ::testing::AssertionFailure() << "line " << i + 1 << " is \"" << actualLines.at(i).toStdString()
                                                 << "\", expected \"" << expectedLines.at(i).toStdString() << '"';
    }
    return ::testing::AssertionFailure() << actualLines.size() << " lines, expected " << expectedLines.size();
}

//! The lines of `text` that begin with `prefix`.
inline QStringList LinesStartingWith(const QString& text, const QString& prefix)
{
    QStringList lines;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        if (line.startsWith(prefix))
            lines.append(line);
    }
    return lines;
}

/*!
    The lines of `text` from the first one that begins with `first` up to
    the first one after it that begins with `last`, both included; empty
    when either is missing.
*/
inline QStringList LinesBetween(const QString& text, const QString& first, const QString& last)
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    qsizetype begin = 0;
    while (begin < lines.size() && !lines.at(begin).startsWith(first))
        ++begin;
    for (qsizetype end = begin; end < lines.size(); ++end) {
        if (lines.at(end).startsWith(last))
            return lines.mid(begin, end - begin + 1);
    }
    return QStringList();
}

} // namespace ZELTest

#endif // ZELKINNCTESTPROGRAMS_H
