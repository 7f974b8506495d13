// The process-wide list of run-time loaded plug-ins, polled for unloading whenever an object's last reference goes.
#pragma once

#include "Interfaces.h"

namespace Streaming {

/// A plug-in that stays loaded until its CanUnload agrees.
struct unloadinfo_t {
    void *Handle;        ///< from dlopen
    bool (*CanUnload)(); ///< the plug-in's own function
};

/// Asks the plug-ins in turn and closes those that agree. Behind a closed one the walk goes on at the second entry of
/// the list as it then stands. An exception of a plug-in's passes on with the lock released.
void PollUnloadList();

/// Enters a plug-in whose object the caller has just got.
/// Result  the object; null (the object's reference given back, the handle left to the caller to close) when the
///         plug-in has no CanUnload. A handle that is entered already is closed once: the loader counts per open.
pOLE::IUnknown *RegisterForUnload(pOLE::IUnknown *object, void *handle);

} // namespace Streaming
