#ifndef ZELGEOCONTAINER_H
#define ZELGEOCONTAINER_H

#include "zelgeometry_export.h"
#include "zelgeogeometryref.h"

#include <QList>
#include <QObject>

#include <memory>

class QIODevice;
class ZELGeoContainerPrivate;
class ZELGeoGeometry;

/*!
    Owns geometries, gives each an identity, and saves and loads them all.

    Look-ups by reference are hash look-ups. The container is not the QObject
    parent of its geometries (it may hold millions); it deletes whatever it
    still holds when it is destroyed.

    File format, written with QDataStream version Qt_6_0, big-endian:

    | item | type |
    |---|---|
    | magic number "ZELG" | quint32 0x5A454C47 |
    | format version (1) | quint32 |
    | record count | qint32 |
    | per record: class name | quint32 length, then that many Latin-1 bytes (at most 255) |
    | per record: saved identity | quint64 (never 0) |
    | per record: body | quint32 length, then the bytes that the geometry's Save wrote |

    Records come in identity order, which is creation order. Each body is read
    back through its own ZELGeoStream bounded to the body: reading past its end
    gives zeros and empty references and sets the stream's status, and is not
    an error. Only a broken outer frame is: a bad magic number or version, a
    truncated record, an unknown class, a repeated identity or trailing bytes
    end the load with a ZELSysException that says which. Nothing is allocated
    from a count or length that the data has not backed with bytes.

    Classes are created by name through an explicit registry
    (RegisterClass): a registered class must offer an invokable constructor
    taking (ZELGeoContainer* container, ZELGeoGeometryRef reference) as its
    meta-object's constructor 0.
*/
class ZELGEOMETRY_EXPORT ZELGeoContainer : public QObject
{
    Q_OBJECT

public:
    static constexpr quint32 FileMagic = 0x5A454C47;
    static constexpr quint32 FileVersion = 1;

    explicit ZELGeoContainer(QObject* parent = nullptr);
    //! Deletes every geometry the container still holds.
    ~ZELGeoContainer() override;

    //! The geometry with this identity, or null.
    ZELGeoGeometry* GetGeometryByRef(const ZELGeoGeometryRef& reference) const;
    int GetNumGeometries() const;
    //! Every geometry, in identity (creation) order.
    QList<ZELGeoGeometry*> GetGeometries() const;
    //! Calls the geometry's Remove() and deletes it. Throws ZELSysException
    //! "geometry does not belong to this container" for a foreign geometry.
    void DeleteGeometry(ZELGeoGeometry* geometry);

    //! Writes every geometry. Throws ZELSysException "cannot write the
    //! geometry container: <reason>" when the device refuses the data.
    void Save(QIODevice* device) const;
    //! Reads geometries saved by Save into this container under new
    //! identities and returns them in file order. Loading runs in two phases:
    //! every geometry is created first, then each reads its record, so
    //! references to geometries later in the file resolve. Then Cleanup() and
    //! Initialize() run on each new geometry. Throws ZELSysException for a
    //! broken file, or what a geometry's Load throws; the geometries created
    //! by a failed load are deleted again, so the container is as it was.
    QList<ZELGeoGeometry*> Load(QIODevice* device);

    //! Set when a geometry calls AboutToChange; cleared only by the host.
    bool IsModified() const;
    void SetModified(bool modified);

    //! Makes a geometry class creatable by Load under its class name.
    static void RegisterClass(const QMetaObject& metaObject);
    //! The registered class of that name, or null.
    static const QMetaObject* FindClass(const QByteArray& className);

private:
    Q_DECLARE_PRIVATE(ZELGeoContainer)
    Q_DISABLE_COPY_MOVE(ZELGeoContainer)
    std::unique_ptr<ZELGeoContainerPrivate> const d_ptr;
};

//! Registers `Class` with the container's class registry when the library
//! holding this line is loaded. Use once per class, in its source file.
#define ZELGEO_REGISTER_CLASS(Class)                                                   \
    namespace {                                                                        \
    const bool zelgeoRegistered##Class =                                               \
        (ZELGeoContainer::RegisterClass(Class::staticMetaObject), true);               \
    }

#endif // ZELGEOCONTAINER_H
