// The bodies of CtkDLList.h.
#pragma once

#include <limits>
#include <new>
#include <utility>

template <class T>
CtkDLList<T>::~CtkDLList() {
    while (blockChain_ != nullptr) {
        Block *block = std::exchange(blockChain_, blockChain_->Next);
        delete[] block->Elements;
        delete block;
    }
}

template <class T>
std::uint32_t CtkDLList<T>::GetFamily() const {
    return Family;
}

template <class T>
const T &CtkDLList<T>::Item(std::int64_t index) const {
    return ValueAt(index);
}

template <class T>
const T &CtkDLList<T>::ItemOf(Node *node) const {
    return ValueOfNode(node);
}

template <class T>
void CtkDLList<T>::SetItem(std::int64_t index, T value) {
    SetAt(index, std::move(value));
}

template <class T>
void CtkDLList<T>::SetItemOf(Node *node, T value) {
    Existing(node)->Item = std::move(value);
}

template <class T>
std::int32_t CtkDLList<T>::IndexOf(const T &value) const {
    std::int32_t index = 0;
    for (const Node *node = head_; node != nullptr; node = node->Next, ++index)
        if (node->Item == value)
            return index;
    return -1;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::NodeOf(const T &value) const {
    return head_ == nullptr ? nullptr : NodeOf(value, head_);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::NodeOf(const T &value, Node *start) const {
    Node *node = Existing(start);
    while (node != nullptr && !(node->Item == value))
        node = node->Next;
    return node;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::AddHead(T value) {
    return Link(nullptr, head_, std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::AddHead(const CtkDLList &values) {
    return LinkAll(nullptr, head_, values);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::AddTail(T value) {
    return Link(tail_, nullptr, std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::AddTail(const CtkDLList &values) {
    return LinkAll(tail_, nullptr, values);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::Push(T value) {
    return AddHead(std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::Append(T value) {
    return AddTail(std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertBefore(Node *node, T value) {
    return Link(Existing(node)->Prev, node, std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertAfter(Node *node, T value) {
    return Link(node, Existing(node)->Next, std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertBefore(Node *node, const CtkDLList &values) {
    return LinkAll(Existing(node)->Prev, node, values);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertAfter(Node *node, const CtkDLList &values) {
    return LinkAll(node, Existing(node)->Next, values);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertBeforeIndex(std::int64_t index, T value) {
    return InsertBefore(ExistingAt(index), std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertAfterIndex(std::int64_t index, T value) {
    return InsertAfter(ExistingAt(index), std::move(value));
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertBeforeIndex(std::int64_t index, const CtkDLList &values) {
    return InsertBefore(ExistingAt(index), values);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::InsertAfterIndex(std::int64_t index, const CtkDLList &values) {
    return InsertAfter(ExistingAt(index), values);
}

template <class T>
T CtkDLList<T>::RemoveHead() {
    return RemoveNode(head_);
}

template <class T>
T CtkDLList<T>::RemoveTail() {
    return RemoveNode(tail_);
}

template <class T>
void CtkDLList<T>::RemoveAll() {
    while (count_ > 0)
        RemoveHead();
}

template <class T>
T CtkDLList<T>::RemoveAt(std::int64_t index) {
    return RemoveNode(ExistingAt(index));
}

template <class T>
void CtkDLList<T>::RemoveValue(const T &value) {
    RemoveNode(NodeOf(value));
}

template <class T>
void CtkDLList<T>::RemoveValue(const T &value, Node *start) {
    RemoveNode(NodeOf(value, start));
}

template <class T>
T CtkDLList<T>::RemoveNode(Node *node) {
    T value = std::move(Existing(node)->Item);
    Unlink(node);
    ReturnToPool(node);
    return value;
}

template <class T>
std::int32_t CtkDLList<T>::Find(const Predicate &predicate) const {
    return head_ == nullptr ? -1 : Find(predicate, 0);
}

template <class T>
std::int32_t CtkDLList<T>::Find(const Predicate &predicate, std::int64_t start) const {
    auto index = static_cast<std::int32_t>(start);
    for (const Node *node = ExistingAt(start); node != nullptr; node = node->Next, ++index)
        if (predicate(node->Item))
            return index;
    return -1;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::FindNode(const Predicate &predicate) const {
    return head_ == nullptr ? nullptr : FindNode(predicate, head_);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::FindNode(const Predicate &predicate, Node *start) const {
    Node *node = Existing(start);
    while (node != nullptr && !predicate(node->Item))
        node = node->Next;
    return node;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::NodeAt(std::int64_t index) const {
    if (index < 0 || index >= count_)
        return nullptr;
    Node *node = index <= count_ / 2 ? head_ : tail_;
    if (index <= count_ / 2)
        for (; index > 0; --index)
            node = node->Next;
    else
        for (; index < count_ - 1; ++index)
            node = node->Prev;
    return node;
}

template <class T>
const T &CtkDLList<T>::HeadValue() const {
    return ValueOfNode(head_);
}

template <class T>
const T &CtkDLList<T>::TailValue() const {
    return ValueOfNode(tail_);
}

template <class T>
const T &CtkDLList<T>::ValueAt(std::int64_t index) const {
    return ExistingAt(index)->Item;
}

template <class T>
const T &CtkDLList<T>::ValueOfNode(Node *node) const {
    return Existing(node)->Item;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::HeadNode() const {
    return head_;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::TailNode() const {
    return tail_;
}

template <class T>
const T &CtkDLList<T>::GetNext(Node *&position) const {
    const Node *node = Existing(position);
    position = node->Next;
    return node->Item;
}

template <class T>
const T &CtkDLList<T>::GetPrev(Node *&position) const {
    const Node *node = Existing(position);
    position = node->Prev;
    return node->Item;
}

template <class T>
void CtkDLList<T>::SetAt(std::int64_t index, T value) {
    ExistingAt(index)->Item = std::move(value);
}

template <class T>
void CtkDLList<T>::Grow(std::uint32_t count) {
    if (count == UsualGrowth)
        count = growBy_ < 1 ? 0 : static_cast<std::uint32_t>(growBy_);
    if (count == 0)
        return;
    auto *block = new (std::nothrow) Block{blockChain_, nullptr};
    Node *elements = block != nullptr ? new (std::nothrow) Node[count] : nullptr;
    if (elements == nullptr) {
        delete block;
        Throw(CtkListErrors::GeneralError, __LINE__);
    }
    block->Elements = elements;
    blockChain_ = block;
    for (std::uint32_t i = 0; i + 1 < count; ++i)
        elements[i].Next = &elements[i + 1];
    (freeTail_ != nullptr ? freeTail_->Next : freeHead_) = elements;
    freeTail_ = &elements[count - 1];
}

template <class T>
std::int32_t CtkDLList<T>::GetBlockCount() const noexcept {
    std::int32_t blocks = 0;
    for (const Block *block = blockChain_; block != nullptr; block = block->Next)
        ++blocks;
    return blocks;
}

template <class T>
void CtkDLList<T>::Throw(const CtkExceptionObject::Error &error, std::int32_t line) {
    throw CtkExceptionObject(error, "CtkDLList.inl", line);
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::Existing(Node *node) {
    if (node == nullptr)
        Throw(CtkListErrors::ItemNotFound, __LINE__);
    return node;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::ExistingAt(std::int64_t index) const {
    Node *node = NodeAt(index);
    if (node == nullptr)
        Throw(CtkListErrors::IndexOutOfRange, __LINE__);
    return node;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::TakeFromPool(T &&value) {
    if (freeHead_ == nullptr)
        Grow(UsualGrowth);
    if (freeHead_ == nullptr || count_ == std::numeric_limits<std::int32_t>::max())
        Throw(CtkListErrors::NoEmptyElements, __LINE__);
    Node *node = freeHead_;
    node->Item = std::move(value);
    freeHead_ = node->Next;
    if (freeHead_ == nullptr)
        freeTail_ = nullptr;
    ++count_;
    return node;
}

template <class T>
void CtkDLList<T>::ReturnToPool(Node *node) noexcept {
    node->Item = T{};
    node->Prev = nullptr;
    node->Next = freeHead_;
    freeHead_ = node;
    if (freeTail_ == nullptr)
        freeTail_ = node;
    --count_;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::Link(Node *prev, Node *next, T &&value) {
    Node *node = TakeFromPool(std::move(value));
    node->Prev = prev;
    node->Next = next;
    (prev != nullptr ? prev->Next : head_) = node;
    (next != nullptr ? next->Prev : tail_) = node;
    return node;
}

// The new nodes are chained first and put into the list last, so that a list can take in its own values and a failure
// on the way changes nothing.
template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::LinkAll(Node *prev, Node *next, const CtkDLList &values) {
    Node *first = nullptr;
    Node *last = nullptr;
    try {
        for (const Node *node = values.head_; node != nullptr; node = node->Next) {
            Node *fresh = TakeFromPool(T(node->Item));
            fresh->Prev = last;
            fresh->Next = nullptr;
            (last != nullptr ? last->Next : first) = fresh;
            last = fresh;
        }
    } catch (...) {
        while (first != nullptr)
            ReturnToPool(std::exchange(first, first->Next));
        throw;
    }
    if (first == nullptr)
        return nullptr;
    first->Prev = prev;
    last->Next = next;
    (prev != nullptr ? prev->Next : head_) = first;
    (next != nullptr ? next->Prev : tail_) = last;
    return first;
}

template <class T>
typename CtkDLList<T>::Node *CtkDLList<T>::Unlink(Node *node) noexcept {
    (node->Prev != nullptr ? node->Prev->Next : head_) = node->Next;
    (node->Next != nullptr ? node->Next->Prev : tail_) = node->Prev;
    return node;
}
