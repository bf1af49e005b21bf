#ifndef ZELKINCOUNTEDLINK_P_H
#define ZELKINCOUNTEDLINK_P_H

#include "zelkinweaklink_p.h"


#include <utility>

/*!
    A reference to one object that holds one container reference on it: the
    counterpart of one entry of ZELKinCountedLinkList, for the single links
    of the program model (a command's script, a program's machine, a
    position's toolpath point). T may be const.

    Setting the link takes a reference on the new target first, then releases
    the previous target if it still exists; destroying the link releases its
    target. The link reads as null once its target is destroyed. Save writes
    the target's reference while the target is alive; a geometry's reference
    never changes, so the link need not keep a copy of it, which spares 8
    bytes on each of a program's millions of links.

    A link can be moved (the reference it holds goes with it) but not copied,
    so that links can live in standard containers without counting twice.

    Record: one reference (an empty one when the link is null or its target
    has gone).
*/
template <typename T>
class ZELKinCountedLink
{
public:
    ZELKinCountedLink() = default;
    explicit ZELKinCountedLink(T* object) { Set(object); }
    ~ZELKinCountedLink() { Set(nullptr); }

    ZELKinCountedLink(ZELKinCountedLink&& other) noexcept { Swap(other); }
    ZELKinCountedLink& operator=(ZELKinCountedLink&& other) noexcept
    {
        ZELKinCountedLink taken(std::move(other));
        Swap(taken);
        return *this;
    }
    Q_DISABLE_COPY(ZELKinCountedLink)

    T* Get() const { return m_object.data(); }
    //! Whether the link stands for `object` (never for null); see
    //! ZELGeoLinks::Guarded::Is.
    bool Is(const T* object) const { return m_object.Is(object); }

    //! See ZELGeoLinks::Guarded::GetAddress.
    auto GetAddress() const { return m_object.GetAddress(); }

    void Set(T* object)
    {
        if (object)
            object->AddReference();
        if (m_object)
            m_object->RemoveReference();
        m_object = object;
    }

    void Save(ZELGeoStream& stream) const { stream << ZELGeoGeometryRef(Get()); }

    //! Links the object that the saved reference stands for (null for an
    //! empty one). Throws ZELGeoGeometryNotFoundException when a saved
    //! reference names no object of class T; the link is then null.
    void Load(ZELGeoStream& stream)
    {
        ZELGeoGeometryRef saved;
        stream >> saved;
        Set(ZELGeoLinks::Resolve<T>(stream, saved));
        ZELGeoLinks::ExpectResolved(Get(), saved);
    }

private:
    void Swap(ZELKinCountedLink& other) noexcept { m_object.swap(other.m_object); }

    ZELGeoLinks::Guarded<T> m_object;
};

#endif // ZELKINCOUNTEDLINK_P_H
