#ifndef ZELTPLINK_P_H
#define ZELTPLINK_P_H

#include <zelgeocontainer.h>
#include <zelgeogeometrynotfoundexception.h>
#include <zelgeogeometryref.h>
#include <zelgeostream.h>

#include <QPointer>

namespace ZELTPLinks {

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

//! Reads one reference and returns the object of class T it names; an empty
//! reference (one past the end of the record included) reads as null.
//! Throws ZELGeoGeometryNotFoundException when a reference that names
//! something does not resolve to an object of class T.
template <typename T>
T* Read(ZELGeoStream& stream)
{
    ZELGeoGeometryRef saved;
    stream >> saved;
    T* object = Resolve<T>(stream, saved);
    if (!object && saved.IsValid())
        throw ZELGeoGeometryNotFoundException(saved, QString::fromLatin1(T::staticMetaObject.className()));
    return object;
}

} // namespace ZELTPLinks

/*!
    A plain reference from one toolpath geometry to another (a course's
    retract link, a link's target course): it owns nothing and reads as null
    once its target is destroyed, and is then saved as an empty reference.
*/
template <typename T>
class ZELTPLink
{
public:
    ZELTPLink() = default;
    explicit ZELTPLink(T* object)
        : m_object(object)
    {
    }

    T* Get() const { return m_object.data(); }
    void Set(T* object) { m_object = object; }

    //! Writes the target's reference; an empty one for no target or a target
    //! outside any container.
    void Save(ZELGeoStream& stream) const { stream << ZELGeoGeometryRef(m_object.data()); }
    //! Throws what ZELTPLinks::Read throws.
    void Load(ZELGeoStream& stream) { Set(ZELTPLinks::Read<T>(stream)); }

private:
    QPointer<T> m_object;
};

#endif // ZELTPLINK_P_H
