#ifndef ZELKINTESTCOMMAND_H
#define ZELKINTESTCOMMAND_H

#include <zelkincommand.h>

// A command that is not a position, as a tool change or a tow command is.
// Record: that of ZELKinCommand.
class ZELKinTestCommand : public ZELKinCommand
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELKinTestCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Inserts the new command into the script at `index` (-1 appends).
    explicit ZELKinTestCommand(ZELKinScript* script, int index = -1);
    ~ZELKinTestCommand() override;

private:
    void _constructor_checker();
};

#endif // ZELKINTESTCOMMAND_H
