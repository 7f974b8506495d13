#include "Persistence/BmpDescription.h"

#include <limits>

#include "CheckedSize.h"

namespace Persistence {
namespace {

/// The bytes in front of the pixels that matter; what the file is too short for reads as 0.
struct BmpHead {
    std::array<unsigned char, BmpHeadersEnd + BmpPaletteBytes> Bytes{};
    std::size_t Count = 0;
};

constexpr std::size_t ChannelMaskBytes = 12;

/// Tells whether the three masks behind the headers name plain B, G, R bytes; the fourth byte is free.
bool MasksNamePlainBytes(const BmpHead &head) {
    if (head.Count < BmpHeadersEnd + ChannelMaskBytes)
        return false;
    const auto mask = [&head](std::size_t channel) {
        return LoadFileValue<std::uint32_t>(&head.Bytes[BmpHeadersEnd + 4 * channel]) & 0xFFFFFFu;
    };
    return mask(0) == 0xFF0000u && mask(1) == 0x00FF00u && mask(2) == 0x0000FFu;
}

bool IsReadableKind(const TBitmapInfoHeader &info, const BmpHead &head) {
    if (info.biPlanes != 1)
        return false;
    if (info.biCompression == BmpChannelMasks)
        return info.biBitCount == 32 && MasksNamePlainBytes(head);
    return info.biCompression == BmpUncompressed &&
           (info.biBitCount == 8 || info.biBitCount == 24 || info.biBitCount == 32);
}

std::size_t PaddedRowBytes(std::size_t width, std::size_t bitCount) {
    return ((bitCount * width / 8) + 3) & ~std::size_t{3};
}

} // namespace

std::optional<BmpDescription> DescribeBmp(const FileDescriptor &file) {
    std::uint64_t fileBytes = 0;
    if (!file.GetRegularFileSize(fileBytes))
        return std::nullopt;
    BmpHead head;
    head.Count = file.ReadAt(0, head.Bytes.data(), head.Bytes.size());
    const BmpFileHeader header = LoadFileHeader(head.Bytes.data());
    const auto info = LoadFileValue<TBitmapInfoHeader>(&head.Bytes[BmpFileHeaderBytes]);
    if (head.Count < BmpHeadersEnd || header.bfType != BmpSignature || !IsReadableKind(info, head))
        return std::nullopt;
    if (info.biWidth < 1 || info.biHeight == 0 || info.biHeight == std::numeric_limits<std::int32_t>::min())
        return std::nullopt;

    BmpDescription result{};
    result.Width = info.biWidth;
    result.LastRowFirst = info.biHeight > 0;
    result.Height = result.LastRowFirst ? info.biHeight : -info.biHeight;
    result.BitCount = info.biBitCount;
    result.PixelOffset = header.bfOffBits;
    result.RowBytes = PaddedRowBytes(static_cast<std::size_t>(result.Width), info.biBitCount);
    // bfSize is not asked: a file holds what it holds, whether the header claims more or less.
    if (!orvBase::CheckedProduct(result.PixelBytes, result.RowBytes, static_cast<std::size_t>(result.Height)) ||
        result.PixelOffset > fileBytes || result.PixelBytes > fileBytes - result.PixelOffset)
        return std::nullopt;
    if (info.biBitCount == 8)
        result.Palette = LoadFileValue<BmpPalette>(&head.Bytes[BmpHeadersEnd]);
    return result;
}

} // namespace Persistence
