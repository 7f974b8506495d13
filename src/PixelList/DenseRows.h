// The rows of a plane as arrays, whatever the layout: in place where the columns lie densely, else gathered when they
// are first asked for.
#pragma once

#include <memory>
#include <vector>

#include "Image/VectorRegisters.h"
#include "Scan/PixelRows.h"

namespace PixelList {

/// T is the type of the pixels, of which the plane has some.
template <class T>
class DenseRows {
public:
    /// Of each row that many pixels can be read, also of a narrower image.
    static constexpr std::intptr_t LeastPixels = 64;

    /// The plane outlives its rows. Throws std::bad_alloc.
    explicit DenseRows(const Image::PlaneView &plane)
        : plane_(plane), isInPlace_(plane.Width >= LeastPixels &&
                                    Scan::LinearStep<T>(plane) == static_cast<std::intptr_t>(sizeof(T))) {
        if (!isInPlace_)
            gathered_.resize(static_cast<std::size_t>(plane.Height) + 2);
    }

    /// Pixel (0, y), perhaps not aligned. y from -1 to the height: the rows at the ends stand in the guard entries of
    /// the table. Throws std::bad_alloc.
    ORV_INLINE const char *Row(std::intptr_t y) { return isInPlace_ ? plane_.Pixel(0, y) : GatheredRow(y); }

    T PixelAt(std::int32_t x, std::int32_t y) {
        return reinterpret_cast<const typename Scan::Loose<T>::Type *>(Row(y))[x];
    }

private:
    __attribute__((noinline)) const char *GatheredRow(std::intptr_t y) {
        std::unique_ptr<T[]> &row = gathered_[static_cast<std::size_t>(y + 1)];
        if (row == nullptr) {
            row = std::make_unique<T[]>(static_cast<std::size_t>(std::max(plane_.Width, LeastPixels)));
            Scan::Gather(plane_, 0, y, plane_.Width, row.get());
        }
        return reinterpret_cast<const char *>(row.get());
    }

    const Image::PlaneView &plane_;
    bool isInPlace_;
    std::vector<std::unique_ptr<T[]>> gathered_; ///< that of row -1 first
};

} // namespace PixelList
