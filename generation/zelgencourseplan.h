#ifndef ZELGENCOURSEPLAN_H
#define ZELGENCOURSEPLAN_H

#include "zelgeneration_export.h"

#include "zelgenpoint.h"

#include <zelmathvector2d.h>

#include <QList>
#include <QString>

#include <functional>

class ZELGenPart;

/*!
    Where one course lays which tows: the course's centre line in the part's
    course plane, the places along it where tows are added or cut, and the
    length of each tow.

    The course runs along the course-plane direction `direction` (unit) on
    the line `across` mm from the course plane's origin, to the left of it
    (seen from the head, the normal up); a place on the course is the
    distance `along` from the line's point nearest that origin (mm in the
    course plane). Tow 1 lies on the right of the direction of travel and the
    head's tows follow to the left, each kTowWidth wide, centred on the
    centre line.

    The roller lays `towCount` neighbouring tows from head tow `firstTow`
    (0 for tow 1), in groups of four: each group is added where the centre
    line of the group enters the part's boundary and cut where it leaves, so
    that the set of tows changes at no more than two places per group. A
    group whose stretch inside the boundary is shorter than 101.6 mm is not
    laid. Lengths and places are in mm. Nothing here throws.
*/
class ZELGENERATION_EXPORT ZELGenCoursePlan
{
public:
    //! The tows of the head and the width of each (mm).
    static constexpr int kNumHeadTows = 16;
    static constexpr double kTowWidth = 6.35;

    ZELGenCoursePlan(const ZELGenPart& part, const ZELMathVector2D& direction, double across, int firstTow,
                     int towCount);

    //! True when no group of tows crosses enough of the part to be laid.
    bool IsEmpty() const;

    //! The places where the laid tows change, in order along the course:
    //! the first add first, the last cut last. Fewer than two when empty.
    const QList<double>& GetStations() const;
    //! Where the first tow is added and where the last is cut; only for a
    //! plan that is not empty.
    double GetStart() const;
    double GetEnd() const;
    //! The tows laid from station `stretch` to the next (0 to the number of
    //! stations - 2), "1" for a laid tow, one character per head tow, tow 1
    //! first.
    QString GetStretchMask(int stretch) const;
    //! Every tow the course lays, as GetStretchMask().
    QString GetTowMask() const;
    //! The laid length of each head tow (mm along the surface), 0 for a tow
    //! the course does not lay.
    QList<double> GetTowLengths() const;
    //! The sum of the tow lengths (mm).
    double GetMaterialLength() const;

    //! The surface point on the course's centre line at `along`.
    ZELGenPoint GetPoint(double along) const;

private:
    struct Group
    {
        int firstTow;
        int towCount;
        double from;
        double to;
    };

    void PlanGroup(int firstTow, int towCount);
    void PlanStations();
    //! The tows of the groups that `laid` accepts.
    QString GetMask(const std::function<bool(const Group&)>& laid) const;

    const ZELGenPart& m_part;
    ZELMathVector2D m_direction;
    ZELMathVector2D m_base;
    ZELMathVector2D m_left;
    QList<Group> m_groups;
    QList<double> m_stations;
};

#endif // ZELGENCOURSEPLAN_H
