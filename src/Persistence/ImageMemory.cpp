// Images to and from blocks of memory.
#include "Image/OwningDuplicate.h"
#include "ImageStreams.h"
#include "Interface/Boundary.h"
#include "Objects/TDummyStream.h"
#include "Objects/TMemStream.h"
#include "Persistence/LoadedImage.h"
#include "Persistence/Tree/ObjectStream.h"

using Persistence::NodeHolder;

intptr_t ImageToMemorySize(void *image) {
    return Interface::SilentBoundary(intptr_t{0}, [image]() -> intptr_t {
        const NodeHolder<TImageObject> tree = Image::OwningDuplicate(image);
        TDummyStream stream;
        if (!tree || Persistence::StoreTree(stream, *tree) == 0)
            return 0;
        // Required: the size is told as 32 bits with a sign.
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(TDummyStream::GetHighWater()));
    });
}

bool ImageToMemory(void *image, void *buffer, size_t bufferSize) {
    if (buffer == nullptr)
        return false;
    return Interface::SilentBoundary(false, [=] {
        const NodeHolder<TImageObject> tree = Image::OwningDuplicate(image);
        TMemStream stream(buffer, bufferSize, TMemStream::Purpose::Writing);
        return tree && Persistence::StoreTree(stream, *tree) != 0;
    });
}

bool MemoryToImage(const void *buffer, size_t size, void **out) {
    if (out == nullptr)
        return false;
    *out = nullptr;
    if (buffer == nullptr)
        return false;
    return Interface::SilentBoundary(false, [=] {
        TMemStream stream(const_cast<void *>(buffer), size, TMemStream::Purpose::Reading); // only read
        NodeHolder<TImageObject> image = Persistence::AsLoadedImage(Persistence::LoadTree(stream, size));
        *out = static_cast<pOLE::IImageVPA *>(image.Detach()->Interface());
        return true;
    });
}
