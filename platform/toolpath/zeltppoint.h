#ifndef ZELTPPOINT_H
#define ZELTPPOINT_H

#include "zeltoolpath_export.h"

#include <zelgeogeometry.h>
#include <zelmathaxis.h>

#include <memory>

class ZELTPPointPrivate;

/*!
    One point of a toolpath: where the tool is to be and how it is turned
    there, as a tool frame. The frame's origin is the compaction point on the
    part (mm), its first direction (u) the direction of travel and its third
    (w) the surface normal; the wrist solver turns it into axis values. The
    position command that realises the point links back to it.

    ZELTPPoint owns the private object of its class tree: the most-derived
    constructor allocates its own private class and hands it down.

    Record: the geometry part, then the tool frame (ZELMathAxis stream form:
    origin, u, v, w).
*/
class ZELTOOLPATH_EXPORT ZELTPPoint : public ZELGeoGeometry
{
    Q_OBJECT

public:
    //! Loading constructor: the world frame until Load.
    Q_INVOKABLE ZELTPPoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the point in `container` (null for one outside any container).
    ZELTPPoint(ZELGeoContainer* container, const ZELMathAxis& toolFrame);
    ~ZELTPPoint() override;

    //! The tool frame, copied out; the world frame by default.
    ZELMathAxis GetToolFrame() const;
    //! Keeps a copy of the frame as it is given (not re-normalised).
    void SetToolFrame(const ZELMathAxis& toolFrame);

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPPoint(ZELTPPointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

    std::unique_ptr<ZELTPPointPrivate> const d_ptr;

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPPoint)
    Q_DISABLE_COPY_MOVE(ZELTPPoint)
};

#endif // ZELTPPOINT_H
