// Feeds any bytes to the bitmap reader. What comes out is no image, or an image whose every pixel can be read through
// its tables, guard entries included, and that can be copied and written again.
#include "ORVImg.h"
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

// A file name of its own per process, on the memory file system.
std::string PathFor(const char *purpose) {
    return "/dev/shm/orvimg-fuzz-" + std::to_string(getpid()) + purpose + ".bmp";
}

bool WriteFile(const std::string &path, const std::uint8_t *data, std::size_t size) {
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    bool isWritten = std::fwrite(data, 1, size, file) == size;
    return std::fclose(file) == 0 && isWritten;
}

unsigned SumOfPlane(void *image, intptr_t plane) {
    TPlaneRec record{};
    SetPlaneRec(image, plane, &record);
    if (!record.VPAT)
        std::abort();
    unsigned sum = 0;
    for (intptr_t y = -4; y < record.Height + 4; ++y) {
        for (intptr_t x = -4; x < record.Width + 4; ++x)
            sum = 31 * sum +
                  static_cast<unsigned char *>(record.BaseAddress)[record.VPAT[x].XEntry + record.VPAT[y].YEntry];
    }
    return sum;
}

unsigned SumOfPixels(void *image) {
    unsigned sum = 0;
    for (intptr_t plane = 0; plane < ImageDimension(image); ++plane)
        sum = 31 * sum + SumOfPlane(image, plane);
    return sum;
}

// A copy shows the same pixels, and so does the file that is written of the image.
void CheckWayBack(void *image, const std::string &path) {
    void *copy = nullptr, *reread = nullptr;
    unsigned sum = SumOfPixels(image);
    if (!CreateDuplicateImage(image, &copy) || SumOfPixels(copy) != sum)
        std::abort();
    if (!WriteImageFile(image, path.c_str()) || !LoadImageFile(path.c_str(), &reread) || SumOfPixels(reread) != sum)
        std::abort();
    if (!ReleaseObject(copy) || !ReleaseObject(reread))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string input = PathFor(""), output = PathFor("-written");
    if (!WriteFile(input, data, size))
        std::abort();
    void *image = nullptr;
    bool isRead = LoadImageFile(input.c_str(), &image);
    if (isRead != (image != nullptr))
        std::abort();
    if (isRead) {
        CheckWayBack(image, output);
        if (!ReleaseObject(image))
            std::abort();
        std::remove(output.c_str());
    }
    std::remove(input.c_str());
    return 0;
}
