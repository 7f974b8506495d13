// Stands in for the file plug-in and, built with another name, for a driver: it delivers an object that counts, notes
// what it is asked, and can go when its object is gone.
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "Interfaces.h"

namespace {

/// What the tests read and set, found by its name.
struct State {
    int Objects;      ///< alive
    int Saved;        ///< calls of SaveImageToFile
    int SavedLossy;   ///< calls of SaveLossyImageToFile
    double Quality;   ///< of the last of them
    int Result;       ///< of both
    bool GivesObject; ///< false: null
    bool Throws;
};

} // namespace

#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

PLUGIN_EXPORT State PluginState;
State PluginState = {0, 0, 0, 0.0, 1, true, false};

namespace {

struct Object final : pOLE::IUnknown {
    Object() { ++PluginState.Objects; }
    ~Object() { --PluginState.Objects; }
    std::int32_t QueryInterface(const char *id, void **out) override {
        const bool isOwn = std::memcmp(id, ORV_IID_IUNKNOWN, 16) == 0;
        *out = isOwn ? this : nullptr;
        if (!isOwn)
            return -1;
        AddRef();
        return 0;
    }
    std::uintptr_t AddRef() override { return ++count; }
    std::uintptr_t Release() override {
        const std::uintptr_t left = --count;
        if (left == 0)
            delete this;
        return left;
    }
    std::uintptr_t count = 1;
};

pOLE::IUnknown *Deliver() {
    if (PluginState.Throws)
        throw std::runtime_error("no image");
    return PluginState.GivesObject ? new Object : nullptr;
}

} // namespace

PLUGIN_EXPORT pOLE::IUnknown *GetImageFromFile(const char *) {
    return Deliver();
}

PLUGIN_EXPORT pOLE::IUnknown *GetImage() {
    return Deliver();
}

PLUGIN_EXPORT std::int32_t SaveImageToFile(void *, const char *) {
    ++PluginState.Saved;
    return PluginState.Result;
}

PLUGIN_EXPORT bool GetIsLossyFormatFileName(const char *path) {
    return std::strstr(path, ".jpg") != nullptr;
}

PLUGIN_EXPORT std::int32_t SaveLossyImageToFile(void *, const char *, double quality) {
    ++PluginState.SavedLossy;
    PluginState.Quality = quality;
    return PluginState.Result;
}

PLUGIN_EXPORT bool CanUnload() {
    return PluginState.Objects == 0;
}
