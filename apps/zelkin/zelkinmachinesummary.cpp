#include "zelkinmachinesummary.h"

#include "zelkinmachinefacts.h"
#include "zelkintexttable.h"

#include <zelkinafpmachine.h>

#include <QtMath>

#include <cmath>

namespace {

constexpr double DegreesPerRadian = qRadiansToDegrees(1.0);
constexpr double SecondsPerMinute = 60.0;
constexpr double MillimetresPerMetre = 1000.0;
constexpr int SectionIndent = 2;
constexpr int TreeIndent = 2;

// A unit of the machine description and the factor that takes a value of
// the model (mm or rad, per second) there.
struct DescriptionUnit
{
    QString name;
    double factor;
};

const DescriptionUnit Millimetres{QStringLiteral("mm"), 1.0};

struct VariableUnits
{
    DescriptionUnit limit;
    DescriptionUnit speed;
    DescriptionUnit acceleration;
};

VariableUnits GetVariableUnits(ZELKinVariable::VariableType type)
{
    if (type == ZELKinVariable::Rotary)
        return {{QStringLiteral("deg"), DegreesPerRadian},
                {QStringLiteral("deg/min"), DegreesPerRadian * SecondsPerMinute},
                {QStringLiteral("deg/s^2"), DegreesPerRadian}};
    return {Millimetres,
            {QStringLiteral("m/min"), SecondsPerMinute / MillimetresPerMetre},
            {QStringLiteral("m/s^2"), 1.0 / MillimetresPerMetre}};
}

// Twelve digits hide the last-bit noise of converting to the model's units
// and back (200.5 deg comes back as 200.49999999999997) and keep anything a
// description would state.
QString FormatNumber(double value)
{
    return QString::number(value, 'g', 12);
}

QString FormatQuantity(double value, const DescriptionUnit& unit)
{
    // A NaN limit is how the model says the axis has none on that side.
    if (std::isnan(value))
        return QStringLiteral("none");
    return FormatNumber(value * unit.factor) + QLatin1Char(' ') + unit.name;
}

QString FormatTriple(double x, double y, double z)
{
    return QStringLiteral("(%1, %2, %3)").arg(FormatNumber(x), FormatNumber(y), FormatNumber(z));
}

QString FormatText(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("(none)") : text;
}

QString FormatMaterialVariable(const ZELKinAFPMachine& machine)
{
    const QString name = machine.GetMaterialVariableName();
    // The machine accepts any name; a name that matches no variable leaves
    // the material without an axis, which the reader should see.
    if (!machine.GetMaterialVariable())
        return name + QStringLiteral(" (no variable of that name)");
    return name;
}

QString FormatSection(const QString& title, const ZELKinTextTable& table)
{
    return title + QLatin1Char('\n') + table.ToText(SectionIndent);
}

QString FormatMachine(const ZELKinAFPMachine& machine)
{
    ZELKinTextTable table;
    table.AddRow({QStringLiteral("Label:"), FormatText(machine.GetLabel())});
    table.AddRow({QStringLiteral("Solver:"), FormatText(machine.GetSolverName())});
    table.AddRow({QStringLiteral("Solver config:"), FormatText(machine.GetSolverConfig())});
    table.AddRow({QStringLiteral("NC format:"), FormatText(machine.GetNCCodeFormat())});
    table.AddRow({QStringLiteral("NC config:"), FormatText(machine.GetNCCodeConfig())});
    return FormatSection(QStringLiteral("AFP machine"), table);
}

QString FormatHead(const ZELKinAFPMachine& machine)
{
    const ZELCompTowMask mask = machine.GetMaximumMask();
    ZELKinTextTable table;
    table.AddRow({QStringLiteral("Maximum mask:"),
                  QStringLiteral("%1 tows, %2").arg(QString::number(mask.GetNumTows()), mask.GetHexadecimalString())});
    table.AddRow({QStringLiteral("Roller radius:"), FormatQuantity(machine.GetRollerRadius(), Millimetres)});
    table.AddRow({QStringLiteral("Tow width:"), FormatQuantity(machine.GetTowWidth(), Millimetres)});
    table.AddRow({QStringLiteral("Add distance:"), FormatQuantity(machine.GetAddDistance(), Millimetres)});
    table.AddRow({QStringLiteral("Add pinch:"), FormatQuantity(machine.GetPinchDistance(), Millimetres)});
    table.AddRow({QStringLiteral("Cut distance:"), FormatQuantity(machine.GetCutDistance(), Millimetres)});
    table.AddRow({QStringLiteral("Head travel:"), FormatQuantity(machine.GetHeadTravel(), Millimetres)});
    table.AddRow({QStringLiteral("Material variable:"), FormatMaterialVariable(machine)});
    return FormatSection(QStringLiteral("Head"), table);
}

QStringList FormatVariable(const ZELKinVariable& variable)
{
    const VariableUnits units = GetVariableUnits(variable.GetType());
    return {variable.GetLabel(),
            ZELKinMachineFacts::GetVariableTypeWord(variable.GetType()),
            FormatQuantity(variable.GetMinimum(), units.limit),
            FormatQuantity(variable.GetMaximum(), units.limit),
            FormatQuantity(variable.GetMaxVelocity(), units.speed),
            FormatQuantity(variable.GetMaxAcceleration(), units.acceleration)};
}

QString FormatVariables(const ZELKinAFPMachine& machine)
{
    ZELKinTextTable table;
    table.AddRow({QStringLiteral("Name"), QStringLiteral("Type"), QStringLiteral("Minimum"), QStringLiteral("Maximum"),
                  QStringLiteral("Max speed"), QStringLiteral("Max acceleration")});
    for (const ZELKinVariable* variable : machine.GetVariables())
        table.AddRow(FormatVariable(*variable));
    return FormatSection(QStringLiteral("Variables (%1)").arg(machine.GetNumVariables()), table);
}

QStringList FormatJoint(const ZELKinJoint& joint, int depth)
{
    const ZELMathVector vector = ZELKinMachineFacts::GetJointVector(joint);
    QStringList cells{QString(depth * TreeIndent, QLatin1Char(' ')) + joint.GetLabel(),
                      ZELKinMachineFacts::GetJointTypeWord(joint),
                      ZELKinMachineFacts::GetJointVariableNames(joint).join(QStringLiteral(", ")),
                      ZELKinMachineFacts::GetPriorityWord(joint.GetPriority()),
                      FormatTriple(vector.GetX(), vector.GetY(), vector.GetZ())};
    if (const std::optional<ZELMathPoint> pivot = ZELKinMachineFacts::GetJointPivot(joint))
        cells.append(FormatTriple(pivot->GetX(), pivot->GetY(), pivot->GetZ()));
    return cells;
}

// Children follow their parent, one indent deeper, so the table reads as the tree.
void AddJointTree(ZELKinTextTable& table, const ZELKinJoint& joint, int depth)
{
    table.AddRow(FormatJoint(joint, depth));
    for (const ZELKinJoint* child : joint.GetChildJoints())
        AddJointTree(table, *child, depth + 1);
}

QString FormatJoints(const ZELKinAFPMachine& machine)
{
    ZELKinTextTable table;
    table.AddRow({QStringLiteral("Name"), QStringLiteral("Type"), QStringLiteral("Variable"), QStringLiteral("Priority"),
                  QStringLiteral("Vector"), QStringLiteral("Pivot")});
    for (const ZELKinJoint* root : machine.GetRootJoints())
        AddJointTree(table, *root, 0);
    return FormatSection(QStringLiteral("Joints (%1)").arg(machine.GetNumJoints()), table);
}

} // namespace

QString ZELKinMachineSummary::ToText(const ZELKinAFPMachine& machine)
{
    return FormatMachine(machine) + QLatin1Char('\n') + FormatHead(machine) + QLatin1Char('\n')
        + FormatVariables(machine) + QLatin1Char('\n') + FormatJoints(machine);
}
