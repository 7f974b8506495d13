#include "Scan/OverlayBits.h"

#include "Image/KernelLevel.h"
#include "Scan/OverlayPixels.h"
#include "Scan/PixelRows.h"

namespace Scan {
namespace {

void CopyByTables(const Image::PlaneView &source, const Image::PlaneView &target) {
    for (std::intptr_t y = 0; y < target.Height; ++y)
        for (std::intptr_t x = 0; x < target.Width; ++x) {
            char *const pixel = target.Pixel(x, y);
            // Required: the source is read behind the clearing, which may have cleared it, too: an image copied onto
            // itself loses its overlay.
            *pixel = static_cast<char>(*pixel & ~1);
            *pixel = static_cast<char>(*pixel | (*source.Pixel(x, y) & 1));
        }
}

template <class Source, class Target>
ORV_INLINE void CopyBits(const Source *__restrict source, Target *__restrict target, std::intptr_t count) {
    constexpr auto dataBits = static_cast<Target>(~Target{1});
    for (std::intptr_t x = 0; x < count; ++x) {
        const auto bit = static_cast<Target>(source[x] & Source{1});
        target[x] = static_cast<Target>((target[x] & dataBits) | bit);
    }
}

template <class Source, class Target>
void CopyByPieces(const Image::PlaneView &source, const Image::PlaneView &target) {
    using Wider = std::conditional_t<(sizeof(Source) > sizeof(Target)), Source, Target>;
    Chunk<Source> sourceChunk;
    Chunk<Target> targetChunk;
    ForEachPiece<Wider>(target.Width, target.Height, [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        const Source *const from = PixelsToRead(source, x, y, count, sourceChunk);
        // In place, or gathered into the chunk: what is read is where it is written.
        PixelsToRead(target, x, y, count, targetChunk);
        Target *const to = PixelsToWrite(target, x, y, targetChunk);
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { CopyBits(from, to, count); });
        WritePixels(target, x, y, count, to, targetChunk);
    });
}

} // namespace

OverlayMethod ChooseOverlay(const Image::PlaneView &source, const Image::PlaneView &target) {
    const bool orderMatters = !target.HasDistinctPixels() || RangeOf(source).Meets(RangeOf(target));
    return orderMatters ? OverlayMethod::ByTables : OverlayMethod::ByPieces;
}

void CopyOverlayBits(OverlayMethod method, const Image::PlaneView &source, const Image::PlaneView &target) {
    if (method == OverlayMethod::ByTables)
        return CopyByTables(source, target);
    ForPixelWidth(source.Bytes, [&]<class Source>() {
        ForPixelWidth(target.Bytes, [&]<class Target>() { CopyByPieces<Source, Target>(source, target); });
    });
}

} // namespace Scan
