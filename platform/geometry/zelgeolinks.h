#ifndef ZELGEOLINKS_H
#define ZELGEOLINKS_H

#include "zelgeocontainer.h"
#include "zelgeogeometrynotfoundexception.h"
#include "zelgeogeometryref.h"
#include "zelgeostream.h"

#include <QPointer>

#include <type_traits>

// What every reference from one geometry to another needs, whichever library
// the two geometries belong to: a pointer that goes null with its target, and
// the way a saved reference finds its target again on load.
namespace ZELGeoLinks {

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
    //! Whether the target is `object`, still a T: the same as data() ==
    //! object for a non-null `object`, but the cast is paid for only by
    //! the target that matches, which keeps a search through many links
    //! cheap.
    bool Is(const T* object) const { return object && m_object.data() == object && data() == object; }
    //! The target as a QObject, whatever its dynamic type is by now; null
    //! once it is destroyed. Only for comparing with objects the caller
    //! knows to be whole T's, which spares the cast on every comparison.
    Object* GetAddress() const { return m_object.data(); }
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
//! Throws ZELGeoGeometryNotFoundException when a reference that names
//! something resolved to no object of class T.
template <typename T>
void ExpectResolved(const T* object, const ZELGeoGeometryRef& saved)
{
    if (!object && saved.IsValid())
        throw ZELGeoGeometryNotFoundException(saved, QString::fromLatin1(T::staticMetaObject.className()));
}

//! Reads one reference and returns the object of class T it names; an empty
//! reference (one past the end of the record included) reads as null.
//! Throws what ExpectResolved throws.
template <typename T>
T* Read(ZELGeoStream& stream)
{
    ZELGeoGeometryRef saved;
    stream >> saved;
    T* object = Resolve<T>(stream, saved);
    ExpectResolved(object, saved);
    return object;
}

} // namespace ZELGeoLinks

#endif // ZELGEOLINKS_H
