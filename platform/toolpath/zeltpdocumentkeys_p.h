#ifndef ZELTPDOCUMENTKEYS_P_H
#define ZELTPDOCUMENTKEYS_P_H

/*
    The names of the toolpath document ("zelkin-toolpath", version 1): its
    member keys and the fixed texts its values take. The reader and the
    writer both spell the format through this header only, so that a change
    of the format cannot leave one of them behind.
*/
namespace ZELTPDocument {

constexpr const char* kFormatName = "zelkin-toolpath";
constexpr int kVersion = 1;

namespace Key {
// The document and its program.
constexpr const char* kFormat = "format";
constexpr const char* kVersion = "version";
constexpr const char* kProgram = "program";
constexpr const char* kName = "name";
constexpr const char* kRevision = "revision";
constexpr const char* kProcedures = "procedures";
constexpr const char* kKind = "kind";

// A procedure.
constexpr const char* kSafetyPlane = "safetyPlane";
constexpr const char* kAddingFeedrate = "addingFeedrate";
constexpr const char* kCuttingFeedrate = "cuttingFeedrate";
constexpr const char* kMaterial = "material";
constexpr const char* kId = "id";
constexpr const char* kTotalMaterialLength = "totalMaterialLength";
constexpr const char* kPlies = "plies";
constexpr const char* kOrientation = "orientation";
constexpr const char* kPropagation = "propagation";
constexpr const char* kLinks = "links";
constexpr const char* kCourses = "courses";
constexpr const char* kProbingPoints = "probingPoints";
constexpr const char* kDiameter = "diameter";

// A link, its tool change and the machine configurations.
constexpr const char* kPointsDetail = "pointsDetail";
constexpr const char* kToolChange = "toolChange";
constexpr const char* kRemovePoint = "removePoint";
constexpr const char* kPrevious = "previous";
constexpr const char* kNext = "next";
constexpr const char* kRoller = "roller";
constexpr const char* kWidth = "width";
constexpr const char* kHead = "head";
constexpr const char* kTowWidth = "towWidth";

// A course.
constexpr const char* kTowMask = "towMask";
constexpr const char* kMachineConfiguration = "machineConfiguration";
constexpr const char* kTowLengths = "towLengths";
constexpr const char* kRollInPoint = "rollInPoint";
constexpr const char* kRollOutPoint = "rollOutPoint";

// A trajectory and its points.
constexpr const char* kTrajectories = "trajectories";
constexpr const char* kFeedrate = "feedrate";
constexpr const char* kForwardTilt = "forwardTilt";
constexpr const char* kSideTilt = "sideTilt";
constexpr const char* kSmoothingAngle = "smoothingAngle";
constexpr const char* kForcedMask = "forcedMask";
constexpr const char* kForcedRates = "forcedRates";
constexpr const char* kPoints = "points";
constexpr const char* kOrigin = "origin";
constexpr const char* kTravel = "travel";
constexpr const char* kNormal = "normal";
} // namespace Key

// The values of "kind" for a procedure ...
namespace ProcedureKind {
constexpr const char* kRollLayup = "rollLayup";
constexpr const char* kProbing = "probing";
} // namespace ProcedureKind

// ... and for a trajectory.
namespace TrajectoryKind {
constexpr const char* kOffPart = "offPart";
constexpr const char* kOnPart = "onPart";
constexpr const char* kTow = "tow";
} // namespace TrajectoryKind

// The values of a link's "pointsDetail".
namespace PointsDetail {
constexpr const char* kLow = "low";
constexpr const char* kMedium = "medium";
constexpr const char* kFull = "full";
} // namespace PointsDetail

// The values of a ply's "propagation".
namespace Propagation {
constexpr const char* kAngle = "angle";
constexpr const char* kOffset = "offset";
constexpr const char* kGeodesicOffset = "geodesicOffset";
constexpr const char* kParallel = "parallel";
constexpr const char* kGeodesic = "geodesic";
constexpr const char* kUserDefined = "userDefined";
} // namespace Propagation

} // namespace ZELTPDocument

#endif // ZELTPDOCUMENTKEYS_P_H
