#include "zelgeocontainer.h"
#include "zelgeocontainer_p.h"

#include "zelgeogeometry.h"
#include "zelgeostream.h"

#include <zelsysexception.h>

#include <QDataStream>
#include <QIODevice>
#include <QMutex>
#include <QMutexLocker>
#include <QSet>

#include <algorithm>

namespace {

// Longer class names than this are taken as corruption, not as a class.
constexpr quint32 MaximumClassNameLength = 255;
// Record bodies are read in steps of this size, so that a forged length
// allocates no more than the bytes actually present plus one step.
constexpr qsizetype ReadStep = 1 << 20;

struct ClassRegistry
{
    QMutex mutex;
    QHash<QByteArray, const QMetaObject*> classes;
};

ClassRegistry& Registry()
{
    static ClassRegistry registry;
    return registry;
}

QByteArray LoadingConstructorSignature(const QMetaObject& metaObject)
{
    return QByteArray(metaObject.className()) + "(ZELGeoContainer*,ZELGeoGeometryRef)";
}

struct SavedRecord
{
    QByteArray className;
    ZELGeoGeometryRef reference;
    QByteArray body;
};

// Reads the outer frame of a container file; every failure is a
// ZELSysException naming what is wrong.
class FrameReader
{
public:
    explicit FrameReader(QIODevice* device)
        : m_stream(device)
    {
        m_stream.setVersion(ZELGeoStream::DataStreamVersion);
    }

    void ReadHeader()
    {
        if (ReadUInt32() != ZELGeoContainer::FileMagic)
            throw ZELSysException(QStringLiteral("not a geometry container file (bad magic number)"));
        const quint32 version = ReadUInt32();
        if (version != ZELGeoContainer::FileVersion)
            throw ZELSysException(
                QStringLiteral("unsupported geometry container version %1 (this library reads version %2)")
                    .arg(version)
                    .arg(ZELGeoContainer::FileVersion));
    }

    qint32 ReadRecordCount()
    {
        const qint32 count = static_cast<qint32>(ReadUInt32());
        if (count < 0)
            throw ZELSysException(QStringLiteral("geometry container is corrupt: negative record count %1").arg(count));
        return count;
    }

    SavedRecord ReadRecord(int index)
    {
        SavedRecord record;
        const quint32 nameLength = ReadUInt32();
        if (nameLength == 0 || nameLength > MaximumClassNameLength)
            throw ZELSysException(
                QStringLiteral("geometry container is corrupt: record %1 has a class name of %2 bytes")
                    .arg(index)
                    .arg(nameLength));
        record.className = ReadBytes(nameLength);
        record.reference = ZELGeoGeometryRef(ReadUInt64());
        if (!record.reference.IsValid())
            throw ZELSysException(
                QStringLiteral("geometry container is corrupt: record %1 has an empty identity").arg(index));
        record.body = ReadBytes(ReadUInt32());
        return record;
    }

    void ExpectEnd()
    {
        if (!m_stream.atEnd())
            throw ZELSysException(QStringLiteral("geometry container is corrupt: data after the last record"));
    }

private:
    quint32 ReadUInt32()
    {
        quint32 value = 0;
        m_stream >> value;
        ExpectComplete();
        return value;
    }

    quint64 ReadUInt64()
    {
        quint64 value = 0;
        m_stream >> value;
        ExpectComplete();
        return value;
    }

    QByteArray ReadBytes(quint32 length)
    {
        QByteArray bytes;
        while (bytes.size() < qsizetype(length)) {
            const qsizetype done = bytes.size();
            const qsizetype step = std::min<qsizetype>(ReadStep, qsizetype(length) - done);
            bytes.resize(done + step);
            if (m_stream.readRawData(bytes.data() + done, int(step)) != step)
                throw Truncated();
        }
        return bytes;
    }

    void ExpectComplete() const
    {
        if (m_stream.status() != QDataStream::Ok)
            throw Truncated();
    }

    static ZELSysException Truncated()
    {
        return ZELSysException(QStringLiteral("geometry container is truncated"));
    }

    QDataStream m_stream;
};

QList<SavedRecord> ReadRecords(QIODevice* device)
{
    if (!device || !device->isReadable())
        throw ZELSysException(QStringLiteral("cannot read the geometry container: the device is not open for reading"));
    FrameReader reader(device);
    reader.ReadHeader();
    const qint32 count = reader.ReadRecordCount();
    QList<SavedRecord> records;
    QSet<ZELGeoGeometryRef> seen;
    for (int index = 0; index < count; ++index) {
        SavedRecord record = reader.ReadRecord(index);
        if (seen.contains(record.reference))
            throw ZELSysException(QStringLiteral("geometry container is corrupt: record %1 repeats identity %2")
                                      .arg(index)
                                      .arg(record.reference.GetIdentity()));
        seen.insert(record.reference);
        records.append(std::move(record));
    }
    reader.ExpectEnd();
    return records;
}

} // namespace

// How far past the last slot a requested identity may lie and still get
// a slot: the slots at most double, plus this many.
constexpr quint64 SlotGrowthAllowance = 1024;

bool ZELGeoContainerPrivate::FitsSlots(quint64 identity) const
{
    return identity - 1 < 2 * quint64(inSlots.size()) + SlotGrowthAllowance;
}

ZELGeoGeometryRef ZELGeoContainerPrivate::Register(ZELGeoGeometry* geometry, const ZELGeoGeometryRef& requested)
{
    const quint64 identity = requested.IsValid() ? requested.GetIdentity() : nextIdentity;
    if (Find(identity))
        throw ZELSysException(QStringLiteral("geometry identity %1 is already in use").arg(identity));
    if (FitsSlots(identity)) {
        if (!IsInSlots(identity))
            inSlots.resize(std::size_t(identity), nullptr);
        inSlots[std::size_t(identity - 1)] = geometry;
    } else {
        distant.insert(identity, geometry);
    }
    ++count;
    nextIdentity = std::max(nextIdentity, identity + 1);
    return ZELGeoGeometryRef(identity);
}

void ZELGeoContainerPrivate::Unregister(const ZELGeoGeometryRef& reference)
{
    const quint64 identity = reference.GetIdentity();
    if (IsInSlots(identity) && inSlots[std::size_t(identity - 1)]) {
        inSlots[std::size_t(identity - 1)] = nullptr;
        --count;
    } else if (distant.remove(identity)) {
        --count;
    }
}

ZELGeoGeometry* ZELGeoContainerPrivate::Find(quint64 identity) const
{
    ZELGeoGeometry* const inSlot = IsInSlots(identity) ? inSlots[std::size_t(identity - 1)] : nullptr;
    if (inSlot || distant.isEmpty())
        return inSlot;
    return distant.value(identity, nullptr);
}

QList<ZELGeoGeometry*> ZELGeoContainerPrivate::InIdentityOrder() const
{
    QList<ZELGeoGeometry*> geometries;
    geometries.reserve(count);
    for (ZELGeoGeometry* geometry : inSlots) {
        if (geometry)
            geometries.append(geometry);
    }
    if (distant.isEmpty())
        return geometries;
    // Slots may have grown past identities kept aside earlier: merge.
    QList<quint64> identities = distant.keys();
    for (ZELGeoGeometry* geometry : std::as_const(geometries))
        identities.append(geometry->GetReference().GetIdentity());
    std::sort(identities.begin(), identities.end());
    geometries.clear();
    for (const quint64 identity : std::as_const(identities))
        geometries.append(Find(identity));
    return geometries;
}

void ZELGeoContainerPrivate::Clear()
{
    inSlots.clear();
    distant.clear();
    count = 0;
}

ZELGeoContainer::ZELGeoContainer(QObject* parent)
    : QObject(parent)
    , d_ptr(new ZELGeoContainerPrivate)
{
}

ZELGeoContainer::~ZELGeoContainer()
{
    // Later geometries usually depend on earlier ones: delete them first.
    Q_D(ZELGeoContainer);
    const QList<ZELGeoGeometry*> geometries = d->InIdentityOrder();
    d->Clear();
    std::for_each(geometries.rbegin(), geometries.rend(), [](ZELGeoGeometry* geometry) { delete geometry; });
}

ZELGeoGeometry* ZELGeoContainer::GetGeometryByRef(const ZELGeoGeometryRef& reference) const
{
    Q_D(const ZELGeoContainer);
    return d->Find(reference.GetIdentity());
}

int ZELGeoContainer::GetNumGeometries() const
{
    Q_D(const ZELGeoContainer);
    return int(d->count);
}

QList<ZELGeoGeometry*> ZELGeoContainer::GetGeometries() const
{
    Q_D(const ZELGeoContainer);
    return d->InIdentityOrder();
}

void ZELGeoContainer::DeleteGeometry(ZELGeoGeometry* geometry)
{
    if (!geometry || geometry->GetContainer() != this)
        throw ZELSysException(QStringLiteral("geometry does not belong to this container"));
    geometry->Remove();
    delete geometry;
}

void ZELGeoContainer::Save(QIODevice* device) const
{
    if (!device || !device->isWritable())
        throw ZELSysException(QStringLiteral("cannot write the geometry container: the device is not open for writing"));
    QDataStream out(device);
    out.setVersion(ZELGeoStream::DataStreamVersion);
    const QList<ZELGeoGeometry*> geometries = GetGeometries();
    out << FileMagic << FileVersion << qint32(geometries.size());
    for (const ZELGeoGeometry* geometry : geometries) {
        const QByteArray className = geometry->metaObject()->className();
        const QByteArray body = geometry->GetCurrentState();
        out << quint32(className.size());
        out.writeRawData(className.constData(), int(className.size()));
        out << geometry->GetReference().GetIdentity() << quint32(body.size());
        out.writeRawData(body.constData(), int(body.size()));
    }
    if (out.status() != QDataStream::Ok)
        throw ZELSysException(QStringLiteral("cannot write the geometry container: %1").arg(device->errorString()));
}

QList<ZELGeoGeometry*> ZELGeoContainer::Load(QIODevice* device)
{
    const QList<SavedRecord> records = ReadRecords(device);

    QList<ZELGeoGeometry*> created;
    created.reserve(records.size());
    try {
        QHash<ZELGeoGeometryRef, ZELGeoGeometryRef> referenceMap;
        for (int index = 0; index < records.size(); ++index) {
            const SavedRecord& record = records.at(index);
            const QMetaObject* metaObject = FindClass(record.className);
            if (!metaObject)
                throw ZELSysException(QStringLiteral("record %1 names an unknown class '%2'")
                                          .arg(index)
                                          .arg(QString::fromLatin1(record.className)));
            QObject* object = metaObject->newInstance(Q_ARG(ZELGeoContainer*, this),
                                                      Q_ARG(ZELGeoGeometryRef, ZELGeoGeometryRef()));
            auto* geometry = qobject_cast<ZELGeoGeometry*>(object);
            if (!geometry) {
                delete object;
                throw ZELSysException(QStringLiteral("record %1 of class '%2' cannot be created")
                                          .arg(index)
                                          .arg(QString::fromLatin1(record.className)));
            }
            created.append(geometry);
            referenceMap.insert(record.reference, geometry->GetReference());
        }
        for (int index = 0; index < records.size(); ++index) {
            ZELGeoStream stream(records.at(index).body, this, referenceMap);
            ZELGeoGeometry* geometry = created.at(index);
            geometry->BeginStateLoad();
            geometry->Load(stream);
            geometry->EndStateLoad();
        }
    } catch (...) {
        std::for_each(created.rbegin(), created.rend(), [](ZELGeoGeometry* geometry) { delete geometry; });
        throw;
    }
    for (ZELGeoGeometry* geometry : created)
        geometry->Cleanup();
    for (ZELGeoGeometry* geometry : created)
        geometry->Initialize();
    return created;
}

bool ZELGeoContainer::IsModified() const
{
    Q_D(const ZELGeoContainer);
    return d->modified;
}

void ZELGeoContainer::SetModified(bool modified)
{
    Q_D(ZELGeoContainer);
    d->modified = modified;
}

void ZELGeoContainer::RegisterClass(const QMetaObject& metaObject)
{
    if (!metaObject.inherits(&ZELGeoGeometry::staticMetaObject)
        || metaObject.indexOfConstructor(LoadingConstructorSignature(metaObject)) != 0)
        throw ZELSysException(QStringLiteral("class %1 cannot be registered: its constructor 0 must be "
                                             "invokable as (ZELGeoContainer*, ZELGeoGeometryRef)")
                                  .arg(QString::fromLatin1(metaObject.className())));
    ClassRegistry& registry = Registry();
    QMutexLocker locker(&registry.mutex);
    registry.classes.insert(metaObject.className(), &metaObject);
}

const QMetaObject* ZELGeoContainer::FindClass(const QByteArray& className)
{
    ClassRegistry& registry = Registry();
    QMutexLocker locker(&registry.mutex);
    return registry.classes.value(className, nullptr);
}
