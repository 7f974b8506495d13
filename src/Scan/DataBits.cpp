#include "Scan/DataBits.h"

#include "Image/KernelLevel.h"
#include "Image/PlaneCopy.h"
#include "Scan/OverlayPixels.h"
#include "Scan/PixelRows.h"

namespace Scan {
namespace {

constexpr std::intptr_t ThreeBytes = 3;

/// Rows of dense pixels on both sides.
struct DenseRows {
    char *Target;
    std::intptr_t TargetStep;
    const char *Source;
    std::intptr_t SourceStep;
    std::intptr_t RowBytes;
    std::intptr_t Rows;
};

template <class T>
ORV_INLINE void CopyPixels(char *__restrict target, const char *__restrict source, std::intptr_t count) {
    using Pixel = typename Loose<T>::Type;
    auto *const to = reinterpret_cast<Pixel *>(target);
    const auto *const from = reinterpret_cast<const Pixel *>(source);
    for (std::intptr_t x = 0; x < count; ++x)
        to[x] = static_cast<T>(from[x] & static_cast<T>(~T{1}));
}

/// Calls for what comes next, which makes it as quick as a block move: the next row on both sides where
/// FetchesNextRow, else the source some cache lines ahead.
template <class T, bool FetchesNextRow>
ORV_INLINE void CopyRow(char *__restrict target, const char *__restrict source, const DenseRows &rows) {
    constexpr std::intptr_t block = 256;
    constexpr std::intptr_t ahead = 1024;
    constexpr std::intptr_t line = 64;
    constexpr auto pixelBytes = static_cast<std::intptr_t>(sizeof(T));
    std::intptr_t at = 0;
    for (; at + block <= rows.RowBytes; at += block) {
        for (std::intptr_t next = at; next < at + block; next += line) {
            __builtin_prefetch(source + next + (FetchesNextRow ? rows.SourceStep : ahead));
            if constexpr (FetchesNextRow)
                __builtin_prefetch(target + next + rows.TargetStep, 1);
        }
        CopyPixels<T>(target + at, source + at, block / pixelBytes);
    }
    CopyPixels<T>(target + at, source + at, (rows.RowBytes - at) / pixelBytes);
}

template <class T, bool FetchesNextRow>
void CopyAllRows(const DenseRows &rows) {
    Image::RunAtLevel([rows]() ORV_INLINE_LAMBDA {
        for (std::intptr_t y = 0; y < rows.Rows; ++y)
            CopyRow<T, FetchesNextRow>(rows.Target + y * rows.TargetStep, rows.Source + y * rows.SourceStep, rows);
    });
}

template <class T>
ORV_INLINE void ClearRow(char *target, std::intptr_t bytes) {
    using Pixel = typename Loose<T>::Type;
    auto *const pixels = reinterpret_cast<Pixel *>(target);
    for (std::intptr_t x = 0; x < bytes / static_cast<std::intptr_t>(sizeof(T)); ++x)
        pixels[x] = static_cast<T>(pixels[x] & static_cast<T>(~T{1}));
}

void ClearBit(char *pixel) {
    *pixel = static_cast<char>(*pixel & ~1);
}

/// Views of dense rows; those that follow each other without a gap on both sides are one.
DenseRows RowsOf(const Image::PlaneView &source, const Image::PlaneView &target) {
    DenseRows rows = {target.Pixel(0, 0),          target.YStep, source.Pixel(0, 0), source.YStep,
                      source.Width * source.Bytes, source.Height};
    if (rows.SourceStep == rows.RowBytes && rows.TargetStep == rows.RowBytes) {
        rows.RowBytes *= rows.Rows;
        rows.Rows = 1;
    }
    return rows;
}

/// What the bits are cleared in: pixels, or the bytes of three planes.
std::intptr_t UnitBytes(const Image::PlaneView &view) {
    return view.Bytes == ThreeBytes ? 1 : view.Bytes;
}

bool HasDenseRows(const Image::PlaneView &view) {
    return view.IsDense(1) && (view.Height == 1 || view.YStep != 0);
}

void CopyRows(const Image::PlaneView &source, const Image::PlaneView &target) {
    constexpr std::intptr_t longRow = 16384; // the next one would push this one out of the nearest cache
    const DenseRows rows = RowsOf(source, target);
    ForPixelWidth(UnitBytes(source), [&rows]<class T>() {
        if (rows.Rows > 1 && rows.RowBytes <= longRow)
            CopyAllRows<T, true>(rows);
        else
            CopyAllRows<T, false>(rows);
    });
}

void ClearByTables(const Image::PlaneView &view) {
    for (std::intptr_t y = 0; y < view.Height; ++y)
        for (std::intptr_t x = 0; x < view.Width; ++x)
            for (std::intptr_t byte = 0; byte < view.Bytes; byte += view.Bytes == ThreeBytes ? 1 : view.Bytes)
                ClearBit(view.Pixel(x, y) + byte);
}

void ClearBits(const Image::PlaneView &view) {
    if (!HasDenseRows(view))
        return ClearByTables(view);
    const DenseRows rows = RowsOf(view, view);
    ForPixelWidth(UnitBytes(view), [rows]<class T>() {
        Image::RunAtLevel([rows]() ORV_INLINE_LAMBDA {
            for (std::intptr_t y = 0; y < rows.Rows; ++y)
                ClearRow<T>(rows.Target + y * rows.TargetStep, rows.RowBytes);
        });
    });
}

} // namespace

DataBitsMethod ChooseDataBits(const Image::PlaneView &source, const Image::PlaneView &target) {
    return HasDenseRows(source) && HasDenseRows(target) ? DataBitsMethod::Rows : DataBitsMethod::CopyAndClear;
}

void CopyDataBits(DataBitsMethod method, const Image::PlaneView &source, const Image::PlaneView &target) {
    switch (method) {
    case DataBitsMethod::ByTables:
        Image::CopyPlane(Image::PlaneCopyMethod::TableToTable, source, target);
        return ClearByTables(target);
    case DataBitsMethod::Rows:
        return CopyRows(source, target);
    case DataBitsMethod::CopyAndClear:
        Image::CopyDisjointPlane(source, target);
        return ClearBits(target);
    }
}

} // namespace Scan
