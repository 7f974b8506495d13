#include "CtkCString.h"

#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "CtkWString.h"
#include "VirtualSlot.h"

namespace {

std::vector<std::string> Lines(const char *text) {
    const CtkCString whole(text);
    std::vector<std::string> lines;
    CtkCString line;
    for (std::size_t position = 0; whole.ReadLine(position, line);)
        lines.emplace_back(line.GetText());
    return lines;
}

using Texts = std::vector<std::string>;

TEST(CtkCString, IsEmptyAtFirstWithATextThatIsNeverNull) {
    const CtkCString fresh;
    EXPECT_TRUE(fresh.IsEmpty());
    EXPECT_EQ(fresh.GetLength(), 0u);
    EXPECT_STREQ(fresh.GetText(), "");
    EXPECT_TRUE(CtkCString(nullptr).IsEmpty());
    EXPECT_TRUE(CtkCString("").IsEmpty());
}

TEST(CtkCString, OwnsACopyOfItsText) {
    char text[] = "abc";
    const CtkCString string(text);
    text[0] = 'x';
    EXPECT_STREQ(string.GetText(), "abc");
    EXPECT_EQ(string.GetLength(), 3u);
    EXPECT_FALSE(string.IsEmpty());
}

TEST(CtkCString, CopiesAreIndependent) {
    CtkCString original("abc");
    CtkCString copy(original);
    CtkCString assigned;
    assigned = original;
    original.Set("z");
    EXPECT_STREQ(copy.GetText(), "abc");
    EXPECT_STREQ(assigned.GetText(), "abc");
    CtkCString &alias = assigned;
    assigned = alias;
    EXPECT_STREQ(assigned.GetText(), "abc");
}

TEST(CtkCString, MovesItsText) {
    CtkCString original("abc");
    const char *text = original.GetText();
    CtkCString moved(std::move(original));
    EXPECT_EQ(moved.GetText(), text);
    CtkCString target("old");
    target = std::move(moved);
    EXPECT_EQ(target.GetText(), text);
}

TEST(CtkCString, SetReplacesAndClearEmpties) {
    CtkCString string("abc");
    string.Set("defg");
    EXPECT_STREQ(string.GetText(), "defg");
    string.Set("abcdef", 2);
    EXPECT_STREQ(string.GetText(), "ab");
    string.Set(nullptr);
    EXPECT_TRUE(string.IsEmpty());
    string.Set("x");
    string.Set(nullptr, 5);
    EXPECT_TRUE(string.IsEmpty());
    string.Set("x");
    string.Clear();
    EXPECT_TRUE(string.IsEmpty());
    EXPECT_STREQ(string.GetText(), "");
}

TEST(CtkCString, TakesPartsOfItsOwnText) {
    CtkCString string("abcdef");
    string.Set(string.GetText() + 2, 3);
    EXPECT_STREQ(string.GetText(), "cde");
    string.Append(string.GetText());
    EXPECT_STREQ(string.GetText(), "cdecde");
}

TEST(CtkCString, AppendsAtTheEnd) {
    CtkCString string;
    string.Append("ab");
    string.Append(nullptr);
    string.Append("cdef", 2);
    EXPECT_STREQ(string.GetText(), "abcd");
    EXPECT_EQ(string.GetLength(), 4u);
}

TEST(CtkCString, HoldsNulBytes) {
    CtkCString string;
    string.Set("a\0b", 3);
    EXPECT_EQ(string.GetLength(), 3u);
    EXPECT_EQ(std::string(string.GetText(), 4), std::string("a\0b\0", 4));
    EXPECT_NE(string, CtkCString("a"));
}

TEST(CtkCString, ComparesByUnsignedBytes) {
    EXPECT_EQ(CtkCString("abc").Compare("abc"), 0);
    EXPECT_LT(CtkCString("ab").Compare("abc"), 0);
    EXPECT_GT(CtkCString("b").Compare("abc"), 0);
    EXPECT_LT(CtkCString("a").Compare("\x80"), 0);
    EXPECT_EQ(CtkCString().Compare(""), 0);
    EXPECT_TRUE(CtkCString("a") < CtkCString("b"));
    EXPECT_FALSE(CtkCString("b") < CtkCString("b"));
    EXPECT_TRUE(CtkCString("a") == CtkCString("a"));
}

TEST(CtkCString, FindsACharacterFromAPlaceOn) {
    const CtkCString string("abcabc");
    EXPECT_EQ(string.Find('b', 0), 1);
    EXPECT_EQ(string.Find('b', 2), 4);
    EXPECT_EQ(string.Find('b', 5), -1);
    EXPECT_EQ(string.Find('b', 99), -1);
    EXPECT_EQ(CtkCString().Find('b', 0), -1);
}

TEST(CtkCString, SplitsLinesOnBothCharacters) {
    EXPECT_EQ(Lines("one\ntwo\rthree"), (Texts{"one", "two", "three"}));
    EXPECT_EQ(Lines("one\r\ntwo\n\rthree\r\n"), (Texts{"one", "two", "three"}));
    EXPECT_EQ(Lines("\n\none"), Texts{"one"});
    EXPECT_EQ(Lines("one"), Texts{"one"});
}

TEST(CtkCString, ReadLineLeavesAllAsItIsWhenNoneIsLeft) {
    CtkCString line("kept");
    std::size_t position = 0;
    EXPECT_FALSE(CtkCString("").ReadLine(position, line));
    EXPECT_FALSE(CtkCString("\r\n").ReadLine(position, line));
    EXPECT_EQ(position, 0u);
    position = 99;
    EXPECT_FALSE(CtkCString("abc").ReadLine(position, line));
    EXPECT_EQ(position, 99u);
    EXPECT_STREQ(line.GetText(), "kept");
}

TEST(CtkCString, ReadLineMayWriteIntoTheStringItself) {
    CtkCString string("one\ntwo");
    std::size_t position = 0;
    ASSERT_TRUE(string.ReadLine(position, string));
    EXPECT_STREQ(string.GetText(), "one");
    EXPECT_EQ(position, 3u);
}

TEST(CtkCString, ThrowsAndStaysWithoutMemory) {
    CtkCString string("abc");
    EXPECT_THROW(string.Append("x", std::numeric_limits<std::size_t>::max() - 3), std::bad_alloc);
    EXPECT_THROW(string.Set("x", std::size_t{1} << 62), std::bad_alloc);
    EXPECT_STREQ(string.GetText(), "abc");
    EXPECT_EQ(string.GetLength(), 3u);
}

TEST(CtkWString, HasSixSlotsAndOwnsItsText) {
    EXPECT_EQ(TestSupport::SlotOf(&CtkWString::Clear), 5u);
    CtkWString string;
    EXPECT_STREQ(string.GetText(), L"");
    EXPECT_EQ(string.GetLength(), 0u);
    string.Set(L"äb");
    EXPECT_STREQ(string.GetText(), L"äb");
    EXPECT_EQ(string.GetLength(), 2u);
    string.Set(string.GetText() + 1);
    EXPECT_STREQ(string.GetText(), L"b");
    string.Clear();
    EXPECT_EQ(string.GetLength(), 0u);
}

TEST(CtkWString, IsEmptyAfterANullOrEmptyText) {
    CtkWString string;
    string.Set(L"x");
    string.Set(nullptr);
    EXPECT_STREQ(string.GetText(), L"");
    string.Set(L"x");
    string.Set(L"");
    EXPECT_STREQ(string.GetText(), L"");
    EXPECT_EQ(string.GetLength(), 0u);
}

} // namespace
