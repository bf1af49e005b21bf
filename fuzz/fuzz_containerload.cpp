// Bytes handed to a fresh container to load, with every class of the
// library and of the toolpath model registered. Bad files end in
// ZELSysException with the container left as it was; any other way out is a
// finding. Loading has no fatal messages.

#include "zelkinfuzz.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>

#include <QBuffer>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    QByteArray bytes = ZELKinFuzz::Bytes(data, size);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    ZELGeoContainer container;
    try {
        const QList<ZELGeoGeometry*> loaded = container.Load(&buffer);
        return int(loaded.size()) == container.GetNumGeometries() ? 0 : 1;
    } catch (const ZELSysException&) {
        return container.GetNumGeometries() == 0 ? 0 : 1;
    }
}
