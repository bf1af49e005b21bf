#ifndef ZELKINMACHINE_H
#define ZELKINMACHINE_H

#include "zelkinresource.h"

#include <QList>

class ZELKinJoint;
class ZELKinMachinePrivate;
class ZELKinSolver;
class ZELKinVariable;

/*!
    The kinematic model of one machine: its variables (axes), its joints (a
    forest through the joints' parents), the name and configuration text of
    the solver that inverts its kinematics, and the NC dialect settings that
    the NC writer reads.

    Variables and joints add themselves when they are created; the machine
    has no operation to add or remove them. ZELKinMachine is abstract: the
    concrete machine is ZELKinAFPMachine.

    Record (after the label): joints (counted links), variables (counted
    links), NC code format, NC code configuration, solver name, solver
    configuration (four QStrings).
*/
class ZELKINEMATICS_EXPORT ZELKinMachine : public ZELKinResource
{
    Q_OBJECT

public:
    ~ZELKinMachine() override;

    //! List sizes, entries whose object has gone included.
    int GetNumVariables() const;
    int GetNumJoints() const;
    //! Copies of the lists in creation order (null where an object has gone).
    QList<ZELKinVariable*> GetVariables() const;
    QList<ZELKinJoint*> GetJoints() const;
    //! The entry at `index`, or null if its object has gone. Throws
    //! ZELSysOutOfBoundsException(index, 0, count - 1, true, true) when the
    //! index is outside the list.
    ZELKinVariable* GetVariable(int index) const;
    ZELKinJoint* GetJoint(int index) const;
    //! The first variable whose label is exactly `name`; null if none.
    ZELKinVariable* GetVariable(const QString& name) const;
    //! The joints without a parent, in joint-list order.
    QList<ZELKinJoint*> GetRootJoints() const;

    QString GetNCCodeFormat() const;
    QString GetNCCodeConfig() const;
    QString GetSolverName() const;
    QString GetSolverConfig() const;

    //! A new solver for this machine, configured with the solver
    //! configuration text and owned by the caller; null when the solver name
    //! is not one this library provides ("RBR", the roll-bend-roll wrist
    //! solver, spelled exactly so). Throws what the solver's construction and
    //! configuration throw, e.g. ZELSysException for a joint tree without a
    //! roll-bend-roll wrist.
    ZELKinSolver* CreateSolver() const;

    //! Makes a solver for `machine`, configured with `configuration`, owned
    //! by the caller; throws what the solver's construction throws.
    using SolverFactory = ZELKinSolver* (*)(ZELKinMachine* machine, const QString& configuration);
    //! Makes CreateSolver() use `factory` for machines whose solver name is
    //! `name`. The machine layer knows no solver of its own: the solving
    //! layer adds the roll-bend-roll solver ("RBR") as the library loads,
    //! and a host may add solvers of its own before it creates any. Not to
    //! be called while another thread creates a solver.
    static void SetSolverFactory(const QString& name, SolverFactory factory);

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinMachine(ZELKinMachinePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELKinMachine(ZELKinMachinePrivate* d, ZELGeoContainer* container, const QString& label,
                  const QString& ncCodeFormat, const QString& ncCodeConfig, const QString& solver,
                  const QString& solverConfig);

private:
    Q_DECLARE_PRIVATE(ZELKinMachine)
};

#endif // ZELKINMACHINE_H
