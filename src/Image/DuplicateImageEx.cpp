// A copy of an image in one interleaved block, or in a block per plane where data types differ.
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

#include "CheckedSize.h"
#include "Image/PlaneCopy.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "InterfaceHandling.h"
#include "RectangleCopy.h"

namespace Image {
namespace {

constexpr const char *FunctionName = "CreateDuplicateImageEx";

void FreeBlock(void *block, void *) {
    std::free(block);
}

/// How the pixels of a copy lie in its one block.
struct BlockForm {
    std::intptr_t Width;
    std::intptr_t Height;
    std::intptr_t Planes;
    TDataType Datatype;
    std::intptr_t PitchPlane;
};

/// An image over a fresh block that goes with it. Throws when the block or the image can't be made.
void *MakeBlockImage(const BlockForm &form) {
    const std::intptr_t pixelBytes = BytesOf(form.Datatype) * form.Planes;
    std::size_t bytes = 0;
    if (!orvBase::CheckedProduct(bytes, static_cast<std::size_t>(form.Width), static_cast<std::size_t>(form.Height),
                                 static_cast<std::size_t>(pixelBytes)))
        throw std::bad_alloc();
    // Pixels of a width that isn't copied stay as they are made: they must not hand out what the heap held before.
    void *memory = IsTypedWidth(BytesOf(form.Datatype)) ? std::malloc(bytes) : std::calloc(bytes, 1);
    std::unique_ptr<void, decltype(&std::free)> block(memory, &std::free);
    if (block == nullptr)
        throw std::bad_alloc();
    void *image = nullptr;
    if (CreateImageFromPointer(block.get(), 0, form.Width, form.Height, form.Planes, form.Datatype, pixelBytes,
                               form.Width * pixelBytes, form.PitchPlane, nullptr, FreeBlock, nullptr, &image) != 0)
        throw std::runtime_error("CreateImageFromPointer failed.");
    static_cast<void>(block.release()); // the image's release callback frees it
    return image;
}

/// One plane image per plane, shown as one image; null when that can't be made.
void *MakePlaneByPlane(const vpat_analyzer &source) {
    std::vector<void *> planes;
    void *image = nullptr;
    try {
        for (std::intptr_t plane = 0; plane < source.Planes(); ++plane) {
            planes.reserve(planes.size() + 1);
            planes.push_back(MakeBlockImage({source.Width(), source.Height(), 1, source.Datatype(plane), 0}));
        }
        CreateConcatenatedImage(planes.data(), planes.size(), 1, &image);
    } catch (...) {
        image = nullptr;
    }
    for (void *&plane : planes)
        ReleaseObject(plane);
    return image;
}

/// Null when memory is short, or the image can't be one block.
void *MakeInterleaved(const vpat_analyzer &source) {
    try {
        const TDataType type = source.Datatype(0);
        return MakeBlockImage({source.Width(), source.Height(), source.Planes(), type, BytesOf(type)});
    } catch (...) {
        return nullptr;
    }
}

/// Copies map and pixels and hands the image out, or releases it.
bool FillAndHandOut(void *copy, void *handle, const vpat_analyzer &source, void **out) {
    Interface::ImageHolder target = Interface::QueryImage(copy);
    ReleaseObject(copy); // the holder's reference is the only one now, whatever the source throws
    TCoordinateMap map = {};
    if (source.Image().GetCoordinateMap(&map) >= 0)
        target->SetCoordinateMap(map);
    const bool copied = CopyImageRectPlanes(handle, target.Get(), 0, 0, static_cast<std::int32_t>(source.Width() - 1),
                                            static_cast<std::int32_t>(source.Height() - 1), 0, 0);
    if (copied)
        *out = target.Detach();
    return copied;
}

} // namespace
} // namespace Image

bool CreateDuplicateImageEx(void *image, void **out) {
    using namespace Image;
    Interface::ImageHolder held = Interface::GuardImage(image, FunctionName);
    if (!held.IsValid())
        return false;
    const vpat_analyzer source(std::move(held));
    const bool interleaved = source.HasOneDatatype();
    void *copy = out == nullptr ? nullptr : interleaved ? MakeInterleaved(source) : MakePlaneByPlane(source);
    if (copy == nullptr) {
        ReportORVError(ErrCreateFailed, FunctionName);
        // Required: planes of different types that can't be made give true, with nothing handed out.
        return !interleaved;
    }
    return FillAndHandOut(copy, image, source, out);
}
