#ifndef ZELGEOTESTNODE_H
#define ZELGEOTESTNODE_H

#include <zelgeogeometry.h>

#include <QList>
#include <QPointer>
#include <QStringList>

// A geometry for the container's tests: a number, a list of references to
// other nodes, and a log of the hooks the container calls on it.
class ZELGeoTestNode : public ZELGeoGeometry
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELGeoTestNode(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELGeoTestNode(ZELGeoContainer* container, qint32 value);

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;
    void Initialize() override;
    void Remove() override;
    void BeginStateLoad() override;
    void EndStateLoad() override;
    bool Cleanup() override;

    qint32 value = 0;
    QList<QPointer<ZELGeoTestNode>> links;
    QStringList hooks;
    // Outlives the node, for hooks that run just before it is deleted.
    QStringList* journal = nullptr;

private:
    void Record(const QString& hook);
};

// A geometry whose constructor fails after the geometry has registered.
class ZELGeoFailingNode : public ZELGeoGeometry
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELGeoFailingNode(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
};

// A geometry class without the loading constructor: it cannot be registered.
class ZELGeoUnloadableNode : public ZELGeoGeometry
{
    Q_OBJECT

public:
    explicit ZELGeoUnloadableNode(ZELGeoContainer* container);
};

#endif // ZELGEOTESTNODE_H
