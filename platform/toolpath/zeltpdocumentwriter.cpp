#include "zeltpdocumentwriter.h"
#include "zeltpdocumentwriter_p.h"

#include "zeltpdocumentkeys_p.h"

namespace Key = ZELTPDocument::Key;
using Layout = ZELTPJsonWriter::Layout;

namespace {

QString PointsDetailText(ZELTPCourseLink::PointsDetail detail)
{
    switch (detail) {
    case ZELTPCourseLink::PointsDetailLow:
        return QLatin1String(ZELTPDocument::PointsDetail::kLow);
    case ZELTPCourseLink::PointsDetailMedium:
        return QLatin1String(ZELTPDocument::PointsDetail::kMedium);
    case ZELTPCourseLink::PointsDetailFull:
        break;
    }
    return QLatin1String(ZELTPDocument::PointsDetail::kFull);
}

} // namespace

void ZELTPDocumentWriterPrivate::WriteText(const char* key, const QString& text)
{
    json.WriteKey(key);
    json.WriteString(text);
}

void ZELTPDocumentWriterPrivate::WriteNumber(const char* key, double value)
{
    json.WriteKey(key);
    json.WriteNumber(value);
}

void ZELTPDocumentWriterPrivate::WriteInteger(const char* key, long long value)
{
    json.WriteKey(key);
    json.WriteInteger(value);
}

void ZELTPDocumentWriterPrivate::WriteTriple(const char* key, double x, double y, double z)
{
    json.WriteKey(key);
    json.BeginArray(Layout::Line);
    json.WriteNumber(x);
    json.WriteNumber(y);
    json.WriteNumber(z);
    json.EndArray();
}

void ZELTPDocumentWriterPrivate::WriteSafetyPlane(const ZELMathPlane& plane)
{
    const ZELMathPoint origin = plane.GetOrigin();
    const ZELMathVector normal = plane.GetNormal();
    json.WriteKey(Key::kSafetyPlane);
    json.BeginObject(Layout::Line);
    WriteTriple(Key::kOrigin, origin.GetX(), origin.GetY(), origin.GetZ());
    WriteTriple(Key::kNormal, normal.GetX(), normal.GetY(), normal.GetZ());
    json.EndObject();
}

void ZELTPDocumentWriterPrivate::WriteMachineConfiguration(const char* key,
                                                           const ZELTPMachineConfiguration& configuration)
{
    json.WriteKey(key);
    json.BeginObject(Layout::Line);
    json.WriteKey(Key::kRoller);
    json.BeginObject();
    WriteText(Key::kName, configuration.GetTool().GetName());
    WriteNumber(Key::kWidth, configuration.GetTool().GetWidth());
    json.EndObject();
    json.WriteKey(Key::kHead);
    json.BeginObject();
    WriteText(Key::kName, configuration.GetHead().GetName());
    WriteNumber(Key::kTowWidth, configuration.GetHead().GetTowWidth());
    json.EndObject();
    json.EndObject();
}

void ZELTPDocumentWriterPrivate::WritePly(const ZELTPDocumentWriter::Ply& ply)
{
    json.BeginObject(Layout::Line);
    WriteText(Key::kName, ply.name);
    WriteNumber(Key::kOrientation, ply.orientation);
    WriteText(Key::kPropagation, ply.propagation);
    json.EndObject();
}

void ZELTPDocumentWriterPrivate::WriteToolChange(const ZELTPDocumentWriter::ToolChange& toolChange)
{
    json.WriteKey(Key::kToolChange);
    json.BeginObject();
    WriteInteger(Key::kRemovePoint, toolChange.removePoint);
    WriteMachineConfiguration(Key::kPrevious, toolChange.previous);
    WriteMachineConfiguration(Key::kNext, toolChange.next);
    json.EndObject();
}

void ZELTPDocumentWriterPrivate::WriteTilts(const ZELTPDocumentWriter::Tilts& tilts)
{
    WriteNumber(Key::kForwardTilt, tilts.forward);
    WriteNumber(Key::kSideTilt, tilts.side);
    WriteNumber(Key::kSmoothingAngle, tilts.smoothing);
}

void ZELTPDocumentWriterPrivate::BeginTrajectory(const char* kind, double feedrate)
{
    json.BeginObject();
    WriteText(Key::kKind, QLatin1String(kind));
    WriteNumber(Key::kFeedrate, feedrate);
}

void ZELTPDocumentWriterPrivate::OpenPoints()
{
    json.WriteKey(Key::kPoints);
    json.BeginArray();
}

void ZELTPDocumentWriterPrivate::BeginTrajectoryOwner(const QString& name)
{
    json.BeginObject();
    WriteText(Key::kName, name);
}

ZELTPDocumentWriter::ZELTPDocumentWriter(QIODevice* device, const QString& name)
    : ZELTPDocumentWriter(new ZELTPDocumentWriterPrivate(this, device, name))
{
}

ZELTPDocumentWriter::ZELTPDocumentWriter(ZELTPDocumentWriterPrivate* d)
    : d_ptr(d)
{
}

ZELTPDocumentWriter::~ZELTPDocumentWriter() = default;

void ZELTPDocumentWriter::BeginProgram(const QString& name, const QString& revision)
{
    Q_D(ZELTPDocumentWriter);
    d->json.BeginObject();
    d->WriteText(Key::kFormat, QLatin1String(ZELTPDocument::kFormatName));
    d->WriteInteger(Key::kVersion, ZELTPDocument::kVersion);
    d->json.WriteKey(Key::kProgram);
    d->json.BeginObject();
    d->WriteText(Key::kName, name);
    d->WriteText(Key::kRevision, revision);
    d->json.WriteKey(Key::kProcedures);
    d->json.BeginArray();
}

void ZELTPDocumentWriter::EndProgram()
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndArray();
    d->json.EndObject();
    d->json.EndObject();
    d->json.Finish();
}

void ZELTPDocumentWriter::BeginRollLayupProcedure(const RollLayup& procedure)
{
    Q_D(ZELTPDocumentWriter);
    ++d->counts.procedures;
    d->json.BeginObject();
    d->WriteText(Key::kKind, QLatin1String(ZELTPDocument::ProcedureKind::kRollLayup));
    d->WriteText(Key::kName, procedure.name);
    d->WriteSafetyPlane(procedure.safetyPlane);
    d->WriteNumber(Key::kAddingFeedrate, procedure.addingFeedrate);
    d->WriteNumber(Key::kCuttingFeedrate, procedure.cuttingFeedrate);
    d->json.WriteKey(Key::kMaterial);
    d->json.BeginObject(Layout::Line);
    d->WriteText(Key::kId, procedure.material.GetId());
    d->WriteText(Key::kName, procedure.material.GetName());
    d->json.EndObject();
    d->WriteNumber(Key::kTotalMaterialLength, procedure.totalMaterialLength);
    d->json.WriteKey(Key::kPlies);
    d->json.BeginArray();
    for (const Ply& ply : procedure.plies)
        d->WritePly(ply);
    d->json.EndArray();
}

void ZELTPDocumentWriter::EndRollLayupProcedure()
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndObject();
}

void ZELTPDocumentWriter::BeginLinks()
{
    Q_D(ZELTPDocumentWriter);
    d->json.WriteKey(Key::kLinks);
    d->json.BeginArray();
}

void ZELTPDocumentWriter::EndLinks()
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndArray();
}

void ZELTPDocumentWriter::BeginLink(const QString& name, ZELTPCourseLink::PointsDetail pointsDetail)
{
    Q_D(ZELTPDocumentWriter);
    ++d->counts.links;
    d->BeginTrajectoryOwner(name);
    d->WriteText(Key::kPointsDetail, PointsDetailText(pointsDetail));
    d->json.WriteKey(Key::kTrajectories);
    d->json.BeginArray();
}

void ZELTPDocumentWriter::EndLink(const std::optional<ToolChange>& toolChange)
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndArray();
    if (toolChange)
        d->WriteToolChange(*toolChange);
    d->json.EndObject();
}

void ZELTPDocumentWriter::BeginCourses()
{
    Q_D(ZELTPDocumentWriter);
    d->json.WriteKey(Key::kCourses);
    d->json.BeginArray();
}

void ZELTPDocumentWriter::EndCourses()
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndArray();
}

void ZELTPDocumentWriter::BeginCourse(const Course& course)
{
    Q_D(ZELTPDocumentWriter);
    ++d->counts.courses;
    d->BeginTrajectoryOwner(course.name);
    d->WriteText(Key::kTowMask, course.towMask);
    d->WriteMachineConfiguration(Key::kMachineConfiguration, course.machineConfiguration);
    d->json.WriteKey(Key::kTowLengths);
    d->json.BeginArray(Layout::Line);
    for (const double length : course.towLengths)
        d->json.WriteNumber(length);
    d->json.EndArray();
    d->WriteInteger(Key::kRollInPoint, course.rollInPoint);
    d->WriteInteger(Key::kRollOutPoint, course.rollOutPoint);
    d->json.WriteKey(Key::kTrajectories);
    d->json.BeginArray();
}

void ZELTPDocumentWriter::EndCourse()
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndArray();
    d->json.EndObject();
}

void ZELTPDocumentWriter::BeginProbingProcedure(const QString& name, const ZELMathPlane& safetyPlane)
{
    Q_D(ZELTPDocumentWriter);
    ++d->counts.procedures;
    d->json.BeginObject();
    d->WriteText(Key::kKind, QLatin1String(ZELTPDocument::ProcedureKind::kProbing));
    d->WriteText(Key::kName, name);
    d->WriteSafetyPlane(safetyPlane);
    d->json.WriteKey(Key::kTrajectories);
    d->json.BeginArray();
}

void ZELTPDocumentWriter::EndProbingProcedure(const QList<double>& diameters)
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndArray();
    d->json.WriteKey(Key::kProbingPoints);
    d->json.BeginArray();
    for (const double diameter : diameters) {
        d->json.BeginObject(Layout::Line);
        d->WriteNumber(Key::kDiameter, diameter);
        d->json.EndObject();
    }
    d->json.EndArray();
    d->json.EndObject();
}

void ZELTPDocumentWriter::BeginOffPartTrajectory(double feedrate)
{
    Q_D(ZELTPDocumentWriter);
    d->BeginTrajectory(ZELTPDocument::TrajectoryKind::kOffPart, feedrate);
    d->OpenPoints();
}

void ZELTPDocumentWriter::BeginOnPartTrajectory(double feedrate, const Tilts& tilts)
{
    Q_D(ZELTPDocumentWriter);
    d->BeginTrajectory(ZELTPDocument::TrajectoryKind::kOnPart, feedrate);
    d->WriteTilts(tilts);
    d->OpenPoints();
}

void ZELTPDocumentWriter::BeginTowTrajectory(double feedrate, const Tilts& tilts, const QString& towMask)
{
    Q_D(ZELTPDocumentWriter);
    d->BeginTrajectory(ZELTPDocument::TrajectoryKind::kTow, feedrate);
    d->WriteTilts(tilts);
    d->WriteText(Key::kTowMask, towMask);
    d->OpenPoints();
}

void ZELTPDocumentWriter::AddPoint(const ZELMathPoint& origin, const ZELMathVector& travel, const ZELMathVector& normal)
{
    Q_D(ZELTPDocumentWriter);
    ++d->counts.points;
    d->json.BeginObject(Layout::Line);
    d->WriteTriple(Key::kOrigin, origin.GetX(), origin.GetY(), origin.GetZ());
    d->WriteTriple(Key::kTravel, travel.GetX(), travel.GetY(), travel.GetZ());
    d->WriteTriple(Key::kNormal, normal.GetX(), normal.GetY(), normal.GetZ());
    d->json.EndObject();
}

void ZELTPDocumentWriter::EndTrajectory()
{
    Q_D(ZELTPDocumentWriter);
    d->json.EndArray();
    d->json.EndObject();
}

ZELTPDocumentWriter::Counts ZELTPDocumentWriter::GetCounts() const
{
    Q_D(const ZELTPDocumentWriter);
    return d->counts;
}
