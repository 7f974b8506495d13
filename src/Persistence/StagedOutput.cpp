#include "Persistence/StagedOutput.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace Persistence {
namespace {

constexpr std::size_t BufferBytes = 64 * 1024;

} // namespace

StagedOutput::StagedOutput(const FileDescriptor &file)
    : file_(file), buffer_(new (std::nothrow) unsigned char[BufferBytes]), capacity_(buffer_ ? BufferBytes : 0) {}

void StagedOutput::Append(const void *source, std::size_t count) {
    total_ += count;
    if (count > capacity_ - used_)
        Flush();
    if (count >= capacity_) {
        good_ = good_ && file_.Write(source, count);
        return;
    }
    std::memcpy(buffer_.get() + used_, source, count);
    used_ += count;
}

void StagedOutput::AppendZeros(std::size_t count) {
    constexpr std::array<unsigned char, 4> Zeros{};
    for (std::size_t left = count; left > 0; left -= std::min(left, Zeros.size()))
        Append(Zeros.data(), std::min(left, Zeros.size()));
}

bool StagedOutput::Flush() {
    good_ = good_ && file_.Write(buffer_.get(), used_);
    used_ = 0;
    return good_;
}

} // namespace Persistence
