// Filling a region: how far it goes, what bounds it, and what the tolerance does. Every test fills in a process of
// its own and with one value per pixel type, as the word that is written is kept for the process.
#include "Drawing/FloodModel.h"

namespace {

using namespace TestSupport;

class FloodFill : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ExpectNoReport(); }
    /// What a fill with value 200 from a point makes of a picture whose stars are 200.
    static Picture After(const Picture &rows, std::int64_t x, std::int64_t y, double tolerance = 0.0) {
        const Subject subject = FloodPicture(rows);
        EXPECT_EQ(FloodFillMono(subject.Get(), 0, x, y, 200.0, tolerance), 0);
        EXPECT_EQ(subject.Fake->Count(), 1);
        return PictureOf(subject);
    }
};

TEST_F(FloodFill, FillsAllThatIsReachedFromItsStart) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(After({"....", "....", "...."}, 1, 1), Picture(3, "****"));
        EXPECT_EQ(After({"1234", "5678", "9123"}, 3, 2), Picture(3, "****"));
        EXPECT_EQ(After({"."}, 0, 0), Picture{"*"});
        EXPECT_EQ(After({"......"}, 5, 0), Picture{"******"});
        EXPECT_EQ(After({".", ".", "."}, 0, 0), Picture(3, "*"));
    });
}

TEST_F(FloodFill, AStartOnTheBoundaryLeavesTheImageAsItIs) {
    InAProcessOfItsOwn([] {
        const Picture rows{"....", ".*..", "...."};
        EXPECT_EQ(After(rows, 1, 1), rows);
    });
}

TEST_F(FloodFill, AStartOutsideLeavesTheImageAsItIs) {
    InAProcessOfItsOwn([] {
        const Picture rows{"....", ".*..", "...."};
        for (const auto &[x, y] : {std::pair<std::int64_t, std::int64_t>{-1, 0},
                                   {0, -1},
                                   {4, 0},
                                   {0, 3},
                                   {Lowest32, Lowest32},
                                   {Highest32, Highest32},
                                   {0x80000000, 0},
                                   {0, 0x7FFFFFFF}})
            EXPECT_EQ(After(rows, x, y), rows) << x << ", " << y;
    });
}

TEST_F(FloodFill, AClosedRingKeepsTheFillInside) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(After({"......", ".****.", ".*..*.", ".****.", "......"}, 2, 2),
                  (Picture{"......", ".****.", ".****.", ".****.", "......"}));
        EXPECT_EQ(After({"......", ".****.", ".*..*.", ".****.", "......"}, 0, 0),
                  (Picture{"******", "******", "**..**", "******", "******"}));
    });
}

TEST_F(FloodFill, ADiagonalGapDoesNotLeak) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(After({"......", "..**..", ".*..*.", "..**..", "......"}, 2, 2),
                  (Picture{"......", "..**..", ".****.", "..**..", "......"}));
        EXPECT_EQ(After({"*.*.", ".*.*", "*.*."}, 1, 0), (Picture{"***.", ".*.*", "*.*."}));
    });
}

TEST_F(FloodFill, GoesThroughAGapOfOnePixel) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(After({"......", ".**.*.", ".*..*.", ".****.", "......"}, 2, 2), Picture(5, "******"));
        EXPECT_EQ(After({".*....", ".*.**.", ".*.*..", ".*.*.*", "...*.."}, 0, 0), Picture(5, "******"));
    });
}

TEST_F(FloodFill, DoesNotGoRoundTheEdges) {
    InAProcessOfItsOwn([] {
        EXPECT_EQ(After({"..*..", "..*..", "..*.."}, 4, 1), (Picture{"..***", "..***", "..***"}));
        EXPECT_EQ(After({"...", "***", "..."}, 0, 2), (Picture{"...", "***", "***"}));
        const Subject even = PlainSubject(5, 3);
        const PlaneAccess access = AccessOf(even.Get(), 0);
        for (std::intptr_t y = 0; y < 3; ++y)
            *access.At(2, y) = 200;
        EXPECT_EQ(FloodFillMono(even.Get(), 0, 4, 1, 200.0, 0.0), 0);
        EXPECT_EQ(PictureOf(even), (Picture{"..***", "..***", "..***"}));
    });
}

TEST_F(FloodFill, TakesTheLow32BitsOfItsStart) {
    InAProcessOfItsOwn([] {
        const Picture rows{"..*..", "..*..", "..*.."};
        EXPECT_EQ(After(rows, 0x100000003, 0x700000001), (Picture{"..***", "..***", "..***"}));
        EXPECT_EQ(After(rows, -0x100000000, 0), (Picture{"***..", "***..", "***.."}));
        EXPECT_EQ(After(rows, 0xFFFFFFFF, 1), rows);
    });
}

TEST_F(FloodFill, APositiveToleranceWritesNothing) {
    InAProcessOfItsOwn([] {
        const Picture rows{"...*", ".*.*", "...."};
        for (const double tolerance : {2.0, 1e-300, 0.5, 1e300, Infinity})
            for (std::int64_t i = 0; i < 12; ++i)
                EXPECT_EQ(After(rows, i % 4, i / 4, tolerance), rows);
        for (const TDataType type : TenTypes)
            for (const double value : {-3.0, 0.0, 77.5, 200.0, 1e30}) {
                const Subject subject = ScatteredSubject(9, 7, type);
                subject.Refill(type);
                const PlaneBytes before = subject.Memory();
                if ((type & DataTypeFloat) == 0) { // random floating point pixels are not all numbers
                    EXPECT_EQ(FloodFillMono(subject.Get(), 0, 4, 3, value, 2.0), 0);
                    EXPECT_EQ(subject.Memory(), before);
                }
            }
    });
}

TEST_F(FloodFill, ANegativeToleranceBoundsWhatIsThatFarFromTheValue) {
    // Value 100, tolerance -10: pixels of up to 90 and from 110 bound, those between and the value itself do not.
    InAProcessOfItsOwn([] {
        for (const auto &[pixel, bounds] :
             {std::pair{90, true}, {91, false}, {100, false}, {109, false}, {110, true}}) {
            const Subject subject = ScatteredSubject(3, 1);
            const PlaneAccess access = AccessOf(subject.Get(), 0);
            *access.At(0, 0) = 95;
            *access.At(1, 0) = static_cast<std::uint8_t>(pixel);
            *access.At(2, 0) = 96;
            EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 100.0, -10.0), 0);
            EXPECT_EQ(*access.At(0, 0), 100) << pixel;
            EXPECT_EQ(*access.At(1, 0), bounds ? pixel : 100) << pixel;
            EXPECT_EQ(*access.At(2, 0), bounds ? 96 : 100) << pixel;
        }
    });
}

TEST_F(FloodFill, AFractionBoundsNoIntegerAndIsCut) {
    InAProcessOfItsOwn([] {
        const Subject subject = FloodPicture({"1727", "7.*7"}, 7);
        EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 7.5, 0.0), 0);
        for (std::intptr_t i = 0; i < 8; ++i)
            EXPECT_EQ(PixelAt<std::uint8_t>(subject, i % 4, i / 4), 7);
    });
}

TEST_F(FloodFill, AValueBeyondTheTypeBoundsNothingAndIsLimited) {
    InAProcessOfItsOwn([] {
        const Subject subject = FloodPicture({"*1", "2*"}, 255);
        EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 300.0, 0.0), 0);
        for (std::intptr_t i = 0; i < 4; ++i)
            EXPECT_EQ(PixelAt<std::uint8_t>(subject, i % 2, i / 2), 255);
        const Subject lowest = ScatteredSubject(2, 2, 8 | DataTypeSigned);
        EXPECT_EQ(FloodFillMono(lowest.Get(), 0, 0, 0, -128.0, 0.0), 0);
        for (std::intptr_t i = 0; i < 4; ++i)
            EXPECT_EQ(PixelAt<std::int8_t>(lowest, i % 2, i / 2), -127);
    });
}

TEST_F(FloodFill, PlanesOf12BitsAreReadAndWrittenInTwoBytes) {
    InAProcessOfItsOwn([] {
        const Subject subject = ScatteredSubject(5, 1, 12);
        const PlaneAccess access = AccessOf(subject.Get(), 0);
        // 0x1FFF is 0xFFF in its low 12 bits; all 16 count, so it bounds nothing.
        const std::uint16_t pixels[] = {5, 0x1FFF, 6, 0x0FFF, 7};
        for (std::intptr_t x = 0; x < 5; ++x)
            std::memcpy(access.At(x, 0), &pixels[x], 2);
        EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 4095.0, 0.0), 0);
        for (std::intptr_t x = 0; x < 4; ++x)
            EXPECT_EQ(PixelAt<std::uint16_t>(subject, x, 0), 4095) << x;
        EXPECT_EQ(PixelAt<std::uint16_t>(subject, 4, 0), 7);
    });
}

TEST_F(FloodFill, ValuesThatAreNoNumbersEnd) {
    for (const TDataType type : TenTypes)
        InAProcessOfItsOwn([&] {
            for (const double tolerance : {0.0, NotANumber, -1.0, -Infinity}) {
                const Subject subject = PlainSubject(6, 5, type);
                EXPECT_EQ(FloodFillMono(subject.Get(), 0, 2, 2, NotANumber, tolerance), 0);
                EXPECT_EQ(FloodFillMono(subject.Get(), 0, 2, 2, -Infinity, tolerance), 0);
                EXPECT_EQ(FloodFillMono(subject.Get(), 0, 2, 2, 3.0, NotANumber), 0);
                const auto &memory = subject.Memory();
                EXPECT_EQ(std::count(memory.begin(), memory.begin() + Subject::Guard, 0), Subject::Guard);
                EXPECT_EQ(std::count(memory.end() - Subject::Guard, memory.end(), 0), Subject::Guard);
            }
        });
}

TEST_F(FloodFill, AToleranceThatIsNoNumberBoundsNothing) {
    InAProcessOfItsOwn([] {
        const Subject subject = FloodPicture({"*1", "2*"});
        EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 200.0, NotANumber), 0);
        for (std::intptr_t i = 0; i < 4; ++i)
            EXPECT_EQ(PixelAt<std::uint8_t>(subject, i % 2, i / 2), 200);
    });
}

TEST_F(FloodFill, ALargeRegionEndsQuickly) {
    InAProcessOfItsOwn([] {
        const Subject subject = PlainSubject(4096, 3072);
        EXPECT_LT(SecondsOf([&] { EXPECT_EQ(FloodFillMono(subject.Get(), 0, 2000, 1500, 200.0, 0.0), 0); }), 5.0);
        EXPECT_EQ(std::count(subject.Memory().begin(), subject.Memory().end(), 200), 4096 * 3072);
        // The word written bounds no more: every pixel is reached again.
        EXPECT_LT(SecondsOf([&] { EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 7.0, 0.0), 0); }), 10.0);
        EXPECT_EQ(std::count(subject.Memory().begin(), subject.Memory().end(), 200), 4096 * 3072);
    });
}

TEST_F(FloodFill, ALargeLabyrinthEndsQuickly) {
    InAProcessOfItsOwn([] {
        const Subject subject = PlainSubject(2048, 1536, 16);
        const PlaneAccess access = AccessOf(subject.Get(), 0);
        const std::uint16_t wall = 4000;
        std::ptrdiff_t ways = 2048 * 1536;
        for (std::intptr_t y = 1; y < 1536; y += 2) // a gap at the left and at the right end, in turns
            for (std::intptr_t x = 0; x < 2047; ++x, --ways)
                std::memcpy(access.At(y % 4 == 1 ? x : x + 1, y), &wall, sizeof wall);
        EXPECT_LT(SecondsOf([&] { EXPECT_EQ(FloodFillMono(subject.Get(), 0, 0, 0, 4000.0, 0.0), 0); }), 5.0);
        std::ptrdiff_t filled = 0;
        for (std::intptr_t i = 0; i < 2048 * 1536; ++i)
            filled += PixelAt<std::uint16_t>(subject, i % 2048, i / 2048) == wall ? 1 : 0;
        EXPECT_EQ(filled, 2048 * 1536);
        EXPECT_GT(ways, 2048 * 768);
    });
}

} // namespace
