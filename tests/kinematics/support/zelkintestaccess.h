#ifndef ZELKINTESTACCESS_H
#define ZELKINTESTACCESS_H

#include <zelkinafpmachine.h>
#include <zelkincourselink.h>
#include <zelkingcoderecord.h>
#include <zelkingcoderecord_p.h>
#include <zelkinplydescription.h>
#include <zelkinposition.h>
#include <zelkinprobecommand.h>
#include <zelkinprobeprocedure.h>
#include <zelkinprogram.h>
#include <zelkinrolllayupposition.h>
#include <zelkinrolllayupprocedure.h>
#include <zelkinrotaryjoint.h>
#include <zelkintoolchange.h>
#include <zelkintowcommand.h>
#include <zelkintowcourse.h>
#include <zelkintowfeedcommand.h>
#include <zelkintranslationjoint.h>
#include <zelkinvariable.h>

#include <zelgeocontainer.h>
#include <zelsysexception.h>

#include <QBuffer>

#include <limits>

// Valid head parameters of a 16-tow machine, for tests to vary one at a time.
struct ZELKinTestHead
{
    ZELCompTowMask mask = ZELCompTowMask(16, true);
    double rollerRadius = 30.0;
    QString materialVariable = QStringLiteral("U");
    double towWidth = 6.35;
    double addDistance = 50.8;
    double addPinch = 12.7;
    double cutDistance = 76.2;
    double headTravel = 101.6;
};

// The tests' one way to the private creating constructors of the machine
// classes, which otherwise only the machine loader calls.
class ZELKinTestAccess
{
public:
    using Head = ZELKinTestHead;

    static ZELKinAFPMachine* CreateMachine(ZELGeoContainer* container, const Head& head = Head(),
                                           const QString& solver = QStringLiteral("RBR"))
    {
        return new ZELKinAFPMachine(container, QStringLiteral("gantry"), QStringLiteral("AFPGCode"),
                                    QStringLiteral("nc settings"), solver, QStringLiteral("tip-point: 0,0,-330"),
                                    head.mask, head.rollerRadius, head.materialVariable, head.towWidth,
                                    head.addDistance, head.addPinch, head.cutDistance, head.headTravel);
    }

    static ZELKinVariable* CreateVariable(ZELKinMachine* machine, const QString& name,
                                          ZELKinVariable::VariableType type = ZELKinVariable::Linear,
                                          double minimum = -1000.0, double maximum = 1000.0,
                                          double maxVelocity = 500.0, double maxAcceleration = 2000.0)
    {
        return new ZELKinVariable(machine, name, type, minimum, maximum, maxVelocity, maxAcceleration);
    }

    static ZELKinRotaryJoint* CreateRotaryJoint(const QString& name, ZELKinMachine* machine, ZELKinVariable* variable,
                                                ZELKinJoint* parent = nullptr,
                                                const ZELMathVector& vector = ZELMathVector(0, 0, 1),
                                                const ZELMathPoint& pivot = ZELMathPoint(),
                                                ZELKinJoint::Priority priority = ZELKinJoint::Medium)
    {
        return new ZELKinRotaryJoint(name, machine, variable, priority, vector, pivot, parent);
    }

    static ZELKinTranslationJoint* CreateTranslationJoint(const QString& name, ZELKinMachine* machine,
                                                          ZELKinVariable* variable, ZELKinJoint* parent = nullptr,
                                                          const ZELMathVector& vector = ZELMathVector(1, 0, 0),
                                                          ZELKinJoint::Priority priority = ZELKinJoint::Medium)
    {
        return new ZELKinTranslationJoint(name, machine, variable, priority, vector, parent);
    }

    static ZELKinProgram* CreateProgram(ZELKinMachine* machine) { return new ZELKinProgram(machine); }

    static ZELKinProbeProcedure* CreateProbeProcedure(ZELKinProgram* program)
    {
        return new ZELKinProbeProcedure(program);
    }

    //! Appends a new position to the probe procedure.
    static ZELKinPosition* CreatePosition(ZELKinProbeProcedure* procedure) { return new ZELKinPosition(procedure); }

    //! Appends a new probe command to the probe procedure.
    static ZELKinProbeCommand* CreateProbeCommand(ZELKinProbeProcedure* procedure,
                                                  ZELKinProbeCommand::TargetShape shape, double diameter)
    {
        return new ZELKinProbeCommand(procedure, shape, diameter);
    }

    // Roll layup procedures, their links and courses and what they hold.

    static ZELKinRollLayupProcedure* CreateRollLayupProcedure(ZELKinProgram* program, double addFeedrate,
                                                              double cutFeedrate)
    {
        return new ZELKinRollLayupProcedure(program, addFeedrate, cutFeedrate);
    }

    static ZELKinCourseLink* CreateCourseLink(ZELKinRollLayupProcedure* procedure)
    {
        return new ZELKinCourseLink(procedure);
    }

    //! Inserts a new position into the link at `index` (-1 appends).
    static ZELKinPosition* CreatePosition(ZELKinCourseLink* link, int index = -1)
    {
        return new ZELKinPosition(link, index);
    }

    //! Mind the order: roller first, then head.
    static ZELKinToolChange* CreateToolChange(ZELKinCourseLink* link, const QString& newRoller,
                                              const QString& newHead)
    {
        return new ZELKinToolChange(link, newRoller, newHead);
    }

    static ZELKinTowCourse* CreateTowCourse(ZELKinRollLayupProcedure* procedure, const ZELCompTowMask& mask)
    {
        return new ZELKinTowCourse(procedure, mask);
    }

    static ZELKinRollLayupPosition* CreateRollLayupPosition(ZELKinCourse* course)
    {
        return new ZELKinRollLayupPosition(course);
    }

    static ZELKinTowCommand* CreateTowCommand(ZELKinTowCourse* course, const ZELCompTowMask& mask,
                                              ZELKinTowCommand::CommandType type, int index = -1)
    {
        return new ZELKinTowCommand(course, mask, type, index);
    }

    static ZELKinTowFeedCommand* CreateTowFeedCommand(ZELKinTowCourse* course, const QList<double>& rates,
                                                      int index = -1)
    {
        return new ZELKinTowFeedCommand(course, rates, index);
    }

    //! The body that a G-code record shares with its copies.
    static const ZELKinGCodeRecordPrivate* BodyOf(const ZELKinGCodeRecord& record) { return record.d_func(); }

    //! The body that a ply description shares with its copies.
    static const void* SharedBodyOf(const ZELKinPlyDescription& ply) { return ply.d_ptr.constData(); }
};

namespace ZELTest {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

//! Saves the whole container to bytes and loads them into `target`.
inline QList<ZELGeoGeometry*> CopyContainer(const ZELGeoContainer& source, ZELGeoContainer& target)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    source.Save(&buffer);
    buffer.seek(0);
    return target.Load(&buffer);
}

//! The first geometry of class T in the container, in creation order.
template <typename T>
T* FirstOf(const ZELGeoContainer& container)
{
    for (ZELGeoGeometry* geometry : container.GetGeometries()) {
        if (auto* object = qobject_cast<T*>(geometry))
            return object;
    }
    return nullptr;
}

} // namespace ZELTest

#endif // ZELKINTESTACCESS_H
