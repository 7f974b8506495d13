/* ReleaseObject: giving references back and clearing the caller's pointer. */
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "InterfaceHandling.h"
#include "Support/TestImages.h"

#include <thread>

using namespace TestSupport;

namespace {

class ReleaseObjectTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { EXPECT_EQ(ReportCount(), 0) << "this function never reports"; }
};

/// Counts the ends of external images that are given it as user data.
struct Ends {
    std::atomic<int> Count{0};
    static void AtEnd(void *, void *userData) { ++static_cast<Ends *>(userData)->Count; }
};

void *OnePixelImage(std::uint8_t &pixel, Ends &ends) {
    void *image = nullptr;
    EXPECT_EQ(CreateImageFromPointer(&pixel, 1, 1, 1, 1, 8, 1, 1, 0, nullptr, Ends::AtEnd, &ends, &image), 0);
    return image;
}

TEST_F(ReleaseObjectTest, ANullPointerIsReleasedAtOnce) {
    void *object = nullptr;
    EXPECT_TRUE(ReleaseObject(object));
    EXPECT_EQ(object, nullptr);
}

TEST_F(ReleaseObjectTest, TheLastReferenceClearsThePointerAndGivesTrue) {
    std::uint8_t pixel = 0;
    Ends ends;
    void *image = OnePixelImage(pixel, ends);
    EXPECT_TRUE(ReleaseObject(image));
    EXPECT_EQ(image, nullptr);
    EXPECT_EQ(ends.Count, 1);
}

TEST_F(ReleaseObjectTest, AnObjectStillHeldGivesFalseAndKeepsThePointer) {
    std::uint8_t pixel = 0;
    Ends ends;
    void *image = OnePixelImage(pixel, ends);
    void *const former = image;
    ASSERT_EQ(ShareImage(image), 2);
    EXPECT_FALSE(ReleaseObject(image)) << "released, but still held";
    EXPECT_EQ(image, former);
    EXPECT_EQ(RefCount(image), 1u);
    EXPECT_EQ(ends.Count, 0);
    EXPECT_TRUE(ReleaseObject(image));
    EXPECT_EQ(ends.Count, 1);
}

TEST_F(ReleaseObjectTest, AfterShareImageAndReleaseImageASecondHolderKeepsThePointer) {
    Handle image;
    ASSERT_TRUE(CreateGenericImage(1, 2, 2, false, image.Out()));
    EXPECT_EQ(RefCount(image.Get()), 1u);
    ShareImage(image.Get());
    EXPECT_EQ(RefCount(image.Get()), 2u);
    ShareImage(image.Get());
    EXPECT_EQ(ReleaseImage(image.Get()), 2);
    void *pointer = image.Get();
    EXPECT_FALSE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, image.Get());
}

TEST_F(ReleaseObjectTest, EveryKindOfImageGoesWithItsLastReference) {
    std::vector<std::function<void(void **)>> makers;
    std::uint8_t pixels[4] = {};
    makers.emplace_back([](void **out) { ASSERT_TRUE(CreateGenericImage(1, 4, 3, false, out)); });
    makers.emplace_back([](void **out) { ASSERT_TRUE(CreateGenericImage(3, 4, 3, true, out)); });
    makers.emplace_back([](void **out) { ASSERT_TRUE(CreateGenericImage(2, 4, 3, false, out)); });
    makers.emplace_back([](void **out) { ASSERT_TRUE(CreateGenericImage(0, 4, 3, false, out)); });
    makers.emplace_back([](void **out) { ASSERT_TRUE(CreateGenericImageDT(2, 4, 3, 0x220, out)); });
    makers.emplace_back([&](void **out) {
        ASSERT_EQ(CreateImageFromPointer(pixels, 0, 2, 2, 1, 8, 1, 2, 0, nullptr, nullptr, nullptr, out), 0);
    });
    makers.emplace_back([](void **out) {
        Handle source;
        ASSERT_TRUE(CreateGenericImage(1, 4, 3, false, source.Out()));
        ASSERT_TRUE(CreateRotatedImageMap(source.Get(), VPATRotation180, out));
    });
    makers.emplace_back([](void **out) {
        Handle source;
        ASSERT_TRUE(CreateGenericImage(1, 4, 3, false, source.Out()));
        ASSERT_TRUE(CreatePanoramicImageMap(source.Get(), source.Get(), PanoramaSideBySide, out));
    });
    for (std::size_t maker = 0; maker < makers.size(); ++maker) {
        void *image = nullptr;
        makers[maker](&image);
        ASSERT_NE(image, nullptr) << maker;
        EXPECT_EQ(RefCount(image), 1u) << maker;
        EXPECT_TRUE(ShareObject(image)) << maker;
        EXPECT_FALSE(ReleaseObject(image)) << maker;
        ASSERT_NE(image, nullptr) << maker;
        EXPECT_TRUE(ReleaseObject(image)) << maker;
        EXPECT_EQ(image, nullptr) << maker;
    }
}

TEST_F(ReleaseObjectTest, AViewKeepsItsSourceAndGivesItBack) {
    std::uint8_t pixel = 0;
    Ends ends;
    void *image = OnePixelImage(pixel, ends);
    void *view = nullptr;
    ASSERT_TRUE(CreateRotatedImageMap(image, VPATRotation180, &view));
    EXPECT_FALSE(ReleaseObject(image)) << "the view holds the source";
    EXPECT_NE(image, nullptr);
    EXPECT_EQ(ends.Count, 0);
    EXPECT_TRUE(ReleaseObject(view));
    EXPECT_EQ(ends.Count, 1);
}

TEST_F(ReleaseObjectTest, AnObjectOfACallersClassIsReleasedByItsCount) {
    OnlyUnknown object;
    object.AddRef();
    void *pointer = object.Handle();
    EXPECT_FALSE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, object.Handle());
    EXPECT_EQ(object.Count(), 1);
    EXPECT_TRUE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, nullptr);
    EXPECT_TRUE(object.Destroyed());
}

TEST_F(ReleaseObjectTest, WhatIsNoUnknownIsNotReleasable) {
    for (const auto &foreign : ForeignHandles()) {
        if (foreign.OffersUnknown)
            continue;
        void *pointer = foreign.Get();
        bool released = true;
        EXPECT_NO_THROW(released = ReleaseObject(pointer)) << foreign.Name;
        EXPECT_FALSE(released) << foreign.Name;
        EXPECT_EQ(pointer, foreign.Get()) << foreign.Name;
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
    }
}

/// Passes for an IUnknown, then throws when it is really released.
class ThrowsAtRelease final : public pOLE::IUnknown {
public:
    std::int32_t QueryInterface(const char *, void **out) override {
        *out = Handle();
        ++count;
        return 0;
    }
    std::uintptr_t AddRef() override { return ++count; }
    std::uintptr_t Release() override { return count > 1 ? --count : throw std::runtime_error("count refused"); }
    void *Handle() { return static_cast<pOLE::IUnknown *>(this); }

private:
    std::uintptr_t count = 1;
};

TEST_F(ReleaseObjectTest, AnExceptionOutOfReleaseGivesFalseAndKeepsThePointer) {
    ThrowsAtRelease object;
    void *pointer = object.Handle();
    bool released = true;
    EXPECT_NO_THROW(released = ReleaseObject(pointer));
    EXPECT_FALSE(released);
    EXPECT_EQ(pointer, object.Handle());
}

TEST_F(ReleaseObjectTest, OfManyThreadsExactlyOneReleasesTheLastReference) {
    constexpr int threads = 8;
    for (int round = 0; round < 50; ++round) {
        std::uint8_t pixel = 0;
        Ends ends;
        void *image = OnePixelImage(pixel, ends);
        for (int i = 1; i < threads; ++i)
            ShareImage(image);
        std::atomic<int> last{0};
        std::vector<std::thread> workers;
        for (int i = 0; i < threads; ++i)
            workers.emplace_back([&last, own = image]() mutable { last += ReleaseObject(own) ? 1 : 0; });
        for (auto &worker : workers)
            worker.join();
        EXPECT_EQ(last, 1);
        EXPECT_EQ(ends.Count, 1);
    }
}

TEST_F(ReleaseObjectTest, OfManyThreadsExactlyOneReleasesTheLastReferenceOfATree) {
    constexpr int threads = 8;
    for (int round = 0; round < 50; ++round) {
        void *image = nullptr;
        ASSERT_TRUE(CreateGenericImage(3, 16, 16, false, &image));
        for (int i = 1; i < threads; ++i)
            ShareImage(image);
        std::atomic<int> last{0};
        std::vector<std::thread> workers;
        for (int i = 0; i < threads; ++i)
            workers.emplace_back([&last, own = image]() mutable { last += ReleaseObject(own) ? 1 : 0; });
        for (auto &worker : workers)
            worker.join();
        EXPECT_EQ(last, 1);
    }
}

} // namespace
