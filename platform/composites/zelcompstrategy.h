#ifndef ZELCOMPSTRATEGY_H
#define ZELCOMPSTRATEGY_H

#include "zelcomposites_export.h"

#include <QObject>
#include <QString>

/*!
    A ply's layup strategy, as far as kinematics and NC output need it: the
    way the ply's courses are propagated over the surface.

    The class only scopes the enumeration and its labels for the meta-object
    system; it is never instantiated.
*/
class ZELCOMPOSITES_EXPORT ZELCompStrategy
{
    Q_GADGET

public:
    //! How the courses of a ply are laid out one after the other. The values
    //! are stored in files as one byte, so they never change.
    enum PropagationMode : quint8 {
        //! Courses follow a fixed angle from the reference direction.
        Angle = 0,
        //! Each course is offset from the previous one in the surface's parameter space.
        Offset = 1,
        //! Each course is offset from the previous one by a distance measured along geodesics of the surface.
        GeodesicOffset = 2,
        //! Courses run parallel to a guide curve in 3-D space.
        Parallel = 3,
        //! Courses follow geodesics of the surface.
        Geodesic = 4,
        //! Courses follow guide curves supplied by the user.
        UserDefined = 5
    };
    Q_ENUM(PropagationMode)

    ZELCompStrategy() = delete;

    //! The name shown to a user: "Angle", "Offset", "Geodesic Offset",
    //! "Parallel", "Geodesic" or "User Defined". A value outside the
    //! enumeration, as a byte read from a file may be, gives "Unknown (<value>)".
    //! Throws nothing.
    static QString GetPropagationModeLabel(PropagationMode mode);
};

#endif // ZELCOMPSTRATEGY_H
