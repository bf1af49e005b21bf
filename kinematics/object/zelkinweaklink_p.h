#ifndef ZELKINWEAKLINK_P_H
#define ZELKINWEAKLINK_P_H

#include <zelgeolinks.h>

/*!
    A back reference to one object (a variable's machine, a joint's parent):
    no reference counting. It reads as null once its target is destroyed, and
    is then saved as an empty reference; while it lives, as the target's own
    reference, which never changes.
*/
template <typename T>
class ZELKinWeakLink
{
public:
    T* Get() const { return m_object.data(); }

    void Set(T* object) { m_object = object; }

    void Save(ZELGeoStream& stream) const { stream << ZELGeoGeometryRef(Get()); }

    //! Throws ZELGeoGeometryNotFoundException when a saved reference names no
    //! object of class T.
    void Load(ZELGeoStream& stream)
    {
        ZELGeoGeometryRef saved;
        stream >> saved;
        Set(ZELGeoLinks::Resolve<T>(stream, saved));
        ZELGeoLinks::ExpectResolved(Get(), saved);
    }

private:
    ZELGeoLinks::Guarded<T> m_object;
};

#endif // ZELKINWEAKLINK_P_H
