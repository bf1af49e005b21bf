#ifndef ZELKINTESTSCRIPT_H
#define ZELKINTESTSCRIPT_H

#include <zelkinscript.h>

class ZELKinTestProcedure;
class ZELKinTestScriptPrivate;

// A script that keeps its own commands and takes them by the common
// insertion rule, as a course link does. It stands alone in a container or
// belongs to a test procedure, as a course link belongs to its procedure.
//
// Record (after the geometry part): procedure (reference), commands (counted
// links).
class ZELKinTestScript : public ZELKinScript
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELKinTestScript(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    explicit ZELKinTestScript(ZELGeoContainer* container);
    //! Appends the new script to the procedure's scripts.
    explicit ZELKinTestScript(ZELKinTestProcedure* procedure);
    ~ZELKinTestScript() override;

    int GetNumCommands() const override;
    //! Null outside the list.
    ZELKinCommand* GetCommand(int index) const override;
    //! The procedure's program; null for a script that stands alone.
    ZELKinProgram* GetProgram() const override;

    ZELKinTestProcedure* GetProcedure() const;
    //! What the script's private class answers.
    int IndexOfCommand(ZELKinCommand* command) const;
    //! How often GetNumCommands has been asked, to measure what a walk costs.
    int GetCountQueries() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

private:
    ZELKinTestScript(ZELKinTestScriptPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinTestScript)
};

#endif // ZELKINTESTSCRIPT_H
