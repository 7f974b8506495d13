// Fills of an open region and of a labyrinth beside floodFill over four neighbours. Both sides fill the same pixels,
// which are put back between fills, outside the time.
#include "Drawing.h"
#include "Peers.h"
#include <opencv2/imgproc.hpp>
#include <random>
#include <vector>

namespace Bench {

namespace {

constexpr double Wall = 255.0;

template <class Fill>
Body FillAgain(const cv::Mat &picture, Fill fill) {
    return [=](benchmark::State &state) {
        cv::Mat pixels = picture.clone();
        auto image = External(pixels);
        for (auto _ : state) {
            state.PauseTiming();
            picture.copyTo(pixels);
            state.ResumeTiming();
            fill(image.get(), pixels);
            benchmark::ClobberMemory();
        }
    };
}

void FillOurs(void *image, cv::Mat &) {
    FloodFillMono(image, 0, 1, 1, Wall, 0.0);
}
void FillTheirs(void *, cv::Mat &pixels) {
    cv::floodFill(pixels, {1, 1}, cv::Scalar(Wall), nullptr, cv::Scalar(), cv::Scalar(), 4);
}

// Round obstacles in a wide field.
cv::Mat OpenRegion(int type) {
    cv::Mat picture(Height, Width, type, cv::Scalar(0));
    for (int y = 100; y < Height; y += 200)
        for (int x = 100; x < Width; x += 200)
            cv::circle(picture, {x, y}, 40, cv::Scalar(Wall), cv::FILLED);
    return picture;
}

// Ways one pixel wide between walls one pixel wide, one way from each place to each other one.
cv::Mat Labyrinth(int type) {
    cv::Mat picture(Height, Width, type, cv::Scalar(Wall));
    std::mt19937 random(1);
    std::vector<cv::Point> ways{{1, 1}};
    picture(cv::Rect(1, 1, 1, 1)) = cv::Scalar(0);
    while (!ways.empty()) {
        const cv::Point from = ways.back();
        std::vector<cv::Point> steps;
        for (const cv::Point step : {cv::Point(2, 0), cv::Point(-2, 0), cv::Point(0, 2), cv::Point(0, -2)}) {
            const cv::Point to = from + step;
            const bool isInside = to.x > 0 && to.y > 0 && to.x < Width - 1 && to.y < Height - 1;
            if (isInside && cv::sum(picture(cv::Rect(to.x, to.y, 1, 1)))[0] != 0)
                steps.push_back(step);
        }
        if (steps.empty()) {
            ways.pop_back();
            continue;
        }
        const cv::Point step = steps[random() % steps.size()];
        picture(cv::Rect(from.x + step.x / 2, from.y + step.y / 2, 1, 1)) = cv::Scalar(0);
        picture(cv::Rect(from.x + step.x, from.y + step.y, 1, 1)) = cv::Scalar(0);
        ways.push_back(from + step);
    }
    return picture;
}

void RegisterFill(const std::string &name, const cv::Mat &picture, double goal) {
    auto row = "FloodFillMono, " + name + " / floodFill";
    cv::Mat ours = picture.clone(), theirs = picture.clone();
    FillOurs(External(ours).get(), ours);
    FillTheirs(nullptr, theirs);
    RequireSamePixels(External(ours).get(), theirs, row);
    RegisterPair(row, goal, FillAgain(picture, FillOurs), FillAgain(picture, FillTheirs));
}

} // namespace

void RegisterFloodFill() {
    RegisterFill("open region, 8 bits", OpenRegion(CV_8UC1), 0.15);
    RegisterFill("open region, float", OpenRegion(CV_32FC1), 0.15);
    RegisterFill("labyrinth, 8 bits", Labyrinth(CV_8UC1), 0.9);
    RegisterFill("labyrinth, float", Labyrinth(CV_32FC1), 0.9);
}

} // namespace Bench
