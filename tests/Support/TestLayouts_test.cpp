/* The layouts that other tests loop over: each shows the content that it says, through its table and through the
 * library, and reads nothing outside its block. */
#include "ImageQueries.h"
#include "Support/TestLayouts.h"

#include <set>

using namespace TestSupport;

namespace {

struct Size {
    std::intptr_t Width, Height;
};
constexpr Size Sizes[] = {{1, 1}, {1, 6}, {6, 1}, {5, 4}, {4, 5}, {67, 3}};
constexpr TDataType Types[] = {8, 0x110, 24, 0x220, 0x240, 128};

TEST(TestLayouts, EveryLayoutShowsItsContent) {
    for (const auto &[width, height] : Sizes)
        for (const TDataType type : Types)
            for (const std::intptr_t planes : {1, 2, 3})
                for (const auto &image : MakeLayouts(width, height, planes, type)) {
                    ASSERT_NE(image.Get(), nullptr) << image.Name;
                    EXPECT_EQ(ImageWidth(image.Get()), width) << image.Name;
                    EXPECT_EQ(ImageHeight(image.Get()), height) << image.Name;
                    ASSERT_EQ(ImageDimension(image.Get()), planes) << image.Name;
                    for (std::intptr_t plane = 0; plane < planes; ++plane)
                        EXPECT_EQ(PixelBytes(image.Get(), plane), image.Content[static_cast<std::size_t>(plane)])
                            << image.Name << ' ' << width << 'x' << height << " type " << type;
                }
}

TEST(TestLayouts, AllLayoutsButTheRepeatingOneHaveTheSameContent) {
    const auto content = RandomContent(5, 4, 3, 16, 9);
    for (const auto &image : MakeLayouts(5, 4, 3, 16, 9))
        EXPECT_EQ(image.Content == content, image.Name != "fake repeating") << image.Name;
}

TEST(TestLayouts, EveryLayoutHasANameOfItsOwn) {
    std::set<std::string> names;
    const auto images = MakeLayouts(3, 2, 3, 8);
    for (const auto &image : images)
        names.insert(image.Name);
    EXPECT_EQ(names.size(), images.size());
}

TEST(TestLayouts, WhatIsNoImageHasNoPixels) {
    OnlyUnknown foreign;
    EXPECT_TRUE(PixelBytes(nullptr, 0).empty());
    EXPECT_TRUE(PixelBytes(foreign.Handle(), 0).empty());
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    EXPECT_TRUE(PixelBytes(image->Handle(), 1).empty());
    EXPECT_EQ(image->Count(), 1);
}

} // namespace
