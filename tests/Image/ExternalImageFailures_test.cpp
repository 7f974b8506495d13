// What CreateImageFromPointer refuses: each failure with its word, its whole report, in its order of precedence,
// and with nothing written, called or leaked.
#include "ImageCreation.h"
#include "Support/ImageAccess.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr const char *NullBuffer = "Data pointer must not be NULL";
constexpr const char *Inconsistent = "Inconsistent data";
constexpr const char *BadDimensions = "Invalid dimension parameters";
constexpr const char *BadPitchX = "X Pitch too small";
constexpr const char *BadPitchY = "Y Pitch too small";
constexpr const char *BadPitchPlane = "Z Pitch too small";
constexpr const char *BadOrder = "Sequence order is invalid";
constexpr std::intptr_t Highest = std::numeric_limits<std::intptr_t>::max();
constexpr std::intptr_t Lowest = std::numeric_limits<std::intptr_t>::min();

std::uint8_t pixels[48];

/// The arguments of a call; as they stand, of a good one.
struct Request {
    void *Buffer = pixels;
    std::size_t BufferSize = 48;
    std::intptr_t Width = 4, Height = 3, Planes = 2;
    TDataType Type = 16;
    std::intptr_t PitchX = 2, PitchY = 8, PitchPlane = 24;
    std::vector<std::intptr_t> Order = {};
};

struct FailureCase {
    std::string Name;
    Request Arguments;
    const char *Text;
};
void PrintTo(const FailureCase &failure, std::ostream *out) {
    *out << failure.Name;
}

void CountCall(void *, void *userData) {
    ++*static_cast<int *>(userData);
}

/// Calls with the arguments and expects the failure: its word and text, no output, no callback.
void ExpectFailure(const Request &request, std::int32_t word, const std::string &text) {
    ClearReports();
    void *out = UntouchedPointer();
    int callbacks = 0;
    EXPECT_EQ(CreateImageFromPointer(request.Buffer, request.BufferSize, request.Width, request.Height,
                                     request.Planes, request.Type, request.PitchX, request.PitchY, request.PitchPlane,
                                     request.Order.empty() ? nullptr : request.Order.data(), CountCall, &callbacks,
                                     &out),
              word);
    EXPECT_EQ(out, UntouchedPointer());
    EXPECT_EQ(callbacks, 0);
    EXPECT_EQ(ReportCount(), 1);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, static_cast<std::uint32_t>(word));
    EXPECT_EQ(report->function, "CreateImageFromPointer");
    EXPECT_EQ(report->text, text + ". Exception from Sub-Facility 'Image Kernel' of Facility 'Orvane'.");
}

class RefusedByCreateImageFromPointer : public testing::TestWithParam<FailureCase> {};

TEST_P(RefusedByCreateImageFromPointer, WithTheWordTwoAndItsText) {
    ExpectFailure(GetParam().Arguments, 2, GetParam().Text);
}

std::vector<FailureCase> SingleFailures() {
    return {
        {"NullBuffer", {.Buffer = nullptr}, NullBuffer},
        {"BufferOneByteTooSmall", {.BufferSize = 47}, Inconsistent},
        {"BufferOfOneByte", {.BufferSize = 1}, Inconsistent},
        {"ZeroWidth", {.Width = 0}, BadDimensions},
        {"ZeroHeight", {.Height = 0}, BadDimensions},
        {"NoPlanes", {.Planes = 0}, BadDimensions},
        {"NegativeWidth", {.BufferSize = 0, .Width = -1}, BadDimensions},
        {"NegativeHeight", {.BufferSize = 0, .Height = -1}, BadDimensions},
        {"NegativePlanes", {.BufferSize = 0, .Planes = -1}, BadDimensions},
        {"LowestWidth", {.BufferSize = 0, .Width = Lowest}, BadDimensions},
        {"LowestHeight", {.BufferSize = 0, .Height = Lowest}, BadDimensions},
        {"LowestPlanes", {.BufferSize = 0, .Planes = Lowest}, BadDimensions},
        {"ZeroPitchXOfTwoColumns", {.BufferSize = 0, .Width = 2, .PitchX = 0}, BadPitchX},
        {"PitchXBelowAPixel", {.PitchX = 1}, BadPitchX},
        {"NegativePitchXBelowAPixel", {.PitchX = -1}, BadPitchX},
        {"PitchXBelowAPixelOfNineBits", {.Type = 9, .PitchX = 1}, BadPitchX},
        {"PitchXBelowTheWidestPixel", {.BufferSize = 0, .Type = 0xFF, .PitchX = 31}, BadPitchX},
        {"ZeroPitchYOfTwoRows", {.Height = 2, .PitchY = 0}, BadPitchY},
        {"PitchYBelowAPixel", {.PitchY = 1}, BadPitchY},
        {"NegativePitchYBelowAPixel", {.PitchY = -1}, BadPitchY},
        {"ZeroPitchPlaneOfTwoPlanes", {.PitchPlane = 0}, BadPitchPlane},
        {"PitchPlaneBelowAPixel", {.PitchPlane = 1}, BadPitchPlane},
        {"NegativePitchPlaneBelowAPixel", {.PitchPlane = -1}, BadPitchPlane},
        {"OrderRepeatsAPlane", {.Order = {0, 0}}, BadOrder},
        {"OrderRepeatsAPlaneOfThree", {.BufferSize = 0, .Planes = 3, .Order = {0, 0, 1}}, BadOrder},
        {"OrderNamesThePlaneCount", {.Order = {0, 2}}, BadOrder},
        {"OrderNamesANegativePlane", {.Order = {-1, 0}}, BadOrder},
        {"OrderCountsFromOne", {.Order = {1, 2}}, BadOrder},
        {"OrderOfOnePlaneNamesTheSecond", {.Planes = 1, .Order = {1}}, BadOrder},
        {"OrderNamesTheHighestNumber", {.Order = {0, Highest}}, BadOrder},
        {"OrderNamesTheLowestNumber", {.Order = {Lowest, 1}}, BadOrder},
    };
}

/// Several failures at once: the earlier check tells.
std::vector<FailureCase> PrecedenceCases() {
    Request request{nullptr, 1, -1, -1, 2, 16, 0, 0, 0, {5, 5}};
    std::vector<FailureCase> cases = {{"NullBufferBeforeAll", request, NullBuffer}};
    request.Buffer = pixels;
    request.Planes = 1;
    cases.push_back({"BufferSizeBeforeDimensions", request, Inconsistent});
    request = {pixels, 1, 2, 2, 2, 16, 0, 0, 0, {5, 5}};
    cases.push_back({"BufferSizeBeforePitches", request, Inconsistent});
    request.BufferSize = 0;
    request.Planes = 0;
    cases.push_back({"DimensionsBeforePitches", request, BadDimensions});
    request.Planes = 2;
    cases.push_back({"PitchXBeforePitchY", request, BadPitchX});
    request.PitchX = 2;
    cases.push_back({"PitchYBeforePitchPlane", request, BadPitchY});
    request.PitchY = 4;
    cases.push_back({"PitchPlaneBeforeOrder", request, BadPitchPlane});
    return cases;
}

/// Sizes whose products leave 64 bits.
std::vector<FailureCase> OverflowCases() {
    constexpr std::intptr_t big = std::intptr_t{1} << 32;
    constexpr auto all = std::numeric_limits<std::size_t>::max();
    return {
        {"BytesWrapToZero",
         {.BufferSize = 48, .Width = big, .Height = big, .Planes = 1, .Type = 8, .PitchX = 1, .PitchY = 1},
         Inconsistent},
        {"BytesWrapToALittle", {.BufferSize = 48, .Width = big + 1, .Height = big, .Planes = 1}, Inconsistent},
        {"BytesBeyondTheHighestBufferSize",
         {.BufferSize = all, .Width = big, .Height = big, .Planes = 1},
         Inconsistent},
        {"HighestDimensions",
         {.BufferSize = all, .Width = Highest, .Height = Highest, .Planes = Highest},
         Inconsistent},
        {"PlanesWrapTheBytes",
         {.BufferSize = 48, .Width = 4, .Height = 4, .Planes = std::intptr_t{1} << 60},
         Inconsistent},
        {"ColumnsBeyondTheAddressSpace", {.BufferSize = 0, .Width = 3, .PitchX = Highest}, Inconsistent},
        {"RowsBeyondTheAddressSpace", {.BufferSize = 0, .Height = 3, .PitchY = Lowest}, Inconsistent},
        {"PlanesBeyondTheAddressSpace", {.BufferSize = 0, .Planes = 3, .PitchPlane = Highest}, Inconsistent},
        {"PlaneAndColumnTogetherBeyondTheAddressSpace",
         {.BufferSize = 0, .Width = 2, .Planes = 2, .PitchX = Highest, .PitchPlane = 2},
         Inconsistent},
    };
}

std::string CaseName(const testing::TestParamInfo<FailureCase> &info) {
    return info.param.Name;
}
INSTANTIATE_TEST_SUITE_P(EachFailure, RefusedByCreateImageFromPointer, testing::ValuesIn(SingleFailures()), CaseName);
INSTANTIATE_TEST_SUITE_P(TheEarlierCheckTells, RefusedByCreateImageFromPointer, testing::ValuesIn(PrecedenceCases()),
                         CaseName);
INSTANTIATE_TEST_SUITE_P(Overflow, RefusedByCreateImageFromPointer, testing::ValuesIn(OverflowCases()), CaseName);

TEST(CreateImageFromPointerFailures, TablesBeyondMemoryAreAFailedCreation) {
    const std::string text = "Error code 5 (no extended information) occured";
    for (const std::intptr_t size : {std::intptr_t{1} << 59, std::intptr_t{1} << 60, Highest - 8, Highest}) {
        SCOPED_TRACE(size);
        ExpectFailure({.BufferSize = 0, .Width = size, .Height = 1, .Planes = 1, .Type = 8, .PitchX = 1}, 5, text);
        ExpectFailure({.BufferSize = 0, .Width = 1, .Height = size, .Planes = 1, .Type = 8, .PitchY = 1}, 5, text);
    }
}

TEST(CreateImageFromPointerFailures, MorePlanesThanMemoryHasTablesForAreAFailedCreation) {
    const std::string text = "Error code 5 (no extended information) occured";
    for (const std::intptr_t planes : {std::intptr_t{1} << 60, std::intptr_t{1} << 61, Highest})
        ExpectFailure({.BufferSize = 0, .Width = 1, .Height = 1, .Planes = planes, .Type = 8, .PitchPlane = 1}, 5,
                      text);
}

TEST(CreateImageFromPointerFailures, TheReportedTextHasNoClosingNul) {
    ClearReports();
    void *out = nullptr;
    EXPECT_EQ(CreateImageFromPointer(nullptr, 0, 1, 1, 1, 8, 1, 1, 1, nullptr, nullptr, nullptr, &out), 2);
    EXPECT_EQ(StoredReportText(),
              "Data pointer must not be NULL. Exception from Sub-Facility 'Image Kernel' of Facility 'Orvane'.");
}

TEST(CreateImageFromPointerFailures, AFailureThatFollowsAnotherTakesItsPlace) {
    ClearReports();
    void *out = nullptr;
    EXPECT_EQ(CreateImageFromPointer(nullptr, 0, 1, 1, 1, 8, 1, 1, 1, nullptr, nullptr, nullptr, &out), 2);
    EXPECT_EQ(CreateImageFromPointer(pixels, 0, 0, 1, 1, 8, 1, 1, 1, nullptr, nullptr, nullptr, &out), 2);
    EXPECT_EQ(ReportCount(), 2);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_TRUE(report->text.starts_with(BadDimensions));
    EXPECT_EQ(report->serial, 1);
}

TEST(CreateImageFromPointerFailures, TheLowestPitchIsNoSmallPitch) {
    void *out = nullptr;
    ASSERT_EQ(CreateImageFromPointer(pixels, 0, 2, 1, 1, 8, Lowest, 0, 0, nullptr, nullptr, nullptr, &out), 0);
    const Handle image(out);
    EXPECT_EQ(AccessOf(image.Get(), 0).Table[1].XEntry, Lowest);
}

} // namespace
