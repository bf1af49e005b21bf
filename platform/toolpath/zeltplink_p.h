#ifndef ZELTPLINK_P_H
#define ZELTPLINK_P_H

#include <zelgeolinks.h>

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
    //! Throws what ZELGeoLinks::Read throws.
    void Load(ZELGeoStream& stream) { Set(ZELGeoLinks::Read<T>(stream)); }

private:
    ZELGeoLinks::Guarded<T> m_object;
};

#endif // ZELTPLINK_P_H
