#include "zelkintoolrun.h"

#include <zelgeocontainer.h>
#include <zelkinmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinsolution.h>
#include <zelkinsolver.h>
#include <zelkinvariable.h>
#include <zelmathaxis.h>
#include <zelmathpoint.h>
#include <zelmathvector.h>
#include <zelmathvector2d.h>
#include <zeltestsupport.h>

#include <QByteArray>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

const QString Command = QStringLiteral("generate-toolpath");
const QString UsageHint = QStringLiteral("zelkin: hint: run 'zelkin help generate-toolpath' for its usage");
const QString Plies = QStringLiteral("0,45,-45,90");
const QList<double> PlyAngles = {0.0, 45.0, -45.0, 90.0};
const QStringList ProcedureNames = {QStringLiteral("Ply 1 0"), QStringLiteral("Ply 2 +45"),
                                    QStringLiteral("Ply 3 -45"), QStringLiteral("Ply 4 +90")};

// The head of the example gantry and its rollers.
constexpr int kHeadTows = 16;
constexpr double kTowWidth = 6.35;
const QString AllTows = QStringLiteral("1111111111111111");
const QString MiddleEightTows = QStringLiteral("0000111111110000");

// Where the parts stand, as documented: every part's highest point at the
// centre (6000, 4575, -2000); the safety plane 152.4 mm above it.
constexpr double kCentreX = 6000.0;
constexpr double kCentreY = 4575.0;
constexpr double kTopZ = -2000.0;
constexpr double kSafetyZ = kTopZ + 152.4;

// Coordinates of a few thousand millimetres hold about this much rounding.
constexpr double kMillimetres = ZELTest::kTight * 1e4;

// ---------------------------------------------------------------------------
// Reading the document

ZELMathVector ToVector(const QJsonValue& value)
{
    const QJsonArray array = value.toArray();
    EXPECT_EQ(array.size(), 3);
    return ZELMathVector(array.at(0).toDouble(), array.at(1).toDouble(), array.at(2).toDouble());
}

ZELMathPoint ToPoint(const QJsonValue& value)
{
    const ZELMathVector vector = ToVector(value);
    return ZELMathPoint(vector.GetX(), vector.GetY(), vector.GetZ());
}

QList<QJsonObject> ToObjects(const QJsonValue& value)
{
    QList<QJsonObject> objects;
    for (const QJsonValue& entry : value.toArray())
        objects.append(entry.toObject());
    return objects;
}

QList<QJsonObject> GetProcedures(const QJsonObject& document)
{
    return ToObjects(document.value(QStringLiteral("program")).toObject().value(QStringLiteral("procedures")));
}

QList<QJsonObject> GetLayupProcedures(const QJsonObject& document)
{
    QList<QJsonObject> procedures = GetProcedures(document);
    procedures.removeIf([](const QJsonObject& procedure) {
        return procedure.value(QStringLiteral("kind")).toString() != QLatin1String("rollLayup");
    });
    return procedures;
}

QList<QJsonObject> GetTrajectories(const QJsonObject& owner)
{
    return ToObjects(owner.value(QStringLiteral("trajectories")));
}

QList<QJsonObject> GetPoints(const QJsonObject& trajectory)
{
    return ToObjects(trajectory.value(QStringLiteral("points")));
}

QList<QJsonObject> GetPointsOf(const QList<QJsonObject>& trajectories)
{
    QList<QJsonObject> points;
    for (const QJsonObject& trajectory : trajectories)
        points.append(GetPoints(trajectory));
    return points;
}

QString KindOf(const QJsonObject& object)
{
    return object.value(QStringLiteral("kind")).toString();
}

ZELMathPoint OriginOf(const QJsonObject& point)
{
    return ToPoint(point.value(QStringLiteral("origin")));
}

ZELMathVector TravelOf(const QJsonObject& point)
{
    return ToVector(point.value(QStringLiteral("travel")));
}

ZELMathVector NormalOf(const QJsonObject& point)
{
    return ToVector(point.value(QStringLiteral("normal")));
}

// Every point of every course and link of the layup procedures.
QList<QJsonObject> GetLayupPoints(const QJsonObject& document)
{
    QList<QJsonObject> points;
    for (const QJsonObject& procedure : GetLayupProcedures(document)) {
        for (const QJsonObject& link : ToObjects(procedure.value(QStringLiteral("links"))))
            points.append(GetPointsOf(GetTrajectories(link)));
        for (const QJsonObject& course : ToObjects(procedure.value(QStringLiteral("courses"))))
            points.append(GetPointsOf(GetTrajectories(course)));
    }
    return points;
}

QList<QJsonObject> GetTowTrajectories(const QJsonObject& course)
{
    QList<QJsonObject> tows = GetTrajectories(course);
    tows.removeIf([](const QJsonObject& trajectory) { return KindOf(trajectory) != QLatin1String("tow"); });
    return tows;
}

QJsonObject ReadDocument(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    EXPECT_TRUE(document.isObject());
    return document.object();
}

QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

// "1 234 567": groups of three digits apart.
QString Grouped(qint64 count)
{
    QString digits = QString::number(count);
    for (qsizetype i = digits.size() - 3; i > 0; i -= 3)
        digits.insert(i, QLatin1Char(' '));
    return digits;
}

// The one line the command ends with, from the file it wrote: its
// procedures, courses, links, points of every trajectory and bytes.
QString WrittenLineFor(const QString& path)
{
    const QJsonObject document = ReadDocument(path);
    qint64 courses = 0;
    qint64 links = 0;
    qint64 points = 0;
    for (const QJsonObject& procedure : GetProcedures(document)) {
        const QList<QJsonObject> procedureLinks = ToObjects(procedure.value(QStringLiteral("links")));
        const QList<QJsonObject> procedureCourses = ToObjects(procedure.value(QStringLiteral("courses")));
        links += procedureLinks.size();
        courses += procedureCourses.size();
        for (const QJsonObject& owner : procedureLinks + procedureCourses + QList<QJsonObject>{procedure})
            points += GetPointsOf(GetTrajectories(owner)).size();
    }
    return QStringLiteral("Wrote %1: %2 procedures, %3 courses, %4 links, %5 points, %6 bytes\n")
        .arg(path, QString::number(GetProcedures(document).size()), Grouped(courses), Grouped(links), Grouped(points),
             Grouped(QFileInfo(path).size()));
}

// Runs the command with `options` and "-o <directory>/<name>"; expects it
// to succeed, showing at most its progress on stderr and saying what it
// wrote on stdout, and returns the file's path.
QString Generate(const QTemporaryDir& directory, const QString& name, const QStringList& options)
{
    const QString path = QDir(directory.path()).filePath(name);
    const ZELKinToolRun run = RunZelkin(QStringList{Command} + options + QStringList{QStringLiteral("-o"), path});
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    for (const QString& line : run.GetErrorLines())
        EXPECT_TRUE(line.startsWith(QStringLiteral("Generating the toolpath: "))) << line.toStdString();
    EXPECT_EQ(run.standardOutput, WrittenLineFor(path));
    return path;
}

// ---------------------------------------------------------------------------
// Checks

::testing::AssertionResult IsUnitVector(const ZELMathVector& vector)
{
    return ZELTest::SameDouble(1.0, vector.GetLength(), ZELTest::kTight);
}

::testing::AssertionResult SamePoint(const ZELMathPoint& expected, const ZELMathPoint& actual, double tolerance)
{
    if (expected.IsEqual(actual, tolerance))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "expected (" << expected.GetX() << ", " << expected.GetY() << ", "
                                         << expected.GetZ() << "), got (" << actual.GetX() << ", " << actual.GetY()
                                         << ", " << actual.GetZ() << ")";
}

::testing::AssertionResult SameVector(const ZELMathVector& expected, const ZELMathVector& actual, double tolerance)
{
    return SamePoint(ZELMathPoint() + expected, ZELMathPoint() + actual, tolerance);
}

// The tows a mask lays, as a set of flags.
std::vector<bool> TowsOf(const QString& mask)
{
    std::vector<bool> tows;
    for (const QChar c : mask)
        tows.push_back(c == QLatin1Char('1'));
    return tows;
}

// How far a point lies from a part's surface (mm, positive outside) and the
// surface's normal there, from the part's documented shape and place.
struct SurfaceProbe
{
    double distance;
    ZELMathVector normal;
};

SurfaceProbe ProbeFlatPanel(const ZELMathPoint& point)
{
    return {point.GetZ() - kTopZ, ZELMathVector(0.0, 0.0, 1.0)};
}

// Radius 1500 mm, axis along X through Y 4575 with the crest at the top.
SurfaceProbe ProbeCylinderSection(const ZELMathPoint& point)
{
    const ZELMathVector fromAxis(0.0, point.GetY() - kCentreY, point.GetZ() - (kTopZ - 1500.0));
    return {fromAxis.GetLength() - 1500.0, fromAxis.GetNormalized()};
}

// Radius 2500 mm, the top of the sphere at the centre.
SurfaceProbe ProbeDome(const ZELMathPoint& point)
{
    const ZELMathVector fromCentre = point - ZELMathPoint(kCentreX, kCentreY, kTopZ - 2500.0);
    return {fromCentre.GetLength() - 2500.0, fromCentre.GetNormalized()};
}

// Whether a point lies over the part's boundary, from its documented size.
bool IsOverFlatPanel(const ZELMathPoint& point)
{
    return std::abs(point.GetX() - kCentreX) <= 1500.0 && std::abs(point.GetY() - kCentreY) <= 750.0;
}

bool IsOverCylinderSection(const ZELMathPoint& point)
{
    const double angle = std::atan2(point.GetY() - kCentreY, point.GetZ() - (kTopZ - 1500.0));
    return std::abs(point.GetX() - kCentreX) <= 1500.0 && std::abs(angle) <= 35.0 * kPi / 180.0;
}

bool IsOverDome(const ZELMathPoint& point)
{
    return ZELMathVector2D(point.GetX() - kCentreX, point.GetY() - kCentreY).GetLength() <= 1250.0;
}

// ---------------------------------------------------------------------------
// The three parts, each generated once for the whole suite with the
// defaults: 8 courses of 50 points, plies 0, 45, -45 and 90.

struct PartCase
{
    const char* name;
    const char* part;
    const char* programName;
    const char* propagation;
    std::function<SurfaceProbe(const ZELMathPoint&)> probe;
    std::function<bool(const ZELMathPoint&)> isOverPart;
};
ZELTEST_PRINT_CASE_BY_NAME(PartCase);

const PartCase FlatPanel{"FlatPanel", "flat", "flat-panel", "angle", ProbeFlatPanel, IsOverFlatPanel};
const PartCase CylinderSection{"CylinderSection", "cylinder", "cylinder-section", "angle", ProbeCylinderSection,
                               IsOverCylinderSection};
const PartCase Dome{"Dome", "dome", "dome", "parallel", ProbeDome, IsOverDome};

class ZELKinToolGenerateToolpath : public ::testing::TestWithParam<PartCase>
{
protected:
    static void SetUpTestSuite()
    {
        directory = new QTemporaryDir();
        documents = new std::map<std::string, QJsonObject>();
        for (const PartCase& part : {FlatPanel, CylinderSection, Dome}) {
            const QString path = Generate(*directory, QLatin1String(part.part) + QStringLiteral(".json"),
                                          {QStringLiteral("--part"), QLatin1String(part.part),
                                           QStringLiteral("--plies"), Plies});
            (*documents)[part.part] = ReadDocument(path);
        }
    }

    static void TearDownTestSuite()
    {
        delete documents;
        documents = nullptr;
        delete directory;
        directory = nullptr;
    }

    static const QJsonObject& GetDocument() { return documents->at(GetParam().part); }

    static QString GetPath() { return QDir(directory->path()).filePath(QLatin1String(GetParam().part) + ".json"); }

    static QList<QJsonObject> GetCourses(const QJsonObject& procedure)
    {
        return ToObjects(procedure.value(QStringLiteral("courses")));
    }

    static QList<QJsonObject> GetLinks(const QJsonObject& procedure)
    {
        return ToObjects(procedure.value(QStringLiteral("links")));
    }

    static QList<QJsonObject> GetAllCourses()
    {
        QList<QJsonObject> courses;
        for (const QJsonObject& procedure : GetLayupProcedures(GetDocument()))
            courses.append(GetCourses(procedure));
        return courses;
    }

    static inline QTemporaryDir* directory = nullptr;
    static inline std::map<std::string, QJsonObject>* documents = nullptr;
};

TEST_P(ZELKinToolGenerateToolpath, WritesFormatVersionAndAProgramNamedAfterThePart)
{
    const QJsonObject& document = GetDocument();
    EXPECT_EQ(document.value(QStringLiteral("format")).toString(), QStringLiteral("zelkin-toolpath"));
    ASSERT_TRUE(document.value(QStringLiteral("version")).isDouble());
    EXPECT_EQ(document.value(QStringLiteral("version")).toInt(), 1);
    EXPECT_TRUE(ReadBytes(GetPath()).contains("\"version\": 1,")) << "the version is written as an integer";
    const QJsonObject program = document.value(QStringLiteral("program")).toObject();
    EXPECT_EQ(program.value(QStringLiteral("name")).toString(), QLatin1String(GetParam().programName));
    EXPECT_TRUE(program.value(QStringLiteral("procedures")).isArray());
}

TEST_P(ZELKinToolGenerateToolpath, WritesOneRollLayupProcedurePerPlyThenTheProbing)
{
    const QList<QJsonObject> procedures = GetProcedures(GetDocument());
    ASSERT_EQ(procedures.size(), PlyAngles.size() + 1);
    for (int ply = 0; ply < PlyAngles.size(); ++ply) {
        const QJsonObject& procedure = procedures.at(ply);
        EXPECT_EQ(KindOf(procedure), QStringLiteral("rollLayup"));
        EXPECT_EQ(procedure.value(QStringLiteral("name")).toString(), ProcedureNames.at(ply));
        EXPECT_GT(procedure.value(QStringLiteral("addingFeedrate")).toDouble(), 0.0);
        EXPECT_GT(procedure.value(QStringLiteral("cuttingFeedrate")).toDouble(), 0.0);
        const QJsonObject material = procedure.value(QStringLiteral("material")).toObject();
        EXPECT_FALSE(material.value(QStringLiteral("id")).toString().isEmpty());
        const QList<QJsonObject> plies = ToObjects(procedure.value(QStringLiteral("plies")));
        ASSERT_EQ(plies.size(), 1);
        const double orientation = plies.first().value(QStringLiteral("orientation")).toDouble();
        EXPECT_TRUE(ZELTest::SameDouble(PlyAngles.at(ply), orientation, ZELTest::kExact));
        EXPECT_EQ(plies.first().value(QStringLiteral("propagation")).toString(),
                  QLatin1String(GetParam().propagation));
        EXPECT_FALSE(plies.first().value(QStringLiteral("name")).toString().isEmpty());
    }
    EXPECT_EQ(KindOf(procedures.last()), QStringLiteral("probing"));
}

TEST_P(ZELKinToolGenerateToolpath, SafetyPlaneLiesLevelAboveEveryPointOnThePart)
{
    for (const QJsonObject& procedure : GetProcedures(GetDocument())) {
        const QJsonObject plane = procedure.value(QStringLiteral("safetyPlane")).toObject();
        EXPECT_TRUE(SamePoint(ZELMathPoint(kCentreX, kCentreY, kSafetyZ),
                              ToPoint(plane.value(QStringLiteral("origin"))), kMillimetres));
        EXPECT_TRUE(SameVector(ZELMathVector(0.0, 0.0, 1.0), ToVector(plane.value(QStringLiteral("normal"))),
                               ZELTest::kExact));
    }
    for (const QJsonObject& course : GetAllCourses()) {
        for (const QJsonObject& point : GetPointsOf(GetTrajectories(course)))
            EXPECT_LT(OriginOf(point).GetZ(), kSafetyZ);
    }
}

TEST_P(ZELKinToolGenerateToolpath, HasOneLinkMoreThanCoursesInEachPly)
{
    for (const QJsonObject& procedure : GetLayupProcedures(GetDocument())) {
        EXPECT_EQ(GetCourses(procedure).size(), 8);
        EXPECT_EQ(GetLinks(procedure).size(), GetCourses(procedure).size() + 1);
    }
}

TEST_P(ZELKinToolGenerateToolpath, LinksApproachFromAboveTheSafetyPlaneTransferAndRetract)
{
    for (const QJsonObject& procedure : GetLayupProcedures(GetDocument())) {
        const QList<QJsonObject> links = GetLinks(procedure);
        for (int i = 0; i < links.size(); ++i) {
            const bool end = i == 0 || i == links.size() - 1;
            EXPECT_EQ(links.at(i).value(QStringLiteral("pointsDetail")).toString(),
                      end ? QStringLiteral("low") : QStringLiteral("medium"))
                << "link " << i;
            const QList<QJsonObject> trajectories = GetTrajectories(links.at(i));
            ASSERT_FALSE(trajectories.isEmpty());
            for (const QJsonObject& trajectory : trajectories) {
                EXPECT_EQ(KindOf(trajectory), QStringLiteral("offPart"));
                EXPECT_GT(trajectory.value(QStringLiteral("feedrate")).toDouble(), 0.0);
                EXPECT_GE(GetPoints(trajectory).size(), 1);
            }
        }
        const QList<QJsonObject> approach = GetPointsOf(GetTrajectories(links.first()));
        const QList<QJsonObject> retract = GetPointsOf(GetTrajectories(links.last()));
        EXPECT_EQ(links.first().value(QStringLiteral("name")).toString(), QStringLiteral("approach"));
        EXPECT_EQ(links.last().value(QStringLiteral("name")).toString(), QStringLiteral("retract"));
        EXPECT_GT(OriginOf(approach.first()).GetZ(), kSafetyZ);
        EXPECT_GT(OriginOf(retract.last()).GetZ(), kSafetyZ);
    }
}

TEST_P(ZELKinToolGenerateToolpath, EachLinkIntoACourseEndsOnTheCoursesApproachPointAtTheApproachFeed)
{
    for (const QJsonObject& procedure : GetLayupProcedures(GetDocument())) {
        const QList<QJsonObject> links = GetLinks(procedure);
        const QList<QJsonObject> courses = GetCourses(procedure);
        ASSERT_EQ(links.size(), courses.size() + 1);
        for (int i = 0; i < courses.size(); ++i) {
            const QList<QJsonObject> descent = GetTrajectories(links.at(i));
            ASSERT_FALSE(descent.isEmpty());
            const QJsonObject end = GetPoints(descent.last()).last();
            const QJsonObject approach = GetPoints(GetTrajectories(courses.at(i)).first()).first();
            // The same frame, so that the head stands on the course's first
            // position, wrist included, when the course starts.
            EXPECT_EQ(end, approach) << "course " << i;
            EXPECT_TRUE(ZELTest::SameDouble(6000.0, descent.last().value(QStringLiteral("feedrate")).toDouble(),
                                            ZELTest::kExact));
        }
    }
}

TEST_P(ZELKinToolGenerateToolpath, CoursesChainApproachRollInTowsRollOutAndRetract)
{
    for (const QJsonObject& course : GetAllCourses()) {
        const QList<QJsonObject> trajectories = GetTrajectories(course);
        ASSERT_GE(trajectories.size(), 4);
        EXPECT_EQ(KindOf(trajectories.first()), QStringLiteral("offPart"));
        EXPECT_EQ(KindOf(trajectories.at(1)), QStringLiteral("onPart"));
        for (int i = 2; i < trajectories.size() - 2; ++i) {
            EXPECT_EQ(KindOf(trajectories.at(i)), QStringLiteral("tow"));
            EXPECT_GE(GetPoints(trajectories.at(i)).size(), 2);
        }
        EXPECT_EQ(KindOf(trajectories.at(trajectories.size() - 2)), QStringLiteral("onPart"));
        EXPECT_EQ(KindOf(trajectories.last()), QStringLiteral("offPart"));

        const QJsonObject configuration = course.value(QStringLiteral("machineConfiguration")).toObject();
        const QJsonObject roller = configuration.value(QStringLiteral("roller")).toObject();
        const QJsonObject head = configuration.value(QStringLiteral("head")).toObject();
        EXPECT_FALSE(roller.value(QStringLiteral("name")).toString().isEmpty());
        EXPECT_GT(roller.value(QStringLiteral("width")).toDouble(), 0.0);
        EXPECT_EQ(head.value(QStringLiteral("name")).toString(), QStringLiteral("H1"));
        EXPECT_TRUE(ZELTest::SameDouble(kTowWidth, head.value(QStringLiteral("towWidth")).toDouble(), ZELTest::kExact));

        for (const QJsonObject& trajectory : trajectories) {
            EXPECT_GT(trajectory.value(QStringLiteral("feedrate")).toDouble(), 0.0);
            if (KindOf(trajectory) == QLatin1String("offPart"))
                continue;
            for (const char* tilt : {"forwardTilt", "sideTilt", "smoothingAngle"})
                EXPECT_TRUE(ZELTest::SameDouble(0.0, trajectory.value(QLatin1String(tilt)).toDouble(-1.0),
                                                ZELTest::kExact))
                    << tilt;
        }
    }
}

TEST_P(ZELKinToolGenerateToolpath, RollInAndRollOutPointsLieInTheirTrajectoriesOnTheSurface)
{
    for (const QJsonObject& course : GetAllCourses()) {
        const QList<QJsonObject> trajectories = GetTrajectories(course);
        const QList<QJsonObject> rollIn = GetPoints(trajectories.at(1));
        const QList<QJsonObject> rollOut = GetPoints(trajectories.at(trajectories.size() - 2));
        const int rollInPoint = course.value(QStringLiteral("rollInPoint")).toInt(-1);
        const int rollOutPoint = course.value(QStringLiteral("rollOutPoint")).toInt(-1);
        ASSERT_GE(rollInPoint, 0);
        ASSERT_LT(rollInPoint, rollIn.size());
        // The roll-out's points up to the lift-off lie on the surface.
        ASSERT_GE(rollOutPoint, 1);
        ASSERT_LT(rollOutPoint, rollOut.size());
        // The roller comes down from the lead-in onto the surface at the
        // roll-in point, and has left it at the roll-out point.
        EXPECT_GT(GetParam().probe(OriginOf(rollIn.first())).distance, 1.0);
        EXPECT_TRUE(ZELTest::SameDouble(0.0, GetParam().probe(OriginOf(rollIn.at(rollInPoint))).distance,
                                        kMillimetres));
        EXPECT_GT(GetParam().probe(OriginOf(rollOut.at(rollOutPoint))).distance, 1.0);
        EXPECT_TRUE(ZELTest::SameDouble(0.0, GetParam().probe(OriginOf(rollOut.at(rollOutPoint - 1))).distance,
                                        kMillimetres));
    }
}

TEST_P(ZELKinToolGenerateToolpath, ConsecutiveTrajectoriesShareTheirJunctionPoint)
{
    for (const QJsonObject& course : GetAllCourses()) {
        const QList<QJsonObject> trajectories = GetTrajectories(course);
        for (int i = 0; i + 1 < trajectories.size(); ++i) {
            const QJsonObject last = GetPoints(trajectories.at(i)).last();
            const QJsonObject first = GetPoints(trajectories.at(i + 1)).first();
            EXPECT_TRUE(SamePoint(OriginOf(last), OriginOf(first), ZELTest::kExact)) << "junction " << i;
            EXPECT_TRUE(SameVector(TravelOf(last), TravelOf(first), ZELTest::kExact)) << "junction " << i;
            EXPECT_TRUE(SameVector(NormalOf(last), NormalOf(first), ZELTest::kExact)) << "junction " << i;
        }
    }
}

TEST_P(ZELKinToolGenerateToolpath, MasksAndTowLengthsHaveOneEntryPerTowOfTheHead)
{
    for (const QJsonObject& course : GetAllCourses()) {
        const QString mask = course.value(QStringLiteral("towMask")).toString();
        ASSERT_EQ(mask.size(), kHeadTows);
        EXPECT_TRUE(std::all_of(mask.cbegin(), mask.cend(),
                                [](QChar c) { return c == QLatin1Char('0') || c == QLatin1Char('1'); }));
        const QJsonArray lengths = course.value(QStringLiteral("towLengths")).toArray();
        ASSERT_EQ(lengths.size(), kHeadTows);
        for (int tow = 0; tow < kHeadTows; ++tow) {
            if (mask.at(tow) == QLatin1Char('1'))
                EXPECT_GT(lengths.at(tow).toDouble(), 100.0) << "tow " << tow + 1;
            else
                EXPECT_TRUE(ZELTest::SameDouble(0.0, lengths.at(tow).toDouble(), ZELTest::kExact));
        }

        std::vector<bool> laid(kHeadTows, false);
        QString previous;
        for (const QJsonObject& tow : GetTowTrajectories(course)) {
            const QString towMask = tow.value(QStringLiteral("towMask")).toString();
            ASSERT_EQ(towMask.size(), kHeadTows);
            EXPECT_NE(towMask, previous) << "a new tow trajectory starts only where the tows change";
            previous = towMask;
            const std::vector<bool> tows = TowsOf(towMask);
            std::transform(laid.cbegin(), laid.cend(), tows.cbegin(), laid.begin(), std::logical_or<>());
        }
        EXPECT_EQ(laid, TowsOf(mask)) << "the course's mask is every tow its trajectories lay";
    }
}

TEST_P(ZELKinToolGenerateToolpath, TowsAreAddedAndCutInGroupsOfFourNeighbours)
{
    for (const QJsonObject& course : GetAllCourses()) {
        for (const QJsonObject& tow : GetTowTrajectories(course)) {
            const QString mask = tow.value(QStringLiteral("towMask")).toString();
            for (int group = 0; group < kHeadTows; group += 4) {
                const QString tows = mask.mid(group, 4);
                EXPECT_TRUE(tows == QStringLiteral("0000") || tows == QStringLiteral("1111")) << mask.toStdString();
            }
        }
        EXPECT_LE(GetTowTrajectories(course).size(), 7);
    }
}

TEST_P(ZELKinToolGenerateToolpath, TotalMaterialLengthIsTheSumOfTheTowLengths)
{
    for (const QJsonObject& procedure : GetLayupProcedures(GetDocument())) {
        double sum = 0.0;
        for (const QJsonObject& course : GetCourses(procedure)) {
            for (const QJsonValue& length : course.value(QStringLiteral("towLengths")).toArray())
                sum += length.toDouble();
        }
        EXPECT_GT(sum, 0.0);
        EXPECT_TRUE(ZELTest::SameDouble(sum, procedure.value(QStringLiteral("totalMaterialLength")).toDouble(),
                                        kMillimetres * 100.0));
    }
}

TEST_P(ZELKinToolGenerateToolpath, EveryPointHasAUnitTravelPerpendicularToAUnitNormal)
{
    QList<QJsonObject> points = GetLayupPoints(GetDocument());
    points.append(GetPointsOf(GetTrajectories(GetProcedures(GetDocument()).last())));
    ASSERT_GT(points.size(), 1000);
    for (const QJsonObject& point : points) {
        ASSERT_TRUE(point.contains(QStringLiteral("travel")));
        ASSERT_TRUE(point.contains(QStringLiteral("normal")));
        EXPECT_TRUE(IsUnitVector(TravelOf(point)));
        EXPECT_TRUE(IsUnitVector(NormalOf(point)));
        EXPECT_TRUE(ZELTest::SameDouble(0.0, TravelOf(point).Dot(NormalOf(point)), ZELTest::kTight));
    }
}

TEST_P(ZELKinToolGenerateToolpath, LaidPointsLieOnTheSurfaceWithItsNormal)
{
    for (const QJsonObject& course : GetAllCourses()) {
        for (const QJsonObject& point : GetPointsOf(GetTowTrajectories(course))) {
            const SurfaceProbe surface = GetParam().probe(OriginOf(point));
            EXPECT_TRUE(ZELTest::SameDouble(0.0, surface.distance, kMillimetres));
            EXPECT_TRUE(SameVector(surface.normal, NormalOf(point), ZELTest::kTight));
        }
    }
}

TEST_P(ZELKinToolGenerateToolpath, TravelPointsAlongTheCourse)
{
    for (const QJsonObject& course : GetAllCourses()) {
        const QList<QJsonObject> points = GetPointsOf(GetTowTrajectories(course));
        for (int i = 0; i + 1 < points.size(); ++i) {
            const ZELMathVector chord = OriginOf(points.at(i + 1)) - OriginOf(points.at(i));
            // Junctions appear twice; the surfaces bend by well under a degree
            // between neighbouring points.
            if (chord.GetLength() < 1.0)
                continue;
            EXPECT_GT(chord.GetNormalized().Dot(TravelOf(points.at(i))), std::cos(kPi / 180.0));
        }
    }
}

TEST_P(ZELKinToolGenerateToolpath, FirstPlyChangesToTheEightTowRollerForItsLastCourseAndTheSecondPlyBack)
{
    const QList<QJsonObject> procedures = GetLayupProcedures(GetDocument());
    // Each tool change: ply, link, previous roller, next roller.
    std::vector<std::tuple<int, int, QString, QString>> changes;
    for (int ply = 0; ply < procedures.size(); ++ply) {
        const QList<QJsonObject> links = GetLinks(procedures.at(ply));
        for (int i = 0; i < links.size(); ++i) {
            if (!links.at(i).contains(QStringLiteral("toolChange")))
                continue;
            const QJsonObject change = links.at(i).value(QStringLiteral("toolChange")).toObject();
            const int removePoint = change.value(QStringLiteral("removePoint")).toInt(-1);
            EXPECT_GE(removePoint, 0);
            EXPECT_LT(removePoint, GetPointsOf(GetTrajectories(links.at(i))).size());
            for (const char* side : {"previous", "next"}) {
                const QJsonObject head =
                    change.value(QLatin1String(side)).toObject().value(QStringLiteral("head")).toObject();
                EXPECT_EQ(head.value(QStringLiteral("name")).toString(), QStringLiteral("H1"));
                EXPECT_TRUE(ZELTest::SameDouble(kTowWidth, head.value(QStringLiteral("towWidth")).toDouble(),
                                                ZELTest::kExact));
            }
            const QJsonObject previous =
                change.value(QStringLiteral("previous")).toObject().value(QStringLiteral("roller")).toObject();
            const QJsonObject next =
                change.value(QStringLiteral("next")).toObject().value(QStringLiteral("roller")).toObject();
            changes.emplace_back(ply, i, previous.value(QStringLiteral("name")).toString(),
                                 next.value(QStringLiteral("name")).toString());
            // The course the link leads into is laid with the new roller.
            const QJsonObject roller = GetCourses(procedures.at(ply))
                                           .at(i)
                                           .value(QStringLiteral("machineConfiguration"))
                                           .toObject()
                                           .value(QStringLiteral("roller"))
                                           .toObject();
            EXPECT_EQ(roller, next);
        }
    }
    const std::vector<std::tuple<int, int, QString, QString>> expected{
        {0, 7, QStringLiteral("R16-4in"), QStringLiteral("R8-2in")},
        {1, 0, QStringLiteral("R8-2in"), QStringLiteral("R16-4in")}};
    EXPECT_EQ(changes, expected);

    const QJsonObject narrow = GetCourses(procedures.first()).last();
    const QJsonObject roller =
        narrow.value(QStringLiteral("machineConfiguration")).toObject().value(QStringLiteral("roller")).toObject();
    EXPECT_TRUE(ZELTest::SameDouble(8 * kTowWidth, roller.value(QStringLiteral("width")).toDouble(), ZELTest::kTight));
    EXPECT_EQ(narrow.value(QStringLiteral("towMask")).toString(), MiddleEightTows);
    const QJsonObject wide = GetCourses(procedures.first())
                                 .first()
                                 .value(QStringLiteral("machineConfiguration"))
                                 .toObject()
                                 .value(QStringLiteral("roller"))
                                 .toObject();
    EXPECT_TRUE(ZELTest::SameDouble(16 * kTowWidth, wide.value(QStringLiteral("width")).toDouble(), ZELTest::kTight));
}

TEST_P(ZELKinToolGenerateToolpath, ProbingVisitsThreeSphereTargetsOnTheToolAroundThePart)
{
    const QJsonObject probing = GetProcedures(GetDocument()).last();
    EXPECT_EQ(probing.value(QStringLiteral("name")).toString(), QStringLiteral("probe tool"));
    EXPECT_TRUE(probing.value(QStringLiteral("safetyPlane")).isObject());
    const QList<QJsonObject> targets = ToObjects(probing.value(QStringLiteral("probingPoints")));
    const QList<QJsonObject> trajectories = GetTrajectories(probing);
    ASSERT_EQ(targets.size(), 3);
    ASSERT_EQ(trajectories.size(), 4);
    for (const QJsonObject& target : targets)
        EXPECT_TRUE(ZELTest::SameDouble(12.7, target.value(QStringLiteral("diameter")).toDouble(), ZELTest::kExact));
    for (const QJsonObject& trajectory : trajectories) {
        EXPECT_EQ(KindOf(trajectory), QStringLiteral("offPart"));
        EXPECT_GE(GetPoints(trajectory).size(), 1);
    }
    // Target i is the last point of trajectory i: the centre of a sphere
    // standing on the tool, beyond the part's edge.
    for (int i = 0; i < 3; ++i) {
        const ZELMathPoint centre = OriginOf(GetPoints(trajectories.at(i)).last());
        EXPECT_TRUE(ZELTest::SameDouble(6.35, GetParam().probe(centre).distance, kMillimetres));
        EXPECT_FALSE(GetParam().isOverPart(centre));
    }
    EXPECT_GT(OriginOf(GetPoints(trajectories.first()).first()).GetZ(), kSafetyZ);
    EXPECT_GT(OriginOf(GetPoints(trajectories.last()).last()).GetZ(), kSafetyZ);
}

TEST_P(ZELKinToolGenerateToolpath, EveryPointIsReachedWithinTheTravelOfTheExampleMachine)
{
    ZELGeoContainer container;
    QFile file(GetExampleMachinePath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ZELKinMachine* machine = ZELKinMachineLoader(&container).LoadFromXML(&file);
    ASSERT_NE(machine, nullptr);
    const std::unique_ptr<ZELKinSolver> solver(machine->CreateSolver());
    ASSERT_NE(solver, nullptr);
    const QList<ZELKinVariable*> linear{machine->GetVariable(QStringLiteral("X")),
                                        machine->GetVariable(QStringLiteral("Y")),
                                        machine->GetVariable(QStringLiteral("Z"))};
    const auto isInsideTravel = [&linear](const QList<double>& values) {
        for (int axis = 0; axis < 3; ++axis) {
            if (values.at(axis) < linear.at(axis)->GetMinimum() || values.at(axis) > linear.at(axis)->GetMaximum())
                return false;
        }
        return true;
    };

    int solved = 0;
    for (const QJsonObject& point : GetLayupPoints(GetDocument())) {
        const ZELMathVector travel = TravelOf(point);
        const ZELMathVector normal = NormalOf(point);
        const ZELMathAxis frame(OriginOf(point), travel, normal.Cross(travel), normal);
        const QList<ZELKinSolution> candidates = solver->Solve(frame, false);
        ASSERT_FALSE(candidates.isEmpty());
        const bool inside = std::any_of(candidates.cbegin(), candidates.cend(), [&](const ZELKinSolution& candidate) {
            const ZELKinSolution axes = solver->FromTraori(candidate);
            return isInsideTravel({axes.GetVariableValue(linear.at(0)), axes.GetVariableValue(linear.at(1)),
                                   axes.GetVariableValue(linear.at(2))});
        });
        EXPECT_TRUE(inside) << "no candidate within X, Y and Z for the point at " << OriginOf(point).GetX() << ", "
                            << OriginOf(point).GetY() << ", " << OriginOf(point).GetZ();
        ++solved;
    }
    EXPECT_GT(solved, 1000);

    // Probing positions take the tip's coordinates as they are.
    for (const QJsonObject& point : GetPointsOf(GetTrajectories(GetProcedures(GetDocument()).last()))) {
        const ZELMathPoint tip = OriginOf(point);
        EXPECT_TRUE(isInsideTravel({tip.GetX(), tip.GetY(), tip.GetZ()}));
    }
}

TEST_P(ZELKinToolGenerateToolpath, SameArgumentsGiveTheSameBytes)
{
    const QTemporaryDir again;
    const QString path = Generate(again, QStringLiteral("again.json"),
                                  {QStringLiteral("--part"), QLatin1String(GetParam().part), QStringLiteral("--plies"),
                                   Plies});
    const QByteArray first = ReadBytes(GetPath());
    EXPECT_FALSE(first.isEmpty());
    EXPECT_TRUE(first == ReadBytes(path));
}

INSTANTIATE_TEST_SUITE_P(Parts, ZELKinToolGenerateToolpath, ::testing::Values(FlatPanel, CylinderSection, Dome),
                         [](const ::testing::TestParamInfo<PartCase>& info) { return std::string(info.param.name); });

// ---------------------------------------------------------------------------
// Geometry worked out by hand for single plies.

QJsonObject GenerateOne(const QStringList& options)
{
    const QTemporaryDir directory;
    return ReadDocument(Generate(directory, QStringLiteral("toolpath.json"), options));
}

TEST(ZELKinToolGenerateToolpathGeometry, FlatPanelCoursesAtZeroDegreesRunAlongXFromEdgeToEdgeSideBySide)
{
    const QJsonObject document = GenerateOne({QStringLiteral("--part"), QStringLiteral("flat"),
                                              QStringLiteral("--plies"), QStringLiteral("0"),
                                              QStringLiteral("--courses"), QStringLiteral("8")});
    const QList<QJsonObject> courses = ToObjects(GetLayupProcedures(document).first().value(QStringLiteral("courses")));
    ASSERT_EQ(courses.size(), 8);
    for (int i = 0; i < courses.size(); ++i) {
        // Eight roller widths of 101.6 mm side by side, centred on the panel.
        const double y = kCentreY + (i - 3.5) * 101.6;
        const QList<QJsonObject> tows = GetTowTrajectories(courses.at(i));
        ASSERT_EQ(tows.size(), 1);
        const QList<QJsonObject> points = GetPoints(tows.first());
        // The panel reaches 1500 mm either way of the centre along X.
        EXPECT_TRUE(SamePoint(ZELMathPoint(4500.0, y, kTopZ), OriginOf(points.first()), kMillimetres));
        EXPECT_TRUE(SamePoint(ZELMathPoint(7500.0, y, kTopZ), OriginOf(points.last()), kMillimetres));
        for (const QJsonObject& point : points)
            EXPECT_TRUE(SameVector(ZELMathVector(1.0, 0.0, 0.0), TravelOf(point), ZELTest::kExact));
        const QString mask = i == 7 ? MiddleEightTows : AllTows;
        EXPECT_EQ(tows.first().value(QStringLiteral("towMask")).toString(), mask);
        const QJsonArray lengths = courses.at(i).value(QStringLiteral("towLengths")).toArray();
        for (int tow = 0; tow < kHeadTows; ++tow)
            EXPECT_TRUE(ZELTest::SameDouble(mask.at(tow) == QLatin1Char('1') ? 3000.0 : 0.0,
                                            lengths.at(tow).toDouble(), kMillimetres));
    }
    // Fifteen full courses' worth of 16 tows and one of 8, 3000 mm each.
    const QJsonObject procedure = GetLayupProcedures(document).first();
    EXPECT_TRUE(ZELTest::SameDouble((7 * 16 + 8) * 3000.0,
                                    procedure.value(QStringLiteral("totalMaterialLength")).toDouble(), kMillimetres));
}

// At +45 degrees the courses cross the panel from its near long edge (Y 3825)
// to its far one (Y 5325). The tows on the left of the travel reach each edge
// first, so tows 13 to 16 are added first and tows 1 to 4 cut last, each group
// where the line through the middle of its four tows crosses the edge.
TEST(ZELKinToolGenerateToolpathGeometry, FlatPanelGroupsAreAddedAndCutWhereTheyCrossTheEdge)
{
    // The second ply: the first one ends with a narrower course.
    const QJsonObject document = GenerateOne({QStringLiteral("--part"), QStringLiteral("flat"),
                                              QStringLiteral("--plies"), QStringLiteral("0,45"),
                                              QStringLiteral("--courses"), QStringLiteral("4")});
    const QStringList masks{QStringLiteral("0000000000001111"), QStringLiteral("0000000011111111"),
                            QStringLiteral("0000111111111111"), AllTows,
                            QStringLiteral("1111111111110000"), QStringLiteral("1111111100000000"),
                            QStringLiteral("1111000000000000")};
    // The middle of group g (tows 4g+1 .. 4g+4) lies this far left of the centre line.
    const auto groupOffset = [](int group) { return (4 * group + 1.5 - 7.5) * kTowWidth; };
    for (const QJsonObject& course :
         ToObjects(GetLayupProcedures(document).last().value(QStringLiteral("courses")))) {
        const QList<QJsonObject> tows = GetTowTrajectories(course);
        ASSERT_EQ(tows.size(), masks.size());
        for (int i = 0; i < tows.size(); ++i) {
            EXPECT_EQ(tows.at(i).value(QStringLiteral("towMask")).toString(), masks.at(i));
            // Trajectory i starts where group 3 - i is added (for i < 4) and
            // ends where group 3 - (i - 3) is cut (for i >= 3).
            const QJsonObject start = GetPoints(tows.at(i)).first();
            const QJsonObject end = GetPoints(tows.at(i)).last();
            const ZELMathVector left = NormalOf(start).Cross(TravelOf(start));
            if (i < 4) {
                const ZELMathPoint added = OriginOf(start) + groupOffset(3 - i) * left;
                EXPECT_TRUE(ZELTest::SameDouble(kCentreY - 750.0, added.GetY(), kMillimetres)) << "trajectory " << i;
            }
            if (i >= 3) {
                const ZELMathPoint cut = OriginOf(end) + groupOffset(3 - (i - 3)) * left;
                EXPECT_TRUE(ZELTest::SameDouble(kCentreY + 750.0, cut.GetY(), kMillimetres)) << "trajectory " << i;
            }
            EXPECT_TRUE(
                SameVector(ZELMathVector(std::sqrt(0.5), std::sqrt(0.5), 0.0), TravelOf(start), ZELTest::kTight));
        }
        // A group's tows run from its edge to the other: 1500 mm across the
        // panel at 45 degrees.
        for (const QJsonValue& length : course.value(QStringLiteral("towLengths")).toArray())
            EXPECT_TRUE(ZELTest::SameDouble(1500.0 * std::sqrt(2.0), length.toDouble(), kMillimetres));
    }
}

// Courses around the cylinder (90 degrees) run over the whole 70 degrees of
// the section, from 35 degrees on the -Y side to 35 degrees on the +Y side.
TEST(ZELKinToolGenerateToolpathGeometry, CylinderSectionHoopCoursesSpanSeventyDegreesOfArc)
{
    const QJsonObject document = GenerateOne({QStringLiteral("--part"), QStringLiteral("cylinder"),
                                              QStringLiteral("--plies"), QStringLiteral("0,90"),
                                              QStringLiteral("--courses"), QStringLiteral("2")});
    const double angle = 35.0 * kPi / 180.0;
    for (const QJsonObject& course :
         ToObjects(GetLayupProcedures(document).last().value(QStringLiteral("courses")))) {
        EXPECT_EQ(course.value(QStringLiteral("towMask")).toString(), AllTows);
        const QList<QJsonObject> points = GetPointsOf(GetTowTrajectories(course));
        EXPECT_TRUE(SameVector(ZELMathVector(0.0, -std::sin(angle), std::cos(angle)), NormalOf(points.first()),
                               ZELTest::kTight));
        EXPECT_TRUE(SameVector(ZELMathVector(0.0, std::sin(angle), std::cos(angle)), NormalOf(points.last()),
                               ZELTest::kTight));
        EXPECT_TRUE(SameVector(ZELMathVector(0.0, std::cos(angle), std::sin(angle)), TravelOf(points.first()),
                               ZELTest::kTight));
        // The arc of the section: 1500 mm times 70 degrees.
        for (const QJsonValue& length : course.value(QStringLiteral("towLengths")).toArray())
            EXPECT_TRUE(ZELTest::SameDouble(1500.0 * 2.0 * angle, length.toDouble(), kMillimetres));
    }
}

// Seen from above, the dome's rim is a circle of 2500 sin 30 = 1250 mm
// around the centre; each group is added and cut where the line through the
// middle of its tows, parallel to the course, meets it.
TEST(ZELKinToolGenerateToolpathGeometry, DomeGroupsAreAddedAndCutOnTheRim)
{
    const QJsonObject document = GenerateOne({QStringLiteral("--part"), QStringLiteral("dome"),
                                              QStringLiteral("--plies"), QStringLiteral("30"),
                                              QStringLiteral("--courses"), QStringLiteral("8")});
    const QList<QJsonObject> courses = ToObjects(GetLayupProcedures(document).first().value(QStringLiteral("courses")));
    ASSERT_EQ(courses.size(), 8);
    const ZELMathVector2D left(-std::sin(kPi / 6.0), std::cos(kPi / 6.0));
    for (const QJsonObject& course : courses) {
        const QList<QJsonObject> tows = GetTowTrajectories(course);
        QString previous(kHeadTows, QLatin1Char('0'));
        for (int i = 0; i <= tows.size(); ++i) {
            const QString mask = i < tows.size() ? tows.at(i).value(QStringLiteral("towMask")).toString()
                                                 : QString(kHeadTows, QLatin1Char('0'));
            const QJsonObject at = i < tows.size() ? GetPoints(tows.at(i)).first() : GetPoints(tows.last()).last();
            for (int group = 0; group < 4; ++group) {
                if (mask.mid(4 * group, 4) == previous.mid(4 * group, 4))
                    continue;
                const double offset = (4 * group + 1.5 - 7.5) * kTowWidth;
                const ZELMathPoint origin = OriginOf(at);
                const ZELMathVector2D seen(origin.GetX() - kCentreX + offset * left.GetX(),
                                           origin.GetY() - kCentreY + offset * left.GetY());
                EXPECT_TRUE(ZELTest::SameDouble(1250.0, seen.GetLength(), kMillimetres)) << "group " << group;
            }
            previous = mask;
        }
    }
}

TEST(ZELKinToolGenerateToolpathGeometry, CoursesWiderTogetherThanThePartAreSpreadAcrossIt)
{
    // 40 courses of 101.6 mm would be 4064 mm wide; the panel is 3000 mm long.
    const QJsonObject document = GenerateOne({QStringLiteral("--part"), QStringLiteral("flat"),
                                              QStringLiteral("--plies"), QStringLiteral("90"),
                                              QStringLiteral("--courses"), QStringLiteral("40"),
                                              QStringLiteral("--points-per-course"), QStringLiteral("2")});
    const QList<QJsonObject> courses = ToObjects(GetLayupProcedures(document).first().value(QStringLiteral("courses")));
    ASSERT_EQ(courses.size(), 40);
    for (int i = 0; i < courses.size(); ++i) {
        const QJsonObject start = GetPoints(GetTowTrajectories(courses.at(i)).first()).first();
        // Travelling along +Y, the courses step towards -X (to the left), 75 mm apart.
        EXPECT_TRUE(SamePoint(ZELMathPoint(kCentreX - (i - 19.5) * 75.0, kCentreY - 750.0, kTopZ), OriginOf(start),
                              kMillimetres))
            << "course " << i + 1;
    }
}

// ---------------------------------------------------------------------------
// Options

TEST(ZELKinToolGenerateToolpathOptions, CoursesAndPointsPerCourseAreHonoured)
{
    const QJsonObject document = GenerateOne({QStringLiteral("--part"), QStringLiteral("flat"),
                                              QStringLiteral("--plies"), QStringLiteral("0,90"),
                                              QStringLiteral("--courses"), QStringLiteral("3"),
                                              QStringLiteral("--points-per-course"), QStringLiteral("7")});
    const QList<QJsonObject> procedures = GetLayupProcedures(document);
    ASSERT_EQ(procedures.size(), 2);
    for (const QJsonObject& procedure : procedures) {
        const QList<QJsonObject> courses = ToObjects(procedure.value(QStringLiteral("courses")));
        ASSERT_EQ(courses.size(), 3);
        EXPECT_EQ(ToObjects(procedure.value(QStringLiteral("links"))).size(), 4);
        for (const QJsonObject& course : courses) {
            const QList<QJsonObject> tows = GetTowTrajectories(course);
            ASSERT_EQ(tows.size(), 1);
            EXPECT_EQ(GetPoints(tows.first()).size(), 7);
        }
    }
}

TEST(ZELKinToolGenerateToolpathOptions, NameNamesTheProgram)
{
    const QJsonObject document = GenerateOne({QStringLiteral("--part"), QStringLiteral("dome"),
                                              QStringLiteral("--plies"), QStringLiteral("0"),
                                              QStringLiteral("--name"), QStringLiteral("Dome-skin 'A' 2")});
    EXPECT_EQ(document.value(QStringLiteral("program")).toObject().value(QStringLiteral("name")).toString(),
              QStringLiteral("Dome-skin 'A' 2"));
}

TEST(ZELKinToolGenerateToolpathOptions, NumbersAreWrittenInTheirShortestForm)
{
    const QTemporaryDir directory;
    const QByteArray text = ReadBytes(Generate(directory, QStringLiteral("toolpath.json"),
                                               {QStringLiteral("--part"), QStringLiteral("flat"),
                                                QStringLiteral("--plies"), QStringLiteral("0")}));
    EXPECT_TRUE(text.contains("\"towWidth\": 6.35}")) << "6.35 reads back as the same double";
    EXPECT_TRUE(text.contains("\"width\": 101.6}"));
    EXPECT_TRUE(text.contains("\"width\": 50.8}"));
    EXPECT_TRUE(text.contains("\"diameter\": 12.7}"));
    EXPECT_TRUE(text.contains("\"normal\": [0, 0, 1]}")) << "no -0 and no decimals on whole numbers";
    EXPECT_FALSE(text.contains("-0,"));
    EXPECT_FALSE(text.contains("e-"));
}

TEST(ZELKinToolGenerateToolpathOptions, LocaleDoesNotChangeTheText)
{
    const QTemporaryDir directory;
    const QStringList options{QStringLiteral("--part"), QStringLiteral("cylinder"), QStringLiteral("--plies"),
                              QStringLiteral("0,45"), QStringLiteral("--courses"), QStringLiteral("2")};
    const QString plain = Generate(directory, QStringLiteral("plain.json"), options);

    const QString german = QDir(directory.path()).filePath(QStringLiteral("german.json"));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    environment.insert(QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ZELKIN_EXECUTABLE), QStringList{Command} + options
                                                         + QStringList{QStringLiteral("-o"), german});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_TRUE(ReadBytes(plain) == ReadBytes(german));
}

TEST(ZELKinToolGenerateToolpathOptions, HelpShowsTheOptions)
{
    const ZELKinToolRun run = RunZelkin({QStringLiteral("help"), Command});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.standardOutput.startsWith(
        QStringLiteral("Usage: zelkin generate-toolpath --part flat|cylinder|dome --plies A,B,... [--courses N] "
                       "[--points-per-course M]\n       [--name NAME] [--quiet] -o FILE.json\n\n")))
        << run.standardOutput.toStdString();
    for (const char* option : {"--part", "--plies", "--courses", "--points-per-course", "--name", "-o, --output", "--quiet"})
        EXPECT_TRUE(run.standardOutput.contains(QLatin1String(option))) << option;

    const ZELKinToolRun list = RunZelkin({QStringLiteral("help")});
    EXPECT_TRUE(list.standardOutput.contains(
        QStringLiteral("  generate-toolpath  Write an example toolpath for a part on the example gantry\n")));
}

// ---------------------------------------------------------------------------
// Usage errors: status 2, the error and the hint, and no file.

struct UsageCase
{
    const char* name;
    QStringList arguments;
    QString error;
};
ZELTEST_PRINT_CASE_BY_NAME(UsageCase);

class ZELKinToolGenerateToolpathUsage : public ::testing::TestWithParam<UsageCase>
{
};

TEST_P(ZELKinToolGenerateToolpathUsage, IsRefusedWithoutWritingTheFile)
{
    const QTemporaryDir directory;
    const QString path = QDir(directory.path()).filePath(QStringLiteral("toolpath.json"));
    QStringList arguments{Command};
    for (const QString& argument : GetParam().arguments)
        arguments.append(argument == QLatin1String("OUT") ? path : argument);
    const ZELKinToolRun run = RunZelkin(arguments);
    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(), QStringList({QStringLiteral("zelkin: error: ") + GetParam().error, UsageHint}));
    EXPECT_TRUE(QDir(directory.path()).isEmpty());
}

QStringList With(const QStringList& changed)
{
    QStringList arguments{QStringLiteral("--part"), QStringLiteral("flat"), QStringLiteral("--plies"),
                          QStringLiteral("0,90"), QStringLiteral("-o"), QStringLiteral("OUT")};
    for (int i = 0; i + 1 < changed.size(); i += 2) {
        const qsizetype at = arguments.indexOf(changed.at(i));
        if (at >= 0)
            arguments[at + 1] = changed.at(i + 1);
        else
            arguments << changed.at(i) << changed.at(i + 1);
    }
    return arguments;
}

QStringList Without(const QString& option)
{
    QStringList arguments = With({});
    const qsizetype at = arguments.indexOf(option);
    arguments.remove(at, 2);
    return arguments;
}

const QString PlyExpectation =
    QStringLiteral("expected angles in degrees from -90 to 90, separated by commas");
const QString NameExpectation =
    QStringLiteral("it must not be empty or hold '/', '\\', '..', '\"' or control characters");

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELKinToolGenerateToolpathUsage,
    ::testing::Values(
        UsageCase{"UnknownPart", With({QStringLiteral("--part"), QStringLiteral("cone")}),
                  QStringLiteral("unknown part 'cone': expected flat, cylinder or dome")},
        UsageCase{"PlyThatIsNoNumber", With({QStringLiteral("--plies"), QStringLiteral("0,abc")}),
                  QStringLiteral("invalid ply angle 'abc' in '0,abc': ") + PlyExpectation},
        UsageCase{"EmptyPlyInTheList", With({QStringLiteral("--plies"), QStringLiteral("0,,45")}),
                  QStringLiteral("invalid ply angle '' in '0,,45': ") + PlyExpectation},
        UsageCase{"EmptyPlyList", With({QStringLiteral("--plies"), QString()}),
                  QStringLiteral("invalid ply angle '' in '': ") + PlyExpectation},
        UsageCase{"PlyBeyondNinetyDegrees", With({QStringLiteral("--plies"), QStringLiteral("45,90.5")}),
                  QStringLiteral("invalid ply angle '90.5' in '45,90.5': ") + PlyExpectation},
        UsageCase{"PlyNotANumber", With({QStringLiteral("--plies"), QStringLiteral("nan")}),
                  QStringLiteral("invalid ply angle 'nan' in 'nan': ") + PlyExpectation},
        UsageCase{"ZeroCourses", With({QStringLiteral("--courses"), QStringLiteral("0")}),
                  QStringLiteral("invalid course count '0': expected a whole number from 1 to 1000000")},
        UsageCase{"FractionOfACourse", With({QStringLiteral("--courses"), QStringLiteral("2.5")}),
                  QStringLiteral("invalid course count '2.5': expected a whole number from 1 to 1000000")},
        UsageCase{"OnePointPerCourse", With({QStringLiteral("--points-per-course"), QStringLiteral("1")}),
                  QStringLiteral("invalid point count '1': expected a whole number from 2 to 10000000")},
        UsageCase{"MissingOutput", Without(QStringLiteral("-o")),
                  QStringLiteral("missing the output file (-o FILE.json)")},
        UsageCase{"MissingPart", Without(QStringLiteral("--part")),
                  QStringLiteral("missing the part (--part flat|cylinder|dome)")},
        UsageCase{"MissingPlies", Without(QStringLiteral("--plies")),
                  QStringLiteral("missing the ply angles (--plies)")},
        UsageCase{"NameWithASlash", With({QStringLiteral("--name"), QStringLiteral("wing/skin")}),
                  QStringLiteral("invalid program name 'wing/skin': ") + NameExpectation},
        UsageCase{"NameWithABackslash", With({QStringLiteral("--name"), QStringLiteral("wing\\skin")}),
                  QStringLiteral("invalid program name 'wing\\skin': ") + NameExpectation},
        UsageCase{"NameWithTwoDots", With({QStringLiteral("--name"), QStringLiteral("..skin")}),
                  QStringLiteral("invalid program name '..skin': ") + NameExpectation},
        UsageCase{"NameWithAControlCharacter", With({QStringLiteral("--name"), QStringLiteral("wing\tskin")}),
                  QStringLiteral("invalid program name 'wing\tskin': ") + NameExpectation},
        UsageCase{"NameWithADoubleQuote", With({QStringLiteral("--name"), QStringLiteral("wing \"A\"")}),
                  QStringLiteral("invalid program name 'wing \"A\"': ") + NameExpectation},
        UsageCase{"EmptyName", With({QStringLiteral("--name"), QString()}),
                  QStringLiteral("invalid program name '': ") + NameExpectation},
        UsageCase{"UnknownOption", With({QStringLiteral("--tows"), QStringLiteral("8")}),
                  QStringLiteral("unknown option '--tows'")},
        UsageCase{"PositionalArgument", With({}) << QStringLiteral("part.json"),
                  QStringLiteral("unexpected argument 'part.json'")},
        UsageCase{"OutputWithoutItsValue", Without(QStringLiteral("-o")) << QStringLiteral("-o"),
                  QStringLiteral("missing value after '-o'")}),
    [](const ::testing::TestParamInfo<UsageCase>& info) { return std::string(info.param.name); });

// ---------------------------------------------------------------------------
// Files that cannot be written, and the memory a large program takes

TEST(ZELKinToolGenerateToolpathFile, MissingDirectoryIsAnErrorNamingTheFile)
{
    const QTemporaryDir directory;
    const QString path = QDir(directory.path()).filePath(QStringLiteral("no-such-directory/toolpath.json"));
    const ZELKinToolRun run = RunZelkin({Command, QStringLiteral("--part"), QStringLiteral("flat"),
                                         QStringLiteral("--plies"), QStringLiteral("0"), QStringLiteral("-o"), path});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: cannot write %1: No such file or directory").arg(path)}));
}

struct LimitedRun
{
    bool exited = false;
    int exitCode = -1;
    //! The largest resident set the process had, in KiB.
    long maxResident = 0;
};

// Runs zelkin in a child of this process, so that the child's own peak
// memory can be read when it ends, with stderr sent to `errorPath` and,
// when `fileSizeLimit` is given, files limited to that many bytes: writes
// beyond it fail as on a full disk (the signal that would end the process
// instead is ignored).
LimitedRun RunZelkinLimited(const QStringList& arguments, const QString& errorPath,
                            rlim_t fileSizeLimit = RLIM_INFINITY)
{
    std::vector<std::string> strings{ZELKIN_EXECUTABLE};
    for (const QString& argument : arguments)
        strings.push_back(argument.toStdString());
    std::vector<char*> argv;
    for (std::string& text : strings)
        argv.push_back(text.data());
    argv.push_back(nullptr);
    const std::string errorFile = errorPath.toStdString();

    const pid_t child = fork();
    if (child == 0) {
        // Only calls that are safe between fork and exec.
        const int error = open(errorFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int nothing = open("/dev/null", O_WRONLY);
        if (error < 0 || nothing < 0 || dup2(error, STDERR_FILENO) < 0 || dup2(nothing, STDOUT_FILENO) < 0)
            _exit(127);
        if (fileSizeLimit != RLIM_INFINITY) {
            const rlimit limit{fileSizeLimit, fileSizeLimit};
            if (setrlimit(RLIMIT_FSIZE, &limit) != 0 || signal(SIGXFSZ, SIG_IGN) == SIG_ERR)
                _exit(127);
        }
        execv(argv.front(), argv.data());
        _exit(127);
    }
    LimitedRun run;
    if (child < 0) {
        ADD_FAILURE() << "cannot fork: " << std::strerror(errno);
        return run;
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child) {
        ADD_FAILURE() << "cannot wait for zelkin: " << std::strerror(errno);
        return run;
    }
    run.exited = WIFEXITED(status);
    run.exitCode = run.exited ? WEXITSTATUS(status) : -1;
    run.maxResident = usage.ru_maxrss;
    return run;
}

QStringList ReadLines(const QString& path)
{
    QStringList lines = QString::fromUtf8(ReadBytes(path)).split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

TEST(ZELKinToolGenerateToolpathFile, FullDiskEndsInOneErrorAndLeavesTheEarlierFileWhole)
{
    const QTemporaryDir output;
    const QTemporaryDir logs;
    const QString path = QDir(output.path()).filePath(QStringLiteral("toolpath.json"));
    const QString errors = QDir(logs.path()).filePath(QStringLiteral("stderr.txt"));
    {
        QFile earlier(path);
        ASSERT_TRUE(earlier.open(QIODevice::WriteOnly));
        earlier.write("earlier program\n");
    }

    // About 6 MB of toolpath against a limit of 1 MiB.
    const QStringList arguments{Command,
                                QStringLiteral("--part"),
                                QStringLiteral("dome"),
                                QStringLiteral("--plies"),
                                QStringLiteral("0,45"),
                                QStringLiteral("--courses"),
                                QStringLiteral("40"),
                                QStringLiteral("--points-per-course"),
                                QStringLiteral("500"),
                                QStringLiteral("-o"),
                                path};
    const LimitedRun run = RunZelkinLimited(arguments, errors, 1 << 20);
    EXPECT_TRUE(run.exited);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(ReadLines(errors), QStringList({QStringLiteral("zelkin: error: cannot write %1: %2")
                                                  .arg(path, QString::fromLocal8Bit(std::strerror(EFBIG)))}));
    EXPECT_EQ(QDir(output.path()).entryList(QDir::Files | QDir::Hidden), QStringList({QStringLiteral("toolpath.json")}))
        << "no temporary file is left beside it";
    EXPECT_EQ(ReadBytes(path), QByteArray("earlier program\n"));
}

TEST(ZELKinToolGenerateToolpathFile, LargeProgramIsWrittenInBoundedMemory)
{
    const QTemporaryDir output;
    const QString errors = QDir(output.path()).filePath(QStringLiteral("stderr.txt"));
    const QString small = QDir(output.path()).filePath(QStringLiteral("small.json"));
    const QString large = QDir(output.path()).filePath(QStringLiteral("large.json"));
    const QStringList options{Command, QStringLiteral("--part"), QStringLiteral("flat"), QStringLiteral("--plies"),
                              QStringLiteral("45")};

    const LimitedRun smallRun = RunZelkinLimited(
        options + QStringList{QStringLiteral("--courses"), QStringLiteral("1"), QStringLiteral("--points-per-course"),
                              QStringLiteral("2"), QStringLiteral("-o"), small},
        errors);
    ASSERT_EQ(smallRun.exitCode, 0);
    const LimitedRun largeRun = RunZelkinLimited(
        options + QStringList{QStringLiteral("--courses"), QStringLiteral("40"), QStringLiteral("--points-per-course"),
                              QStringLiteral("10000"), QStringLiteral("-o"), large},
        errors);
    ASSERT_EQ(largeRun.exitCode, 0) << ReadLines(errors).join(QLatin1Char('\n')).toStdString();

    // Holding the program would take at least the size of its text.
    const qint64 size = QFileInfo(large).size();
    EXPECT_GT(size, 48LL << 20);
    EXPECT_LT(largeRun.maxResident - smallRun.maxResident, 16L << 10)
        << "small run " << smallRun.maxResident << " KiB, large run " << largeRun.maxResident << " KiB for "
        << size << " bytes";
}

} // namespace
