#ifndef ZELKINCOMMAND_H
#define ZELKINCOMMAND_H

#include "zelkinobject.h"

#include <memory>

class ZELKinCommandPrivate;
class ZELKinScript;

/*!
    The base of every step that a script holds: positions, tool changes, tow
    and probe commands.

    A command is bound to its script for life: its constructor links the
    script and has the script insert it, and it is never moved. The script
    holds a counted link to the command and the command one to its script.

    ZELKinCommand owns the private object of its class tree.

    Record (after the geometry part): the script (reference). The index is
    not saved, and loading a command does not insert it into its script: the
    script's own record restores its list.
*/
class ZELKINEMATICS_EXPORT ZELKinCommand : public ZELKinObject
{
    Q_OBJECT

public:
    ~ZELKinCommand() override;

    //! The script that holds the command; null if it has gone.
    ZELKinScript* GetScript() const;
    //! The index that the script gave the command when it was inserted.
    //! Commands inserted before it later do not change it, and it is not
    //! saved: a loaded command answers 0.
    int GetIndex() const;

    void Save(ZELGeoStream& stream) const override;
    //! Throws ZELGeoGeometryNotFoundException when the saved script reference
    //! names no script of the container being loaded; the script is then null.
    void Load(ZELGeoStream& stream) override;

protected:
    /*!
        Creates the command in the script's container, links the script, then
        has the script insert it at `index` (-1 appends) and keeps the index
        the script gives back. Throws what the script's insertion throws
        (ZELSysOutOfBoundsException for an index past the end,
        ZELSysNotImplementedException for a script that takes no commands
        itself); the command is then in no list. A null script gives a
        command outside any container and any script.
    */
    ZELKinCommand(ZELKinCommandPrivate* d, ZELKinScript* script, int index);
    //! Loading form: no script until Load.
    ZELKinCommand(ZELKinCommandPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

    std::unique_ptr<ZELKinCommandPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinCommand)
    Q_DISABLE_COPY_MOVE(ZELKinCommand)
};

#endif // ZELKINCOMMAND_H
