#include "Image/TreeBuilder.h"

#include <cstring>
#include <limits>
#include <new>

#include "CheckedSize.h"
#include "Image/DataType.h"

namespace Image {
namespace {

using Persistence::Adopt;
using Persistence::NodeHolder;

constexpr TDataType EightBits = 8;

std::size_t BlockBytes(std::intptr_t rowBytes, std::intptr_t rows) {
    std::size_t bytes = 0;
    if (!orvBase::CheckedProduct(bytes, static_cast<std::size_t>(rowBytes), static_cast<std::size_t>(rows)))
        throw std::bad_alloc();
    return bytes;
}

/// A block of rows. Pixels are not cleared, but what lies between the rows must not hand out old heap content.
NodeHolder<TBuffer> MakePixels(std::intptr_t usedBytes, std::intptr_t stride, std::intptr_t rows) {
    NodeHolder<TBuffer> pixels(new TBuffer);
    pixels->Allocate(BlockBytes(stride, rows));
    if (usedBytes < stride)
        for (std::intptr_t row = 0; row < rows; ++row)
            std::memset(static_cast<char *>(pixels->GetData()) + row * stride + usedBytes, 0,
                        static_cast<std::size_t>(stride - usedBytes));
    return pixels;
}

NodeHolder<TImagePlane> MakePlane(TDataType datatype, std::int32_t width, std::int32_t height,
                                  NodeHolder<TBuffer> pixels) {
    NodeHolder<TImagePlane> plane(new TImagePlane);
    std::size_t records = 0;
    if (!TableRecords(width, height, records))
        throw std::bad_alloc();
    plane->Allocate(records * sizeof(VPAEntry));
    plane->Datatype = datatype;
    Adopt(*plane, std::move(pixels));
    return plane;
}

std::intptr_t PaddedToFour(std::intptr_t bytes) {
    return (bytes + 3) & ~std::intptr_t{3};
}

/// The table of a bitmap's plane that begins firstByte behind the start of each pixel. In the bottom-up case the
/// offset of the last row in memory stands in the columns, and the rows count down from 0.
void WriteBitmapTable(VPAEntry *table, const BitmapGeometry &geometry, std::intptr_t firstByte) {
    const std::intptr_t start = geometry.BottomUp ? (geometry.Height - 1) * geometry.Stride : 0;
    WriteLinearTable(table, geometry.Width, geometry.Height, {start + firstByte, geometry.PixelBytes},
                     {0, geometry.BottomUp ? -geometry.Stride : geometry.Stride});
}

} // namespace

bool GeometryOf(const TBitmapInfoHeader &header, BitmapGeometry &geometry) {
    const bool known = header.biBitCount == 8 || header.biBitCount == 24 || header.biBitCount == 32;
    if (!known || header.biWidth < 1 || header.biHeight == 0 ||
        header.biHeight == std::numeric_limits<std::int32_t>::min())
        return false;
    const std::intptr_t pixelBytes = header.biBitCount / 8;
    geometry = {header.biWidth, header.biHeight < 0 ? -header.biHeight : header.biHeight, header.biHeight > 0,
                pixelBytes, PaddedToFour(pixelBytes * header.biWidth)};
    return true;
}

NodeHolder<TSimpleDIB> BuildBitmap(NodeHolder<TDIBInfo> info) {
    NodeHolder<TSimpleDIB> root(new TSimpleDIB);
    BitmapGeometry geometry = {};
    if (!GeometryOf(info->Header(), geometry))
        return root;
    NodeHolder<TBuffer> pixels = MakePixels(geometry.Width * geometry.PixelBytes, geometry.Stride, geometry.Height);
    NodeHolder<TSList> list(new TSList);
    const std::intptr_t planes = geometry.PixelBytes == 1 ? 1 : 3;
    for (std::intptr_t number = 0; number < planes; ++number) {
        NodeHolder<TImagePlane> plane =
            MakePlane(EightBits, geometry.Width, geometry.Height, Persistence::ShareNode(pixels));
        WriteBitmapTable(plane->Table(), geometry, planes - 1 - number);
        Adopt(*list, std::move(plane));
    }
    Adopt(*root, std::move(list));
    root->SetSize(geometry.Width, geometry.Height);
    root->SetPixelBuffer(pixels.Get());
    Adopt(*root, std::move(info));
    return root;
}

NodeHolder<TImageObject> BuildSeparatePlanes(const TreeForm &form) {
    NodeHolder<TImageObject> root(new TImageObject);
    NodeHolder<TSList> list(new TSList);
    const BitmapGeometry geometry = {form.Width, form.Height, true, 1, PaddedToFour(form.Width)};
    for (std::intptr_t number = 0; number < form.Planes; ++number) {
        NodeHolder<TImagePlane> plane =
            MakePlane(EightBits, form.Width, form.Height, MakePixels(form.Width, geometry.Stride, form.Height));
        WriteBitmapTable(plane->Table(), geometry, 0);
        Adopt(*list, std::move(plane));
    }
    Adopt(*root, std::move(list));
    root->SetSize(form.Width, form.Height);
    return root;
}

NodeHolder<TImageObject> BuildTypedPlanes(const TreeForm &form, TDataType datatype, std::intptr_t interlace) {
    NodeHolder<TImageObject> root(new TImageObject);
    NodeHolder<TSList> list(new TSList);
    const std::intptr_t pixelBytes = (BitsOf(datatype) + 7) / 8;
    const std::intptr_t stride = pixelBytes * form.Width;
    for (std::intptr_t number = 0; number < form.Planes; ++number) {
        NodeHolder<TImagePlane> plane =
            MakePlane(datatype, form.Width, form.Height, MakePixels(stride, stride, form.Height));
        WriteTypedTable(plane->Table(), form.Width, form.Height, pixelBytes, stride, interlace);
        Adopt(*list, std::move(plane));
    }
    Adopt(*root, std::move(list));
    root->SetSize(form.Width, form.Height);
    return root;
}

void WriteTypedTable(VPAEntry *table, std::int32_t width, std::int32_t height, std::intptr_t xStep,
                     std::intptr_t yStep, std::intptr_t interlace) {
    WriteLinearTable(table, width, height, {0, xStep}, {0, yStep});
    if (interlace == 0)
        return;
    for (std::int32_t row = 0; row < height; ++row)
        table[row].YEntry = row / 2 * yStep + row % 2 * interlace;
    WriteGuardEntries(table, width, height);
}

} // namespace Image
