#include "zelgeostream.h"
#include "zelgeostream_p.h"

#include <cstring>

ZELGeoRecordDevice::ZELGeoRecordDevice(const QByteArray& record)
    : m_record(record)
{
    open(QIODevice::ReadWrite | QIODevice::Unbuffered);
}

qint64 ZELGeoRecordDevice::bytesAvailable() const
{
    return m_record.size() - m_position + QIODevice::bytesAvailable();
}

qint64 ZELGeoRecordDevice::readData(char* data, qint64 maxSize)
{
    const qint64 count = std::min(maxSize, m_record.size() - m_position);
    std::memcpy(data, m_record.constData() + m_position, size_t(count));
    m_position += count;
    return count;
}

qint64 ZELGeoRecordDevice::writeData(const char*, qint64 size)
{
    return size;
}

ZELGeoStream::ZELGeoStream(QByteArray* record, ZELGeoContainer* container)
    : QDataStream(record, QIODevice::WriteOnly | QIODevice::Append)
    , d_ptr(new ZELGeoStreamPrivate(container, std::nullopt))
{
    setVersion(DataStreamVersion);
}

ZELGeoStream::ZELGeoStream(const QByteArray& record, ZELGeoContainer* container)
    : d_ptr(new ZELGeoStreamPrivate(container, std::nullopt))
{
    ReadFrom(record);
}

ZELGeoStream::ZELGeoStream(const QByteArray& record, ZELGeoContainer* container, const ReferenceMap& referenceMap)
    : d_ptr(new ZELGeoStreamPrivate(container, referenceMap))
{
    ReadFrom(record);
}

void ZELGeoStream::ReadFrom(const QByteArray& record)
{
    Q_D(ZELGeoStream);
    d->device = std::make_unique<ZELGeoRecordDevice>(record);
    setDevice(d->device.get());
    setVersion(DataStreamVersion);
}

ZELGeoStream::~ZELGeoStream()
{
    setDevice(nullptr);
}

ZELGeoContainer* ZELGeoStream::GetContainer() const
{
    Q_D(const ZELGeoStream);
    return d->container;
}

ZELGeoGeometryRef ZELGeoStream::GetMappedReference(const ZELGeoGeometryRef& saved) const
{
    Q_D(const ZELGeoStream);
    if (!d->referenceMap)
        return saved;
    return d->referenceMap->value(saved);
}
