#ifndef ZELTPPROBINGPROCEDURE_H
#define ZELTPPROBINGPROCEDURE_H

#include "zeltpprobingpoint.h"
#include "zeltpprocedure.h"

#include <QList>

class ZELTPProbingProcedurePrivate;
class ZELTPTrajectory;

/*!
    A procedure that measures sphere targets with a probe. Its trajectories,
    which it owns (it deletes them), and its probing points interleave:
    trajectory 0 leads to the first target; probing point i is measured at
    the last point of trajectory i, and trajectory i + 1 leads on from it.
    A procedure with n probing points therefore has n + 1 trajectories, the
    last one leaving the last target.

    Record: that of ZELTPProcedure (name, safety plane), then the
    trajectories (count as qint32, then per trajectory its class tag (qint32:
    0 plain, 1 on-part, 2 tow), feed rate, own fields, point count (qint32)
    and point references) and the probing points (count as qint32, then each
    in its stream form).
*/
class ZELTOOLPATH_EXPORT ZELTPProbingProcedure : public ZELTPProcedure
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed procedure as ZELTPProcedure's,
    //! without trajectories or probing points, to be filled by Load.
    Q_INVOKABLE ZELTPProbingProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the procedure in `container` (null for one outside any
    //! container), without trajectories or probing points.
    ZELTPProbingProcedure(ZELGeoContainer* container, const QString& name);
    //! Deletes the procedure's trajectories.
    ~ZELTPProbingProcedure() override;

    //! Appends `trajectory` and takes ownership of it. Throws ZELSysException
    //! "cannot add a null trajectory" for null and "trajectory already has an
    //! owner" for one that a geometry owns already; nothing changes then.
    void AddTrajectory(ZELTPTrajectory* trajectory);
    int GetNumTrajectories() const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the trajectories.
    ZELTPTrajectory* GetTrajectory(int index) const;

    //! Appends a probing point.
    void AddProbingPoint(const ZELTPProbingPoint& point);
    int GetNumProbingPoints() const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the probing points.
    ZELTPProbingPoint GetProbingPoint(int index) const;

    void Save(ZELGeoStream& stream) const override;
    //! Counts larger than the entries present stop at the end of the record.
    //! Throws ZELSysException "unknown trajectory kind <tag>" for a class tag
    //! outside 0..2, and ZELGeoGeometryNotFoundException when a saved point
    //! names no ZELTPPoint of the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPProbingProcedure(ZELTPProbingProcedurePrivate* d, ZELGeoContainer* container,
                          const ZELGeoGeometryRef& reference);
    ZELTPProbingProcedure(ZELTPProbingProcedurePrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPProbingProcedure)
};

#endif // ZELTPPROBINGPROCEDURE_H
