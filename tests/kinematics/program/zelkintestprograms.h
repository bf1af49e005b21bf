#ifndef ZELKINTESTPROGRAMS_H
#define ZELKINTESTPROGRAMS_H

#include "zelkintestposition.h"
#include "zelkintestprocedure.h"
#include "zelkintestscript.h"

#include <zelkintestaccess.h>

#include <QList>

#include <initializer_list>

namespace ZELTest {

//! Appends `count` positions to `script` and returns them in order.
inline QList<ZELKinPosition*> AddPositions(ZELKinScript* script, int count)
{
    QList<ZELKinPosition*> positions;
    for (int i = 0; i < count; ++i)
        positions.append(new ZELKinTestPosition(script));
    return positions;
}

//! A new procedure of `program` with one script per entry of `scriptSizes`,
//! each holding that many positions.
inline ZELKinTestProcedure* AddProcedure(ZELKinProgram* program, std::initializer_list<int> scriptSizes)
{
    auto* procedure = new ZELKinTestProcedure(program);
    for (const int size : scriptSizes)
        AddPositions(new ZELKinTestScript(procedure), size);
    return procedure;
}

//! Every command of `script`, asked for one flat index after the other.
inline QList<ZELKinCommand*> CommandsByIndex(const ZELKinScript& script)
{
    QList<ZELKinCommand*> commands;
    for (int index = 0; index < script.GetNumCommands(); ++index)
        commands.append(script.GetCommand(index));
    return commands;
}

} // namespace ZELTest

#endif // ZELKINTESTPROGRAMS_H
