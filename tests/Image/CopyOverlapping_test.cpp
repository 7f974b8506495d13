/* Copies within one image, and between images that share memory: pixel by pixel in the plain order through tables and
 * by steps, line by line where lines are dense, and all at once where whole lines lie without a gap. */
#include "Image/Pictures.h"
#include "Image/RandomTables.h"
#include "Image/RectangleModel.h"
#include "RectangleCopy.h"

#include <cstdlib>

namespace {

using namespace TestSupport;

constexpr const char *Picture = "abcdefghijklmnop"; ///< 4 x 4

/// The picture in one plane with some steps.
std::unique_ptr<FakeImage> PictureBy(const Table::Offsets &x, const Table::Offsets &y) {
    auto image = std::make_unique<FakeImage>(4, 4, 256);
    image->AddPlane(image->Pixels.data() + 128, 8, x, y);
    for (std::intptr_t i = 0; i < 16; ++i)
        *image->PixelAddress(0, i % 4, i / 4) = static_cast<std::uint8_t>(Picture[i]);
    return image;
}
std::unique_ptr<FakeImage> PictureBy(std::intptr_t xStep, std::intptr_t yStep) {
    return PictureBy([=](std::intptr_t x) { return x * xStep; }, [=](std::intptr_t y) { return y * yStep; });
}
std::unique_ptr<FakeImage> UnevenPicture() {
    return PictureBy([](std::intptr_t x) { return x * x; }, [](std::intptr_t y) { return 12 * y; });
}

Rows CopyWithin(FakeImage &image, std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom,
                std::int32_t x, std::int32_t y) {
    EXPECT_TRUE(CopyImageRect(image.Handle(), image.Handle(), 0, 0, left, top, right, bottom, x, y));
    EXPECT_EQ(image.Count(), 1);
    return Show(image.Handle());
}

TEST(CopyOverlapping, WholeLinesWithoutAGapMoveAllAtOnce) {
    for (const auto &[x, y] : {std::pair{1, 4}, {1, -4}, {-1, 4}, {-1, -4}}) {
        EXPECT_EQ(CopyWithin(*PictureBy(x, y), 0, 0, 3, 2, 0, 1), (Rows{"abcd", "abcd", "efgh", "ijkl"})) << x << y;
        EXPECT_EQ(CopyWithin(*PictureBy(x, y), 0, 1, 3, 3, 0, 0), (Rows{"efgh", "ijkl", "mnop", "mnop"})) << x << y;
    }
}

TEST(CopyOverlapping, LinesWithAGapMoveOneAfterTheOtherFromTheTop) {
    for (const auto &[x, y] : {std::pair{1, 7}, {1, -7}, {-1, 7}, {-1, -7}}) {
        EXPECT_EQ(CopyWithin(*PictureBy(x, y), 0, 0, 3, 2, 0, 1), (Rows{"abcd", "abcd", "abcd", "abcd"})) << x << y;
        EXPECT_EQ(CopyWithin(*PictureBy(x, y), 0, 1, 3, 3, 0, 0), (Rows{"efgh", "ijkl", "mnop", "mnop"})) << x << y;
    }
}

TEST(CopyOverlapping, PartsOfLinesMoveOneAfterTheOtherFromTheTop) {
    for (const auto &[x, y] : {std::pair{1, 4}, {1, -4}, {-1, 4}, {-1, -4}}) {
        EXPECT_EQ(CopyWithin(*PictureBy(x, y), 0, 0, 2, 2, 0, 1), (Rows{"abcd", "abch", "abcl", "abcp"})) << x << y;
        EXPECT_EQ(CopyWithin(*PictureBy(x, y), 1, 1, 3, 3, 1, 0), (Rows{"afgh", "ejkl", "inop", "mnop"})) << x << y;
    }
}

TEST(CopyOverlapping, ADenseLineMovesAsAWhole) {
    for (const std::intptr_t step : {1, -1}) {
        EXPECT_EQ(CopyWithin(*PictureBy(step, 9), 0, 0, 2, 0, 1, 0), (Rows{"aabc", "efgh", "ijkl", "mnop"}));
        EXPECT_EQ(CopyWithin(*PictureBy(step, 9), 1, 0, 3, 0, 0, 0), (Rows{"bcdd", "efgh", "ijkl", "mnop"}));
    }
}

TEST(CopyOverlapping, PixelsGoOneAfterTheOtherFromTheLeftBySteps) {
    for (const std::intptr_t step : {2, -3, 16}) {
        EXPECT_EQ(CopyWithin(*PictureBy(step, step == 16 ? 1 : 12), 0, 0, 2, 0, 1, 0),
                  (Rows{"aaaa", "efgh", "ijkl", "mnop"}))
            << step;
        EXPECT_EQ(CopyWithin(*PictureBy(step, step == 16 ? 1 : 12), 1, 0, 3, 0, 0, 0),
                  (Rows{"bcdd", "efgh", "ijkl", "mnop"}))
            << step;
        EXPECT_EQ(CopyWithin(*PictureBy(step, step == 16 ? 1 : 12), 0, 0, 3, 2, 0, 1),
                  (Rows{"abcd", "abcd", "abcd", "abcd"}))
            << step;
    }
}

TEST(CopyOverlapping, PixelsGoOneAfterTheOtherFromTheLeftThroughTables) {
    EXPECT_EQ(CopyWithin(*UnevenPicture(), 0, 0, 2, 0, 1, 0), (Rows{"aaaa", "efgh", "ijkl", "mnop"}));
    EXPECT_EQ(CopyWithin(*UnevenPicture(), 1, 0, 3, 0, 0, 0), (Rows{"bcdd", "efgh", "ijkl", "mnop"}));
    EXPECT_EQ(CopyWithin(*UnevenPicture(), 0, 0, 2, 2, 1, 1), (Rows{"abcd", "eabc", "ieab", "miea"}));
}

TEST(CopyOverlapping, TablesAndStepsThatShareMemoryGoPixelByPixel) {
    // Both images are over the same four bytes: one shows them in order, the other as 0, 1, 3, 2.
    const auto swapped = [](std::intptr_t x) { return x < 2 ? x : 5 - x; };
    const auto straight = [](std::intptr_t x) { return x; };
    const auto row = [](std::intptr_t) { return std::intptr_t{0}; };
    for (const bool toTable : {false, true}) {
        std::string bytes = "abcd";
        FakeImage steps(4, 1), table(4, 1);
        steps.AddPlane(bytes.data(), 8, straight, row);
        table.AddPlane(bytes.data(), 8, swapped, row);
        FakeImage &source = toTable ? steps : table, &target = toTable ? table : steps;
        EXPECT_TRUE(CopyImageRect(source.Handle(), target.Handle(), 0, 0, 0, 0, 3, 0, 0, 0));
        EXPECT_EQ(bytes, toTable ? "abcc" : "abdd");
    }
}

TEST(CopyOverlapping, GroupsOfPlanesMoveAllAtOnceWhereWholeLinesLieWithoutAGap) {
    for (const std::intptr_t gap : {0, 2}) {
        FakeImage image(2, 3, 64);
        for (int plane = 0; plane < 2; ++plane)
            image.AddPlane(
                image.Pixels.data() + plane, 8, [](std::intptr_t x) { return 2 * x; },
                [=](std::intptr_t y) { return (4 + gap) * y; });
        const std::string picture = "aAbBcCdDeEfF";
        for (std::intptr_t i = 0; i < 12; ++i)
            *image.PixelAddress(static_cast<std::size_t>(i % 2), i / 2 % 2, i / 4) =
                static_cast<std::uint8_t>(picture[static_cast<std::size_t>(i)]);
        EXPECT_TRUE(CopyImageRectPlanes(image.Handle(), image.Handle(), 0, 0, 1, 1, 0, 1));
        EXPECT_EQ(Show(image.Handle(), 0), (gap == 0 ? Rows{"ab", "ab", "cd"} : Rows{"ab", "ab", "ab"}));
        EXPECT_EQ(Show(image.Handle(), 1), (gap == 0 ? Rows{"AB", "AB", "CD"} : Rows{"AB", "AB", "AB"}));
    }
}

TEST(CopyOverlapping, ThreePlanesTakenApartOrPutTogetherInTheirOwnMemoryGoOneAfterTheOther) {
    constexpr std::intptr_t width = 40, height = 2, planeBytes = width * height;
    for (const bool apart : {false, true}) {
        std::vector<std::uint8_t> bytes(3 * planeBytes);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
        FakeImage grouped(width, height), planar(width, height);
        for (std::intptr_t plane = 0; plane < 3; ++plane) {
            grouped.AddPlane(
                bytes.data() + plane, 8, [](std::intptr_t x) { return 3 * x; },
                [](std::intptr_t y) { return 3 * width * y; });
            planar.AddPlane(
                bytes.data() + plane * planeBytes, 8, [](std::intptr_t x) { return x; },
                [](std::intptr_t y) { return width * y; });
        }
        std::vector<std::uint8_t> expected = bytes;
        for (std::size_t plane = 0; plane < 3; ++plane)
            for (std::size_t i = 0; i < planeBytes; ++i) {
                std::uint8_t &inPlane = expected[plane * planeBytes + i], &inGroup = expected[3 * i + plane];
                (apart ? inPlane : inGroup) = apart ? inGroup : inPlane;
            }
        FakeImage &source = apart ? grouped : planar, &target = apart ? planar : grouped;
        EXPECT_TRUE(CopyImageRectPlanes(source.Handle(), target.Handle(), 0, 0, width, height, 0, 0));
        EXPECT_EQ(bytes, expected) << apart;
    }
}

/// One rectangle of a random image within itself; false when it differs from the model.
bool RunCase(std::uint64_t number) {
    constexpr TDataType types[] = {8, 0x108, 16, 0x120, 0x220, 0x240, 24};
    Random random(number);
    ImageForm form{
        static_cast<Family>(Draw(random, 0, FamilyCount - 1)), Draw(random, 1, 12), Draw(random, 1, 9), {}};
    if (OneIn(random, 4))
        form.Width = Draw(random, 20, 60);
    form.Types.assign(static_cast<std::size_t>(Draw(random, 1, 3)), types[Draw(random, 0, std::ssize(types) - 1)]);
    RandomImage image(form, random);
    image.Fill(random);
    const ModelImage model(image.Get());
    const auto half = [&random](std::intptr_t count) { return Draw(random, 0, count - 1) * Draw(random, 0, 1); };
    ModelRectangle r{half(form.Width), half(form.Height), form.Width - 1, form.Height - 1};
    const ModelPosition at{half(form.Width), half(form.Height)};
    if (OneIn(random, 2))
        r.Bottom = Draw(random, 0, form.Height - 1);
    const bool allPlanes = OneIn(random, 2);
    const std::intptr_t from = Draw(random, 0, model.Count() - 1), to = Draw(random, 0, model.Count() - 1);
    const PlaneBytes before = image.Block;
    const ModelOutcome outcome =
        allPlanes ? CopyModelPlanes(model, model, r, at) : CopyModelPlane(model, model, from, to, r, at);
    const PlaneBytes expected = image.Block;
    std::copy(before.begin(), before.end(), image.Block.begin());
    const auto word = [](std::int64_t value) { return static_cast<std::int32_t>(value); };
    const bool result = allPlanes ? CopyImageRectPlanes(image.Get(), image.Get(), word(r.Left), word(r.Top),
                                                        word(r.Right), word(r.Bottom), word(at.X), word(at.Y))
                                  : CopyImageRect(image.Get(), image.Get(), from, to, word(r.Left), word(r.Top),
                                                  word(r.Right), word(r.Bottom), word(at.X), word(at.Y));
    if (result == outcome.Result && image.Block == expected)
        return true;
    ADD_FAILURE() << "case " << number << ": result " << result << ", " << FamilyNames[static_cast<int>(form.Kind)]
                  << ", " << form.Width << " x " << form.Height << ", type " << form.Types[0] << ", "
                  << (allPlanes ? "all of " + std::to_string(model.Count())
                                : "plane " + std::to_string(from) + " to " + std::to_string(to))
                  << ", " << r << ", " << at;
    return false;
}

TEST(CopyOverlapping, RandomRectanglesWithinOneImageGoInTheToldOrder) {
    // ORV_TEST_CASE runs one case by its number.
    if (const char *const only = std::getenv("ORV_TEST_CASE"); only != nullptr) {
        RunCase(std::strtoull(only, nullptr, 10));
        return;
    }
    for (std::uint64_t number = 0; number < 40'000; ++number)
        ASSERT_TRUE(RunCase(number));
    ClearReports();
}

} // namespace
