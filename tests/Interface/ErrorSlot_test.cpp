/* The calling thread's error slot: what each function of the family does to it and to the count, and to the byte what
 * reaches the caller's buffers. Every test runs on a slot that it has emptied. */
#include "ErrorHandling.h"
#include "Support/TestImages.h"

#include <array>

using namespace TestSupport;

namespace {

constexpr char Canary = '#';
/// A caller's buffer full of canaries, and its size as told to the library.
struct Buffer {
    std::array<char, 96> Bytes;
    std::uint64_t Size;
    explicit Buffer(std::uint64_t size = 64) : Size(size) { Bytes.fill(Canary); }
    /// True when the buffer holds exactly these bytes and canaries behind them.
    bool Holds(const std::string &start) const {
        return std::equal(start.begin(), start.end(), Bytes.begin()) &&
               std::all_of(Bytes.begin() + static_cast<std::ptrdiff_t>(start.size()), Bytes.end(),
                           [](char c) { return c == Canary; });
    }
};
/// The letters with a closing NUL.
std::string Closed(const std::string &letters) {
    return letters + '\0';
}

constexpr std::uint32_t CodeCanary = 0xC0DEC0DEu;
constexpr std::int64_t SerialCanary = -0x5E41A1;

struct Outputs {
    std::uint32_t Code = CodeCanary;
    std::int64_t Serial = SerialCanary;
    Buffer Text, Name;
    explicit Outputs(std::uint64_t textSize = 64, std::uint64_t nameSize = 64) : Text(textSize), Name(nameSize) {}
    bool Get() {
        return GetLastORVError(&Code, &Serial, Text.Bytes.data(), &Text.Size, Name.Bytes.data(), &Name.Size);
    }
    bool Peek() {
        return PeekLastORVError(&Code, &Serial, Text.Bytes.data(), &Text.Size, Name.Bytes.data(), &Name.Size);
    }
    bool Untouched() const {
        return Code == CodeCanary && Serial == SerialCanary && Text.Holds("") && Name.Holds("");
    }
};

class ErrorSlot : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }
};

TEST_F(ErrorSlot, AnEmptySlotGivesFalseAndTouchesNothing) {
    Outputs out;
    EXPECT_FALSE(out.Get());
    EXPECT_TRUE(out.Untouched());
    EXPECT_EQ(out.Text.Size, 64u);
    EXPECT_EQ(out.Name.Size, 64u);
    EXPECT_FALSE(out.Peek());
    EXPECT_TRUE(out.Untouched());
    EXPECT_EQ(out.Text.Size, 64u);
    EXPECT_EQ(out.Name.Size, 64u);
}

TEST_F(ErrorSlot, AReportIsTakenOnce) {
    ReportORVErrorEx(0x80000002u, "some text", "SomeName");
    Outputs out;
    EXPECT_TRUE(out.Get());
    EXPECT_EQ(out.Code, 0x80000002u);
    EXPECT_EQ(out.Serial, 0);
    EXPECT_EQ(out.Text.Size, 9u) << "the letters without the closing NUL";
    EXPECT_TRUE(out.Text.Holds(Closed("some text")));
    EXPECT_EQ(out.Name.Size, 8u);
    EXPECT_TRUE(out.Name.Holds(Closed("SomeName")));
    Outputs again;
    EXPECT_FALSE(again.Get());
    EXPECT_TRUE(again.Untouched());
    EXPECT_EQ(GetORVErrorCount(), 1) << "taking does not change the count";
}

TEST_F(ErrorSlot, OfTwoReportsOnlyTheSecondIsKeptWithSerialOne) {
    ReportORVErrorEx(1, "first", "A");
    ReportORVErrorEx(2, "second", "B");
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->code, 2u);
    EXPECT_EQ(report->serial, 1);
    EXPECT_EQ(report->text, "second");
    EXPECT_EQ(report->function, "B");
    EXPECT_FALSE(TakeReport());
    EXPECT_EQ(GetORVErrorCount(), 2);
}

TEST_F(ErrorSlot, ASizeQueryGivesLengthsPlusOneAndLeavesTheSlot) {
    ReportORVErrorEx(7, "abc", "de");
    Outputs both(0, 0);
    EXPECT_TRUE(both.Get());
    EXPECT_EQ(both.Text.Size, 4u);
    EXPECT_EQ(both.Name.Size, 3u);
    EXPECT_TRUE(both.Untouched());
    Outputs text(0, 17);
    EXPECT_TRUE(text.Get());
    EXPECT_EQ(text.Text.Size, 4u);
    EXPECT_EQ(text.Name.Size, 17u) << "a size that is not 0 stays";
    EXPECT_TRUE(text.Untouched());
    Outputs name(17, 0);
    EXPECT_TRUE(name.Get());
    EXPECT_EQ(name.Text.Size, 17u);
    EXPECT_EQ(name.Name.Size, 3u);
    EXPECT_TRUE(name.Untouched());
    Outputs last;
    EXPECT_TRUE(last.Get()) << "the slot still holds the error";
    EXPECT_EQ(last.Code, 7u);
}

TEST_F(ErrorSlot, ASizeQueryOfAnEmptySlotGivesTrueAndOne) {
    Outputs out(0, 0);
    EXPECT_TRUE(out.Get());
    EXPECT_EQ(out.Text.Size, 1u);
    EXPECT_EQ(out.Name.Size, 1u);
    EXPECT_TRUE(out.Untouched());
}

TEST_F(ErrorSlot, ASizeQueryNeedsNoBuffers) {
    ReportORVErrorEx(7, "abc", "de");
    std::uint32_t code = CodeCanary;
    std::int64_t serial = SerialCanary;
    std::uint64_t textSize = 0, nameSize = 0;
    EXPECT_TRUE(GetLastORVError(&code, &serial, nullptr, &textSize, nullptr, &nameSize));
    EXPECT_EQ(textSize, 4u);
    EXPECT_EQ(nameSize, 3u);
    EXPECT_EQ(code, CodeCanary);
    EXPECT_EQ(serial, SerialCanary);
}

TEST_F(ErrorSlot, GettingCutsATextToItsBuffer) {
    struct Case {
        std::uint64_t Size;
        std::string Stored;
        std::uint64_t SizeOut;
    };
    const Case cases[] = {{1, "", 0}, // Required: with a size of 1 not even a NUL is stored.
                          {2, Closed("a"), 1},
                          {3, Closed("ab"), 2},
                          {4, Closed("abc"), 3},
                          {5, Closed("abc"), 3},
                          {96, Closed("abc"), 3}};
    for (const auto &one : cases) {
        ReportORVErrorEx(7, "abc", "abc");
        Outputs out(one.Size, one.Size);
        EXPECT_TRUE(out.Get()) << one.Size;
        EXPECT_TRUE(out.Text.Holds(one.Stored)) << one.Size;
        EXPECT_EQ(out.Text.Size, one.SizeOut) << one.Size;
        EXPECT_TRUE(out.Name.Holds(one.Stored)) << one.Size;
        EXPECT_EQ(out.Name.Size, one.SizeOut) << one.Size;
    }
}

TEST_F(ErrorSlot, GettingWithoutBuffersTakesTheSlotAndGivesSizesOfZero) {
    ReportORVErrorEx(0x80000001u, "abc", "de");
    std::uint32_t code = 0;
    std::int64_t serial = SerialCanary;
    std::uint64_t textSize = 5, nameSize = 6;
    EXPECT_TRUE(GetLastORVError(&code, &serial, nullptr, &textSize, nullptr, &nameSize));
    EXPECT_EQ(code, 0x80000001u);
    EXPECT_EQ(serial, 0);
    EXPECT_EQ(textSize, 0u);
    EXPECT_EQ(nameSize, 0u);
    EXPECT_FALSE(TakeReport());
}

TEST_F(ErrorSlot, GettingAnEmptyNameStoresNothing) {
    ReportORVErrorEx(7, "", nullptr);
    Outputs out;
    EXPECT_TRUE(out.Get());
    EXPECT_TRUE(out.Text.Holds(""));
    EXPECT_EQ(out.Text.Size, 0u);
    EXPECT_TRUE(out.Name.Holds(""));
    EXPECT_EQ(out.Name.Size, 0u);
    EXPECT_EQ(out.Code, 7u);
}

TEST_F(ErrorSlot, AHugeSizeIsNoReasonToWriteBeyondTheText) {
    ReportORVErrorEx(7, "abc", "de");
    Outputs out(~std::uint64_t{0}, ~std::uint64_t{0});
    EXPECT_TRUE(out.Peek());
    EXPECT_TRUE(out.Text.Holds(Closed("ab")));
    out = Outputs(~std::uint64_t{0}, ~std::uint64_t{0});
    EXPECT_TRUE(out.Get());
    EXPECT_TRUE(out.Text.Holds(Closed("abc")));
    EXPECT_TRUE(out.Name.Holds(Closed("de")));
    EXPECT_EQ(out.Text.Size, 3u);
    EXPECT_EQ(out.Name.Size, 2u);
}

TEST_F(ErrorSlot, PeekingLosesTheLastLetterAndLeavesTheSlot) {
    ReportORVErrorEx(0x8000001Au, "abc", "d");
    for (int round = 0; round < 2; ++round) {
        Outputs out;
        EXPECT_TRUE(out.Peek());
        EXPECT_EQ(out.Code, 0x8000001Au);
        EXPECT_EQ(out.Serial, SerialCanary) << "peeking does not tell the serial";
        EXPECT_TRUE(out.Text.Holds(Closed("ab")));
        EXPECT_EQ(out.Text.Size, 2u);
        EXPECT_TRUE(out.Name.Holds("")) << "nothing is stored, not even a NUL";
        EXPECT_EQ(out.Name.Size, 0u);
    }
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->text, "abc");
    EXPECT_EQ(report->function, "d");
}

TEST_F(ErrorSlot, PeekingCutsATextToItsBuffer) {
    struct Case {
        std::uint64_t Size;
        std::string Stored;
        std::uint64_t SizeOut;
    };
    const Case cases[] = {{0, "", 0}, // Required: no size query here.
                          {1, "", 0},
                          {2, Closed("a"), 1},
                          {3, Closed("ab"), 2},
                          {4, Closed("abc"), 3},
                          {5, Closed("abc"), 3},
                          {96, Closed("abc"), 3}};
    ReportORVErrorEx(7, "abcd", "abcd");
    for (const auto &one : cases) {
        Outputs out(one.Size, one.Size);
        EXPECT_TRUE(out.Peek()) << one.Size;
        EXPECT_TRUE(out.Text.Holds(one.Stored)) << one.Size;
        EXPECT_EQ(out.Text.Size, one.SizeOut) << one.Size;
        EXPECT_TRUE(out.Name.Holds(one.Stored)) << one.Size;
        EXPECT_EQ(out.Name.Size, one.SizeOut) << one.Size;
    }
}

TEST_F(ErrorSlot, PeekingWithoutBuffersGivesTheLengths) {
    ReportORVErrorEx(7, "abc", "de");
    std::uint32_t code = 0;
    std::uint64_t textSize = 50, nameSize = 0;
    EXPECT_TRUE(PeekLastORVError(&code, nullptr, nullptr, &textSize, nullptr, &nameSize));
    EXPECT_EQ(code, 7u);
    EXPECT_EQ(textSize, 3u);
    EXPECT_EQ(nameSize, 2u);
    EXPECT_TRUE(TakeReport());
}

TEST_F(ErrorSlot, PeekingAnEmptyTextStoresNothing) {
    ReportORVErrorEx(7, "", "");
    Outputs out;
    EXPECT_TRUE(out.Peek());
    EXPECT_TRUE(out.Text.Holds(""));
    EXPECT_EQ(out.Text.Size, 0u);
    EXPECT_EQ(out.Name.Size, 0u);
}

TEST_F(ErrorSlot, FlushingEmptiesTheSlotAndKeepsTheCount) {
    ReportORVError(1, "A");
    ReportORVError(2, "B");
    FlushORVErrorCache();
    EXPECT_EQ(GetORVErrorCount(), 2);
    Outputs query(0, 0);
    EXPECT_TRUE(query.Get());
    EXPECT_EQ(query.Text.Size, 1u);
    EXPECT_EQ(query.Name.Size, 1u);
    EXPECT_FALSE(TakeReport());
    FlushORVErrorCache();
    EXPECT_EQ(GetORVErrorCount(), 2);
}

TEST_F(ErrorSlot, RetractingEmptiesTheSlotAndTakesOneOffTheCount) {
    ReportORVError(1, "A");
    ReportORVError(2, "B");
    RetractLastORVError();
    EXPECT_EQ(GetORVErrorCount(), 1);
    EXPECT_FALSE(TakeReport());
    RetractLastORVError();
    RetractLastORVError();
    EXPECT_EQ(GetORVErrorCount(), -1) << "an empty slot is counted down too";
}

TEST_F(ErrorSlot, ASerialCanBeBelowZero) {
    RetractLastORVError();
    RetractLastORVError();
    ReportORVError(1, "A");
    EXPECT_EQ(GetORVErrorCount(), -1);
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->serial, -2);
}

TEST_F(ErrorSlot, ResettingTheCountKeepsTheSlot) {
    ReportORVErrorEx(1, "abc", "A");
    ReportORVErrorEx(2, "def", "B");
    ResetORVErrorCount();
    EXPECT_EQ(GetORVErrorCount(), 0);
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->text, "def");
    EXPECT_EQ(report->serial, 1) << "the serial is that of the report";
    ReportORVError(3, "C");
    EXPECT_EQ(TakeReport()->serial, 0);
}

TEST_F(ErrorSlot, ANewReportLeavesNothingOfTheFormerOne) {
    ReportORVErrorEx(0xFFFFFFFFu, "a long text of the former report", "ALongFormerName");
    ReportORVErrorEx(0, "b", nullptr);
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->code, 0u);
    EXPECT_EQ(report->text, "b");
    EXPECT_EQ(report->function, "");
}

TEST_F(ErrorSlot, AReportCopiesItsTexts) {
    std::string text = "abc", name = "Name";
    ReportORVErrorEx(1, text.c_str(), name.c_str());
    text.assign(3, 'x');
    name.assign(4, 'y');
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->text, "abc");
    EXPECT_EQ(report->function, "Name");
}

TEST_F(ErrorSlot, LongTextsAreKeptWhole) {
    const std::string text(100000, 't'), name(50000, 'n');
    ReportORVErrorEx(1, text.c_str(), name.c_str());
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->text, text);
    EXPECT_EQ(report->function, name);
}

TEST_F(ErrorSlot, PausingAndResumingDoNothing) {
    ReportORVErrorEx(1, "abc", "A");
    PauseORVErrorLogging();
    EXPECT_EQ(GetORVErrorCount(), 1);
    ReportORVErrorEx(2, "def", "B");
    EXPECT_EQ(GetORVErrorCount(), 2) << "reports go on";
    ResumeORVErrorLogging();
    EXPECT_EQ(GetORVErrorCount(), 2);
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->text, "def");
}

TEST_F(ErrorSlot, AMissingSizeGivesFalseAndLeavesTheSlot) {
    ReportORVErrorEx(1, "abc", "A");
    Outputs out;
    char *const text = out.Text.Bytes.data(), *const name = out.Name.Bytes.data();
    std::uint64_t *const textSize = &out.Text.Size, *const nameSize = &out.Name.Size;
    EXPECT_FALSE(GetLastORVError(&out.Code, &out.Serial, text, nullptr, name, nameSize));
    EXPECT_FALSE(GetLastORVError(&out.Code, &out.Serial, text, textSize, name, nullptr));
    EXPECT_FALSE(PeekLastORVError(&out.Code, &out.Serial, text, nullptr, name, nameSize));
    EXPECT_FALSE(PeekLastORVError(&out.Code, &out.Serial, text, textSize, name, nullptr));
    EXPECT_TRUE(out.Untouched());
    EXPECT_EQ(out.Text.Size, 64u);
    EXPECT_EQ(out.Name.Size, 64u);
    EXPECT_TRUE(TakeReport());
}

TEST_F(ErrorSlot, TheCodeAndTheSerialCanBeLeftOut) {
    ReportORVErrorEx(1, "abc", "de");
    Outputs out;
    EXPECT_TRUE(GetLastORVError(nullptr, nullptr, out.Text.Bytes.data(), &out.Text.Size, out.Name.Bytes.data(),
                                &out.Name.Size));
    EXPECT_TRUE(out.Text.Holds(Closed("abc")));
    EXPECT_TRUE(out.Name.Holds(Closed("de")));
    EXPECT_FALSE(TakeReport());
}

} // namespace
