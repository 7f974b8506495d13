// The bits of overlays: carried over by pieces, and cleared while copying, at each instruction set level, against the
// plain forms, byte for byte, whatever lies between the pixels.
#include "Image/KernelLevel.h"
#include "Scan/DataBits.h"
#include "Scan/OverlayBits.h"
#include "Scan/ThreeBytePixels.h"
#include "Support/TestLayouts.h"

namespace {

using namespace TestSupport;
using Image::PlaneView;
using Scan::ChooseDataBits;
using Scan::ChooseOverlay;
using Scan::CopyDataBits;
using Scan::CopyOverlayBits;
using Scan::DataBitsMethod;
using Scan::OverlayMethod;

constexpr TDataType Widths[] = {8, 16, 32, 64};

std::vector<PlaneView> ViewsOf(void *image) {
    const Image::vpat_analyzer analyzer(image);
    std::vector<PlaneView> views;
    for (std::intptr_t plane = 0; plane < analyzer.Planes(); ++plane)
        views.push_back(ViewOf(analyzer, plane));
    return views;
}

/// The whole memory of an image of the tests' own after write(view of plane 0), which starts from the same bytes each
/// time.
template <class Write>
std::vector<std::uint8_t> MemoryAfter(FakeImage &image, Write &&write) {
    const auto before = image.Pixels;
    write(ViewsOf(image.Handle())[0]);
    const auto after = image.Pixels;
    std::copy(before.begin(), before.end(), image.Pixels.begin()); // in place: the planes point there
    return after;
}

std::string Describe(const NamedImage &source, const NamedImage &target, Image::KernelLevel level) {
    return source.Name + " to " + target.Name + ", " + NameOf(level);
}

/// Calls visit(source, target) for images of all layouts with targets whose memory can be looked at.
template <class Visit>
void ForAllPairs(TDataType sourceType, TDataType targetType, std::intptr_t width, std::intptr_t height,
                 Visit &&visit) {
    const auto sources = MakeLayouts(width, height, 2, sourceType, 11);
    const auto targets = MakeLayouts(width, height, 2, targetType, 12);
    for (const NamedImage &source : sources)
        for (const NamedImage &target : targets)
            if (target.Fake != nullptr)
                visit(source, target);
}

void ExpectCarriedAlike(const NamedImage &source, const NamedImage &target) {
    const PlaneView from = ViewsOf(source.Get())[0];
    const auto plain =
        MemoryAfter(*target.Fake, [&](const PlaneView &to) { CopyOverlayBits(OverlayMethod::ByTables, from, to); });
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        const auto quick = MemoryAfter(
            *target.Fake, [&](const PlaneView &to) { CopyOverlayBits(ChooseOverlay(from, to), from, to); });
        ASSERT_EQ(quick, plain) << Describe(source, target, level);
    }
}

TEST(CopyOverlayBits, ByPiecesGivesThePlainBytesForAllWidthsAndLayouts) {
    for (const TDataType sourceType : Widths)
        for (const TDataType targetType : Widths)
            ForAllPairs(sourceType, targetType, 21, 3, ExpectCarriedAlike);
}

TEST(CopyOverlayBits, ByPiecesGivesThePlainBytesInRowsLongerThanAPiece) {
    for (const TDataType sourceType : {8u, 64u})
        for (const TDataType targetType : {8u, 64u})
            for (const std::intptr_t width : {1, 1023, 1025, 2050}) {
                const NamedImage source = MakeLayouts(width, 2, 2, sourceType, 3).front();
                const NamedImage target = MakeLayouts(width, 2, 2, targetType, 4)[4];
                ASSERT_NE(target.Fake, nullptr);
                ExpectCarriedAlike(source, target);
            }
}

TEST(CopyOverlayBits, PlainCopiesBitZeroOnly) {
    const auto source = FakeImage::Planar(3, 1, 1, 16);
    const auto target = FakeImage::Planar(3, 1, 1, 8);
    source->Pixels = {0x01, 0xFF, 0xFE, 0xFF, 0xFF, 0x00};
    target->Pixels = {0xF0, 0x0F, 0x80};
    CopyOverlayBits(OverlayMethod::ByTables, ViewsOf(source->Handle())[0], ViewsOf(target->Handle())[0]);
    EXPECT_EQ(target->Pixels, (std::vector<std::uint8_t>{0xF1, 0x0E, 0x81}));
}

TEST(CopyOverlayBits, SharedMemoryGoesPixelByPixel) {
    FakeImage image(4, 2, 16);
    const auto column = [](std::intptr_t i) { return i; };
    const auto row = [](std::intptr_t j) { return 4 * j; };
    image.AddPlane(image.Pixels.data(), 8, column, row);
    image.AddPlane(image.Pixels.data() + 7, 8, column, row); // shares the last pixel with plane 0
    image.AddPlane(image.Pixels.data() + 8, 8, column, row);
    const auto views = ViewsOf(image.Handle());
    EXPECT_EQ(ChooseOverlay(views[0], views[0]), OverlayMethod::ByTables);
    EXPECT_EQ(ChooseOverlay(views[0], views[1]), OverlayMethod::ByTables);
    EXPECT_EQ(ChooseOverlay(views[1], views[0]), OverlayMethod::ByTables);
    EXPECT_EQ(ChooseOverlay(views[0], views[2]), OverlayMethod::ByPieces);
}

TEST(CopyOverlayBits, ATargetThatShowsAPixelTwiceGoesPixelByPixel) {
    const auto source = FakeImage::Planar(4, 2, 1, 8);
    FakeImage target(4, 2, 8);
    target.AddPlane(
        target.Pixels.data(), 8, [](std::intptr_t i) { return i / 2; }, [](std::intptr_t j) { return 4 * j; });
    EXPECT_EQ(ChooseOverlay(ViewsOf(source->Handle())[0], ViewsOf(target.Handle())[0]), OverlayMethod::ByTables);
}

// ---- copies without the bit

void ExpectClearedAlike(const NamedImage &source, const NamedImage &target) {
    const PlaneView from = ViewsOf(source.Get())[0];
    const PlaneView view = ViewsOf(target.Get())[0];
    if (!view.HasDistinctPixels())
        return; // the promise is for fresh images, which have no pixel twice
    const auto plain =
        MemoryAfter(*target.Fake, [&](const PlaneView &to) { CopyDataBits(DataBitsMethod::ByTables, from, to); });
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        for (const DataBitsMethod method : {DataBitsMethod::CopyAndClear, ChooseDataBits(from, view)}) {
            const auto quick =
                MemoryAfter(*target.Fake, [&](const PlaneView &to) { CopyDataBits(method, from, to); });
            ASSERT_EQ(quick, plain) << Describe(source, target, level) << ", method " << static_cast<int>(method);
        }
    }
}

TEST(CopyDataBits, QuickMethodsGiveThePlainBytesForAllWidthsAndLayouts) {
    for (const TDataType type : Widths)
        for (const std::intptr_t width : {1, 5, 300})
            ForAllPairs(type, type, width, 3, ExpectClearedAlike);
}

TEST(CopyDataBits, PlainClearsBitZeroAndKeepsTheOthers) {
    const auto source = FakeImage::Planar(3, 1, 1, 16);
    const auto target = FakeImage::Planar(3, 1, 1, 16);
    source->Pixels = {0x01, 0xFF, 0xFE, 0x01, 0xFF, 0xFF};
    CopyDataBits(DataBitsMethod::ByTables, ViewsOf(source->Handle())[0], ViewsOf(target->Handle())[0]);
    EXPECT_EQ(target->Pixels, (std::vector<std::uint8_t>{0x00, 0xFF, 0xFE, 0x01, 0xFE, 0xFF}));
}

TEST(CopyDataBits, DenseRowsGoInOneGo) {
    const auto source = FakeImage::Planar(9, 2, 1, 16);
    const auto target = FakeImage::Planar(9, 2, 1, 16);
    const PlaneView from = ViewsOf(source->Handle())[0], to = ViewsOf(target->Handle())[0];
    EXPECT_EQ(ChooseDataBits(from, to), DataBitsMethod::Rows);
}

TEST(CopyDataBits, ThreeBytePixelsAreClearedInAllOfTheirBytes) {
    for (const NamedImage &source : MakeLayouts(70, 3, 3, 8, 21))
        for (const NamedImage &target : MakeLayouts(70, 3, 3, 8, 22)) {
            const auto sources = ViewsOf(source.Get()), targets = ViewsOf(target.Get());
            const auto from = Scan::AsThreeBytePixels(sources), to = Scan::AsThreeBytePixels(targets);
            if (!from || !to || target.Fake == nullptr || from->PlaneOfByte != to->PlaneOfByte)
                continue;
            CopyDataBits(ChooseDataBits(from->Pixels, to->Pixels), from->Pixels, to->Pixels);
            for (std::intptr_t plane = 0; plane < 3; ++plane) {
                auto expected = source.Content[static_cast<std::size_t>(plane)];
                for (std::uint8_t &byte : expected)
                    byte &= 0xFE;
                EXPECT_EQ(PixelBytes(target.Get(), plane), expected) << source.Name << " to " << target.Name;
            }
        }
}

} // namespace
