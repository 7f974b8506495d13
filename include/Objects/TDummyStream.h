/* A stream that counts what would be written and keeps nothing. The high water is one word for the whole process. */
#ifndef ORV_OBJECTS_TDUMMY_STREAM_H
#define ORV_OBJECTS_TDUMMY_STREAM_H
#ifdef __cplusplus

#include "Objects/CtkStream.h"

class ORV_API TDummyStream : public CtkStream {
public:
    // Required: 1 and 2 are interchanged against the memory stream.
    static constexpr std::int32_t FromStart = 0;
    static constexpr std::int32_t FromHighWater = 1;
    static constexpr std::int32_t FromPosition = 2;

    /// Begins at 0 and clears the process's high water.
    TDummyStream() noexcept;

    /// Gives count; the buffer is not touched and the position stays.
    std::size_t Read(void *buffer, std::size_t count) override;
    /// Gives count and moves the position on; the buffer is not looked at.
    std::size_t Write(const void *buffer, std::size_t count) override;
    /// A step back beyond 0 goes to 0. Any other origin leaves the position where it is.
    std::int64_t Seek(std::int64_t offset, std::int32_t origin) override;

    std::size_t GetPosition() const noexcept { return position_; }
    /// The highest position that a write of any stream has reached since the newest stream was made.
    static std::size_t GetHighWater() noexcept;

private:
    std::size_t position_ = 0;
};

#endif
#endif
