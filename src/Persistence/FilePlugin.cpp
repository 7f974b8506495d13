#include "Persistence/FilePlugin.h"

#include <cstdint>
#include <iostream>

#include "ImageFiles.h"
#include "Interface/Boundary.h"
#include "Interface/UnloadList.h"
#include "Persistence/LoadedLibrary.h"

namespace Persistence {
namespace {

constexpr const char *PluginName = "libORVFile.so";

using GetImageFromFile = pOLE::IUnknown *(const char *path);
using GetImage = pOLE::IUnknown *();
using SaveImageToFile = std::int32_t(void *image, const char *path);
using GetIsLossyFormatFileName = bool(const char *path);
using SaveLossyImageToFile = std::int32_t(void *image, const char *path, double quality);

/// Asks a loaded library for its object. While the object may live the library stays loaded.
template <class Ask>
void *ObjectOf(LoadedLibrary &library, Ask &&ask) {
    pOLE::IUnknown *object = Interface::SilentBoundary<pOLE::IUnknown *>(nullptr, std::forward<Ask>(ask));
    if (object == nullptr)
        return nullptr;
    object = Streaming::RegisterForUnload(object, library.Handle());
    if (object != nullptr)
        library.Detach();
    return object;
}

/// A handle of the plug-in that is opened at the first need and kept. Null while there is none.
void *KeptPlugin(void *&handle) {
    if (handle == nullptr)
        handle = dlopen(PluginName, RTLD_NOW);
    return handle;
}

template <class Function>
Function *FindIn(void *handle, const char *symbol) {
    return handle == nullptr ? nullptr : reinterpret_cast<Function *>(dlsym(handle, symbol));
}

} // namespace

void *LoadThroughPlugin(const char *path) {
    LoadedLibrary plugin(PluginName, RTLD_LAZY);
    if (!plugin.IsLoaded()) {
        if (const char *message = dlerror())
            std::cerr << message << std::endl;
        return nullptr;
    }
    auto *load = plugin.Find<GetImageFromFile>("GetImageFromFile");
    return load == nullptr ? nullptr : ObjectOf(plugin, [load, path] { return load(path); });
}

void *LoadThroughDriver(const char *path) {
    LoadedLibrary driver(path, RTLD_NOW);
    auto *deliver = driver.IsLoaded() ? driver.Find<GetImage>("GetImage") : nullptr;
    return deliver == nullptr ? nullptr : ObjectOf(driver, deliver);
}

bool WriteThroughPlugin(void *image, const char *path) {
    static void *plugin = nullptr;
    auto *save = FindIn<SaveImageToFile>(KeptPlugin(plugin), "SaveImageToFile");
    return save != nullptr && save(image, path) != 0;
}

bool WriteLossyThroughPlugin(void *image, const char *path, double quality) {
    static void *plugin = nullptr;
    if (KeptPlugin(plugin) == nullptr)
        return false;
    auto *isLossy = FindIn<GetIsLossyFormatFileName>(plugin, "GetIsLossyFormatFileName");
    auto *save = FindIn<SaveLossyImageToFile>(plugin, "SaveLossyImageToFile");
    if (isLossy == nullptr || save == nullptr)
        return WriteThroughPlugin(image, path);
    return isLossy(path) ? save(image, path, quality) != 0 : WriteImageFile(image, path);
}

} // namespace Persistence
