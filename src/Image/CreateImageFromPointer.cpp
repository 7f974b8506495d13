// The way into the library for memory of the caller's.
#include "Image/ExternalImage.h"
#include "ImageCreation.h"
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"

namespace {

constexpr const char *FunctionName = "CreateImageFromPointer";

} // namespace

int32_t CreateImageFromPointer(void *buffer, size_t bufferSize, intptr_t width, intptr_t height, intptr_t planes,
                               TDataType datatype, intptr_t pitchX, intptr_t pitchY, intptr_t pitchPlane,
                               const intptr_t *planeOrder, TImageReleaseCallback release, void *userData,
                               void **out) {
    return Interface::KernelTextBoundary(FunctionName, [&] {
        if (out == nullptr)
            throw ErrorHandling::CImageKernelException(ErrParameter, Interface::ErrorTexts::NullDataPointer);
        const Image::ExternalLayout layout{buffer,   bufferSize, width,  height,     planes,
                                           datatype, pitchX,     pitchY, pitchPlane, planeOrder};
        *out = (new Image::CExternalImage(layout, release, userData))->AsUnknown();
    });
}
