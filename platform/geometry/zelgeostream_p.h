#ifndef ZELGEOSTREAM_P_H
#define ZELGEOSTREAM_P_H

#include "zelgeostream.h"

#include <QIODevice>

#include <optional>

// The device under a reading stream: it reads its record and ends there, and
// swallows writes. It is sequential so that a write cannot move the read
// position.
class ZELGeoRecordDevice : public QIODevice
{
public:
    explicit ZELGeoRecordDevice(const QByteArray& record);

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    QByteArray m_record;
    qint64 m_position = 0;
};

class ZELGeoStreamPrivate
{
public:
    ZELGeoStreamPrivate(ZELGeoContainer* container, std::optional<ZELGeoStream::ReferenceMap> referenceMap)
        : container(container)
        , referenceMap(std::move(referenceMap))
    {
    }

    ZELGeoContainer* container;
    std::optional<ZELGeoStream::ReferenceMap> referenceMap;
    std::unique_ptr<ZELGeoRecordDevice> device;
};

#endif // ZELGEOSTREAM_P_H
