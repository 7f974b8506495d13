// Reading an image file: the extension of its name chooses the reader.
#include <string>

#include "ErrorHandling.h"
#include "ImageFiles.h"
#include "Interface/UnloadList.h"
#include "Persistence/BmpReader.h"
#include "Persistence/FileExtension.h"
#include "Persistence/FilePlugin.h"
#include "Persistence/LmgFile.h"

namespace {

constexpr const char *FunctionName = "LoadImageFile";

/// What is read in this library, and drivers, which are named by their own file.
struct BuiltInReader {
    std::string_view Extension;
    void *(*Load)(const char *path);
};
constexpr BuiltInReader BuiltInReaders[] = {{".bmp", Persistence::LoadBmp},
                                            {".lmg", Persistence::LoadLmg},
                                            {".so", Persistence::LoadThroughDriver},
                                            {".gdv", Persistence::LoadThroughDriver}};

void *LoadByExtension(const std::string &extension, const char *path) {
    for (const BuiltInReader &reader : BuiltInReaders)
        if (extension == reader.Extension)
            return reader.Load(path);
    return Persistence::LoadThroughPlugin(path);
}

} // namespace

bool LoadImageFile(const char *path, void **out) {
    Streaming::PollUnloadList();
    if (path == nullptr || *path == '\0' || out == nullptr) {
        ReportORVError(ErrParameter, FunctionName);
        return false;
    }
    const std::string extension = Persistence::ExtensionForLoading(path);
    *out = nullptr;
    *out = LoadByExtension(extension, path);
    return *out != nullptr;
}
