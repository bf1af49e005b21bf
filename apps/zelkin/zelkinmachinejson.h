#ifndef ZELKINMACHINEJSON_H
#define ZELKINMACHINEJSON_H

#include <QJsonObject>

class ZELKinAFPMachine;

/*!
    A machine as one JSON object, for scripts and other tools. Values are in
    the library's internal units (mm, rad, per second); a value that is not a
    finite number (NaN for "no limit", say) is null. The fields are listed in
    docs/zelkin.md.
*/
namespace ZELKinMachineJson {

QJsonObject ToJson(const ZELKinAFPMachine& machine);

} // namespace ZELKinMachineJson

#endif // ZELKINMACHINEJSON_H
