// A file that is written beside the one it will replace, and takes its place only when it is whole.
#pragma once

#include <string>

#include "Persistence/FileDescriptor.h"

namespace Persistence {

/// Ends without a trace when it is not committed: what stood under the path stands there still. Where no file can be
/// made beside, and for what is no regular file (a pipe, a device), the path itself is written.
class ReplacedFile {
public:
    explicit ReplacedFile(const char *path);
    ReplacedFile(const ReplacedFile &) = delete;
    ReplacedFile &operator=(const ReplacedFile &) = delete;
    ~ReplacedFile();

    /// False for a path that can't be written.
    bool IsOpen() const { return file_.IsOpen(); }
    const FileDescriptor &File() const { return file_; }
    /// Ends the file after total bytes and lets it take the path's place. False when any of that fails.
    bool Commit(std::uint64_t total);

private:
    /// The two names; without one of its own the file stands under the path already.
    struct Names {
        std::string Target;
        std::string Own;
    };

    static FileDescriptor Open(const char *path, Names &names);

    Names names_;
    FileDescriptor file_;
};

} // namespace Persistence
