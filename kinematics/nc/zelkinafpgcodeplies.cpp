#include "zelkinafpgcodeplies_p.h"

#include "zelkinncformat_p.h"
#include "zelkinprogram.h"
#include "zelkinrolllayupprocedure.h"

namespace {

const char* const kPlyNumberProperty = "PlyNum";

} // namespace

int ZELKinAFPGCodePlies::Number(const ZELKinProgram* program, int first)
{
    int plyNumber = first;
    for (ZELKinProcedure* procedure : program->GetProcedures()) {
        if (qobject_cast<ZELKinRollLayupProcedure*>(procedure))
            procedure->setProperty(kPlyNumberProperty, plyNumber++);
    }
    return plyNumber;
}

QList<const ZELKinRollLayupProcedure*> ZELKinAFPGCodePlies::RollLayupProceduresOf(const ZELKinProgram* program)
{
    QList<const ZELKinRollLayupProcedure*> procedures;
    for (const ZELKinProcedure* procedure : program->GetProcedures()) {
        if (const auto* rollLayup = qobject_cast<const ZELKinRollLayupProcedure*>(procedure))
            procedures.append(rollLayup);
    }
    return procedures;
}

int ZELKinAFPGCodePlies::PlyNumberOf(const ZELKinProcedure* procedure)
{
    return procedure->property(kPlyNumberProperty).toInt();
}

QString ZELKinAFPGCodePlies::PaddedPlyNumberOf(const ZELKinProcedure* procedure)
{
    return QString::number(PlyNumberOf(procedure)).rightJustified(4, QLatin1Char('0'));
}

QString ZELKinAFPGCodePlies::MethodLabel(ZELCompStrategy::PropagationMode mode)
{
    switch (mode) {
    case ZELCompStrategy::Angle:
        return QStringLiteral("A-ANGLE");
    case ZELCompStrategy::Offset:
        return QStringLiteral("A-OFFSET");
    case ZELCompStrategy::GeodesicOffset:
        return QStringLiteral("G-OFFSET");
    default:
        return ZELCompStrategy::GetPropagationModeLabel(mode);
    }
}

ZELKinNCStream::Fixed ZELKinAFPGCodePlies::AngleField(double radians)
{
    return {ZELKinNCFormat::ToDegrees(radians), 3, 9};
}
