#ifndef ZELTPROLLLAYUPPROCEDURE_H
#define ZELTPROLLLAYUPPROCEDURE_H

#include "zeltpmaterialdescription.h"
#include "zeltpplydescription.h"
#include "zeltpprocedure.h"

#include <QList>

class ZELTPCourseLink;
class ZELTPRollLayupProcedurePrivate;

/*!
    A procedure that lays material with a roller: the feed rates at which
    tows are added and cut (mm/min), the material and how much of it the
    procedure lays in all (mm), the plies it builds, and its approach link.

    The approach link is the start of the procedure's path: its to-course is
    the first course, that course's retract link leads to the second, and so
    on, until a link leads to no course.

    Record: that of ZELTPProcedure (name, safety plane), then the adding and
    the cutting feed rate (double each), the material description (its
    stream form), the total material length (double), the ply descriptions
    (count as qint32, then each in its stream form) and the approach link
    (ZELGeoGeometryRef, empty for none).
*/
class ZELTOOLPATH_EXPORT ZELTPRollLayupProcedure : public ZELTPProcedure
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed procedure as ZELTPProcedure's, with
    //! NaN feed rates, an empty material of length 0, no plies and no
    //! approach link, to be filled by Load.
    Q_INVOKABLE ZELTPRollLayupProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the procedure in `container` (null for one outside any
    //! container), with the same defaults as the loading constructor.
    ZELTPRollLayupProcedure(ZELGeoContainer* container, const QString& name);
    ~ZELTPRollLayupProcedure() override;

    //! The feed rate while tows are added (mm/min); NaN when not given.
    double GetAddingFeedrate() const;
    void SetAddingFeedrate(double feedrate);
    //! The feed rate while tows are cut (mm/min); NaN when not given.
    double GetCuttingFeedrate() const;
    void SetCuttingFeedrate(double feedrate);

    ZELTPMaterialDescription GetMaterialDescription() const;
    void SetMaterialDescription(const ZELTPMaterialDescription& material);
    //! The length of material the procedure lays in all (mm); 0 by default.
    double GetTotalMaterialLength() const;
    void SetTotalMaterialLength(double length);

    //! Appends a ply.
    void AddPlyDescription(const ZELTPPlyDescription& ply);
    int GetNumPlyDescriptions() const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the plies.
    ZELTPPlyDescription GetPlyDescription(int index) const;
    QList<ZELTPPlyDescription> GetPlyDescriptions() const;

    //! The first link of the procedure; null when not set or destroyed.
    ZELTPCourseLink* GetApproachLink() const;
    void SetApproachLink(ZELTPCourseLink* link);

    void Save(ZELGeoStream& stream) const override;
    //! A ply count larger than the plies present stops at the end of the
    //! record. Throws ZELGeoGeometryNotFoundException when the saved approach
    //! link names no ZELTPCourseLink of the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPRollLayupProcedure(ZELTPRollLayupProcedurePrivate* d, ZELGeoContainer* container,
                            const ZELGeoGeometryRef& reference);
    ZELTPRollLayupProcedure(ZELTPRollLayupProcedurePrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPRollLayupProcedure)
};

#endif // ZELTPROLLLAYUPPROCEDURE_H
