// One list in many threads: read by all at once, shared and released, freed by another thread than its maker, and
// reports that stay on their thread. Meant to run under the thread sanitizer as well.
#include "PixelList/OverlayModel.h"

#include <thread>

namespace {

using namespace TestSupport;

constexpr std::size_t ThreadCount = 8;

Points SomePoints(std::int64_t dimension, std::size_t count) {
    RandomComponents random(static_cast<std::uint32_t>(count));
    Points points;
    while (points.size() < count)
        points.push_back(random.WholePoint(dimension));
    return points;
}

/// Runs a body in eight threads at once; the sum of what they count as wrong.
template <class Body>
int InManyThreads(Body body) {
    std::vector<int> wrong(ThreadCount, -1000);
    {
        std::vector<std::jthread> threads;
        for (std::size_t k = 0; k < ThreadCount; ++k)
            threads.emplace_back([&wrong, &body, k] { wrong[k] = body(k); });
    }
    return std::accumulate(wrong.begin(), wrong.end(), 0);
}

/// Takes and gives back references on all threads at once.
bool SharesAndReleases(void *list) {
    if (!ShareObject(list))
        return false;
    void *pointer = list;
    return !ReleaseObject(pointer) && pointer == list;
}

int ReadAll(void *list, const Points &points, void *image) {
    int wrong = 0;
    const auto expect = [&](bool right) { wrong += right ? 0 : 1; };
    for (int round = 0; round < 20; ++round) {
        expect(IsPixels(list) && PixelListCount(list) == std::ssize(points) && PixelListDimension(list) == 3);
        for (std::size_t i = 0; i < points.size(); ++i) {
            double out[3] = {};
            std::int64_t x = 0, y = 0, value = 0;
            const auto index = static_cast<std::int64_t>(i);
            expect(ListPixelEx(list, index, out) && Point(out, out + 3) == points[i]);
            expect(ListPixel(list, index, &x, &y, &value) && static_cast<double>(value) == points[i][2]);
        }
        void *copy = nullptr, *drawn = nullptr;
        expect(CopyPixelList(list, &copy) && PointsOf(copy) == points);
        const Handle twice(ConcatenatePixelLists(list, list));
        expect(PixelListCount(twice.Get()) == 2 * std::ssize(points) && SortPixelsByValue(twice.Get()));
        expect(CreateOverlayFromPixelList(list, image, &drawn));
        expect(ReleaseObject(copy) && ReleaseObject(drawn));
        expect(SharesAndReleases(list));
    }
    return wrong + (ReportCount() == 0 ? 0 : 1);
}

TEST(PixelListThreads, ReadersOfOneListSeeThePixels) {
    const Points points = SomePoints(3, 40);
    const Handle list = ListOf(3, points);
    const auto image = FakeImage::Planar(20, 20, 1, 8);
    EXPECT_EQ(InManyThreads([&](std::size_t) { return ReadAll(list.Get(), points, image->Handle()); }), 0);
    EXPECT_TRUE(Holds(list.Get(), points));
    EXPECT_EQ(image->Count(), 1);
}

TEST(PixelListThreads, AListIsFreedByAnotherThreadThanItsMaker) {
    for (const std::int64_t dimension : {2, 256}) {
        void *list = CreatePixelList(dimension);
        for (const auto &point : SomePoints(dimension, 100))
            ASSERT_TRUE(AddPixel(list, point.data()));
        std::jthread([&list] { EXPECT_TRUE(ReleaseObject(list)); }).join();
        EXPECT_EQ(list, nullptr);
    }
}

TEST(PixelListThreads, TheLastOfManyReleasesFreesTheList) {
    for (int round = 0; round < 50; ++round) {
        void *const list = CreatePixelList(3);
        for (const auto &point : SomePoints(3, 30))
            ASSERT_TRUE(AddPixel(list, point.data()));
        for (std::size_t k = 1; k < ThreadCount; ++k)
            ASSERT_TRUE(ShareObject(list));
        std::atomic<int> freed{0};
        EXPECT_EQ(InManyThreads([&](std::size_t) {
                      double out[3];
                      const bool read = ListPixelEx(list, 29, out) && PixelListCount(list) == 30;
                      void *pointer = list;
                      freed += ReleaseObject(pointer) ? 1 : 0;
                      return read ? 0 : 1;
                  }),
                  0);
        EXPECT_EQ(freed, 1);
    }
}

TEST(PixelListThreads, AListGoesFromThreadToThread) {
    void *list = CreatePixelList(2);
    Points expected;
    for (int k = 0; k < 20; ++k) {
        expected.push_back({1.0 * k, -1.0 * k});
        std::jthread([&] {
            ASSERT_TRUE(AddPixel(list, expected.back().data()));
            void *replaced = nullptr;
            ASSERT_TRUE(CopyPixelList(list, &replaced));
            ASSERT_TRUE(ReleaseObject(list));
            list = replaced;
        }).join();
    }
    const Handle owner(list);
    EXPECT_TRUE(Holds(list, expected));
}

TEST(PixelListThreads, ThreadsWorkOnListsOfTheirOwnBesideEachOther) {
    const int wrong = InManyThreads([](std::size_t k) {
        int errors = 0;
        const auto expect = [&](bool right) { errors += right ? 0 : 1; };
        for (int round = 0; round < 30; ++round) {
            const Points points = SomePoints(3, 50 + k);
            Handle list(CreatePixelList(3));
            for (const auto &point : points)
                expect(AddPixel(list.Get(), point.data()));
            const double vector[] = {1, 0.25, 0};
            expect(TransformPixelListMatrix(list.Get(), {1, 0, 0, 1}, 0, 0));
            expect(SortPixelsByValue(list.Get()) && SortPixelsByPosition(list.Get(), 1, 2) &&
                   SortPixelsEx(list.Get(), vector));
            expect(SortedBits(PointsOf(list.Get())) == SortedBits(points));
            expect(SeparatePixels(list.Get(), vector, 5.0) && PixelListCount(list.Get()) < std::ssize(points));
            expect(TruncatePixelList(list.Get(), 1) && RemovePixel(list.Get(), 0) && !RemoveAllPixels(list.Get()));
        }
        return errors + (ReportCount() == 0 ? 0 : 1);
    });
    EXPECT_EQ(wrong, 0);
}

TEST(PixelListThreads, ReportsStayOnTheThreadTheyCameFrom) {
    ClearReports();
    const Handle list = ListOf(2, {{1, 2}});
    EXPECT_EQ(InManyThreads([&](std::size_t k) {
                  const auto own = static_cast<std::int64_t>(k);
                  for (std::int64_t i = 0; i < own; ++i)
                      if (RemovePixel(list.Get(), -1) || ListPixelEx(list.Get(), 1 + i, nullptr))
                          return 1;
                  const auto report = TakeReport();
                  const bool right =
                      ReportCount() == 2 * own && report.has_value() == (own > 0) &&
                      (own == 0 || (report->function == "ListPixelEx" && report->serial == 2 * own - 1));
                  return right ? 0 : 1;
              }),
              0);
    ExpectNoReport();
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}}));
}

TEST(PixelListThreads, OneOverlayIsReadByManyThreads) {
    const auto image = OfTypes({0x410}, 30, 20);
    const Points expected = *MarksIn(PixelBytes(image->Handle(), 0), 2, 30, 20, 3, {0, 0, 0, 0});
    EXPECT_EQ(InManyThreads([&](std::size_t) {
                  int wrong = 0;
                  for (int round = 0; round < 20; ++round) {
                      Handle list;
                      const bool made = CreatePixelListFromOverlay(image->Handle(), 3, 0, 0, 0, 0, list.Out());
                      wrong += made && PointsOf(list.Get()) == expected ? 0 : 1;
                  }
                  return wrong;
              }),
              0);
    EXPECT_EQ(image->Count(), 1);
}

} // namespace
