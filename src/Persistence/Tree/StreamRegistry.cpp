#include "Persistence/Tree/StreamRegistry.h"

#include "CtkDLList.h"

namespace Persistence {
namespace {

constexpr std::int32_t RecordsPerBlock = 10;

using Registry = CtkDLList<TStreamRec *>;

/// Made by the first registration. A plain pointer, so that it can be used while the library is still being loaded.
constinit Registry *registry = nullptr;

const TStreamRec *FindBy(std::uint32_t TStreamRec::*number, std::uint32_t value) {
    if (registry != nullptr)
        for (const auto *node = registry->HeadNode(); node != nullptr; node = node->Next)
            if (node->Item->*number == value)
                return node->Item;
    return nullptr;
}

} // namespace

void RegisterStreamClass(TStreamRec &record, std::uint32_t classId) {
    if (registry == nullptr)
        registry = new Registry(RecordsPerBlock);
    // Required: the class number that the record came with is compared, not its stream number.
    if (FindByStreamId(record.ClassId) != nullptr)
        throw CtkExceptionObject("Duplicate Stream ID registered.");
    record.ClassId = classId;
    registry->AddTail(&record);
}

void RemoveStreamRegistry() noexcept {
    delete registry;
    registry = nullptr;
}

const TStreamRec *FindByClassId(std::uint32_t classId) {
    return FindBy(&TStreamRec::ClassId, classId);
}

const TStreamRec *FindByStreamId(std::uint32_t streamId) {
    return FindBy(&TStreamRec::StreamId, streamId);
}

} // namespace Persistence
