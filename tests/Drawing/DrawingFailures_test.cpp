// How the five drawing functions fail alike: what comes first, which code and text, and under whose name.
#include "Drawing/DrawingCalls.h"

namespace {

using namespace TestSupport;

class DrawingFailures : public testing::TestWithParam<DrawingCall> {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }
    std::unique_ptr<FakeImage> image = FakeImage::Planar(5, 5, 2, 8);
};
INSTANTIATE_TEST_SUITE_P(Functions, DrawingFailures, testing::ValuesIn(DrawingCalls()), [](const auto &tested) {
    const std::string &name = tested.param.Name;
    return name.ends_with("thick") ? name.substr(0, name.find(',')) + "Thick" : name;
});

TEST_P(DrawingFailures, DrawsWithoutAReportWhenAllIsWell) {
    EXPECT_EQ(GetParam().Call(image->Handle(), 1, 0, 0), 0);
    ExpectNoReport();
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(std::count(image->Pixels.begin(), image->Pixels.begin() + 25, 0), 25);
    EXPECT_LT(std::count(image->Pixels.begin() + 25, image->Pixels.end(), 0), 25);
}

TEST_P(DrawingFailures, WithoutAnImageReportsErrNotAnImage) {
    ExpectNoImageRefused(GetParam());
}

TEST_P(DrawingFailures, AnotherAntiAliasModeThan0ReportsErrUnsupportedMode) {
    for (const std::uint32_t antiAlias : {1u, 2u, 0x80000000u, 0xFFFFFFFFu})
        ExpectRefusal(GetParam(), *image, ErrUnsupportedMode, "Unsupported anti-alias mode", 0, 0, antiAlias);
}

TEST_P(DrawingFailures, TheAntiAliasModeComesAfterTheImageAndBeforeAllElse) {
    EXPECT_EQ(GetParam().Call(nullptr, -1, 3, 1), Status(ErrNotAnImage));
    ExpectOneReport(ErrNotAnImage, GetParam().Reporter.c_str());
    ExpectRefusal(GetParam(), *image, ErrUnsupportedMode, "Unsupported anti-alias mode", -1, 3, 1);
    const auto complex = FakeImage::Planar(5, 5, 1, 8 | DataTypeComplex);
    ExpectRefusal(GetParam(), *complex, ErrUnsupportedMode, "Unsupported anti-alias mode", 0, 0, 1);
    image->Fails.OnOperation = [] { throw std::runtime_error("asked"); };
    ExpectRefusal(GetParam(), *image, ErrUnsupportedMode, "Unsupported anti-alias mode", 0, 0, 1);
}

TEST_P(DrawingFailures, APlaneOutsideTheImageReportsErrIndexRange) {
    ExpectPlanesOutsideRefused(GetParam());
}

TEST_P(DrawingFailures, AnotherDrawModeThan0To2ReportsErrParameter) {
    for (const TDataType type : TenTypes) {
        const auto typed = FakeImage::Planar(5, 5, 1, type);
        for (const std::uint32_t mode : {3u, 4u, 0x80000000u, 0xFFFFFFFFu})
            ExpectRefusal(GetParam(), *typed, ErrParameter, "Unsupported draw mode", 0, mode);
    }
}

TEST_P(DrawingFailures, ATypeThatCannotBeDrawnReportsErrDataTypeWithItsName) {
    ExpectTypesRefused(GetParam());
    for (const auto &[type, name] : {std::pair{TDataType{0}, "uint0"}, std::pair{DataTypeSigned, "sint0"}}) {
        const auto typed = std::make_unique<FakeImage>(5, 5, 25u);
        typed->AddPlane(
            typed->Pixels.data(), type, [](std::intptr_t i) { return i; }, [](std::intptr_t j) { return 5 * j; });
        ExpectRefusal(GetParam(), *typed, ErrDataType, std::string("Unsupported image data type: ") + name);
    }
}

TEST_P(DrawingFailures, OnlyTheTypeOfThePlaneDrawnCounts) {
    const auto mixed = std::make_unique<FakeImage>(5, 5, 100u);
    const auto columns = [](std::intptr_t i) { return i; };
    const auto rows = [](std::intptr_t j) { return 5 * j; };
    mixed->AddPlane(mixed->Pixels.data(), 8 | DataTypeComplex, columns, rows);
    mixed->AddPlane(mixed->Pixels.data() + 50, 8, columns, rows);
    EXPECT_EQ(GetParam().Call(mixed->Handle(), 1, 0, 0), 0);
    ExpectNoReport();
    ExpectRefusal(GetParam(), *mixed, ErrDataType, "Unsupported image data type: complex8", 0);
}

TEST_P(DrawingFailures, AnExceptionOfTheImageIsReportedByItsType) {
    ExpectExceptionsReported(GetParam());
}

TEST_P(DrawingFailures, AnExceptionAtAnyOperationLeavesNoReference) {
    ExpectLateExceptionsReported(GetParam());
}

TEST_P(DrawingFailures, AnImageThatRefusesItsSizeOrItsPlaneIsNone) {
    ExpectRefusingImagesReported(GetParam());
}

} // namespace
