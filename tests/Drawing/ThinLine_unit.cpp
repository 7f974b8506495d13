// The thin line in closed form against the error-term walk.
#include <gtest/gtest.h>

#include "Drawing/LineSteps.h"
#include "Drawing/ThinLine.h"
#include "DrawnPlanes.h"

namespace {

using namespace DrawingTests;
using Drawing::LineSteps;

constexpr std::int64_t Lowest = INT32_MIN, Highest = INT32_MAX;

Point AnyPoint(Random &random, std::int64_t reach) {
    return {Pick(random, -reach, reach), Pick(random, -reach, reach)};
}

void Draw(RandomCase &random, Point from, Point to) {
    const Drawing::Canvas canvas = random.Canvas();
    Drawing::LinePlane plane(canvas);
    Drawing::DrawThinLine(plane, from, to);
}

TEST(ThinLine, StepsAreThoseOfTheErrorTermWalk) {
    Random random(1);
    for (int number = 0; number < 3000; ++number) {
        const Point from = AnyPoint(random, 40), to = AnyPoint(random, 40);
        const LineSteps steps(from, to);
        std::int64_t k = 0;
        Drawing::PlainThinLine(from, to, [&](std::int64_t x, std::int64_t y) {
            ASSERT_EQ(steps.At(k), (Point{x, y})) << "case " << number << ", pixel " << k;
            ++k;
        });
        ASSERT_EQ(steps.Count(), k) << "case " << number;
    }
}

TEST(ThinLine, StepsOfTheLongestLinesGoOnAsTheErrorTermDoes) {
    Random random(2);
    for (int number = 0; number < 2000; ++number) {
        const Point from = {Lowest + Pick(random, 0, 9), Pick(random, Lowest, Highest)};
        const Point to = {Highest - Pick(random, 0, 9), Pick(random, Lowest, Highest)};
        const LineSteps steps(from, to);
        const std::int64_t dx = to.X - from.X, dy = std::abs(to.Y - from.Y);
        const std::int64_t first = Pick(random, 0, steps.Count() - 40);
        Point pixel = steps.At(first);
        Drawing::WideInt error =
            Drawing::WideInt{std::abs(pixel.Y - from.Y) + 1} * dx - Drawing::WideInt{pixel.X - from.X + 1} * dy;
        for (std::int64_t k = first; k < first + 40; ++k) {
            ASSERT_EQ(steps.At(k), pixel) << "case " << number << ", pixel " << k;
            const Drawing::WideInt doubled = 2 * error;
            if (doubled > -dy) {
                pixel.X += 1;
                error -= dy;
            }
            if (doubled < dx) {
                pixel.Y += steps.SignY();
                error += dx;
            }
        }
    }
}

TEST(ThinLine, FirstPixelOfARiseIsFoundWithoutAWalk) {
    Random random(3);
    for (int number = 0; number < 3000; ++number) {
        const LineSteps steps(AnyPoint(random, 60), AnyPoint(random, 60));
        for (std::int64_t rise = -1; rise <= steps.Rise() + 1; ++rise) {
            std::int64_t expected = 0;
            while (expected < steps.Count() && steps.RiseAt(expected) < rise)
                ++expected;
            const auto found = static_cast<std::int64_t>(steps.FirstWithRise(rise));
            ASSERT_EQ(std::min(found, steps.Count()), expected) << "case " << number << ", rise " << rise;
        }
    }
}

TEST(ThinLine, WritesWhatTheWalkWritesInAllLayoutsTypesAndModes) {
    Random random(4);
    for (int number = 0; number < 8000; ++number) {
        RandomCase one(random, number % 16 == 0 ? 150 : 20);
        const Point from = AnyPoint(random, number % 3 == 0 ? 10 : 200), to = AnyPoint(random, 200);
        one.Model.ThinLine(from, to);
        Draw(one, from, to);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

TEST(ThinLine, WritesWhatTheWalkWritesFarOutsideTheImage) {
    Random random(5);
    for (int number = 0; number < 400; ++number) {
        RandomCase one(random, 12);
        const Point from = AnyPoint(random, 30000),
                    to = {-from.X + Pick(random, -9, 9), -from.Y + Pick(random, -9, 9)};
        one.Model.ThinLine(from, to);
        Draw(one, from, to);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

/// A line that goes back in memory by as much as it goes on stays in the window: its pixels come again and again.
TEST(ThinLine, WritesALineThatNeverLeavesTheMemoryAsTheWalkDoes) {
    Random random(6);
    for (int number = 0; number < 6; ++number) {
        FencedPlane fenced(number % 2 == 0 ? Layout::Dense : Layout::Interleaved, 16 + number, 9, 8, random);
        std::vector<char> expected = fenced.Memory(), actual = fenced.Memory();
        const ModelPen model(fenced, expected, {0, 77});
        const std::int64_t rows = 200000;
        const Point from = {0, 4}, to = {rows * (16 + number) + number / 3, 4 - rows};
        model.ThinLine(from, to);
        const Drawing::Canvas canvas = Drawing::CanvasOf(fenced.OnMemory(actual), {0, 77});
        Drawing::LinePlane plane(canvas);
        Drawing::DrawThinLine(plane, from, to);
        ASSERT_EQ(actual, expected) << "case " << number;
    }
}

/// Multiples of a direction have the pixels of the direction again and again.
TEST(ThinLine, EndsForLinesFromLimitToLimit) {
    Random random(7);
    for (int number = 0; number < 500; ++number) {
        RandomCase one(random, 12);
        const std::int64_t length = Pick(random, 1, 40), rise = Pick(random, -length, length);
        const std::int64_t half = Highest / 45;
        const Point offset = AnyPoint(random, 9);
        const auto at = [&](std::int64_t times) { return Point{offset.X + times * length, offset.Y + times * rise}; };
        if (one.Fenced.IsLinear()) {
            Draw(one, at(-half), at(half));
            continue;
        }
        one.Model.ThinLine(at(-60), at(60));
        Draw(one, at(-half), at(half));
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

/// Lines that nearly go along the rows of memory, with steps of all signs, are drawn address by address.
TEST(ThinLine, WritesALineThatHardlyLeavesTheMemoryAsTheWalkDoes) {
    Random random(8);
    std::int64_t written = 0;
    for (int number = 0; number < 300; ++number) {
        constexpr Layout layouts[] = {Layout::Dense,  Layout::BottomUp,    Layout::Mirrored,
                                      Layout::Padded, Layout::Interleaved, Layout::Transposed};
        const TDataType type = Types[static_cast<std::size_t>(Pick(random, 0, std::size(Types) - 1))];
        FencedPlane fenced(layouts[number % 6], Pick(random, 2, 14), Pick(random, 2, 9), type, random);
        std::vector<char> expected = fenced.Memory(), actual = fenced.Memory();
        const ModelPen model(fenced, expected, {0, 77});
        // A pixel up for as many to the side as bytes of a row have room for.
        const std::int64_t length = Pick(random, 3000, 60000), sign = Pick(random, 0, 1) * 2 - 1;
        const bool isAlongX = std::abs(fenced.XStep()) < std::abs(fenced.YStep());
        const std::int64_t along = isAlongX ? fenced.XStep() : fenced.YStep(),
                           across = isAlongX ? fenced.YStep() : fenced.XStep();
        const std::int64_t rise = -length * along / across + Pick(random, -1, 1);
        const Point from = {Pick(random, -3, 9), Pick(random, -3, 9)};
        const Point to = isAlongX ? Point{from.X + sign * length, from.Y + sign * rise}
                                  : Point{from.X + sign * rise, from.Y + sign * length};
        model.ThinLine(from, to);
        const Drawing::Canvas canvas = Drawing::CanvasOf(fenced.OnMemory(actual), {0, 77});
        Drawing::LinePlane plane(canvas);
        Drawing::DrawThinLine(plane, from, to);
        ASSERT_EQ(actual, expected) << "case " << number;
        written += expected != fenced.Memory() ? 1 : 0;
    }
    EXPECT_GT(written, 100);
}

/// A walk over its pixels would take a minute.
TEST(ThinLine, EndsForTheLongestLineThatStaysInTheMemory) {
    Random random(9);
    FencedPlane fenced(Layout::Dense, 65521, 8, 8, random);
    std::vector<char> memory = fenced.Memory();
    const Drawing::Canvas canvas = Drawing::CanvasOf(fenced.OnMemory(memory), {0, 77});
    for (int number = 0; number < 10; ++number) {
        Drawing::LinePlane plane(canvas);
        Drawing::DrawThinLine(plane, {Lowest, 4 + 32777 - number}, {Highest, 4 - 32777 + number});
    }
}

} // namespace
