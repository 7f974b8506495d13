// A shared object of the system's loader.
#pragma once

#include <dlfcn.h>
#include <utility>

namespace Persistence {

/// Closes itself at its end, unless it was handed over.
class LoadedLibrary {
public:
    LoadedLibrary(const char *name, int flags) : handle_(dlopen(name, flags)) {}
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;
    ~LoadedLibrary() {
        if (handle_ != nullptr)
            dlclose(handle_);
    }

    bool IsLoaded() const { return handle_ != nullptr; }
    void *Handle() const { return handle_; }
    void Detach() { handle_ = nullptr; }

    /// Null when there is none of this name.
    template <class Function>
    Function *Find(const char *symbol) const {
        return reinterpret_cast<Function *>(dlsym(handle_, symbol));
    }

private:
    void *handle_;
};

} // namespace Persistence
