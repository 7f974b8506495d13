/* The registered texts, the messages that reports without a text compose, and the messages of exceptions at the
 * boundary. */
#include "ErrorHandling.h"
#include "ImageCreation.h"
#include "ImageQueries.h"
#include "Support/TestImages.h"

#include <array>

using namespace TestSupport;

namespace {

struct Row {
    std::uint32_t SubFacility;
    std::uint32_t Number;
    const char *Text;
};

/// All registered texts; their facility is 1.
constexpr Row Rows[] = {
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

constexpr std::uint32_t KeyOf(const Row &row) {
    return 0x100000u | (row.SubFacility << 12) | row.Number;
}

constexpr std::uint32_t ImageCodes[] = {ErrGeneral,      ErrParameter,      ErrCreateFailed,    ErrPlaneIndex,
                                        ErrNotAnImage,   ErrNotPossible,    ErrDimension,       ErrNotAPixelList,
                                        ErrSingularArea, ErrIndexRange,     ErrUnsupportedMode, ErrDataType,
                                        ErrElementIndex, ErrNotOverlayImage};

class ErrorTexts : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }
};

TEST_F(ErrorTexts, EveryRegisteredTextIsFoundByItsKey) {
    for (const Row &row : Rows)
        EXPECT_STREQ(GetORVErrorStringPtr(KeyOf(row)), row.Text) << row.SubFacility << ' ' << row.Number;
    EXPECT_EQ(ReportCount(), 0);
}

TEST_F(ErrorTexts, SeverityAndFailureBitTakeNoPartInTheLookUp) {
    for (const Row &row : Rows)
        for (std::uint32_t upper = 0; upper < 128; ++upper)
            ASSERT_STREQ(GetORVErrorStringPtr(KeyOf(row) | (upper << 25)), row.Text) << upper;
    EXPECT_STREQ(GetORVErrorStringPtr(0x80101001u), "Negative Dimensions and Dimension zero are illegal");
    EXPECT_STREQ(GetORVErrorStringPtr(0x00101001u), "Negative Dimensions and Dimension zero are illegal");
}

TEST_F(ErrorTexts, NothingElseIsRegistered) {
    std::size_t found = 0;
    for (std::uint32_t key = 0; key < 0x400000u; ++key)
        found += GetORVErrorStringPtr(key) != nullptr ? 1u : 0u;
    EXPECT_EQ(found, std::size(Rows));
    for (std::uint32_t facility = 0; facility < 32; ++facility)
        for (std::uint32_t subFacility = 0; subFacility < 256; ++subFacility) {
            const std::uint32_t key = (facility << 20) | (subFacility << 12);
            ASSERT_EQ(GetORVErrorStringPtr(key) != nullptr, facility == 1 && subFacility <= 6) << key;
            ASSERT_EQ(GetORVErrorStringPtr(key | 0xFFFu), nullptr) << key;
        }
}

TEST_F(ErrorTexts, ImageCodesHaveNoText) {
    EXPECT_EQ(GetORVErrorStringPtr(0), nullptr);
    for (const std::uint32_t code : ImageCodes)
        EXPECT_EQ(GetORVErrorStringPtr(code), nullptr) << code;
}

TEST_F(ErrorTexts, ImageCodesHaveTheirValues) {
    const std::uint32_t numbers[] = {0x01, 0x02, 0x05, 0x06, 0x10, 0x13, 0x16,
                                     0x15, 0x19, 0x1A, 0x2F, 0x1C, 0x30, 0x31};
    for (std::size_t i = 0; i < std::size(numbers); ++i)
        EXPECT_EQ(ImageCodes[i], 0x80000000u | numbers[i]);
}

TEST_F(ErrorTexts, ATextKeepsItsAddressWhateverIsLookedUpBetween) {
    const char *const first = GetORVErrorStringPtr(0x101001u);
    const char *const second = GetORVErrorStringPtr(0x105002u);
    EXPECT_NE(first, second);
    EXPECT_EQ(GetORVErrorStringPtr(0x101001u), first);
    EXPECT_EQ(GetORVErrorStringPtr(0x101001u), first);
    EXPECT_EQ(GetORVErrorStringPtr(0x10100Fu), nullptr);
    EXPECT_EQ(GetORVErrorStringPtr(0x101001u), first);
    EXPECT_EQ(GetORVErrorStringPtr(0), nullptr);
    EXPECT_EQ(GetORVErrorStringPtr(0x105002u), second);
}

/// The message of a report without a text, without its closing NUL.
std::string Composed(std::uint32_t code) {
    const std::uint32_t number = code & 0xFFFu, subFacility = (code >> 12) & 0xFFu, facility = (code >> 20) & 0x1Fu;
    std::string text = "Error code " + std::to_string(number) + " (no extended information) occured";
    for (const Row &row : Rows)
        if (KeyOf(row) == (code & 0x1FFFFFFu))
            text = row.Text;
    return text + ". Error from Sub-Facility Nr. " + std::to_string(subFacility) + " of Facility Nr. " +
           std::to_string(facility);
}

TEST_F(ErrorTexts, AReportWithoutTextComposesItsMessage) {
    ReportORVError(0x80000010u, "Name");
    EXPECT_EQ(TakeReport()->text,
              "Error code 16 (no extended information) occured. Error from Sub-Facility Nr. 0 of Facility Nr. 0");
    ReportORVError(0x80101001u, "Name");
    EXPECT_EQ(TakeReport()->text, "Negative Dimensions and Dimension zero are illegal. Error from Sub-Facility Nr. 1 "
                                  "of Facility Nr. 1");
    ReportORVError(0x8000F123u, "Name");
    EXPECT_EQ(TakeReport()->text,
              "Error code 291 (no extended information) occured. Error from Sub-Facility Nr. 15 of Facility Nr. 0");
    ReportORVError(0xFFFFFFFFu, "Name");
    EXPECT_EQ(
        TakeReport()->text,
        "Error code 4095 (no extended information) occured. Error from Sub-Facility Nr. 255 of Facility Nr. 31");
    ReportORVError(0, "Name");
    EXPECT_EQ(TakeReport()->text,
              "Error code 0 (no extended information) occured. Error from Sub-Facility Nr. 0 of Facility Nr. 0");
}

TEST_F(ErrorTexts, EveryCodeComposesItsOwnMessageAndIsKeptWhole) {
    std::vector<std::uint32_t> codes(std::begin(ImageCodes), std::end(ImageCodes));
    for (const Row &row : Rows)
        codes.insert(codes.end(), {KeyOf(row), KeyOf(row) | 0x80000000u, KeyOf(row) | 0xFE000000u});
    codes.insert(codes.end(), {1u, 3u, 0x7FFFFFFFu, 0x02000000u, 0x01F00000u, 0x000FF000u});
    for (const std::uint32_t code : codes) {
        ReportORVError(code, "Name");
        const auto report = TakeReport();
        ASSERT_TRUE(report);
        EXPECT_EQ(report->text, Composed(code)) << std::hex << code;
        EXPECT_EQ(report->code, code);
        EXPECT_EQ(report->function, "Name");
    }
}

TEST_F(ErrorTexts, ANullTextComposesAndAnEmptyTextDoesNot) {
    ReportORVErrorEx(0x80000010u, nullptr, "Name");
    auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->text, Composed(0x10));
    EXPECT_EQ(report->function, "Name");
    ReportORVErrorEx(0x80101001u, "", "Name");
    report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->text, "");
    ReportORVErrorEx(0x80101001u, "own words", "Name");
    EXPECT_EQ(TakeReport()->text, "own words") << "nothing is added to a given text";
}

TEST_F(ErrorTexts, ANullNameLeavesAnEmptyName) {
    ReportORVError(0x80000010u, nullptr);
    auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->function, "");
    ReportORVErrorEx(1, nullptr, nullptr);
    report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->function, "");
    EXPECT_EQ(report->text, Composed(1));
}

class ComposedSizes : public ErrorTexts {
protected:
    static constexpr char Canary = '#';
    const std::string visible = Composed(0x80000010u);
    std::array<char, 256> buffer{};
    std::uint32_t code = 0;
    std::int64_t serial = -1;
    std::uint64_t nameSize = 1;

    void SetUp() override {
        ErrorTexts::SetUp();
        buffer.fill(Canary);
        ReportORVError(0x80000010u, "N");
    }
    void ExpectBuffer(const std::string &start) {
        EXPECT_EQ(std::string(buffer.data(), start.size()), start);
        EXPECT_EQ(std::count(buffer.begin() + static_cast<std::ptrdiff_t>(start.size()), buffer.end(), Canary),
                  static_cast<std::ptrdiff_t>(buffer.size() - start.size()));
    }
};

TEST_F(ComposedSizes, TheClosingNulCountsInTheQueriedSize) {
    std::uint64_t size = 0;
    ASSERT_TRUE(GetLastORVError(&code, &serial, buffer.data(), &size, nullptr, &nameSize));
    EXPECT_EQ(size, visible.size() + 2);
    ExpectBuffer("");
}

TEST_F(ComposedSizes, GettingCountsTheClosingNul) {
    std::uint64_t size = buffer.size();
    ASSERT_TRUE(GetLastORVError(&code, &serial, buffer.data(), &size, nullptr, &nameSize));
    EXPECT_EQ(size, visible.size() + 1);
    ExpectBuffer(visible + std::string(2, '\0'));
}

TEST_F(ComposedSizes, GettingIntoTheVisibleLengthAndANulCutsTheCountedOne) {
    std::uint64_t size = visible.size() + 1;
    ASSERT_TRUE(GetLastORVError(&code, &serial, buffer.data(), &size, nullptr, &nameSize));
    EXPECT_EQ(size, visible.size());
    ExpectBuffer(visible + '\0');
}

TEST_F(ComposedSizes, PeekingLosesTheClosingNulOnly) {
    std::uint64_t size = buffer.size();
    ASSERT_TRUE(PeekLastORVError(&code, nullptr, buffer.data(), &size, nullptr, &nameSize));
    EXPECT_EQ(size, visible.size());
    ExpectBuffer(visible + '\0');
    size = 0;
    ASSERT_TRUE(PeekLastORVError(&code, nullptr, nullptr, &size, nullptr, &nameSize));
    EXPECT_EQ(size, visible.size() + 1) << "the length, without one more";
    EXPECT_EQ(nameSize, 1u);
}

TEST_F(ErrorTexts, AKernelExceptionWithTextTellsItsOrigin) {
    std::uint8_t pixels[4] = {};
    void *image = nullptr;
    const auto create = [&](void *buffer, std::size_t size, std::intptr_t width, std::intptr_t pitchX) {
        return CreateImageFromPointer(buffer, size, width, 1, 1, 8, pitchX, 4, 0, nullptr, nullptr, nullptr, &image);
    };
    const std::string origin = ". Exception from Sub-Facility 'Image Kernel' of Facility 'Orvane'.";
    const auto expect = [&](std::int32_t result, std::int32_t code, const std::string &text) {
        EXPECT_EQ(result, code);
        const auto report = TakeReport();
        ASSERT_TRUE(report) << text;
        EXPECT_EQ(report->text, text + origin);
        EXPECT_EQ(report->code, static_cast<std::uint32_t>(code)) << "cut to 16 bits, without the failure bit";
        EXPECT_EQ(report->function, "CreateImageFromPointer");
        EXPECT_EQ(image, nullptr);
    };
    expect(create(nullptr, 4, 4, 1), 2, "Data pointer must not be NULL");
    expect(create(pixels, 3, 4, 1), 2, "Inconsistent data");
    expect(create(pixels, 0, 0, 1), 2, "Invalid dimension parameters");
    expect(create(pixels, 0, 4, 0), 2, "X Pitch too small");
    expect(create(pixels, 0, std::intptr_t{1} << 60, 1), 5, "Error code 5 (no extended information) occured");
    EXPECT_EQ(ReportCount(), 5);
}

TEST_F(ErrorTexts, AKernelMessageReachesTheSlotWithoutAClosingNul) {
    EXPECT_EQ(CreateImageFromPointer(nullptr, 0, 1, 1, 1, 8, 1, 1, 0, nullptr, nullptr, nullptr, nullptr), 2);
    const std::string text = "Data pointer must not be NULL. Exception from Sub-Facility 'Image Kernel' of Facility "
                             "'Orvane'.";
    std::uint32_t code = 0;
    std::int64_t serial = 0;
    std::uint64_t size = 0, nameSize = 0;
    ASSERT_TRUE(GetLastORVError(&code, &serial, nullptr, &size, nullptr, &nameSize));
    EXPECT_EQ(size, text.size() + 1) << "the text was handed over as a C string";
    EXPECT_EQ(nameSize, sizeof "CreateImageFromPointer");
}

TEST_F(ErrorTexts, PixValHandsItsOwnTexts) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    const auto expect = [](std::intptr_t result, const char *text) {
        EXPECT_EQ(result, 0x80000002);
        const auto report = TakeReport();
        ASSERT_TRUE(report) << text;
        EXPECT_EQ(report->code, ErrParameter);
        EXPECT_EQ(report->text, text);
        EXPECT_EQ(report->function, "PixVal");
    };
    expect(PixVal(image->Handle(), 1, 0, 0), "Invalid Plane Index");
    expect(PixVal(image->Handle(), 0, 7, 0), "Invalid X coordinate");
    expect(PixVal(image->Handle(), 0, 0, 6), "Invalid Y coordinate");
}

} // namespace
