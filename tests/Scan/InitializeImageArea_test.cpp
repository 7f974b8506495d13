// Fills of areas: every value rule by hand, then random areas and values in all types and layouts against the model,
// with every byte of memory looked at.
#include "AreaOperations.h"
#include "Scan/AreaModel.h"

namespace {

using namespace TestSupport;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr TArea OnePixel{1, 1, 1, 1, 1, 1};

/// What is stored in a pixel of a type when it is filled, as the low bytes of a word.
template <class Value>
std::uint64_t Stored(TDataType type, Value value) {
    const auto image = FakeImage::Planar(3, 3, 1, type);
    ClearReports();
    if constexpr (std::is_same_v<Value, double>)
        EXPECT_EQ(InitializeImageAreaEx(image->Handle(), 0, value, OnePixel), 1);
    else
        EXPECT_EQ(InitializeImageArea(image->Handle(), 0, value, OnePixel), 1);
    ExpectNoReport();
    std::uint64_t word = 0;
    std::memcpy(&word, image->PixelAddress(0, 1, 1), PixelSize(type));
    return word;
}
template <class Value>
float StoredFloat(Value value) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(Stored(0x220, value)));
}
template <class Value>
double StoredDouble(Value value) {
    return std::bit_cast<double>(Stored(0x240, value));
}

constexpr std::int64_t WholeValues[] = {0,
                                        1,
                                        -1,
                                        127,
                                        128,
                                        255,
                                        256,
                                        -128,
                                        -129,
                                        65535,
                                        65537,
                                        -32769,
                                        2147483647,
                                        -2147483648,
                                        4294967295,
                                        4294967297,
                                        9007199254740991,
                                        9007199254740993,
                                        -9007199254740993,
                                        Highest,
                                        Highest - 512,
                                        Highest - 1023,
                                        Lowest,
                                        Lowest + 1};
constexpr double RealValues[] = {
    0.0,           -0.0,   0.5,        -0.5,         0.99999,       1.5,           -1.5,         44.4,
    300.7,         -300.7, 65537.9,    2147483647.5, 2147483648.0,  -2147483648.9, 4294967295.9, 4294967297.0,
    -4294967295.0, 1e10,   0x1p53 + 2, 0x1p63,       0x1p63 + 4096, -0x1p63,       0x1p64,       1e19,
    1e300,         -1e300, NaN,        Infinity,     -Infinity,     1e-310,        16777217.0,   0.1};

} // namespace

TEST(InitializeImageArea, StoresTheLowBitsInWholePixels) {
    EXPECT_EQ(Stored(0x10, std::int64_t{65537}), 1u);
    EXPECT_EQ(Stored(0x110, std::int64_t{65537}), 1u);
    EXPECT_EQ(Stored(0x8, std::int64_t{257}), 1u);
    EXPECT_EQ(Stored(0x108, std::int64_t{-1}), 0xFFu);
    EXPECT_EQ(Stored(0x8, std::int64_t{-2}), 0xFEu);
    EXPECT_EQ(Stored(0x20, std::int64_t{0x123456789}), 0x23456789u);
    EXPECT_EQ(Stored(0x120, std::int64_t{0x1FFFFFFFF}), 0xFFFFFFFFu);
}

TEST(InitializeImageArea, StoresWide64BitValuesRoundedToADouble) {
    constexpr std::int64_t odd = (std::int64_t{1} << 53) + 1;
    for (const TDataType type : {0x40u, 0x140u}) {
        EXPECT_EQ(Stored(type, odd), std::uint64_t{1} << 53);
        EXPECT_EQ(Stored(type, odd + 2), (std::uint64_t{1} << 53) + 4);
        EXPECT_EQ(Stored(type, odd - 2), (std::uint64_t{1} << 53) - 1);
        EXPECT_EQ(Stored(type, std::int64_t{-5}), static_cast<std::uint64_t>(-5));
        EXPECT_EQ(Stored(type, Lowest), std::uint64_t{1} << 63);
        EXPECT_EQ(Stored(type, Highest), std::uint64_t{1} << 63) << "rounded to 2^63, all types store its bits";
    }
}

TEST(InitializeImageArea, StoresFloatsByWayOfADouble) {
    EXPECT_EQ(StoredFloat(std::int64_t{-7}), -7.0f);
    EXPECT_EQ(StoredDouble(std::int64_t{123456789}), 123456789.0);
    EXPECT_EQ(StoredDouble((std::int64_t{1} << 53) + 1), 0x1p53);
    // Just above the middle of two floats, and exactly there once it is a double.
    EXPECT_EQ(StoredFloat((std::int64_t{1} << 60) + (std::int64_t{1} << 36) + 1), 0x1p60f);
}

TEST(InitializeImageAreaEx, DropsTheFractionAndThenTheUpperBits) {
    EXPECT_EQ(Stored(0x8, 300.7), 44u);
    EXPECT_EQ(Stored(0x108, 300.7), 44u);
    EXPECT_EQ(Stored(0x8, -1.5), 255u);
    EXPECT_EQ(Stored(0x108, -1.5), 255u);
    EXPECT_EQ(Stored(0x10, -1.5), 0xFFFFu);
    EXPECT_EQ(Stored(0x110, 65537.9), 1u);
    EXPECT_EQ(Stored(0x120, -1.5), 0xFFFFFFFFu);
    EXPECT_EQ(Stored(0x20, 4294967297.9), 1u);
    EXPECT_EQ(Stored(0x20, -1.5), 0xFFFFFFFFu);
    EXPECT_EQ(Stored(0x140, -1.5), ~std::uint64_t{0});
    EXPECT_EQ(Stored(0x40, -1.5), ~std::uint64_t{0});
}

TEST(InitializeImageAreaEx, Holds64BitsFrom2To63On) {
    EXPECT_EQ(Stored(0x40, 0x1p63), std::uint64_t{1} << 63);
    EXPECT_EQ(Stored(0x40, 0x1p63 + 4096), (std::uint64_t{1} << 63) + 4096);
    EXPECT_EQ(Stored(0x40, 0x1p64 - 2048), ~std::uint64_t{0} - 2047);
    EXPECT_EQ(Stored(0x40, 0x1p63 - 1024), (std::uint64_t{1} << 63) - 1024);
    EXPECT_EQ(Stored(0x140, -0x1p63), std::uint64_t{1} << 63);
}

TEST(InitializeImageAreaEx, StoresTheLowBitsOfTheLowestNumberForWhatDoesNotFit) {
    for (const double value : {NaN, Infinity, -Infinity, 1e300, -1e300, 1e20}) {
        for (const TDataType type : {0x8u, 0x108u, 0x10u, 0x110u, 0x20u})
            EXPECT_EQ(Stored(type, value), 0u) << type << " " << value;
        EXPECT_EQ(Stored(0x120, value), 0x80000000u);
        for (const TDataType type : {0x40u, 0x140u})
            EXPECT_EQ(Stored(type, value), std::uint64_t{1} << 63) << type << " " << value;
    }
    EXPECT_EQ(Stored(0x120, 2147483648.0), 0x80000000u);
    EXPECT_EQ(Stored(0x10, 4294967297.0), 0u) << "beyond 32 bits, in which it is converted";
}

TEST(InitializeImageAreaEx, StoresFloatsNarrowedAndDoublesAsTheyAre) {
    EXPECT_EQ(StoredFloat(0.1), 0.1f);
    EXPECT_EQ(StoredFloat(16777217.0), 16777216.0f);
    EXPECT_EQ(StoredFloat(1e300), std::numeric_limits<float>::infinity());
    EXPECT_EQ(StoredFloat(1e-310), 0.0f);
    EXPECT_TRUE(std::isnan(StoredFloat(NaN)));
    EXPECT_EQ(Stored(0x240, 0.1), std::bit_cast<std::uint64_t>(0.1));
    EXPECT_EQ(Stored(0x240, -0.0), std::uint64_t{1} << 63);
    EXPECT_EQ(Stored(0x240, NaN), std::bit_cast<std::uint64_t>(NaN));
}

TEST(InitializeImageArea, FollowsTheRulesForEachValueAndType) {
    for (const TDataType type : TenPixelTypes) {
        for (const std::int64_t value : WholeValues)
            EXPECT_EQ(LowBytes(Stored(type, value), PixelSize(type)), StoredBytes(type, value))
                << type << " " << value;
        for (const double value : RealValues)
            EXPECT_EQ(LowBytes(Stored(type, value), PixelSize(type)), StoredBytes(type, value))
                << type << " " << value;
    }
}

TEST(InitializeImageArea, FillsAreasOfAllKindsInAllTypesAndLayouts) {
    AreaRandom random(1);
    for (const TDataType type : TenPixelTypes) {
        const TwinImages images(13, 11, 2, type, type);
        for (std::size_t i = 0; i < images.Count(); ++i)
            for (int round = 0; round < 40; ++round) {
                const TArea area = random.Area(13, 11);
                SCOPED_TRACE(images.Images[i].Name + " of type " + std::to_string(type) + ", area " + Told(area));
                const std::intptr_t plane = random.Draw(0, 1);
                if (random.OneIn(2)) {
                    const std::int64_t value =
                        random.OneIn(3) ? random.Draw(Lowest / 4, Highest / 4) : random.Draw(-300, 300);
                    ASSERT_EQ(InitializeImageArea(images.Image(i), plane, value, area), 1);
                    FillByModel(images.Twin(i), plane, area, StoredBytes(type, value));
                } else {
                    const double value = RealValues[random.Draw(0, std::ssize(RealValues) - 1)];
                    ASSERT_EQ(InitializeImageAreaEx(images.Image(i), plane, value, area), 1);
                    FillByModel(images.Twin(i), plane, area, StoredBytes(type, value));
                }
                ASSERT_TRUE(images.AreEqual(i));
            }
    }
}

TEST(InitializeImageArea, FillsLargeAreasInAllTypesAndLayouts) {
    constexpr TArea areas[] = {{0, 0, 299, 0, 0, 40},    {3, 2, 280, 2, 3, 30},   {150, 2, 280, 20, 10, 39},
                               {290, 38, 5, 38, 290, 1}, {20, 0, 20, 40, 200, 0}, {-20, 5, 400, 30, 0, 60},
                               {0, 20, 299, 20, 0, 20},  {1, 1, 299, 40, -60, 9}};
    for (const TDataType type : TenPixelTypes) {
        const TwinImages images(300, 41, 2, type, type);
        for (std::size_t i = 0; i < images.Count(); ++i) {
            std::int64_t value = 1234567890123;
            for (const TArea &area : areas) {
                ASSERT_EQ(InitializeImageArea(images.Image(i), 1, ++value, area), 1);
                FillByModel(images.Twin(i), 1, area, StoredBytes(type, value));
            }
            ASSERT_TRUE(images.AreEqual(i)) << images.Images[i].Name << " of type " << type;
        }
    }
}
