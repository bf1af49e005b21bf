#include "zelgeotestnode.h"

#include <zelgeocontainer.h>
#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

ZELGEO_REGISTER_CLASS(ZELGeoTestNode)
ZELGEO_REGISTER_CLASS(ZELGeoFailingNode)

ZELGeoTestNode::ZELGeoTestNode(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELGeoGeometry(container, reference)
{
}

ZELGeoTestNode::ZELGeoTestNode(ZELGeoContainer* container, qint32 value)
    : ZELGeoGeometry(container, ZELGeoGeometryRef())
    , value(value)
{
}

void ZELGeoTestNode::Save(ZELGeoStream& stream) const
{
    ZELGeoGeometry::Save(stream);
    stream << value << qint32(links.size());
    for (const ZELGeoTestNode* link : links)
        stream << ZELGeoGeometryRef(link);
}

void ZELGeoTestNode::Load(ZELGeoStream& stream)
{
    ZELGeoGeometry::Load(stream);
    qint32 count = 0;
    stream >> value >> count;
    links.clear();
    for (qint32 i = 0; i < count && !stream.atEnd(); ++i) {
        ZELGeoGeometryRef saved;
        stream >> saved;
        const ZELGeoGeometryRef mapped = stream.GetMappedReference(saved);
        auto* link = qobject_cast<ZELGeoTestNode*>(stream.GetContainer()->GetGeometryByRef(mapped));
        if (!link && saved.IsValid())
            throw ZELGeoGeometryNotFoundException(saved, QStringLiteral("ZELGeoTestNode"));
        links.append(link);
    }
}

void ZELGeoTestNode::Initialize()
{
    ZELGeoGeometry::Initialize();
    Record(QStringLiteral("Initialize"));
}

void ZELGeoTestNode::Remove()
{
    Record(QStringLiteral("Remove"));
}

void ZELGeoTestNode::BeginStateLoad()
{
    Record(QStringLiteral("BeginStateLoad"));
}

void ZELGeoTestNode::EndStateLoad()
{
    Record(QStringLiteral("EndStateLoad"));
}

bool ZELGeoTestNode::Cleanup()
{
    Record(QStringLiteral("Cleanup"));
    return false;
}

void ZELGeoTestNode::Record(const QString& hook)
{
    hooks << hook;
    if (journal)
        *journal << hook;
}

ZELGeoFailingNode::ZELGeoFailingNode(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELGeoGeometry(container, reference)
{
    throw ZELSysException(QStringLiteral("failing node"));
}

ZELGeoUnloadableNode::ZELGeoUnloadableNode(ZELGeoContainer* container)
    : ZELGeoGeometry(container, ZELGeoGeometryRef())
{
}
