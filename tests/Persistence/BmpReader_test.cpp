// Good bitmap files: what each kind shows, and how its image stands in memory. Bad ones are in HostileBmp_test.cpp.
#include "ImageQueries.h"
#include "Persistence/BmpFiles.h"

namespace {

using namespace TestSupport;

constexpr std::int32_t Widths[] = {1, 2, 3, 4, 5, 7, 8, 64, 257};
constexpr std::int32_t Heights[] = {1, 2, 3, 17, -1, -2, -3, -17};

/// Expects constant steps of the tables, guard entries included.
void ExpectSteps(void *image, std::intptr_t pixelStep, std::intptr_t rowStep) {
    const ImageSize size = SizeOf(image);
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        const PlaneAccess access = AccessOf(image, plane);
        const std::intptr_t first = size.Planes == 1 ? 0 : 2 - plane;
        ExpectTable(
            access.Table, size.Width, size.Height, [=](std::intptr_t x) { return first + x * pixelStep; },
            [=](std::intptr_t y) { return y * rowStep; });
    }
}

/// Writes each size of a kind of file, loads it and compares all pixels.
void ExpectAllSizesShow(const std::function<BmpFile(std::int32_t, std::int32_t)> &make) {
    for (const std::int32_t width : Widths)
        for (const std::int32_t height : Heights) {
            SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
            const BmpFile file = make(width, height);
            const Handle image = LoadBytes(file.Bytes());
            ASSERT_TRUE(image);
            EXPECT_EQ(SizeOf(image.Get()).Width, width);
            EXPECT_EQ(SizeOf(image.Get()).Height, std::abs(height));
            ExpectPlanes(image.Get(), ShownPlanes(file));
            SumOfAllPixels(image.Get());
        }
}

TEST(BmpReader, ShowsEightBitsWithTheIdentityPaletteAsTheyStand) {
    ExpectAllSizesShow([](std::int32_t width, std::int32_t height) { return MakeBmp(8, width, height); });
}

TEST(BmpReader, MapsAPaletteOfGreysThroughItsRedComponent) {
    ExpectAllSizesShow([](std::int32_t width, std::int32_t height) {
        BmpFile file = MakeBmp(8, width, height);
        file.SetPalette([](std::uint8_t i) {
            const auto grey = static_cast<std::uint8_t>(255 - i / 2);
            return PaletteColor{grey, grey, grey};
        });
        return file;
    });
}

TEST(BmpReader, ShowsAnyOtherPaletteAsThreePlanes) {
    ExpectAllSizesShow([](std::int32_t width, std::int32_t height) {
        BmpFile file = MakeBmp(8, width, height);
        file.SetPalette([](std::uint8_t i) {
            return PaletteColor{static_cast<std::uint8_t>(i * 7), static_cast<std::uint8_t>(i ^ 0x55), i};
        });
        return file;
    });
}

TEST(BmpReader, Shows24BitsAsRedGreenBlue) {
    ExpectAllSizesShow([](std::int32_t width, std::int32_t height) { return MakeBmp(24, width, height); });
}

TEST(BmpReader, Shows32BitsAsRedGreenBlue) {
    ExpectAllSizesShow([](std::int32_t width, std::int32_t height) { return MakeBmp(32, width, height); });
}

TEST(BmpReader, ReadsLargeImagesOfEveryKindWhole) {
    for (const int bits : {8, 24, 32})
        for (const std::int32_t height : {611, -611}) {
            const BmpFile file = MakeBmp(bits, 1021, height, 5);
            const Handle image = LoadBytes(file.Bytes());
            ASSERT_TRUE(image);
            ExpectPlanes(image.Get(), ShownPlanes(file));
        }
}

TEST(BmpReader, MapsFilesLargerThanOnePortionOfRows) {
    for (const int colors : {1, 3})
        for (const std::int32_t height : {611, -611}) {
            BmpFile file = MakeBmp(8, 1021, height, 6);
            file.SetPalette([colors](std::uint8_t i) {
                const auto inverse = static_cast<std::uint8_t>(255 - i);
                return PaletteColor{inverse, colors == 1 ? inverse : i, inverse};
            });
            const Handle image = LoadBytes(file.Bytes());
            ASSERT_TRUE(image);
            ExpectPlanes(image.Get(), ShownPlanes(file));
        }
}

TEST(BmpReader, MapsRowsLongerThanOnePortion) {
    for (const std::int32_t height : {3, -3}) {
        BmpFile file = MakeBmp(8, 300001, height, 7);
        file.SetPalette([](std::uint8_t i) { return PaletteColor{i, 0, 0}; });
        const Handle image = LoadBytes(file.Bytes());
        ASSERT_TRUE(image);
        ExpectPlanes(image.Get(), ShownPlanes(file));
    }
}

TEST(BmpReader, KeepsTheFilesRowsPaddedAndInTheirOrder) {
    ExpectSteps(LoadBytes(MakeBmp(8, 5, 3).Bytes()).Get(), 1, -8);
    ExpectSteps(LoadBytes(MakeBmp(8, 5, -3).Bytes()).Get(), 1, 8);
    ExpectSteps(LoadBytes(MakeBmp(24, 3, 3).Bytes()).Get(), 3, -12);
    ExpectSteps(LoadBytes(MakeBmp(24, 3, -3).Bytes()).Get(), 3, 12);
    ExpectSteps(LoadBytes(MakeBmp(32, 3, 3).Bytes()).Get(), 4, -12);
    ExpectSteps(LoadBytes(MakeBmp(32, 3, -3).Bytes()).Get(), 4, 12);
}

TEST(BmpReader, MakesAMappedGreyImageUnpaddedWithTheFirstRowFirst) {
    for (const std::int32_t height : {3, -3}) {
        BmpFile file = MakeBmp(8, 5, height);
        file.SetPalette([](std::uint8_t) { return PaletteColor{9, 9, 9}; });
        ExpectSteps(LoadBytes(file.Bytes()).Get(), 1, 5);
    }
}

TEST(BmpReader, MakesPalettePixelsOfFourBytesWithTheFirstRowFirst) {
    for (const std::int32_t height : {3, -3}) {
        BmpFile file = MakeBmp(8, 5, height);
        file.SetPalette([](std::uint8_t i) { return PaletteColor{i, i, 0}; }, 0x77);
        const Handle image = LoadBytes(file.Bytes());
        ASSERT_TRUE(image);
        ExpectSteps(image.Get(), 4, 20);
        EXPECT_EQ(AccessOf(image.Get(), 2).At(4, 2)[3], 0x77) << "a pixel is the whole palette entry";
    }
}

TEST(BmpReader, LooksAtNoReservedPaletteByte) {
    BmpFile file = MakeBmp(8, 5, 3);
    file.SetPalette([](std::uint8_t i) { return PaletteColor{i, i, i}; }, 0xFF);
    ExpectSteps(LoadBytes(file.Bytes()).Get(), 1, -8);
}

TEST(BmpReader, TellsThePaletteOfOneWrongGreyFromTheIdentity) {
    for (int wrong = 0; wrong < 256; ++wrong) {
        BmpFile file = MakeBmp(8, 256, 1);
        file.SetPalette([wrong](std::uint8_t i) {
            const auto grey = static_cast<std::uint8_t>(i == wrong ? i + 1 : i);
            return PaletteColor{grey, grey, grey};
        });
        std::iota(file.Pixels.begin(), file.Pixels.end(), std::uint8_t{0});
        const Handle image = LoadBytes(file.Bytes());
        ASSERT_TRUE(image);
        ExpectPlanes(image.Get(), ShownPlanes(file));
    }
}

TEST(BmpReader, TellsThePaletteOfOneColorFromGreys) {
    for (int colored = 0; colored < 256; ++colored) {
        BmpFile file = MakeBmp(8, 256, 1);
        file.SetPalette([colored](std::uint8_t i) {
            return PaletteColor{i, i, static_cast<std::uint8_t>(i == colored ? i + 1 : i)};
        });
        std::iota(file.Pixels.begin(), file.Pixels.end(), std::uint8_t{0});
        const Handle image = LoadBytes(file.Bytes());
        ASSERT_TRUE(image);
        EXPECT_EQ(SizeOf(image.Get()).Planes, 3);
        ExpectPlanes(image.Get(), ShownPlanes(file));
    }
}

TEST(BmpReader, LoadsAllPixelsWhenTheTotalSizeIsZeroOrTooSmall) {
    BmpFile file = MakeBmp(24, 7, 5);
    for (const std::uint32_t size : {0u, 1u, 53u, 54u, 60u, file.bfSize - 1}) {
        file.bfSize = size;
        const Handle image = LoadBytes(file.Bytes());
        ASSERT_TRUE(image) << size;
        ExpectPlanes(image.Get(), ShownPlanes(file));
    }
}

TEST(BmpReader, TakesATotalSizeAboveTheFileForTheFilesLength) {
    BmpFile file = MakeBmp(24, 7, 5);
    for (const std::uint32_t size : {file.bfSize + 1, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        file.bfSize = size;
        const Handle image = LoadBytes(file.Bytes());
        ASSERT_TRUE(image) << size;
        ExpectPlanes(image.Get(), ShownPlanes(file));
    }
}

TEST(BmpReader, ReadsPixelsWhereTheOffsetSays) {
    for (const int bits : {8, 24, 32}) {
        BmpFile file = MakeBmp(bits, 7, 5);
        const auto planes = ShownPlanes(file);
        file.BehindHeaders.resize(file.BehindHeaders.size() + 333, 0xAA);
        file.bfOffBits += 333;
        const Handle image = LoadBytes(file.Bytes());
        ASSERT_TRUE(image);
        ExpectPlanes(image.Get(), planes);
    }
}

TEST(BmpReader, TakesChannelMasksOfPlainBytesForUncompressed) {
    BmpFile file = MakeBmp(32, 7, 5);
    file.SetMasks(0xFF0000u, 0x00FF00u, 0x0000FFu);
    const Handle plain = LoadBytes(file.Bytes());
    ASSERT_TRUE(plain);
    ExpectPlanes(plain.Get(), ShownPlanes(file));
    file.SetMasks(0x12FF0000u, 0x3400FF00u, 0x560000FFu);
    const Handle upperByteSet = LoadBytes(file.Bytes());
    ASSERT_TRUE(upperByteSet);
    ExpectPlanes(upperByteSet.Get(), ShownPlanes(file));
}

TEST(BmpReader, GivesAFourBitFileANullHandleWithoutAReport) {
    BmpFile file = MakeBmp(24, 8, 8);
    file.biBitCount = 4;
    EXPECT_FALSE(LoadBytes(file.Bytes()));
}

TEST(BmpReader, MakesAnExternalImageWithOneReferenceAndTheDefaultCoordinates) {
    const Handle image = LoadBytes(MakeBmp(24, 7, 5).Bytes());
    ASSERT_TRUE(image);
    EXPECT_EQ(RefCount(image.Get()), 1u);
    EXPECT_TRUE(IsImage(image.Get()));
    EXPECT_FALSE(IsInterface(image.Get(), ORV_IID_IIMAGEDIB));
    TCoordinateMap map{};
    ASSERT_EQ(ImageInterface(image.Get())->GetCoordinateMap(&map), 0);
    EXPECT_TRUE(SameMap(map, IdentityMap));
}

TEST(BmpReader, LeavesNoFileOpen) {
    const std::ptrdiff_t before = OpenFileCount();
    const Handle good = LoadBytes(MakeBmp(8, 7, 5).Bytes());
    const Handle bad = LoadBytes({'B', 'M'});
    EXPECT_EQ(OpenFileCount(), before);
}

} // namespace
