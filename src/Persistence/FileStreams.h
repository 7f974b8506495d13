// Streams over files as the tree needs them: small pieces are gathered, large blocks go without a detour.
#pragma once

#include <memory>

#include "CtkStream.h"
#include "Persistence/StagedOutput.h"

namespace Persistence {

/// Reads a file from the front on. It does not write, and it does not seek.
class FileInput final : public CtkStream {
public:
    explicit FileInput(const FileDescriptor &file);

    std::size_t Read(void *buffer, std::size_t count) override;
    std::size_t Write(const void *, std::size_t) override { return 0; }
    std::int64_t Seek(std::int64_t, std::int32_t) override { return static_cast<std::int64_t>(position_); }

private:
    std::size_t ReadBuffered(unsigned char *target, std::size_t count);

    const FileDescriptor &file_;
    std::unique_ptr<unsigned char[]> buffer_;
    std::size_t used_ = 0;   ///< of the buffer, handed out
    std::size_t filled_ = 0; ///< of the buffer, from the file
    std::uint64_t position_ = 0;
};

/// Appends to an output. A failure shows when the output is flushed.
class FileOutput final : public CtkStream {
public:
    explicit FileOutput(StagedOutput &output) noexcept : output_(output) {}

    std::size_t Read(void *, std::size_t) override { return 0; }
    std::size_t Write(const void *buffer, std::size_t count) override {
        output_.Append(buffer, count);
        return count;
    }
    std::int64_t Seek(std::int64_t, std::int32_t) override { return static_cast<std::int64_t>(output_.GetTotal()); }

private:
    StagedOutput &output_;
};

} // namespace Persistence
