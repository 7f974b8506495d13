#include "Interface/UnloadList.h"

#include <algorithm>
#include <dlfcn.h>
#include <iterator>
#include <list>

#include "Threads.h"

namespace Streaming {
namespace {

struct UnloadList {
    tkThreads::CCriticalSection Lock;
    std::list<unloadinfo_t> Entries;
};

/// Lives until the process ends, also through the destructors of static objects that still release images.
UnloadList &TheUnloadList() {
    static auto *list = new UnloadList;
    return *list;
}

} // namespace

void PollUnloadList() {
    UnloadList &list = TheUnloadList();
    const tkThreads::CAutoLock guard(&list.Lock);
    for (auto entry = list.Entries.begin(); entry != list.Entries.end();) {
        if (!entry->CanUnload()) {
            ++entry;
            continue;
        }
        dlclose(entry->Handle);
        list.Entries.erase(entry);
        if (list.Entries.empty())
            return;
        // Required: the entry at the head is not asked again in this pass, so one of several ready plug-ins stays.
        entry = std::next(list.Entries.begin());
    }
}

pOLE::IUnknown *RegisterForUnload(pOLE::IUnknown *object, void *handle) {
    void *symbol = dlsym(handle, "CanUnload");
    if (symbol == nullptr) {
        object->Release();
        return nullptr;
    }
    UnloadList &list = TheUnloadList();
    const tkThreads::CAutoLock guard(&list.Lock);
    const auto known = std::find_if(list.Entries.begin(), list.Entries.end(),
                                    [handle](const unloadinfo_t &entry) { return entry.Handle == handle; });
    if (known != list.Entries.end())
        dlclose(handle);
    else
        list.Entries.push_back({handle, reinterpret_cast<bool (*)()>(symbol)});
    return object;
}

} // namespace Streaming
