#ifndef ZELKINMACHINESUMMARY_H
#define ZELKINMACHINESUMMARY_H

#include <QString>

class ZELKinAFPMachine;

/*!
    A machine as text for a person at a terminal: the machine's settings, its
    head, its variables and its joint tree (each joint indented under its
    parent). Values are shown in the units of the machine description, so
    that they read as the description's author wrote them: lengths in mm,
    angles in degrees, linear speeds in m/min and accelerations in m/s^2,
    rotary speeds in deg/min and accelerations in deg/s^2.
*/
namespace ZELKinMachineSummary {

QString ToText(const ZELKinAFPMachine& machine);

} // namespace ZELKinMachineSummary

#endif // ZELKINMACHINESUMMARY_H
