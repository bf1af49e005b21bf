#ifndef ZELTPPROBINGPOINT_H
#define ZELTPPROBINGPOINT_H

#include "zeltoolpath_export.h"

#include <QtGlobal>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    One measurement of a probing procedure: the sphere target that the probe
    touches there, given by its diameter (mm). Where it is measured follows
    from the procedure's trajectories (see ZELTPProbingProcedure). Nothing
    declared here throws.
*/
class ZELTPProbingPoint
{
public:
    //! A target of diameter 0.
    ZELTPProbingPoint() = default;
    explicit ZELTPProbingPoint(double diameter)
        : m_diameter(diameter)
    {
    }

    //! The diameter of the sphere target (mm).
    double GetDiameter() const { return m_diameter; }

private:
    double m_diameter = 0.0;
};

//! Writes the diameter (double).
ZELTOOLPATH_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELTPProbingPoint& point);
//! Reads what operator<< wrote; past the end of the data, zero.
ZELTOOLPATH_EXPORT QDataStream& operator>>(QDataStream& stream, ZELTPProbingPoint& point);

#endif // ZELTPPROBINGPOINT_H
