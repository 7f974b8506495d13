/* A stream over a file of the standard library. */
#ifndef ORV_OBJECTS_CTK_FILE_STREAM_H
#define ORV_OBJECTS_CTK_FILE_STREAM_H
#ifdef __cplusplus

#include <cstdio>

#include "Objects/CtkStream.h"

class ORV_API CtkFileStream : public CtkStream {
public:
    static constexpr std::int32_t ModeWrite = 1; ///< "wb"
    static constexpr std::int32_t ModeRead = 2;  ///< "rb"

    // Required: these numbers differ from those of the platform.
    static constexpr std::int32_t FromStart = 0;
    static constexpr std::int32_t FromEnd = 1;
    static constexpr std::int32_t FromPosition = 2;

    /// Opens the file. Throws tkIO::CtkIOException with CannotOpen, also for another mode or a null path.
    CtkFileStream(const char *path, std::int32_t mode);
    CtkFileStream(const CtkFileStream &) = delete;
    CtkFileStream &operator=(const CtkFileStream &) = delete;
    ~CtkFileStream() override;

    /// Fewer bytes than asked for throws tkIO::CtkIOException with ReadBeyondEnd; the position stays then.
    std::size_t Read(void *buffer, std::size_t count) override;
    std::size_t Write(const void *buffer, std::size_t count) override;
    /// Any other origin, and a place before the start, leave the position where it is.
    std::int64_t Seek(std::int64_t offset, std::int32_t origin) override;

private:
    std::FILE *file_;
    std::int64_t position_ = 0;
};

#endif
#endif
