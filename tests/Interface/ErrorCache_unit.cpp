// The slot as an object, the composed message, and a report that gets no memory.
#include "Interface/ErrorCache.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "ErrorHandling.h"

namespace {

using tkErrors::ComposeMessage;
using tkErrors::CtkHRESULTErrorCache;

TEST(ErrorCache, IsASystemObjectOfClass50) {
    const CtkHRESULTErrorCache cache;
    EXPECT_EQ(cache.GetClassId(), 50u);
    EXPECT_EQ(cache.GetFamily(), 0xFFFFFFFFu);
    for (const unsigned bit : {1u, 19u, 50u})
        EXPECT_TRUE(cache.IsMemberOf(bit)) << bit;
}

TEST(ErrorCache, ClearingForgetsTheErrorAndKeepsTheCount) {
    CtkHRESULTErrorCache cache;
    cache.Report(7, "text", "Name");
    cache.Report(8, nullptr, nullptr);
    CtkHRESULTErrorCache::Error error;
    ASSERT_TRUE(cache.Peek(error));
    EXPECT_EQ(error.Code, 8u);
    EXPECT_EQ(error.Serial, 1);
    EXPECT_EQ(error.FunctionName, "");
    cache.Clear();
    EXPECT_FALSE(cache.Peek(error));
    EXPECT_FALSE(cache.Take(error));
    EXPECT_EQ(cache.GetCount(), 2);
}

TEST(ComposeMessage, WithTheOriginEndsInANulThatCounts) {
    EXPECT_EQ(ComposeMessage(0x80000010u, true),
              std::string("Error code 16 (no extended information) occured. Error from Sub-Facility Nr. 0 of "
                          "Facility Nr. 0") +
                  '\0');
}

TEST(ComposeMessage, WithoutTheOriginEndsInTheFullStop) {
    EXPECT_EQ(ComposeMessage(0x80000010u, false), "Error code 16 (no extended information) occured.");
    EXPECT_EQ(ComposeMessage(0x80105002u, false), "Unable to open the stream.");
}

// The sanitizers' allocators do not live under a limit of the address space.
#if defined(__has_feature)
#define WITH_SANITIZER (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define WITH_SANITIZER 1
#else
#define WITH_SANITIZER 0
#endif
#if !WITH_SANITIZER
[[noreturn]] void ReportWithoutMemory() {
    const std::string text(std::size_t{1} << 26, 'x'); // larger than any block that the heap keeps
    ReportORVErrorEx(1, "former", "Former");
    const rlimit nothingMore{1, 1};
    setrlimit(RLIMIT_AS, &nothingMore);
    ReportORVErrorEx(2, text.c_str(), "Lost"); // must neither throw nor leave its lock taken
    std::uint32_t code = 0;
    std::int64_t serial = 0;
    std::uint64_t textSize = 1;
    std::uint64_t nameSize = 1;
    const bool held = GetLastORVError(&code, &serial, nullptr, &textSize, nullptr, &nameSize);
    const bool counted = GetORVErrorCount() == 2;
    ReportORVErrorEx(3, "next", "Next");
    textSize = nameSize = 1;
    const bool goesOn = GetLastORVError(&code, &serial, nullptr, &textSize, nullptr, &nameSize);
    _exit(!held && counted && goesOn && code == 3 && serial == 2 ? 0 : 1);
}

TEST(ErrorCacheDeathTest, AReportWithoutMemoryIsLostAndLeavesTheSlotEmpty) {
    EXPECT_EXIT(ReportWithoutMemory(), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
