#ifndef ZELTPFIELDREADERS_P_H
#define ZELTPFIELDREADERS_P_H

#include "zeltpcourselink.h"
#include "zeltpjsonvalue_p.h"
#include "zeltpmachineconfiguration.h"
#include "zeltpmaterialdescription.h"
#include "zeltpplydescription.h"

#include <zelcomptowmask.h>
#include <zelmathplane.h>
#include <zelmathpoint.h>
#include <zelmathvector.h>

#include <QList>
#include <QString>

/*
    The readers of the toolpath document's fields: each reads one value of
    the format, checks it against the format's rules and fails at the value
    that breaks one.
*/
namespace ZELTPReading {

/*
    The range a number of the format lies in, both ends included. Each holds
    what any part and machine need by far, and keeps what the NC programs
    print of the number short and finite.
*/
struct Range
{
    double minimum;
    double maximum;
};

// mm: a part within 100 m of its origin.
constexpr Range CoordinateRange{-100000.0, 100000.0};
// mm/min: up to 200 m/min; no slower than 1 mm/min, which the NC programs
// still write in plain decimals.
constexpr Range FeedrateRange{1.0, 200000.0};
// Degrees: a tool leans from the normal at most square to it.
constexpr Range TiltRange{-90.0, 90.0};
constexpr Range SmoothingAngleRange{0.0, 180.0};
constexpr Range OrientationRange{-360.0, 360.0};
// mm: roller and tow widths, probe sphere diameters.
constexpr Range WidthRange{0.1, 5000.0};
// mm: a tow of one course, and all the tows of one procedure.
constexpr Range TowLengthRange{0.0, 1e6};
constexpr Range MaterialLengthRange{0.0, 1e9};
// A forced tow's feed as a fraction of the trajectory's feed rate.
constexpr Range ForcedRateRange{0.0, 10.0};

double ReadNumberIn(const Value& value, const Range& range);
// An angle given in degrees, in rad; NaN when the document does not give it.
double ReadOptionalAngle(const Value& object, const char* key, const Range& range);

// A text that the NC programs may quote.
QString ReadText(const Value& value);
QString ReadOptionalText(const Value& object, const char* key, const QString& fallback);
// A name that becomes part of file names, and is quoted as a text.
QString ReadName(const Value& value);

ZELMathPoint ReadPosition(const Value& value);
ZELMathVector ReadUnitVector(const Value& value);
// The length of a vector, without overflow on the way for large components.
double LengthOf(const ZELMathVector& vector);
ZELMathPlane ReadSafetyPlane(const Value& value);

ZELTPMaterialDescription ReadMaterial(const Value& value);
ZELTPMachineConfiguration ReadMachineConfiguration(const Value& value);

// A string of '0' and '1', tow 1 first.
ZELCompTowMask ReadTowMask(const Value& value);
// A tow mask that must have as many tows as the mask `whose` names.
ZELCompTowMask ReadTowMaskOf(const Value& value, int numTows, const QString& whose);
// A trajectory lays only tows of its course's mask: the course tells the
// machine which tows to have ready.
void RequireTowsOfCourse(const Value& value, const ZELCompTowMask& laid, const ZELCompTowMask& course);
// The tows a course lays lie side by side under its roller: from the first
// of them to the last they span no more tows than the roller is wide.
void RequireRollerCovers(const Value& value, const ZELCompTowMask& mask,
                         const ZELTPMachineConfiguration& configuration);
QList<double> ReadTowLengths(const Value& value, int numTows);
// Missing or empty: no tow is forced.
QList<double> ReadForcedRates(const Value& trajectory, int numTows);

QList<ZELTPPlyDescription> ReadPlies(const Value& value);
ZELTPCourseLink::PointsDetail ReadPointsDetail(const Value& link);
// An index into `count` entries that `what` names.
qsizetype ReadIndex(const Value& value, qsizetype count, const QString& what);
void ReadFormatName(const Value& value);
void ReadVersion(const Value& value);

// A point as the document gives it.
struct PointRecord
{
    ZELMathPoint origin;
    ZELMathVector travel;
    ZELMathVector normal;
    bool hasDirections = false;
    bool onPart = false;
};

PointRecord ReadPoint(const Value& point, bool onPart);

enum class TrajectoryKind { OffPart, OnPart, Tow };

// What a trajectory is to its owner, which decides the kinds it may have.
enum class Role { OffPart, Approach, Retract, OnPart };

TrajectoryKind ReadTrajectoryKind(const Value& value, Role role);

} // namespace ZELTPReading

#endif // ZELTPFIELDREADERS_P_H
