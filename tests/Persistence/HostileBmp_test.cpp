// Bitmap files that lie, each named after the rule it breaks. Each ends in a null handle or in a whole image whose
// every pixel can be read; which of the two is told for each, with the size of the image.
#include "Persistence/BmpFiles.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr std::int32_t Lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Highest = std::numeric_limits<std::int32_t>::max();
constexpr std::uint32_t AllOnes = 0xFFFFFFFFu;

struct HostileFile {
    std::string Name;
    FileBytes Bytes;
    std::optional<ImageSize> Shown; ///< nothing: a null handle
};

/// A good file of 24 bits, 7 x 5 pixels, spoilt.
FileBytes Spoilt(const std::function<void(BmpFile &)> &spoil, int bits = 24) {
    BmpFile file = MakeBmp(bits, 7, 5);
    spoil(file);
    return file.Bytes();
}

FileBytes Cut(FileBytes bytes, std::size_t length) {
    bytes.resize(length);
    return bytes;
}

FileBytes Good(int bits = 24) {
    return MakeBmp(bits, 7, 5).Bytes();
}

std::vector<HostileFile> CutFiles() {
    const std::size_t whole = Good().size();
    const std::size_t paletteEnd = 54 + 1024;
    const FileBytes masked = Spoilt([](BmpFile &file) { file.SetMasks(0xFF0000u, 0xFF00u, 0xFFu); }, 32);
    return {
        {"EmptyFile", {}, {}},
        {"OneByteOnly", {'B'}, {}},
        {"SignatureOnly", {'B', 'M'}, {}},
        {"FileHeaderCutByOneByte", Cut(Good(), 13), {}},
        {"NothingBehindTheFileHeader", Cut(Good(), 14), {}},
        {"InfoHeaderCutByOneByte", Cut(Good(), 53), {}},
        {"NothingBehindTheHeaders", Cut(Good(), 54), {}},
        {"NothingBehindTheHeadersOf8Bits", Cut(Good(8), 54), {}},
        {"MasksMissing", Cut(masked, 54), {}},
        {"MasksCutByOneByte", Cut(masked, 54 + 11), {}},
        {"NothingBehindTheMasks", Cut(masked, 54 + 12), {}},
        {"PaletteCutByOneByte", Cut(Good(8), paletteEnd - 1), {}},
        {"NothingBehindThePalette", Cut(Good(8), paletteEnd), {}},
        {"PixelsCutByOneByte", Cut(Good(), whole - 1), {}},
        {"PixelsCutByThePaddingOfTheLastRow", Cut(Good(), whole - 3), {}},
        {"PixelsCutByOneRow", Cut(Good(), whole - 24), {}},
        {"PixelsOf8BitsCutByOneByte", Cut(Good(8), paletteEnd + 39), {}},
        {"PixelsOf32BitsCutByOneByte", Cut(Good(32), 54 + 139), {}},
        {"OnePixelOnly", Cut(Good(), 57), {}},
    };
}

std::vector<HostileFile> WrongSignatures() {
    std::vector<HostileFile> files;
    for (const auto &[name, word] : {std::pair{"SignatureBA", 0x4142},
                                     {"SignatureSwapped", 0x424D},
                                     {"SignatureInLowerCase", 0x6D62},
                                     {"SignatureZero", 0},
                                     {"SignatureOfPng", 0x5089}})
        files.push_back(
            {name, Spoilt([word = word](BmpFile &file) { file.bfType = static_cast<std::uint16_t>(word); }), {}});
    return files;
}

struct WrongSize {
    const char *Name;
    std::uint16_t Bits;
    std::int32_t Width;
    std::int32_t Height;
};
// Products in 32 bits: 65536 x 65536, 0x20000000 x 8, 0x40000000 x 4 bytes and 0x55555556 x 3 bytes come to 0 or
// little more; 2147483647 x 2147483647 pixels of 4 bytes come to little in 64 bits.
constexpr WrongSize WrongSizes[] = {
    {"WidthZero", 24, 0, 5},
    {"WidthMinusOne", 24, -1, 5},
    {"WidthNegative", 24, -7, 5},
    {"WidthNegativeAndHeightNegative", 24, -7, -5},
    {"WidthLowest", 24, Lowest, 5},
    {"WidthHighest", 24, Highest, 5},
    {"WidthHighestOf8Bits", 8, Highest, 1},
    {"WidthHighestOf32Bits", 32, Highest, 1},
    {"WidthWhoseBitsOverflow32Bits", 8, 0x20000000, 1},
    {"WidthWhoseBytesOverflow32Bits", 32, 0x40000000, 1},
    {"WidthWhoseBytesOfThreeOverflow32Bits", 24, 0x55555556, 1},
    {"WidthWhoseBitsOfThreeOverflow32Bits", 24, 0x0AAAAAAB, 1},
    {"WidthOneWordMore", 24, 9, 5},
    {"HeightZero", 24, 7, 0},
    {"HeightZeroOf8Bits", 8, 7, 0},
    {"HeightLowest", 24, 7, Lowest},
    {"HeightHighest", 24, 7, Highest},
    {"HeightMinusHighest", 24, 7, -Highest},
    {"HeightOneMore", 24, 7, 6},
    {"HeightOneMoreWithTheFirstRowFirst", 24, 7, -6},
    {"SizeWhoseProductIsZeroIn32Bits", 8, 65536, 65536},
    {"SizeWhoseProductIsZeroIn32BitsWithTheFirstRowFirst", 8, 65536, -65536},
    {"SizeWhoseProductIsSmallIn32Bits", 32, 0x8001, 0x8000},
    {"SizeHighest", 32, Highest, Highest},
    {"SizeHighestWithTheFirstRowFirst", 32, Highest, -Highest},
    {"SizeHighestOf24Bits", 24, Highest, Highest},
    {"SizeHighestOf8Bits", 8, Highest, Highest},
    {"SizeWhosePixelsAreZeroIn64Bits", 32, 0x40000000, Highest},
    {"WidthZeroAndHeightZero", 24, 0, 0},
    {"WidthLowestAndHeightLowest", 24, Lowest, Lowest},
};

std::vector<HostileFile> WrongSizeFiles() {
    std::vector<HostileFile> files;
    for (const WrongSize &wrong : WrongSizes)
        files.push_back({wrong.Name,
                         Spoilt(
                             [&wrong](BmpFile &file) {
                                 file.biWidth = wrong.Width;
                                 file.biHeight = wrong.Height;
                             },
                             wrong.Bits),
                         {}});
    return files;
}

std::vector<HostileFile> WrongKinds() {
    std::vector<HostileFile> files;
    for (const int bits : {0, 1, 2, 4, 5, 12, 16, 23, 25, 33, 40, 48, 64, 128, 255, 256 + 8, 256 + 24, 0x8018, 65535})
        files.push_back({"BitCount" + std::to_string(bits),
                         Spoilt([bits](BmpFile &file) { file.biBitCount = static_cast<std::uint16_t>(bits); }),
                         {}});
    for (const int planes : {0, 2, 3, 256 + 1, 65535})
        files.push_back({"Planes" + std::to_string(planes),
                         Spoilt([planes](BmpFile &file) { file.biPlanes = static_cast<std::uint16_t>(planes); }),
                         {}});
    for (const int bits : {8, 24, 32})
        for (const std::uint32_t compression : {1u, 2u, 3u, 4u, 5u, 6u, 11u, 256u, 0x80000000u, AllOnes})
            files.push_back({"Compression" + std::to_string(compression) + "With" + std::to_string(bits) + "Bits",
                             Spoilt([compression](BmpFile &file) { file.biCompression = compression; }, bits),
                             {}});
    struct Masks {
        const char *Name;
        std::uint32_t Red, Green, Blue;
    };
    for (const Masks &masks : {Masks{"MasksZero", 0, 0, 0}, Masks{"MasksOfSwappedBytes", 0xFFu, 0xFF00u, 0xFF0000u},
                               Masks{"MasksOf16Bits", 0xF800u, 0x07E0u, 0x001Fu},
                               Masks{"MasksShiftedByOneByte", 0xFF000000u, 0xFF0000u, 0xFF00u},
                               Masks{"MasksOverlapping", 0xFFFFFFu, 0xFFFFFFu, 0xFFFFFFu},
                               Masks{"MaskOfRedShort", 0xFE0000u, 0x00FF00u, 0x0000FFu},
                               Masks{"MaskOfGreenShort", 0xFF0000u, 0x00FE00u, 0x0000FFu},
                               Masks{"MaskOfBlueShort", 0xFF0000u, 0x00FF00u, 0x0000FEu}})
        files.push_back({masks.Name,
                         Spoilt([&masks](BmpFile &file) { file.SetMasks(masks.Red, masks.Green, masks.Blue); }, 32),
                         {}});
    files.push_back(
        {"MasksWith24Bits", Spoilt([](BmpFile &file) { file.SetMasks(0xFF0000u, 0x00FF00u, 0x0000FFu); }), {}});
    return files;
}

std::vector<HostileFile> WrongOffsets() {
    const auto whole = static_cast<std::uint32_t>(Good().size());
    std::vector<HostileFile> files;
    for (const auto &[name, offset] : {std::pair{"PixelOffsetOneByteLate", 55u},
                                       {"PixelOffsetAtTheLastByte", whole - 1},
                                       {"PixelOffsetAtTheEnd", whole},
                                       {"PixelOffsetBehindTheEnd", whole + 1},
                                       {"PixelOffsetSigned", 0x80000000u},
                                       {"PixelOffsetHighestSigned", 0x7FFFFFFFu},
                                       {"PixelOffsetHighest", AllOnes},
                                       {"PixelOffsetWhoseEndOverflows", AllOnes - whole + 1}})
        files.push_back({name, Spoilt([offset = offset](BmpFile &file) { file.bfOffBits = offset; }), {}});
    for (const std::uint32_t offset : {0u, 1u, 14u, 53u})
        files.push_back({"PixelOffsetInsideTheHeadersAt" + std::to_string(offset),
                         Spoilt([offset](BmpFile &file) { file.bfOffBits = offset; }), ImageSize{3, 7, 5}});
    files.push_back(
        {"PixelOffsetInsideThePalette", Spoilt([](BmpFile &file) { file.bfOffBits = 60; }, 8), ImageSize{1, 7, 5}});
    return files;
}

/// Fields that are not believed, so that the file shows what it shows without them.
std::vector<HostileFile> FieldsWithoutInfluence() {
    struct Field {
        const char *Name;
        std::uint32_t BmpFile::*Member;
        std::uint32_t Value;
    };
    std::vector<HostileFile> files;
    for (const Field &field :
         {Field{"TotalSizeZero", &BmpFile::bfSize, 0}, Field{"TotalSizeOne", &BmpFile::bfSize, 1},
          Field{"TotalSizeBelowThePixelOffset", &BmpFile::bfSize, 20},
          Field{"TotalSizeOfTheHeaders", &BmpFile::bfSize, 54}, Field{"TotalSizeOneMore", &BmpFile::bfSize, 54 + 121},
          Field{"TotalSizeSigned", &BmpFile::bfSize, 0x80000000u},
          Field{"TotalSizeHighest", &BmpFile::bfSize, AllOnes}, Field{"HeaderSizeZero", &BmpFile::biSize, 0},
          Field{"HeaderSizeOfTheOldestHeader", &BmpFile::biSize, 12},
          Field{"HeaderSizeHighest", &BmpFile::biSize, AllOnes}, Field{"ImageSizeOne", &BmpFile::biSizeImage, 1},
          Field{"ImageSizeHighest", &BmpFile::biSizeImage, AllOnes}, Field{"ColorsUsedOne", &BmpFile::biClrUsed, 1},
          Field{"ColorsUsed257", &BmpFile::biClrUsed, 257}, Field{"ColorsUsedHighest", &BmpFile::biClrUsed, AllOnes},
          Field{"ColorsImportantHighest", &BmpFile::biClrImportant, AllOnes}})
        for (const int bits : {8, 24})
            files.push_back({field.Name + ("With" + std::to_string(bits) + "Bits"),
                             Spoilt([&field](BmpFile &file) { file.*field.Member = field.Value; }, bits),
                             ImageSize{bits == 8 ? 1 : 3, 7, 5}});
    files.push_back({"ReservedFieldsSet", Spoilt([](BmpFile &file) { file.bfReserved1 = file.bfReserved2 = 0xFFFF; }),
                     ImageSize{3, 7, 5}});
    files.push_back({"ResolutionLowest",
                     Spoilt([](BmpFile &file) { file.biXPelsPerMeter = file.biYPelsPerMeter = Lowest; }),
                     ImageSize{3, 7, 5}});
    return files;
}

/// A file of 8 bits that ends before its palette does; the pixels stand where palette entries are looked for.
FileBytes WithoutPalette(std::int32_t width, std::int32_t height) {
    BmpFile file = MakeBmp(8, width, height);
    file.SetBehindHeaders({});
    std::fill(file.Pixels.begin(), file.Pixels.end(), std::uint8_t{0});
    return file.Bytes();
}

std::vector<HostileFile> OddButWhole() {
    FileBytes longer = Good();
    longer.resize(longer.size() + 100000, 0xAA);
    return {
        {"PaletteMissing", WithoutPalette(7, 5), ImageSize{1, 7, 5}},
        {"PaletteOfZerosBehindOneEntry",
         Spoilt(
             [](BmpFile &file) {
                 file.SetPalette([](std::uint8_t i) { return PaletteColor{i == 0, i == 0, i == 0}; });
             },
             8),
         ImageSize{1, 7, 5}},
        {"PaletteCutBehindTheBlueOfAnEntry",
         Cut(Spoilt([](BmpFile &file) { file.bfOffBits = 54; }, 8), 54 + 4 * 100 + 1), ImageSize{3, 7, 5}},
        {"SizeWithinThePaletteOfOneRow",
         Spoilt(
             [](BmpFile &file) {
                 file.bfOffBits = 54;
                 file.biWidth = 1064;
                 file.biHeight = -1;
             },
             8),
         ImageSize{1, 1064, 1}},
        {"BytesBehindThePixels", longer, ImageSize{3, 7, 5}},
        {"HeightOneLess", Spoilt([](BmpFile &file) { file.biHeight = 4; }), ImageSize{3, 7, 4}},
        {"WidthOneLess", Spoilt([](BmpFile &file) { file.biWidth = 6; }), ImageSize{3, 6, 5}},
        {"BitCountLess", Spoilt([](BmpFile &file) { file.biBitCount = 8; }), ImageSize{3, 7, 5}},
    };
}

std::vector<HostileFile> HostileFiles() {
    std::vector<HostileFile> files;
    for (const auto &group : {CutFiles(), WrongSignatures(), WrongSizeFiles(), WrongKinds(), WrongOffsets(),
                              FieldsWithoutInfluence(), OddButWhole()})
        files.insert(files.end(), group.begin(), group.end());
    return files;
}

class HostileBmp : public testing::TestWithParam<HostileFile> {};
void PrintTo(const HostileFile &file, std::ostream *out) {
    *out << file.Bytes.size() << " bytes";
}

TEST_P(HostileBmp, GivesANullHandleOrAWholeImage) {
    const Handle image = LoadBytes(GetParam().Bytes);
    ASSERT_EQ(static_cast<bool>(image), GetParam().Shown.has_value());
    if (image) {
        EXPECT_EQ(SizeOf(image.Get()), *GetParam().Shown);
        SumOfAllPixels(image.Get());
    }
}

INSTANTIATE_TEST_SUITE_P(Files, HostileBmp, testing::ValuesIn(HostileFiles()),
                         [](const auto &file) { return file.param.Name; });

/// Loads a file of random bytes in every field behind the signature; returns whether it shows an image.
bool ShowsAnImage(std::uint32_t seed) {
    std::mt19937 random(seed);
    BmpFile file = MakeBmp(std::array<std::uint16_t, 3>{8, 24, 32}[random() % 3], 7, random() % 2 ? 5 : -5, seed);
    FileBytes bytes = file.Bytes();
    for (int changes = static_cast<int>(random() % 4); changes >= 0; --changes)
        bytes[2 + random() % 60] = static_cast<std::uint8_t>(random() % 2 ? random() : random() % 9);
    bytes.resize(random() % 3 ? bytes.size() : random() % (bytes.size() + 1));
    const Handle image = LoadBytes(bytes);
    if (image)
        SumOfAllPixels(image.Get());
    return static_cast<bool>(image);
}

TEST(HostileBmpAtRandom, GivesNullHandlesAndWholeImages) {
    int images = 0;
    for (std::uint32_t seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        images += ShowsAnImage(seed) ? 1 : 0;
    }
    EXPECT_GT(images, 200);
    EXPECT_LT(images, 1800);
}

TEST(HostileBmpTable, HasAtLeastSixtyFilesOfDifferentNames) {
    std::vector<std::string> names;
    for (const HostileFile &file : HostileFiles())
        names.push_back(file.Name);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
    EXPECT_GE(names.size(), 60u);
}

TEST(HostileBmpPalette, ReadsMissingEntriesAsZero) {
    const BmpFile file = MakeBmp(8, 7, 5);
    FileBytes bytes = WithoutPalette(7, 5);
    const Handle image = LoadBytes(bytes);
    ASSERT_TRUE(image);
    ExpectPlanes(image.Get(), {PlaneBytes(35, 0)});
    bytes[54 + 4 * 7 + 1] = 200; // palette entry 7 has green only: colors; the pixels there show it nowhere
    const Handle colored = LoadBytes(bytes);
    ASSERT_TRUE(colored);
    EXPECT_EQ(SizeOf(colored.Get()), (ImageSize{3, 7, 5}));
    ExpectPlanes(colored.Get(), {PlaneBytes(35, 0), PlaneBytes(35, 0), PlaneBytes(35, 0)});
}

/// Makes a file of headers and then of zeros that take no room on disk. Only some file systems have such lengths.
bool MakeSparse(const TemporaryPath &path, std::uint16_t bits, std::int32_t width, std::int32_t height,
                std::uintmax_t length) {
    BmpFile file;
    file.biBitCount = bits;
    file.biWidth = width;
    file.biHeight = height;
    path.Write(file.Bytes());
    std::error_code error;
    std::filesystem::resize_file(path.String(), length, error);
    return !error;
}

TEST(HostileBmpSparse, GivesANullHandleForPixelsBeyondAllMemory) {
    if (!std::filesystem::is_directory("/dev/shm"))
        GTEST_SKIP() << "no memory file system";
    const TemporaryPath link("sparse.bmp");
    const TemporaryPath path("unused");
    const std::string sparse = "/dev/shm/" + std::filesystem::path(path.String()).filename().string();
    std::filesystem::create_symlink(sparse, link.String());
    for (const std::uint16_t bits : {std::uint16_t{8}, std::uint16_t{24}, std::uint16_t{32}}) {
        if (!MakeSparse(link, bits, Highest, 400000, std::uintmax_t{1} << 52)) {
            std::filesystem::remove(sparse);
            GTEST_SKIP() << "no files of this length here";
        }
        ClearReports();
        void *image = UntouchedPointer();
        EXPECT_FALSE(LoadImageFile(link.Get(), &image));
        EXPECT_EQ(image, nullptr);
        ExpectNoReport();
    }
    std::filesystem::remove(sparse);
}

} // namespace
