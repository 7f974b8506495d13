#include "Persistence/Tree/NodeHolder.h"

#include <gtest/gtest.h>
#include <type_traits>

#include "TreeNodes.h"

namespace {

using Persistence::Adopt;
using Persistence::MakeNode;
using Persistence::NodeHolder;
using TestSupport::TracedNode;
using TestSupport::Trail;

static_assert(!std::is_copy_constructible_v<NodeHolder<TSList>>);
static_assert(!std::is_copy_assignable_v<NodeHolder<TSList>>);

TEST(NodeHolder, GivesItsReferenceBack) {
    Trail trail;
    { const auto node = MakeNode<TracedNode>("node", trail); }
    EXPECT_EQ(trail, (Trail{"release node", "destroy node"}));
}

TEST(NodeHolder, HoldsNothingAtFirst) {
    const NodeHolder<TSList> empty;
    EXPECT_FALSE(empty);
    EXPECT_EQ(empty.Get(), nullptr);
}

TEST(NodeHolder, AdoptsTheReferenceThatItIsGiven) {
    TSList *node = MakeNode<TSList>().Detach();
    node->Share();
    {
        const NodeHolder<TSList> holder(node);
        EXPECT_TRUE(holder);
        EXPECT_EQ(&*holder, node);
        EXPECT_EQ(holder->GetRefCount(), 2);
    }
    EXPECT_EQ(node->GetRefCount(), 1);
    node->Release();
}

TEST(NodeHolder, MovesItsReference) {
    Trail trail;
    auto first = MakeNode<TracedNode>("first", trail);
    NodeHolder<TSList> base(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_TRUE(base);
    NodeHolder<TSList> target(MakeNode<TracedNode>("target", trail));
    target = std::move(base);
    base = NodeHolder<TSList>();
    EXPECT_EQ(trail, (Trail{"release target", "destroy target"}));
    EXPECT_TRUE(target);
}

TEST(NodeHolder, DetachLeavesTheReferenceToTheCaller) {
    Trail trail;
    TSList *node = nullptr;
    {
        auto holder = MakeNode<TracedNode>("node", trail);
        node = holder.Detach();
        EXPECT_FALSE(holder);
    }
    EXPECT_TRUE(trail.empty());
    EXPECT_EQ(node->Release(), 0);
}

TEST(Adopt, AppendsTheChildWithoutAChangeOfCount) {
    const auto parent = MakeNode<TSList>();
    TSList &first = Adopt(*parent, MakeNode<TSList>());
    TBuffer &second = Adopt(*parent, MakeNode<TBuffer>());
    EXPECT_EQ(parent->GetCount(), 2);
    EXPECT_EQ(parent->HeadValue(), &first);
    EXPECT_EQ(parent->TailValue(), &second);
    EXPECT_EQ(first.GetRefCount(), 1);
    EXPECT_EQ(parent->GetRefCount(), 1);
}

TEST(Adopt, ResetsTheParentAtItsFirstChild) {
    const auto parent = MakeNode<TSList>();
    parent->SetStreamIndex(4);
    Adopt(*parent, MakeNode<TSList>());
    EXPECT_EQ(parent->GetStreamIndex(), -1);
    parent->SetStreamIndex(4);
    Adopt(*parent, MakeNode<TSList>());
    EXPECT_EQ(parent->GetStreamIndex(), 4);
}

TEST(Adopt, GivesTheChildBackWhenAppendingThrows) {
    struct Full : TSList {
        void Grow(std::uint32_t) override { throw CtkExceptionObject(CtkListErrors::GeneralError, nullptr, 0); }
    };
    Trail trail;
    const auto parent = MakeNode<Full>();
    EXPECT_EQ(TestSupport::ThrownText([&] { Adopt(*parent, MakeNode<TracedNode>("child", trail)); }),
              "General Error");
    EXPECT_EQ(trail, (Trail{"release child", "destroy child"}));
    EXPECT_EQ(parent->GetCount(), 0);
}

} // namespace
