#include "Image/RowKernels.h"

#include "Image/VectorRegisters.h"

namespace Image {
namespace {

using Bytes16 = Vector<std::uint8_t, 16>;
constexpr auto SixteenLanes = std::make_index_sequence<16>{};

template <class T, std::size_t RegisterBytes>
ORV_INLINE void ReverseLoop(char *target, const char *source, std::intptr_t count) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    std::intptr_t done = 0;
    if constexpr (RegisterBytes % sizeof(T) == 0) {
        constexpr std::size_t laneCount = RegisterBytes / sizeof(T);
        constexpr auto lanes = static_cast<std::intptr_t>(laneCount);
        for (; done + lanes <= count; done += lanes) {
            Vector<T, RegisterBytes> value;
            LoadVector(value, source + (count - done - lanes) * size);
            ReverseLanes(value, std::make_index_sequence<laneCount>{});
            StoreVector(target + done * size, value);
        }
    }
    for (; done < count; ++done)
        std::memcpy(target + done * size, source + (count - 1 - done) * size, sizeof(T));
}

/// Bytes Phase, Phase + 3, ... of 48 bytes in three registers: first those of a and b, then those of c.
template <int Phase, std::size_t... I>
ORV_INLINE void StoreEveryThird(char *target, const Bytes16 &a, const Bytes16 &b, const Bytes16 &c,
                                std::index_sequence<I...>) {
    const Bytes16 front = __builtin_shufflevector(a, b, (3 * static_cast<int>(I) + Phase) % 32 ...);
    const Bytes16 all = __builtin_shufflevector(
        front, c,
        (3 * static_cast<int>(I) + Phase < 32 ? static_cast<int>(I) : 3 * static_cast<int>(I) + Phase - 16)...);
    StoreVector(target, all);
}

/// Part Part of 48 interleaved bytes made of the 16 bytes of three planes.
template <int Part, std::size_t... I>
ORV_INLINE void StoreJoined(char *target, const Bytes16 &a, const Bytes16 &b, const Bytes16 &c,
                            std::index_sequence<I...>) {
    const Bytes16 front = __builtin_shufflevector(
        a, b, ((16 * Part + static_cast<int>(I)) / 3 + ((16 * Part + static_cast<int>(I)) % 3 == 1 ? 16 : 0))...);
    const Bytes16 all = __builtin_shufflevector(front, c,
                                                ((16 * Part + static_cast<int>(I)) % 3 == 2
                                                     ? 16 + (16 * Part + static_cast<int>(I)) / 3
                                                     : static_cast<int>(I))...);
    StoreVector(target + 16 * Part, all);
}

ORV_INLINE void ExtractLoop(char *target, const char *source, std::intptr_t count) {
    std::intptr_t done = 0;
    // The last register of a step reaches two bytes behind the last byte wanted: one pixel more must follow.
    for (; done + 16 < count; done += 16) {
        Bytes16 a, b, c;
        LoadVector(a, source + 3 * done);
        LoadVector(b, source + 3 * done + 16);
        LoadVector(c, source + 3 * done + 32);
        StoreEveryThird<0>(target + done, a, b, c, SixteenLanes);
    }
    for (; done < count; ++done)
        target[done] = source[3 * done];
}

ORV_INLINE void SplitLoop(char *const targets[3], const char *source, std::intptr_t count) {
    char *const first = targets[0];
    char *const second = targets[1];
    char *const third = targets[2];
    std::intptr_t done = 0;
    for (; done + 16 <= count; done += 16) {
        Bytes16 a, b, c;
        LoadVector(a, source + 3 * done);
        LoadVector(b, source + 3 * done + 16);
        LoadVector(c, source + 3 * done + 32);
        StoreEveryThird<0>(first + done, a, b, c, SixteenLanes);
        StoreEveryThird<1>(second + done, a, b, c, SixteenLanes);
        StoreEveryThird<2>(third + done, a, b, c, SixteenLanes);
    }
    for (; done < count; ++done) {
        first[done] = source[3 * done];
        second[done] = source[3 * done + 1];
        third[done] = source[3 * done + 2];
    }
}

ORV_INLINE void JoinLoop(char *target, const char *const sources[3], std::intptr_t count) {
    const char *const first = sources[0];
    const char *const second = sources[1];
    const char *const third = sources[2];
    std::intptr_t done = 0;
    for (; done + 16 <= count; done += 16) {
        Bytes16 a, b, c;
        LoadVector(a, first + done);
        LoadVector(b, second + done);
        LoadVector(c, third + done);
        StoreJoined<0>(target + 3 * done, a, b, c, SixteenLanes);
        StoreJoined<1>(target + 3 * done, a, b, c, SixteenLanes);
        StoreJoined<2>(target + 3 * done, a, b, c, SixteenLanes);
    }
    for (; done < count; ++done) {
        target[3 * done] = first[done];
        target[3 * done + 1] = second[done];
        target[3 * done + 2] = third[done];
    }
}

// Each level has the same loops, with the registers and instructions of its own.

template <class T>
void ReverseAtBaseline(char *target, const char *source, std::intptr_t count) {
    ReverseLoop<T, 16>(target, source, count);
}
template <class T>
__attribute__((target("avx2"))) void ReverseAtAvx2(char *target, const char *source, std::intptr_t count) {
    ReverseLoop<T, 32>(target, source, count);
}

void ExtractAtBaseline(char *target, const char *source, std::intptr_t count) {
    ExtractLoop(target, source, count);
}
__attribute__((target("avx2"))) void ExtractAtAvx2(char *target, const char *source, std::intptr_t count) {
    ExtractLoop(target, source, count);
}

void SplitAtBaseline(char *const targets[3], const char *source, std::intptr_t count) {
    SplitLoop(targets, source, count);
}
__attribute__((target("avx2"))) void SplitAtAvx2(char *const targets[3], const char *source, std::intptr_t count) {
    SplitLoop(targets, source, count);
}

void JoinAtBaseline(char *target, const char *const sources[3], std::intptr_t count) {
    JoinLoop(target, sources, count);
}
__attribute__((target("avx2"))) void JoinAtAvx2(char *target, const char *const sources[3], std::intptr_t count) {
    JoinLoop(target, sources, count);
}

constexpr RowKernels BaselineKernels = {"baseline",
                                        ReverseAtBaseline<std::uint8_t>,
                                        ReverseAtBaseline<std::uint16_t>,
                                        ReverseAtBaseline<ThreeBytes>,
                                        ReverseAtBaseline<std::uint32_t>,
                                        ReverseAtBaseline<std::uint64_t>,
                                        ExtractAtBaseline,
                                        SplitAtBaseline,
                                        JoinAtBaseline};

constexpr RowKernels Avx2Kernels = {"avx2",
                                    ReverseAtAvx2<std::uint8_t>,
                                    ReverseAtAvx2<std::uint16_t>,
                                    ReverseAtAvx2<ThreeBytes>,
                                    ReverseAtAvx2<std::uint32_t>,
                                    ReverseAtAvx2<std::uint64_t>,
                                    ExtractAtAvx2,
                                    SplitAtAvx2,
                                    JoinAtAvx2};

} // namespace

const RowKernels &RowKernels::Baseline() {
    return BaselineKernels;
}

const RowKernels *RowKernels::Avx2() {
    static const bool available = __builtin_cpu_supports("avx2") != 0;
    return available ? &Avx2Kernels : nullptr;
}

const RowKernels &RowKernels::Best() {
    const RowKernels *avx2 = Avx2();
    return avx2 != nullptr ? *avx2 : Baseline();
}

} // namespace Image
