#include "Persistence/BmpWriter.h"

#include <limits>

#include "ImageCopies.h"
#include "ImageQueries.h"
#include "Interface/ImageGuard.h"
#include "InterfaceHandling.h"
#include "Persistence/BmpFormat.h"
#include "Persistence/BmpLayout.h"
#include "Persistence/StagedOutput.h"

namespace Persistence {
namespace {

std::size_t PaddedTo4(std::size_t bytes) {
    return (bytes + 3) & ~std::size_t{3};
}

/// True when the pixels are one block that is a bitmap's pixel data as it stands.
bool IsDenseBlock(const BmpLayout &layout) {
    return layout.RowBytes() == (layout.PitchBytes < 0 ? -layout.PitchBytes : layout.PitchBytes) &&
           layout.Width * layout.Planes % 4 == 0;
}

/// The size of the pixel data that bfSize tells.
std::uint64_t ClaimedPixelBytes(const BmpLayout &layout) {
    const auto planeBytes = static_cast<std::uint64_t>(layout.Width * layout.Planes);
    const std::uint64_t bytes = static_cast<std::uint64_t>(layout.Height) * 4 * ((planeBytes + 3) >> 2);
    // Required: 32 bits are told as 24 bits times 4 / 3, a few bytes off where the width is no multiple of 4.
    return layout.PixelBytes == 4 ? bytes * 4 / 3 : bytes;
}

void AppendHead(StagedOutput &output, const BmpLayout &layout, std::uint16_t signature) {
    std::array<unsigned char, BmpHeadersEnd + BmpPaletteBytes> head;
    const std::size_t headBytes = layout.PixelBytes == 1 ? head.size() : BmpHeadersEnd;
    const auto height = static_cast<std::int32_t>(layout.Height);

    const auto fileBytes = static_cast<std::uint32_t>(headBytes + ClaimedPixelBytes(layout));
    StoreFileHeader(head.data(), {signature, fileBytes, static_cast<std::uint32_t>(headBytes)});

    TBitmapInfoHeader info{};
    info.biSize = BmpInfoHeaderBytes;
    info.biWidth = static_cast<std::int32_t>(layout.Width);
    info.biHeight = IsDenseBlock(layout) && layout.PitchBytes < 0 ? height : -height;
    info.biPlanes = 1;
    info.biBitCount = static_cast<std::uint16_t>(layout.PixelBytes * 8);
    StoreFileValue(&head[BmpFileHeaderBytes], info);

    BmpPalette greys;
    for (std::size_t i = 0; i < greys.size(); ++i) {
        const auto grey = static_cast<std::uint8_t>(i);
        greys[i] = {grey, grey, grey, 0};
    }
    StoreFileValue(&head[BmpHeadersEnd], greys);
    output.Append(head.data(), headBytes);
}

/// 1 where the fourth byte of the last pixel in memory may belong to somebody else, 0 otherwise. Where pixels are
/// whole aligned words it is theirs; where they are not, it can lie behind the end of the caller's memory.
std::size_t UnownedBytes(const BmpLayout &layout) {
    const auto highest = reinterpret_cast<std::uintptr_t>(layout.Row(layout.HighestRow()));
    return layout.PixelBytes == 4 && highest % 4 != 0 ? 1 : 0;
}

void AppendBlock(StagedOutput &output, const BmpLayout &layout) {
    const auto bytes = static_cast<std::size_t>(layout.Height * layout.RowBytes());
    const std::size_t unowned = UnownedBytes(layout);
    output.Append(layout.LowestAddress(), bytes - unowned);
    output.AppendZeros(unowned);
}

void AppendRows(StagedOutput &output, const BmpLayout &layout) {
    const auto rowBytes = static_cast<std::size_t>(layout.RowBytes());
    const std::size_t unowned = UnownedBytes(layout);
    for (std::intptr_t y = 0; y < layout.Height; ++y) {
        const std::size_t owned = y == layout.HighestRow() ? rowBytes - unowned : rowBytes;
        output.Append(layout.Row(y), owned);
        output.AppendZeros(PaddedTo4(rowBytes) - owned);
    }
}

/// Ends a file of total bytes, over a former one that may be longer, and makes it a bitmap.
bool Seal(const FileDescriptor &file, std::uint64_t formerBytes, std::uint64_t total) {
    return (formerBytes <= total || file.SetFileSize(total)) && file.WriteAt(0, &BmpSignature, sizeof BmpSignature);
}

/// A file that is there is written over in place: its blocks serve again, which takes a fraction of the time of
/// giving them back and getting new ones. The signature comes last, so that no reader takes an unfinished file, or
/// one that was given up, for a bitmap.
bool WriteFile(const BmpLayout &layout, const char *path) {
    FileDescriptor file = FileDescriptor::OpenForWriting(path);
    if (!file.IsOpen())
        return false;
    std::uint64_t formerBytes = 0;
    const bool isSealedLater = file.GetRegularFileSize(formerBytes);
    StagedOutput output(file);
    AppendHead(output, layout, isSealedLater ? std::uint16_t{0} : BmpSignature);
    if (IsDenseBlock(layout))
        AppendBlock(output, layout);
    else
        AppendRows(output, layout);
    const bool written = output.Flush() && (!isSealedLater || Seal(file, formerBytes, output.GetTotal()));
    return file.Close() && written;
}

/// The reference of a copy made on the way.
struct ReleaseCopy {
    void operator()(void *copy) const { ReleaseObject(copy); }
};

enum class Source { Original, Copy };

bool Write(void *handle, const char *path, Source source) {
    const Interface::ImageHolder image = Interface::QueryImage(handle);
    if (!image.IsValid())
        return false;
    if (IsAll8Bit(handle)) {
        constexpr std::intptr_t Largest = std::numeric_limits<std::int32_t>::max();
        const Image::Dimensions size = Image::DimensionsOf(*image.Get());
        if ((size.Planes != 1 && size.Planes != 3) || size.Width < 1 || size.Width > Largest || size.Height < 1 ||
            size.Height > Largest)
            return false;
        if (const auto layout = AnalyzeBmpLayout(image))
            return WriteFile(*layout, path);
    }
    // The copy of signed or overlay planes has a block per plane, as they may have: it is not copied again.
    if (source == Source::Copy)
        return false;
    void *copy = nullptr;
    if (CreateDuplicateImage(handle, &copy) == 0)
        return false;
    const std::unique_ptr<void, ReleaseCopy> owner(copy);
    return Write(copy, path, Source::Copy);
}

} // namespace

bool WriteBmp(void *image, const char *path) {
    return Write(image, path, Source::Original);
}

} // namespace Persistence
