// Joining two images without a copy.
#include "Image/StitchedImage.h"
#include "ImageMaps.h"
#include "Interface/Boundary.h"

namespace {

constexpr const char *FunctionName = "CreatePanoramicImageMap";

} // namespace

bool CreatePanoramicImageMap(void *first, void *second, uint32_t direction, void **out) {
    return Interface::KernelNumberBoundary(FunctionName, [&] {
        const orvThreads::CSmartUnknownObject<Image::StitchedImage> image(
            new Image::StitchedImage(first, second, direction));
        void *found = nullptr;
        if (out == nullptr || image.Object()->QueryInterface(ORV_IID_IUNKNOWN, &found) < 0)
            throw ErrorHandling::CImageKernelException(ErrGeneral);
        *out = found;
        return true;
    });
}
