// Files of the library's own format: the bytes, replacing what is there, and what happens when that fails.
#include "ImageCreation.h"
#include "ImageStreams.h"
#include "Persistence/BmpFiles.h"
#include "Persistence/ReplacedFile.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using namespace TestSupport;

Handle MakeImage(std::intptr_t planes, std::intptr_t width, std::intptr_t height, int seed) {
    Handle image;
    EXPECT_TRUE(CreateGenericImage(planes, width, height, false, image.Out()));
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x)
                *AccessOf(image.Get(), plane).At(x, y) = static_cast<std::uint8_t>(x * 3 + y * 7 + plane * 50 + seed);
    return image;
}

FileBytes InMemory(void *image) {
    FileBytes bytes(static_cast<std::size_t>(ImageToMemorySize(image)));
    EXPECT_TRUE(ImageToMemory(image, bytes.data(), bytes.size()));
    return bytes;
}

std::size_t FilesLike(const std::string &path) {
    const std::filesystem::path whole(path);
    std::size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(whole.parent_path()))
        if (entry.path().filename().string().rfind(whole.filename().string(), 0) == 0)
            ++count;
    return count;
}

TEST(LmgFile, HoldsTheBytesOfImageToMemory) {
    for (const std::intptr_t planes : {1, 2, 3})
        for (const std::intptr_t width : {1, 5, 400}) {
            const Handle image = MakeImage(planes, width, 77, 1);
            const TemporaryPath path("a.lmg");
            ASSERT_TRUE(WriteImageFile(image.Get(), path.Get()));
            EXPECT_EQ(path.Read(), InMemory(image.Get()));
            Handle loaded;
            ASSERT_TRUE(LoadImageFile(path.Get(), loaded.Out()));
            EXPECT_EQ(InMemory(loaded.Get()), path.Read());
            EXPECT_EQ(FilesLike(path.String()), 1u);
        }
}

TEST(LmgFile, IsReplacedWithItsRightsAndThroughALink) {
    const Handle image = MakeImage(1, 9, 9, 1);
    const TemporaryPath path("a.lmg", FileBytes(100000, 0xAA));
    ASSERT_EQ(chmod(path.Get(), 0640), 0);
    const TemporaryPath link("link.lmg");
    std::filesystem::create_symlink(path.String(), link.String());
    ASSERT_TRUE(WriteImageFile(image.Get(), link.Get()));
    EXPECT_TRUE(std::filesystem::is_symlink(link.String()));
    EXPECT_EQ(path.Read(), InMemory(image.Get()));
    struct stat status;
    ASSERT_EQ(stat(path.Get(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0640u);
}

/// Lets no file of this process grow beyond a size.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : formerHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit limit{bytes, former.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &former);
        std::signal(SIGXFSZ, formerHandler);
    }

private:
    rlimit former;
    void (*formerHandler)(int);
};

TEST(LmgFile, AFailedWriteKeepsTheFormerFileWhole) {
    const Handle first = MakeImage(1, 400, 400, 1);
    const Handle second = MakeImage(1, 400, 400, 2);
    const TemporaryPath path("a.lmg");
    ASSERT_TRUE(WriteImageFile(first.Get(), path.Get()));
    const FileBytes former = path.Read();
    for (const rlim_t limit : {rlim_t{0}, rlim_t{100}, rlim_t{160000}, static_cast<rlim_t>(former.size() - 1)}) {
        {
            const FileSizeLimit tooSmall(limit);
            EXPECT_FALSE(WriteImageFile(second.Get(), path.Get())) << limit;
        }
        EXPECT_EQ(path.Read(), former);
        EXPECT_EQ(FilesLike(path.String()), 1u) << "nothing is left beside it";
    }
}

TEST(LmgFile, FailsOnAFullDeviceAndWhereNoFileCanBeMade) {
    const Handle image = MakeImage(1, 9, 9, 1);
    const TemporaryPath full("full.lmg");
    std::filesystem::create_symlink("/dev/full", full.String());
    EXPECT_FALSE(WriteImageFile(image.Get(), full.Get()));
    EXPECT_TRUE(std::filesystem::is_symlink(full.String()));
    EXPECT_FALSE(WriteImageFile(image.Get(), "/no/such/folder/a.lmg"));
    const TemporaryPath folder("folder.lmg");
    std::filesystem::create_directory(folder.String());
    EXPECT_FALSE(WriteImageFile(image.Get(), folder.Get()));
}

TEST(LmgFile, ANameTooLongForAnotherBesideItIsWrittenInPlace) {
    const Handle image = MakeImage(1, 9, 9, 1);
    const TemporaryPath folder("long");
    std::filesystem::create_directory(folder.String());
    const std::string path = folder.String() + "/" + std::string(251, 'a') + ".lmg";
    ASSERT_TRUE(WriteImageFile(image.Get(), path.c_str()));
    Handle loaded;
    EXPECT_TRUE(LoadImageFile(path.c_str(), loaded.Out()));
}

TEST(LmgFile, CutAnywhereGivesANullHandle) {
    const Handle image = MakeImage(3, 5, 3, 1);
    const FileBytes whole = InMemory(image.Get());
    for (std::size_t length = 0; length < whole.size(); length += 3) {
        const TemporaryPath path("a.lmg", FileBytes(whole.begin(), whole.begin() + static_cast<long>(length)));
        Handle loaded;
        EXPECT_FALSE(LoadImageFile(path.Get(), loaded.Out())) << length;
    }
}

TEST(ReplacedFile, LeavesNothingBehindWithoutACommit) {
    const TemporaryPath path("a.part", FileBytes(3, 'x'));
    {
        const Persistence::ReplacedFile file(path.Get());
        ASSERT_TRUE(file.IsOpen());
        EXPECT_TRUE(file.File().Write("abc", 3));
    }
    EXPECT_EQ(path.Read(), FileBytes(3, 'x'));
    EXPECT_EQ(FilesLike(path.String()), 1u);
}

} // namespace
