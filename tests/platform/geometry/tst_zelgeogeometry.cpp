#include "zelgeotestnode.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>
#include <zelsysexception.h>

#include <zeltestsupport.h>

#include <QPointer>

TEST(ZELGeoGeometry, RegistersWithItsContainerUnderANewIdentity)
{
    ZELGeoContainer container;
    auto* first = new ZELGeoTestNode(&container, 1);
    auto* second = new ZELGeoTestNode(&container, 2);
    EXPECT_EQ(first->GetContainer(), &container);
    EXPECT_TRUE(first->GetReference().IsValid());
    EXPECT_NE(first->GetReference(), second->GetReference());
    EXPECT_EQ(container.GetNumGeometries(), 2);
    EXPECT_EQ(container.GetGeometryByRef(second->GetReference()), second);
}

TEST(ZELGeoGeometry, IsNotAQObjectChildOfItsContainer)
{
    ZELGeoContainer container;
    const auto* node = new ZELGeoTestNode(&container, 1);
    EXPECT_EQ(node->parent(), nullptr);
    EXPECT_TRUE(container.children().isEmpty());
}

TEST(ZELGeoGeometry, AcceptsANullContainerAndThenHasNoIdentity)
{
    const ZELGeoTestNode node(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(node.GetContainer(), nullptr);
    EXPECT_FALSE(node.GetReference().IsValid());
}

TEST(ZELGeoGeometry, KeepsARequestedIdentity)
{
    ZELGeoContainer container;
    const auto* node = new ZELGeoTestNode(&container, ZELGeoGeometryRef(500));
    EXPECT_EQ(node->GetReference(), ZELGeoGeometryRef(500));
    const auto* next = new ZELGeoTestNode(&container, 1);
    EXPECT_EQ(next->GetReference(), ZELGeoGeometryRef(501));
}

TEST(ZELGeoGeometry, RefusesAnIdentityAlreadyInUse)
{
    ZELGeoContainer container;
    new ZELGeoTestNode(&container, ZELGeoGeometryRef(9));
    EXPECT_THROW_MESSAGE(new ZELGeoTestNode(&container, ZELGeoGeometryRef(9)), ZELSysException,
                         "geometry identity 9 is already in use");
    EXPECT_EQ(container.GetNumGeometries(), 1);
}

TEST(ZELGeoGeometry, UnregistersWhenDeleted)
{
    ZELGeoContainer container;
    auto* node = new ZELGeoTestNode(&container, 1);
    const ZELGeoGeometryRef reference = node->GetReference();
    delete node;
    EXPECT_EQ(container.GetGeometryByRef(reference), nullptr);
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

TEST(ZELGeoGeometry, UnregistersWhenItsConstructorThrows)
{
    ZELGeoContainer container;
    new ZELGeoTestNode(&container, 1);
    EXPECT_THROW_MESSAGE(new ZELGeoFailingNode(&container, ZELGeoGeometryRef()), ZELSysException, "failing node");
    EXPECT_EQ(container.GetNumGeometries(), 1);
}

TEST(ZELGeoGeometry, CountsReferencesOnConstObjectsAndNeverDeletesOnZero)
{
    ZELGeoContainer container;
    QPointer<ZELGeoTestNode> node = new ZELGeoTestNode(&container, 1);
    const ZELGeoGeometry* constNode = node;
    constNode->AddReference();
    constNode->AddReference();
    EXPECT_EQ(constNode->GetReferenceCount(), 2);
    constNode->RemoveReference();
    constNode->RemoveReference();
    EXPECT_EQ(constNode->GetReferenceCount(), 0);
    EXPECT_FALSE(node.isNull());
}

TEST(ZELGeoGeometry, AboutToChangeMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* node = new ZELGeoTestNode(&container, 1);
    EXPECT_FALSE(container.IsModified());
    node->AboutToChange();
    EXPECT_TRUE(container.IsModified());
    container.SetModified(false);
    EXPECT_FALSE(container.IsModified());
}

TEST(ZELGeoGeometry, InitializeMarksTheGeometryInitialized)
{
    ZELGeoContainer container;
    auto* node = new ZELGeoTestNode(&container, 1);
    EXPECT_FALSE(node->IsInitialized());
    node->Initialize();
    EXPECT_TRUE(node->IsInitialized());
}

TEST(ZELGeoGeometry, BaseRecordIsEmpty)
{
    ZELGeoContainer container;
    const ZELGeoUnloadableNode node(&container);
    EXPECT_TRUE(node.GetCurrentState().isEmpty());
}

TEST(ZELGeoGeometry, SetCurrentStateRestoresASavedStateBetweenTheLoadHooks)
{
    ZELGeoContainer container;
    auto* target = new ZELGeoTestNode(&container, 1);
    auto* node = new ZELGeoTestNode(&container, 42);
    node->links.append(target);
    const QByteArray state = node->GetCurrentState();

    node->value = 0;
    node->links.clear();
    node->SetCurrentState(state);

    EXPECT_EQ(node->value, 42);
    ASSERT_EQ(node->links.size(), 1);
    EXPECT_EQ(node->links.first(), target);
    EXPECT_EQ(node->hooks, QStringList({QStringLiteral("BeginStateLoad"), QStringLiteral("EndStateLoad")}));
}
