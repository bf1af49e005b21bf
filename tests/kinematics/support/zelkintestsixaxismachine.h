#ifndef ZELKINTESTSIXAXISMACHINE_H
#define ZELKINTESTSIXAXISMACHINE_H

#include "zelkintestaccess.h"

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>
#include <zelkinprogram.h>
#include <zelkinvariable.h>

/*!
    A fibre placement machine with the axes X, Y, Z (linear, from
    -`linearLimit` to `linearLimit` mm), A, C1 (rotary, turning at
    `rotarySpeed` rad/s at the most) and U (linear, the material axis), in
    that order, and an empty program for it, in a container of its own: the
    machine the NC writer's tests and benchmarks write for.
*/
struct ZELKinTestSixAxisMachine
{
    explicit ZELKinTestSixAxisMachine(const ZELKinTestHead& head = ZELKinTestHead(), double linearLimit = 1000.0,
                                      double rotarySpeed = 500.0)
        : machine(ZELKinTestAccess::CreateMachine(&container, head))
        , x(Linear(QStringLiteral("X"), linearLimit))
        , y(Linear(QStringLiteral("Y"), linearLimit))
        , z(Linear(QStringLiteral("Z"), linearLimit))
        , a(Rotary(QStringLiteral("A"), rotarySpeed))
        , c1(Rotary(QStringLiteral("C1"), rotarySpeed))
        , u(Linear(QStringLiteral("U"), linearLimit))
        , program(ZELKinTestAccess::CreateProgram(machine))
    {
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    ZELKinVariable* x;
    ZELKinVariable* y;
    ZELKinVariable* z;
    ZELKinVariable* a;
    ZELKinVariable* c1;
    ZELKinVariable* u;
    ZELKinProgram* program;

private:
    ZELKinVariable* Linear(const QString& name, double limit) const
    {
        return ZELKinTestAccess::CreateVariable(machine, name, ZELKinVariable::Linear, -limit, limit);
    }

    ZELKinVariable* Rotary(const QString& name, double speed) const
    {
        return ZELKinTestAccess::CreateVariable(machine, name, ZELKinVariable::Rotary, -1000.0, 1000.0, speed);
    }
};

#endif // ZELKINTESTSIXAXISMACHINE_H
