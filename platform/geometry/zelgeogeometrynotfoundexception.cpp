#include "zelgeogeometrynotfoundexception.h"

namespace {

QString NotFoundMessage(const ZELGeoGeometryRef& reference, const QString& expectedClass)
{
    if (expectedClass.isEmpty())
        return QStringLiteral("no geometry with reference %1").arg(reference.GetIdentity());
    return QStringLiteral("no geometry of class %1 with reference %2")
        .arg(expectedClass)
        .arg(reference.GetIdentity());
}

} // namespace

ZELGeoGeometryNotFoundException::ZELGeoGeometryNotFoundException(const ZELGeoGeometryRef& reference,
                                                                 const QString& expectedClass)
    : ZELSysException(NotFoundMessage(reference, expectedClass))
    , m_reference(reference)
    , m_expectedClass(expectedClass)
{
}

ZELGeoGeometryNotFoundException::~ZELGeoGeometryNotFoundException() = default;

ZELGeoGeometryRef ZELGeoGeometryNotFoundException::GetReference() const
{
    return m_reference;
}

QString ZELGeoGeometryNotFoundException::GetExpectedClass() const
{
    return m_expectedClass;
}
