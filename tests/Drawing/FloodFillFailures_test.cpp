// How flood fill fails: the codes and texts of drawing under its own name.
#include "Drawing/DrawingCalls.h"
#include "Drawing/FloodModel.h"

namespace {

using namespace TestSupport;

class FloodFillFailures : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }
    const DrawingCall call = FillingCalls()[0];
};

TEST_F(FloodFillFailures, WithoutAnImageReportsErrNotAnImage) {
    ExpectNoImageRefused(call);
}

TEST_F(FloodFillFailures, APlaneOutsideTheImageReportsErrIndexRange) {
    ExpectPlanesOutsideRefused(call);
}

TEST_F(FloodFillFailures, ATypeThatCannotBeFilledReportsErrDataTypeWithItsName) {
    ExpectTypesRefused(call);
}

TEST_F(FloodFillFailures, ATypeIsRefusedWhateverTheStart) {
    const auto image = FakeImage::Planar(5, 5, 1, 16 | DataTypeFloat);
    EXPECT_EQ(FloodFillMono(image->Handle(), 0, -7, 99, 1.0, 2.0), Status(ErrDataType));
    ExpectReportWithText(ErrDataType, "Unsupported image data type: float16", "FloodFillMono");
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FloodFillFailures, AnExceptionOfTheImageIsReportedByItsType) {
    ExpectExceptionsReported(call);
}

TEST_F(FloodFillFailures, AnExceptionAtAnyOperationLeavesNoReference) {
    InAProcessOfItsOwn([&] { ExpectLateExceptionsReported(call); });
}

TEST_F(FloodFillFailures, AnImageThatRefusesItsSizeOrItsPlaneIsNone) {
    ExpectRefusingImagesReported(call);
}

TEST_F(FloodFillFailures, AnImageWithoutPixelsHasNoStart) {
    for (const ImageSize size : {ImageSize{1, 0, 0}, ImageSize{1, 0, 4}, ImageSize{1, 4, 0}}) {
        const auto empty = std::make_unique<FakeImage>(size.Width, size.Height, 64u);
        empty->AddPlane(
            empty->Pixels.data() + 32, 8, [](std::intptr_t i) { return i; }, [](std::intptr_t j) { return j; });
        EXPECT_EQ(FloodFillMono(empty->Handle(), 0, 0, 0, 9.0, 0.0), 0);
        ExpectNoReport();
        EXPECT_EQ(empty->Pixels, PlaneBytes(64));
        EXPECT_EQ(empty->Count(), 1);
    }
}

TEST_F(FloodFillFailures, AFillGivesItsReferenceBackWithoutAReport) {
    InAProcessOfItsOwn([&] {
        const auto image = FakeImage::Planar(5, 5, 2, 8);
        EXPECT_EQ(call.Call(image->Handle(), 1, 0, 0), 0);
        ExpectNoReport();
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(std::count(image->Pixels.begin(), image->Pixels.begin() + 25, 0), 25);
        EXPECT_EQ(std::count(image->Pixels.begin() + 25, image->Pixels.end(), 9), 25);
    });
}

} // namespace
