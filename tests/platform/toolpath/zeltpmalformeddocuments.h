#ifndef ZELTPMALFORMEDDOCUMENTS_H
#define ZELTPMALFORMEDDOCUMENTS_H

// The malformed toolpath documents that the reader and the procedure
// stream must both refuse, each with its one exact message: a small valid
// document and the cases that break one of its rules. Included by one test
// file per executable.

#include <zeltestsupport.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QRegularExpression>
#include <QString>

#include <functional>
#include <variant>

namespace {

// Malformed documents

// A small valid document that the cases below break one rule of: one layup
// of one course of 16 tows between two links, and a probing procedure with
// one target.
const char kValid[] = R"({
  "format": "zelkin-toolpath",
  "version": 1,
  "program": {
    "name": "panel",
    "procedures": [
      {
        "kind": "rollLayup",
        "name": "Ply 1",
        "safetyPlane": {"origin": [0, 0, 100], "normal": [0, 0, 1]},
        "addingFeedrate": 2540,
        "cuttingFeedrate": 1270,
        "material": {"id": "M1"},
        "totalMaterialLength": 640,
        "plies": [{"name": "P0", "orientation": 0, "propagation": "angle"}],
        "links": [
          {"trajectories": [{"kind": "offPart", "feedrate": 20000, "points": [{"origin": [0, 0, 50]}]}]},
          {"trajectories": [{"kind": "offPart", "feedrate": 20000, "points": [{"origin": [40, 0, 50]}]}]}
        ],
        "courses": [
          {
            "towMask": "1111111111111111",
            "machineConfiguration": {"roller": {"name": "R16", "width": 101.6},
                                     "head": {"name": "H1", "towWidth": 6.35}},
            "towLengths": [40, 40, 40, 40, 40, 40, 40, 40, 40, 40, 40, 40, 40, 40, 40, 40],
            "trajectories": [
              {"kind": "offPart", "feedrate": 6000, "points": [
                {"origin": [0, 0, 10]},
                {"origin": [0, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]}]},
              {"kind": "onPart", "feedrate": 5000, "points": [
                {"origin": [0, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                {"origin": [5, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]}]},
              {"kind": "tow", "feedrate": 12000, "towMask": "1111111111111111", "points": [
                {"origin": [5, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                {"origin": [35, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]}]},
              {"kind": "onPart", "feedrate": 5000, "points": [
                {"origin": [35, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                {"origin": [40, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]}]},
              {"kind": "offPart", "feedrate": 6000, "points": [
                {"origin": [40, 0, 0], "travel": [1, 0, 0], "normal": [0, 0, 1]},
                {"origin": [40, 0, 10]}]}
            ],
            "rollInPoint": 0,
            "rollOutPoint": 1
          }
        ]
      },
      {
        "kind": "probing",
        "name": "probe",
        "safetyPlane": {"origin": [0, 0, 100], "normal": [0, 0, 1]},
        "trajectories": [
          {"kind": "offPart", "feedrate": 3000, "points": [{"origin": [0, 0, 50]}]},
          {"kind": "offPart", "feedrate": 3000, "points": [{"origin": [10, 0, 50]}]}
        ],
        "probingPoints": [{"diameter": 12.7}]
      }
    ]
  }
})";

const QJsonValue kRemoved(QJsonValue::Undefined);

using PathStep = std::variant<QString, int>;

QList<PathStep> PathSteps(const QString& path)
{
    QList<PathStep> steps;
    static const QRegularExpression step(QStringLiteral(R"(\.?([A-Za-z]+)|\[(\d+)\])"));
    for (const QRegularExpressionMatch& match : step.globalMatch(path)) {
        if (match.capturedLength(1) > 0)
            steps.append(match.captured(1));
        else
            steps.append(match.captured(2).toInt());
    }
    return steps;
}

// `node` with the value at `steps` set to `value` (appended at an index one
// past the end) or, for kRemoved, taken out.
QJsonValue Edit(const QJsonValue& node, QList<PathStep> steps, const QJsonValue& value)
{
    const PathStep step = steps.takeFirst();
    if (const QString* key = std::get_if<QString>(&step)) {
        QJsonObject object = node.toObject();
        if (!steps.isEmpty())
            object.insert(*key, Edit(object.value(*key), steps, value));
        else if (value.isUndefined())
            object.remove(*key);
        else
            object.insert(*key, value);
        return object;
    }
    const int index = std::get<int>(step);
    QJsonArray array = node.toArray();
    if (!steps.isEmpty())
        array.replace(index, Edit(array.at(index), steps, value));
    else if (value.isUndefined())
        array.removeAt(index);
    else if (index == array.size())
        array.append(value);
    else
        array.replace(index, value);
    return array;
}

// The valid document with the value at `path` ("program.procedures[0].name")
// replaced, added or removed.
QByteArray Edited(const QString& path, const QJsonValue& value)
{
    const QJsonValue root = QJsonDocument::fromJson(kValid).object();
    return QJsonDocument(Edit(root, PathSteps(path), value).toObject()).toJson(QJsonDocument::Compact);
}

QJsonArray Triple(double x, double y, double z)
{
    return QJsonArray{x, y, z};
}

QJsonObject FramedPoint(double x, const QJsonArray& travel, const QJsonArray& normal)
{
    return QJsonObject{{QStringLiteral("origin"), Triple(x, 0, 0)},
                       {QStringLiteral("travel"), travel},
                       {QStringLiteral("normal"), normal}};
}

QJsonObject Configuration(double rollerWidth)
{
    return QJsonObject{
        {QStringLiteral("roller"), QJsonObject{{QStringLiteral("name"), QStringLiteral("R")},
                                               {QStringLiteral("width"), rollerWidth}}},
        {QStringLiteral("head"), QJsonObject{{QStringLiteral("name"), QStringLiteral("H")},
                                             {QStringLiteral("towWidth"), 6.35}}}};
}

QJsonObject ToolChange(int removePoint, double nextRollerWidth)
{
    return QJsonObject{{QStringLiteral("removePoint"), removePoint},
                       {QStringLiteral("previous"), Configuration(101.6)},
                       {QStringLiteral("next"), Configuration(nextRollerWidth)}};
}

struct MalformedCase
{
    const char* name;
    std::function<QByteArray()> document;
    QString message;
};
ZELTEST_PRINT_CASE_BY_NAME(MalformedCase);

MalformedCase Change(const char* name, const char* path, const QJsonValue& value, const char* message)
{
    const QString at = QString::fromLatin1(path);
    return {name, [at, value] { return Edited(at, value); }, QString::fromUtf8(message)};
}

// The valid document, compact and with its keys sorted, with the text `from`
// replaced by `to`.
MalformedCase Rewritten(const char* name, const char* from, const char* to, const char* message)
{
    return {name,
            [from, to] {
                const QByteArray compact = QJsonDocument::fromJson(kValid).toJson(QJsonDocument::Compact);
                return QByteArray(compact).replace(from, to);
            },
            QString::fromUtf8(message)};
}

MalformedCase Text(const char* name, const QByteArray& text, const QString& message)
{
    return {name, [text] { return text; }, message};
}

const char kCourse[] = "program.procedures[0].courses[0]";

QString InCourse(const char* path)
{
    return QString::fromLatin1(kCourse) + QLatin1Char('.') + QLatin1String(path);
}

MalformedCase CourseChange(const char* name, const char* path, const QJsonValue& value, const char* message)
{
    const QString at = InCourse(path);
    return {name, [at, value] { return Edited(at, value); }, QString::fromUtf8(message)};
}

QString TooDeep()
{
    return QStringLiteral("case.json: $") + QStringLiteral("[0]").repeated(1024)
        + QStringLiteral(": invalid JSON at byte 1024: nested deeper than 1024 levels");
}

const MalformedCase kMalformed[] = {
    // The document and the program.
    Text("RootIsNotAnObject", "[1, 2]", "case.json: $: expected an object, found an array"),
    Change("MissingFormat", "format", kRemoved, "case.json: $: missing field 'format'"),
    Change("WrongFormatName", "format", QStringLiteral("zelkin-path"),
           "case.json: $.format: expected 'zelkin-toolpath', found 'zelkin-path'"),
    Change("VersionTwo", "version", 2, "case.json: $.version: unsupported version 2 (this reader reads version 1)"),
    Change("VersionZero", "version", 0, "case.json: $.version: unsupported version 0 (this reader reads version 1)"),
    Change("VersionOneAndAHalf", "version", 1.5,
           "case.json: $.version: unsupported version 1.5 (this reader reads version 1)"),
    Rewritten("VersionJustAboveOne", "\"version\":1", "\"version\":1.000000000000001",
              "case.json: $.version: unsupported version 1.000000000000001 (this reader reads version 1)"),
    Change("VersionAsString", "version", QStringLiteral("1"),
           "case.json: $.version: expected a number, found a string"),
    Change("MissingProgram", "program", kRemoved, "case.json: $: missing field 'program'"),
    Change("ProgramNameMissing", "program.name", kRemoved, "case.json: $.program: missing field 'name'"),
    Change("ProgramNameEmpty", "program.name", QString(), "case.json: $.program.name: name is empty"),
    Change("ProgramNameWithSlash", "program.name", QStringLiteral("wing/skin"),
           "case.json: $.program.name: name contains the path separator '/'"),
    Change("ProgramNameWithBackslash", "program.name", QStringLiteral("wing\\skin"),
           "case.json: $.program.name: name contains the path separator '\\'"),
    Change("ProgramNameWithParentStep", "program.name", QStringLiteral("..panel"),
           "case.json: $.program.name: name contains '..'"),
    Change("ProgramNameWithNul", "program.name", QString::fromUtf8("pa\0nel", 6),
           "case.json: $.program.name: name contains a NUL character"),
    Change("ProgramNameWithTab", "program.name", QStringLiteral("pa\tnel"),
           "case.json: $.program.name: name contains the control character U+0009"),
    Change("ProgramNameNotAString", "program.name", 7, "case.json: $.program.name: expected a string, found a number"),
    Change("RevisionNotAString", "program.revision", true,
           "case.json: $.program.revision: expected a string, found a boolean"),
    Change("RevisionNull", "program.revision", QJsonValue::Null,
           "case.json: $.program.revision: expected a string, found null"),
    Change("ProceduresNotAnArray", "program.procedures", QJsonObject(),
           "case.json: $.program.procedures: expected an array, found an object"),
    Change("ProcedureNotAnObject", "program.procedures[1]", QJsonValue::Null,
           "case.json: $.program.procedures[1]: expected an object, found null"),
    Change("UnknownProcedureKind", "program.procedures[0].kind", QStringLiteral("drill"),
           "case.json: $.program.procedures[0].kind: unknown procedure kind 'drill'"),
    // The message stays on one line whatever the document quotes in it.
    Change("UnknownProcedureKindWithLineEnds", "program.procedures[0].kind", QStringLiteral("roll\nLayup\r"),
           "case.json: $.program.procedures[0].kind: unknown procedure kind 'roll\\u000ALayup\\u000D'"),
    Change("ProbingNameEmpty", "program.procedures[1].name", QString(),
           "case.json: $.program.procedures[1].name: name is empty"),

    // The layup's own fields.
    Change("SafetyPlaneNormalZero", "program.procedures[0].safetyPlane.normal", Triple(0, 0, 0),
           "case.json: $.program.procedures[0].safetyPlane.normal: expected a non-zero vector"),
    Change("AddingFeedrateZero", "program.procedures[0].addingFeedrate", 0,
           "case.json: $.program.procedures[0].addingFeedrate: expected a number from 1 to 200000, found 0"),
    Change("CuttingFeedrateMissing", "program.procedures[0].cuttingFeedrate", kRemoved,
           "case.json: $.program.procedures[0]: missing field 'cuttingFeedrate'"),
    Change("TotalMaterialLengthNegative", "program.procedures[0].totalMaterialLength", -5,
           "case.json: $.program.procedures[0].totalMaterialLength: "
           "expected a number from 0 to 1000000000, found -5"),
    Change("MaterialWithoutId", "program.procedures[0].material", QJsonObject{{QStringLiteral("name"), QStringLiteral("carbon")}},
           "case.json: $.program.procedures[0].material: missing field 'id'"),
    Change("UnknownPropagation", "program.procedures[0].plies[0].propagation", QStringLiteral("spiral"),
           "case.json: $.program.procedures[0].plies[0].propagation: unknown propagation 'spiral' (expected "
           "'angle', 'offset', 'geodesicOffset', 'parallel', 'geodesic' or 'userDefined')"),
    Change("PlyOrientationNotANumber", "program.procedures[0].plies[0].orientation", QStringLiteral("45"),
           "case.json: $.program.procedures[0].plies[0].orientation: expected a number, found a string"),
    Change("LayupWithoutCourses", "program.procedures[0].courses", QJsonArray(),
           "case.json: $.program.procedures[0].courses: roll layup procedure 'Ply 1' has no course (expected at "
           "least 1)"),
    Change("OneLinkTooFew", "program.procedures[0].links[1]", kRemoved,
           "case.json: $.program.procedures[0].links: expected 2 links, one more than courses (1), found 1"),
    Change("OneLinkTooMany", "program.procedures[0].links[2]", QJsonObject(),
           "case.json: $.program.procedures[0].links: expected 2 links, one more than courses (1), found 3"),

    // Links and tool changes.
    Change("UnknownPointsDetail", "program.procedures[0].links[0].pointsDetail", QStringLiteral("high"),
           "case.json: $.program.procedures[0].links[0].pointsDetail: "
           "unknown points detail 'high' (expected 'low', 'medium' or 'full')"),
    Change("LinkTrajectoryOnThePart", "program.procedures[0].links[0].trajectories[0].kind", QStringLiteral("tow"),
           "case.json: $.program.procedures[0].links[0].trajectories[0].kind: "
           "expected trajectory kind 'offPart', found 'tow'"),
    Change("LinkTrajectoryWithoutPoints", "program.procedures[0].links[1].trajectories[0].points", QJsonArray(),
           "case.json: $.program.procedures[0].links[1].trajectories[0].points: trajectory needs at least 1 point"),
    Change("OffPartPointWithTravelOnly", "program.procedures[0].links[0].trajectories[0].points[0].travel",
           Triple(1, 0, 0),
           "case.json: $.program.procedures[0].links[0].trajectories[0].points[0]: "
           "missing field 'normal' (an off-part point gives travel and normal, or neither)"),
    Change("RemovePointPastTheLinksPoints", "program.procedures[0].links[1].toolChange", ToolChange(1, 50.8),
           "case.json: $.program.procedures[0].links[1].toolChange.removePoint: "
           "index 1 is outside the link's points (0 to 0)"),
    Change("ToolChangeRollerWidthZero", "program.procedures[0].links[1].toolChange", ToolChange(0, 0),
           "case.json: $.program.procedures[0].links[1].toolChange.next.roller.width: "
           "expected a number from 0.1 to 5000, found 0"),

    // Courses.
    CourseChange("CourseTowMaskMissing", "towMask", kRemoved,
                 "case.json: $.program.procedures[0].courses[0]: missing field 'towMask'"),
    CourseChange("CourseTowMaskEmpty", "towMask", QString(),
                 "case.json: $.program.procedures[0].courses[0].towMask: tow mask is empty (expected 1 to 64 tows)"),
    CourseChange("CourseTowMaskOf65Tows", "towMask", QString(65, QLatin1Char('1')),
                 "case.json: $.program.procedures[0].courses[0].towMask: tow mask has 65 tows, at most 64"),
    CourseChange("CourseTowMaskWithOtherCharacters", "towMask", QStringLiteral("11x1111111111111"),
                 "case.json: $.program.procedures[0].courses[0].towMask: "
                 "expected a tow mask of '0' and '1' characters, found '11x1111111111111'"),
    CourseChange("SixteenTowsOnAnEightTowRoller", "machineConfiguration.roller.width", 50.8,
                 "case.json: $.program.procedures[0].courses[0].towMask: the tows laid span 16 tows (1 to 16), more "
                 "than the 8 tows of 6.35 mm that the roller of 50.8 mm holds"),
    CourseChange("RollerNarrowerThanATow", "machineConfiguration.roller.width", 6.3,
                 "case.json: $.program.procedures[0].courses[0].towMask: the tows laid span 16 tows (1 to 16), more "
                 "than the 0 tows of 6.35 mm that the roller of 6.3 mm holds"),
    CourseChange("HeadMissing", "machineConfiguration.head", kRemoved,
                 "case.json: $.program.procedures[0].courses[0].machineConfiguration: missing field 'head'"),
    CourseChange("TowLengthsOnePerTow", "towLengths", QJsonArray{40, 40},
                 "case.json: $.program.procedures[0].courses[0].towLengths: "
                 "expected 16 tow lengths (one per tow of the course's towMask), found 2"),
    CourseChange("TowLengthNegative", "towLengths[3]", -1,
                 "case.json: $.program.procedures[0].courses[0].towLengths[3]: "
                 "expected a number from 0 to 1000000, found -1"),
    CourseChange("ThreeTrajectories", "trajectories", QJsonArray{QJsonObject(), QJsonObject(), QJsonObject()},
                 "case.json: $.program.procedures[0].courses[0].trajectories: "
                 "expected at least 4 trajectories (approach, roll-in, roll-out, retract), found 3"),
    CourseChange("ApproachOnThePart", "trajectories[0].kind", QStringLiteral("onPart"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[0].kind: "
                 "expected trajectory kind 'offPart' for the course's approach, found 'onPart'"),
    CourseChange("RetractLaysTows", "trajectories[4].kind", QStringLiteral("tow"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[4].kind: "
                 "expected trajectory kind 'offPart' for the course's retract, found 'tow'"),
    CourseChange("OffPartBetweenRollInAndRollOut", "trajectories[2].kind", QStringLiteral("offPart"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[2].kind: "
                 "expected trajectory kind 'onPart' or 'tow', found 'offPart'"),
    CourseChange("UnknownTrajectoryKind", "trajectories[2].kind", QStringLiteral("drill"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[2].kind: "
                 "unknown trajectory kind 'drill'"),
    CourseChange("FeedrateMissing", "trajectories[1].feedrate", kRemoved,
                 "case.json: $.program.procedures[0].courses[0].trajectories[1]: missing field 'feedrate'"),
    CourseChange("FeedrateAsString", "trajectories[1].feedrate", QStringLiteral("fast"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].feedrate: "
                 "expected a number, found a string"),
    CourseChange("TiltNotANumber", "trajectories[1].forwardTilt", QJsonArray(),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].forwardTilt: "
                 "expected a number, found an array"),
    CourseChange("TowMaskOfTwelveTows", "trajectories[2].towMask", QStringLiteral("111111111111"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[2].towMask: "
                 "tow mask has 12 tows, expected 16 (the course's towMask)"),
    Rewritten("TowTrajectoryLaysTowsTheCourseLeavesOut", "\"towMask\":\"1111111111111111\",\"trajectories\"",
              "\"towMask\":\"0000111111110001\",\"trajectories\"",
              "case.json: $.program.procedures[0].courses[0].trajectories[2].towMask: "
              "tow mask lays tows that the course's towMask leaves out: 1, 2, 3, 4, 13, 14, 15"),
    CourseChange("ForcedMaskOfTwoTows", "trajectories[2].forcedMask", QStringLiteral("11"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[2].forcedMask: "
                 "tow mask has 2 tows, expected 16 (the trajectory's towMask)"),
    CourseChange("ForcedRatesOnePerTow", "trajectories[2].forcedRates", QJsonArray{1, 1},
                 "case.json: $.program.procedures[0].courses[0].trajectories[2].forcedRates: "
                 "expected 16 forced rates (one per tow of the trajectory's towMask), found 2"),
    CourseChange("TowTrajectoryOfOnePoint", "trajectories[2].points[1]", kRemoved,
                 "case.json: $.program.procedures[0].courses[0].trajectories[2].points: "
                 "tow trajectory needs at least 2 points"),
    CourseChange("PointNotAnObject", "trajectories[1].points[1]", 5,
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1]: "
                 "expected an object, found a number"),
    CourseChange("OriginOfTwoNumbers", "trajectories[1].points[1].origin", QJsonArray{5, 0},
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1].origin: "
                 "expected 3 numbers, found 2"),
    CourseChange("OriginWithAString", "trajectories[1].points[1].origin[1]", QStringLiteral("0"),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1].origin[1]: "
                 "expected a number, found a string"),
    CourseChange("NormalNotAUnitVector", "trajectories[1].points[1].normal", Triple(0, 0, 1.25),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1].normal: "
                 "expected a unit vector (length 1.25)"),
    // Beyond the tolerance of 1e-6 by a tenth of it: the length shows why.
    CourseChange("NormalJustTooLong", "trajectories[1].points[1].normal", Triple(0, 0, 1.0000011),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1].normal: "
                 "expected a unit vector (length 1.0000011)"),
    CourseChange("TravelJustTooShort", "trajectories[1].points[1].travel", Triple(0.9999989, 0, 0),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1].travel: "
                 "expected a unit vector (length 0.9999989)"),
    CourseChange("TravelOf1e308", "trajectories[1].points[1].travel", Triple(1e308, 0, 0),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1].travel: "
                 "expected a unit vector (length 1e+308)"),
    CourseChange("TravelAndNormalNotPerpendicular", "trajectories[1].points[1]",
                 FramedPoint(5, Triple(0.9539392014169456, 0, 0.3), Triple(0, 0, 1)),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1]: "
                 "travel and normal are not perpendicular (dot 0.3)"),
    CourseChange("OnPartPointWithoutNormal", "trajectories[1].points[1].normal", kRemoved,
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[1]: missing field 'normal'"),
    CourseChange("JunctionCopiesApart", "trajectories[3].points[0].origin", Triple(35.5, 0, 0),
                 "case.json: $.program.procedures[0].courses[0].trajectories[3].points[0].origin: "
                 "origin is 0.5 mm from the previous trajectory's last point (at most 0.001 mm)"),
    CourseChange("JunctionCopyFarOutside", "trajectories[1].points[0].origin", Triple(1e308, 0, 0),
                 "case.json: $.program.procedures[0].courses[0].trajectories[1].points[0].origin[0]: "
                 "expected a number from -100000 to 100000, found 1e+308"),
    CourseChange("RollInPointPastTheRollIn", "rollInPoint", 2,
                 "case.json: $.program.procedures[0].courses[0].rollInPoint: "
                 "index 2 is outside the roll-in trajectory's points (0 to 1)"),
    CourseChange("RollOutPointNegative", "rollOutPoint", -1,
                 "case.json: $.program.procedures[0].courses[0].rollOutPoint: "
                 "index -1 is outside the roll-out trajectory's points (0 to 1)"),
    CourseChange("RollInPointWithFraction", "rollInPoint", 0.5,
                 "case.json: $.program.procedures[0].courses[0].rollInPoint: expected an integer, found 0.5"),
    Rewritten("RollInPointBeyond64BitIntegers", "\"rollInPoint\":0", "\"rollInPoint\":18446744073709551615",
              "case.json: $.program.procedures[0].courses[0].rollInPoint: integer 18446744073709551615 is too large"),
    CourseChange("RollOutPointMissing", "rollOutPoint", kRemoved,
                 "case.json: $.program.procedures[0].courses[0]: missing field 'rollOutPoint'"),

    // Probing.
    Change("ProbingPointsOneTooMany", "program.procedures[1].probingPoints[1]", QJsonObject{{QStringLiteral("diameter"), 12.7}},
           "case.json: $.program.procedures[1].trajectories: "
           "expected 3 trajectories, one more than probingPoints (2), found 2"),
    Change("ProbingDiameterMissing", "program.procedures[1].probingPoints[0].diameter", kRemoved,
           "case.json: $.program.procedures[1].probingPoints[0]: missing field 'diameter'"),
    Change("ProbingTrajectoryOnThePart", "program.procedures[1].trajectories[1].kind", QStringLiteral("onPart"),
           "case.json: $.program.procedures[1].trajectories[1].kind: "
           "expected trajectory kind 'offPart', found 'onPart'"),

    // Text that is not JSON, or not JSON this reader takes.
    Text("EmptyDocument", "", "case.json: $: invalid JSON at byte 0: the document is empty"),
    Text("WhitespaceOnly", " \n\t ", "case.json: $: invalid JSON at byte 4: the document is empty"),
    Text("TruncatedAfterAValue", R"({"format": "zelkin-toolpath", "version": 1)",
         "case.json: $.version: invalid JSON at byte 42: unexpected end of the document"),
    Text("TruncatedInAString", R"({"format": "zelkin-tool)",
         "case.json: $.format: invalid JSON at byte 23: unexpected end of the document in a string"),
    Text("MissingComma", R"({"format": "zelkin-toolpath" "version": 1})",
         R"(case.json: $.format: invalid JSON at byte 29: expected ',' or '}', found '"')"),
    Text("TrailingComma", R"({"a": 1,})", "case.json: $: invalid JSON at byte 8: expected a string key, found '}'"),
    Text("EntryMissingInAnArray", R"({"program": {"procedures": [{"kind": "rollLayup"}, ]}})",
         "case.json: $.program.procedures[1]: invalid JSON at byte 51: expected a value, found ']'"),
    Text("ErrorUnderAKeyThatIsNotAName", R"({"x-cam id": [1 2]})",
         "case.json: $['x-cam id'][0]: invalid JSON at byte 16: expected ',' or ']', found '2'"),
    Text("KeyNotAString", "{1: 2}", "case.json: $: invalid JSON at byte 1: expected a string key, found '1'"),
    Text("MissingColon", R"({"a" 1})", "case.json: $.a: invalid JSON at byte 5: expected ':', found '1'"),
    Text("NotANumber", R"({"v": NaN})", "case.json: $.v: invalid JSON at byte 6: expected a value, found 'NaN'"),
    Text("MinusInfinity", R"({"v": -Infinity})",
         "case.json: $.v: invalid JSON at byte 6: invalid number '-Infinity'"),
    Text("NumberBeyondDoubles", R"({"v": 1e999})",
         "case.json: $.v: invalid JSON at byte 6: number '1e999' is out of range"),
    Text("IntegerBeyond64Bits", R"({"v": 18446744073709551616})",
         "case.json: $.v: invalid JSON at byte 6: number '18446744073709551616' is out of range"),
    Text("LeadingZero", R"({"v": 01})", "case.json: $.v: invalid JSON at byte 7: expected ',' or '}', found '1'"),
    Text("BinaryGarbage", QByteArray("\x00\x01\xfe\xff", 4),
         "case.json: $: invalid JSON at byte 0: expected a value, found byte 0x00"),
    Text("InvalidUtf8InAString", "{\"a\": \"\xff\"}",
         "case.json: $.a: invalid JSON at byte 7: invalid UTF-8 in a string"),
    Text("TabInAString", "{\"a\": \"x\ty\"}",
         "case.json: $.a: invalid JSON at byte 8: unescaped control character 0x09 in a string"),
    Text("InvalidEscape", R"({"a": "\q"})", R"(case.json: $.a: invalid JSON at byte 7: invalid escape '\q' in a string)"),
    Text("UnpairedSurrogate", R"({"a": "\ud800"})",
         "case.json: $.a: invalid JSON at byte 7: unpaired surrogate in a string"),
    Text("TextAfterTheDocument", "{} x",
         "case.json: $: invalid JSON at byte 3: expected the end of the document, found 'x'"),
    Text("ByteOrderMarkThenGarbage", "\xEF\xBB\xBFx", "case.json: $: invalid JSON at byte 3: expected a value, found 'x'"),
    Text("NestedTooDeep", QByteArray(2000, '['), TooDeep()),
};

} // namespace

#endif // ZELTPMALFORMEDDOCUMENTS_H
