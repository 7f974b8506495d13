// The streams that need no file: over a block of memory, and over nothing.
#include <algorithm>
#include <cstring>

#include "CheckedSize.h"
#include "Objects/TDummyStream.h"
#include "Objects/TMemStream.h"

namespace {

std::size_t dummyHighWater = 0;

/// A place offset bytes from another; a step back beyond 0 ends at 0.
std::size_t PlaceFrom(std::size_t place, std::int64_t offset) {
    if (offset < 0 && orvBase::Magnitude(offset) > place)
        return 0;
    return place + static_cast<std::size_t>(offset);
}

} // namespace

TMemStream::TMemStream(void *block, std::size_t size, Purpose purpose) noexcept
    : base_(static_cast<unsigned char *>(block)), limit_(size), highWater_(purpose == Purpose::Reading ? size : 0) {}

std::size_t TMemStream::Read(void *buffer, std::size_t count) {
    const std::size_t moved = Available(count);
    if (moved > 0)
        std::memmove(buffer, base_ + position_, moved);
    return Advance(moved);
}

std::size_t TMemStream::Write(const void *buffer, std::size_t count) {
    const std::size_t moved = Available(count);
    if (moved > 0)
        std::memmove(base_ + position_, buffer, moved);
    return Advance(moved);
}

std::int64_t TMemStream::Seek(std::int64_t offset, std::int32_t origin) {
    if (origin == FromStart)
        position_ = PlaceFrom(0, offset);
    else if (origin == FromPosition)
        position_ = PlaceFrom(position_, offset);
    else if (origin == FromHighWater)
        position_ = PlaceFrom(highWater_, offset);
    return static_cast<std::int64_t>(position_);
}

/// The position may lie behind the limit, where a seek has put it.
std::size_t TMemStream::Available(std::size_t count) const noexcept {
    return position_ < limit_ ? std::min(count, limit_ - position_) : 0;
}

std::size_t TMemStream::Advance(std::size_t count) noexcept {
    position_ += count;
    if (count > 0)
        highWater_ = std::max(highWater_, position_);
    return count;
}

TDummyStream::TDummyStream() noexcept {
    dummyHighWater = 0;
}

std::size_t TDummyStream::Read(void *, std::size_t count) {
    return count;
}

std::size_t TDummyStream::Write(const void *, std::size_t count) {
    position_ += count;
    dummyHighWater = std::max(dummyHighWater, position_);
    return count;
}

std::int64_t TDummyStream::Seek(std::int64_t offset, std::int32_t origin) {
    if (origin == FromStart)
        position_ = PlaceFrom(0, offset);
    else if (origin == FromHighWater)
        position_ = PlaceFrom(dummyHighWater, offset);
    else if (origin == FromPosition)
        position_ = PlaceFrom(position_, offset);
    return static_cast<std::int64_t>(position_);
}

std::size_t TDummyStream::GetHighWater() noexcept {
    return dummyHighWater;
}
