#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltpdocumentwriter.h>
#include <zeltponparttrajectory.h>
#include <zeltpprobingprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptoolchangelink.h>
#include <zeltptowcourse.h>

#include <zelsysexception.h>

#include <QBuffer>

#include <QtMath>

#include <limits>

namespace {

constexpr double kExact = 0.0;

const ZELMathVector kAlongX(1.0, 0.0, 0.0);
const ZELMathVector kUp(0.0, 0.0, 1.0);

ZELTPMachineConfiguration Configuration(const QString& roller, double width)
{
    return ZELTPMachineConfiguration(ZELTPRoller(roller, width), ZELTPAFPHead(QStringLiteral("H1"), 6.35));
}

void AddPoint(ZELTPDocumentWriter& writer, double x, double z)
{
    writer.AddPoint(ZELMathPoint(x, 0.0, z), kAlongX, kUp);
}

void WriteOffPart(ZELTPDocumentWriter& writer, double feedrate, std::initializer_list<std::pair<double, double>> points)
{
    writer.BeginOffPartTrajectory(feedrate);
    for (const auto& [x, z] : points)
        AddPoint(writer, x, z);
    writer.EndTrajectory();
}

// One ply of one two-tow course, an approach link that changes the roller,
// a retract, and a probing procedure of one target.
void WriteSmallProgram(ZELTPDocumentWriter& writer)
{
    writer.BeginProgram(QStringLiteral("Fl\u00fcgel 7"), QStringLiteral("B"));

    ZELTPDocumentWriter::RollLayup layup;
    layup.name = QStringLiteral("Ply 1 +45");
    layup.safetyPlane = ZELMathPlane(ZELMathPoint(10.0, 20.0, 30.5), kUp);
    layup.addingFeedrate = 2540.0;
    layup.cuttingFeedrate = 1270.0;
    layup.material = ZELTPMaterialDescription(QStringLiteral("M-1"), QStringLiteral("tape"));
    layup.totalMaterialLength = 200.0;
    layup.plies = {{QStringLiteral("P45"), 45.0, QStringLiteral("angle")}};
    writer.BeginRollLayupProcedure(layup);

    writer.BeginLinks();
    writer.BeginLink(QStringLiteral("approach"), ZELTPCourseLink::PointsDetailLow);
    WriteOffPart(writer, 20000.0, {{0.0, 50.0}, {5.0, 40.0}});
    writer.EndLink(ZELTPDocumentWriter::ToolChange{1, Configuration(QStringLiteral("R16"), 101.6),
                                                   Configuration(QStringLiteral("R2"), 12.7)});
    writer.BeginLink(QStringLiteral("retract"), ZELTPCourseLink::PointsDetailFull);
    WriteOffPart(writer, 20000.0, {{120.0, 40.0}});
    writer.EndLink();
    writer.EndLinks();

    writer.BeginCourses();
    ZELTPDocumentWriter::Course course;
    course.name = QStringLiteral("course 1");
    course.towMask = QStringLiteral("11");
    course.machineConfiguration = Configuration(QStringLiteral("R2"), 12.7);
    course.towLengths = {100.0, 100.25};
    course.rollInPoint = 1;
    course.rollOutPoint = 0;
    writer.BeginCourse(course);
    WriteOffPart(writer, 6000.0, {{5.0, 40.0}, {5.0, 1.0}});
    writer.BeginOnPartTrajectory(3000.0, ZELTPDocumentWriter::Tilts{1.5, -2.0, 0.0});
    AddPoint(writer, 5.0, 1.0);
    AddPoint(writer, 10.0, 0.0);
    writer.EndTrajectory();
    writer.BeginTowTrajectory(12700.0, ZELTPDocumentWriter::Tilts(), QStringLiteral("11"));
    AddPoint(writer, 10.0, 0.0);
    AddPoint(writer, 110.0, 0.0);
    writer.EndTrajectory();
    writer.BeginOnPartTrajectory(3000.0, ZELTPDocumentWriter::Tilts());
    AddPoint(writer, 110.0, 0.0);
    AddPoint(writer, 115.0, 1.0);
    writer.EndTrajectory();
    WriteOffPart(writer, 6000.0, {{115.0, 1.0}, {120.0, 40.0}});
    writer.EndCourse();
    writer.EndCourses();
    writer.EndRollLayupProcedure();

    writer.BeginProbingProcedure(QStringLiteral("probe"), ZELMathPlane(ZELMathPoint(0.0, 0.0, 60.0), kUp));
    WriteOffPart(writer, 3000.0, {{200.0, 50.0}, {200.0, 6.35}});
    WriteOffPart(writer, 3000.0, {{200.0, 50.0}});
    writer.EndProbingProcedure({12.7});

    writer.EndProgram();
}

// Written by hand from the layout rules: blocks a line an entry, two blanks
// a level; points, triples, materials, plies, machine configurations, safety
// planes, tow lengths and probing points on one line.
const char* const kSmallProgram = R"({
  "format": "zelkin-toolpath",
  "version": 1,
  "program": {
    "name": "Flügel 7",
    "revision": "B",
    "procedures": [
      {
        "kind": "rollLayup",
        "name": "Ply 1 +45",
        "safetyPlane": {"origin": [10, 20, 30.5], "normal": [0, 0, 1]},
        "addingFeedrate": 2540,
        "cuttingFeedrate": 1270,
        "material": {"id": "M-1", "name": "tape"},
        "totalMaterialLength": 200,
        "plies": [
          {"name": "P45", "orientation": 45, "propagation": "angle"}
        ],
        "links": [
          {
            "name": "approach",
            "pointsDetail": "low",
            "trajectories": [
              {
                "kind": "offPart",
                "feedrate": 20000,
                "points": [
                  {"origin": [0, 0, 50], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                  {"origin": [5, 0, 40], "travel": [1, 0, 0], "normal": [0, 0, 1]}
                ]
              }
            ],
            "toolChange": {
              "removePoint": 1,
              "previous": {"roller": {"name": "R16", "width": 101.6}, "head": {"name": "H1", "towWidth": 6.35}},
              "next": {"roller": {"name": "R2", "width": 12.7}, "head": {"name": "H1", "towWidth": 6.35}}
            }
          },
          {
            "name": "retract",
            "pointsDetail": "full",
            "trajectories": [
              {
                "kind": "offPart",
                "feedrate": 20000,
                "points": [
                  {"origin": [120, 0, 40], "travel": [1, 0, 0], "normal": [0, 0, 1]}
                ]
              }
            ]
          }
        ],
        "courses": [
          {
            "name": "course 1",
            "towMask": "11",
            "machineConfiguration": {"roller": {"name": "R2", "width": 12.7}, "head": {"name": "H1", "towWidth": 6.35}},
            "towLengths": [100, 100.25],
            "rollInPoint": 1,
            "rollOutPoint": 0,
            "trajectories": [
              {
                "kind": "offPart",
                "feedrate": 6000,
                "points": [
                  {"origin": [5, 0, 40], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                  {"origin": [5, 0, 1], "travel": [1, 0, 0], "normal": [0, 0, 1]}
                ]
              },
              {
                "kind": "onPart",
                "feedrate": 3000,
                "forwardTilt": 1.5,
                "sideTilt": -2,
                "smoothingAngle": 0,
                "points": [
                  {"origin": [5, 0, 1], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                  {"origin": [10, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]}
                ]
              },
              {
                "kind": "tow",
                "feedrate": 12700,
                "forwardTilt": 0,
                "sideTilt": 0,
                "smoothingAngle": 0,
                "towMask": "11",
                "points": [
                  {"origin": [10, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                  {"origin": [110, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]}
                ]
              },
              {
                "kind": "onPart",
                "feedrate": 3000,
                "forwardTilt": 0,
                "sideTilt": 0,
                "smoothingAngle": 0,
                "points": [
                  {"origin": [110, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                  {"origin": [115, 0, 1], "travel": [1, 0, 0], "normal": [0, 0, 1]}
                ]
              },
              {
                "kind": "offPart",
                "feedrate": 6000,
                "points": [
                  {"origin": [115, 0, 1], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                  {"origin": [120, 0, 40], "travel": [1, 0, 0], "normal": [0, 0, 1]}
                ]
              }
            ]
          }
        ]
      },
      {
        "kind": "probing",
        "name": "probe",
        "safetyPlane": {"origin": [0, 0, 60], "normal": [0, 0, 1]},
        "trajectories": [
          {
            "kind": "offPart",
            "feedrate": 3000,
            "points": [
              {"origin": [200, 0, 50], "travel": [1, 0, 0], "normal": [0, 0, 1]},
              {"origin": [200, 0, 6.35], "travel": [1, 0, 0], "normal": [0, 0, 1]}
            ]
          },
          {
            "kind": "offPart",
            "feedrate": 3000,
            "points": [
              {"origin": [200, 0, 50], "travel": [1, 0, 0], "normal": [0, 0, 1]}
            ]
          }
        ],
        "probingPoints": [
          {"diameter": 12.7}
        ]
      }
    ]
  }
}
)";

QByteArray SmallProgramBytes()
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ZELTPDocumentWriter writer(&buffer, QStringLiteral("small.json"));
    WriteSmallProgram(writer);
    return buffer.data();
}

// A device that takes nothing, as a full disk does.
class RefusingDevice : public QIODevice
{
public:
    RefusingDevice()
    {
        open(QIODevice::WriteOnly);
        setErrorString(QStringLiteral("No space left on device"));
    }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64) override { return -1; }
};

} // namespace

TEST(ZELTPDocumentWriter, WritesEachPartOfTheDocumentInItsLayout)
{
    EXPECT_EQ(QString::fromUtf8(SmallProgramBytes()), QString::fromUtf8(kSmallProgram));
}

TEST(ZELTPDocumentWriter, WhatItWritesTheReaderBuildsBack)
{
    ZELGeoContainer container;
    const ZELTPProgram* program
        = ZELTPProgramReader(&container).ReadData(SmallProgramBytes(), QStringLiteral("small.json"));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetName(), QStringLiteral("Fl\u00fcgel 7"));
    ASSERT_EQ(program->GetNumProcedures(), 2);

    const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(program->GetProcedure(0));
    ASSERT_NE(layup, nullptr);
    EXPECT_NEAR(layup->GetTotalMaterialLength(), 200.0, kExact);
    ASSERT_EQ(layup->GetNumPlyDescriptions(), 1);
    EXPECT_NEAR(layup->GetPlyDescription(0).GetOrientation(), qDegreesToRadians(45.0), 1e-15);
    const auto* approach = qobject_cast<const ZELTPToolChangeLink*>(layup->GetApproachLink());
    ASSERT_NE(approach, nullptr);
    EXPECT_EQ(approach->GetPointsDetail(), ZELTPCourseLink::PointsDetailLow);
    const auto* course = qobject_cast<const ZELTPTowCourse*>(approach->GetToCourse());
    ASSERT_NE(course, nullptr);
    EXPECT_EQ(course->GetNumTrajectories(), 5);
    EXPECT_NEAR(course->GetTowLength(1), 100.25, kExact);
    EXPECT_EQ(course->GetMachineConfiguration().GetTool().GetName(), QStringLiteral("R2"));
    EXPECT_EQ(course->GetRollInPoint(), course->GetRollInTrajectory()->GetPoint(1));

    const auto* probing = qobject_cast<const ZELTPProbingProcedure*>(program->GetProcedure(1));
    ASSERT_NE(probing, nullptr);
    EXPECT_EQ(probing->GetNumProbingPoints(), 1);
}

TEST(ZELTPDocumentWriter, ANumberThatIsNotFiniteIsRefusedNamingIt)
{
    const auto writeFeedrate = [](double feedrate) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        ZELTPDocumentWriter writer(&buffer, QStringLiteral("bad.json"));
        writer.BeginProgram(QStringLiteral("bad"), QStringLiteral("A"));
        writer.BeginProbingProcedure(QStringLiteral("probe"), ZELMathPlane());
        writer.BeginOffPartTrajectory(feedrate);
    };
    EXPECT_THROW_MESSAGE(writeFeedrate(std::numeric_limits<double>::quiet_NaN()), ZELSysException,
                         "cannot write a number that is not finite: nan");
    EXPECT_THROW_MESSAGE(writeFeedrate(-std::numeric_limits<double>::infinity()), ZELSysException,
                         "cannot write a number that is not finite: -inf");
}

TEST(ZELTPDocumentWriter, ADeviceThatRefusesTheTextEndsTheWriteNamingTheDeviceAndItsReason)
{
    RefusingDevice device;
    ZELTPDocumentWriter writer(&device, QStringLiteral("/full/disk.json"));
    writer.BeginProgram(QStringLiteral("p"), QStringLiteral("A"));
    EXPECT_THROW_MESSAGE(writer.EndProgram(), ZELSysException, "cannot write /full/disk.json: No space left on device");
}

TEST(ZELTPDocumentWriter, CountsTheProceduresCoursesLinksAndPointsItWrote)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ZELTPDocumentWriter writer(&buffer, QStringLiteral("small.json"));
    WriteSmallProgram(writer);
    const ZELTPDocumentWriter::Counts counts = writer.GetCounts();
    // The layup and the probing procedure; the approach and the retract.
    EXPECT_EQ(counts.procedures, 2);
    EXPECT_EQ(counts.links, 2);
    EXPECT_EQ(counts.courses, 1);
    // Links 2 + 1, the course's five trajectories 2 each, the probing 2 + 1.
    EXPECT_EQ(counts.points, 16);
}
