/* Each thread has a slot and a count of its own. The slot that a thread's first call finds is empty. */
#include "ErrorHandling.h"
#include "ImageQueries.h"
#include "Support/TestImages.h"

#include <barrier>
#include <thread>

using namespace TestSupport;

namespace {

constexpr int ThreadCount = 16;

/// Runs work(number) on that many threads at once and waits for them.
void OnThreads(int count, const std::function<void(int)> &work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back(work, number);
    for (auto &thread : threads)
        thread.join();
}

TEST(ErrorThreads, AFreshThreadHasAnEmptySlotAndNoCount) {
    ReportORVErrorEx(1, "abc", "A");
    OnThreads(1, [](int) {
        EXPECT_EQ(GetORVErrorCount(), 0);
        EXPECT_FALSE(TakeReport());
        EXPECT_EQ(GetORVErrorCount(), 0);
    });
    ClearReports();
}

TEST(ErrorThreads, AFirstRetractionGivesMinusOne) {
    OnThreads(1, [](int) {
        RetractLastORVError();
        EXPECT_EQ(GetORVErrorCount(), -1);
    });
}

TEST(ErrorThreads, AnyFunctionOfTheFamilyCanComeFirst) {
    OnThreads(1, [](int) { FlushORVErrorCache(); });
    OnThreads(1, [](int) { ResetORVErrorCount(); });
    OnThreads(1, [](int) {
        std::uint32_t code = 9;
        std::uint64_t size = 9;
        EXPECT_FALSE(PeekLastORVError(&code, nullptr, nullptr, &size, nullptr, &size));
        EXPECT_EQ(code, 9u);
    });
    OnThreads(1, [](int) {
        ReportORVErrorEx(3, "abc", nullptr);
        const auto report = TakeReport();
        ASSERT_TRUE(report);
        EXPECT_EQ(report->serial, 0);
    });
    OnThreads(1, [](int) { EXPECT_STREQ(GetORVErrorStringPtr(0x105002u), "Unable to open the stream"); });
}

TEST(ErrorThreads, AReportIsSeenOnItsOwnThreadOnly) {
    ClearReports();
    ReportORVErrorEx(1, "of the first thread", "First");
    OnThreads(1, [](int) {
        ReportORVErrorEx(2, "of the second thread", "Second");
        ReportORVErrorEx(3, "of the second thread", "Second");
        EXPECT_EQ(GetORVErrorCount(), 2);
    });
    EXPECT_EQ(GetORVErrorCount(), 1);
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->code, 1u);
    EXPECT_EQ(report->text, "of the first thread");
    ClearReports();
}

TEST(ErrorThreads, FlushResetAndRetractActOnTheirOwnThreadOnly) {
    ClearReports();
    ReportORVErrorEx(1, "abc", "A");
    OnThreads(1, [](int) {
        FlushORVErrorCache();
        RetractLastORVError();
        ResetORVErrorCount();
    });
    EXPECT_EQ(GetORVErrorCount(), 1);
    EXPECT_TRUE(TakeReport());
    ClearReports();
}

TEST(ErrorThreads, AnUnreadReportGoesWithItsThread) {
    for (int round = 0; round < 50; ++round)
        OnThreads(1, [](int) {
            EXPECT_EQ(GetORVErrorCount(), 0);
            EXPECT_FALSE(TakeReport());
            const std::string text(1000, 'u');
            ReportORVErrorEx(1, text.c_str(), "Unread");
        });
}

TEST(ErrorThreads, ManyThreadsReportAndReadOnlyTheirOwn) {
    std::barrier start(ThreadCount);
    OnThreads(ThreadCount, [&](int number) {
        const std::string name = "Thread" + std::to_string(number);
        start.arrive_and_wait();
        for (int round = 0; round < 500; ++round) {
            const auto code = static_cast<std::uint32_t>(number * 1000 + round);
            const std::string text = name + " round " + std::to_string(round);
            ReportORVErrorEx(code, text.c_str(), name.c_str());
            if (round % 7 == 0)
                ReportORVErrorEx(code, text.c_str(), name.c_str());
            const auto report = TakeReport();
            ASSERT_TRUE(report);
            ASSERT_EQ(report->code, code);
            ASSERT_EQ(report->text, text);
            ASSERT_EQ(report->function, name);
            ASSERT_EQ(report->serial + 1, GetORVErrorCount());
            ASSERT_FALSE(TakeReport());
        }
        EXPECT_EQ(GetORVErrorCount(), 500 + 72);
    });
}

TEST(ErrorThreads, ManyThreadsLookUpTextsWithoutMixingThem) {
    const std::pair<std::uint32_t, std::string> texts[] = {
        {0x100001u, "Operation failed because the requested amount of memory was not available"},
        {0x101005u, "A division by zero was attempted"},
        {0x104002u, "The container element could not be accessed"},
        {0x105002u, "Unable to open the stream"}};
    std::barrier start(ThreadCount);
    OnThreads(ThreadCount, [&](int number) {
        start.arrive_and_wait();
        for (int round = 0; round < 5000; ++round) {
            const auto &[code, text] = texts[static_cast<std::size_t>(number + round) % std::size(texts)];
            ASSERT_EQ(GetORVErrorStringPtr(code), text);
            ASSERT_EQ(GetORVErrorStringPtr(0x101FFFu), nullptr);
        }
    });
}

TEST(ErrorThreads, AFunctionReportsOnTheThreadThatCalledIt) {
    ClearReports();
    std::barrier start(ThreadCount);
    OnThreads(ThreadCount, [&](int number) {
        start.arrive_and_wait();
        for (int call = 0; call <= number; ++call)
            EXPECT_EQ(ImageWidth(nullptr), 0);
        EXPECT_EQ(GetORVErrorCount(), number + 1);
        const auto report = TakeReport();
        ASSERT_TRUE(report);
        EXPECT_EQ(report->code, ErrNotAnImage);
        EXPECT_EQ(report->function, "ImageWidth");
        EXPECT_EQ(report->serial, number);
    });
    EXPECT_EQ(GetORVErrorCount(), 0);
    EXPECT_FALSE(TakeReport());
}

} // namespace
