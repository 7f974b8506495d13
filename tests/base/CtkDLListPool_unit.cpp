// The pool of the list's elements, and what the list throws.
#include <cstring>
#include <gtest/gtest.h>
#include <memory>

#include "CtkDLList.h"

namespace {

using List = CtkDLList<int>;

/// Runs what must throw and checks the code and the text of what it throws.
template <class Body>
void ExpectThrow(std::int32_t code, const char *text, Body &&body) {
    try {
        body();
        ADD_FAILURE() << "nothing thrown";
    } catch (const CtkExceptionObject &exception) {
        EXPECT_EQ(exception.GetWord(), code);
        EXPECT_STREQ(exception.GetText(), text);
        EXPECT_NE(exception.GetFile(), nullptr);
        EXPECT_GT(exception.GetLine(), 0);
    }
}

template <class Body>
void ExpectIndexOutOfRange(Body &&body) {
    ExpectThrow(-1, "Index out of Range", body);
}

template <class Body>
void ExpectItemNotFound(Body &&body) {
    ExpectThrow(-3, "Item not found", body);
}

struct Any final : List::Predicate {
    bool operator()(const int &) const override { return true; }
};

TEST(CtkDLListPool, AListOf10WithGrowBy4HoldsThreeBlocks) {
    List list(4);
    EXPECT_EQ(list.GetGrowBy(), 4);
    EXPECT_EQ(list.GetBlockCount(), 0);
    for (int i = 0; i < 10; ++i)
        list.AddTail(i);
    EXPECT_EQ(list.GetBlockCount(), 3);
    list.RemoveAll();
    EXPECT_EQ(list.GetBlockCount(), 3);
}

TEST(CtkDLListPool, HasItsFieldsInOrder) {
    struct Fields {
        std::int32_t Count;
        std::int32_t GrowBy;
        void *BlockChain;
        List::Node *Head, *Tail, *FreeHead, *FreeTail;
    } fields;
    List list(4);
    for (int i = 0; i < 2; ++i)
        list.AddTail(i);
    std::memcpy(&fields, reinterpret_cast<const char *>(&list) + sizeof(CtkContainerObject), sizeof fields);
    EXPECT_EQ(fields.Count, 2);
    EXPECT_EQ(fields.GrowBy, 4);
    EXPECT_NE(fields.BlockChain, nullptr);
    EXPECT_EQ(fields.Head, list.HeadNode());
    EXPECT_EQ(fields.Tail, list.TailNode());
    EXPECT_EQ(fields.FreeHead, list.TailNode() + 1) << "the elements of a block are used in their order";
    EXPECT_EQ(fields.FreeTail, list.TailNode() + 2);
    EXPECT_EQ(offsetof(List::Node, Next), 0u);
    EXPECT_EQ(offsetof(List::Node, Prev), sizeof(void *));
    EXPECT_EQ(offsetof(List::Node, Item), 2 * sizeof(void *));
}

TEST(CtkDLListPool, UsesRemovedElementsAgain) {
    List list(4);
    for (int i = 0; i < 1000; ++i) {
        list.AddTail(i);
        list.AddHead(i);
        list.RemoveAt(i % 2);
        list.RemoveTail();
    }
    EXPECT_EQ(list.GetBlockCount(), 1);
}

TEST(CtkDLListPool, AllocatesNothingUntilTheFirstValue) {
    const List list(100);
    EXPECT_EQ(list.GetBlockCount(), 0);
}

TEST(CtkDLListPool, GrowAddsABlockOfTheGivenLength) {
    List list(1);
    list.Grow(3);
    EXPECT_EQ(list.GetBlockCount(), 1);
    list.AddTail(1);
    list.Grow(2); // behind the free ones that are left
    EXPECT_EQ(list.GetBlockCount(), 2);
    for (int i = 2; i <= 5; ++i)
        list.AddTail(i);
    EXPECT_EQ(list.GetBlockCount(), 2);
    list.AddTail(6);
    EXPECT_EQ(list.GetBlockCount(), 3);
    EXPECT_EQ(list.GetCount(), 6);
}

TEST(CtkDLListPool, GrowWithAllBitsStandsForGrowBy) {
    List list(2);
    list.Grow(0xFFFFFFFFu);
    list.AddTail(1);
    list.AddTail(2);
    EXPECT_EQ(list.GetBlockCount(), 1);
    list.AddTail(3);
    EXPECT_EQ(list.GetBlockCount(), 2);
}

TEST(CtkDLListPool, GrowByNothingAddsNoBlock) {
    List list(4);
    list.Grow(0);
    EXPECT_EQ(list.GetBlockCount(), 0);
}

TEST(CtkDLListPool, ThrowsWhenThePoolStaysEmpty) {
    for (const std::int32_t growBy : {0, -5}) {
        List list(growBy);
        ExpectThrow(-2, "No empty elements available", [&list] { list.AddTail(1); });
        EXPECT_EQ(list.GetCount(), 0);
        list.Grow(1);
        list.AddTail(1);
        ExpectThrow(-2, "No empty elements available", [&list] { list.AddHead(2); });
        EXPECT_EQ(list.GetCount(), 1);
    }
}

TEST(CtkDLListPool, GrowIsAskedForTheUsualLength) {
    struct Recorder : List {
        void Grow(std::uint32_t count) override { Asked = count; }
        std::uint32_t Asked = 0;
    };
    Recorder list;
    ExpectThrow(-2, "No empty elements available", [&list] { list.AddTail(1); });
    EXPECT_EQ(list.Asked, 0xFFFFFFFFu);
}

TEST(CtkDLListPool, AFailedTakeInOfAListChangesNothing) {
    List source;
    for (int i = 0; i < 5; ++i)
        source.AddTail(i);
    List list(0);
    list.Grow(4);
    list.AddTail(77);
    ExpectThrow(-2, "No empty elements available", [&] { list.AddTail(source); });
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(list.HeadValue(), 77);
    EXPECT_EQ(list.HeadNode(), list.TailNode());
    for (int i = 0; i < 3; ++i)
        list.AddTail(i); // all three are back in the pool
    EXPECT_EQ(list.GetCount(), 4);
}

TEST(CtkDLListPool, GrowThrowsWithoutMemory) {
    struct Large {
        char Bytes[1 << 24];
        bool operator==(const Large &) const { return true; }
    };
    const auto list = std::make_unique<CtkDLList<Large>>();
    ExpectThrow(-4, "General Error", [&list] { list->Grow(0x7FFFFFFFu); });
    ExpectThrow(-4, "General Error", [&list] { list->Grow(0xFFFFFFFEu); });
    EXPECT_EQ(list->GetBlockCount(), 0);
}

TEST(CtkDLListPool, ARemovedStringGivesItsTextBack) {
    CtkDLList<CtkCString> list;
    auto *node = list.AddTail("text");
    const CtkCString removed = list.RemoveHead();
    EXPECT_STREQ(removed.GetText(), "text");
    EXPECT_TRUE(node->Item.IsEmpty()); // the element itself is kept in the pool
    list.AddTail("other");
    EXPECT_EQ(list.IndexOf("other"), 0);
}

TEST(CtkDLListFailures, RemovingFromAnEmptyListThrows) {
    List list;
    ExpectItemNotFound([&] { list.RemoveHead(); });
    ExpectItemNotFound([&] { list.RemoveTail(); });
    ExpectItemNotFound([&] { list.HeadValue(); });
    ExpectItemNotFound([&] { list.TailValue(); });
    ExpectItemNotFound([&] { list.RemoveValue(1); });
}

TEST(CtkDLListFailures, AnIndexNotBelowTheCountThrows) {
    List list;
    const List other;
    list.AddTail(1);
    list.AddTail(2);
    for (const std::int64_t index :
         {std::int64_t{2}, std::int64_t{-1}, std::int64_t{1} << 31, std::int64_t{1} << 32}) {
        ExpectIndexOutOfRange([&] { list.ValueAt(index); });
        ExpectIndexOutOfRange([&] { list.SetAt(index, 0); });
        ExpectIndexOutOfRange([&] { list.Item(index); });
        ExpectIndexOutOfRange([&] { list.SetItem(index, 0); });
        ExpectIndexOutOfRange([&] { list.RemoveAt(index); });
        ExpectIndexOutOfRange([&] { list.InsertBeforeIndex(index, 0); });
        ExpectIndexOutOfRange([&] { list.InsertAfterIndex(index, 0); });
        ExpectIndexOutOfRange([&] { list.InsertBeforeIndex(index, other); });
        ExpectIndexOutOfRange([&] { list.InsertAfterIndex(index, other); });
        ExpectIndexOutOfRange([&] { list.Find(Any(), index); });
    }
    EXPECT_EQ(list.GetCount(), 2);
}

TEST(CtkDLListFailures, ANullNodeOrPositionThrows) {
    List list;
    const List other;
    list.AddTail(1);
    List::Node *none = nullptr;
    ExpectItemNotFound([&] { list.GetNext(none); });
    ExpectItemNotFound([&] { list.GetPrev(none); });
    ExpectItemNotFound([&] { list.ValueOfNode(none); });
    ExpectItemNotFound([&] { list.ItemOf(none); });
    ExpectItemNotFound([&] { list.SetItemOf(none, 1); });
    ExpectItemNotFound([&] { list.RemoveNode(none); });
    ExpectItemNotFound([&] { list.InsertBefore(none, 1); });
    ExpectItemNotFound([&] { list.InsertAfter(none, 1); });
    ExpectItemNotFound([&] { list.InsertBefore(none, other); });
    ExpectItemNotFound([&] { list.InsertAfter(none, other); });
    ExpectItemNotFound([&] { list.NodeOf(1, none); });
    ExpectItemNotFound([&] { list.FindNode(Any(), none); });
    ExpectItemNotFound([&] { list.RemoveValue(1, none); });
    EXPECT_EQ(list.GetCount(), 1);
}

TEST(CtkDLListFailures, RemovingAValueThatIsNotThereThrows) {
    List list;
    list.AddTail(1);
    ExpectItemNotFound([&] { list.RemoveValue(2); });
    ExpectItemNotFound([&] { list.RemoveValue(2, list.HeadNode()); });
    EXPECT_EQ(list.GetCount(), 1);
}

} // namespace
