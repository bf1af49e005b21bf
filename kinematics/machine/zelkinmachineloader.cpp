#include "zelkinmachineloader.h"
#include "zelkinmachineloader_p.h"

#include "zelkinafpmachine.h"
#include "zelkinrotaryjoint.h"
#include "zelkintranslationjoint.h"
#include "zelkinvariable.h"

#include <zelsysexception.h>

#include <QDomDocument>
#include <QDomElement>
#include <QDomNodeList>
#include <QXmlStreamReader>
#include <QtDebug>
#include <QtMath>

#include <array>
#include <limits>
#include <optional>

namespace {

// Deep nesting makes the DOM parser slow beyond use: the bounds keep such
// input away from it.
constexpr qint64 kMaximumDescriptionBytes = ZELKinMachineLoader::MaximumDescriptionBytes;
constexpr int kMaximumDepth = ZELKinMachineLoader::MaximumDepth;

// One byte more than the bound is enough to know a description is over it.
QByteArray ReadBounded(QIODevice* device)
{
    return device ? device->read(kMaximumDescriptionBytes + 1) : QByteArray();
}

void CheckSize(const QByteArray& bytes)
{
    if (bytes.size() > kMaximumDescriptionBytes)
        throw ZELSysException(ZELKinMachineLoader::tr("The machine description is larger than %1 bytes")
                                  .arg(kMaximumDescriptionBytes));
}

// A streaming pass, which keeps no tree, finds nesting too deep before the
// DOM parser sees it. A syntax error ends the pass; the DOM parser finds it
// again.
void CheckDepth(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement && ++depth > kMaximumDepth)
            throw ZELSysException(ZELKinMachineLoader::tr("The machine description nests elements deeper than %1 levels")
                                      .arg(kMaximumDepth));
        if (token == QXmlStreamReader::EndElement)
            --depth;
    }
}

constexpr double RadiansPerSecondPerDegreePerMinute = 0.0002908882086657216;
constexpr double MillimetresPerSecondPerMetrePerMinute = 16.666666666666668;
constexpr double MillimetresPerMetre = 1000.0;

// Text that is not a number reads as 0, without a message.
double ReadNumber(const QDomElement& element, const QString& attribute)
{
    return element.attribute(attribute).toDouble();
}

double ReadOptionalNumber(const QDomElement& element, const QString& attribute)
{
    return element.hasAttribute(attribute) ? ReadNumber(element, attribute)
                                           : std::numeric_limits<double>::quiet_NaN();
}

// The first three of the comma-separated parts; none when there are fewer.
std::optional<std::array<double, 3>> ReadTriple(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() < 3)
        return std::nullopt;
    return std::array<double, 3>{parts.at(0).toDouble(), parts.at(1).toDouble(), parts.at(2).toDouble()};
}

// The single element of that name below `root`; the process ends when there
// is not exactly one, since nothing sensible can be built without it.
QDomElement RequireSingleElement(const QDomElement& root, const QString& tagName, const QString& fatalMessage)
{
    const QDomNodeList elements = root.elementsByTagName(tagName);
    if (elements.size() != 1)
        qFatal("%s", qPrintable(fatalMessage));
    return elements.at(0).toElement();
}

ZELKinJoint::Priority ReadPriority(const QDomElement& element, const QString& jointName)
{
    if (!element.hasAttribute(QStringLiteral("priority")))
        return ZELKinJoint::Medium;
    const QString priority = element.attribute(QStringLiteral("priority"));
    if (priority == QLatin1String("high"))
        return ZELKinJoint::High;
    if (priority == QLatin1String("low"))
        return ZELKinJoint::Low;
    if (priority != QLatin1String("medium"))
        qWarning().noquote().nospace() << ZELKinMachineLoader::tr("joint ") << jointName
                                       << ZELKinMachineLoader::tr(" specifies an invalid priority of ") << priority
                                       << ZELKinMachineLoader::tr(". Using 'medium' instead.");
    return ZELKinJoint::Medium;
}

ZELKinJoint* FindJoint(const ZELKinMachine* machine, const QString& label)
{
    for (ZELKinJoint* joint : machine->GetJoints()) {
        if (joint && joint->GetLabel() == label)
            return joint;
    }
    return nullptr;
}

} // namespace

ZELKinMachineLoader::ZELKinMachineLoader(ZELGeoContainer* container)
    : ZELKinMachineLoader(new ZELKinMachineLoaderPrivate(this, container))
{
}

ZELKinMachineLoader::ZELKinMachineLoader(ZELKinMachineLoaderPrivate* d)
    : d_ptr(d)
{
}

ZELKinMachineLoader::~ZELKinMachineLoader() = default;

void ZELKinMachineLoader::CheckBounds(const QByteArray& description)
{
    CheckSize(description);
    CheckDepth(description);
}

ZELKinMachine* ZELKinMachineLoader::LoadFromXML(QIODevice* device) const
{
    const QByteArray bytes = ReadBounded(device);
    CheckBounds(bytes);
    QDomDocument document;
    // The parser keeps what it built before an error; a description that
    // does not parse must read as an empty one, so that part is dropped.
    if (!document.setContent(bytes, false))
        document = QDomDocument();
    const QDomElement root = document.documentElement();

    if (root.attribute(QStringLiteral("type")) != QLatin1String("AFP"))
        return nullptr;
    ZELKinAFPMachine* machine = BuildMachine(root);

    const QDomElement variables = RequireSingleElement(root, QStringLiteral("variables"),
                                                       tr("Machine does not specify the <variables> element"));
    const QDomNodeList variableElements = variables.elementsByTagName(QStringLiteral("variable"));
    for (int i = 0; i < variableElements.size(); ++i)
        BuildVariable(machine, variableElements.at(i).toElement());

    const QDomElement joints = RequireSingleElement(root, QStringLiteral("joints"),
                                                    tr("Machine does not specify the <joints> element"));
    const QDomNodeList jointElements = joints.elementsByTagName(QStringLiteral("joint"));
    for (int i = 0; i < jointElements.size(); ++i)
        BuildJoint(machine, jointElements.at(i).toElement());

    return machine;
}

ZELKinAFPMachine* ZELKinMachineLoader::BuildMachine(const QDomElement& root) const
{
    const QDomElement maskElement = root.elementsByTagName(QStringLiteral("mask")).at(0).toElement();
    ZELCompTowMask mask(maskElement.attribute(QStringLiteral("numTows")).toInt(nullptr, 10), true);
    mask.SetString(maskElement.text().toLatin1());

    const QString ncFormat = root.attribute(QStringLiteral("ncformat"));
    const double headTravel = ReadNumber(root, QStringLiteral("head-travel"));
    const double cutDistance = ReadNumber(root, QStringLiteral("cut-distance"));
    const double addPinch = ReadNumber(root, QStringLiteral("add-pinch"));
    const double addDistance = ReadNumber(root, QStringLiteral("add-distance"));
    const double towWidth = ReadNumber(root, QStringLiteral("tow-width"));
    const QString materialAxis = root.attribute(QStringLiteral("material-axis"));
    const double rollerRadius = ReadNumber(root, QStringLiteral("roller-radius"));
    const QString solverConfig = root.attribute(QStringLiteral("solver-config"));
    const QString solver = root.attribute(QStringLiteral("solver"));
    const QString ncConfig = root.attribute(QStringLiteral("nc-config"));

    Q_D(const ZELKinMachineLoader);
    auto* machine = new ZELKinAFPMachine(d->container, QString(), ncFormat, ncConfig, solver, solverConfig, mask,
                                         rollerRadius, materialAxis, towWidth, addDistance, addPinch, cutDistance,
                                         headTravel);
    machine->Initialize();
    return machine;
}

void ZELKinMachineLoader::BuildVariable(ZELKinMachine* machine, const QDomElement& element) const
{
    const QString name = element.attribute(QStringLiteral("name"));
    if (!element.hasAttribute(QStringLiteral("max-speed")))
        throw ZELSysException(
            tr("No 'max-speed' attribute specified on machine variable '%1'.").arg(name));
    if (!element.hasAttribute(QStringLiteral("max-accel")))
        qFatal("%s", qPrintable(tr("No 'max-accel' attribute specified on machine variable.")));

    double minimum = ReadOptionalNumber(element, QStringLiteral("minimum"));
    double maximum = ReadOptionalNumber(element, QStringLiteral("maximum"));
    double speed = ReadNumber(element, QStringLiteral("max-speed"));
    double acceleration = ReadNumber(element, QStringLiteral("max-accel"));
    ZELKinVariable::VariableType type = ZELKinVariable::Linear;
    if (element.attribute(QStringLiteral("type")) == QLatin1String("rotary")) {
        type = ZELKinVariable::Rotary;
        minimum = qDegreesToRadians(minimum);
        maximum = qDegreesToRadians(maximum);
        speed *= RadiansPerSecondPerDegreePerMinute;
        acceleration = qDegreesToRadians(acceleration);
    } else {
        speed *= MillimetresPerSecondPerMetrePerMinute;
        acceleration *= MillimetresPerMetre;
    }

    auto* variable = new ZELKinVariable(machine, name, type, minimum, maximum, speed, acceleration);
    variable->Initialize();
}

void ZELKinMachineLoader::BuildJoint(ZELKinMachine* machine, const QDomElement& element) const
{
    const QString name = element.attribute(QStringLiteral("name"));

    const std::optional<std::array<double, 3>> vector = ReadTriple(element.attribute(QStringLiteral("vector")));
    if (!vector)
        throw ZELSysException(tr("Vector length does not match"));

    const QString variableName = element.attribute(QStringLiteral("variables"));
    ZELKinVariable* variable = machine->GetVariable(variableName);
    if (!variable)
        throw ZELSysException(
            tr("Could not find variable '%1' for joint '%2'").arg(variableName).arg(name));

    ZELKinJoint* parent = nullptr;
    if (element.hasAttribute(QStringLiteral("parent"))) {
        parent = FindJoint(machine, element.attribute(QStringLiteral("parent")));
        // The message carries the literal text "parentLabel" where the requested name might be expected.
        if (!parent)
            throw ZELSysException(tr("Could not find parent '%1' for joint '%2'")
                                      .arg(QStringLiteral("parentLabel"))
                                      .arg(name));
    }

    const ZELKinJoint::Priority priority = ReadPriority(element, name);

    std::optional<std::array<double, 3>> pivot;
    if (element.hasAttribute(QStringLiteral("pivot"))) {
        pivot = ReadTriple(element.attribute(QStringLiteral("pivot")));
        if (!pivot)
            throw ZELSysException(
                tr("Joint '%1' does not properly define the pivot point").arg(name));
    }

    const ZELMathVector axis((*vector)[0], (*vector)[1], (*vector)[2]);
    const QString type = element.attribute(QStringLiteral("type"));
    ZELKinJoint* joint = nullptr;
    if (type == QLatin1String("rotation")) {
        if (!pivot)
            throw ZELSysException(tr("Joint '%1' does not have a pivot defined").arg(name));
        joint = new ZELKinRotaryJoint(name, machine, variable, priority, axis,
                                      ZELMathPoint((*pivot)[0], (*pivot)[1], (*pivot)[2]), parent);
    } else if (type == QLatin1String("translation")) {
        joint = new ZELKinTranslationJoint(name, machine, variable, priority, axis, parent);
    } else {
        throw ZELSysException(tr("Unknown joint type '%1'").arg(type));
    }
    joint->Initialize();
}
