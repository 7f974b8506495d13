// Thin lines against the model: random lines over all pixel types, draw modes and layouts.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

/// A line near an image; every fourth begins or ends far outside.
LineCall RandomLine(std::mt19937 &random, std::intptr_t width, std::intptr_t height) {
    const std::int64_t reach = Between(random, 0, 3) == 0 ? 200 : 4;
    LineCall call{Between(random, -reach, width + reach), Between(random, -4, height + 4),
                  Between(random, -4, width + 4), Between(random, -reach, height + reach)};
    call.Mode = static_cast<std::uint32_t>(Between(random, 0, 2));
    call.Value = RandomValue(random);
    return call;
}

/// Some lines on top of each other in every layout of one size and type.
void DrawEverywhere(std::intptr_t width, std::intptr_t height, std::intptr_t planes, TDataType type,
                    std::uint32_t number) {
    std::mt19937 random(number);
    for (const Subject &subject : AllSubjects(width, height, planes, type)) {
        subject.Refill(number);
        for (int i = 0; i < 6; ++i)
            ASSERT_TRUE(DrawsAsTold(subject, Between(random, 0, planes - 1), RandomLine(random, width, height)))
                << "case " << number << ", type " << type;
    }
}

TEST(DrawLineModel, RandomLinesInAllTypesModesAndLayouts) {
    std::uint32_t number = 0;
    for (const TDataType type : TenTypes)
        for (const ImageSize size :
             {ImageSize{1, 1, 1}, ImageSize{2, 1, 7}, ImageSize{2, 6, 1}, ImageSize{3, 2, 2}, ImageSize{2, 9, 5},
              ImageSize{1, 16, 16}, ImageSize{3, 3, 17}, ImageSize{1, 33, 4}, ImageSize{4, 5, 5}})
            DrawEverywhere(size.Width, size.Height, size.Planes, type, ++number);
}

TEST(DrawLineModel, RandomLinesInPlanesOfOddWidths) {
    std::uint32_t number = 1000;
    for (const TDataType bits : {1u, 4u, 7u, 9u, 12u, 15u, 17u, 24u, 31u, 33u, 48u, 63u})
        for (const TDataType sign : {TDataType{0}, DataTypeSigned, DataTypeOverlay})
            DrawEverywhere(11, 6, 2, bits | sign, ++number);
}

TEST(DrawLineModel, LinesOfEveryDirectionAcrossAWiderImage) {
    const Subject even = PlainSubject(64, 48), scattered = ScatteredSubject(64, 48);
    for (std::int64_t i = -70; i <= 70; ++i)
        for (const auto &[x, y] : {std::pair{i, std::int64_t{-70}}, std::pair{i, std::int64_t{70}},
                                   std::pair{std::int64_t{70}, i}, std::pair{std::int64_t{-70}, i}})
            for (const Subject *subject : {&even, &scattered}) {
                subject->Clear();
                ASSERT_TRUE(DrawsAsTold(*subject, 0, LineCall{32, 24, 32 + x, 24 + y, 1, 0, 255.0}));
                ASSERT_TRUE(DrawsAsTold(*subject, 0, LineCall{32 + x, 24 + y, 32 - x, 24 - y / 2, 1, 0, 254.0}));
            }
}

TEST(DrawLineModel, LongLinesThatMeetTheImageFarFromTheirEnds) {
    std::mt19937 random(77);
    const Subject even = PlainSubject(37, 29, 16), scattered = ScatteredSubject(37, 29, 16);
    for (int number = 0; number < 60; ++number) {
        const std::int64_t x = Between(random, -90000, 90000), y = Between(random, -90000, 90000);
        const LineCall call{Between(random, 0, 36) + x,
                            Between(random, 0, 28) + y,
                            Between(random, 0, 36) - x,
                            Between(random, 0, 28) - y,
                            1,
                            0,
                            65535.0};
        for (const Subject *subject : {&even, &scattered}) {
            subject->Clear();
            ASSERT_TRUE(DrawsAsTold(*subject, 0, call)) << "case " << number;
        }
    }
}

} // namespace
