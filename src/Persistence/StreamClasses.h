// The classes that can be stored and loaded.
#pragma once

#include <cstddef>

#include "Persistence/Tree/StreamRegistry.h"

namespace Persistence {

inline constexpr std::size_t StreamClassCount = 6;

/// Enters the classes into the registry, in the order of their stream numbers, at the first of all calls. The library
/// calls it when it is loaded.
void RegisterStreamClasses();

} // namespace Persistence
