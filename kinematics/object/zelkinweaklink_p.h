#ifndef ZELKINWEAKLINK_P_H
#define ZELKINWEAKLINK_P_H

#include <zelgeocontainer.h>
#include <zelgeogeometrynotfoundexception.h>
#include <zelgeogeometryref.h>
#include <zelgeostream.h>

#include <QPointer>

namespace ZELKinLinks {

//! The object of class T that a saved reference stands for in the container
//! being loaded, or null (nothing there, or an object of another class).
template <typename T>
T* Resolve(const ZELGeoStream& stream, const ZELGeoGeometryRef& saved)
{
    const ZELGeoContainer* container = stream.GetContainer();
    if (!container)
        return nullptr;
    return qobject_cast<T*>(container->GetGeometryByRef(stream.GetMappedReference(saved)));
}

//! A reference that names something must resolve; an empty one loads as null.
template <typename T>
void ExpectResolved(const T* object, const ZELGeoGeometryRef& saved)
{
    if (!object && saved.IsValid())
        throw ZELGeoGeometryNotFoundException(saved, QString::fromLatin1(T::staticMetaObject.className()));
}

} // namespace ZELKinLinks

/*!
    A back reference to one object (a variable's machine, a joint's parent):
    no reference counting. It reads as null once its target is destroyed, and
    is then saved as an empty reference.
*/
template <typename T>
class ZELKinWeakLink
{
public:
    T* Get() const { return m_object.data(); }

    void Set(T* object)
    {
        m_object = object;
        m_reference = ZELGeoGeometryRef(object);
    }

    void Save(ZELGeoStream& stream) const
    {
        stream << (m_reference.IsValid() && m_object ? m_reference : ZELGeoGeometryRef());
    }

    //! Throws ZELGeoGeometryNotFoundException when a saved reference names no
    //! object of class T.
    void Load(ZELGeoStream& stream)
    {
        ZELGeoGeometryRef saved;
        stream >> saved;
        Set(ZELKinLinks::Resolve<T>(stream, saved));
        ZELKinLinks::ExpectResolved(Get(), saved);
    }

private:
    QPointer<T> m_object;
    ZELGeoGeometryRef m_reference;
};

#endif // ZELKINWEAKLINK_P_H
