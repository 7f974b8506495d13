// The counted list of points behind the handle of a pixel list.
#pragma once

#include "Interface/BasicIUnknown.h"
#include "PixelList/PixelObject.h"
#include "PointerVector.h"
#include "Threads.h"

namespace PixelList {

/// The vector's order is the order of the list. Every pixel has the dimension of the list. The lock is for callers
/// inside the library; no operation takes it.
class CPixelList : public orvBase::CBasicIUnknown<CPixelList>,
                   public tkThreads::CCriticalSection,
                   public tkBase::ptrvector<CPixel *> {
public:
    /// Throws CImageKernelException: ErrDimension below 2, ErrNotPossible above 256.
    explicit CPixelList(std::uint64_t dimension);

    /// Appends a copy of as many doubles as the list has dimensions. Throws when memory runs out, with the list as it
    /// was.
    void Append(const double *components);
    /// Deletes all pixels.
    void Clear();

    const std::uint64_t Dimension;

protected:
    ~CPixelList() override = default;
};

/// The list behind a handle, or null for everything else. Only the class itself counts, none derived from it. Takes
/// no reference.
CPixelList *ListBehind(void *handle) noexcept;

} // namespace PixelList
