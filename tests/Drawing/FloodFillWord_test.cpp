// The word that fills write: the first value of the process and of the pixel type, whatever later calls say.
#include "Drawing/FloodModel.h"

#include <thread>

namespace {

using namespace TestSupport;

/// The pixel that a fill of a cleared plane leaves, as a number.
double Filled(TDataType type, double value, double tolerance = 0.0) {
    const Subject subject = ScatteredSubject(3, 2, type);
    // Pixels of 0 bound a fill with 0: begin from ones.
    std::mt19937 random(1);
    ScatterNumbers(subject, 0, random, 1, 1.0);
    EXPECT_EQ(FloodFillMono(subject.Get(), 0, 1, 1, value, tolerance), 0);
    std::uint64_t word = 0;
    std::memcpy(&word, AccessOf(subject.Get(), 0).At(0, 0), StorageOf(type));
    return NumberOf(word, type);
}

TEST(FloodFillWord, ASecondValueOfOnePixelTypeStillWritesTheFirst) {
    for (const TDataType type : TenTypes)
        InAProcessOfItsOwn([&] {
            EXPECT_EQ(Filled(type, 20.0), 20.0);
            EXPECT_EQ(Filled(type, 30.0), 20.0);
            EXPECT_EQ(Filled(type, 20.0), 20.0);
        });
}

TEST(FloodFillWord, IsKeptForEachOfTheTenTypes) {
    InAProcessOfItsOwn([] {
        const auto own = [](std::size_t number) { return 20.0 + static_cast<double>(number); };
        for (std::size_t number = 0; number < 10; ++number)
            EXPECT_EQ(Filled(TenTypes[number], own(number)), own(number)) << number;
        for (std::size_t number = 0; number < 10; ++number)
            EXPECT_EQ(Filled(TenTypes[number], 99.0), own(number)) << number;
    });
}

TEST(FloodFillWord, OtherWidthsInTheSameBytesShareIt) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(Filled(12, 5000.0), 4095.0);
        EXPECT_EQ(Filled(16, 5000.0), 4095.0);
        EXPECT_EQ(Filled(9 | DataTypeOverlay, 17.0), 4095.0);
        EXPECT_EQ(Filled(16 | DataTypeSigned, 5000.0), 5000.0);
        EXPECT_EQ(Filled(5, 17.0), 17.0);
        EXPECT_EQ(Filled(8, 18.0), 17.0);
    });
}

TEST(FloodFillWord, TheBoundaryIsThatOfTheCurrentCall) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(Filled(8, 20.0), 20.0);
        const Subject subject = FloodPicture({"..*..", "..*..", "..*.."}, 77);
        EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 77.0, 0.0), 0);
        for (std::intptr_t i = 0; i < 15; ++i)
            EXPECT_EQ(PixelAt<std::uint8_t>(subject, i % 5, i / 5), i % 5 < 2 ? 20 : i % 5 == 2 ? 77 : 0) << i;
    });
}

TEST(FloodFillWord, IsSettledByTheFirstPixelWritten) {
    InAProcessOfItsOwn([] {
        // None of these writes a pixel.
        EXPECT_EQ(Filled(8, 1.0), 1.0);       // the start bounds
        EXPECT_EQ(Filled(8, 50.0, 1.0), 1.0); // everything bounds
        const Subject outside = ScatteredSubject(3, 2);
        EXPECT_EQ(FloodFillMono(outside.Get(), 0, 3, 0, 60.0, 0.0), 0);
        EXPECT_EQ(FloodFillMono(outside.Get(), 1, 0, 0, 61.0, 0.0), Status(ErrIndexRange));
        EXPECT_EQ(FloodFillMono(nullptr, 0, 0, 0, 62.0, 0.0), Status(ErrNotAnImage));
        ClearReports();
        EXPECT_EQ(Filled(8, 20.0), 20.0);
        EXPECT_EQ(Filled(8, 30.0), 20.0);
    });
}

TEST(FloodFillWord, DrawingHasNoPartInIt) {
    InAProcessOfItsOwn([] {
        const Subject subject = ScatteredSubject(3, 3);
        EXPECT_EQ(FillCircleInImage(subject.Get(), 0, 1, 1, 1, 0, 0, 9.0), 0);
        EXPECT_EQ(Filled(8, 20.0), 20.0);
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 1, 1, 1, 1, 1, 0, 0, 9.0), 0);
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, 1, 1), 9);
    });
}

TEST(FloodFillWord, IsOneForAllThreads) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(Filled(32, 20.0), 20.0);
        std::thread([] { EXPECT_EQ(Filled(32, 30.0), 20.0); }).join();
    });
}

TEST(FloodFillWord, FillsOfDifferentPlanesRunInParallel) {
    InAProcessOfItsOwn([] {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([] {
                for (int round = 0; round < 20; ++round)
                    for (const TDataType type : TenTypes)
                        EXPECT_EQ(Filled(type, 20.0), 20.0);
            });
        for (auto &thread : threads)
            thread.join();
    });
}

} // namespace
