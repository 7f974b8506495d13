// Bitmap files on the memory file system: reading beside imread and beside the bare bytes, writing beside imwrite.
#include "Peers.h"
#include <cstdlib>
#include <fcntl.h>
#include <opencv2/imgcodecs.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace Bench {

namespace {

Body Load(const std::string &path) {
    return [path](benchmark::State &state) {
        for (auto _ : state) {
            void *image = nullptr;
            LoadImageFile(path.c_str(), &image);
            benchmark::DoNotOptimize(image);
            ReleaseObject(image);
        }
    };
}

Body ReadTheirWay(const std::string &path) {
    return [path](benchmark::State &state) {
        for (auto _ : state) {
            cv::Mat image = cv::imread(path, cv::IMREAD_UNCHANGED);
            benchmark::DoNotOptimize(image.data);
        }
    };
}

bool ReadBareBytes(const char *path) {
    int file = open(path, O_RDONLY | O_CLOEXEC);
    struct stat facts {};
    if (file < 0 || fstat(file, &facts) != 0)
        return false;
    auto bytes = static_cast<std::size_t>(facts.st_size);
    void *block = std::malloc(bytes);
    bool isRead = block && read(file, block, bytes) == facts.st_size;
    benchmark::DoNotOptimize(block);
    benchmark::ClobberMemory();
    std::free(block);
    close(file);
    return isRead;
}

Body ReadBare(const std::string &path) {
    return [path](benchmark::State &state) {
        for (auto _ : state) {
            if (!ReadBareBytes(path.c_str()))
                return state.SkipWithError("the file can't be read");
        }
    };
}

Body Write(const ImageHandle &image, const std::string &path) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            if (!WriteImageFile(image.get(), path.c_str()))
                return state.SkipWithError("the file can't be written");
        }
    };
}

Body WriteTheirWay(const cv::Mat &pixels, const std::string &path) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            if (!cv::imwrite(path, pixels))
                return state.SkipWithError("the file can't be written");
        }
    };
}

void RegisterForm(const std::string &form, const cv::Mat &pixels, const std::string &path) {
    auto image = Generic(pixels);
    auto ours = path + "-ours.bmp", theirs = path + "-theirs.bmp", source = path + ".bmp";
    Require(WriteImageFile(image.get(), ours.c_str()), "a written file");
    cv::Mat readBack = cv::imread(ours, cv::IMREAD_UNCHANGED);
    RequireSamePixels(image.get(), readBack, "file of ours read by them, " + form);
    Require(cv::imwrite(source, pixels), "a file to read");
    void *loaded = nullptr;
    Require(LoadImageFile(source.c_str(), &loaded), "a loaded file");
    RequireSamePixels(Hold(loaded).get(), pixels, "file of theirs read by us, " + form);

    RegisterPair("LoadImageFile " + form + " / imread", 0.9, Load(source), ReadTheirWay(source));
    RegisterPair("LoadImageFile " + form + " / open, malloc, read", 1.5, Load(source), ReadBare(source));
    RegisterPair("WriteImageFile " + form + " / imwrite", 0.9, Write(image, ours), WriteTheirWay(pixels, theirs));
}

} // namespace

void RegisterBitmaps(const std::string &folder) {
    RegisterForm("8 bits", RandomPixels(CV_8UC1), folder + "/grey");
    RegisterForm("24 bits", RandomPixels(CV_8UC3), folder + "/colour");
}

} // namespace Bench
