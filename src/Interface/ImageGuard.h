// The one guard in front of every function that takes an image handle.
#pragma once

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

} // namespace Interface
