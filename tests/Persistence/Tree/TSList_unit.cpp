#include "Persistence/Tree/TSList.h"

#include <gtest/gtest.h>

#include "base/VirtualSlot.h"
#include "TreeNodes.h"

namespace {

using Persistence::Adopt;
using Persistence::MakeNode;
using Persistence::NodeHolder;
using TestSupport::StringStream;
using TestSupport::ThrownText;
using TestSupport::TracedNode;
using TestSupport::Trail;

TEST(TSList, IsANodeOfTheListFamilyWithClassBit0) {
    const auto node = MakeNode<TSList>();
    EXPECT_EQ(node->GetFamily(), 7u);
    EXPECT_EQ(node->GetClassId(), 0u);
    EXPECT_TRUE(node->IsMemberOf(0));
    EXPECT_TRUE(node->IsMemberOf(1));
    EXPECT_TRUE(node->IsClass(0));
    EXPECT_EQ(node->GetNodeTag(), 21u);
}

TEST(TSList, IsBornWithOneReferenceNoNumberAndValidGuards) {
    const auto node = MakeNode<TSList>();
    EXPECT_EQ(node->GetRefCount(), 1);
    EXPECT_EQ(node->GetStreamIndex(), -1);
    EXPECT_TRUE(node->HasValidGuards());
    EXPECT_EQ(node->GetCount(), 0);
}

TEST(TSList, TakesElementBlocksOf100AtTheFirstChild) {
    const auto parent = MakeNode<TSList>();
    EXPECT_EQ(parent->GetGrowBy(), 100);
    EXPECT_EQ(parent->GetBlockCount(), 0);
    for (int i = 0; i < 100; ++i)
        Adopt(*parent, MakeNode<TSList>());
    EXPECT_EQ(parent->GetBlockCount(), 1);
    Adopt(*parent, MakeNode<TSList>());
    EXPECT_EQ(parent->GetBlockCount(), 2);
}

TEST(TSList, HasItsFieldsInOrder) {
    const auto node = MakeNode<TSList>();
    node->SetStreamIndex(0x1234);
    const auto *words = reinterpret_cast<const char *>(node.Get()) + sizeof(CtkDLList<TSList *>);
    std::int32_t fields[6];
    std::memcpy(fields, words, sizeof fields);
    EXPECT_EQ(fields[0], 0x1234);
    EXPECT_EQ(fields[1], 0xBC771);
    EXPECT_EQ(fields[2], 0x2FB31);
    EXPECT_EQ(fields[3], 0);
    EXPECT_EQ(fields[4], 21);
    EXPECT_EQ(fields[5], 1);
}

TEST(TSList, HasItsSlotsInOrder) {
    using TestSupport::SlotOf;
    const std::size_t first = SlotOf(&CtkDLList<TSList *>::Grow) + 1;
    EXPECT_EQ(SlotOf(&TSList::Share), first);
    EXPECT_EQ(SlotOf(&TSList::Load), first + 1);
    EXPECT_EQ(SlotOf(&TSList::Release), first + 2);
    EXPECT_EQ(SlotOf(&TSList::Replicate), first + 3);
    EXPECT_EQ(SlotOf(&TSList::Store), first + 4);
    EXPECT_EQ(SlotOf(&TSList::ClearStreamIndex), first + 5);
    EXPECT_EQ(SlotOf(&TDataPointer::GetData), first + 6);
}

TEST(TSList, ShareAddsOneToEveryDescendant) {
    const auto root = MakeNode<TSList>();
    TSList &child = Adopt(*root, MakeNode<TSList>());
    TSList &grandchild = Adopt(child, MakeNode<TSList>());
    EXPECT_EQ(root->Share(), 2);
    EXPECT_EQ(child.GetRefCount(), 2);
    EXPECT_EQ(grandchild.GetRefCount(), 2);
    EXPECT_EQ(root->Release(), 1);
    EXPECT_EQ(child.GetRefCount(), 1);
    EXPECT_EQ(grandchild.GetRefCount(), 1);
}

TEST(TSList, ShareCountsADescendantOncePerPath) {
    const auto root = MakeNode<TSList>();
    TSList &first = Adopt(*root, MakeNode<TSList>());
    TSList &second = Adopt(*root, MakeNode<TSList>());
    TSList &common = Adopt(first, MakeNode<TSList>());
    common.Share();
    second.AddTail(&common);
    EXPECT_EQ(root->Share(), 2);
    EXPECT_EQ(common.GetRefCount(), 4);
    EXPECT_EQ(root->Release(), 1);
    EXPECT_EQ(common.GetRefCount(), 2);
}

TEST(TSList, ShareCountsItselfBeforeItsChildren) {
    struct Watcher : TSList {
        explicit Watcher(const TSList &parent) : Parent(parent) {}
        std::int32_t Share() override {
            ParentCount = Parent.GetRefCount();
            return TSList::Share();
        }
        const TSList &Parent;
        std::int32_t ParentCount = 0;
    };
    const auto root = MakeNode<TSList>();
    const Watcher &child = Adopt(*root, MakeNode<Watcher>(*root));
    root->Share();
    EXPECT_EQ(child.ParentCount, 2);
    root->Release();
}

TEST(TSList, ReleaseGivesTheChildrenBackBeforeItself) {
    Trail trail;
    TSList *root = MakeNode<TracedNode>("root", trail).Detach();
    TSList &child = Adopt(*root, MakeNode<TracedNode>("child", trail));
    Adopt(child, MakeNode<TracedNode>("grandchild", trail));
    EXPECT_EQ(root->Release(), 0);
    EXPECT_EQ(trail, (Trail{"release root", "release child", "release grandchild", "destroy grandchild",
                            "destroy child", "destroy root"}));
}

TEST(TSList, ReleaseDestroysAtZeroOnly) {
    Trail trail;
    TSList *root = MakeNode<TracedNode>("root", trail).Detach();
    root->Share();
    EXPECT_EQ(root->Release(), 1);
    EXPECT_EQ(trail, (Trail{"share root", "release root"}));
    EXPECT_EQ(root->Release(), 0);
    EXPECT_EQ(trail.back(), "destroy root");
}

TEST(TSList, ANodeHeldElsewhereOutlivesItsTree) {
    Trail trail;
    auto root = MakeNode<TracedNode>("root", trail);
    TSList &child = Adopt(*root, MakeNode<TracedNode>("child", trail));
    child.Share();
    EXPECT_EQ(root.Detach()->Release(), 0);
    EXPECT_EQ(trail.back(), "destroy root");
    EXPECT_EQ(child.GetRefCount(), 1);
    EXPECT_EQ(child.Release(), 0);
    EXPECT_EQ(trail.back(), "destroy child");
}

TEST(TSList, DestroyingANodeNeverTouchesItsChildren) {
    Trail trail;
    auto child = MakeNode<TracedNode>("child", trail);
    {
        TSList parent;
        parent.AddTail(child.Get());
    }
    EXPECT_TRUE(trail.empty());
    EXPECT_EQ(child->GetRefCount(), 1);
}

TEST(TSList, WalksPastNullChildren) {
    auto root = MakeNode<TSList>();
    root->AddTail(nullptr);
    TSList &child = Adopt(*root, MakeNode<TSList>());
    child.SetStreamIndex(3);
    EXPECT_EQ(root->Share(), 2);
    EXPECT_EQ(child.GetRefCount(), 2);
    root->ClearStreamIndex();
    EXPECT_EQ(child.GetStreamIndex(), -1);
    EXPECT_EQ(root->Release(), 1);
}

TEST(TSList, ClearStreamIndexReachesAllDescendants) {
    const auto root = MakeNode<TSList>();
    TSList &child = Adopt(*root, MakeNode<TSList>());
    TSList &grandchild = Adopt(child, MakeNode<TSList>());
    root->SetStreamIndex(0);
    child.SetStreamIndex(1);
    grandchild.SetStreamIndex(2);
    root->ClearStreamIndex();
    EXPECT_EQ(root->GetStreamIndex(), -1);
    EXPECT_EQ(child.GetStreamIndex(), -1);
    EXPECT_EQ(grandchild.GetStreamIndex(), -1);
}

TEST(TSList, AChildThatThrowsEndsTheWalkSilently) {
    struct Thrower : TSList {
        void ClearStreamIndex() override { throw CtkExceptionObject("no"); }
    };
    const auto root = MakeNode<TSList>();
    TSList &first = Adopt(*root, MakeNode<TSList>());
    Adopt(*root, MakeNode<Thrower>());
    TSList &last = Adopt(*root, MakeNode<TSList>());
    for (TSList *node : {root.Get(), &first, &last})
        node->SetStreamIndex(5);
    root->ClearStreamIndex();
    EXPECT_EQ(root->GetStreamIndex(), -1);
    EXPECT_EQ(first.GetStreamIndex(), -1);
    EXPECT_EQ(last.GetStreamIndex(), 5);
}

TEST(TSList, ResetBringsNumberAndGuardsBack) {
    const auto node = MakeNode<TSList>();
    auto *guards = reinterpret_cast<char *>(node.Get()) + sizeof(CtkDLList<TSList *>) + sizeof(std::int32_t);
    for (const std::size_t spoiled : {0u, 4u}) {
        node->SetStreamIndex(9);
        std::memset(guards + spoiled, 0, 1);
        EXPECT_FALSE(node->HasValidGuards()) << "one wrong guard is enough";
        node->Reset();
        EXPECT_EQ(node->GetStreamIndex(), -1);
        EXPECT_TRUE(node->HasValidGuards());
    }
}

TEST(TSList, WithoutChildrenIsStoredAsFourZeroBytes) {
    const auto node = MakeNode<TSList>();
    StringStream stream;
    node->Store(stream);
    EXPECT_EQ(stream.Bytes, std::string(4, '\0'));
}

TEST(TSList, StoresARecordForEachChild) {
    const auto node = MakeNode<TSList>();
    Adopt(*node, MakeNode<TSList>());
    Adopt(*node, MakeNode<TSList>());
    StringStream stream;
    node->Store(stream);
    EXPECT_EQ(stream.Bytes, std::string("\2\0\0\0\xA0\x0F\0\0\0\0\0\0\xA0\x0F\0\0\0\0\0\0", 20));
}

TEST(TSList, WithANullChildCannotBeStored) {
    const auto node = MakeNode<TSList>();
    node->AddTail(nullptr);
    StringStream stream;
    EXPECT_EQ(ThrownText([&] { node->Store(stream); }), "Attempt to store unregistered Class.");
    EXPECT_EQ(stream.Bytes, std::string("\1\0\0\0", 4));
}

TEST(TSList, LoadsABodyWithoutChildren) {
    const auto node = MakeNode<TSList>();
    node->SetStreamIndex(9);
    for (const char *body : {"\0\0\0\0", "\xFF\xFF\xFF\xFF"}) { // a count below 1 ends here
        StringStream stream(std::string(body, 4));
        node->Load(stream);
        EXPECT_EQ(node->GetCount(), 0);
        EXPECT_EQ(node->GetStreamIndex(), -1);
    }
}

TEST(TSList, FailsToLoadWithoutAWholeCount) {
    const auto node = MakeNode<TSList>();
    StringStream stream(std::string(3, '\0'));
    EXPECT_NE(ThrownText([&] { node->Load(stream); }), "nothing thrown");
}

TEST(TSList, CannotLoadAChildOfAnUnknownClass) {
    const auto node = MakeNode<TSList>();
    StringStream stream(std::string("\2\0\0\0\xA1\x0E\0\0", 8));
    EXPECT_EQ(ThrownText([&] { node->Load(stream); }), "Attempt to load unregistered Class.");
    EXPECT_EQ(node->GetCount(), 0);
}

TEST(TSList, LoadsItsChildren) {
    const auto node = MakeNode<TSList>();
    StringStream stream(std::string("\1\0\0\0\xA0\x0F\0\0\0\0\0\0", 12));
    node->Load(stream);
    ASSERT_EQ(node->GetCount(), 1);
    EXPECT_EQ(node->HeadValue()->GetClassId(), 0u);
    EXPECT_EQ(node->HeadValue()->GetRefCount(), 1);
}

TEST(TSList, ReplicatesAllChildren) {
    const auto source = MakeNode<TSList>();
    Adopt(Adopt(*source, MakeNode<TSList>()), MakeNode<TSList>());
    const auto copy = MakeNode<TSList>();
    copy->Replicate(*source);
    ASSERT_EQ(copy->GetCount(), 1);
    EXPECT_NE(copy->HeadValue(), source->HeadValue());
    EXPECT_EQ(copy->HeadValue()->GetCount(), 1);
    EXPECT_EQ(copy->HeadValue()->GetRefCount(), 1);
}

} // namespace
