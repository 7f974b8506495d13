// Fills, copies and histograms of areas beside memset, memcpy, fillConvexPoly, copyTo and calcHist; walks with the
// caller's callbacks beside a bare loop of the same callback.
#include "Peers.h"
#include <chrono>
#include <cstring>
#include <opencv2/imgproc.hpp>

namespace Bench {

namespace {

/// All of an image but a margin, and the same turned by ten degrees.
constexpr int Margin = 10;
const cv::Rect Inner(Margin, Margin, Width - 2 * Margin, Height - 2 * Margin);

TArea StraightArea() {
    TArea area;
    SetRectArea(&area, Inner.x, Inner.y, Inner.x + Inner.width - 1, Inner.y + Inner.height - 1);
    return area;
}

TArea TurnedArea() {
    return {300.0, 40.0, 300.0 + 1200.0, 40.0 + 211.0, 300.0 - 132.0, 40.0 + 750.0};
}

std::vector<cv::Point> CornersOf(const TArea &area) {
    const auto point = [](double x, double y) { return cv::Point(cvRound(x), cvRound(y)); };
    return {point(area.X0, area.Y0), point(area.X1, area.Y1),
            point(area.X1 + area.X2 - area.X0, area.Y1 + area.Y2 - area.Y0), point(area.X2, area.Y2)};
}

/// Both sides must agree on most pixels: polygons of the two libraries differ along their edges.
void RequireAlike(const cv::Mat &ours, const cv::Mat &theirs, const std::string &row) {
    Require(cv::countNonZero(ours != theirs) < 20000, row + ": about the same pixels");
}

// ---- fills

void RegisterFills() {
    const cv::Mat pixels(Height, Width, CV_8UC1, cv::Scalar(0));
    const auto fill = [image = External(pixels)](const TArea &area) {
        return [image, area](benchmark::State &state) {
            for (auto _ : state) {
                InitializeImageArea(image.get(), 0, 77, area);
                benchmark::ClobberMemory();
            }
        };
    };
    const auto fillRows = [pixels](benchmark::State &state) {
        cv::Mat inner = pixels(Inner);
        for (auto _ : state) {
            for (int y = 0; y < inner.rows; ++y)
                std::memset(inner.ptr(y), 77, static_cast<std::size_t>(inner.cols));
            benchmark::ClobberMemory();
        }
    };
    RegisterPair("InitializeImageArea, straight / memset of the rows", 1.15, fill(StraightArea()), fillRows);
    const auto fillPolygon = [pixels, corners = CornersOf(TurnedArea())](benchmark::State &state) {
        cv::Mat target = pixels;
        for (auto _ : state) {
            cv::fillConvexPoly(target, corners, cv::Scalar(77));
            benchmark::ClobberMemory();
        }
    };
    cv::Mat ours(Height, Width, CV_8UC1, cv::Scalar(0)), theirs = ours.clone();
    Require(InitializeImageArea(External(ours).get(), 0, 77, TurnedArea()) == 1, "a filled area");
    cv::fillConvexPoly(theirs, CornersOf(TurnedArea()), cv::Scalar(77));
    RequireAlike(ours, theirs, "fill of a turned area");
    RegisterPair("InitializeImageArea, turned / fillConvexPoly", 2.0, fill(TurnedArea()), fillPolygon);
}

// ---- copies

void RegisterCopies() {
    const cv::Mat source = RandomPixels(CV_8UC1), target(Height, Width, CV_8UC1, cv::Scalar(0));
    const auto copy = [from = External(source), to = External(target)](const TArea &area) {
        return [from, to, area](benchmark::State &state) {
            for (auto _ : state) {
                CopyImageArea(from.get(), to.get(), 0, 0, static_cast<std::int64_t>(area.X0),
                              static_cast<std::int64_t>(area.Y0), area);
                benchmark::ClobberMemory();
            }
        };
    };
    const auto copyRows = [source, target](benchmark::State &state) {
        const cv::Mat from = source(Inner);
        cv::Mat to = target(Inner);
        for (auto _ : state) {
            for (int y = 0; y < from.rows; ++y)
                std::memcpy(to.ptr(y), from.ptr(y), static_cast<std::size_t>(from.cols));
            benchmark::ClobberMemory();
        }
    };
    RegisterPair("CopyImageArea, straight / memcpy of the rows", 1.15, copy(StraightArea()), copyRows);
    const auto copyMasked = [source, target, corners = CornersOf(TurnedArea())](benchmark::State &state) {
        cv::Mat to = target;
        for (auto _ : state) {
            cv::Mat mask = cv::Mat::zeros(Height, Width, CV_8UC1);
            cv::fillConvexPoly(mask, corners, cv::Scalar(255));
            source.copyTo(to, mask);
            benchmark::ClobberMemory();
        }
    };
    RegisterPair("CopyImageArea, turned / mask and copyTo", 1.0, copy(TurnedArea()), copyMasked);
}

// ---- histograms

/// Soft shapes with a little noise, as a photograph has them.
cv::Mat NaturalPixels() {
    cv::Mat noise = RandomPixels(CV_8UC1), soft;
    cv::GaussianBlur(noise, soft, cv::Size(), 25.0);
    cv::normalize(soft, soft, 0.0, 240.0, cv::NORM_MINMAX);
    return soft + noise / 32;
}

Body CountTheirWay(const cv::Mat &pixels) {
    return [pixels](benchmark::State &state) {
        const int channels[] = {0}, sizes[] = {256};
        const float range[] = {0.0F, 256.0F};
        const float *ranges[] = {range};
        cv::Mat histogram;
        for (auto _ : state)
            cv::calcHist(&pixels, 1, channels, cv::noArray(), histogram, 1, sizes, ranges);
        benchmark::DoNotOptimize(histogram.data);
    };
}

Body Count(const cv::Mat &pixels, const TArea &area) {
    return [image = External(pixels), area](benchmark::State &state) {
        std::uint64_t histogram[256];
        for (auto _ : state) {
            ImageHistogram(image.get(), 0, area, 1000, histogram);
            benchmark::ClobberMemory();
        }
    };
}

/// The walk of ImageScan.h with a test of every sample, for areas inside the image whose lines follow x.
void CountPlainly(const cv::Mat &pixels, const VPAEntry *table, const TArea &area, std::uint64_t *histogram) {
    const auto dx = static_cast<std::int64_t>(area.X1 - area.X0), dy = static_cast<std::int64_t>(area.Y1 - area.Y0);
    const std::int64_t stepX = 65536, stepY = dy * stepX / dx;
    const double cell =
        static_cast<double>(stepX) * (area.Y2 - area.Y0) - static_cast<double>(stepY) * (area.X2 - area.X0);
    const double k = 65.536 * 65.536 * (1000000.0 / cell);
    const auto lineX = std::lround((area.X2 - area.X0) * k), lineY = std::lround((area.Y2 - area.Y0) * k);
    std::int64_t x0 = (static_cast<std::int64_t>(area.X0) << 16) | 0x8000;
    std::int64_t y0 = (static_cast<std::int64_t>(area.Y0) << 16) | 0x8000;
    for (auto lines = std::lround(65536.0 / k) + 1; lines > 0; --lines, x0 += lineX, y0 += lineY) {
        std::int64_t px = x0 & 0xFFFF0000, py = y0 - (x0 & 0xFFFF) * stepY / stepX;
        for (std::int64_t i = 0; i <= dx; ++i, px += stepX, py += stepY) {
            const std::int64_t x = px >> 16, y = py >> 16;
            if (x >= 0 && x < pixels.cols && y >= 0 && y < pixels.rows)
                ++histogram[*(pixels.data + table[x].XEntry + table[y].YEntry)];
        }
    }
}

void RegisterHistograms() {
    const TArea whole = {0.0, 0.0, Width - 1.0, 0.0, 0.0, Height - 1.0};
    const cv::Mat natural = NaturalPixels(), noise = RandomPixels(CV_8UC1),
                  flat(Height, Width, CV_8UC1, cv::Scalar(100));
    RegisterPair("ImageHistogram, natural / calcHist", 1.05, Count(natural, whole), CountTheirWay(natural));
    RegisterPair("ImageHistogram, noise / calcHist", 1.05, Count(noise, whole), CountTheirWay(noise));
    RegisterPair("ImageHistogram, flat / calcHist", 1.05, Count(flat, whole), CountTheirWay(flat));

    std::vector<VPAEntry> table(Width);
    for (int i = 0; i < Width; ++i)
        table[static_cast<std::size_t>(i)] = {i, i * Width};
    const TArea turned = TurnedArea();
    std::uint64_t ours[256], plain[256] = {};
    Require(ImageHistogram(External(natural).get(), 0, turned, 1000, ours) == 1, "a histogram");
    CountPlainly(natural, table.data(), turned, plain);
    Require(std::equal(ours, ours + 256, plain), "equal histograms of a turned area");
    RegisterPair("ImageHistogram, turned / a plain walk", 0.4, Count(natural, turned),
                 [natural, table, turned](benchmark::State &state) {
                     for (auto _ : state) {
                         std::uint64_t histogram[256] = {};
                         CountPlainly(natural, table.data(), turned, histogram);
                         benchmark::DoNotOptimize(histogram);
                     }
                 });
}

// ---- callbacks

__attribute__((noinline)) unsigned char AddPixel(void *sum, void *pixel, std::int32_t, std::int32_t) {
    *static_cast<std::uint64_t *>(sum) += *static_cast<const unsigned char *>(pixel);
    return 1;
}

/// The other side has what a walk may cost: a bare loop of the callback, and 1.5 ns for each pixel.
void RegisterCallbackScan() {
    const cv::Mat pixels = RandomPixels(CV_8UC1);
    const TArea whole = {0.0, 0.0, Width - 1.0, 0.0, 0.0, Height - 1.0};
    const auto scan = [image = External(pixels), whole](benchmark::State &state) {
        std::uint64_t sum = 0;
        for (auto _ : state)
            ScanPlaneUnary(image.get(), 0, whole, 1000, 0, AddPixel, nullptr, nullptr, &sum);
        benchmark::DoNotOptimize(sum);
    };
    const auto loop = [pixels](benchmark::State &state) {
        constexpr std::chrono::nanoseconds allowance(Width * Height * 3 / 2);
        TScanPlaneUnaryCallback callback = AddPixel;
        benchmark::DoNotOptimize(callback);
        std::uint64_t sum = 0;
        for (auto _ : state) {
            for (int y = 0; y < Height; ++y)
                for (int x = 0; x < Width; ++x)
                    callback(&sum, pixels.data + y * Width + x, x, y);
            const auto end = std::chrono::steady_clock::now() + allowance;
            while (std::chrono::steady_clock::now() < end) {
            }
        }
        benchmark::DoNotOptimize(sum);
    };
    RegisterPair("ScanPlaneUnary of a plane / a bare loop and 1.5 ns per pixel", 1.0, scan, loop);
}

} // namespace

void RegisterScans() {
    RegisterFills();
    RegisterCopies();
    RegisterHistograms();
    RegisterCallbackScan();
}

} // namespace Bench
