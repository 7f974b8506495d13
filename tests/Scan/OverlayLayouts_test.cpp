// Overlays against the naive loop over the pixels, in every byte: all integer types and their pairs, all layouts, and
// images that share memory. Set ORV_TEST_CASE to a number to run that random case alone.
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "Overlays.h"
#include "Scan/StatisticsModel.h"

#include <cstdlib>

namespace {

using namespace TestSupport;

constexpr TDataType IntegerTypes[] = {0x8, 0x108, 0x10, 0x110, 0x20, 0x120, 0x40, 0x140};

struct Extent {
    std::intptr_t Width, Height;
};
constexpr Extent Extents[] = {{1, 1}, {1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 17}};
constexpr std::intptr_t VectorWidths[] = {15,  16,  17,  18,  19,   20,   21,   22,   23,   24,  25,  26,
                                          27,  28,  29,  30,  31,   32,   33,   63,   64,   65,  127, 128,
                                          129, 255, 256, 257, 1023, 1024, 1025, 2047, 2048, 2049};

/// Makes the copy and compares all planes with the source's pixels without their bits 0.
void ExpectOverlayImageLikeTheModel(void *image) {
    const PixelMemory memory({image});
    const auto before = memory.Read();
    Handle result;
    ASSERT_EQ(CreateOverlayImage(image, result.Out()), 1);
    ASSERT_EQ(SizeOf(result.Get()), SizeOf(image));
    for (std::intptr_t plane = 0; plane < SizeOf(image).Planes; ++plane) {
        PlaneBytes expected = PixelBytes(image, plane);
        for (std::size_t byte = 0; byte < expected.size(); byte += PixelSize(TypeOf(image, plane)))
            expected[byte] &= 0xFE;
        ASSERT_TRUE(PixelBytes(result.Get(), plane) == expected) << "plane " << plane << " differs";
    }
    ASSERT_TRUE(memory.Read() == before) << "the source has changed";
    ASSERT_EQ(RefCount(image), 1u);
}

/// The naive copy: planes, rows, columns; at each pixel the target's bit is cleared before the source is read.
void CopyByModel(void *source, void *target) {
    const ImageSize size = SizeOf(target);
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        const PlaneAccess from = AccessOf(source, plane), to = AccessOf(target, plane);
        for (std::intptr_t y = 0; y < size.Height; ++y)
            for (std::intptr_t x = 0; x < size.Width; ++x) {
                std::uint8_t &low = *to.At(x, y);
                low &= 0xFE;
                low = static_cast<std::uint8_t>(low | (*from.At(x, y) & 1));
            }
    }
}

/// Copies by the model and by the library from the same state, and compares the memory of both images.
void ExpectCopyLikeTheModel(void *source, void *target) {
    const PixelMemory memory({source, target});
    const auto before = memory.Read();
    CopyByModel(source, target);
    const auto expected = memory.Read();
    memory.Write(before);
    ASSERT_EQ(CopyOverlay(source, target), 1);
    const auto actual = memory.Read();
    for (std::size_t range = 0; range < actual.size(); ++range)
        ASSERT_TRUE(actual[range] == expected[range])
            << "memory range " << range << ", byte "
            << std::mismatch(actual[range].begin(), actual[range].end(), expected[range].begin()).first -
                   actual[range].begin();
    ASSERT_EQ(RefCount(source), 1u);
    ASSERT_EQ(RefCount(target), 1u);
}

class OverlayOfEachType : public testing::TestWithParam<TDataType> {};
INSTANTIATE_TEST_SUITE_P(EightIntegerTypes, OverlayOfEachType, testing::ValuesIn(IntegerTypes), NameOfType);

TEST_P(OverlayOfEachType, IsCreatedLikeTheModelInAllLayoutsAndTurns) {
    std::uint32_t seed = GetParam();
    for (const auto &[width, height] : Extents)
        for (std::intptr_t planes = 1; planes <= 4; ++planes)
            for (const auto &image : MakeLayouts(width, height, planes, GetParam(), ++seed)) {
                SCOPED_TRACE(testing::Message()
                             << image.Name << ", " << planes << " planes of " << width << " x " << height);
                ASSERT_NO_FATAL_FAILURE(ExpectOverlayImageLikeTheModel(image.Get()));
                for (const std::uint32_t rotation : {1u, 2u, 3u}) {
                    Handle view;
                    ASSERT_TRUE(CreateRotatedImageMap(image.Get(), rotation, view.Out()));
                    ASSERT_NO_FATAL_FAILURE(ExpectOverlayImageLikeTheModel(view.Get()));
                }
            }
}

TEST_P(OverlayOfEachType, IsCreatedAndCopiedLikeTheModelAroundTheLengthsOfVectors) {
    std::uint32_t seed = GetParam();
    for (const std::intptr_t width : VectorWidths) {
        const std::intptr_t planes = 1 + static_cast<std::intptr_t>(++seed % 3);
        const auto content = RandomContent(width, 2, planes, GetParam(), seed);
        const auto other = RandomContent(width, 2, planes, GetParam(), seed + 1000);
        for (const auto &rule : PitchRules(width, 2, planes, GetParam())) {
            SCOPED_TRACE(testing::Message() << rule.Name << ", " << planes << " planes of " << width << " x 2");
            const NamedImage source = MakeExternal(rule, content, width, 2, GetParam());
            const NamedImage target = MakeExternal(rule, other, width, 2, GetParam());
            ASSERT_NO_FATAL_FAILURE(ExpectOverlayImageLikeTheModel(source.Get()));
            ASSERT_NO_FATAL_FAILURE(ExpectCopyLikeTheModel(source.Get(), target.Get()));
        }
    }
}

TEST_P(OverlayOfEachType, IsCopiedLikeTheModelToAllTypesInAllLayouts) {
    std::uint32_t seed = GetParam();
    for (const TDataType targetType : IntegerTypes)
        for (const auto &[width, height] : Extents) {
            const std::intptr_t planes = 1 + static_cast<std::intptr_t>(++seed % 3);
            const auto sources = MakeLayouts(width, height, planes, GetParam(), seed);
            const auto targets = MakeLayouts(width, height, planes, targetType, seed + 500);
            for (std::size_t i = 0; i < sources.size(); ++i)
                for (const std::size_t shift : {std::size_t{0}, std::size_t{seed % sources.size()}}) {
                    const NamedImage &target = targets[(i + shift) % targets.size()];
                    SCOPED_TRACE(testing::Message()
                                 << sources[i].Name << " to " << target.Name << " of type " << targetType << ", "
                                 << planes << " planes of " << width << " x " << height);
                    ASSERT_NO_FATAL_FAILURE(ExpectCopyLikeTheModel(sources[i].Get(), target.Get()));
                }
        }
}

TEST_P(OverlayOfEachType, IsClearedByACopyOntoItselfInAllLayouts) {
    for (const auto &[width, height] : Extents)
        for (const auto &image : MakeLayouts(width, height, 3, GetParam(), 77)) {
            SCOPED_TRACE(testing::Message() << image.Name << " of " << width << " x " << height);
            ASSERT_NO_FATAL_FAILURE(ExpectCopyLikeTheModel(image.Get(), image.Get()));
            for (std::intptr_t plane = 0; plane < 3; ++plane) {
                const PlaneBytes bytes = PixelBytes(image.Get(), plane);
                for (std::size_t byte = 0; byte < bytes.size(); byte += PixelSize(GetParam()))
                    ASSERT_EQ(bytes[byte] & 1, 0);
            }
        }
}

TEST_P(OverlayOfEachType, IsCopiedLikeTheModelBetweenAnImageAndItsTurnedViews) {
    for (const auto &[width, height] : {Extent{1, 1}, Extent{16, 16}, Extent{33, 33}, Extent{64, 64}})
        for (const auto &image : MakeLayouts(width, height, 2, GetParam(), 5))
            for (const std::uint32_t rotation : {1u, 2u, 3u}) {
                SCOPED_TRACE(testing::Message()
                             << image.Name << " of " << width << " x " << height << " turned by " << rotation);
                const PixelMemory memory({image.Get()});
                const auto before = memory.Read();
                for (const bool intoView : {false, true}) {
                    Handle view;
                    ASSERT_TRUE(CreateRotatedImageMap(image.Get(), rotation, view.Out()));
                    const auto source = intoView ? image.Get() : view.Get();
                    const auto target = intoView ? view.Get() : image.Get();
                    memory.Write(before);
                    CopyByModel(source, target);
                    const auto expected = memory.Read();
                    memory.Write(before);
                    ASSERT_EQ(CopyOverlay(source, target), 1);
                    ASSERT_TRUE(memory.Read() == expected) << (intoView ? "into the view" : "out of the view");
                }
            }
}

TEST_P(OverlayOfEachType, TouchesNothingOutsideThePixels) {
    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
    for (const auto &[width, height] : Extents)
        for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const auto bytes = static_cast<std::size_t>(width * height * size);
            const FencedBlock first(bytes, fence), second(bytes, fence);
            Handle source, target;
            for (const auto &[block, image] : {std::pair{&first, &source}, std::pair{&second, &target}}) {
                for (std::size_t byte = 0; byte < bytes; ++byte)
                    block->Data()[byte] = static_cast<std::uint8_t>(byte * 37 + byte / 256);
                ASSERT_EQ(CreateImageFromPointer(block->Data(), bytes, width, height, 1, GetParam(), size,
                                                 width * size, 0, nullptr, nullptr, nullptr, image->Out()),
                          0);
            }
            first.Data()[0] ^= 1;
            ASSERT_NO_FATAL_FAILURE(ExpectOverlayImageLikeTheModel(source.Get()));
            ASSERT_NO_FATAL_FAILURE(ExpectCopyLikeTheModel(source.Get(), target.Get()));
        }
}

/// Two images over one block of random bytes, so that their pixels overlap in any way.
class SharedBlock {
public:
    explicit SharedBlock(std::uint32_t number) : random(number) {
        width = Pick(1, 5) == 1 ? Pick(60, 140) : Pick(1, 40);
        height = Pick(1, 6);
        planes = Pick(1, 3);
        block.resize(static_cast<std::size_t>(Span));
        for (std::size_t byte = 0; byte < block.size(); byte += sizeof(std::uint32_t)) {
            const auto four = static_cast<std::uint32_t>(random());
            std::memcpy(&block[byte], &four, sizeof four);
        }
        const bool sameType = Pick(0, 2) != 0;
        const TDataType type = IntegerTypes[Pick(0, 7)];
        Source = Make(type);
        Target = Make(sameType ? type : IntegerTypes[Pick(0, 7)]);
    }
    /// Runs the model and the library from the same bytes.
    void Run() {
        const PlaneBytes before = block;
        CopyByModel(Source->Handle(), Target->Handle());
        const PlaneBytes expected = block;
        std::copy(before.begin(), before.end(), block.begin());
        ASSERT_EQ(CopyOverlay(Source->Handle(), Target->Handle()), 1);
        ASSERT_TRUE(block == expected) << "byte "
                                       << std::mismatch(block.begin(), block.end(), expected.begin()).first -
                                              block.begin();
        ASSERT_EQ(Source->Count(), 1);
        ASSERT_EQ(Target->Count(), 1);
    }

private:
    static constexpr std::intptr_t Span = 26000, Middle = Span / 2;
    std::mt19937 random;
    std::intptr_t width, height, planes;
    PlaneBytes block;
    std::unique_ptr<FakeImage> Source, Target;

    std::intptr_t Pick(std::intptr_t low, std::intptr_t high) {
        return low + static_cast<std::intptr_t>(random() % static_cast<std::uint64_t>(high - low + 1));
    }
    /// Linear tables that start close to the middle; now and then pixels or rows that are repeated or scattered.
    std::unique_ptr<FakeImage> Make(TDataType type) {
        const auto size = static_cast<std::intptr_t>(PixelSize(type));
        auto image = std::make_unique<FakeImage>(width, height);
        const std::intptr_t step = Pick(0, 3) != 0 ? size : Pick(-2, 3) * size;
        const std::intptr_t row = Pick(0, 2) != 0 ? width * size + Pick(0, 1) * Pick(0, 9) : Pick(-80, 80);
        const std::intptr_t kind = Pick(0, 9);
        for (std::intptr_t plane = 0; plane < planes; ++plane) {
            const std::intptr_t start = Middle + Pick(0, 1) * Pick(-70, 70) + Pick(0, 1) * row;
            image->AddPlane(
                block.data() + start, type,
                [&](std::intptr_t i) {
                    return (kind == 0 ? i / 2 : kind == 1 ? i ^ 1 : i) * step;
                },
                [&](std::intptr_t j) { return (kind == 2 ? j / 2 : j) * row; });
        }
        return image;
    }
};

TEST(CopyOverlayInSharedMemory, EqualsTheModelAtRandom) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    const std::uint32_t first = single != nullptr ? static_cast<std::uint32_t>(std::stoul(single)) : 1;
    const std::uint32_t last = single != nullptr ? first : 4000;
    for (std::uint32_t number = first; number <= last; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        ASSERT_NO_FATAL_FAILURE(SharedBlock(number).Run());
    }
}

TEST(CopyOverlayInSharedMemory, EqualsTheModelAtEachDistanceOfTwoRows) {
    for (const TDataType type : {0x8u, 0x10u, 0x20u, 0x40u})
        for (const std::intptr_t width : {3, 16, 33, 64, 100, 257})
            for (std::intptr_t distance = -70; distance <= 70; ++distance) {
                SCOPED_TRACE(testing::Message()
                             << "type " << type << ", width " << width << ", " << distance << " pixels apart");
                const auto size = static_cast<std::intptr_t>(PixelSize(type));
                const auto step = [=](std::intptr_t i) { return i * size; };
                const auto none = [](std::intptr_t) { return std::intptr_t{0}; };
                FakeImage source(width, 1, static_cast<std::size_t>((width + 140) * size)), target(width, 1);
                std::mt19937 random(static_cast<std::uint32_t>(width));
                for (auto &byte : source.Pixels)
                    byte = static_cast<std::uint8_t>(random());
                source.AddPlane(source.Pixels.data() + 70 * size, type, step, none);
                target.AddPlane(source.Pixels.data() + (70 + distance) * size, type, step, none);
                const PlaneBytes before = source.Pixels;
                CopyByModel(source.Handle(), target.Handle());
                const PlaneBytes expected = source.Pixels;
                std::copy(before.begin(), before.end(), source.Pixels.begin());
                ASSERT_EQ(CopyOverlay(source.Handle(), target.Handle()), 1);
                ASSERT_TRUE(source.Pixels == expected);
            }
}

} // namespace
