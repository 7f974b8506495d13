// Many small pieces into a file with few system calls.
#pragma once

#include <memory>

#include "Persistence/FileDescriptor.h"

namespace Persistence {

/// Gathers what is appended in a buffer; what is as large as the buffer goes to the file from where it stands. After
/// a failure nothing more is written, and Flush tells.
class StagedOutput {
public:
    explicit StagedOutput(const FileDescriptor &file);

    void Append(const void *source, std::size_t count);
    void AppendZeros(std::size_t count);
    /// Writes what is still in the buffer. False when anything so far was not written.
    bool Flush();
    /// All bytes appended so far.
    std::uint64_t GetTotal() const { return total_; }

private:
    const FileDescriptor &file_;
    std::unique_ptr<unsigned char[]> buffer_;
    std::size_t capacity_; ///< 0 where there was no memory for a buffer
    std::size_t used_ = 0;
    std::uint64_t total_ = 0;
    bool good_ = true;
};

} // namespace Persistence
