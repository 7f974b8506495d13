// What each boundary pattern catches, reports and returns.
#include "Interface/Boundary.h"

#include <gtest/gtest.h>

#include "Support/TestImages.h"

namespace {

using ErrorHandling::CImageKernelException;
using TestSupport::ClearReports;
using TestSupport::ReportCount;
using TestSupport::TakeReport;

constexpr const char *Name = "TestedFunction";

void ExpectReport(std::uint32_t code, const std::string &text) {
    EXPECT_EQ(ReportCount(), 1);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, code);
    EXPECT_EQ(report->text, text);
    EXPECT_EQ(report->function, Name);
}

std::string Composed(int number) {
    return "Error code " + std::to_string(number) +
           " (no extended information) occured. Error from Sub-Facility Nr. 0 of Facility Nr. 0";
}

class BoundaryPatterns : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }

    template <class Exception>
    static void ExpectLadder(const Exception &exception, std::uint32_t code, const std::string &text) {
        ClearReports();
        EXPECT_EQ(Interface::LadderBoundary(Name, [&] { throw exception; }), static_cast<std::int32_t>(code));
        ExpectReport(code, text);
    }
};

TEST_F(BoundaryPatterns, LadderGivesZeroOnSuccess) {
    EXPECT_EQ(Interface::LadderBoundary(Name, [] {}), 0);
    EXPECT_EQ(ReportCount(), 0);
}

TEST_F(BoundaryPatterns, LadderTellsTheExceptionClassesApart) {
    ExpectLadder(std::out_of_range("far"), ErrIndexRange, "far");
    ExpectLadder(std::invalid_argument("bad"), ErrParameter, "bad");
    ExpectLadder(std::runtime_error("none"), ErrNotAnImage, "none");
    ExpectLadder(std::logic_error("odd"), ErrDataType, "odd");
    ExpectLadder(std::length_error("long"), ErrDataType, "long");
    ExpectLadder(7, ErrGeneral, Composed(1));
    ExpectLadder(std::bad_alloc(), ErrGeneral, Composed(1));
    ExpectLadder(CImageKernelException(ErrDataType), ErrGeneral, Composed(1));
}

TEST_F(BoundaryPatterns, KernelWordPassesTheResultOn) {
    EXPECT_TRUE(Interface::KernelWordBoundary(Name, [] { return true; }));
    EXPECT_FALSE(Interface::KernelWordBoundary(Name, [] { return false; }));
    EXPECT_EQ(ReportCount(), 0);
}

TEST_F(BoundaryPatterns, KernelWordReportsTheWholeWordAfterTheCut) {
    EXPECT_FALSE(Interface::KernelWordBoundary(Name, []() -> bool { throw CImageKernelException(ErrDataType); }));
    ExpectReport(0x1C, Composed(0x1C));
    ClearReports();
    EXPECT_FALSE(Interface::KernelWordBoundary(Name, []() -> bool { throw CImageKernelException(0x9003u); }));
    ExpectReport(0xFFFF9003u, "Error code 3 (no extended information) occured. Error from Sub-Facility Nr. 249 of "
                              "Facility Nr. 31");
}

TEST_F(BoundaryPatterns, KernelWordZeroIsNoFailure) {
    EXPECT_TRUE(Interface::KernelWordBoundary(Name, []() -> bool { throw CImageKernelException(0); }));
    EXPECT_TRUE(Interface::KernelWordBoundary(Name, []() -> bool { throw CImageKernelException(0x80000000u); }));
    EXPECT_EQ(ReportCount(), 0);
}

TEST_F(BoundaryPatterns, KernelWordReportsAnythingElseAsGeneral) {
    EXPECT_FALSE(Interface::KernelWordBoundary(Name, []() -> bool { throw std::logic_error("odd"); }));
    ExpectReport(ErrGeneral, Composed(1));
}

TEST_F(BoundaryPatterns, KernelNumberReportsSixteenBitsWithSign) {
    EXPECT_FALSE(Interface::KernelNumberBoundary(Name, []() -> bool { throw CImageKernelException(ErrIndexRange); }));
    ExpectReport(0x1A, Composed(0x1A));
    ClearReports();
    // Bits 12 to 15 do not belong to the number: the word 0xFFFF9003 has the number 3.
    EXPECT_FALSE(Interface::KernelNumberBoundary(Name, []() -> bool { throw CImageKernelException(0x9003u); }));
    ExpectReport(3, Composed(3));
}

TEST_F(BoundaryPatterns, KernelNumberZeroIsNoFailure) {
    EXPECT_TRUE(Interface::KernelNumberBoundary(Name, []() -> bool { throw CImageKernelException(0x80007000u); }));
    EXPECT_EQ(ReportCount(), 0);
}

TEST_F(BoundaryPatterns, KernelNumberReportsAnythingElseAsGeneral) {
    EXPECT_FALSE(Interface::KernelNumberBoundary(Name, []() -> bool { throw std::bad_alloc(); }));
    ExpectReport(ErrGeneral, Composed(1));
}

TEST_F(BoundaryPatterns, KernelTextReportsTheMessageAndReturnsTheWord) {
    EXPECT_EQ(Interface::KernelTextBoundary(Name, [] {}), 0);
    EXPECT_EQ(ReportCount(), 0);
    EXPECT_EQ(Interface::KernelTextBoundary(Name, [] { throw CImageKernelException(ErrParameter, "Bad thing"); }), 2);
    ExpectReport(2, "Bad thing. Exception from Sub-Facility 'Image Kernel' of Facility 'Orvane'.");
}

TEST_F(BoundaryPatterns, KernelTextLetsOthersPass) {
    EXPECT_THROW(Interface::KernelTextBoundary(Name, [] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_EQ(ReportCount(), 0);
}

TEST_F(BoundaryPatterns, SilentObjectTakesTreeExceptionsOnly) {
    EXPECT_TRUE(Interface::SilentObjectBoundary([] { return true; }));
    EXPECT_FALSE(Interface::SilentObjectBoundary([]() -> bool { throw CtkExceptionObject("lost"); }));
    EXPECT_THROW(Interface::SilentObjectBoundary([]() -> bool { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_EQ(ReportCount(), 0);
}

TEST_F(BoundaryPatterns, GeneralPassesTheResultOnAndReportsAllThatIsThrownAlike) {
    EXPECT_TRUE(Interface::GeneralBoundary(Name, [] { return true; }));
    EXPECT_FALSE(Interface::GeneralBoundary(Name, [] { return false; }));
    EXPECT_EQ(ReportCount(), 0);
    EXPECT_FALSE(Interface::GeneralBoundary(Name, []() -> bool { throw CImageKernelException(ErrPlaneIndex); }));
    ExpectReport(ErrGeneral, Composed(1));
    ClearReports();
    EXPECT_FALSE(Interface::GeneralBoundary(Name, []() -> bool { throw 1; }));
    ExpectReport(ErrGeneral, Composed(1));
}

TEST_F(BoundaryPatterns, SilentGivesTheFailureValueForAnything) {
    EXPECT_EQ(Interface::SilentBoundary(5, [] { return 3; }), 3);
    EXPECT_EQ(Interface::SilentBoundary(5, []() -> int { throw 1; }), 5);
    EXPECT_EQ(ReportCount(), 0);
}

TEST(ImageKernelException, CutsItsCodeToSixteenBitsWithSign) {
    EXPECT_EQ(CImageKernelException(0x8000001Cu).GetWord(), 0x1C);
    EXPECT_FALSE(CImageKernelException(0x8000001Cu).IsFailure());
    EXPECT_EQ(CImageKernelException(0x12348001u).GetWord(), static_cast<std::int32_t>(0xFFFF8001u));
}

TEST(ImageKernelException, NamesItselfInItsMessage) {
    CImageKernelException plain(ErrDataType, nullptr, "file.cpp", 12);
    EXPECT_STREQ(plain.What(), "Error code 28 (no extended information) occured. Exception from Sub-Facility 'Image "
                               "Kernel' of Facility 'Orvane' thrown in file file.cpp at line Nr. 12.");
}

} // namespace
