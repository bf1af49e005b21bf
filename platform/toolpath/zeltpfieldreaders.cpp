#include "zeltpfieldreaders_p.h"

#include "zeltpdocumentkeys_p.h"
#include "zeltpfilename.h"
#include "zeltpprogramreader.h"
#include "zeltptext.h"

#include <QLocale>
#include <QStringList>
#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>

namespace ZELTPReading {

namespace Key = ZELTPDocument::Key;

namespace {

// How far travel and normal may be from unit length, and their dot product
// from zero.
constexpr double DirectionTolerance = 1e-6;
// Significant digits of a length refused as no unit length: with the
// tolerance's 1e-6 in the seventh digit of a length near 1, the eighth
// shows how far it is off, and never lets it read "1".
constexpr int RefusedLengthDigits = 8;

// A range's end as the document would write it.
QString Bound(double value)
{
    return QString::number(value, 'g', 15);
}

// A number that reads back as the same double, so that one just outside a
// range is not shown rounded to its end.
QString Exactly(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

// A string that `problemOf` finds no problem with.
QString ReadStringFit(const Value& value, QString (*problemOf)(const QString&))
{
    const QString text = value.GetString();
    const QString problem = problemOf(text);
    if (!problem.isEmpty())
        value.Fail(problem);
    return text;
}

// Three numbers, each read by `read`.
template <typename Read> std::array<double, 3> ReadTriple(const Value& value, Read read)
{
    const simdjson::dom::array array = value.GetArray();
    if (array.size() != 3)
        value.Fail(ZELTPProgramReader::tr("expected 3 numbers, found %1").arg(CountEntries(array)));
    std::array<double, 3> triple{};
    qsizetype index = 0;
    for (const simdjson::dom::element element : array) {
        triple[std::size_t(index)] = read(value.GetEntry(element, index));
        ++index;
    }
    return triple;
}

ZELMathVector ReadVector(const Value& value)
{
    const std::array<double, 3> triple = ReadTriple(value,
                                                    [](const Value& component) { return component.GetNumber(); });
    return ZELMathVector(triple[0], triple[1], triple[2]);
}

// Whether the vector's length lies within `tolerance` of 1, compared
// squared: the vectors that pass need no root.
bool IsUnit(const ZELMathVector& vector, double tolerance)
{
    const double squared = vector.Dot(vector);
    return squared >= (1.0 - tolerance) * (1.0 - tolerance) && squared <= (1.0 + tolerance) * (1.0 + tolerance);
}

// The tows a mask enables, numbered from 1 as the document numbers them:
// "1, 2, 15".
QString TowNumbers(const ZELCompTowMask& mask)
{
    QStringList numbers;
    for (int tow = 1; tow <= mask.GetNumTows(); ++tow) {
        if (mask.IsTowEnabled(tow))
            numbers.append(QString::number(tow));
    }
    return numbers.join(QStringLiteral(", "));
}

// One number per tow of a mask; each read by `read`.
template <typename Read> QList<double> ReadPerTow(const Value& value, int numTows, const QString& what, Read read)
{
    const qsizetype count = CountEntries(value.GetArray());
    if (count != numTows)
        value.Fail(what.arg(numTows).arg(count));
    QList<double> numbers;
    numbers.reserve(count);
    ForEachEntry(value, [&](const Value& entry) { numbers.append(read(entry)); });
    return numbers;
}

struct PropagationName
{
    std::string_view name;
    ZELCompStrategy::PropagationMode mode;
};

constexpr PropagationName PropagationNames[] = {
    {ZELTPDocument::Propagation::kAngle, ZELCompStrategy::Angle},
    {ZELTPDocument::Propagation::kOffset, ZELCompStrategy::Offset},
    {ZELTPDocument::Propagation::kGeodesicOffset, ZELCompStrategy::GeodesicOffset},
    {ZELTPDocument::Propagation::kParallel, ZELCompStrategy::Parallel},
    {ZELTPDocument::Propagation::kGeodesic, ZELCompStrategy::Geodesic},
    {ZELTPDocument::Propagation::kUserDefined, ZELCompStrategy::UserDefined},
};

ZELCompStrategy::PropagationMode ReadPropagation(const Value& value)
{
    const std::string_view text = value.GetText();
    for (const PropagationName& known : PropagationNames) {
        if (known.name == text)
            return known.mode;
    }
    value.Fail(ZELTPProgramReader::tr("unknown propagation %1 (expected 'angle', 'offset', 'geodesicOffset', "
                                      "'parallel', 'geodesic' or 'userDefined')")
                   .arg(Quoted(text)));
}

QString MissingDirection(const char* key, bool onPart)
{
    if (onPart)
        return ZELTPProgramReader::tr("missing field '%1'").arg(QLatin1String(key));
    return ZELTPProgramReader::tr("missing field '%1' (an off-part point gives travel and normal, or neither)")
        .arg(QLatin1String(key));
}

} // namespace

double ReadNumberIn(const Value& value, const Range& range)
{
    const double number = value.GetNumber();
    if (!(number >= range.minimum && number <= range.maximum))
        value.Fail(ZELTPProgramReader::tr("expected a number from %1 to %2, found %3")
                       .arg(Bound(range.minimum), Bound(range.maximum), Exactly(number)));
    return number;
}

double ReadOptionalAngle(const Value& object, const char* key, const Range& range)
{
    const std::optional<Value> angle = object.FindMember(key);
    return angle ? qDegreesToRadians(ReadNumberIn(*angle, range)) : std::numeric_limits<double>::quiet_NaN();
}

QString ReadText(const Value& value)
{
    return ReadStringFit(value, ZELTPText::GetProblem);
}

QString ReadOptionalText(const Value& object, const char* key, const QString& fallback)
{
    const std::optional<Value> text = object.FindMember(key);
    return text ? ReadText(*text) : fallback;
}

QString ReadName(const Value& value)
{
    return ReadStringFit(value, ZELTPFileName::GetProblem);
}

ZELMathPoint ReadPosition(const Value& value)
{
    const std::array<double, 3> triple
        = ReadTriple(value, [](const Value& coordinate) { return ReadNumberIn(coordinate, CoordinateRange); });
    return ZELMathPoint(triple[0], triple[1], triple[2]);
}

ZELMathVector ReadUnitVector(const Value& value)
{
    const ZELMathVector vector = ReadVector(value);
    if (!IsUnit(vector, DirectionTolerance))
        value.Fail(ZELTPProgramReader::tr("expected a unit vector (length %1)")
                       .arg(QString::number(LengthOf(vector), 'g', RefusedLengthDigits)));
    return vector;
}

double LengthOf(const ZELMathVector& vector)
{
    return std::hypot(vector.GetX(), vector.GetY(), vector.GetZ());
}

ZELMathPlane ReadSafetyPlane(const Value& value)
{
    const ZELMathPoint origin = ReadPosition(value.GetMember(Key::kOrigin));
    const Value normalValue = value.GetMember(Key::kNormal);
    const ZELMathVector normal = ReadVector(normalValue);
    // Scaled to its largest component first, so that the plane's own
    // normalisation neither overflows nor underflows.
    const double largest = std::max({std::abs(normal.GetX()), std::abs(normal.GetY()), std::abs(normal.GetZ())});
    if (largest == 0.0)
        normalValue.Fail(ZELTPProgramReader::tr("expected a non-zero vector"));
    return ZELMathPlane(origin, normal / largest);
}

ZELTPMaterialDescription ReadMaterial(const Value& value)
{
    return ZELTPMaterialDescription(ReadText(value.GetMember(Key::kId)),
                                    ReadOptionalText(value, Key::kName, QString()));
}

ZELTPMachineConfiguration ReadMachineConfiguration(const Value& value)
{
    const Value roller = value.GetMember(Key::kRoller);
    const Value head = value.GetMember(Key::kHead);
    return ZELTPMachineConfiguration(
        ZELTPRoller(ReadText(roller.GetMember(Key::kName)), ReadNumberIn(roller.GetMember(Key::kWidth), WidthRange)),
        ZELTPAFPHead(ReadText(head.GetMember(Key::kName)), ReadNumberIn(head.GetMember(Key::kTowWidth), WidthRange)));
}

ZELCompTowMask ReadTowMask(const Value& value)
{
    const std::string_view text = value.GetText();
    if (text.empty())
        value.Fail(
            ZELTPProgramReader::tr("tow mask is empty (expected 1 to %1 tows)").arg(ZELCompTowMask::MaximumTows));
    if (text.size() > std::size_t(ZELCompTowMask::MaximumTows))
        value.Fail(ZELTPProgramReader::tr("tow mask has %1 tows, at most %2")
                       .arg(text.size())
                       .arg(ZELCompTowMask::MaximumTows));
    ZELCompTowMask mask(int(text.size()), false);
    for (std::size_t tow = 0; tow < text.size(); ++tow) {
        if (text[tow] == '1')
            mask.SetTowEnabled(int(tow) + 1, true);
        else if (text[tow] != '0')
            value.Fail(
                ZELTPProgramReader::tr("expected a tow mask of '0' and '1' characters, found %1").arg(Quoted(text)));
    }
    return mask;
}

ZELCompTowMask ReadTowMaskOf(const Value& value, int numTows, const QString& whose)
{
    const ZELCompTowMask mask = ReadTowMask(value);
    if (mask.GetNumTows() != numTows)
        value.Fail(ZELTPProgramReader::tr("tow mask has %1 tows, expected %2 (%3)")
                       .arg(mask.GetNumTows())
                       .arg(numTows)
                       .arg(whose));
    return mask;
}

void RequireTowsOfCourse(const Value& value, const ZELCompTowMask& laid, const ZELCompTowMask& course)
{
    const ZELCompTowMask outside = laid - course;
    if (outside.GetNumEnabled() > 0)
        value.Fail(ZELTPProgramReader::tr("tow mask lays tows that the course's towMask leaves out: %1")
                       .arg(TowNumbers(outside)));
}

void RequireRollerCovers(const Value& value, const ZELCompTowMask& mask, const ZELTPMachineConfiguration& configuration)
{
    int first = 0;
    int last = 0;
    for (int tow = 1; tow <= mask.GetNumTows(); ++tow) {
        if (!mask.IsTowEnabled(tow))
            continue;
        if (first == 0)
            first = tow;
        last = tow;
    }
    const int span = first == 0 ? 0 : last - first + 1;
    const int rollerTows = configuration.GetRollerTows();
    if (span > rollerTows)
        value.Fail(ZELTPProgramReader::tr("the tows laid span %1 tows (%2 to %3), more than the %4 tows of %5 mm "
                                          "that the roller of %6 mm holds")
                       .arg(span)
                       .arg(first)
                       .arg(last)
                       .arg(rollerTows)
                       .arg(Number(configuration.GetHead().GetTowWidth()), Number(configuration.GetTool().GetWidth())));
}

QList<double> ReadTowLengths(const Value& value, int numTows)
{
    return ReadPerTow(value, numTows,
                      ZELTPProgramReader::tr("expected %1 tow lengths (one per tow of the course's towMask), found %2"),
                      [](const Value& length) { return ReadNumberIn(length, TowLengthRange); });
}

QList<double> ReadForcedRates(const Value& trajectory, int numTows)
{
    const std::optional<Value> rates = trajectory.FindMember(Key::kForcedRates);
    if (!rates || CountEntries(rates->GetArray()) == 0)
        return {};
    return ReadPerTow(*rates, numTows,
                      ZELTPProgramReader::tr("expected %1 forced rates (one per tow of the trajectory's towMask), "
                                             "found %2"),
                      [](const Value& rate) { return ReadNumberIn(rate, ForcedRateRange); });
}

QList<ZELTPPlyDescription> ReadPlies(const Value& value)
{
    QList<ZELTPPlyDescription> plies;
    ForEachEntry(value, [&](const Value& ply) {
        plies.append(
            ZELTPPlyDescription(ReadText(ply.GetMember(Key::kName)),
                                qDegreesToRadians(ReadNumberIn(ply.GetMember(Key::kOrientation), OrientationRange)),
                                ReadPropagation(ply.GetMember(Key::kPropagation))));
    });
    return plies;
}

ZELTPCourseLink::PointsDetail ReadPointsDetail(const Value& link)
{
    const std::optional<Value> detail = link.FindMember(Key::kPointsDetail);
    if (!detail)
        return ZELTPCourseLink::PointsDetailFull;
    const std::string_view text = detail->GetText();
    if (text == ZELTPDocument::PointsDetail::kLow)
        return ZELTPCourseLink::PointsDetailLow;
    if (text == ZELTPDocument::PointsDetail::kMedium)
        return ZELTPCourseLink::PointsDetailMedium;
    if (text != ZELTPDocument::PointsDetail::kFull)
        detail->Fail(
            ZELTPProgramReader::tr("unknown points detail %1 (expected 'low', 'medium' or 'full')").arg(Quoted(text)));
    return ZELTPCourseLink::PointsDetailFull;
}

qsizetype ReadIndex(const Value& value, qsizetype count, const QString& what)
{
    const qint64 index = value.GetInteger();
    if (count == 0)
        value.Fail(ZELTPProgramReader::tr("index %1 is outside %2 (there are none)").arg(index).arg(what));
    if (index < 0 || index >= count)
        value.Fail(ZELTPProgramReader::tr("index %1 is outside %2 (0 to %3)").arg(index).arg(what).arg(count - 1));
    return qsizetype(index);
}

void ReadFormatName(const Value& value)
{
    const std::string_view text = value.GetText();
    if (text != ZELTPDocument::kFormatName)
        value.Fail(ZELTPProgramReader::tr("expected 'zelkin-toolpath', found %1").arg(Quoted(text)));
}

void ReadVersion(const Value& value)
{
    // Compared as a number, as JSON Schema's "const" compares it: 1.0 and
    // 1e0 are version 1, 1.5 is no version this reader knows.
    const double version = value.GetNumber();
    if (version != ZELTPDocument::kVersion)
        value.Fail(ZELTPProgramReader::tr("unsupported version %1 (this reader reads version %2)")
                       .arg(Exactly(version))
                       .arg(ZELTPDocument::kVersion));
}

PointRecord ReadPoint(const Value& point, bool onPart)
{
    PointRecord record;
    record.onPart = onPart;
    record.origin = ReadPosition(point.GetMember(Key::kOrigin));
    const std::optional<Value> travel = point.FindMember(Key::kTravel);
    const std::optional<Value> normal = point.FindMember(Key::kNormal);
    if (!travel && !normal && !onPart)
        return record;
    if (!travel || !normal)
        point.Fail(MissingDirection(travel ? Key::kNormal : Key::kTravel, onPart));
    record.travel = ReadUnitVector(*travel);
    record.normal = ReadUnitVector(*normal);
    const double dot = record.travel.Dot(record.normal);
    if (!(std::abs(dot) <= DirectionTolerance))
        point.Fail(ZELTPProgramReader::tr("travel and normal are not perpendicular (dot %1)").arg(Number(dot)));
    record.hasDirections = true;
    return record;
}

TrajectoryKind ReadTrajectoryKind(const Value& value, Role role)
{
    const std::string_view text = value.GetText();
    TrajectoryKind kind = TrajectoryKind::OffPart;
    if (text == ZELTPDocument::TrajectoryKind::kOnPart)
        kind = TrajectoryKind::OnPart;
    else if (text == ZELTPDocument::TrajectoryKind::kTow)
        kind = TrajectoryKind::Tow;
    else if (text != ZELTPDocument::TrajectoryKind::kOffPart)
        value.Fail(ZELTPProgramReader::tr("unknown trajectory kind %1").arg(Quoted(text)));

    const bool offPart = kind == TrajectoryKind::OffPart;
    if (role == Role::OnPart && offPart)
        value.Fail(ZELTPProgramReader::tr("expected trajectory kind 'onPart' or 'tow', found 'offPart'"));
    if (role == Role::OffPart && !offPart)
        value.Fail(ZELTPProgramReader::tr("expected trajectory kind 'offPart', found %1").arg(Quoted(text)));
    if (role == Role::Approach && !offPart)
        value.Fail(ZELTPProgramReader::tr("expected trajectory kind 'offPart' for the course's approach, found %1")
                       .arg(Quoted(text)));
    if (role == Role::Retract && !offPart)
        value.Fail(ZELTPProgramReader::tr("expected trajectory kind 'offPart' for the course's retract, found %1")
                       .arg(Quoted(text)));
    return kind;
}

} // namespace ZELTPReading
