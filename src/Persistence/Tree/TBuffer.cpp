#include "Persistence/Tree/TBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "Persistence/Tree/ObjectStream.h"
#include "Persistence/Tree/StreamBytes.h"

TBuffer::TBuffer() : TBuffer(BufferTag) {}

TBuffer::TBuffer(std::uint32_t classTag) : TDataPointer(classTag) {
    AddClass(ClassId);
}

TBuffer::~TBuffer() {
    GiveBack();
}

std::uint32_t TBuffer::GetClassId() const {
    return WhileValid(ClassId);
}

void *TBuffer::GetData() {
    return data_;
}

void TBuffer::Allocate(std::size_t size) {
    if (!TryAllocate(size))
        throw CtkExceptionObject("Impossible to create TBuffer");
}

bool TBuffer::Attach(void *data, std::size_t size, ReleaseFunction release, void *context) {
    if (data == nullptr || size == 0 || data_ != nullptr)
        return false;
    data_ = data;
    size_ = size;
    owned_ = false;
    release_ = release;
    context_ = context;
    return true;
}

void TBuffer::Load(CtkStream &stream) {
    TSList::Load(stream);
    LoadBlock(stream, Persistence::ReadValue<std::uint32_t>(stream));
}

// A stream can claim any size. Where its length is known that settles it; otherwise the block grows with what has
// really come.
void TBuffer::LoadBlock(CtkStream &stream, std::size_t size) {
    constexpr std::size_t firstPortion = 64 * 1024;
    const std::size_t known = Persistence::BytesKnownToFollow(stream);
    if (size > known)
        throw CtkExceptionObject(Persistence::ReadTooShort);
    std::size_t portion = known == Persistence::UnknownLength ? std::min(size, firstPortion) : size;
    if (!TryAllocate(portion))
        throw CtkExceptionObject("Impossible to load TBuffer.");
    for (std::size_t loaded = 0;; portion = std::min(size - loaded, loaded)) {
        if (loaded > 0 && !TryGrow(loaded + portion))
            throw CtkExceptionObject("Impossible to load TBuffer.");
        Persistence::ReadExactly(stream, static_cast<char *>(data_) + loaded, portion);
        loaded += portion;
        if (loaded == size)
            return;
    }
}

void TBuffer::Store(CtkStream &stream) {
    TSList::Store(stream);
    StoreBlock(stream, data_, size_);
}

void TBuffer::StoreBlock(CtkStream &stream, const void *data, std::size_t size) {
    if (size > std::numeric_limits<std::uint32_t>::max())
        throw CtkExceptionObject(Persistence::WriteTooShort);
    Persistence::WriteValue(stream, static_cast<std::uint32_t>(size));
    if (size > 0)
        Persistence::WriteExactly(stream, data, size);
}

void TBuffer::Replicate(TSList &source) {
    TSList::Replicate(source);
    auto *buffer = dynamic_cast<TBuffer *>(&source);
    if (buffer == nullptr)
        throw CtkExceptionObject("Impossible replication requested.");
    if (buffer == this)
        return;
    if (!TryAllocate(buffer->size_))
        throw CtkExceptionObject("Impossible to replicate TBuffer");
    if (size_ > 0)
        std::memcpy(data_, buffer->data_, size_);
}

bool TBuffer::TryAllocate(std::size_t size) noexcept {
    GiveBack();
    data_ = std::malloc(size);
    if (data_ == nullptr)
        return false;
    size_ = size;
    owned_ = true;
    return true;
}

/// Makes an own block larger; its bytes stay.
bool TBuffer::TryGrow(std::size_t size) noexcept {
    void *grown = std::realloc(data_, size);
    if (grown == nullptr)
        return false;
    data_ = grown;
    size_ = size;
    return true;
}

void TBuffer::GiveBack() noexcept {
    void *data = std::exchange(data_, nullptr);
    const ReleaseFunction release = std::exchange(release_, nullptr);
    if (owned_)
        std::free(data);
    else if (data != nullptr && release != nullptr)
        release(data, context_);
    size_ = 0;
    owned_ = false;
    context_ = nullptr;
}
