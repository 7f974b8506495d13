#include "Persistence/Tree/TBuffer.h"

#include <cstdlib>
#include <cstring>
#include <utility>

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
    std::uint32_t size = 0;
    stream.Read(&size, sizeof size);
    if (!TryAllocate(size))
        throw CtkExceptionObject("Impossible to load TBuffer.");
    if (stream.Read(data_, size_) < size_)
        throw CtkExceptionObject("Read attempt beyond the end of the stream while loading TBuffer object.");
}

void TBuffer::Store(CtkStream &stream) {
    TSList::Store(stream);
    const auto size = static_cast<std::uint32_t>(size_);
    stream.Write(&size, sizeof size);
    if (stream.Write(data_, size_) < size_)
        throw CtkExceptionObject("Stream too small to take up the contents of the TBuffer object.");
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
