#include "CtkExceptionObject.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <type_traits>

#include "VirtualSlot.h"

namespace {

using TestSupport::SlotOf;

static_assert(!std::is_base_of_v<std::exception, CtkExceptionObject>);
static_assert(std::is_base_of_v<CtkObject, CtkExceptionObject>);
static_assert(std::is_nothrow_copy_constructible_v<CtkExceptionObject>);

using SetParts = void (CtkExceptionObject::*)(std::int16_t, std::uint32_t, std::uint32_t, std::uint32_t, bool,
                                              const char *, std::int32_t);
using SetWord = void (CtkExceptionObject::*)(std::int32_t, const char *, const char *, std::int32_t);

TEST(CtkExceptionObject, IsAnObjectOfClass5) {
    const CtkExceptionObject exception("text");
    EXPECT_EQ(exception.GetClassId(), 5u);
    EXPECT_TRUE(exception.IsMemberOf(5));
    EXPECT_TRUE(exception.IsMemberOf(1));
    EXPECT_EQ(exception.GetFamily(), 0xFFFFFFFFu);
}

TEST(CtkExceptionObject, HasTwoSlotsBehindTheSix) {
    EXPECT_EQ(SlotOf(static_cast<SetParts>(&CtkExceptionObject::Set)), 6u);
    EXPECT_EQ(SlotOf(static_cast<SetWord>(&CtkExceptionObject::Set)), 7u);
}

TEST(CtkExceptionObject, IsMadeOfATextAlone) {
    const CtkExceptionObject exception("Impossible");
    EXPECT_STREQ(exception.GetText(), "Impossible");
    EXPECT_EQ(exception.GetWord(), 0);
    EXPECT_EQ(exception.GetLine(), 0);
    EXPECT_EQ(exception.GetFile(), nullptr);
}

TEST(CtkExceptionObject, IsMadeOfTheParts) {
    const CtkExceptionObject exception(2, 5, 1, 3, true, "F.cpp", 12);
    EXPECT_EQ(static_cast<std::uint32_t>(exception.GetWord()), 0x86105002u);
    EXPECT_STREQ(exception.GetText(), "");
    EXPECT_STREQ(exception.GetFile(), "F.cpp");
    EXPECT_EQ(exception.GetLine(), 12);
}

TEST(CtkExceptionObject, IsMadeOfARowOfATable) {
    const CtkExceptionObject exception(CtkExceptionObject::Error{-3, "Item not found"}, "F.cpp", 12);
    EXPECT_EQ(exception.GetWord(), -3);
    EXPECT_STREQ(exception.GetText(), "Item not found");
    EXPECT_STREQ(exception.GetFile(), "F.cpp");
    EXPECT_EQ(exception.GetLine(), 12);
}

TEST(CtkExceptionObject, SetFromPartsKeepsTheText) {
    CtkExceptionObject exception("kept");
    exception.Set(2, 5, 1, 0, true, "G.cpp", 7);
    EXPECT_EQ(static_cast<std::uint32_t>(exception.GetWord()), 0x80105002u);
    EXPECT_STREQ(exception.GetText(), "kept");
    EXPECT_STREQ(exception.GetFile(), "G.cpp");
    EXPECT_EQ(exception.GetLine(), 7);
}

TEST(CtkExceptionObject, SetFromAWordReplacesAll) {
    CtkExceptionObject exception("old");
    exception.Set(-4, "new", "H.cpp", 8);
    EXPECT_EQ(exception.GetWord(), -4);
    EXPECT_STREQ(exception.GetText(), "new");
    EXPECT_STREQ(exception.GetFile(), "H.cpp");
    EXPECT_EQ(exception.GetLine(), 8);
    exception.Set(0, nullptr, nullptr, 0);
    EXPECT_STREQ(exception.GetText(), "");
}

TEST(CtkExceptionObject, IsThrownAndCopiedWithAllThatItTells) {
    try {
        throw CtkExceptionObject(CtkExceptionObject::Error{-1, "Index out of Range"}, "F.cpp", 3);
    } catch (const CtkExceptionObject &caught) {
        const CtkExceptionObject copy(caught);
        EXPECT_EQ(copy.GetWord(), -1);
        EXPECT_STREQ(copy.GetText(), "Index out of Range");
        EXPECT_NE(copy.GetText(), caught.GetText());
        EXPECT_STREQ(copy.GetFile(), "F.cpp");
        EXPECT_EQ(copy.GetLine(), 3);
        EXPECT_EQ(copy.GetClassId(), 5u);
    }
}

TEST(CtkExceptionObject, AssigningCopiesAll) {
    const CtkExceptionObject source(CtkExceptionObject::Error{-1, "text"}, "F.cpp", 3);
    CtkExceptionObject target("other");
    target = source;
    CtkExceptionObject &alias = target;
    target = alias;
    EXPECT_EQ(target.GetWord(), -1);
    EXPECT_STREQ(target.GetText(), "text");
    EXPECT_STREQ(target.GetFile(), "F.cpp");
    EXPECT_EQ(target.GetLine(), 3);
    EXPECT_TRUE(target.IsMemberOf(5));
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
[[noreturn]] void CopyWithoutMemory() {
    const std::string text(std::size_t{1} << 26, 'x'); // larger than any block that the heap keeps
    const CtkExceptionObject original(CtkExceptionObject::Error{-1, text.c_str()}, "F.cpp", 3);
    const rlimit nothingMore{1, 1};
    setrlimit(RLIMIT_AS, &nothingMore);
    const CtkExceptionObject copy(original);
    const bool good = copy.GetText()[0] == '\0' && copy.GetWord() == -1 && copy.GetLine() == 3;
    _exit(good ? 0 : 1);
}

TEST(CtkExceptionObjectDeathTest, ACopyWithoutMemoryForItsTextHasNone) {
    EXPECT_EXIT(CopyWithoutMemory(), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
