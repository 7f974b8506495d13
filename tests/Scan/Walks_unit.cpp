// The three walks beside each other over random areas: the plain one, which tests every sample, the quick one, which
// must do the same calls in the same order, and the one in no particular order, which must visit the same pixels
// equally often.
#include "Scan/PixelSet.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using namespace Scan;

/// Writes the calls down; may stop the walk.
struct Recorder {
    struct Call {
        char Kind;
        std::int64_t A, B;
        bool operator==(const Call &) const = default;
    };
    bool Wants = true;
    std::int64_t StopAt = -1; ///< the call that gives false
    std::vector<Call> Calls;

    bool Add(char kind, std::int64_t a, std::int64_t b) {
        Calls.push_back({kind, a, b});
        return static_cast<std::int64_t>(Calls.size()) != StopAt;
    }
    bool WantsLines() const { return Wants; }
    bool BeginLine(std::int64_t left) { return !Wants || Add('b', left, 0); }
    bool EndLine(std::int64_t left) { return !Wants || Add('e', left, 0); }
    bool Pixel(std::int32_t x, std::int32_t y) { return Add('p', x, y); }
};

/// Counts visits of each pixel of an image.
struct Counter {
    explicit Counter(const PixelBounds &area)
        : Bounds(area), Visits(static_cast<std::size_t>((std::max(area.Right - area.Left, -1) + 1) *
                                                        (std::max(area.Bottom - area.Top, -1) + 1))) {}
    PixelBounds Bounds;
    std::vector<int> Visits;
    bool LeftBounds = false;

    bool WantsLines() const { return false; }
    bool BeginLine(std::int64_t) const { return true; }
    bool EndLine(std::int64_t) const { return true; }
    bool Pixel(std::int32_t x, std::int32_t y) {
        if (!Bounds.Contains(x, y))
            LeftBounds = true;
        else
            ++Visits[static_cast<std::size_t>((y - Bounds.Top) * (Bounds.Right - Bounds.Left + 1) + x - Bounds.Left)];
        return true;
    }
    void Span(std::int32_t left, std::int32_t y, std::int64_t width) { Rectangle(left, y, width, 1); }
    void Rectangle(std::int32_t left, std::int32_t top, std::int64_t width, std::int64_t height) {
        for (std::int64_t y = 0; y < height; ++y)
            for (std::int64_t x = 0; x < width; ++x)
                Pixel(static_cast<std::int32_t>(left + x), static_cast<std::int32_t>(top + y));
    }
};

class RandomAreas {
public:
    explicit RandomAreas(std::uint32_t seed) : random_(seed) {}

    TArea Next() {
        const double reach = Pick({3.0, 9.0, 20.0, 70.0});
        const double x = Origin(), y = Origin();
        TArea area = {
            x, y, x + Coordinate(reach), y + Coordinate(reach), x + Coordinate(reach), y + Coordinate(reach)};
        switch (random_() % 8) {
        case 0: // axis-parallel, lines along x
            area.Y1 = y;
            area.X2 = x;
            break;
        case 1: // axis-parallel, lines along y
            area.X1 = x;
            area.Y2 = y;
            break;
        case 2: // a turned rectangle
            area.X2 = x - (area.Y1 - y);
            area.Y2 = y + (area.X1 - x);
            break;
        case 3: // parallel edges
            area.X2 = x + 2 * (area.X1 - x);
            area.Y2 = y + 2 * (area.Y1 - y);
            break;
        case 4: // no first edge
            area.X1 = x;
            area.Y1 = y;
            break;
        case 5: // no second edge
            area.X2 = x;
            area.Y2 = y;
            break;
        default:
            break;
        }
        return area;
    }
    std::int64_t Density() { return random_() % 2 == 0 ? 1000 : static_cast<std::int64_t>(1 + random_() % 1000); }
    PixelBounds Bounds() {
        const auto size = [this] { return static_cast<std::int32_t>(random_() % 80); };
        const auto corner = [this] { return random_() % 4 == 0 ? static_cast<std::int32_t>(random_() % 9) : 0; };
        return {corner(), corner(), size(), size()};
    }
    std::int64_t Below(std::int64_t end) { return std::uniform_int_distribution<std::int64_t>(0, end)(random_); }

private:
    double Origin() {
        const bool mayLieOutside = random_() % 8 == 0;
        return mayLieOutside ? Coordinate(60.0) : std::fabs(Coordinate(40.0));
    }
    double Coordinate(double reach) {
        const double value = std::uniform_real_distribution<double>(-reach, reach)(random_);
        return random_() % 2 == 0 ? std::floor(value) : value;
    }
    double Pick(std::initializer_list<double> values) { return *(values.begin() + random_() % values.size()); }

    std::mt19937 random_;
};

std::string Describe(const TArea &area, std::int64_t density, const PixelBounds &bounds, int number) {
    std::ostringstream text;
    text << "case " << number << ": " << area.X0 << ' ' << area.Y0 << ", " << area.X1 << ' ' << area.Y1 << ", "
         << area.X2 << ' ' << area.Y2 << ", density " << density << ", bounds " << bounds.Left << ' ' << bounds.Top
         << ' ' << bounds.Right << ' ' << bounds.Bottom;
    return text.str();
}

/// Areas in blocks, so that they spread over processes.
class WalkBlocks : public testing::TestWithParam<int> {};

TEST_P(WalkBlocks, QuickWalkDoesTheCallsOfThePlainWalkAndPixelSetsVisitTheSamePixels) {
    RandomAreas areas(static_cast<std::uint32_t>(GetParam()));
    for (int number = 0; number < 62500; ++number) {
        const TArea area = areas.Next();
        const std::int64_t density = areas.Density();
        const PixelBounds bounds = areas.Bounds();
        const auto plan = PlanWalk(area, density);
        ASSERT_TRUE(plan.has_value());
        Recorder plain, quick;
        plain.Wants = quick.Wants = number % 3 == 0;
        const std::int64_t plainResult = PlainWalk(*plan, bounds, plain);
        ASSERT_EQ(QuickWalk(*plan, bounds, quick), plainResult) << Describe(area, density, bounds, number);
        ASSERT_TRUE(quick.Calls == plain.Calls) << Describe(area, density, bounds, number);
        Counter expected(bounds), visited(bounds);
        PlainWalk(*plan, bounds, expected);
        ASSERT_EQ(VisitPixels(*plan, bounds, visited), plainResult) << Describe(area, density, bounds, number);
        ASSERT_FALSE(visited.LeftBounds) << Describe(area, density, bounds, number);
        ASSERT_TRUE(visited.Visits == expected.Visits) << Describe(area, density, bounds, number);
        if (!plain.Calls.empty() && number % 4 == 0) {
            const std::int64_t stop = 1 + areas.Below(static_cast<std::int64_t>(plain.Calls.size()));
            Recorder plainStopped, quickStopped;
            plainStopped.Wants = quickStopped.Wants = plain.Wants;
            plainStopped.StopAt = quickStopped.StopAt = stop;
            const std::int64_t result = PlainWalk(*plan, bounds, plainStopped);
            ASSERT_EQ(QuickWalk(*plan, bounds, quickStopped), result) << Describe(area, density, bounds, number);
            ASSERT_TRUE(quickStopped.Calls == plainStopped.Calls) << Describe(area, density, bounds, number);
        }
    }
}

/// Large areas: many lines, whose rounding adds up to holes and to pixels that are met twice.
TEST(WalkPixelSets, LargeTurnedAreasVisitTheSamePixels) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> coordinate(-1500.0, 1500.0);
    std::size_t irregular = 0;
    for (int number = 0; number < 40; ++number) {
        const TArea area = {700.0,
                            700.0,
                            700.0 + coordinate(random),
                            700.0 + coordinate(random),
                            700.0 + coordinate(random),
                            700.0 + coordinate(random)};
        const PixelBounds bounds = {0, 0, 1399, number % 2 == 0 ? 1399 : 800};
        const auto plan = PlanWalk(area, 1000);
        ASSERT_TRUE(plan.has_value());
        Counter expected(bounds), visited(bounds);
        const std::int64_t result = PlainWalk(*plan, bounds, expected);
        ASSERT_EQ(VisitPixels(*plan, bounds, visited), result) << Describe(area, 1000, bounds, number);
        ASSERT_TRUE(visited.Visits == expected.Visits) << Describe(area, 1000, bounds, number);
        DigitalArea set;
        if (set.Build(*plan, bounds))
            irregular += set.Repeats().size();
    }
    EXPECT_GT(irregular, 10u);
}

/// Positions of so many samples leave 31 bits, and need all bits of a fraction in the search for holes.
TEST(WalkPixelSets, SlantingLinesOfMoreThan32768SamplesVisitTheSamePixels) {
    std::mt19937 random(6);
    std::uniform_int_distribution<int> near(-40, 40), length(34000, 44999);
    int sets = 0;
    for (int number = 0; number < 40; ++number) {
        const double y = 20.0 + near(random) / 4.0;
        const TArea area = {
            0.0, y, static_cast<double>(length(random)), y + near(random), near(random) / 8.0, y + near(random)};
        const PixelBounds bounds = {0, 0, 44999, 40};
        const auto plan = PlanWalk(area, 1000);
        ASSERT_TRUE(plan.has_value());
        Counter expected(bounds), visited(bounds);
        const std::int64_t result = PlainWalk(*plan, bounds, expected);
        ASSERT_EQ(VisitPixels(*plan, bounds, visited), result) << Describe(area, 1000, bounds, number);
        ASSERT_TRUE(visited.Visits == expected.Visits) << Describe(area, 1000, bounds, number);
        DigitalArea set;
        sets += set.Build(*plan, bounds) ? 1 : 0;
    }
    EXPECT_GT(sets, 20);
}

void ExpectEqualWalks(const TArea &area, std::int64_t density, const PixelBounds &bounds, int number) {
    const auto plan = PlanWalk(area, density);
    ASSERT_TRUE(plan.has_value());
    Recorder plain, quick;
    plain.Wants = quick.Wants = false;
    const std::int64_t result = PlainWalk(*plan, bounds, plain);
    ASSERT_EQ(QuickWalk(*plan, bounds, quick), result) << Describe(area, density, bounds, number);
    ASSERT_TRUE(quick.Calls == plain.Calls) << Describe(area, density, bounds, number);
    Counter expected(bounds), visited(bounds);
    PlainWalk(*plan, bounds, expected);
    ASSERT_EQ(VisitPixels(*plan, bounds, visited), result) << Describe(area, density, bounds, number);
    ASSERT_TRUE(visited.Visits == expected.Visits) << Describe(area, density, bounds, number);
}

TEST(WalksOfManyLines, SkipLinesThatCannotMeetTheBounds) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> far(-400000.0, 400000.0), near(-30.0, 30.0);
    for (int number = 0; number < 60; ++number) {
        const double x = std::fabs(near(random)), y = std::fabs(near(random));
        TArea area = {x, y, x, y, x + far(random), y + near(random)};
        if (number % 3 == 1)
            area = {x, y, x, y, x + near(random), y + far(random)};
        if (number % 3 == 2) {
            const double edgeX = near(random), edgeY = near(random), times = far(random) / 30.0;
            area = {x,
                    y,
                    x + std::floor(edgeX),
                    y + std::floor(edgeY),
                    x + std::floor(edgeX) * std::floor(times),
                    y + std::floor(edgeY) * std::floor(times)};
        }
        ASSERT_NO_FATAL_FAILURE(ExpectEqualWalks(area, 1000, {0, 0, 20, 15}, number));
    }
}

TEST(WalksOverWideImages, ReturnLinesThatBeginFarLeft) {
    std::mt19937 random(12);
    std::uniform_real_distribution<double> far(-150000.0, 150000.0), near(-4.0, 4.0);
    for (int number = 0; number < 60; ++number) {
        const double x = far(random), y = near(random);
        const TArea wide = {x, y, far(random), y + near(random), x + near(random), y + near(random)};
        const TArea tall = {wide.Y0, wide.X0, wide.Y1, wide.X1, wide.Y2, wide.X2};
        ASSERT_NO_FATAL_FAILURE(ExpectEqualWalks(wide, 1000, {0, 0, 69999, 5}, number));
        ASSERT_NO_FATAL_FAILURE(ExpectEqualWalks(tall, 1000, {0, 0, 5, 69999}, number));
    }
}

/// Coordinates have 32 bits: at the lowest density a line comes round to column 0 again within few samples.
TEST(WalksOfLongLines, PassTheEndOfCoordinatesAndComeBack) {
    for (const double end : {-1.3e10, 1.3e10, -9e9})
        for (const double across : {0.0, 3.0, -2e9}) {
            const TArea area = {-100000.0,    2.0,       -100000.0 + std::min(end, 2147483000.0),
                                2.0 + across, -100000.0, 4.0};
            const auto plan = PlanWalk(area, 1);
            ASSERT_TRUE(plan.has_value());
            ASSERT_NO_FATAL_FAILURE(ExpectEqualWalks(area, 1, {0, 0, 60000, 9}, static_cast<int>(across)));
        }
}

INSTANTIATE_TEST_SUITE_P(MillionAreas, WalkBlocks, testing::Range(0, 16));

} // namespace
