#include "Persistence/Tree/TBuffer.h"

#include <gtest/gtest.h>
#include <limits>
#include <new>

#include "TreeNodes.h"

namespace {

using Persistence::MakeNode;
using TestSupport::StringStream;
using TestSupport::ThrownText;

constexpr std::size_t NoMemoryHasThis = std::size_t{1} << 62;

/// What a release callback was called with.
struct Released {
    int Times = 0;
    void *Data = nullptr;

    static void Note(void *data, void *context) {
        auto *self = static_cast<Released *>(context);
        ++self->Times;
        self->Data = data;
    }
};

std::string BytesOf(TBuffer &buffer) {
    return {static_cast<const char *>(buffer.GetData()), buffer.GetSize()};
}

void Fill(TBuffer &buffer, const std::string &bytes) {
    buffer.Allocate(bytes.size());
    bytes.copy(static_cast<char *>(buffer.GetData()), bytes.size());
}

TEST(TBuffer, IsADataNodeWithItsTags) {
    const auto buffer = MakeNode<TBuffer>();
    EXPECT_EQ(buffer->GetClassId(), 2u);
    EXPECT_EQ(buffer->GetFamily(), 7u);
    for (const unsigned bit : {0u, 1u, 2u})
        EXPECT_TRUE(buffer->IsMemberOf(bit));
    EXPECT_EQ(buffer->GetNodeTag(), 21u);
    EXPECT_EQ(buffer->GetDataPointerTag(), 24u);
    EXPECT_EQ(buffer->GetClassTag(), 22u);
}

TEST(TBuffer, HasItsFieldsInOrder) {
    struct Fields {
        std::uint32_t DataPointerTag;
        std::uint32_t Tag;
        void *Data;
        std::size_t Size;
        bool Owned;
        TBuffer::ReleaseFunction ReleaseFn;
        void *Context;
    } fields;
    Released released;
    char bytes[4] = {};
    const auto buffer = MakeNode<TBuffer>();
    ASSERT_TRUE(buffer->Attach(bytes, sizeof bytes, Released::Note, &released));
    std::memcpy(&fields, reinterpret_cast<const char *>(buffer.Get()) + sizeof(TSList), sizeof fields);
    EXPECT_EQ(fields.DataPointerTag, 24u);
    EXPECT_EQ(fields.Tag, 22u);
    EXPECT_EQ(fields.Data, bytes);
    EXPECT_EQ(fields.Size, 4u);
    EXPECT_FALSE(fields.Owned);
    EXPECT_EQ(fields.ReleaseFn, &Released::Note);
    EXPECT_EQ(fields.Context, &released);
}

TEST(TBuffer, HoldsNothingAtFirst) {
    const auto buffer = MakeNode<TBuffer>();
    EXPECT_EQ(buffer->GetData(), nullptr);
    EXPECT_EQ(buffer->GetSize(), 0u);
    EXPECT_FALSE(buffer->IsOwned());
}

TEST(TBuffer, AllocatesABlockOfItsOwn) {
    const auto buffer = MakeNode<TBuffer>();
    buffer->Allocate(1000);
    ASSERT_NE(buffer->GetData(), nullptr);
    EXPECT_EQ(buffer->GetSize(), 1000u);
    EXPECT_TRUE(buffer->IsOwned());
    std::memset(buffer->GetData(), 0x5A, 1000);
}

TEST(TBuffer, AllocatesABlockOfNoBytes) {
    const auto buffer = MakeNode<TBuffer>();
    buffer->Allocate(0);
    EXPECT_EQ(buffer->GetSize(), 0u);
    EXPECT_TRUE(buffer->IsOwned());
}

TEST(TBuffer, ThrowsWithoutMemoryAndHoldsNothingThen) {
    const auto buffer = MakeNode<TBuffer>();
    EXPECT_EQ(ThrownText([&] { buffer->Allocate(NoMemoryHasThis); }), "Impossible to create TBuffer");
    EXPECT_EQ(buffer->GetData(), nullptr);
    EXPECT_EQ(buffer->GetSize(), 0u);
    EXPECT_FALSE(buffer->IsOwned());
    buffer->Allocate(4);
    EXPECT_EQ(buffer->GetSize(), 4u);
}

TEST(TBuffer, AllocatingAgainGivesTheFormerBlockBack) {
    Released released;
    char bytes[4] = {};
    const auto buffer = MakeNode<TBuffer>();
    buffer->Allocate(10);
    buffer->Allocate(20); // the leak check sees to the first block
    EXPECT_EQ(buffer->GetSize(), 20u);
    const auto borrowing = MakeNode<TBuffer>();
    ASSERT_TRUE(borrowing->Attach(bytes, sizeof bytes, Released::Note, &released));
    borrowing->Allocate(8);
    EXPECT_EQ(released.Times, 1);
    EXPECT_TRUE(borrowing->IsOwned());
}

TEST(TBuffer, CallsTheReleaseFunctionAtItsEndInsteadOfFreeing) {
    Released released;
    char bytes[4] = {};
    {
        const auto buffer = MakeNode<TBuffer>();
        ASSERT_TRUE(buffer->Attach(bytes, sizeof bytes, Released::Note, &released));
        EXPECT_EQ(buffer->GetData(), bytes);
        EXPECT_EQ(buffer->GetSize(), 4u);
        EXPECT_FALSE(buffer->IsOwned());
        EXPECT_EQ(released.Times, 0);
    }
    EXPECT_EQ(released.Times, 1);
    EXPECT_EQ(released.Data, bytes);
}

TEST(TBuffer, TheReleaseFunctionWaitsForTheLastReference) {
    Released released;
    char bytes[4] = {};
    TBuffer *buffer = MakeNode<TBuffer>().Detach();
    ASSERT_TRUE(buffer->Attach(bytes, sizeof bytes, Released::Note, &released));
    buffer->Share();
    EXPECT_EQ(buffer->Release(), 1);
    EXPECT_EQ(released.Times, 0);
    EXPECT_EQ(buffer->Release(), 0);
    EXPECT_EQ(released.Times, 1);
}

TEST(TBuffer, AttachesWithoutAReleaseFunction) {
    char bytes[4] = {1, 2, 3, 4};
    {
        const auto buffer = MakeNode<TBuffer>();
        ASSERT_TRUE(buffer->Attach(bytes, sizeof bytes, nullptr, nullptr));
    }
    EXPECT_EQ(bytes[3], 4);
}

TEST(TBuffer, RefusesToAttachNothing) {
    Released released;
    char bytes[4] = {};
    {
        const auto buffer = MakeNode<TBuffer>();
        EXPECT_FALSE(buffer->Attach(nullptr, 4, Released::Note, &released));
        EXPECT_FALSE(buffer->Attach(bytes, 0, Released::Note, &released));
        EXPECT_EQ(buffer->GetData(), nullptr);
        EXPECT_EQ(buffer->GetSize(), 0u);
    }
    EXPECT_EQ(released.Times, 0);
}

TEST(TBuffer, RefusesToAttachOverABlock) {
    Released first;
    Released second;
    char bytes[4] = {};
    char others[8] = {};
    {
        const auto owner = MakeNode<TBuffer>();
        owner->Allocate(16);
        EXPECT_FALSE(owner->Attach(bytes, sizeof bytes, Released::Note, &second));
        EXPECT_EQ(owner->GetSize(), 16u);
        EXPECT_TRUE(owner->IsOwned());
        const auto borrower = MakeNode<TBuffer>();
        ASSERT_TRUE(borrower->Attach(bytes, sizeof bytes, Released::Note, &first));
        EXPECT_FALSE(borrower->Attach(others, sizeof others, Released::Note, &second));
        EXPECT_EQ(borrower->GetData(), bytes);
        EXPECT_EQ(borrower->GetSize(), 4u);
    }
    EXPECT_EQ(first.Times, 1);
    EXPECT_EQ(second.Times, 0);
}

TEST(TBuffer, ItsEndClearsTheGuards) {
    alignas(TBuffer) unsigned char memory[sizeof(TBuffer)] = {};
    auto *buffer = new (memory) TBuffer;
    const std::size_t guards = sizeof(CtkDLList<TSList *>) + sizeof(std::int32_t);
    std::uint32_t words[2];
    std::memcpy(words, memory + guards, sizeof words);
    EXPECT_EQ(words[0], 0xBC771u);
    EXPECT_EQ(words[1], 0x2FB31u);
    buffer->~TBuffer();
    asm volatile("" : : "r"(memory) : "memory"); // the compiler takes the memory of an ended object for undefined
    std::memcpy(words, memory + guards, sizeof words);
    EXPECT_EQ(words[0], 0u);
    EXPECT_EQ(words[1], 0u);
    EXPECT_EQ(CtkObject::TagOf(memory), CtkObject::DeadTag);
}

TEST(TBuffer, StoresChildCountSizeAndBytes) {
    const auto buffer = MakeNode<TBuffer>();
    Fill(*buffer, "abcde");
    StringStream stream;
    buffer->Store(stream);
    EXPECT_EQ(stream.Bytes, std::string("\0\0\0\0\5\0\0\0abcde", 13));
}

TEST(TBuffer, ThrowsWhenTheStreamTakesTooFewBytes) {
    const auto buffer = MakeNode<TBuffer>();
    Fill(*buffer, "abcde");
    StringStream stream({}, 12);
    EXPECT_EQ(ThrownText([&] { buffer->Store(stream); }),
              "Stream too small to take up the contents of the TBuffer object.");
}

TEST(TBuffer, LoadsWhatItStored) {
    StringStream stream(std::string("\0\0\0\0\5\0\0\0abcdeZ", 14));
    const auto buffer = MakeNode<TBuffer>();
    buffer->Load(stream);
    EXPECT_EQ(BytesOf(*buffer), "abcde");
    EXPECT_TRUE(buffer->IsOwned());
    EXPECT_EQ(stream.Position, 13u);
}

TEST(TBuffer, LoadsABlockOfNoBytes) {
    StringStream stream(std::string(8, '\0'));
    const auto buffer = MakeNode<TBuffer>();
    buffer->Load(stream);
    EXPECT_EQ(buffer->GetSize(), 0u);
}

TEST(TBuffer, ThrowsWhenTheStreamGivesTooFewBytes) {
    StringStream stream(std::string("\0\0\0\0\5\0\0\0abcd", 12));
    const auto buffer = MakeNode<TBuffer>();
    EXPECT_EQ(ThrownText([&] { buffer->Load(stream); }),
              "Read attempt beyond the end of the stream while loading TBuffer object.");
}

TEST(TBuffer, ReplicatesSizeAndBytes) {
    const auto source = MakeNode<TBuffer>();
    Fill(*source, "abcde");
    const auto copy = MakeNode<TBuffer>();
    copy->Replicate(*source);
    EXPECT_EQ(BytesOf(*copy), "abcde");
    EXPECT_NE(copy->GetData(), source->GetData());
    EXPECT_TRUE(copy->IsOwned());
    copy->Replicate(*copy);
    EXPECT_EQ(BytesOf(*copy), "abcde");
}

TEST(TBuffer, ReplicatesAnEmptyBuffer) {
    const auto source = MakeNode<TBuffer>();
    const auto copy = MakeNode<TBuffer>();
    Fill(*copy, "old");
    copy->Replicate(*source);
    EXPECT_EQ(copy->GetSize(), 0u);
}

TEST(TBuffer, ThrowsWhenThereIsNoMemoryForACopy) {
    char byte = 0;
    const auto source = MakeNode<TBuffer>();
    ASSERT_TRUE(source->Attach(&byte, NoMemoryHasThis, nullptr, nullptr)); // claims more than any copy can get
    const auto copy = MakeNode<TBuffer>();
    EXPECT_EQ(ThrownText([&] { copy->Replicate(*source); }), "Impossible to replicate TBuffer");
    EXPECT_EQ(copy->GetData(), nullptr);
}

TEST(TBuffer, ReplicatesBuffersOnly) {
    const auto list = MakeNode<TSList>();
    const auto copy = MakeNode<TBuffer>();
    EXPECT_EQ(ThrownText([&] { copy->Replicate(*list); }), "Impossible replication requested.");
}

} // namespace
