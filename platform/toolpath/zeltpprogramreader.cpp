#include "zeltpprogramreader.h"
#include "zeltpprogramreader_p.h"

#include "zeltpfilename.h"
#include "zeltpformatexception.h"
#include "zeltpoffpartpoint.h"
#include "zeltponparttrajectory.h"
#include "zeltpprobingprocedure.h"
#include "zeltpprogram.h"
#include "zeltprolllayupprocedure.h"
#include "zeltptext.h"
#include "zeltptoolchangelink.h"
#include "zeltptowcourse.h"
#include "zeltptowtrajectory.h"

#include <zelgeocontainer.h>

#include <QFile>
#include <QLocale>
#include <QStringList>
#include <QtMath>

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace {

// How far travel and normal may be from unit length, and their dot product
// from zero.
constexpr double DirectionTolerance = 1e-6;
// How far apart the two copies of a junction point may be (mm).
constexpr double JunctionTolerance = 0.001;
// The fewest trajectories a course has: approach, roll-in, roll-out, retract.
constexpr qsizetype MinimumCourseTrajectories = 4;
// Document text quoted in a message is cut to this many characters.
constexpr qsizetype QuotedLength = 40;
// simdjson refuses deeper nesting; the syntax scan refuses it at the same depth.
constexpr std::size_t MaximumDepth = simdjson::DEFAULT_MAX_DEPTH;
// simdjson's count of an array's entries stops here.
constexpr std::size_t SaturatedCount = 0xFFFFFF;
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

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

// A character that would break the message's one line, as an escape.
QString Printable(const QString& text)
{
    QString printable;
    printable.reserve(text.size());
    for (const QChar character : text) {
        if (character != QLatin1Char('"') && !ZELTPText::DescribeUnfitCharacter(character).isEmpty())
            printable += QStringLiteral("\\u")
                + QString::number(character.unicode(), 16).toUpper().rightJustified(4, QLatin1Char('0'));
        else
            printable += character;
    }
    return printable;
}

QString Quoted(std::string_view text)
{
    QString string = QString::fromUtf8(text.data(), qsizetype(text.size()));
    if (string.size() > QuotedLength)
        string = string.left(QuotedLength) + QStringLiteral("...");
    return QLatin1Char('\'') + Printable(string) + QLatin1Char('\'');
}

QString Number(double value)
{
    return QString::number(value, 'g', 6);
}

/*
    One step of the JSON path to a value. The steps live on the stack of the
    functions that descend into the document, each pointing at its parent,
    so a path costs nothing until an error spells it out.
*/
class Location
{
public:
    static Location Root() { return Location(nullptr, nullptr, 0); }

    Location Member(const char* key) const { return Location(this, key, 0); }
    Location Entry(qsizetype index) const { return Location(this, nullptr, index); }

    QString ToString() const
    {
        if (!m_parent)
            return QStringLiteral("$");
        if (m_key)
            return m_parent->ToString() + QLatin1Char('.') + QLatin1String(m_key);
        return m_parent->ToString() + QLatin1Char('[') + QString::number(m_index) + QLatin1Char(']');
    }

private:
    Location(const Location* parent, const char* key, qsizetype index)
        : m_parent(parent)
        , m_key(key)
        , m_index(index)
    {
    }

    const Location* m_parent;
    const char* m_key;
    qsizetype m_index;
};

// A rule the document breaks: where, and what was expected there. The
// reader adds the document's name when it reports it.
struct Problem
{
    QString location;
    QString text;
};

QString TypeName(const simdjson::dom::element& element)
{
    switch (element.type()) {
    case simdjson::dom::element_type::ARRAY:
        return ZELTPProgramReader::tr("an array");
    case simdjson::dom::element_type::OBJECT:
        return ZELTPProgramReader::tr("an object");
    case simdjson::dom::element_type::STRING:
        return ZELTPProgramReader::tr("a string");
    case simdjson::dom::element_type::BOOL:
        return ZELTPProgramReader::tr("a boolean");
    case simdjson::dom::element_type::NULL_VALUE:
        return ZELTPProgramReader::tr("null");
    case simdjson::dom::element_type::INT64:
    case simdjson::dom::element_type::UINT64:
    case simdjson::dom::element_type::DOUBLE:
        break;
    }
    return ZELTPProgramReader::tr("a number");
}

/*
    A JSON value and where it is. A child value points at its parent's
    location, so a child must not outlive the value it was taken from: the
    calls that make children take only named values (lvalues).
*/
class Value
{
public:
    Value(const simdjson::dom::element& element, const Location& location)
        : m_element(element)
        , m_location(location)
    {
    }

    [[noreturn]] void Fail(const QString& problem) const { throw Problem{m_location.ToString(), problem}; }

    //! The member `key` of this object; fails when it is missing.
    Value GetMember(const char* key) const&
    {
        simdjson::dom::element member;
        if (GetObject().at_key(key).get(member))
            Fail(ZELTPProgramReader::tr("missing field '%1'").arg(QLatin1String(key)));
        return Value(member, m_location.Member(key));
    }
    Value GetMember(const char* key) const&& = delete;

    std::optional<Value> FindMember(const char* key) const&
    {
        simdjson::dom::element member;
        if (GetObject().at_key(key).get(member))
            return std::nullopt;
        return Value(member, m_location.Member(key));
    }
    std::optional<Value> FindMember(const char* key) const&& = delete;

    //! Entry `index` of this array, found at `element` by iterating it.
    Value GetEntry(const simdjson::dom::element& element, qsizetype index) const&
    {
        return Value(element, m_location.Entry(index));
    }
    Value GetEntry(const simdjson::dom::element& element, qsizetype index) const&& = delete;

    simdjson::dom::array GetArray() const
    {
        simdjson::dom::array array;
        if (m_element.get_array().get(array))
            FailType(ZELTPProgramReader::tr("an array"));
        return array;
    }

    std::string_view GetText() const
    {
        std::string_view text;
        if (m_element.get_string().get(text))
            FailType(ZELTPProgramReader::tr("a string"));
        return text;
    }

    QString GetString() const
    {
        const std::string_view text = GetText();
        return QString::fromUtf8(text.data(), qsizetype(text.size()));
    }

    double GetNumber() const
    {
        double number = 0.0;
        if (m_element.get_double().get(number))
            FailType(ZELTPProgramReader::tr("a number"));
        return number;
    }

    qint64 GetInteger() const
    {
        if (m_element.is_int64())
            return m_element.get_int64().value_unsafe();
        if (m_element.is_uint64())
            Fail(ZELTPProgramReader::tr("integer %1 is too large").arg(m_element.get_uint64().value_unsafe()));
        if (m_element.is_double())
            Fail(ZELTPProgramReader::tr("expected an integer, found %1").arg(Number(GetNumber())));
        FailType(ZELTPProgramReader::tr("an integer"));
    }

private:
    simdjson::dom::object GetObject() const
    {
        simdjson::dom::object object;
        if (m_element.get_object().get(object))
            FailType(ZELTPProgramReader::tr("an object"));
        return object;
    }

    [[noreturn]] void FailType(const QString& expected) const
    {
        Fail(ZELTPProgramReader::tr("expected %1, found %2").arg(expected, TypeName(m_element)));
    }

    simdjson::dom::element m_element;
    Location m_location;
};

qsizetype CountEntries(const simdjson::dom::array& array)
{
    const std::size_t count = array.size();
    if (count < SaturatedCount)
        return qsizetype(count);
    qsizetype counted = 0;
    for (auto entry = array.begin(); entry != array.end(); ++entry)
        ++counted;
    return counted;
}

template <typename Function>
void ForEachEntry(const Value& array, Function&& function)
{
    qsizetype index = 0;
    for (const simdjson::dom::element element : array.GetArray())
        function(array.GetEntry(element, index++));
}

// ---------------------------------------------------------------------------
// Values of the format

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

double ReadNumberIn(const Value& value, const Range& range)
{
    const double number = value.GetNumber();
    if (!(number >= range.minimum && number <= range.maximum))
        value.Fail(ZELTPProgramReader::tr("expected a number from %1 to %2, found %3")
                       .arg(Bound(range.minimum), Bound(range.maximum), Exactly(number)));
    return number;
}

// An angle given in degrees, in rad; NaN when the document does not give it.
double ReadOptionalAngle(const Value& object, const char* key, const Range& range)
{
    const std::optional<Value> angle = object.FindMember(key);
    return angle ? qDegreesToRadians(ReadNumberIn(*angle, range)) : std::numeric_limits<double>::quiet_NaN();
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

// A text that the NC programs may quote.
QString ReadText(const Value& value)
{
    return ReadStringFit(value, ZELTPText::GetProblem);
}

QString ReadOptionalText(const Value& object, const char* key, const QString& fallback)
{
    const std::optional<Value> text = object.FindMember(key);
    return text ? ReadText(*text) : fallback;
}

// A name that becomes part of file names, and is quoted as a text.
QString ReadName(const Value& value)
{
    return ReadStringFit(value, ZELTPFileName::GetProblem);
}

// Three numbers, each read by `read`.
template <typename Read>
std::array<double, 3> ReadTriple(const Value& value, Read read)
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

ZELMathPoint ReadPosition(const Value& value)
{
    const std::array<double, 3> triple =
        ReadTriple(value, [](const Value& coordinate) { return ReadNumberIn(coordinate, CoordinateRange); });
    return ZELMathPoint(triple[0], triple[1], triple[2]);
}

ZELMathVector ReadVector(const Value& value)
{
    const std::array<double, 3> triple =
        ReadTriple(value, [](const Value& component) { return component.GetNumber(); });
    return ZELMathVector(triple[0], triple[1], triple[2]);
}

// The length of a vector, without overflow on the way for large components.
double LengthOf(const ZELMathVector& vector)
{
    return std::hypot(vector.GetX(), vector.GetY(), vector.GetZ());
}

// Whether the vector's length lies within `tolerance` of 1, compared
// squared: the vectors that pass need no root.
bool IsUnit(const ZELMathVector& vector, double tolerance)
{
    const double squared = vector.Dot(vector);
    return squared >= (1.0 - tolerance) * (1.0 - tolerance) && squared <= (1.0 + tolerance) * (1.0 + tolerance);
}

ZELMathVector ReadUnitVector(const Value& value)
{
    const ZELMathVector vector = ReadVector(value);
    if (!IsUnit(vector, DirectionTolerance))
        value.Fail(ZELTPProgramReader::tr("expected a unit vector (length %1)").arg(Number(LengthOf(vector))));
    return vector;
}

ZELMathPlane ReadSafetyPlane(const Value& value)
{
    const ZELMathPoint origin = ReadPosition(value.GetMember("origin"));
    const Value normalValue = value.GetMember("normal");
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
    return ZELTPMaterialDescription(ReadText(value.GetMember("id")), ReadOptionalText(value, "name", QString()));
}

ZELTPMachineConfiguration ReadMachineConfiguration(const Value& value)
{
    const Value roller = value.GetMember("roller");
    const Value head = value.GetMember("head");
    return ZELTPMachineConfiguration(
        ZELTPRoller(ReadText(roller.GetMember("name")), ReadNumberIn(roller.GetMember("width"), WidthRange)),
        ZELTPAFPHead(ReadText(head.GetMember("name")), ReadNumberIn(head.GetMember("towWidth"), WidthRange)));
}

// A string of '0' and '1', tow 1 first.
ZELCompTowMask ReadTowMask(const Value& value)
{
    const std::string_view text = value.GetText();
    if (text.empty())
        value.Fail(ZELTPProgramReader::tr("tow mask is empty (expected 1 to %1 tows)")
                       .arg(ZELCompTowMask::MaximumTows));
    if (text.size() > std::size_t(ZELCompTowMask::MaximumTows))
        value.Fail(ZELTPProgramReader::tr("tow mask has %1 tows, at most %2")
                       .arg(text.size())
                       .arg(ZELCompTowMask::MaximumTows));
    ZELCompTowMask mask(int(text.size()), false);
    for (std::size_t tow = 0; tow < text.size(); ++tow) {
        if (text[tow] == '1')
            mask.SetTowEnabled(int(tow) + 1, true);
        else if (text[tow] != '0')
            value.Fail(ZELTPProgramReader::tr("expected a tow mask of '0' and '1' characters, found %1")
                           .arg(Quoted(text)));
    }
    return mask;
}

// A tow mask that must have as many tows as the mask `whose` names.
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

// A trajectory lays only tows of its course's mask: the course tells the
// machine which tows to have ready.
void RequireTowsOfCourse(const Value& value, const ZELCompTowMask& laid, const ZELCompTowMask& course)
{
    const ZELCompTowMask outside = laid - course;
    if (outside.GetNumEnabled() > 0)
        value.Fail(ZELTPProgramReader::tr("tow mask lays tows that the course's towMask leaves out: %1")
                       .arg(TowNumbers(outside)));
}

// The tows a course lays lie side by side under its roller: from the first
// of them to the last they span no more tows than the roller is wide.
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

// One number per tow of a mask; each read by `read`.
template <typename Read>
QList<double> ReadPerTow(const Value& value, int numTows, const QString& what, Read read)
{
    const qsizetype count = CountEntries(value.GetArray());
    if (count != numTows)
        value.Fail(what.arg(numTows).arg(count));
    QList<double> numbers;
    numbers.reserve(count);
    ForEachEntry(value, [&](const Value& entry) { numbers.append(read(entry)); });
    return numbers;
}

QList<double> ReadTowLengths(const Value& value, int numTows)
{
    return ReadPerTow(value, numTows,
                      ZELTPProgramReader::tr("expected %1 tow lengths (one per tow of the course's towMask), found %2"),
                      [](const Value& length) { return ReadNumberIn(length, TowLengthRange); });
}

// Missing or empty: no tow is forced.
QList<double> ReadForcedRates(const Value& trajectory, int numTows)
{
    const std::optional<Value> rates = trajectory.FindMember("forcedRates");
    if (!rates || CountEntries(rates->GetArray()) == 0)
        return {};
    return ReadPerTow(*rates, numTows,
                      ZELTPProgramReader::tr("expected %1 forced rates (one per tow of the trajectory's towMask), "
                                             "found %2"),
                      [](const Value& rate) { return ReadNumberIn(rate, ForcedRateRange); });
}

struct PropagationName
{
    std::string_view name;
    ZELCompStrategy::PropagationMode mode;
};

constexpr PropagationName PropagationNames[] = {
    {"angle", ZELCompStrategy::Angle},
    {"offset", ZELCompStrategy::Offset},
    {"geodesicOffset", ZELCompStrategy::GeodesicOffset},
    {"parallel", ZELCompStrategy::Parallel},
    {"geodesic", ZELCompStrategy::Geodesic},
    {"userDefined", ZELCompStrategy::UserDefined},
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

QList<ZELTPPlyDescription> ReadPlies(const Value& value)
{
    QList<ZELTPPlyDescription> plies;
    ForEachEntry(value, [&](const Value& ply) {
        plies.append(
            ZELTPPlyDescription(ReadText(ply.GetMember("name")),
                                qDegreesToRadians(ReadNumberIn(ply.GetMember("orientation"), OrientationRange)),
                                ReadPropagation(ply.GetMember("propagation"))));
    });
    return plies;
}

ZELTPCourseLink::PointsDetail ReadPointsDetail(const Value& link)
{
    const std::optional<Value> detail = link.FindMember("pointsDetail");
    if (!detail)
        return ZELTPCourseLink::PointsDetailFull;
    const std::string_view text = detail->GetText();
    if (text == "low")
        return ZELTPCourseLink::PointsDetailLow;
    if (text == "medium")
        return ZELTPCourseLink::PointsDetailMedium;
    if (text != "full")
        detail->Fail(ZELTPProgramReader::tr("unknown points detail %1 (expected 'low', 'medium' or 'full')")
                         .arg(Quoted(text)));
    return ZELTPCourseLink::PointsDetailFull;
}

// An index into `count` entries that `what` names.
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
    if (text != "zelkin-toolpath")
        value.Fail(ZELTPProgramReader::tr("expected 'zelkin-toolpath', found %1").arg(Quoted(text)));
}

void ReadVersion(const Value& value)
{
    constexpr qint64 SupportedVersion = 1;
    const qint64 version = value.GetInteger();
    if (version != SupportedVersion)
        value.Fail(ZELTPProgramReader::tr("unsupported version %1 (this reader reads version %2)")
                       .arg(version)
                       .arg(SupportedVersion));
}

// ---------------------------------------------------------------------------
// Points and trajectories

struct PointRecord
{
    ZELMathPoint origin;
    ZELMathVector travel;
    ZELMathVector normal;
    bool hasDirections = false;
    bool onPart = false;
};

QString MissingDirection(const char* key, bool onPart)
{
    if (onPart)
        return ZELTPProgramReader::tr("missing field '%1'").arg(QLatin1String(key));
    return ZELTPProgramReader::tr("missing field '%1' (an off-part point gives travel and normal, or neither)")
        .arg(QLatin1String(key));
}

PointRecord ReadPoint(const Value& point, bool onPart)
{
    PointRecord record;
    record.onPart = onPart;
    record.origin = ReadPosition(point.GetMember("origin"));
    const std::optional<Value> travel = point.FindMember("travel");
    const std::optional<Value> normal = point.FindMember("normal");
    if (!travel && !normal && !onPart)
        return record;
    if (!travel || !normal)
        point.Fail(MissingDirection(travel ? "normal" : "travel", onPart));
    record.travel = ReadUnitVector(*travel);
    record.normal = ReadUnitVector(*normal);
    const double dot = record.travel.Dot(record.normal);
    if (!(std::abs(dot) <= DirectionTolerance))
        point.Fail(ZELTPProgramReader::tr("travel and normal are not perpendicular (dot %1)").arg(Number(dot)));
    record.hasDirections = true;
    return record;
}

// Points without directions take those of the nearest preceding point that
// has them, else of the nearest following one, else travel +X, normal +Z.
void DeriveMissingDirections(std::vector<PointRecord>& points)
{
    const auto firstGiven =
        std::find_if(points.begin(), points.end(), [](const PointRecord& point) { return point.hasDirections; });
    ZELMathVector travel(1.0, 0.0, 0.0);
    ZELMathVector normal(0.0, 0.0, 1.0);
    if (firstGiven != points.end()) {
        travel = firstGiven->travel;
        normal = firstGiven->normal;
    }
    for (PointRecord& point : points) {
        if (point.hasDirections) {
            travel = point.travel;
            normal = point.normal;
        } else {
            point.travel = travel;
            point.normal = normal;
        }
    }
}

ZELMathAxis ToolFrame(const PointRecord& point)
{
    return ZELMathAxis(point.origin, point.travel, point.normal.Cross(point.travel), point.normal);
}

enum class TrajectoryKind { OffPart, OnPart, Tow };

// What a trajectory is to its owner, which decides the kinds it may have.
enum class Role { OffPart, Approach, Retract, OnPart };

TrajectoryKind ReadTrajectoryKind(const Value& value, Role role)
{
    const std::string_view text = value.GetText();
    TrajectoryKind kind = TrajectoryKind::OffPart;
    if (text == "onPart")
        kind = TrajectoryKind::OnPart;
    else if (text == "tow")
        kind = TrajectoryKind::Tow;
    else if (text != "offPart")
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

// A trajectory as the document gives it; its points are a run of the
// chain's points, from `firstPoint` on.
struct TrajectoryRecord
{
    TrajectoryKind kind = TrajectoryKind::OffPart;
    double feedrate = 0.0;
    double forwardTilt = 0.0;
    double sideTilt = 0.0;
    double smoothingAngle = 0.0;
    ZELCompTowMask towMask;
    ZELCompTowMask forcedMask;
    QList<double> forcedRates;
    std::size_t firstPoint = 0;
    std::size_t numPoints = 0;
};

std::unique_ptr<ZELTPTrajectory> CreateTrajectory(const TrajectoryRecord& record)
{
    if (record.kind == TrajectoryKind::OffPart)
        return std::make_unique<ZELTPTrajectory>(record.feedrate);
    if (record.kind == TrajectoryKind::OnPart)
        return std::make_unique<ZELTPOnPartTrajectory>(record.feedrate, record.forwardTilt, record.sideTilt,
                                                       record.smoothingAngle);
    return std::make_unique<ZELTPTowTrajectory>(record.feedrate, record.forwardTilt, record.sideTilt,
                                                record.smoothingAngle, record.towMask, record.forcedMask,
                                                record.forcedRates);
}

// ---------------------------------------------------------------------------
// The program

/*
    Builds the program of one document in a container. The geometries it
    creates are deleted again, newest first, unless the whole program is
    built; the container's modified flag is then restored as well.

    Links, courses and probing procedures are each read as one chain of
    points: the trajectories' points in order, where within a course the
    first point of a trajectory is the last point of the one before. The
    chain is read whole before its geometries are created.
*/
class ProgramBuilder
{
public:
    explicit ProgramBuilder(ZELGeoContainer* container)
        : m_container(container)
        , m_wasModified(container->IsModified())
    {
    }

    ~ProgramBuilder()
    {
        if (m_built)
            return;
        std::for_each(m_created.rbegin(), m_created.rend(),
                      [this](ZELGeoGeometry* geometry) { m_container->DeleteGeometry(geometry); });
        m_container->SetModified(m_wasModified);
    }

    Q_DISABLE_COPY_MOVE(ProgramBuilder)

    ZELTPProgram* Build(const Value& root);

private:
    ZELTPProcedure* BuildProcedure(const Value& procedure);
    ZELTPRollLayupProcedure* BuildRollLayup(const Value& procedure);
    ZELTPProbingProcedure* BuildProbing(const Value& procedure);
    ZELTPCourseLink* BuildLink(const Value& link);
    ZELTPTowCourse* BuildCourse(const Value& course);

    void ReadOffPartChain(const Value& trajectories);
    void ReadCourseChain(const Value& trajectories, const ZELCompTowMask& courseMask);
    TrajectoryRecord ReadTrajectory(const Value& trajectory, Role role, const ZELCompTowMask& courseMask,
                                    bool joinsPrevious);
    void ReadTowFields(const Value& trajectory, const ZELCompTowMask& courseMask, TrajectoryRecord& record) const;
    void JoinPoint(const PointRecord& copy, const Value& point);
    void CreatePoints(std::size_t indexOrigin);
    template <typename Owner>
    void AddTrajectories(Owner* owner) const;

    template <typename T, typename... Arguments>
    T* Create(const Arguments&... arguments)
    {
        auto geometry = std::make_unique<T>(m_container, arguments...);
        m_created.push_back(geometry.get());
        return geometry.release();
    }

    ZELGeoContainer* const m_container;
    const bool m_wasModified;
    std::vector<ZELGeoGeometry*> m_created;
    bool m_built = false;

    // The chain being read; kept from chain to chain for their storage.
    std::vector<PointRecord> m_points;
    std::vector<TrajectoryRecord> m_trajectories;
    std::vector<ZELTPPoint*> m_pointObjects;
};

ZELTPProgram* ProgramBuilder::Build(const Value& root)
{
    ReadFormatName(root.GetMember("format"));
    ReadVersion(root.GetMember("version"));
    const Value program = root.GetMember("program");
    const QString name = ReadName(program.GetMember("name"));
    const QString revision = ReadOptionalText(program, "revision", QStringLiteral("0"));
    const Value procedures = program.GetMember("procedures");
    procedures.GetArray();

    auto* object = Create<ZELTPProgram>(name);
    object->SetRevision(revision);
    ForEachEntry(procedures, [&](const Value& procedure) { object->AddProcedure(BuildProcedure(procedure)); });

    for (ZELGeoGeometry* geometry : m_created)
        geometry->Initialize();
    m_built = true;
    return object;
}

ZELTPProcedure* ProgramBuilder::BuildProcedure(const Value& procedure)
{
    const Value kind = procedure.GetMember("kind");
    const std::string_view text = kind.GetText();
    if (text == "rollLayup")
        return BuildRollLayup(procedure);
    if (text == "probing")
        return BuildProbing(procedure);
    kind.Fail(ZELTPProgramReader::tr("unknown procedure kind %1").arg(Quoted(text)));
}

ZELTPRollLayupProcedure* ProgramBuilder::BuildRollLayup(const Value& procedure)
{
    const QString name = ReadName(procedure.GetMember("name"));
    const ZELMathPlane safetyPlane = ReadSafetyPlane(procedure.GetMember("safetyPlane"));
    const double addingFeedrate = ReadNumberIn(procedure.GetMember("addingFeedrate"), FeedrateRange);
    const double cuttingFeedrate = ReadNumberIn(procedure.GetMember("cuttingFeedrate"), FeedrateRange);
    const ZELTPMaterialDescription material = ReadMaterial(procedure.GetMember("material"));
    const double totalMaterialLength = ReadNumberIn(procedure.GetMember("totalMaterialLength"), MaterialLengthRange);
    const QList<ZELTPPlyDescription> plies = ReadPlies(procedure.GetMember("plies"));
    const Value links = procedure.GetMember("links");
    const Value courses = procedure.GetMember("courses");
    const simdjson::dom::array linkArray = links.GetArray();
    const simdjson::dom::array courseArray = courses.GetArray();
    const qsizetype numCourses = CountEntries(courseArray);
    const qsizetype numLinks = CountEntries(linkArray);
    // The NC program of a layup starts from its first course.
    if (numCourses == 0)
        courses.Fail(ZELTPProgramReader::tr("roll layup procedure '%1' has no course (expected at least 1)").arg(name));
    if (numLinks != numCourses + 1)
        links.Fail(ZELTPProgramReader::tr("expected %1 links, one more than courses (%2), found %3")
                       .arg(numCourses + 1)
                       .arg(numCourses)
                       .arg(numLinks));

    auto* layup = Create<ZELTPRollLayupProcedure>(name);
    layup->SetSafetyPlane(safetyPlane);
    layup->SetAddingFeedrate(addingFeedrate);
    layup->SetCuttingFeedrate(cuttingFeedrate);
    layup->SetMaterialDescription(material);
    layup->SetTotalMaterialLength(totalMaterialLength);
    for (const ZELTPPlyDescription& ply : plies)
        layup->AddPlyDescription(ply);

    // Link i leads into course i and link i + 1 leaves it.
    auto link = linkArray.begin();
    auto course = courseArray.begin();
    ZELTPCourseLink* into = BuildLink(links.GetEntry(*link, 0));
    layup->SetApproachLink(into);
    for (qsizetype index = 0; index < numCourses; ++index, ++course) {
        ZELTPTowCourse* towCourse = BuildCourse(courses.GetEntry(*course, index));
        into->SetToCourse(towCourse);
        ++link;
        into = BuildLink(links.GetEntry(*link, index + 1));
        towCourse->SetRetractLink(into);
    }
    return layup;
}

ZELTPProbingProcedure* ProgramBuilder::BuildProbing(const Value& procedure)
{
    const QString name = ReadName(procedure.GetMember("name"));
    const ZELMathPlane safetyPlane = ReadSafetyPlane(procedure.GetMember("safetyPlane"));
    const Value trajectories = procedure.GetMember("trajectories");
    const Value probingPoints = procedure.GetMember("probingPoints");
    const qsizetype numTrajectories = CountEntries(trajectories.GetArray());
    const qsizetype numTargets = CountEntries(probingPoints.GetArray());
    if (numTrajectories != numTargets + 1)
        trajectories.Fail(ZELTPProgramReader::tr("expected %1 trajectories, one more than probingPoints (%2), "
                                                 "found %3")
                              .arg(numTargets + 1)
                              .arg(numTargets)
                              .arg(numTrajectories));
    QList<ZELTPProbingPoint> targets;
    ForEachEntry(probingPoints, [&](const Value& target) {
        targets.append(ZELTPProbingPoint(ReadNumberIn(target.GetMember("diameter"), WidthRange)));
    });
    ReadOffPartChain(trajectories);
    CreatePoints(0);

    auto* probing = Create<ZELTPProbingProcedure>(name);
    probing->SetSafetyPlane(safetyPlane);
    AddTrajectories(probing);
    for (const ZELTPProbingPoint& target : targets)
        probing->AddProbingPoint(target);
    return probing;
}

ZELTPCourseLink* ProgramBuilder::BuildLink(const Value& link)
{
    const QString name = ReadOptionalText(link, "name", QString());
    const ZELTPCourseLink::PointsDetail detail = ReadPointsDetail(link);
    ReadOffPartChain(link.GetMember("trajectories"));

    const std::optional<Value> toolChange = link.FindMember("toolChange");
    std::size_t removePoint = 0;
    ZELTPMachineConfiguration previous;
    ZELTPMachineConfiguration next;
    if (toolChange) {
        removePoint = std::size_t(ReadIndex(toolChange->GetMember("removePoint"), qsizetype(m_points.size()),
                                            ZELTPProgramReader::tr("the link's points")));
        previous = ReadMachineConfiguration(toolChange->GetMember("previous"));
        next = ReadMachineConfiguration(toolChange->GetMember("next"));
    }
    CreatePoints(0);

    ZELTPCourseLink* object = nullptr;
    if (toolChange) {
        auto* change = Create<ZELTPToolChangeLink>(name);
        change->SetToolRemovePoint(m_pointObjects[removePoint]);
        change->SetPreviousMachineConfiguration(previous);
        change->SetNextMachineConfiguration(next);
        object = change;
    } else {
        object = Create<ZELTPCourseLink>(name);
    }
    object->SetPointsDetail(detail);
    AddTrajectories(object);
    return object;
}

ZELTPTowCourse* ProgramBuilder::BuildCourse(const Value& course)
{
    const QString name = ReadOptionalText(course, "name", QString());
    const Value towMask = course.GetMember("towMask");
    const ZELCompTowMask usedTowMask = ReadTowMask(towMask);
    const ZELTPMachineConfiguration configuration =
        ReadMachineConfiguration(course.GetMember("machineConfiguration"));
    RequireRollerCovers(towMask, usedTowMask, configuration);
    const QList<double> towLengths = ReadTowLengths(course.GetMember("towLengths"), usedTowMask.GetNumTows());
    ReadCourseChain(course.GetMember("trajectories"), usedTowMask);

    const TrajectoryRecord& rollIn = m_trajectories[1];
    const TrajectoryRecord& rollOut = m_trajectories[m_trajectories.size() - 2];
    const std::size_t rollInPoint =
        rollIn.firstPoint + std::size_t(ReadIndex(course.GetMember("rollInPoint"), qsizetype(rollIn.numPoints),
                                                  ZELTPProgramReader::tr("the roll-in trajectory's points")));
    const std::size_t rollOutPoint =
        rollOut.firstPoint + std::size_t(ReadIndex(course.GetMember("rollOutPoint"), qsizetype(rollOut.numPoints),
                                                   ZELTPProgramReader::tr("the roll-out trajectory's points")));
    CreatePoints(rollInPoint);

    auto* towCourse = Create<ZELTPTowCourse>(name);
    towCourse->SetUsedTowMask(usedTowMask);
    towCourse->SetMachineConfiguration(configuration);
    towCourse->SetTowLengths(towLengths);
    AddTrajectories(towCourse);
    towCourse->SetRollInPoint(m_pointObjects[rollInPoint]);
    towCourse->SetRollOutPoint(m_pointObjects[rollOutPoint]);
    return towCourse;
}

// The trajectories of a link or probing procedure: off the part, none
// sharing a point with another.
void ProgramBuilder::ReadOffPartChain(const Value& trajectories)
{
    m_points.clear();
    m_trajectories.clear();
    ForEachEntry(trajectories, [&](const Value& trajectory) {
        m_trajectories.push_back(ReadTrajectory(trajectory, Role::OffPart, ZELCompTowMask(), false));
    });
    DeriveMissingDirections(m_points);
}

void ProgramBuilder::ReadCourseChain(const Value& trajectories, const ZELCompTowMask& courseMask)
{
    const qsizetype count = CountEntries(trajectories.GetArray());
    if (count < MinimumCourseTrajectories)
        trajectories.Fail(ZELTPProgramReader::tr("expected at least %1 trajectories (approach, roll-in, roll-out, "
                                                 "retract), found %2")
                              .arg(MinimumCourseTrajectories)
                              .arg(count));
    m_points.clear();
    m_trajectories.clear();
    qsizetype index = 0;
    ForEachEntry(trajectories, [&](const Value& trajectory) {
        const Role role = index == 0 ? Role::Approach : index == count - 1 ? Role::Retract : Role::OnPart;
        m_trajectories.push_back(ReadTrajectory(trajectory, role, courseMask, index > 0));
        ++index;
    });
    DeriveMissingDirections(m_points);
}

TrajectoryRecord ProgramBuilder::ReadTrajectory(const Value& trajectory, Role role, const ZELCompTowMask& courseMask,
                                                bool joinsPrevious)
{
    TrajectoryRecord record;
    record.kind = ReadTrajectoryKind(trajectory.GetMember("kind"), role);
    record.feedrate = ReadNumberIn(trajectory.GetMember("feedrate"), FeedrateRange);
    const bool onPart = record.kind != TrajectoryKind::OffPart;
    if (onPart) {
        record.forwardTilt = ReadOptionalAngle(trajectory, "forwardTilt", TiltRange);
        record.sideTilt = ReadOptionalAngle(trajectory, "sideTilt", TiltRange);
        record.smoothingAngle = ReadOptionalAngle(trajectory, "smoothingAngle", SmoothingAngleRange);
    }
    if (record.kind == TrajectoryKind::Tow)
        ReadTowFields(trajectory, courseMask, record);

    const Value points = trajectory.GetMember("points");
    const std::size_t minimum = record.kind == TrajectoryKind::Tow ? 2 : 1;
    if (points.GetArray().size() < minimum)
        points.Fail(record.kind == TrajectoryKind::Tow
                        ? ZELTPProgramReader::tr("tow trajectory needs at least 2 points")
                        : ZELTPProgramReader::tr("trajectory needs at least 1 point"));
    record.firstPoint = joinsPrevious ? m_points.size() - 1 : m_points.size();
    ForEachEntry(points, [&](const Value& point) {
        const PointRecord read = ReadPoint(point, onPart);
        if (joinsPrevious && record.numPoints == 0)
            JoinPoint(read, point);
        else
            m_points.push_back(read);
        ++record.numPoints;
    });
    return record;
}

void ProgramBuilder::ReadTowFields(const Value& trajectory, const ZELCompTowMask& courseMask,
                                   TrajectoryRecord& record) const
{
    const int numTows = courseMask.GetNumTows();
    const Value towMask = trajectory.GetMember("towMask");
    record.towMask = ReadTowMaskOf(towMask, numTows, ZELTPProgramReader::tr("the course's towMask"));
    RequireTowsOfCourse(towMask, record.towMask, courseMask);
    const std::optional<Value> forcedMask = trajectory.FindMember("forcedMask");
    record.forcedMask = forcedMask ? ReadTowMaskOf(*forcedMask, numTows,
                                                   ZELTPProgramReader::tr("the trajectory's towMask"))
                                   : ZELCompTowMask(numTows, false);
    record.forcedRates = ReadForcedRates(trajectory, numTows);
}

// The first point of a course's trajectory is the last point of the one
// before: one point, which takes the directions of whichever copy gives them.
void ProgramBuilder::JoinPoint(const PointRecord& copy, const Value& point)
{
    PointRecord& junction = m_points.back();
    const ZELMathVector offset = copy.origin - junction.origin;
    if (!(offset.Dot(offset) <= JunctionTolerance * JunctionTolerance))
        point.GetMember("origin").Fail(ZELTPProgramReader::tr("origin is %1 mm from the previous trajectory's last "
                                                              "point (at most %2 mm)")
                                           .arg(Number(LengthOf(offset)))
                                           .arg(Number(JunctionTolerance)));
    if (!junction.hasDirections && copy.hasDirections) {
        junction.travel = copy.travel;
        junction.normal = copy.normal;
        junction.hasDirections = true;
    }
    junction.onPart = junction.onPart || copy.onPart;
}

// Creates the chain's points; an on-part point is numbered by its distance
// along the chain from the point at `indexOrigin`.
void ProgramBuilder::CreatePoints(std::size_t indexOrigin)
{
    m_pointObjects.clear();
    m_pointObjects.reserve(m_points.size());
    for (std::size_t position = 0; position < m_points.size(); ++position) {
        const PointRecord& record = m_points[position];
        if (record.onPart) {
            auto* point = Create<ZELTPPoint>(ToolFrame(record));
            point->SetIndex(int(qint64(position) - qint64(indexOrigin)));
            m_pointObjects.push_back(point);
        } else {
            m_pointObjects.push_back(Create<ZELTPOffPartPoint>(ToolFrame(record)));
        }
    }
}

template <typename Owner>
void ProgramBuilder::AddTrajectories(Owner* owner) const
{
    for (const TrajectoryRecord& record : m_trajectories) {
        std::unique_ptr<ZELTPTrajectory> trajectory = CreateTrajectory(record);
        for (std::size_t point = 0; point < record.numPoints; ++point)
            trajectory->AddPoint(m_pointObjects[record.firstPoint + point]);
        owner->AddTrajectory(trajectory.get());
        trajectory.release();
    }
}

// ---------------------------------------------------------------------------
// Syntax errors

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool IsWordCharacter(char character)
{
    return IsDigit(character) || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
        || character == '_' || character == '.' || character == '+' || character == '-';
}

bool IsIdentifier(std::string_view key)
{
    return !key.empty() && !IsDigit(key.front())
        && std::all_of(key.begin(), key.end(), [](char character) {
               return IsWordCharacter(character) && character != '.' && character != '+' && character != '-';
           });
}

// The length of the UTF-8 sequence that opens `text`; 0 when it is not
// valid UTF-8 (overlong forms, surrogates and code points past U+10FFFF
// included).
std::size_t Utf8SequenceLength(std::string_view text)
{
    const auto byte = [&text](std::size_t index) { return index < text.size() ? quint8(text[index]) : 0u; };
    const auto continues = [&](std::size_t index, unsigned low, unsigned high) {
        return byte(index) >= low && byte(index) <= high;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return continues(1, 0x80, 0xBF) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return continues(1, low, high) && continues(2, 0x80, 0xBF) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return continues(1, low, high) && continues(2, 0x80, 0xBF) && continues(3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}

// Whether a number that the grammar accepts and that a double cannot hold is
// too large rather than too small: whether the power of ten of its first
// significant digit is positive. Past the range of doubles the sign of that
// power tells the two apart.
bool IsTooLarge(std::string_view token)
{
    std::size_t at = token.front() == '-' ? 1 : 0;
    const std::size_t integerStart = at;
    while (at < token.size() && IsDigit(token[at]))
        ++at;
    const std::string_view integerPart = token.substr(integerStart, at - integerStart);
    qint64 power = 0;
    const std::size_t significant = integerPart.find_first_not_of('0');
    if (significant != std::string_view::npos) {
        power = qint64(integerPart.size() - significant) - 1;
    } else {
        if (at < token.size() && token[at] == '.')
            ++at;
        const std::size_t fractionStart = at;
        while (at < token.size() && token[at] == '0')
            ++at;
        if (at == token.size() || !IsDigit(token[at]))
            return false;
        power = -qint64(at - fractionStart) - 1;
    }
    const std::size_t exponentAt = token.find_first_of("eE");
    if (exponentAt == std::string_view::npos)
        return power > 0;
    std::size_t digit = exponentAt + 1;
    const bool negative = digit < token.size() && token[digit] == '-';
    if (digit < token.size() && (token[digit] == '-' || token[digit] == '+'))
        ++digit;
    // Saturated far beyond any exponent a double reaches.
    constexpr qint64 ExponentLimit = 1000000000;
    qint64 exponent = 0;
    for (; digit < token.size(); ++digit)
        exponent = std::min(exponent * 10 + (token[digit] - '0'), ExponentLimit);
    return power + (negative ? -exponent : exponent) > 0;
}

// Whether a number that the grammar accepts is one simdjson takes: integers
// within 64 bits, other numbers finite (too small ones read as zero).
bool IsNumberInRange(std::string_view token, bool integer)
{
    const char* const first = token.data();
    const char* const last = first + token.size();
    if (!integer) {
        double value = 0.0;
        return std::from_chars(first, last, value).ec != std::errc::result_out_of_range || !IsTooLarge(token);
    }
    if (token.front() == '-') {
        std::int64_t value = 0;
        return std::from_chars(first, last, value).ec == std::errc();
    }
    std::uint64_t value = 0;
    return std::from_chars(first, last, value).ec == std::errc();
}

/*
    Finds where a document that simdjson refused stops being JSON, and the
    JSON path to that place. It runs only after a failed parse, so it keeps
    to plain code; it nests no deeper than the parser and keeps one level
    per open array or object.
*/
class SyntaxScanner
{
public:
    explicit SyntaxScanner(std::string_view text)
        : m_text(text)
    {
    }

    //! The first syntax error from byte `start` on; none when the scanner
    //! finds the document sound.
    std::optional<Problem> FindError(std::size_t start)
    {
        m_position = start;
        try {
            SkipWhitespace();
            if (AtEnd())
                Fail(ZELTPProgramReader::tr("the document is empty"));
            bool valueNext = true;
            for (;;) {
                if (valueNext)
                    valueNext = !ScanValue();
                else if (!m_levels.empty())
                    valueNext = ScanAfterEntry();
                else
                    break;
            }
            SkipWhitespace();
            if (!AtEnd())
                Fail(ZELTPProgramReader::tr("expected the end of the document, found %1").arg(DescribeNext()));
        } catch (const Problem& problem) {
            return problem;
        }
        return std::nullopt;
    }

private:
    // An open array or object, and the entry being scanned in it.
    struct Level
    {
        bool isObject = false;
        qsizetype index = 0;
        std::string_view key;
        bool hasEntry = false;
    };

    bool AtEnd() const { return m_position >= m_text.size(); }
    char Next() const { return m_text[m_position]; }

    void SkipWhitespace()
    {
        while (!AtEnd() && (Next() == ' ' || Next() == '\t' || Next() == '\n' || Next() == '\r'))
            ++m_position;
    }

    void ExpectMore() const
    {
        if (AtEnd())
            Fail(ZELTPProgramReader::tr("unexpected end of the document"));
    }

    void ExpectMoreOfString() const
    {
        if (AtEnd())
            Fail(ZELTPProgramReader::tr("unexpected end of the document in a string"));
    }

    // Scans the value that starts here: true when it is complete, false when
    // it opened an array or object whose first entry comes next.
    bool ScanValue()
    {
        SkipWhitespace();
        ExpectMore();
        const char first = Next();
        if (first == '[' || first == '{')
            return Open(first == '{');
        if (first == '"')
            ScanString();
        else if (first == '-' || IsDigit(first))
            ScanNumber();
        else
            ScanLiteral();
        return true;
    }

    bool Open(bool isObject)
    {
        if (m_levels.size() >= MaximumDepth)
            Fail(ZELTPProgramReader::tr("nested deeper than %1 levels").arg(MaximumDepth));
        ++m_position;
        m_levels.push_back(Level{isObject, 0, std::string_view(), !isObject});
        SkipWhitespace();
        ExpectMore();
        if (Next() == (isObject ? '}' : ']')) {
            ++m_position;
            m_levels.pop_back();
            return true;
        }
        if (isObject)
            ScanKey();
        return false;
    }

    // After an entry of the innermost array or object: true when another
    // entry follows, false when the array or object closed.
    bool ScanAfterEntry()
    {
        SkipWhitespace();
        ExpectMore();
        Level& level = m_levels.back();
        const char closing = level.isObject ? '}' : ']';
        if (Next() == ',') {
            ++m_position;
            ++level.index;
            if (level.isObject)
                ScanKey();
            return true;
        }
        if (Next() != closing)
            Fail(ZELTPProgramReader::tr("expected ',' or '%1', found %2")
                     .arg(QLatin1Char(closing))
                     .arg(DescribeNext()));
        ++m_position;
        m_levels.pop_back();
        return false;
    }

    void ScanKey()
    {
        Level& level = m_levels.back();
        level.hasEntry = false;
        SkipWhitespace();
        ExpectMore();
        if (Next() != '"')
            Fail(ZELTPProgramReader::tr("expected a string key, found %1").arg(DescribeNext()));
        level.key = ScanString();
        level.hasEntry = true;
        SkipWhitespace();
        ExpectMore();
        if (Next() != ':')
            Fail(ZELTPProgramReader::tr("expected ':', found %1").arg(DescribeNext()));
        ++m_position;
    }

    // Scans a string and returns its text as written, escapes undecoded.
    std::string_view ScanString()
    {
        const std::size_t start = ++m_position;
        for (;;) {
            ExpectMoreOfString();
            const quint8 byte = quint8(Next());
            if (byte == '"')
                break;
            if (byte == '\\') {
                ScanEscape();
                continue;
            }
            if (byte < 0x20)
                Fail(ZELTPProgramReader::tr("unescaped control character 0x%1 in a string").arg(Hex(byte)));
            const std::size_t length = Utf8SequenceLength(m_text.substr(m_position));
            if (length == 0)
                Fail(ZELTPProgramReader::tr("invalid UTF-8 in a string"));
            m_position += length;
        }
        const std::string_view text = m_text.substr(start, m_position - start);
        ++m_position;
        return text;
    }

    void ScanEscape()
    {
        const std::size_t start = m_position++;
        ExpectMoreOfString();
        constexpr std::string_view SimpleEscapes = "\"\\/bfnrt";
        if (SimpleEscapes.find(Next()) != std::string_view::npos) {
            ++m_position;
            return;
        }
        const unsigned code = ScanUnicodeEscape(start);
        if (code >= 0xDC00 && code <= 0xDFFF)
            FailAt(start, ZELTPProgramReader::tr("unpaired surrogate in a string"));
        if (code >= 0xD800 && code <= 0xDBFF) {
            const std::size_t low = m_position;
            if (m_text.substr(low, 2) != "\\u")
                FailAt(start, ZELTPProgramReader::tr("unpaired surrogate in a string"));
            ++m_position;
            const unsigned second = ScanUnicodeEscape(low);
            if (second < 0xDC00 || second > 0xDFFF)
                FailAt(start, ZELTPProgramReader::tr("unpaired surrogate in a string"));
        }
    }

    // Scans the "u" and four hexadecimal digits of the escape at `start`.
    unsigned ScanUnicodeEscape(std::size_t start)
    {
        unsigned code = 0;
        const auto [end, error] =
            std::from_chars(m_text.data() + m_position + 1, m_text.data() + std::min(m_position + 5, m_text.size()),
                            code, 16);
        if (Next() != 'u' || error != std::errc() || end != m_text.data() + m_position + 5)
            FailAt(start, ZELTPProgramReader::tr("invalid escape %1 in a string")
                              .arg(Quoted(m_text.substr(start, Next() == 'u' ? 6 : 2))));
        m_position += 5;
        return code;
    }

    void ScanNumber()
    {
        const std::size_t start = m_position;
        if (Next() == '-')
            ++m_position;
        bool integer = true;
        ScanDigits(start);
        if (Next() == '0')
            ++m_position;
        else
            SkipDigits();
        if (!AtEnd() && Next() == '.') {
            integer = false;
            ++m_position;
            ScanDigits(start);
            SkipDigits();
        }
        if (!AtEnd() && (Next() == 'e' || Next() == 'E')) {
            integer = false;
            ++m_position;
            if (!AtEnd() && (Next() == '+' || Next() == '-'))
                ++m_position;
            ScanDigits(start);
            SkipDigits();
        }
        const std::string_view token = m_text.substr(start, m_position - start);
        if (!IsNumberInRange(token, integer))
            FailAt(start, ZELTPProgramReader::tr("number %1 is out of range").arg(Quoted(token)));
    }

    // Requires a digit next in the number that starts at `start`.
    void ScanDigits(std::size_t start) const
    {
        if (AtEnd() || !IsDigit(Next()))
            FailAt(start, ZELTPProgramReader::tr("invalid number %1").arg(Quoted(WordAt(start))));
    }

    void SkipDigits()
    {
        while (!AtEnd() && IsDigit(Next()))
            ++m_position;
    }

    void ScanLiteral()
    {
        for (const std::string_view literal : {"true", "false", "null"}) {
            const std::size_t end = m_position + literal.size();
            if (m_text.substr(m_position, literal.size()) == literal
                && (end >= m_text.size() || !IsWordCharacter(m_text[end]))) {
                m_position = end;
                return;
            }
        }
        Fail(ZELTPProgramReader::tr("expected a value, found %1").arg(DescribeNext()));
    }

    std::string_view WordAt(std::size_t start) const
    {
        std::size_t end = start;
        while (end < m_text.size() && end - start < std::size_t(QuotedLength) && IsWordCharacter(m_text[end]))
            ++end;
        return m_text.substr(start, std::max<std::size_t>(end - start, 1));
    }

    static QString Hex(quint8 byte) { return QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper(); }

    QString DescribeNext() const
    {
        if (AtEnd())
            return ZELTPProgramReader::tr("the end of the document");
        const char next = Next();
        if (IsWordCharacter(next))
            return Quoted(WordAt(m_position));
        if (next > 0x20 && next < 0x7F)
            return QStringLiteral("'%1'").arg(QLatin1Char(next));
        return ZELTPProgramReader::tr("byte 0x%1").arg(Hex(quint8(next)));
    }

    QString Path() const
    {
        QString path = QStringLiteral("$");
        for (const Level& level : m_levels) {
            if (!level.hasEntry)
                break;
            if (!level.isObject)
                path += QLatin1Char('[') + QString::number(level.index) + QLatin1Char(']');
            else if (IsIdentifier(level.key) && level.key.size() <= std::size_t(QuotedLength))
                path += QLatin1Char('.') + QString::fromUtf8(level.key.data(), qsizetype(level.key.size()));
            else
                path += QStringLiteral("[%1]").arg(Quoted(level.key));
        }
        return path;
    }

    [[noreturn]] void Fail(const QString& what) const { FailAt(m_position, what); }

    [[noreturn]] void FailAt(std::size_t offset, const QString& what) const
    {
        throw Problem{Path(), ZELTPProgramReader::tr("invalid JSON at byte %1: %2").arg(offset).arg(what)};
    }

    const std::string_view m_text;
    std::size_t m_position = 0;
    std::vector<Level> m_levels;
};

// Why simdjson refused the document at `text` (from byte `start` on).
Problem SyntaxProblem(std::string_view text, std::size_t start, simdjson::error_code error)
{
    const QString reason = QString::fromUtf8(simdjson::error_message(error));
    if (error == simdjson::CAPACITY || error == simdjson::MEMALLOC)
        return Problem{QString(), ZELTPProgramReader::tr("cannot parse the document: %1").arg(reason)};
    if (std::optional<Problem> problem = SyntaxScanner(text).FindError(start))
        return *problem;
    return Problem{QStringLiteral("$"), ZELTPProgramReader::tr("invalid JSON: %1").arg(reason)};
}

} // namespace

ZELTPProgram* ZELTPProgramReaderPrivate::ReadText(simdjson::padded_string&& text, std::size_t length,
                                                  const QString& sourceName) const
{
    const std::string_view document(text.data(), length);
    const std::size_t start = document.substr(0, ByteOrderMark.size()) == ByteOrderMark ? ByteOrderMark.size() : 0;
    simdjson::dom::parser parser;
    simdjson::dom::element root;
    const simdjson::error_code error = parser.parse(text.data() + start, length - start, false).get(root);
    try {
        if (error)
            throw SyntaxProblem(document, start, error);
        // The parsed document holds all it needs; the text goes before the
        // program grows.
        text = simdjson::padded_string();
        ProgramBuilder builder(container);
        return builder.Build(Value(root, Location::Root()));
    } catch (const Problem& problem) {
        throw ZELTPFormatException(sourceName, problem.location, problem.text);
    }
}

ZELTPProgramReader::ZELTPProgramReader(ZELGeoContainer* container)
    : ZELTPProgramReader(new ZELTPProgramReaderPrivate(this, container))
{
}

ZELTPProgramReader::ZELTPProgramReader(ZELTPProgramReaderPrivate* d)
    : d_ptr(d)
{
}

ZELTPProgramReader::~ZELTPProgramReader() = default;

namespace {

// The first read of a stream; each further one reads as much again as the
// stream has given so far.
constexpr std::size_t FirstStreamRead = std::size_t(1) << 16;

ZELTPFormatException TooLarge(const QString& fileName, qint64 maximumBytes)
{
    return ZELTPFormatException(
        fileName, QString(),
        ZELTPProgramReader::tr("the toolpath is larger than %1 bytes, the most the reader takes").arg(maximumBytes));
}

ZELTPFormatException CannotRead(const QString& fileName, const QFile& file)
{
    return ZELTPFormatException(fileName, QString(),
                                ZELTPProgramReader::tr("cannot read the file: %1").arg(file.errorString()));
}

// A byte below 0x20 other than tab, line feed and carriage return stands
// nowhere in a JSON text, in a string or out of one. A stream that gives one
// (a device such as /dev/zero or /dev/urandom, a binary file piped in) is
// refused there and read no further: it may never end.
bool IsControlByte(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

ZELTPFormatException ControlByte(const QString& fileName, std::size_t offset, char byte)
{
    return ZELTPFormatException(
        fileName, QString(),
        ZELTPProgramReader::tr("byte %1 is the control character 0x%2, which no JSON text "
                               "holds; a pipe or a device is read no further")
            .arg(offset)
            .arg(QStringLiteral("%1").arg(static_cast<unsigned char>(byte), 2, 16, QLatin1Char('0')).toUpper()));
}

// `text` with room for `size` bytes, its first `length` bytes kept.
simdjson::padded_string Grown(const simdjson::padded_string& text, std::size_t length, std::size_t size)
{
    simdjson::padded_string grown(size);
    if (!grown.data())
        throw std::bad_alloc();
    std::copy_n(text.data(), length, grown.data());
    return grown;
}

// A read of a file whose size is no guide (a pipe, a device, a terminal,
// or a file that says it is empty): to its end, holding no more than one
// byte past `maximumBytes`.
std::pair<simdjson::padded_string, std::size_t> ReadStream(QFile& file, const QString& fileName, qint64 maximumBytes)
{
    const std::size_t limit = std::size_t(maximumBytes) + 1;
    simdjson::padded_string text;
    std::size_t length = 0;
    for (;;) {
        if (length == text.size())
            text = Grown(text, length, std::min(limit, std::max(FirstStreamRead, 2 * length)));
        const qint64 read = file.read(text.data() + length, qint64(text.size() - length));
        if (read < 0)
            throw CannotRead(fileName, file);
        if (read == 0)
            return {std::move(text), length};
        const char* const begin = text.data() + length;
        const char* const control = std::find_if(begin, begin + read, IsControlByte);
        if (control != begin + read)
            throw ControlByte(fileName, length + std::size_t(control - begin), *control);
        length += std::size_t(read);
        if (length == limit)
            throw TooLarge(fileName, maximumBytes);
    }
}

} // namespace

ZELTPProgram* ZELTPProgramReader::Read(const QString& fileName, qint64 maximumBytes) const
{
    Q_D(const ZELTPProgramReader);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw ZELTPFormatException(fileName, QString(), tr("cannot open the file: %1").arg(file.errorString()));
    const qint64 bound = std::clamp(maximumBytes, qint64(0), MaximumDocumentBytes);
    const qint64 size = file.size();
    if (size > bound)
        throw TooLarge(fileName, bound);
    if (file.isSequential() || size == 0) {
        auto [text, length] = ReadStream(file, fileName, bound);
        return d->ReadText(std::move(text), length, fileName);
    }
    simdjson::padded_string text{std::size_t(size)};
    if (!text.data())
        throw std::bad_alloc();
    const qint64 read = file.read(text.data(), size);
    if (read < 0)
        throw CannotRead(fileName, file);
    file.close();
    return d->ReadText(std::move(text), std::size_t(read), fileName);
}

ZELTPProgram* ZELTPProgramReader::ReadData(const QByteArray& data, const QString& sourceName) const
{
    Q_D(const ZELTPProgramReader);
    simdjson::padded_string text(data.constData(), std::size_t(data.size()));
    if (!text.data())
        throw std::bad_alloc();
    const std::size_t length = text.size();
    return d->ReadText(std::move(text), length, sourceName);
}
