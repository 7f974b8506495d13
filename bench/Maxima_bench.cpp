// FindMaxima beside dilate with compare, and collecting and sorting the hits: what a caller of OpenCV writes to find
// maxima. The peer takes each pixel of a plateau for a hit, also of plateaus that something greater touches.
#include "Peers.h"
#include "PixelList/Maxima.h"
#include "PixelList/Pixel.h"
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace Bench {

namespace {

struct Hit {
    cv::Point Place;
    double Value;
};

template <class T>
std::vector<Hit> Collect(const cv::Mat &pixels, int side) {
    cv::Mat greatest, isHit;
    cv::dilate(pixels, greatest, cv::Mat::ones(side, side, CV_8U));
    cv::compare(pixels, greatest, isHit, cv::CMP_EQ);
    std::vector<cv::Point> places;
    cv::findNonZero(isHit, places);
    std::vector<Hit> hits(places.size());
    std::transform(places.begin(), places.end(), hits.begin(), [&pixels](const cv::Point &place) {
        return Hit{place, static_cast<double>(pixels.at<T>(place))};
    });
    std::stable_sort(hits.begin(), hits.end(), [](const Hit &a, const Hit &b) { return a.Value < b.Value; });
    return hits;
}

template <class T>
Body Theirs(const cv::Mat &pixels, int side) {
    return [=](benchmark::State &state) {
        std::size_t count = 0;
        for (auto _ : state) {
            auto hits = Collect<T>(pixels, side);
            benchmark::DoNotOptimize(hits.data());
            count = hits.size();
        }
        state.counters["hits"] = static_cast<double>(count);
    };
}

ImageHandle Find(const ImageHandle &image, int64_t locality) {
    void *list = nullptr;
    FindMaxima(image.get(), 0, 0, 0, 0, 0, locality, 0, &list);
    return Hold(list);
}

Body Ours(const cv::Mat &pixels, int64_t locality) {
    return [image = External(pixels), locality](benchmark::State &state) {
        for (auto _ : state) {
            const ImageHandle list = Find(image, locality);
            benchmark::ClobberMemory();
        }
        state.counters["hits"] = static_cast<double>(PixelListCount(Find(image, locality).get()));
    };
}

template <class T>
void RegisterSearch(const std::string &picture, const cv::Mat &pixels, int locality, double goal) {
    const int side = locality > 0 ? 2 * locality + 1 : 3;
    const std::string size = std::to_string(side);
    const std::string row = "FindMaxima, " + picture +
                            (locality > 0 ? ", Locality " + std::to_string(locality) : "") + " / dilate " + size +
                            "x" + size + ", compare, collect and sort";
    Require(PixelListCount(Find(External(pixels), locality).get()) > 0, "maxima: " + row);
    RegisterPair(row, goal, Ours(pixels, locality), Theirs<T>(pixels, side));
}

/// Hills of some pixels' width over the whole range of the type.
cv::Mat Smooth(int type, double deviation) {
    cv::Mat hills, pixels;
    cv::GaussianBlur(RandomPixels(CV_32FC1), hills, cv::Size(), deviation);
    cv::normalize(hills, hills, 0, type == CV_8UC1 ? 255 : 65535, cv::NORM_MINMAX);
    hills.convertTo(pixels, type);
    return pixels;
}

} // namespace

void RegisterMaxima() {
    const cv::Mat bytes = Smooth(CV_8UC1, 8), words = Smooth(CV_16UC1, 8);
    const cv::Mat noise = RandomPixels(CV_8UC1), deepNoise = RandomPixels(CV_16UC1);
    RegisterSearch<uchar>("smooth picture of 8 bits", bytes, 0, 0.3);
    RegisterSearch<ushort>("smooth picture of 16 bits", words, 0, 0.3);
    RegisterSearch<uchar>("white noise of 8 bits", noise, 0, 1.0);
    RegisterSearch<ushort>("white noise of 16 bits", deepNoise, 0, 1.0);
    RegisterSearch<uchar>("smooth picture of 8 bits", bytes, 5, 0.5);
    RegisterSearch<ushort>("smooth picture of 16 bits", words, 5, 0.5);
    RegisterSearch<uchar>("white noise of 8 bits", noise, 5, 0.5);
    RegisterSearch<ushort>("white noise of 16 bits", deepNoise, 5, 0.5);
}

} // namespace Bench
