// One point of a pixel list.
#pragma once

#include <cstdint>

namespace PixelList {

/// Owns its components, doubles that begin as zero.
class CPixel {
public:
    static constexpr std::uint64_t LowestDimension = 2;
    static constexpr std::uint64_t HighestDimension = 256;

    /// Throws CImageKernelException: ErrDimension or ErrNotPossible for a count out of range, ErrCreateFailed.
    explicit CPixel(std::uint64_t count);
    CPixel(const CPixel &other);
    CPixel &operator=(const CPixel &other);
    virtual ~CPixel();

    /// Makes an array of zeros, beside any former one, which is not freed. Throws as the constructor does.
    virtual void Allocate(std::uint64_t count);
    /// Leaves a pixel of dimension 0.
    virtual void FreeComponents();

    /// Throws CImageKernelException with ErrElementIndex for an index at or above Dimension.
    double &At(std::uint64_t index) {
        RequireIndex(index);
        return Components[index];
    }
    double At(std::uint64_t index) const {
        RequireIndex(index);
        return Components[index];
    }

    std::uint64_t Dimension;
    double *Components = nullptr;

private:
    void RequireIndex(std::uint64_t index) const {
        if (index >= Dimension)
            ThrowIndex();
    }
    [[noreturn]] static void ThrowIndex();
    void CopyComponents(const CPixel &other);
};

} // namespace PixelList
