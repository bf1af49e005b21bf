#ifndef ZELTPTRAJECTORYLIST_P_H
#define ZELTPTRAJECTORYLIST_P_H

#include <QList>
#include <QtGlobal>

class ZELGeoGeometry;
class ZELGeoStream;
class ZELTPTrajectory;

/*!
    The trajectories that one geometry (a course, course link or probing
    procedure) owns, in order: they are deleted with the list.

    Record: the count (qint32), then per trajectory its class tag (qint32:
    0 plain, 1 on-part, 2 tow), its feed rate and own fields, its point
    count (qint32) and one reference per point.
*/
class ZELTPTrajectoryList
{
public:
    explicit ZELTPTrajectoryList(ZELGeoGeometry* owner);
    ~ZELTPTrajectoryList();
    Q_DISABLE_COPY_MOVE(ZELTPTrajectoryList)

    //! Takes ownership of `trajectory` and marks the owner modified. Throws
    //! ZELSysException "cannot add a null trajectory" for null and
    //! "trajectory already has an owner" for one that another geometry (or
    //! this one) owns; nothing changes then.
    void Append(ZELTPTrajectory* trajectory);

    int GetCount() const { return int(m_trajectories.size()); }
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the list.
    ZELTPTrajectory* At(int index) const;
    //! The index of `trajectory`, or -1.
    int IndexOf(const ZELTPTrajectory* trajectory) const;
    const QList<ZELTPTrajectory*>& GetList() const { return m_trajectories; }

    void Save(ZELGeoStream& stream) const;
    //! Replaces the trajectories with the saved ones. Counts larger than the
    //! entries present stop at the end of the record, and an empty point
    //! reference is left out. Throws ZELSysException "unknown trajectory kind
    //! <tag>" for a class tag outside 0..2, and ZELGeoGeometryNotFoundException
    //! when a point reference names no ZELTPPoint of the container being
    //! loaded; the trajectories read until then are kept.
    void Load(ZELGeoStream& stream);

private:
    void Clear();

    ZELGeoGeometry* const m_owner;
    QList<ZELTPTrajectory*> m_trajectories;
};

#endif // ZELTPTRAJECTORYLIST_P_H
