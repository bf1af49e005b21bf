#ifndef ZELKINWEAKLINK_P_H
#define ZELKINWEAKLINK_P_H

#include <zelgeocontainer.h>
#include <zelgeogeometrynotfoundexception.h>
#include <zelgeogeometryref.h>
#include <zelgeostream.h>

#include <QPointer>

#include <type_traits>

namespace ZELKinLinks {

/*!
    A guarded pointer to an object of class T that hands its target out only
    while the target still is a T. A QPointer<T> casts statically, which is
    undefined while the target is being destroyed and its dynamic type is
    already a base class; this one casts with qobject_cast, and so reads null
    from the moment the target's destruction begins.
*/
template <typename T>
class Guarded
{
    using Object = std::conditional_t<std::is_const_v<T>, const QObject, QObject>;

public:
    Guarded() = default;
    Guarded(T* object)
        : m_object(object)
    {
    }

    T* data() const { return qobject_cast<T*>(m_object.data()); }
    T* operator->() const { return data(); }
    explicit operator bool() const { return data() != nullptr; }
    void swap(Guarded& other) noexcept { m_object.swap(other.m_object); }

private:
    QPointer<Object> m_object;
};

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
    ZELKinLinks::Guarded<T> m_object;
    ZELGeoGeometryRef m_reference;
};

#endif // ZELKINWEAKLINK_P_H
