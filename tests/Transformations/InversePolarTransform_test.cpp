/* Rolling unrolled rings up: where each row and column goes, sectors, which pixels stay as they are, which planes are
 * written, targets that share memory with the source. */
#include "Transformations/PolarModel.h"

namespace {

using namespace PolarModel;

constexpr double Degree = Pi / 180;

/// Flat planes of bytes.
std::unique_ptr<FakeImage> FlatImage(std::intptr_t width, std::intptr_t height, std::uint8_t value) {
    return PlainImage(width, height, 0x8, {Flat<std::uint8_t>(width * height, value)});
}

template <class T>
T ValueAt(FakeImage &image, std::intptr_t x, std::intptr_t y, std::size_t plane = 0) {
    T value;
    std::memcpy(&value, image.PixelAddress(plane, x, y), sizeof value);
    return value;
}

/// Visits the pixels of a target as polar coordinates: the radius and the angle of [0, 360) around the centre.
template <class Visit>
void ForEachPixel(FakeImage &image, double centreX, double centreY, Visit visit) {
    const ImageSize size = SizeOf(image.Handle());
    for (std::intptr_t y = 0; y < size.Height; ++y)
        for (std::intptr_t x = 0; x < size.Width; ++x) {
            const double dx = static_cast<double>(x) - centreX, dy = static_cast<double>(y) - centreY;
            const double angle = std::atan2(dy, dx) / Degree;
            SCOPED_TRACE(testing::Message() << "pixel " << x << ", " << y);
            visit(x, y, std::hypot(dx, dy), angle < 0 ? angle + 360 : angle);
        }
}

/// A sector of 23 columns for radii 10 to 20, all 7, rolled up in an image of 1s. It covers 1.6 of 2 pi.
std::unique_ptr<FakeImage> RolledSector(double start) {
    const auto polar = FlatImage(23, 12, 7);
    auto target = FlatImage(45, 45, 1);
    EXPECT_TRUE(RollUp(polar->Handle(), target->Handle(), {22, 22, start, 10}));
    return target;
}
constexpr double SectorExtent = 1.6 / Degree;

} // namespace

TEST(InversePolarTransform, ReadsRowsByTheRadiusAndColumnsByTheAngle) {
    const auto polar = RealImage(94, 12, [](double x, double y) { return x + 1000 * y; });
    const auto target = RealImage(45, 45, [](double, double) { return -1.0; });
    ClearReports();
    ASSERT_TRUE(InversePolarTransform(polar->Handle(), target->Handle(), 22, 22, 0, 10));
    ExpectNoReport();
    EXPECT_EQ(ValueAt<double>(*target, 42, 22), 1000) << "the outer radius shows row 1";
    EXPECT_EQ(ValueAt<double>(*target, 32, 22), 11000) << "the inner radius shows the last row";
    EXPECT_NEAR(ValueAt<double>(*target, 22, 42), 1000 + 7.5 * Pi, 1e-9) << "the y axis is at a quarter";
    ForEachPixel(*target, 22, 22, [&](auto x, auto y, double radius, double angle) {
        const double column = angle * Degree * 15;
        if (radius < 9.999 || radius > 20.001) {
            ASSERT_EQ(ValueAt<double>(*target, x, y), -1);
        } else if (column < 93) {
            ASSERT_NEAR(ValueAt<double>(*target, x, y), column + 1000 * (21 - radius), 1e-7);
        }
    });
    EXPECT_EQ(polar->Count(), 1);
    EXPECT_EQ(target->Count(), 1);
}

TEST(InversePolarTransform, TurnsTheOtherWayRoundThanUnrolling) {
    const auto polar = RealImage(94, 12, [](double x, double) { return x; });
    for (const double start : {30.0, 90.0, -45.5, 123.0, 500.0, -1000.0, 36030.0}) {
        const auto target = RealImage(45, 45, [](double, double) { return -1.0; });
        ASSERT_TRUE(InversePolarTransform(polar->Handle(), target->Handle(), 22, 22, start, 10));
        ForEachPixel(*target, 22, 22, [&](auto x, auto y, double radius, double angle) {
            double turned = std::fmod(angle + start, 360.0);
            turned = turned < 0 ? turned + 360 : turned;
            const double column = turned * Degree * 15;
            if (radius > 10 && radius < 20 && column > 0.01 && column < 93) {
                ASSERT_NEAR(ValueAt<double>(*target, x, y), column, 1e-7) << start;
            }
        });
    }
}

TEST(InversePolarTransform, AFullCircleComesBackOneRowFartherOut) {
    const auto scene = [](double x, double y) { return 3 * x + 5 * y; };
    const auto source = RealImage(101, 101, scene);
    for (const double start : {0.0, 25.0, -70.0}) {
        Handle polar;
        ASSERT_TRUE(CreatePolarImage(source->Handle(), polar.Out(), 50, 50, start, 20, 40));
        const auto target = RealImage(101, 101, [](double, double) { return 0.0; });
        ASSERT_TRUE(InversePolarTransform(polar.Get(), target->Handle(), 50, 50, start, 20));
        double largest = 0;
        ForEachPixel(*target, 50, 50, [&](auto x, auto y, double radius, double angle) {
            if (radius < 20.001 || radius > 39.999 || std::fmod(angle + start + 360, 360.0) > 357)
                return;
            const double turned = (angle + 2 * start) * Degree;
            const double told = scene(50 + (radius - 1) * std::cos(turned), 50 + (radius - 1) * std::sin(turned));
            largest = std::max(largest, std::fabs(ValueAt<double>(*target, x, y) - told));
        });
        EXPECT_LT(largest, 0.05) << "of values up to 800, when started at " << start;
        EXPECT_GT(largest, 0) << "columns are only near each other";
    }
}

TEST(InversePolarTransform, WritesThePixelsOnBothRadiiAndKeepsThoseBeyond) {
    const auto polar = FlatImage(30, 4, 7);
    const auto target = FlatImage(21, 21, 1);
    ASSERT_TRUE(RollUp(polar->Handle(), target->Handle(), {10, 10, 0, 3})); // radii 3 to 5
    const auto row = [&](std::intptr_t y) {
        PlaneBytes values;
        for (std::intptr_t x = 0; x < 21; ++x)
            values.push_back(ValueAt<std::uint8_t>(*target, x, y));
        return values;
    };
    EXPECT_EQ(row(10), (PlaneBytes{1, 1, 1, 1, 1, 7, 7, 7, 1, 1, 1, 1, 1, 7, 7, 7, 1, 1, 1, 1, 1}));
    EXPECT_EQ(row(14), (PlaneBytes{1, 1, 1, 1, 1, 1, 1, 7, 7, 7, 7, 7, 7, 7, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(row(4), PlaneBytes(21, 1));
    EXPECT_EQ(row(16), PlaneBytes(21, 1));
}

TEST(InversePolarTransform, KeepsPixelsOutsideTheRingToTheLastBit) {
    for (const TDataType type : PixelTypes) {
        const auto content = RandomPlanes(31 * 29, 1, type, type, Content::Wild);
        const auto target = PlainImage(31, 29, type, content);
        const auto polar = PlainImage(30, 4, type, RandomPlanes(30 * 4, 1, type, 5, Content::Wild));
        const std::size_t size = PixelSize(type);
        ASSERT_TRUE(RollUp(polar->Handle(), target->Handle(), {15, 14, 20, 7}));
        ForEachPixel(*target, 15, 14, [&](auto x, auto y, double radius, double) {
            if (radius < 6.999 || radius > 9.001) {
                ASSERT_EQ(std::memcmp(target->PixelAddress(0, x, y),
                                      content[0].data() + static_cast<std::size_t>(y * 31 + x) * size, size),
                          0);
            }
        });
    }
}

TEST(InversePolarTransform, ASectorStretchesOverTheCircleUpToTheOutsideValue) {
    const auto target = RolledSector(0);
    ForEachPixel(*target, 22, 22, [&](auto x, auto y, double radius, double angle) {
        if (radius > 10 && radius < 20 && std::fabs(angle - 345) > 0.01) {
            ASSERT_EQ(ValueAt<std::uint8_t>(*target, x, y), angle < 345 ? 7 : 129) << "24 columns for 360 degrees";
        }
    });
}

TEST(InversePolarTransform, KeepsPixelsBeyondASectorOnTheSideBeforeItsStart) {
    const auto target = RolledSector(-90);
    ForEachPixel(*target, 22, 22, [&](auto x, auto y, double radius, double angle) {
        if (radius > 10 && radius < 20 && std::fabs(angle - 90) > 0.01) {
            ASSERT_EQ(ValueAt<std::uint8_t>(*target, x, y), angle < 90 ? 1 : 7);
        }
    });
}

TEST(InversePolarTransform, WritesTheEndOfASectorThatPassesTheXAxis) {
    const auto target = RolledSector(60); // from 300 degrees
    const double end = SectorExtent - 60;
    ForEachPixel(*target, 22, 22, [&](auto x, auto y, double radius, double angle) {
        if (radius > 10 && radius < 20 && std::fabs(angle - 300) > 0.01 && std::fabs(angle - end) > 0.01) {
            ASSERT_EQ(ValueAt<std::uint8_t>(*target, x, y), angle > end && angle < 300 ? 1 : 7) << angle;
        }
    });
}

TEST(InversePolarTransform, AWidthThatReachesTheWholeCircleKeepsNothing) {
    const auto polar = FlatImage(94, 12, 7), target = FlatImage(45, 45, 1);
    ASSERT_TRUE(RollUp(polar->Handle(), target->Handle(), {22, 22, -90, 10}));
    ForEachPixel(*target, 22, 22, [&](auto x, auto y, double radius, double angle) {
        if (radius > 10 && radius < 20) {
            ASSERT_NE(ValueAt<std::uint8_t>(*target, x, y), 1) << angle;
        }
    });
}

TEST(InversePolarTransform, PlanesOfAnotherDataTypeAreLeftAloneAndTheResultIsTrue) {
    const std::vector<std::pair<TDataType, TDataType>> unequal{{0x8, 0x108}, {0x8, 0x408}, {0x8, 0x10}, {0x20, 0x220},
                                                               {0x18, 0x8},  {0x8, 0x18},  {0x8, 0x9}};
    for (const auto &[type, other] : unequal) {
        const auto polar = MixedImage(30, 4, {type, 0x10}, {PlaneBytes(30 * 4 * 4, 7), PlaneBytes(30 * 4 * 2, 7)});
        const auto target = MixedImage(21, 21, {other, 0x10}, {PlaneBytes(21 * 21 * 4), PlaneBytes(21 * 21 * 2)});
        ClearReports();
        EXPECT_TRUE(RollUp(polar->Handle(), target->Handle(), {10, 10, 0, 3})) << type << " and " << other;
        ExpectNoReport();
        EXPECT_EQ(PixelBytes(target->Handle(), 0), PlaneBytes(21 * 21 * PixelSize(other)));
        EXPECT_EQ(ValueAt<std::uint16_t>(*target, 14, 10, 1), 0x707) << "the next plane is written";
    }
}

TEST(InversePolarTransform, WritesAsManyPlanesAsBothImagesHave) {
    for (const auto &[from, into] : {std::pair<std::intptr_t, std::intptr_t>{3, 2}, {1, 3}, {2, 0}, {0, 2}}) {
        const auto polar = FakeImage::Planar(30, 4, from, 0x8), target = FakeImage::Planar(21, 21, into, 0x8);
        std::fill(polar->Pixels.begin(), polar->Pixels.end(), std::uint8_t{7});
        EXPECT_TRUE(RollUp(polar->Handle(), target->Handle(), {10, 10, 0, 3}));
        for (std::intptr_t plane = 0; plane < into; ++plane)
            EXPECT_EQ(ValueAt<std::uint8_t>(*target, 14, 10, static_cast<std::size_t>(plane)), plane < from ? 7 : 0);
    }
}

TEST(InversePolarTransform, APlaneOfNoPixelTypeGivesFalseAndTheOthersAreWritten) {
    for (const TDataType odd : {0x18u, 0x80u, 0x210u, 0x0u}) {
        const std::vector<TDataType> types{0x8, odd, 0x8};
        const auto polar =
            MixedImage(30, 4, types, {PlaneBytes(120, 7), PlaneBytes(120 * 16, 7), PlaneBytes(120, 9)});
        const auto target = MixedImage(21, 21, types, {PlaneBytes(441), PlaneBytes(441 * 16), PlaneBytes(441)});
        ClearReports();
        EXPECT_FALSE(RollUp(polar->Handle(), target->Handle(), {10, 10, 0, 3})) << odd;
        ExpectNoReport();
        EXPECT_EQ(ValueAt<std::uint8_t>(*target, 14, 10, 0), 7);
        EXPECT_EQ(ValueAt<std::uint8_t>(*target, 14, 10, 2), 9) << "the plane behind it is written as well";
        EXPECT_EQ(polar->Count(), 1);
        EXPECT_EQ(target->Count(), 1);
    }
}

TEST(InversePolarTransform, TheOverlayRuleIsThatOfTheSource) {
    const auto flat = [](TDataType type, std::intptr_t width, std::intptr_t height, std::uint8_t even,
                         std::uint8_t odd) {
        PlaneBytes bytes;
        for (std::intptr_t i = 0; i < width * height; ++i)
            bytes.push_back(i % width % 2 != 0 ? odd : even);
        return PlainImage(width, height, type, {bytes});
    };
    const auto polar = flat(0x408, 94, 12, 101, 100), target = flat(0x408, 45, 45, 1, 1);
    const auto plainTwin = flat(0x8, 94, 12, 101, 100), plainTarget = flat(0x8, 45, 45, 1, 1);
    ASSERT_TRUE(RollUp(polar->Handle(), target->Handle(), {22, 22, 0, 10}));
    ASSERT_TRUE(RollUp(plainTwin->Handle(), plainTarget->Handle(), {22, 22, 0, 10}));
    ForEachPixel(*target, 22, 22, [&](auto x, auto y, double radius, double angle) {
        const double column = angle * Degree * 15, fraction = column - std::floor(column);
        if (radius < 10.1 || radius > 19.9 || column > 93 || fraction < 0.001)
            return;
        const bool even = static_cast<int>(column) % 2 == 0;
        ASSERT_EQ(ValueAt<std::uint8_t>(*target, x, y), even ? 101 : 100) << "bit 0 of the pixel left above";
        ASSERT_EQ(ValueAt<std::uint8_t>(*plainTarget, x, y), even && fraction < 0.0625 ? 101 : 100);
    });
}

TEST(InversePolarTransform, ATargetThatIsTheSourceIsReadAndWrittenInTheOrderOfTheWalk) {
    for (const TDataType type : PixelTypes)
        for (const Roll &roll : {Roll{10, 17, 0, 4}, Roll{15, 16, 40, 2}, Roll{8, 30, -77, 15}}) {
            const auto content = RandomPlanes(33 * 14, 2, type, type, Content::Tame);
            const auto image = PlainImage(33, 14, type, content), twin = PlainImage(33, 14, type, content);
            RollUpByModel(twin->Handle(), twin->Handle(), roll);
            ASSERT_TRUE(RollUp(image->Handle(), image->Handle(), roll));
            ASSERT_NO_FATAL_FAILURE(ExpectEqualPlanes(image->Handle(), twin->Handle())) << type;
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(InversePolarTransform, ATargetOverTheMemoryOfTheSourceIsReadAndWrittenInTheOrderOfTheWalk) {
    for (const TDataType type : PixelTypes)
        for (const std::intptr_t shift : {0, 1, 40, 100}) {
            const auto size = static_cast<std::intptr_t>(PixelSize(type));
            const auto content = RandomPlanes(94 * 30, 1, type, type, Content::Tame);
            const auto polar = PlainImage(94, 12, type, {content[0]}), twin = PlainImage(94, 12, type, {content[0]});
            FakeImage target(45, 45), targetTwin(45, 45);
            for (const auto &[view, under] : {std::pair{&target, polar.get()}, {&targetTwin, twin.get()}})
                view->AddPlane(
                    under->Pixels.data() + shift * size, type, [&](auto x) { return x * size; },
                    [&](auto y) { return y * 47 * size; });
            RollUpByModel(twin->Handle(), targetTwin.Handle(), {22, 22, 10, 10});
            ASSERT_TRUE(RollUp(polar->Handle(), target.Handle(), {22, 22, 10, 10}));
            ASSERT_EQ(polar->Pixels, twin->Pixels) << "type " << type << ", shifted by " << shift;
        }
}

TEST(InversePolarTransform, TheLastWriteStaysWherePixelsOfTheTargetAreOne) {
    const auto polar = RealImage(94, 12, [](double x, double y) { return x + 1000 * y; });
    for (const bool columns : {true, false}) {
        FakeImage target(45, 45, 45 * 8), twin(45, 45, 45 * 8);
        for (FakeImage *image : {&target, &twin})
            image->AddPlane(
                image->Pixels.data(), 0x240, [&](auto x) { return columns ? x * 8 : 0; },
                [&](auto y) { return columns ? 0 : y * 8; });
        ExpectRolledUpAsTold(polar->Handle(), target.Handle(), twin.Handle(), {22, 22, 5, 10});
        EXPECT_NE(target.Pixels, std::vector<std::uint8_t>(45 * 8));
    }
}
