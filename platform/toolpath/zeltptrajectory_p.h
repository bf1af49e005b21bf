#ifndef ZELTPTRAJECTORY_P_H
#define ZELTPTRAJECTORY_P_H

#include "zeltptrajectory.h"

QT_FORWARD_DECLARE_CLASS(QDataStream)

class ZELTPTrajectoryPrivate
{
    Q_DECLARE_PUBLIC(ZELTPTrajectory)

public:
    //! The class tag that opens a trajectory's record.
    enum Kind : qint32 { PlainKind = 0, OnPartKind = 1, TowKind = 2 };

    explicit ZELTPTrajectoryPrivate(ZELTPTrajectory* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELTPTrajectoryPrivate() = default;

    static ZELTPTrajectoryPrivate* get(ZELTPTrajectory* trajectory) { return trajectory->d_func(); }
    static const ZELTPTrajectoryPrivate* get(const ZELTPTrajectory* trajectory) { return trajectory->d_func(); }

    virtual Kind GetKind() const { return PlainKind; }
    //! The record between the class tag and the points: the feed rate, then
    //! each subclass's own fields.
    virtual void SaveFields(QDataStream& stream) const;
    virtual void LoadFields(QDataStream& stream);

    //! Appends the point and joins it, without telling the owner (a loading
    //! owner is not being modified).
    void AppendPoint(ZELTPPoint* point);
    //! Called by a point that is destroyed, once per time it was added.
    void ForgetPoint(const ZELTPPoint* point);

    ZELTPTrajectory* const q_ptr;
    double feedrate = 0.0;
    QList<ZELTPPoint*> points;
    ZELGeoGeometry* owner = nullptr;
};

#endif // ZELTPTRAJECTORY_P_H
