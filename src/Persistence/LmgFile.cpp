#include "Persistence/LmgFile.h"

#include "Image/OwningDuplicate.h"
#include "Interface/Boundary.h"
#include "Persistence/FileStreams.h"
#include "Persistence/LoadedImage.h"
#include "Persistence/ReplacedFile.h"
#include "Persistence/Tree/ObjectStream.h"

namespace Persistence {

void *LoadLmg(const char *path) {
    return Interface::SilentBoundary<void *>(nullptr, [path]() -> void * {
        const FileDescriptor file = FileDescriptor::OpenForReading(path);
        std::uint64_t bytes = 0;
        if (!file.IsOpen() || !file.GetRegularFileSize(bytes))
            return nullptr;
        FileInput stream(file);
        NodeHolder<TImageObject> image = AsLoadedImage(LoadTree(stream, bytes));
        return static_cast<pOLE::IImageVPA *>(image.Detach()->Interface());
    });
}

bool WriteLmg(void *image, const char *path) {
    const NodeHolder<TImageObject> tree = Image::OwningDuplicate(image);
    if (!tree)
        return false;
    ReplacedFile file(path);
    if (!file.IsOpen())
        return false;
    StagedOutput output(file.File());
    FileOutput stream(output);
    return StoreTree(stream, *tree) != 0 && output.Flush() && file.Commit(output.GetTotal());
}

} // namespace Persistence
