// Sharing and releasing objects of the root class through the exported functions, which take them for what their tag
// says before they ask for any interface.
#include "Interface/ObjectKind.h"
#include "Interface/UnloadList.h"
#include "Persistence/Tree/TreeNodes.h"
#include "Support/TestImages.h"

#include <dlfcn.h>
#include <new>

#include "CtkVector2D.h"

namespace {

using Persistence::Adopt;
using Persistence::MakeNode;
using TestSupport::TracedNode;
using TestSupport::Trail;

TEST(TreeObjects, SharingANodeSharesItsTreeAndGivesTrue) {
    const auto root = MakeNode<TSList>();
    TSList &child = Adopt(*root, MakeNode<TBuffer>());
    EXPECT_TRUE(ShareObject(root.Get()));
    EXPECT_EQ(root->GetRefCount(), 2);
    EXPECT_EQ(child.GetRefCount(), 2);
    root->Release();
}

TEST(TreeObjects, ANodeStillHeldGivesFalseAndKeepsThePointer) {
    Trail trail;
    const auto node = MakeNode<TracedNode>("node", trail);
    node->Share();
    void *pointer = node.Get();
    EXPECT_FALSE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, node.Get());
    EXPECT_EQ(node->GetRefCount(), 1);
}

TEST(TreeObjects, TheLastReferenceOfANodeClearsThePointerAndGivesTrue) {
    Trail trail;
    void *pointer = MakeNode<TracedNode>("node", trail).Detach();
    EXPECT_TRUE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, nullptr);
    EXPECT_EQ(trail, (Trail{"release node", "destroy node"}));
}

TEST(TreeObjects, ReleasingANodeDoesNotPollThePlugIns) {
    void *plugin = dlopen(ORV_PLUGIN_FOLDER "/liborv_plugin_first.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(plugin, nullptr);
    TestSupport::OnlyUnknown object;
    ASSERT_EQ(Streaming::RegisterForUnload(&object, plugin), &object);
    const auto timesAsked = reinterpret_cast<int (*)()>(dlsym(plugin, "TimesAsked"));
    const int before = timesAsked();
    void *pointer = MakeNode<TSList>().Detach();
    EXPECT_TRUE(ReleaseObject(pointer));
    EXPECT_EQ(timesAsked(), before);
    reinterpret_cast<void (*)(int)>(dlsym(plugin, "SetAnswer"))(1);
    Streaming::PollUnloadList();
}

/// What has the tag of a living object but is no tree node is neither shared nor released, and stays as it is.
void ExpectLeftAlone(CtkObject &object) {
    void *pointer = &object;
    EXPECT_FALSE(ShareObject(pointer));
    EXPECT_FALSE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, &object);
    EXPECT_TRUE(object.IsValid());
}

TEST(TreeObjects, OtherObjectsOfTheRootClassAreNeverAskedForInterfaces) {
    CtkVector2D vector(1, 2);
    ExpectLeftAlone(vector); // of no family
    EXPECT_EQ(vector, CtkVector2D(1, 2));
    CtkDLList<int> list;
    list.AddTail(7);
    ExpectLeftAlone(list); // of the family, without the node's class number
    EXPECT_EQ(list.HeadValue(), 7);
    TestSupport::StringStream stream("abc");
    ExpectLeftAlone(stream); // of another family
}

TEST(TreeObjects, AnObjectThatIsGoneIsLeftAlone) {
    alignas(TBuffer) unsigned char memory[sizeof(TBuffer)] = {};
    (new (memory) TBuffer)->~TBuffer();
    EXPECT_EQ(Interface::KindOf(memory), Interface::ObjectKind::Neither);
    void *pointer = memory;
    EXPECT_FALSE(ShareObject(pointer));
    EXPECT_FALSE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, memory);
}

/// Throws when it is classified, shared or released.
struct Thrower : TSList {
    std::uint32_t GetFamily() const override { return ThrowsAtFamily ? throw 5 : TSList::GetFamily(); }
    std::int32_t Share() override { throw CtkExceptionObject("no"); }
    std::int32_t Release() override { throw CtkExceptionObject("no"); }
    bool ThrowsAtFamily = false;
};

TEST(TreeObjects, NoExceptionOfANodePasses) {
    Thrower node;
    for (const bool throwsAtFamily : {false, true}) {
        node.ThrowsAtFamily = throwsAtFamily;
        void *pointer = &node;
        EXPECT_NO_THROW(EXPECT_FALSE(ShareObject(pointer)));
        EXPECT_NO_THROW(EXPECT_FALSE(ReleaseObject(pointer)));
        EXPECT_EQ(pointer, &node);
    }
}

} // namespace
