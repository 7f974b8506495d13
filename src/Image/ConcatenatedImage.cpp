// Images of one size gathered into one image of all their planes.
#include <vector>

#include "Image/Dimensions.h"
#include "ImageCopies.h"
#include "ImageQueries.h"
#include "ImageViews.h"
#include "Interface/ErrorTexts.h"
#include "Interface/ImageGuard.h"
#include "InterfaceHandling.h"

namespace {

using Interface::ImageHolder;

constexpr const char *FunctionName = "CreateConcatenatedImage";

bool Refuse(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

bool HaveOneSize(const std::vector<ImageHolder> &images) {
    const Image::Dimensions first = Image::DimensionsOf(*images.front().Get());
    for (const ImageHolder &image : images) {
        const Image::Dimensions size = Image::DimensionsOf(*image.Get());
        if (size.Width != first.Width || size.Height != first.Height)
            return false;
    }
    return true;
}

/// A handle's image with the reference that the handle carries.
ImageHolder AdoptHandle(void *handle) {
    ImageHolder image = Interface::QueryImage(handle);
    ReleaseObject(handle);
    return image;
}

bool ReplaceByDuplicates(std::vector<ImageHolder> &images) {
    for (ImageHolder &image : images) {
        void *copy = nullptr;
        if (CreateDuplicateImage(image.Get(), &copy) == 0)
            return false;
        image = AdoptHandle(copy);
    }
    return true;
}

/// Each step is a shared view of the one before, with the next image's planes behind.
ImageHolder Chain(const std::vector<ImageHolder> &images) {
    ImageHolder current = images.front();
    for (std::size_t i = 1; i < images.size() && current.IsValid(); ++i) {
        void *longer = nullptr;
        const intptr_t planes = Image::DimensionsOf(*current.Get()).Planes;
        const bool chained = CreateImageInsertList(current.Get(), images[i].Get(), planes, 1, 0, &longer) != 0;
        current = chained ? AdoptHandle(longer) : ImageHolder();
    }
    return current;
}

} // namespace

bool CreateConcatenatedImage(void *const *images, size_t count, unsigned char share, void **out) {
    if (count == 0 || images == nullptr || out == nullptr)
        return Refuse(ErrParameter, Interface::ErrorTexts::InvalidInputArray);
    std::vector<ImageHolder> entries;
    for (size_t i = 0; i < count; ++i) {
        entries.push_back(Interface::GuardImage(images[i], FunctionName));
        if (!entries.back().IsValid())
            return false;
    }
    if (count == 1) {
        ShareImage(images[0]);
        *out = images[0];
        return true;
    }
    if (!HaveOneSize(entries))
        return Refuse(ErrIndexRange);
    if (share == 0 && !ReplaceByDuplicates(entries))
        return Refuse(ErrGeneral);
    ImageHolder result = Chain(entries);
    if (!result.IsValid())
        return Refuse(ErrGeneral);
    *out = result.Detach();
    return true;
}
