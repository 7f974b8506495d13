// A turned view beside turning the pixels.
#include "Peers.h"
#include "Rotations.h"

namespace Bench {

namespace {

Body CreateView(const ImageHandle &image, TVPATRotation rotation) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            void *view = nullptr;
            CreateRotatedImageMap(image.get(), rotation, &view);
            benchmark::DoNotOptimize(view);
            ReleaseObject(view);
        }
    };
}

// The target exists already, which is the faster case.
Body RotateInto(const cv::Mat &pixels, int code) {
    return [=](benchmark::State &state) {
        cv::Mat target;
        cv::rotate(pixels, target, code);
        for (auto _ : state) {
            cv::rotate(pixels, target, code);
            benchmark::DoNotOptimize(target.data);
            benchmark::ClobberMemory();
        }
    };
}

} // namespace

void RegisterViews() {
    auto pixels = RandomPixels(CV_8UC1);
    auto image = External(pixels);
    for (const auto &rotation : Rotations) {
        cv::Mat turned;
        cv::rotate(pixels, turned, rotation.theirs);
        auto row = std::string("CreateRotatedImageMap ") + rotation.name + " / rotate";
        RequireSamePixels(Turned(image, rotation.ours).get(), turned, row);
        RegisterPair(row, 1.0 / 50, CreateView(image, rotation.ours), RotateInto(pixels, rotation.theirs));
    }
}

} // namespace Bench
