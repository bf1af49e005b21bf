#include "zelgeotestnode.h"

#include <zelgeocontainer.h>
#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysexception.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QPointer>
#include <QRandomGenerator>

namespace {

QByteArray SaveToBytes(const ZELGeoContainer& container)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    container.Save(&buffer);
    return bytes;
}

QList<ZELGeoGeometry*> LoadFromBytes(ZELGeoContainer& container, const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return container.Load(&buffer);
}

// The outer frame of a container file, written by hand.
class FileWriter
{
public:
    FileWriter()
        : m_out(&m_bytes, QIODevice::WriteOnly)
    {
        m_out.setVersion(ZELGeoStream::DataStreamVersion);
    }

    FileWriter& Header(quint32 magic = ZELGeoContainer::FileMagic, quint32 version = ZELGeoContainer::FileVersion)
    {
        m_out << magic << version;
        return *this;
    }
    FileWriter& Count(qint32 count)
    {
        m_out << count;
        return *this;
    }
    FileWriter& Record(const QByteArray& className, quint64 identity, const QByteArray& body)
    {
        m_out << quint32(className.size());
        m_out.writeRawData(className.constData(), int(className.size()));
        m_out << identity << quint32(body.size());
        m_out.writeRawData(body.constData(), int(body.size()));
        return *this;
    }
    FileWriter& Raw(quint32 value)
    {
        m_out << value;
        return *this;
    }
    QByteArray Bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    QDataStream m_out;
};

QByteArray NodeBody(qint32 value, std::initializer_list<quint64> links)
{
    QByteArray body;
    QDataStream out(&body, QIODevice::WriteOnly);
    out.setVersion(ZELGeoStream::DataStreamVersion);
    out << value << qint32(links.size());
    for (const quint64 link : links)
        out << ZELGeoGeometryRef(link);
    return body;
}

// A small saved graph: three nodes, the first linking forward to the third.
QByteArray SavedGraph()
{
    ZELGeoContainer container;
    auto* a = new ZELGeoTestNode(&container, 10);
    auto* b = new ZELGeoTestNode(&container, 20);
    auto* c = new ZELGeoTestNode(&container, 30);
    a->links = {c, b};
    c->links = {a};
    return SaveToBytes(container);
}

ZELGeoTestNode* Node(ZELGeoGeometry* geometry)
{
    return qobject_cast<ZELGeoTestNode*>(geometry);
}

} // namespace

TEST(ZELGeoContainer, ListsGeometriesInCreationOrder)
{
    ZELGeoContainer container;
    auto* a = new ZELGeoTestNode(&container, 1);
    auto* b = new ZELGeoTestNode(&container, 2);
    auto* c = new ZELGeoTestNode(&container, 3);
    delete b;
    EXPECT_EQ(container.GetGeometries(), QList<ZELGeoGeometry*>({a, c}));
}

namespace {

// A node under an identity the caller chooses, as the loading constructor
// receives it.
ZELGeoTestNode* NodeWithIdentity(ZELGeoContainer& container, quint64 identity)
{
    return new ZELGeoTestNode(&container, ZELGeoGeometryRef(identity));
}

QList<quint64> IdentitiesOf(const QList<ZELGeoGeometry*>& geometries)
{
    QList<quint64> identities;
    for (const ZELGeoGeometry* geometry : geometries)
        identities.append(geometry->GetReference().GetIdentity());
    return identities;
}

} // namespace

TEST(ZELGeoContainer, FindsAndListsGeometriesUnderRequestedIdentitiesNearAndFar)
{
    ZELGeoContainer container;
    auto* first = new ZELGeoTestNode(&container, 1);
    auto* far = NodeWithIdentity(container, quint64(1) << 60);
    auto* near = NodeWithIdentity(container, 40);
    EXPECT_EQ(container.GetGeometryByRef(ZELGeoGeometryRef(1)), first);
    EXPECT_EQ(container.GetGeometryByRef(ZELGeoGeometryRef(40)), near);
    EXPECT_EQ(container.GetGeometryByRef(ZELGeoGeometryRef(quint64(1) << 60)), far);
    EXPECT_EQ(container.GetGeometryByRef(ZELGeoGeometryRef(2)), nullptr);
    EXPECT_EQ(container.GetNumGeometries(), 3);
    EXPECT_EQ(IdentitiesOf(container.GetGeometries()), QList<quint64>({1, 40, quint64(1) << 60}));
}

TEST(ZELGeoContainer, ListsInIdentityOrderWhenNearIdentitiesPassOneKeptAside)
{
    ZELGeoContainer container;
    new ZELGeoTestNode(&container, 1);
    NodeWithIdentity(container, 5000);
    NodeWithIdentity(container, 3000);
    NodeWithIdentity(container, 6000);
    EXPECT_EQ(IdentitiesOf(container.GetGeometries()), QList<quint64>({1, 3000, 5000, 6000}));
    EXPECT_THROW_MESSAGE(NodeWithIdentity(container, 5000), ZELSysException, "geometry identity 5000 is already in use");
}

TEST(ZELGeoContainer, AFreedIdentityCanBeRequestedAgainButIsNeverHandedOutAgain)
{
    ZELGeoContainer container;
    new ZELGeoTestNode(&container, 1);
    delete new ZELGeoTestNode(&container, 2);
    auto* again = NodeWithIdentity(container, 2);
    auto* next = new ZELGeoTestNode(&container, 3);
    EXPECT_EQ(container.GetGeometryByRef(ZELGeoGeometryRef(2)), again);
    EXPECT_EQ(next->GetReference().GetIdentity(), 3u);
    EXPECT_EQ(container.GetNumGeometries(), 3);
}

TEST(ZELGeoContainer, AGeometryDeletedFromTheSideTableIsForgotten)
{
    ZELGeoContainer container;
    const quint64 farIdentity = quint64(1) << 40;
    delete NodeWithIdentity(container, farIdentity);
    EXPECT_EQ(container.GetGeometryByRef(ZELGeoGeometryRef(farIdentity)), nullptr);
    EXPECT_EQ(container.GetNumGeometries(), 0);
    EXPECT_TRUE(container.GetGeometries().isEmpty());
}

TEST(ZELGeoContainer, DeletesItsGeometriesWhenDestroyed)
{
    QPointer<ZELGeoTestNode> node;
    {
        ZELGeoContainer container;
        node = new ZELGeoTestNode(&container, 1);
    }
    EXPECT_TRUE(node.isNull());
}

TEST(ZELGeoContainer, DeleteGeometryCallsRemoveThenDeletes)
{
    ZELGeoContainer container;
    QPointer<ZELGeoTestNode> node = new ZELGeoTestNode(&container, 1);
    QStringList journal;
    node->journal = &journal;
    container.DeleteGeometry(node);
    EXPECT_TRUE(node.isNull());
    EXPECT_EQ(journal, QStringList({QStringLiteral("Remove")}));
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELGeoContainer, DeleteGeometryRefusesAForeignGeometry)
{
    ZELGeoContainer container, other;
    auto* foreign = new ZELGeoTestNode(&other, 1);
    EXPECT_THROW_MESSAGE(container.DeleteGeometry(foreign), ZELSysException,
                         "geometry does not belong to this container");
    EXPECT_THROW_MESSAGE(container.DeleteGeometry(nullptr), ZELSysException,
                         "geometry does not belong to this container");
    EXPECT_EQ(other.GetNumGeometries(), 1);
}

TEST(ZELGeoContainer, FileStartsWithMagicNumberAndVersion)
{
    ZELGeoContainer container;
    const QByteArray bytes = SaveToBytes(container);
    EXPECT_EQ(bytes, FileWriter().Header().Count(0).Bytes());
}

TEST(ZELGeoContainer, SaveAndLoadRoundTripResolvesForwardReferences)
{
    ZELGeoContainer loaded;
    const QList<ZELGeoGeometry*> geometries = LoadFromBytes(loaded, SavedGraph());
    ASSERT_EQ(geometries.size(), 3);
    ZELGeoTestNode* a = Node(geometries.at(0));
    ZELGeoTestNode* b = Node(geometries.at(1));
    ZELGeoTestNode* c = Node(geometries.at(2));
    ASSERT_TRUE(a && b && c);
    EXPECT_EQ(a->value, 10);
    EXPECT_EQ(b->value, 20);
    EXPECT_EQ(c->value, 30);
    EXPECT_EQ(a->links, QList<QPointer<ZELGeoTestNode>>({c, b}));
    EXPECT_EQ(c->links, QList<QPointer<ZELGeoTestNode>>({a}));
    EXPECT_EQ(loaded.GetGeometries(), geometries);
}

TEST(ZELGeoContainer, LoadingIntoAFilledContainerGivesNewIdentities)
{
    ZELGeoContainer container;
    LoadFromBytes(container, SavedGraph());
    const QList<ZELGeoGeometry*> second = LoadFromBytes(container, SavedGraph());
    EXPECT_EQ(container.GetNumGeometries(), 6);
    EXPECT_EQ(Node(second.at(0))->links.first(), Node(second.at(2)));
}

TEST(ZELGeoContainer, LoadRunsTheHooksInOrder)
{
    ZELGeoContainer container;
    const QList<ZELGeoGeometry*> geometries = LoadFromBytes(container, SavedGraph());
    for (ZELGeoGeometry* geometry : geometries) {
        EXPECT_EQ(Node(geometry)->hooks,
                  QStringList({QStringLiteral("BeginStateLoad"), QStringLiteral("EndStateLoad"),
                               QStringLiteral("Cleanup"), QStringLiteral("Initialize")}));
        EXPECT_TRUE(geometry->IsInitialized());
    }
}

TEST(ZELGeoContainer, LoadRefusesAnUnreadableDevice)
{
    ZELGeoContainer container;
    QBuffer closed;
    EXPECT_THROW_MESSAGE(container.Load(&closed), ZELSysException,
                         "cannot read the geometry container: the device is not open for reading");
    EXPECT_THROW_MESSAGE(container.Load(nullptr), ZELSysException,
                         "cannot read the geometry container: the device is not open for reading");
}

TEST(ZELGeoContainer, SaveRefusesAnUnwritableDevice)
{
    ZELGeoContainer container;
    QBuffer closed;
    EXPECT_THROW_MESSAGE(container.Save(&closed), ZELSysException,
                         "cannot write the geometry container: the device is not open for writing");
}

struct BrokenFileCase
{
    const char* name;
    QByteArray bytes;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(BrokenFileCase);

class ZELGeoContainerBrokenFile : public ::testing::TestWithParam<BrokenFileCase>
{
};

TEST_P(ZELGeoContainerBrokenFile, EndsInAClearExceptionAndLeavesTheContainerAsItWas)
{
    ZELGeoContainer container;
    new ZELGeoTestNode(&container, 1);
    EXPECT_THROW_MESSAGE(LoadFromBytes(container, GetParam().bytes), ZELSysException, GetParam().message);
    EXPECT_EQ(container.GetNumGeometries(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Frames, ZELGeoContainerBrokenFile,
    ::testing::Values(
        BrokenFileCase{"Empty", QByteArray(), "geometry container is truncated"},
        BrokenFileCase{"BadMagic", FileWriter().Header(0x12345678).Count(0).Bytes(),
                       "not a geometry container file (bad magic number)"},
        BrokenFileCase{"FutureVersion", FileWriter().Header(ZELGeoContainer::FileMagic, 2).Count(0).Bytes(),
                       "unsupported geometry container version 2 (this library reads version 1)"},
        BrokenFileCase{"NegativeCount", FileWriter().Header().Count(-1).Bytes(),
                       "geometry container is corrupt: negative record count -1"},
        BrokenFileCase{"HugeCountWithoutRecords", FileWriter().Header().Count(2000000000).Bytes(),
                       "geometry container is truncated"},
        BrokenFileCase{"HugeBodyLength",
                       FileWriter().Header().Count(1).Raw(14).Bytes() + QByteArray("ZELGeoTestNode") +
                           FileWriter().Raw(0).Raw(1).Raw(0xFFFFFFFF).Bytes(),
                       "geometry container is truncated"},
        BrokenFileCase{"EmptyClassName", FileWriter().Header().Count(1).Record("", 1, QByteArray()).Bytes(),
                       "geometry container is corrupt: record 0 has a class name of 0 bytes"},
        BrokenFileCase{"LongClassName", FileWriter().Header().Count(1).Raw(100000).Bytes(),
                       "geometry container is corrupt: record 0 has a class name of 100000 bytes"},
        BrokenFileCase{"EmptyIdentity",
                       FileWriter().Header().Count(1).Record("ZELGeoTestNode", 0, NodeBody(1, {})).Bytes(),
                       "geometry container is corrupt: record 0 has an empty identity"},
        BrokenFileCase{"RepeatedIdentity",
                       FileWriter()
                           .Header()
                           .Count(2)
                           .Record("ZELGeoTestNode", 4, NodeBody(1, {}))
                           .Record("ZELGeoTestNode", 4, NodeBody(2, {}))
                           .Bytes(),
                       "geometry container is corrupt: record 1 repeats identity 4"},
        BrokenFileCase{"UnknownClass",
                       FileWriter().Header().Count(1).Record("NoSuchGeometry", 1, QByteArray()).Bytes(),
                       "record 0 names an unknown class 'NoSuchGeometry'"},
        BrokenFileCase{"TrailingBytes",
                       FileWriter().Header().Count(1).Record("ZELGeoTestNode", 1, NodeBody(1, {})).Raw(7).Bytes(),
                       "geometry container is corrupt: data after the last record"},
        BrokenFileCase{"ConstructorThrows",
                       FileWriter()
                           .Header()
                           .Count(2)
                           .Record("ZELGeoTestNode", 1, NodeBody(1, {}))
                           .Record("ZELGeoFailingNode", 2, QByteArray())
                           .Bytes(),
                       "failing node"}),
    [](const ::testing::TestParamInfo<BrokenFileCase>& info) { return std::string(info.param.name); });

TEST(ZELGeoContainer, AReferenceToAnUnsavedGeometryFailsTheLoadAndRollsItBack)
{
    ZELGeoContainer container;
    const QByteArray bytes = FileWriter()
                                 .Header()
                                 .Count(2)
                                 .Record("ZELGeoTestNode", 1, NodeBody(1, {2}))
                                 .Record("ZELGeoTestNode", 2, NodeBody(2, {77}))
                                 .Bytes();
    EXPECT_THROW_MESSAGE(LoadFromBytes(container, bytes), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELGeoTestNode with reference 77");
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELGeoContainer, AReferenceCannotReachAGeometryThatWasNotInTheFile)
{
    ZELGeoContainer container;
    const auto* existing = new ZELGeoTestNode(&container, 1);
    const QByteArray bytes =
        FileWriter()
            .Header()
            .Count(1)
            .Record("ZELGeoTestNode", 5, NodeBody(1, {existing->GetReference().GetIdentity()}))
            .Bytes();
    EXPECT_THROW(LoadFromBytes(container, bytes), ZELGeoGeometryNotFoundException);
    EXPECT_EQ(container.GetNumGeometries(), 1);
}

TEST(ZELGeoContainer, ARecordShorterThanItsFieldsLoadsWithDefaults)
{
    ZELGeoContainer container;
    const QByteArray bytes = FileWriter().Header().Count(1).Record("ZELGeoTestNode", 1, QByteArray()).Bytes();
    const QList<ZELGeoGeometry*> geometries = LoadFromBytes(container, bytes);
    ASSERT_EQ(geometries.size(), 1);
    EXPECT_EQ(Node(geometries.first())->value, 0);
    EXPECT_TRUE(Node(geometries.first())->links.isEmpty());
}

TEST(ZELGeoContainer, EveryTruncationOfAValidFileEndsInAnExceptionNeverACrash)
{
    const QByteArray bytes = SavedGraph();
    for (int length = 0; length < bytes.size(); ++length) {
        ZELGeoContainer container;
        EXPECT_THROW(LoadFromBytes(container, bytes.left(length)), ZELSysException) << "length " << length;
        EXPECT_EQ(container.GetNumGeometries(), 0) << "length " << length;
    }
}

TEST(ZELGeoContainer, CorruptedBytesLoadOrThrowButNeverCrash)
{
    const QByteArray original = SavedGraph();
    QRandomGenerator random(20261121);
    for (int round = 0; round < 3000; ++round) {
        QByteArray bytes = original;
        const int flips = 1 + int(random.bounded(4));
        for (int flip = 0; flip < flips; ++flip)
            bytes[int(random.bounded(bytes.size()))] = char(random.bounded(256));
        ZELGeoContainer container;
        try {
            const QList<ZELGeoGeometry*> geometries = LoadFromBytes(container, bytes);
            EXPECT_EQ(container.GetNumGeometries(), geometries.size());
        } catch (const ZELSysException&) {
            EXPECT_EQ(container.GetNumGeometries(), 0);
        }
    }
}

TEST(ZELGeoContainer, RegistryFindsRegisteredClassesByName)
{
    EXPECT_EQ(ZELGeoContainer::FindClass("ZELGeoTestNode"), &ZELGeoTestNode::staticMetaObject);
    EXPECT_EQ(ZELGeoContainer::FindClass("ZELGeoUnloadableNode"), nullptr);
}

TEST(ZELGeoContainer, RegistryRefusesAClassWithoutTheLoadingConstructor)
{
    EXPECT_THROW_MESSAGE(ZELGeoContainer::RegisterClass(ZELGeoUnloadableNode::staticMetaObject), ZELSysException,
                         "class ZELGeoUnloadableNode cannot be registered: its constructor 0 must be invokable "
                         "as (ZELGeoContainer*, ZELGeoGeometryRef)");
    EXPECT_THROW(ZELGeoContainer::RegisterClass(ZELGeoContainer::staticMetaObject), ZELSysException);
}
