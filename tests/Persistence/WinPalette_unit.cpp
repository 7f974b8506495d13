// Logical palettes: the record behind the handle, byte by byte.
#include "Persistence/WinPalette.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <thread>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes RecordOf(Windows::TPaletteHandle handle, std::size_t entries) {
    const auto *const bytes = static_cast<const std::uint8_t *>(handle);
    return Bytes(bytes, bytes + 4 + 4 * entries);
}

Bytes Color(unsigned red, unsigned green, unsigned blue) {
    return {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(blue), 4};
}

TEST(WinPalette, LimitsItsCountTo1And65536) {
    for (const auto &[asked, count] : {std::pair<std::intptr_t, std::size_t>{0, 1},
                                       {-1, 1},
                                       {std::numeric_limits<std::intptr_t>::min(), 1},
                                       {1, 1},
                                       {2, 2},
                                       {65535, 65535},
                                       {65536, 65536},
                                       {65537, 65536},
                                       {std::numeric_limits<std::intptr_t>::max(), 65536}})
        EXPECT_EQ(Windows::CWinPalette(asked).GetCount(), count) << asked;
}

TEST(WinPalette, HandsOutARecordOfVersion0x300WithZeroEntries) {
    Windows::CWinPalette palette(3);
    EXPECT_EQ(RecordOf(palette.GetHandle(), 3), (Bytes{0, 3, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(WinPalette, CutsACountOf65536To16BitsInTheRecord) {
    Windows::CWinPalette palette(65536);
    const Bytes record = RecordOf(palette.GetHandle(), 65536);
    Bytes expected(4 + 4 * 65536, 0);
    expected[1] = 3;
    EXPECT_EQ(record, expected);
}

TEST(WinPalette, KeepsItsHandle) {
    Windows::CWinPalette palette(3);
    const Windows::TPaletteHandle first = palette.GetHandle();
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(palette.GetHandle(), first);
}

TEST(GrayPalette, HasTheGreysInOrder) {
    const Bytes record = RecordOf(Windows::CGrayPalette::Get(), 256);
    EXPECT_EQ(Bytes(record.begin(), record.begin() + 4), (Bytes{0, 3, 0, 1}));
    for (std::size_t i = 0; i < 256; ++i) {
        const auto grey = static_cast<std::uint8_t>(i);
        EXPECT_EQ(Bytes(&record[4 + 4 * i], &record[4 + 4 * i] + 4), (Bytes{grey, grey, grey, 0})) << i;
    }
}

TEST(ColorPalette, HasThreeBitsOfRedAndGreenAndTwoOfBlue) {
    const Bytes record = RecordOf(Windows::CColorPalette::Get(), 256);
    EXPECT_EQ(Bytes(record.begin(), record.begin() + 4), (Bytes{0, 3, 0, 1}));
    std::size_t i = 0;
    for (const unsigned blue : {0u, 64u, 128u, 192u})
        for (const unsigned green : {0u, 32u, 64u, 96u, 128u, 160u, 192u, 224u})
            for (const unsigned red : {0u, 32u, 64u, 96u, 128u, 160u, 192u, 224u}) {
                EXPECT_EQ(Bytes(&record[4 + 4 * i], &record[4 + 4 * i] + 4), Color(red, green, blue)) << i;
                ++i;
            }
    EXPECT_EQ(i, 256u);
}

TEST(PaletteSingletons, AreOneForTheProcessAndAllThreads) {
    const Windows::TPaletteHandle gray = Windows::CGrayPalette::Get();
    const Windows::TPaletteHandle color = Windows::CColorPalette::Get();
    EXPECT_NE(gray, color);
    std::vector<Windows::TPaletteHandle> seen(8);
    std::vector<std::thread> threads;
    for (auto &handle : seen)
        threads.emplace_back([&handle] { handle = Windows::CColorPalette::Get(); });
    for (auto &thread : threads)
        thread.join();
    for (const auto handle : seen)
        EXPECT_EQ(handle, color);
    EXPECT_EQ(Windows::CGrayPalette::Get(), gray);
}

} // namespace
