// Writing an image file: the last four characters of its name choose the writer.
#include "ImageFiles.h"
#include "Interface/Boundary.h"
#include "InterfaceHandling.h"
#include "Persistence/BmpWriter.h"
#include "Persistence/FileExtension.h"
#include "Persistence/FilePlugin.h"
#include "Persistence/LmgFile.h"

namespace {

/// Formats that are written in this library.
struct BuiltInWriter {
    std::string_view Extension;
    bool (*Write)(void *image, const char *path);
};
constexpr BuiltInWriter BuiltInWriters[] = {{".BMP", Persistence::WriteBmp}, {".LMG", Persistence::WriteLmg}};

} // namespace

bool WriteImageFile(void *image, const char *path) {
    if (image == nullptr || path == nullptr)
        return false;
    return Interface::SilentObjectBoundary([image, path] {
        const std::string extension = Persistence::ExtensionForWriting(path);
        for (const BuiltInWriter &writer : BuiltInWriters)
            if (extension == writer.Extension)
                return writer.Write(image, path);
        return Persistence::WriteThroughPlugin(image, path);
    });
}

bool WriteLossyImageFile(void *image, const char *path, double quality) {
    return path != nullptr && IsImage(image) && Persistence::WriteLossyThroughPlugin(image, path, quality);
}
