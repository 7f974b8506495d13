// Flood fill against the model: random planes of all types in all layouts, compared in every byte of their memory.
#include "Drawing/FloodModel.h"

namespace {

using namespace TestSupport;

constexpr ImageSize Sizes[] = {{1, 1, 1}, {2, 1, 9}, {2, 9, 1}, {1, 2, 2}, {3, 7, 5}, {1, 12, 12}, {2, 19, 7}};

/// Fills from random starts in every layout. With one value the word written bounds; with several it does not always.
void FillEverywhere(TDataType type, std::uint32_t number, const std::vector<double> &values,
                    const std::vector<double> &tolerances, FloodWords &words) {
    std::mt19937 random(number);
    for (const ImageSize &size : Sizes)
        for (const Subject &subject : AllSubjects(size.Width, size.Height, size.Planes, type)) {
            subject.Refill(number);
            const std::intptr_t plane = Between(random, 0, size.Planes - 1);
            ScatterNumbers(subject, plane, random, Between(random, 2, 5));
            for (int i = 0; i < 3; ++i) {
                const auto any = [&](const std::vector<double> &choice) {
                    return choice[static_cast<std::size_t>(Between(random, 0, std::ssize(choice) - 1))];
                };
                const FloodCall call{Between(random, -1, size.Width), Between(random, -1, size.Height), any(values),
                                     any(tolerances)};
                ASSERT_TRUE(FillsAsTold(subject, plane, call, words)) << "case " << number << ", type " << type;
            }
        }
}

TEST(FloodFillModel, OneValuePerTypeInAllLayouts) {
    for (const TDataType type : TenTypes)
        for (std::uint32_t number = 0; number < 4; ++number)
            InAProcessOfItsOwn([&] {
                FloodWords words;
                FillEverywhere(type, number, {static_cast<double>(number)}, {0.0}, words);
            });
}

TEST(FloodFillModel, NegativeAndPositiveTolerances) {
    for (const TDataType type : TenTypes)
        InAProcessOfItsOwn([&] {
            FloodWords words;
            FillEverywhere(type, type, {2.0}, {-1.0, -2.0, -0.5, -1.5, -1e300, 1.0, 0.25}, words);
        });
}

TEST(FloodFillModel, FractionsAndValuesBeyondTheTypes) {
    for (const TDataType type : TenTypes)
        for (const double value : {1.5, -0.5, -1e30, 1e30})
            InAProcessOfItsOwn([&] {
                FloodWords words;
                FillEverywhere(type, type + 7, {value}, {0.0, -1.0, -2.5}, words);
            });
}

TEST(FloodFillModel, OtherValuesAfterTheFirst) {
    for (const TDataType type : TenTypes)
        InAProcessOfItsOwn([&] {
            FloodWords words;
            FillEverywhere(type, type + 13, {3.0, 1.0, 0.0, 2.5}, {0.0, 0.0, -1.0}, words);
        });
}

TEST(FloodFillModel, AllTypesInTurnsInOneProcess) {
    InAProcessOfItsOwn([] {
        FloodWords words;
        for (std::uint32_t number = 0; number < 2; ++number)
            for (const TDataType type : TenTypes)
                FillEverywhere(type, number + 50, {1.0, 2.0}, {0.0}, words);
    });
}

TEST(FloodFillModel, PlanesOfOddWidths) {
    for (const TDataType bits : {1u, 5u, 9u, 12u, 25u, 31u, 57u, 63u})
        for (const TDataType sign : {TDataType{0}, DataTypeSigned, DataTypeOverlay})
            InAProcessOfItsOwn([&] {
                FloodWords words;
                FillEverywhere(bits | sign, bits, {1.0}, {0.0, -1.0}, words);
            });
}

TEST(FloodFillModel, LargerRegionsOfManyDensities) {
    for (int density = 2; density < 12; ++density)
        InAProcessOfItsOwn([&] {
            FloodWords words;
            for (std::uint32_t number = 0; number < 5; ++number) {
                std::mt19937 random(number);
                for (const Subject &subject : {PlainSubject(133, 71), ScatteredSubject(133, 71)}) {
                    ScatterNumbers(subject, 0, random, density, 200.0);
                    const FloodCall call{Between(random, 0, 132), Between(random, 0, 70), 200.0};
                    ASSERT_TRUE(FillsAsTold(subject, 0, call, words)) << "case " << number << ", density " << density;
                }
            }
        });
}

TEST(FloodFillModel, AnySolidBoundaryIsDrawnAndFilled) {
    InAProcessOfItsOwn([] {
        FloodWords words;
        for (std::int64_t radius = 1; radius < 60; ++radius)
            for (const Subject &subject : {PlainSubject(100, 90, 16), ScatteredSubject(100, 90, 16)}) {
                ASSERT_EQ(DrawEllipseInImage(subject.Get(), 0, 50, 44, radius, radius / 2 + 1, 2, 0, 0, 0.3, 500.0),
                          0);
                ASSERT_TRUE(FillsAsTold(subject, 0, {50, 44, 500.0}, words)) << radius;
                ASSERT_TRUE(FillsAsTold(subject, 0, {0, 0, 500.0}, words)) << radius;
            }
    });
}

} // namespace
