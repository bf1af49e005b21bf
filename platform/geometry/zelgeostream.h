#ifndef ZELGEOSTREAM_H
#define ZELGEOSTREAM_H

#include "zelgeometry_export.h"
#include "zelgeogeometryref.h"

#include <QDataStream>
#include <QHash>

#include <memory>

class ZELGeoContainer;
class ZELGeoStreamPrivate;

/*!
    The stream one geometry record is written to or read from: a QDataStream
    (version DataStreamVersion) that also knows the container being saved or
    loaded and how saved references map onto the container's geometries.

    A reading stream is bounded to its record: its end is the record's end,
    so a count larger than the entries present stops at the end; reading past
    it yields zeros and empty references and sets status() to ReadPastEnd,
    which is not an error. Writes made to a reading stream are accepted and
    discarded without moving the read position.
*/
class ZELGEOMETRY_EXPORT ZELGeoStream : public QDataStream
{
public:
    static constexpr QDataStream::Version DataStreamVersion = QDataStream::Qt_6_0;
    using ReferenceMap = QHash<ZELGeoGeometryRef, ZELGeoGeometryRef>;

    //! A stream that appends a record to `record`.
    ZELGeoStream(QByteArray* record, ZELGeoContainer* container);
    //! A stream that reads `record`; references are taken as they stand.
    ZELGeoStream(const QByteArray& record, ZELGeoContainer* container);
    //! A stream that reads `record` saved in another container; references
    //! are translated through `referenceMap` (saved identity to new identity).
    ZELGeoStream(const QByteArray& record, ZELGeoContainer* container, const ReferenceMap& referenceMap);
    ~ZELGeoStream();

    ZELGeoContainer* GetContainer() const;
    //! The reference in this container that `saved` stands for: `saved` itself
    //! for a stream without a map; the mapped reference, or an empty one for
    //! an identity that the map does not know, for a stream with a map.
    ZELGeoGeometryRef GetMappedReference(const ZELGeoGeometryRef& saved) const;

private:
    void ReadFrom(const QByteArray& record);

    Q_DECLARE_PRIVATE(ZELGeoStream)
    Q_DISABLE_COPY_MOVE(ZELGeoStream)
    std::unique_ptr<ZELGeoStreamPrivate> const d_ptr;
};

#endif // ZELGEOSTREAM_H
