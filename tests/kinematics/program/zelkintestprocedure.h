#ifndef ZELKINTESTPROCEDURE_H
#define ZELKINTESTPROCEDURE_H

#include <zelkinprocedure.h>

#include <QList>

class ZELKinTestProcedurePrivate;
class ZELKinTestScript;

// A procedure whose commands live in child scripts, as a roll layup
// procedure's live in its courses and links: it numbers their commands
// script after script and takes none itself (the procedure default).
//
// Record (after the procedure's): scripts (counted links).
class ZELKinTestProcedure : public ZELKinProcedure
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELKinTestProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Appends the new procedure to the program.
    explicit ZELKinTestProcedure(ZELKinProgram* program);
    ~ZELKinTestProcedure() override;

    int GetNumCommands() const override;
    ZELKinCommand* GetCommand(int index) const override;

    QList<ZELKinTestScript*> GetScripts() const;
    //! Called by the script's constructor.
    void AppendScript(ZELKinTestScript* script);

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    bool VisitCommands(const CommandVisitor& visit, WalkOrder order) const override;

private:
    ZELKinTestProcedure(ZELKinTestProcedurePrivate* d, ZELGeoContainer* container,
                        const ZELGeoGeometryRef& reference);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinTestProcedure)
};

#endif // ZELKINTESTPROCEDURE_H
