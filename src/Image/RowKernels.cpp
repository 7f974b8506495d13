#include "Image/RowKernels.h"

#include "Image/ThreeByteRegisters.h"

namespace Image {
namespace {

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

/// Whole registers of pixels, then half of one, then pixel by pixel.
template <std::size_t RegisterBytes>
ORV_INLINE void ExtractLoop(char *target, const char *source, std::intptr_t count) {
    constexpr auto pixels = static_cast<std::intptr_t>(RegisterBytes);
    std::intptr_t done = 0;
    // The last register of a step reaches two bytes behind the last byte wanted: one pixel more must follow.
    for (; done + pixels < count; done += pixels) {
        ByteRegister<RegisterBytes> a, b, c;
        LoadThirds(a, b, c, source + 3 * done);
        StoreEveryThird<0>(target + done, a, b, c);
    }
    if constexpr (RegisterBytes > 16)
        return ExtractLoop<16>(target + done, source + 3 * done, count - done);
    for (; done < count; ++done)
        target[done] = source[3 * done];
}

template <std::size_t RegisterBytes>
ORV_INLINE void SplitLoop(char *first, char *second, char *third, const char *source, std::intptr_t count) {
    constexpr auto pixels = static_cast<std::intptr_t>(RegisterBytes);
    std::intptr_t done = 0;
    for (; done + pixels <= count; done += pixels) {
        ByteRegister<RegisterBytes> a, b, c;
        LoadThirds(a, b, c, source + 3 * done);
        StoreEveryThird<0>(first + done, a, b, c);
        StoreEveryThird<1>(second + done, a, b, c);
        StoreEveryThird<2>(third + done, a, b, c);
    }
    if constexpr (RegisterBytes > 16)
        return SplitLoop<16>(first + done, second + done, third + done, source + 3 * done, count - done);
    for (; done < count; ++done) {
        first[done] = source[3 * done];
        second[done] = source[3 * done + 1];
        third[done] = source[3 * done + 2];
    }
}

template <std::size_t RegisterBytes>
ORV_INLINE void JoinLoop(char *target, const char *first, const char *second, const char *third,
                         std::intptr_t count) {
    constexpr auto pixels = static_cast<std::intptr_t>(RegisterBytes);
    std::intptr_t done = 0;
    for (; done + pixels <= count; done += pixels) {
        ByteRegister<RegisterBytes> a, b, c;
        LoadVector(a, first + done);
        LoadVector(b, second + done);
        LoadVector(c, third + done);
        StoreJoined(target + 3 * done, a, b, c);
    }
    if constexpr (RegisterBytes > 16)
        return JoinLoop<16>(target + 3 * done, first + done, second + done, third + done, count - done);
    for (; done < count; ++done) {
        target[3 * done] = first[done];
        target[3 * done + 1] = second[done];
        target[3 * done + 2] = third[done];
    }
}

template <std::size_t RegisterBytes>
ORV_INLINE void CopyRegister(char *target, const char *source) {
    Vector<std::uint8_t, RegisterBytes> value;
    LoadVector(value, source);
    StoreVector(target, value);
}

ORV_INLINE void CopyFourRegisters(char *target, const char *source) {
    Vector<std::uint8_t, 32> a, b, c, d;
    LoadVector(a, source);
    LoadVector(b, source + 32);
    LoadVector(c, source + 64);
    LoadVector(d, source + 96);
    StoreVector(target, a);
    StoreVector(target + 32, b);
    StoreVector(target + 64, c);
    StoreVector(target + 96, d);
}

/// Runs copyRow(target, source) for each row.
template <class CopyRow>
ORV_INLINE void ForEachRow(char *target, std::intptr_t targetStep, const char *source, std::intptr_t sourceStep,
                           std::intptr_t rows, CopyRow copyRow) {
    for (std::intptr_t y = 0; y < rows; ++y)
        copyRow(target + y * targetStep, source + y * sourceStep);
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

void CopyRowsAtBaseline(char *target, std::intptr_t targetStep, const char *source, std::intptr_t sourceStep,
                        std::intptr_t rowBytes, std::intptr_t rows) {
    ForEachRow(target, targetStep, source, sourceStep, rows,
               [rowBytes](char *to, const char *from) { std::memcpy(to, from, static_cast<std::size_t>(rowBytes)); });
}

template <bool FetchesNextRow>
ORV_INLINE void CopyLongRow(char *target, std::intptr_t targetStep, const char *source, std::intptr_t sourceStep,
                            std::intptr_t rowBytes) {
    for (std::intptr_t x = 0; x < rowBytes - 128; x += 128) {
        if constexpr (FetchesNextRow)
            for (const std::intptr_t line : {x, x + 64}) {
                __builtin_prefetch(source + sourceStep + line);
                __builtin_prefetch(target + targetStep + line);
            }
        CopyFourRegisters(target + x, source + x);
    }
    CopyFourRegisters(target + rowBytes - 128, source + rowBytes - 128);
}

/// Rows of more than four registers. Where the rectangle is too large for the inner caches and fits the outer one,
/// the next row is asked for while this one is copied; memory beyond is quicker without.
__attribute__((target("avx2"))) void CopyLongRows(char *target, std::intptr_t targetStep, const char *source,
                                                  std::intptr_t sourceStep, std::intptr_t rowBytes,
                                                  std::intptr_t rows) {
    constexpr std::intptr_t innerCache = 0x80000, outerCache = 0x800000;
    const bool fetchesNextRow = rows > innerCache / rowBytes && rows <= outerCache / rowBytes;
    for (std::intptr_t y = 0; y < rows; ++y) {
        char *const to = target + y * targetStep;
        const char *const from = source + y * sourceStep;
        if (fetchesNextRow && y + 1 < rows)
            CopyLongRow<true>(to, targetStep, from, sourceStep, rowBytes);
        else
            CopyLongRow<false>(to, targetStep, from, sourceStep, rowBytes);
    }
}

/// Rows of a few registers need neither a call nor a loop: registers that overlap cover what is left over.
__attribute__((target("avx2"))) void CopyRowsAtAvx2(char *target, std::intptr_t targetStep, const char *source,
                                                    std::intptr_t sourceStep, std::intptr_t rowBytes,
                                                    std::intptr_t rows) {
    constexpr std::intptr_t longRow = 16384;
    if (rowBytes < 16 || rowBytes > longRow)
        CopyRowsAtBaseline(target, targetStep, source, sourceStep, rowBytes, rows);
    else if (rowBytes <= 32)
        ForEachRow(target, targetStep, source, sourceStep, rows, [rowBytes](char *to, const char *from) {
            CopyRegister<16>(to, from);
            CopyRegister<16>(to + rowBytes - 16, from + rowBytes - 16);
        });
    else if (rowBytes <= 64)
        ForEachRow(target, targetStep, source, sourceStep, rows, [rowBytes](char *to, const char *from) {
            CopyRegister<32>(to, from);
            CopyRegister<32>(to + rowBytes - 32, from + rowBytes - 32);
        });
    else if (rowBytes <= 128)
        ForEachRow(target, targetStep, source, sourceStep, rows, [rowBytes](char *to, const char *from) {
            CopyRegister<32>(to, from);
            CopyRegister<32>(to + 32, from + 32);
            CopyRegister<32>(to + rowBytes - 64, from + rowBytes - 64);
            CopyRegister<32>(to + rowBytes - 32, from + rowBytes - 32);
        });
    else
        CopyLongRows(target, targetStep, source, sourceStep, rowBytes, rows);
}

void ExtractAtBaseline(char *target, const char *source, std::intptr_t count) {
    ExtractLoop<16>(target, source, count);
}
__attribute__((target("avx2"))) void ExtractAtAvx2(char *target, const char *source, std::intptr_t count) {
    ExtractLoop<32>(target, source, count);
}

void SplitAtBaseline(char *const targets[3], const char *source, std::intptr_t count) {
    SplitLoop<16>(targets[0], targets[1], targets[2], source, count);
}
__attribute__((target("avx2"))) void SplitAtAvx2(char *const targets[3], const char *source, std::intptr_t count) {
    SplitLoop<32>(targets[0], targets[1], targets[2], source, count);
}

void JoinAtBaseline(char *target, const char *const sources[3], std::intptr_t count) {
    JoinLoop<16>(target, sources[0], sources[1], sources[2], count);
}
__attribute__((target("avx2"))) void JoinAtAvx2(char *target, const char *const sources[3], std::intptr_t count) {
    JoinLoop<32>(target, sources[0], sources[1], sources[2], count);
}

constexpr RowKernels BaselineKernels = {"baseline",
                                        ReverseAtBaseline<std::uint8_t>,
                                        ReverseAtBaseline<std::uint16_t>,
                                        ReverseAtBaseline<ThreeBytes>,
                                        ReverseAtBaseline<std::uint32_t>,
                                        ReverseAtBaseline<std::uint64_t>,
                                        CopyRowsAtBaseline,
                                        ExtractAtBaseline,
                                        SplitAtBaseline,
                                        JoinAtBaseline};

constexpr RowKernels Avx2Kernels = {"avx2",
                                    ReverseAtAvx2<std::uint8_t>,
                                    ReverseAtAvx2<std::uint16_t>,
                                    ReverseAtAvx2<ThreeBytes>,
                                    ReverseAtAvx2<std::uint32_t>,
                                    ReverseAtAvx2<std::uint64_t>,
                                    CopyRowsAtAvx2,
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
