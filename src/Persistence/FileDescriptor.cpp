#include "Persistence/FileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Persistence {
namespace {

/// Calls step(done) until it has moved count bytes, comes to an end (0) or fails. Result: the bytes moved.
template <class Step>
std::size_t MoveAll(std::size_t count, Step &&step) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t moved = step(done);
        if (moved > 0)
            done += static_cast<std::size_t>(moved);
        else if (moved == 0 || errno != EINTR)
            break;
    }
    return done;
}

} // namespace

FileDescriptor FileDescriptor::OpenForReading(const char *path) {
    return FileDescriptor(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

FileDescriptor FileDescriptor::OpenForWriting(const char *path) {
    return FileDescriptor(open(path, O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666));
}

FileDescriptor FileDescriptor::MakeNew(const char *path) {
    return FileDescriptor(open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0666));
}

bool FileDescriptor::GetRegularFileSize(std::uint64_t &bytes) const {
    struct stat status;
    if (fstat(number_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 0)
        return false;
    bytes = static_cast<std::uint64_t>(status.st_size);
    return true;
}

std::size_t FileDescriptor::ReadAt(std::uint64_t offset, void *target, std::size_t count) const {
    return MoveAll(count, [&](std::size_t done) {
        return pread(number_, static_cast<char *>(target) + done, count - done, static_cast<off_t>(offset + done));
    });
}

bool FileDescriptor::Write(const void *source, std::size_t count) const {
    return MoveAll(count, [&](std::size_t done) {
               return write(number_, static_cast<const char *>(source) + done, count - done);
           }) == count;
}

bool FileDescriptor::WriteAt(std::uint64_t offset, const void *source, std::size_t count) const {
    return MoveAll(count, [&](std::size_t done) {
               return pwrite(number_, static_cast<const char *>(source) + done, count - done,
                             static_cast<off_t>(offset + done));
           }) == count;
}

bool FileDescriptor::SetRights(unsigned rights) const {
    return fchmod(number_, static_cast<mode_t>(rights)) == 0;
}

bool FileDescriptor::Sync() const {
    return fdatasync(number_) == 0;
}

bool FileDescriptor::SetFileSize(std::uint64_t bytes) const {
    return ftruncate(number_, static_cast<off_t>(bytes)) == 0;
}

bool FileDescriptor::Close() {
    const int number = std::exchange(number_, Closed);
    return number == Closed || close(number) == 0;
}

} // namespace Persistence
