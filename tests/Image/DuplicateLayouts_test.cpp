// Duplicates against a naive copy, bit for bit: ten pixel types, one to four planes, all layouts and their turned,
// rescaled and repeated views. Set ORV_TEST_CASE to a number to run that case alone.
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

#include <array>
#include <cstdlib>

namespace {

using namespace TestSupport;

constexpr TDataType PixelTypes[] = {0x8, 0x108, 0x10, 0x110, 0x20, 0x120, 0x40, 0x140, 0x220, 0x240};

struct Extent {
    std::intptr_t Width, Height;
};
constexpr Extent Extents[] = {{1, 1}, {1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 65}, {16, 16}, {17, 31}};

/// The naive copy: every pixel through the source's own table, rows then columns.
std::vector<PlaneBytes> NaiveCopy(void *image) {
    std::vector<PlaneBytes> planes;
    for (std::intptr_t plane = 0; plane < SizeOf(image).Planes; ++plane)
        planes.push_back(PixelBytes(image, plane));
    return planes;
}

/// Duplicates the image and compares size, types and every byte with the naive copy made before.
void ExpectEqualDuplicate(void *image) {
    const auto expected = NaiveCopy(image);
    Handle copy;
    ASSERT_EQ(CreateDuplicateImage(image, copy.Out()), 1);
    ASSERT_TRUE(copy);
    ASSERT_EQ(SizeOf(copy.Get()), SizeOf(image));
    for (std::size_t plane = 0; plane < expected.size(); ++plane) {
        ASSERT_EQ(TypeOf(copy.Get(), static_cast<std::intptr_t>(plane)),
                  TypeOf(image, static_cast<std::intptr_t>(plane)));
        ASSERT_TRUE(PixelBytes(copy.Get(), static_cast<std::intptr_t>(plane)) == expected[plane])
            << "plane " << plane << " differs";
    }
    ASSERT_TRUE(NaiveCopy(image) == expected) << "the source has changed";
    ASSERT_EQ(RefCount(image), 1u);
}

void ExpectEqualDuplicatesOfAllTurns(void *image) {
    ASSERT_NO_FATAL_FAILURE(ExpectEqualDuplicate(image));
    for (const std::uint32_t rotation : {1u, 2u, 3u}) {
        Handle view, again;
        ASSERT_TRUE(CreateRotatedImageMap(image, rotation, view.Out()));
        SCOPED_TRACE(testing::Message() << "turned by rotation " << rotation);
        ASSERT_NO_FATAL_FAILURE(ExpectEqualDuplicate(view.Get()));
        ASSERT_TRUE(CreateRotatedImageMap(view.Get(), 3, again.Out()));
        view.Reset(); // the second view is the only holder of the first
        ASSERT_NO_FATAL_FAILURE(ExpectEqualDuplicate(again.Get()));
    }
}

class DuplicateOfEachType : public testing::TestWithParam<TDataType> {};

TEST_P(DuplicateOfEachType, EqualsTheNaiveCopyForEveryLayoutAndTurn) {
    std::uint32_t seed = GetParam();
    for (const auto &[width, height] : Extents)
        for (std::intptr_t planes = 1; planes <= 4; ++planes)
            for (const auto &image : MakeLayouts(width, height, planes, GetParam(), ++seed)) {
                SCOPED_TRACE(testing::Message()
                             << image.Name << ", " << planes << " planes of " << width << " x " << height);
                ASSERT_TRUE(NaiveCopy(image.Get()) == image.Content);
                ASSERT_NO_FATAL_FAILURE(ExpectEqualDuplicatesOfAllTurns(image.Get()));
            }
}

TEST_P(DuplicateOfEachType, EqualsTheNaiveCopyOfTheLibrarysOwnLayouts) {
    std::mt19937 random(GetParam());
    for (const auto &[width, height] : Extents)
        for (std::intptr_t planes = 1; planes <= 4; ++planes) {
            Handle image;
            ASSERT_TRUE(GetParam() == 0x8 ? CreateGenericImage(planes, width, height, planes % 2 == 0, image.Out())
                                          : CreateGenericImageDT(planes, width, height, GetParam(), image.Out()));
            for (std::intptr_t plane = 0; plane < planes; ++plane)
                for (std::intptr_t y = 0; y < height; ++y)
                    for (std::intptr_t x = 0; x < width; ++x)
                        for (std::size_t byte = 0; byte < PixelSize(GetParam()); ++byte)
                            AccessOf(image.Get(), plane).At(x, y)[byte] = static_cast<std::uint8_t>(random());
            SCOPED_TRACE(testing::Message() << planes << " planes of " << width << " x " << height);
            ASSERT_NO_FATAL_FAILURE(ExpectEqualDuplicatesOfAllTurns(image.Get()));
        }
}

std::string TypeName(const testing::TestParamInfo<TDataType> &info) {
    const char *const kind = (info.param & DataTypeFloat) != 0    ? "Float"
                             : (info.param & DataTypeSigned) != 0 ? "Signed"
                                                                  : "Unsigned";
    return kind + std::to_string(info.param & DataTypeBitsMask);
}
INSTANTIATE_TEST_SUITE_P(TenPixelTypes, DuplicateOfEachType, testing::ValuesIn(PixelTypes), TypeName);

/// Random tables over one block: rescaled, cut, repeated, mirrored and scattered axes in any combination.
class RandomImage {
public:
    explicit RandomImage(std::uint32_t number) : random(number) {
        width = Pick(1, 40);
        height = Pick(1, 40);
        const TDataType type = PixelTypes[static_cast<std::size_t>(Pick(0, 9))];
        const auto size = static_cast<std::intptr_t>(PixelSize(type));
        const std::intptr_t planes = Pick(1, 4), columns = Pick(1, 50), rows = Pick(1, 50);
        const std::intptr_t pad = Pick(0, 3), plane = rows * (columns * size + pad);
        image = std::make_unique<FakeImage>(width, height, static_cast<std::size_t>(plane * planes));
        for (auto &byte : image->Pixels)
            byte = static_cast<std::uint8_t>(Pick(0, 3) == 0 ? Pick(0, 1) * 255 : Pick(0, 255));
        auto x = Axis(width, columns), y = Axis(height, rows);
        for (std::intptr_t k = 0; k < planes; ++k) {
            if (Pick(0, 2) == 0)
                x = Axis(width, columns);
            if (k > 0 && Pick(0, 3) == 0)
                y = Axis(height, rows);
            image->AddPlane(
                image->Pixels.data() + k * plane, type,
                [&](std::intptr_t i) { return x[static_cast<std::size_t>(i)] * size; },
                [&](std::intptr_t j) { return y[static_cast<std::size_t>(j)] * (columns * size + pad); });
        }
    }
    void *Get() { return image->Handle(); }

private:
    std::mt19937 random;
    std::intptr_t width, height;
    std::unique_ptr<FakeImage> image;

    std::intptr_t Pick(std::intptr_t low, std::intptr_t high) {
        return low + static_cast<std::intptr_t>(random() % static_cast<std::uint64_t>(high - low + 1));
    }
    /// Source positions of one axis.
    std::vector<std::intptr_t> Axis(std::intptr_t count, std::intptr_t available) {
        std::vector<std::intptr_t> positions;
        const std::intptr_t kind = Pick(0, 4), start = Pick(0, available - 1);
        for (std::intptr_t i = 0; i < count; ++i) {
            const std::intptr_t rescaled = i * available / count;
            const std::intptr_t options[] = {rescaled, available - 1 - rescaled, (start + i) % available,
                                             std::min(start + i, available - 1), Pick(0, available - 1)};
            positions.push_back(options[kind]);
        }
        return positions;
    }
};

TEST(CreateDuplicateImageAtRandom, EqualsTheNaiveCopy) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    const std::uint32_t first = single != nullptr ? static_cast<std::uint32_t>(std::stoul(single)) : 1;
    const std::uint32_t last = single != nullptr ? first : 1500;
    for (std::uint32_t number = first; number <= last; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomImage image(number);
        ASSERT_NO_FATAL_FAILURE(ExpectEqualDuplicatesOfAllTurns(image.Get()));
    }
}

/// How one plane of an interleaved image walks over the block.
struct PlaneWalk {
    std::intptr_t Start, X, Y;
};

/// Three planes over the middle of one block, each with its own walk.
std::unique_ptr<FakeImage> OfThreeWalks(const std::array<PlaneWalk, 3> &walks, std::intptr_t width,
                                        std::intptr_t height) {
    constexpr std::intptr_t reach = 6000;
    auto image = std::make_unique<FakeImage>(width, height, static_cast<std::size_t>(2 * reach));
    std::mt19937 random(11);
    for (auto &byte : image->Pixels)
        byte = static_cast<std::uint8_t>(random());
    for (const auto &walk : walks)
        image->AddPlane(
            image->Pixels.data() + reach, 0x8, [&](std::intptr_t i) { return walk.Start + i * walk.X; },
            [&](std::intptr_t j) { return j * walk.Y; });
    return image;
}

TEST(CreateDuplicateImage, ReadsEachOfThreeInterleavedPlanesByItsOwnTable) {
    constexpr std::intptr_t width = 19, height = 18, row = 3 * width + 3;
    const PlaneWalk changes[] = {{0, 3, row},       {0, -3, row}, {0, 3, -row},      {0, 3, 2 * row}, {0, 3, 0},
                                 {0, 6, row},       {0, 0, row},  {3, 3, row},       {-1, 3, row},    {row, 3, row},
                                 {0, 1, 3 * width}, {0, row, 3},  {0, row, 3 * row}, {-2, -3, -row}};
    const std::array<std::intptr_t, 3> orders[] = {{0, 1, 2}, {2, 1, 0}, {1, 2, 0}, {0, 0, 2}};
    for (const auto &order : orders)
        for (const PlaneWalk &all : {PlaneWalk{0, 3, row}, PlaneWalk{0, -3, -row}, PlaneWalk{0, -3, row}})
            for (std::size_t changed = 0; changed < 3; ++changed)
                for (std::size_t change = 0; change < std::size(changes); ++change) {
                    SCOPED_TRACE(testing::Message() << "order " << order[0] << order[1] << order[2] << ", plane "
                                                    << changed << " by change " << change);
                    std::array<PlaneWalk, 3> walks{all, all, all};
                    walks[changed] = changes[change];
                    for (std::size_t plane = 0; plane < 3; ++plane)
                        walks[plane].Start += order[plane];
                    const auto image = OfThreeWalks(walks, width, height);
                    ASSERT_NO_FATAL_FAILURE(ExpectEqualDuplicatesOfAllTurns(image->Handle()));
                }
}

/// An image over exactly its pixels, in memory with an unreadable page on one side.
void ExpectEqualDuplicateAtAFence(Extent extent, std::intptr_t planes, TDataType type, bool interleaved,
                                  FencedBlock::Fence fence) {
    const auto size = static_cast<std::intptr_t>(PixelSize(type));
    const std::intptr_t step = interleaved ? planes * size : size, row = extent.Width * step;
    const auto bytes = static_cast<std::size_t>(extent.Width * extent.Height * planes * size);
    const FencedBlock block(bytes, fence);
    for (std::size_t byte = 0; byte < bytes; ++byte)
        block.Data()[byte] = static_cast<std::uint8_t>(byte * 37 + byte / 256);
    Handle image;
    ASSERT_EQ(CreateImageFromPointer(block.Data(), bytes, extent.Width, extent.Height, planes, type, step, row,
                                     interleaved ? size : row * extent.Height, nullptr, nullptr, nullptr,
                                     image.Out()),
              0);
    ExpectEqualDuplicatesOfAllTurns(image.Get());
    auto *const last = block.Data() + (extent.Height - 1) * row + (extent.Width - 1) * step;
    Handle turned;
    ASSERT_EQ(CreateImageFromPointer(last, bytes, extent.Width, extent.Height, planes, type, -step, -row,
                                     interleaved ? size : row * extent.Height, nullptr, nullptr, nullptr,
                                     turned.Out()),
              0);
    ExpectEqualDuplicatesOfAllTurns(turned.Get());
}

TEST_P(DuplicateOfEachType, ReadsNothingOutsideThePixels) {
    for (const auto &extent : Extents)
        for (std::intptr_t planes = 1; planes <= 4; ++planes)
            for (const bool interleaved : {false, true})
                for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
                    SCOPED_TRACE(testing::Message() << planes << " planes of " << extent.Width << " x "
                                                    << extent.Height << (interleaved ? ", interleaved" : ""));
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectEqualDuplicateAtAFence(extent, planes, GetParam(), interleaved, fence));
                }
}

} // namespace
