#include "PixelList/PixelListObject.h"

#include <algorithm>
#include <memory>

#include "Interface/ImageGuard.h"
#include "Interface/ImageKernelException.h"

namespace PixelList {

using ErrorHandling::CImageKernelException;

namespace {

// The word at the head of every list. Handles are told by it and not by a cast at run time, which reads a type record
// that objects of callers who write in C do not have.
std::atomic<const void *> listClassWord{nullptr};

} // namespace

CPixelList::CPixelList(std::uint64_t dimension) : CBasicIUnknown(1), Dimension(dimension) {
    if (dimension < CPixel::LowestDimension)
        throw CImageKernelException(ErrDimension,
                                    "Trying to create Pixel list with less than 2 components per pixel");
    if (dimension > CPixel::HighestDimension)
        throw CImageKernelException(ErrNotPossible, "Trying to create Pixel list with too many components");
    // Here it is the word of this class, also in the making of an object of a derived one.
    listClassWord.store(Interface::ClassWordOf(AsUnknown()), std::memory_order_release);
}

void CPixelList::Append(const double *components) {
    auto pixel = std::make_unique<CPixel>(Dimension);
    std::copy_n(components, Dimension, pixel->Components);
    push_back(pixel.get());
    (void)pixel.release(); // the list's from here on
}

void CPixelList::Clear() {
    for (CPixel *pixel : *this)
        delete pixel;
    clear();
}

CPixelList *ListBehind(void *handle) noexcept {
    if (handle == nullptr || Interface::ClassWordOf(handle) != listClassWord.load(std::memory_order_acquire))
        return nullptr;
    return static_cast<CPixelList *>(static_cast<pOLE::IUnknown *>(handle));
}

} // namespace PixelList
