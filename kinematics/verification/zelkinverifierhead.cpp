#include "zelkinverifierhead_p.h"

#include <zelkinafpmachine.h>
#include <zelkinrotaryjoint.h>
#include <zelkintranslationjoint.h>
#include <zelkinvariable.h>
#include <zelsysexception.h>

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;

ZELMathVector ReadVector(const QString& key, const QString& value)
{
    const QStringList parts = value.split(QLatin1Char(','));
    std::array<double, 3> coordinates{};
    bool allNumbers = parts.size() == 3;
    for (int i = 0; allNumbers && i < 3; ++i)
        coordinates[i] = parts.at(i).simplified().toDouble(&allNumbers);
    if (!allNumbers)
        throw ZELSysException(QStringLiteral("the machine's wrist configuration gives %1 as '%2', not three numbers "
                                             "separated by ','")
                                  .arg(key, value));
    return ZELMathVector(coordinates[0], coordinates[1], coordinates[2]);
}

// The part of `vector` across the unit `axis`, made unit; throws when
// nothing is left of it.
ZELMathVector Across(const ZELMathVector& vector, const ZELMathVector& axis, const QString& what)
{
    const ZELMathVector across = vector - axis * axis.Dot(vector);
    if (across.GetLength() < 1e-9)
        throw ZELSysException(
            QStringLiteral("the machine's wrist configuration gives %1 along its joint's axis").arg(what));
    return across.GetNormalized();
}

} // namespace

ZELKinVerifierHead::ZELKinVerifierHead(const ZELKinAFPMachine& machine)
    : m_kinematics(machine)
    , m_rollerRadius(machine.GetRollerRadius())
{
    const QList<ZELKinVariable*> variables = machine.GetVariables();
    const QList<ZELKinJoint*> chain = m_kinematics.GetChain();
    for (const ZELKinJoint* joint : chain) {
        if (qobject_cast<const ZELKinRotaryJoint*>(joint)) {
            m_rotaryJoints.append(joint);
            m_rotaryVariables.append(int(variables.indexOf(joint->GetVariable(0))));
        }
    }
    FindSlides(machine, chain);
    FindWrist(chain);
    m_kinematics.SetHomeToolFrame(HomeToolFrame(machine.GetSolverConfig()));
    m_tipOffset = m_kinematics.GetHomeToolFrame().GetOrigin() - ZELMathPoint();
}

// Under TRAORI the X, Y and Z words are the programmed point, counted
// from where the tool tip stands with every axis at zero: the slides are
// whatever brings the tip there.
// Under TRAORI the X, Y and Z words are the programmed point, counted from
// where the tool tip stands with every axis at zero: the slides are whatever
// brings the tip there.
ZELKinVerifierHead::Pose ZELKinVerifierHead::PoseOf(const QVector<double>& values) const
{
    Pose pose;
    pose.centre = ZELMathPoint(values.at(m_slides.at(0)), values.at(m_slides.at(1)), values.at(m_slides.at(2)));
    pose.axes = m_kinematics.GetValuesForToolTip(values, pose.centre + m_tipOffset);
    const ZELMathAxis tool = m_kinematics.GetToolFrame(pose.axes);
    pose.normal = tool.GetWDirection();
    pose.travel = tool.GetUDirection();
    for (const ZELKinJoint* joint : m_rotaryJoints)
        pose.rotaryAxes.append(m_kinematics.GetAxis(pose.axes, joint));
    return pose;
}

double ZELKinVerifierHead::SingularityMarginOf(const Pose& pose) const
{
    const double angle = pose.normal.GetAngleTo(pose.rotaryAxes.at(m_firstRoll));
    return std::min(angle, kPi - angle);
}

void ZELKinVerifierHead::FindSlides(const ZELKinAFPMachine& machine, const QList<ZELKinJoint*>& chain)
{
    const QList<ZELKinVariable*> variables = machine.GetVariables();
    QList<const ZELKinVariable*> slides;
    for (const ZELKinJoint* joint : chain) {
        if (qobject_cast<const ZELKinTranslationJoint*>(joint))
            slides.append(joint->GetVariable(0));
    }
    for (const QString& label : {QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z")}) {
        const ZELKinVariable* variable = machine.GetVariable(label);
        if (!variable || !slides.contains(variable) || slides.size() != 3)
            throw ZELSysException(QStringLiteral("the machine's three slides must be driven by the variables X, Y "
                                                 "and Z, which the NC's TRAORI point is written in"));
        m_slides.append(int(variables.indexOf(variable)));
    }
}

void ZELKinVerifierHead::FindWrist(const QList<ZELKinJoint*>& chain)
{
    const qsizetype count = chain.size();
    for (qsizetype i = std::max<qsizetype>(0, count - 3); i < count; ++i) {
        if (count < 3 || !qobject_cast<const ZELKinRotaryJoint*>(chain.at(i)))
            throw ZELSysException(QStringLiteral("the machine's joint chain must end in a wrist of three rotary "
                                                 "joints: first roll, bend and second roll"));
    }
    m_bend = qobject_cast<const ZELKinRotaryJoint*>(chain.at(count - 2));
    m_secondRoll = qobject_cast<const ZELKinRotaryJoint*>(chain.at(count - 1));
    m_firstRoll = int(m_rotaryJoints.indexOf(chain.at(count - 3)));
}

// The wrist configuration ("key: value" items separated by ";") gives
// the tip with every axis at zero, and the zero directions of the bend
// and the second roll: the tool points along the bend's, so the normal
// is its opposite, and travels along the second roll's.
ZELMathAxis ZELKinVerifierHead::HomeToolFrame(const QString& configuration) const
{
    ZELMathVector tip;
    ZELMathVector bendReference(0, 0, 1);
    ZELMathVector secondRollReference(1, 0, 0);
    for (const QString& item : configuration.split(QLatin1Char(';'))) {
        const QStringList parts = item.split(QLatin1Char(':'));
        const QString key = parts.at(0).simplified();
        const QString value = parts.value(1).simplified();
        if (key == QLatin1String("tip-point"))
            tip = ReadVector(key, value);
        else if (key == QLatin1String("bend-reference"))
            bendReference = ReadVector(key, value);
        else if (key == QLatin1String("second-roll-reference"))
            secondRollReference = ReadVector(key, value);
    }
    const ZELMathVector normal = -Across(bendReference, m_bend->GetVector().GetNormalized(),
                                         QStringLiteral("bend-reference"));
    const ZELMathVector roll = Across(secondRollReference, m_secondRoll->GetVector().GetNormalized(),
                                      QStringLiteral("second-roll-reference"));
    const ZELMathVector travel = Across(roll, normal, QStringLiteral("second-roll-reference"));
    return ZELMathAxis(ZELMathPoint() + tip, travel, normal.Cross(travel), normal);
}
