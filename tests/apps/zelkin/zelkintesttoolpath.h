#ifndef ZELKINTESTTOOLPATH_H
#define ZELKINTESTTOOLPATH_H

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <initializer_list>

/*!
    A small toolpath file written by hand for the tool tests: one course of
    one ply on a flat panel at Z = -1500 mm, laid along +X at Y = 3500 mm,
    between an approach link and a retract link, and a probing procedure with
    one target. Every on-part frame travels +X with the normal +Z, which the
    example machine reaches with its wrist at zero, so the roller centre of
    each position is its point raised by the 30 mm roller radius.

    The course's points, by X (mm), and the positions the translator makes
    of them:
    - approach trajectory 2900 (lifted 100 mm), 2950: both positions;
    - roll-in 2950, 3000 (the roll-in point), 3010: the position 3000;
    - tow trajectory 3010, 3020, ..., 3100: 3010 to 3090;
    - roll-out 3100, 3110, 3120 (the roll-out point): all three;
    - retract 3120, 3170 (lifted 100 mm): the position 3170.
*/
namespace ZELKinTestToolpath {

constexpr double kPartZ = -1500.0;
constexpr double kCourseY = 3500.0;
constexpr double kLift = 100.0;

inline QJsonArray Vector(double x, double y, double z)
{
    return QJsonArray{x, y, z};
}

//! An on-part or course point at `x` along the course, `lift` mm off the
//! part, travelling +X (or -X when `backwards`).
inline QJsonObject FramedPoint(double x, double lift = 0.0, bool backwards = false)
{
    return QJsonObject{{QStringLiteral("origin"), Vector(x, kCourseY, kPartZ + lift)},
                       {QStringLiteral("travel"), Vector(backwards ? -1 : 1, 0, 0)},
                       {QStringLiteral("normal"), Vector(0, 0, 1)}};
}

//! An off-part point without directions, which takes them from its neighbours.
inline QJsonObject BarePoint(double x, double lift)
{
    return QJsonObject{{QStringLiteral("origin"), Vector(x, kCourseY, kPartZ + lift)}};
}

inline QJsonObject Trajectory(const QString& kind, double feedrate, const QJsonArray& points)
{
    return QJsonObject{{QStringLiteral("kind"), kind},
                       {QStringLiteral("feedrate"), feedrate},
                       {QStringLiteral("points"), points}};
}

inline QJsonArray PointsAlong(std::initializer_list<double> xs)
{
    QJsonArray points;
    for (const double x : xs)
        points.append(FramedPoint(x));
    return points;
}

inline QJsonObject Link(const QString& name, const QString& detail, const QJsonObject& point)
{
    return QJsonObject{
        {QStringLiteral("name"), name},
        {QStringLiteral("pointsDetail"), detail},
        {QStringLiteral("trajectories"), QJsonArray{Trajectory(QStringLiteral("offPart"), 10000, QJsonArray{point})}}};
}

//! The tow trajectory; with `turnsOver` its point at 3050 faces back along
//! the course, which the wrist reaches only by turning the second roll half
//! a turn within one step: no continuous path exists.
inline QJsonObject TowTrajectory(bool turnsOver)
{
    QJsonArray points = PointsAlong({3010, 3020, 3030, 3040, 3050, 3060, 3070, 3080, 3090, 3100});
    if (turnsOver)
        points[4] = FramedPoint(3050, 0.0, true);
    QJsonObject tows = Trajectory(QStringLiteral("tow"), 6000, points);
    tows.insert(QStringLiteral("towMask"), QStringLiteral("1111111111111111"));
    return tows;
}

//! A course of all 16 tows of a 16-tow roller, 90 mm each, through
//! `trajectories` (approach, roll-in, tows, roll-out, retract), with its
//! roll-in point the roll-in's second and its roll-out point the
//! roll-out's third.
inline QJsonObject TowCourse(const QJsonArray& trajectories)
{
    const QJsonObject configuration{
        {QStringLiteral("roller"), QJsonObject{{QStringLiteral("name"), QStringLiteral("R16")},
                                               {QStringLiteral("width"), 101.6}}},
        {QStringLiteral("head"), QJsonObject{{QStringLiteral("name"), QStringLiteral("H1")},
                                             {QStringLiteral("towWidth"), 6.35}}}};
    QJsonArray lengths;
    for (int tow = 0; tow < 16; ++tow)
        lengths.append(90.0);
    return QJsonObject{{QStringLiteral("name"), QStringLiteral("course 1")},
                       {QStringLiteral("towMask"), QStringLiteral("1111111111111111")},
                       {QStringLiteral("machineConfiguration"), configuration},
                       {QStringLiteral("towLengths"), lengths},
                       {QStringLiteral("trajectories"), trajectories},
                       {QStringLiteral("rollInPoint"), 1},
                       {QStringLiteral("rollOutPoint"), 2}};
}

inline QJsonObject Course(bool turnsOver)
{
    return TowCourse(
        QJsonArray{Trajectory(QStringLiteral("offPart"), 10000, QJsonArray{FramedPoint(2900, kLift), FramedPoint(2950)}),
                   Trajectory(QStringLiteral("onPart"), 6000, PointsAlong({2950, 3000, 3010})), TowTrajectory(turnsOver),
                   Trajectory(QStringLiteral("onPart"), 6000, PointsAlong({3100, 3110, 3120})),
                   Trajectory(QStringLiteral("offPart"), 10000, QJsonArray{FramedPoint(3120), FramedPoint(3170, kLift)})});
}

inline QJsonObject SafetyPlane()
{
    return QJsonObject{{QStringLiteral("origin"), Vector(0, 0, -1000)}, {QStringLiteral("normal"), Vector(0, 0, 1)}};
}

//! A roll layup procedure of one ply, P0 at 0 deg, laid with T35-E120.
inline QJsonObject LayupProcedureOf(const QString& name, const QJsonObject& safetyPlane, const QJsonArray& links,
                                    const QJsonArray& courses)
{
    return QJsonObject{
        {QStringLiteral("kind"), QStringLiteral("rollLayup")},
        {QStringLiteral("name"), name},
        {QStringLiteral("safetyPlane"), safetyPlane},
        {QStringLiteral("addingFeedrate"), 2540},
        {QStringLiteral("cuttingFeedrate"), 1270},
        {QStringLiteral("material"), QJsonObject{{QStringLiteral("id"), QStringLiteral("T35-E120")}}},
        {QStringLiteral("totalMaterialLength"), 1440.0},
        {QStringLiteral("plies"), QJsonArray{QJsonObject{{QStringLiteral("name"), QStringLiteral("P0")},
                                                         {QStringLiteral("orientation"), 0.0},
                                                         {QStringLiteral("propagation"), QStringLiteral("angle")}}}},
        {QStringLiteral("links"), links},
        {QStringLiteral("courses"), courses}};
}

inline QJsonObject LayupProcedure(const QString& name, bool turnsOver)
{
    return LayupProcedureOf(name, SafetyPlane(),
                            QJsonArray{Link(QStringLiteral("approach"), QStringLiteral("low"), BarePoint(2800, 300)),
                                       Link(QStringLiteral("retract"), QStringLiteral("low"), BarePoint(3300, 300))},
                            QJsonArray{Course(turnsOver)});
}

inline QJsonObject ProbingProcedure()
{
    return QJsonObject{
        {QStringLiteral("kind"), QStringLiteral("probing")},
        {QStringLiteral("name"), QStringLiteral("probe")},
        {QStringLiteral("safetyPlane"), SafetyPlane()},
        {QStringLiteral("trajectories"),
         QJsonArray{Trajectory(QStringLiteral("offPart"), 5080, QJsonArray{BarePoint(2500, 200), BarePoint(2500, 10)}),
                    Trajectory(QStringLiteral("offPart"), 5080, QJsonArray{BarePoint(2500, 200)})}},
        {QStringLiteral("probingPoints"), QJsonArray{QJsonObject{{QStringLiteral("diameter"), 12.7}}}}};
}

//! The whole file, with the layup procedure named `procedure`; with
//! `turnsOver` that procedure cannot be solved.
//! A "zelkin-toolpath" document of the program `name`, revision `revision`.
inline QString ProgramDocument(const QString& name, const QString& revision, const QJsonArray& procedures)
{
    const QJsonObject program{{QStringLiteral("name"), name},
                              {QStringLiteral("revision"), revision},
                              {QStringLiteral("procedures"), procedures}};
    const QJsonObject file{{QStringLiteral("format"), QStringLiteral("zelkin-toolpath")},
                           {QStringLiteral("version"), 1},
                           {QStringLiteral("program"), program}};
    return QString::fromUtf8(QJsonDocument(file).toJson());
}

inline QString Document(const QString& procedure = QStringLiteral("ply one"), bool turnsOver = false)
{
    return ProgramDocument(QStringLiteral("flat-test"), QStringLiteral("B"),
                           QJsonArray{LayupProcedure(procedure, turnsOver), ProbingProcedure()});
}

} // namespace ZELKinTestToolpath

#endif // ZELKINTESTTOOLPATH_H
