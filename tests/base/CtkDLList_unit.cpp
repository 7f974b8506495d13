// The list's promises, on numbers; the pool and the failures stand in CtkDLListPool_unit.cpp.
#include "CtkDLList.h"

#include <gtest/gtest.h>
#include <vector>

#include "VirtualSlot.h"

template class CtkDLList<CtkCString>;
template class CtkDLList<int>;

namespace {

using List = CtkDLList<int>;
using Values = std::vector<int>;

/// Read forwards; read backwards it must be the same.
Values Read(const List &list) {
    Values forwards;
    for (List::Node *position = list.HeadNode(); position != nullptr;)
        forwards.push_back(list.GetNext(position));
    Values backwards;
    for (List::Node *position = list.TailNode(); position != nullptr;)
        backwards.insert(backwards.begin(), list.GetPrev(position));
    EXPECT_EQ(forwards, backwards);
    EXPECT_EQ(static_cast<std::size_t>(list.GetCount()), forwards.size());
    return forwards;
}

void Fill(List &list, const Values &values) {
    for (const int value : values)
        list.AddTail(value);
}

struct Above final : List::Predicate {
    explicit Above(int limit) : Limit(limit) {}
    bool operator()(const int &value) const override { return value > Limit; }
    int Limit;
};

TEST(CtkDLList, IsAListOfTheContainerFamily) {
    const List list;
    EXPECT_EQ(list.GetFamily(), 7u);
    EXPECT_TRUE(list.IsMemberOf(1));
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.HeadNode(), nullptr);
    EXPECT_EQ(list.TailNode(), nullptr);
}

TEST(CtkDLList, AddsAtBothEnds) {
    List list;
    EXPECT_EQ(list.AddHead(2)->Item, 2);
    const List::Node *third = list.AddTail(3);
    EXPECT_EQ(third, list.TailNode());
    const List::Node *first = list.Push(1);
    EXPECT_EQ(first, list.HeadNode());
    const List::Node *fourth = list.Append(4);
    EXPECT_EQ(fourth, list.TailNode());
    EXPECT_EQ(Read(list), (Values{1, 2, 3, 4}));
}

TEST(CtkDLList, AddsTheValuesOfAnotherListInTheirOrder) {
    List list;
    List other;
    Fill(list, {1});
    Fill(other, {7, 8});
    const List::Node *firstAdded = list.AddHead(other);
    EXPECT_EQ(firstAdded, list.HeadNode());
    const List::Node *secondAdded = list.AddTail(other);
    EXPECT_EQ(secondAdded, list.NodeAt(3));
    EXPECT_EQ(Read(list), (Values{7, 8, 1, 7, 8}));
    EXPECT_EQ(Read(other), (Values{7, 8}));
}

TEST(CtkDLList, AddingAnEmptyListAddsNothing) {
    List list;
    const List empty;
    EXPECT_EQ(list.AddTail(empty), nullptr);
    EXPECT_EQ(list.AddHead(empty), nullptr);
    EXPECT_EQ(Read(list), Values{});
}

TEST(CtkDLList, TakesInItsOwnValues) {
    List list(2);
    Fill(list, {1, 2, 3});
    list.AddTail(list);
    EXPECT_EQ(Read(list), (Values{1, 2, 3, 1, 2, 3}));
    list.InsertAfter(list.HeadNode(), list);
    EXPECT_EQ(Read(list), (Values{1, 1, 2, 3, 1, 2, 3, 2, 3, 1, 2, 3}));
}

TEST(CtkDLList, InsertsBesideANode) {
    List list;
    Fill(list, {10, 20});
    const List::Node *front = list.InsertBefore(list.HeadNode(), 5);
    EXPECT_EQ(front, list.HeadNode());
    const List::Node *back = list.InsertAfter(list.TailNode(), 25);
    EXPECT_EQ(back, list.TailNode());
    EXPECT_EQ(list.InsertAfter(list.NodeAt(1), 15)->Item, 15);
    list.InsertBefore(list.NodeAt(3), 17);
    EXPECT_EQ(Read(list), (Values{5, 10, 15, 17, 20, 25}));
}

TEST(CtkDLList, InsertsBesideAnIndex) {
    List list;
    Fill(list, {10, 20});
    list.InsertBeforeIndex(0, 5);
    list.InsertAfterIndex(2, 25);
    list.InsertAfterIndex(1, 15);
    list.InsertBeforeIndex(3, 17);
    EXPECT_EQ(Read(list), (Values{5, 10, 15, 17, 20, 25}));
}

TEST(CtkDLList, InsertsAnotherListBesideNodeAndIndex) {
    List list;
    List other;
    Fill(list, {1, 2});
    Fill(other, {8, 9});
    list.InsertBefore(list.TailNode(), other);
    EXPECT_EQ(Read(list), (Values{1, 8, 9, 2}));
    list.InsertAfter(list.TailNode(), other);
    EXPECT_EQ(Read(list), (Values{1, 8, 9, 2, 8, 9}));
    list.InsertBeforeIndex(0, other);
    list.InsertAfterIndex(2, other);
    EXPECT_EQ(Read(list), (Values{8, 9, 1, 8, 9, 8, 9, 2, 8, 9}));
}

TEST(CtkDLList, RemovesAtBothEnds) {
    List list;
    Fill(list, {1, 2, 3});
    EXPECT_EQ(list.RemoveHead(), 1);
    EXPECT_EQ(list.RemoveTail(), 3);
    EXPECT_EQ(Read(list), Values{2});
    EXPECT_EQ(list.RemoveTail(), 2);
    EXPECT_EQ(Read(list), Values{});
    list.AddHead(4);
    EXPECT_EQ(list.RemoveHead(), 4);
    EXPECT_EQ(Read(list), Values{});
}

TEST(CtkDLList, RemovesByIndexValueAndNode) {
    List list;
    Fill(list, {1, 2, 3, 2, 5});
    EXPECT_EQ(list.RemoveAt(2), 3);
    list.RemoveValue(2);
    EXPECT_EQ(Read(list), (Values{1, 2, 5}));
    EXPECT_EQ(list.RemoveNode(list.HeadNode()), 1);
    EXPECT_EQ(Read(list), (Values{2, 5}));
}

TEST(CtkDLList, RemovesTheFirstEqualValueFromANodeOn) {
    List list;
    Fill(list, {2, 1, 2, 3, 2});
    list.RemoveValue(2, list.NodeAt(1));
    EXPECT_EQ(Read(list), (Values{2, 1, 3, 2}));
    list.RemoveValue(2, list.HeadNode());
    EXPECT_EQ(Read(list), (Values{1, 3, 2}));
}

TEST(CtkDLList, RemoveAllEmptiesTheList) {
    List list;
    Fill(list, {1, 2, 3});
    list.RemoveAll();
    EXPECT_EQ(Read(list), Values{});
    list.RemoveAll();
    EXPECT_EQ(list.GetCount(), 0);
}

TEST(CtkDLList, FindsByPredicate) {
    List list;
    EXPECT_EQ(list.Find(Above(0)), -1);
    EXPECT_EQ(list.FindNode(Above(0)), nullptr);
    Fill(list, {1, 5, 2, 6});
    EXPECT_EQ(list.Find(Above(4)), 1);
    EXPECT_EQ(list.Find(Above(4), 2), 3);
    EXPECT_EQ(list.Find(Above(4), 1), 1);
    EXPECT_EQ(list.Find(Above(6)), -1);
    EXPECT_EQ(list.Find(Above(6), 3), -1);
    EXPECT_EQ(list.FindNode(Above(4)), list.NodeAt(1));
    EXPECT_EQ(list.FindNode(Above(4), list.NodeAt(2)), list.NodeAt(3));
    EXPECT_EQ(list.FindNode(Above(6), list.HeadNode()), nullptr);
}

TEST(CtkDLList, SearchesByValue) {
    List list;
    EXPECT_EQ(list.IndexOf(3), -1);
    EXPECT_EQ(list.NodeOf(3), nullptr);
    Fill(list, {1, 3, 2, 3});
    EXPECT_EQ(list.IndexOf(3), 1);
    EXPECT_EQ(list.IndexOf(9), -1);
    EXPECT_EQ(list.NodeOf(3), list.NodeAt(1));
    EXPECT_EQ(list.NodeOf(3, list.NodeAt(2)), list.NodeAt(3));
    EXPECT_EQ(list.NodeOf(1, list.NodeAt(1)), nullptr);
}

TEST(CtkDLList, NodeAtGivesNullOutOfRange) {
    List list;
    EXPECT_EQ(list.NodeAt(0), nullptr);
    Fill(list, {1, 2, 3, 4, 5});
    for (int index = 0; index < 5; ++index)
        EXPECT_EQ(list.NodeAt(index)->Item, index + 1);
    EXPECT_EQ(list.NodeAt(5), nullptr);
    EXPECT_EQ(list.NodeAt(-1), nullptr);
    EXPECT_EQ(list.NodeAt(std::int64_t{1} << 32), nullptr);
}

TEST(CtkDLList, GivesAndSetsValues) {
    List list;
    Fill(list, {1, 2, 3});
    EXPECT_EQ(list.HeadValue(), 1);
    EXPECT_EQ(list.TailValue(), 3);
    EXPECT_EQ(list.ValueAt(1), 2);
    EXPECT_EQ(list.ValueOfNode(list.TailNode()), 3);
    list.SetAt(1, 20);
    EXPECT_EQ(Read(list), (Values{1, 20, 3}));
}

TEST(CtkDLList, TheShortFormsForward) {
    List list;
    Fill(list, {1, 2, 3});
    EXPECT_EQ(list.Item(2), 3);
    EXPECT_EQ(list.ItemOf(list.HeadNode()), 1);
    list.SetItem(0, 10);
    list.SetItemOf(list.TailNode(), 30);
    EXPECT_EQ(Read(list), (Values{10, 2, 30}));
}

TEST(CtkDLList, ANodeStaysInItsPlaceInMemory) {
    List list(1);
    List::Node *node = list.AddTail(7);
    for (int i = 0; i < 50; ++i)
        list.AddHead(i);
    EXPECT_EQ(list.TailNode(), node);
    EXPECT_EQ(node->Item, 7);
}

TEST(CtkDLList, HasItsSlotsInOrder) {
    using TestSupport::SlotOf;
    using Node = List::Node;
    const std::size_t slots[] = {
        SlotOf(&List::Item),
        SlotOf(&List::IndexOf),
        SlotOf(static_cast<Node *(List::*)(int)>(&List::AddHead)),
        SlotOf(static_cast<Node *(List::*)(int)>(&List::AddTail)),
        SlotOf(static_cast<Node *(List::*)(Node *, int)>(&List::InsertBefore)),
        SlotOf(&List::RemoveHead),
        SlotOf(&List::RemoveTail),
        SlotOf(&List::RemoveAll),
        SlotOf(&List::RemoveAt),
        SlotOf(&List::RemoveNode),
        SlotOf(static_cast<std::int32_t (List::*)(const List::Predicate &) const>(&List::Find)),
        SlotOf(&List::NodeAt),
        SlotOf(&List::HeadValue),
        SlotOf(&List::TailValue),
        SlotOf(&List::ValueAt),
        SlotOf(&List::ValueOfNode),
        SlotOf(&List::HeadNode),
        SlotOf(&List::TailNode),
        SlotOf(&List::GetNext),
        SlotOf(&List::GetPrev),
        SlotOf(&List::SetAt),
        SlotOf(&List::Grow),
    };
    EXPECT_EQ(slots[0], 6u); // behind the six of the root
    EXPECT_TRUE(std::is_sorted(std::begin(slots), std::end(slots)));
    EXPECT_EQ(slots[std::size(slots) - 1] - slots[11], 10u); // from NodeAt to Grow one by one
}

} // namespace
