#ifndef ZELGENPART_H
#define ZELGENPART_H

#include "zelgeneration_export.h"

#include "zelgenpoint.h"

#include <zelmathvector2d.h>

#include <QList>
#include <QString>

#include <memory>
#include <optional>

/*!
    A part to lay plies on: a surface placed on the bed of the example gantry
    (examples/machines/gantry-rbr.xml) and the boundary of the plies on it.

    Courses run as straight, parallel lines in the part's course plane: 2-D
    coordinates in mm, centred on the part, whose x runs along machine X.
    Each part maps the course plane onto its surface and gives the exact
    normal and direction of travel there. The boundary is convex, so a line
    crosses it at most once. Every part is highest at the centre of its
    course plane. Lengths are in mm, angles in radians; nothing here throws.
*/
class ZELGENERATION_EXPORT ZELGenPart
{
public:
    //! The stretch of a line from `from` to `to` (mm along the line).
    struct Range
    {
        double from;
        double to;
    };

    virtual ~ZELGenPart() = default;

    //! The part named by `kind`: "flat", "cylinder" or "dome"; null for any
    //! other word.
    static std::unique_ptr<ZELGenPart> Create(const QString& kind);

    //! The part's name, used as the default program name ("flat-panel", ...).
    virtual QString GetName() const = 0;
    //! How the courses of a ply follow the surface, in the toolpath format's
    //! words ("angle", "parallel").
    virtual QString GetPropagation() const = 0;

    //! The surface point over `position` of the course plane, travelling
    //! along the course-plane direction `direction` (unit).
    virtual ZELGenPoint GetSurfacePoint(const ZELMathVector2D& position, const ZELMathVector2D& direction) const = 0;
    //! The length on the surface of the straight course-plane segment from
    //! `from` to `to`.
    virtual double GetLength(const ZELMathVector2D& from, const ZELMathVector2D& to) const = 0;

    //! The stretch of the line `position` + t `direction` (unit) that lies
    //! inside the boundary; none when the line misses it.
    virtual std::optional<Range> GetCrossing(const ZELMathVector2D& position,
                                             const ZELMathVector2D& direction) const = 0;
    //! The least and greatest value of `across` (unit) · p over the points p
    //! of the boundary: how far courses across that direction reach.
    virtual Range GetExtent(const ZELMathVector2D& across) const = 0;
    //! Three course-plane positions around the part, outside the boundary,
    //! where sphere targets stand on the tool for probing.
    virtual QList<ZELMathVector2D> GetProbeTargets() const = 0;

protected:
    //! Where every part's centre stands on the bed: machine X and Y, and the
    //! height of the part's highest point (mm).
    static constexpr double kCentreX = 6000.0;
    static constexpr double kCentreY = 4575.0;
    static constexpr double kTopZ = -2000.0;
    //! How far outside the boundary the probing targets stand (mm).
    static constexpr double kProbeTargetMargin = 150.0;
};

#endif // ZELGENPART_H
