// A query through a handle beside a header copy; an image over a pointer beside one fill of its table.
#include "Peers.h"
#include <cstdlib>

namespace Bench {

namespace {

Body Query(const ImageHandle &image) {
    return [image](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(ImageWidth(image.get()));
    };
}

Body HeaderCopy() {
    return [source = RandomPixels(CV_8UC1)](benchmark::State &state) {
        for (auto _ : state) {
            cv::Mat copy(source);
            benchmark::DoNotOptimize(copy.data);
        }
    };
}

constexpr intptr_t Side = 1000;
constexpr std::size_t TableEntries = Side + 8;

void CreateAndRelease(benchmark::State &state) {
    std::vector<unsigned char> pixels(Side * Side);
    for (auto _ : state) {
        void *image = nullptr;
        CreateImageFromPointer(pixels.data(), pixels.size(), Side, Side, 1, 8, 1, Side, 1, nullptr, nullptr, nullptr,
                               &image);
        benchmark::DoNotOptimize(image);
        ReleaseObject(image);
    }
}

void FillTable(benchmark::State &state) {
    intptr_t pitchX = 1, pitchY = Side;
    benchmark::DoNotOptimize(pitchX);
    benchmark::DoNotOptimize(pitchY);
    for (auto _ : state) {
        auto *table = static_cast<VPAEntry *>(std::malloc(TableEntries * sizeof(VPAEntry)));
        if (!table)
            return state.SkipWithError("no memory");
        for (std::size_t i = 0; i < TableEntries; ++i)
            table[i] = {static_cast<intptr_t>(i) * pitchX, static_cast<intptr_t>(i) * pitchY};
        benchmark::DoNotOptimize(table);
        benchmark::ClobberMemory();
        std::free(table);
    }
}

} // namespace

void RegisterHandles() {
    auto pixels = RandomPixels(CV_8UC1);
    RegisterPair("ImageWidth, external image / Mat header copy", 1.0, Query(External(pixels)), HeaderCopy());
    RegisterPair("ImageWidth, generic image / Mat header copy", 1.0, Query(Generic(pixels)), HeaderCopy());
    RegisterPair("CreateImageFromPointer 1000 wide / malloc and fill", 1.2, CreateAndRelease, FillTable);
}

} // namespace Bench
