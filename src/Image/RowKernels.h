// The inner loops of plane copies on dense memory, once per instruction set level. All levels give the same bytes; a
// test can list and call each. Any address may be unaligned, source and target must be disjoint.
#pragma once

#include <cstdint>

namespace Image {

/// The pixel of three interleaved 8-bit planes.
struct ThreeBytes {
    std::uint8_t Bytes[3];
};

/// One level's kernels.
struct RowKernels {
    using ReverseFunction = void (*)(char *target, const char *source, std::intptr_t count);

    const char *Name;
    /// Copies count elements in reverse order, by the width of the element.
    ReverseFunction Reverse8, Reverse16, Reverse24, Reverse32, Reverse64;
    /// Copies rows of rowBytes each, from the first to the last. Steps lead from a row to the next, in any direction;
    /// target rows may share bytes with each other.
    void (*CopyRows)(char *target, std::intptr_t targetStep, const char *source, std::intptr_t sourceStep,
                     std::intptr_t rowBytes, std::intptr_t rows);
    /// Copies every third byte, count of them, to dense memory.
    void (*ExtractEveryThird)(char *target, const char *source, std::intptr_t count);
    /// Takes count three-byte pixels apart: byte k of each goes to the next place of targets[k].
    void (*SplitThreeBytes)(char *const targets[3], const char *source, std::intptr_t count);
    /// Puts count three-byte pixels together: byte k of each comes from the next place of sources[k].
    void (*JoinThreeBytes)(char *target, const char *const sources[3], std::intptr_t count);

    template <class T>
    ReverseFunction Reverse() const {
        constexpr int width = sizeof(T);
        return width == 1   ? Reverse8
               : width == 2 ? Reverse16
               : width == 3 ? Reverse24
               : width == 4 ? Reverse32
                            : Reverse64;
    }

    /// For every x86-64 processor.
    static const RowKernels &Baseline();
    /// With 32-byte registers; null where the processor has none.
    static const RowKernels *Avx2();
    /// The quickest that this processor has.
    static const RowKernels &Best();
};

/// Turns a tile of up to 64 x 64 elements: element j of source line i goes to element i of target row j.
/// targetRows     start of each target row; the tile begins targetOffset bytes behind it.
/// source, pitch  element 0 of source line 0, and bytes from a line to the next.
/// lines, rows    source lines (elements of a target row), and elements of a source line (target rows).
template <class T>
void TransposeTile(char *const *targetRows, std::intptr_t targetOffset, const char *source, std::intptr_t pitch,
                   std::intptr_t lines, std::intptr_t rows);

} // namespace Image
