/* Sources that touch an unreadable page on either side, as a whole or with each row: a byte read too far is a fault.
 * The wide reads of a faster path and the neighbours of the last column and row are what this is about. */
#include "Image/FencedPiece.h"
#include "Transformations/TransformChecks.h"

namespace {

using namespace TransformModel;
using Fence = FencedBlock::Fence;

class AffineNearUnreadablePages : public testing::TestWithParam<TDataType> {};
INSTANTIATE_TEST_SUITE_P(TenPixelTypes, AffineNearUnreadablePages, testing::ValuesIn(PixelTypes), TypeName);

/// Fills the image's pixels and transforms it in all ways.
void ExpectEverythingAsModel(FakeImage &image, std::intptr_t width, std::intptr_t height, TDataType type,
                             const std::vector<NamedMatrix> &matrices) {
    const auto planes = SizeOf(image.Handle()).Planes;
    WriteContent(image, RandomPlanes(width * height, planes, type, 3, Content::Wild), width, height, type);
    const ModelSource source(image.Handle());
    for (const auto &[name, matrix] : matrices) {
        SCOPED_TRACE(testing::Message() << name << ", " << planes << " planes of " << width << " x " << height);
        ASSERT_NO_FATAL_FAILURE(ExpectWholeAsModel(image.Handle(), source, matrix));
    }
    const auto right = static_cast<double>(width), bottom = static_cast<double>(height);
    for (const double shift : {-0.5, 0.0, 0.125, 0.96875}) {
        const TArea area = RectArea(shift, shift, right + shift, bottom + shift);
        ASSERT_NO_FATAL_FAILURE(ExpectAreaAsModel(image.Handle(), source, area, IdentityMap));
        ASSERT_NO_FATAL_FAILURE(ExpectSubImageAsModel(image.Handle(), source, area));
        ASSERT_NO_FATAL_FAILURE(
            ExpectAreaSubImageAsModel(image.Handle(), source, {0.0, 0.0, 0.0, bottom, right, shift}));
        ASSERT_NO_FATAL_FAILURE(
            ExpectTransformedAsModel(image.Handle(), source, width + 1, height + 1, [shift](double *x, double *y) {
                *x += shift;
                *y += shift;
            }));
    }
}

std::vector<NamedMatrix> AllTurns() {
    static constexpr const char *Names[] = {"smaller", "as large", "larger"};
    constexpr double scales[] = {0.6, 1.0, 1.9};
    std::vector<NamedMatrix> turns = Matrices();
    for (int degrees = 0; degrees < 360; degrees += 10)
        turns.push_back({Names[degrees / 10 % 3], Turned(degrees, scales[degrees / 10 % 3])});
    return turns;
}

constexpr ImageSize Sizes[] = {{1, 1, 1}, {3, 1, 1}, {1, 2, 1}, {1, 1, 5}, {3, 3, 2}, {1, 17, 3}, {3, 33, 5}};

TEST_P(AffineNearUnreadablePages, ReadsNothingOutsideThePixelsOfAnyLayout) {
    for (const auto &size : Sizes)
        for (const auto &rule : LayoutRules(size.Width, size.Height, size.Planes, GetParam()))
            for (const Fence fence : {Fence::Behind, Fence::Before}) {
                SCOPED_TRACE(rule.Name);
                std::intptr_t lowest = 0, highest = 0;
                for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
                    for (std::intptr_t i = 0; i < size.Width * size.Height; ++i) {
                        const auto offset = rule.X(plane, i % size.Width) + rule.Y(plane, i / size.Width);
                        lowest = std::min(lowest, offset);
                        highest = std::max(highest, offset);
                    }
                const FencedBlock block(static_cast<std::size_t>(highest - lowest) + PixelSize(GetParam()), fence);
                FakeImage image(size.Width, size.Height);
                for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
                    image.AddPlane(
                        block.Data() - lowest, GetParam(), [&](std::intptr_t x) { return rule.X(plane, x); },
                        [&](std::intptr_t y) { return rule.Y(plane, y); });
                ASSERT_NO_FATAL_FAILURE(
                    ExpectEverythingAsModel(image, size.Width, size.Height, GetParam(), Matrices()));
            }
}

TEST_P(AffineNearUnreadablePages, ReadsNothingBesideAnyRow) {
    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
    for (const std::intptr_t width : {1, 2, 3, 9, 16, 33})
        for (const std::intptr_t height : {1, 2, 5})
            for (const std::intptr_t step : {size, 3 * size, -size})
                for (const Fence fence : {Fence::Behind, Fence::Before}) {
                    const std::intptr_t reach = (width - 1) * step;
                    const auto bytes = static_cast<std::size_t>(std::abs(reach) + size);
                    std::vector<std::unique_ptr<FencedBlock>> rows;
                    for (std::intptr_t y = 0; y < height; ++y)
                        rows.push_back(std::make_unique<FencedBlock>(bytes, fence));
                    FakeImage image(width, height);
                    const std::uint8_t *const first = rows.front()->Data();
                    image.AddPlane(
                        rows.front()->Data() + (step < 0 ? -reach : 0), GetParam(),
                        [=](std::intptr_t x) { return x * step; },
                        [&](std::intptr_t y) {
                            return static_cast<std::intptr_t>(
                                reinterpret_cast<std::uintptr_t>(rows[static_cast<std::size_t>(y)]->Data()) -
                                reinterpret_cast<std::uintptr_t>(first));
                        });
                    SCOPED_TRACE(testing::Message() << "step " << step);
                    ASSERT_NO_FATAL_FAILURE(ExpectEverythingAsModel(image, width, height, GetParam(), Matrices()));
                }
}

TEST_P(AffineNearUnreadablePages, ReadsNothingOutsideThePixelsAtAnyAngle) {
    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
    for (const ImageSize &extent : {ImageSize{1, 40, 23}, ImageSize{3, 21, 40}})
        for (const Fence fence : {Fence::Behind, Fence::Before}) {
            const std::intptr_t step = extent.Planes * size;
            const FencedBlock block(static_cast<std::size_t>(step * extent.Width * extent.Height), fence);
            FakeImage image(extent.Width, extent.Height);
            for (std::intptr_t plane = 0; plane < extent.Planes; ++plane)
                image.AddPlane(
                    block.Data() + plane * size, GetParam(), [=](std::intptr_t x) { return x * step; },
                    [&](std::intptr_t y) { return y * step * extent.Width; });
            ASSERT_NO_FATAL_FAILURE(
                ExpectEverythingAsModel(image, extent.Width, extent.Height, GetParam(), AllTurns()));
        }
}

} // namespace
