#include "Persistence/ReplacedFile.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Persistence {
namespace {

/// The path behind all links; empty when it leads to no file.
std::string ResolvedPath(const char *path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path, nullptr), std::free);
    return resolved == nullptr ? std::string() : std::string(resolved.get());
}

std::string NameBeside(const std::string &path) {
    static std::atomic<unsigned> number = 0;
    return path + "." + std::to_string(getpid()) + "-" + std::to_string(number++) + ".part";
}

} // namespace

ReplacedFile::ReplacedFile(const char *path) : file_(Open(path, names_)) {}

ReplacedFile::~ReplacedFile() {
    file_.Close();
    if (!names_.Own.empty())
        unlink(names_.Own.c_str());
}

FileDescriptor ReplacedFile::Open(const char *path, Names &names) {
    struct stat former;
    struct stat link;
    const bool isThere = stat(path, &former) == 0;
    const bool leadsNowhere = !isThere && lstat(path, &link) == 0;
    // A file that may not be written is not replaced either, though its folder would allow it.
    const bool isReplaceable = isThere && S_ISREG(former.st_mode) && access(path, W_OK) == 0;
    if (leadsNowhere || (isThere && !isReplaceable))
        return FileDescriptor::OpenForWriting(path);
    names.Target = isThere ? ResolvedPath(path) : path;
    names.Own = NameBeside(names.Target);
    FileDescriptor file = FileDescriptor::MakeNew(names.Own.c_str());
    if (file.IsOpen() && (!isThere || file.SetRights(former.st_mode & 07777u)))
        return file;
    if (file.IsOpen())
        unlink(names.Own.c_str());
    names.Own.clear();
    return FileDescriptor::OpenForWriting(path);
}

bool ReplacedFile::Commit(std::uint64_t total) {
    if (names_.Own.empty()) {
        std::uint64_t bytes = 0;
        const bool isCut = !file_.GetRegularFileSize(bytes) || bytes <= total || file_.SetFileSize(total);
        return file_.Close() && isCut;
    }
    const bool isStored = file_.Sync();
    if (!file_.Close() || !isStored || std::rename(names_.Own.c_str(), names_.Target.c_str()) != 0)
        return false;
    names_.Own.clear();
    return true;
}

} // namespace Persistence
