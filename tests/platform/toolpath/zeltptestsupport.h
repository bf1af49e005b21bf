#ifndef ZELTPTESTSUPPORT_H
#define ZELTPTESTSUPPORT_H

#include <zelgeocontainer.h>

#include <QBuffer>

namespace ZELTPTest {

//! Saves the whole container to bytes and loads them into `target`.
inline QList<ZELGeoGeometry*> CopyContainer(const ZELGeoContainer& source, ZELGeoContainer& target)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    source.Save(&buffer);
    buffer.seek(0);
    return target.Load(&buffer);
}

} // namespace ZELTPTest

#endif // ZELTPTESTSUPPORT_H
