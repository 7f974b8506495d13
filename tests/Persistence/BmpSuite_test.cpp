// The public BMP suite by Jason Summers, where it is present: every file gives a null handle or a whole image, and
// the good ones of the kinds that are read show their picture.
#include "Persistence/BmpFiles.h"

#include <cstdlib>
#include <map>

namespace {

using namespace TestSupport;

/// The suite's folder: the environment variable ORV_BMP_SUITE, or what the build was told; empty when absent.
std::filesystem::path SuiteFolder() {
    const char *const named = std::getenv("ORV_BMP_SUITE");
#ifdef ORV_BMP_SUITE_FOLDER
    const std::filesystem::path folder = named != nullptr ? named : ORV_BMP_SUITE_FOLDER;
#else
    const std::filesystem::path folder = named != nullptr ? named : "";
#endif
    return !folder.empty() && std::filesystem::is_directory(folder / "g") ? folder : std::filesystem::path();
}

class BmpSuite : public testing::Test {
protected:
    void SetUp() override {
        folder = SuiteFolder();
        if (folder.empty())
            GTEST_SKIP() << "the suite is not here; ORV_BMP_SUITE can name its folder";
    }
    Handle Load(const std::filesystem::path &name) const {
        ClearReports();
        Handle image;
        const bool loaded = LoadImageFile((folder / name).c_str(), image.Out());
        EXPECT_EQ(static_cast<bool>(image), loaded);
        ExpectNoReport();
        return image;
    }
    /// Expects two files to show the same pixels.
    void ExpectSamePicture(const char *name, const char *other) const {
        SCOPED_TRACE(std::string(name) + " and " + other);
        const Handle image = Load(name);
        const Handle otherImage = Load(other);
        ASSERT_TRUE(image);
        ASSERT_TRUE(otherImage);
        ASSERT_EQ(SizeOf(image.Get()), SizeOf(otherImage.Get()));
        for (std::intptr_t plane = 0; plane < SizeOf(image.Get()).Planes; ++plane)
            EXPECT_EQ(PixelBytes(image.Get(), plane), PixelBytes(otherImage.Get(), plane));
    }
    std::filesystem::path folder;
};

TEST_F(BmpSuite, GivesANullHandleOrAWholeImageForEveryFile) {
    int files = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".bmp")
            continue;
        SCOPED_TRACE(entry.path().filename().string());
        const Handle image = Load(entry.path());
        if (image)
            SumOfAllPixels(image.Get());
        ++files;
    }
    EXPECT_GT(files, 0);
}

TEST_F(BmpSuite, ShowsTheGoodFilesOf8And24And32BitsAndNoOthers) {
    // The files of 252 colors have no grey palette, and four entries behind it are pixels.
    const std::map<std::string, ImageSize> shown = {
        {"pal8-0.bmp", {3, 127, 64}},        {"pal8.bmp", {3, 127, 64}},        {"pal8gs.bmp", {3, 127, 64}},
        {"pal8nonsquare.bmp", {3, 127, 32}}, {"pal8topdown.bmp", {3, 127, 64}}, {"pal8v4.bmp", {3, 127, 64}},
        {"pal8v5.bmp", {3, 127, 64}},        {"pal8w124.bmp", {3, 124, 61}},    {"pal8w125.bmp", {3, 125, 62}},
        {"pal8w126.bmp", {3, 126, 63}},      {"rgb24.bmp", {3, 127, 64}},       {"rgb24pal.bmp", {3, 127, 64}},
        {"rgb32.bmp", {3, 127, 64}},         {"rgb32bfdef.bmp", {3, 127, 64}}};
    for (const auto &entry : std::filesystem::directory_iterator(folder / "g")) {
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        const Handle image = Load(entry.path());
        const auto expected = shown.find(name);
        ASSERT_EQ(static_cast<bool>(image), expected != shown.end());
        if (image) {
            EXPECT_EQ(SizeOf(image.Get()), expected->second);
        }
    }
}

TEST_F(BmpSuite, ShowsOnePictureUnderSeveralForms) {
    ExpectSamePicture("g/rgb24.bmp", "g/rgb24pal.bmp");
    ExpectSamePicture("g/rgb24.bmp", "g/rgb32.bmp");
    ExpectSamePicture("g/rgb32.bmp", "g/rgb32bfdef.bmp");
    ExpectSamePicture("g/pal8.bmp", "g/pal8topdown.bmp");
    ExpectSamePicture("g/pal8.bmp", "g/pal8-0.bmp");
}

} // namespace
