// Reading and writing bitmap files while the system's calls are interrupted, cut short, or fail one after the other.
#include "ImageCreation.h"
#include "Persistence/BmpFiles.h"

#include <cerrno>
#include <climits>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// What the calls of this file's own pread, write, pwrite, ftruncate and close do on this thread; without a plan they
/// pass through.
struct CallPlan {
    std::size_t MostBytes = SSIZE_MAX; ///< moved by one call
    bool InterruptEveryOther = false;
    int FailingCall = 0; ///< from 1 on; 0: none
    int Error = EIO;     ///< of the failing call; 0: it moves nothing, as at the end of a file
    bool TruncateFails = false;
    bool CloseFails = false;
    int Calls = 0;
};
thread_local CallPlan *plan = nullptr;

/// True when the plan ends this call without moving a byte; result and errno are set then.
bool EndsHere(ssize_t &result) {
    if (plan == nullptr)
        return false;
    const int call = ++plan->Calls;
    const bool interrupted = plan->InterruptEveryOther && call % 2 == 1;
    if (!interrupted && call != plan->FailingCall)
        return false;
    errno = interrupted ? EINTR : plan->Error;
    result = errno == 0 ? 0 : -1;
    return true;
}

std::size_t Limited(std::size_t count) {
    return plan == nullptr ? count : std::min(count, plan->MostBytes);
}

} // namespace

extern "C" {

ssize_t pread(int file, void *target, size_t count, off_t offset) {
    ssize_t result = 0;
    return EndsHere(result) ? result : syscall(SYS_pread64, file, target, Limited(count), offset);
}

ssize_t write(int file, const void *source, size_t count) {
    ssize_t result = 0;
    return EndsHere(result) ? result : syscall(SYS_write, file, source, Limited(count));
}

ssize_t pwrite(int file, const void *source, size_t count, off_t offset) {
    ssize_t result = 0;
    return EndsHere(result) ? result : syscall(SYS_pwrite64, file, source, Limited(count), offset);
}

int ftruncate(int file, off_t length) {
    if (plan == nullptr || !plan->TruncateFails)
        return static_cast<int>(syscall(SYS_ftruncate, file, length));
    errno = EIO;
    return -1;
}

int close(int file) {
    const int result = static_cast<int>(syscall(SYS_close, file));
    if (plan == nullptr || !plan->CloseFails)
        return result;
    errno = EIO;
    return -1;
}
}

namespace {

using namespace TestSupport;

/// Holds a plan for the calls of this thread.
class Planned {
public:
    explicit Planned(CallPlan &calls) { plan = &calls; }
    Planned(const Planned &) = delete;
    Planned &operator=(const Planned &) = delete;
    ~Planned() { plan = nullptr; }
};

Handle LoadPlanned(const TemporaryPath &path, CallPlan &calls) {
    const Planned guard(calls);
    Handle image;
    LoadImageFile(path.Get(), image.Out());
    return image;
}

/// One file of each way in which pixels are read; those that are mapped take several portions.
std::vector<BmpFile> FilesOfEachKind() {
    BmpFile greys = MakeBmp(8, 1021, 300);
    greys.SetPalette([](std::uint8_t i) {
        return PaletteColor{i, i, i} == PaletteColor{} ? PaletteColor{1, 1, 1} : PaletteColor{i, i, i};
    });
    BmpFile colors = MakeBmp(8, 1021, 300);
    colors.SetPalette([](std::uint8_t i) { return PaletteColor{i, 0, 0}; });
    return {MakeBmp(8, 61, 30), MakeBmp(24, 61, -30), MakeBmp(32, 61, 30), greys, colors};
}

TEST(FileFaults, ReadingGoesOnAfterInterruptedAndShortCalls) {
    for (const BmpFile &file : FilesOfEachKind())
        for (const std::size_t mostBytes : {std::size_t{1}, std::size_t{1000}, std::size_t{SSIZE_MAX}}) {
            const TemporaryPath path("image.bmp", file.Bytes());
            CallPlan calls;
            calls.MostBytes = mostBytes;
            calls.InterruptEveryOther = true;
            const Handle image = LoadPlanned(path, calls);
            ASSERT_TRUE(image);
            ExpectPlanes(image.Get(), ShownPlanes(file));
        }
}

TEST(FileFaults, AFailedReadGivesANullHandle) {
    for (const BmpFile &file : FilesOfEachKind()) {
        const TemporaryPath path("image.bmp", file.Bytes());
        CallPlan counted;
        ASSERT_TRUE(LoadPlanned(path, counted));
        ASSERT_GE(counted.Calls, 2);
        for (int failing = 1; failing <= counted.Calls; ++failing)
            for (const int error : {EIO, 0}) {
                SCOPED_TRACE("call " + std::to_string(failing) + " fails with error " + std::to_string(error));
                CallPlan calls;
                calls.FailingCall = failing;
                calls.Error = error;
                EXPECT_FALSE(LoadPlanned(path, calls));
            }
    }
}

bool WritePlanned(void *image, const TemporaryPath &path, CallPlan &calls) {
    const Planned guard(calls);
    return WriteImageFile(image, path.Get());
}

/// An image that is written as one block, and one that is written in rows; both of several write calls.
std::vector<Handle> ImagesToWrite() {
    std::vector<Handle> images;
    for (const std::intptr_t width : {400, 401}) {
        Handle &image = images.emplace_back();
        EXPECT_TRUE(CreateGenericImage(3, width, 201, false, image.Out()));
        for (std::intptr_t y = 0; y < 201; ++y)
            std::memset(AccessOf(image.Get(), 2).At(0, y), static_cast<int>(y), static_cast<std::size_t>(3 * width));
    }
    return images;
}

TEST(FileFaults, WritingGoesOnAfterInterruptedAndShortCalls) {
    for (const Handle &image : ImagesToWrite()) {
        const TemporaryPath good("good.bmp");
        ASSERT_TRUE(WriteImageFile(image.Get(), good.Get()));
        const TemporaryPath path("image.bmp");
        CallPlan calls;
        calls.MostBytes = 777;
        calls.InterruptEveryOther = true;
        EXPECT_TRUE(WritePlanned(image.Get(), path, calls));
        EXPECT_EQ(path.Read(), good.Read());
    }
}

TEST(FileFaults, AFailedWriteGivesFalse) {
    for (const Handle &image : ImagesToWrite()) {
        const TemporaryPath path("image.bmp");
        CallPlan counted;
        ASSERT_TRUE(WritePlanned(image.Get(), path, counted));
        ASSERT_GE(counted.Calls, 2);
        for (int failing = 1; failing <= counted.Calls; ++failing)
            for (const int error : {ENOSPC, 0}) {
                CallPlan calls;
                calls.FailingCall = failing;
                calls.Error = error;
                EXPECT_FALSE(WritePlanned(image.Get(), path, calls)) << "call " << failing;
                EXPECT_EQ(calls.Calls, failing) << "nothing is written behind a gap";
                Handle left;
                EXPECT_EQ(LoadImageFile(path.Get(), left.Out()), failing == 1)
                    << "what is left is the former file, or no bitmap";
                ASSERT_TRUE(WriteImageFile(image.Get(), path.Get()));
            }
    }
}

TEST(FileFaults, AFormerFileThatCannotBeCutGivesFalse) {
    for (const Handle &image : ImagesToWrite()) {
        const TemporaryPath path("image.bmp", FileBytes(500000, 0xAA));
        CallPlan calls;
        calls.TruncateFails = true;
        EXPECT_FALSE(WritePlanned(image.Get(), path, calls));
        Handle unfinished;
        EXPECT_FALSE(LoadImageFile(path.Get(), unfinished.Out())) << "what is left is no bitmap";
    }
}

TEST(FileFaults, AFailedCloseAfterWritingGivesFalse) {
    for (const Handle &image : ImagesToWrite()) {
        const TemporaryPath path("image.bmp");
        CallPlan calls;
        calls.CloseFails = true;
        EXPECT_FALSE(WritePlanned(image.Get(), path, calls));
    }
}

} // namespace
