#ifndef ZELKINCOMMANDINSERTION_P_H
#define ZELKINCOMMANDINSERTION_P_H

#include "zelkincommand.h"
#include "zelkincountedlinklist_p.h"
#include "zelkinscript.h"

#include <zelsysoutofboundsexception.h>

namespace ZELKinCommandInsertion {

/*!
    The insertion rule that scripts keeping one plain list of commands share
    (the course link among them): a negative index appends and gives the new
    count minus one; an index in 0..count - 1 inserts before the command now
    there and gives that index. An index at or past the count throws
    ZELSysOutOfBoundsException(index, -1, count - 1, true, true), -1 being
    the append value, and inserts nothing. `script` holds `commands`.
*/
inline int ByCommonRule(ZELKinScript* script, ZELKinCountedLinkList<ZELKinCommand>& commands, ZELKinCommand* command,
                        int index)
{
    const int count = commands.GetCount();
    if (index >= count)
        throw ZELSysOutOfBoundsException(index, -1, count - 1, true, true);
    script->AboutToChange();
    if (index < 0) {
        commands.Append(command);
        return count;
    }
    commands.Insert(index, command);
    return index;
}

} // namespace ZELKinCommandInsertion

#endif // ZELKINCOMMANDINSERTION_P_H
