// A POSIX file that closes itself. Interrupted and short calls are carried on; every other failure is a result.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace Persistence {

class FileDescriptor {
public:
    /// Opens for reading. Not open when that fails. A named pipe without a writer does not block.
    static FileDescriptor OpenForReading(const char *path);
    /// Opens for writing from the front on; makes the file, or keeps what is there until it is written over. Not open
    /// when that fails.
    static FileDescriptor OpenForWriting(const char *path);
    /// Makes a file that is not there yet, for writing. Not open when that fails.
    static FileDescriptor MakeNew(const char *path);

    FileDescriptor(FileDescriptor &&other) noexcept : number_(std::exchange(other.number_, Closed)) {}
    FileDescriptor &operator=(FileDescriptor &&) = delete;
    ~FileDescriptor() { Close(); }

    bool IsOpen() const { return number_ != Closed; }
    /// The length in bytes. False for everything that is no regular file.
    bool GetRegularFileSize(std::uint64_t &bytes) const;
    /// Reads from an offset on. Result: the bytes read; less than count at the end of the file or on an error.
    std::size_t ReadAt(std::uint64_t offset, void *target, std::size_t count) const;
    /// Writes behind what was written before. False when not all was written.
    bool Write(const void *source, std::size_t count) const;
    /// Writes at an offset. False when not all was written.
    bool WriteAt(std::uint64_t offset, const void *source, std::size_t count) const;
    /// Gives the file these rights.
    bool SetRights(unsigned rights) const;
    /// Has the system store what was written, so that a new name for the file never leads to less.
    bool Sync() const;
    /// Cuts the file, or makes it longer with zeros.
    bool SetFileSize(std::uint64_t bytes) const;
    /// False when the system reports at the last moment that something was not written.
    bool Close();

private:
    static constexpr int Closed = -1;
    explicit FileDescriptor(int number) : number_(number) {}

    int number_;
};

} // namespace Persistence
