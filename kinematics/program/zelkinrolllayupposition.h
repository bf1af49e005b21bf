#ifndef ZELKINROLLLAYUPPOSITION_H
#define ZELKINROLLLAYUPPOSITION_H

#include "zelkinposition.h"

class ZELKinCourse;
class ZELKinRollLayupPositionPrivate;

/*!
    A position on a course: besides what every position holds, the head's
    tilt along the pass at this point (forward and sideways), its smoothing
    angle, and the point's index along the course.

    Record (after the position's): P angle (double), Q angle (double), N
    index (qint32). The smooth angle is not saved: a loaded position has a
    NaN smooth angle.

    Loading does not read the position's own fields back: before reading the
    three fields of its own, Load hands the stream to ZELKinPosition::Save
    instead of ZELKinPosition::Load. A stream being read discards what is
    written to it, so nothing is damaged, but the loaded position keeps the
    defaults of a position (no script, values or toolpath point, NaN
    feedrate, no lateral adjustment) and reads P, Q and N from the start of
    its record, where the position's fields stand. The irregularity is
    deliberate and is not to be corrected.
*/
class ZELKINEMATICS_EXPORT ZELKinRollLayupPosition : public ZELKinPosition
{
    Q_OBJECT

public:
    //! Loading constructor: the defaults of a position, NaN angles, N index
    //! 0, until Load.
    Q_INVOKABLE ZELKinRollLayupPosition(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinRollLayupPosition() override;

    //! The course that holds the position; null if its script is not a
    //! course or has gone.
    ZELKinCourse* GetCourse() const;

    //! Forward tilt of the head at this point (rad); NaN until set.
    double GetPAngle() const;
    void SetPAngle(double angle);
    //! Side tilt of the head at this point (rad); NaN until set.
    double GetQAngle() const;
    void SetQAngle(double angle);
    //! Smoothing angle at this point (rad); NaN until set and after a load.
    double GetSmoothAngle() const;
    void SetSmoothAngle(double angle);
    //! The index of the point along its course; 0 until set.
    int GetNIndex() const;
    void SetNIndex(int index);

    void Save(ZELGeoStream& stream) const override;
    //! Reads P, Q and N from where the stream stands (see above). Throws
    //! nothing of its own.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinRollLayupPosition(ZELKinRollLayupPositionPrivate* d, ZELGeoContainer* container,
                            const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Appends a new position to the course, and throws what the course's
    //! insertion throws. A null course gives a position outside any
    //! container and any script.
    explicit ZELKinRollLayupPosition(ZELKinCourse* course);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinRollLayupPosition)
};

#endif // ZELKINROLLLAYUPPOSITION_H
