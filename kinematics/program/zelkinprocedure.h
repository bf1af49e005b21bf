#ifndef ZELKINPROCEDURE_H
#define ZELKINPROCEDURE_H

#include "zelkinscript.h"

#include <zelmathplane.h>

class ZELKinProcedurePrivate;
class ZELTPProcedure;

/*!
    The base of every procedure of a program (roll layup, probing): it knows
    its program, the toolpath procedure it was translated from and its safety
    plane. A procedure joins its program in its constructor and belongs to it
    for its whole life.

    The subclasses keep the commands and answer GetNumCommands and
    GetCommand. Commands are not inserted into a procedure as such unless a
    subclass says so: by default inserting one throws
    ZELSysNotImplementedException.

    Record (after the geometry part): program (reference, empty when the
    procedure has none or it has gone). The safety plane and the toolpath
    procedure are not saved: a loaded procedure has the default plane and no
    toolpath procedure.
*/
class ZELKINEMATICS_EXPORT ZELKinProcedure : public ZELKinScript
{
    Q_OBJECT

public:
    ~ZELKinProcedure() override;

    //! The program that holds the procedure; null if it has none or it has gone.
    ZELKinProgram* GetProgram() const override;

    //! The toolpath procedure this one was translated from; null for a
    //! procedure made without one or once it has gone.
    const ZELTPProcedure* GetToolPathProcedure() const;
    //! Links the toolpath procedure (null allowed) with a counted link.
    void SetToolPathProcedure(const ZELTPProcedure* procedure);

    //! The plane the head retracts to (mm); the default plane until set.
    ZELMathPlane GetSafetyPlane() const;
    void SetSafetyPlane(const ZELMathPlane& plane);

    void Save(ZELGeoStream& stream) const override;
    //! Throws ZELGeoGeometryNotFoundException when the saved program
    //! reference names no program of the container being loaded; the
    //! procedure is then without a program. An empty reference loads
    //! silently as no program.
    void Load(ZELGeoStream& stream) override;

protected:
    /*!
        Creates the procedure in the program's container, links the program
        and appends the procedure to the program's list. A null program
        gives a procedure outside any container and any program.
    */
    ZELKinProcedure(ZELKinProcedurePrivate* d, ZELKinProgram* program);
    //! Loading form: no program until Load.
    ZELKinProcedure(ZELKinProcedurePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    Q_DECLARE_PRIVATE(ZELKinProcedure)
};

#endif // ZELKINPROCEDURE_H
