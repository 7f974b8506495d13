#include "Persistence/FileStreams.h"

#include <algorithm>
#include <cstring>

namespace Persistence {
namespace {

constexpr std::size_t BufferBytes = 16 * 1024;

} // namespace

FileInput::FileInput(const FileDescriptor &file) : file_(file), buffer_(new unsigned char[BufferBytes]) {}

std::size_t FileInput::Read(void *buffer, std::size_t count) {
    auto *target = static_cast<unsigned char *>(buffer);
    std::size_t moved = ReadBuffered(target, count);
    const std::size_t left = count - moved;
    if (left >= BufferBytes) {
        const std::size_t read = file_.ReadAt(position_, target + moved, left);
        position_ += read;
        moved += read;
    } else if (left > 0) {
        used_ = 0;
        filled_ = file_.ReadAt(position_, buffer_.get(), BufferBytes);
        position_ += filled_;
        moved += ReadBuffered(target + moved, left);
    }
    return moved;
}

std::size_t FileInput::ReadBuffered(unsigned char *target, std::size_t count) {
    const std::size_t moved = std::min(count, filled_ - used_);
    if (moved > 0)
        std::memcpy(target, buffer_.get() + used_, moved);
    used_ += moved;
    return moved;
}

} // namespace Persistence
