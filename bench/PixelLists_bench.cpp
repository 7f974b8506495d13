// AddPixel beside the time that a call may take; the sorts of pixel lists beside std::sort of an array of structs;
// the marks of an overlay beside a count of its bytes.
#include "Peers.h"
#include <algorithm>
#include <chrono>
#include <random>
#include <time.h>
#include <vector>

namespace Bench {

namespace {

struct Point {
    double X, Y, Value;
};

std::vector<Point> RandomPoints(std::size_t count) {
    std::mt19937_64 random(4711);
    std::uniform_real_distribution<double> component(0, 1000);
    std::vector<Point> points(count);
    for (Point &point : points)
        point = {component(random), component(random), component(random)};
    return points;
}

void AddAll(void *list, const std::vector<Point> &points) {
    for (const Point &point : points)
        AddPixel(list, &point.X);
}

// ---- AddPixel

/// What the rows count: the time in which others run does not.
std::chrono::nanoseconds TimeOfThread() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

void RegisterAddPixel() {
    constexpr std::chrono::nanoseconds goal(60);
    const auto points = RandomPoints(100000);
    const auto add = [points](benchmark::State &state) {
        for (auto _ : state) {
            void *list = CreatePixelList(3);
            AddAll(list, points);
            state.PauseTiming();
            ReleaseObject(list);
            state.ResumeTiming();
        }
    };
    const auto wait = [end = goal * points.size()](benchmark::State &state) {
        for (auto _ : state) {
            const auto begin = TimeOfThread();
            while (TimeOfThread() - begin < end) {
            }
        }
    };
    RegisterPair("AddPixel / 60 ns", 1.0, add, wait);
}

// ---- sorting

/// Sorts points that are in any order before. The list keeps its pixels, which come to lie in memory in any order.
Body SortList(const std::vector<Point> &points, bool (*sort)(void *list)) {
    const ImageHandle list = Hold(CreatePixelList(3));
    AddAll(list.get(), points);
    return [points, list, sort](benchmark::State &state) {
        for (auto _ : state) {
            state.PauseTiming();
            for (std::size_t i = 0; i < points.size(); ++i)
                ModifyListPixel(list.get(), static_cast<int64_t>(i), &points[i].X);
            state.ResumeTiming();
            sort(list.get());
        }
    };
}

template <class Order>
Body SortStructs(const std::vector<Point> &points, Order isBefore) {
    return [points, isBefore](benchmark::State &state) {
        for (auto _ : state) {
            state.PauseTiming();
            auto sorted = points;
            state.ResumeTiming();
            std::sort(sorted.begin(), sorted.end(), isBefore);
            benchmark::ClobberMemory();
        }
    };
}

template <class Order>
void RegisterSort(const std::string &row, const std::vector<Point> &points, bool (*sort)(void *), Order isBefore) {
    const ImageHandle list = Hold(CreatePixelList(3));
    AddAll(list.get(), points);
    Require(sort(list.get()), "a sorted list: " + row);
    Point before{}, next{};
    ListPixelEx(list.get(), 0, &before.X);
    for (std::size_t i = 1; i < points.size(); ++i, before = next) {
        ListPixelEx(list.get(), static_cast<int64_t>(i), &next.X);
        Require(!isBefore(next, before), "a list in order: " + row);
    }
    RegisterPair(row, 1.5, SortList(points, sort), SortStructs(points, isBefore));
}

void RegisterSorts() {
    const auto points = RandomPoints(1000000);
    RegisterSort("SortPixelsByValue, 1000000 / std::sort of structs", points, SortPixelsByValue,
                 [](const Point &a, const Point &b) { return a.Value > b.Value; });
    RegisterSort(
        "SortPixelsByPosition, 1000000 / std::sort of structs by x", points,
        [](void *list) { return SortPixelsByPosition(list, 1, 0); },
        [](const Point &a, const Point &b) { return a.X < b.X; });
    RegisterSort(
        "SortPixelsEx, 1000000 / std::sort of structs by the same order", points,
        [](void *list) {
            const double direction[] = {0.5, -2, 1};
            return SortPixelsEx(list, direction);
        },
        [](const Point &a, const Point &b) {
            return (a.X - b.X) * 0.5 + (a.Y - b.Y) * -2 + (a.Value - b.Value) < 0;
        });
}

// ---- overlay

void RegisterOverlayMarks() {
    auto pixels = RandomPixels(CV_8UC1);
    pixels &= 0xFE;
    void *made = nullptr;
    Require(CreateOverlayImage(External(pixels).get(), &made) == 1, "an overlay image");
    const ImageHandle image = Hold(made);
    const auto listMarks = [image](benchmark::State &state) {
        for (auto _ : state) {
            void *list = nullptr;
            CreatePixelListFromOverlay(image.get(), 2, 0, 0, 0, 0, &list);
            benchmark::DoNotOptimize(list);
            ReleaseObject(list);
        }
    };
    const auto count = [pixels](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(cv::countNonZero(pixels));
    };
    RegisterPair("CreatePixelListFromOverlay without marks, 8 bits / countNonZero", 2.0, listMarks, count);
}

} // namespace

void RegisterPixelLists() {
    RegisterAddPixel();
    RegisterSorts();
    RegisterOverlayMarks();
}

} // namespace Bench
