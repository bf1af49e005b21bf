#include "zelkinforwardkinematics.h"
#include "zelkinforwardkinematics_p.h"

#include "zelkinmachine.h"
#include "zelkinrotaryjoint.h"
#include "zelkintranslationjoint.h"
#include "zelkinvariable.h"

#include <zelsysexception.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// Slides whose directions span less volume than this are taken as lying in
// one plane: they cannot reach every tip.
constexpr double kDegenerateSpan = 1e-12;

bool HasChildren(const ZELKinJoint* joint)
{
    const QList<ZELKinJoint*> children = joint->GetChildJoints();
    return std::any_of(children.cbegin(), children.cend(), [](const ZELKinJoint* child) { return child; });
}

QList<ZELKinJoint*> JointsWithoutChildren(const ZELKinMachine& machine)
{
    QList<ZELKinJoint*> ends;
    for (ZELKinJoint* joint : machine.GetJoints()) {
        if (joint && !HasChildren(joint))
            ends.append(joint);
    }
    return ends;
}

// From the root down to `end`. The loader builds parents before their
// children, so the walk up ends; the bound keeps a tree built otherwise
// from looping.
QList<ZELKinJoint*> ChainTo(ZELKinJoint* end, int jointCount)
{
    QList<ZELKinJoint*> chain;
    for (ZELKinJoint* joint = end; joint && chain.size() <= jointCount; joint = joint->GetParent())
        chain.prepend(joint);
    return chain;
}

QList<ZELKinJoint*> ChainOf(const ZELKinMachine& machine)
{
    const QList<ZELKinJoint*> ends = JointsWithoutChildren(machine);
    if (ends.isEmpty())
        throw ZELSysException(ZELKinForwardKinematics::tr("the machine has no joints"));
    if (ends.size() > 1)
        throw ZELSysException(ZELKinForwardKinematics::tr("the joint tree ends in more than one joint: '%1' and '%2'")
                                  .arg(ends.at(0)->GetLabel(), ends.at(1)->GetLabel()));
    return ChainTo(ends.first(), machine.GetNumJoints());
}

ZELKinForwardKinematicsPrivate::Link LinkOf(ZELKinJoint* joint, const QList<ZELKinVariable*>& variables)
{
    ZELKinForwardKinematicsPrivate::Link link;
    link.joint = joint;
    link.variable = int(variables.indexOf(joint->GetVariable(0)));
    if (!joint->GetVariable(0) || link.variable < 0)
        throw ZELSysException(ZELKinForwardKinematics::tr("joint '%1' is not driven by a variable of the machine")
                                  .arg(joint->GetLabel()));
    if (const auto* rotary = qobject_cast<const ZELKinRotaryJoint*>(joint)) {
        link.rotary = true;
        link.direction = rotary->GetVector().GetNormalized();
        link.pivot = rotary->GetPivot();
    } else if (const auto* translation = qobject_cast<const ZELKinTranslationJoint*>(joint)) {
        link.direction = translation->GetVector().GetNormalized();
    }
    return link;
}

// Rodrigues' formula: `vector` turned by `angle` about the unit `axis`.
ZELMathVector Turned(const ZELMathVector& vector, const ZELMathVector& axis, double angle)
{
    const double cosine = std::cos(angle);
    return vector * cosine + axis.Cross(vector) * std::sin(angle) + axis * (axis.Dot(vector) * (1.0 - cosine));
}

// The home motion of one joint by `value`: a frame that carries home points
// to where the joint puts them.
ZELMathAxis Exponential(const ZELKinForwardKinematicsPrivate::Link& link, double value)
{
    if (!link.rotary)
        return ZELMathAxis(ZELMathPoint() + link.direction * value, ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                           ZELMathVector(0, 0, 1));
    const ZELMathVector u = Turned(ZELMathVector(1, 0, 0), link.direction, value);
    const ZELMathVector v = Turned(ZELMathVector(0, 1, 0), link.direction, value);
    const ZELMathVector w = Turned(ZELMathVector(0, 0, 1), link.direction, value);
    // The pivot stays where it is: the origin goes to pivot - R * pivot.
    const ZELMathVector pivot = link.pivot - ZELMathPoint();
    const ZELMathVector turnedPivot = u * pivot.GetX() + v * pivot.GetY() + w * pivot.GetZ();
    return ZELMathAxis(link.pivot - turnedPivot, u, v, w);
}

double ValueOf(const QVector<double>& values, int variable)
{
    return variable < values.size() ? values.at(variable) : kNaN;
}

double Determinant(const ZELMathVector& a, const ZELMathVector& b, const ZELMathVector& c)
{
    return a.Dot(b.Cross(c));
}

} // namespace

ZELKinForwardKinematicsPrivate::ZELKinForwardKinematicsPrivate(ZELKinForwardKinematics* q,
                                                               const ZELKinMachine& machine)
    : q_ptr(q)
{
    const QList<ZELKinVariable*> variables = machine.GetVariables();
    variableCount = int(variables.size());
    for (ZELKinJoint* joint : ChainOf(machine))
        chain.append(LinkOf(joint, variables));
}

int ZELKinForwardKinematicsPrivate::IndexOf(const ZELKinJoint* joint) const
{
    for (int i = 0; i < chain.size(); ++i) {
        if (chain.at(i).joint == joint)
            return i;
    }
    throw ZELSysException(ZELKinForwardKinematics::tr("joint '%1' is not in the chain")
                              .arg(joint ? joint->GetLabel() : QString()));
}

ZELMathAxis ZELKinForwardKinematicsPrivate::Compose(const QVector<double>& values, int count) const
{
    ZELMathAxis motion;
    for (int i = 0; i < count; ++i)
        motion = motion * Exponential(chain.at(i), ValueOf(values, chain.at(i).variable));
    return motion;
}

QList<int> ZELKinForwardKinematicsPrivate::TranslationLinks() const
{
    QList<int> links;
    for (int i = 0; i < chain.size(); ++i) {
        if (!chain.at(i).rotary)
            links.append(i);
    }
    return links;
}

ZELKinForwardKinematics::ZELKinForwardKinematics(const ZELKinMachine& machine)
    : ZELKinForwardKinematics(new ZELKinForwardKinematicsPrivate(this, machine))
{
}

ZELKinForwardKinematics::ZELKinForwardKinematics(ZELKinForwardKinematicsPrivate* d)
    : d_ptr(d)
{
}

ZELKinForwardKinematics::~ZELKinForwardKinematics() = default;

QList<ZELKinJoint*> ZELKinForwardKinematics::GetChain() const
{
    Q_D(const ZELKinForwardKinematics);
    QList<ZELKinJoint*> joints;
    for (const ZELKinForwardKinematicsPrivate::Link& link : d->chain)
        joints.append(link.joint);
    return joints;
}

ZELMathAxis ZELKinForwardKinematics::GetHomeToolFrame() const
{
    Q_D(const ZELKinForwardKinematics);
    return d->homeTool;
}

void ZELKinForwardKinematics::SetHomeToolFrame(const ZELMathAxis& home)
{
    Q_D(ZELKinForwardKinematics);
    d->homeTool = home;
}

ZELMathAxis ZELKinForwardKinematics::GetPose(const QVector<double>& values, const ZELKinJoint* joint) const
{
    Q_D(const ZELKinForwardKinematics);
    return d->Compose(values, d->IndexOf(joint) + 1);
}

ZELMathVector ZELKinForwardKinematics::GetAxis(const QVector<double>& values, const ZELKinJoint* joint) const
{
    Q_D(const ZELKinForwardKinematics);
    // A joint's own motion leaves its axis where it is: only its parents turn it.
    const int index = d->IndexOf(joint);
    return d->Compose(values, index) * d->chain.at(index).direction;
}

ZELMathAxis ZELKinForwardKinematics::GetToolFrame(const QVector<double>& values) const
{
    Q_D(const ZELKinForwardKinematics);
    return d->Compose(values, int(d->chain.size())) * d->homeTool;
}

QVector<double> ZELKinForwardKinematics::GetValuesForToolTip(const QVector<double>& values,
                                                            const ZELMathPoint& tip) const
{
    Q_D(const ZELKinForwardKinematics);
    const QList<int> slides = d->TranslationLinks();
    if (slides.size() != 3)
        throw ZELSysException(tr("placing the tool tip needs three translation joints in the chain, not %1")
                                  .arg(slides.size()));
    QVector<double> placed = values;
    if (placed.size() < d->variableCount)
        placed.resize(d->variableCount, kNaN);
    for (const int slide : slides)
        placed[d->chain.at(slide).variable] = 0.0;
    // With the rotary values fixed the tip moves by each slide's value along
    // that slide's turned direction, whatever the order of the joints.
    const ZELMathVector reach = tip - GetToolFrame(placed).GetOrigin();
    ZELMathVector directions[3];
    for (int i = 0; i < 3; ++i)
        directions[i] = GetAxis(placed, d->chain.at(slides.at(i)).joint);
    const double span = Determinant(directions[0], directions[1], directions[2]);
    const bool spansSpace = std::abs(span) > kDegenerateSpan;
    const double solved[3] = {Determinant(reach, directions[1], directions[2]) / span,
                              Determinant(directions[0], reach, directions[2]) / span,
                              Determinant(directions[0], directions[1], reach) / span};
    for (int i = 0; i < 3; ++i)
        placed[d->chain.at(slides.at(i)).variable] = spansSpace ? solved[i] : kNaN;
    return placed;
}
