// Pixels of three bytes taken apart and put together in registers of one or two 16-byte lanes: shuffles stay within a
// lane, where they are cheap, since byte j of lane k of 48 bytes is plane (k + j) % 3 whatever the pixel.
#pragma once

#include "Image/VectorRegisters.h"

namespace Image {

template <std::size_t RegisterBytes>
using ByteRegister = Vector<std::uint8_t, RegisterBytes>;

/// Lanes of two registers, numbered 0, 1 and 2, 3.
template <int First, int Second>
ORV_INLINE void TakeLanes(ByteRegister<32> &out, const ByteRegister<32> &a, const ByteRegister<32> &b) {
    using Words = Vector<std::uint64_t, 32>;
    out = reinterpret_cast<ByteRegister<32>>(__builtin_shufflevector(reinterpret_cast<Words>(a),
                                                                     reinterpret_cast<Words>(b), 2 * First,
                                                                     2 * First + 1, 2 * Second, 2 * Second + 1));
}

/// Lane k of each 48 bytes goes to the k-th register.
ORV_INLINE void LoadThirds(ByteRegister<16> &a, ByteRegister<16> &b, ByteRegister<16> &c, const char *source) {
    LoadVector(a, source);
    LoadVector(b, source + 16);
    LoadVector(c, source + 32);
}
ORV_INLINE void LoadThirds(ByteRegister<32> &a, ByteRegister<32> &b, ByteRegister<32> &c, const char *source) {
    ByteRegister<32> front, middle, back;
    LoadVector(front, source);
    LoadVector(middle, source + 32);
    LoadVector(back, source + 64);
    TakeLanes<0, 3>(a, front, middle);
    TakeLanes<1, 2>(b, front, back);
    TakeLanes<0, 3>(c, middle, back);
}

/// The reverse of LoadThirds.
ORV_INLINE void StoreThirds(char *target, const ByteRegister<16> &a, const ByteRegister<16> &b,
                            const ByteRegister<16> &c) {
    StoreVector(target, a);
    StoreVector(target + 16, b);
    StoreVector(target + 32, c);
}
ORV_INLINE void StoreThirds(char *target, const ByteRegister<32> &a, const ByteRegister<32> &b,
                            const ByteRegister<32> &c) {
    ByteRegister<32> front, middle, back;
    TakeLanes<0, 2>(front, a, b);
    TakeLanes<0, 3>(middle, c, a);
    TakeLanes<1, 3>(back, b, c);
    StoreVector(target, front);
    StoreVector(target + 32, middle);
    StoreVector(target + 64, back);
}

/// Byte j of the k-th register for each j, where k is the register that has plane Plane there.
template <int Plane, class V, std::size_t... I>
ORV_INLINE void GatherPlane(V &out, const V &a, const V &b, const V &c, std::index_sequence<I...>) {
    constexpr auto count = static_cast<int>(sizeof...(I));
    const V ab = __builtin_shufflevector(
        a, b, ((Plane + 2 * (I % 16)) % 3 == 1 ? count + static_cast<int>(I) : static_cast<int>(I))...);
    out = __builtin_shufflevector(
        ab, c, ((Plane + 2 * (I % 16)) % 3 == 2 ? count + static_cast<int>(I) : static_cast<int>(I))...);
}

/// The same the other way round: the k-th register out of one register per plane.
template <int Register, class V, std::size_t... I>
ORV_INLINE void GatherRegister(V &out, const V &a, const V &b, const V &c, std::index_sequence<I...>) {
    constexpr auto count = static_cast<int>(sizeof...(I));
    const V ab = __builtin_shufflevector(
        a, b, ((Register + I % 16) % 3 == 1 ? count + static_cast<int>(I) : static_cast<int>(I))...);
    out = __builtin_shufflevector(
        ab, c, ((Register + I % 16) % 3 == 2 ? count + static_cast<int>(I) : static_cast<int>(I))...);
}

/// The bytes of a gathered plane in the order of the pixels.
template <int Plane, class V, std::size_t... I>
ORV_INLINE void SortPlane(V &plane, std::index_sequence<I...>) {
    plane = __builtin_shufflevector(plane, plane, static_cast<int>(I / 16 * 16 + (3 * (I % 16) + Plane) % 16)...);
}

/// Spreads the bytes of a plane to the places where GatherRegister looks for them.
template <int Plane, class V, std::size_t... I>
ORV_INLINE void SpreadPlane(V &out, const V &plane, std::index_sequence<I...>) {
    out = __builtin_shufflevector(
        plane, plane, static_cast<int>(I / 16 * 16 + (16 * ((Plane + 2 * (I % 16)) % 3) + I % 16) / 3)...);
}

/// Plane Plane of the pixels that LoadThirds has loaded.
template <int Plane, class V>
ORV_INLINE void StoreEveryThird(char *target, const V &a, const V &b, const V &c) {
    constexpr auto lanes = std::make_index_sequence<sizeof(V)>{};
    V plane;
    GatherPlane<Plane>(plane, a, b, c, lanes);
    SortPlane<Plane>(plane, lanes);
    StoreVector(target, plane);
}

/// The pixels whose bytes stand in a, b and c.
template <class V>
ORV_INLINE void StoreJoined(char *target, const V &a, const V &b, const V &c) {
    constexpr auto lanes = std::make_index_sequence<sizeof(V)>{};
    V first, second, third, front, middle, back;
    SpreadPlane<0>(first, a, lanes);
    SpreadPlane<1>(second, b, lanes);
    SpreadPlane<2>(third, c, lanes);
    GatherRegister<0>(front, first, second, third, lanes);
    GatherRegister<1>(middle, first, second, third, lanes);
    GatherRegister<2>(back, first, second, third, lanes);
    StoreThirds(target, front, middle, back);
}

} // namespace Image
