#include "Persistence/Tree/LoadSession.h"

#include <algorithm>
#include <new>

#include "Persistence/Tree/StreamBytes.h"
#include "Persistence/Tree/StreamRegistry.h"

namespace Persistence {
namespace {

constinit LoadSession *currentSession = nullptr;

/// The steps of sharing a node: one per path below it. Above the limit for a node that takes more, or that has more
/// than so many levels.
std::size_t CountShareSteps(const TSList &object, std::size_t limit, std::size_t levels) {
    if (levels == 0)
        return limit + 1;
    std::size_t steps = 1;
    for (const auto *node = object.HeadNode(); node != nullptr && steps <= limit; node = node->Next)
        if (node->Item != nullptr)
            steps += CountShareSteps(*node->Item, limit - steps, levels - 1);
    return steps;
}

} // namespace

LoadSession::LoadSession(CtkStream &stream, std::size_t length, std::int32_t firstReferable) noexcept
    : stream_(stream), length_(length), firstReferable_(firstReferable),
      firstNumber_(TableScope::Current() == nullptr ? 0 : TableScope::Current()->GetCount()),
      former_(currentSession) {
    currentSession = this;
}

LoadSession::~LoadSession() {
    currentSession = former_;
}

LoadSession *LoadSession::Of(const CtkStream &stream) noexcept {
    return currentSession == &stream ? currentSession : nullptr;
}

LoadSession *LoadSession::Current() noexcept {
    return currentSession;
}

NodeHolder<TSList> LoadSession::ReadRoot() {
    TSList *table = TableScope::Current();
    try {
        return ReadRecord();
    } catch (...) {
        // The objects are gone: the table must not lead to them.
        while (table != nullptr && table->GetCount() > firstNumber_)
            table->RemoveTail();
        try {
            throw;
        } catch (const std::bad_alloc &) {
            throw CtkExceptionObject("Impossible to load TBuffer.");
        }
    }
}

NodeHolder<TSList> LoadSession::ReadRecord() {
    const auto id = ReadValue<std::uint32_t>(*this);
    if (TableScope::Current() != nullptr && id == BackReference)
        return ReadReference();
    const TStreamRec *record = FindByStreamId(id);
    if (record == nullptr || depth_ == MaxDepth)
        throw CtkExceptionObject("Attempt to load unregistered Class.");
    NodeHolder<TSList> object(record->Make());
    open_[depth_++] = object.Get();
    object->Load(*this);
    if (record->Finish != nullptr)
        record->Finish(*object);
    --depth_;
    return object;
}

NodeHolder<TSList> LoadSession::ReadReference() {
    std::int32_t index = 0;
    const bool isWhole = Read(&index, sizeof index) == sizeof index;
    TSList *item = ReferableItem(index);
    if (!isWhole)
        throw CtkExceptionObject(ReadTooShort);
    PayForSharing(*item);
    item->Share();
    return NodeHolder<TSList>(item);
}

/// The object with this number, which must be whole.
TSList *LoadSession::ReferableItem(std::int32_t index) const {
    TSList *item = nullptr;
    if (index >= firstNumber_) {
        const auto place = static_cast<std::size_t>(index - firstNumber_);
        item = place < entered_.size() ? entered_[place] : nullptr;
    } else if (index >= 0) {
        item = TableScope::Current()->ValueAt(index);
    }
    if (item == nullptr || index < firstReferable_ || IsOpen(item))
        throw CtkExceptionObject(CtkListErrors::IndexOutOfRange, "LoadSession.cpp", __LINE__);
    return item;
}

/// Sharing goes over all paths below an object, and a few bytes can make very many. References nest as records do.
void LoadSession::PayForSharing(const TSList &item) {
    const std::size_t budget = std::max(LeastShareSteps, bytesRead_ * ShareStepsPerByte);
    const std::size_t left = budget - std::min(budget, shareSteps_);
    const std::size_t steps = CountShareSteps(item, left, MaxDepth - depth_);
    if (steps > left)
        throw CtkExceptionObject("Too many shared objects in the stream.");
    shareSteps_ += steps;
}

bool LoadSession::IsOpen(const TSList *object) const {
    return std::find(open_.begin(), open_.begin() + static_cast<std::ptrdiff_t>(depth_), object) !=
           open_.begin() + static_cast<std::ptrdiff_t>(depth_);
}

void LoadSession::Enter(TSList &object) {
    entered_.push_back(&object);
}

std::size_t LoadSession::BytesKnownToFollow() const noexcept {
    return length_ == UnknownLength ? UnknownLength : length_ - std::min(length_, bytesRead_);
}

std::size_t LoadSession::Read(void *buffer, std::size_t count) {
    const std::size_t moved = std::min(stream_.Read(buffer, count), count);
    bytesRead_ += moved;
    return moved;
}

std::size_t LoadSession::Write(const void *buffer, std::size_t count) {
    return stream_.Write(buffer, count);
}

std::int64_t LoadSession::Seek(std::int64_t offset, std::int32_t origin) {
    return stream_.Seek(offset, origin);
}

} // namespace Persistence
