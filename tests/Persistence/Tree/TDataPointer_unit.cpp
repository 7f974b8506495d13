#include "Persistence/Tree/TDataPointer.h"

#include <cstring>
#include <gtest/gtest.h>
#include <new>

namespace {

/// Stands for one byte of its own.
class OneByte : public TDataPointer {
public:
    OneByte() : TDataPointer(99) {}
    void *GetData() override { return &byte_; }

private:
    char byte_ = 7;
};

TEST(TDataPointer, IsANodeOfClass1WithATagForTheDerivedClass) {
    OneByte node;
    EXPECT_EQ(node.GetClassId(), 1u);
    EXPECT_TRUE(node.IsMemberOf(0));
    EXPECT_TRUE(node.IsMemberOf(1));
    EXPECT_FALSE(node.IsMemberOf(2));
    EXPECT_EQ(node.GetNodeTag(), 21u);
    EXPECT_EQ(node.GetDataPointerTag(), 24u);
    EXPECT_EQ(node.GetClassTag(), 99u);
    EXPECT_EQ(*static_cast<char *>(node.GetData()), 7);
}

TEST(TDataPointer, ItsEndClearsTheGuards) {
    alignas(OneByte) unsigned char memory[sizeof(OneByte)] = {};
    TDataPointer *node = new (memory) OneByte;
    EXPECT_TRUE(node->HasValidGuards());
    node->~TDataPointer();
    asm volatile("" : : "r"(memory) : "memory"); // the compiler takes the memory of an ended object for undefined
    std::uint32_t guards[2];
    std::memcpy(guards, memory + sizeof(CtkDLList<TSList *>) + sizeof(std::int32_t), sizeof guards);
    EXPECT_EQ(guards[0], 0u);
    EXPECT_EQ(guards[1], 0u);
}

} // namespace
