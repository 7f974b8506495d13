/* The fill by runs and narrow ways against the fill pixel by pixel: each instruction set level, planes of several
 * layouts and densities, words that bound and words that do not. */
#include <gtest/gtest.h>
#include <random>

#include "Drawing/FloodRegion.h"

namespace {

using namespace Drawing::FloodFill;

/// A linear plane with room around and between its pixels, which must stay as it is.
template <class T>
class Plane {
public:
    struct Layout {
        const char *Name;
        std::intptr_t XStep; ///< in pixels; 0: one row's length, so that the plane is turned
        bool IsMirrored;
        bool IsBottomUp;
    };

    Plane(std::intptr_t width, std::intptr_t height, const Layout &layout)
        : memory_(static_cast<std::size_t>((width + 3) * (height + 3) * 4)),
          table_(static_cast<std::size_t>(std::max(width, height))) {
        constexpr auto bytes = static_cast<std::intptr_t>(sizeof(T));
        const bool isTurned = layout.XStep == 0;
        std::intptr_t xStep = isTurned ? (height + 1) * bytes : layout.XStep * bytes;
        std::intptr_t yStep = isTurned ? bytes : (width * layout.XStep + 1) * bytes;
        char *first = reinterpret_cast<char *>(memory_.data());
        if (layout.IsMirrored) {
            first += (width - 1) * xStep;
            xStep = -xStep;
        }
        if (layout.IsBottomUp) {
            first += (height - 1) * yStep;
            yStep = -yStep;
        }
        for (std::size_t i = 0; i < table_.size(); ++i)
            table_[i] = {static_cast<std::intptr_t>(i) * xStep, static_cast<std::intptr_t>(i) * yStep};
        View = {first, table_.data(), table_.data(), width, height, bytes, xStep, yStep};
    }

    void Set(std::intptr_t x, std::intptr_t y, T value) { *reinterpret_cast<T *>(View.Pixel(x, y)) = value; }
    const std::vector<T> &Memory() const { return memory_; }
    void SetMemory(const std::vector<T> &memory) { std::copy(memory.begin(), memory.end(), memory_.begin()); }

    Image::PlaneView View;

private:
    std::vector<T> memory_;
    std::vector<VPAEntry> table_;
};

template <class T>
class FloodRegion : public testing::Test {
protected:
    using Layout = typename Plane<T>::Layout;
    static inline const Layout Layouts[] = {{"dense", 1, false, false},
                                            {"mirrored, bottom-up", 1, true, true},
                                            {"between others", 3, false, false},
                                            {"turned", 0, false, true},
                                            {"turned and mirrored", 0, true, false}};
    static constexpr std::pair<std::intptr_t, std::intptr_t> Sizes[] = {{1, 1},  {1, 9},   {9, 1},    {13, 11},
                                                                        {70, 5}, {300, 4}, {600, 40}, {65, 64}};
    static constexpr T Wall = 7;

    /// Walls with a probability; the start is open.
    void Draw(Plane<T> &plane, orvBase::Point start, unsigned percent) {
        for (std::intptr_t y = 0; y < plane.View.Height; ++y)
            for (std::intptr_t x = 0; x < plane.View.Width; ++x)
                plane.Set(x, y, random_() % 100 < percent ? Wall : static_cast<T>(random_() % 3));
        plane.Set(start.X, start.Y, 1);
    }
    orvBase::Point DrawStart(const Plane<T> &plane) {
        return {static_cast<std::int32_t>(random_() % static_cast<std::uint64_t>(plane.View.Width)),
                static_cast<std::int32_t>(random_() % static_cast<std::uint64_t>(plane.View.Height))};
    }

    /// The pixel-by-pixel fill. One that does not end by itself has all that bounds replaced by the word's stand-in.
    static std::vector<T> Expected(Plane<T> &plane, orvBase::Point start, const AnyBoundary &boundary, T word) {
        const std::vector<T> before = plane.Memory();
        if (boundary(word)) {
            floodfill_nonrecursive_visitor<T, AnyBoundary>(plane.View, boundary).Fill(start, word);
        } else {
            FillReachable(plane, start, boundary, word);
        }
        const std::vector<T> after = plane.Memory();
        plane.SetMemory(before);
        return after;
    }
    static void FillReachable(Plane<T> &plane, orvBase::Point start, const AnyBoundary &boundary, T word) {
        const auto &view = plane.View;
        std::vector<bool> seen(static_cast<std::size_t>(view.Width * view.Height));
        std::vector<orvBase::Point> open{start};
        while (!open.empty()) {
            const orvBase::Point at = open.back();
            open.pop_back();
            if (at.X < 0 || at.Y < 0 || at.X >= view.Width || at.Y >= view.Height ||
                seen[static_cast<std::size_t>(at.Y * view.Width + at.X)] ||
                boundary(*reinterpret_cast<const T *>(view.Pixel(at.X, at.Y))))
                continue;
            seen[static_cast<std::size_t>(at.Y * view.Width + at.X)] = true;
            plane.Set(at.X, at.Y, word);
            for (const orvBase::Point next : {orvBase::Point{at.X - 1, at.Y}, orvBase::Point{at.X + 1, at.Y},
                                              orvBase::Point{at.X, at.Y - 1}, orvBase::Point{at.X, at.Y + 1}})
                open.push_back(next);
        }
    }

    void ExpectAsPixelByPixel(Plane<T> &plane, orvBase::Point start, const AnyBoundary &boundary, T word) {
        const auto expected = Expected(plane, start, boundary, word);
        const std::vector<T> before = plane.Memory();
        for (const Image::KernelLevel level : Image::AvailableLevels()) {
            const Image::ForcedLevel forced(level);
            FillRegion(plane.View, start, boundary, word);
            ASSERT_TRUE(plane.Memory() == expected) << NameOf(level);
            plane.SetMemory(before);
        }
    }

    std::mt19937_64 random_{sizeof(T)};
};

using PixelTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                                  std::int64_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(FloodRegion, PixelTypes);

TYPED_TEST(FloodRegion, IsThatOfTheFillPixelByPixel) {
    using T = TypeParam;
    for (const auto &[width, height] : this->Sizes)
        for (const auto &layout : this->Layouts)
            for (const unsigned percent : {0u, 1u, 5u, 30u, 45u}) {
                SCOPED_TRACE(testing::Message()
                             << width << " x " << height << ", " << layout.Name << ", walls " << percent << " %");
                Plane<T> plane(width, height, layout);
                const orvBase::Point start = this->DrawStart(plane);
                this->Draw(plane, start, percent);
                ASSERT_NO_FATAL_FAILURE(
                    this->ExpectAsPixelByPixel(plane, start, {{double{this->Wall}, 0.0}}, this->Wall));
            }
}

TYPED_TEST(FloodRegion, IsWrittenOnceByAWordThatDoesNotBound) {
    using T = TypeParam;
    for (const auto &layout : this->Layouts)
        for (const auto &[value, tolerance, word] :
             {std::tuple{double{this->Wall}, 0.0, T{5}}, std::tuple{1.0, -4.0, T{1}}, std::tuple{3.5, 0.0, T{3}}}) {
            SCOPED_TRACE(testing::Message() << layout.Name << ", value " << value << ", tolerance " << tolerance);
            Plane<T> plane(97, 31, layout);
            const orvBase::Point start = this->DrawStart(plane);
            this->Draw(plane, start, 30);
            ASSERT_NO_FATAL_FAILURE(this->ExpectAsPixelByPixel(plane, start, {{value, tolerance}}, word));
        }
}

TYPED_TEST(FloodRegion, GoesByTheToleranceWhereTheWordBoundsByItsDistance) {
    using T = TypeParam;
    Plane<T> plane(83, 19, this->Layouts[0]);
    const orvBase::Point start = this->DrawStart(plane);
    this->Draw(plane, start, 35);
    ASSERT_NO_FATAL_FAILURE(this->ExpectAsPixelByPixel(plane, start, {{0.0, -5.0}}, T{9}));
}

TEST(FloodRegionOfSharedPixels, IsReachedInTheOrderOfTheWalk) {
    std::uint8_t pixels[4] = {0, 0, 0, 0};
    // Columns 0 and 1 are one pixel, and so on: a filled pixel bounds at the place beside it, too.
    VPAEntry table[] = {{0, 0}, {0, 0}, {1, 0}, {1, 0}, {2, 0}, {2, 0}};
    const Image::PlaneView view = {reinterpret_cast<char *>(pixels), table, table, 6, 1, 1, 0, 0};
    FillRegion<std::uint8_t>(view, {3, 0}, {{9.0, 0.0}}, 9);
    EXPECT_EQ(pixels[0], 0);
    EXPECT_EQ(pixels[1], 9);
    EXPECT_EQ(pixels[2], 9);
    EXPECT_EQ(pixels[3], 0);
}

} // namespace
