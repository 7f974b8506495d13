/* A stream over a block of the caller's memory, which stays the caller's. */
#ifndef ORV_OBJECTS_TMEM_STREAM_H
#define ORV_OBJECTS_TMEM_STREAM_H
#ifdef __cplusplus

#include "Objects/CtkStream.h"

class ORV_API TMemStream : public CtkStream {
public:
    enum class Purpose { Reading, Writing };

    // Required: these differ from those of the file stream and of the counting stream.
    static constexpr std::int32_t FromStart = 0;
    static constexpr std::int32_t FromPosition = 1;
    static constexpr std::int32_t FromHighWater = 2;

    /// Begins at the front of the block. The high water is the block's size for reading, and 0 for writing.
    TMemStream(void *block, std::size_t size, Purpose purpose) noexcept;

    /// Both move as many bytes as there are up to the block's end, and return their number. The caller's buffer may
    /// overlap the block.
    std::size_t Read(void *buffer, std::size_t count) override;
    std::size_t Write(const void *buffer, std::size_t count) override;
    /// A step back beyond the front goes to the front. Any other origin leaves the position where it is.
    std::int64_t Seek(std::int64_t offset, std::int32_t origin) override;

    std::size_t GetPosition() const noexcept { return position_; }
    std::size_t GetLimit() const noexcept { return limit_; }
    /// The end of what has been read or written so far; for reading the size from the beginning on.
    std::size_t GetHighWater() const noexcept { return highWater_; }

private:
    std::size_t Advance(std::size_t count) noexcept;
    std::size_t Available(std::size_t count) const noexcept;

    unsigned char *base_;
    std::size_t position_ = 0;
    std::size_t limit_;
    std::size_t highWater_;
};

#endif
#endif
