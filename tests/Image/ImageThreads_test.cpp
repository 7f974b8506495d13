// One image in many threads: shared, viewed, read, copied and released at once, and last references that go at the
// same moment. Meant to run under the thread sanitizer as well.
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"

#include <array>
#include <thread>

namespace {

using namespace TestSupport;

constexpr std::size_t ThreadCount = 8;
constexpr std::intptr_t Width = 23, Height = 17, Planes = 3;

std::uint8_t PixelOf(std::intptr_t plane, std::intptr_t x, std::intptr_t y) {
    return static_cast<std::uint8_t>(plane * 80 + x * 3 + y * 5);
}

void FillPixels(void *image) {
    for (std::intptr_t plane = 0; plane < Planes; ++plane) {
        const auto access = AccessOf(image, plane);
        for (std::intptr_t y = 0; y < Height; ++y)
            for (std::intptr_t x = 0; x < Width; ++x)
                *access.At(x, y) = PixelOf(plane, x, y);
    }
}

/// Number of pixels of an image turned by 180 degrees that are not as they should be.
int CountWrongPixels(void *turned) {
    int wrong = 0;
    for (std::intptr_t plane = 0; plane < Planes; ++plane) {
        void *base = nullptr;
        VPAEntry *table = nullptr;
        if (!GetImageVPA(turned, plane, &base, &table))
            return -1;
        for (std::intptr_t y = 0; y < Height; ++y)
            for (std::intptr_t x = 0; x < Width; ++x) {
                const auto *const pixel = static_cast<std::uint8_t *>(base) + table[x].XEntry + table[y].YEntry;
                wrong += *pixel != PixelOf(plane, Width - 1 - x, Height - 1 - y) ? 1 : 0;
            }
    }
    std::uint64_t value = 0;
    wrong += GetPixVal(turned, 1, 2, 3, &value) && value == PixelOf(1, Width - 3, Height - 4) ? 0 : 1;
    return wrong;
}

/// Views, reads, copies and releases; works on a reference of its own, which it gives back.
int UseAndRelease(void *image) {
    int wrong = 0;
    for (int round = 0; round < 40; ++round) {
        ShareImage(image);
        Handle view, copy, again;
        if (!CreateRotatedImageMap(image, VPATRotation180, view.Out()) ||
            CreateDuplicateImage(view.Get(), copy.Out()) != 1 ||
            !CreateRotatedImageMap(copy.Get(), VPATRotation180, again.Out()))
            return -1;
        ReleaseImage(image);
        copy.Reset();
        Handle turnedBack;
        if (!CreateRotatedImageMap(again.Get(), VPATRotation180, turnedBack.Out()))
            return -1;
        again.Reset();
        wrong += CountWrongPixels(view.Get()) + CountWrongPixels(turnedBack.Get());
        wrong += ImageDimension(image) == Planes && ImageWidth(image) == Width && RefCount(image) > 1 ? 0 : 1;
    }
    ReleaseImage(image);
    return wrong;
}

/// Hands one reference to each of eight threads, gives the own one back at once and waits for the end.
void UseInManyThreads(void *image) {
    std::array<int, ThreadCount> wrong{};
    for (std::size_t k = 0; k < ThreadCount; ++k)
        ShareImage(image);
    {
        std::vector<std::jthread> threads;
        for (std::size_t k = 0; k < ThreadCount; ++k)
            threads.emplace_back([&wrong, image, k] { wrong[k] = UseAndRelease(image); });
        ReleaseImage(image);
    }
    for (const int count : wrong)
        EXPECT_EQ(count, 0);
}

void CountCall(void *, void *userData) {
    ++*static_cast<std::atomic<int> *>(userData);
}

TEST(ImageInManyThreads, OverAPointerIsReleasedOnce) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(Width * Height * Planes));
    std::atomic<int> callbacks{0};
    void *image = nullptr;
    ASSERT_EQ(CreateImageFromPointer(pixels.data(), pixels.size(), Width, Height, Planes, 8, 3, 3 * Width, 1, nullptr,
                                     CountCall, &callbacks, &image),
              0);
    FillPixels(image);
    UseInManyThreads(image);
    EXPECT_EQ(callbacks, 1);
}

TEST(ImageInManyThreads, OfTheLibrarysOwnMemoryStaysWhole) {
    void *bitmap = nullptr, *typed = nullptr;
    ASSERT_TRUE(CreateGenericImage(Planes, Width, Height, false, &bitmap));
    ASSERT_TRUE(CreateGenericImageDT(Planes, Width, Height, 8, &typed));
    for (void *image : {bitmap, typed}) {
        FillPixels(image);
        UseInManyThreads(image);
    }
}

TEST(ImageInManyThreads, ShownByViewsIsReleasedWithTheLastView) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(Width * Height * Planes));
    std::atomic<int> callbacks{0};
    Handle image;
    ASSERT_EQ(CreateImageFromPointer(pixels.data(), pixels.size(), Width, Height, Planes, 8, 1, Width, Width * Height,
                                     nullptr, CountCall, &callbacks, image.Out()),
              0);
    std::array<void *, ThreadCount> views{};
    for (auto &view : views)
        ASSERT_TRUE(CreateRotatedImageMap(image.Get(), VPATRotation90Clockwise, &view));
    {
        std::vector<std::jthread> threads;
        for (void *view : views)
            threads.emplace_back([view] { ReleaseImage(view); });
        image.Reset();
    }
    EXPECT_EQ(callbacks, 1);
}

pOLE::IUnknown *AsUnknown(void *object) {
    return static_cast<pOLE::IUnknown *>(object);
}

/// Where two threads meet, within nanoseconds when both run.
class MeetingPoint {
public:
    void ArriveAndWait() {
        const int target = (arrived.fetch_add(1) / 2 + 1) * 2;
        for (int turns = 0; arrived.load() < target; ++turns)
            if (turns % 256 == 255)
                std::this_thread::yield();
    }

private:
    std::atomic<int> arrived{0};
};

/// Waits a few steps of the processor, so that the rounds try each offset of the two threads.
void WaitSteps(int steps) {
    for (int step = 0; step < steps; ++step)
        std::atomic_signal_fence(std::memory_order_seq_cst);
}

/// Lets two threads give a reference back at the same moment, round after round, and returns what each saw.
/// prepare runs in one thread before each round and gives the two objects.
template <class Prepare, class Check>
void RaceTwoReleases(const Prepare &prepare, const Check &check) {
    constexpr int rounds = 2000;
    std::array<void *, 2> objects{};
    std::array<std::intptr_t, 2> left{};
    MeetingPoint start, end;
    const auto release = [&](std::size_t side) {
        for (int round = 0; round < rounds; ++round) {
            if (side == 0)
                objects = prepare();
            start.ArriveAndWait();
            WaitSteps(side == 0 ? round % 61 : round % 67);
            left[side] = round % 2 == 0 ? static_cast<std::intptr_t>(AsUnknown(objects[side])->Release())
                                        : ReleaseImage(objects[side]);
            end.ArriveAndWait();
            if (side == 0)
                check(left);
        }
    };
    std::jthread other(release, 1);
    release(0);
}

void ExpectOneZero(const std::array<std::intptr_t, 2> &left) {
    EXPECT_TRUE((left[0] == 0) != (left[1] == 0))
        << "exactly one of the two was the last: " << left[0] << ", " << left[1];
}

std::array<void *, 2> SharedByTwo(void *image) {
    ShareImage(image);
    return {image, image};
}

TEST(LastTwoReferences, OfABitmapGoAtOnceAndOneSeesZero) {
    for (const std::intptr_t planes : {1, 3})
        RaceTwoReleases(
            [planes] {
                void *image = nullptr;
                EXPECT_TRUE(CreateGenericImage(planes, 5, 3, false, &image));
                return SharedByTwo(image);
            },
            ExpectOneZero);
}

TEST(LastTwoReferences, OfTypedPlanesGoAtOnceAndOneSeesZero) {
    RaceTwoReleases(
        [] {
            void *image = nullptr;
            EXPECT_TRUE(CreateGenericImageDT(4, 5, 3, 0x10, &image));
            return SharedByTwo(image);
        },
        ExpectOneZero);
}

TEST(LastTwoReferences, OfBothFacesOfABitmapGoAtOnce) {
    RaceTwoReleases(
        [] {
            void *image = nullptr, *bitmap = nullptr;
            EXPECT_TRUE(CreateGenericImage(3, 5, 3, false, &image));
            AsUnknown(image)->QueryInterface(ORV_IID_IIMAGEDIB, &bitmap);
            return std::array<void *, 2>{image, bitmap};
        },
        ExpectOneZero);
}

TEST(LastTwoReferences, OfAnImageOverAPointerGoAtOnceAndReleaseRunsOnce) {
    std::uint8_t pixel = 0;
    std::atomic<int> callbacks{0};
    int expected = 0;
    RaceTwoReleases(
        [&] {
            void *image = nullptr;
            EXPECT_EQ(CreateImageFromPointer(&pixel, 1, 1, 1, 1, 8, 1, 1, 1, nullptr, CountCall, &callbacks, &image),
                      0);
            return SharedByTwo(image);
        },
        [&](const std::array<std::intptr_t, 2> &left) {
            ExpectOneZero(left);
            ASSERT_EQ(callbacks, ++expected);
        });
}

TEST(LastTwoReferences, OfAnImageAndItsViewGoAtOnceAndReleaseRunsOnce) {
    std::uint8_t pixel = 0;
    std::atomic<int> callbacks{0};
    int expected = 0;
    RaceTwoReleases(
        [&] {
            void *image = nullptr, *view = nullptr;
            EXPECT_EQ(CreateImageFromPointer(&pixel, 1, 1, 1, 1, 8, 1, 1, 1, nullptr, CountCall, &callbacks, &image),
                      0);
            EXPECT_TRUE(CreateRotatedImageMap(image, VPATRotation180, &view));
            return std::array<void *, 2>{image, view};
        },
        [&](const std::array<std::intptr_t, 2> &) { ASSERT_EQ(callbacks, ++expected); });
}

} // namespace
