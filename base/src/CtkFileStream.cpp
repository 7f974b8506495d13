#include "CtkFileStream.h"

#include "CtkHRESULTException.h"

namespace {

constexpr char SourceFile[] = "CtkFileStream.cpp";

std::FILE *Open(const char *path, std::int32_t mode) {
    if (path == nullptr)
        return nullptr;
    switch (mode) {
    case CtkFileStream::ModeWrite:
        return std::fopen(path, "wb");
    case CtkFileStream::ModeRead:
        return std::fopen(path, "rb");
    default:
        return nullptr;
    }
}

} // namespace

std::uint32_t CtkStream::GetFamily() const {
    return Family;
}

CtkFileStream::CtkFileStream(const char *path, std::int32_t mode) : file_(Open(path, mode)) {
    if (file_ == nullptr)
        throw tkIO::CtkIOException(tkIO::CtkIOException::CannotOpen, SourceFile, __LINE__);
}

CtkFileStream::~CtkFileStream() {
    std::fclose(file_);
}

std::size_t CtkFileStream::Read(void *buffer, std::size_t count) {
    const std::size_t moved = std::fread(buffer, 1, count, file_);
    if (moved < count) {
        fseeko(file_, position_, SEEK_SET); // the file's own position has moved: bring it back to ours
        throw tkIO::CtkIOException(tkIO::CtkIOException::ReadBeyondEnd, SourceFile, __LINE__);
    }
    position_ += static_cast<std::int64_t>(moved);
    return moved;
}

std::size_t CtkFileStream::Write(const void *buffer, std::size_t count) {
    const std::size_t moved = std::fwrite(buffer, 1, count, file_);
    position_ += static_cast<std::int64_t>(moved);
    return moved;
}

std::int64_t CtkFileStream::Seek(std::int64_t offset, std::int32_t origin) {
    static constexpr int platformOrigins[] = {SEEK_SET, SEEK_END, SEEK_CUR};
    if (origin < FromStart || origin > FromPosition || fseeko(file_, offset, platformOrigins[origin]) != 0)
        return position_;
    const off_t reached = ftello(file_);
    if (reached >= 0)
        position_ = reached;
    return position_;
}
