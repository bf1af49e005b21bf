#ifndef ZELTPTOOLCHANGELINK_H
#define ZELTPTOOLCHANGELINK_H

#include "zeltpcourselink.h"
#include "zeltpmachineconfiguration.h"

class ZELTPToolChangeLinkPrivate;

/*!
    A course link along which the tooling changes: the machine leaves the
    old roller (and, when the heads differ, the old head) at the link's
    tool-remove point and goes on with the next machine configuration.

    Record: that of ZELTPCourseLink, then the tool-remove point
    (ZELGeoGeometryRef, empty for none), the previous and the next machine
    configuration (their stream form).
*/
class ZELTOOLPATH_EXPORT ZELTPToolChangeLink : public ZELTPCourseLink
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed link as ZELTPCourseLink's, without
    //! tool-remove point and with default configurations, to be filled by
    //! Load.
    Q_INVOKABLE ZELTPToolChangeLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the link in `container` (null for one outside any container)
    //! as ZELTPCourseLink does, without tool-remove point and with default
    //! configurations.
    ZELTPToolChangeLink(ZELGeoContainer* container, const QString& name);
    ~ZELTPToolChangeLink() override;

    //! The point of the link where the old tool leaves the head; null when
    //! not set or destroyed.
    ZELTPPoint* GetToolRemovePoint() const;
    void SetToolRemovePoint(ZELTPPoint* point);

    //! The tooling before the change.
    ZELTPMachineConfiguration GetPreviousMachineConfiguration() const;
    void SetPreviousMachineConfiguration(const ZELTPMachineConfiguration& configuration);
    //! The tooling after the change.
    ZELTPMachineConfiguration GetNextMachineConfiguration() const;
    void SetNextMachineConfiguration(const ZELTPMachineConfiguration& configuration);

    void Save(ZELGeoStream& stream) const override;
    //! Throws what ZELTPCourseLink::Load throws, and
    //! ZELGeoGeometryNotFoundException when the saved tool-remove point names
    //! no ZELTPPoint of the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPToolChangeLink(ZELTPToolChangeLinkPrivate* d, ZELGeoContainer* container,
                        const ZELGeoGeometryRef& reference);
    ZELTPToolChangeLink(ZELTPToolChangeLinkPrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPToolChangeLink)
};

#endif // ZELTPTOOLCHANGELINK_H
