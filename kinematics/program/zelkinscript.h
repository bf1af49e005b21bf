#ifndef ZELKINSCRIPT_H
#define ZELKINSCRIPT_H

#include "zelkinobject.h"

#include <functional>
#include <memory>

class ZELKinCommand;
class ZELKinPosition;
class ZELKinProgram;
class ZELKinScriptPrivate;
class ZELTPPoint;

/*!
    The base of every container of commands: the program, its procedures,
    and the courses and course links of a procedure. A program is a tree of
    scripts whose leaves hold the commands.

    Every script answers GetNumCommands and GetCommand over one flat index. A
    script that holds other scripts numbers their commands one child after
    the other, in the order of its children, so a program-wide, a
    procedure-wide and a course-wide index agree with one another.

    A command joins its script in the command's own constructor, which asks
    the script's private class to insert it. Scripts whose commands all live
    in their children (the program and the procedures that hold courses)
    refuse with ZELSysNotImplementedException.

    ZELKinScript owns the private object of its class tree. It writes nothing
    of its own to the record.
*/
class ZELKINEMATICS_EXPORT ZELKinScript : public ZELKinObject
{
    Q_OBJECT

public:
    ~ZELKinScript() override;

    //! The number of commands over the flat index.
    virtual int GetNumCommands() const = 0;
    //! The command at a flat index; null if that command has been destroyed.
    //! Each script states what an index outside 0..GetNumCommands() - 1 does.
    virtual ZELKinCommand* GetCommand(int index) const = 0;
    //! The program the script belongs to (a program answers itself); null if
    //! it has none or it has gone.
    virtual ZELKinProgram* GetProgram() const = 0;

    //! The first command, in index order, that is a position; null if the
    //! script has no commands or none is a position. Does not throw.
    ZELKinPosition* GetFirstPosition() const;
    //! The last command, in index order, that is a position; null if none.
    //! Does not throw.
    ZELKinPosition* GetLastPosition() const;
    //! How many of the commands are positions. Does not throw.
    int GetNumPositions() const;
    //! The first position, in index order, whose toolpath point is `point`
    //! (the same object; a null point finds the first position without one).
    //! When one is found and `index` is not null, its flat command index is
    //! stored there; otherwise `index` is left untouched. Does not throw.
    ZELKinPosition* GetCorrespondingPosition(const ZELTPPoint* point, int* index) const;

protected:
    //! Receives the commands of a walk one at a time (null for a destroyed
    //! command); returns false to end the walk.
    using CommandVisitor = std::function<bool(ZELKinCommand* command)>;
    enum class WalkOrder { Forward, Backward };

    ZELKinScript(ZELKinScriptPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

    /*!
        Hands every command to `visit` in flat index order (Forward) or in
        the reverse order (Backward), until `visit` returns false; returns
        false when the walk was ended that way. It meets exactly the commands
        that GetCommand gives for 0..GetNumCommands() - 1.

        The base asks GetCommand for each index, which costs one step per
        command in a script that keeps its commands in one list. A script
        with children overrides it to walk each child in turn, so that a walk
        over a whole program costs one step per command, where asking the
        program's GetCommand for every index would cost a walk over the
        children for each of them.
    */
    virtual bool VisitCommands(const CommandVisitor& visit, WalkOrder order) const;

    std::unique_ptr<ZELKinScriptPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinScript)
    Q_DISABLE_COPY_MOVE(ZELKinScript)
};

#endif // ZELKINSCRIPT_H
