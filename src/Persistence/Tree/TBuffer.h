// A tree node over a block of bytes: one of its own from malloc, or one of somebody else's.
#pragma once

#include "Persistence/Tree/TDataPointer.h"

class TBuffer : public TDataPointer {
public:
    static constexpr unsigned ClassId = 2;
    static constexpr std::uint32_t BufferTag = 22;

    /// Called at the buffer's end with a block that is not its own.
    using ReleaseFunction = void (*)(void *data, void *context);

    TBuffer();
    ~TBuffer() override;

    std::uint32_t GetClassId() const override;
    void *GetData() override;

    /// Gets a block of its own, not cleared, for any former one. Throws CtkExceptionObject, and has no block then,
    /// when there is no memory.
    void Allocate(std::size_t size);
    /// Takes a block of the caller's. False, with nothing changed, when data is null, size is 0, or there is a block
    /// already. release may be null.
    bool Attach(void *data, std::size_t size, ReleaseFunction release, void *context);

    std::size_t GetSize() const noexcept { return size_; }
    /// True when the block came from malloc and goes with the buffer.
    bool IsOwned() const noexcept { return owned_; }

    /// The node's body, then the size in 4 bytes, then the bytes. Throws CtkExceptionObject when the stream is too
    /// short for them, and for a failed allocation.
    void Load(CtkStream &stream) override;
    void Store(CtkStream &stream) override;
    /// Copies the bytes of the source, which must be a buffer.
    void Replicate(TSList &source) override;

protected:
    /// For classes that derive from a buffer and have a tag of their own.
    explicit TBuffer(std::uint32_t classTag);

    /// A size of 32 bits and then the bytes. Throws CtkExceptionObject for more bytes than such a size can tell.
    static void StoreBlock(CtkStream &stream, const void *data, std::size_t size);

private:
    void LoadBlock(CtkStream &stream, std::size_t size);
    bool TryGrow(std::size_t size) noexcept;
    bool TryAllocate(std::size_t size) noexcept;
    void GiveBack() noexcept;

    void *data_ = nullptr;
    std::size_t size_ = 0;
    bool owned_ = false;
    ReleaseFunction release_ = nullptr;
    void *context_ = nullptr;
};
