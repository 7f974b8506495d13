// Runs all rows. The times mean little by themselves: ratios.py runs this program and prints the ratios.
#include "Peers.h"
#include <filesystem>
#include <opencv2/core/utility.hpp>
#include <stdlib.h>

int main(int count, char **arguments) {
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 2;
    cv::setNumThreads(1);
    char folder[] = "/dev/shm/orvimg-bench-XXXXXX";
    Bench::Require(mkdtemp(folder) != nullptr, "a folder on the memory file system");
    Bench::RegisterHandles();
    Bench::RegisterViews();
    Bench::RegisterDuplicates();
    Bench::RegisterRectangles();
    Bench::RegisterBitmaps(folder);
    Bench::RegisterScans();
    Bench::RegisterStatistics();
    Bench::RegisterMappings();
    Bench::RegisterColors();
    Bench::RegisterAffine();
    Bench::RegisterArbitrary();
    Bench::RegisterPolar();
    Bench::RegisterPixelLists();
    Bench::RegisterMaxima();
    Bench::RegisterSubPixel();
    Bench::RegisterDrawing();
    Bench::RegisterFloodFill();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::filesystem::remove_all(folder);
    return 0;
}
