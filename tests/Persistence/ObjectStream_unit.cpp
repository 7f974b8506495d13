// Records, numbers and back references; what a load refuses; that nothing is left behind.
#include "Persistence/Tree/LoadSession.h"
#include "Persistence/Tree/StreamRegistry.h"
#include "Persistence/Tree/TreeNodes.h"

#include <gtest/gtest.h>

namespace {

using Persistence::Adopt;
using Persistence::LoadSession;
using Persistence::LoadTree;
using Persistence::MakeNode;
using Persistence::NodeHolder;
using Persistence::ReadObject;
using Persistence::ReplicateTree;
using Persistence::StoreTree;
using Persistence::TableScope;
using Persistence::WriteObject;
using TestSupport::StringStream;
using TestSupport::ThrownText;

constexpr const char *Unregistered = "Attempt to load unregistered Class.";

std::string Word(std::uint32_t value) {
    return std::string(reinterpret_cast<const char *>(&value), sizeof value);
}

std::string Words(std::initializer_list<std::uint32_t> values) {
    std::string bytes;
    for (const std::uint32_t value : values)
        bytes += Word(value);
    return bytes;
}

constexpr std::uint32_t List = 4000;
constexpr std::uint32_t Buffer = 4001;

std::string TextOfLoad(const std::string &bytes) {
    StringStream stream(bytes);
    const std::string text = ThrownText([&] { LoadTree(stream); });
    EXPECT_EQ(TableScope::Current(), nullptr);
    return text;
}

TEST(StreamRegistry, HoldsTheSixClassesUnderBothNumbers) {
    const std::pair<std::uint32_t, std::uint32_t> classes[] = {{4000, 0},  {4001, 2},  {10000, 3},
                                                               {10001, 4}, {10002, 8}, {10003, 9}};
    for (const auto &[streamId, classId] : classes) {
        const TStreamRec *record = Persistence::FindByStreamId(streamId);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->ClassId, classId);
        EXPECT_EQ(Persistence::FindByClassId(classId), record);
        const NodeHolder<TSList> made(record->Make());
        EXPECT_EQ(made->GetClassId(), classId);
        EXPECT_EQ(made->GetRefCount(), 1);
    }
    EXPECT_EQ(Persistence::FindByClassId(1), nullptr) << "no class that stands for memory in general";
    EXPECT_EQ(Persistence::FindByClassId(11), nullptr) << "no view";
}

TEST(StreamRegistry, RefusesARecordWhoseClassNumberIsTheStreamNumberOfAnother) {
    TStreamRec record{77777, 4001, nullptr, nullptr, false};
    EXPECT_EQ(ThrownText([&] { Persistence::RegisterStreamClass(record, 60); }), "Duplicate Stream ID registered.");
    EXPECT_EQ(Persistence::FindByStreamId(77777), nullptr);
}

TEST(ObjectStream, WritesAnObjectThatComesAgainAsABackReference) {
    const auto root = MakeNode<TSList>();
    const auto leaf = MakeNode<TSList>();
    Adopt(*root, Persistence::ShareNode(leaf));
    Adopt(*root, Persistence::ShareNode(leaf));
    StringStream stream;
    EXPECT_EQ(StoreTree(stream, *root), 1);
    EXPECT_EQ(stream.Bytes, Words({List, 2, List, 0, 0, 1}));
    EXPECT_EQ(root->GetStreamIndex(), -1);
    EXPECT_EQ(leaf->GetStreamIndex(), -1);
    const NodeHolder<TSList> loaded = LoadTree(stream);
    ASSERT_EQ(loaded->GetCount(), 2);
    EXPECT_EQ(loaded->HeadValue(), loaded->TailValue());
    EXPECT_EQ(loaded->HeadValue()->GetRefCount(), 2);
    EXPECT_EQ(loaded->GetRefCount(), 1);
}

TEST(ObjectStream, WritesACopyPerPathWithoutATable) {
    const auto root = MakeNode<TSList>();
    const auto leaf = MakeNode<TSList>();
    Adopt(*root, Persistence::ShareNode(leaf));
    Adopt(*root, Persistence::ShareNode(leaf));
    StringStream stream;
    WriteObject(stream, root.Get());
    EXPECT_EQ(stream.Bytes, Words({List, 2, List, 0, List, 0}));
    const NodeHolder<TSList> loaded = ReadObject(stream);
    EXPECT_NE(loaded->HeadValue(), loaded->TailValue());
}

TEST(ObjectStream, RefusesNullAndClassesThatAreNotRegistered) {
    StringStream stream;
    EXPECT_EQ(ThrownText([&] { WriteObject(stream, nullptr); }), "Attempt to store unregistered Class.");
    const auto root = MakeNode<TSList>();
    root->AddTail(nullptr);
    EXPECT_EQ(StoreTree(stream, *root), 0);
    EXPECT_EQ(TableScope::Current(), nullptr);
    EXPECT_EQ(root->GetStreamIndex(), -1) << "also after a failure";
    EXPECT_EQ(TextOfLoad(Words({4002, 0})), Unregistered);
}

TEST(ObjectStream, AFullStreamIsAFailedStoreAtEveryByte) {
    const auto root = MakeNode<TSList>();
    auto buffer = MakeNode<TBuffer>();
    buffer->Allocate(3);
    std::memcpy(buffer->GetData(), "abc", 3);
    Adopt(*root, std::move(buffer));
    constexpr std::size_t whole = 8 + 12 + 3;
    for (std::size_t limit = 0; limit <= whole; ++limit) {
        StringStream stream({}, limit);
        EXPECT_EQ(StoreTree(stream, *root), limit == whole ? 1 : 0) << limit;
    }
}

TEST(ObjectStream, ReferencesReachFinishedObjectsOfTheTableOnly) {
    EXPECT_EQ(TextOfLoad(Words({0})), "Index out of Range") << "an empty table";
    EXPECT_EQ(TextOfLoad(Words({0, 0})), "Index out of Range");
    EXPECT_EQ(TextOfLoad(Words({List, 1, 0, 0})), "Index out of Range") << "the object that is being loaded";
    EXPECT_EQ(TextOfLoad(Words({List, 1, List, 1, 0, 0})), "Index out of Range");
    EXPECT_EQ(TextOfLoad(Words({List, 2, List, 0, 0, 2})), "Index out of Range");
    EXPECT_EQ(TextOfLoad(Words({List, 2, List, 0, 0, 0xFFFFFFFF})), "Index out of Range");
    EXPECT_EQ(TextOfLoad(Words({List, 2, List, 0, 0, 1})), "nothing thrown");
    StringStream stream(Words({0}));
    EXPECT_EQ(ThrownText([&] { ReadObject(stream); }), Unregistered) << "without a table";
}

TEST(ObjectStream, EveryCutOfAStreamIsAFailedLoad) {
    const std::string whole = Words({List, 3, List, 0, Buffer, 0, 3}) + "abc" + Words({0, 1});
    EXPECT_EQ(TextOfLoad(whole), "nothing thrown");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_NE(TextOfLoad(whole.substr(0, length)), "nothing thrown") << length;
}

TEST(ObjectStream, RecordsNestTo64Levels) {
    const auto nested = [](std::size_t levels) {
        std::string bytes;
        for (std::size_t i = 1; i < levels; ++i)
            bytes += Words({List, 1});
        return bytes + Words({List, 0});
    };
    EXPECT_EQ(TextOfLoad(nested(64)), "nothing thrown");
    EXPECT_EQ(TextOfLoad(nested(65)), Unregistered);
}

/// A list of count lists, the first empty, each further one with so many references to the one before.
std::string Ladder(std::uint32_t count, std::uint32_t references) {
    std::string bytes = Words({List, count, List, 0});
    for (std::uint32_t i = 1; i < count; ++i) {
        bytes += Words({List, references});
        for (std::uint32_t k = 0; k < references; ++k)
            bytes += Words({0, i});
    }
    return bytes;
}

TEST(ObjectStream, SharingHasABudget) {
    EXPECT_EQ(TextOfLoad(Ladder(9, 2)), "nothing thrown");
    EXPECT_NE(TextOfLoad(Ladder(40, 2)), "nothing thrown");
    EXPECT_NE(TextOfLoad(Ladder(12, 30)), "nothing thrown");
}

TEST(ObjectStream, ReferencesNestTo64LevelsToo) {
    EXPECT_EQ(TextOfLoad(Ladder(40, 1)), "nothing thrown");
    EXPECT_NE(TextOfLoad(Ladder(70, 1)), "nothing thrown");
}

TEST(ObjectStream, ACountOrASizeTakesNoMemoryBeforeItsBytesCome) {
    EXPECT_NE(TextOfLoad(Words({List, 0x7FFFFFFF})), "nothing thrown");
    EXPECT_EQ(TextOfLoad(Words({Buffer, 0, 0xFFFFFFFF}) + "abc"),
              "Read attempt beyond the end of the stream while loading TBuffer object.");
    StringStream stream(Words({Buffer, 0, 0xFFFFFFFF}) + "abc");
    EXPECT_NE(ThrownText([&] { LoadTree(stream, stream.Bytes.size()); }), "nothing thrown");
    EXPECT_EQ(stream.Position, 12u) << "what can't follow is not read";
}

TEST(ObjectStream, ALargeBlockComesInPortionsWhereTheLengthIsUnknown) {
    std::string content(300001, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 + i / 256);
    for (const bool isKnown : {false, true}) {
        StringStream stream(Words({Buffer, 0, 300001}) + content);
        const NodeHolder<TSList> loaded =
            LoadTree(stream, isKnown ? stream.Bytes.size() : Persistence::UnknownLength);
        auto &buffer = static_cast<TBuffer &>(*loaded);
        ASSERT_EQ(buffer.GetSize(), content.size());
        EXPECT_EQ(std::memcmp(buffer.GetData(), content.data(), content.size()), 0);
    }
}

TEST(ObjectStream, AFailedLoadTakesItsObjectsOutOfTheTable) {
    TSList table;
    const TableScope scope(&table);
    StringStream good(Words({List, 0}));
    const NodeHolder<TSList> kept = ReadObject(good);
    StringStream bad(Words({List, 2, List, 0}));
    EXPECT_NE(ThrownText([&] { ReadObject(bad); }), "nothing thrown");
    EXPECT_EQ(table.GetCount(), 1);
    StringStream reference(Words({0, 0}));
    const NodeHolder<TSList> again = ReadObject(reference);
    EXPECT_EQ(again.Get(), kept.Get());
    StringStream tooOld(Words({0, 0}));
    EXPECT_EQ(ThrownText([&] { ReadObject(tooOld, Persistence::UnknownLength, 1); }), "Index out of Range");
}

TEST(ReplicateTree, CopiesAllNodesAndLeavesNoNumbers) {
    const auto root = MakeNode<TSList>();
    auto buffer = MakeNode<TBuffer>();
    buffer->Allocate(2);
    std::memcpy(buffer->GetData(), "ab", 2);
    Adopt(*root, std::move(buffer));
    const NodeHolder<TSList> copy = ReplicateTree(root.Get());
    ASSERT_EQ(copy->GetCount(), 1);
    EXPECT_EQ(std::memcmp(static_cast<TBuffer *>(copy->HeadValue())->GetData(), "ab", 2), 0);
    EXPECT_EQ(root->GetStreamIndex(), -1);
    EXPECT_EQ(root->HeadValue()->GetStreamIndex(), -1);
    EXPECT_EQ(TableScope::Current(), nullptr);
    EXPECT_EQ(ThrownText([] { ReplicateTree(nullptr); }), "Cannot replicate NULL pointer.");
}

TEST(ReplicateTree, GivesANullChildForANodeThatComesAgain) {
    const auto root = MakeNode<TSList>();
    const auto leaf = MakeNode<TSList>();
    Adopt(*root, Persistence::ShareNode(leaf));
    Adopt(*root, Persistence::ShareNode(leaf));
    const NodeHolder<TSList> copy = ReplicateTree(root.Get());
    ASSERT_EQ(copy->GetCount(), 2);
    EXPECT_EQ(copy->TailValue(), nullptr);
    EXPECT_EQ(copy->HeadValue()->GetRefCount(), 2) << "the copy is shared all the same";
    copy->HeadValue()->Release();
}

} // namespace
