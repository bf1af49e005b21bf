#ifndef ZELKINSCRIPT_P_H
#define ZELKINSCRIPT_P_H

#include "zelkinscript.h"

#include <zelsysoutofboundsexception.h>

#include <QList>

// The private classes of the program model are exported so that scripts and
// commands made outside the library (the tests' own) can derive from them.
class ZELKINEMATICS_EXPORT ZELKinScriptPrivate
{
    Q_DECLARE_PUBLIC(ZELKinScript)

public:
    using CommandVisitor = ZELKinScript::CommandVisitor;
    using WalkOrder = ZELKinScript::WalkOrder;

    explicit ZELKinScriptPrivate(ZELKinScript* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELKinScriptPrivate() = default;

    static ZELKinScriptPrivate* get(ZELKinScript* script) { return script->d_func(); }

    //! The container a new object made for `owner` lives in: the owner's,
    //! or none without an owner.
    static ZELGeoContainer* ContainerOf(const ZELGeoGeometry* owner)
    {
        return owner ? owner->GetContainer() : nullptr;
    }

    //! Takes `command`, whose script link is already this script, into the
    //! script's own command list at `index` (-1 appends) and returns the
    //! index it now has there. Each script states its rule and what it throws.
    virtual int InsertCommand(ZELKinCommand* command, int index) = 0;
    //! The index of `command` in the script's own command list, or -1.
    virtual int IndexOfCommand(ZELKinCommand* command) const = 0;

    // The flat command view of a script with children, which number their
    // commands one child after the other. A child that has gone holds no
    // commands.

    template <typename Script>
    static int CountCommands(const QList<Script*>& children)
    {
        int count = 0;
        for (const Script* child : children)
            count += child ? child->GetNumCommands() : 0;
        return count;
    }

    //! The command at flat `index` of `script`, whose children these are.
    //! Throws ZELSysOutOfBoundsException(index, 0, script.GetNumCommands(),
    //! true, true) for a negative index, and the same bounds with what is
    //! left of the index after the children's counts were taken off it for
    //! an index at or past the end.
    template <typename Script>
    static ZELKinCommand* CommandAt(const ZELKinScript& script, const QList<Script*>& children, int index)
    {
        if (index < 0)
            throw ZELSysOutOfBoundsException(index, 0, script.GetNumCommands(), true, true);
        int residual = index;
        for (const Script* child : children) {
            const int count = child ? child->GetNumCommands() : 0;
            if (residual < count)
                return child->GetCommand(residual);
            residual -= count;
        }
        throw ZELSysOutOfBoundsException(residual, 0, script.GetNumCommands(), true, true);
    }

    //! Walks the children's commands, child after child (both reversed for
    //! a backward walk), as ZELKinScript::VisitCommands does for one script.
    template <typename Script>
    static bool VisitChildren(const QList<Script*>& children, const CommandVisitor& visit, WalkOrder order)
    {
        if (order == WalkOrder::Forward)
            return VisitEach(children.cbegin(), children.cend(), visit, order);
        return VisitEach(children.crbegin(), children.crend(), visit, order);
    }

    ZELKinScript* const q_ptr;

private:
    template <typename Iterator>
    static bool VisitEach(Iterator begin, Iterator end, const CommandVisitor& visit, WalkOrder order)
    {
        for (Iterator child = begin; child != end; ++child) {
            const ZELKinScript* script = *child;
            if (script && !script->VisitCommands(visit, order))
                return false;
        }
        return true;
    }
};

#endif // ZELKINSCRIPT_P_H
