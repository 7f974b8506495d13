#include "Persistence/Tree/TSList.h"

#include "CtkDLList.h"
#include "Persistence/Tree/ObjectStream.h"
#include "Persistence/Tree/StreamBytes.h"

template class CtkDLList<TSList *>;

namespace {

constexpr std::int32_t ChildrenPerBlock = 100;
constexpr std::uint32_t Guard1Value = 0xBC771u;
constexpr std::uint32_t Guard2Value = 0x2FB31u;

} // namespace

TSList::TSList() : CtkDLList(ChildrenPerBlock) {
    AddClass(ClassId);
    Reset();
}

std::uint32_t TSList::GetClassId() const {
    return WhileValid(ClassId);
}

std::int32_t TSList::Share() {
    const std::int32_t count = refCount_.fetch_add(1, std::memory_order_acq_rel) + 1;
    for (const Node *node = HeadNode(); node != nullptr; node = node->Next)
        if (node->Item != nullptr)
            node->Item->Share();
    return count;
}

void TSList::Load(CtkStream &stream) {
    Reset();
    Persistence::NumberLoaded(*this);
    const auto children = Persistence::ReadValue<std::int32_t>(stream);
    for (std::int32_t i = 0; i < children; ++i) {
        auto child = Persistence::ReadObject(stream);
        AddTail(child.Get());
        static_cast<void>(child.Detach());
    }
}

// Required: the children go first. The own count keeps the list alive for the walk, and once it is given back another
// thread may destroy the node, so nothing of the node is touched behind it.
std::int32_t TSList::Release() {
    for (const Node *node = HeadNode(); node != nullptr; node = node->Next)
        if (node->Item != nullptr)
            node->Item->Release();
    const std::int32_t count = refCount_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (count == 0)
        delete this;
    return count;
}

void TSList::Replicate(TSList &source) {
    if (source.tag_ != tag_)
        throw CtkExceptionObject("Impossible replication request.");
    if (&source == this)
        return;
    Persistence::NumberStored(source, *this);
    for (const Node *node = source.HeadNode(); node != nullptr; node = node->Next) {
        auto child = Persistence::ReplicateObject(node->Item);
        AddTail(child.Get());
        static_cast<void>(child.Detach());
    }
}

void TSList::Store(CtkStream &stream) {
    Persistence::NumberStored(*this, *this);
    Persistence::WriteValue(stream, GetCount());
    for (const Node *node = HeadNode(); node != nullptr; node = node->Next)
        Persistence::WriteObject(stream, node->Item);
}

void TSList::ClearStreamIndex() {
    streamIndex_ = NoStreamIndex;
    try {
        for (const Node *node = HeadNode(); node != nullptr; node = node->Next)
            if (node->Item != nullptr)
                node->Item->ClearStreamIndex();
    } catch (...) { // NOLINT: a child that cannot be reached keeps its number
    }
}

void TSList::Reset() noexcept {
    streamIndex_ = NoStreamIndex;
    guard1_ = Guard1Value;
    guard2_ = Guard2Value;
}

bool TSList::HasValidGuards() const noexcept {
    return guard1_ == Guard1Value && guard2_ == Guard2Value;
}

// Volatile, because a store into an object that ends is dead to the compiler.
void TSList::ClearGuards() noexcept {
    static_cast<volatile std::uint32_t &>(guard1_) = 0;
    static_cast<volatile std::uint32_t &>(guard2_) = 0;
}
