// The one guard in front of every function that takes an image handle.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <utility>

#include "ErrorHandling.h"
#include "Interface/InterfaceId.h"
#include "Interface/SmartPointer.h"

namespace Interface {

using ImageHolder = orvThreads::CSmartPointer<pOLE::IImageVPA, 3>;

/// The object's interface I with a reference, or an empty holder when the handle is null, the query fails or gives
/// null. What the object throws passes on.
template <class I, int Tag>
orvThreads::CSmartPointer<I, Tag> QueryHandle(void *handle) {
    if (handle == nullptr)
        return {};
    void *found = nullptr;
    const std::int32_t status = static_cast<pOLE::IUnknown *>(handle)->QueryInterface(InterfaceIdOf<I>, &found);
    // A negative status carries no reference, any other does.
    orvThreads::CSmartPointer<I, Tag> held(status >= 0 ? static_cast<I *>(found) : nullptr);
    return status == StatusOk ? std::move(held) : orvThreads::CSmartPointer<I, Tag>();
}

/// The image behind a handle, or an empty holder for everything that is none, an object that throws included.
inline ImageHolder QueryImage(void *handle) noexcept {
    try {
        return QueryHandle<pOLE::IImageVPA, 3>(handle);
    } catch (...) {
        return {};
    }
}

/// The image behind a handle. For everything that is none: reports ErrNotAnImage under the function's name and gives
/// an empty holder.
inline ImageHolder GuardImage(void *handle, const char *functionName) {
    ImageHolder image = QueryImage(handle);
    if (!image.IsValid())
        ReportORVError(ErrNotAnImage, functionName);
    return image;
}

/// An image for the time of one exported call. Elsewhere a reference is taken and given back; an object of a class
/// that has entered itself with SetBorrowableClass is used as it is: its caller holds a reference during the call,
/// and counting references of a whole tree costs more than most calls do.
class ImageForCall {
public:
    ImageForCall() = default;
    explicit ImageForCall(ImageHolder held) : held_(std::move(held)), image_(held_.Get()) {}
    explicit ImageForCall(pOLE::IImageVPA *borrowed) : image_(borrowed) {}

    bool IsValid() const { return image_ != nullptr; }
    pOLE::IImageVPA *Get() const { return image_; }
    pOLE::IImageVPA *operator->() const { return image_; }

private:
    ImageHolder held_;
    pOLE::IImageVPA *image_ = nullptr;
};

/// The word at the head of every interface object, which is the same for all objects of a class.
inline const void *ClassWordOf(const void *object) {
    const void *word = nullptr;
    std::memcpy(&word, object, sizeof word);
    return word;
}

/// The classes whose objects can be borrowed: final ones of this library, known by the word at the head of a handle.
enum class BorrowableClass : std::size_t { TreeImage, ExternalImage, Count };

struct BorrowableEntry {
    std::atomic<const void *> ClassWord{nullptr};
    std::atomic<std::ptrdiff_t> ImageOffset{0}; ///< from the handle to its IImageVPA
};
inline std::array<BorrowableEntry, static_cast<std::size_t>(BorrowableClass::Count)> borrowableClasses;

/// Called by the constructor of such a class, with the handle and the image interface of an object. The same for all
/// of them, so that it does not matter whose call comes last.
inline void SetBorrowableClass(BorrowableClass which, const pOLE::IUnknown *handle, const pOLE::IImageVPA *image) {
    BorrowableEntry &entry = borrowableClasses[static_cast<std::size_t>(which)];
    entry.ImageOffset.store(reinterpret_cast<const char *>(image) - reinterpret_cast<const char *>(handle),
                            std::memory_order_relaxed);
    entry.ClassWord.store(ClassWordOf(handle), std::memory_order_release);
}

/// The image behind a handle of such a class, with no reference taken; null for all others.
inline pOLE::IImageVPA *Borrow(void *handle) {
    if (handle == nullptr)
        return nullptr;
    const void *word = ClassWordOf(handle);
    for (const BorrowableEntry &entry : borrowableClasses)
        if (entry.ClassWord.load(std::memory_order_acquire) == word)
            return reinterpret_cast<pOLE::IImageVPA *>(static_cast<char *>(handle) +
                                                       entry.ImageOffset.load(std::memory_order_relaxed));
    return nullptr;
}

/// The same for handles of one of these classes only.
inline pOLE::IImageVPA *BorrowAs(BorrowableClass which, void *handle) {
    const BorrowableEntry &entry = borrowableClasses[static_cast<std::size_t>(which)];
    const bool isOne = handle != nullptr && entry.ClassWord.load(std::memory_order_acquire) == ClassWordOf(handle);
    return isOne ? Borrow(handle) : nullptr;
}

/// As GuardImage, for a call that keeps nothing of the image when it ends.
inline ImageForCall GuardCall(void *handle, const char *functionName) {
    if (pOLE::IImageVPA *image = Borrow(handle))
        return ImageForCall(image);
    return ImageForCall(GuardImage(handle, functionName));
}

/// As QueryHandle, for a call that keeps nothing of the image when it ends.
inline ImageForCall QueryCall(void *handle) {
    if (pOLE::IImageVPA *image = Borrow(handle))
        return ImageForCall(image);
    return ImageForCall(QueryHandle<pOLE::IImageVPA, 3>(handle));
}

} // namespace Interface
