// The toolpath document reader: a complete hand-written document read into
// the model field by field, the generated example documents, files and
// data, and for every kind of malformed document its one exact message and
// a container left as it was.

#include "zeltpmalformeddocuments.h"
#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltpformatexception.h>
#include <zeltpoffpartpoint.h>
#include <zeltponparttrajectory.h>
#include <zeltppoint.h>
#include <zeltpprobingprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptoolchangelink.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>

#include <zelgeocontainer.h>
#include <zelsysexception.h>

#include <zeltestnamedpipe.h>
#include <zeltestsupport.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cmath>
#include <functional>
#include <variant>

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;

QString DataFile(const char* name)
{
    return QStringLiteral(ZELTP_TEST_DATA_DIR "/%1").arg(QLatin1String(name));
}

QString ExampleFile(const char* name)
{
    return QStringLiteral(ZELTP_EXAMPLE_TOOLPATH_DIR "/%1").arg(QLatin1String(name));
}

QByteArray FileBytes(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

::testing::AssertionResult SameVector(const ZELMathVector& expected, const ZELMathVector& actual, double tolerance)
{
    if (expected.IsEqual(actual, tolerance))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "expected (" << expected.GetX() << ", " << expected.GetY() << ", "
                                         << expected.GetZ() << "), got (" << actual.GetX() << ", " << actual.GetY()
                                         << ", " << actual.GetZ() << ")";
}

::testing::AssertionResult At(const ZELTPPoint* point, double x, double y, double z)
{
    const ZELMathPoint tip = point->GetTipCoordinates();
    return SameVector(ZELMathVector(x, y, z), ZELMathVector(tip.GetX(), tip.GetY(), tip.GetZ()), ZELTest::kExact);
}

// The tool frame's u (travel) and w (normal) directions, and v = w x u.
::testing::AssertionResult Directed(const ZELTPPoint* point, const ZELMathVector& travel, const ZELMathVector& normal)
{
    const ZELMathAxis frame = point->GetToolFrame();
    ::testing::AssertionResult u = SameVector(travel, frame.GetUDirection(), ZELTest::kTight);
    if (!u)
        return u << " (u)";
    ::testing::AssertionResult w = SameVector(normal, frame.GetWDirection(), ZELTest::kTight);
    if (!w)
        return w << " (w)";
    ::testing::AssertionResult v = SameVector(normal.Cross(travel), frame.GetVDirection(), ZELTest::kTight);
    if (!v)
        return v << " (v)";
    return ::testing::AssertionSuccess();
}

const ZELMathVector kPlusX(1.0, 0.0, 0.0);
const ZELMathVector kPlusY(0.0, 1.0, 0.0);
const ZELMathVector kPlusZ(0.0, 0.0, 1.0);
// The surface normal of the first course of complete.json.
const ZELMathVector kTiltedNormal(0.0, -0.6, 0.8);

bool IsOffPart(const ZELTPPoint* point)
{
    return qobject_cast<const ZELTPOffPartPoint*>(point) != nullptr;
}

// The distinct points of a course's chain in laying order: a trajectory's
// first point is left out when it is the one before's last.
QList<ZELTPPoint*> ChainPoints(const ZELTPTowCourse* course)
{
    QList<ZELTPPoint*> points;
    for (int i = 0; i < course->GetNumTrajectories(); ++i) {
        const QList<ZELTPPoint*>& run = course->GetTrajectory(i)->GetPoints();
        points.append(i == 0 ? run : run.mid(1));
    }
    return points;
}

QList<int> Indices(const QList<ZELTPPoint*>& points)
{
    QList<int> indices;
    for (const ZELTPPoint* point : points)
        indices.append(point->GetIndex());
    return indices;
}

// The on-part points of a chain carry consecutive indices.
::testing::AssertionResult NumberedOneByOne(const QList<ZELTPPoint*>& chain)
{
    const ZELTPPoint* previous = nullptr;
    for (const ZELTPPoint* point : chain) {
        if (IsOffPart(point))
            continue;
        if (previous && point->GetIndex() != previous->GetIndex() + 1)
            return ::testing::AssertionFailure() << "index " << point->GetIndex() << " follows "
                                                 << previous->GetIndex();
        previous = point;
    }
    return ::testing::AssertionSuccess();
}

// The links and courses of a layup in path order.
struct LayupPath
{
    QList<ZELTPCourseLink*> links;
    QList<ZELTPTowCourse*> courses;
};

LayupPath WalkPath(const ZELTPRollLayupProcedure* layup)
{
    LayupPath path;
    for (ZELTPCourseLink* link = layup->GetApproachLink(); link;) {
        path.links.append(link);
        auto* course = qobject_cast<ZELTPTowCourse*>(link->GetToCourse());
        if (!course)
            break;
        path.courses.append(course);
        link = course->GetRetractLink();
    }
    return path;
}

// ---------------------------------------------------------------------------
// A complete document, every field read

class ZELTPProgramReaderComplete : public ::testing::Test
{
protected:
    void SetUp() override
    {
        program = ZELTPProgramReader(&container).Read(DataFile("complete.json"));
        ASSERT_NE(program, nullptr);
        ASSERT_EQ(program->GetNumProcedures(), 2);
        layup = qobject_cast<ZELTPRollLayupProcedure*>(program->GetProcedure(0));
        probing = qobject_cast<ZELTPProbingProcedure*>(program->GetProcedure(1));
        ASSERT_NE(layup, nullptr);
        ASSERT_NE(probing, nullptr);
        path = WalkPath(layup);
        ASSERT_EQ(path.links.size(), 3);
        ASSERT_EQ(path.courses.size(), 2);
    }

    ZELGeoContainer container;
    ZELTPProgram* program = nullptr;
    ZELTPRollLayupProcedure* layup = nullptr;
    ZELTPProbingProcedure* probing = nullptr;
    LayupPath path;
};

TEST_F(ZELTPProgramReaderComplete, ProgramKeepsNameRevisionAndProceduresInOrder)
{
    EXPECT_EQ(program->GetName(), QStringLiteral("wing-skin-lh"));
    EXPECT_EQ(program->GetRevision(), QStringLiteral("B"));
    EXPECT_EQ(layup->GetName(), QStringLiteral("Ply 101 +45"));
    EXPECT_EQ(probing->GetName(), QStringLiteral("probe tool"));
}

TEST_F(ZELTPProgramReaderComplete, LayupFieldsAreReadWithAnglesInRadians)
{
    EXPECT_TRUE(ZELTest::SameDouble(2540.0, layup->GetAddingFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1270.0, layup->GetCuttingFeedrate(), ZELTest::kExact));
    EXPECT_EQ(layup->GetMaterialDescription().GetId(), QStringLiteral("T35-E120-6.35"));
    EXPECT_EQ(layup->GetMaterialDescription().GetName(), QStringLiteral("T35/E120 1/4in tow"));
    EXPECT_TRUE(ZELTest::SameDouble(1234.5, layup->GetTotalMaterialLength(), ZELTest::kExact));

    ASSERT_EQ(layup->GetNumPlyDescriptions(), 2);
    EXPECT_EQ(layup->GetPlyDescription(0).GetName(), QStringLiteral("P45"));
    EXPECT_TRUE(ZELTest::SameDouble(M_PI / 4.0, layup->GetPlyDescription(0).GetOrientation(), ZELTest::kTight));
    EXPECT_EQ(layup->GetPlyDescription(0).GetPropagationMode(), ZELCompStrategy::Angle);
    EXPECT_EQ(layup->GetPlyDescription(1).GetName(), QStringLiteral("P-30"));
    EXPECT_TRUE(ZELTest::SameDouble(-M_PI / 6.0, layup->GetPlyDescription(1).GetOrientation(), ZELTest::kTight));
    EXPECT_EQ(layup->GetPlyDescription(1).GetPropagationMode(), ZELCompStrategy::GeodesicOffset);
}

TEST_F(ZELTPProgramReaderComplete, SafetyPlaneNormalIsNormalised)
{
    const ZELMathPlane plane = layup->GetSafetyPlane();
    EXPECT_TRUE(SameVector(ZELMathVector(0.0, 0.0, 250.0),
                           ZELMathVector(plane.GetOrigin().GetX(), plane.GetOrigin().GetY(), plane.GetOrigin().GetZ()),
                           ZELTest::kExact));
    EXPECT_TRUE(SameVector(kTiltedNormal, plane.GetNormal(), ZELTest::kTight));
    EXPECT_TRUE(SameVector(kPlusZ, probing->GetSafetyPlane().GetNormal(), ZELTest::kExact));
}

TEST_F(ZELTPProgramReaderComplete, LinkIntoEachCourseAndTheLastLinkLeadsNowhere)
{
    EXPECT_EQ(path.links.at(0)->GetToCourse(), path.courses.at(0));
    EXPECT_EQ(path.courses.at(0)->GetRetractLink(), path.links.at(1));
    EXPECT_EQ(path.links.at(1)->GetToCourse(), path.courses.at(1));
    EXPECT_EQ(path.courses.at(1)->GetRetractLink(), path.links.at(2));
    EXPECT_EQ(path.links.at(2)->GetToCourse(), nullptr);
}

TEST_F(ZELTPProgramReaderComplete, LinksKeepNamesDetailsAndFeedratesWithDefaults)
{
    EXPECT_EQ(path.links.at(0)->GetName(), QStringLiteral("approach"));
    EXPECT_EQ(path.links.at(0)->GetPointsDetail(), ZELTPCourseLink::PointsDetailLow);
    EXPECT_EQ(path.links.at(1)->GetName(), QStringLiteral("tool change"));
    EXPECT_EQ(path.links.at(1)->GetPointsDetail(), ZELTPCourseLink::PointsDetailMedium);
    EXPECT_EQ(path.links.at(2)->GetName(), QString());
    EXPECT_EQ(path.links.at(2)->GetPointsDetail(), ZELTPCourseLink::PointsDetailFull);

    ASSERT_EQ(path.links.at(1)->GetNumTrajectories(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(15000.0, path.links.at(1)->GetTrajectory(0)->GetFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(10000.0, path.links.at(1)->GetTrajectory(1)->GetFeedrate(), ZELTest::kExact));
    for (const ZELTPCourseLink* link : path.links) {
        for (int i = 0; i < link->GetNumTrajectories(); ++i)
            EXPECT_EQ(dynamic_cast<const ZELTPOnPartTrajectory*>(link->GetTrajectory(i)), nullptr);
    }
}

TEST_F(ZELTPProgramReaderComplete, ToolChangeLinkNamesItsRemovePointAndConfigurations)
{
    EXPECT_EQ(qobject_cast<ZELTPToolChangeLink*>(path.links.at(0)), nullptr);
    EXPECT_EQ(qobject_cast<ZELTPToolChangeLink*>(path.links.at(2)), nullptr);
    const auto* change = qobject_cast<ZELTPToolChangeLink*>(path.links.at(1));
    ASSERT_NE(change, nullptr);

    // Point 2 of the link's flat list is the first point of its second
    // trajectory, which is not the first trajectory's last point even
    // though both lie at the same place: links share no points.
    ASSERT_EQ(change->GetNumPoints(), 4);
    EXPECT_EQ(change->GetToolRemovePoint(), change->GetTrajectory(1)->GetPoint(0));
    EXPECT_NE(change->GetPoint(1), change->GetPoint(2));
    EXPECT_TRUE(At(change->GetToolRemovePoint(), 500.0, 0.0, 300.0));

    EXPECT_EQ(change->GetPreviousMachineConfiguration().GetTool().GetName(), QStringLiteral("R8-2in"));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, change->GetPreviousMachineConfiguration().GetTool().GetWidth(),
                                    ZELTest::kExact));
    EXPECT_EQ(change->GetPreviousMachineConfiguration().GetHead().GetName(), QStringLiteral("H1"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, change->GetPreviousMachineConfiguration().GetHead().GetTowWidth(),
                                    ZELTest::kExact));
    EXPECT_EQ(change->GetNextMachineConfiguration().GetTool().GetName(), QStringLiteral("R16-4in"));
    EXPECT_TRUE(ZELTest::SameDouble(101.6, change->GetNextMachineConfiguration().GetTool().GetWidth(),
                                    ZELTest::kExact));
    EXPECT_EQ(change->GetNextMachineConfiguration().GetHead().GetName(), QStringLiteral("H2"));
    EXPECT_TRUE(ZELTest::SameDouble(3.175, change->GetNextMachineConfiguration().GetHead().GetTowWidth(),
                                    ZELTest::kExact));
}

TEST_F(ZELTPProgramReaderComplete, CourseKeepsNameMaskToolingAndTowLengths)
{
    const ZELTPTowCourse* course = path.courses.at(0);
    EXPECT_EQ(course->GetName(), QStringLiteral("course 1"));
    EXPECT_EQ(course->GetUsedTowMask().GetNumTows(), 8);
    EXPECT_EQ(course->GetUsedTowMask().GetRawValue(), quint64(0x0F));
    EXPECT_EQ(course->GetMachineConfiguration().GetTool().GetName(), QStringLiteral("R8-2in"));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, course->GetMachineConfiguration().GetTool().GetWidth(), ZELTest::kExact));
    EXPECT_EQ(course->GetMachineConfiguration().GetHead().GetName(), QStringLiteral("H1"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, course->GetMachineConfiguration().GetHead().GetTowWidth(),
                                    ZELTest::kExact));
    EXPECT_TRUE(ZELTPTest::SameDoubles({300.0, 300.0, 300.0, 280.0, 0.0, 0.0, 0.0, 0.0}, course->GetTowLengths()));

    EXPECT_EQ(path.courses.at(1)->GetUsedTowMask(), ZELCompTowMask(16, true));
    EXPECT_EQ(path.courses.at(1)->GetTowLengths().size(), 16);
}

TEST_F(ZELTPProgramReaderComplete, CourseTrajectoriesKeepKindsFeedratesTiltsInRadiansAndTowFields)
{
    const ZELTPTowCourse* course = path.courses.at(0);
    ASSERT_EQ(course->GetNumTrajectories(), 6);
    EXPECT_EQ(dynamic_cast<const ZELTPOnPartTrajectory*>(course->GetApproachTrajectory()), nullptr);
    EXPECT_EQ(dynamic_cast<const ZELTPOnPartTrajectory*>(course->GetRetractTrajectory()), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(6000.0, course->GetApproachTrajectory()->GetFeedrate(), ZELTest::kExact));

    const ZELTPOnPartTrajectory* rollIn = course->GetRollInTrajectory();
    ASSERT_NE(rollIn, nullptr);
    EXPECT_EQ(dynamic_cast<const ZELTPTowTrajectory*>(rollIn), nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(5080.0, rollIn->GetFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(2.0 * kRadiansPerDegree, rollIn->GetForwardTilt(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(-1.0 * kRadiansPerDegree, rollIn->GetSideTilt(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(10.0 * kRadiansPerDegree, rollIn->GetSmoothingAngle(), ZELTest::kTight));

    const auto* first = dynamic_cast<const ZELTPTowTrajectory*>(course->GetTrajectory(2));
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(ZELTest::SameDouble(12700.0, first->GetFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.0 * kRadiansPerDegree, first->GetForwardTilt(), ZELTest::kTight));
    EXPECT_TRUE(std::isnan(first->GetSideTilt()));
    EXPECT_TRUE(std::isnan(first->GetSmoothingAngle()));
    EXPECT_EQ(first->GetTowMask().GetNumTows(), 8);
    EXPECT_EQ(first->GetTowMask().GetRawValue(), quint64(0x0F));
    EXPECT_EQ(first->GetForcedMask().GetNumTows(), 8);
    EXPECT_EQ(first->GetForcedMask().GetRawValue(), quint64(0x08));
    EXPECT_TRUE(ZELTPTest::SameDoubles({1.0, 1.0, 1.0, 1.05, 1.0, 1.0, 1.0, 1.0}, first->GetForcedRates()));

    // Tow 1 is cut; nothing forced is given, so nothing is forced.
    const auto* second = dynamic_cast<const ZELTPTowTrajectory*>(course->GetTrajectory(3));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->GetTowMask().GetRawValue(), quint64(0x0E));
    EXPECT_EQ(second->GetForcedMask(), ZELCompTowMask(8, false));
    EXPECT_TRUE(second->GetForcedRates().isEmpty());
    EXPECT_TRUE(std::isnan(second->GetForwardTilt()));

    const ZELTPOnPartTrajectory* rollOut = course->GetRollOutTrajectory();
    ASSERT_NE(rollOut, nullptr);
    EXPECT_EQ(rollOut, course->GetTrajectory(4));
    EXPECT_TRUE(std::isnan(rollOut->GetForwardTilt()));
    EXPECT_TRUE(std::isnan(rollOut->GetSideTilt()));
    EXPECT_TRUE(std::isnan(rollOut->GetSmoothingAngle()));
}

TEST_F(ZELTPProgramReaderComplete, ConsecutiveTrajectoriesOfACourseShareOneJunctionPoint)
{
    for (const ZELTPTowCourse* course : path.courses) {
        for (int i = 1; i < course->GetNumTrajectories(); ++i) {
            const ZELTPTrajectory* before = course->GetTrajectory(i - 1);
            EXPECT_EQ(before->GetPoint(before->GetNumPoints() - 1), course->GetTrajectory(i)->GetPoint(0))
                << course->GetName().toStdString() << ", trajectory " << i;
        }
    }
    EXPECT_EQ(ChainPoints(path.courses.at(0)).size(), 10);
    EXPECT_EQ(ChainPoints(path.courses.at(1)).size(), 6);
}

TEST_F(ZELTPProgramReaderComplete, JunctionPointKeepsTheEarlierCopyWhereItGivesOriginAndDirections)
{
    const ZELTPTowCourse* course = path.courses.at(0);
    // The tow trajectory writes this point 0.0005 mm further along and with
    // another normal; the roll-in trajectory wrote it first.
    const ZELTPPoint* junction = course->GetTrajectory(2)->GetPoint(0);
    EXPECT_TRUE(At(junction, 120.0, 80.0, 60.0));
    EXPECT_TRUE(Directed(junction, kPlusX, kTiltedNormal));

    // The approach writes the roll-in's first point without directions: the
    // point takes them from the roll-in's copy.
    const ZELTPPoint* touchDown = course->GetTrajectory(1)->GetPoint(0);
    EXPECT_FALSE(IsOffPart(touchDown));
    EXPECT_TRUE(Directed(touchDown, kPlusX, kTiltedNormal));
}

TEST_F(ZELTPProgramReaderComplete, OnPartPointsAreNumberedFromTheRollInPointAndOffPartPointsAreNot)
{
    const ZELTPTowCourse* course = path.courses.at(0);
    const QList<ZELTPPoint*> chain = ChainPoints(course);
    ASSERT_EQ(chain.size(), 10);
    EXPECT_EQ(Indices(chain), QList<int>({-1, -1, 0, 1, 2, 3, 4, 5, 6, -1}));
    for (int i = 0; i < chain.size(); ++i)
        EXPECT_EQ(IsOffPart(chain.at(i)), i == 0 || i == 9) << "chain point " << i;

    EXPECT_EQ(course->GetRollInPoint(), chain.at(2));
    EXPECT_EQ(course->GetRollInPoint(), course->GetRollInTrajectory()->GetPoint(1));
    EXPECT_EQ(course->GetRollOutPoint(), chain.at(7));
    EXPECT_EQ(course->GetRollOutPoint(), course->GetRollOutTrajectory()->GetPoint(1));
    EXPECT_EQ(course->GetNumPoints(), 7);

    const ZELTPTowCourse* second = path.courses.at(1);
    EXPECT_EQ(Indices(ChainPoints(second)), QList<int>({-1, 0, 1, 2, 3, -1}));
    EXPECT_EQ(second->GetRollInPoint(), second->GetRollInTrajectory()->GetPoint(0));
    EXPECT_EQ(second->GetRollOutPoint(), second->GetRollOutTrajectory()->GetPoint(1));
    EXPECT_EQ(second->GetNumPoints(), 4);
}

TEST_F(ZELTPProgramReaderComplete, ToolFramesHaveTheOriginTravelAsUAndNormalAsW)
{
    const QList<ZELTPPoint*> chain = ChainPoints(path.courses.at(0));
    EXPECT_TRUE(At(chain.at(4), 200.0, 80.0, 60.0));
    EXPECT_TRUE(Directed(chain.at(4), kPlusX, kTiltedNormal));
    EXPECT_TRUE(SameVector(ZELMathVector(0.0, 0.8, 0.6), chain.at(4)->GetToolFrame().GetVDirection(),
                           ZELTest::kTight));

    const QList<ZELTPPoint*> second = ChainPoints(path.courses.at(1));
    EXPECT_TRUE(At(second.at(5), 400.0, 160.0, 200.0));
    EXPECT_TRUE(Directed(second.at(5), kPlusZ, ZELMathVector(-1.0, 0.0, 0.0)));
}

TEST_F(ZELTPProgramReaderComplete, OffPartPointsWithoutDirectionsTakeTheirNeighboursOrTheDefault)
{
    // Before the first point that gives directions: the nearest following.
    EXPECT_TRUE(Directed(path.links.at(0)->GetPoint(0), kPlusY, kPlusZ));
    EXPECT_TRUE(Directed(ChainPoints(path.courses.at(0)).at(0), kPlusX, kTiltedNormal));
    EXPECT_TRUE(Directed(ChainPoints(path.courses.at(1)).at(0), kPlusX, kPlusZ));
    // After it: the nearest preceding, across trajectories of one link.
    EXPECT_TRUE(Directed(ChainPoints(path.courses.at(0)).at(9), kPlusX, kTiltedNormal));
    for (int i = 1; i < 4; ++i)
        EXPECT_TRUE(Directed(path.links.at(1)->GetPoint(i), kPlusX, kPlusZ)) << "link point " << i;
    // A link whose points give no directions at all.
    ASSERT_EQ(path.links.at(2)->GetNumPoints(), 1);
    EXPECT_TRUE(Directed(path.links.at(2)->GetPoint(0), kPlusX, kPlusZ));
    EXPECT_TRUE(At(path.links.at(2)->GetPoint(0), 400.0, 160.0, 400.0));
}

TEST_F(ZELTPProgramReaderComplete, ProbingProcedureKeepsTargetsTrajectoriesAndDerivedFrames)
{
    ASSERT_EQ(probing->GetNumProbingPoints(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(12.7, probing->GetProbingPoint(0).GetDiameter(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(25.4, probing->GetProbingPoint(1).GetDiameter(), ZELTest::kExact));
    ASSERT_EQ(probing->GetNumTrajectories(), 3);
    EXPECT_TRUE(ZELTest::SameDouble(2500.0, probing->GetTrajectory(1)->GetFeedrate(), ZELTest::kExact));

    const ZELTPTrajectory* toFirst = probing->GetTrajectory(0);
    const ZELTPTrajectory* toSecond = probing->GetTrajectory(1);
    ASSERT_EQ(toFirst->GetNumPoints(), 2);
    ASSERT_EQ(toSecond->GetNumPoints(), 3);
    EXPECT_TRUE(At(toFirst->GetPoint(1), 50.0, 50.0, 210.0));
    EXPECT_TRUE(At(toSecond->GetPoint(2), 450.0, 50.0, 210.0));
    EXPECT_NE(toFirst->GetPoint(1), toSecond->GetPoint(0));

    const ZELMathVector normal(1.0, 0.0, 0.0);
    EXPECT_TRUE(Directed(toFirst->GetPoint(0), kPlusY, normal));
    EXPECT_TRUE(Directed(toSecond->GetPoint(2), kPlusY, normal));
    EXPECT_TRUE(Directed(probing->GetTrajectory(2)->GetPoint(0), kPlusY, normal));
    for (const ZELTPPoint* point : toSecond->GetPoints()) {
        EXPECT_TRUE(IsOffPart(point));
        EXPECT_EQ(point->GetIndex(), -1);
    }
}

TEST_F(ZELTPProgramReaderComplete, EveryObjectIsInTheContainerAndInitialised)
{
    const QList<ZELGeoGeometry*> geometries = container.GetGeometries();
    // The program, two procedures, three links, two courses and 10 + 2 + 4 +
    // 6 + 1 + 6 points.
    EXPECT_EQ(geometries.size(), 37);
    EXPECT_EQ(ZELTPTest::AllOf<ZELTPPoint>(geometries).size(), 29);
    EXPECT_EQ(ZELTPTest::AllOf<ZELTPOffPartPoint>(geometries).size(), 17);
    for (const ZELGeoGeometry* geometry : geometries)
        EXPECT_TRUE(geometry->IsInitialized()) << geometry->metaObject()->className();
    EXPECT_TRUE(container.IsModified());
}

// ---------------------------------------------------------------------------
// Files, data and the container

TEST(ZELTPProgramReader, ReadDataBuildsWhatReadBuildsFromTheSameBytes)
{
    ZELGeoContainer fromFile;
    ZELGeoContainer fromData;
    ZELTPProgramReader(&fromFile).Read(DataFile("complete.json"));
    const ZELTPProgram* program =
        ZELTPProgramReader(&fromData).ReadData(FileBytes(DataFile("complete.json")), QStringLiteral("bytes"));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("wing-skin-lh"));
    EXPECT_EQ(fromData.GetNumGeometries(), fromFile.GetNumGeometries());
}

TEST(ZELTPProgramReader, LeadingByteOrderMarkIsSkipped)
{
    ZELGeoContainer container;
    const QByteArray data = QByteArray("\xEF\xBB\xBF") + FileBytes(DataFile("complete.json"));
    const ZELTPProgram* program = ZELTPProgramReader(&container).ReadData(data, QStringLiteral("bom.json"));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetNumProcedures(), 2);
}

TEST(ZELTPProgramReader, FileThatCannotBeOpenedNamesTheFileAndTheReason)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QString fileName = directory.filePath(QStringLiteral("missing.json"));
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(fileName), ZELTPFormatException,
                         fileName + QStringLiteral(": cannot open the file: No such file or directory"));
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELTPProgramReader, ErrorsInAFileNameTheFile)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QString fileName = directory.filePath(QStringLiteral("part.json"));
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"format": "zelkin-toolpath", "version": 2})");
    file.close();
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(fileName), ZELTPFormatException,
                         fileName + QStringLiteral(": $.version: unsupported version 2 (this reader reads version 1)"));
}

TEST(ZELTPProgramReader, FormatExceptionCarriesSourceLocationAndProblem)
{
    ZELGeoContainer container;
    try {
        ZELTPProgramReader(&container).ReadData(R"({"format": "zelkin-toolpath", "version": "one"})",
                                                QStringLiteral("part.json"));
        ADD_FAILURE() << "nothing thrown";
    } catch (const ZELTPFormatException& error) {
        EXPECT_EQ(error.GetSourceName(), QStringLiteral("part.json"));
        EXPECT_EQ(error.GetLocation(), QStringLiteral("$.version"));
        EXPECT_EQ(error.GetProblem(), QStringLiteral("expected a number, found a string"));
        EXPECT_EQ(error.GetMessage(), QStringLiteral("part.json: $.version: expected a number, found a string"));
        EXPECT_NE(dynamic_cast<const ZELSysException*>(&error), nullptr);
    }
}

TEST(ZELTPProgramReader, FailedReadLeavesTheContainerAsItWas)
{
    for (const bool modified : {false, true}) {
        ZELGeoContainer container;
        auto* earlier = new ZELTPProgram(&container, QStringLiteral("earlier"));
        container.SetModified(modified);
        // The document fails in its probing procedure, after the whole
        // layup has been built.
        QByteArray data = FileBytes(DataFile("complete.json"));
        data.replace("\"diameter\": 25.4", "\"diameter\": -25.4");
        EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).ReadData(data, QStringLiteral("part.json")),
                             ZELTPFormatException,
                             "part.json: $.program.procedures[1].probingPoints[1].diameter: "
                             "expected a number from 0.1 to 5000, found -25.4");
        EXPECT_EQ(container.GetGeometries(), QList<ZELGeoGeometry*>({earlier}));
        EXPECT_EQ(container.IsModified(), modified);
    }
}

TEST(ZELTPProgramReader, ReaderReadsAgainAfterAFailure)
{
    ZELGeoContainer container;
    const ZELTPProgramReader reader(&container);
    EXPECT_THROW(reader.ReadData(QByteArray("{"), QStringLiteral("broken.json")), ZELTPFormatException);
    const ZELTPProgram* program = reader.Read(DataFile("complete.json"));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(container.GetNumGeometries(), 37);
}

// ---------------------------------------------------------------------------
// Pipes and devices, which have no size to go by

TEST(ZELTPProgramReader, DocumentFromANamedPipeBuildsWhatItsFileBuilds)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const ZELTest::NamedPipe pipe(directory.path(), QStringLiteral("complete.json"),
                                  FileBytes(DataFile("complete.json")));
    ASSERT_TRUE(pipe.IsCreated());
    ZELGeoContainer fromFile;
    ZELGeoContainer fromPipe;
    ZELTPProgramReader(&fromFile).Read(DataFile("complete.json"));
    const ZELTPProgram* program = ZELTPProgramReader(&fromPipe).Read(pipe.GetPath());
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("wing-skin-lh"));
    EXPECT_EQ(program->GetNumProcedures(), 2);
    EXPECT_EQ(fromPipe.GetNumGeometries(), fromFile.GetNumGeometries());
}

TEST(ZELTPProgramReader, EmptyPipeIsAnEmptyDocument)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const ZELTest::NamedPipe pipe(directory.path(), QStringLiteral("empty.json"), QByteArray());
    ASSERT_TRUE(pipe.IsCreated());
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(pipe.GetPath()), ZELTPFormatException,
                         pipe.GetPath() + QStringLiteral(": $: invalid JSON at byte 0: the document is empty"));
}

TEST(ZELTPProgramReader, PipeOfExactlyTheLargestSizeIsRead)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QByteArray bytes = FileBytes(DataFile("complete.json"));
    const ZELTest::NamedPipe pipe(directory.path(), QStringLiteral("complete.json"), bytes);
    ASSERT_TRUE(pipe.IsCreated());
    ZELGeoContainer container;
    const ZELTPProgram* program = ZELTPProgramReader(&container).Read(pipe.GetPath(), bytes.size());
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("wing-skin-lh"));
}

TEST(ZELTPProgramReader, PipeOfOneByteMoreThanTheLargestSizeIsRefusedNamingItAndTheSize)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QByteArray bytes = FileBytes(DataFile("complete.json"));
    const ZELTest::NamedPipe pipe(directory.path(), QStringLiteral("complete.json"), bytes);
    ASSERT_TRUE(pipe.IsCreated());
    const qint64 largest = bytes.size() - 1;
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(
        ZELTPProgramReader(&container).Read(pipe.GetPath(), largest), ZELTPFormatException,
        pipe.GetPath()
            + QStringLiteral(": the toolpath is larger than %1 bytes, the most the reader takes").arg(largest));
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

// A pipe grows its buffer as it is read; whitespace keeps it a document
// that only its size can refuse.
TEST(ZELTPProgramReader, PipeMuchLargerThanTheLargestSizeIsRefused)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const ZELTest::NamedPipe pipe(directory.path(), QStringLiteral("blank.json"), QByteArray(3 << 20, ' '));
    ASSERT_TRUE(pipe.IsCreated());
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(pipe.GetPath(), 1 << 20), ZELTPFormatException,
                         pipe.GetPath()
                             + QStringLiteral(": the toolpath is larger than 1048576 bytes, the most the "
                                              "reader takes"));
}

TEST(ZELTPProgramReader, FileLargerThanTheLargestSizeIsRefusedBeforeItIsRead)
{
    const QByteArray bytes = FileBytes(DataFile("complete.json"));
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(DataFile("complete.json"), bytes.size() - 1),
                         ZELTPFormatException,
                         DataFile("complete.json")
                             + QStringLiteral(": the toolpath is larger than %1 bytes, the most the reader takes")
                                   .arg(bytes.size() - 1));
    EXPECT_NE(ZELTPProgramReader(&container).Read(DataFile("complete.json"), bytes.size()), nullptr);
}

TEST(ZELTPProgramReader, LargestSizeBeyondWhatTheParserTakesIsWhatTheParserTakes)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QString fileName = directory.filePath(QStringLiteral("sparse.json"));
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(ZELTPProgramReader::MaximumDocumentBytes + 1));
    file.close();
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(fileName, ZELTPProgramReader::MaximumDocumentBytes * 2),
                         ZELTPFormatException,
                         fileName
                             + QStringLiteral(": the toolpath is larger than 4294967295 bytes, the most the "
                                              "reader takes"));
}

// A file has an end, and its bytes go to the parser; a pipe may never end,
// and is read no further than a byte that no JSON text holds.
TEST(ZELTPProgramReader, PipeIsRefusedAtItsFirstControlByte)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QByteArray bytes = QByteArray(R"({"format": "zelkin-toolpath", "version": 1, "program": {"name": "a)")
        + QByteArray(1, '\x1f') + QByteArray(R"("}})");
    const ZELTest::NamedPipe pipe(directory.path(), QStringLiteral("pipe.json"), bytes + QByteArray(1 << 20, ' '));
    ASSERT_TRUE(pipe.IsCreated());
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(pipe.GetPath()), ZELTPFormatException,
                         pipe.GetPath()
                             + QStringLiteral(": byte 66 is the control character 0x1F, which no JSON text "
                                              "holds; a pipe or a device is read no further"));
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELTPProgramReader, TabLineFeedAndCarriageReturnFromAPipeAreRead)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    QByteArray bytes = FileBytes(DataFile("complete.json"));
    bytes.replace('\n', "\r\n\t");
    const ZELTest::NamedPipe pipe(directory.path(), QStringLiteral("complete.json"), bytes);
    ASSERT_TRUE(pipe.IsCreated());
    ZELGeoContainer container;
    const ZELTPProgram* program = ZELTPProgramReader(&container).Read(pipe.GetPath());
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("wing-skin-lh"));
}

TEST(ZELTPProgramReader, DevicesThatNeverEndAreRefusedAtTheirFirstControlByte)
{
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).Read(QStringLiteral("/dev/zero")), ZELTPFormatException,
                         "/dev/zero: byte 0 is the control character 0x00, which no JSON text holds; a pipe or a "
                         "device is read no further");
    try {
        ZELTPProgramReader(&container).Read(QStringLiteral("/dev/urandom"));
        ADD_FAILURE() << "nothing thrown";
    } catch (const ZELTPFormatException& error) {
        EXPECT_EQ(error.GetSourceName(), QStringLiteral("/dev/urandom"));
        const QRegularExpression controlByte(QStringLiteral("^byte [0-9]+ is the control character 0x[01][0-9A-F], "
                                                            "which no JSON text holds; a pipe or a device is read "
                                                            "no further$"));
        EXPECT_TRUE(controlByte.match(error.GetProblem()).hasMatch()) << error.GetMessage().toStdString();
    }
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

// ---------------------------------------------------------------------------
// The example documents

TEST(ZELTPProgramReader, MinimalExampleIsReadAsItsDocumentationSays)
{
    ZELGeoContainer container;
    const ZELTPProgram* program = ZELTPProgramReader(&container).Read(ExampleFile("minimal.json"));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("minimal-panel"));
    ASSERT_EQ(program->GetNumProcedures(), 2);
    const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(program->GetProcedure(0));
    ASSERT_NE(layup, nullptr);
    const LayupPath path = WalkPath(layup);
    ASSERT_EQ(path.links.size(), 2);
    ASSERT_EQ(path.courses.size(), 1);
    const ZELTPTowCourse* course = path.courses.at(0);
    EXPECT_EQ(course->GetUsedTowMask(), ZELCompTowMask(16, true));
    EXPECT_EQ(Indices(ChainPoints(course)), QList<int>({-1, -1, 0, 1, 2, 3, 4, -1}));
    EXPECT_TRUE(At(course->GetRollInPoint(), 3000.0, 3500.0, -1500.0));
    EXPECT_TRUE(At(course->GetRollOutPoint(), 3100.0, 3500.0, -1500.0));

    const auto* probing = qobject_cast<const ZELTPProbingProcedure*>(program->GetProcedure(1));
    ASSERT_NE(probing, nullptr);
    EXPECT_EQ(probing->GetNumProbingPoints(), 1);
    EXPECT_EQ(probing->GetNumTrajectories(), 2);
}

struct ExampleCase
{
    const char* name;
    const char* file;
    const char* programName;
    // The fewest on-part points of a course that the examples' README gives.
    int fewestOnPartPoints;
};
ZELTEST_PRINT_CASE_BY_NAME(ExampleCase);

const ExampleCase kExamples[] = {
    {"FlatPanel", "flat-panel.json", "flat-panel", 24},
    {"CylinderSection", "cylinder-section.json", "cylinder-section", 24},
    {"Dome", "dome.json", "dome", 26},
};

class ZELTPProgramReaderExample : public ::testing::TestWithParam<ExampleCase>
{
};

// Each example holds four plies at 0, +45, -45 and 90 degrees of four
// courses each, two tool changes in all, and a probing procedure with three
// sphere targets of 12.7 mm.
TEST_P(ZELTPProgramReaderExample, GeneratedExampleIsReadWithItsPliesCoursesToolChangesAndProbing)
{
    const ExampleCase& example = GetParam();
    ZELGeoContainer container;
    const ZELTPProgram* program = ZELTPProgramReader(&container).Read(ExampleFile(example.file));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QLatin1String(example.programName));
    ASSERT_EQ(program->GetNumProcedures(), 5);

    const double orientations[] = {0.0, M_PI / 4.0, -M_PI / 4.0, M_PI / 2.0};
    int toolChanges = 0;
    for (int p = 0; p < 4; ++p) {
        const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(program->GetProcedure(p));
        ASSERT_NE(layup, nullptr) << "procedure " << p;
        ASSERT_EQ(layup->GetNumPlyDescriptions(), 1);
        EXPECT_TRUE(ZELTest::SameDouble(orientations[p], layup->GetPlyDescription(0).GetOrientation(),
                                        ZELTest::kTight));
        const LayupPath path = WalkPath(layup);
        EXPECT_EQ(path.links.size(), 5);
        EXPECT_EQ(path.courses.size(), 4);
        for (const ZELTPCourseLink* link : path.links)
            toolChanges += qobject_cast<const ZELTPToolChangeLink*>(link) ? 1 : 0;
        for (const ZELTPTowCourse* course : path.courses) {
            const QList<ZELTPPoint*> chain = ChainPoints(course);
            const qsizetype onPart = std::count_if(chain.begin(), chain.end(),
                                                   [](const ZELTPPoint* point) { return !IsOffPart(point); });
            EXPECT_GE(onPart, example.fewestOnPartPoints);
            EXPECT_LE(onPart, 30);
            EXPECT_EQ(course->GetRollInPoint()->GetIndex(), 0);
            EXPECT_TRUE(NumberedOneByOne(chain));
        }
    }
    EXPECT_EQ(toolChanges, 2);

    const auto* probing = qobject_cast<const ZELTPProbingProcedure*>(program->GetProcedure(4));
    ASSERT_NE(probing, nullptr);
    ASSERT_EQ(probing->GetNumProbingPoints(), 3);
    EXPECT_EQ(probing->GetNumTrajectories(), 4);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(ZELTest::SameDouble(12.7, probing->GetProbingPoint(i).GetDiameter(), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(Examples, ZELTPProgramReaderExample, ::testing::ValuesIn(kExamples),
                         [](const ::testing::TestParamInfo<ExampleCase>& info) { return info.param.name; });

// ---------------------------------------------------------------------------
// Malformed documents (zeltpmalformeddocuments.h)

class ZELTPProgramReaderMalformed : public ::testing::TestWithParam<MalformedCase>
{
};

TEST_P(ZELTPProgramReaderMalformed, RefusedWithOneExactMessageAndNothingLeftInTheContainer)
{
    const MalformedCase& malformed = GetParam();
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).ReadData(malformed.document(), QStringLiteral("case.json")),
                         ZELTPFormatException, malformed.message);
    EXPECT_EQ(container.GetNumGeometries(), 0);
    EXPECT_FALSE(container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(Cases, ZELTPProgramReaderMalformed, ::testing::ValuesIn(kMalformed),
                         [](const ::testing::TestParamInfo<MalformedCase>& info) { return info.param.name; });

// ---------------------------------------------------------------------------
// Texts and numbers a posted program would print

// One value of the valid document replaced: `path` ("program.revision") is
// the value's path, and the reader names it as "$." `path` `within`, where
// `within` leads into the value when it is an array ("[3]").
struct FieldCase
{
    const char* name;
    const char* path;
    QJsonValue value;
    const char* problem;
    const char* within = "";
};
ZELTEST_PRINT_CASE_BY_NAME(FieldCase);

class ZELTPProgramReaderUnfitField : public ::testing::TestWithParam<FieldCase>
{
};

TEST_P(ZELTPProgramReaderUnfitField, IsRefusedNamingItsPathAndNothingIsLeftInTheContainer)
{
    const FieldCase& field = GetParam();
    ZELGeoContainer container;
    EXPECT_THROW_MESSAGE(ZELTPProgramReader(&container).ReadData(Edited(QLatin1String(field.path), field.value),
                                                                 QStringLiteral("case.json")),
                         ZELTPFormatException,
                         QStringLiteral("case.json: $.%1%2: %3")
                             .arg(QLatin1String(field.path), QLatin1String(field.within),
                                  QString::fromUtf8(field.problem)));
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

// The forced rates of the valid document's 16-tow trajectory: 1 for each
// tow but the third, which has `rate`.
QJsonArray ForcedRatesWithThird(double rate)
{
    QJsonArray rates;
    for (int tow = 1; tow <= 16; ++tow)
        rates.append(tow == 3 ? rate : 1.0);
    return rates;
}

QString WithCharacter(char16_t character)
{
    return QStringLiteral("T35") + QChar(character) + QStringLiteral("M30");
}

// Every text the NC programs may print, and every kind of character that
// would end its line or its quotes there.
const FieldCase kUnfitTexts[] = {
    {"MaterialIdWithLineFeed", "program.procedures[0].material.id", WithCharacter(0x0A),
     "text contains the line end U+000A"},
    {"MaterialIdWithCarriageReturn", "program.procedures[0].material.id", WithCharacter(0x0D),
     "text contains the line end U+000D"},
    {"MaterialIdWithVerticalTab", "program.procedures[0].material.id", WithCharacter(0x0B),
     "text contains the line end U+000B"},
    {"MaterialIdWithFormFeed", "program.procedures[0].material.id", WithCharacter(0x0C),
     "text contains the line end U+000C"},
    {"MaterialIdWithNextLine", "program.procedures[0].material.id", WithCharacter(0x85),
     "text contains the line end U+0085"},
    {"MaterialIdWithLineSeparator", "program.procedures[0].material.id", WithCharacter(0x2028),
     "text contains the line end U+2028"},
    {"MaterialIdWithParagraphSeparator", "program.procedures[0].material.id", WithCharacter(0x2029),
     "text contains the line end U+2029"},
    {"MaterialIdWithDoubleQuote", "program.procedures[0].material.id", WithCharacter(u'"'),
     "text contains a double quote"},
    {"MaterialIdWithNul", "program.procedures[0].material.id", WithCharacter(0x00), "text contains a NUL character"},
    {"MaterialIdWithEscape", "program.procedures[0].material.id", WithCharacter(0x1B),
     "text contains the control character U+001B"},
    {"MaterialIdWithTab", "program.procedures[0].material.id", WithCharacter(0x09),
     "text contains the control character U+0009"},
    {"MaterialIdWithDelete", "program.procedures[0].material.id", WithCharacter(0x7F),
     "text contains the control character U+007F"},
    {"MaterialIdWithC1Control", "program.procedures[0].material.id", WithCharacter(0x9B),
     "text contains the control character U+009B"},
    {"MaterialNameWithLineFeed", "program.procedures[0].material.name", WithCharacter(0x0A),
     "text contains the line end U+000A"},
    {"RevisionWithLineFeed", "program.revision", WithCharacter(0x0A), "text contains the line end U+000A"},
    {"RevisionWithDoubleQuote", "program.revision", WithCharacter(u'"'), "text contains a double quote"},
    {"PlyNameWithLineFeed", "program.procedures[0].plies[0].name", WithCharacter(0x0A),
     "text contains the line end U+000A"},
    {"PlyNameWithDoubleQuote", "program.procedures[0].plies[0].name", WithCharacter(u'"'),
     "text contains a double quote"},
    {"LinkNameWithLineFeed", "program.procedures[0].links[0].name", WithCharacter(0x0A),
     "text contains the line end U+000A"},
    {"CourseNameWithLineFeed", "program.procedures[0].courses[0].name", WithCharacter(0x0A),
     "text contains the line end U+000A"},
    {"RollerNameWithLineFeed", "program.procedures[0].courses[0].machineConfiguration.roller.name",
     WithCharacter(0x0A), "text contains the line end U+000A"},
    {"HeadNameWithDoubleQuote", "program.procedures[0].courses[0].machineConfiguration.head.name",
     WithCharacter(u'"'), "text contains a double quote"},
    {"ProgramNameWithLineFeed", "program.name", WithCharacter(0x0A), "name contains the line end U+000A"},
    {"ProgramNameWithDoubleQuote", "program.name", WithCharacter(u'"'), "name contains a double quote"},
    {"LayupNameWithLineSeparator", "program.procedures[0].name", WithCharacter(0x2028),
     "name contains the line end U+2028"},
    {"ProbingNameWithCarriageReturn", "program.procedures[1].name", WithCharacter(0x0D),
     "name contains the line end U+000D"},
};

INSTANTIATE_TEST_SUITE_P(Texts, ZELTPProgramReaderUnfitField, ::testing::ValuesIn(kUnfitTexts),
                         [](const ::testing::TestParamInfo<FieldCase>& info) { return info.param.name; });

// A tool change whose next roller has the width `width` and whose next
// head has tows `towWidth` wide.
QJsonObject ToolChangeTo(double width, double towWidth)
{
    QJsonObject change = ToolChange(0, width);
    QJsonObject next = change.value(QStringLiteral("next")).toObject();
    QJsonObject head = next.value(QStringLiteral("head")).toObject();
    head.insert(QStringLiteral("towWidth"), towWidth);
    next.insert(QStringLiteral("head"), head);
    change.insert(QStringLiteral("next"), next);
    return change;
}

// Every number just outside its range on either side, where the document
// has both.
const FieldCase kNumbersOutOfRange[] = {
    {"SafetyPlaneOriginBelow", "program.procedures[0].safetyPlane.origin[2]", -100000.5,
     "expected a number from -100000 to 100000, found -100000.5"},
    {"PointOriginAbove", "program.procedures[0].links[0].trajectories[0].points[0].origin[0]", 1e300,
     "expected a number from -100000 to 100000, found 1e+300"},
    {"OnPartPointOriginBelow", "program.procedures[0].courses[0].trajectories[2].points[1].origin[1]", -2e5,
     "expected a number from -100000 to 100000, found -2e+05"},
    {"ProbingPointOriginAbove", "program.procedures[1].trajectories[0].points[0].origin[2]", 100001,
     "expected a number from -100000 to 100000, found 100001"},
    {"AddingFeedrateBelow", "program.procedures[0].addingFeedrate", 0.5,
     "expected a number from 1 to 200000, found 0.5"},
    {"CuttingFeedrateAbove", "program.procedures[0].cuttingFeedrate", 200001,
     "expected a number from 1 to 200000, found 200001"},
    {"TrajectoryFeedrateAbove", "program.procedures[0].courses[0].trajectories[2].feedrate", 1e300,
     "expected a number from 1 to 200000, found 1e+300"},
    {"TrajectoryFeedrateTiny", "program.procedures[1].trajectories[1].feedrate", 1e-300,
     "expected a number from 1 to 200000, found 1e-300"},
    {"ForwardTiltAbove", "program.procedures[0].courses[0].trajectories[1].forwardTilt", 1e6,
     "expected a number from -90 to 90, found 1e+06"},
    {"SideTiltBelow", "program.procedures[0].courses[0].trajectories[2].sideTilt", -90.5,
     "expected a number from -90 to 90, found -90.5"},
    {"SmoothingAngleBelow", "program.procedures[0].courses[0].trajectories[3].smoothingAngle", -1,
     "expected a number from 0 to 180, found -1"},
    {"SmoothingAngleAbove", "program.procedures[0].courses[0].trajectories[3].smoothingAngle", 181,
     "expected a number from 0 to 180, found 181"},
    {"PlyOrientationAbove", "program.procedures[0].plies[0].orientation", 360.5,
     "expected a number from -360 to 360, found 360.5"},
    {"PlyOrientationBelow", "program.procedures[0].plies[0].orientation", -1e6,
     "expected a number from -360 to 360, found -1e+06"},
    {"RollerWidthTiny", "program.procedures[0].courses[0].machineConfiguration.roller.width", 1e-300,
     "expected a number from 0.1 to 5000, found 1e-300"},
    {"RollerWidthAbove", "program.procedures[0].courses[0].machineConfiguration.roller.width", 5001,
     "expected a number from 0.1 to 5000, found 5001"},
    {"TowWidthBelow", "program.procedures[0].courses[0].machineConfiguration.head.towWidth", 0.05,
     "expected a number from 0.1 to 5000, found 0.05"},
    {"ProbingDiameterAbove", "program.procedures[1].probingPoints[0].diameter", 1e300,
     "expected a number from 0.1 to 5000, found 1e+300"},
    {"TowLengthAbove", "program.procedures[0].courses[0].towLengths[15]", 1000000.5,
     "expected a number from 0 to 1000000, found 1000000.5"},
    {"TotalMaterialLengthAbove", "program.procedures[0].totalMaterialLength", 1e300,
     "expected a number from 0 to 1000000000, found 1e+300"},
    {"ForcedRateBelow", "program.procedures[0].courses[0].trajectories[2].forcedRates", ForcedRatesWithThird(-0.5),
     "expected a number from 0 to 10, found -0.5", "[2]"},
    {"ForcedRateAbove", "program.procedures[0].courses[0].trajectories[2].forcedRates", ForcedRatesWithThird(10.5),
     "expected a number from 0 to 10, found 10.5", "[2]"},
};

INSTANTIATE_TEST_SUITE_P(Numbers, ZELTPProgramReaderUnfitField, ::testing::ValuesIn(kNumbersOutOfRange),
                         [](const ::testing::TestParamInfo<FieldCase>& info) { return info.param.name; });

// One value of the valid document replaced by a value the reader takes.
struct FitFieldCase
{
    const char* name;
    const char* path;
    QJsonValue value;
};
ZELTEST_PRINT_CASE_BY_NAME(FitFieldCase);

class ZELTPProgramReaderFitField : public ::testing::TestWithParam<FitFieldCase>
{
};

TEST_P(ZELTPProgramReaderFitField, IsRead)
{
    const FitFieldCase& field = GetParam();
    ZELGeoContainer container;
    const ZELTPProgram* program = nullptr;
    EXPECT_NO_THROW(program = ZELTPProgramReader(&container).ReadData(Edited(QLatin1String(field.path), field.value),
                                                                      QStringLiteral("case.json")));
    EXPECT_NE(program, nullptr);
}

// Every range's ends, and texts with characters that print on one line.
const FitFieldCase kFitFields[] = {
    {"SafetyPlaneOriginAtTheLowEnd", "program.procedures[0].safetyPlane.origin[2]", -100000},
    {"PointOriginAtTheHighEnd", "program.procedures[0].links[0].trajectories[0].points[0].origin[0]", 100000},
    {"FeedrateAtTheLowEnd", "program.procedures[0].addingFeedrate", 1},
    {"FeedrateAtTheHighEnd", "program.procedures[0].links[0].trajectories[0].feedrate", 200000},
    {"ForwardTiltAtTheHighEnd", "program.procedures[0].courses[0].trajectories[1].forwardTilt", 90},
    {"SideTiltAtTheLowEnd", "program.procedures[0].courses[0].trajectories[2].sideTilt", -90},
    {"SmoothingAngleAtTheLowEnd", "program.procedures[0].courses[0].trajectories[3].smoothingAngle", 0},
    {"SmoothingAngleAtTheHighEnd", "program.procedures[0].courses[0].trajectories[3].smoothingAngle", 180},
    {"PlyOrientationAtTheLowEnd", "program.procedures[0].plies[0].orientation", -360},
    {"PlyOrientationAtTheHighEnd", "program.procedures[0].plies[0].orientation", 360},
    {"RollerWidthAndTowWidthAtTheLowEnd", "program.procedures[0].links[1].toolChange", ToolChangeTo(0.1, 0.1)},
    {"RollerWidthAndTowWidthAtTheHighEnd", "program.procedures[0].links[1].toolChange", ToolChangeTo(5000, 5000)},
    {"CourseRollerAtTheHighEnd", "program.procedures[0].courses[0].machineConfiguration.roller.width", 5000},
    {"ProbingDiameterAtTheLowEnd", "program.procedures[1].probingPoints[0].diameter", 0.1},
    {"TowLengthAtTheHighEnd", "program.procedures[0].courses[0].towLengths[15]", 1000000},
    {"TotalMaterialLengthAtTheLowEnd", "program.procedures[0].totalMaterialLength", 0},
    {"TotalMaterialLengthAtTheHighEnd", "program.procedures[0].totalMaterialLength", 1e9},
    {"ForcedRateAtTheLowEnd", "program.procedures[0].courses[0].trajectories[2].forcedRates", ForcedRatesWithThird(0)},
    {"ForcedRateAtTheHighEnd", "program.procedures[0].courses[0].trajectories[2].forcedRates",
     ForcedRatesWithThird(10)},
    {"SixteenTowsOnARollerJustSixteenWide", "program.procedures[0].courses[0].machineConfiguration.roller.width",
     101.5995},
    {"TextWithQuotesOtherThanDouble", "program.procedures[0].material.id", QStringLiteral("T35 1/4' `tow`")},
    {"TextOfOtherScripts", "program.procedures[0].plies[0].name", QString::fromUtf8("\xC3\xA9paisseur \xE5\xB1\xA4")},
    {"RevisionWithSpaces", "program.revision", QStringLiteral("Rev B 2")},
};

INSTANTIATE_TEST_SUITE_P(Edges, ZELTPProgramReaderFitField, ::testing::ValuesIn(kFitFields),
                         [](const ::testing::TestParamInfo<FitFieldCase>& info) { return info.param.name; });

TEST(ZELTPProgramReader, CourseOfEightTowsOnAnEightTowRollerLaysThem)
{
    QByteArray document = QJsonDocument::fromJson(kValid).toJson(QJsonDocument::Compact);
    document.replace("\"towMask\":\"1111111111111111\"", "\"towMask\":\"0000111111110000\"");
    document.replace("\"width\":101.6", "\"width\":50.8");
    ZELGeoContainer container;
    const ZELTPProgram* program = ZELTPProgramReader(&container).ReadData(document, QStringLiteral("case.json"));
    ASSERT_NE(program, nullptr);
    const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(program->GetProcedure(0));
    ASSERT_NE(layup, nullptr);
    const ZELTPTowCourse* course = WalkPath(layup).courses.value(0);
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(course->GetUsedTowMask().GetRawValue(), quint64(0x0FF0));
    EXPECT_EQ(course->GetMachineConfiguration().GetRollerTows(), 8);
}

// Normals of any length are taken as directions, however large or small
// their components.
TEST(ZELTPProgramReader, SafetyPlaneNormalOfExtremeComponentsIsNormalised)
{
    for (const double component : {1e308, 1e-300}) {
        ZELGeoContainer container;
        const ZELTPProgram* program = ZELTPProgramReader(&container).ReadData(
            Edited(QStringLiteral("program.procedures[0].safetyPlane.normal"), Triple(component, component, 0)),
            QStringLiteral("case.json"));
        ASSERT_NE(program, nullptr);
        EXPECT_TRUE(SameVector(ZELMathVector(M_SQRT1_2, M_SQRT1_2, 0.0),
                               program->GetProcedure(0)->GetSafetyPlane().GetNormal(), ZELTest::kTight))
            << component;
    }
}

TEST(ZELTPProgramReader, KeyGivenTwiceCountsFromItsFirstValue)
{
    const QByteArray compact = QJsonDocument::fromJson(kValid).toJson(QJsonDocument::Compact);
    ZELGeoContainer container;
    const ZELTPProgram* program = ZELTPProgramReader(&container).ReadData(
        QByteArray(compact).replace("\"name\":\"panel\"", "\"name\":\"panel\",\"name\":\"\""),
        QStringLiteral("case.json"));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("panel"));
}

// JSON Schema's "const": 1 takes 1.0 as well: they are the same number.
TEST(ZELTPProgramReader, VersionWrittenWithAFractionOrAnExponentIsVersionOne)
{
    const QByteArray compact = QJsonDocument::fromJson(kValid).toJson(QJsonDocument::Compact);
    for (const char* version : {"1.0", "1e0", "10e-1", "1.000"}) {
        ZELGeoContainer container;
        const ZELTPProgram* program = ZELTPProgramReader(&container).ReadData(
            QByteArray(compact).replace("\"version\":1", QByteArray("\"version\":") + version),
            QStringLiteral("case.json"));
        ASSERT_NE(program, nullptr) << version;
        EXPECT_EQ(program->GetName(), QStringLiteral("panel")) << version;
    }
}

TEST(ZELTPProgramReader, ValidDocumentOfTheMalformedCasesIsRead)
{
    ZELGeoContainer container;
    const ZELTPProgram* program = ZELTPProgramReader(&container).ReadData(kValid, QStringLiteral("case.json"));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("panel"));
    EXPECT_EQ(program->GetRevision(), QStringLiteral("0"));
}

} // namespace
