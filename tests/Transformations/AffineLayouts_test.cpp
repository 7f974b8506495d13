// Affine transforms against the naive model, bit for bit: ten pixel types, all layouts, sizes around the lengths of
// vector registers, overlays, mixed types, and random maps. Set ORV_TEST_CASE to a number to run that case alone.
#include "ImageMaps.h"
#include "Transformations/TransformChecks.h"

#include <cstdlib>

namespace {

using namespace TransformModel;

class AffineImageOfEachType : public testing::TestWithParam<TDataType> {};
INSTANTIATE_TEST_SUITE_P(TenPixelTypes, AffineImageOfEachType, testing::ValuesIn(PixelTypes), TypeName);

TEST_P(AffineImageOfEachType, EqualsTheModelForEveryLayoutAndMap) {
    constexpr ImageSize sizes[] = {{1, 1, 1}, {2, 1, 7}, {1, 9, 1}, {4, 5, 3}, {3, 17, 6}, {3, 70, 4}, {4, 33, 3}};
    std::uint32_t seed = GetParam();
    for (const auto &size : sizes)
        for (const TDataType overlay : {TDataType{0}, DataTypeOverlay})
            for (const auto &layout :
                 MakeLayouts(size.Width, size.Height, size.Planes, GetParam() | overlay, ++seed)) {
                const ModelSource source(layout.Get());
                for (const auto &[name, matrix] : Matrices()) {
                    SCOPED_TRACE(testing::Message()
                                 << name << ", " << layout.Name << ", " << size.Planes << " planes of " << size.Width
                                 << " x " << size.Height << ", overlay " << overlay);
                    ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(layout.Get(), source, matrix));
                }
            }
}

TEST_P(AffineImageOfEachType, EqualsTheModelForEveryWidthAndMap) {
    std::vector<std::intptr_t> widths = {63, 64, 65, 129};
    for (std::intptr_t width = 1; width <= 35; ++width)
        widths.push_back(width);
    for (const std::intptr_t width : widths) {
        const auto image = WildImage(width, 4, {GetParam()}, static_cast<std::uint64_t>(width));
        const ModelSource source(image->Handle());
        for (const auto &[name, matrix] : Matrices()) {
            SCOPED_TRACE(testing::Message() << name << ", width " << width);
            ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image->Handle(), source, matrix));
        }
    }
}

TEST_P(AffineImageOfEachType, EqualsTheModelForEveryHeightAndMap) {
    for (const std::intptr_t height : {2, 3, 15, 16, 17, 31, 33, 64, 65}) {
        const auto image = WildImage(3, height, {GetParam()}, static_cast<std::uint64_t>(height));
        const ModelSource source(image->Handle());
        for (const auto &[name, matrix] : Matrices()) {
            SCOPED_TRACE(testing::Message() << name << ", height " << height);
            ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image->Handle(), source, matrix));
        }
    }
}

TEST_P(AffineImageOfEachType, EqualsTheModelForEveryFractionOfAPixel) {
    const auto image = WildImage(21, 5, {GetParam(), GetParam() | DataTypeOverlay}, 9);
    const ModelSource source(image->Handle());
    for (int unit = -20; unit < 260; unit += 3) {
        SCOPED_TRACE(testing::Message() << "unit " << unit);
        const double shift = unit / 256.0;
        ASSERT_NO_FATAL_FAILURE(
            ExpectAreaAsModel(image->Handle(), source, RectArea(shift, 0.0, 21.0 + shift, 5.0 - shift), IdentityMap));
        ASSERT_NO_FATAL_FAILURE(ExpectAreaAsModel(image->Handle(), source,
                                                  RectArea(3.0, -1.0 + shift, 9.0, 6.0 + shift),
                                                  {1.0, 2.0, {1.0, 0.0, 0.0, 2.0}}));
    }
}

TEST_P(AffineImageOfEachType, EqualsTheModelWhenMadeAHundredTimesAsLarge) {
    const auto image = WildImage(3, 2, {GetParam()}, 9);
    const ModelSource source(image->Handle());
    for (const TMatrix &matrix : {TMatrix{100.0, 0.0, 0.0, 100.0}, TMatrix{100.0, 0.0, 0.0, -100.0},
                                  Turned(10.0, 100.0), Turned(90.0, 100.0)})
        ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image->Handle(), source, matrix));
}

TEST_P(AffineImageOfEachType, EqualsTheModelForTheLibrarysOwnImagesAndTheirTurnedViews) {
    for (const std::intptr_t planes : {1, 2, 3}) {
        Handle image;
        ASSERT_TRUE(GetParam() == 8 ? CreateGenericImage(planes, 37, 11, false, image.Out())
                                    : CreateGenericImageDT(planes, 37, 11, GetParam(), image.Out()));
        std::mt19937_64 random(GetParam());
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            ForPixelType(GetParam(), [&](auto zero) {
                for (std::intptr_t i = 0; i < 37 * 11; ++i) {
                    const auto value = RandomValue<decltype(zero)>(random, Content::Wild);
                    std::memcpy(AccessOf(image.Get(), plane).At(i % 37, i / 37), &value, sizeof value);
                }
            });
        const ModelSource source(image.Get());
        for (const auto &[name, matrix] : Matrices())
            ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image.Get(), source, matrix)) << name;
        for (const std::uint32_t rotation : {1u, 2u, 3u}) {
            Handle view;
            ASSERT_TRUE(CreateRotatedImageMap(image.Get(), rotation, view.Out()));
            const ModelSource turned(view.Get());
            for (const auto &[name, matrix] : Matrices())
                ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(view.Get(), turned, matrix)) << name;
        }
    }
}

TEST_P(AffineImageOfEachType, EqualsTheModelForImagesOfManyPixels) {
    const auto content = RandomContent(333, 97, 3, GetParam(), 5);
    for (const auto &rule : PitchRules(333, 97, 3, GetParam())) {
        if (rule.Name != "planar" && rule.Name != "interleavedReversed")
            continue;
        const auto image = MakeExternal(rule, content, 333, 97, GetParam());
        const ModelSource source(image.Get());
        for (const TMatrix &matrix : {Turned(10.0), Turned(185.0), TMatrix{0.5, 0.0, 0.0, 0.5},
                                      TMatrix{1.6, 0.0, 0.0, -1.3}, TMatrix{-0.9, 0.0, 0.0, 1.1}})
            ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image.Get(), source, matrix)) << rule.Name;
    }
}

/// How a plane of an interleaved image walks over the block.
struct PlaneWalk {
    std::intptr_t Start, X, Y;
};

TEST(AffineImages, OfThreeInterleavedPlanesReadEachByItsOwnTable) {
    constexpr std::intptr_t width = 35, height = 6, row = 3 * width + 2, reach = 1000;
    const PlaneWalk changes[] = {{0, 3, row}, {0, -3, row}, {0, 3, -row},  {0, 3, 0},   {0, 6, row},   {0, 0, row},
                                 {3, 3, row}, {-1, 3, row}, {row, 3, row}, {0, row, 3}, {-2, -3, -row}};
    for (const PlaneWalk &all : {PlaneWalk{0, 3, row}, {0, -3, -row}})
        for (std::size_t changed = 0; changed < 3; ++changed)
            for (const PlaneWalk &change : changes) {
                SCOPED_TRACE(testing::Message() << "plane " << changed << " from " << change.Start << " by "
                                                << change.X << " and " << change.Y);
                FakeImage image(width, height, 12 * reach);
                std::mt19937 random(3);
                for (auto &byte : image.Pixels)
                    byte = static_cast<std::uint8_t>(random());
                for (std::size_t plane = 0; plane < 3; ++plane) {
                    const PlaneWalk walk = plane == changed ? change : all;
                    image.AddPlane(
                        image.Pixels.data() + 6 * reach + walk.Start + plane, 8,
                        [=](std::intptr_t i) { return i * walk.X; }, [=](std::intptr_t j) { return j * walk.Y; });
                }
                const ModelSource source(image.Handle());
                for (const TMatrix &matrix : {IdentityMatrix, Turned(10.0), TMatrix{2.0, 0.0, 0.0, 2.0}})
                    ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image.Handle(), source, matrix));
            }
}

TEST(AffineImages, OfMixedTypesTakeTheOverlayOfAnyPlane) {
    for (std::uint32_t overlays = 0; overlays < 64; ++overlays) {
        const auto image =
            WildImage(19, 7, WithOverlays({0x8, 0x110, 0x120, 0x240, 0x108, 0x40}, overlays), overlays);
        const ModelSource source(image->Handle());
        for (const TMatrix &matrix : {IdentityMatrix, Turned(10.0), TMatrix{2.0, 0.0, 0.0, 2.0}}) {
            SCOPED_TRACE(testing::Message() << "overlays " << overlays);
            ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image->Handle(), source, matrix));
        }
    }
}

/// A random image, map and area.
class RandomCase {
public:
    explicit RandomCase(std::uint32_t number) : random_(number) {
        width_ = Pick(1, 80);
        height_ = Pick(1, Pick(0, 3) == 0 ? 1 : 25);
        std::vector<TDataType> types(static_cast<std::size_t>(Pick(1, 4)), AnyType());
        for (auto &type : types)
            type = Pick(0, 3) == 0 ? AnyType() : types.front();
        const auto overlays = static_cast<std::uint32_t>(Pick(0, 1) * Pick(0, 15));
        const bool mixed = std::any_of(types.begin(), types.end(), [&](auto type) { return type != types.front(); });
        if (mixed || Pick(0, 2) == 0) {
            images_.push_back(
                {"mixed", {}, WildImage(width_, height_, WithOverlays(types, overlays), number), nullptr});
            return;
        }
        const TDataType type = types.front() | (overlays % 2 != 0 ? DataTypeOverlay : 0u);
        const auto planes = std::ssize(types);
        const auto content = RandomPlanes(width_ * height_, planes, type, number, Content::Wild);
        const auto rules = LayoutRules(width_, height_, planes, type);
        images_.push_back(MakeFake(rules[static_cast<std::size_t>(Pick(0, std::ssize(rules) - 1))], content, width_,
                                   height_, type));
    }
    void Check() {
        SCOPED_TRACE(testing::Message() << images_.front().Name << ", " << width_ << " x " << height_);
        FakeImage &image = *images_.front().Fake;
        if (Pick(0, 2) == 0)
            image.Coordinates = {Real(width_), Real(height_), AnyMatrix(0.8)};
        const ModelSource source(image.Handle());
        ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image.Handle(), source, AnyMatrix(2.0)));
        ASSERT_NO_FATAL_FAILURE(
            ExpectAreaAsModel(image.Handle(), source, AnyArea(), {Real(900), Real(900), AnyMatrix(1.0)}));
        image.Coordinates = {Real(width_), Real(height_), Turned(Real(360), 0.6 + Real(1))};
        const ModelSource turned(image.Handle());
        ASSERT_NO_FATAL_FAILURE(ExpectSubImageAsModel(image.Handle(), turned, AnyArea()));
        ASSERT_NO_FATAL_FAILURE(ExpectAreaSubImageAsModel(image.Handle(), turned, AnyArea()));
    }

private:
    std::mt19937 random_;
    std::intptr_t width_, height_;
    std::vector<NamedImage> images_;

    std::intptr_t Pick(std::intptr_t low, std::intptr_t high) {
        return low + static_cast<std::intptr_t>(random_() % static_cast<std::uint64_t>(high - low + 1));
    }
    TDataType AnyType() { return PixelTypes[Pick(0, 9)]; }
    double Real(std::intptr_t extent) {
        return static_cast<double>(random_()) * 0x1p-32 * static_cast<double>(extent);
    }
    TMatrix AnyMatrix(double size) {
        const TMatrix upright{(Real(2) + 0.01) * size, 0.0, 0.0, (Real(2) + 0.01) * size};
        const TMatrix any{(Real(4) - 2.0) * size, (Real(4) - 2.0) * size, (Real(4) - 2.0) * size,
                          (Real(4) - 2.0) * size};
        const TMatrix choices[] = {upright, any, Turned(Real(360), size),
                                   Turned(static_cast<double>(Pick(0, 3)) * 90), IdentityMatrix};
        return choices[Pick(0, 4)];
    }
    TArea AnyArea() {
        const auto x = [&] { return Real(width_ + 20) - 10.0; };
        const auto y = [&] { return Real(height_ + 20) - 10.0; };
        const double left = x(), top = y();
        if (Pick(0, 1) == 0)
            return {left, top, x(), y(), x(), y()};
        return RectArea(std::floor(left), std::floor(top), std::floor(left) + std::floor(Real(width_)) + 1.0,
                        std::floor(top) + std::floor(Real(height_)) + 1.0);
    }
};

class AffineImagesAtRandom : public testing::TestWithParam<std::uint32_t> {};
INSTANTIATE_TEST_SUITE_P(Parts, AffineImagesAtRandom, testing::Range(0u, 4u));

TEST_P(AffineImagesAtRandom, EqualTheModel) {
    constexpr std::uint32_t cases = 500;
    const char *const single = std::getenv("ORV_TEST_CASE");
    const std::uint32_t first =
        single != nullptr ? static_cast<std::uint32_t>(std::stoul(single)) : GetParam() * cases;
    const std::uint32_t last = single != nullptr ? first : first + cases - 1;
    for (std::uint32_t number = first; number <= last; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomCase random(number);
        ASSERT_NO_FATAL_FAILURE(random.Check());
    }
}

} // namespace
