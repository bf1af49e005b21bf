#ifndef ZELTPPLYDESCRIPTION_H
#define ZELTPPLYDESCRIPTION_H

#include "zeltoolpath_export.h"

#include <zelcompstrategy.h>

#include <QString>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    One ply that a roll layup procedure lays: its name, its fibre orientation
    (rad, from the part's reference direction) and how its courses were
    propagated over the surface. Nothing declared here throws.
*/
class ZELTPPlyDescription
{
public:
    //! An unnamed ply at 0 rad, propagated by angle.
    ZELTPPlyDescription() = default;
    ZELTPPlyDescription(const QString& name, double orientation, ZELCompStrategy::PropagationMode mode)
        : m_name(name)
        , m_orientation(orientation)
        , m_mode(mode)
    {
    }

    QString GetName() const { return m_name; }
    //! The fibre orientation (rad).
    double GetOrientation() const { return m_orientation; }
    ZELCompStrategy::PropagationMode GetPropagationMode() const { return m_mode; }

private:
    QString m_name;
    double m_orientation = 0.0;
    ZELCompStrategy::PropagationMode m_mode = ZELCompStrategy::Angle;
};

//! Writes the name (QString), the orientation (double) and the propagation
//! mode (qint32).
ZELTOOLPATH_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELTPPlyDescription& ply);
//! Reads what operator<< wrote. A mode outside the enumeration is kept as
//! its low byte, the width of the enumeration.
ZELTOOLPATH_EXPORT QDataStream& operator>>(QDataStream& stream, ZELTPPlyDescription& ply);

#endif // ZELTPPLYDESCRIPTION_H
