#ifndef ZELGEOGEOMETRYNOTFOUNDEXCEPTION_H
#define ZELGEOGEOMETRYNOTFOUNDEXCEPTION_H

#include "zelgeometry_export.h"
#include "zelgeogeometryref.h"

#include <zelsysexception.h>

/*!
    Thrown when a stored reference names no geometry, or none of the class
    that the reader expects.

    The message reads "no geometry with reference 17", or, when the expected
    class is given, "no geometry of class ZELKinJoint with reference 17".
*/
class ZELGEOMETRY_EXPORT ZELGeoGeometryNotFoundException : public ZELSysException
{
public:
    explicit ZELGeoGeometryNotFoundException(const ZELGeoGeometryRef& reference,
                                             const QString& expectedClass = QString());
    ~ZELGeoGeometryNotFoundException() override;

    ZELGeoGeometryNotFoundException(const ZELGeoGeometryNotFoundException&) = default;
    ZELGeoGeometryNotFoundException& operator=(const ZELGeoGeometryNotFoundException&) = default;

    //! The reference that did not resolve.
    ZELGeoGeometryRef GetReference() const;
    //! The class the reader asked for; empty when any geometry would have done.
    QString GetExpectedClass() const;

private:
    ZELGeoGeometryRef m_reference;
    QString m_expectedClass;
};

#endif // ZELGEOGEOMETRYNOTFOUNDEXCEPTION_H
