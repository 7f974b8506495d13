#include "PixelList/PixelObject.h"

#include <algorithm>
#include <new>

#include "ErrorHandling.h"
#include "Interface/ImageKernelException.h"

namespace PixelList {

using ErrorHandling::CImageKernelException;

CPixel::CPixel(std::uint64_t count) : Dimension(count) {
    CPixel::Allocate(count);
}

CPixel::CPixel(const CPixel &other) : Dimension(other.Dimension) {
    CPixel::FreeComponents();
    CPixel::Allocate(other.Dimension);
    CopyComponents(other);
}

CPixel &CPixel::operator=(const CPixel &other) {
    if (this == &other)
        return *this;
    FreeComponents();
    Allocate(other.Dimension);
    CopyComponents(other);
    return *this;
}

CPixel::~CPixel() {
    CPixel::FreeComponents();
}

void CPixel::Allocate(std::uint64_t count) {
    if (count < LowestDimension)
        throw CImageKernelException(ErrDimension, "Trying to create Pixel with less than 2 components per pixel");
    if (count > HighestDimension)
        throw CImageKernelException(ErrNotPossible, "Trying to create Pixel with too many components");
    auto *components = new (std::nothrow) double[count];
    if (components == nullptr)
        throw CImageKernelException(ErrCreateFailed);
    std::fill_n(components, count, 0.0);
    Components = components;
    Dimension = count;
}

void CPixel::FreeComponents() {
    delete[] Components;
    Components = nullptr;
    Dimension = 0;
}

void CPixel::ThrowIndex() {
    throw CImageKernelException(ErrElementIndex, "Trying to access data in an array beyond the upper boundary");
}

void CPixel::CopyComponents(const CPixel &other) {
    std::copy_n(other.Components, Dimension, Components);
}

} // namespace PixelList
