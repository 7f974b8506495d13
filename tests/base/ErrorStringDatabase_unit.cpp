#include "ErrorStringDatabase.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

using tkErrors::CErrorStringDatabase;
using tkErrors::CErrorStringRegistrator;
using Row = CErrorStringRegistrator::Row;

const char *TextOf(std::uint32_t code) {
    return CErrorStringDatabase::Instance().Lookup(code);
}

struct LoadTimeText {
    std::uint32_t SubFacility;
    std::uint32_t Number;
    const char *Text;
};

constexpr LoadTimeText LoadTimeTexts[] = {
    {0, 0, "No extended error information available"},
    {0, 1, "Operation failed because the requested amount of memory was not available"},
    {0, 2, "The specified Index is out of the permissible range"},
    {0, 3, "The attempted operation is not currently allowed on the object on which it was attempted"},
    {0, 4, "One or more given argument was invalid"},
    {0, 5, "An object does not have the expected type"},
    {0, 6, "Operation failed because the maximal wait time expired"},
    {0, 7, "Operation failed because it was externally canceled"},
    {0, 8, "Unspecified error"},
    {1, 0, "No extended error information available"},
    {1, 1, "Negative Dimensions and Dimension zero are illegal"},
    {1, 2, "Dimension too big"},
    {1, 3, "Dimensions of two or more operands did not match in an operation where they would have needed to"},
    {1, 4, "The given dimension is not valid"},
    {1, 5, "A division by zero was attempted"},
    {1, 6, "The Matrix provided for the last operation has an invalid geometry"},
    {1, 7, "The requested operation is not permitted on a vector that has length zero"},
    {1, 8, "The calculation of the intersection failed because no intersection is available"},
    {2, 0, "No extended error information available"},
    {3, 0, "No extended error information available"},
    {4, 0, "No extended error information available"},
    {4, 1, "The container element to be accessed could not be found"},
    {4, 2, "The container element could not be accessed"},
    {5, 0, "No extended error information available"},
    {5, 1, "Read operation beyond the end of a stream was attempted"},
    {5, 2, "Unable to open the stream"},
    {6, 0, "No extended error information available"},
};

TEST(ErrorStringDatabase, HasTheTextsOfTheBaseLayerFromTheStart) {
    for (const LoadTimeText &entry : LoadTimeTexts)
        EXPECT_STREQ(TextOf(0x00100000u | (entry.SubFacility << 12) | entry.Number), entry.Text);
}

TEST(ErrorStringDatabase, HasNothingElseInTheBaseFacility) {
    std::size_t found = 0;
    for (std::uint32_t low = 0; low < 0x8000; ++low)
        found += TextOf(0x00100000u | low) != nullptr ? 1 : 0;
    EXPECT_EQ(found, std::size(LoadTimeTexts));
}

TEST(ErrorStringDatabase, LooksUpWithoutSeverityAndFailureBit) {
    EXPECT_STREQ(TextOf(0x80101001u), "Negative Dimensions and Dimension zero are illegal");
    EXPECT_STREQ(TextOf(0x00101001u), "Negative Dimensions and Dimension zero are illegal");
    EXPECT_STREQ(TextOf(0xFE101001u), "Negative Dimensions and Dimension zero are illegal");
}

TEST(ErrorStringDatabase, HasNoTextForImageCodes) {
    EXPECT_EQ(TextOf(0x80000010u), nullptr);
}

TEST(ErrorStringDatabase, TheFirstTextOfAKeyWins) {
    CErrorStringDatabase database;
    EXPECT_TRUE(database.Register(7, 2, 3, "first", false));
    EXPECT_FALSE(database.Register(7, 2, 3, "second", false));
    EXPECT_STREQ(database.Lookup(0x00302007u), "first");
}

TEST(ErrorStringDatabase, ReplacesWhenAskedTo) {
    CErrorStringDatabase database;
    EXPECT_TRUE(database.Register(7, 2, 3, "first", true));
    EXPECT_STREQ(database.Lookup(0x00302007u), "first"); // found last, so the replaced text must not be remembered
    EXPECT_TRUE(database.Register(7, 2, 3, "second", true));
    EXPECT_STREQ(database.Lookup(0x00302007u), "second");
}

TEST(ErrorStringDatabase, RegistersAWordUnderItsKey) {
    CErrorStringDatabase database;
    EXPECT_TRUE(database.Register(0x80302007u, "word", false));
    EXPECT_FALSE(database.Register(7, 2, 3, "parts", false));
    EXPECT_STREQ(database.Lookup(0x00302007u), "word");
}

TEST(ErrorStringDatabase, RefusesANullText) {
    CErrorStringDatabase database;
    EXPECT_FALSE(database.Register(0x1001u, nullptr, true));
    EXPECT_EQ(database.Lookup(0x1001u), nullptr);
}

TEST(ErrorStringDatabase, TheKeyZeroHasNoTextUntilAnotherWasFound) {
    CErrorStringDatabase database;
    database.Register(0u, "zero", false);
    database.Register(1u, "one", false);
    EXPECT_EQ(database.Lookup(0u), nullptr);
    EXPECT_EQ(database.Lookup(0x80000000u), nullptr);
    EXPECT_EQ(database.Lookup(2u), nullptr); // not found: nothing is remembered
    EXPECT_EQ(database.Lookup(0u), nullptr);
    EXPECT_STREQ(database.Lookup(1u), "one");
    EXPECT_STREQ(database.Lookup(0u), "zero");
}

TEST(ErrorStringDatabase, AFailedLookUpLeavesTheTextFoundLast) {
    CErrorStringDatabase database;
    database.Register(1u, "one", false);
    const char *text = database.Lookup(1u);
    EXPECT_EQ(database.Lookup(2u), nullptr);
    EXPECT_EQ(database.Lookup(1u), text);
}

TEST(ErrorStringDatabase, ConcurrentLookUpsNeverMixTexts) {
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::uint32_t number = 1; number <= 4; ++number)
        threads.emplace_back([number, &wrong] {
            const std::string expected = LoadTimeTexts[number].Text;
            for (int round = 0; round < 20000; ++round)
                if (TextOf(0x00100000u | number) != expected)
                    ++wrong;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(ErrorStringRegistrator, StopsAtTheNumber65535) {
    const Row table[] = {{1, "a"}, {65535, "end"}, {2, "b"}, {65535, nullptr}};
    const CErrorStringRegistrator registrator(40, 2, table);
    EXPECT_STREQ(TextOf(0x00228001u), "a");
    EXPECT_EQ(TextOf(0x00228FFFu), nullptr);
    EXPECT_EQ(TextOf(0x00228002u), nullptr);
}

TEST(ErrorStringRegistrator, StopsAtANullText) {
    const Row table[] = {{1, "a"}, {2, nullptr}, {3, "c"}, {65535, nullptr}};
    const CErrorStringRegistrator registrator(41, 2, table);
    EXPECT_STREQ(TextOf(0x00229001u), "a");
    EXPECT_EQ(TextOf(0x00229003u), nullptr);
}

TEST(ErrorStringRegistrator, EntersNothingWhenTheFirstRowEndsTheTable) {
    const Row byNumber[] = {{65535, "a"}, {1, "b"}, {65535, nullptr}};
    const Row byText[] = {{1, nullptr}, {2, "b"}, {65535, nullptr}};
    const CErrorStringRegistrator first(42, 2, byNumber);
    const CErrorStringRegistrator second(42, 2, byText);
    EXPECT_EQ(TextOf(0x0022A001u), nullptr);
    EXPECT_EQ(TextOf(0x0022A002u), nullptr);
}

TEST(ErrorStringRegistrator, StopsAfter4096Rows) {
    std::vector<Row> table;
    for (std::int32_t number = 0; number < 5000; ++number)
        table.push_back({number, "row"});
    table.push_back({65535, nullptr});
    const CErrorStringRegistrator registrator(44, 2, table.data());
    EXPECT_STREQ(TextOf(0x0022CFFFu), "row");
    EXPECT_EQ(TextOf(0x0022D000u), nullptr); // where the row 4096 would land
}

TEST(ErrorStringRegistrator, LeavesItsTextsBehindAndNeverReplaces) {
    const Row first[] = {{1, "first"}, {65535, nullptr}};
    const Row second[] = {{1, "second"}, {2, "other"}, {65535, nullptr}};
    { const CErrorStringRegistrator registrator(46, 2, first); }
    { const CErrorStringRegistrator registrator(46, 2, second); }
    EXPECT_STREQ(TextOf(0x0022E001u), "first");
    EXPECT_STREQ(TextOf(0x0022E002u), "other");
}

} // namespace
