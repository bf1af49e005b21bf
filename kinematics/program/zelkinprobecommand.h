#ifndef ZELKINPROBECOMMAND_H
#define ZELKINPROBECOMMAND_H

#include "zelkincommand.h"

class ZELKinProbeCommandPrivate;
class ZELKinProbeProcedure;

/*!
    One probing step of a probe procedure: the probe measures the target
    near the position that stands before the command in the procedure. The
    command gives the shape of that target and its diameter.

    Record (after the command's): target shape (qint32), diameter (double).
*/
class ZELKINEMATICS_EXPORT ZELKinProbeCommand : public ZELKinCommand
{
    Q_OBJECT

public:
    //! The shape of a probed target, which picks the probing cycle.
    enum TargetShape : qint32 {
        //! A tooling ball, measured with the sphere probing cycle; its
        //! diameter is the ball's.
        Sphere = 0
    };
    Q_ENUM(TargetShape)

    //! Loading constructor: Sphere, NaN diameter and no script until Load.
    Q_INVOKABLE ZELKinProbeCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinProbeCommand() override;

    TargetShape GetTargetShape() const;
    //! The target's diameter (mm); NaN when none is given.
    double GetDiameter() const;

    void Save(ZELGeoStream& stream) const override;
    //! Throws what ZELKinCommand::Load throws. A saved shape that this
    //! library does not name is kept as it was saved.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinProbeCommand(ZELKinProbeCommandPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Appends the new command to the procedure, then keeps the shape and
    //! the diameter (mm, NaN allowed). A null procedure gives a command
    //! outside any container and any script.
    ZELKinProbeCommand(ZELKinProbeProcedure* procedure, TargetShape shape, double diameter);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinProbeCommand)
};

#endif // ZELKINPROBECOMMAND_H
