#ifndef ZELTPTOWCOURSE_H
#define ZELTPTOWCOURSE_H

#include "zeltpcourse.h"
#include "zeltpmachineconfiguration.h"

#include <zelcomptowmask.h>

#include <QList>

class ZELTPOnPartTrajectory;
class ZELTPPoint;
class ZELTPTowCoursePrivate;
class ZELTPTrajectory;

/*!
    A course laid by a fibre placement head: the tows it uses, the tooling it
    is laid with, how much material each tow lays, and the chain of
    trajectories the head follows, which the course owns (it deletes them).

    The chain runs in laying order: the approach (off the part), the roll-in
    (on the part, where the roller touches down at the roll-in point), the
    tow trajectories that lay the tows, the roll-out (on the part, where the
    roller lifts off at the roll-out point) and the retract (off the part).
    A trajectory's last point is usually the next one's first. The chain's
    named members are found by position, so a chain of fewer than four
    trajectories has none of them.

    Record: that of ZELTPCourse (name, retract link), then the used tow mask
    (its stream form), the machine configuration (its stream form), the tow
    lengths (count as qint32, then one double each), the trajectories (count
    as qint32, then per trajectory its class tag (qint32: 0 plain, 1 on-part,
    2 tow), feed rate, own fields, point count (qint32) and point
    references), the roll-in point and the roll-out point
    (ZELGeoGeometryRef each, empty for none).
*/
class ZELTOOLPATH_EXPORT ZELTPTowCourse : public ZELTPCourse
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed course as ZELTPCourse's, with a mask
    //! of 0 tows, the default configuration, no tow lengths, trajectories or
    //! roll points, to be filled by Load.
    Q_INVOKABLE ZELTPTowCourse(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the course in `container` (null for one outside any
    //! container), with the same defaults as the loading constructor.
    ZELTPTowCourse(ZELGeoContainer* container, const QString& name);
    //! Deletes the course's trajectories.
    ~ZELTPTowCourse() override;

    //! The tows the course uses; a mask of 0 tows by default.
    ZELCompTowMask GetUsedTowMask() const;
    void SetUsedTowMask(const ZELCompTowMask& mask);

    //! The roller and head the course is laid with.
    ZELTPMachineConfiguration GetMachineConfiguration() const;
    void SetMachineConfiguration(const ZELTPMachineConfiguration& configuration);

    //! The material each tow lays (mm), one entry per tow of the head: entry
    //! i is the length of the mask's tow i + 1. Empty by default.
    QList<double> GetTowLengths() const;
    void SetTowLengths(const QList<double>& lengths);
    //! The length laid by tow `tow` (mm), tows counted from 0. Throws
    //! ZELSysOutOfBoundsException(tow, 0, count - 1, true, true) outside the
    //! tow lengths.
    double GetTowLength(int tow) const;

    //! Appends `trajectory` to the chain and takes ownership of it. Throws
    //! ZELSysException "cannot add a null trajectory" for null and
    //! "trajectory already has an owner" for one that a geometry owns
    //! already; nothing changes then.
    void AddTrajectory(ZELTPTrajectory* trajectory);
    int GetNumTrajectories() const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the chain.
    ZELTPTrajectory* GetTrajectory(int index) const;

    //! The first trajectory of the chain; null for a chain shorter than 4.
    ZELTPTrajectory* GetApproachTrajectory() const;
    //! The second trajectory of the chain; null for a chain shorter than 4
    //! or when it is not an on-part trajectory.
    ZELTPOnPartTrajectory* GetRollInTrajectory() const;
    //! The second to last trajectory of the chain; null for a chain shorter
    //! than 4 or when it is not an on-part trajectory.
    ZELTPOnPartTrajectory* GetRollOutTrajectory() const;
    //! The last trajectory of the chain; null for a chain shorter than 4.
    ZELTPTrajectory* GetRetractTrajectory() const;
    //! The trajectory after `trajectory` in the chain; null after the last,
    //! and for null or a trajectory that is not in the chain.
    ZELTPTrajectory* GetNextTrajectory(const ZELTPTrajectory* trajectory) const;

    //! Where the roller touches down; null when not set or destroyed.
    ZELTPPoint* GetRollInPoint() const;
    void SetRollInPoint(ZELTPPoint* point);
    //! Where the roller lifts off; null when not set or destroyed.
    ZELTPPoint* GetRollOutPoint() const;
    void SetRollOutPoint(ZELTPPoint* point);

    //! The number of on-part points of the course: the distinct points of
    //! its trajectories whose index is 0 or more, a point that two
    //! trajectories share counted once. It walks every point of the chain.
    int GetNumPoints() const;

    void Save(ZELGeoStream& stream) const override;
    //! Counts larger than the entries present stop at the end of the record.
    //! Throws what ZELTPCourse::Load throws, ZELSysException "unknown
    //! trajectory kind <tag>" for a class tag outside 0..2, and
    //! ZELGeoGeometryNotFoundException when a saved point names no
    //! ZELTPPoint of the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPTowCourse(ZELTPTowCoursePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPTowCourse(ZELTPTowCoursePrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPTowCourse)
};

#endif // ZELTPTOWCOURSE_H
