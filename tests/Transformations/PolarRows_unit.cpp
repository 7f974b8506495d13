// Rings unrolled and rolled up row by row against the plain step, byte by byte, at every instruction set level, for
// every type and layout; and the angles against those of the C library.
#include <gtest/gtest.h>
#include <numbers>

#include "Scan/LaidOutPlane.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"
#include "Transformations/AnglesOfRow.h"
#include "Transformations/InversePolarTransformer.h"
#include "Transformations/PolarTransformer.h"

namespace {

using namespace Transformations;
using namespace TestSupport;

double Between(std::mt19937_64 &random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}

// ---- angles

void ExpectAnglesOfTheCLibrary(const std::vector<double> &x, double y) {
    const auto count = static_cast<std::intptr_t>(x.size());
    std::vector<double> plain(x.size()), quick(x.size());
    AnglesOfRowPlainly(x.data(), y, count, plain.data());
    AtAllLevels([&](const char *level) {
        AnglesOfRow(x.data(), y, count, quick.data());
        for (std::size_t i = 0; i < x.size(); ++i)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(quick[i]), std::bit_cast<std::uint64_t>(plain[i]))
                << level << ", atan2(" << y << ", " << x[i] << ")";
    });
}

TEST(AnglesOfRow, AreThoseOfTheCLibraryToTheLastBit) {
    std::mt19937_64 random(73);
    for (int number = 0; number < 300; ++number) {
        const double reach = std::exp2(Between(random, -12, 16));
        std::vector<double> x(700);
        for (double &column : x)
            column = Between(random, -reach, reach);
        ASSERT_NO_FATAL_FAILURE(ExpectAnglesOfTheCLibrary(x, Between(random, -reach, reach))) << "case " << number;
    }
}

TEST(AnglesOfRow, PixelsAroundACentreHaveThoseOfTheCLibrary) {
    for (const double centre : {0.0, 0.5, 100.25, 99.9999999, -7.0, 1e-300, 1e6}) {
        std::vector<double> x(301);
        for (std::size_t i = 0; i < x.size(); ++i)
            x[i] = static_cast<double>(i) - 150 - centre;
        for (int y = -70; y <= 70; ++y)
            ASSERT_NO_FATAL_FAILURE(ExpectAnglesOfTheCLibrary(x, y)) << "centre " << centre;
        for (const double y : {-0.0, 1e-320, -1e-200, 1e-17, 3e15})
            ASSERT_NO_FATAL_FAILURE(ExpectAnglesOfTheCLibrary(x, y)) << "centre " << centre;
    }
}

TEST(AnglesOfRow, AnglesNextToPowersOfTwoAndHalfTurnsAreThoseOfTheCLibrary) {
    std::vector<double> x;
    for (const double angle : {1.0, 0.5, 0.25, 0.125, 2.0, std::numbers::pi / 2, std::numbers::pi / 4, 3.0})
        for (int step = -40; step <= 40; ++step)
            x.push_back(std::nextafter(1.0, 2.0) * 100 / std::tan(angle) * (1 + step * 1.2e-16));
    for (const double y : {100.0, -100.0})
        ASSERT_NO_FATAL_FAILURE(ExpectAnglesOfTheCLibrary(x, y));
}

TEST(AnglesOfRow, AnyCountIsWrittenAndNothingBehindIt) {
    for (std::intptr_t count = 0; count < 40; ++count) {
        std::vector<double> x(40, 2.0), angles(40, 9.0);
        AtAllLevels([&](const char *level) {
            AnglesOfRow(x.data(), 1.0, count, angles.data());
            EXPECT_EQ(std::count(angles.begin(), angles.end(), 9.0), 40 - count) << level;
        });
    }
}

TEST(AnglesOrNeighbours, OneOfTheTwoIsThatOfTheCLibrary) {
    std::mt19937_64 random(74);
    std::vector<DoubtfulAngle> doubts(700);
    for (int number = 0; number < 300; ++number) {
        const double reach = std::exp2(Between(random, -12, 16)), y = Between(random, -reach, reach);
        std::vector<double> x(700), plain(x.size()), angles(x.size());
        for (double &column : x)
            column = Between(random, -reach, reach);
        AnglesOfRowPlainly(x.data(), y, 700, plain.data());
        AtAllLevels([&](const char *level) {
            const std::intptr_t found = AnglesOrNeighbours(x.data(), y, 700, angles.data(), doubts.data());
            ASSERT_LT(found, 100) << "doubts are rare";
            for (std::intptr_t i = 0; i < found; ++i) {
                const auto [index, other] = doubts[static_cast<std::size_t>(i)];
                double &angle = angles[static_cast<std::size_t>(index)];
                ASSERT_TRUE(other == std::nextafter(angle, 9.0) || other == std::nextafter(angle, -9.0)) << level;
                if (other == plain[static_cast<std::size_t>(index)])
                    angle = other;
            }
            ASSERT_EQ(angles, plain) << level << ", case " << number;
        });
    }
}

// ---- rings

/// A ring whose centre and radii lie around and beyond a source, or where one unrolled lies in a target.
struct RandomRing {
    double CentreX, CentreY, Start, Range, Inner, Outer;

    RandomRing(std::mt19937_64 &random, double width, double height)
        : CentreX(Between(random, -0.3, 1.3) * width), CentreY(Between(random, -0.3, 1.3) * height),
          Start(Between(random, -400, 400)), Range(random() % 2 == 0 ? 360 : Between(random, 5, 500)),
          Inner(Between(random, -3, 0.5 * height)), Outer(Inner + Between(random, 0, 0.8 * height)) {
        if (random() % 3 == 0) { // whole pixels, which meet the edges of the test of each position
            CentreX = std::floor(CentreX);
            CentreY = std::floor(CentreY);
            Inner = std::floor(Inner);
            Outer = std::floor(Outer);
            Start = 90 * std::floor(Start / 90);
        }
    }
};
std::ostream &operator<<(std::ostream &out, const RandomRing &ring) {
    return out << "centre " << ring.CentreX << ", " << ring.CentreY << ", start " << ring.Start << ", range "
               << ring.Range << ", radii " << ring.Inner << " to " << ring.Outer;
}

/// Which of two numbers that are none a sum passes on is not promised: all of them become one.
template <class T>
std::vector<std::uint8_t> BytesOf(LaidOutPlane<T> &plane) {
    std::vector<T> pixels = plane.Pixels();
    if constexpr (std::is_floating_point_v<T>)
        for (T &pixel : pixels)
            pixel = std::isnan(pixel) ? std::numeric_limits<T>::quiet_NaN() : pixel;
    std::vector<std::uint8_t> bytes(pixels.size() * sizeof(T));
    std::memcpy(bytes.data(), pixels.data(), bytes.size());
    return bytes;
}

template <class T>
void CompareUnrolled(void *image, const RandomRing &ring, PlaneLayout layout) {
    const auto width = static_cast<std::intptr_t>((ring.Inner + ring.Outer) * M_PI * ring.Range / 360 + 0.5);
    const auto height = static_cast<std::intptr_t>(ring.Outer - ring.Inner + 2);
    if (width < 1)
        return;
    const PolarRing unrolled = {ring.CentreX, ring.CentreY, ring.Outer, (ring.Inner + ring.Outer) * M_PI / 2,
                                ring.Start * M_PI / 180};
    const PolarColumns columns(unrolled, width);
    CPolarTransformer<T> transformer(Interface::QueryImage(image), unrolled, columns);
    for (std::intptr_t plane = 0; plane < transformer.Interpolator.SourcePlanes; ++plane) {
        ASSERT_TRUE(transformer.SelectPlane(plane));
        LaidOutPlane<T> plain(width, height, PlaneLayout::Dense);
        transformer.TransformPlainly(plain.View());
        AtAllLevels([&](const char *level) {
            LaidOutPlane<T> target(width, height, layout);
            transformer.Transform(target.View());
            ASSERT_EQ(BytesOf(target), BytesOf(plain)) << level << ", plane " << plane << ", " << ring;
        });
    }
}

struct Size {
    std::intptr_t Width, Height;
};

template <class T>
void CompareRolledUp(void *image, const Size &polar, const Size &size, const RandomRing &ring, PlaneLayout layout) {
    const InversePolarRing rolled = InverseRingOf(static_cast<double>(polar.Width), static_cast<double>(polar.Height),
                                                  ring.CentreX, ring.CentreY, ring.Start, ring.Inner);
    const auto plan = Scan::PlanWalk(rolled.Square, 1000);
    ASSERT_TRUE(plan.has_value());
    const Scan::PixelBounds bounds = Scan::BoundsOf(size.Width, size.Height);
    const auto before = WildPixels<T>(size.Width * size.Height, 5);
    const auto rollUp = [&](LaidOutPlane<T> &target, std::intptr_t plane, InversePolarMethod method) {
        CInversePolarTransformer<T> transformer(Interface::QueryImage(image), rolled, target.View());
        ASSERT_TRUE(transformer.SelectPlane(plane));
        transformer.Transform(*plan, bounds, method);
    };
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        LaidOutPlane<T> plain(size.Width, size.Height, PlaneLayout::Dense, before);
        rollUp(plain, plane, InversePolarMethod::PixelByPixel);
        AtAllLevels([&](const char *level) {
            LaidOutPlane<T> target(size.Width, size.Height, layout, before);
            rollUp(target, plane, InversePolarMethod::RowByRow);
            ASSERT_EQ(BytesOf(target), BytesOf(plain)) << level << ", plane " << plane << ", " << ring;
        });
    }
}

/// Images of all layouts, with and without an overlay, under random rings. compare gets the image, its size, a ring
/// and a layout for the target.
template <class T, class Compare>
void WithRandomRings(std::uint32_t seed, Compare &&compare) {
    std::mt19937_64 random(seed);
    const Size sizes[] = {{1, 1}, {1, 9}, {14, 1}, {67, 41}};
    int number = 0;
    for (const Size &size : sizes)
        for (const TDataType overlay : {TDataType{0}, TDataType{DataTypeOverlay}})
            for (const auto &image : MakeLayouts(size.Width, size.Height, 3, WordOf<T>() | overlay, seed)) {
                const RandomRing ring(random, 60, 50);
                const PlaneLayout layout = AllPlaneLayouts[random() % std::size(AllPlaneLayouts)];
                SCOPED_TRACE(image.Name + ", case " + std::to_string(++number));
                compare(image.Get(), size, ring, layout);
                if (testing::Test::HasFatalFailure())
                    return;
            }
}

template <class T>
class PolarRows : public testing::Test {};
using PixelTypes =
    testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, long, unsigned long, float, double>;
TYPED_TEST_SUITE(PolarRows, PixelTypes);

TYPED_TEST(PolarRows, UnrollsAsThePlainStepFromEveryLayoutAtEveryLevel) {
    WithRandomRings<TypeParam>(7, [](void *image, const Size &, const RandomRing &ring, PlaneLayout layout) {
        CompareUnrolled<TypeParam>(image, ring, layout);
    });
}

TYPED_TEST(PolarRows, RollsUpAsThePlainStepFromEveryLayoutAtEveryLevel) {
    WithRandomRings<TypeParam>(8, [](void *image, const Size &polar, const RandomRing &ring, PlaneLayout layout) {
        for (const Size &size : {Size{63, 50}, Size{1, 40}, Size{600, 3}})
            ASSERT_NO_FATAL_FAILURE(CompareRolledUp<TypeParam>(image, polar, size, ring, layout));
    });
}

TEST(PolarRowsOfDoubles, AngleThatMayBeANeighbouringOneShowsInNoPixel) {
    std::mt19937_64 random(12);
    const auto layouts = MakeLayouts(900, 110, 3, WordOf<double>(), 3);
    RandomRing ring(random, 60, 50);
    ring.CentreX = 120.3, ring.CentreY = 119.6, ring.Inner = 3;
    CompareRolledUp<double>(layouts.front().Get(), {900, 110}, {240, 240}, ring, PlaneLayout::Dense);
}

// ---- the choice

TEST(InversePolarMethod, RowsAreNotForTargetsThatShareMemoryWithTheSourceOrWithThemselves) {
    const auto image = FakeImage::Planar(20, 12, 1, WordOf<unsigned char>());
    const auto choiceFor = [&](const Image::PlaneView &target) {
        return CInversePolarTransformer<unsigned char>(Interface::QueryImage(image->Handle()),
                                                       InverseRingOf(20, 12, 10, 10, 0, 2), target)
            .ChooseMethod();
    };
    LaidOutPlane<unsigned char> apart(20, 12, PlaneLayout::Dense);
    EXPECT_EQ(choiceFor(apart.View()), InversePolarMethod::RowByRow);
    Image::PlaneView shared = apart.View();
    shared.Base = reinterpret_cast<char *>(image->PixelAddress(0, 3, 11));
    EXPECT_EQ(choiceFor(shared), InversePolarMethod::PixelByPixel);
    Image::PlaneView oneColumn = apart.View();
    oneColumn.XStep = 0;
    EXPECT_EQ(choiceFor(oneColumn), InversePolarMethod::PixelByPixel);
}

TEST(FindRingColumns, AreThosePixelsWhoseDistanceLiesBetweenTheRadii) {
    std::mt19937_64 random(9);
    for (int number = 0; number < 400; ++number) {
        const RandomRing random_ring(random, 60, 50);
        const auto height = static_cast<double>(1 + random() % 40);
        const InversePolarRing ring =
            InverseRingOf(100, height, random_ring.CentreX, random_ring.CentreY, 0, random_ring.Inner);
        for (std::intptr_t y = -3; y < 60; ++y) {
            const RingColumns columns = FindRingColumns(ring, y, {-5, 66});
            for (std::intptr_t x = -5; x < 66; ++x) {
                const double dx = static_cast<double>(x) - ring.CentreX, dy = static_cast<double>(y) - ring.CentreY;
                const double squared = dx * dx + dy * dy;
                const auto holds = [x](const ColumnRange &range) { return x >= range.Begin && x < range.End; };
                ASSERT_EQ(holds(columns.Left) || holds(columns.Right),
                          squared >= ring.InnerSquared && squared <= ring.OuterSquared)
                    << "case " << number << ", pixel " << x << ", " << y;
            }
        }
    }
}

} // namespace
