// Images over memory of the caller's: tables entry by entry, the interface's statuses, the release callback.
// What construction refuses is tested in ExternalImageFailures_test.cpp.
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"

#include <limits>
#include <thread>

namespace {

using namespace TestSupport;

/// Counts the calls of a release callback and keeps what came with the last one.
struct ReleaseLog {
    std::atomic<int> Calls{0};
    void *Buffer = nullptr;
    std::thread::id Thread;
    static void Fire(void *buffer, void *userData) {
        auto *const log = static_cast<ReleaseLog *>(userData);
        log->Buffer = buffer;
        log->Thread = std::this_thread::get_id();
        ++log->Calls;
    }
};

/// An image over a buffer of unknown size.
Handle Wrap(void *buffer, ImageSize size, TDataType type, std::intptr_t pitchX, std::intptr_t pitchY,
            std::intptr_t pitchPlane, const std::vector<std::intptr_t> &order = {}, ReleaseLog *log = nullptr) {
    Handle image;
    EXPECT_EQ(CreateImageFromPointer(buffer, 0, size.Width, size.Height, size.Planes, type, pitchX, pitchY,
                                     pitchPlane, order.empty() ? nullptr : order.data(),
                                     log ? ReleaseLog::Fire : nullptr, log, image.Out()),
              0);
    return image;
}

/// Expects the tables that pitches and order make; memoryPosition holds the memory position of each image plane.
void ExpectPitchTables(const Handle &image, void *buffer, ImageSize size, std::intptr_t pitchX, std::intptr_t pitchY,
                       std::intptr_t pitchPlane, const std::vector<std::intptr_t> &memoryPosition) {
    ASSERT_TRUE(image);
    EXPECT_EQ(SizeOf(image.Get()), size);
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        SCOPED_TRACE("plane " + std::to_string(plane));
        const auto access = AccessOf(image.Get(), plane);
        EXPECT_EQ(access.Base, buffer);
        const std::intptr_t start = memoryPosition[static_cast<std::size_t>(plane)] * pitchPlane;
        ExpectTable(
            access.Table, size.Width, size.Height, [=](std::intptr_t i) { return start + i * pitchX; },
            [=](std::intptr_t j) { return j * pitchY; });
    }
}

TEST(CreateImageFromPointer, DescribesARasterOfBytes) {
    std::vector<std::uint8_t> pixels(7 * 5);
    const auto image = Wrap(pixels.data(), {1, 7, 5}, 8, 1, 7, 0);
    ExpectPitchTables(image, pixels.data(), {1, 7, 5}, 1, 7, 0, {0});
    EXPECT_EQ(TypeOf(image.Get(), 0), 8u);
    EXPECT_EQ(RefCount(image.Get()), 1u);
}

TEST(CreateImageFromPointer, DescribesInterleavedPlanesOverOneBase) {
    std::vector<std::uint8_t> pixels(3 * 6 * 4);
    const auto image = Wrap(pixels.data(), {3, 6, 4}, 8, 3, 18, 1);
    ExpectPitchTables(image, pixels.data(), {3, 6, 4}, 3, 18, 1, {0, 1, 2});
}

TEST(CreateImageFromPointer, ShowsBlueGreenRedMemoryAsRedGreenBlueByTheOrderTwoOneZero) {
    std::vector<std::uint8_t> pixels = {10, 20, 30, 11, 21, 31};
    const auto image = Wrap(pixels.data(), {3, 2, 1}, 8, 3, 6, 1, {2, 1, 0});
    ExpectPitchTables(image, pixels.data(), {3, 2, 1}, 3, 6, 1, {2, 1, 0});
    EXPECT_EQ(*AccessOf(image.Get(), 0).At(0, 0), 30);
    EXPECT_EQ(*AccessOf(image.Get(), 2).At(1, 0), 11);
}

TEST(CreateImageFromPointer, PutsMemoryPlaneKAtTheImagePlaneThatTheOrderNames) {
    std::vector<std::uint8_t> pixels(4 * 6);
    auto order = std::vector<std::intptr_t>{1, 3, 0, 2};
    const auto image = Wrap(pixels.data(), {4, 3, 2}, 8, 1, 3, 6, order);
    order.assign(4, 0); // the image keeps nothing of the caller's array
    ExpectPitchTables(image, pixels.data(), {4, 3, 2}, 1, 3, 6, {2, 0, 3, 1});
}

TEST(CreateImageFromPointer, AcceptsTheOrderOfAnImageWithOnePlane) {
    std::uint8_t pixel = 0;
    const auto image = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0, {0});
    ExpectPitchTables(image, &pixel, {1, 1, 1}, 1, 1, 0, {0});
}

TEST(CreateImageFromPointer, ShowsABottomUpImageByANegativeLinePitch) {
    std::vector<std::uint8_t> pixels = {1, 2, 3, 4, 5, 6};
    const auto image = Wrap(pixels.data() + 4, {1, 2, 3}, 8, 1, -2, 0);
    ExpectPitchTables(image, pixels.data() + 4, {1, 2, 3}, 1, -2, 0, {0});
    EXPECT_EQ(*AccessOf(image.Get(), 0).At(0, 0), 5);
    EXPECT_EQ(*AccessOf(image.Get(), 0).At(1, 2), 2);
}

TEST(CreateImageFromPointer, AcceptsNegativePitchesOnEveryAxis) {
    std::vector<std::uint8_t> pixels(2 * 5 * 4 * 3);
    auto *const last = pixels.data() + pixels.size() - 2;
    const auto image = Wrap(last, {3, 5, 4}, 16, -2, -10, -40);
    ExpectPitchTables(image, last, {3, 5, 4}, -2, -10, -40, {0, 1, 2});
    EXPECT_EQ(AccessOf(image.Get(), 2).At(4, 3), pixels.data());
}

TEST(CreateImageFromPointer, AcceptsAPitchOfExactlyOnePixelInBothDirections) {
    std::vector<std::uint8_t> pixels(64);
    for (const std::intptr_t pitch : {std::intptr_t{2}, std::intptr_t{-2}}) {
        const auto image = Wrap(pixels.data() + 32, {2, 2, 2}, 16, pitch, pitch, pitch);
        ExpectPitchTables(image, pixels.data() + 32, {2, 2, 2}, pitch, pitch, pitch, {0, 1});
    }
}

TEST(CreateImageFromPointer, AcceptsLinesThatOverlap) {
    std::vector<std::uint8_t> pixels = {1, 2, 3, 4, 5};
    const auto image = Wrap(pixels.data(), {1, 3, 3}, 8, 1, 1, 0);
    ExpectPitchTables(image, pixels.data(), {1, 3, 3}, 1, 1, 0, {0});
    EXPECT_EQ(*AccessOf(image.Get(), 0).At(2, 2), 5);
}

TEST(CreateImageFromPointer, AcceptsAnyPitchOnAnAxisOfOneElement) {
    std::uint64_t pixel = 0;
    const auto lowest = std::numeric_limits<std::intptr_t>::min();
    for (const std::intptr_t pitch : {std::intptr_t{0}, std::intptr_t{1}, std::intptr_t{-7}, lowest}) {
        const auto image = Wrap(&pixel, {1, 1, 1}, 64, pitch, pitch, pitch);
        ExpectPitchTables(image, &pixel, {1, 1, 1}, 0, 0, 0, {0});
    }
}

TEST(CreateImageFromPointer, GivesAnImageOfOnePixelNineEqualEntries) {
    std::uint8_t pixel = 9;
    const auto image = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0);
    const auto access = AccessOf(image.Get(), 0);
    for (std::intptr_t entry = -4; entry < 5; ++entry) {
        EXPECT_EQ(access.Table[entry].XEntry, 0);
        EXPECT_EQ(access.Table[entry].YEntry, 0);
    }
}

TEST(CreateImageFromPointer, MakesTheTablesLongEnoughForTheLongerAxis) {
    std::vector<std::uint8_t> pixels(200);
    ExpectPitchTables(Wrap(pixels.data(), {1, 200, 1}, 8, 1, 200, 0), pixels.data(), {1, 200, 1}, 1, 200, 0, {0});
    ExpectPitchTables(Wrap(pixels.data(), {1, 1, 200}, 8, 1, 1, 0), pixels.data(), {1, 1, 200}, 1, 1, 0, {0});
}

TEST(CreateImageFromPointer, ComparesTheBufferWithTheBytesOfAllPixels) {
    std::vector<std::uint8_t> pixels(4 * 3 * 2 * 2);
    Handle image;
    EXPECT_EQ(
        CreateImageFromPointer(pixels.data(), 48, 4, 3, 2, 16, 2, 8, 24, nullptr, nullptr, nullptr, image.Out()), 0);
    EXPECT_EQ(
        CreateImageFromPointer(pixels.data(), 1000, 4, 3, 2, 16, 2, 8, 24, nullptr, nullptr, nullptr, image.Out()),
        0);
    // The extent that the pitches imply is the caller's business.
    EXPECT_EQ(CreateImageFromPointer(pixels.data(), 4, 2, 2, 1, 8, 1, 40, 0, nullptr, nullptr, nullptr, image.Out()),
              0);
    EXPECT_EQ(AccessOf(image.Get(), 0).Table[1].YEntry, 40);
}

TEST(CreateImageFromPointer, AcceptsAnyDimensionForAnUnknownBufferSize) {
    std::uint8_t pixel = 0;
    const auto image = Wrap(&pixel, {2, 300, 400}, 8, 1, 300, 120000);
    ExpectPitchTables(image, &pixel, {2, 300, 400}, 1, 300, 120000, {0, 1});
}

TEST(CreateImageFromPointer, TakesNoPixelSizeFromAWordBelowOne) {
    std::uint8_t pixel = 0;
    for (const TDataType type : {TDataType{0}, TDataType{0x80000008u}, TDataType{0xFFFFFFFFu}}) {
        Handle image;
        EXPECT_EQ(CreateImageFromPointer(&pixel, 1, 3, 3, 3, type, 0, 0, 0, nullptr, nullptr, nullptr, image.Out()),
                  0);
        EXPECT_EQ(TypeOf(image.Get(), 2), type);
    }
}

TEST(CreateImageFromPointer, KeepsTheDataTypeWordOfEveryPlane) {
    std::vector<std::uint8_t> pixels(64);
    for (const TDataType type : {0x8u, 0x108u, 0x408u, 0x220u, 0x810u, 0xCu}) {
        const auto image = Wrap(pixels.data(), {2, 2, 2}, type, 4, 8, 16);
        EXPECT_EQ(TypeOf(image.Get(), 0), type);
        EXPECT_EQ(TypeOf(image.Get(), 1), type);
    }
}

TEST(CreateImageFromPointer, ReportsNothingOnSuccess) {
    ClearReports();
    std::uint8_t pixel = 0;
    Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0);
    ExpectNoReport();
}

TEST(ExternalImage, AnswersABadPlaneNumberWithAStatusAndWritesNothing) {
    std::vector<std::uint8_t> pixels(8);
    const auto handle = Wrap(pixels.data(), {2, 2, 2}, 8, 1, 2, 4);
    const ImageInterface image(handle.Get());
    const auto highest = std::numeric_limits<std::intptr_t>::max();
    const auto lowest = std::numeric_limits<std::intptr_t>::min();
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{2}, highest, lowest}) {
        TDataType type = 77;
        void *base = UntouchedPointer();
        auto *table = static_cast<VPAEntry *>(UntouchedPointer());
        EXPECT_EQ(image->GetPlaneDatatype(plane, &type), Status(0x80000002u));
        EXPECT_EQ(image->GetPlaneVPA(plane, &base, &table), Status(0x80000002u));
        EXPECT_EQ(type, 77u);
        EXPECT_EQ(base, UntouchedPointer());
        EXPECT_EQ(table, UntouchedPointer());
    }
}

TEST(ExternalImage, OffersUnknownAndImageAndLeavesTheOutputOfOtherQueriesAlone) {
    std::uint8_t pixel = 0;
    const auto handle = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0);
    auto *const object = static_cast<pOLE::IUnknown *>(handle.Get());
    for (const char *id : {ORV_IID_IUNKNOWN, ORV_IID_IIMAGEVPA}) {
        void *out = nullptr;
        ASSERT_EQ(object->QueryInterface(id, &out), 0) << id;
        ASSERT_NE(out, nullptr);
        EXPECT_EQ(RefCount(handle.Get()), 2u);
        EXPECT_EQ(static_cast<pOLE::IUnknown *>(out)->Release(), 1u);
    }
    for (const char *id : {ORV_IID_IIMAGEDIB, ORV_IID_ICOLORMODELINFO, ORV_IID_IIPPIPROXY, ORV_IID_IGRABBER,
                           "IImageVPA      x", "iimagevpa       ", "IUnknown       \0"}) {
        void *out = UntouchedPointer();
        EXPECT_EQ(object->QueryInterface(id, &out), Status(0x80000011u)) << id;
        EXPECT_EQ(out, UntouchedPointer()) << id;
    }
    EXPECT_EQ(RefCount(handle.Get()), 1u);
}

TEST(ExternalImage, ComparesSixteenBytesOfAnIdWithoutATerminator) {
    std::uint8_t pixel = 0;
    const auto handle = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0);
    const char longer[] = "IImageVPA       and whatever stands behind";
    void *out = nullptr;
    ASSERT_EQ(static_cast<pOLE::IUnknown *>(handle.Get())->QueryInterface(longer, &out), 0);
    static_cast<pOLE::IUnknown *>(out)->Release();
}

TEST(ExternalImage, CountsThroughEitherInterface) {
    std::uint8_t pixel = 0;
    ReleaseLog log;
    auto handle = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0, {}, &log);
    const ImageInterface image(handle.Get());
    auto *const object = static_cast<pOLE::IUnknown *>(handle.Get());
    EXPECT_EQ(object->AddRef(), 3u);
    EXPECT_EQ(image->AddRef(), 4u);
    EXPECT_EQ(object->Release(), 3u);
    EXPECT_EQ(image->Release(), 2u);
    handle.Reset();
    EXPECT_EQ(log.Calls, 0);
    EXPECT_EQ(image->AddRef(), 2u);
    EXPECT_EQ(image->Release(), 1u);
}

TEST(ExternalImage, StartsWithTheIdentityAndKeepsTheMapThatIsSet) {
    std::uint8_t pixel = 0;
    const auto handle = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0);
    const ImageInterface image(handle.Get());
    TCoordinateMap map{};
    EXPECT_EQ(image->GetCoordinateMap(&map), 0);
    EXPECT_TRUE(SameMap(map, IdentityMap));
    const TCoordinateMap other{1.5, -2.5, {3.0, 4.0, 5.0, 6.0}};
    EXPECT_EQ(image->SetCoordinateMap(other), 0);
    EXPECT_EQ(image->GetCoordinateMap(&map), 0);
    EXPECT_TRUE(SameMap(map, other));
}

TEST(ExternalImage, CallsReleaseOnceWithBufferAndUserData) {
    std::uint8_t pixel = 0;
    ReleaseLog log;
    auto image = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0, {}, &log);
    EXPECT_EQ(ShareImage(image.Get()), 2);
    EXPECT_EQ(ReleaseImage(image.Get()), 1);
    EXPECT_EQ(log.Calls, 0);
    image.Reset();
    EXPECT_EQ(log.Calls, 1);
    EXPECT_EQ(log.Buffer, &pixel);
}

TEST(ExternalImage, CallsReleaseOnTheThreadOfTheLastReference) {
    std::uint8_t pixel = 0;
    ReleaseLog log;
    auto image = Wrap(&pixel, {1, 1, 1}, 8, 1, 1, 0, {}, &log);
    std::thread other([&] { image.Reset(); });
    const auto expected = other.get_id();
    other.join();
    EXPECT_EQ(log.Calls, 1);
    EXPECT_EQ(log.Thread, expected);
}

TEST(ExternalImage, LivesAsLongAsItsViews) {
    std::vector<std::uint8_t> pixels = {1, 2, 3, 4};
    ReleaseLog log;
    auto image = Wrap(pixels.data(), {1, 2, 2}, 8, 1, 2, 0, {}, &log);
    Handle view, viewOfView;
    ASSERT_TRUE(CreateRotatedImageMap(image.Get(), VPATRotation180, view.Out()));
    ASSERT_TRUE(CreateRotatedImageMap(view.Get(), VPATRotation180, viewOfView.Out()));
    image.Reset();
    view.Reset();
    EXPECT_EQ(log.Calls, 0);
    EXPECT_EQ(*AccessOf(viewOfView.Get(), 0).At(1, 0), 2);
    viewOfView.Reset();
    EXPECT_EQ(log.Calls, 1);
}

TEST(ExternalImage, ShowsWritesOfTheOwnerAndOfItsUsersAtOnce) {
    std::vector<std::uint8_t> pixels(4);
    const auto image = Wrap(pixels.data(), {1, 2, 2}, 8, 1, 2, 0);
    pixels[3] = 200;
    EXPECT_EQ(*AccessOf(image.Get(), 0).At(1, 1), 200);
    *AccessOf(image.Get(), 0).At(0, 1) = 100;
    EXPECT_EQ(pixels[2], 100);
}

} // namespace
