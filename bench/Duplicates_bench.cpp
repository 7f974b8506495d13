// CreateDuplicateImage: of linear planes and of views turned by 180 degrees beside a memcpy of as many bytes into a
// fresh block, of views turned by 90 degrees beside a rotation into a fresh image.
#include "Peers.h"
#include "Rotations.h"
#include <cstdlib>
#include <cstring>

namespace Bench {

namespace {

Body Duplicate(const ImageHandle &image) {
    return [image](benchmark::State &state) {
        for (auto _ : state) {
            void *copy = nullptr;
            CreateDuplicateImage(image.get(), &copy);
            benchmark::DoNotOptimize(copy);
            benchmark::ClobberMemory();
            ReleaseObject(copy);
        }
    };
}

Body RotateIntoFreshImage(const cv::Mat &pixels, int code) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            cv::Mat target;
            cv::rotate(pixels, target, code);
            benchmark::DoNotOptimize(target.data);
            benchmark::ClobberMemory();
        }
    };
}

void RequireSameDuplicate(const ImageHandle &image, const cv::Mat &pixels, const std::string &row) {
    void *copy = nullptr;
    Require(CreateDuplicateImage(image.get(), &copy) == 1, "a duplicate: " + row);
    RequireSamePixels(Hold(copy).get(), pixels, row);
}

void RegisterLinear(const std::string &form, const ImageHandle &image, const cv::Mat &pixels) {
    auto row = "CreateDuplicateImage, " + form + " / malloc and memcpy";
    RequireSameDuplicate(image, pixels, row);
    RegisterPair(row, 1.1, Duplicate(image), CopyIntoFreshBlock(pixels));
}

// goal is that of the turns by 90 degrees.
void RegisterTurned(const std::string &form, const cv::Mat &pixels, double goal) {
    auto image = External(pixels);
    for (const auto &rotation : Rotations) {
        cv::Mat turned;
        cv::rotate(pixels, turned, rotation.theirs);
        bool isHalfTurn = rotation.ours == VPATRotation180;
        auto row = "CreateDuplicateImage, " + form + " turned " + rotation.name +
                   (isHalfTurn ? " / malloc and memcpy" : " / rotate");
        auto view = Turned(image, rotation.ours);
        RequireSameDuplicate(view, turned, row);
        RegisterPair(row, isHalfTurn ? 1.1 : goal, Duplicate(view),
                     isHalfTurn ? CopyIntoFreshBlock(pixels) : RotateIntoFreshImage(pixels, rotation.theirs));
    }
}

} // namespace

void RegisterDuplicates() {
    auto grey = RandomPixels(CV_8UC1), colour = RandomPixels(CV_8UC3);
    auto deep = RandomPixels(CV_16UC1), real = RandomPixels(CV_32FC1);
    RegisterLinear("8 bits", External(grey), grey);
    RegisterLinear("8 bits generic", Generic(grey), grey);
    RegisterLinear("16 bits", External(deep), deep);
    RegisterLinear("float", External(real), real);
    RegisterLinear("3 x 8 bits interleaved", External(colour), colour);
    RegisterLinear("3 x 8 bits generic", Generic(colour), colour);
    RegisterTurned("8 bits", grey, 0.45);
    RegisterTurned("16 bits", deep, 0.7);
    RegisterTurned("float", real, 0.7);
}

} // namespace Bench
