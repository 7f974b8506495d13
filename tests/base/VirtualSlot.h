// Tells the place of a virtual operation among the slots of its class. Classes of other people derive from the older
// classes, so the order of their slots is as fixed as a name.
#pragma once

#include <cstdint>
#include <cstring>

namespace TestSupport {

/// A pointer to a virtual member starts with the byte offset of its slot plus 1, on this platform.
template <class Member>
std::size_t SlotOf(Member member) {
    std::uintptr_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return (word - 1) / sizeof(void *);
}

} // namespace TestSupport
