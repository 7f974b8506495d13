// Registers of a fixed number of bytes in the compiler's own vector types, and the few operations that kernels need.
// Everything is inlined into the kernel, whose instruction set level then decides what the compiler makes of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#define ORV_INLINE inline __attribute__((always_inline))

namespace Image {

template <class T, std::size_t RegisterBytes>
struct VectorOf {
    typedef T Type __attribute__((vector_size(RegisterBytes)));
};
template <class T, std::size_t RegisterBytes>
using Vector = typename VectorOf<T, RegisterBytes>::Type;

template <class V>
ORV_INLINE void LoadVector(V &value, const char *address) {
    std::memcpy(&value, address, sizeof value);
}

template <class V>
ORV_INLINE void StoreVector(char *address, const V &value) {
    std::memcpy(address, &value, sizeof value);
}

/// The lanes in reverse order.
template <class V, std::size_t... I>
ORV_INLINE void ReverseLanes(V &value, std::index_sequence<I...>) {
    value = __builtin_shufflevector(value, value, static_cast<int>(sizeof...(I) - 1 - I)...);
}

/// Lanes of a and b in turn, from the lower halves (Half 0) or the upper ones (Half 1).
template <std::size_t Half, class V, std::size_t... I>
ORV_INLINE void InterleaveLanes(V &out, const V &a, const V &b, std::index_sequence<I...>) {
    constexpr std::size_t count = sizeof...(I);
    out = __builtin_shufflevector(a, b, static_cast<int>(Half * count / 2 + I / 2 + (I % 2 == 0 ? 0 : count))...);
}

} // namespace Image
