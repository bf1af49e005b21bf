#include "zelcompstrategy.h"

QString ZELCompStrategy::GetPropagationModeLabel(PropagationMode mode)
{
    // No default case, so that the compiler flags a mode added without a label.
    switch (mode) {
    case Angle:
        return QStringLiteral("Angle");
    case Offset:
        return QStringLiteral("Offset");
    case GeodesicOffset:
        return QStringLiteral("Geodesic Offset");
    case Parallel:
        return QStringLiteral("Parallel");
    case Geodesic:
        return QStringLiteral("Geodesic");
    case UserDefined:
        return QStringLiteral("User Defined");
    }
    return QStringLiteral("Unknown (%1)").arg(uint(mode));
}
