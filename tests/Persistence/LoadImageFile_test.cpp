// Which part of a file's name chooses the format, on reading and on writing, and how names that none fits fail.
#include "ImageCreation.h"
#include "Persistence/BmpFiles.h"

#include <sys/stat.h>

namespace {

using namespace TestSupport;

FileBytes SmallFile() {
    return MakeBmp(24, 3, 2).Bytes();
}

Handle SmallImage() {
    Handle image;
    EXPECT_TRUE(CreateGenericImage(1, 4, 2, false, image.Out()));
    for (std::intptr_t y = 0; y < 2; ++y)
        std::memset(AccessOf(image.Get(), 0).At(0, y), 0, 4);
    return image;
}

/// Calls LoadImageFile with an output that holds something before. Expects no report and nothing on standard error.
bool LoadsQuietly(const std::string &path) {
    ClearReports();
    testing::internal::CaptureStderr();
    void *image = UntouchedPointer();
    const bool loaded = LoadImageFile(path.c_str(), &image);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(image != nullptr, loaded) << "the output is null exactly when the load failed";
    ExpectNoReport();
    const Handle owner(image);
    return loaded;
}

/// True when a load fails with the loader's message about the missing plug-in, in a line of its own.
bool AsksThePlugin(const std::string &path) {
    ClearReports();
    testing::internal::CaptureStderr();
    void *image = UntouchedPointer();
    const bool loaded = LoadImageFile(path.c_str(), &image);
    const std::string message = testing::internal::GetCapturedStderr();
    EXPECT_EQ(image, nullptr);
    ExpectNoReport();
    return !loaded && message.find("libORVFile.so") != std::string::npos && message.back() == '\n';
}

bool WritesQuietly(void *image, const std::string &path) {
    ClearReports();
    testing::internal::CaptureStderr();
    const bool written = WriteImageFile(image, path.c_str());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ExpectNoReport();
    return written;
}

bool LoadsUnderTheName(const std::string &name) {
    const TemporaryPath path(name, SmallFile());
    return LoadsQuietly(path.String());
}

bool AsksThePluginUnderTheName(const std::string &name) {
    const TemporaryPath path(name, SmallFile());
    return AsksThePlugin(path.String());
}

TEST(LoadImageFile, ReportsANullPathAndAnEmptyPath) {
    for (const char *const path : {static_cast<const char *>(nullptr), ""}) {
        ClearReports();
        void *image = UntouchedPointer();
        EXPECT_FALSE(LoadImageFile(path, &image));
        EXPECT_EQ(image, UntouchedPointer());
        ExpectOneReport(ErrParameter, "LoadImageFile");
    }
}

TEST(LoadImageFile, ReportsANullOutput) {
    const TemporaryPath path("a.bmp", SmallFile());
    ClearReports();
    EXPECT_FALSE(LoadImageFile(path.Get(), nullptr));
    ExpectOneReport(ErrParameter, "LoadImageFile");
}

TEST(LoadImageFile, ReadsABitmapUnderAnyMixOfCases) {
    EXPECT_TRUE(LoadsUnderTheName("a.bmp"));
    EXPECT_TRUE(LoadsUnderTheName("a.BMP"));
    EXPECT_TRUE(LoadsUnderTheName("a.Bmp"));
    EXPECT_TRUE(LoadsUnderTheName("a.bMP"));
}

TEST(LoadImageFile, StartsTheExtensionAtTheFirstDotOfTheName) {
    EXPECT_TRUE(AsksThePluginUnderTheName("a.b.bmp"));
    EXPECT_TRUE(AsksThePluginUnderTheName("a..bmp"));
    EXPECT_TRUE(LoadsUnderTheName("a.bmp.b"));
    EXPECT_TRUE(LoadsUnderTheName("a.bmp."));
    EXPECT_TRUE(LoadsUnderTheName("a.bmp.."));
}

TEST(LoadImageFile, ComparesTheExtensionExactly) {
    EXPECT_TRUE(AsksThePluginUnderTheName("a.bm"));
    EXPECT_TRUE(AsksThePluginUnderTheName("a.bmpx"));
    EXPECT_TRUE(AsksThePluginUnderTheName("a. bmp"));
    EXPECT_TRUE(AsksThePluginUnderTheName("a."));
    EXPECT_TRUE(AsksThePluginUnderTheName("a.png"));
}

TEST(LoadImageFile, IgnoresDotsInFrontOfTheLastSeparator) {
    const TemporaryPath folder("folder.with.dots");
    std::filesystem::create_directory(folder.String());
    const TemporaryPath file("unused", SmallFile());
    std::filesystem::copy(file.String(), folder.String() + "/a.bmp");
    EXPECT_TRUE(LoadsQuietly(folder.String() + "/a.bmp"));
    std::filesystem::copy(file.String(), folder.String() + "/.bmp");
    EXPECT_TRUE(LoadsQuietly(folder.String() + "/.bmp"));
    std::filesystem::copy(file.String(), folder.String() + "/bmp");
    EXPECT_TRUE(AsksThePlugin(folder.String() + "/bmp"));
}

TEST(LoadImageFile, TakesABackslashForASeparatorToo) {
    EXPECT_TRUE(LoadsUnderTheName("a.b\\c.bmp"));
    EXPECT_TRUE(AsksThePluginUnderTheName("a.bmp\\c"));
    EXPECT_TRUE(AsksThePluginUnderTheName("a.bmp\\c.d"));
}

TEST(LoadImageFile, ReadsARelativeNameWithoutAFolder) {
    const TemporaryPath folder("folder");
    std::filesystem::create_directory(folder.String());
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.String());
    std::ofstream("a.bmp", std::ios::binary)
        .write(reinterpret_cast<const char *>(SmallFile().data()), static_cast<std::streamsize>(SmallFile().size()));
    EXPECT_TRUE(LoadsQuietly("a.bmp"));
    EXPECT_TRUE(LoadsQuietly("./a.bmp"));
    EXPECT_FALSE(LoadsQuietly("b.bmp"));
    std::filesystem::current_path(before);
}

/// Expects the exception that leaves LoadImageFile for a name in which no start of an extension is found.
void ExpectRaises(const char *path) {
    ClearReports();
    void *image = UntouchedPointer();
    try {
        LoadImageFile(path, &image);
        ADD_FAILURE() << "no exception for " << path;
    } catch (const std::out_of_range &error) {
        EXPECT_STREQ(error.what(), "basic_string::substr");
    }
    EXPECT_EQ(image, UntouchedPointer());
    ExpectNoReport();
}

TEST(LoadImageFile, RaisesForANameWithoutADotAndWithoutAFolder) {
    ExpectRaises("noextension");
    ExpectRaises("b");
}

TEST(LoadImageFile, RaisesForANameWithoutADotBehindASeparatorAtTheFront) {
    ExpectRaises("/noextension");
    ExpectRaises("\\noextension");
    ExpectRaises("/");
}

TEST(LoadImageFile, AsksThePluginForANameWithoutADotInAFolder) {
    EXPECT_TRUE(AsksThePluginUnderTheName("noextension"));
    EXPECT_TRUE(AsksThePlugin("./noextension"));
    EXPECT_TRUE(AsksThePlugin("../noextension"));
    EXPECT_TRUE(AsksThePlugin("folder.bmp/noextension"));
    EXPECT_TRUE(AsksThePlugin("x/"));
}

TEST(LoadImageFile, FailsQuietlyForWhatIsNoDriverAndNoNativeFile) {
    for (const char *const name : {"a.lmg", "a.LMG", "a.so", "a.gdv", "a.GDV"})
        EXPECT_FALSE(LoadsUnderTheName(name)) << name;
}

TEST(LoadImageFile, AsksThePluginForAllOtherFormats) {
    for (const char *const name : {"a.png", "a.jpg", "a.tif", "a.so6", "a.lmgx"})
        EXPECT_TRUE(AsksThePluginUnderTheName(name)) << name;
}

TEST(LoadImageFile, FailsQuietlyForWhatIsNoReadableFile) {
    EXPECT_FALSE(LoadsQuietly(testing::TempDir() + "there-is-no-such-file.bmp"));
    EXPECT_FALSE(LoadsQuietly(testing::TempDir() + "no-such-folder/a.bmp"));
    EXPECT_FALSE(LoadsQuietly(testing::TempDir() + std::string(5000, 'a') + ".bmp"));
    const TemporaryPath folder("folder.bmp");
    std::filesystem::create_directory(folder.String());
    EXPECT_FALSE(LoadsQuietly(folder.String()));
}

TEST(LoadImageFile, ReadsThroughALinkButOnlyARegularFile) {
    const TemporaryPath target("target", SmallFile());
    const TemporaryPath link("link.bmp");
    const auto linkTo = [&link](const char *place) {
        std::filesystem::remove(link.String());
        std::filesystem::create_symlink(place, link.String());
        return LoadsQuietly(link.String());
    };
    EXPECT_TRUE(linkTo(target.Get()));
    EXPECT_FALSE(linkTo(link.Get()));
    EXPECT_FALSE(linkTo("/dev/zero"));
    EXPECT_FALSE(linkTo("/dev/null"));
    EXPECT_FALSE(linkTo("/proc/self/mem")) << "a regular file whose reads fail";
}

TEST(LoadImageFile, DoesNotWaitForTheWriterOfAPipe) {
    const TemporaryPath pipe("pipe.bmp");
    ASSERT_EQ(mkfifo(pipe.Get(), 0600), 0);
    EXPECT_FALSE(LoadsQuietly(pipe.String()));
}

TEST(WriteImageFile, TakesTheLastFourCharactersWithoutRegardToCase) {
    const Handle image = SmallImage();
    for (const char *const name :
         {"a.bmp", "a.BMP", "a.bMp", "a.b.bmp", ".bmp", "a..BMP", "a.lmg", "a.LMG", "a.b.Lmg"}) {
        const TemporaryPath path(name);
        EXPECT_TRUE(WritesQuietly(image.Get(), path.String())) << name;
        EXPECT_TRUE(path.Exists());
    }
}

TEST(WriteImageFile, MakesNoFileForAnyOtherName) {
    const Handle image = SmallImage();
    for (const char *const name : {"abmp", "a.bm", "a.bmp.", "a.bmpx", "a.lmg.", "a.png", "noextension"}) {
        const TemporaryPath path(name);
        EXPECT_FALSE(WritesQuietly(image.Get(), path.String())) << name;
        EXPECT_FALSE(path.Exists());
    }
}

TEST(WriteImageFile, FailsForNamesOfFewerThanFourCharacters) {
    const Handle image = SmallImage();
    for (const char *const name : {"", "b", "mp", "bmp"})
        EXPECT_FALSE(WritesQuietly(image.Get(), name)) << name;
}

TEST(WriteImageFile, FailsForANullImageAndANullPath) {
    const TemporaryPath path("a.bmp");
    EXPECT_FALSE(WritesQuietly(nullptr, path.String()));
    EXPECT_FALSE(path.Exists());
    EXPECT_FALSE(WriteImageFile(SmallImage().Get(), nullptr));
}

TEST(WriteImageFile, FailsForForeignHandles) {
    for (const ForeignHandle &foreign : ForeignHandles())
        for (const char *const name : {"a.bmp", "a.png"}) {
            const TemporaryPath path(name);
            EXPECT_FALSE(WritesQuietly(foreign.Get(), path.String())) << foreign.Name;
            EXPECT_FALSE(path.Exists());
            EXPECT_EQ(foreign.Count(), 1);
        }
}

TEST(WriteImageFile, LeavesTheReportOfTheDuplicateForAForeignHandleAndANativeFile) {
    for (const ForeignHandle &foreign : ForeignHandles()) {
        const TemporaryPath path("a.lmg");
        ClearReports();
        EXPECT_FALSE(WriteImageFile(foreign.Get(), path.Get())) << foreign.Name;
        EXPECT_FALSE(path.Exists());
        EXPECT_EQ(foreign.Count(), 1);
        ExpectOneReport(ErrNotAnImage, "CreateDuplicateImage");
    }
}

TEST(WriteLossyImageFile, FailsForEveryImageAndName) {
    const Handle image = SmallImage();
    for (const char *const name : {"a.bmp", "a.jpg", "a.lmg"}) {
        const TemporaryPath path(name);
        ClearReports();
        testing::internal::CaptureStderr();
        EXPECT_FALSE(WriteLossyImageFile(image.Get(), path.Get(), 0.5));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_FALSE(path.Exists());
        ExpectNoReport();
    }
}

TEST(WriteLossyImageFile, FailsForWhatIsNoImage) {
    ClearReports();
    EXPECT_FALSE(WriteLossyImageFile(nullptr, "a.jpg", 0.5));
    for (const ForeignHandle &foreign : ForeignHandles())
        EXPECT_FALSE(WriteLossyImageFile(foreign.Get(), "a.jpg", 0.5)) << foreign.Name;
    ExpectNoReport();
}

} // namespace
