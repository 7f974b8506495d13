// Images that no bitmap file can hold, images that refuse their operations, and files that can't be written.
#include "Persistence/BmpWriting.h"

#include <csignal>
#include <sys/resource.h>

namespace {

using namespace TestSupport;

/// Holds the size that a file can grow to in this process; beyond it a write is short, and the next one fails.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::size_t bytes) : formerHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit limit{bytes, former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &former);
        std::signal(SIGXFSZ, formerHandler);
    }

private:
    void (*formerHandler)(int);
    rlimit former{};
};

TEST(BmpWriterFailures, RefusesOtherPlaneCountsThanOneAndThree) {
    for (const std::intptr_t planes : {0, 2, 4, 5})
        EXPECT_TRUE(Written(FakeImage::Planar(4, 4, planes, 8)->Handle()).empty()) << planes;
}

TEST(BmpWriterFailures, RefusesImagesWithoutPixels) {
    for (const auto &[width, height] : {std::pair{0, 4}, {4, 0}, {0, 0}, {-1, 4}, {4, -1}}) {
        FakeImage image(width, height, 16);
        image.AddPlane(
            image.Pixels.data(), 8, [](std::intptr_t x) { return x; }, [](std::intptr_t) { return 0; });
        EXPECT_TRUE(Written(image.Handle()).empty()) << width << " x " << height;
    }
}

TEST(BmpWriterFailures, RefusesPixelsOfOtherWidthsThan8Bits) {
    for (const TDataType type : {0x10u, 0x110u, 0x20u, 0x220u, 0x240u, 0x40u, 1u, 7u, 0x810u})
        for (const std::intptr_t planes : {1, 3})
            EXPECT_TRUE(Written(FakeImage::Planar(4, 4, planes, type)->Handle()).empty()) << type;
}

TEST(BmpWriterFailures, RefusesSeparatePlanesWhoseCopyHasSeparatePlanesToo) {
    for (const TDataType type : {0x108u, 0x408u})
        EXPECT_TRUE(Written(FakeImage::Planar(4, 4, 3, type)->Handle()).empty()) << type;
}

TEST(BmpWriterFailures, FailsForAnImageThatRefusesItsOperations) {
    for (const auto failure : {&FakeImage::Failures::DimensionsStatus, &FakeImage::Failures::DatatypeStatus,
                               &FakeImage::Failures::VPAStatus, &FakeImage::Failures::QueryStatus}) {
        const auto image = FakeImage::Planar(4, 4, 1, 8);
        image->Fails.*failure = StatusBadPlane;
        EXPECT_TRUE(Written(image->Handle()).empty());
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(BmpWriterFailures, GivesItsReferencesBackWhenTheImageThrows) {
    const auto image = FakeImage::Planar(4, 4, 1, 8);
    for (std::ptrdiff_t failing = 1; failing <= 8; ++failing) {
        std::ptrdiff_t calls = 0;
        image->Fails.OnOperation = [&calls, failing] {
            if (++calls == failing)
                throw std::bad_alloc();
        };
        const TemporaryPath path("image.bmp");
        try {
            EXPECT_EQ(WriteImageFile(image->Handle(), path.Get()), calls < failing);
        } catch (const std::bad_alloc &) {
            EXPECT_FALSE(path.Exists());
        }
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(BmpWriterFailures, LeavesNoBitmapWhereWritingOverOneFails) {
    const Handle small = Generic({1, 4, 4});
    const Handle image = Generic({3, 401, 301});
    const TemporaryPath path("image.bmp");
    ASSERT_TRUE(WriteImageFile(small.Get(), path.Get()));
    {
        const FileSizeLimit guard(5000);
        EXPECT_FALSE(WriteImageFile(image.Get(), path.Get()));
    }
    Handle left;
    EXPECT_FALSE(LoadImageFile(path.Get(), left.Out()));
}

TEST(BmpWriterFailures, FailsWhereNoFileCanBeMade) {
    const Handle image = Generic({1, 4, 4});
    ClearReports();
    EXPECT_FALSE(WriteImageFile(image.Get(), (testing::TempDir() + "no-such-folder/a.bmp").c_str()));
    const TemporaryPath folder("folder.bmp");
    std::filesystem::create_directory(folder.String());
    EXPECT_FALSE(WriteImageFile(image.Get(), folder.Get()));
    ExpectNoReport();
}

TEST(BmpWriterFailures, FailsOnAFullDevice) {
    const TemporaryPath link("full.bmp");
    std::filesystem::create_symlink("/dev/full", link.String());
    EXPECT_FALSE(WriteImageFile(Generic({1, 4, 4}).Get(), link.Get()));
    EXPECT_FALSE(WriteImageFile(Generic({1, 400, 400}).Get(), link.Get()));
    EXPECT_FALSE(WriteImageFile(Generic({1, 401, 401}).Get(), link.Get()));
}

bool WritesWithin(std::size_t limit, void *image) {
    const TemporaryPath path("image.bmp");
    const FileSizeLimit guard(limit);
    return WriteImageFile(image, path.Get());
}

TEST(BmpWriterFailures, FailsWhereverASmallFileIsCutShort) {
    const Handle image = Generic({3, 5, 4});
    const std::size_t whole = Written(image.Get()).size();
    ASSERT_EQ(whole, 54u + 4 * 16);
    for (std::size_t limit = 0; limit < whole; ++limit)
        EXPECT_FALSE(WritesWithin(limit, image.Get())) << limit;
    EXPECT_TRUE(WritesWithin(whole, image.Get()));
}

TEST(BmpWriterFailures, FailsWhereverALargeFileIsCutShort) {
    for (const std::intptr_t width : {401, 400}) { // in rows, in one block
        const Handle image = Generic({3, width, 301});
        const std::size_t whole = Written(image.Get()).size();
        for (const std::size_t limit : {std::size_t{0}, std::size_t{53}, std::size_t{54}, std::size_t{65535},
                                        std::size_t{65536}, std::size_t{200000}, whole - 1204, whole - 1})
            EXPECT_FALSE(WritesWithin(limit, image.Get())) << limit;
        EXPECT_TRUE(WritesWithin(whole, image.Get()));
    }
}

TEST(BmpWriterFailures, LeavesNoFileOpenAndNoReferenceTaken) {
    const std::ptrdiff_t before = OpenFileCount();
    const Handle direct = Generic({1, 4, 4});
    EXPECT_FALSE(Written(direct.Get()).empty());
    EXPECT_FALSE(WritesWithin(100, direct.Get()));
    EXPECT_EQ(RefCount(direct.Get()), 1u);
    EXPECT_EQ(OpenFileCount(), before);
}

} // namespace
